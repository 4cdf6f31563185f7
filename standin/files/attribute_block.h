// The attributes that macOS keeps behind the Finder information in entry 9 of a sidecar. We do not read them, but their offsets count from the start
// of the file: where the entry moves, they move along.
#pragma once

#include <cstdint>
#include <span>

namespace standin
{

// Adds `distance` to every offset of the attribute block of an entry 9. An entry without a block, or with one that makes no sense, stays as it is.
void moveAttributeBlock(std::span<std::uint8_t> finderInfoEntry, std::int64_t distance);

}   // namespace standin
