// The platform's dates (seconds since 1904 and 1/65536 s) ↔ Linux times (seconds since 1970 and nanoseconds) ↔ sidecar dates (signed seconds from 2000).
//
// A fraction becomes nanoseconds by rounding up and comes back by rounding down, so that it survives the round trip.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <ctime>

namespace standin
{

constexpr std::int64_t secondsFrom1904To1970 = 2082844800;
constexpr std::int64_t secondsFrom1970To2000 = 946684800;
constexpr std::int32_t unknownSidecarDate = INT32_MIN;   // 0x80000000

// A time before 1904 becomes the zero date, one after the last date (48 bits of seconds) the last. Nanoseconds out of range are clamped.
UTCDateTime dateFromLinux(std::timespec time);

// Every date has a Linux time where time_t has 64 bits.
std::timespec linuxFromDate(const UTCDateTime &date);

// Whole seconds; the fraction is dropped. The zero date ("never") becomes unknownSidecarDate and back. A real date never becomes unknownSidecarDate:
// what is too early becomes the second after it (13 December 1931), what is too late the last one (19 January 2068).
std::int32_t sidecarFromDate(const UTCDateTime &date);
UTCDateTime dateFromSidecar(std::int32_t seconds);

bool isZeroDate(const UTCDateTime &date);   // all three fields are 0
bool sameDate(const UTCDateTime &a, const UTCDateTime &b);

// Whole seconds agree (all that a sidecar date can say).
bool sameSecond(const UTCDateTime &a, const UTCDateTime &b);

}   // namespace standin
