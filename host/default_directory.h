// The default directory of this process, which begins where the environment says.
#pragma once

#include "host/plugin.h"

#include <string>
#include <vector>

namespace host
{

using Words = std::vector<std::string>;

constexpr const char *defaultDirectoryVariable = "ZERB_DEFAULT_DIRECTORY";

// Makes the folder at a path the default directory. Result: noErr, with the one that it was before and the folder's own path from the startup volume's
// root; dirNFErr for a file; the code of the step that failed.
OSStatus setDefaultDirectory(const Plugin &plugin, const std::string &path, FSRef &previous, std::string &ownPath);

// Does it with what ZERB_DEFAULT_DIRECTORY names, if it is set and not empty. Throws std::runtime_error that tells what is wrong with it.
void takeDefaultDirectoryFromEnvironment(const Plugin &plugin);

}   // namespace host
