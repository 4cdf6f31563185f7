// Linux calls that only copying whole files takes. As in linux_calls.h: 0 or more on success, else the negative errno.
#pragma once

#include "standin/files/linux_calls.h"

namespace standin::linux_calls
{

int shareBlocks(int from, int to);   // the whole file, without moving a byte, on disks that can

// Both copy at most that many bytes, maybe fewer; 0 at the end of the source.
ssize_t copyRange(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length);
ssize_t sendBytes(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length);

// Where data begin or end, from an offset on. -ENXIO if there are no more data.
std::int64_t nextData(int descriptor, std::uint64_t offset);
std::int64_t nextHole(int descriptor, std::uint64_t offset);

int flushToDisk(int descriptor);
int giveName(int descriptor, int folder, const char *name);   // to a file that has none; refuses to replace
int makeSymbolicLink(const char *target, int folder, const char *name);

// Through a descriptor that is no O_PATH one: cheaper than by place.
int setModeOf(int descriptor, std::uint32_t mode);
ssize_t listAttributesOf(int descriptor, std::span<char> names);
ssize_t getAttributeOf(int descriptor, const char *attribute, std::span<std::uint8_t> value);
int setAttributeOf(int descriptor, const char *attribute, std::span<const std::uint8_t> value);

}   // namespace standin::linux_calls
