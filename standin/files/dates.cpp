#include "standin/files/dates.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr std::int64_t fractionsPerSecond = 65536;
constexpr std::int64_t nanosecondsPerSecond = 1000000000;
constexpr std::int64_t secondsFrom1904To2000 = secondsFrom1904To1970 + secondsFrom1970To2000;
constexpr std::int64_t lastSecond = 0xFFFFFFFFFFFF;   // 48 bits, since 1904

std::int64_t secondsSince1904(const UTCDateTime &date)
{
    return (static_cast<std::int64_t>(date.highSeconds) << 32) | static_cast<std::int64_t>(date.lowSeconds);
}

UTCDateTime makeDate(std::int64_t seconds, std::int64_t fraction)
{
    UTCDateTime date = {};
    date.highSeconds = static_cast<UInt16>(seconds >> 32);
    date.lowSeconds = static_cast<UInt32>(seconds & 0xFFFFFFFF);
    date.fraction = static_cast<UInt16>(fraction);
    return date;
}

}   // namespace

UTCDateTime dateFromLinux(std::timespec time)
{
    // Compared on the Linux side, where no sum can overflow.
    const std::int64_t seconds = time.tv_sec;
    if (seconds < -secondsFrom1904To1970)
        return makeDate(0, 0);
    if (seconds > lastSecond - secondsFrom1904To1970)
        return makeDate(lastSecond, fractionsPerSecond - 1);
    const std::int64_t nanoseconds = std::clamp<std::int64_t>(time.tv_nsec, 0, nanosecondsPerSecond - 1);
    return makeDate(seconds + secondsFrom1904To1970, nanoseconds * fractionsPerSecond / nanosecondsPerSecond);
}

std::timespec linuxFromDate(const UTCDateTime &date)
{
    const std::int64_t scaled = static_cast<std::int64_t>(date.fraction) * nanosecondsPerSecond;
    std::timespec time = {};
    time.tv_sec = static_cast<std::time_t>(secondsSince1904(date) - secondsFrom1904To1970);
    time.tv_nsec = static_cast<long>((scaled + fractionsPerSecond - 1) / fractionsPerSecond);
    return time;
}

std::int32_t sidecarFromDate(const UTCDateTime &date)
{
    if (isZeroDate(date))
        return unknownSidecarDate;
    const std::int64_t seconds = secondsSince1904(date) - secondsFrom1904To2000;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(seconds, unknownSidecarDate + 1, INT32_MAX));
}

UTCDateTime dateFromSidecar(std::int32_t seconds)
{
    if (seconds == unknownSidecarDate)
        return makeDate(0, 0);
    return makeDate(seconds + secondsFrom1904To2000, 0);
}

bool isZeroDate(const UTCDateTime &date)
{
    return date.highSeconds == 0 && date.lowSeconds == 0 && date.fraction == 0;
}

bool sameDate(const UTCDateTime &a, const UTCDateTime &b)
{
    return sameSecond(a, b) && a.fraction == b.fraction;
}

bool sameSecond(const UTCDateTime &a, const UTCDateTime &b)
{
    return a.highSeconds == b.highSeconds && a.lowSeconds == b.lowSeconds;
}

}   // namespace standin
