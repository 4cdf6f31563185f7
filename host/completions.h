// What shells offer behind `zerb` when Tab is pressed: scripts for them, made of what the commands say of themselves.
#pragma once

#include "host/argument_list.h"

#include <string>
#include <vector>

namespace host
{

std::string bashCompletions(const std::vector<ArgumentList> &commands);
std::string fishCompletions(const std::vector<ArgumentList> &commands);
std::string zshCompletions(const std::vector<ArgumentList> &commands);

}   // namespace host
