// Every kind of change to a disk, each in a small scene of its own, for tests that have it go wrong half-way.
#pragma once

#include "tests/standin/faults_preparations.h"
#include "tests/standin/processes.h"

#include <string>
#include <vector>

namespace support
{

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
