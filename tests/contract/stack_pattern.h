// A function called on a stack that was filled with a pattern: what it leaves unset in a local variable then holds the
// pattern, and not by chance a zero.

#pragma once

#include "platform/types.h"

constexpr UInt8 stackPattern = 0xA5;

[[gnu::noinline]] inline void fillStackWithPattern()
{
    volatile UInt8 area[16384];
    for (volatile UInt8 &byte : area)
        byte = stackPattern;
}

// Calls from deep inside the patterned part, clear of what the filling itself left at its upper end.
template <typename Function>
[[gnu::noinline]] auto callBelow(const Function &function)
{
    [[maybe_unused]] volatile UInt8 room[1024];
    room[0] = 0;
    const auto result = function();
    room[1023] = 0;
    return result;
}

template <typename Function>
auto onPatternedStack(const Function &function)
{
    fillStackWithPattern();
    return callBelow(function);
}
