// Dates as people type and read them. A date of the platform counts seconds since 1904-01-01 00:00 UTC and 1/65536 s; all zero is "never".
#pragma once

#include "platform/dates.h"

#include <string>
#include <string_view>

namespace host
{

constexpr UInt64 lastSecond = 0xFFFFFFFFFFFF;   // the seconds of a date have 48 bits

UTCDateTime makeDate(UInt64 secondsSince1904, UInt16 fraction);
UInt64 secondsSince1904(const UTCDateTime &date);
bool isNever(const UTCDateTime &date);
bool sameDate(const UTCDateTime &one, const UTCDateTime &other);

// Reads one of
//   now, never
//   @SECONDS since 1970, with a fraction if need be
//   YYYY-MM-DD, then perhaps T or a blank and HH:MM, :SS and a fraction, then perhaps Z or an offset such as +01:00
// Without Z and offset it is the local time of this machine. A fraction goes to the nearest 1/65536 within its second.
// Throws UsageError, also for what lies outside the platform's range or does not exist in the local time zone.
UTCDateTime dateFromText(std::string_view text, const UTCDateTime &now);

// 2001-02-03T04:05:06Z; a fraction follows the seconds with five digits, which tell any 1/65536 from the next. Zero is "never".
std::string isoUtc(const UTCDateTime &date);

// The same in local time, with its offset: 2001-02-03T05:05:06+01:00.
std::string isoLocal(const UTCDateTime &date);

}   // namespace host
