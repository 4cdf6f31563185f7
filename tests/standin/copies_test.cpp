// Whole files copied: data, resource fork and everything that is known of them, on every kind of disk.
#include "tests/data/samples.h"
#include "tests/standin/copies.h"
#include "tests/standin/processes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class Copies : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (!IsSkipped())
            mkdir((folder() / "copies").c_str(), 0755);
    }
    FSRef fileRef(const std::string &name, const Bytes &data = bytesOf("the data"))
    {
        writeFile(folder() / name, data);
        return refAt(folder() / name);
    }
    FSRef target() { return refAt(folder() / "copies"); }
    std::vector<std::string> copied() { return namesIn(folder() / "copies"); }
    using Names = std::vector<std::string>;
};

void makeOldFile(const std::string &path)
{
    timespec times[2] = {{1000000000, 5}, {1100000000, 123456000}};
    EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

TEST_P(Copies, HaveBothForksOfEverySize)
{
    int number = 0;
    for (std::size_t dataSize : {0, 1, 4096, 70000})
        for (std::size_t forkSize : {0, 1, 70000})
        {
            std::string name = "file" + std::to_string(++number);
            SCOPED_TRACE(testing::Message() << dataSize << " and " << forkSize << " bytes");
            FSRef ref = fileRef(name, patternBytes(dataSize, 1));
            if (forkSize > 0)
            {
                ASSERT_EQ(writeFork(ref, true, patternBytes(forkSize, 2)), noErr);
            }
            ASSERT_EQ(copyFile(ref, target()), noErr);
            FSRef copy = refAt(folder() / ("copies/" + name));
            EXPECT_EQ(readFile(folder() / ("copies/" + name)), patternBytes(dataSize, 1));
            EXPECT_EQ(forkOf(copy), patternBytes(forkSize, 2));
            EXPECT_EQ(exists(folder() / ("copies/._" + name)), forkSize > 0);
            EXPECT_EQ(readFile(folder() / name), patternBytes(dataSize, 1));
        }
}

TEST_P(Copies, OfAPlainFileArePlain)
{
    FSRef ref = fileRef("plain");
    makeOldFile(folder() / "plain");
    chmod((folder() / "plain").c_str(), 0640);
    ASSERT_EQ(copyFile(ref, target(), "copy"), noErr);
    EXPECT_EQ(copied(), Names{"copy"});
    EXPECT_EQ(attributeNames(folder() / "copies/copy"), Names{});
    struct statx before = statxOf(folder() / "plain"), after = statxOf(folder() / "copies/copy");
    EXPECT_EQ(after.stx_mode, before.stx_mode);
    EXPECT_EQ(after.stx_mtime.tv_sec, before.stx_mtime.tv_sec);
    EXPECT_EQ(after.stx_mtime.tv_nsec, before.stx_mtime.tv_nsec);
    EXPECT_NE(after.stx_ino, before.stx_ino);
}

TEST_P(Copies, KeepEverythingThatIsKnownOfAFile)
{
    FSRef ref = fileRef("document");
    FSCatalogInfo info{};
    FileInfo file{};
    file.fileType = code("TEXT");
    file.fileCreator = code("ttxt");
    file.finderFlags = kIsStationery | 4;
    setFileInfo(info, file);
    info.extFinderInfo[9] = 7;
    info.createDate = dateOfUnix(900000000, 321);
    info.backupDate = dateOfUnix(910000000, 123);
    info.textEncodingHint = 7;
    info.nodeFlags = kFSNodeLockedMask;
    ASSERT_EQ(writeFork(ref, true, patternBytes(300, 3)), noErr);
    makeOldFile(folder() / "document");
    ASSERT_EQ(change(ref, finderBits | kFSCatInfoCreateDate | kFSCatInfoBackupDate | kFSCatInfoTextEncoding | kFSCatInfoNodeFlags, info),
              noErr);
    ASSERT_EQ(copyFile(ref, target(), "copy"), noErr);
    FSCatalogInfo before = infoOf(ref), after = infoOf(refAt(folder() / "copies/copy"));
    EXPECT_EQ(Bytes(after.finderInfo, after.finderInfo + 16), Bytes(before.finderInfo, before.finderInfo + 16));
    EXPECT_EQ(Bytes(after.extFinderInfo, after.extFinderInfo + 16), Bytes(before.extFinderInfo, before.extFinderInfo + 16));
    EXPECT_EQ(typeOf(refAt(folder() / "copies/copy")), code("TEXT"));
    EXPECT_EQ(after.createDate, dateOfUnix(900000000, 321));
    EXPECT_EQ(after.backupDate, dateOfUnix(910000000, 123));
    EXPECT_EQ(after.contentModDate, before.contentModDate);
    EXPECT_EQ(+after.textEncodingHint, 7u);
    EXPECT_TRUE(after.nodeFlags & kFSNodeLockedMask) << "the copy of a locked file is locked";
    EXPECT_EQ(+after.rsrcLogicalSize, 300u);
    for (std::string path : {"document", "copies/copy"})
        ASSERT_EQ(setLock(refAt(folder() / path), false), noErr);
}

TEST_P(Copies, OfADocumentHaveItsDateOfCreation)
{
    FSRef ref = fileRef("document");
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    makeOldFile(folder() / "document");
    FSCatalogInfo before = infoOf(ref);
    usleep(20000);
    ASSERT_EQ(copyFile(ref, target()), noErr);
    FSCatalogInfo after = infoOf(refAt(folder() / "copies/document"));
    EXPECT_EQ(after.createDate, before.createDate);
    EXPECT_EQ(after.contentModDate, before.contentModDate);
}

// The bytes of others' sidecars, with all that nobody here knows.
TEST_P(Copies, BringForeignSidecarsByteForByte)
{
    Bytes unknown = sidecarOf({{2, 74, bytesOf(std::string(500, 'f'))}, {9, 574, Bytes(32, 'i')}, {200, 606, bytesOf("kept")}});
    for (const auto &[name, bytes] : std::vector<std::pair<std::string, Bytes>>{{"macos", readSample("macos-attributes.adouble")},
                                                                                {"netatalk", readSample("netatalk3-picture.adouble")},
                                                                                {"unknown", unknown}})
    {
        SCOPED_TRACE(name);
        ASSERT_FALSE(bytes.empty());
        FSRef ref = fileRef(name);
        writeFile(folder() / ("._" + name), bytes);
        ASSERT_EQ(copyFile(ref, target()), noErr);
        EXPECT_EQ(readFile(folder() / ("copies/._" + name)), bytes);
        EXPECT_EQ(forkOf(refAt(folder() / ("copies/" + name))), forkOf(ref));
        EXPECT_EQ(typeOf(refAt(folder() / ("copies/" + name))), typeOf(ref));
    }
}

TEST_P(Copies, BringTheAttributesOfOthersButNotWhoseTheyWere)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    FSRef ref = fileRef("file");
    setAttribute(folder() / "file", "user.comment", bytesOf("seen by others"));
    setAttribute(folder() / "file", "user.zerb.note", bytesOf("about this very file"));
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    // As a file server writes it: a comment, and for whom it was made.
    Bytes shared = *attribute(folder() / "file", "user.org.netatalk.Metadata");
    shared[26 + 8 + 3] = 5;
    std::copy_n("hello", 5, shared.begin() + 154);
    for (std::size_t entry = 4; entry < 8; ++entry)
        shared[26 + 12 * entry + 8 + 3] = entry == 7 ? 4 : 8;
    std::fill(shared.begin() + 374, shared.end(), 0x77);
    setAttribute(folder() / "file", "user.org.netatalk.Metadata", shared);
    ASSERT_EQ(copyFile(ref, target()), noErr);
    removeAttribute(folder() / "file", "user.zerb.note");
    std::string copy = folder() / "copies/file";
    EXPECT_EQ(attribute(copy, "user.comment"), bytesOf("seen by others"));
    EXPECT_FALSE(attribute(copy, "user.zerb.note"));
    Bytes after = attribute(copy, "user.org.netatalk.Metadata").value_or(Bytes());
    ASSERT_EQ(after.size(), shared.size());
    EXPECT_EQ(Bytes(after.begin() + 154, after.begin() + 159), bytesOf("hello"));
    EXPECT_EQ(Bytes(after.begin() + 374, after.end()), Bytes(28, 0));
    for (std::size_t entry = 4; entry < 8; ++entry)
        EXPECT_EQ(big32(after, 26 + 12 * entry + 8), 0u);
    EXPECT_EQ(typeOf(refAt(copy)), code("TEXT"));
}

TEST_P(Copies, AreRefusedWhereTheNameIsTaken)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(writeFork(ref, true, patternBytes(100, 4)), noErr);
    FSRef plain = fileRef("plain"), other = fileRef("copies/taken", bytesOf("other"));
    ASSERT_EQ(writeFork(other, true, bytesOf("other's fork")), noErr);
    writeFile(folder() / "copies/cafe\u0301");   // decomposed
    mkdir((folder() / "copies/folder").c_str(), 0755);
    std::string before = pictureOf(folder() / "copies");
    for (const FSRef &source : {ref, plain})
        for (const char *name : {"taken", "folder", "caf\x8E"})
            EXPECT_EQ(copyFile(source, target(), name), dupFNErr) << name;
    EXPECT_EQ(copyFile(ref, refAt(folder().path())), dupFNErr) << "onto itself";
    EXPECT_EQ(pictureOf(folder() / "copies"), before);
    EXPECT_EQ(forkOf(other), bytesOf("other's fork"));
    EXPECT_EQ(forkOf(ref), patternBytes(100, 4));
}

TEST_P(Copies, NeverTakeAnOrphansForkForTheirOwn)
{
    FSRef ref = fileRef("plain"), forked = fileRef("forked");
    ASSERT_EQ(writeFork(forked, true, patternBytes(100, 4)), noErr);
    for (std::string name : {"one", "two"})
        writeFile(folder() / ("copies/._" + name), plainSidecar(bytesOf("somebody's")));
    ASSERT_EQ(copyFile(ref, target(), "one"), noErr);
    ASSERT_EQ(copyFile(forked, target(), "two"), noErr);
    EXPECT_EQ(copied(), (Names{"._two", "one", "one.orphan.rsrc", "two", "two.orphan.rsrc"}));
    EXPECT_EQ(forkOf(refAt(folder() / "copies/two")), patternBytes(100, 4));
}

TEST_P(Copies, OfSymbolicLinksAreLinks)
{
    ASSERT_EQ(symlink("nowhere/at all", (folder() / "link").c_str()), 0);
    FSRef link = childOf(refAt(folder().path()), "link");
    ASSERT_EQ(setType(link, code("abcd"), code("efgh")), noErr);
    makeOldFile(folder() / "link");
    ASSERT_EQ(copyFile(link, target()), noErr);
    char text[100];
    ssize_t length = readlink((folder() / "copies/link").c_str(), text, sizeof text);
    EXPECT_EQ(std::string(text, static_cast<std::size_t>(std::max<ssize_t>(length, 0))), "nowhere/at all");
    FSRef copy = childOf(target(), "link");
    EXPECT_EQ(typeOf(copy), typeOf(link));
    EXPECT_EQ(infoOf(copy).contentModDate, infoOf(link).contentModDate);
    EXPECT_EQ(copyFile(link, target()), dupFNErr);
}

TEST_P(Copies, AreOfFilesAlone)
{
    mkdir((folder() / "sub").c_str(), 0755);
    ASSERT_EQ(mkfifo((folder() / "pipe").c_str(), 0644), 0);
    FSRef root = refAt(folder().path());
    EXPECT_EQ(copyFile(childOf(root, "sub"), target()), notAFileErr);
    EXPECT_EQ(copyFile(childOf(root, "pipe"), target()), notAFileErr);
    EXPECT_EQ(copied(), Names{});
}

TEST_P(Copies, WrongBlocksAreRefused)
{
    FSRef ref = fileRef("file");
    FSSpec spec = specOf(ref);
    HParamBlockRec good{};
    good.copyParam.ioVRefNum = good.copyParam.ioDstVRefNum = spec.vRefNum;
    good.copyParam.ioDirID = spec.parID;
    good.copyParam.ioNamePtr = spec.name;
    good.copyParam.ioNewDirID = static_cast<SInt32>(nodeOf(target()));
    Str255 missing{}, badName{}, copies{}, isFile{};
    setPascal("missing", missing);
    setPascal("a:b", badName);
    setPascal("copies", copies);
    setPascal("file", isFile);
    const auto resultOf = [&](auto change) {
        HParamBlockRec block = good;
        change(block.copyParam);
        return PBHCopyFileSync(&block);
    };
    EXPECT_EQ(PBHCopyFileSync(nullptr), paramErr);
    EXPECT_EQ(resultOf([](CopyParam &block) { block.ioVRefNum = 12345; }), nsvErr);
    EXPECT_EQ(resultOf([](CopyParam &block) { block.ioDstVRefNum = 12345; }), nsvErr);
    EXPECT_EQ(resultOf([](CopyParam &block) { block.ioNewDirID = 0x7FFFFFFE; }), dirNFErr);
    EXPECT_EQ(resultOf([&](CopyParam &block) { block.ioNamePtr = missing; }), fnfErr);
    EXPECT_EQ(resultOf([&](CopyParam &block) { block.ioCopyName = badName; }), bdNamErr);
    EXPECT_EQ(resultOf([&](CopyParam &block) { block.ioNewName = missing; }), dirNFErr);
    EXPECT_EQ(resultOf([&](CopyParam &block) { block.ioNewDirID = spec.parID, block.ioNewName = isFile; }), errFSNotAFolder);
    EXPECT_EQ(copied(), Names{});
    EXPECT_EQ(resultOf([&](CopyParam &block) { block.ioNewDirID = spec.parID, block.ioNewName = copies; }), noErr)
        << "the target as the name of a folder";
    EXPECT_EQ(copied(), Names{"file"});
}

TEST_P(Copies, KeepNamesThatAreNoTextOrAreLong)
{
    for (const std::string &name : {std::string("no\xFFtext\x80"), std::string(253, 'l'), std::string(254, 'm'), std::string(255, 'n'),
                                    "a much longer name than any FSSpec has room for.text" + std::string(40, 'x')})
    {
        SCOPED_TRACE(name);
        FSRef ref = fileRef(name, bytesOf(name));
        ASSERT_EQ(copyFile(ref, target()), noErr);
        EXPECT_EQ(readFile(folder() / ("copies/" + name)), bytesOf(name));
    }
}

TEST_P(Copies, WithAForkNeedANameWithRoomForASidecar)
{
    FSRef ref = fileRef(std::string(253, 'l'));
    ASSERT_EQ(writeFork(ref, true, bytesOf("fork")), noErr);
    ASSERT_EQ(copyFile(ref, target()), noErr);
    EXPECT_EQ(forkOf(refAt(folder() / ("copies/" + std::string(253, 'l')))), bytesOf("fork"));
}

TEST_P(Copies, ADamagedSidecarStaysBehind)
{
    FSRef ref = fileRef("file");
    writeFile(folder() / "._file", "this is no sidecar at all");
    ASSERT_EQ(copyFile(ref, target()), noErr);
    EXPECT_EQ(copied(), Names{"file"});
    EXPECT_EQ(readFile(folder() / "._file"), bytesOf("this is no sidecar at all"));
}

TEST_P(Copies, OfReadOnlyFilesAreReadOnly)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    for (mode_t mode : {0444u, 0400u, 04755u, 0666u})
    {
        chmod((folder() / "file").c_str(), mode);
        std::string name = "copy" + std::to_string(mode);
        ASSERT_EQ(copyFile(ref, target(), name), noErr);
        EXPECT_EQ(statxOf(folder() / ("copies/" + name)).stx_mode & 07777u, mode & 0777u) << "no rights of the owner's are lent";
        EXPECT_EQ(typeOf(refAt(folder() / ("copies/" + name))), code("TEXT"));
    }
}

TEST_P(Copies, FromAReadOnlyDiskWorkAndOntoOneDoNot)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(writeFork(ref, true, bytesOf("fork")), noErr);
    ReadOnlyView view(folder().path());
    if (!view.problem().empty())
        GTEST_SKIP() << view.problem();
    EXPECT_EQ(copyFile(ref, refAt(view.path() + "/copies")), wPrErr);
    EXPECT_EQ(copyFile(refAt(view.path() + "/file"), target()), noErr);
    EXPECT_EQ(forkOf(refAt(folder() / "copies/file")), bytesOf("fork"));
}

// arguments: source, folder
const Role copiesUnreadable("copiesWhatItMayNotRead", [](const RoleArguments &arguments) {
    EXPECT_EQ(copyFile(refAt(arguments[0] + "/secret"), refAt(arguments[1])), afpAccessDenied);
    EXPECT_EQ(copyFile(refAt(arguments[0] + "/half"), refAt(arguments[1])), afpAccessDenied) << "its fork would be lost";
    EXPECT_EQ(copyFile(refAt(arguments[0] + "/open"), refAt(arguments[0])), dupFNErr);
    EXPECT_EQ(copyFile(refAt(arguments[0] + "/open"), refAt(arguments[0]), "new"), afpAccessDenied);
    EXPECT_EQ(copyFile(refAt(arguments[0] + "/open"), refAt(arguments[1])), noErr);
});

TEST_P(Copies, WhatMayNotBeReadIsNotCopiedInPart)
{
    if (!canBecomeOtherUsers())
        GTEST_SKIP() << "this user cannot become another one";
    for (std::string name : {"secret", "half", "open"})
        ASSERT_EQ(writeFork(fileRef(name), true, bytesOf("fork")), noErr);
    chmod((folder() / "secret").c_str(), 0600);
    chmod((folder() / "._half").c_str(), 0600);
    chmod((folder() / "copies").c_str(), 0777);
    playRole("copiesWhatItMayNotRead", {folder().path(), folder() / "copies"}, {ordinaryUser, {}});
    EXPECT_EQ(copied(), (Names{"._open", "open"}));
    EXPECT_EQ(statxOf(folder() / "copies/open").stx_uid, ordinaryUser);
}

TEST_P(Copies, AreReadByArchivers)
{
    if (!programExists("unar") || !programExists("tar"))
        GTEST_SKIP() << "no unar or tar on this machine";
    FSRef ref = fileRef("document");
    Bytes fork = bytesOf("what the resource fork holds");
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(ref, true, fork), noErr);
    ASSERT_EQ(copyFile(ref, target()), noErr);
    mkdir((folder() / "unpacked").c_str(), 0755);
    Ended packed = run({"tar", "-cf", folder() / "archive.tar", "-C", folder() / "copies", "._document", "document"});
    ASSERT_EQ(packed.status, 0) << packed.output;
    Ended unpacked =
        run({"unar", "-quiet", "-no-directory", "-forks", "hidden", "-output-directory", folder() / "unpacked", folder() / "archive.tar"});
    ASSERT_EQ(unpacked.status, 0) << unpacked.output;
    EXPECT_EQ(readFile(folder() / "unpacked/document"), bytesOf("the data"));
    EXPECT_EQ(forkOf(refAt(folder() / "unpacked/document")), fork);
}

ON_EVERY_DISK(Copies);

// --- volumes ----------------------------------------------------------------------------------------------------------------------------------

const Role copiesOnVolumes("copiesOnVolumes", [](const RoleArguments &arguments) {
    FSVolumeRefNum locked = 0, without = 0;
    standin::VolumeOptions lock, noService;
    lock.locked = true;
    noService.copyFileOffered = false;
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    ASSERT_EQ(standin::addDirectoryVolume("Locked", arguments[1], lock, &locked), noErr);
    ASSERT_EQ(standin::addDirectoryVolume("Without", arguments[2], noService, &without), noErr);
    FSRef root = refAt("/");
    EXPECT_EQ(copyFile(refAt("/file"), refAt("/Volumes/Locked")), vLckdErr);
    EXPECT_EQ(copyFile(refAt("/Volumes/Locked/file"), root, "from locked"), noErr);
    EXPECT_EQ(copyFile(refAt("/Volumes/Without/file"), root, "from without"), paramErr);
    EXPECT_EQ(copyFile(refAt("/file"), refAt("/Volumes/Without"), "to without"), noErr) << "the source's volume has the say";
    EXPECT_EQ(forkOf(refAt("/from locked")), bytesOf("fork"));
});

TEST(CopiesOnVolumes, TheSourcesVolumeMustOfferThemAndTheTargetsMayNotBeLocked)
{
    TemporaryFolder folder;
    for (std::string name : {"one", "two", "three"})
    {
        mkdir((folder / name).c_str(), 0755);
        writeFile(folder / (name + "/file"), "data");
        writeFile(folder / (name + "/._file"), plainSidecar(bytesOf("fork")));
    }
    playRole("copiesOnVolumes", {folder / "one", folder / "two", folder / "three"});
    EXPECT_EQ(namesIn(folder / "one"), (std::vector<std::string>{"._file", "._from locked", "file", "from locked"}));
    EXPECT_EQ(namesIn(folder / "two"), (std::vector<std::string>{"._file", "file"}));
}

}   // namespace
