// Removing objects: the object first, then its sidecar, so that no kill leaves a file without its fork.
#include "platform/platform.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/forks.h"
#include "standin/files/listings.h"
#include "standin/files/moved_objects.h"
#include "standin/files/names.h"
#include "standin/files/open_levels.h"
#include "standin/files/sidecar_carrying.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>

using namespace standin;

namespace
{

// What is left in a folder when a change was cut off: our temporaries, and sidecars of no file.
// False if anything else is there: then nothing is removed.
bool onlyLeftoversRemain(int folder, std::vector<std::string> &leftovers)
{
    bool onlyLeftovers = true;
    visitEntries(folder, [&](const Entry &entry) {
        const std::string name(entry.name);
        const bool isTemporary = entry.name.starts_with(temporaryPrefix);
        onlyLeftovers = isTemporary || (looksLikeSidecar(entry.name) && isLeftoverSidecar(folder, name));
        if (onlyLeftovers)
            leftovers.push_back(name);
        return onlyLeftovers;
    });
    return onlyLeftovers;
}

OSErr removeLeftovers(const Object &object)
{
    const Descriptor folder(linux_calls::openAt(object.folder->number(), object.name.c_str(), O_PATH | O_DIRECTORY));
    std::vector<std::string> leftovers;
    if (!folder.isOpen() || !onlyLeftoversRemain(folder.number(), leftovers))
        return fBsyErr;
    for (const std::string &name : leftovers)
        linux_calls::unlinkAt(folder.number(), name.c_str());
    return noErr;
}

OSErr removeFolder(const Object &object, const Identity &identity)
{
    const int folder = object.folder->number();
    int failure = linux_calls::removeFolderAt(folder, object.name.c_str());
    if (failure == -ENOTEMPTY || failure == -EEXIST)
    {
        if (OSErr result = removeLeftovers(object))
            return result;
        failure = linux_calls::removeFolderAt(folder, object.name.c_str());
    }
    if (failure == 0)
        forgetDirectory(*object.volume, identity);
    return resultFromErrno(-failure);
}

// Once it is known that the object may leave. The folder's lock is held if the object is looked after by others of our processes.
OSErr removeObject(const Object &object)
{
    const OSErr result = object.isFolder() ? removeFolder(object, object.identity())
                                           : resultFromErrno(-linux_calls::unlinkAt(object.folder->number(), object.name.c_str()));
    if (result != noErr)
        return result;
    removeSidecar({object.folder->number(), object.name, object.status});
    if (!object.isFolder() && object.status.links == 1)
        forgetMoved(object);
    return noErr;
}

// --- what an iterator handed out to be deleted ------------------------------------------------------------------------------------------

constexpr std::int64_t aMomentMilliseconds = 1000;

bool wasMoved(const Level &level, const ListedEntry &entry)
{
    Place place;
    return recallMoved(*level.volume, {level.identity.device, entry.inode, 0}, place);
}

// Whether the entry says enough: read a moment ago, alone, by itself, and nothing was changed by this process meanwhile. That it has no sidecar says that
// it is not locked.
bool mayGoAtOnce(const Level &level, const ListedEntry &entry)
{
    return level.batchCount == 1 && !entry.hasSidecar && entry.type != DT_UNKNOWN && level.volume->trustsListings &&
           linux_calls::coarseMilliseconds() - level.handedOutAt <= aMomentMilliseconds &&
           level.changes == countOfChanges(level.listed.volume, level.listed.id) && !isAnyForkOpen() && !wasMoved(level, entry);
}

// The folder's descriptor and the name; the status only if the object is asked.
OSErr placeOf(Level &level, const ListedEntry &entry, Object &object)
{
    object.volume = level.volume;
    object.parentID = level.listed.id;
    object.name = entry.name;
    return openFolderOf(level, object.folder);
}

// No lock is taken: the step is a single one, and there is no sidecar.
OSErr removeAtOnce(const Level &level, const Object &object, const ListedEntry &entry)
{
    if (OSErr result = object.volume->checkChangeable())
        return result;
    if (entry.type == DT_DIR)
        return removeFolder(object, {level.identity.device, entry.inode, 0});
    return resultFromErrno(-linux_calls::unlinkAt(object.folder->number(), object.name.c_str()));
}

// The object is looked at and locked against our other processes. `isOther`: it is not the one that was handed out.
OSErr removeAfterALook(const Level &level, const ReferenceFields &fields, Object &object, bool &isOther)
{
    ChangeLock lock;
    if (OSErr result = lock.take(*level.volume, level.listed.id, object.folder))
        return result;
    isOther = linux_calls::statusAt(object.folder->number(), object.name.c_str(), object.status) < 0 || !isMeant(fields, object.identity());
    if (isOther)
        return fnfErr;
    if (OSErr result = checkMayLeave(object))
        return result;
    return removeObject(object);
}

// False if the object was not handed out just now, or is not there any more: then it is found like any other.
bool removeHandedOut(const FSRef *reference, OSErr &result)
{
    ReferenceFields fields;
    ListedEntry entry;
    Object object;
    if (!reference || !readReference(*reference, fields))
        return false;
    const LockedLevel level = findLevelReading(fields.volume, fields.parentID, true);
    if (!level || !wasHandedOut(*level, fields, entry) || placeOf(*level, entry, object) != noErr)
        return false;
    bool isOther = false;
    if (mayGoAtOnce(*level, entry))
    {
        result = removeAtOnce(*level, object, entry);
        isOther = result == fnfErr;
    }
    else
    {
        const bool nothingElse = level->changes == countOfChanges(level->listed.volume, level->listed.id);
        result = removeAfterALook(*level, fields, object, isOther);
        if (nothingElse)   // but this very change
            level->changes = countOfChanges(level->listed.volume, level->listed.id);
    }
    if (level->batchCount == 1)
        level->batchCount = 0;   // trusted once
    return !isOther;
}

}   // namespace

// A name that another program replaces between the look and the removal is lost, as with rm: Linux cannot remove by identity.
OSErr FSDeleteObject(const FSRef *ref)
{
    Object object;
    ChangeLock lock;
    OSErr result = noErr;
    if (removeHandedOut(ref, result))
        return result;
    if ((result = findAndLock(ref, object, lock, Anchoring::anew)) != noErr)
        return result;
    if ((result = checkMayLeave(object)) != noErr)
        return result;
    return removeObject(object);
}
