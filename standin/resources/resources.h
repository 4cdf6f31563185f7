// What the Resource Manager offers its neighbours beyond the platform's calls.
#pragma once

#include "platform/platform.h"

#include <string>

namespace standin
{

// Copies the bytes of a resource that GetResource would find: those that its handle holds, or would hold if it were loaded. So the fixed fields of
// 'DLOG' and 'ALRT' are in the machine's own byte order, and everything else is as it is in the file.
// Neither loads nor releases anything, and leaves ResError alone. False if there is none or it cannot be read; `bytes` is then untouched.
// Without memory for them it throws std::bad_alloc.
bool copyResource(ResType type, SInt16 resID, std::string &bytes);

}   // namespace standin
