#include "standin/text/text_part.h"

#include "standin/modules.h"

namespace standin
{

namespace
{

const TextModule *load()
{
    auto *function = reinterpret_cast<TextModuleFunction *>(moduleFunction(textModuleFile, textModuleFunction));
    if (function == nullptr)
        notePartMissing("the part that knows characters beyond ASCII cannot be loaded: " + moduleProblem());
    return function != nullptr ? function() : nullptr;
}

}   // namespace

const TextModule *textPart()
{
    static const TextModule *const part = load();
    return part;
}

}   // namespace standin
