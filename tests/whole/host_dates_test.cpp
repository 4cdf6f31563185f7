// Dates of the host as they are typed and shown.

#include "host/dates.h"

#include "tests/whole/host_complaints.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <optional>

namespace
{

using host_tests::complaintOf;
using testing::HasSubstr;

// The local time zone for as long as it lives.
class LocalZone
{
public:
    explicit LocalZone(const char *zone)
    {
        if (const char *before = std::getenv("TZ"))
            before_ = before;
        change(zone);
    }
    ~LocalZone() { change(before_ ? before_->c_str() : nullptr); }

private:
    static void change(const char *zone)
    {
        if (zone != nullptr)
            setenv("TZ", zone, 1);
        else
            unsetenv("TZ");
        tzset();
    }
    std::optional<std::string> before_;
};

// Central European time, written out so that no time zone files are needed.
constexpr const char *centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

constexpr UInt64 secondsFrom1904To1970 = 2082844800;

const UTCDateTime someNow = host::makeDate(0x123456789A, 0x4321);

UTCDateTime readDate(std::string_view text)
{
    return host::dateFromText(text, someNow);
}

struct DateCase
{
    const char *name, *text;
    SInt64 secondsSince1970;
    UInt16 fraction;
};

class HostDates : public testing::TestWithParam<DateCase>
{
};

TEST_P(HostDates, AreRead)
{
    LocalZone zone(centralEurope);
    UTCDateTime date = readDate(GetParam().text);
    EXPECT_EQ(static_cast<SInt64>(host::secondsSince1904(date) - secondsFrom1904To1970), GetParam().secondsSince1970);
    EXPECT_EQ(static_cast<UInt16>(date.fraction), GetParam().fraction);
}

const DateCase dateCases[] = {
    {"Utc", "2001-02-03T04:05:06Z", 981173106, 0},
    {"SmallLetters", "2001-02-03t04:05:06z", 981173106, 0},
    {"BlankForT", "2001-02-03 04:05:06Z", 981173106, 0},
    {"OffsetEast", "2001-02-03T05:05:06+01:00", 981173106, 0},
    {"OffsetWestWithoutColon", "2001-02-02T22:35:06-0530", 981173106, 0},
    {"OffsetHours", "2001-02-03T06:05:06+02", 981173106, 0},
    {"OffsetWithSeconds", "2001-02-03T04:58:34+00:53:28", 981173106, 0},
    {"LocalWinter", "2001-02-03T05:05:06", 981173106, 0},
    {"LocalSummer", "2001-07-03T06:05:06", 994133106, 0},
    {"LocalDayAlone", "2001-02-03", 981154800, 0},
    {"WithoutSeconds", "2001-02-03T04:05Z", 981173100, 0},
    {"Half", "2001-02-03T04:05:06.5Z", 981173106, 0x8000},
    {"CommaForPoint", "2001-02-03T04:05:06,25Z", 981173106, 0x4000},
    {"SmallestFraction", "2001-02-03T04:05:06.0000152587890625Z", 981173106, 1},
    {"FractionStaysInItsSecond", "2001-02-03T04:05:06.9999999Z", 981173106, 0xFFFF},
    {"Leapday", "2000-02-29T00:00:00Z", 951782400, 0},
    {"BeforeTheEpoch", "1904-01-01T00:00:01Z", -2082844799, 0},
    {"YearOfFiveDigits", "12345-01-01T00:00:00Z", 327403382400, 0},
    {"UnixSeconds", "@981173106", 981173106, 0},
    {"UnixFraction", "@981173106.75", 981173106, 0xC000},
    {"UnixNegative", "@-5", -5, 0},
    {"UnixNegativeFraction", "@-5.25", -6, 0xC000},
};

INSTANTIATE_TEST_SUITE_P(Texts, HostDates, testing::ValuesIn(dateCases), [](const auto &row) { return row.param.name; });

TEST(HostDates, NowAndNever)
{
    EXPECT_TRUE(host::sameDate(readDate("now"), someNow));
    EXPECT_TRUE(host::isNever(readDate("never")));
    EXPECT_FALSE(host::isNever(host::makeDate(0, 1)));
    EXPECT_FALSE(host::isNever(host::makeDate(1, 0)));
}

TEST(HostDates, RefuseWhatIsNone)
{
    const char *texts[] = {"",
                           "yesterday",
                           "2001-02-30",
                           "2001-13-01",
                           "2001-00-01",
                           "2001-1-1",
                           "99-01-01",
                           "2001-02-03T24:00:00Z",
                           "2001-02-03T04:60:00Z",
                           "2001-02-03T04:05:60Z",
                           "2001-02-03T04Z",
                           "2001-02-03T04:05:06.Z",
                           "2001-02-03T04:05:06+24:00",
                           "2001-02-03T04:05:06+1",
                           "2001-02-03T04:05:06Zz",
                           "2001-02-03Zulu",
                           "2001-02-03 ",
                           "@",
                           "@12x",
                           "@1.",
                           "Now"};
    for (const char *text : texts)
        EXPECT_THROW(readDate(text), host::UsageError) << text;
}

TEST(HostDates, RefuseWhatIsOutOfRange)
{
    EXPECT_THAT(complaintOf([] { readDate("1903-12-31T23:59:59Z"); }), HasSubstr("range"));
    EXPECT_EQ(host::secondsSince1904(readDate("@281472893865855")), host::lastSecond);
    EXPECT_THAT(complaintOf([] { readDate("@281472893865856"); }), HasSubstr("range"));
}

TEST(HostDates, RefuseLocalTimesThatTheClocksSkip)
{
    LocalZone zone(centralEurope);
    EXPECT_THAT(complaintOf([] { readDate("2024-03-31T02:30:00"); }), HasSubstr("local time zone"));
    EXPECT_NO_THROW(readDate("2024-03-31T02:30:00Z"));
}

TEST(HostDates, AreShownInUtcAndLocally)
{
    LocalZone zone(centralEurope);
    UTCDateTime date = readDate("2001-02-03T04:05:06Z");
    EXPECT_EQ(host::isoUtc(date), "2001-02-03T04:05:06Z");
    EXPECT_EQ(host::isoLocal(date), "2001-02-03T05:05:06+01:00");
    EXPECT_EQ(host::isoLocal(readDate("2001-07-03T04:05:06Z")), "2001-07-03T06:05:06+02:00");
    EXPECT_EQ(host::isoUtc(readDate("@981173106.5")), "2001-02-03T04:05:06.50000Z");
    EXPECT_EQ(host::isoUtc(host::makeDate(0, 0)), "never");
    EXPECT_EQ(host::isoLocal(host::makeDate(0, 0)), "never");
    EXPECT_EQ(host::isoUtc(host::makeDate(0, 1)), "1904-01-01T00:00:00.00002Z");
}

TEST(HostDates, HaveOffsetsOfWestAndOfSeconds)
{
    LocalZone west("NST3:30");
    EXPECT_EQ(host::isoLocal(readDate("2001-02-03T04:05:06Z")), "2001-02-03T00:35:06-03:30");
    LocalZone mean("LMT-0:53:28");
    EXPECT_EQ(host::isoLocal(readDate("2001-02-03T04:05:06Z")), "2001-02-03T04:58:34+00:53:28");
}

TEST(HostDates, WithAnyFractionCanBeTypedAgain)
{
    for (unsigned fraction = 0; fraction <= 0xFFFF; ++fraction)
    {
        UTCDateTime date = host::makeDate(3000000000, static_cast<UInt16>(fraction));
        ASSERT_TRUE(host::sameDate(readDate(host::isoUtc(date)), date)) << fraction;
    }
}

TEST(HostDates, ShownLocallyCanBeTypedAgain)
{
    for (const char *zone : {"UTC0", centralEurope, "NST3:30", "LMT-0:53:28"})
    {
        LocalZone local(zone);
        for (UInt64 seconds = 1; seconds < 0x200000000; seconds += 0x7654321)
        {
            UTCDateTime date = host::makeDate(seconds, static_cast<UInt16>(seconds));
            ASSERT_TRUE(host::sameDate(readDate(host::isoLocal(date)), date)) << zone << " " << seconds;
        }
    }
}

TEST(HostDates, UseAll48Bits)
{
    UTCDateTime date = host::makeDate(0xABCD12345678, 9);
    EXPECT_EQ(static_cast<UInt16>(date.highSeconds), 0xABCD);
    EXPECT_EQ(static_cast<UInt32>(date.lowSeconds), 0x12345678u);
    EXPECT_EQ(host::secondsSince1904(date), 0xABCD12345678u);
}

}   // namespace
