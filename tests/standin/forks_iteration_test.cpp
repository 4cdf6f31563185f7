// Which forks a file has, and how large they are.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <cstring>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

struct ForkSeen
{
    std::vector<UniChar> name;
    SInt64 size;
    UInt64 physicalSize;
};

// Every fork, up to the end, which must be told again and again.
std::vector<ForkSeen> forksOf(const FSRef &ref)
{
    std::vector<ForkSeen> forks;
    CatPositionRec position{};
    std::memset(position.priv, 0x5A, sizeof position.priv);   // only `initialize` counts at first
    for (;;)
    {
        HFSUniStr255 name{};
        ForkSeen seen{{}, -1, 99};
        OSErr result = FSIterateForks(&ref, &position, &name, &seen.size, &seen.physicalSize);
        if (result != noErr)
        {
            EXPECT_EQ(result, errFSNoMoreItems);
            EXPECT_EQ(FSIterateForks(&ref, &position, &name, &seen.size, nullptr), errFSNoMoreItems);
            EXPECT_EQ(seen.size, -1) << "written at the end";
            return forks;
        }
        seen.name.assign(name.unicode, name.unicode + name.length);
        forks.push_back(seen);
        if (forks.size() > 2)
        {
            ADD_FAILURE() << "no end";
            return forks;
        }
    }
}

class ForksIteration : public DiskTest
{
protected:
    FSRef fileRef(const std::string &name, const Bytes &data, const Bytes &fork = {})
    {
        writeFile(folder() / name, data);
        FSRef ref = refAt(folder() / name);
        if (!fork.empty())
        {
            EXPECT_EQ(writeFork(ref, true, fork), noErr);
        }
        return ref;
    }
};

TEST_P(ForksIteration, AFileWithOnlyADataForkHasOne)
{
    std::vector<ForkSeen> forks = forksOf(fileRef("file", Bytes(5000, 1)));
    ASSERT_EQ(forks.size(), 1u);
    EXPECT_TRUE(forks[0].name.empty());
    EXPECT_EQ(forks[0].size, 5000);
    EXPECT_EQ(forks[0].physicalSize, statxOf(folder() / "file").stx_blocks * 512);
}

TEST_P(ForksIteration, AnEmptyFileHasItsDataForkToo)
{
    std::vector<ForkSeen> forks = forksOf(fileRef("file", {}));
    ASSERT_EQ(forks.size(), 1u);
    EXPECT_EQ(forks[0].size, 0);
    EXPECT_EQ(forks[0].physicalSize, 0u);
}

TEST_P(ForksIteration, AResourceForkIsTheSecond)
{
    std::vector<ForkSeen> forks = forksOf(fileRef("file", {}, Bytes(70000, 2)));
    ASSERT_EQ(forks.size(), 2u);
    EXPECT_EQ(forks[1].name, resourceForkName());
    EXPECT_EQ(forks[1].size, 70000);
    EXPECT_EQ(forks[1].physicalSize, statxOf(folder() / "._file").stx_blocks * 512);
}

TEST_P(ForksIteration, AResourceForkWithoutBytesIsNone)
{
    FSRef ref = fileRef("file", Bytes(3, 1), Bytes(100, 2));
    ASSERT_EQ(writeFork(ref, true, {}), noErr);
    ASSERT_TRUE(exists(folder() / "._file"));
    EXPECT_EQ(forksOf(ref).size(), 1u);
}

TEST_P(ForksIteration, EveryOutputMayBeLeftOut)
{
    FSRef ref = fileRef("file", Bytes(3, 1), Bytes(100, 2));
    CatPositionRec position{};
    EXPECT_EQ(FSIterateForks(&ref, &position, nullptr, nullptr, nullptr), noErr);
    SInt64 size = 0;
    EXPECT_EQ(FSIterateForks(&ref, &position, nullptr, &size, nullptr), noErr);
    EXPECT_EQ(size, 100);
    EXPECT_EQ(FSIterateForks(&ref, &position, nullptr, nullptr, nullptr), errFSNoMoreItems);
}

TEST_P(ForksIteration, TwoRecordsDoNotKnowOfEachOther)
{
    FSRef first = fileRef("first", Bytes(3, 1), Bytes(100, 2)), second = fileRef("second", Bytes(4, 1), Bytes(200, 2));
    CatPositionRec one{}, two{};
    SInt64 size = 0;
    EXPECT_EQ(FSIterateForks(&first, &one, nullptr, &size, nullptr), noErr);
    CatPositionRec copy = one;
    EXPECT_EQ(FSIterateForks(&second, &two, nullptr, &size, nullptr), noErr);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(FSIterateForks(&first, &one, nullptr, &size, nullptr), noErr);
    EXPECT_EQ(size, 100);
    EXPECT_EQ(FSIterateForks(&second, &two, nullptr, &size, nullptr), noErr);
    EXPECT_EQ(size, 200);
    EXPECT_EQ(FSIterateForks(&first, &copy, nullptr, &size, nullptr), noErr) << "a copied record goes on where it was copied";
    EXPECT_EQ(size, 100);
}

TEST_P(ForksIteration, RecordsFromElsewhereAreRefused)
{
    FSRef ref = fileRef("file", Bytes(3, 1), Bytes(100, 2));
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round)
    {
        CatPositionRec position{};
        FSIterateForks(&ref, &position, nullptr, nullptr, nullptr);   // some begin as good ones
        for (SInt16 &word : position.priv)
            if (round % 2 == 0 || random() % 3 == 0)
                word = static_cast<SInt16>(random());
        if (round % 2 == 0)
            position.initialize = static_cast<SInt32>(random() | 1u);
        SInt64 size = -1;
        OSErr result = FSIterateForks(&ref, &position, nullptr, &size, nullptr);
        EXPECT_TRUE(result == paramErr || result == noErr || result == errFSNoMoreItems) << result;
        EXPECT_EQ(size, result == noErr ? 100 : -1);
    }
    EXPECT_EQ(FSIterateForks(&ref, nullptr, nullptr, nullptr, nullptr), paramErr);
    CatPositionRec position{};
    EXPECT_EQ(FSIterateForks(nullptr, &position, nullptr, nullptr, nullptr), paramErr);
    FSRef forged{};
    std::memset(forged.hidden, 0x5A, sizeof forged.hidden);
    EXPECT_EQ(FSIterateForks(&forged, &position, nullptr, nullptr, nullptr), errFSBadFSRef);
}

TEST_P(ForksIteration, WhatIsNoPlainFile)
{
    mkdir((folder() / "inner").c_str(), 0755);
    ASSERT_EQ(symlink("nowhere", (folder() / "link").c_str()), 0);
    ASSERT_EQ(mkfifo((folder() / "fifo").c_str(), 0644), 0);
    FSRef root = refAt(folder().path()), inner = childOf(root, "inner");
    CatPositionRec position{};
    SInt64 size = -1;
    EXPECT_EQ(FSIterateForks(&root, &position, nullptr, &size, nullptr), notAFileErr);
    EXPECT_EQ(FSIterateForks(&inner, &position, nullptr, &size, nullptr), notAFileErr);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(position.initialize, 0) << "a refused call does not begin";
    for (const char *name : {"link", "fifo"})
    {
        FSRef ref = childOf(root, name);
        std::vector<ForkSeen> forks = forksOf(ref);
        ASSERT_EQ(forks.size(), 1u) << name;
        EXPECT_EQ(static_cast<UInt64>(forks[0].size), infoOf(ref).dataLogicalSize) << name;
    }
}

TEST_P(ForksIteration, AgreesWithTheCatalogAboutForeignSidecars)
{
    for (std::string name : {"netatalk3-picture.adouble", "macos-attributes.adouble"})
    {
        FSRef ref = fileRef(name, Bytes(3, 1));
        writeFile(folder() / ("._" + name), readFile(std::string(ZERB_TEST_DATA) + "/" + name));
        FSCatalogInfo info = infoOf(ref);
        std::vector<ForkSeen> forks = forksOf(ref);
        ASSERT_EQ(forks.size(), info.rsrcLogicalSize ? 2u : 1u);
        EXPECT_EQ(static_cast<UInt64>(forks.back().size), info.rsrcLogicalSize ? info.rsrcLogicalSize : info.dataLogicalSize);
    }
    FSRef damaged = fileRef("damaged", Bytes(3, 1));
    writeFile(folder() / "._damaged", "no sidecar at all");
    EXPECT_EQ(forksOf(damaged).size(), 1u);
}

TEST_P(ForksIteration, AFileThatGoesMeanwhileIsToldOf)
{
    FSRef ref = fileRef("file", Bytes(3, 1), Bytes(100, 2));
    CatPositionRec position{};
    ASSERT_EQ(FSIterateForks(&ref, &position, nullptr, nullptr, nullptr), noErr);
    ASSERT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_EQ(FSIterateForks(&ref, &position, nullptr, nullptr, nullptr), fnfErr);
}

ON_EVERY_DISK(ForksIteration);

}   // namespace
