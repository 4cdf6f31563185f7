// Deleting what an iterator hands out: at the cost of the bare call, but never another object, and nothing is left behind.
#include "tests/standin/trees.h"

#include <chrono>
#include <sys/mount.h>
#include <thread>

namespace
{

using namespace support;

class Deletion : public DiskTest
{
protected:
    bool isTrusted() const { return disk().kind == DiskKind::tmpfs || disk().kind == DiskKind::ext4; }
    std::string top() { return folder() / "tree"; }
};

// An iterator for deleting, and the object that it handed out last.
struct Deleting
{
    explicit Deleting(const FSRef &folder) { EXPECT_EQ(FSOpenIterator(&folder, kFSIterateDelete, &iterator), noErr); }
    ~Deleting() { EXPECT_EQ(FSCloseIterator(iterator), noErr); }
    Deleting(const Deleting &) = delete;
    Deleting &operator=(const Deleting &) = delete;
    OSErr next(FSRef &ref)
    {
        FSCatalogInfo info;
        ItemCount count = 0;
        return FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, kFSCatInfoNodeFlags, &info, &ref, nullptr, nullptr);
    }
    FSIterator iterator = nullptr;
};

TEST_P(Deletion, TakesOneCallForAFileAndSixAtMostForAFolder)
{
    if (!isTrusted())
        GTEST_SKIP() << "what a folder's entries say is not trusted here";
    for (const std::size_t length : {0, 60, 250})
    {
        SCOPED_TRACE(length);
        makeTree(top(), {50, 20, length});
        const FSRef tree = refAt(top());
        EXPECT_LE(callsOf([&] { EXPECT_EQ(deleteContents(tree), noErr); }), 50 * 20 + 51 * 6 + 20);
        EXPECT_EQ(namesIn(top()), std::vector<std::string>{});
        EXPECT_EQ(FSDeleteObject(&tree), noErr);
    }
}

TEST_P(Deletion, TakesSidecarsAndLockedObjectsAlong)
{
    makeTree(top(), {3, 6});
    ASSERT_EQ(writeFork(refAt(top() + "/folder0/file2"), true, Bytes(100, 7)), noErr);
    ASSERT_EQ(writeFork(refAt(top() + "/folder0/file4"), true, Bytes(100, 7)), noErr);
    ASSERT_EQ(setLock(refAt(top() + "/folder1/file5"), true), noErr);
    ASSERT_EQ(setLock(refAt(top() + "/folder2"), true), noErr);
    EXPECT_EQ(deleteContents(refAt(top())), noErr);
    EXPECT_EQ(namesIn(top()), std::vector<std::string>{});
}

TEST_P(Deletion, RefusesWhatIsLocked)
{
    makeTree(top(), {1, 1});
    ASSERT_EQ(setLock(refAt(top() + "/folder0"), true), noErr);
    Deleting deleting(refAt(top()));
    FSRef locked;
    ASSERT_EQ(deleting.next(locked), noErr);
    EXPECT_EQ(FSDeleteObject(&locked), fLckdErr);
    EXPECT_TRUE(exists(top() + "/folder0/file0"));
    ASSERT_EQ(setLock(locked, false), noErr);
}

TEST_P(Deletion, RefusesAFolderThatIsNotEmpty)
{
    makeTree(top(), {1, 1});
    Deleting deleting(refAt(top()));
    FSRef full;
    ASSERT_EQ(deleting.next(full), noErr);
    EXPECT_EQ(FSDeleteObject(&full), fBsyErr);
    EXPECT_TRUE(exists(top() + "/folder0/file0"));
}

// This process itself put another file there: that is known without a look.
TEST_P(Deletion, SparesAFileThatWasGivenTheNameMeanwhile)
{
    makeTree(top(), {0, 0});
    const FSRef tree = refAt(top());
    FSRef first, other, handedOut;
    ASSERT_EQ(makeFile(tree, "name", &first), noErr);
    Deleting deleting(tree);
    ASSERT_EQ(deleting.next(handedOut), noErr);
    ASSERT_EQ(rename(first, "another name"), noErr);
    ASSERT_EQ(makeFile(tree, "name", &other), noErr);
    EXPECT_EQ(FSDeleteObject(&handedOut), noErr) << "the file itself, under its new name";
    EXPECT_EQ(namesIn(top()), std::vector<std::string>{"name"});
}

// After more than a second nothing is taken as it was.
TEST_P(Deletion, ComparesAgainAfterASecond)
{
    if (!isTrusted())
        GTEST_SKIP() << "compared in any case";
    makeTree(top(), {0, 0});
    writeFile(top() + "/name", "the one that is handed out");
    Deleting deleting(refAt(top()));
    FSRef handedOut;
    ASSERT_EQ(deleting.next(handedOut), noErr);
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    writeFile(top() + "/other", "another one");
    ASSERT_EQ(::rename((top() + "/other").c_str(), (top() + "/name").c_str()), 0);
    EXPECT_EQ(FSDeleteObject(&handedOut), fnfErr);
    EXPECT_TRUE(exists(top() + "/name"));
}

TEST_P(Deletion, FindsAFileThatOthersRenamed)
{
    if (!disk().hasBirthTimes || disk().kind == DiskKind::overlay)
        GTEST_SKIP() << "without births only the own name counts";
    makeTree(top(), {0, 0});
    writeFile(top() + "/name", "data");
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    Deleting deleting(refAt(top()));
    FSRef handedOut;
    ASSERT_EQ(deleting.next(handedOut), noErr);
    ASSERT_EQ(::rename((top() + "/name").c_str(), (top() + "/renamed").c_str()), 0);
    EXPECT_EQ(FSDeleteObject(&handedOut), noErr);
    EXPECT_EQ(namesIn(top()), std::vector<std::string>{});
}

TEST_P(Deletion, RemovesLinksAndNotWhatTheyLeadTo)
{
    makeTree(top(), {1, 0});
    makeTree(folder() / "outside", {1, 2});
    ASSERT_EQ(symlink((folder() / "outside").c_str(), (top() + "/folder0/link").c_str()), 0);
    EXPECT_EQ(deleteContents(refAt(top())), noErr);
    EXPECT_EQ(namesIn(folder() / "outside/folder0").size(), 2u);
}

TEST_P(Deletion, StopsAtAMountedDisk)
{
    makeTree(top(), {1, 0});
    const std::string mounted = top() + "/folder0";
    if (::mount("none", mounted.c_str(), "tmpfs", 0, nullptr) != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    writeFile(mounted + "/precious", "data");
    EXPECT_EQ(deleteContents(refAt(top())), fBsyErr);
    EXPECT_TRUE(exists(mounted + "/precious"));
    ::umount(mounted.c_str());
}

// The same disk once more: neither device nor inode says that it is mounted.
TEST_P(Deletion, LeavesAFolderAloneThatIsMountedInTheTreeASecondTime)
{
    makeTree(top(), {1, 2});
    makeTree(folder() / "outside", {1, 2});
    const std::string mounted = top() + "/folder0/again";
    mkdir(mounted.c_str(), 0755);
    if (::mount((folder() / "outside").c_str(), mounted.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    EXPECT_EQ(deleteContents(refAt(top())), fBsyErr);
    EXPECT_EQ(namesIn(folder() / "outside/folder0").size(), 2u);
    EXPECT_EQ(namesIn(mounted), std::vector<std::string>{"folder0"});
    ::umount(mounted.c_str());
    EXPECT_EQ(deleteContents(refAt(top())), noErr);
    EXPECT_EQ(namesIn(folder() / "outside/folder0").size(), 2u);
}

TEST_P(Deletion, OfTheSameObjectASecondTimeFindsNothing)
{
    makeTree(top(), {0, 0});
    writeFile(top() + "/file");
    FSRef handedOut;
    {
        Deleting deleting(refAt(top()));
        ASSERT_EQ(deleting.next(handedOut), noErr);
        EXPECT_EQ(FSDeleteObject(&handedOut), noErr);
    }
    EXPECT_EQ(FSDeleteObject(&handedOut), fnfErr);
}

ON_EVERY_DISK(Deletion);

}   // namespace
