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
#include <new>

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

OSErr removeLeftovers(int parent, const std::string &name)
{
    const Descriptor folder(linux_calls::openAt(parent, name.c_str(), O_PATH | O_DIRECTORY));
    std::vector<std::string> leftovers;
    if (!folder.isOpen() || !onlyLeftoversRemain(folder.number(), leftovers))
        return fBsyErr;
    for (const std::string &leftover : leftovers)
        linux_calls::unlinkAt(folder.number(), leftover.c_str());
    return noErr;
}

OSErr removeFolder(const Volume &volume, int parent, const std::string &name, const Identity &identity)
{
    int failure = linux_calls::removeFolderAt(parent, name.c_str());
    if (failure == -ENOTEMPTY || failure == -EEXIST)
    {
        if (OSErr result = removeLeftovers(parent, name))
            return result;
        failure = linux_calls::removeFolderAt(parent, name.c_str());
    }
    if (failure == 0)
        forgetDirectory(volume, identity);
    return resultFromErrno(-failure);
}

// Once it is known that the object may leave. The folder's lock is held if the object is looked after by others of our processes.
OSErr removeObject(const Object &object)
{
    const int parent = object.folder->number();
    const OSErr result = object.isFolder() ? removeFolder(*object.volume, parent, object.name, object.identity())
                                           : resultFromErrno(-linux_calls::unlinkAt(parent, object.name.c_str()));
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

// No lock is taken: the step is a single one, and there is no sidecar.
OSErr removeAtOnce(const Level &level, const ListedEntry &entry, int folder)
{
    const std::string name(entry.name);
    if (OSErr result = level.volume->checkChangeable())
        return result;
    if (entry.type == DT_DIR)
        return removeFolder(*level.volume, folder, name, {level.identity.device, entry.inode, 0});
    return resultFromErrno(-linux_calls::unlinkAt(folder, name.c_str()));
}

Object placedObject(const Level &level, const ListedEntry &entry, FolderHandle folder)
{
    Object object;
    object.volume = level.volume;
    object.parentID = level.listed.id;
    object.folder = std::move(folder);
    object.name = entry.name;
    return object;
}

// The object is looked at and locked against our other processes. `isOther`: it is not the one that was handed out.
OSErr removeAfterALook(const Level &level, const ReferenceFields &fields, Object object, bool &isOther)
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
    FolderHandle folder;
    if (!reference || !readReference(*reference, fields))
        return false;
    const LockedLevel level = findLevelReading(fields.volume, fields.parentID, true, folder);
    if (!level || !wasHandedOut(*level, fields, entry) || (!folder && openFolderOf(*level, folder) != noErr))
        return false;
    bool isOther = false;
    if (mayGoAtOnce(*level, entry))
    {
        result = removeAtOnce(*level, entry, folder->number());
        isOther = result == fnfErr;
    }
    else
    {
        const bool nothingElse = level->changes == countOfChanges(level->listed.volume, level->listed.id);
        result = removeAfterALook(*level, fields, placedObject(*level, entry, folder), isOther);
        if (nothingElse)   // but this very change
            level->changes = countOfChanges(level->listed.volume, level->listed.id);
    }
    if (level->batchCount == 1)
        level->batchCount = 0;   // trusted once
    return !isOther;
}

OSErr removeFound(const FSRef *reference)
{
    Object object;
    ChangeLock lock;
    if (OSErr result = findAndLock(reference, object, lock, Anchoring::anew))
        return result;
    if (OSErr result = checkMayLeave(object))
        return result;
    return removeObject(object);
}

}   // namespace

// A name that another program replaces between the look and the removal is lost, as with rm: Linux cannot remove by identity.
OSErr FSDeleteObject(const FSRef *ref)
try
{
    OSErr result = noErr;
    return removeHandedOut(ref, result) ? result : removeFound(ref);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
