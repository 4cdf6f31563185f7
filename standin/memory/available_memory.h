// What the machine still has, in bytes.
#pragma once

#include <cstdint>

namespace standin
{

// The largest block that is ever given out: all of the machine's memory and swap. Linux would promise more and end the process when it is used.
std::uint64_t largestReasonableBlock();

// What can still be allocated without harm: the memory that Linux calls available, but not more than is left of the process's
// address-space limit.
std::uint64_t availableMemory();

}   // namespace standin
