// What the program says of itself as a whole.
#pragma once

#include "host/argument_list.h"

#include <span>
#include <string>
#include <vector>

namespace host
{

struct EnvironmentVariable
{
    const char *name;
    const char *meaning;
};

extern const char *const programSummary;
extern const char *const exitStatuses;
extern const std::span<const EnvironmentVariable> environmentVariables;

// The last word of a command's or a part's name.
std::string lastWordOf(const ArgumentList &list);

// What `zerb --help` shows.
std::string programHelp(const std::vector<ArgumentList> &commands);

}   // namespace host
