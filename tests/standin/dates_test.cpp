// The three ways to write a date down: the platform's, Linux's and a sidecar's.
#include "standin/files/dates.h"

#include <gtest/gtest.h>

namespace
{

using namespace standin;

std::timespec linuxTime(std::int64_t seconds, long nanoseconds)
{
    std::timespec time = {};
    time.tv_sec = static_cast<std::time_t>(seconds);
    time.tv_nsec = nanoseconds;
    return time;
}

struct Moment
{
    const char *name;
    std::int64_t unixSeconds;
    UTCDateTime date;
    std::int32_t sidecar;
};

// Worked out with the calendar, not with the code under test.
const Moment moments[] = {
    {"OneSecondInto1904", -2082844799, {0, 1, 0}, INT32_MIN + 1},
    {"LastSecondTooEarlyForASidecar", -1200798849, {0, 882045951, 0}, INT32_MIN + 1},   // would be 0x80000000
    {"FirstOfASidecar", -1200798847, {0, 882045953, 0}, INT32_MIN + 1},
    {"SecondOfASidecar", -1200798846, {0, 882045954, 0}, INT32_MIN + 2},
    {"BeforeLinux", -1, {0, 2082844799, 0}, -946684801},
    {"LinuxBegins", 0, {0, 2082844800, 0}, -946684800},
    {"BeforeSidecars", 946684799, {0, 3029529599, 0}, -1},
    {"SidecarsBegin", 946684800, {0, 3029529600, 0}, 0},
    {"LastLowSecond", 2212122495, {0, 0xFFFFFFFF, 0}, 1265437695},   // 2040-02-06 06:28:15
    {"FirstHighSecond", 2212122496, {1, 0, 0}, 1265437696},
    {"LastOf31Bits", 2147483647, {0, 4230328447, 0}, 1200798847},   // 2038-01-19 03:14:07
    {"LastOfASidecar", 3094168447, {1, 882045951, 0}, INT32_MAX},   // 2068-01-19 03:14:07
    {"TooLateForASidecar", 3094168448, {1, 882045952, 0}, INT32_MAX},
    {"LastOf32Bits", 4294967295, {1, 2082844799, 0}, INT32_MAX},   // 2106-02-07 06:28:15
    {"PastLastOf32Bits", 4294967296, {1, 2082844800, 0}, INT32_MAX},
    {"LastSecondOfAll", 281472893865855, {0xFFFF, 0xFFFFFFFF, 0}, INT32_MAX},
};

class DatesAtBoundaries : public testing::TestWithParam<Moment>
{
};

TEST_P(DatesAtBoundaries, Linux)
{
    const Moment &moment = GetParam();
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(moment.unixSeconds, 0)), moment.date));
    const std::timespec time = linuxFromDate(moment.date);
    EXPECT_EQ(time.tv_sec, moment.unixSeconds);
    EXPECT_EQ(time.tv_nsec, 0);
}

TEST_P(DatesAtBoundaries, Sidecar)
{
    const Moment &moment = GetParam();
    EXPECT_EQ(sidecarFromDate(moment.date), moment.sidecar);
    const bool fits = moment.unixSeconds > -1200798848 && moment.unixSeconds <= 3094168447;
    EXPECT_EQ(sameDate(dateFromSidecar(moment.sidecar), moment.date), fits);
}

TEST_P(DatesAtBoundaries, FractionsStayInTheirSecond)
{
    const Moment &moment = GetParam();
    UTCDateTime date = moment.date;
    date.fraction = 0xFFFF;
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(moment.unixSeconds, 999999999)), date));
    EXPECT_EQ(linuxFromDate(date).tv_sec, moment.unixSeconds);
    EXPECT_EQ(sidecarFromDate(date), moment.sidecar);
}

INSTANTIATE_TEST_SUITE_P(Rows, DatesAtBoundaries, testing::ValuesIn(moments), [](const auto &row) { return row.param.name; });

TEST(Dates, EveryFractionSurvivesLinux)
{
    for (unsigned fraction = 0; fraction <= 0xFFFF; ++fraction)
    {
        const UTCDateTime date = {1, 5, static_cast<UInt16>(fraction)};
        const std::timespec time = linuxFromDate(date);
        ASSERT_GE(time.tv_nsec, 0) << fraction;
        ASSERT_LT(time.tv_nsec, 1000000000) << fraction;
        ASSERT_TRUE(sameDate(dateFromLinux(time), date)) << fraction;
    }
}

TEST(Dates, FractionsAreRoundedUpAndNanosecondsDown)
{
    EXPECT_EQ(linuxFromDate({0, 0, 1}).tv_nsec, 15259);   // 15258.789…
    EXPECT_EQ(linuxFromDate({0, 0, 0x8000}).tv_nsec, 500000000);
    EXPECT_EQ(linuxFromDate({0, 0, 0xFFFF}).tv_nsec, 999984742);   // …741.2
    EXPECT_EQ(dateFromLinux(linuxTime(0, 15258)).fraction, 0);
    EXPECT_EQ(dateFromLinux(linuxTime(0, 15259)).fraction, 1);
    EXPECT_EQ(dateFromLinux(linuxTime(0, 999999999)).fraction, 0xFFFF);
}

TEST(Dates, TimesOutsideAreClamped)
{
    const UTCDateTime zero = {0, 0, 0}, last = {0xFFFF, 0xFFFFFFFF, 0xFFFF};
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(-2082844800, 0)), zero));
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(-2082844801, 999999999)), zero));
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(INT64_MIN, 5)), zero));
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(281472893865856, 0)), last));
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(INT64_MAX, 0)), last));
    EXPECT_EQ(dateFromLinux(linuxTime(0, -1)).fraction, 0);
    EXPECT_TRUE(sameDate(dateFromLinux(linuxTime(0, 1000000000)), {0, 2082844800, 0xFFFF}));
}

TEST(Dates, ZeroMeansNeverAndIsUnknownInASidecar)
{
    EXPECT_EQ(sidecarFromDate({0, 0, 0}), unknownSidecarDate);
    EXPECT_TRUE(isZeroDate(dateFromSidecar(unknownSidecarDate)));
}

TEST(Dates, OnlyZeroIsZero)
{
    EXPECT_TRUE(isZeroDate({0, 0, 0}));
    for (const UTCDateTime &date : {UTCDateTime{1, 0, 0}, UTCDateTime{0, 1, 0}, UTCDateTime{0, 0, 1}})
    {
        EXPECT_FALSE(isZeroDate(date));
        EXPECT_NE(sidecarFromDate(date), unknownSidecarDate);
    }
}

TEST(Dates, EverySidecarDateComesBack)
{
    for (std::int64_t seconds = INT32_MIN; seconds <= INT32_MAX; seconds += 65521)
    {
        const auto sidecar = static_cast<std::int32_t>(seconds);
        ASSERT_EQ(sidecarFromDate(dateFromSidecar(sidecar)), sidecar);
    }
    EXPECT_EQ(sidecarFromDate(dateFromSidecar(INT32_MAX)), INT32_MAX);
}

TEST(Dates, ComparedWithAndWithoutTheFraction)
{
    const UTCDateTime date = {1, 2, 3};
    EXPECT_TRUE(sameDate(date, {1, 2, 3}));
    EXPECT_TRUE(sameSecond(date, {1, 2, 4}));
    EXPECT_FALSE(sameDate(date, {1, 2, 4}));
    EXPECT_FALSE(sameSecond(date, {1, 3, 3}));
    EXPECT_FALSE(sameSecond(date, {2, 2, 3}));
    EXPECT_FALSE(sameDate(date, {2, 2, 3}));
}

}   // namespace
