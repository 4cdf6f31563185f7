// What a reference goes on naming, and what it never names.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class References : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }
    FSRef fileRef(const std::string &name, std::string_view text = "data")
    {
        writeFile(folder() / name, text);
        return refAt(folder() / name);
    }
    // Births tell old from new only where they are compared.
    bool comparesBirths() { return disk().hasBirthTimes && disk().kind != DiskKind::overlay; }
};

// The references that a listing gives, which know no birth but the moment.
FSRef listedRef(const FSRef &folder)
{
    FSIterator iterator = nullptr;
    FSRef ref{};
    ItemCount count = 0;
    EXPECT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
    OSErr result = FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, kFSCatInfoNone, nullptr, &ref, nullptr, nullptr);
    EXPECT_TRUE(result == noErr || result == errFSNoMoreItems);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    return ref;
}

TEST_P(References, PathsGoThereAndBack)
{
    mkdir((folder() / "inner").c_str(), 0755);
    writeFile(folder() / "inner/file", "x");
    for (const std::string &path : {folder().path(), folder() / "inner", folder() / "inner/file"})
        EXPECT_EQ(pathOf(refAt(path)), path);
    Boolean isFolder = 9;
    FSRef ref{};
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8 *>((folder() / "inner").c_str()), &ref, &isFolder), noErr);
    EXPECT_EQ(isFolder, 1);
    EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8 *>((folder() / "inner/file").c_str()), &ref, &isFolder), noErr);
    EXPECT_EQ(isFolder, 0);
}

TEST_P(References, AMissingPathHasNoReference)
{
    FSRef ref{};
    EXPECT_EQ(findRef(folder() / "missing", ref), fnfErr);
    EXPECT_NE(findRef(folder() / "missing/file", ref), noErr);
    writeFile(folder() / "file");
    EXPECT_NE(findRef(folder() / "file/below", ref), noErr);
    EXPECT_NE(findRef("", ref), noErr);
    EXPECT_EQ(findChild(folderRef(), units("missing"), ref), fnfErr);
}

TEST_P(References, APathThatDoesNotFitIsNotWritten)
{
    std::string path = folder().path();
    FSRef ref = refAt(path);
    std::vector<UInt8> buffer(path.size() + 10, 0xAA);
    EXPECT_NE(FSRefMakePath(&ref, buffer.data(), static_cast<UInt32>(path.size())), noErr);   // no room for the zero byte
    for (std::size_t i = path.size(); i < buffer.size(); ++i)
        EXPECT_EQ(buffer[i], 0xAA);
    EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), static_cast<UInt32>(path.size() + 1)), noErr);
    EXPECT_EQ(reinterpret_cast<const char *>(buffer.data()), path);
}

TEST_P(References, KeptWhenTheLayerRenamesOrMoves)
{
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef ref = fileRef("file"), old = ref, inner = refAt(folder() / "inner");
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    EXPECT_EQ(nameOf(old), u"renamed");
    EXPECT_EQ(nameOf(ref), u"renamed");
    ASSERT_EQ(move(ref, inner), noErr);
    EXPECT_EQ(pathOf(old), folder() / "inner/renamed");
    EXPECT_EQ(pathOf(ref), folder() / "inner/renamed");
    EXPECT_TRUE(sameObject(parentOf(old), inner));
}

TEST_P(References, AFoldersContentsMoveWithIt)
{
    mkdir((folder() / "one").c_str(), 0755);
    mkdir((folder() / "two").c_str(), 0755);
    FSRef child = fileRef("one/file"), one = refAt(folder() / "one"), two = refAt(folder() / "two");
    UInt32 node = nodeOf(one);
    ASSERT_EQ(move(one, two), noErr);
    ASSERT_EQ(rename(one, "three"), noErr);
    EXPECT_EQ(pathOf(child), folder() / "two/three/file");
    EXPECT_EQ(nodeOf(one), node);
    EXPECT_EQ(+infoOf(child, kFSCatInfoParentDirID).parentDirID, node);
}

TEST_P(References, KeptWhenMvRenames)
{
    // No other test moves anything to this name: without births, an inode number that comes again would bring an old move to mind.
    FSRef ref = fileRef("file");
    usleep(50000);   // a reference without an exact birth looks for other names only when the file is surely older
    moveByProgram(folder() / "file", folder() / "renamed by mv");
    if (comparesBirths())
    {
        EXPECT_EQ(nameOf(ref), u"renamed by mv");
        EXPECT_EQ(setType(ref, code("TEXT"), 0), noErr);
    }
    else
    {
        EXPECT_EQ(checkRef(ref), fnfErr);
    }
}

TEST_P(References, AListedReferenceIsKeptWhenMvRenames)
{
    if (!comparesBirths())
        GTEST_SKIP() << "without births only the own name counts";
    fileRef("file");
    usleep(50000);
    FSRef ref = listedRef(folderRef());
    moveByProgram(folder() / "file", folder() / "renamed");
    EXPECT_EQ(nameOf(ref), u"renamed");
}

TEST_P(References, AFolderIsKeptWhenMvRenames)
{
    if (!comparesBirths())
        GTEST_SKIP() << "without births only the own name counts";
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef child = fileRef("inner/file"), inner = refAt(folder() / "inner");
    usleep(50000);
    moveByProgram(folder() / "inner", folder() / "outer");
    EXPECT_EQ(nameOf(inner), u"outer");
    EXPECT_EQ(pathOf(child), folder() / "outer/file");
}

TEST_P(References, ADeletedObjectIsNotFound)
{
    FSRef ref = fileRef("file"), listed = listedRef(folderRef());
    unlink((folder() / "file").c_str());
    EXPECT_EQ(checkRef(ref), fnfErr);
    EXPECT_EQ(checkRef(listed), fnfErr);
    FSRef other = fileRef("other");
    EXPECT_EQ(FSDeleteObject(&other), noErr);
    EXPECT_EQ(checkRef(other), fnfErr);
    EXPECT_EQ(FSDeleteObject(&other), fnfErr);
}

// Whether nothing that Linux tells could tell the two apart.
bool indistinguishable(const struct statx &a, const struct statx &b)
{
    return a.stx_ino == b.stx_ino && a.stx_btime.tv_sec == b.stx_btime.tv_sec && a.stx_btime.tv_nsec == b.stx_btime.tv_nsec;
}

TEST_P(References, ANewObjectOfTheSameNameIsAnother)
{
    if (!comparesBirths())
        GTEST_SKIP() << "nothing tells a new object of the same inode number and name here";
    int sameInode = 0, told = 0;
    for (int round = 0; round < 200; ++round)
    {
        FSRef ref = fileRef("file");
        struct statx before = statxOf(folder() / "file");
        unlink((folder() / "file").c_str());
        writeFile(folder() / "file", "another");
        struct statx after = statxOf(folder() / "file");
        sameInode += before.stx_ino == after.stx_ino;
        if (!indistinguishable(before, after))
        {
            ++told;
            ASSERT_EQ(checkRef(ref), fnfErr) << "round " << round;
        }
        unlink((folder() / "file").c_str());
        usleep(round % 10 == 0 ? 5000 : 0);   // births are as coarse as the clock's ticks
    }
    RecordProperty("sameInode", sameInode);
    EXPECT_GT(told, 0);
}

TEST_P(References, ANewObjectIsNotTheListedOne)
{
    if (!comparesBirths())
        GTEST_SKIP() << "nothing tells a new object of the same inode number and name here";
    for (int round = 0; round < 20; ++round)
    {
        writeFile(folder() / "file");
        FSRef ref = listedRef(folderRef());
        unlink((folder() / "file").c_str());
        usleep(20000);
        writeFile(folder() / "file", "another");
        ASSERT_EQ(checkRef(ref), fnfErr) << "round " << round;
        unlink((folder() / "file").c_str());
    }
}

TEST_P(References, ANewObjectWithTheOldInodeUnderAnotherNameIsAnother)
{
    for (int round = 0; round < 50; ++round)
    {
        FSRef ref = fileRef("file" + std::to_string(round));
        struct statx before = statxOf(folder() / ("file" + std::to_string(round)));
        unlink((folder() / ("file" + std::to_string(round))).c_str());
        usleep(5000);
        std::string other = folder() / ("other" + std::to_string(round));
        writeFile(other, "another");
        struct statx after = statxOf(other);
        if (!comparesBirths() || !indistinguishable(before, after))
        {
            ASSERT_EQ(checkRef(ref), fnfErr) << "round " << round << (before.stx_ino == after.stx_ino ? ", same inode" : "");
        }
    }
}

// What was inside a deleted folder is looked for in vain; that must not have the folder taken for a file that got its inode number.
TEST_P(References, ADeletedFolderIsNoFileWithItsInode)
{
    mkdir((folder() / "inner").c_str(), 0755);
    const auto number = statxOf(folder() / "inner").stx_ino;
    FSRef child = fileRef("inner/file"), inner = refAt(folder() / "inner");
    ASSERT_EQ(FSDeleteObject(&child), noErr);
    ASSERT_EQ(FSDeleteObject(&inner), noErr);
    bool isReused = false;
    for (int i = 0; i < 300 && !isReused; ++i)
    {
        const std::string other = folder() / ("other" + std::to_string(i));
        writeFile(other);
        isReused = statxOf(other).stx_ino == number;
    }
    EXPECT_NE(checkRef(child), noErr);
    EXPECT_EQ(checkRef(inner), fnfErr);
    RecordProperty("isReused", isReused);
}

TEST_P(References, AFileSavedAnewIsAnother)
{
    FSRef ref = fileRef("file", "old");
    writeFile(folder() / "new", "new");
    moveByProgram(folder() / "new", folder() / "file");
    EXPECT_EQ(checkRef(ref), fnfErr);
    EXPECT_EQ(checkRef(refAt(folder() / "file")), noErr);
}

TEST_P(References, EachHardLinkHasItsOwnReference)
{
    FSRef first = fileRef("first");
    ASSERT_EQ(link((folder() / "first").c_str(), (folder() / "second").c_str()), 0);
    FSRef second = refAt(folder() / "second");
    EXPECT_EQ(nameOf(first), u"first");
    EXPECT_EQ(nameOf(second), u"second");
    ASSERT_EQ(link((folder() / "first").c_str(), (folder() / "third").c_str()), 0);
    unlink((folder() / "first").c_str());
    EXPECT_EQ(checkRef(first), fnfErr) << "two other names: none is guessed";
    EXPECT_EQ(nameOf(second), u"second");
}

TEST_P(References, ASymbolicLinkIsAFileAndItsPathIsFollowed)
{
    mkdir((folder() / "inner").c_str(), 0755);
    ASSERT_EQ(symlink("inner", (folder() / "link").c_str()), 0);
    writeFile(folder() / "inner/file");
    EXPECT_TRUE(sameObject(refAt(folder() / "link"), refAt(folder() / "inner")));
    EXPECT_EQ(pathOf(refAt(folder() / "link/file")), folder() / "inner/file");
    FSCatalogInfo info = infoOf(childOf(folderRef(), "link"));
    EXPECT_EQ(+info.nodeFlags, 0);
    EXPECT_EQ(+fileInfo(info).fileType, code("slnk"));
    EXPECT_EQ(+fileInfo(info).fileCreator, code("rhap"));
}

ON_EVERY_DISK(References);

// Every call that takes a reference, with one that is none. None may change anything.
void expectRefused(const FSRef &bad, const FSRef &folder)
{
    FSRef out{};
    SInt16 fork = 0;
    FSIterator iterator = nullptr;
    UInt8 path[100];
    std::vector<UniChar> name = units("name");
    FSCatalogInfo info{};
    UniCharCount length = static_cast<UniCharCount>(name.size());
    EXPECT_EQ(checkRef(bad), errFSBadFSRef);
    EXPECT_EQ(change(bad, kFSCatInfoFinderInfo, info), errFSBadFSRef);
    EXPECT_EQ(FSOpenFork(&bad, 0, nullptr, fsRdPerm, &fork), errFSBadFSRef);
    EXPECT_EQ(FSOpenIterator(&bad, kFSIterateFlat, &iterator), errFSBadFSRef);
    EXPECT_EQ(FSDeleteObject(&bad), errFSBadFSRef);
    EXPECT_EQ(FSMoveObject(&bad, &folder, &out), errFSBadFSRef);
    EXPECT_EQ(FSMoveObject(&folder, &bad, &out), errFSBadFSRef);
    EXPECT_EQ(FSExchangeObjects(&bad, &folder), errFSBadFSRef);
    EXPECT_EQ(FSExchangeObjects(&folder, &bad), errFSBadFSRef);
    EXPECT_EQ(FSRenameUnicode(&bad, length, name.data(), kTextEncodingUnknown, &out), errFSBadFSRef);
    EXPECT_EQ(FSCreateFileUnicode(&bad, length, name.data(), kFSCatInfoNone, nullptr, &out, nullptr), errFSBadFSRef);
    EXPECT_EQ(FSCreateDirectoryUnicode(&bad, length, name.data(), kFSCatInfoNone, nullptr, &out, nullptr, nullptr), errFSBadFSRef);
    EXPECT_EQ(FSRefMakePath(&bad, path, sizeof path), errFSBadFSRef);
    EXPECT_EQ(findChild(bad, name, out), errFSBadFSRef);
}

TEST(ForgedReferences, ZeroesAndOnesAreRefusedByEveryCall)
{
    TemporaryFolder folder;
    FSRef parent = refAt(folder.path());
    for (int value : {0, 1, 0x55, 0xFF})
    {
        FSRef bad;
        std::memset(&bad, value, sizeof bad);
        expectRefused(bad, parent);
    }
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST(ForgedReferences, RandomBytesAreRefused)
{
    std::mt19937 random(20261121);
    for (int round = 0; round < 20000; ++round)
    {
        FSRef bad;
        for (UInt8 &byte : bad.hidden)
            byte = static_cast<UInt8>(random());
        ASSERT_EQ(checkRef(bad), errFSBadFSRef);
    }
}

TEST(ForgedReferences, EveryChangedByteIsNoticed)
{
    TemporaryFolder folder;
    writeFile(folder / "a file with a name of forty characters!!", "x");
    writeFile(folder / std::string(200, 'n'), "x");
    writeFile(folder / "s", "x");
    for (const std::string &name : namesIn(folder.path()))
    {
        FSRef good = refAt(folder / name);
        for (std::size_t at = 0; at < sizeof good.hidden; ++at)
            for (unsigned change = 1; change < 256; ++change)
            {
                FSRef bad = good;
                bad.hidden[at] = static_cast<UInt8>(bad.hidden[at] ^ change);
                ASSERT_NE(checkRef(bad), noErr) << name << ": byte " << at << " changed by " << change;
            }
        EXPECT_EQ(checkRef(good), noErr);
    }
}

TEST(ForgedReferences, NoReferenceAtAllIsRefused)
{
    FSCatalogInfo info{};
    EXPECT_NE(FSGetCatalogInfo(nullptr, kFSCatInfoNone, &info, nullptr, nullptr, nullptr), noErr);
    EXPECT_NE(FSSetCatalogInfo(nullptr, kFSCatInfoNone, &info), noErr);
    EXPECT_NE(FSDeleteObject(nullptr), noErr);
}

}   // namespace
