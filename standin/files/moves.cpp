// Moving and renaming. A file never loses its sidecar: that is linked at the new name first, then the file is renamed, then the old sidecar goes.
#include "platform/platform.h"
#include "standin/files/block_lookup.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/file_id_notes.h"
#include "standin/files/moved_objects.h"
#include "standin/files/names.h"
#include "standin/files/reference_format.h"
#include "standin/files/sidecar_carrying.h"
#include "standin/files/volume_services.h"

#include <algorithm>
#include <new>

using namespace standin;

namespace
{

// Where an object is to lie.
struct Target
{
    UInt32 folderID;
    FolderHandle folder;
    std::string name;
};

SidecarPlace placeOf(const Object &object)
{
    return {object.folder->number(), object.name, object.status};
}

OSErr checkNothingIsAt(const Target &target)
{
    ObjectStatus taken;
    const int found = linux_calls::statusAt(target.folder->number(), target.name.c_str(), taken);
    if (found == 0)
        return dupFNErr;
    return linux_calls::saysAbsent(found) ? static_cast<OSErr>(noErr) : resultFromErrno(-found);
}

// The new name must be free before a sidecar is put there or cleared away: else it would be that of the file that has the name. With neither to do, the
// renaming itself says whether the name is free.
OSErr prepareName(const Object &object, const Target &target)
{
    bool sidecarIsInTheWay = false;
    if (OSErr result = findSidecar({target.folder->number(), target.name, object.status}, sidecarIsInTheWay))
        return result;
    if (object.sidecarIsAbsent && !sidecarIsInTheWay)
        return noErr;
    if (OSErr result = checkNothingIsAt(target))
        return result;
    return sidecarIsInTheWay ? clearTheWayFor(target.folder->number(), target.name) : static_cast<OSErr>(noErr);
}

bool isWhereItIs(const Object &object, const Target &target)
{
    return object.parentID == target.folderID && object.name == target.name;
}

OSErr place(const Object &object, const Target &target)
{
    if (OSErr result = prepareName(object, target))
        return result;
    const PlaceChange change;
    if (OSErr result = renameWithSidecar(object, target.folder->number(), target.name))
        return result;
    noteMoved(object, target.folderID, target.name);
    return noErr;
}

// With the locks of both folders held, and the object found again under them.
//
// Nothing here can be left out where there is neither sidecar nor attribute, not even the lock among processes: that there is none is what was seen, not
// what will be. Another process of ours that gives the file a fork looks at the file and then makes its sidecar; were the file renamed between these two,
// the sidecar would come to lie at the old name. A look behind the renaming is no help, as that sidecar may be made later still. What a listing showed is
// too old, too: the folder's date would tell of a sidecar made since, but after each change of ours, nobody could tell another program's from ours.
OSErr moveTo(Object &object, const Target &target)
{
    bool hasSidecar = false;
    if (OSErr result = findSidecar(placeOf(object), hasSidecar))
        return result;
    object.sidecarIsAbsent = !hasSidecar;
    if (OSErr result = checkMayLeave(object))
        return result;
    if (!isWhereItIs(object, target))
    {
        if (OSErr result = place(object, target))
            return result;
        noteMoveForFileIDs(object, target.folderID, target.name);
    }
    object.parentID = target.folderID;
    object.folder = target.folder;
    object.name = target.name;
    return noErr;
}

// A folder that was met and is still open needs no look at its name: its descriptor leads to it wherever it lies now.
bool takeOpenFolder(const FSRef *directory, VolumeHandle &volume, Target &target)
{
    ReferenceFields fields;
    Folder folder;
    if (!directory || !readReference(*directory, fields) || !fields.timeIsBirth || fields.parentID == fsRtParID)
        return false;
    volume = findVolume(fields.volume);
    if (!volume || !recallFolder(*volume, {fields.device, fields.inode, fields.time}, folder))
        return false;
    target.folderID = folder.id;
    return openFolder(*volume, folder.id, target.folder) == noErr;
}

OSErr openTarget(const Object &folder, Target &target)
{
    if (!folder.isFolder())
        return errFSNotAFolder;
    target.folderID = folder.nodeID();
    return openFolder(*folder.volume, target.folderID, target.folder);
}

OSErr findTarget(const FSRef *directory, VolumeHandle &volume, Target &target)
{
    Object folder;
    if (takeOpenFolder(directory, volume, target))
        return noErr;
    if (OSErr result = findObject(directory, folder))
        return result;
    volume = folder.volume;
    return openTarget(folder, target);
}

// A name's composed and decomposed forms are one name. Of ASCII there is only one form.
OSErr checkOtherForms(const Object &object, int folder, const UniChar *name, std::size_t length, const std::string &stored)
{
    const bool hasOneForm = std::all_of(name, name + length, [](UniChar unit) { return unit < 0x80; });
    if (hasOneForm)
        return noErr;
    std::vector<std::string> others;
    if (OSErr result = lookupNamesFromUnicode(name, length, others))
        return result;
    std::erase(others, stored);   // which the renaming itself looks at
    return checkNamesAreFree(folder, others, &object.name);
}

// --- by parameter block ----------------------------------------------------------------------------------------------------------------------

// Without a new name the object keeps its own.
OSErr takeNewName(ConstStr255Param newName, const Object &object, Target &target)
{
    if (!newName)
        target.name = object.name;
    else if (newName[0] == 0)
        return bdNamErr;
    else
        return storedNameFromPascal(newName, target.name);
    return noErr;
}

OSErr checkOtherForms(const Object &object, ConstStr255Param newName, const Target &target)
{
    std::vector<std::string> others;
    if (!newName)
        return noErr;
    if (OSErr result = lookupNamesFromPascal(newName, others))
        return result;
    std::erase(others, target.name);
    return checkNamesAreFree(target.folder->number(), others, target.folderID == object.parentID ? &object.name : nullptr);
}

OSErr moveAndRename(const CopyParam &block)
{
    Object object, folder;
    Target target;
    ChangeLock lock;
    if (OSErr result = findByTriple(block.ioVRefNum, block.ioDirID, block.ioNamePtr, object))
        return result;
    if (!offersMoveRename(*object.volume))
        return paramErr;
    if (OSErr result = findByTriple(block.ioVRefNum, block.ioNewDirID, block.ioNewName, folder))
        return result == fnfErr ? static_cast<OSErr>(dirNFErr) : result;
    if (folder.volume != object.volume)
        return diffVolErr;
    if (OSErr result = openTarget(folder, target))
        return result == errFSNotAFolder ? static_cast<OSErr>(dirNFErr) : result;
    const FSRef reference = makeReference(object);
    if (OSErr result = findAndLockBoth(&reference, *folder.volume, target.folderID, target.folder, object, lock))
        return result;
    if (OSErr result = takeNewName(block.ioCopyName, object, target))
        return result;
    if (OSErr result = checkOtherForms(object, block.ioCopyName, target))
        return result;
    return moveTo(object, target);
}

}   // namespace

OSErr FSMoveObject(const FSRef *ref, const FSRef *directory, FSRef *newRef)
try
{
    Object object;
    VolumeHandle volume;
    Target target;
    ChangeLock lock;
    if (OSErr result = findTarget(directory, volume, target))
        return result;
    if (OSErr result = findAndLockBoth(ref, *volume, target.folderID, target.folder, object, lock))
        return result;
    target.name = object.name;
    if (OSErr result = moveTo(object, target))
        return result;
    giveReference(object, newRef, nullptr);
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSRenameUnicode(const FSRef *ref, UniCharCount nameLength, const UniChar *name, TextEncoding, FSRef *newRef)
try
{
    Object object;
    Target target;
    ChangeLock lock;
    if (OSErr result = storedNameFromUnicode(name, nameLength, target.name))
        return result;
    if (OSErr result = findAndLock(ref, object, lock))
        return result;
    target.folderID = object.parentID;
    target.folder = object.folder;
    if (OSErr result = checkOtherForms(object, object.folder->number(), name, nameLength, target.name))
        return result;
    if (OSErr result = moveTo(object, target))
        return result;
    giveReference(object, newRef, nullptr);
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr PBHMoveRenameSync(HParmBlkPtr block)
try
{
    return block ? block->copyParam.ioResult = moveAndRename(block->copyParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->copyParam.ioResult = memFullErr;
}
