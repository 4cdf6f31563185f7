// How many system calls it takes to copy one open fork into another: two a buffer, whichever forks they are.
#include "tests/standin/test_volume.h"

#include <chrono>
#include <cstdio>

namespace
{

using namespace support;

constexpr std::size_t bufferSize = 4096;
constexpr int bufferCount = 64;
constexpr UInt16 onward = fsAtMark | noCacheMask;

Bytes pattern(std::size_t size)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 4096);
    return bytes;
}

// What a copy took: before the first buffer, for the first one, for the dearest, the cheapest and all of the others, and behind the last.
struct CopyCost
{
    std::uint64_t before = 0, first = 0, most = 0, least = 1000, others = 0, behind = 0;
    double seconds = 0;
};

class ForksCosts : public DiskTest
{
protected:
    void copy(SInt16 from, SInt16 to, CopyCost &cost);
    CopyCost costOfCopying(bool fromResource, bool toResource, std::size_t tail = 0);
};

// The loop that applications write.
void ForksCosts::copy(SInt16 from, SInt16 to, CopyCost &cost)
{
    std::uint64_t last = standin::systemCallCount();
    const auto since = [&last] {
        std::uint64_t now = standin::systemCallCount();
        return now - std::exchange(last, now);
    };
    const auto start = std::chrono::steady_clock::now();
    SInt64 size = 0;
    ASSERT_EQ(FSGetForkSize(from, &size), noErr);
    ASSERT_EQ(FSSetForkSize(to, fsFromStart, size), noErr);
    ASSERT_EQ(FSSetForkPosition(from, fsFromStart, 0), noErr);
    ASSERT_EQ(FSSetForkPosition(to, fsFromStart, 0), noErr);
    cost.before = since();
    Bytes buffer(bufferSize);
    for (;;)
    {
        ByteCount got = 0;
        OSErr read = FSReadFork(from, onward, 0, bufferSize, buffer.data(), &got);
        ASSERT_EQ(FSWriteFork(to, onward, 0, got, buffer.data(), nullptr), noErr);
        std::uint64_t calls = since();
        if (read == eofErr)
        {
            cost.behind = calls;
            break;
        }
        ASSERT_EQ(read, noErr);
        if (cost.first == 0)
        {
            cost.first = calls;
            continue;
        }
        cost.most = std::max(cost.most, calls);
        cost.least = std::min(cost.least, calls);
        cost.others += calls;
    }
    cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

CopyCost ForksCosts::costOfCopying(bool fromResource, bool toResource, std::size_t tail)
{
    for (const char *name : {"from", "to"})
        writeFile(folder() / name);
    FSRef source = refAt(folder() / "from"), target = refAt(folder() / "to");
    Bytes bytes = pattern(bufferSize * bufferCount + tail);
    EXPECT_EQ(writeFork(source, fromResource, bytes), noErr);
    SInt16 from = 0, to = 0;
    EXPECT_EQ(openFork(source, fromResource, fsRdPerm, from), noErr);
    EXPECT_EQ(openFork(target, toResource, fsRdWrPerm, to), noErr);
    CopyCost cost;
    copy(from, to, cost);
    EXPECT_EQ(FSCloseFork(from), noErr);
    EXPECT_EQ(FSCloseFork(to), noErr);
    EXPECT_EQ(forkOf(target, toResource), bytes);
    std::printf("[   cost   ] %-9s %s fork to %s fork: %d before, %d for the first buffer, %.2f for each other, %d behind\n",
                nameOfKind(GetParam()).c_str(), fromResource ? "resource" : "data", toResource ? "resource" : "data",
                static_cast<int>(cost.before), static_cast<int>(cost.first), static_cast<double>(cost.others) / (bufferCount - 1),
                static_cast<int>(cost.behind));
    return cost;
}

// The first buffer may find out that the disk cannot read past the cache, and looks at the source's sidecar again: making the target's
// changed the folder. Every 20 milliseconds the sidecars are looked at once more.
void expectTwoABuffer(const CopyCost &cost)
{
    const bool wasFast = cost.seconds < 0.02;
    const auto looks = static_cast<std::uint64_t>(cost.seconds / 0.02);
    EXPECT_EQ(cost.least, 2u);
    EXPECT_LE(cost.others, 2u * (bufferCount - 1) + 30 * looks);
    EXPECT_LE(cost.most, wasFast ? 2u : 40u);
    EXPECT_LE(cost.first, wasFast ? 9u : 40u);
}

TEST_P(ForksCosts, DataToData)
{
    CopyCost cost = costOfCopying(false, false);
    expectTwoABuffer(cost);
    EXPECT_LE(cost.before, disk().kind == DiskKind::ramfs ? 4u : 3u) << "two sizes, and the room";
    EXPECT_LE(cost.behind, 1u);
}

TEST_P(ForksCosts, ResourceToResource)
{
    CopyCost cost = costOfCopying(true, true);
    expectTwoABuffer(cost);
    EXPECT_LE(cost.behind, cost.seconds < 0.02 ? 1u : 30u);
}

TEST_P(ForksCosts, DataToResource)
{
    expectTwoABuffer(costOfCopying(false, true));
}

TEST_P(ForksCosts, ResourceToData)
{
    expectTwoABuffer(costOfCopying(true, false));
}

TEST_P(ForksCosts, ALastBufferThatIsNotFull)
{
    expectTwoABuffer(costOfCopying(true, true, 100));
    expectTwoABuffer(costOfCopying(false, false, 100));
}

TEST_P(ForksCosts, AWriteAtTheMarkOfADataForkIsOneCall)
{
    writeFile(folder() / "file");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(refAt(folder() / "file"), false, fsRdWrPerm, fork), noErr);
    for (int i = 0; i < 10; ++i)
    {
        std::uint64_t before = standin::systemCallCount();
        EXPECT_EQ(FSWriteFork(fork, fsAtMark, 0, 5, "bytes", nullptr), noErr);
        EXPECT_EQ(standin::systemCallCount() - before, 1u);
    }
    std::uint64_t before = standin::systemCallCount();
    EXPECT_EQ(FSSetForkPosition(fork, fsFromStart, 0), noErr);
    EXPECT_EQ(FSWriteFork(fork, fsAtMark, 0, 0, nullptr, nullptr), noErr);
    EXPECT_EQ(standin::systemCallCount(), before) << "nothing to ask";
    EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST_P(ForksCosts, AForkOfTheRightSizeIsNotTouched)
{
    writeFile(folder() / "file", "data");
    FSRef ref = refAt(folder() / "file");
    ASSERT_EQ(writeFork(ref, true, Bytes(100, 1)), noErr);
    SInt16 data = 0, resource = 0;
    ASSERT_EQ(openFork(ref, false, fsRdWrPerm, data), noErr);
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, resource), noErr);
    std::string before = pictureOf(folder().path());
    EXPECT_EQ(FSSetForkSize(data, fsFromStart, 4), noErr);
    EXPECT_EQ(FSSetForkSize(resource, fsFromStart, 100), noErr);
    EXPECT_EQ(pictureOf(folder().path()), before);
    EXPECT_EQ(FSCloseFork(data), noErr);
    EXPECT_EQ(FSCloseFork(resource), noErr);
}

ON_EVERY_DISK(ForksCosts);

}   // namespace
