// Descriptors of folders on mounted disks, which keep a disk from being unmounted: they are given up when nobody has used them for a second.
//
// As long as any is kept a thread looks after them a few times a second; it ends with the last one. Descriptors on the startup volume and on directory
// volumes are none of its business: those stay mounted anyway.
#pragma once

#include <cstddef>
#include <cstdint>

namespace standin
{

constexpr std::int64_t longestIdleMilliseconds = 1000;

// Says that a descriptor on a mounted disk is kept from now on. A table that keeps descriptors may be locked meanwhile.
void noteKeptFolder();

// What the thread does each time it looks: gives up what is idle. Gives how many descriptors stay. fork() waits until it is done: a child would get
// tables locked for ever, by a thread that it lacks.
std::size_t closeIdleFolders();

}   // namespace standin
