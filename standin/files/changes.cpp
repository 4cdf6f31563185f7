#include "standin/files/changes.h"

#include "standin/files/catalog.h"
#include "standin/files/errors.h"
#include "standin/files/exchange_finishing.h"
#include "standin/files/names.h"
#include "standin/files/reference_format.h"

namespace standin
{

OSErr guessPlace(const FSRef *reference, Object &object)
{
    ReferenceFields fields;
    if (reference && readReference(*reference, fields) && fields.parentID != fsRtParID)
    {
        object.volume = findVolume(fields.volume);
        object.parentID = fields.parentID;
        if (object.volume && openFolder(*object.volume, fields.parentID, object.folder) == noErr)
            return noErr;
    }
    return findObject(reference, object);
}

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
    const auto look = [&] {
        return anchoring == Anchoring::anew ? findObjectAnew(reference, object) : findObjectInOpenFolder(reference, object);
    };
    bool wasUnparked = false;
    if (OSErr result = guessPlace(reference, object))
        return result;
    for (;;)
    {
        const UInt32 folderID = object.parentID;
        if (OSErr result = lock.take(*object.volume, folderID, object.folder))
            return result;
        if (OSErr result = look())
            return result;
        const bool isHere = object.parentID == folderID;
        if (isHere && (wasUnparked || !looksParked(object.name)))
            return noErr;
        lock.release();   // it lies elsewhere, or was moved while the lock was waited for
        if (isHere)
            unpark(object);
        wasUnparked |= isHere;
    }
}

OSErr findAndLockBoth(const FSRef *reference, const Volume &volume, UInt32 otherID, const FolderHandle &other, Object &object,
                      ChangeLock &lock)
{
    bool wasUnparked = false;
    if (OSErr result = guessPlace(reference, object))
        return result;
    for (;;)
    {
        const UInt32 folderID = object.parentID;
        if (object.volume.get() != &volume)
            return diffVolErr;
        if (OSErr result = lock.take(*object.volume, folderID, object.folder, otherID, other))
            return result;
        if (OSErr result = findObjectInOpenFolder(reference, object))
            return result;
        const bool isHere = object.parentID == folderID;
        if (isHere && (wasUnparked || !looksParked(object.name)))
            return noErr;
        lock.release();
        if (isHere)
            unpark(object);
        wasUnparked |= isHere;
    }
}

OSErr checkMayLeave(const Object &object)
{
    KnownMetadata known;
    return checkMayLeave(object, known);
}

OSErr checkMayLeave(const Object &object, KnownMetadata &known)
{
    if (object.isRoot() || object.isMountPoint())
        return fBsyErr;
    if (OSErr result = object.volume->checkChangeable())
        return result;
    known = readKnownMetadata(object);
    if (OSErr result = checkNotLocked(known))
        return result;
    if (!known.attributes.journal)
        return noErr;
    if (OSErr result = finishExchangeOf(object))
        return result;
    known = readKnownMetadata(object);
    return noErr;
}

OSErr checkNamesAreFree(int folder, const std::vector<std::string> &names, const std::string *self)
{
    for (const std::string &candidate : names)
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

OSErr checkNameIsFree(int folder, const UniChar *units, std::size_t count, const std::string *self)
{
    std::vector<std::string> candidates;
    if (OSErr result = lookupNamesFromUnicode(units, count, candidates))
        return result;
    return checkNamesAreFree(folder, candidates, self);
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
