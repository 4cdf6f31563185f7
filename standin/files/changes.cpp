#include "standin/files/changes.h"

#include "standin/files/catalog.h"
#include "standin/files/errors.h"
#include "standin/files/metadata.h"
#include "standin/files/names.h"

namespace standin
{

OSErr openForAdding(const FSRef *folderReference, Object &folder, FolderHandle &opened, ChangeLock &lock)
{
    if (OSErr result = findObject(folderReference, folder))
        return result;
    if (!folder.isFolder())
        return errFSNotAFolder;
    if (OSErr result = folder.volume->checkChangeable())
        return result;
    if (OSErr result = openFolder(*folder.volume, folder.nodeID(), opened))
        return result;
    return lock.take(*folder.volume, folder.nodeID(), opened);
}

OSErr findAndLock(const FSRef *reference, Object &object, ChangeLock &lock, Anchoring anchoring)
{
    for (;;)
    {
        if (OSErr result = findObject(reference, object))
            return result;
        const UInt32 folderID = object.parentID;
        if (OSErr result = lock.take(*object.volume, folderID, object.folder))
            return result;
        if (OSErr result = anchoring == Anchoring::anew ? findObjectAnew(reference, object) : findObject(reference, object))
            return result;
        if (object.parentID == folderID)
            return noErr;
        lock.release();   // it was moved while the lock was waited for
    }
}

OSErr findAndLockBoth(const FSRef *reference, UInt32 otherID, const FolderHandle &other, Object &object, ChangeLock &lock)
{
    for (;;)
    {
        if (OSErr result = findObject(reference, object))
            return result;
        const UInt32 folderID = object.parentID;
        if (OSErr result = lock.take(*object.volume, folderID, object.folder, otherID, other))
            return result;
        if (OSErr result = findObject(reference, object))
            return result;
        if (object.parentID == folderID)
            return noErr;
        lock.release();
    }
}

OSErr checkMayLeave(const Object &object)
{
    if (object.isRoot() || object.isMountPoint())
        return fBsyErr;
    if (OSErr result = object.volume->checkChangeable())
        return result;
    return checkNotLocked(object);
}

OSErr checkNameIsFree(int folder, const UniChar *units, std::size_t count, const std::string *self)
{
    std::vector<std::string> candidates;
    if (OSErr result = lookupNamesFromUnicode(units, count, candidates))
        return result;
    for (const std::string &candidate : candidates)
    {
        ObjectStatus status;
        if (self && candidate == *self)
            continue;
        const int failure = linux_calls::statusAt(folder, candidate.c_str(), status);
        if (failure == 0)
            return dupFNErr;
        if (!linux_calls::saysAbsent(failure))
            return resultFromErrno(-failure);
    }
    return noErr;
}

void giveReference(const Object &object, FSRef *reference, FSSpec *spec)
{
    object.nodeID();   // a folder is remembered: its ID may be asked for by number from now on
    if (reference)
        *reference = makeReference(object);
    if (spec)
        fillSpec(object, *spec);
}

}   // namespace standin
