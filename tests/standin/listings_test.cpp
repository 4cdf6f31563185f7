// Iterators: what a folder shows, piece by piece, and what it keeps to itself. What they make of changes is in listings_changes_test.cpp.
#include "tests/standin/listings.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

using Listings = ListingsTest;

TEST_P(Listings, AnEmptyFolderEndsAtOnce)
{
    OpenIterator iterator(folderRef());
    ItemCount count = 99;
    Boolean changed = 99;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 3, &count, &changed, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), errFSNoMoreItems);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(changed, 0);
}

TEST_P(Listings, TheEndComesWithTheLastItemsOrAfterThem)
{
    makeFiles(5);
    struct Step
    {
        ItemCount asked, given;
        OSErr result;
    };
    for (const std::vector<Step> &steps : {
             std::vector<Step>{{5, 5, noErr}, {5, 0, errFSNoMoreItems}},   // exactly full: nobody knows yet that it was the end
             std::vector<Step>{{6, 5, errFSNoMoreItems}, {6, 0, errFSNoMoreItems}},
             std::vector<Step>{{2, 2, noErr}, {2, 2, noErr}, {2, 1, errFSNoMoreItems}, {2, 0, errFSNoMoreItems}},
             std::vector<Step>{{1, 1, noErr}, {4, 4, noErr}, {1, 0, errFSNoMoreItems}},
         })
    {
        OpenIterator iterator(folderRef());
        for (const Step &step : steps)
        {
            ItemCount count = 99;
            EXPECT_EQ(FSGetCatalogInfoBulk(iterator, step.asked, &count, nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr),
                      step.result);
            EXPECT_EQ(count, step.given);
        }
    }
}

TEST_P(Listings, EveryItemComesOnceWhateverTheStep)
{
    makeFiles(120);
    Names expected;
    for (int number = 0; number < 120; ++number)
        expected.push_back("file" + std::to_string(number));
    std::sort(expected.begin(), expected.end());
    for (ItemCount atOnce : {1u, 7u, 40u, 119u, 120u, 121u, 500u})
        EXPECT_EQ(namesFrom(OpenIterator(folderRef()), atOnce), expected) << atOnce;
}

// Each output by itself and together with every other: asked for or not, the others say the same.
TEST_P(Listings, EveryOutputIsOptional)
{
    makeFiles(3);
    mkdir((folder() / "folder").c_str(), 0755);
    for (unsigned wanted = 0; wanted < 32; ++wanted)
    {
        SCOPED_TRACE(wanted);
        OpenIterator iterator(folderRef());
        FSCatalogInfo infos[4]{};
        FSRef refs[4]{};
        FSSpec specs[4]{};
        HFSUniStr255 names[4]{};
        Boolean changed = 99;
        ItemCount count = 0;
        bool wantsInfo = wanted & 1, wantsRefs = wanted & 2, wantsSpecs = wanted & 4, wantsNames = wanted & 8, wantsChanged = wanted & 16;
        ASSERT_EQ(FSGetCatalogInfoBulk(iterator, 4, &count, wantsChanged ? &changed : nullptr, wantsInfo ? everything : kFSCatInfoNone,
                                       wantsInfo ? infos : nullptr, wantsRefs ? refs : nullptr, wantsSpecs ? specs : nullptr,
                                       wantsNames ? names : nullptr),
                  noErr);
        ASSERT_EQ(count, 4u);
        EXPECT_EQ(changed, wantsChanged ? 0 : 99);
        for (int i = 0; i < 4; ++i)
        {
            FSRef fromSpec{};
            if (wantsSpecs)
            {
                ASSERT_EQ(findSpec(specs[i], fromSpec), noErr);
            }
            if (wantsRefs && wantsNames)
            {
                EXPECT_EQ(nameOf(refs[i]), wide(names[i]));
            }
            if (wantsRefs && wantsSpecs)
            {
                EXPECT_TRUE(sameObject(refs[i], fromSpec));
            }
            if (wantsSpecs && wantsNames)
            {
                EXPECT_EQ(nameOf(fromSpec), wide(names[i]));
            }
            if (wantsRefs && wantsInfo)
            {
                EXPECT_EQ(nodeOf(refs[i]), infos[i].nodeID);
            }
            if (wantsInfo && wantsNames)
            {
                EXPECT_EQ((infos[i].nodeFlags & kFSNodeIsDirectoryMask) != 0, plain(names[i]) == "folder");
            }
        }
    }
}

TEST_P(Listings, RecordsAreThoseOfEachObject)
{
    makeFiles(3);
    FSRef typed = refAt(folder() / "file1");
    ASSERT_EQ(setType(typed, code("TYPE"), code("MAKR")), noErr);
    ASSERT_EQ(writeFork(typed, true, Bytes(123, 4)), noErr);
    ASSERT_EQ(setLock(refAt(folder() / "file2"), true), noErr);
    OpenIterator iterator(folderRef());
    FSCatalogInfo infos[4]{};
    FSRef refs[4]{};
    ItemCount count = 0;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 4, &count, nullptr, everything, infos, refs, nullptr, nullptr), errFSNoMoreItems);
    ASSERT_EQ(count, 3u);
    for (ItemCount i = 0; i < count; ++i)
    {
        FSCatalogInfo alone = infoOf(refs[i]);
        EXPECT_EQ(std::memcmp(&alone, &infos[i], sizeof alone), 0) << testing::PrintToString(nameOf(refs[i]));
    }
}

TEST_P(Listings, OutputsBehindTheLastItemAreUntouched)
{
    makeFiles(2);
    OpenIterator iterator(folderRef());
    FSCatalogInfo infos[3];
    FSRef refs[3];
    FSSpec specs[3];
    HFSUniStr255 names[3];
    std::memset(infos, 0xA5, sizeof infos);
    std::memset(refs, 0xA5, sizeof refs);
    std::memset(specs, 0xA5, sizeof specs);
    std::memset(names, 0xA5, sizeof names);
    ItemCount count = 0;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 3, &count, nullptr, everything, infos, refs, specs, names), errFSNoMoreItems);
    ASSERT_EQ(count, 2u);
    const auto isUntouched = [](const void *bytes, std::size_t size) {
        const auto *first = static_cast<const unsigned char *>(bytes);
        return std::all_of(first, first + size, [](unsigned char byte) { return byte == 0xA5; });
    };
    EXPECT_TRUE(isUntouched(&infos[2], sizeof infos[2]) && isUntouched(&refs[2], sizeof refs[2]));
    EXPECT_TRUE(isUntouched(&specs[2], sizeof specs[2]) && isUntouched(&names[2], sizeof names[2]));
}

// --- what is shown ----------------------------------------------------------------------------------------------------------------------------

TEST_P(Listings, SidecarsOfWhatIsThereAreHidden)
{
    writeFile(folder() / "file");
    writeFile(folder() / "._file", plainSidecar(bytesOf("fork")));
    mkdir((folder() / "folder").c_str(), 0755);
    writeFile(folder() / "._folder", plainSidecar({}));
    EXPECT_EQ(listed(), (Names{"file", "folder"}));
    EXPECT_EQ(infoOf(folderRef(), kFSCatInfoValence).valence, 2u);
}

TEST_P(Listings, AnOrphanIsAFileOfItsOwn)
{
    Bytes sidecar = plainSidecar(bytesOf("somebody's only copy"));
    writeFile(folder() / "._gone", sidecar);
    folder().expectOrphan("._gone");
    EXPECT_EQ(listed(), Names{"._gone"});
    EXPECT_EQ(infoOf(folderRef(), kFSCatInfoValence).valence, 1u);
    EXPECT_EQ(forkOf(childOf(folderRef(), "._gone"), false), sidecar);
}

TEST_P(Listings, ALeftoverIsHidden)
{
    writeFile(folder() / "file");
    writeFile(folder() / "._file", plainSidecar(bytesOf("fork")));
    if (link((folder() / "._file").c_str(), (folder() / "._older").c_str()) != 0)
        GTEST_SKIP() << "no links here";
    folder().expectOrphan("._older");
    EXPECT_EQ(listed(), Names{"file"});
    EXPECT_EQ(infoOf(folderRef(), kFSCatInfoValence).valence, 1u);
}

TEST_P(Listings, TemporariesOfTheLayerAreHidden)
{
    writeFile(folder() / ".zerb-1-2");
    writeFile(folder() / ".zerbra");
    EXPECT_EQ(listed(), Names{".zerbra"});
    EXPECT_EQ(infoOf(folderRef(), kFSCatInfoValence).valence, 1u);
    unlink((folder() / ".zerb-1-2").c_str());
}

TEST_P(Listings, OtherNamesWithADotAreShown)
{
    for (const char *name : {".hidden", "._", "..three", ".DS_Store"})
        writeFile(folder() / name);
    mkdir((folder() / "._file").c_str(), 0755);   // a folder is nobody's sidecar
    writeFile(folder() / "file");
    EXPECT_EQ(listed(), (Names{"..three", ".DS_Store", "._", "._file", ".hidden", "file"}));
    rmdir((folder() / "._file").c_str());
}

// --- refusals ---------------------------------------------------------------------------------------------------------------------------------

TEST_P(Listings, BadFlagsAreRefused)
{
    FSRef ref = folderRef();
    for (FSIteratorFlags flags : {1u, 3u, 4u, 0x80000000u, 0xFFFFFFFFu})
    {
        FSIterator iterator = reinterpret_cast<FSIterator>(0x55);
        EXPECT_EQ(FSOpenIterator(&ref, flags, &iterator), errFSBadIteratorFlags) << flags;
        EXPECT_EQ(iterator, reinterpret_cast<FSIterator>(0x55));
    }
}

TEST_P(Listings, OnlyAFolderIsListed)
{
    writeFile(folder() / "file");
    FSRef file = refAt(folder() / "file"), nothing{}, ref = folderRef();
    FSIterator iterator = reinterpret_cast<FSIterator>(0x55);
    EXPECT_EQ(FSOpenIterator(&file, kFSIterateFlat, &iterator), errFSNotAFolder);
    EXPECT_EQ(FSOpenIterator(&nothing, kFSIterateFlat, &iterator), errFSBadFSRef);
    EXPECT_EQ(FSOpenIterator(nullptr, kFSIterateFlat, &iterator), paramErr);
    EXPECT_EQ(FSOpenIterator(&ref, kFSIterateFlat, nullptr), paramErr);
    EXPECT_EQ(iterator, reinterpret_cast<FSIterator>(0x55));
}

TEST_P(Listings, ABadCountIsRefused)
{
    makeFiles(1);
    OpenIterator iterator(folderRef());
    ItemCount count = 99;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 0, &count, nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), errFSBadItemCount);
    EXPECT_EQ(count, 99u);
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, nullptr, nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), errFSBadItemCount);
    EXPECT_EQ(namesFrom(iterator, 3), Names{"file0"}) << "nothing was taken";
}

TEST_P(Listings, ABadRequestForRecordsIsRefused)
{
    makeFiles(1);
    OpenIterator iterator(folderRef());
    FSCatalogInfo info{};
    ItemCount count = 99;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, 0x00040000, &info, nullptr, nullptr, nullptr), errFSBadInfoBitmap);
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, 0x80000000, &info, nullptr, nullptr, nullptr), errFSBadInfoBitmap);
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, kFSCatInfoNodeID, nullptr, nullptr, nullptr, nullptr),
              errFSMissingCatInfo);
    EXPECT_EQ(count, 99u);
    EXPECT_EQ(namesFrom(iterator, 3), Names{"file0"}) << "nothing was taken";
}

TEST_P(Listings, OnlyAnOpenIteratorIsTaken)
{
    FSRef ref = folderRef();
    FSIterator closed = nullptr;
    ASSERT_EQ(FSOpenIterator(&ref, kFSIterateFlat, &closed), noErr);
    ASSERT_EQ(FSCloseIterator(closed), noErr);
    int something = 0;
    for (FSIterator bad :
         {FSIterator{}, closed, reinterpret_cast<FSIterator>(&something), reinterpret_cast<FSIterator>(~std::uintptr_t{0})})
    {
        ItemCount count = 99;
        EXPECT_EQ(FSGetCatalogInfoBulk(bad, 1, &count, nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), errFSIteratorNotFound);
        EXPECT_EQ(count, 99u);
        EXPECT_EQ(FSCloseIterator(bad), errFSIteratorNotFound);
    }
}

ON_EVERY_DISK(Listings);

}   // namespace
