// Making and deleting, and what happens to sidecars that have lost their file.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

using Names = std::vector<std::string>;

class CreateDelete : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }
    Names names() { return namesIn(folder().path()); }
};

TEST_P(CreateDelete, AFileIsMadeWithItsRecord)
{
    FSRef parent = folderRef(), made{};
    FSSpec spec{};
    FSCatalogInfo info{};
    FileInfo file{};
    file.fileType = code("TEXT");
    file.fileCreator = code("ttxt");
    setFileInfo(info, file);
    info.createDate = dateOfUnix(1000000000, 5);
    std::vector<UniChar> name = units("new file");
    ASSERT_EQ(FSCreateFileUnicode(&parent, static_cast<UniCharCount>(name.size()), name.data(), kFSCatInfoFinderInfo | kFSCatInfoCreateDate,
                                  &info, &made, &spec),
              noErr);
    EXPECT_EQ(pathOf(made), folder() / "new file");
    EXPECT_EQ(typeOf(made), code("TEXT"));
    EXPECT_EQ(infoOf(made).createDate, info.createDate);
    EXPECT_EQ(+infoOf(made).dataLogicalSize, 0u);
    FSRef bySpec{};
    ASSERT_EQ(findSpec(spec, bySpec), noErr);
    EXPECT_TRUE(sameObject(made, bySpec));
}

TEST_P(CreateDelete, AFolderIsMadeAndTellsItsNumber)
{
    FSRef parent = folderRef(), made{};
    UInt32 number = 0;
    std::vector<UniChar> name = units("new folder");
    ASSERT_EQ(FSCreateDirectoryUnicode(&parent, static_cast<UniCharCount>(name.size()), name.data(), kFSCatInfoNone, nullptr, &made,
                                       nullptr, &number),
              noErr);
    EXPECT_EQ(nodeOf(made), number);
    EXPECT_TRUE(infoOf(made).nodeFlags & kFSNodeIsDirectoryMask);
    ASSERT_EQ(makeFile(made, "inside"), noErr);
    EXPECT_TRUE(exists(folder() / "new folder/inside"));
}

TEST_P(CreateDelete, ATakenNameIsRefused)
{
    writeFile(folder() / "file", "data");
    mkdir((folder() / "inner").c_str(), 0755);
    ASSERT_EQ(symlink("nowhere", (folder() / "link").c_str()), 0);
    for (std::string name : {"file", "inner", "link"})
    {
        EXPECT_EQ(makeFile(folderRef(), name), dupFNErr) << name;
        EXPECT_EQ(makeFolder(folderRef(), name), dupFNErr) << name;
    }
    FSRef file = refAt(folder() / "file");
    EXPECT_EQ(rename(file, "inner"), dupFNErr);
    EXPECT_EQ(rename(file, "link"), dupFNErr);
    writeFile(folder() / "inner/file", "another");
    FSRef inner = refAt(folder() / "inner");
    EXPECT_EQ(move(file, inner), dupFNErr);
    EXPECT_EQ(readFile(folder() / "file"), bytesOf("data"));
    EXPECT_EQ(readFile(folder() / "inner/file"), bytesOf("another"));
}

TEST_P(CreateDelete, NothingIsMadeInAFile)
{
    writeFile(folder() / "file");
    FSRef file = refAt(folder() / "file"), other = file;
    EXPECT_EQ(makeFile(file, "new"), errFSNotAFolder);
    EXPECT_EQ(makeFolder(file, "new"), errFSNotAFolder);
    EXPECT_EQ(move(other, file), errFSNotAFolder);
}

TEST_P(CreateDelete, AFolderDoesNotMoveIntoItself)
{
    mkdir((folder() / "outer").c_str(), 0755);
    mkdir((folder() / "outer/inner").c_str(), 0755);
    FSRef outer = refAt(folder() / "outer"), inner = refAt(folder() / "outer/inner");
    EXPECT_NE(move(outer, inner), noErr);
    EXPECT_NE(move(outer, outer), noErr);
    EXPECT_TRUE(exists(folder() / "outer/inner"));
}

TEST_P(CreateDelete, AFolderHasToBeEmpty)
{
    mkdir((folder() / "inner").c_str(), 0755);
    writeFile(folder() / "inner/.hidden");
    FSRef inner = refAt(folder() / "inner");
    EXPECT_EQ(FSDeleteObject(&inner), fBsyErr);
    unlink((folder() / "inner/.hidden").c_str());
    EXPECT_EQ(FSDeleteObject(&inner), noErr);
    EXPECT_TRUE(names().empty());
}

TEST_P(CreateDelete, AFolderWithAnothersOnlyForkIsNotEmpty)
{
    mkdir((folder() / "inner").c_str(), 0755);
    writeFile(folder() / "inner/._gone", plainSidecar(bytesOf("the only copy")));
    FSRef inner = refAt(folder() / "inner");
    EXPECT_EQ(FSDeleteObject(&inner), fBsyErr);
    EXPECT_EQ(readFile(folder() / "inner/._gone"), plainSidecar(bytesOf("the only copy")));
    unlink((folder() / "inner/._gone").c_str());
}

TEST_P(CreateDelete, LeftoversGoWithTheirFolder)
{
    mkdir((folder() / "inner").c_str(), 0755);
    writeFile(folder() / "file", "data");
    writeFile(folder() / "._file", plainSidecar({1, 2, 3}));
    // What a kill in the middle of a move leaves: the sidecar under both names.
    ASSERT_EQ(link((folder() / "._file").c_str(), (folder() / "inner/._file").c_str()), 0);
    FSRef inner = refAt(folder() / "inner");
    EXPECT_EQ(+infoOf(inner, kFSCatInfoValence).valence, 0u);
    EXPECT_EQ(FSDeleteObject(&inner), noErr);
    EXPECT_EQ(names(), (Names{"._file", "file"}));
    EXPECT_EQ(forkOf(refAt(folder() / "file")), (Bytes{1, 2, 3}));
}

TEST_P(CreateDelete, TheSidecarGoesWithItsFile)
{
    for (bool forked : {false, true})
    {
        FSRef ref{};
        ASSERT_EQ(makeFile(folderRef(), "file", &ref), noErr);
        ASSERT_EQ(setType(ref, code("TEXT"), 0), noErr);
        if (forked)
        {
            ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
        }
        ASSERT_EQ(FSDeleteObject(&ref), noErr);
        EXPECT_TRUE(names().empty());
    }
    FSRef inner{};
    ASSERT_EQ(makeFolder(folderRef(), "inner", &inner), noErr);
    ASSERT_EQ(setType(inner, code("fold"), 0), noErr);
    ASSERT_EQ(setLock(inner, true), noErr);
    ASSERT_EQ(setLock(inner, false), noErr);
    ASSERT_EQ(FSDeleteObject(&inner), noErr);
    EXPECT_TRUE(names().empty());
}

TEST_P(CreateDelete, AnOrphanIsMovedAsideAndNotAdopted)
{
    Bytes orphan = plainSidecar(bytesOf("somebody's only copy"));
    writeFile(folder() / "._file", orphan);
    FSRef ref{};
    ASSERT_EQ(makeFile(folderRef(), "file", &ref), noErr);
    EXPECT_EQ(names(), (Names{"file", "file.orphan.rsrc"}));
    EXPECT_EQ(readFile(folder() / "file.orphan.rsrc"), orphan);
    EXPECT_EQ(+infoOf(ref).rsrcLogicalSize, 0u);

    writeFile(folder() / "._folder", orphan);
    ASSERT_EQ(makeFolder(folderRef(), "folder"), noErr);
    EXPECT_EQ(readFile(folder() / "folder.orphan.rsrc"), orphan);
    EXPECT_FALSE(exists(folder() / "._folder"));
}

TEST_P(CreateDelete, ARenamedFileDoesNotAdoptAnOrphanEither)
{
    Bytes orphan = plainSidecar(bytesOf("somebody's only copy"));
    writeFile(folder() / "with", "data");
    writeFile(folder() / "without", "data");
    FSRef with = refAt(folder() / "with"), without = refAt(folder() / "without");
    ASSERT_EQ(writeFork(with, true, {1, 2, 3}), noErr);
    writeFile(folder() / "._one", orphan);
    writeFile(folder() / "._two", orphan);
    ASSERT_EQ(rename(with, "one"), noErr);
    ASSERT_EQ(rename(without, "two"), noErr);
    EXPECT_EQ(forkOf(with), (Bytes{1, 2, 3}));
    EXPECT_EQ(+infoOf(without).rsrcLogicalSize, 0u);
    EXPECT_EQ(readFile(folder() / "one.orphan.rsrc"), orphan);
    EXPECT_EQ(readFile(folder() / "two.orphan.rsrc"), orphan);
}

TEST_P(CreateDelete, AnOrphanFindsAFreeName)
{
    Bytes orphan = plainSidecar(bytesOf("somebody's only copy"));
    writeFile(folder() / "._file", orphan);
    writeFile(folder() / "file.orphan.rsrc", "taken");
    ASSERT_EQ(makeFile(folderRef(), "file"), noErr);
    EXPECT_EQ(readFile(folder() / "file.orphan.rsrc"), bytesOf("taken"));
    EXPECT_EQ(names().size(), 3u);
    int copies = 0;
    for (const std::string &name : names())
        copies += readFile(folder() / name) == orphan && !name.starts_with(".");
    EXPECT_EQ(copies, 1);
}

TEST_P(CreateDelete, AnOrphanCanBeDeletedWhenAsked)
{
    writeFile(folder() / "._gone", plainSidecar(bytesOf("the only copy")));
    FSRef ref = refAt(folder() / "._gone");
    EXPECT_EQ(nameOf(ref), u"._gone");
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
    EXPECT_TRUE(names().empty());
}

TEST_P(CreateDelete, RenamesAndMovesTakeTheForkAlong)
{
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef ref{}, inner = refAt(folder() / "inner");
    ASSERT_EQ(makeFile(folderRef(), "file", &ref), noErr);
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    EXPECT_EQ(names(), (Names{"._renamed", "inner", "renamed"}));
    ASSERT_EQ(move(ref, inner), noErr);
    EXPECT_EQ(names(), Names{"inner"});
    EXPECT_EQ(namesIn(folder() / "inner"), (Names{"._renamed", "renamed"}));
    EXPECT_EQ(statxOf(folder() / "inner/._renamed").stx_nlink, 1u);
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
    EXPECT_EQ(typeOf(ref), code("TEXT"));
}

TEST_P(CreateDelete, ARenameToTheSameNameIsNone)
{
    FSRef ref{};
    ASSERT_EQ(makeFile(folderRef(), "file", &ref), noErr);
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    OSErr result = rename(ref, "file");
    EXPECT_TRUE(result == noErr || result == dupFNErr) << result;
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
    EXPECT_EQ(statxOf(folder() / "._file").stx_nlink, 1u);
}

TEST_P(CreateDelete, AnOpenForkDoesNotStopADeletion)
{
    writeFile(folder() / "file", "data");
    FSRef ref = refAt(folder() / "file");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(ref, false, fsRdPerm, fork), noErr);
    ASSERT_EQ(FSDeleteObject(&ref), noErr);
    char bytes[4] = {};
    ByteCount count = 0;
    EXPECT_EQ(FSReadFork(fork, fsFromStart, 0, 4, bytes, &count), noErr);
    EXPECT_EQ(std::string(bytes, count), "data");
    EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST_P(CreateDelete, AHardLinkIsDeletedByItsOwnName)
{
    writeFile(folder() / "first", "data");
    ASSERT_EQ(link((folder() / "first").c_str(), (folder() / "second").c_str()), 0);
    FSRef second = refAt(folder() / "second");
    ASSERT_EQ(FSDeleteObject(&second), noErr);
    EXPECT_EQ(names(), Names{"first"});
}

// A move that was cut off leaves the sidecar with a second name in the other folder. Once the file is gone, that name is nobody's.
TEST_P(CreateDelete, TheSecondNameOfACutOffMoveIsNotShownAfterTheDeletion)
{
    writeFile(folder() / "file", "data");
    ASSERT_EQ(writeFork(refAt(folder() / "file"), true, {1, 2, 3}), noErr);
    mkdir((folder() / "other").c_str(), 0755);
    ASSERT_EQ(link((folder() / "._file").c_str(), (folder() / "other/._file").c_str()), 0);
    FSRef file = refAt(folder() / "file"), other = refAt(folder() / "other");
    ASSERT_EQ(FSDeleteObject(&file), noErr);
    EXPECT_EQ(+infoOf(other, kFSCatInfoValence).valence, 0u);
    EXPECT_EQ(FSDeleteObject(&other), noErr);
}

// Whose second name has a file of its own beside it keeps all that it holds.
TEST_P(CreateDelete, ACopyByHardLinksKeepsItsForkWhenTheOriginalIsDeleted)
{
    mkdir((folder() / "copy").c_str(), 0755);
    writeFile(folder() / "file", "data");
    ASSERT_EQ(writeFork(refAt(folder() / "file"), true, {1, 2, 3}), noErr);
    for (std::string name : {"file", "._file"})
        ASSERT_EQ(link((folder() / name).c_str(), (folder() / ("copy/" + name)).c_str()), 0);
    FSRef file = refAt(folder() / "file");
    ASSERT_EQ(FSDeleteObject(&file), noErr);
    FSRef copy = refAt(folder() / "copy/file");
    EXPECT_EQ(forkOf(copy), (Bytes{1, 2, 3}));
    ASSERT_EQ(writeFork(copy, true, {4, 5}), noErr);
    EXPECT_EQ(forkOf(copy), (Bytes{4, 5}));
    const Bytes sidecar = readFile(folder() / "copy/._file");
    EXPECT_EQ(Bytes(sidecar.begin() + 8, sidecar.begin() + 24), Bytes(16, 0)) << "who writes to it has it for himself again";
}

ON_EVERY_DISK(CreateDelete);

TEST(DeletedRoots, AVolumesRootIsNotDeletedOrRenamed)
{
    const Disk &disk = diskOf(DiskKind::tmpfs);
    if (!disk.problem.empty())
        GTEST_SKIP() << disk.problem;
    FSRef root = refAt(disk.root);
    EXPECT_NE(FSDeleteObject(&root), noErr);
    EXPECT_TRUE(exists(disk.root));
}

}   // namespace
