// Two files change places: data, resource fork and modification date go; everything else, and every reference, stays with the place.
//
// Before the first step both files get a journal that says where they go and what metadata that place has. Two files without sidecars then change places in
// one step. Else the first makes room under a temporary name, the second takes its place, and the first goes where the second was, each with its sidecar.
//
// Where the one step is all there is to do, a journal would say nothing: neither place has metadata of its own, and neither file an ID.
#include "platform/platform.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/exchanged_objects.h"
#include "standin/files/file_id_notes.h"
#include "standin/files/forks.h"
#include "standin/files/metadata.h"
#include "standin/files/metadata_attributes.h"
#include "standin/files/moved_objects.h"
#include "standin/files/sidecar_carrying.h"
#include "standin/files/volume_services.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>

using namespace standin;

namespace
{

// One of the two files.
struct Side
{
    Object object;            // where it is; after the exchange where it has come to
    KnownMetadata known;      // as they were before
    Descriptor itself;        // open if anything of it is to be changed
    PlaceMetadata metadata;   // of the place where it was
    std::size_t room = 0;     // that its attributes will need
};

// --- before the first step -------------------------------------------------------------------------------------------------------------------

OSErr findAndLockSides(const FSRef *firstRef, const FSRef *secondRef, Side &first, Side &second, ChangeLock &lock)
{
    if (OSErr result = guessPlace(secondRef, second.object))
        return result;
    for (;;)
    {
        const UInt32 folderID = second.object.parentID;
        const VolumeHandle volume = second.object.volume;
        const FolderHandle folder = second.object.folder;
        if (OSErr result = findAndLockBoth(firstRef, *volume, folderID, folder, first.object, lock))
            return result;
        if (OSErr result = findObject(secondRef, second.object))
            return result;
        if (second.object.parentID == folderID && !looksParked(second.object.name))
            return noErr;
        lock.release();
        if (OSErr result = findAndLock(secondRef, second.object, lock))   // which also brings it where it belongs
            return result;
        if (second.object.parentID == folderID && looksParked(second.object.name))
            return fBsyErr;
        lock.release();
    }
}

bool isPlaceOf(const Object &a, const Object &b)
{
    return a.parentID == b.parentID && a.name == b.name;
}

// A file with other names cannot leave its metadata behind: they would change under those names too.
OSErr checkCanChangePlaces(const Object &a, const Object &b)
{
    for (const Object *each : {&a, &b})
        if (each->isFolder())
            return notAFileErr;
    for (const Object *each : {&a, &b})
        if (!offersExchange(*each->volume) || !each->status.isRegular() || each->status.links != 1)
            return paramErr;
    return noErr;
}

// The owner stays with the place, which only the superuser can bring about. And a resource fork is looked up in its place for each step.
OSErr checkMayChangePlaces(const Object &a, const Object &b)
{
    if (a.status.user != b.status.user && linux_calls::effectiveUser() != 0)
        return afpAccessDenied;
    return (openForkFlags(a) | openForkFlags(b)) & kFSNodeResOpenMask ? static_cast<OSErr>(fBsyErr) : static_cast<OSErr>(noErr);
}

OSErr prepare(Side &side)
{
    bool hasSidecar = false;
    const SidecarPlace place{side.object.folder->number(), side.object.name, side.object.status};
    if (OSErr result = findSidecar(place, hasSidecar))
        return result;
    side.object.sidecarIsAbsent = !hasSidecar;
    return checkMayLeave(side.object, side.known);
}

OSErr openSides(Side &first, Side &second)
{
    for (Side *side : {&first, &second})
        if (!side->itself.isOpen())
            if (OSErr result = openItself(side->object, O_PATH, side->itself))
                return result;
    return noErr;
}

// --- what there is to do ---------------------------------------------------------------------------------------------------------------------

bool getsOtherOwner(const ObjectStatus &own, const ObjectStatus &place)
{
    return own.user != place.user || own.group != place.group;
}

bool getsOtherAccessDate(const ObjectStatus &own, const ObjectStatus &place)
{
    return own.access.tv_sec != place.access.tv_sec || own.access.tv_nsec != place.access.tv_nsec;
}

bool getsOtherStatus(const Side &side, const Side &other)
{
    const ObjectStatus &own = side.object.status, &place = other.object.status;
    return getsOtherOwner(own, place) || own.mode != place.mode || getsOtherAccessDate(own, place);
}

bool changePlacesAtOnce(const Side &first, const Side &second)
{
    return first.object.sidecarIsAbsent && second.object.sidecarIsAbsent;
}

bool needJournals(const Side &first, const Side &second)
{
    return !changePlacesAtOnce(first, second) || changesMetadata(first.known.attributes, second.metadata) ||
           changesMetadata(second.known.attributes, first.metadata);
}

OSErr placeOf(const Object &object, ExchangePlace &place)
{
    Folder folder;
    if (!recallFolder(*object.volume, object.parentID, folder))
        return dirNFErr;
    place = {folder.identity.inode, folder.identity.birth, object.name};
    return noErr;
}

OSErr writeJournalOf(const Side &side, const Side &other)
{
    ExchangeJournal journal;
    journal.file = side.object.status.inode;
    journal.partner = other.object.status.inode;
    journal.metadata = other.metadata;
    if (OSErr result = placeOf(side.object, journal.from))
        return result;
    if (OSErr result = placeOf(other.object, journal.to))
        return result;
    return writeJournal(side.object, side.itself.number(), journal, side.room);
}

OSErr writeJournals(Side &first, Side &second)
{
    if (OSErr result = openSides(first, second))
        return result;
    if (OSErr result = writeJournalOf(first, second))
        return result;
    const OSErr result = writeJournalOf(second, first);
    if (result != noErr)
        removeJournal(first.object, first.itself.number());
    return result;
}

// --- the steps -------------------------------------------------------------------------------------------------------------------------------

void setPlace(Object &object, const Object &place)
{
    object.parentID = place.parentID;
    object.folder = place.folder;
    object.name = place.name;
}

OSErr bringTo(Object &object, const Object &place)
{
    if (OSErr result = clearTheWayFor(place.folder->number(), place.name))
        return result;
    if (OSErr result = renameWithSidecar(object, place.folder->number(), place.name))
        return result;
    setPlace(object, place);
    return noErr;
}

// Gives way under a temporary name that is free.
OSErr park(Object &object)
{
    for (int number = 1;; ++number)
    {
        Object place = object;
        place.name = parkedNameOf(object.name, number);
        const int found = linux_calls::statusAt(place.folder->number(), place.name.c_str(), place.status);
        if (found < 0 && !linux_calls::saysAbsent(found))
            return resultFromErrno(-found);
        if (found < 0)
            return bringTo(object, place);
    }
}

// What cannot be gone back either stays where it is, with its journal.
OSErr changePlacesInSteps(Object &first, Object &second)
{
    const Object firstPlace = first, secondPlace = second;
    if (OSErr result = park(first))
        return result;
    OSErr result = bringTo(second, firstPlace);
    if (result == noErr)
    {
        result = bringTo(first, secondPlace);
        if (result != noErr && bringTo(second, secondPlace) != noErr)
            return result;
    }
    if (result != noErr)
        bringTo(first, firstPlace);
    return result;
}

int changePlacesInOneStep(Object &first, Object &second)
{
    const Object firstPlace = first;
    const int failure =
        linux_calls::exchangeNames(first.folder->number(), first.name.c_str(), second.folder->number(), second.name.c_str());
    if (failure)
        return failure;
    setPlace(first, second);
    setPlace(second, firstPlace);
    return 0;
}

OSErr changePlaces(Side &first, Side &second, bool &haveJournals)
{
    if (changePlacesAtOnce(first, second))
    {
        const int failure = changePlacesInOneStep(first.object, second.object);
        if (failure != -EINVAL && failure != -ENOSYS)   // these: a disk without that step
            return resultFromErrno(-failure);
    }
    if (!haveJournals)
        if (OSErr result = writeJournals(first, second))
            return result;
    haveJournals = true;
    return changePlacesInSteps(first.object, second.object);
}

// --- after the last step ---------------------------------------------------------------------------------------------------------------------

// Owner, mode and date of the last access stay with the place. A group that cannot be given stays with the file.
OSErr giveStatusOfPlace(const Side &side, const ObjectStatus &place)
{
    const ObjectStatus &own = side.object.status;
    const int descriptor = side.itself.number();
    const bool otherOwner = getsOtherOwner(own, place);
    const std::timespec times[2] = {place.access, {0, UTIME_OMIT}};
    int failure = otherOwner ? linux_calls::setOwner(descriptor, place.user, place.group) : 0;
    if (failure == -EPERM && own.user == place.user)
        failure = 0;
    if (failure == 0 && (otherOwner || own.mode != place.mode))
        failure = linux_calls::setMode(descriptor, place.mode);
    if (failure == 0 && getsOtherAccessDate(own, place))
        failure = linux_calls::setTimes(descriptor, times);
    return resultFromErrno(-failure);
}

OSErr settle(const Side &side, const Side &other, bool haveJournals)
{
    if (haveJournals)
        if (OSErr result = giveMetadataOfPlace(side.object, side.itself.number(), side.known.attributes, other.metadata))
            return result;
    return getsOtherStatus(side, other) ? giveStatusOfPlace(side, other.object.status) : static_cast<OSErr>(noErr);
}

OSErr exchangeLocked(Side &first, Side &second)
{
    if (OSErr result = makePlaceMetadata(first.object, first.known, second.object, first.metadata, first.room))
        return result;
    if (OSErr result = makePlaceMetadata(second.object, second.known, first.object, second.metadata, second.room))
        return result;
    const bool mayHaveID = mayHaveFileID(*first.object.volume, first.object.identity(), second.object.identity());
    bool haveJournals = mayHaveID || needJournals(first, second);
    if (OSErr result = haveJournals ? writeJournals(first, second) : static_cast<OSErr>(noErr))
        return result;
    if (getsOtherStatus(first, second))
        if (OSErr result = openSides(first, second))
            return result;
    {
        const PlaceChange change;
        const Object firstPlace = first.object, secondPlace = second.object;
        const OSErr result = changePlaces(first, second, haveJournals);
        const bool isBack = isPlaceOf(first.object, firstPlace) && isPlaceOf(second.object, secondPlace);
        for (const Side *side : {&first, &second})
            if (result != noErr && isBack && haveJournals)
                removeJournal(side->object, side->itself.number());
        if (result != noErr)
            return result;
        noteExchanged(first.object.identity(), second.object.identity());
        noteMoved(first.object, first.object.parentID, first.object.name);
        noteMoved(second.object, second.object.parentID, second.object.name);
    }
    if (mayHaveID)
        noteExchangeForFileIDs(first.object.volume, first.object.identity(), second.object.identity());
    const OSErr firstResult = settle(first, second, haveJournals), secondResult = settle(second, first, haveJournals);
    return firstResult != noErr ? firstResult : secondResult;
}

}   // namespace

OSErr FSExchangeObjects(const FSRef *ref, const FSRef *destRef)
try
{
    Side first, second;
    ChangeLock lock;
    if (OSErr result = findAndLockSides(ref, destRef, first, second, lock))
        return result;
    if (OSErr result = checkCanChangePlaces(first.object, second.object))
        return result;
    if (sameObject(first.object.identity(), second.object.identity()))
        return noErr;   // a file has changed places with itself
    for (Side *side : {&first, &second})
        if (OSErr result = prepare(*side))
            return result;
    if (OSErr result = checkMayChangePlaces(first.object, second.object))
        return result;
    return exchangeLocked(first, second);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
