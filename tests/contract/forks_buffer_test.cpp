// The buffer for copying: how much is asked for, and what is made of it when memory is short.

#include "files/fstoolkit.h"
#include "tests/contract/platform_double.h"
#include "tests/contract/rows.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{

// As a line shows it: from 2 gigabytes on, a Size of 32 bits is negative.
std::string newBlock(UInt32 size)
{
    return "NewPtr(" + decimal(static_cast<Size>(size)) + ")";
}

constexpr UInt32 untouchedSize = 0x5A5A5A5A;

struct RequestCase
{
    const char *name;
    UInt32 wanted, given;
};

void PrintTo(const RequestCase &row, std::ostream *stream)
{
    *stream << row.name;
}

const RequestCase requestCases[] = {
    {"Nothing", 0, 4096},
    {"OneByte", 1, 4096},
    {"AHundred", 100, 4096},
    {"OneBelowABlock", 4095, 4096},
    {"ABlock", 4096, 4096},
    {"OneAboveABlock", 4097, 4096},
    {"OneBelowTwoBlocks", 8191, 4096},
    {"TwoBlocks", 8192, 8192},
    {"TenThousand", 10000, 8192},
    {"AMebibyteAndSome", 1049000, 1048576},
    {"BeyondTwoGigabytes", 0x80000FFF, 0x80000000},
    {"AllThereIs", 0xFFFFFFFF, 0xFFFFF000},
};

class ForksBufferRequest : public testing::TestWithParam<RequestCase>
{
protected:
    PlatformDouble platform;
};

TEST_P(ForksBufferRequest, IsRoundedDownToWholeBlocksAndIsAtLeastOne)
{
    platform.blocks.largestGiven = 0xFFFFFFFF;
    UInt32 size = untouchedSize;
    const Ptr buffer = GetTempBufferX(GetParam().wanted, &size);
    EXPECT_EQ(size, GetParam().given);
    EXPECT_EQ(platform.calls(), Calls{newBlock(GetParam().given)});
    ASSERT_EQ(platform.blocks.given.size(), 1u);
    EXPECT_EQ(buffer, platform.blocks.given.front().bytes.data());
    EXPECT_EQ(platform.blocks.given.front().size, GetParam().given);
}

INSTANTIATE_TEST_SUITE_P(Rows, ForksBufferRequest, testing::ValuesIn(requestCases), rowName);

class ForksBuffer : public testing::Test
{
protected:
    PlatformDouble platform;
    UInt32 size = untouchedSize;
};

TEST_F(ForksBuffer, WithoutPlaceForItsSizeNothingIsAllocated)
{
    EXPECT_EQ(GetTempBufferX(10000, nullptr), nullptr);
    EXPECT_EQ(GetTempBufferX(0, nullptr), nullptr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(ForksBuffer, FailureToGetTheSmallestIsFinal)
{
    for (const UInt32 wanted : {0u, 100u, 4096u, 8191u})
    {
        platform.forgetCalls();
        size = untouchedSize;
        platform.failCall(1, memFullErr);
        EXPECT_EQ(GetTempBufferX(wanted, &size), nullptr);
        EXPECT_EQ(size, 0u);
        EXPECT_EQ(platform.calls(), Calls{newBlock(4096)});
    }
}

TEST_F(ForksBuffer, SecondFailureIsFinal)
{
    platform.failEvery("NewPtr", memFullErr);
    EXPECT_EQ(GetTempBufferX(65536, &size), nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(platform.calls(), (Calls{newBlock(65536), "FreeMem()", "MaxBlock()", newBlock(0x00800000)}));
}

TEST_F(ForksBuffer, SecondFailureToGetTheSmallestIsFinalToo)
{
    platform.blocks.largestBlock = 0;
    platform.failEvery("NewPtr", memFullErr);
    EXPECT_EQ(GetTempBufferX(65536, &size), nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(platform.calls(), (Calls{newBlock(65536), "FreeMem()", "MaxBlock()", newBlock(4096)}));
}

struct ShortageCase
{
    const char *name;
    UInt32 freeMemory, largestBlock, given;
};

void PrintTo(const ShortageCase &row, std::ostream *stream)
{
    *stream << row.name;
}

const ShortageCase shortageCases[] = {
    {"LargestBlockIsRoundedDown", 1000000, 50000, 49152},
    {"LargestBlockOfWholeBlocks", 1000000, 49152, 49152},
    {"LargestBlockBelowOneBlock", 1000000, 4095, 4096},
    {"NoBlockAtAll", 1000000, 0, 4096},
    {"ReserveIsLeft", 100000, 90000, 65536},
    {"ReserveLeavesWholeBlocks", 32768 + 8192, 40960, 8192},
    {"ReserveLeavesOneByteLess", 32768 + 8191, 40959, 4096},
    {"LargestBlockIsTheReservesRest", 32768 + 49152, 49152, 49152},
    {"ReserveLeavesOneBlock", 32768 + 4096, 36864, 4096},
    {"ReserveLeavesLessThanABlock", 32768 + 4095, 36863, 4096},
    {"ReserveLeavesNothing", 32768, 32768, 4096},
    {"OneByteBelowTheReserveLimitsNothing", 32767, 32767, 28672},
    {"OneBlockBelowTheReserveLimitsNothing", 28672, 28672, 28672},
    {"NothingFreeLimitsNothing", 0, 20480, 20480},
    {"NothingFreeAndNoBlock", 0, 0, 4096},
    {"WrappedLimitCutsOffWhatIsBeyondIt", 0, 0xFFFFFFFF, 0xFFFF8000},
    {"WrappedLimitIsRoundedDown", 1, 0xFFFFFFFF, 0xFFFF8000},
    {"FreeBeyondTwoGigabytes", 0x80008000, 0x80010000, 0x80000000},
    {"BlockBeyondTwoGigabytes", 0xFFFFFFFF, 0x90000FFF, 0x90000000},
};

class ForksBufferShortage : public testing::TestWithParam<ShortageCase>
{
};

// Asks for a buffer that cannot be had. `above` is added to what the Memory Manager answers.
void expectSecondSize(const ShortageCase &row, long above)
{
    PlatformDouble platform;
    platform.blocks.largestGiven = 0xFFFFFFFF;
    platform.blocks.freeMemory = above + static_cast<long>(row.freeMemory);
    platform.blocks.largestBlock = above + static_cast<long>(row.largestBlock);
    platform.failCall(1, memFullErr);

    UInt32 size = untouchedSize;
    const Ptr buffer = GetTempBufferX(0xFFFFFFFF, &size);
    EXPECT_EQ(size, row.given);
    EXPECT_EQ(platform.calls(), (Calls{newBlock(0xFFFFF000), "FreeMem()", "MaxBlock()", newBlock(row.given)}));
    ASSERT_EQ(platform.blocks.given.size(), 1u);
    EXPECT_EQ(buffer, platform.blocks.given.front().bytes.data());
}

TEST_P(ForksBufferShortage, SecondSizeIsWhatThereIsButForTheReserve)
{
    expectSecondSize(GetParam(), 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, ForksBufferShortage, testing::ValuesIn(shortageCases), rowName);

// Where long has more than 32 bits, what is above them does not count.
TEST(ForksBufferSizes, AreReckonedInThirtyTwoBits)
{
    const long above = static_cast<long>(UInt64{3} << 32);
    if (above == 0)
        GTEST_SKIP() << "long has 32 bits here";
    for (const ShortageCase &row : shortageCases)
    {
        SCOPED_TRACE(row.name);
        expectSecondSize(row, above);
    }
}

}   // namespace
