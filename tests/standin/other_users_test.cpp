// What an ordinary user may do with files of his own and with those of others. Each part is played by a process of that user.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class OtherUsers : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (!IsSkipped() && !canBecomeOtherUsers())
            GTEST_SKIP() << "this user cannot become another one";
    }
    std::string fileOf(uid_t user, mode_t mode, const std::string &name = "file")
    {
        writeFile(folder() / name, "data");
        EXPECT_EQ(chown((folder() / name).c_str(), user, user), 0);
        EXPECT_EQ(chmod((folder() / name).c_str(), mode), 0);
        return folder() / name;
    }
    // The folder is the user's: where metadata lie in sidecars, they have to go somewhere.
    void giveFolderTo(uid_t user) { EXPECT_EQ(chown(folder().path().c_str(), user, user), 0); }
};

bool refusedForLackOfAccess(OSErr result)
{
    return result == afpAccessDenied || result == permErr;
}

// arguments: path, the mode that the file has and keeps
const Role setsMetadata("setsMetadataOfOwnFile", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    EXPECT_EQ(+infoOf(ref, kFSCatInfoDataSizes).dataLogicalSize, 4u);
    EXPECT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    FSCatalogInfo dates{};
    dates.createDate = dateOfUnix(1000000000, 77);
    EXPECT_EQ(change(ref, kFSCatInfoCreateDate, dates), noErr);
    EXPECT_EQ(setLock(ref, true), noErr);
    EXPECT_EQ(setLock(ref, false), noErr);
});

TEST_P(OtherUsers, MetadataOfOwnReadOnlyFilesCanBeSet)
{
    for (mode_t mode : {0444u, 0400u, 0200u, 0000u})
    {
        SCOPED_TRACE(testing::Message() << "mode " << std::oct << mode);
        std::string path = fileOf(ordinaryUser, mode, "file" + std::to_string(mode));
        giveFolderTo(ordinaryUser);
        playRole("setsMetadataOfOwnFile", {path}, {ordinaryUser, {}});
        EXPECT_EQ(statxOf(path).stx_mode & 07777u, mode);
        EXPECT_EQ(typeOf(refAt(path)), code("TEXT"));
        EXPECT_EQ(infoOf(refAt(path)).createDate, dateOfUnix(1000000000, 77));
    }
}

// The second field must not wipe the first, though the first cannot be read back without a word from the file's owner.
const Role setsTwoFields("setsTwoFieldsOfOwnFile", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    FSCatalogInfo info{};
    info.extFinderInfo[8] = 0x55;
    EXPECT_EQ(change(ref, kFSCatInfoFinderXInfo, info), noErr);
});

TEST_P(OtherUsers, AFileThatOnlyMayBeWrittenLosesNothing)
{
    std::string path = fileOf(ordinaryUser, 0600);
    giveFolderTo(ordinaryUser);
    ASSERT_EQ(setType(refAt(path), code("TEXT"), code("ttxt")), noErr);
    chmod(path.c_str(), 0200);
    if (exists(folder() / "._file"))
    {
        EXPECT_EQ(chown((folder() / "._file").c_str(), ordinaryUser, ordinaryUser), 0);
    }
    playRole("setsTwoFieldsOfOwnFile", {path}, {ordinaryUser, {}});
    EXPECT_EQ(typeOf(refAt(path)), code("TEXT"));
    EXPECT_EQ(infoOf(refAt(path)).extFinderInfo[8], 0x55);
    EXPECT_EQ(statxOf(path).stx_mode & 07777u, 0200u);
}

const Role readsOthersFile("readsOthersFile", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    EXPECT_EQ(typeOf(ref), code("TEXT"));
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
    EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
});

const Role changesOthersFile("changesOthersFile", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]), folder = parentOf(ref);
    EXPECT_TRUE(refusedForLackOfAccess(setType(ref, code("PICT"), 0)));
    EXPECT_TRUE(refusedForLackOfAccess(setLock(ref, true)));
    FSCatalogInfo info{};
    for (FSCatalogInfoBitmap field : {kFSCatInfoTextEncoding, kFSCatInfoCreateDate, kFSCatInfoContentMod, kFSCatInfoBackupDate,
                                      kFSCatInfoPermissions, kFSCatInfoFinderXInfo})
    {
        info.textEncodingHint = 5;
        info.createDate = info.contentModDate = info.backupDate = dateOfUnix(5);
        info.extFinderInfo[0] = 1;
        EXPECT_TRUE(refusedForLackOfAccess(change(ref, field, info))) << "field " << field;
    }
    EXPECT_TRUE(refusedForLackOfAccess(writeFork(ref, false, {9})));
    EXPECT_TRUE(refusedForLackOfAccess(writeFork(ref, true, {9})));
    EXPECT_TRUE(refusedForLackOfAccess(FSDeleteObject(&ref)));
    EXPECT_TRUE(refusedForLackOfAccess(rename(ref, "renamed")));
    EXPECT_TRUE(refusedForLackOfAccess(makeFile(folder, "new")));
});

TEST_P(OtherUsers, OthersFilesAreReadAndNotChanged)
{
    std::string path = fileOf(0, 0644);
    FSRef ref = refAt(path);
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    chmod((folder() / "._file").c_str(), 0644);
    playRole("readsOthersFile", {path}, {nobody, {}});
    std::string before = pictureOf(folder().path());
    playRole("changesOthersFile", {path}, {nobody, {}});
    EXPECT_EQ(pictureOf(folder().path()), before);
}

const Role asksForUnreadableFile("asksForUnreadableFile", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    FSCatalogInfo info = infoOf(ref);   // what may not be read counts as none
    EXPECT_EQ(+info.dataLogicalSize, 4u);
    EXPECT_EQ(+fileInfo(info).fileType, 0u);
    SInt16 fork = 0;
    EXPECT_TRUE(refusedForLackOfAccess(openFork(ref, false, fsRdPerm, fork)));
    EXPECT_TRUE(refusedForLackOfAccess(openFork(ref, true, fsRdPerm, fork)));
});

TEST_P(OtherUsers, AnUnreadableFileIsStillListed)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "everything lies in the sidecar here";
    std::string path = fileOf(0, 0600);
    ASSERT_EQ(setType(refAt(path), code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(refAt(path), true, {1, 2, 3}), noErr);
    chmod((folder() / "._file").c_str(), 0600);
    playRole("asksForUnreadableFile", {path}, {nobody, {}});
}

const Role looksIntoClosedFolder("looksIntoClosedFolder", [](const RoleArguments &arguments) {
    FSRef ref{};
    EXPECT_NE(findRef(arguments[0] + "/file", ref), noErr);
    FSRef closed = refAt(arguments[0]);
    infoOf(closed, kFSCatInfoNodeFlags | kFSCatInfoContentMod | kFSCatInfoPermissions);
    FSIterator iterator = nullptr;
    ItemCount count = 0;
    OSErr result = FSOpenIterator(&closed, kFSIterateFlat, &iterator);
    if (result == noErr)
    {
        result = FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, kFSCatInfoNone, nullptr, &ref, nullptr, nullptr);
        FSCloseIterator(iterator);
    }
    EXPECT_TRUE(refusedForLackOfAccess(result)) << result;
});

TEST_P(OtherUsers, AClosedFolderStaysClosed)
{
    mkdir((folder() / "closed").c_str(), 0700);
    writeFile(folder() / "closed/file");
    playRole("looksIntoClosedFolder", {folder() / "closed"}, {nobody, {}});
}

ON_EVERY_DISK(OtherUsers);

}   // namespace
