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

}   // namespace host
