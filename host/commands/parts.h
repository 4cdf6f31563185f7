// Commands that consist of parts, each of them a command of its own: zerb COMMAND PART.
#pragma once

#include "host/command.h"

#include <span>

namespace host
{

// See Command.
struct Part
{
    const char *name, *summary, *description, *examples;
    Action (*declare)(Arguments &arguments);
};

// Declares all parts. The action is that of the part that the command line names.
Action declareParts(Arguments &arguments, std::span<const Part *const> parts);

}   // namespace host
