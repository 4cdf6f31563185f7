// Moving and renaming. A file never loses its sidecar: that is linked at the new name first, then the file is renamed, then the old sidecar goes.
#include "platform/platform.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/moved_objects.h"
#include "standin/files/names.h"
#include "standin/files/sidecar_carrying.h"

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

OSErr renameWithSidecar(const Object &object, const Target &target)
{
    const SidecarPlace from{object.folder->number(), object.name, object.status};
    const SidecarPlace to{target.folder->number(), target.name, object.status};
    bool carried = false;
    if (OSErr result = carrySidecar(from, to, carried))
        return result;
    const int failure = linux_calls::renameWithoutReplacing(from.folder, from.name.c_str(), to.folder, to.name.c_str());
    if (carried)
        dropSidecarName(failure ? to : from);
    return resultFromErrno(-failure);
}

bool isWhereItIs(const Object &object, const Target &target)
{
    return object.parentID == target.folderID && object.name == target.name;
}

// With the locks of both folders held, and the object found again under them.
OSErr place(const Object &object, const Target &target, FSRef *newRef)
{
    if (!isWhereItIs(object, target))
    {
        ObjectStatus taken;
        const int found = linux_calls::statusAt(target.folder->number(), target.name.c_str(), taken);
        if (found == 0)
            return dupFNErr;   // and its sidecar is its own: not to be cleared away
        if (!linux_calls::saysAbsent(found))
            return resultFromErrno(-found);
        if (OSErr result = clearTheWayFor(target.folder->number(), target.name))
            return result;
        const PlaceChange change;
        if (OSErr result = renameWithSidecar(object, target))
            return result;
        noteMoved(object, target.folderID, target.name);
    }
    Object moved = object;
    moved.parentID = target.folderID;
    moved.folder = target.folder;
    moved.name = target.name;
    giveReference(moved, newRef, nullptr);
    return noErr;
}

}   // namespace

OSErr FSMoveObject(const FSRef *ref, const FSRef *directory, FSRef *newRef)
{
    Object object, folder;
    Target target;
    ChangeLock lock;
    if (OSErr result = findObject(directory, folder))
        return result;
    if (!folder.isFolder())
        return errFSNotAFolder;
    target.folderID = folder.nodeID();
    if (OSErr result = openFolder(*folder.volume, target.folderID, target.folder))
        return result;
    if (OSErr result = findObject(ref, object))
        return result;
    if (folder.volume != object.volume)
        return diffVolErr;
    if (OSErr result = findAndLockBoth(ref, target.folderID, target.folder, object, lock))
        return result;
    if (OSErr result = checkMayLeave(object))
        return result;
    target.name = object.name;
    return place(object, target, newRef);
}

OSErr FSRenameUnicode(const FSRef *ref, UniCharCount nameLength, const UniChar *name, TextEncoding, FSRef *newRef)
{
    Object object;
    Target target;
    ChangeLock lock;
    if (OSErr result = storedNameFromUnicode(name, nameLength, target.name))
        return result;
    if (OSErr result = findAndLock(ref, object, lock))
        return result;
    if (OSErr result = checkMayLeave(object))
        return result;
    if (OSErr result = checkNameIsFree(object.folder->number(), name, nameLength, &object.name))
        return result;
    target.folderID = object.parentID;
    target.folder = object.folder;
    return place(object, target, newRef);
}
