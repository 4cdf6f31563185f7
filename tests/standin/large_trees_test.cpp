// Large and deep trees, on two kinds of disk: walked, listed and deleted in as many calls an object as small ones take, and in bounded memory.
#include "standin/files/held_clock.h"
#include "standin/files/linux_calls.h"
#include "tests/how_built.h"
#include "tests/standin/processes.h"
#include "tests/standin/trees.h"

#include <malloc.h>
#include <sys/resource.h>

namespace
{

using namespace support;

class BigTrees : public DiskTest
{
};

// --- deep -------------------------------------------------------------------------------------------------------------------------------

// The clock stands still: what a descriptor names is not believed after a second without use, and what was handed out more than a second ago is looked at
// once more, so that a slow machine would take more calls. To go the way from the root for each level would take some 19 calls more than either of these.
const Role walksAndDeletesAChain("walksAndDeletesAChain", [](const RoleArguments &arguments) {
    constexpr int levels = 10000;
    const rlimit few{64, 64};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    makeChain(arguments[0], levels);
    standin::linux_calls::holdClock();
    const FSRef top = refAt(arguments[0]);
    long count = 0;
    EXPECT_LE(callsOf([&] { EXPECT_EQ(walk(top, count), noErr); }), 10 * levels);
    EXPECT_EQ(count, 2 * levels);
    EXPECT_LE(callsOf([&] { EXPECT_EQ(deleteContents(top), noErr); }), 11 * levels);
    EXPECT_EQ(FSDeleteObject(&top), noErr);
});

TEST_P(BigTrees, TenThousandLevelsTakeFewDescriptors)
{
    playRole("walksAndDeletesAChain", {folder() / "chain"});
    EXPECT_FALSE(exists(folder() / "chain"));
}

// --- many -------------------------------------------------------------------------------------------------------------------------------

const int manyFolders = hasLongRuns() ? 10000 : 1000;

void expectWalkedListedAndDeleted(const std::string &path, const TreeShape &shape)
{
    if (makeTree(path, shape); testing::Test::HasFailure())
        return;
    const FSRef top = refAt(path);
    long count = 0;
    EXPECT_LE(callsOf([&] { EXPECT_EQ(walk(top, count), noErr); }), 5L * (shape.folders + 1) + 100);
    EXPECT_EQ(count, shape.objects());
    std::vector<FSRef> folders;
    EXPECT_LE(callsOf([&] { EXPECT_EQ(listReferences(top, folders), noErr); }), shape.folders / 100 + 20);
    EXPECT_EQ(folders.size(), static_cast<std::size_t>(shape.folders));
    EXPECT_LE(callsOf([&] { EXPECT_EQ(deleteContents(top), noErr); }), shape.folders * (shape.files + 5L) + 100);
    EXPECT_EQ(namesIn(path), std::vector<std::string>{});
}

TEST_P(BigTrees, ManyFilesInManyFoldersAreWalkedListedAndDeleted)
{
    expectWalkedListedAndDeleted(folder() / "tree", {manyFolders, 10});
}

TEST_P(BigTrees, LongNamesTakeNoMoreCalls)
{
    for (const std::size_t length : {60, 250})
    {
        SCOPED_TRACE(length);
        expectWalkedListedAndDeleted(folder() / std::to_string(length), {manyFolders / 10, 10, length});
    }
}

// --- one large folder -------------------------------------------------------------------------------------------------------------------

// What the process has allocated: in this thread no more than the file manager takes between two looks.
std::size_t bytesInUse()
{
    const struct mallinfo2 memory = mallinfo2();
    return memory.uordblks + memory.hblkhd;
}

// Fifty at a time, without memory of the test's own. Gives the number of objects.
long countOfItems(FSIterator iterator, FSRef &last)
{
    long items = 0;
    for (OSErr result = noErr; result == noErr;)
    {
        FSRef refs[50];
        ItemCount got = 0;
        Boolean changed = 0;
        result = FSGetCatalogInfoBulk(iterator, 50, &got, &changed, kFSCatInfoNone, nullptr, refs, nullptr, nullptr);
        EXPECT_TRUE(result == noErr || result == errFSNoMoreItems);
        if (got != 0)
            last = refs[got - 1];
        items += static_cast<long>(got);
    }
    return items;
}

TEST_P(BigTrees, AFolderTakesAtMost64BytesAnEntryAndOnlyWhileItIsRead)
{
    if (isSanitized())
        GTEST_SKIP() << "a sanitizer places memory in its own way";
    const bool isFast = disk().kind == DiskKind::tmpfs;
    for (const int files : {1000, 10000, isFast && hasLongRuns() ? 200000 : 20000})
    {
        SCOPED_TRACE(files);
        const std::string path = folder() / std::to_string(files);
        makeTree(path, {1, files, 31});
        const FSRef top = refAt(path + "/folder0" + std::string(24, 'x'));
        const std::size_t before = bytesInUse();
        FSIterator iterator = nullptr;
        FSRef last{};
        ASSERT_EQ(FSOpenIterator(&top, kFSIterateFlat, &iterator), noErr);
        const std::size_t opened = bytesInUse();
        EXPECT_LE(opened - before, static_cast<std::size_t>(files) * 64 + 8192);
        EXPECT_EQ(countOfItems(iterator, last), files);
        EXPECT_LE(bytesInUse(), opened + 8192);
        EXPECT_EQ(FSCloseIterator(iterator), noErr);
        EXPECT_LE(bytesInUse(), before + 8192);
        EXPECT_EQ(checkRef(last), noErr);
    }
}

TEST_P(BigTrees, AWalkKeepsAHundredBytesAFolderAndNothingOfFiles)
{
    if (isSanitized())
        GTEST_SKIP() << "a sanitizer places memory in its own way";
    constexpr int folders = 1000;
    makeTree(folder() / "tree", {folders, 10});
    const FSRef top = refAt(folder() / "tree");
    long count = 0;
    const std::size_t before = bytesInUse();
    EXPECT_EQ(walk(top, count), noErr);
    const std::size_t after = bytesInUse();
    EXPECT_LE(after, before + 130 * folders + 65536) << "and a table that grows by doubling";
    EXPECT_EQ(walk(top, count), noErr);
    EXPECT_LE(bytesInUse(), after + 8192);
}

// --- sidecars ---------------------------------------------------------------------------------------------------------------------------

int sidecarsRead = 0;

// The walk itself opens folders by another function.
int countOpenings(const char *call)
{
    sidecarsRead += std::string(call) == "openAt";
    return 0;
}

TEST_P(BigTrees, AFifthWithSidecarsTakesOneReadForEachOfThese)
{
    const TreeShape shape{100, 20};
    const int sidecars = shape.folders * shape.files / 5;
    makeTree(folder() / "tree", shape);
    for (int number = 0; number < shape.folders; ++number)
        for (int file = 0; file < shape.files; file += 5)
            writeFile(folder() / ("tree/folder" + std::to_string(number) + "/._file" + std::to_string(file)),
                      plainSidecar(bytesOf("fork")));
    const FSRef top = refAt(folder() / "tree");
    long count = 0;
    sidecarsRead = 0;
    standin::linux_calls::setCallFilter(countOpenings);
    const long calls = callsOf([&] { EXPECT_EQ(walk(top, count), noErr); });
    standin::linux_calls::setCallFilter(nullptr);
    EXPECT_EQ(count, shape.objects());
    EXPECT_LE(sidecarsRead, sidecars + 10);
    constexpr int callsOfASidecar = 6;   // the file's status and its attributes; the sidecar is opened, looked at, read and closed
    EXPECT_LE(calls, 5L * (shape.folders + 1) + callsOfASidecar * sidecars + 20);
}

INSTANTIATE_TEST_SUITE_P(TwoDisks, BigTrees, testing::Values(DiskKind::tmpfs, DiskKind::ext4), diskName);

}   // namespace
