// The commands, for their table.
#pragma once

#include "host/command.h"

namespace host
{

extern const Command attrsCommand;
extern const Command infoCommand;
extern const Command setCommand;
extern const Command textCommand;
extern const Command touchCommand;

}   // namespace host
