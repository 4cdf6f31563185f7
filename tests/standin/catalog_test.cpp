// What FSGetCatalogInfo reads and FSSetCatalogInfo sets, field by field, on every disk.
#include "tests/standin/test_volume.h"

#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class Catalog : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }
    FSRef fileRef(const std::string &name = "file", std::string_view text = "data")
    {
        writeFile(folder() / name, text);
        return refAt(folder() / name);
    }
};

// Written down here once more: seconds since 1904, the fraction rounded down.
UTCDateTime dateOfStatx(const statx_timestamp &time)
{
    return dateOfUnix(time.tv_sec, static_cast<UInt16>(static_cast<std::uint64_t>(time.tv_nsec) * 65536 / 1000000000));
}

bool allZero(const UInt8 *bytes, std::size_t count)
{
    return Bytes(bytes, bytes + count) == Bytes(count);
}

FSPermissionInfo permissionsOf(const FSCatalogInfo &info)
{
    FSPermissionInfo permissions;
    std::memcpy(&permissions, info.permissions, sizeof permissions);
    return permissions;
}

TEST_P(Catalog, EveryFieldOfAFileIsRead)
{
    writeFile(folder() / "file", std::string(5000, 'x'));
    chmod((folder() / "file").c_str(), 0640);
    struct statx record = statxOf(folder() / "file");
    FSRef ref = refAt(folder() / "file");
    FSCatalogInfo info = infoOf(ref), parent = infoOf(folderRef());

    EXPECT_EQ(+info.nodeFlags, 0);
    EXPECT_EQ(+info.volume, +parent.volume);
    EXPECT_EQ(+info.parentDirID, +parent.nodeID);
    EXPECT_GE(+info.nodeID, 16u);
    EXPECT_EQ(+info.dataLogicalSize, 5000u);
    EXPECT_EQ(+info.dataPhysicalSize, record.stx_blocks * 512);
    EXPECT_EQ(+info.rsrcLogicalSize, 0u);
    EXPECT_EQ(+info.valence, 0u);
    EXPECT_EQ(info.contentModDate, dateOfStatx(record.stx_mtime));
    EXPECT_EQ(info.attributeModDate, dateOfStatx(record.stx_ctime));
    EXPECT_EQ(info.accessDate, dateOfStatx(record.stx_atime));
    EXPECT_EQ(info.backupDate, dateOf(0));
    if (disk().hasBirthTimes)
    {
        EXPECT_EQ(info.createDate, dateOfStatx(record.stx_btime));
    }
    EXPECT_TRUE(allZero(info.finderInfo, 16));
    EXPECT_TRUE(allZero(info.extFinderInfo, 16));
    EXPECT_EQ(+info.textEncodingHint, 0u);
    FSPermissionInfo permissions = permissionsOf(info);
    EXPECT_EQ(+permissions.userID, record.stx_uid);
    EXPECT_EQ(+permissions.groupID, record.stx_gid);
    EXPECT_EQ(permissions.mode & 07777, 0640);
}

TEST_P(Catalog, EveryFieldOfAFolderIsRead)
{
    mkdir((folder() / "inner").c_str(), 0750);
    FSCatalogInfo info = infoOf(refAt(folder() / "inner")), parent = infoOf(folderRef());
    EXPECT_EQ(+info.nodeFlags, kFSNodeIsDirectoryMask);
    EXPECT_EQ(+info.volume, +parent.volume);
    EXPECT_EQ(+info.parentDirID, +parent.nodeID);
    EXPECT_EQ(+info.valence, 0u);
    EXPECT_EQ(+info.dataLogicalSize, 0u);
    EXPECT_EQ(+info.rsrcLogicalSize, 0u);
    EXPECT_EQ(permissionsOf(info).mode & 07777, 0750);
}

TEST_P(Catalog, ValenceCountsWhatAListingShows)
{
    writeFile(folder() / "file");
    writeFile(folder() / "._file", plainSidecar({1, 2, 3}));
    mkdir((folder() / "inner").c_str(), 0755);
    writeFile(folder() / ".hidden");
    writeFile(folder() / "._gone", plainSidecar({4}));   // nobody knows whose only copy of a fork this is
    folder().expectOrphan("._gone");
    EXPECT_EQ(+infoOf(folderRef(), kFSCatInfoValence).valence, 4u);
}

TEST_P(Catalog, NamesParentAndSpecAgree)
{
    FSRef ref = fileRef("a name.txt");
    EXPECT_EQ(nameOf(ref), u"a name.txt");
    EXPECT_TRUE(sameObject(parentOf(ref), folderRef()));
    FSSpec spec = specOf(ref);
    EXPECT_EQ(std::string(spec.name + 1, spec.name + 1 + spec.name[0]), "a name.txt");
    EXPECT_EQ(static_cast<UInt32>(spec.parID), nodeOf(folderRef()));
    EXPECT_EQ(+spec.vRefNum, +infoOf(ref, kFSCatInfoVolume).volume);
}

TEST_P(Catalog, DatesSurvive)
{
    FSRef ref = fileRef();
    for (std::int64_t second : {500000000LL, 946684799LL, 1795280000LL, 2147483000LL})
        for (int parts : {0, 1, 2, 21845, 32767, 32768, 65534, 65535})
        {
            UInt16 fraction = static_cast<UInt16>(parts);
            FSCatalogInfo info{};
            info.createDate = dateOfUnix(second, fraction);
            info.contentModDate = dateOfUnix(second + 1, fraction);
            info.accessDate = dateOfUnix(second + 2, fraction);
            info.backupDate = dateOfUnix(second + 3, fraction);
            constexpr FSCatalogInfoBitmap dates = kFSCatInfoCreateDate | kFSCatInfoContentMod | kFSCatInfoAccessDate | kFSCatInfoBackupDate;
            ASSERT_EQ(change(ref, dates, info), noErr);
            FSCatalogInfo after = infoOf(ref, dates);
            UInt16 kept = disk().hasFineDates ? fraction : UInt16{0};
            ASSERT_EQ(after.createDate, info.createDate);
            ASSERT_EQ(after.contentModDate, dateOfUnix(second + 1, kept));
            ASSERT_EQ(after.accessDate, dateOfUnix(second + 2, kept));
            ASSERT_EQ(after.backupDate, info.backupDate);
        }
}

TEST_P(Catalog, OwnDatesHaveNoYearTooFar)
{
    FSRef ref = fileRef();
    for (std::uint64_t seconds : {1ull, 0x7FFFFFFFull, 0xFFFFFFFFull, 0x100000000ull, 0xFFFFFFFFFFFFull})
    {
        FSCatalogInfo info{};
        info.createDate = info.backupDate = dateOf(seconds, 12345);
        ASSERT_EQ(change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate, info), noErr);
        ASSERT_EQ(infoOf(ref, kFSCatInfoCreateDate).createDate, info.createDate);
        ASSERT_EQ(infoOf(ref, kFSCatInfoBackupDate).backupDate, info.backupDate);
    }
}

TEST_P(Catalog, FolderDatesSurvive)
{
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef ref = refAt(folder() / "inner");
    FSCatalogInfo info{};
    info.createDate = dateOfUnix(700000000, 7);
    info.contentModDate = dateOfUnix(800000000, 0);
    info.backupDate = dateOfUnix(900000000, 9);
    constexpr FSCatalogInfoBitmap dates = kFSCatInfoCreateDate | kFSCatInfoContentMod | kFSCatInfoBackupDate;
    ASSERT_EQ(change(ref, dates, info), noErr);
    FSCatalogInfo after = infoOf(ref, dates);
    EXPECT_EQ(after.createDate, info.createDate);
    EXPECT_EQ(after.contentModDate, info.contentModDate);
    EXPECT_EQ(after.backupDate, info.backupDate);
}

// A record with another value than the default in every settable field.
FSCatalogInfo fullRecord()
{
    FSCatalogInfo info{};
    info.textEncodingHint = 29;
    info.createDate = dateOfUnix(1111111111, 111);
    info.contentModDate = dateOfUnix(1222222222, 0);
    info.attributeModDate = dateOfUnix(1333333333, 0);
    info.accessDate = dateOfUnix(1444444444, 0);
    info.backupDate = dateOfUnix(1555555555, 555);
    FSPermissionInfo permissions{};
    permissions.userID = geteuid();
    permissions.groupID = getegid();
    permissions.mode = 0600;
    std::memcpy(info.permissions, &permissions, sizeof permissions);
    for (UInt8 i = 0; i < 16; ++i)
    {
        info.finderInfo[i] = static_cast<UInt8>(0x41 + i);
        info.extFinderInfo[i] = static_cast<UInt8>(0x61 + i);
    }
    return info;
}

// What a setting of one field may change: that field, and never another settable one.
std::string settableText(const FSCatalogInfo &info, FSCatalogInfoBitmap which)
{
    testing::Message text;
    if (which & kFSCatInfoTextEncoding)
        text << " hint " << +info.textEncodingHint;
    if (which & kFSCatInfoNodeFlags)
        text << " flags " << (info.nodeFlags & kFSNodeLockedMask);
    if (which & kFSCatInfoCreateDate)
        text << " created " << testing::PrintToString(info.createDate);
    if (which & kFSCatInfoContentMod)
        text << " modified " << testing::PrintToString(info.contentModDate);
    if (which & kFSCatInfoAccessDate)
        text << " accessed " << testing::PrintToString(info.accessDate);
    if (which & kFSCatInfoBackupDate)
        text << " backed up " << testing::PrintToString(info.backupDate);
    if (which & kFSCatInfoPermissions)
        text << " mode " << (permissionsOf(info).mode & 07777) << " of " << +permissionsOf(info).userID;
    if (which & kFSCatInfoFinderInfo)
        text << " finder " << testing::PrintToString(Bytes(info.finderInfo, info.finderInfo + 16));
    if (which & kFSCatInfoFinderXInfo)
        text << " extended " << testing::PrintToString(Bytes(info.extFinderInfo, info.extFinderInfo + 16));
    return text.GetString();
}

constexpr FSCatalogInfoBitmap settableFields[] = {
    kFSCatInfoTextEncoding, kFSCatInfoCreateDate,  kFSCatInfoContentMod, kFSCatInfoAccessDate,
    kFSCatInfoBackupDate,   kFSCatInfoPermissions, kFSCatInfoFinderInfo, kFSCatInfoFinderXInfo,
};

TEST_P(Catalog, EachFieldIsSetAlone)
{
    for (const char *kind : {"file", "folder"})
        for (FSCatalogInfoBitmap field : settableFields)
        {
            SCOPED_TRACE(testing::Message() << kind << ", field " << field);
            std::string path = folder() / (kind + std::to_string(field));
            std::string_view(kind) == "file" ? writeFile(path, "data") : static_cast<void>(mkdir(path.c_str(), 0755));
            FSRef ref = refAt(path);
            // Looking at an object is an access: its date may move at any time.
            FSCatalogInfoBitmap others = kFSCatInfoSettableInfo & ~(field | kFSCatInfoAttrMod | kFSCatInfoAccessDate);
            if (!disk().hasBirthTimes && field == kFSCatInfoContentMod)
                others &= ~kFSCatInfoCreateDate;   // a file whose birth nobody knows is as old as its oldest date
            std::string before = settableText(infoOf(ref), others);
            ASSERT_EQ(change(ref, field, fullRecord()), noErr);
            FSCatalogInfo after = infoOf(ref);
            EXPECT_EQ(settableText(after, field), settableText(fullRecord(), field));
            EXPECT_EQ(settableText(after, others), before);
        }
}

TEST_P(Catalog, AllFieldsAreSetAtOnce)
{
    FSRef ref = fileRef();
    FSCatalogInfo info = fullRecord();
    info.nodeFlags = kFSNodeLockedMask;
    ASSERT_EQ(change(ref, kFSCatInfoSettableInfo, info), noErr);
    constexpr FSCatalogInfoBitmap compared = kFSCatInfoSettableInfo & ~kFSCatInfoAttrMod;   // Linux alone sets that one
    EXPECT_EQ(settableText(infoOf(ref), compared), settableText(info, compared));
    EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
    EXPECT_EQ(setLock(ref, false), noErr);
    EXPECT_FALSE(isLocked(ref));
}

TEST_P(Catalog, TheDirectoryBitIsNoMatterOfSetting)
{
    FSRef ref = fileRef();
    FSCatalogInfo info{};
    info.nodeFlags = kFSNodeIsDirectoryMask;
    EXPECT_EQ(change(ref, kFSCatInfoNodeFlags, info), noErr);
    EXPECT_EQ(+infoOf(ref, kFSCatInfoNodeFlags).nodeFlags, 0);
}

TEST_P(Catalog, ForkSizesComeFromTheSidecar)
{
    FSRef ref = fileRef("file", "1234567");
    writeFile(folder() / "._file", plainSidecar(Bytes(100, 7)));
    FSCatalogInfo info = infoOf(ref, kFSCatInfoDataSizes | kFSCatInfoRsrcSizes);
    EXPECT_EQ(+info.dataLogicalSize, 7u);
    EXPECT_EQ(+info.rsrcLogicalSize, 100u);
    EXPECT_GE(+info.rsrcPhysicalSize, 100u);
    EXPECT_EQ(forkOf(ref), Bytes(100, 7));

    writeFile(folder() / "._file", sidecarOf({{2, 82, Bytes(55, 8)}, {9, 50, Bytes(32)}}));   // the order of another writer
    EXPECT_EQ(+infoOf(ref, kFSCatInfoRsrcSizes).rsrcLogicalSize, 55u);
    EXPECT_EQ(forkOf(ref), Bytes(55, 8));
}

TEST_P(Catalog, AForkLeftBlankOnPurposeIsNone)
{
    FSRef ref = fileRef();
    Bytes blank;
    for (std::uint32_t value : {0x100, 0x100, 0, 0x1E})
        appendBig(blank, value, 4);
    Bytes sentence = bytesOf("This resource fork intentionally left blank   ");
    blank.insert(blank.end(), sentence.begin(), sentence.end());
    blank.resize(286);
    writeFile(folder() / "._file", plainSidecar(blank));
    EXPECT_EQ(+infoOf(ref, kFSCatInfoRsrcSizes).rsrcLogicalSize, 0u);
}

TEST_P(Catalog, OpenForksAreSeenInTheFlags)
{
    FSRef ref = fileRef();
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    constexpr UInt16 mask = kFSNodeDataOpenMask | kFSNodeResOpenMask | kFSNodeForkOpenMask;
    EXPECT_EQ(infoOf(ref).nodeFlags & mask, 0);
    SInt16 data = 0, resource = 0;
    ASSERT_EQ(openFork(ref, false, fsRdPerm, data), noErr);
    EXPECT_EQ(infoOf(ref).nodeFlags & mask, kFSNodeDataOpenMask | kFSNodeForkOpenMask);
    ASSERT_EQ(openFork(ref, true, fsRdPerm, resource), noErr);
    EXPECT_EQ(infoOf(ref).nodeFlags & mask, mask);
    EXPECT_EQ(FSCloseFork(data), noErr);
    EXPECT_EQ(infoOf(ref).nodeFlags & mask, kFSNodeResOpenMask | kFSNodeForkOpenMask);
    EXPECT_EQ(FSCloseFork(resource), noErr);
    EXPECT_EQ(infoOf(ref).nodeFlags & mask, 0);
}

TEST_P(Catalog, BitsThatDoNotExistAreRefused)
{
    FSRef ref = fileRef();
    std::string before = pictureOf(folder().path());
    for (int bit = 0; bit < 32; ++bit)
    {
        SCOPED_TRACE(bit);
        FSCatalogInfoBitmap which = FSCatalogInfoBitmap{1} << bit;
        FSCatalogInfo info{};
        EXPECT_EQ(FSGetCatalogInfo(&ref, which, &info, nullptr, nullptr, nullptr), bit < 18 ? noErr : errFSBadInfoBitmap);
        if ((which & kFSCatInfoSettableInfo) == 0)
        {
            EXPECT_EQ(change(ref, which, fullRecord()), errFSBadInfoBitmap);
            EXPECT_EQ(change(ref, which | kFSCatInfoFinderInfo, fullRecord()), errFSBadInfoBitmap);
        }
    }
    EXPECT_EQ(change(ref, kFSCatInfoNone, fullRecord()), noErr);
    EXPECT_EQ(pictureOf(folder().path()), before);
}

TEST_P(Catalog, NothingIsWrittenForDefaultValues)
{
    fileRef();
    mkdir((folder() / "inner").c_str(), 0755);
    for (const char *name : {"file", "inner"})
    {
        FSCatalogInfo defaults{};
        ASSERT_EQ(
            change(refAt(folder() / name), finderBits | kFSCatInfoBackupDate | kFSCatInfoNodeFlags | kFSCatInfoTextEncoding, defaults),
            noErr);
        EXPECT_TRUE(attributeNames(folder() / name).empty());
    }
    EXPECT_EQ(namesIn(folder().path()), (std::vector<std::string>{"file", "inner"}));
    EXPECT_TRUE(namesIn(folder() / "inner").empty());
}

void readEverything(const FSRef &ref)
{
    FSCatalogInfo info{};
    HFSUniStr255 name{};
    FSSpec spec{};
    FSRef parent{};
    EXPECT_EQ(FSGetCatalogInfo(&ref, everything, &info, &name, &spec, &parent), noErr);
    pathOf(ref);
    if ((info.nodeFlags & kFSNodeIsDirectoryMask) == 0)
    {
        forkOf(ref, false);
        SInt16 fork = 0;
        SInt64 size = 0;
        if (openFork(ref, true, fsRdPerm, fork) == noErr)
        {
            FSGetForkSize(fork, &size);
            FSCloseFork(fork);
        }
        CatPositionRec position{};
        while (FSIterateForks(&ref, &position, &name, &size, nullptr) == noErr)
            continue;
    }
}

TEST_P(Catalog, ReadingNeverWrites)
{
    fileRef("plain");
    ASSERT_EQ(setType(fileRef("typed"), code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(fileRef("forked"), true, {1, 2, 3}), noErr);
    fileRef("foreign");
    writeFile(folder() / "._foreign", sidecarOf({{2, 82, Bytes(9, 9)}, {9, 50, Bytes(32, 5)}}, "Mac OS X        "));
    fileRef("damaged");
    writeFile(folder() / "._damaged", "no sidecar at all");
    mkdir((folder() / "inner").c_str(), 0755);
    ASSERT_EQ(symlink("plain", (folder() / "link").c_str()), 0);
    std::string before = pictureOf(folder().path());
    FSRef parent = folderRef();
    readEverything(parent);
    for (const char *name : {"plain", "typed", "forked", "foreign", "inner"})
        readEverything(childOf(parent, name));
    infoOf(childOf(parent, "link"));
    infoOf(childOf(parent, "damaged"), kFSCatInfoDataSizes);
    for (const char *name : {"link", "damaged"})
    {
        FSRef ref = childOf(parent, name);
        CatPositionRec position{};
        EXPECT_EQ(FSIterateForks(&ref, &position, nullptr, nullptr, nullptr), noErr);
        EXPECT_EQ(FSIterateForks(&ref, &position, nullptr, nullptr, nullptr), errFSNoMoreItems);
    }
    EXPECT_EQ(pictureOf(folder().path()), before);
}

ON_EVERY_DISK(Catalog);

}   // namespace
