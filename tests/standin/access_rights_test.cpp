// Access rights of folders: the platform's bits and Linux's modes.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include "standin/files/access_rights.h"
#include "standin/files/linux_calls.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr UInt32 settableBits = 0x10070707, rightsBits = 0x00070707, blankBit = 0x10000000, ownerBit = 0x80000000;
constexpr UInt32 everybodysRights = 0x00070707;

// The parts of a parameter block that these calls use.
struct Access
{
    OSErr result = 1;
    SInt32 owner = -2, group = -2;
    UInt32 rights = 0;
};

AccessParam blockFor(FSSpec &spec)
{
    AccessParam block{};
    block.ioNamePtr = spec.name;
    block.ioVRefNum = spec.vRefNum;
    block.ioDirID = spec.parID;
    return block;
}

Access accessOf(const FSRef &folder)
{
    FSSpec spec = specOf(folder);
    HParamBlockRec block{};
    block.accessParam = blockFor(spec);
    const OSErr result = PBHGetDirAccessSync(&block);
    EXPECT_EQ(block.accessParam.ioResult, result);
    return {result, block.accessParam.ioACOwnerID, block.accessParam.ioACGroupID, static_cast<UInt32>(block.accessParam.ioACAccess)};
}

OSErr setAccess(const FSRef &folder, SInt32 owner, SInt32 group, UInt32 rights)
{
    FSSpec spec = specOf(folder);
    HParamBlockRec block{};
    block.accessParam = blockFor(spec);
    block.accessParam.ioACOwnerID = owner;
    block.accessParam.ioACGroupID = group;
    block.accessParam.ioACAccess = static_cast<SInt32>(rights);
    return PBHSetDirAccessSync(&block);
}

OSErr setRights(const FSRef &folder, UInt32 rights)
{
    const Access present = accessOf(folder);
    return setAccess(folder, present.owner, present.group, rights);
}

mode_t modeOf(const std::string &path)
{
    return statxOf(path).stx_mode & 07777u;
}

class AccessRights : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        mkdir(path().c_str(), 0700);
        chmod(path().c_str(), 0750);
    }
    std::string path() { return folder() / "shared"; }
    FSRef ref() { return refAt(path()); }
};

TEST(AccessBits, SearchIsTheLowestBitAndWriteTheHighest)
{
    EXPECT_EQ(standin::accessRightsOfMode(0100), 0x01u);
    EXPECT_EQ(standin::accessRightsOfMode(0400), 0x02u);
    EXPECT_EQ(standin::accessRightsOfMode(0200), 0x04u);
    EXPECT_EQ(standin::accessRightsOfMode(0010), 0x0100u);
    EXPECT_EQ(standin::accessRightsOfMode(0040), 0x0200u);
    EXPECT_EQ(standin::accessRightsOfMode(0020), 0x0400u);
    EXPECT_EQ(standin::accessRightsOfMode(0001), 0x010000u);
    EXPECT_EQ(standin::accessRightsOfMode(0004), 0x020000u);
    EXPECT_EQ(standin::accessRightsOfMode(0002), 0x040000u);
    EXPECT_EQ(standin::accessRightsOfMode(07000), 0u);
    EXPECT_EQ(standin::modeOfAccessRights(0xFFF8F8F8), 0u);
}

TEST_P(AccessRights, AreTheOwnerTheGroupAndTheMode)
{
    const Access access = accessOf(ref());
    EXPECT_EQ(access.result, noErr);
    EXPECT_EQ(access.owner, static_cast<SInt32>(geteuid()));
    EXPECT_EQ(access.group, static_cast<SInt32>(statxOf(path()).stx_gid));
    EXPECT_EQ(access.rights & rightsBits, 0x00000307u);
    EXPECT_EQ(access.rights & 0x07000000u, 0x07000000u) << "of the caller";
    EXPECT_NE(access.rights & ownerBit, 0u);
    EXPECT_EQ(access.rights & blankBit, 0u);
}

TEST_P(AccessRights, EveryModeGoesThereAndBack)
{
    const FSRef folderRef = ref();
    for (mode_t mode = 0; mode < 01000; ++mode)
    {
        const UInt32 rights = standin::accessRightsOfMode(mode);
        ASSERT_EQ(setRights(folderRef, rights), noErr) << std::oct << mode;
        ASSERT_EQ(modeOf(path()), mode);
        ASSERT_EQ(accessOf(folderRef).rights & rightsBits, rights);
    }
    chmod(path().c_str(), 0755);
}

TEST_P(AccessRights, SettingKeepsTheSpecialBitsOfTheMode)
{
    for (mode_t special : {0u, 01000u, 02000u, 04000u, 07000u})
    {
        ASSERT_EQ(chmod(path().c_str(), special | 0755), 0);
        EXPECT_EQ(setRights(ref(), 0x00010307), noErr);
        EXPECT_EQ(modeOf(path()), special | 0751);
    }
}

TEST_P(AccessRights, WhatIsOnlyReportedIsNotSet)
{
    EXPECT_EQ(setRights(ref(), 0xFFFFFFFF & ~blankBit & ~0x00070000u), noErr);
    EXPECT_EQ(modeOf(path()), 0770u);
    EXPECT_EQ(accessOf(ref()).rights & ~settableBits, 0x07000000u | ownerBit);
}

TEST_P(AccessRights, BelongToFolders)
{
    writeFile(folder() / "file");
    EXPECT_EQ(accessOf(refAt(folder() / "file")).result, dirNFErr);
    EXPECT_EQ(setAccess(refAt(folder() / "file"), 0, 0, 0), dirNFErr);
    EXPECT_NE(modeOf(folder() / "file"), 0u);
}

TEST_P(AccessRights, BlankAccessTakesTheRightsOfTheEnclosingFolder)
{
    const FSRef folderRef = ref();
    chmod(folder().path().c_str(), 0711);
    EXPECT_EQ(setRights(folderRef, blankBit | everybodysRights), noErr);
    EXPECT_EQ(modeOf(path()), 0711u);
    EXPECT_EQ(accessOf(folderRef).rights & settableBits, blankBit | standin::accessRightsOfMode(0711));
    EXPECT_EQ(setRights(folderRef, standin::accessRightsOfMode(0700)), noErr);
    EXPECT_EQ(accessOf(folderRef).rights & settableBits, standin::accessRightsOfMode(0700));
    EXPECT_EQ(attributeNames(path()), std::vector<std::string>()) << "nothing is kept for what is as usual";
    chmod(folder().path().c_str(), 0755);
}

TEST_P(AccessRights, BlankAccessStaysWithARenamedFolderAndItsOtherMetadata)
{
    FSRef folderRef = ref();
    FSCatalogInfo info{};
    info.backupDate = dateOfUnix(1000000000);
    ASSERT_EQ(change(folderRef, kFSCatInfoBackupDate, info), noErr);
    ASSERT_EQ(setRights(folderRef, blankBit), noErr);
    ASSERT_EQ(rename(folderRef, "renamed"), noErr);
    info.backupDate = dateOfUnix(1000000001);
    ASSERT_EQ(change(folderRef, kFSCatInfoBackupDate, info), noErr);
    EXPECT_NE(accessOf(folderRef).rights & blankBit, 0u);
    ASSERT_EQ(setRights(folderRef, everybodysRights), noErr);
    EXPECT_EQ(infoOf(folderRef).backupDate, dateOfUnix(1000000001));
}

TEST_P(AccessRights, ALockedFolderKeepsThem)
{
    ASSERT_EQ(setLock(ref(), true), noErr);
    EXPECT_EQ(setRights(ref(), everybodysRights), fLckdErr);
    EXPECT_EQ(modeOf(path()), 0750u);
    ASSERT_EQ(setLock(ref(), false), noErr);
}

TEST_P(AccessRights, NobodyMayWriteToALockedVolume)
{
    FSVolumeRefNum volume = 0;
    ASSERT_EQ(standin::addDirectoryVolume("access", folder().path(), {}, &volume), noErr);
    FSRef root{};
    ASSERT_EQ(FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), noErr);
    const FSRef shared = childOf(root, "shared");
    EXPECT_EQ(setRights(root, blankBit), paramErr) << "nothing encloses a root";
    ASSERT_EQ(standin::setVolumeLock(volume, true), noErr);
    EXPECT_EQ(setRights(shared, everybodysRights), vLckdErr);
    EXPECT_EQ(accessOf(shared).rights & 0x07000000u, 0x03000000u);
    EXPECT_EQ(standin::removeDirectoryVolume(volume), noErr);
    EXPECT_EQ(modeOf(path()), 0750u);
}

TEST_P(AccessRights, OfAReadOnlyDiskAreReportedAndNotSet)
{
    ReadOnlyView view(folder().path());
    if (!view.problem().empty())
        GTEST_SKIP() << view.problem();
    const FSRef shared = refAt(view.path() + "/shared");
    EXPECT_EQ(accessOf(shared).rights & (rightsBits | 0x07000000u), 0x03000307u);
    EXPECT_EQ(setRights(shared, everybodysRights), wPrErr);
    EXPECT_EQ(setRights(shared, blankBit), wPrErr);
}

ON_EVERY_DISK(AccessRights);

// --- owners and groups ---------------------------------------------------------------------------------------------------------------------

class AccessOfOthers : public AccessRights
{
protected:
    void SetUp() override
    {
        AccessRights::SetUp();
        if (!IsSkipped() && !canBecomeOtherUsers())
            GTEST_SKIP() << "this user cannot become another one";
    }
};

TEST_P(AccessOfOthers, TheSuperuserGivesFoldersAway)
{
    EXPECT_EQ(setAccess(ref(), ordinaryUser, 1234, 0x00000007), noErr);
    EXPECT_EQ(statxOf(path()).stx_uid, static_cast<uid_t>(ordinaryUser));
    EXPECT_EQ(statxOf(path()).stx_gid, 1234u);
    EXPECT_EQ(modeOf(path()), 0700u);
    const Access access = accessOf(ref());
    EXPECT_EQ(access.owner, static_cast<SInt32>(ordinaryUser));
    EXPECT_EQ(access.group, 1234);
}

TEST_P(AccessOfOthers, LargeNumbersOfUsersComeBackAsTheyWere)
{
    EXPECT_EQ(setAccess(ref(), static_cast<SInt32>(0xFFFFFFF0), static_cast<SInt32>(0x80000000), 7), noErr);
    EXPECT_EQ(statxOf(path()).stx_uid, 0xFFFFFFF0u);
    EXPECT_EQ(statxOf(path()).stx_gid, 0x80000000u);
    EXPECT_EQ(accessOf(ref()).owner, static_cast<SInt32>(0xFFFFFFF0));
    EXPECT_EQ(setAccess(ref(), -1, 0, 7), paramErr);
    EXPECT_EQ(setAccess(ref(), 0, -1, 7), paramErr);
}

const Role triesToGiveFolderAway("triesToGiveFolderAway", [](const RoleArguments &arguments) {
    const FSRef folder = refAt(arguments[0]);
    EXPECT_EQ(setAccess(folder, 0, 0, everybodysRights), permErr);
    EXPECT_EQ(setAccess(folder, ordinaryUser, 0, everybodysRights), permErr);
    EXPECT_EQ(setAccess(folder, nobody, ordinaryUser, blankBit), permErr);
});

TEST_P(AccessOfOthers, AnOwnerWhoMayNotGiveAFolderAwayChangesNothing)
{
    ASSERT_EQ(chown(path().c_str(), ordinaryUser, ordinaryUser), 0);
    chmod(path().c_str(), 01750);
    const std::string before = pictureOf(folder().path());
    playRole("triesToGiveFolderAway", {path()}, {ordinaryUser, {}});
    EXPECT_EQ(pictureOf(folder().path()), before);
}

const Role triesToChangeOthersFolder("triesToChangeOthersFolder", [](const RoleArguments &arguments) {
    const FSRef folder = refAt(arguments[0]);
    const Access access = accessOf(folder);
    EXPECT_EQ(access.rights & 0x87000000u, 0x03000000u) << "may look, may not write, and is not the owner";
    const OSErr rights = setAccess(folder, access.owner, access.group, 0);
    EXPECT_TRUE(rights == permErr || rights == afpAccessDenied) << rights;
    const OSErr blank = setAccess(folder, access.owner, access.group, blankBit);
    EXPECT_TRUE(blank == permErr || blank == afpAccessDenied) << blank;
});

TEST_P(AccessOfOthers, NobodyElseChangesAFolder)
{
    chmod(path().c_str(), 0755);
    const std::string before = pictureOf(folder().path());
    playRole("triesToChangeOthersFolder", {path()}, {ordinaryUser, {}});
    EXPECT_EQ(pictureOf(folder().path()), before);
}

const Role changesOwnFolder("changesOwnFolder", [](const RoleArguments &arguments) {
    const FSRef folder = refAt(arguments[0]);
    EXPECT_EQ(setRights(folder, 0x00010307), noErr);
    EXPECT_EQ(accessOf(folder).rights & (rightsBits | ownerBit), 0x00010307 | ownerBit);
    EXPECT_EQ(setRights(folder, 0), noErr) << "also the right to come back";
    EXPECT_EQ(accessOf(folder).rights & 0x07000000u, 0u);
    EXPECT_EQ(setRights(folder, 0x00000007), noErr);
});

TEST_P(AccessOfOthers, AnOwnerSetsTheRights)
{
    ASSERT_EQ(chown(path().c_str(), ordinaryUser, ordinaryUser), 0);
    playRole("changesOwnFolder", {path()}, {ordinaryUser, {}});
    EXPECT_EQ(modeOf(path()), 0700u);
}

const Role changesFolderOfForeignGroup("changesFolderOfForeignGroup", [](const RoleArguments &arguments) {
    EXPECT_EQ(setRights(refAt(arguments[0]), everybodysRights), permErr);
});

TEST_P(AccessOfOthers, ABitThatLinuxWouldDropSilentlyStays)
{
    ASSERT_EQ(chown(path().c_str(), ordinaryUser, 4321), 0);
    ASSERT_EQ(chmod(path().c_str(), 02750), 0);
    playRole("changesFolderOfForeignGroup", {path()}, {ordinaryUser, {}});
    EXPECT_EQ(modeOf(path()), 02750u);
}

ON_EVERY_DISK(AccessOfOthers);

// --- when Linux refuses a step -------------------------------------------------------------------------------------------------------------

const char *failingCall = nullptr;

int failOne(const char *call)
{
    return failingCall && std::strcmp(call, failingCall) == 0 ? EIO : 0;
}

TEST(AccessFailures, WhatWasDoneBeforeIsUndone)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only the superuser gives folders away";
    TemporaryFolder folder(DiskKind::plain);
    mkdir((folder / "shared").c_str(), 0755);
    chmod((folder / "shared").c_str(), 01755);
    const FSRef ref = refAt(folder / "shared");
    const Access before = accessOf(ref);
    for (const char *call : {"setOwner", "setMode", "setAttribute"})
    {
        if (!folder.disk().hasAttributes && std::string(call) == "setAttribute")
            continue;
        failingCall = call;
        standin::linux_calls::setCallFilter(failOne);
        EXPECT_EQ(setAccess(ref, 5, 6, blankBit), ioErr) << call;
        standin::linux_calls::setCallFilter(nullptr);
        const Access after = accessOf(ref);
        EXPECT_EQ(after.owner, before.owner) << call;
        EXPECT_EQ(after.group, before.group) << call;
        EXPECT_EQ(after.rights, before.rights) << call;
        EXPECT_EQ(modeOf(folder / "shared"), 01755u) << call;
    }
}

}   // namespace
