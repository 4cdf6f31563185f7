// What the layer asks Linux about mounts, thin as in linux_calls.h.
#pragma once

#include "standin/files/linux_calls.h"

#include <string>
#include <vector>

namespace standin::linux_calls
{

// The kernel's list of what is mounted, as text. 0 or a negative errno.
int readMountList(std::string &text);

// Runs a program to its end: `words` are its absolute path and its arguments, which no shell looks at. It has an environment of its own, reads nothing,
// and what it prints goes nowhere. Gives its exit status, 256 if a signal ended it or nobody can tell how it ended, or a negative errno if it could not
// be started.
int runProgram(const std::vector<std::string> &words);

// Copies bytes of this process's own memory, as many as there are: what lies beyond the end of the readable memory is not touched.
// The number of bytes or a negative errno.
ssize_t readOwnMemory(const void *address, std::span<std::uint8_t> bytes);

}   // namespace standin::linux_calls
