// The commands, for their table.
#pragma once

#include "host/command.h"

namespace host
{

extern const Command attrsCommand;
extern const Command copyCommand;
extern const Command findCommand;
extern const Command forksCommand;
extern const Command infoCommand;
extern const Command lsCommand;
extern const Command mvCommand;
extern const Command nameCommand;
extern const Command pathCommand;
extern const Command renameCommand;
extern const Command rmCommand;
extern const Command setCommand;
extern const Command swapCommand;
extern const Command textCommand;
extern const Command touchCommand;
extern const Command treeCommand;

}   // namespace host
