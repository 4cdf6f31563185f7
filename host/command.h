// What a command of this program is made of. Each lives in a source of its own under host/commands/ and has one row in the table of commands.cpp.
#pragma once

#include "host/arguments.h"
#include "host/plugin.h"
#include "host/report.h"

#include <functional>
#include <span>
#include <string_view>

namespace host
{

// What a command works with.
struct Invocation
{
    const Plugin &plugin;
    Report &report;
};

// Does the work, once the arguments are read. Failures go to the invocation's report, which makes the exit status.
using Action = std::function<void(Invocation &)>;

struct Command
{
    const char *name;
    const char *summary;                       // one line for the list of commands
    const char *description;                   // what the command's own help says beyond that
    const char *examples;                      // lines for its help
    Action (*declare)(Arguments &arguments);   // says what it takes; the options live as long as the action
    bool needsPlugin = true;                   // without it the invocation's plug-in is empty
};

std::span<const Command *const> allCommands();
const Command *commandNamed(std::string_view name);   // null if there is none

std::string fullNameOf(const Command &command);   // "zerb info"

// What a command takes; all commands in the order of their table.
ArgumentList argumentListOf(const Command &command);
std::vector<ArgumentList> allArgumentLists();

}   // namespace host
