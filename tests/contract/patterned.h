// Outputs filled with a pattern that no call writes: shows which of them were written, and which were not.

#pragma once

#include "platform/platform.h"

#include <cstring>
#include <type_traits>

template <typename Record>
struct Patterned : Record
{
    static_assert(std::is_trivially_copyable_v<Record>);

    Patterned() { std::memset(static_cast<void *>(this), pattern, sizeof *this); }

    bool untouched() const { return *this == Patterned(); }

    // Byte by byte: nothing else was written than what the other one was given.
    bool operator==(const Patterned &other) const { return std::memcmp(this, &other, sizeof other) == 0; }

    static constexpr UInt8 pattern = 0x5A;
};
