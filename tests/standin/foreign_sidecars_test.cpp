// Sidecars that other programs wrote, whole and broken: read right, kept byte for byte, never destroyed.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class ForeignSidecars : public DiskTest
{
protected:
    FSRef withSidecar(const Bytes &sidecar, const std::string &name = "file")
    {
        writeFile(folder() / name, "data");
        writeFile(folder() / ("._" + name), sidecar);
        return refAt(folder() / name);
    }
};

Bytes sample(const std::string &name)
{
    return readFile(std::string(ZERB_TEST_DATA) + "/" + name);
}

struct Entry
{
    std::uint32_t offset, length;
};

// Where an entry lies, by the table alone.
Entry entryOf(const Bytes &sidecar, std::uint32_t id)
{
    std::size_t count = big32(sidecar, 22) & 0xFFFF;
    for (std::size_t i = 0; i < count; ++i)
        if (big32(sidecar, 26 + 12 * i) == id)
            return {big32(sidecar, 30 + 12 * i), big32(sidecar, 34 + 12 * i)};
    ADD_FAILURE() << "no entry " << id;
    return {};
}

Bytes piece(const Bytes &bytes, std::size_t at, std::size_t length)
{
    if (at + length > bytes.size())
    {
        ADD_FAILURE() << "past the end";
        return {};
    }
    return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.begin() + static_cast<std::ptrdiff_t>(at + length));
}

// A sidecar with its 32 bytes of Finder information taken out: what a change of type leaves alone.
Bytes withoutFinderInfo(Bytes sidecar)
{
    Entry finder = entryOf(sidecar, 9);
    std::fill_n(sidecar.begin() + finder.offset, 32, std::uint8_t{0});
    return sidecar;
}

TEST_P(ForeignSidecars, AFileServersIsRead)
{
    Bytes sidecar = sample("netatalk3-picture.adouble");
    FSRef ref = withSidecar(sidecar);
    FSCatalogInfo info = infoOf(ref);
    EXPECT_EQ(+info.rsrcLogicalSize, 44549u);
    EXPECT_EQ(+fileInfo(info).finderFlags, 0x0500);
    EXPECT_EQ(+fileInfo(info).location.v, 64);
    EXPECT_EQ(+fileInfo(info).location.h, 1);
    EXPECT_EQ(forkOf(ref), piece(sidecar, 82, 44549));
    EXPECT_EQ(readFile(folder() / "._file"), sidecar);
}

TEST_P(ForeignSidecars, AChangeOfTypeLeavesTheRestAlone)
{
    for (std::string name : {"netatalk3-picture.adouble", "macos-attributes.adouble"})
    {
        SCOPED_TRACE(name);
        Bytes sidecar = sample(name);
        FSRef ref = withSidecar(sidecar, name);
        UInt16 flags = fileInfo(infoOf(ref)).finderFlags;
        ASSERT_EQ(setType(ref, code("PICT"), code("ttxt"), flags), noErr);
        EXPECT_EQ(withoutFinderInfo(readFile(folder() / ("._" + name))), withoutFinderInfo(sidecar));
        FileInfo after = fileInfo(infoOf(refAt(folder() / name)));
        EXPECT_EQ(+after.fileType, code("PICT"));
        EXPECT_EQ(+after.finderFlags, flags);
    }
}

// The attributes that macOS keeps behind the Finder information: their offsets count from the start of the file.
Bytes attributeValue(const Bytes &sidecar, const std::string &wanted)
{
    std::size_t header = entryOf(sidecar, 9).offset + 34, at = header + 36;
    EXPECT_EQ(piece(sidecar, header, 4), bytesOf("ATTR"));
    std::size_t count = big32(sidecar, header + 32) & 0xFFFF;
    for (std::size_t i = 0; i < count; ++i)
    {
        std::size_t nameLength = sidecar.at(at + 10);
        Bytes name = piece(sidecar, at + 11, nameLength - 1);
        if (name == bytesOf(wanted))
            return piece(sidecar, big32(sidecar, at), big32(sidecar, at + 4));
        at = (at + 11 + nameLength + 3) / 4 * 4;
    }
    ADD_FAILURE() << "no attribute " << wanted;
    return {};
}

void expectAttributes(const Bytes &sidecar)
{
    EXPECT_EQ(attributeValue(sidecar, "com.opcoders.a_first"), bytesOf("first"));
    EXPECT_EQ(attributeValue(sidecar, "com.opcoders.b_second"), bytesOf("second"));
    EXPECT_EQ(attributeValue(sidecar, "com.opcoders.c_empty"), Bytes{});
    EXPECT_EQ(attributeValue(sidecar, "com.opcoders.d_last"), bytesOf("last"));
}

TEST_P(ForeignSidecars, TheAttributesOfMacOSOutliveEveryChange)
{
    Bytes sidecar = sample("macos-attributes.adouble");
    expectAttributes(sidecar);
    FSRef ref = withSidecar(sidecar);
    EXPECT_EQ(+infoOf(ref).rsrcLogicalSize, 0u);

    ASSERT_EQ(writeFork(ref, true, Bytes(1000, 0x33)), noErr);
    expectAttributes(readFile(folder() / "._file"));
    FSCatalogInfo dates{};
    dates.createDate = dateOfUnix(1000000000, 1);
    dates.backupDate = dateOfUnix(1100000000, 2);
    ASSERT_EQ(change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate, dates), noErr);
    expectAttributes(readFile(folder() / "._file"));
    ASSERT_EQ(setLock(ref, true), noErr);
    expectAttributes(readFile(folder() / "._file"));
    ASSERT_EQ(setLock(ref, false), noErr);
    ASSERT_EQ(writeFork(ref, true, Bytes(10, 0x44)), noErr);
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    expectAttributes(readFile(folder() / "._renamed"));

    FSCatalogInfo after = infoOf(ref);
    EXPECT_EQ(after.createDate, dates.createDate);
    EXPECT_EQ(after.backupDate, dates.backupDate);
    EXPECT_EQ(forkOf(ref), Bytes(10, 0x44));
}

TEST_P(ForeignSidecars, UnknownEntriesAreKept)
{
    Bytes unknown = bytesOf("what only its writer knows"), fork(50, 6), realName = bytesOf("Real name");
    FSRef ref = withSidecar(sidecarOf({{3, 90, realName}, {9, 100, Bytes(32, 0)}, {0x80000001, 140, unknown}, {2, 170, fork}}));
    EXPECT_EQ(forkOf(ref), fork);
    ASSERT_EQ(writeFork(ref, true, Bytes(500, 9)), noErr);
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(setLock(ref, true), noErr);
    ASSERT_EQ(setLock(ref, false), noErr);
    Bytes after = readFile(folder() / "._file");
    Entry kept = entryOf(after, 0x80000001), name = entryOf(after, 3);
    EXPECT_EQ(piece(after, kept.offset, kept.length), unknown);
    EXPECT_EQ(piece(after, name.offset, name.length), realName);
    EXPECT_EQ(forkOf(ref), Bytes(500, 9));
}

TEST_P(ForeignSidecars, EveryOrderAndVersionIsRead)
{
    Bytes info(32), fork(77, 3);
    std::copy_n("TEXTttxt", 8, info.begin());
    std::vector<Bytes> sidecars{
        sidecarOf({{2, 82, fork}, {9, 50, info}}),
        sidecarOf({{2, 50, fork}, {9, 127, info}}),     // the fork first
        sidecarOf({{9, 500, info}, {2, 5000, fork}}),   // holes
        sidecarOf({{9, 74, info}, {4, 106, {}}, {15, 106, {1}}, {2, 107, fork}}),
        sidecarOf({{9, 50, info}, {2, 82, fork}}, ""),   // filler of zeros
    };
    sidecars.push_back(sidecars.front());
    sidecars.back()[5] = 1;   // version 1
    int number = 0;
    for (const Bytes &sidecar : sidecars)
    {
        SCOPED_TRACE(number);
        FSRef ref = withSidecar(sidecar, "file" + std::to_string(number++));
        EXPECT_EQ(typeOf(ref), code("TEXT"));
        EXPECT_EQ(forkOf(ref), fork);
    }
}

TEST_P(ForeignSidecars, AnEmptyTableSaysNothing)
{
    FSRef ref = withSidecar(sidecarOf({}));
    FSCatalogInfo info = infoOf(ref);
    EXPECT_EQ(+info.rsrcLogicalSize, 0u);
    EXPECT_EQ(typeOf(ref), 0u);
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
}

struct Broken
{
    const char *name;
    Bytes bytes;
};

std::vector<Broken> brokenSidecars()
{
    Bytes good = plainSidecar(Bytes(20, 5));
    auto changed = [&](std::size_t at, std::uint32_t value) {
        Bytes bytes = good;
        for (std::size_t i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
        return bytes;
    };
    return {
        {"empty", {}},
        {"one byte", {0}},
        {"cut off in its header", Bytes(good.begin(), good.begin() + 20)},
        {"cut off in its table", Bytes(good.begin(), good.begin() + 40)},
        {"cut off in its Finder information", Bytes(good.begin(), good.begin() + 60)},
        {"cut off in its fork", Bytes(good.begin(), good.end() - 1)},
        {"a wrong magic number", changed(0, 0x00051608)},
        {"an unknown version", changed(4, 0x00030000)},
        {"a fork past the end", changed(42, 0x00010000)},
        {"a fork of nearly 4 GiB", changed(46, 0xFFFFFFFF)},
        {"a fork whose end wraps", changed(42, 0xFFFFFFF0)},
        {"Finder information past the end", changed(30, 0x7FFFFFFF)},
        {"entries that overlap", changed(42, 60)},
        {"an entry over the table", changed(30, 10)},
        {"entry 0", changed(26, 0)},
        {"an entry twice", changed(38, 9)},
        {"65535 entries", changed(22, 0x0000FFFF)},
        {"text", bytesOf("this is no sidecar but somebody's own file with an unlucky name")},
    };
}

// Bytes are never lost: they are still under some name of the folder.
bool stillSomewhere(const std::string &folder, const Bytes &bytes)
{
    for (const std::string &name : namesIn(folder))
    {
        struct stat record;
        if (lstat((folder + "/" + name).c_str(), &record) == 0 && S_ISREG(record.st_mode) && readFile(folder + "/" + name) == bytes)
            return true;
    }
    return false;
}

TEST_P(ForeignSidecars, BrokenOnesHideNothingAndAreNotDestroyed)
{
    for (const Broken &broken : brokenSidecars())
    {
        SCOPED_TRACE(broken.name);
        std::string place = folder() / broken.name;
        mkdir(place.c_str(), 0755);
        writeFile(place + "/file", "data");
        writeFile(place + "/._file", broken.bytes);
        FSRef ref = refAt(place + "/file");
        EXPECT_EQ(+infoOf(ref, kFSCatInfoDataSizes | kFSCatInfoContentMod | kFSCatInfoNodeID).dataLogicalSize, 4u);
        EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
        FSCatalogInfo info{};
        FSGetCatalogInfo(&ref, everything, &info, nullptr, nullptr, nullptr);   // any result
        EXPECT_EQ(readFile(place + "/._file"), broken.bytes);

        setType(ref, code("TEXT"), code("ttxt"));
        writeFork(ref, true, {1, 2, 3});
        setLock(ref, true);
        setLock(ref, false);
        EXPECT_TRUE(stillSomewhere(place, broken.bytes));
        EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
    }
}

TEST_P(ForeignSidecars, BrokenOnesTravelWithTheirFile)
{
    for (const Broken &broken : brokenSidecars())
    {
        SCOPED_TRACE(broken.name);
        FSRef ref = withSidecar(broken.bytes);
        ASSERT_EQ(rename(ref, "renamed"), noErr);
        EXPECT_EQ(readFile(folder() / "._renamed"), broken.bytes);
        EXPECT_FALSE(exists(folder() / "._file"));
        // A deletion leaves what is no sidecar: it may be somebody's own file, and is now seen as one.
        ASSERT_EQ(FSDeleteObject(&ref), noErr);
        EXPECT_EQ(readFile(folder() / "._renamed"), broken.bytes);
        FSRef left = refAt(folder() / "._renamed");
        ASSERT_EQ(FSDeleteObject(&left), noErr);
        EXPECT_TRUE(namesIn(folder().path()).empty());
    }
}

// Everything one may ask of a file; the results do not matter, coming back does.
void askForEverything(FSRef ref)
{
    FSCatalogInfo info{};
    SInt16 fork = 0;
    FSGetCatalogInfo(&ref, everything, &info, nullptr, nullptr, nullptr);
    for (SInt8 permission : {fsRdPerm, fsRdWrPerm})
        if (openFork(ref, true, permission, fork) == noErr)
            FSCloseFork(fork);
    setType(ref, code("TEXT"), 0);
    setLock(ref, true);
    setLock(ref, false);
}

class NoSidecars : public ForeignSidecars
{
protected:
    // A fifo that is opened without care waits for ever: then the clock ends the tests.
    void SetUp() override
    {
        ForeignSidecars::SetUp();
        alarm(60);
    }
    void TearDown() override { alarm(0); }
};

TEST_P(NoSidecars, AFifoIsNotOpened)
{
    writeFile(folder() / "file", "data");
    ASSERT_EQ(mkfifo((folder() / "._file").c_str(), 0644), 0);
    FSRef ref = refAt(folder() / "file");
    EXPECT_EQ(+infoOf(ref, kFSCatInfoDataSizes).dataLogicalSize, 4u);
    askForEverything(ref);
    EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
    EXPECT_TRUE(S_ISFIFO(statxOf(folder() / "._file").stx_mode));
}

TEST_P(NoSidecars, ADirectoryIsLeftAlone)
{
    writeFile(folder() / "file", "data");
    mkdir((folder() / "._file").c_str(), 0755);
    writeFile(folder() / "._file/inside", "inside");
    FSRef ref = refAt(folder() / "file");
    EXPECT_EQ(+infoOf(ref, kFSCatInfoDataSizes).dataLogicalSize, 4u);
    askForEverything(ref);
    EXPECT_EQ(readFile(folder() / "._file/inside"), bytesOf("inside"));
}

TEST_P(NoSidecars, ASymbolicLinkIsNotFollowed)
{
    writeFile(folder() / "file", "data");
    Bytes target = plainSidecar(bytesOf("not the file's fork"));
    writeFile(folder() / "target", target);
    ASSERT_EQ(symlink("target", (folder() / "._file").c_str()), 0);
    FSRef ref = refAt(folder() / "file");
    EXPECT_EQ(+infoOf(ref, kFSCatInfoDataSizes).dataLogicalSize, 4u);
    SInt16 fork = 0;
    if (openFork(ref, true, fsRdPerm, fork) == noErr)
    {
        SInt64 size = 0;
        FSGetForkSize(fork, &size);   // a size of none, or an error
        EXPECT_EQ(size, 0);
        FSCloseFork(fork);
    }
    askForEverything(ref);
    writeFork(ref, true, {1, 2, 3});
    EXPECT_EQ(readFile(folder() / "target"), target);
}

ON_EVERY_DISK(ForeignSidecars);
ON_EVERY_DISK(NoSidecars);

}   // namespace
