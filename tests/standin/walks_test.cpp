// Walks: each object once, whatever others do to the tree meanwhile, and what that takes. Large and deep trees are in large_trees_test.cpp.
#include "tests/standin/processes.h"
#include "tests/standin/trees.h"

#include <algorithm>
#include <set>

namespace
{

using namespace support;

class Walks : public DiskTest
{
protected:
    FSRef tree(const TreeShape &shape)
    {
        makeTree(folder() / "tree", shape);
        return refAt(folder() / "tree");
    }
    bool isTrusted() const { return disk().kind == DiskKind::tmpfs || disk().kind == DiskKind::ext4; }
};

TEST_P(Walks, SeeEachObjectOnce)
{
    const TreeShape shape{30, 10};
    const FSRef top = tree(shape);
    std::set<std::pair<UInt32, std::u16string>> seen;
    long count = 0;
    EXPECT_EQ(walk(top, count, kFSCatInfoNodeFlags,
                   [&](const FSRef &ref, const FSCatalogInfo &) { seen.emplace(nodeOf(parentOf(ref)), nameOf(ref)); }),
              noErr);
    EXPECT_EQ(count, shape.objects());
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(shape.objects()));
}

// Opening, comparing, reading and closing, and whether it has changed.
TEST_P(Walks, TakeNoCallForAnObjectAndFiveForAFolder)
{
    if (!isTrusted())
        GTEST_SKIP() << "what a folder's entries say is not trusted here";
    for (const std::size_t length : {0, 60, 250})
    {
        SCOPED_TRACE(length);
        makeTree(folder() / std::to_string(length), {50, 20, length});
        const FSRef top = refAt(folder() / std::to_string(length));
        long count = 0;
        EXPECT_LE(callsOf([&] { EXPECT_EQ(walk(top, count), noErr); }), 51 * 5 + 10);
        EXPECT_EQ(count, 50 * 21);
    }
}

TEST_P(Walks, WithDatesAndSizesTakeOneCallForAnObject)
{
    if (!isTrusted())
        GTEST_SKIP() << "what a folder's entries say is not trusted here";
    const FSRef top = tree({50, 20});
    long count = 0;
    EXPECT_LE(callsOf([&] { EXPECT_EQ(walk(top, count, kFSCatInfoContentMod | kFSCatInfoDataSizes | kFSCatInfoRsrcSizes), noErr); }),
              50 * 21 + 51 * 5 + 10);
    EXPECT_EQ(count, 50 * 21);
}

TEST_P(Walks, TellWhatIsLocked)
{
    const FSRef top = tree({2, 3});
    ASSERT_EQ(setLock(refAt(folder() / "tree/folder1/file2"), true), noErr);
    ASSERT_EQ(setLock(refAt(folder() / "tree/folder0"), true), noErr);
    std::vector<std::u16string> locked;
    long count = 0;
    EXPECT_EQ(walk(top, count, kFSCatInfoNodeFlags,
                   [&](const FSRef &ref, const FSCatalogInfo &info) {
                       if (info.nodeFlags & kFSNodeLockedMask)
                           locked.push_back(nameOf(ref));
                   }),
              noErr);
    EXPECT_EQ(count, 8);
    std::sort(locked.begin(), locked.end());
    EXPECT_EQ(locked, (std::vector<std::u16string>{u"file2", u"folder0"}));
}

TEST_P(Walks, TellWhichForksAreOpen)
{
    const FSRef top = tree({1, 2});
    SInt16 fork = 0;
    ASSERT_EQ(openFork(refAt(folder() / "tree/folder0/file1"), false, fsRdPerm, fork), noErr);
    int open = 0;
    long count = 0;
    walk(top, count, kFSCatInfoNodeFlags,
         [&](const FSRef &, const FSCatalogInfo &info) { open += (info.nodeFlags & kFSNodeForkOpenMask) != 0; });
    EXPECT_EQ(open, 1);
    FSCloseFork(fork);
}

TEST_P(Walks, OfAFolderThatVanishesGoOnBehindIt)
{
    const FSRef top = tree({5, 1});
    long count = 0;
    EXPECT_EQ(walk(top, count, kFSCatInfoNodeFlags,
                   [&](const FSRef &ref, const FSCatalogInfo &info) {
                       if ((info.nodeFlags & kFSNodeIsDirectoryMask) && nameOf(ref) == u"folder3")
                           removeTree(folder() / "tree/folder3");
                   }),
              noErr);
    EXPECT_EQ(count, 5 + 4);
}

// What has the folder's name now is another object.
TEST_P(Walks, DoNotFollowALinkThatTakesAFoldersPlace)
{
    const FSRef top = tree({3, 1});
    makeTree(folder() / "outside", {1, 5});
    long count = 0;
    EXPECT_EQ(walk(top, count, kFSCatInfoNodeFlags,
                   [&](const FSRef &ref, const FSCatalogInfo &) {
                       if (nameOf(ref) != u"folder1")
                           return;
                       removeTree(folder() / "tree/folder1");
                       ASSERT_EQ(symlink((folder() / "outside").c_str(), (folder() / "tree/folder1").c_str()), 0);
                   }),
              noErr);
    EXPECT_EQ(count, 3 + 2);
}

ON_EVERY_DISK(Walks);

// --- as another user --------------------------------------------------------------------------------------------------------------------

const Role walksPastAClosedFolder("walksPastAClosedFolder", [](const RoleArguments &arguments) {
    long count = 0;
    EXPECT_EQ(walk(refAt(arguments[0]), count), noErr);
    EXPECT_EQ(count, 5 + 4);   // every folder, and the files of all but one
});

TEST(WalksOfOthers, MissTheClosedFolderAlone)
{
    if (!canBecomeOtherUsers())
        GTEST_SKIP() << "only root can become another user";
    const TemporaryFolder folder(DiskKind::tmpfs);
    makeTree(folder / "tree", {5, 1});
    chmod(folder.path().c_str(), 0755);
    chmod((folder / "tree/folder2").c_str(), 0700);
    playRole("walksPastAClosedFolder", {folder / "tree"}, {nobody, {}});
}

}   // namespace
