// Where metadata lies on disk: attributes and sidecars byte for byte, and the lock.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <cstring>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr const char *sharedName = "user.org.netatalk.Metadata";
constexpr const char *ownName = "user.zerb";

class Metadata : public DiskTest
{
protected:
    FSRef folderRef() { return refAt(folder().path()); }
    FSRef fileRef(const std::string &name = "file", std::string_view text = "data")
    {
        writeFile(folder() / name, text);
        return refAt(folder() / name);
    }
};

// The published form, put together once more: 26 bytes of header, 8 entries, each at its place.
Bytes sharedBytes(const Bytes &finderInfo, const Bytes &dates, std::uint16_t lockBits)
{
    Bytes bytes;
    appendBig(bytes, 0x00051607, 4);
    appendBig(bytes, 0x00020000, 4);
    bytes.resize(24);
    appendBig(bytes, 8, 2);
    const std::uint32_t table[8][3] = {{4, 154, 0},          {8, 354, 16},         {9, 122, 32},         {14, 370, 4},
                                       {0x80444556, 374, 0}, {0x80494E4F, 382, 0}, {0x8053594E, 390, 0}, {0x8053567E, 398, 0}};
    for (const auto &row : table)
        for (std::uint32_t value : row)
            appendBig(bytes, value, 4);
    bytes.insert(bytes.end(), finderInfo.begin(), finderInfo.end());
    bytes.resize(354);
    bytes.insert(bytes.end(), dates.begin(), dates.end());
    appendBig(bytes, lockBits, 4);
    bytes.resize(402);
    return bytes;
}

Bytes unknownDates()
{
    Bytes dates;
    for (int i = 0; i < 4; ++i)
        appendBig(dates, 0x80000000, 4);
    return dates;
}

// The dates of a blob as read, where a test does not say them: a writer may know them or not.
Bytes datesIn(const Bytes &blob)
{
    return blob.size() == 402 ? Bytes(blob.begin() + 354, blob.begin() + 370) : Bytes{};
}

Bytes withoutDates(Bytes blob)
{
    if (blob.size() == 402)
        std::fill(blob.begin() + 354, blob.begin() + 370, std::uint8_t{0});
    return blob;
}

FSCatalogInfo fileRecord()
{
    FSCatalogInfo info{};
    FileInfo file{};
    file.fileType = 0x54455854;
    file.fileCreator = 0x74747874;
    file.finderFlags = 0x0401;
    file.location.v = 0x0102;
    file.location.h = -2;
    file.reservedField = 0x0A0B;
    setFileInfo(info, file);
    ExtendedFileInfo extended{};
    extended.reserved1[0] = 0x1112;
    extended.reserved1[3] = 0x1718;
    extended.extendedFinderFlags = 0x191A;
    extended.reserved2 = 0x1B1C;
    extended.putAwayFolderID = 0x1D1E1F20;
    std::memcpy(info.extFinderInfo, &extended, sizeof extended);
    return info;
}

Bytes fileRecordOnDisk()
{
    Bytes bytes = bytesOf("TEXTttxt");
    appendBig(bytes, 0x04010102FFFE0A0B, 8);
    appendBig(bytes, 0x1112000000001718, 8);
    appendBig(bytes, 0x191A1B1C1D1E1F20, 8);
    return bytes;
}

TEST_P(Metadata, FinderInformationHasThePublishedForm)
{
    FSRef ref = fileRef();
    ASSERT_EQ(change(ref, finderBits, fileRecord()), noErr);
    if (disk().hasAttributes)
    {
        Bytes blob = attribute(folder() / "file", sharedName).value_or(Bytes{});
        EXPECT_EQ(withoutDates(blob), withoutDates(sharedBytes(fileRecordOnDisk(), unknownDates(), 0)));
        EXPECT_EQ(attributeNames(folder() / "file"), std::vector<std::string>{sharedName})
            << "our own attribute is only for what this one has no room for";
        EXPECT_FALSE(exists(folder() / "._file"));
    }
    else
    {
        Bytes sidecar = readFile(folder() / "._file");
        ASSERT_GE(sidecar.size(), 82u);
        Bytes info = fileRecordOnDisk();
        EXPECT_NE(std::search(sidecar.begin(), sidecar.end(), info.begin(), info.end()), sidecar.end());
    }
}

TEST_P(Metadata, AFoldersRecordIsTurnedFieldByField)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    mkdir((folder() / "inner").c_str(), 0755);
    FSCatalogInfo info{};
    FolderInfo record{};
    record.windowBounds.top = 1;
    record.windowBounds.left = 2;
    record.windowBounds.bottom = 3;
    record.windowBounds.right = -1;
    record.finderFlags = 0x4000;
    record.location.v = 5;
    record.location.h = 6;
    std::memcpy(info.finderInfo, &record, sizeof record);
    ExtendedFolderInfo extended{};
    extended.scrollPosition.v = 7;
    extended.scrollPosition.h = 8;
    extended.reserved1 = 0x090A0B0C;
    extended.extendedFinderFlags = 0x0D0E;
    extended.putAwayFolderID = 0x11121314;
    std::memcpy(info.extFinderInfo, &extended, sizeof extended);
    ASSERT_EQ(change(refAt(folder() / "inner"), finderBits, info), noErr);
    Bytes expected;
    appendBig(expected, 0x000100020003FFFF, 8);
    appendBig(expected, 0x4000000500060000, 8);
    appendBig(expected, 0x00070008090A0B0C, 8);
    appendBig(expected, 0x0D0E000011121314, 8);
    Bytes blob = attribute(folder() / "inner", sharedName).value_or(Bytes{});
    EXPECT_EQ(withoutDates(blob), withoutDates(sharedBytes(expected, unknownDates(), 0)));
}

TEST_P(Metadata, DatesLieInOurOwnAttributeAndInTheSharedOne)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    FSRef ref = fileRef();
    FSCatalogInfo info{};
    info.createDate = dateOfUnix(946684800 + 1000, 0x1234);
    info.backupDate = dateOfUnix(946684800 - 1000, 0x5678);
    ASSERT_EQ(change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate, info), noErr);

    Bytes own = bytesOf("ZERB");
    appendBig(own, 0x010C0000, 4);   // version 1, flags for both dates, reserved
    appendBig(own, 0, 4);            // no hint
    for (const UTCDateTime &date : {info.createDate, info.backupDate})
    {
        appendBig(own, secondsOf(date), 6);
        appendBig(own, date.fraction, 2);
    }
    EXPECT_EQ(attribute(folder() / "file", ownName), own);

    Bytes dates = datesIn(attribute(folder() / "file", sharedName).value_or(Bytes{}));
    ASSERT_EQ(dates.size(), 16u);
    EXPECT_EQ(big32(dates, 0), 1000u);
    EXPECT_EQ(big32(dates, 8), static_cast<std::uint32_t>(-1000));
}

TEST_P(Metadata, TheHintLiesInOurOwnAttributeAlone)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    FSRef ref = fileRef();
    FSCatalogInfo info{};
    info.textEncodingHint = 0x01020304;
    ASSERT_EQ(change(ref, kFSCatInfoTextEncoding, info), noErr);
    Bytes own = attribute(folder() / "file", ownName).value_or(Bytes(28));
    EXPECT_EQ(own.at(5), 0x02);
    EXPECT_EQ(big32(own, 8), 0x01020304u);
    EXPECT_EQ(+infoOf(ref).textEncodingHint, 0x01020304u);
}

TEST_P(Metadata, ForeignAttributesAreReadAndKept)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    FSRef ref = fileRef();
    Bytes blob = sharedBytes(fileRecordOnDisk(), unknownDates(), 0x0004);   // an attribute bit that is no lock
    for (std::size_t i = 0; i < 4; ++i)
        blob[26 + 12 * (4 + i) + 11] = i < 3 ? 8 : 4;   // the private entries as the other server writes them
    std::fill(blob.begin() + 374, blob.end(), std::uint8_t{0x5A});
    Bytes comment = bytesOf("a comment");
    blob[26 + 11] = static_cast<std::uint8_t>(comment.size());
    std::copy(comment.begin(), comment.end(), blob.begin() + 154);
    setAttribute(folder() / "file", sharedName, blob);
    EXPECT_EQ(typeOf(ref), code("TEXT"));
    EXPECT_FALSE(isLocked(ref));

    ASSERT_EQ(setType(ref, code("PICT"), code("ttxt"), 0x0401), noErr);
    Bytes expected = blob;
    std::copy_n("PICT", 4, expected.begin() + 122);
    EXPECT_EQ(attribute(folder() / "file", sharedName), expected);
}

TEST_P(Metadata, RubbishInTheAttributesIsSurvived)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    FSRef ref = fileRef();
    Bytes good = sharedBytes(fileRecordOnDisk(), unknownDates(), 0);
    for (std::size_t size : {0, 1, 25, 26, 121, 122, 153, 401})
    {
        setAttribute(folder() / "file", sharedName, Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        setAttribute(folder() / "file", ownName, Bytes(size, 0xFF));
        FSCatalogInfo info{};
        EXPECT_EQ(FSGetCatalogInfo(&ref, everything, &info, nullptr, nullptr, nullptr), noErr) << size;
        EXPECT_EQ(+info.dataLogicalSize, 4u);
    }
}

TEST_P(Metadata, TheLockIsKeptWhereAListingShowsIt)
{
    FSRef ref = fileRef();
    ASSERT_EQ(setLock(ref, true), noErr);
    EXPECT_TRUE(isLocked(ref));
    EXPECT_TRUE(isLocked(refAt(folder() / "file")));
    Bytes sidecar = readFile(folder() / "._file");
    if (disk().hasAttributes)
    {
        Bytes expected = plainSidecar({});
        ASSERT_EQ(sidecar.size(), 82u);
        std::copy_n(sidecar.begin() + 8, 16, expected.begin() + 8);   // the filler says who wrote it
        EXPECT_EQ(sidecar, expected);
        EXPECT_EQ(attribute(folder() / "file", ownName).value_or(Bytes(28)).at(5), 0x01);
        EXPECT_EQ(big32(attribute(folder() / "file", sharedName).value_or(Bytes(402)), 370), 0x01A0u);
    }
    EXPECT_EQ(+infoOf(ref).rsrcLogicalSize, 0u);

    ASSERT_EQ(setLock(ref, false), noErr);
    EXPECT_FALSE(isLocked(refAt(folder() / "file")));
    if (std::optional<Bytes> blob = attribute(folder() / "file", sharedName))
    {
        EXPECT_EQ(big32(*blob, 370), 0u);
    }
}

TEST_P(Metadata, ALockedFolderIsALockedObject)
{
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef ref = refAt(folder() / "inner");
    ASSERT_EQ(setLock(ref, true), noErr);
    EXPECT_TRUE(isLocked(ref));
    EXPECT_EQ(FSDeleteObject(&ref), fLckdErr);
    EXPECT_EQ(rename(ref, "outer"), fLckdErr);
    EXPECT_EQ(setType(ref, code("TEXT"), 0), fLckdErr);
    ASSERT_EQ(setLock(ref, false), noErr);
    EXPECT_EQ(FSDeleteObject(&ref), noErr);
}

TEST_P(Metadata, ALockThatOthersWroteIsALock)
{
    if (disk().hasAttributes)
    {
        FSRef ref = fileRef("byAttribute");
        setAttribute(folder() / "byAttribute", sharedName, sharedBytes(Bytes(32), unknownDates(), 0x01A0));
        EXPECT_TRUE(isLocked(ref));
        EXPECT_EQ(FSDeleteObject(&ref), fLckdErr);
        setAttribute(folder() / "byAttribute", sharedName, sharedBytes(Bytes(32), unknownDates(), 0x0120));   // not all three
        EXPECT_FALSE(isLocked(ref));
    }
    FSRef ref = fileRef("bySidecar");
    writeFile(folder() / "._bySidecar", sidecarOf({{9, 62, Bytes(32)}, {10, 94, {0, 0, 0, 1}}, {2, 98, {7, 7}}}));
    EXPECT_TRUE(isLocked(ref));
    EXPECT_EQ(setType(ref, code("TEXT"), 0), fLckdErr);
    ASSERT_EQ(setLock(ref, false), noErr) << "such a lock can be taken away too";
    EXPECT_FALSE(isLocked(ref));
    EXPECT_EQ(forkOf(ref), (Bytes{7, 7}));
}

TEST_P(Metadata, LockedObjectsRefuseEveryChange)
{
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef ref = fileRef(), other = fileRef("other"), inner = refAt(folder() / "inner");
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    ASSERT_EQ(setLock(ref, true), noErr);
    std::string before = pictureOf(folder().path());
    EXPECT_EQ(FSDeleteObject(&ref), fLckdErr);
    EXPECT_EQ(rename(ref, "renamed"), fLckdErr);
    EXPECT_EQ(move(ref, inner), fLckdErr);
    OSErr refusal = offersExchange(ref) ? fLckdErr : paramErr;
    EXPECT_EQ(FSExchangeObjects(&ref, &other), refusal);
    EXPECT_EQ(FSExchangeObjects(&other, &ref), refusal);
    for (FSCatalogInfoBitmap field : {kFSCatInfoTextEncoding, kFSCatInfoCreateDate, kFSCatInfoContentMod, kFSCatInfoBackupDate,
                                      kFSCatInfoPermissions, kFSCatInfoFinderInfo, kFSCatInfoFinderXInfo})
        EXPECT_EQ(change(ref, field, fileRecord()), fLckdErr) << field;
    SInt16 fork = 0;
    for (bool resource : {false, true})
        for (SInt8 permission : {fsWrPerm, fsRdWrPerm})
            EXPECT_EQ(openFork(ref, resource, permission, fork), fLckdErr) << resource;
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3})) << "reading is free";
    EXPECT_EQ(pictureOf(folder().path()), before);
}

TEST_P(Metadata, AForkLiesInASidecarOfTheCommonForm)
{
    FSRef ref = fileRef();
    Bytes fork = bytesOf("resource fork bytes");
    ASSERT_EQ(writeFork(ref, true, fork), noErr);
    Bytes sidecar = readFile(folder() / "._file"), expected = plainSidecar(fork);
    if (disk().hasAttributes)
    {
        ASSERT_EQ(sidecar.size(), expected.size());
        std::copy_n(sidecar.begin() + 8, 16, expected.begin() + 8);   // the filler says who wrote it
        EXPECT_EQ(sidecar, expected);
    }
    EXPECT_EQ(Bytes(sidecar.end() - static_cast<std::ptrdiff_t>(fork.size()), sidecar.end()), fork)
        << "the fork comes last, because it grows";
    EXPECT_EQ(forkOf(refAt(folder() / "file")), fork);
}

// A file server that is told to clear Finder information removes the shared attribute. The copy that the fork's sidecar holds must not bring it back.
TEST_P(Metadata, AClearedAttributeIsNotReplacedByTheCopyInTheForksSidecar)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "no attributes on this disk";
    FSRef ref = fileRef("file");
    ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    ASSERT_EQ(removexattr((folder() / "file").c_str(), "user.org.netatalk.Metadata"), 0);
    EXPECT_EQ(typeOf(ref), 0u);
    EXPECT_EQ(forkOf(ref), (Bytes{1, 2, 3}));
}

TEST_P(Metadata, AHardLinkedSidecarIsCopiedBeforeItIsWritten)
{
    FSRef first = fileRef("first");
    fileRef("second");
    ASSERT_EQ(writeFork(first, true, {1, 1, 1}), noErr);
    ASSERT_EQ(link((folder() / "._first").c_str(), (folder() / "._second").c_str()), 0);
    ASSERT_EQ(writeFork(first, true, {2, 2, 2, 2}), noErr);
    EXPECT_EQ(forkOf(first), (Bytes{2, 2, 2, 2}));
    EXPECT_EQ(forkOf(refAt(folder() / "second")), (Bytes{1, 1, 1}));
}

TEST_P(Metadata, MvKeepsItInTheSameFolder)
{
    if (!disk().hasAttributes)
        GTEST_SKIP() << "everything lies in the sidecar here";
    ASSERT_EQ(setType(fileRef(), code("TEXT"), code("ttxt")), noErr);
    moveByProgram(folder() / "file", folder() / "renamed");
    EXPECT_EQ(typeOf(refAt(folder() / "renamed")), code("TEXT"));
}

ON_EVERY_DISK(Metadata);

}   // namespace
