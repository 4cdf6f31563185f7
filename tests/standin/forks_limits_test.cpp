// Large forks, and many.
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <set>
#include <sys/resource.h>

namespace
{

using namespace support;

constexpr std::uint64_t largestFork = 0xFFFFFFFFu - 0x10000u;

class LargeForks : public DiskTest
{
protected:
    FSRef fileRef()
    {
        writeFile(folder() / "file", "data");
        return refAt(folder() / "file");
    }
};

TEST_P(LargeForks, SixteenMegabytes)
{
    FSRef ref = fileRef();
    Bytes bytes(16u << 20);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 4096);
    ASSERT_EQ(writeFork(ref, true, bytes), noErr);
    EXPECT_EQ(forkOf(ref), bytes);
    EXPECT_EQ(+infoOf(ref).rsrcLogicalSize, bytes.size());
}

// Only the bytes that are written take room.
TEST_P(LargeForks, UpToJustUnderFourGibibytes)
{
    FSRef ref = fileRef();
    SInt16 fork = 0;
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    const auto last = static_cast<SInt64>(largestFork) - 3;
    ASSERT_EQ(writeAt(fork, SInt64{3} << 30, bytesOf("far")), noErr);
    EXPECT_EQ(sizeOf(fork), (SInt64{3} << 30) + 3);
    ASSERT_EQ(writeAt(fork, last, bytesOf("end")), noErr);
    EXPECT_EQ(sizeOf(fork), static_cast<SInt64>(largestFork));
    EXPECT_EQ(writeAt(fork, last + 1, bytesOf("end")), dskFulErr);
    EXPECT_EQ(FSSetForkSize(fork, fsFromLEOF, 1), dskFulErr);
    char bytes[8] = {};
    ByteCount got = 0;
    EXPECT_EQ(FSReadFork(fork, fsFromStart, SInt64{3} << 30, 4, bytes, &got), noErr);
    EXPECT_EQ(std::string(bytes, 4), std::string("far\0", 4));
    EXPECT_EQ(FSReadFork(fork, fsFromLEOF, -3, 8, bytes, &got), eofErr);
    EXPECT_EQ(std::string(bytes, got), "end");
    EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 5), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(ref), Bytes(5, 0));
}

INSTANTIATE_TEST_SUITE_P(TwoDisks, LargeForks, testing::Values(DiskKind::tmpfs, DiskKind::ext4), diskName);

// --- how many ----------------------------------------------------------------------------------------------------------------------------

// While it lives, the process may have so many descriptors open.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t limit)
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit wanted{limit, std::max(limit, before_.rlim_max)};
        isSet_ = setrlimit(RLIMIT_NOFILE, &wanted) == 0;
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before_); }
    bool isSet() const { return isSet_; }

private:
    rlimit before_{};
    bool isSet_ = false;
};

OSErr openUntilRefused(const FSRef &ref, bool resource, std::vector<SInt16> &forks)
{
    for (;;)
    {
        SInt16 fork = 0;
        if (OSErr result = openFork(ref, resource, fsRdPerm, fork))
            return result;
        forks.push_back(fork);
        if (forks.size() > 40000)
            return noErr;
    }
}

void closeAll(const std::vector<SInt16> &forks)
{
    for (SInt16 fork : forks)
        EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST(ManyForks, DescriptorsRunOut)
{
    TemporaryFolder folder;
    writeFile(folder / "file", "data");
    FSRef ref = refAt(folder / "file");
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    for (bool resource : {false, true})
    {
        std::vector<SInt16> forks;
        {
            DescriptorLimit limit(100);
            ASSERT_TRUE(limit.isSet());
            EXPECT_EQ(openUntilRefused(ref, resource, forks), tmfoErr);
            EXPECT_GT(forks.size(), 20u);
            SInt64 size = 0;
            EXPECT_EQ(FSGetForkSize(forks.back(), &size), resource ? tmfoErr : noErr) << "the sidecar is not open yet";
        }
        SInt64 size = 0;
        EXPECT_EQ(FSGetForkSize(forks.back(), &size), noErr);
        closeAll(forks);
    }
}

TEST(ManyForks, NumbersRunOut)
{
    TemporaryFolder folder;
    DescriptorLimit limit(34000);
    if (!limit.isSet())
        GTEST_SKIP() << "the process may not have so many descriptors";
    writeFile(folder / "file", "data");
    std::vector<SInt16> forks;
    EXPECT_EQ(openUntilRefused(refAt(folder / "file"), false, forks), tmfoErr);
    EXPECT_EQ(forks.size(), 0x7FFDu);
    EXPECT_EQ(std::set<SInt16>(forks.begin(), forks.end()).size(), forks.size());
    ASSERT_FALSE(forks.empty());
    EXPECT_EQ(FSCloseFork(forks[1000]), noErr);
    SInt16 fork = 0;
    ASSERT_EQ(openFork(refAt(folder / "file"), false, fsRdPerm, fork), noErr);
    EXPECT_EQ(fork, forks[1000]) << "the only free one";
    closeAll(forks);
}

}   // namespace
