// Objects that are no plain files, names with no room beside them, and the layers of an overlay.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace
{

using namespace support;

class SpecialObjects : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }
};

TEST_P(SpecialObjects, ASymbolicLinksMetadataAreItsOwn)
{
    writeFile(folder() / "target", "data");
    ASSERT_EQ(symlink("target", (folder() / "link").c_str()), 0);
    struct statx before = statxOf(folder() / "target");
    FSRef ref = childOf(folderRef(), "link");
    ASSERT_EQ(setType(ref, code("slnk"), code("rhap"), kIsInvisible), noErr);
    EXPECT_EQ(+fileInfo(infoOf(childOf(folderRef(), "link"))).finderFlags, kIsInvisible);
    EXPECT_EQ(typeOf(refAt(folder() / "target")), 0u);
    EXPECT_TRUE(attributeNames(folder() / "target").empty());
    EXPECT_EQ(statxOf(folder() / "target").stx_ctime.tv_nsec, before.stx_ctime.tv_nsec);
    EXPECT_TRUE(exists(folder() / "._link"));

    ASSERT_EQ(setLock(ref, true), noErr);
    EXPECT_FALSE(isLocked(refAt(folder() / "target")));
    EXPECT_EQ(FSDeleteObject(&ref), fLckdErr);
    ASSERT_EQ(setLock(ref, false), noErr);
    ASSERT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_EQ(namesIn(folder().path()), std::vector<std::string>{"target"});
}

TEST_P(SpecialObjects, ALinksForkIsNotItsTargets)
{
    writeFile(folder() / "target", "the target's data");
    ASSERT_EQ(symlink("target", (folder() / "link").c_str()), 0);
    FSRef ref = childOf(folderRef(), "link");
    SInt16 fork = 0;
    if (openFork(ref, false, fsRdWrPerm, fork) == noErr)
    {
        FSSetForkSize(fork, fsFromStart, 0);
        FSCloseFork(fork);
    }
    EXPECT_EQ(readFile(folder() / "target"), bytesOf("the target's data"));
}

TEST_P(SpecialObjects, ABrokenLinkIsAnObjectToo)
{
    ASSERT_EQ(symlink("nowhere", (folder() / "link").c_str()), 0);
    FSRef ref = childOf(folderRef(), "link");
    EXPECT_EQ(typeOf(ref), code("slnk"));
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_TRUE(namesIn(folder().path()).empty());
}

TEST_P(SpecialObjects, AFifoIsNeverWaitedFor)
{
    alarm(60);   // an open that waits would wait for ever
    ASSERT_EQ(mkfifo((folder() / "fifo").c_str(), 0644), 0);
    FSRef ref = refAt(folder() / "fifo");
    infoOf(ref);
    SInt16 fork = 0;
    EXPECT_NE(openFork(ref, false, fsRdPerm, fork), noErr);
    EXPECT_NE(openFork(ref, false, fsRdWrPerm, fork), noErr);
    ASSERT_EQ(setType(ref, code("fifo"), 0), noErr);
    EXPECT_EQ(typeOf(refAt(folder() / "fifo")), code("fifo"));
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_TRUE(namesIn(folder().path()).empty());
    alarm(0);
}

TEST_P(SpecialObjects, ADeviceIsNeverOpened)
{
    if (mknod((folder() / "device").c_str(), S_IFCHR | 0644, makedev(1, 7)) != 0)   // a device that is always full
        GTEST_SKIP() << "devices cannot be made here";
    FSRef ref = refAt(folder() / "device");
    infoOf(ref);
    SInt16 fork = 0;
    EXPECT_NE(openFork(ref, false, fsRdPerm, fork), noErr);
    ASSERT_EQ(setType(ref, code("devc"), 0), noErr);
    EXPECT_EQ(typeOf(ref), code("devc"));
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_TRUE(namesIn(folder().path()).empty());
}

TEST_P(SpecialObjects, ALongNameHasNoRoomForASidecar)
{
    for (std::size_t length : {253, 254, 255})
    {
        SCOPED_TRACE(length);
        std::string name(length, 'n');
        writeFile(folder() / name, "data");
        FSRef ref = refAt(folder() / name);
        bool room = length <= 253;
        EXPECT_EQ(setType(ref, code("TEXT"), 0) == noErr, room || disk().hasAttributes);
        EXPECT_EQ(writeFork(ref, true, {1, 2}) == noErr, room);
        EXPECT_EQ(setLock(ref, true) == noErr, room);
        EXPECT_EQ(isLocked(ref), room) << "a refused lock is none";
        EXPECT_EQ(setLock(ref, false), noErr);
        EXPECT_EQ(+infoOf(ref).dataLogicalSize, 4u);
        EXPECT_EQ(FSDeleteObject(&ref), noErr);
        EXPECT_TRUE(namesIn(folder().path()).empty());
    }
}

TEST_P(SpecialObjects, AFileWithAForkCannotTakeANameWithoutRoomForIt)
{
    writeFile(folder() / "file", "data");
    FSRef ref = refAt(folder() / "file");
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    EXPECT_NE(rename(ref, std::string(254, 'n')), noErr);
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
    EXPECT_TRUE(exists(folder() / "file"));
}

TEST_P(SpecialObjects, AVolumesRootKeepsItsSidecarInside)
{
    if (disk().kind == DiskKind::plain)
        GTEST_SKIP() << "the root of this machine's own disk is left alone";
    FSRef root = refAt(disk().root);
    UInt32 before = infoOf(root, kFSCatInfoValence).valence;
    ASSERT_EQ(setType(root, code("disk"), 0), noErr);
    ASSERT_EQ(setLock(root, true), noErr);
    EXPECT_TRUE(exists(disk().root + "/._."));
    EXPECT_FALSE(exists(disk().root + "/../._" + nameOfKind(disk().kind))) << "outside of the volume";
    EXPECT_EQ(+infoOf(root, kFSCatInfoValence).valence, before);
    EXPECT_TRUE(isLocked(refAt(disk().root)));
    ASSERT_EQ(setLock(root, false), noErr);
    EXPECT_EQ(typeOf(refAt(disk().root)), code("disk"));
    ASSERT_EQ(setType(root, 0, 0), noErr);
    unlink((disk().root + "/._.").c_str());
}

ON_EVERY_DISK(SpecialObjects);

class OverlayLayers : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!disk().problem.empty())
            GTEST_SKIP() << disk().problem;
    }
    static const Disk &disk() { return diskOf(DiskKind::overlay); }
};

TEST_F(OverlayLayers, AFirstWriteMakesANewFileAndTheReferenceStays)
{
    std::string path = disk().root + "/first";
    FSRef ref = refAt(path);
    EXPECT_EQ(forkOf(ref, false), bytesOf("lower first"));
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    EXPECT_EQ(typeOf(ref), code("TEXT"));
    EXPECT_EQ(typeOf(refAt(path)), code("TEXT"));
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    ASSERT_EQ(writeFork(ref, false, bytesOf("upper")), noErr);
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
    EXPECT_EQ(forkOf(ref, false), bytesOf("upper"));
    EXPECT_EQ(readFile(disk().lower + "/first"), bytesOf("lower first"));
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_FALSE(exists(disk().root + "/._first"));
}

TEST_F(OverlayLayers, ALowerFileIsRenamedAndMoved)
{
    FSRef ref = refAt(disk().root + "/second"), root = refAt(disk().root), inner{};
    ASSERT_EQ(makeFolder(root, "inner", &inner), noErr);
    ASSERT_EQ(setLock(ref, true), noErr);
    ASSERT_EQ(setLock(ref, false), noErr);
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    ASSERT_EQ(move(ref, inner), noErr);
    EXPECT_EQ(forkOf(ref, false), bytesOf("lower second"));
    EXPECT_EQ(pathOf(ref), disk().root + "/inner/renamed");
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_EQ(FSDeleteObject(&inner), noErr);
}

// Then the numbers that a listing shows need not be those of the objects.
TEST_F(OverlayLayers, OnTwoDisksWhatIsListedIsFound)
{
    const Disk &ext4 = diskOf(DiskKind::ext4);
    if (!ext4.problem.empty())
        GTEST_SKIP() << ext4.problem;
    TemporaryFolder lower(ext4), upper(DiskKind::tmpfs);
    for (std::string name : {"short", "a name that is too long to lie within a reference, so that its hash has to do", "third"})
        writeFile(lower / name, name);
    for (std::string part : {"files", "work", "merged"})
        mkdir((upper / part).c_str(), 0755);
    std::string options = "lowerdir=" + lower.path() + ",upperdir=" + (upper / "files") + ",workdir=" + (upper / "work");
    if (mount("overlay", (upper / "merged").c_str(), "overlay", 0, options.c_str()) != 0)
        GTEST_SKIP() << "no overlay of these two disks here";
    writeFile(upper / "merged/upper", "upper");
    FSRef merged = refAt(upper / "merged"), refs[8];
    FSIterator iterator = nullptr;
    ItemCount count = 0;
    ASSERT_EQ(FSOpenIterator(&merged, kFSIterateFlat, &iterator), noErr);
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 8, &count, nullptr, kFSCatInfoNone, nullptr, refs, nullptr, nullptr), errFSNoMoreItems);
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    EXPECT_EQ(count, 4u);
    for (ItemCount i = 0; i < count; ++i)
    {
        EXPECT_EQ(checkRef(refs[i]), noErr);
        EXPECT_EQ(setType(refs[i], code("TEXT"), 0), noErr);
        EXPECT_EQ(typeOf(refs[i]), code("TEXT"));
    }
    EXPECT_EQ(umount2((upper / "merged").c_str(), MNT_DETACH), 0);
    removeTree(upper / "work");
}

TEST_F(OverlayLayers, WritingByAnotherProgramKeepsTheReferenceToo)
{
    FSRef ref = refAt(disk().root + "/third");
    ASSERT_EQ(runShell("echo more >> '" + disk().root + "/third'").status, 0);
    EXPECT_EQ(checkRef(ref), noErr);
    EXPECT_EQ(forkOf(ref, false), bytesOf("lower thirdmore\n"));
}

}   // namespace
