// Date and time.

#pragma once

#include "platform/types.h"

#pragma pack(push, 2)

// Seconds since 1904-01-01 00:00 UTC, 48 bits of them, and a fraction in 1/65536 s.
struct UTCDateTime
{
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
};

#pragma pack(pop)

constexpr OptionBits kUTCDefaultOptions = 0;

#pragma GCC visibility push(default)
extern "C"
{

OSStatus GetUTCDateTime(UTCDateTime *utc, OptionBits options);
}
#pragma GCC visibility pop
