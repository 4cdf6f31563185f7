// What the Resource Manager offers its neighbours beyond the platform's calls.
#pragma once

#include "platform/platform.h"

#include <string>

namespace standin
{

// Copies the bytes of a resource that GetResource would find, as they are in the file; of one that is loaded, as they are in memory.
// Neither loads nor releases anything, and leaves ResError alone. False if there is none or it cannot be read; `bytes` is then untouched.
bool copyResource(ResType type, SInt16 resID, std::string &bytes);

}   // namespace standin
