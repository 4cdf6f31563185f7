#include "host/commands.h"

#include <algorithm>

namespace host
{

namespace
{

// In the order of the list that `zerb --help` shows.
// clang-format off
const Command *const commandOrder[] = {
    &infoCommand,
    &setCommand,
    &touchCommand,
    &attrsCommand,
    &lsCommand,
    &treeCommand,
    &findCommand,
    &copyCommand,
    &mvCommand,
    &renameCommand,
    &swapCommand,
    &rmCommand,
    &writableCommand,
    &forksCommand,
    &rsrcCommand,
    &accessCommand,
    &whoCommand,
    &idCommand,
    &cdCommand,
    &volumesCommand,
    &mountCommand,
    &pathCommand,
    &nameCommand,
    &folderCommand,
    &colonCommand,
    &newCommand,
    &catCommand,
    &iconCommand,
    &iconsCommand,
    &dialogCommand,
    &textCommand,
    &manCommand,
    &completionsCommand,
};
// clang-format on

}   // namespace

std::span<const Command *const> allCommands()
{
    return commandOrder;
}

const Command *commandNamed(std::string_view name)
{
    auto row =
        std::find_if(std::begin(commandOrder), std::end(commandOrder), [&](const Command *command) { return command->name == name; });
    return row != std::end(commandOrder) ? *row : nullptr;
}

std::string fullNameOf(const Command &command)
{
    return std::string("zerb ") + command.name;
}

ArgumentList argumentListOf(const Command &command)
{
    Arguments arguments(fullNameOf(command), {command.summary, command.description, command.examples});
    const Action action = command.declare(arguments);   // the options live as long as it
    return arguments.list();
}

std::vector<ArgumentList> allArgumentLists()
{
    std::vector<ArgumentList> lists;
    for (const Command *command : allCommands())
        lists.push_back(argumentListOf(*command));
    return lists;
}

}   // namespace host
