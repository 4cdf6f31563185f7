// A disk without a free block, or one whose user has used up his share: changes are refused with dskFulErr, and what was there stays.
#include "tests/standin/full_disks.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

namespace
{

using namespace support;

// While it lives, no more than this fits onto a btrfs disk, which counts in groups.
class Share
{
public:
    explicit Share(const std::string &place) : place_(place)
    {
        const Ended ended = runShell("btrfs quota enable '" + place + "' && btrfs qgroup limit 8M 0/5 '" + place + "'");
        if (ended.status != 0)
            problem_ = "no shares of a disk here: " + ended.output;
    }
    ~Share() { runShell("btrfs qgroup limit none 0/5 '" + place_ + "'; btrfs quota disable '" + place_ + "'"); }
    Share(const Share &) = delete;
    Share &operator=(const Share &) = delete;
    const std::string &problem() const { return problem_; }

private:
    std::string place_, problem_;
};

class FullDisk : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped() || GetParam() != DiskKind::btrfs)
            return;
        share_.emplace(folder().path());
        if (!share_->problem().empty())
            GTEST_SKIP() << share_->problem();
    }
    void TearDown() override { share_.reset(); }

    FSRef fileRef(const std::string &name)
    {
        writeFile(folder() / name, "data");
        return refAt(folder() / name);
    }

private:
    std::optional<Share> share_;
};

bool doneOrFull(OSErr result)
{
    return result == noErr || result == dskFulErr;
}

TEST_P(FullDisk, AForkKeepsWhatItHad)
{
    FSRef ref = fileRef("file");
    Bytes old(3000, 7), more(1 << 20, 9);
    ASSERT_EQ(writeFork(ref, true, old), noErr);
    fillDisk(folder().path());
    SInt16 fork = 0;
    ByteCount count = 0;
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    EXPECT_EQ(FSWriteFork(fork, fsFromLEOF, 0, static_cast<ByteCount>(more.size()), more.data(), &count), dskFulErr);
    EXPECT_LT(count, more.size());
    EXPECT_EQ(FSCloseFork(fork), noErr);
    makeRoom(folder().path());
    Bytes after = forkOf(ref);
    ASSERT_GE(after.size(), old.size());
    EXPECT_EQ(Bytes(after.begin(), after.begin() + 3000), old);
}

TEST_P(FullDisk, MetadataAreTheOldOrTheNew)
{
    FSRef typed = fileRef("typed"), untyped = fileRef("untyped");
    ASSERT_EQ(setType(typed, code("TEXT"), code("ttxt")), noErr);
    fillDisk(folder().path());
    OSErr first = setType(typed, code("PICT"), code("ttxt")), second = setType(untyped, code("PICT"), code("ttxt")),
          lock = setLock(untyped, true);
    EXPECT_TRUE(doneOrFull(first)) << first;
    EXPECT_TRUE(doneOrFull(second)) << second;
    EXPECT_TRUE(doneOrFull(lock)) << lock;
    EXPECT_EQ(typeOf(typed), first == noErr ? code("PICT") : code("TEXT"));
    EXPECT_EQ(typeOf(untyped), second == noErr ? code("PICT") : 0);
    EXPECT_EQ(isLocked(untyped), lock == noErr);
    makeRoom(folder().path());
    EXPECT_EQ(setLock(untyped, false), noErr);
    EXPECT_EQ(setType(untyped, code("TEXT"), code("ttxt")), noErr);
    EXPECT_EQ(typeOf(untyped), code("TEXT"));
}

TEST_P(FullDisk, RenamesMovesAndDeletionsLoseNothing)
{
    FSRef ref = fileRef("file");
    Bytes fork(2000, 3);
    ASSERT_EQ(writeFork(ref, true, fork), noErr);
    fillDisk(folder().path());
    EXPECT_TRUE(doneOrFull(rename(ref, "renamed")));
    EXPECT_EQ(forkOf(ref), fork);
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_EQ(namesIn(folder().path()), std::vector<std::string>{"ballast"});
    makeRoom(folder().path());
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, FullDisk,
                         testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::ext4Small, DiskKind::xfs, DiskKind::btrfs,
                                         DiskKind::overlay),
                         diskName);

}   // namespace
