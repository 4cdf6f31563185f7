#include "host/dates.h"

#include "host/usage_error.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <optional>

namespace host
{

namespace
{

constexpr long long secondsFrom1904To1970 = 2082844800;
constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 3600;

// Reads a text from left to right. A part that is not there leaves the reader where it was.
class Reader
{
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    bool take(char character)
    {
        if (!rest_.starts_with(character))
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    // The number that the next digits make, if there are at least `fewest` and at most `most` of them.
    std::optional<long long> digits(std::size_t fewest, std::size_t most)
    {
        std::size_t count = 0;
        while (count < rest_.size() && count <= most && rest_[count] >= '0' && rest_[count] <= '9')
            ++count;
        if (count < fewest || count > most)
            return std::nullopt;
        long long number = 0;
        std::from_chars(rest_.data(), rest_.data() + count, number);
        rest_.remove_prefix(count);
        return number;
    }

    // A point or comma and digits as 1/65536 s, to the nearest. It stays within its second. Without a point it is 0.
    std::optional<UInt16> fraction()
    {
        if (!take('.') && !take(','))
            return UInt16(0);
        double value = 0;
        double place = 0.1;
        std::size_t count = 0;
        for (; count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9'; ++count, place /= 10)
            value += (rest_[count] - '0') * place;
        if (count == 0)
            return std::nullopt;
        rest_.remove_prefix(count);
        return static_cast<UInt16>(std::fmin(std::round(value * 65536), 65535));
    }

private:
    std::string_view rest_;
};

struct Calendar
{
    long long year, month, day;
    long long hour = 0, minute = 0, second = 0;
    UInt16 fraction = 0;
};

bool isReal(const Calendar &calendar)
{
    std::chrono::year_month_day date{std::chrono::year(static_cast<int>(calendar.year)),
                                     std::chrono::month(static_cast<unsigned>(calendar.month)),
                                     std::chrono::day(static_cast<unsigned>(calendar.day))};
    return date.ok() && calendar.hour < 24 && calendar.minute < 60 && calendar.second < 60;
}

// HH:MM, then perhaps :SS and a fraction.
bool readTime(Reader &reader, Calendar &calendar)
{
    std::optional<long long> hour = reader.digits(2, 2);
    if (!hour || !reader.take(':'))
        return false;
    std::optional<long long> minute = reader.digits(2, 2);
    if (!minute)
        return false;
    calendar.hour = *hour;
    calendar.minute = *minute;
    if (!reader.take(':'))
        return true;
    std::optional<long long> second = reader.digits(2, 2);
    std::optional<UInt16> fraction = second ? reader.fraction() : std::nullopt;
    if (!fraction)
        return false;
    calendar.second = *second;
    calendar.fraction = *fraction;
    return true;
}

std::optional<Calendar> readCalendar(Reader &reader)
{
    std::optional<long long> year = reader.digits(4, 5);
    std::optional<long long> month = year && reader.take('-') ? reader.digits(2, 2) : std::nullopt;
    std::optional<long long> day = month && reader.take('-') ? reader.digits(2, 2) : std::nullopt;
    if (!day || *year > 32767)
        return std::nullopt;
    Calendar calendar{*year, *month, *day};
    bool timeFollows = reader.take('T') || reader.take('t') || reader.take(' ');
    if (timeFollows && !readTime(reader, calendar))
        return std::nullopt;
    return isReal(calendar) ? std::optional(calendar) : std::nullopt;
}

// Seconds east of Greenwich after a sign: HH, HHMM, HH:MM or, as local mean times need it, HH:MM:SS.
std::optional<long long> readOffset(Reader &reader)
{
    bool west = reader.take('-');
    if (!west && !reader.take('+'))
        return std::nullopt;
    std::optional<long long> hours = reader.digits(2, 2);
    std::optional<long long> minutes = 0;
    std::optional<long long> seconds = 0;
    if (std::optional<long long> both = hours ? std::nullopt : reader.digits(4, 4))
    {
        hours = *both / 100;
        minutes = *both % 100;
    }
    else if (hours && reader.take(':'))
    {
        minutes = reader.digits(2, 2);
        seconds = minutes && reader.take(':') ? reader.digits(2, 2) : seconds;
    }
    if (!hours || !minutes || !seconds || *hours > 23 || *minutes > 59 || *seconds > 59)
        return std::nullopt;
    long long offset = *hours * secondsPerHour + *minutes * secondsPerMinute + *seconds;
    return west ? -offset : offset;
}

std::tm systemTime(const Calendar &calendar)
{
    std::tm time = {};
    time.tm_year = static_cast<int>(calendar.year - 1900);
    time.tm_mon = static_cast<int>(calendar.month - 1);
    time.tm_mday = static_cast<int>(calendar.day);
    time.tm_hour = static_cast<int>(calendar.hour);
    time.tm_min = static_cast<int>(calendar.minute);
    time.tm_sec = static_cast<int>(calendar.second);
    return time;
}

// Seconds since 1970. Nothing if the clocks of this time zone jump over that time.
std::optional<long long> localSeconds(const Calendar &calendar)
{
    std::tm time = systemTime(calendar);
    time.tm_isdst = -1;
    std::tm asked = time;
    std::time_t seconds = std::mktime(&time);
    if (time.tm_mday != asked.tm_mday || time.tm_hour != asked.tm_hour || time.tm_min != asked.tm_min)
        return std::nullopt;
    return seconds;
}

[[noreturn]] void refuse(std::string_view text, const char *reason)
{
    throw UsageError("\"" + std::string(text) + "\" " + reason);
}

UTCDateTime dateInRange(std::string_view text, long long secondsSince1970, UInt16 fraction)
{
    long long latest = static_cast<long long>(lastSecond) - secondsFrom1904To1970;
    if (secondsSince1970 < -secondsFrom1904To1970 || secondsSince1970 > latest)
        refuse(text, "is outside the range of dates, which begins with 1904");
    return makeDate(static_cast<UInt64>(secondsSince1970 + secondsFrom1904To1970), fraction);
}

UTCDateTime dateFromUnixSeconds(std::string_view text)
{
    Reader reader(text.substr(1));
    bool negative = reader.take('-');
    std::optional<long long> seconds = reader.digits(1, 15);
    std::optional<UInt16> fraction = seconds ? reader.fraction() : std::nullopt;
    if (!fraction || !reader.atEnd())
        refuse(text, "is not @ and seconds since 1970, as in @981173106 or @981173106.5");
    if (!negative)
        return dateInRange(text, *seconds, *fraction);
    if (*fraction != 0)   // the fraction of a date counts forwards, also before 1970
        return dateInRange(text, -*seconds - 1, static_cast<UInt16>(65536 - *fraction));
    return dateInRange(text, -*seconds, 0);
}

UTCDateTime dateFromCalendar(std::string_view text)
{
    Reader reader(text);
    std::optional<Calendar> calendar = readCalendar(reader);
    if (!calendar)
        refuse(text, "is no date; dates look like 2001-02-03, 2001-02-03T04:05:06.5+01:00, @981173106, now or never");
    if (reader.atEnd())
    {
        std::optional<long long> seconds = localSeconds(*calendar);
        if (!seconds)
            refuse(text, "does not exist in the local time zone, whose clocks skip it");
        return dateInRange(text, *seconds, calendar->fraction);
    }
    std::optional<long long> offset = reader.take('Z') || reader.take('z') ? 0 : readOffset(reader);
    if (!offset || !reader.atEnd())
        refuse(text, "does not end as a date does: with Z, with an offset such as +01:00, or with nothing for local time");
    std::tm time = systemTime(*calendar);
    return dateInRange(text, timegm(&time) - *offset, calendar->fraction);
}

std::string isoDateAndTime(const UTCDateTime &date, const std::tm &time)
{
    char text[80];
    int length = std::snprintf(text, sizeof text, "%04lld-%02d-%02dT%02d:%02d:%02d", time.tm_year + 1900LL, time.tm_mon + 1, time.tm_mday,
                               time.tm_hour, time.tm_min, time.tm_sec);
    if (date.fraction != 0)
        std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), ".%05d",
                      static_cast<int>(std::lround(date.fraction / 65536.0 * 100000)));
    return text;
}

std::time_t systemSeconds(const UTCDateTime &date)
{
    return static_cast<std::time_t>(secondsSince1904(date)) - secondsFrom1904To1970;
}

std::string offsetText(long secondsEast)
{
    char text[60];
    long seconds = std::labs(secondsEast);
    int length = std::snprintf(text, sizeof text, "%c%02ld:%02ld", secondsEast < 0 ? '-' : '+', seconds / secondsPerHour,
                               seconds / secondsPerMinute % 60);
    if (seconds % secondsPerMinute != 0)   // local mean times, before there were time zones
        std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), ":%02ld", seconds % secondsPerMinute);
    return text;
}

}   // namespace

UTCDateTime makeDate(UInt64 secondsSince1904, UInt16 fraction)
{
    UTCDateTime date;
    date.highSeconds = static_cast<UInt16>(secondsSince1904 >> 32);
    date.lowSeconds = static_cast<UInt32>(secondsSince1904);
    date.fraction = fraction;
    return date;
}

UInt64 secondsSince1904(const UTCDateTime &date)
{
    return UInt64(date.highSeconds) << 32 | date.lowSeconds;
}

bool isNever(const UTCDateTime &date)
{
    return secondsSince1904(date) == 0 && date.fraction == 0;
}

bool sameDate(const UTCDateTime &one, const UTCDateTime &other)
{
    return secondsSince1904(one) == secondsSince1904(other) && one.fraction == other.fraction;
}

UTCDateTime dateFromText(std::string_view text, const UTCDateTime &now)
{
    if (text == "now")
        return now;
    if (text == "never")
        return makeDate(0, 0);
    return text.starts_with('@') ? dateFromUnixSeconds(text) : dateFromCalendar(text);
}

std::string isoUtc(const UTCDateTime &date)
{
    if (isNever(date))
        return "never";
    std::time_t seconds = systemSeconds(date);
    std::tm time = {};
    gmtime_r(&seconds, &time);
    return isoDateAndTime(date, time) + "Z";
}

std::string isoLocal(const UTCDateTime &date)
{
    if (isNever(date))
        return "never";
    std::time_t seconds = systemSeconds(date);
    std::tm time = {};
    localtime_r(&seconds, &time);
    return isoDateAndTime(date, time) + offsetText(time.tm_gmtoff);
}

}   // namespace host
