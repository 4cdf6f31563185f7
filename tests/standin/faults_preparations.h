// The scenes in which changes are made to go wrong: what they have in common, and what single ones have beside it.
#pragma once

#include "tests/standin/copies.h"
#include "tests/standin/test_volume.h"

#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace support
{

// In each scene: "file" with data, fork and metadata of its own; "plain" with nothing but data; the folders "folder" and "other".
struct Scene
{
    FSRef root, file, plain, folder, other;
    FSRef foreign{};   // a file with a sidecar that another system wrote, in some
};

inline void makeOld(const std::string &path)
{
    timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

inline void writeOldFile(const std::string &path, std::string_view text)
{
    writeFile(path, text);
    makeOld(path);
}

inline void writeOldFile(const std::string &path, const Bytes &bytes)
{
    writeFile(path, bytes);
    makeOld(path);
}

inline FSCatalogInfo recordOf(std::uint8_t sign)
{
    FSCatalogInfo info{};
    std::memset(info.finderInfo, 'a' + sign, sizeof info.finderInfo);
    std::memset(info.extFinderInfo, 'k' + sign, sizeof info.extFinderInfo);
    info.createDate = dateOfUnix(900000001 + sign * 1000, static_cast<UInt16>(11 + sign));
    info.backupDate = dateOfUnix(910000001 + sign * 1000, static_cast<UInt16>(17 + sign));
    info.contentModDate = dateOfUnix(920000001 + sign * 1000, 0);
    info.textEncodingHint = 5u + sign;
    return info;
}

constexpr FSCatalogInfoBitmap bothDates = kFSCatInfoCreateDate | kFSCatInfoBackupDate;
constexpr FSCatalogInfoBitmap wholeRecord = finderBits | bothDates | kFSCatInfoContentMod | kFSCatInfoTextEncoding;
constexpr FSCatalogInfoBitmap wholeRecordAndLock = wholeRecord | kFSCatInfoNodeFlags;

inline OSErr setRecord(const FSRef &ref, FSCatalogInfoBitmap which, std::uint8_t sign, bool locked = false)
{
    FSCatalogInfo info = recordOf(sign);
    info.nodeFlags = locked ? kFSNodeLockedMask : 0;
    return change(ref, which, info);
}

inline Bytes forkBytes()
{
    return bytesOf("a fork" + std::string(3000, 'f'));
}

inline void makeUsualScene(const std::string &directory)
{
    for (const char *name : {"", "/folder", "/other"})
        EXPECT_EQ(mkdir((directory + name).c_str(), 0755), 0);
    writeOldFile(directory + "/plain", "plain data");
    writeOldFile(directory + "/file", "data");
    FSRef file = refAt(directory + "/file");
    EXPECT_EQ(writeFork(file, true, forkBytes()), noErr);
    EXPECT_EQ(setRecord(file, wholeRecord, 0), noErr);
}

inline Scene sceneIn(const std::string &directory)
{
    FSRef root = refAt(directory);
    Scene scene{root, childOf(root, "file"), childOf(root, "plain"), childOf(root, "folder"), childOf(root, "other")};
    if (exists(directory + "/foreign"))
        scene.foreign = childOf(root, "foreign");
    return scene;
}

// --- what the scenes have beside the usual ----------------------------------------------------------------------------------------------------

inline void lockTheFile(const std::string &directory)
{
    EXPECT_EQ(setLock(refAt(directory + "/file"), true), noErr);
}

// A long fork first, the Finder information behind it, then an entry that nobody here knows: the fork cannot grow where it is.
inline void bringForeignSidecar(const std::string &directory)
{
    Bytes finderInfo = bytesOf("TYPEMAKR" + std::string(24, 'i'));
    writeOldFile(directory + "/foreign", "foreign data");
    Bytes fork = bytesOf("foreign fork" + std::string(1988, 'f'));
    writeOldFile(directory + "/._foreign", sidecarOf({{2, 74, fork}, {9, 2074, finderInfo}, {200, 2106, bytesOf("kept")}}));
}

// A fork that says only that there is none.
inline void bringBlankSidecar(const std::string &directory)
{
    Bytes fork(286);
    fork[2] = fork[6] = 1;
    fork[15] = 30;
    const std::string sentence = "This resource fork intentionally left blank   ";
    std::copy(sentence.begin(), sentence.end(), fork.begin() + 16);
    fork[256 + 2] = fork[256 + 6] = 1;
    writeOldFile(directory + "/foreign", "foreign data");
    writeOldFile(directory + "/._foreign", plainSidecar(fork, bytesOf("TYPEMAKR" + std::string(24, 'i'))));
}

inline void bringPlainForeignSidecar(const std::string &directory)
{
    writeOldFile(directory + "/foreign", "foreign data");
    writeOldFile(directory + "/._foreign", plainSidecar(bytesOf("foreign fork"), bytesOf("TYPEMAKR" + std::string(24, 'i'))));
}

inline void bringOrphan(const std::string &directory)
{
    writeOldFile(directory + "/._new", plainSidecar(bytesOf("an orphan's fork")));
}

inline void moveOrphanAside(const std::string &directory)
{
    EXPECT_EQ(::rename((directory + "/._new").c_str(), (directory + "/new.orphan.rsrc").c_str()), 0);
}

// As after a rename from "older" that was cut off.
inline void giveSidecarTwoNames(const std::string &directory)
{
    EXPECT_EQ(link((directory + "/._file").c_str(), (directory + "/._older").c_str()), 0);
}

// As after a move from "other" that was cut off.
inline void leaveSidecarInOtherFolder(const std::string &directory)
{
    EXPECT_EQ(link((directory + "/._file").c_str(), (directory + "/other/._file").c_str()), 0);
}

inline void leaveThingsInFolder(const std::string &directory)
{
    EXPECT_EQ(link((directory + "/._file").c_str(), (directory + "/folder/._file").c_str()), 0);
    writeFile(directory + "/folder/.zerb-1-1", "a temporary");
}

inline void takeTheName(const std::string &directory)
{
    writeOldFile(directory + "/other/file", "in the way");
    EXPECT_EQ(writeFork(refAt(directory + "/other/file"), true, bytesOf("the fork of what is in the way")), noErr);
}

inline void makeNewFile(const std::string &directory)
{
    writeFile(directory + "/new");
}

inline void makeNewFolder(const std::string &directory)
{
    EXPECT_EQ(mkdir((directory + "/new").c_str(), 0755), 0);
}

inline void moveOrphanAsideAndMakeFile(const std::string &directory)
{
    moveOrphanAside(directory);
    makeNewFile(directory);
}

inline void removeOnlyTheFile(const std::string &directory)
{
    EXPECT_EQ(unlink((directory + "/file").c_str()), 0);
}

inline void makeSecondPlainFile(const std::string &directory)
{
    writeOldFile(directory + "/foreign", "other plain data");
    EXPECT_EQ(setRecord(refAt(directory + "/foreign"), wholeRecord, 2), noErr);
    makeOld(directory + "/foreign");
}

inline void parkThePlainFile(const std::string &directory)
{
    EXPECT_EQ(::rename((directory + "/plain").c_str(), (directory + "/plain.exchanging").c_str()), 0);
}

// The file with the fork stands where nothing had any metadata.
inline void parkThePlainFileAndReplaceIt(const std::string &directory)
{
    parkThePlainFile(directory);
    EXPECT_EQ(::rename((directory + "/file").c_str(), (directory + "/plain").c_str()), 0);
    EXPECT_EQ(::rename((directory + "/._file").c_str(), (directory + "/._plain").c_str()), 0);
    FSRef ref = refAt(directory + "/plain");
    FSCatalogInfo info{};
    info.createDate = infoOf(refAt(directory + "/plain.exchanging")).createDate;
    EXPECT_EQ(change(ref, wholeRecord & ~static_cast<FSCatalogInfoBitmap>(kFSCatInfoContentMod), info), noErr);
}

// The first of two files that change places has made room.
inline void parkTheFile(const std::string &directory)
{
    EXPECT_EQ(::rename((directory + "/file").c_str(), (directory + "/file.exchanging").c_str()), 0);
    EXPECT_EQ(::rename((directory + "/._file").c_str(), (directory + "/._file.exchanging").c_str()), 0);
}

// The second one has taken its place, and shows the metadata of that place.
inline void parkTheFileAndReplaceIt(const std::string &directory)
{
    parkTheFile(directory);
    EXPECT_EQ(::rename((directory + "/plain").c_str(), (directory + "/file").c_str()), 0);
    EXPECT_EQ(setRecord(refAt(directory + "/file"), wholeRecord, 0), noErr);
    makeOld(directory + "/file");
}

}   // namespace support
