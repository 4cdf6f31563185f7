#include "host/commands/parts.h"

#include <memory>
#include <utility>
#include <vector>

namespace host
{

Action declareParts(Arguments &arguments, std::span<const Part *const> parts)
{
    auto declared = std::make_shared<std::vector<std::pair<const Arguments *, Action>>>();
    for (const Part *part : parts)
    {
        Arguments &partArguments = arguments.part(part->name, {part->summary, part->description, part->examples});
        declared->emplace_back(&partArguments, part->declare(partArguments));
    }
    return [declared](Invocation &invocation) {
        for (const auto &[partArguments, action] : *declared)
            if (partArguments->isChosen())
                action(invocation);
    };
}

}   // namespace host
