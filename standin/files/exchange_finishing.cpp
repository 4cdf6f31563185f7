#include "standin/files/exchange_finishing.h"

#include "standin/files/changes.h"
#include "standin/files/metadata.h"
#include "standin/files/moved_objects.h"
#include "standin/files/sidecar_carrying.h"

#include <fcntl.h>

namespace standin
{

namespace
{

struct KnownPlace
{
    UInt32 folderID = 0;
    FolderHandle folder;
    std::string name;
};

// The folder of a place, if this process has met it.
bool openPlace(const Object &object, const ExchangePlace &place, KnownPlace &known)
{
    Folder folder;
    if (!recallFolder(*object.volume, Identity{object.status.device, place.folder, place.birth}, folder))
        return false;
    known.folderID = folder.id;
    known.name = place.name;
    return openFolder(*object.volume, folder.id, known.folder) == noErr;
}

bool isFree(const KnownPlace &place)
{
    ObjectStatus status;
    return linux_calls::saysAbsent(linux_calls::statusAt(place.folder->number(), place.name.c_str(), status));
}

bool isParkedStill(Object &object, ExchangeJournal &journal)
{
    const std::uint64_t inode = object.status.inode;
    if (linux_calls::statusAt(object.folder->number(), object.name.c_str(), object.status) < 0 || object.status.inode != inode ||
        !mayHaveAttributes(object))
        return false;
    const Attributes attributes = readAttributes(object, true);
    if (!attributes.journal)
        return false;
    journal = *attributes.journal;
    return stageOf(object, journal) == ExchangeStage::parked;
}

OSErr bringTo(Object object, const KnownPlace &place)
{
    if (OSErr result = clearTheWayFor(place.folder->number(), place.name))
        return result;
    {
        const PlaceChange change;
        if (OSErr result = renameWithSidecar(object, place.folder->number(), place.name))
            return result;
        noteMoved(object, place.folderID, place.name);
    }
    object.parentID = place.folderID;
    object.folder = place.folder;
    object.name = place.name;
    return finishExchangeOf(object);
}

}   // namespace

OSErr finishExchangeOf(const Object &object)
{
    Descriptor itself;
    if (OSErr result = openItself(object, O_PATH, itself))
        return result;
    return changeMetadata(object, itself.number(), 0, [](Metadata &) {});
}

bool finishExchangeIfCutOff(const Object &found)
{
    Object object;
    ChangeLock lock;
    if (found.isFolder() || !mayHaveAttributes(found) || !readAttributes(found, true).journal)
        return false;
    const FSRef reference = makeReference(found);
    if (findAndLock(&reference, object, lock) != noErr || object.volume->checkChangeable() != noErr)
        return false;
    return finishExchangeOf(object) == noErr;
}

void unpark(const Object &found)
{
    Object object = found;
    ExchangeJournal journal;
    ChangeLock lock;
    KnownPlace to;
    if (!isParkedStill(object, journal))
        return;
    const KnownPlace from{object.parentID, object.folder, journal.from.name};
    if (journal.to.folder == journal.from.folder)
        to = {object.parentID, object.folder, journal.to.name};
    else if (!openPlace(object, journal.to, to))
        to = from;
    if (lock.take(*object.volume, from.folderID, from.folder, to.folderID, to.folder) != noErr || !isParkedStill(object, journal))
        return;
    if (isFree(from))
        bringTo(object, from);
    else if (isFree(to))
        bringTo(object, to);
}

}   // namespace standin
