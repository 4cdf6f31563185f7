// Every kind of change to a disk, each in a small scene of its own, for tests that have it go wrong half-way.
#pragma once

#include "tests/standin/copies.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace support
{

// In each scene: "file" with data, fork and metadata of its own; "plain" with nothing but data; the folders "folder" and "other".
struct Scene
{
    FSRef root, file, plain, folder, other;
    FSRef foreign{};   // a file with a sidecar that another system wrote, in some
};

enum class WhenStopped
{
    failed,   // the change reports an error
    done,     // it may also report success
    cutOff,   // only if nothing can be done any more: each further call fails, or the process ends
};

// A state that is neither before nor after but right all the same, as a step on the bare disk that leads from before into it.
struct Stop
{
    void (*step)(const std::string &directory);
    WhenStopped when;
    const char *reason;
};

struct Change
{
    const char *name;
    void (*prepare)(const std::string &directory);   // what the scene has beside the usual, or null
    OSErr (*run)(Scene &scene);
    OSErr expected = noErr;

    // More than one thing is changed. Then each of them is as before or as after, by itself.
    bool itemByItem = false;

    std::vector<Stop> stops{};   // where it may stop on the way

    // Of an exchange: a disk that offers none is left out. Where it has no room for an attribute, some is made and it is written again.
    bool isExchange = false;
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

// --- the changes ------------------------------------------------------------------------------------------------------------------------------

inline OSErr setFork(const FSRef &ref, SInt64 size)
{
    SInt16 fork = 0;
    if (OSErr result = openFork(ref, true, fsRdWrPerm, fork))
        return result;
    OSErr result = FSSetForkSize(fork, fsFromStart, size);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    return result;
}

// Behind what is there, so that a write that fails half-way changes nothing that can be seen.
inline OSErr appendToFork(const FSRef &ref, const Bytes &bytes)
{
    SInt16 fork = 0;
    if (OSErr result = openFork(ref, true, fsRdWrPerm, fork))
        return result;
    ByteCount written = 0;
    OSErr result = FSWriteFork(fork, fsFromLEOF, 0, static_cast<ByteCount>(bytes.size()), bytes.data(), &written);
    EXPECT_TRUE(result != noErr || written == bytes.size());
    EXPECT_EQ(FSCloseFork(fork), noErr);
    return result;
}

inline OSErr moveAndRename(const FSRef &ref, const FSRef &folder, std::string_view name)
{
    HParamBlockRec block{};
    FSSpec spec{};
    FSCatalogInfo info{};
    Str255 newName{};
    newName[0] = static_cast<UInt8>(name.size());
    std::copy(name.begin(), name.end(), newName + 1);
    OSErr result = FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr);
    if (result == noErr)
        result = FSGetCatalogInfo(&folder, kFSCatInfoNodeID, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    block.copyParam.ioVRefNum = spec.vRefNum;
    block.copyParam.ioDirID = spec.parID;
    block.copyParam.ioNamePtr = spec.name;
    block.copyParam.ioNewDirID = static_cast<SInt32>(info.nodeID);
    block.copyParam.ioCopyName = newName;
    return PBHMoveRenameSync(&block);
}

// Over what is there, in one step.
inline OSErr overwriteFork(const FSRef &ref)
{
    SInt16 fork = 0;
    if (OSErr result = openFork(ref, true, fsRdWrPerm, fork))
        return result;
    ByteCount written = 0;
    OSErr result = FSWriteFork(fork, fsFromStart, 0, 7, "changed", &written);
    EXPECT_TRUE(result != noErr || written == 7);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    return result;
}

inline OSErr setDataSize(const FSRef &ref, SInt64 size)
{
    SInt16 fork = 0;
    if (OSErr result = openFork(ref, false, fsRdWrPerm, fork))
        return result;
    OSErr result = FSSetForkSize(fork, fsFromStart, size);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    return result;
}

inline OSErr createWithRecord(const FSRef &folder, bool isFolder)
{
    FSCatalogInfo info = recordOf(3);
    std::vector<UniChar> name = units("new");
    auto length = static_cast<UniCharCount>(name.size());
    if (isFolder)
        return FSCreateDirectoryUnicode(&folder, length, name.data(), finderBits | bothDates, &info, nullptr, nullptr, nullptr);
    return FSCreateFileUnicode(&folder, length, name.data(), wholeRecord, &info, nullptr, nullptr);
}

inline OSErr setPermissions(const FSRef &ref, UInt16 mode, UInt32 owner)
{
    FSCatalogInfo info{};
    FSPermissionInfo permissions{};
    permissions.userID = permissions.groupID = owner;
    permissions.mode = mode;
    std::memcpy(info.permissions, &permissions, sizeof permissions);
    return change(ref, kFSCatInfoPermissions, info);
}

constexpr Stop fileIsGone{removeOnlyTheFile, WhenStopped::done,
                          "the file goes first, never its fork before it; a sidecar that stays is shown"};
constexpr Stop orphanIsAside{moveOrphanAside, WhenStopped::failed, "an orphan in the way has another name but is whole"};
constexpr Stop fileIsMade{makeNewFile, WhenStopped::cutOff, "the new file is there, and the record comes piece by piece"};
constexpr Stop folderIsMade{makeNewFolder, WhenStopped::cutOff, "the same for a folder"};
constexpr Stop orphanIsAsideAndFileMade{moveOrphanAsideAndMakeFile, WhenStopped::cutOff, "both"};

constexpr Stop fileIsParked{parkTheFile, WhenStopped::cutOff, "a file that makes room is whole under its temporary name"};
constexpr Stop plainIsParked{parkThePlainFile, WhenStopped::cutOff, "the same for a file without anything"};
constexpr Stop plainIsParkedAndReplaced{parkThePlainFileAndReplaceIt, WhenStopped::cutOff, "the same"};
constexpr Stop fileIsParkedAndReplaced{parkTheFileAndReplaceIt, WhenStopped::cutOff, "the same, with the other file in its place already"};

inline const std::vector<Change> &everyChange()
{
    static const std::vector<Change> changes = {
        {"SetType", nullptr, [](Scene &s) { return setRecord(s.file, finderBits, 1); }},
        {"SetTypeForTheFirstTime", nullptr, [](Scene &s) { return setRecord(s.plain, finderBits, 1); }},
        {"SetTypeOfAFolder", nullptr, [](Scene &s) { return setRecord(s.folder, finderBits, 1); }},
        {"SetTypeWhereTheSidecarHasIt", bringPlainForeignSidecar, [](Scene &s) { return setRecord(s.foreign, finderBits, 1); }},
        {"SetDates", nullptr, [](Scene &s) { return setRecord(s.file, bothDates, 1); }},
        {"SetDatesForTheFirstTime", nullptr, [](Scene &s) { return setRecord(s.plain, bothDates, 1); }},
        {"SetDatesBesideAForeignSidecar", bringForeignSidecar, [](Scene &s) { return setRecord(s.foreign, bothDates, 1); }},
        {"SetModificationDate", nullptr, [](Scene &s) { return setRecord(s.file, kFSCatInfoContentMod, 1); }},
        {"Lock", nullptr, [](Scene &s) { return setLock(s.file, true); }},
        {"LockWithoutASidecar", nullptr, [](Scene &s) { return setLock(s.plain, true); }},
        {"Unlock", lockTheFile, [](Scene &s) { return setLock(s.file, false); }},
        {"SetHint", nullptr, [](Scene &s) { return setRecord(s.file, kFSCatInfoTextEncoding, 1); }},
        {"SetMode", nullptr, [](Scene &s) { return setPermissions(s.file, 0640, geteuid()); }},
        {"SetOwnerAndMode", nullptr, [](Scene &s) { return setPermissions(s.file, 0640, canBecomeOtherUsers() ? ordinaryUser : 0); }, noErr,
         true},
        {"SetEverything", nullptr, [](Scene &s) { return setRecord(s.file, wholeRecordAndLock, 1, true); }, noErr, true},
        {"SetEverythingForTheFirstTime", nullptr, [](Scene &s) { return setRecord(s.plain, wholeRecordAndLock, 1, true); }, noErr, true},
        {"SetEverythingBesideAForeignSidecar", bringForeignSidecar,
         [](Scene &s) { return setRecord(s.foreign, wholeRecordAndLock, 1, true); }, noErr, true},
        {"CreateFile", nullptr, [](Scene &s) { return createWithRecord(s.root, false); }, noErr, true, {fileIsMade}},
        {"CreateFolder", nullptr, [](Scene &s) { return createWithRecord(s.root, true); }, noErr, true, {folderIsMade}},
        {"CreateFileBesideAnOrphan",
         bringOrphan,
         [](Scene &s) { return createWithRecord(s.root, false); },
         noErr,
         true,
         {orphanIsAside, orphanIsAsideAndFileMade}},
        {"DeleteFile", nullptr, [](Scene &s) { return FSDeleteObject(&s.file); }, noErr, false, {fileIsGone}},
        {"DeleteLockedFile", lockTheFile, [](Scene &s) { return FSDeleteObject(&s.file); }, fLckdErr},
        {"RenameLockedFile", lockTheFile, [](Scene &s) { return rename(s.file, "renamed"); }, fLckdErr},
        {"SetTypeOfLockedFile", lockTheFile, [](Scene &s) { return setRecord(s.file, finderBits, 1); }, fLckdErr},
        {"WriteForkOfLockedFile", lockTheFile, [](Scene &s) { return appendToFork(s.file, bytesOf("more")); }, fLckdErr},
        {"DeletePlainFile", nullptr, [](Scene &s) { return FSDeleteObject(&s.plain); }},
        {"DeleteFolder", nullptr, [](Scene &s) { return FSDeleteObject(&s.folder); }},
        {"DeleteFolderWithLeftovers", leaveThingsInFolder, [](Scene &s) { return FSDeleteObject(&s.folder); }},
        {"Rename", nullptr, [](Scene &s) { return rename(s.file, "renamed"); }},
        {"RenameFolder", nullptr, [](Scene &s) { return rename(s.folder, "renamed"); }},
        {"RenameToTheNameOfAnOrphan", bringOrphan, [](Scene &s) { return rename(s.file, "new"); }, noErr, false, {orphanIsAside}},
        {"RenameToATakenName", nullptr, [](Scene &s) { return rename(s.plain, "file"); }, dupFNErr},
        {"Move", nullptr, [](Scene &s) { return move(s.file, s.other); }},
        {"MoveFolder", nullptr, [](Scene &s) { return move(s.folder, s.other); }},
        {"MoveToATakenName", takeTheName, [](Scene &s) { return move(s.file, s.other); }, dupFNErr},
        {"MoveAndRename", nullptr, [](Scene &s) { return moveAndRename(s.file, s.other, "renamed"); }},
        {"Exchange",
         nullptr,
         [](Scene &s) { return FSExchangeObjects(&s.file, &s.plain); },
         noErr,
         false,
         {fileIsParked, fileIsParkedAndReplaced},
         true},
        {"ExchangeTheOtherWay",
         nullptr,
         [](Scene &s) { return FSExchangeObjects(&s.plain, &s.file); },
         noErr,
         false,
         {plainIsParked, plainIsParkedAndReplaced},
         true},
        {"ExchangeWithoutSidecars",
         makeSecondPlainFile,
         [](Scene &s) { return FSExchangeObjects(&s.plain, &s.foreign); },
         noErr,
         false,
         {},
         true},
        {"ExchangeWithALockedFile", lockTheFile, [](Scene &s) { return FSExchangeObjects(&s.plain, &s.file); }, fLckdErr, false, {}, true},
        {"Copy", nullptr, [](Scene &s) { return copyFile(s.file, s.other); }},
        {"CopyUnderAnotherName", nullptr, [](Scene &s) { return copyFile(s.file, s.root, "copy"); }},
        {"CopyAPlainFile", nullptr, [](Scene &s) { return copyFile(s.plain, s.other); }},
        {"CopyALockedFile", lockTheFile, [](Scene &s) { return copyFile(s.file, s.other); }},
        {"CopyBesideAForeignSidecar", bringForeignSidecar, [](Scene &s) { return copyFile(s.foreign, s.other); }},
        {"CopyToATakenName", takeTheName, [](Scene &s) { return copyFile(s.file, s.other); }, dupFNErr},
        {"CopyToTheNameOfAnOrphan", bringOrphan, [](Scene &s) { return copyFile(s.file, s.root, "new"); }, noErr, false, {orphanIsAside}},
        {"WriteNewFork", nullptr, [](Scene &s) { return appendToFork(s.plain, bytesOf("new fork")); }},
        {"SetSizeOfNewFork", nullptr, [](Scene &s) { return setFork(s.plain, 5); }},
        {"GrowFork", nullptr, [](Scene &s) { return setFork(s.file, 5000); }},
        {"ShrinkFork", nullptr, [](Scene &s) { return setFork(s.file, 100); }},
        {"OverwriteFork", nullptr, [](Scene &s) { return overwriteFork(s.file); }},
        {"GrowData", nullptr, [](Scene &s) { return setDataSize(s.file, 5000); }, noErr, true},
        {"ShrinkData", nullptr, [](Scene &s) { return setDataSize(s.file, 2); }, noErr, true},
        {"AppendToFork", nullptr, [](Scene &s) { return appendToFork(s.file, bytesOf("more")); }},
        {"AppendToForkThatMustMove", bringForeignSidecar, [](Scene &s) { return appendToFork(s.foreign, bytesOf("more")); }},
        {"AppendToForkThatWasLeftBlank", bringBlankSidecar, [](Scene &s) { return appendToFork(s.foreign, bytesOf("more")); }},
        {"GrowForkThatMustMove", bringForeignSidecar, [](Scene &s) { return setFork(s.foreign, 500); }},
        {"AppendToForkAfterACutOffRename", giveSidecarTwoNames, [](Scene &s) { return appendToFork(s.file, bytesOf("more")); }},
        {"AppendToForkAfterACutOffMove", leaveSidecarInOtherFolder, [](Scene &s) { return appendToFork(s.file, bytesOf("more")); }},
        {"SetTypeAfterACutOffMove", leaveSidecarInOtherFolder, [](Scene &s) { return setRecord(s.file, finderBits, 1); }},
        {"SetTypeAfterACutOffRename", giveSidecarTwoNames, [](Scene &s) { return setRecord(s.file, finderBits, 1); }},
    };
    return changes;
}

inline std::vector<const Change *> pointersToChanges()
{
    std::vector<const Change *> pointers;
    for (const Change &each : everyChange())
        pointers.push_back(&each);
    return pointers;
}

inline void PrintTo(const Change *change, std::ostream *stream)
{
    *stream << change->name;
}

}   // namespace support
