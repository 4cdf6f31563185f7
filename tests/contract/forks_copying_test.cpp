// The copy of one open fork over another.

#include "files/fstoolkit.h"
#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

constexpr SInt16 source = 7, destination = 9;

// Bytes that differ from their neighbours, also from those one or more blocks away.
std::string bytesOf(std::size_t length)
{
    std::string bytes(length, '\0');
    for (std::size_t index = 0; index < length; ++index)
        bytes[index] = static_cast<char>((index * 7 + index / 4096 * 13) & 0xFF);
    return bytes;
}

Calls preparation(SInt64 size)
{
    return {"FSGetForkSize(7, size)", "FSSetForkSize(9, 0x1, " + decimal(size) + ")", "FSSetForkPosition(7, 0x1, 0)",
            "FSSetForkPosition(9, 0x1, 0)"};
}

std::string readOf(UInt32 wanted)
{
    return "FSReadFork(7, 0x20, 0, " + decimal(wanted) + ", caller's buffer, actual)";
}

std::string writeOf(UInt32 count)
{
    return "FSWriteFork(9, 0x20, 0, " + decimal(count) + ", caller's buffer, -)";
}

class ForksCopying : public testing::Test
{
protected:
    ForksCopying() { setForks("", "older and longer than most"); }

    void setForks(const std::string &sourceBytes, const std::string &destinationBytes)
    {
        platform.forks.open[source] = {sourceBytes, static_cast<SInt64>(sourceBytes.size() / 2), {}};
        platform.forks.open[destination] = {destinationBytes, static_cast<SInt64>(destinationBytes.size()), {}};
    }

    OSErr copy(UInt32 bufferSize)
    {
        buffer.assign(bufferSize, '#');
        platform.nameAddress(buffer.data(), "caller's buffer");
        return FSCopyFork(source, destination, buffer.data(), bufferSize);
    }

    const std::string &copied() { return platform.forks.open[destination].bytes; }

    // The calls of a copy in which nothing fails.
    static Calls wholeCopy(UInt32 length, UInt32 readSize)
    {
        Calls expected = preparation(length);
        for (UInt32 position = 0;; position += readSize)
        {
            expected.push_back(readOf(readSize));
            expected.push_back(writeOf(std::min(readSize, length - position)));
            if (length - position < readSize)
                return expected;
        }
    }

    PlatformDouble platform;
    std::string buffer;
};

TEST_F(ForksCopying, MovesWholeBlocksWhereverTheBufferHasRoomForOne)
{
    struct Row
    {
        UInt32 bufferSize, readSize;
    };
    for (const Row &row : {Row{1, 1}, Row{2, 2}, Row{3000, 3000}, Row{4095, 4095}, Row{4096, 4096}, Row{4097, 4096}, Row{6000, 4096},
                           Row{8191, 4096}, Row{8192, 8192}, Row{12000, 8192}, Row{1048576, 1048576}, Row{1050000, 1048576}})
        for (const UInt32 length : {0u, 1u, 2u, 100u, 2999u, 3000u, 4095u, 4096u, 4097u, 10000u, 1048576u + 5000u})
        {
            if (length / row.readSize > 100)   // enough reads in a row
                continue;
            SCOPED_TRACE(decimal(length) + " bytes through " + decimal(row.bufferSize));
            setForks(bytesOf(length), "older and longer than the shortest");
            platform.forgetCalls();
            EXPECT_EQ(copy(row.bufferSize), noErr);
            EXPECT_TRUE(platform.calls() == wholeCopy(length, row.readSize));
            EXPECT_TRUE(copied() == bytesOf(length));
        }
}

TEST_F(ForksCopying, EmptyForkTakesOneReadAndOneWriteOfNothing)
{
    EXPECT_EQ(copy(4096), noErr);
    EXPECT_EQ(platform.calls().size(), 6u);
    EXPECT_EQ(platform.calls().at(4), "FSReadFork(7, 0x20, 0, 4096, caller's buffer, actual)");
    EXPECT_EQ(platform.calls().at(5), "FSWriteFork(9, 0x20, 0, 0, caller's buffer, -)");
    EXPECT_EQ(copied(), "") << "what was there is gone";
}

TEST_F(ForksCopying, LeavesBothMarksBehindTheLastByte)
{
    setForks(bytesOf(5000), "");
    EXPECT_EQ(copy(4096), noErr);
    EXPECT_EQ(platform.forks.open[source].mark, 5000);
    EXPECT_EQ(platform.forks.open[destination].mark, 5000);
}

TEST_F(ForksCopying, LeavesTheSourceAndTheUnusedEndOfTheBufferAlone)
{
    setForks(bytesOf(9000), "");
    EXPECT_EQ(copy(6000), noErr);
    EXPECT_TRUE(platform.forks.open[source].bytes == bytesOf(9000));
    EXPECT_EQ(buffer.substr(4096), std::string(6000 - 4096, '#'));
}

TEST_F(ForksCopying, WithoutABufferEndsBeforeAnyCall)
{
    char byte = 0;
    EXPECT_EQ(FSCopyFork(source, destination, nullptr, 4096), paramErr);
    EXPECT_EQ(FSCopyFork(source, destination, &byte, 0), paramErr);
    EXPECT_EQ(FSCopyFork(source, destination, nullptr, 0), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(ForksCopying, HugeBufferIsUsedAsFarAsItHasWholeBlocks)
{
    char byte = 0;
    platform.nameAddress(&byte, "caller's buffer");
    EXPECT_EQ(FSCopyFork(source, destination, &byte, 0xFFFFFFFF), noErr);
    EXPECT_EQ(platform.calls().at(4), readOf(0xFFFFF000));
}

TEST_F(ForksCopying, SizeAndNumbersKeepTheirFullWidthAndSign)
{
    platform.forks.open[-32768] = {"", 0, 0x123456789A};
    platform.failCall(2, dskFulErr);
    EXPECT_EQ(FSCopyFork(-32768, 32767, &buffer, 1), dskFulErr);
    EXPECT_EQ(platform.calls(), (Calls{"FSGetForkSize(-32768, size)", "FSSetForkSize(32767, 0x1, 78187493530)"}));
}

// The end of a fork is one only when a read tells it.
TEST_F(ForksCopying, FailureBeforeTheFirstReadEndsTheCopyWithItsCode)
{
    for (const OSErr code : {ioErr, eofErr, errFSNoMoreItems, OSErr{1}})
        for (int nth = 1; nth <= 4; ++nth)
        {
            SCOPED_TRACE(nth);
            setForks(bytesOf(100), "old");
            platform.forgetCalls();
            platform.failCall(nth, code);
            EXPECT_EQ(copy(4096), code);
            const Calls all = preparation(100);
            EXPECT_EQ(platform.calls(), Calls(all.begin(), all.begin() + nth));
            EXPECT_EQ(copied().size(), nth <= 2 ? 3u : 100u) << "the destination has its new size, and nothing else";
        }
}

TEST_F(ForksCopying, ForksThatAreNotOpenAreThePlatformsError)
{
    EXPECT_EQ(FSCopyFork(1, destination, &buffer, 10), rfNumErr);
    EXPECT_EQ(FSCopyFork(source, 1, &buffer, 10), rfNumErr);
    EXPECT_EQ(copied(), "older and longer than most");
}

// A read fails here in two ways: saying how many bytes it has given, and without a word about them.
TEST_F(ForksCopying, WhatAFailedReadHasGivenIsWritten)
{
    setForks(bytesOf(20000), "");
    platform.forks.preparedRead = {2, ioErr, 100};
    EXPECT_EQ(copy(4096), ioErr);
    EXPECT_EQ(platform.calls(), (Calls{preparation(20000)[0], preparation(20000)[1], preparation(20000)[2], preparation(20000)[3],
                                       readOf(4096), writeOf(4096), readOf(4096), writeOf(100)}));
    EXPECT_TRUE(copied().substr(0, 4196) == bytesOf(20000).substr(0, 4196));
    EXPECT_EQ(copied().size(), 20000u) << "nothing is undone";
}

TEST_F(ForksCopying, FailedReadThatReportsNoBytesIsFollowedByAWriteOfNone)
{
    setForks(bytesOf(20000), "");
    for (const int failingCall : {5, 7})
    {
        platform.forgetCalls();
        platform.failCall(failingCall, afpAccessDenied);
        EXPECT_EQ(copy(4096), afpAccessDenied);
        EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(failingCall + 1));
        EXPECT_EQ(platform.calls().back(), writeOf(0));
    }
}

TEST_F(ForksCopying, ShortReadThatIsNoFailureGoesOn)
{
    setForks(bytesOf(5000), "");
    platform.forks.preparedRead = {1, noErr, 10};
    EXPECT_EQ(copy(4096), noErr);
    EXPECT_EQ(Calls(platform.calls().begin() + 4, platform.calls().end()),
              (Calls{readOf(4096), writeOf(10), readOf(4096), writeOf(4096), readOf(4096), writeOf(894)}));
    EXPECT_TRUE(copied() == bytesOf(5000));
}

TEST_F(ForksCopying, FailedWriteEndsTheCopy)
{
    setForks(bytesOf(20000), "");
    platform.failCall(8, dskFulErr);
    EXPECT_EQ(copy(4096), dskFulErr);
    EXPECT_EQ(Calls(platform.calls().begin() + 4, platform.calls().end()),
              (Calls{readOf(4096), writeOf(4096), readOf(4096), writeOf(4096)}));
    EXPECT_EQ(copied().size(), 20000u) << "nothing is undone";
}

TEST_F(ForksCopying, WritesFailureComesBeforeThatOfTheRead)
{
    for (const OSErr readCode : {ioErr, eofErr})
    {
        setForks(bytesOf(20000), "");
        platform.failEvery("FSWriteFork", dskFulErr);
        platform.forks.preparedRead = {1, readCode, 100};
        EXPECT_EQ(copy(4096), dskFulErr);
        EXPECT_EQ(platform.calls().back(), writeOf(100));
    }
}

TEST_F(ForksCopying, EndThatAWriteTellsIsAFailure)
{
    setForks(bytesOf(100), "");
    platform.failEvery("FSWriteFork", eofErr);
    EXPECT_EQ(copy(4096), eofErr);
}

}   // namespace
