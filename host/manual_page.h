// Manual pages, as man reads them: made of what the commands say of themselves.
#pragma once

#include "host/argument_list.h"

#include <string>
#include <vector>

namespace host
{

// The page zerb(1).
std::string programPage(const std::vector<ArgumentList> &commands, const std::string &version);

// The page zerb-COMMAND(1), with the command's parts.
std::string commandPage(const ArgumentList &command, const std::string &version);

}   // namespace host
