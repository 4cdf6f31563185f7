// Walks: each object once, whatever others do to the tree meanwhile, and what that takes.
#include "tests/how_built.h"
#include "tests/standin/processes.h"
#include "tests/standin/trees.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <sys/resource.h>
#include <sys/statvfs.h>

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

// Opening, comparing and closing; one or two reads, as the disk says where it ends; and whether it has changed.
TEST_P(Walks, TakeNoCallForAnObjectAndSixAtMostForAFolder)
{
    if (!isTrusted())
        GTEST_SKIP() << "what a folder's entries say is not trusted here";
    for (const std::size_t length : {0, 60, 250})
    {
        SCOPED_TRACE(length);
        makeTree(folder() / std::to_string(length), {50, 20, length});
        const FSRef top = refAt(folder() / std::to_string(length));
        long count = 0;
        EXPECT_LE(callsOf([&] { EXPECT_EQ(walk(top, count), noErr); }), 51 * 6 + 10);
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
              50 * 21 + 51 * 6 + 10);
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

// --- many and deep ----------------------------------------------------------------------------------------------------------------------

// A slow machine takes more calls: what a descriptor names is not believed after a second without use, and what was handed out more than a second ago is
// looked at, under a lock, before it is deleted: up to seven calls more for each of a level's two objects. To go the way from the root for each level would
// take some 19 calls more than either.
template <typename Work>
void expectFewCalls(Work work, long mostPerLevel, long mostPerSlowLevel, int levels)
{
    constexpr long callsOfAllWaysDown = 20 * 20;   // for as many descriptors as are kept, by a path in some 17 pieces
    const auto start = std::chrono::steady_clock::now();
    const long calls = callsOf(work);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LE(calls, (seconds == 0 ? mostPerLevel : mostPerSlowLevel) * levels + seconds * callsOfAllWaysDown) << seconds << " s";
}

const Role walksAndDeletesAChain("walksAndDeletesAChain", [](const RoleArguments &arguments) {
    constexpr int levels = 10000;
    const rlimit few{64, 64};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    makeChain(arguments[0], levels);
    const FSRef top = refAt(arguments[0]);
    long count = 0;
    expectFewCalls([&] { EXPECT_EQ(walk(top, count), noErr); }, 10, 10, levels);
    EXPECT_EQ(count, 2 * levels);
    expectFewCalls([&] { EXPECT_EQ(deleteContents(top), noErr); }, 11, 25, levels);
    EXPECT_EQ(FSDeleteObject(&top), noErr);
});

const int mostFolders = isSanitized() ? 1000 : 10000;

// The small disks that tests make have room for so many objects.
unsigned long freeInodes(const std::string &path)
{
    struct statvfs disk
    {
    };
    EXPECT_EQ(statvfs(path.c_str(), &disk), 0);
    return disk.f_favail;
}

class BigTrees : public testing::TestWithParam<DiskKind>
{
};

TEST_P(BigTrees, TenThousandLevelsTakeFewDescriptors)
{
    if (!diskOf(GetParam()).problem.empty())
        GTEST_SKIP() << diskOf(GetParam()).problem;
    const TemporaryFolder folder(diskOf(GetParam()));
    playRole("walksAndDeletesAChain", {folder / "chain"});
    EXPECT_FALSE(exists(folder / "chain"));
}

TEST_P(BigTrees, AsManyFilesAsFitAreWalkedListedAndDeleted)
{
    if (!diskOf(GetParam()).problem.empty())
        GTEST_SKIP() << diskOf(GetParam()).problem;
    const TemporaryFolder folder(diskOf(GetParam()));
    const TreeShape shape{std::min(mostFolders, static_cast<int>(freeInodes(folder.path()) / 11) - 10), 10};
    if (makeTree(folder / "tree", shape); testing::Test::HasFailure())
        return;
    const FSRef top = refAt(folder / "tree");
    long count = 0;
    EXPECT_LE(callsOf([&] { EXPECT_EQ(walk(top, count), noErr); }), 6L * (shape.folders + 1) + 20);
    EXPECT_EQ(count, shape.objects());
    std::vector<FSRef> folders;
    EXPECT_LE(callsOf([&] { EXPECT_EQ(listReferences(top, folders), noErr); }), shape.folders / 100 + 20);
    EXPECT_EQ(folders.size(), static_cast<std::size_t>(shape.folders));
    EXPECT_LE(callsOf([&] { EXPECT_EQ(deleteContents(top), noErr); }), shape.folders * (shape.files + 6L) + 20);
    EXPECT_EQ(namesIn(folder / "tree"), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(TwoDisks, BigTrees, testing::Values(DiskKind::tmpfs, DiskKind::ext4), diskName);

}   // namespace
