// The commands, for their table.
#pragma once

#include "host/command.h"

namespace host
{

extern const Command accessCommand;
extern const Command attrsCommand;
extern const Command catCommand;
extern const Command cdCommand;
extern const Command colonCommand;
extern const Command completionsCommand;
extern const Command copyCommand;
extern const Command dialogCommand;
extern const Command findCommand;
extern const Command folderCommand;
extern const Command forksCommand;
extern const Command iconCommand;
extern const Command iconsCommand;
extern const Command idCommand;
extern const Command infoCommand;
extern const Command lsCommand;
extern const Command manCommand;
extern const Command mountCommand;
extern const Command mvCommand;
extern const Command nameCommand;
extern const Command newCommand;
extern const Command pathCommand;
extern const Command renameCommand;
extern const Command rmCommand;
extern const Command rsrcCommand;
extern const Command setCommand;
extern const Command swapCommand;
extern const Command textCommand;
extern const Command touchCommand;
extern const Command treeCommand;
extern const Command volumesCommand;
extern const Command whoCommand;
extern const Command writableCommand;

}   // namespace host
