// Bumping an object's content modification date.

#include "tests/contract/catalog_fixture.h"
#include "tests/contract/rows.h"

#include <ostream>

namespace
{

using CatalogDates = CatalogTest;

const Calls bumpOfFile = {
    "FSGetCatalogInfo(ref:file, 0x42, info, -, -, parent)",
    "GetUTCDateTime(date, 0)",
    "FSSetCatalogInfo(ref:file, 0x40, info)",
    "FNNotify(ref:folder, 1, 0)",
};

TEST_F(CatalogDates, BumpOfAFileTellsTheWatchersOfItsFolder)
{
    FSCatalogInfo expected = infoOf("file");
    expected.contentModDate = platform.dates.now;
    EXPECT_EQ(FSBumpDate(&file), noErr);
    EXPECT_EQ(platform.calls(), bumpOfFile);
    EXPECT_TRUE(sameBytes(infoOf("file"), expected)) << "something besides the date has changed";
}

TEST_F(CatalogDates, BumpOfAFolderTellsTheWatchersOfTheFolderItself)
{
    EXPECT_EQ(FSBumpDate(&nested), noErr);
    EXPECT_EQ(platform.calls(), (Calls{"FSGetCatalogInfo(ref:nested, 0x42, info, -, -, parent)", "GetUTCDateTime(date, 0)",
                                       "FSSetCatalogInfo(ref:nested, 0x40, info)", "FNNotify(ref:nested, 1, 0)"}));
    EXPECT_EQ(infoOf("nested").contentModDate, platform.dates.now);
}

TEST_F(CatalogDates, BumpOfTheRootTellsTheWatchersOfTheRoot)
{
    EXPECT_EQ(FSBumpDate(&root), noErr);
    EXPECT_EQ(platform.calls().back(), "FNNotify(ref:root, 1, 0)");
}

struct TickCase
{
    const char *name;
    UTCDateTime object, clock, expected;
};

void PrintTo(const TickCase &row, std::ostream *stream)
{
    *stream << row.name;
}

const TickCase tickCases[] = {
    {"ClockIsLater", {1, 1000, 7}, {1, 1001, 7}, {1, 1001, 7}},
    {"ClockIsEarlier", {1, 1000, 7}, {1, 999, 7}, {1, 999, 7}},
    {"SameTickGetsOneSecondMore", {1, 1000, 7}, {1, 1000, 7}, {1, 1001, 7}},
    {"OtherFractionIsAnotherTick", {1, 1000, 7}, {1, 1000, 8}, {1, 1000, 8}},
    {"EarlierFractionIsAnotherTick", {1, 1000, 7}, {1, 1000, 6}, {1, 1000, 6}},
    {"OtherHighSecondsAreAnotherTick", {1, 1000, 7}, {2, 1000, 7}, {2, 1000, 7}},
    {"EarlierHighSecondsAreAnotherTick", {1, 1000, 7}, {0, 1000, 7}, {0, 1000, 7}},
    {"SecondCarriesIntoTheHighPart", {1, 0xFFFFFFFF, 7}, {1, 0xFFFFFFFF, 7}, {2, 0, 7}},
    {"NoCarryOneSecondBefore", {1, 0xFFFFFFFE, 7}, {1, 0xFFFFFFFE, 7}, {1, 0xFFFFFFFF, 7}},
    {"NoCarryWithoutASameTick", {1, 0xFFFFFFFF, 7}, {1, 0xFFFFFFFF, 8}, {1, 0xFFFFFFFF, 8}},
    {"LastDateOfAllWrapsToTheFirst", {0xFFFF, 0xFFFFFFFF, 7}, {0xFFFF, 0xFFFFFFFF, 7}, {0, 0, 7}},
    {"AllZeroIsADateToo", {0, 0, 0}, {0, 0, 0}, {0, 1, 0}},
};

class CatalogTicks : public CatalogTest, public testing::WithParamInterface<TickCase>
{
};

TEST_P(CatalogTicks, NewDateDiffersFromTheOldOne)
{
    infoOf("file").contentModDate = GetParam().object;
    platform.dates.now = GetParam().clock;
    EXPECT_EQ(FSBumpDate(&file), noErr);
    EXPECT_EQ(infoOf("file").contentModDate, GetParam().expected);
    EXPECT_EQ(platform.calls(), bumpOfFile);
}

INSTANTIATE_TEST_SUITE_P(Rows, CatalogTicks, testing::ValuesIn(tickCases), rowName);

TEST_F(CatalogDates, TwoBumpsWithinOneTickGiveTwoDates)
{
    EXPECT_EQ(FSBumpDate(&file), noErr);
    const UInt32 first = infoOf("file").contentModDate.lowSeconds;
    EXPECT_EQ(FSBumpDate(&file), noErr);
    EXPECT_EQ(valueOf(infoOf("file").contentModDate.lowSeconds), first + 1);
}

TEST_F(CatalogDates, DateThatCannotBeWrittenIsNoErrorAndTellsNobody)
{
    const FSCatalogInfo before = infoOf("file");
    for (const OSErr code : {fLckdErr, wPrErr, vLckdErr, afpAccessDenied, OSErr{1}})
    {
        platform.forgetCalls();
        platform.failCall(3, code);
        EXPECT_EQ(FSBumpDate(&file), noErr) << code;
        EXPECT_TRUE(platform.failureReached());
        EXPECT_EQ(platform.calls(), Calls(bumpOfFile.begin(), bumpOfFile.begin() + 3));
        EXPECT_TRUE(sameBytes(infoOf("file"), before));
    }
}

TEST_F(CatalogDates, NotificationThatFailsIsNoError)
{
    platform.failEvery("FNNotify", paramErr);
    EXPECT_EQ(FSBumpDate(&file), noErr);
    EXPECT_EQ(platform.calls(), bumpOfFile);
    EXPECT_EQ(infoOf("file").contentModDate, platform.dates.now);
}

TEST_F(CatalogDates, ClockThatFailsEndsTheBump)
{
    const FSCatalogInfo before = infoOf("file");
    platform.failEvery("GetUTCDateTime", -8850);
    EXPECT_EQ(FSBumpDate(&file), -8850);
    EXPECT_EQ(platform.calls(), Calls(bumpOfFile.begin(), bumpOfFile.begin() + 2));
    EXPECT_TRUE(sameBytes(infoOf("file"), before));
}

// The clock's code has 32 bits and the result 16. A code whose low half is zero reads as success, but it was a failure.
TEST_F(CatalogDates, ClocksWideCodeEndsTheBumpThoughItsLowHalfIsZero)
{
    platform.failEvery("GetUTCDateTime", 0x00010000);
    EXPECT_EQ(FSBumpDate(&file), 0);
    EXPECT_EQ(platform.calls(), Calls(bumpOfFile.begin(), bumpOfFile.begin() + 2));
}

}   // namespace
