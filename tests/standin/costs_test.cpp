// How many system calls the everyday questions cost.
#include "tests/standin/test_volume.h"

#include <cstdio>
#include <sys/stat.h>

namespace
{

using namespace support;

constexpr FSCatalogInfoBitmap datesSizesAndNode =
    kFSCatInfoCreateDate | kFSCatInfoContentMod | kFSCatInfoAttrMod | kFSCatInfoAccessDate | kFSCatInfoDataSizes | kFSCatInfoNodeID;
constexpr int fileCount = 200;

class Costs : public DiskTest
{
protected:
    void makeFiles()
    {
        for (int i = 0; i < fileCount; ++i)
            writeFile(folder() / ("file" + std::to_string(i)), "data");
    }
    void print(const char *what, double calls)
    {
        std::printf("[   cost   ] %-9s %-58s %6.2f\n", nameOfKind(GetParam()).c_str(), what, calls);
    }
    void expectAtMost(double most, const char *what, double calls)
    {
        print(what, calls);
        EXPECT_LE(calls, most) << what;
    }
    static double eachSince(std::uint64_t before) { return static_cast<double>(standin::systemCallCount() - before) / fileCount; }
};

// References as a walk gets them: nothing was asked about the objects themselves.
std::vector<FSRef> listedRefs(const FSRef &folder, FSCatalogInfoBitmap which = kFSCatInfoNone)
{
    std::vector<FSRef> refs(fileCount);
    std::vector<FSCatalogInfo> infos(fileCount);
    FSIterator iterator = nullptr;
    ItemCount count = 0;
    EXPECT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
    OSErr result =
        FSGetCatalogInfoBulk(iterator, fileCount, &count, nullptr, which, which ? infos.data() : nullptr, refs.data(), nullptr, nullptr);
    EXPECT_TRUE(result == noErr || result == errFSNoMoreItems);
    EXPECT_EQ(count, static_cast<ItemCount>(fileCount));
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    return refs;
}

// The dearest single call, and all of them together.
struct Cost
{
    std::uint64_t most = 0, sum = 0;
    double each() const { return static_cast<double>(sum) / fileCount; }
};

Cost costOfAsking(const std::vector<FSRef> &refs, FSCatalogInfoBitmap which)
{
    Cost cost;
    for (const FSRef &ref : refs)
    {
        FSCatalogInfo info{};
        std::uint64_t before = standin::systemCallCount();
        EXPECT_EQ(FSGetCatalogInfo(&ref, which, &info, nullptr, nullptr, nullptr), noErr);
        std::uint64_t calls = standin::systemCallCount() - before;
        cost.most = std::max(cost.most, calls);
        cost.sum += calls;
    }
    return cost;
}

TEST_P(Costs, DatesSizesAndNodeOfAListedReferenceTakeTwoCalls)
{
    makeFiles();
    Cost cost = costOfAsking(listedRefs(refAt(folder().path())), datesSizesAndNode);
    print("dates, sizes and node by a listed reference", cost.each());
    EXPECT_GE(cost.sum, static_cast<std::uint64_t>(fileCount)) << "the disk itself has to be asked";
    EXPECT_LE(cost.most, 2u);
}

TEST_P(Costs, FinderInformationOfAFileWithoutMetadataTakesOneMore)
{
    makeFiles();
    FSRef parent = refAt(folder().path());
    Cost without = costOfAsking(listedRefs(parent), datesSizesAndNode);
    Cost with = costOfAsking(listedRefs(parent), datesSizesAndNode | finderBits);
    print("… and Finder information, of a file without metadata", with.each());
    EXPECT_LE(with.sum, without.sum + fileCount);
    EXPECT_LE(with.most, 3u);
}

TEST_P(Costs, AListingOfNamesAsksNoObject)
{
    makeFiles();
    FSRef parent = refAt(folder().path());
    std::uint64_t before = standin::systemCallCount();
    listedRefs(parent);
    std::uint64_t calls = standin::systemCallCount() - before;
    print("a listing of references, for each file", static_cast<double>(calls) / fileCount);
    bool trusted = disk().kind != DiskKind::plain && disk().kind != DiskKind::ramfs && disk().kind != DiskKind::overlay;
    EXPECT_LE(calls, static_cast<std::uint64_t>(trusted ? 20 : fileCount + 20));
}

TEST_P(Costs, AListingWithDatesAndSizesAsksEachObjectOnce)
{
    makeFiles();
    FSRef parent = refAt(folder().path());
    std::uint64_t before = standin::systemCallCount();
    listedRefs(parent, datesSizesAndNode & ~kFSCatInfoCreateDate);
    std::uint64_t calls = standin::systemCallCount() - before;
    print("a listing with Linux's own dates and sizes, for each file", static_cast<double>(calls) / fileCount);
    EXPECT_LE(calls, static_cast<std::uint64_t>(fileCount + 20));
}

// Creation dates are ours, so the attributes are asked for; that there are no sidecars the listing itself has shown.
TEST_P(Costs, AListingWithOurOwnMetadataTakesOneCallMore)
{
    makeFiles();
    FSRef parent = refAt(folder().path());
    std::uint64_t before = standin::systemCallCount();
    listedRefs(parent, datesSizesAndNode | kFSCatInfoNodeFlags | finderBits);
    std::uint64_t calls = standin::systemCallCount() - before;
    print("… and creation date, flags and Finder information", static_cast<double>(calls) / fileCount);
    EXPECT_LE(calls, static_cast<std::uint64_t>(2 * fileCount + 20));
}

// Bounds with a little room, as systems differ. The path is as long as that of the disk, so its cost is printed alone.
TEST_P(Costs, OthersStayBounded)
{
    makeFiles();
    FSRef parent = refAt(folder().path());
    std::vector<FSRef> refs = listedRefs(parent);
    const double sidecarCalls = disk().hasAttributes ? 0 : 5;
    expectAtMost(4, "everything, of a file without metadata", costOfAsking(refs, everything).each());
    std::uint64_t before = standin::systemCallCount();
    for (const FSRef &ref : refs)
        EXPECT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    expectAtMost(16 + sidecarCalls, "setting type and creator", eachSince(before));
    expectAtMost(6, "everything, of a file with a type", costOfAsking(refs, everything).each());
    before = standin::systemCallCount();
    for (int i = 0; i < fileCount; ++i)
        childOf(parent, "file" + std::to_string(i));
    expectAtMost(3, "a reference by folder and name", eachSince(before));
    before = standin::systemCallCount();
    for (int i = 0; i < fileCount; ++i)
        refAt(folder() / ("file" + std::to_string(i)));
    print("a reference by path", eachSince(before));
    before = standin::systemCallCount();
    for (const FSRef &ref : refs)
        EXPECT_EQ(FSDeleteObject(&ref), noErr);
    expectAtMost(14 + sidecarCalls, "deleting", eachSince(before));
}

ON_EVERY_DISK(Costs);

}   // namespace
