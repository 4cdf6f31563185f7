// The sizes of a file's two forks, and the totals over all of its forks.

#include "tests/contract/catalog_fixture.h"
#include "tests/contract/stack_pattern.h"

namespace
{

using ForksSizes = CatalogTest;

constexpr UInt64 untouchedSize = 0x5A5A5A5A5A5A5A5A;

TEST_F(ForksSizes, BothAreAskedForInOneCall)
{
    infoOf("file").dataLogicalSize = 0x123456789ABCDEF0;
    infoOf("file").rsrcLogicalSize = 0xFEDCBA9876543210;
    UInt64 dataSize = untouchedSize, resourceSize = untouchedSize;
    EXPECT_EQ(FSGetForkSizes(&file, &dataSize, &resourceSize), noErr);
    EXPECT_EQ(dataSize, 0x123456789ABCDEF0u);
    EXPECT_EQ(resourceSize, 0xFEDCBA9876543210u);
    EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:file, 0xC002, info, -, -, -)"});
}

TEST_F(ForksSizes, OnlyWhatIsWantedIsAskedFor)
{
    UInt64 dataSize = untouchedSize, resourceSize = untouchedSize;
    EXPECT_EQ(FSGetForkSizes(&file, &dataSize, nullptr), noErr);
    EXPECT_EQ(FSGetForkSizes(&file, nullptr, &resourceSize), noErr);
    EXPECT_EQ(FSGetForkSizes(&file, nullptr, nullptr), noErr);
    EXPECT_EQ(dataSize, valueOf(infoOf("file").dataLogicalSize));
    EXPECT_EQ(resourceSize, valueOf(infoOf("file").rsrcLogicalSize));
    EXPECT_EQ(platform.calls(),
              (Calls{"FSGetCatalogInfo(ref:file, 0x4002, info, -, -, -)", "FSGetCatalogInfo(ref:file, 0x8002, info, -, -, -)",
                     "FSGetCatalogInfo(ref:file, 0x2, info, -, -, -)"}));
}

TEST_F(ForksSizes, FolderHasNoneAndNothingIsWritten)
{
    UInt64 dataSize = untouchedSize, resourceSize = untouchedSize;
    EXPECT_EQ(FSGetForkSizes(&folder, &dataSize, &resourceSize), notAFileErr);
    EXPECT_EQ(FSGetForkSizes(&folder, nullptr, nullptr), notAFileErr);
    EXPECT_EQ(dataSize, untouchedSize);
    EXPECT_EQ(resourceSize, untouchedSize);
}

TEST_F(ForksSizes, FolderIsToldByOneFlagAlone)
{
    infoOf("file").nodeFlags = 0xFFEF;
    EXPECT_EQ(FSGetForkSizes(&file, nullptr, nullptr), noErr);
    infoOf("file").nodeFlags = 0x0010;
    EXPECT_EQ(FSGetForkSizes(&file, nullptr, nullptr), notAFileErr);
}

TEST_F(ForksSizes, FailureIsThePlatformsAndNothingIsWritten)
{
    UInt64 dataSize = untouchedSize, resourceSize = untouchedSize;
    EXPECT_EQ(FSGetForkSizes(&noObject, &dataSize, &resourceSize), errFSBadFSRef);
    platform.failCall(1, afpAccessDenied);
    EXPECT_EQ(FSGetForkSizes(&folder, &dataSize, &resourceSize), afpAccessDenied);
    EXPECT_EQ(dataSize, untouchedSize);
    EXPECT_EQ(resourceSize, untouchedSize);
}

class ForksTotals : public CatalogTest
{
protected:
    OSErr getTotals(const FSRef &ref) { return FSGetTotalForkSizes(&ref, &logical, &physical, &count); }

    std::vector<ForkSizes> &forks = platform.forks.sizes["file"];
    UInt64 logical = untouchedSize, physical = untouchedSize;
    UInt32 count = 0x5A5A5A5A;
};

const std::string nextFork = "FSIterateForks(ref:file, iterator, -, size, physical)";

TEST_F(ForksTotals, AreThoseOfAllForksTogether)
{
    forks = {{100, 4096}, {0, 0}, {5000, 8192}};
    EXPECT_EQ(getTotals(file), noErr);
    EXPECT_EQ(logical, 5100u);
    EXPECT_EQ(physical, 12288u);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(platform.calls(), (Calls{nextFork, nextFork, nextFork, nextFork}));
}

TEST_F(ForksTotals, FileWithADataForkAloneHasOne)
{
    forks = {{12, 4096}};
    EXPECT_EQ(getTotals(file), noErr);
    EXPECT_EQ(logical, 12u);
    EXPECT_EQ(physical, 4096u);
    EXPECT_EQ(count, 1u);
}

TEST_F(ForksTotals, FileWithoutForksHasZeroOfEach)
{
    EXPECT_EQ(getTotals(file), noErr);
    EXPECT_EQ(logical, 0u);
    EXPECT_EQ(physical, 0u);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(platform.calls(), Calls{nextFork});
}

TEST_F(ForksTotals, SumsCarryBeyondThirtyTwoBits)
{
    forks = {{0xFFFFFFFF, 0xFFFFF000}, {1, 0x1000}, {0x0000000700000000, 0x0000000A00000005}};
    EXPECT_EQ(getTotals(file), noErr);
    EXPECT_EQ(logical, 0x0000000800000000u);
    EXPECT_EQ(physical, 0x0000000B00000005u);
}

TEST_F(ForksTotals, SumsWrapAroundAtSixtyFourBits)
{
    forks = {{0x7FFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF}, {0x7FFFFFFFFFFFFFFF, 0x10}, {5, 0}};
    EXPECT_EQ(getTotals(file), noErr);
    EXPECT_EQ(logical, 3u);
    EXPECT_EQ(physical, 0xFu);
}

TEST_F(ForksTotals, OnlyWhatIsWantedIsAskedForAndWritten)
{
    forks = {{100, 4096}, {5000, 8192}};
    for (int wanted = 0; wanted < 8; ++wanted)
    {
        const bool wantsLogical = wanted & 1, wantsPhysical = wanted & 2, wantsCount = wanted & 4;
        platform.forgetCalls();
        logical = physical = untouchedSize;
        count = 0x5A5A5A5A;
        EXPECT_EQ(FSGetTotalForkSizes(&file, wantsLogical ? &logical : nullptr, wantsPhysical ? &physical : nullptr,
                                      wantsCount ? &count : nullptr),
                  noErr);
        EXPECT_EQ(logical, wantsLogical ? 5100u : untouchedSize);
        EXPECT_EQ(physical, wantsPhysical ? 12288u : untouchedSize);
        EXPECT_EQ(count, wantsCount ? 2u : 0x5A5A5A5A);
        const std::string call = std::string("FSIterateForks(ref:file, iterator, -, ") + (wantsLogical ? "size, " : "-, ") +
                                 (wantsPhysical ? "physical)" : "-)");
        EXPECT_EQ(platform.calls(), (Calls{call, call, call}));
    }
}

TEST_F(ForksTotals, PartialTotalsStandAfterAFailure)
{
    forks = {{100, 4096}, {5000, 8192}, {7, 7}};
    const UInt64 logicalBefore[] = {0, 100, 5100, 5107}, physicalBefore[] = {0, 4096, 12288, 12295};
    for (UInt32 forksBefore = 0; forksBefore < 4; ++forksBefore)
    {
        logical = physical = untouchedSize;
        count = 0x5A5A5A5A;
        platform.failCall(static_cast<int>(forksBefore) + 1, ioErr);
        EXPECT_EQ(getTotals(file), ioErr);
        EXPECT_EQ(logical, logicalBefore[forksBefore]);
        EXPECT_EQ(physical, physicalBefore[forksBefore]);
        EXPECT_EQ(count, forksBefore);
    }
}

// Only one code tells the end of the forks; the codes next to it, and those that end other things, are failures.
TEST_F(ForksTotals, NoOtherCodeIsTheEnd)
{
    forks = {{100, 4096}};
    for (const OSErr code : {OSErr{-1416}, OSErr{-1418}, eofErr, nsvErr, fnfErr, OSErr{1417}, OSErr{1}})
    {
        platform.forks.endOfForks = code;
        EXPECT_EQ(getTotals(file), code);
        EXPECT_EQ(count, 1u);
    }
}

TEST_F(ForksTotals, FolderIsAskedForItsForksToo)
{
    EXPECT_EQ(getTotals(folder), errFSForkNotFound);
    EXPECT_EQ(platform.calls(), Calls{"FSIterateForks(ref:folder, iterator, -, size, physical)"});
    EXPECT_EQ(logical, 0u);
    EXPECT_EQ(physical, 0u);
    EXPECT_EQ(count, 0u);
}

TEST_F(ForksTotals, IterationBeginsAnewWhateverLayInItsPlace)
{
    forks = {{100, 4096}};
    EXPECT_EQ(onPatternedStack([&] { return getTotals(file); }), noErr);
    EXPECT_EQ(count, 1u);
}

}   // namespace
