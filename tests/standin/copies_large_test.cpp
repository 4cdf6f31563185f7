// Copying large files: holes, shared blocks, full disks, from one kind of disk to another, and what a host is told meanwhile.
#include "tests/standin/copies.h"
#include "tests/standin/full_disks.h"

#include "standin/files/linux_calls.h"

#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr std::size_t mebibyte = 1 << 20;

class LargeCopies : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (!IsSkipped())
            mkdir((folder() / "copies").c_str(), 0755);
    }
    FSRef target() { return refAt(folder() / "copies"); }
};

class OpenFile
{
public:
    explicit OpenFile(const std::string &path, int flags = O_RDONLY) : number_(open(path.c_str(), flags | O_CLOEXEC, 0644))
    {
        EXPECT_GE(number_, 0) << path;
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() { close(number_); }
    int number() const { return number_; }

private:
    int number_;
};

void writeTextAt(const std::string &path, off_t offset, const std::string &text)
{
    OpenFile file(path, O_WRONLY | O_CREAT);
    EXPECT_EQ(pwrite(file.number(), text.data(), text.size(), offset), static_cast<ssize_t>(text.size()));
}

std::string textAt(const std::string &path, off_t offset, std::size_t length)
{
    std::string text(length, '?');
    OpenFile file(path);
    EXPECT_EQ(pread(file.number(), text.data(), length, offset), static_cast<ssize_t>(length));
    return text;
}

std::uint64_t allocated(const std::string &path)
{
    return statxOf(path).stx_blocks * 512;
}

TEST_P(LargeCopies, OfSixteenMegabytesInEitherForkAreWhole)
{
    if (GetParam() != DiskKind::tmpfs && GetParam() != DiskKind::ext4)
        GTEST_SKIP() << "two kinds of disk are enough for that many bytes";
    const Bytes large = patternBytes(16 * mebibyte + 1, 1), small = patternBytes(1000, 2);
    for (bool inFork : {false, true})
    {
        writeFile(folder() / "file", inFork ? small : large);
        FSRef ref = refAt(folder() / "file");
        ASSERT_EQ(writeFork(ref, true, inFork ? large : small), noErr);
        ASSERT_EQ(copyFile(ref, target()), noErr);
        FSRef copy = refAt(folder() / "copies/file");
        EXPECT_TRUE(forkOf(copy, inFork) == large);
        EXPECT_TRUE(forkOf(copy, !inFork) == small);
        EXPECT_EQ(FSDeleteObject(&copy), noErr);
        EXPECT_EQ(FSDeleteObject(&ref), noErr);
    }
}

TEST_P(LargeCopies, OfThreeGigabytesWithHolesTakeNoTimeAndNoRoom)
{
    constexpr off_t middle = off_t{1} << 31, length = off_t{3} << 30;
    const std::string path = folder() / "file", sidecar = folder() / "._file";
    writeTextAt(path, 5, "beginning");
    writeTextAt(path, middle, "middle");
    ASSERT_EQ(truncate(path.c_str(), length), 0);
    FSRef ref = refAt(path);
    ASSERT_EQ(writeFork(ref, true, bytesOf("fork")), noErr);
    // Nobody here makes a fork with holes, but others do.
    writeTextAt(sidecar, 46, std::string("\xC0\0\0\0", 4));
    writeTextAt(sidecar, 82 + middle, "middle");
    ASSERT_EQ(truncate(sidecar.c_str(), 82 + length), 0);
    ASSERT_EQ(copyFile(ref, target()), noErr);
    for (const char *name : {"copies/file", "copies/._file"})
    {
        SCOPED_TRACE(name);
        EXPECT_LE(allocated(folder() / name), mebibyte);
    }
    EXPECT_EQ(textAt(folder() / "copies/file", 5, 9), "beginning");
    EXPECT_EQ(textAt(folder() / "copies/file", middle, 6), "middle");
    EXPECT_EQ(textAt(folder() / "copies/file", length - 4, 4), std::string(4, '\0'));
    FSCatalogInfo info = infoOf(refAt(folder() / "copies/file"));
    EXPECT_EQ(+info.dataLogicalSize, static_cast<UInt64>(length));
    EXPECT_EQ(+info.rsrcLogicalSize, static_cast<UInt64>(length));
    EXPECT_EQ(textAt(folder() / "copies/._file", 82, 4), "fork");
    EXPECT_EQ(textAt(folder() / "copies/._file", 82 + middle, 6), "middle");
    EXPECT_EQ(statxOf(folder() / "copies/._file").stx_size, statxOf(sidecar).stx_size);
}

TEST_P(LargeCopies, OfAFileThatIsOneHoleOrEndsInOneKeepTheLength)
{
    writeTextAt(folder() / "ends in one", 0, "text");
    writeFile(folder() / "one hole");
    for (const char *name : {"ends in one", "one hole"})
    {
        ASSERT_EQ(truncate((folder() / name).c_str(), 5 * mebibyte + 17), 0);
        ASSERT_EQ(copyFile(refAt(folder() / name), target()), noErr);
        std::string copy = folder() / ("copies/" + std::string(name));
        EXPECT_EQ(statxOf(copy).stx_size, 5 * mebibyte + 17);
        EXPECT_LE(allocated(copy), mebibyte / 4);
        EXPECT_TRUE(readFile(copy) == readFile(folder() / name));
    }
}

INSTANTIATE_TEST_SUITE_P(LargeDisks, LargeCopies, testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::xfs, DiskKind::btrfs),
                         diskName);

// --- shared blocks ----------------------------------------------------------------------------------------------------------------------------

class SharedCopies : public LargeCopies
{
protected:
    // How many bytes of a file are in extents that are shared with another file.
    static std::uint64_t sharedBytes(const std::string &path)
    {
        constexpr unsigned most = 200;
        std::vector<std::uint64_t> space((sizeof(fiemap) + most * sizeof(fiemap_extent)) / 8 + 1);
        auto *map = reinterpret_cast<fiemap *>(space.data());
        map->fm_length = FIEMAP_MAX_OFFSET;
        map->fm_flags = FIEMAP_FLAG_SYNC;
        map->fm_extent_count = most;
        OpenFile file(path);
        EXPECT_EQ(ioctl(file.number(), FS_IOC_FIEMAP, map), 0);
        std::uint64_t bytes = 0;
        for (unsigned i = 0; i < map->fm_mapped_extents; ++i)
            if (map->fm_extents[i].fe_flags & FIEMAP_EXTENT_SHARED)
                bytes += map->fm_extents[i].fe_length;
        return bytes;
    }
    void expectShared(bool withProgress)
    {
        writeFile(folder() / "file", patternBytes(8 * mebibyte, 1));
        FSRef ref = refAt(folder() / "file");
        ASSERT_EQ(writeFork(ref, true, patternBytes(2 * mebibyte, 2)), noErr);
        if (withProgress)
            standin::setCopyProgress([](std::uint64_t, std::uint64_t) {});
        OSErr result = copyFile(ref, target());
        standin::setCopyProgress(nullptr);
        ASSERT_EQ(result, noErr);
        EXPECT_GE(sharedBytes(folder() / "copies/file"), 8 * mebibyte);
        EXPECT_GE(sharedBytes(folder() / "copies/._file"), mebibyte);
        EXPECT_TRUE(readFile(folder() / "copies/file") == patternBytes(8 * mebibyte, 1));
        EXPECT_TRUE(forkOf(refAt(folder() / "copies/file")) == patternBytes(2 * mebibyte, 2));
    }
};

TEST_P(SharedCopies, MoveNoBytes)
{
    expectShared(false);
}

TEST_P(SharedCopies, AlsoWhileAHostIsToldHowFarTheyAre)
{
    expectShared(true);
}

INSTANTIATE_TEST_SUITE_P(SharingDisks, SharedCopies, testing::Values(DiskKind::btrfs, DiskKind::xfs), diskName);

// --- full disks -------------------------------------------------------------------------------------------------------------------------------

class FullDiskCopies : public LargeCopies
{
protected:
    // All but so many bytes.
    void fillAllBut(std::size_t spare)
    {
        writeFile(folder() / "spare", Bytes(spare, 's'));
        fillDisk(folder().path());
        unlink((folder() / "spare").c_str());
    }
    void expectNothingLeft()
    {
        EXPECT_EQ(namesIn(folder() / "copies"), std::vector<std::string>{});
        makeRoom(folder().path());
    }
};

TEST_P(FullDiskCopies, HaveNotTakenPlaceAtAll)
{
    writeFile(folder() / "file", patternBytes(3 * mebibyte, 1));
    writeFile(folder() / "forked", patternBytes(mebibyte / 2, 1));
    FSRef forked = refAt(folder() / "forked");
    ASSERT_EQ(writeFork(forked, true, patternBytes(3 * mebibyte, 2)), noErr);
    fillAllBut(mebibyte);
    EXPECT_EQ(copyFile(refAt(folder() / "file"), target()), dskFulErr);
    EXPECT_EQ(copyFile(forked, target()), dskFulErr) << "the data had room, the fork had none";
    expectNothingLeft();
    EXPECT_EQ(copyFile(forked, target()), noErr);
    EXPECT_TRUE(forkOf(refAt(folder() / "copies/forked")) == patternBytes(3 * mebibyte, 2));
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, FullDiskCopies, testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::overlay), diskName);

// --- from one kind of disk to another ---------------------------------------------------------------------------------------------------------

using Kinds = std::pair<DiskKind, DiskKind>;

class CopiesAcross : public testing::TestWithParam<Kinds>
{
protected:
    void SetUp() override
    {
        for (DiskKind kind : {GetParam().first, GetParam().second})
            if (!diskOf(kind).problem.empty())
                GTEST_SKIP() << diskOf(kind).problem;
        from_.emplace(GetParam().first);
        to_.emplace(GetParam().second);
    }
    std::optional<TemporaryFolder> from_, to_;
};

TEST_P(CopiesAcross, DisksKeepEverything)
{
    const std::string path = *from_ / "document";
    writeFile(path, patternBytes(2 * mebibyte + 3, 1));
    FSRef ref = refAt(path);
    FSCatalogInfo info{};
    FileInfo file{code("TEXT"), code("ttxt"), 0, {0, 0}, 0};
    setFileInfo(info, file);
    info.createDate = dateOfUnix(900000000, 321);
    info.backupDate = dateOfUnix(910000000, 123);
    info.contentModDate = dateOfUnix(920000000);
    info.textEncodingHint = 7;
    info.nodeFlags = kFSNodeLockedMask;
    ASSERT_EQ(writeFork(ref, true, patternBytes(70000, 2)), noErr);
    ASSERT_EQ(change(ref,
                     finderBits | kFSCatInfoCreateDate | kFSCatInfoBackupDate | kFSCatInfoContentMod | kFSCatInfoTextEncoding |
                         kFSCatInfoNodeFlags,
                     info),
              noErr);
    ASSERT_EQ(copyFile(ref, refAt(to_->path()), "copy"), noErr);
    FSRef copy = refAt(*to_ / "copy");
    FSCatalogInfo after = infoOf(copy);
    EXPECT_TRUE(readFile(*to_ / "copy") == patternBytes(2 * mebibyte + 3, 1));
    EXPECT_TRUE(forkOf(copy) == patternBytes(70000, 2));
    EXPECT_EQ(typeOf(copy), code("TEXT"));
    EXPECT_EQ(after.createDate, info.createDate);
    EXPECT_EQ(after.backupDate, info.backupDate);
    EXPECT_EQ(after.contentModDate, info.contentModDate);
    EXPECT_EQ(+after.textEncodingHint, 7u);
    EXPECT_TRUE(after.nodeFlags & kFSNodeLockedMask);
    EXPECT_EQ(setLock(copy, false), noErr);
    EXPECT_FALSE(isLocked(copy));
    EXPECT_EQ(setLock(ref, false), noErr);
}

TEST_P(CopiesAcross, DisksStayPlainAndKeepAForkAlone)
{
    writeFile(*from_ / "plain", "data");
    writeFile(*from_ / "forked", "data");
    FSRef forked = refAt(*from_ / "forked");
    ASSERT_EQ(writeFork(forked, true, bytesOf("the fork")), noErr);
    ASSERT_EQ(copyFile(refAt(*from_ / "plain"), refAt(to_->path())), noErr);
    ASSERT_EQ(copyFile(forked, refAt(to_->path())), noErr);
    EXPECT_EQ(namesIn(to_->path()), (std::vector<std::string>{"._forked", "forked", "plain"}));
    EXPECT_EQ(attributeNames(*to_ / "plain"), std::vector<std::string>{});
    EXPECT_EQ(forkOf(refAt(*to_ / "forked")), bytesOf("the fork"));
}

INSTANTIATE_TEST_SUITE_P(Disks, CopiesAcross,
                         testing::Values(Kinds{DiskKind::tmpfs, DiskKind::ext4}, Kinds{DiskKind::ext4, DiskKind::tmpfs},
                                         Kinds{DiskKind::xfs, DiskKind::btrfs}, Kinds{DiskKind::tmpfs, DiskKind::ramfs},
                                         Kinds{DiskKind::ramfs, DiskKind::tmpfs}, Kinds{DiskKind::ramfs, DiskKind::ext4},
                                         Kinds{DiskKind::overlay, DiskKind::tmpfs}, Kinds{DiskKind::ramfs, DiskKind::ramfs}),
                         [](const testing::TestParamInfo<Kinds> &row) {
                             return nameOfKind(row.param.first) + "To" + nameOfKind(row.param.second);
                         });

// --- what a host asks for ---------------------------------------------------------------------------------------------------------------------

TEST(CopyProgress, IsToldInOrderAndEndsWithEverything)
{
    TemporaryFolder folder(DiskKind::tmpfs);
    if (!folder.disk().problem.empty())
        GTEST_SKIP() << folder.disk().problem;
    mkdir((folder / "copies").c_str(), 0755);
    ASSERT_EQ(truncate((writeFile(folder / "file"), folder / "file").c_str(), 10), 0);
    writeFile(folder / "large", "text");
    ASSERT_EQ(truncate((folder / "large").c_str(), 200 * mebibyte), 0);
    writeTextAt(folder / "large", 150 * mebibyte, "text");
    FSRef ref = refAt(folder / "large");
    ASSERT_EQ(writeFork(ref, true, Bytes(1000, 1)), noErr);
    std::vector<std::pair<std::uint64_t, std::uint64_t>> told;
    standin::setCopyProgress([&](std::uint64_t done, std::uint64_t all) { told.emplace_back(done, all); });
    OSErr result = copyFile(ref, refAt(folder / "copies"));
    standin::setCopyProgress(nullptr);
    EXPECT_EQ(result, noErr);
    ASSERT_GE(told.size(), 3u);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(told.back().first, told.back().second);
    EXPECT_EQ(told.back().second, 200 * mebibyte + 82 + 1000);
    const std::size_t before = told.size();
    EXPECT_EQ(copyFile(refAt(folder / "file"), refAt(folder / "copies")), noErr);
    EXPECT_EQ(told.size(), before) << "nobody is told any more";
}

int flushes = 0;

TEST(SyncedCopies, AreFlushedWithTheirSidecarAndTheirNamesAndOthersAreNot)
{
    TemporaryFolder folder(DiskKind::tmpfs);
    if (!folder.disk().problem.empty())
        GTEST_SKIP() << folder.disk().problem;
    writeFile(folder / "file", "data");
    FSRef ref = refAt(folder / "file");
    ASSERT_EQ(writeFork(ref, true, Bytes(1000, 1)), noErr);
    flushes = 0;
    standin::linux_calls::setCallFilter([](const char *call) {
        flushes += std::string_view(call) == "flushToDisk";
        return 0;
    });
    EXPECT_EQ(copyFile(ref, refAt(folder.path()), "one"), noErr);
    EXPECT_EQ(flushes, 0);
    standin::setSyncsCopies(true);
    EXPECT_EQ(copyFile(ref, refAt(folder.path()), "two"), noErr);
    EXPECT_EQ(flushes, 3);
    standin::setSyncsCopies(false);
    standin::linux_calls::setCallFilter(nullptr);
}

}   // namespace
