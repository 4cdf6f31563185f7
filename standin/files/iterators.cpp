// Iterators: a folder is read when it is opened, and handed out piece by piece.
//
// What a walk costs is decided here. A folder that is met in a walk is opened through the level above: one call, another to make sure that it is the very
// one, one or two to read it, one to close it. An entry costs none where the listing says all that is asked for.
#include "platform/platform.h"
#include "standin/files/catalog.h"
#include "standin/files/change_lock.h"
#include "standin/files/errors.h"
#include "standin/files/exchanged_objects.h"
#include "standin/files/forks.h"
#include "standin/files/names.h"
#include "standin/files/open_levels.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <new>

using namespace standin;

namespace
{

// --- opening ----------------------------------------------------------------------------------------------------------------------------

// A folder on the way to becoming a level.
struct Opening
{
    std::unique_ptr<Level> level = std::make_unique_for_overwrite<Level>();   // its members say themselves what they begin with
    FolderHandle folder;                                                      // readable
};

void takeFolder(Level &level, const VolumeHandle &volume, UInt32 id, const ObjectStatus &status)
{
    level.volume = volume;
    level.identity = identityOf(*volume, status);
    level.listed.volume = volume->number;
    level.listed.id = id;
    level.modification = status.modification;
}

// Through the descriptor of the level above. False if that is not the way to it, for whatever reason.
bool openThroughAbove(const ReferenceFields &fields, Opening &opening)
{
    FolderHandle folderAbove;
    VolumeHandle volume;
    std::string name;
    {
        const LockedLevel above = findLevelReading(fields.volume, fields.parentID, opening.level->deletes, folderAbove);
        ListedEntry entry;
        if (!above || !wasHandedOut(*above, fields, entry) || (!folderAbove && openFolderOf(*above, folderAbove) != noErr))
            return false;
        name = entry.name;
        volume = above->volume;
        opening.level->volume = volume;
        opening.level->above = above->number;
        opening.level->listed.device =
            above->listed.device;   // if the reference names a folder on another one, it is opened in the general way
    }
    ObjectStatus status;
    auto folder = std::make_shared<const Descriptor>(linux_calls::openListedFolder(folderAbove->number(), name.c_str()));
    if (!folder->isOpen() || linux_calls::statusOf(folder->number(), status) < 0 || status.mount != volume->rootStatus.mount)
        return false;
    const Identity identity = identityOf(*volume, status);
    if (!isMeant(fields, identity))
        return false;
    takeFolder(*opening.level, volume, rememberFolder(*volume, fields.parentID, name, identity), status);
    opening.folder = std::move(folder);
    return true;
}

// The general way. What is to be deleted is looked for from the volume's root.
OSErr openByReference(const FSRef *container, Opening &opening)
{
    Object object;
    FolderHandle way;
    Level &level = *opening.level;
    if (OSErr result = findObject(container, object))
        return result;
    if (!object.isFolder())
        return errFSNotAFolder;
    takeFolder(level, object.volume, object.nodeID(), object.status);
    level.listed.device = numberOfDevice(object.status.device);
    level.standsEmpty = object.isMountPoint();
    if (level.standsEmpty)
        return noErr;
    if (OSErr result = openFolder(*level.volume, level.listed.id, way, level.deletes ? Anchoring::anew : Anchoring::recent))
        return result;
    opening.folder = std::make_shared<const Descriptor>(linux_calls::openAt(way->number(), ".", O_RDONLY | O_DIRECTORY));
    return opening.folder->isOpen() ? static_cast<OSErr>(noErr) : resultFromErrno(-opening.folder->number());
}

OSErr readFolder(Opening &opening)
{
    Level &level = *opening.level;
    level.listed.moment = level.volume->comparesBirths ? packBirth(linux_calls::now()) : 0;
    level.changes = countOfChanges(level.listed.volume, level.listed.id);
    level.askedForChangeAt = linux_calls::coarseMilliseconds();
    level.lastUse = level.askedForChangeAt;
    if (!opening.folder)
        return noErr;
    if (const int failure = level.listing.read(opening.folder->number()))
        return resultFromErrno(-failure);
    level.remaining = level.listing.size();
    level.next = level.listing.begin();
    return noErr;
}

bool isGone(OSErr result)
{
    return result == fnfErr || result == dirNFErr || result == errFSNotAFolder;
}

// A folder that is met in a walk and may not be read is opened all the same, and the first step on it fails: so the walk loses this folder alone and not
// everything that comes after it in the folder above. One that is gone by now has nothing in it.
OSErr openFolderToIterate(const FSRef *container, Opening &opening)
{
    ReferenceFields fields;
    Level &level = *opening.level;
    if (!container)
        return paramErr;
    if (!readReference(*container, fields))
        return errFSBadFSRef;
    if (fields.parentID != fsRtParID && openThroughAbove(fields, opening))
        return noErr;
    const OSErr result = openByReference(container, opening);
    const bool isMetInAWalk = level.above != 0;
    if (!isMetInAWalk || (result != afpAccessDenied && (level.deletes || !isGone(result))))
        return result;
    opening.folder.reset();
    level.standsEmpty = result != afpAccessDenied;
    level.failure = level.standsEmpty ? static_cast<OSErr>(noErr) : result;
    return noErr;
}

// --- handing out ------------------------------------------------------------------------------------------------------------------------

// What is asked for of each object; any pointer may be null.
struct Outputs
{
    FSCatalogInfoBitmap which;
    FSCatalogInfo *infos;
    FSRef *refs;
    FSSpec *specs;
    HFSUniStr255 *names;
};

// What an entry of the folder says by itself, where entries can be trusted. That something has no sidecar says that it is not locked.
constexpr FSCatalogInfoBitmap knownFromEntry = kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoParentDirID;

bool isAsciiShortName(std::string_view name, Str63 shortName)
{
    const bool isAscii = std::all_of(name.begin(), name.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
    return isAscii && plainShortName(name, shortName);
}

// A name in plain ASCII leads back to its object before any other; another one may need a look at the folder.
bool specIsKnown(const ListedEntry &entry, FSSpec *spec)
{
    return !spec || isAsciiShortName(entry.name, spec->name);
}

bool entrySuffices(const Level &level, const ListedEntry &entry, std::size_t index, const Outputs &outputs)
{
    const bool isTrusted = level.volume->trustsListings && entry.type != DT_UNKNOWN;
    const bool asksObject = (outputs.which & ~knownFromEntry) || ((outputs.which & kFSCatInfoNodeFlags) && entry.hasSidecar);
    const bool wantsNothing = !outputs.which && !outputs.specs && !outputs.refs;   // but the name
    return wantsNothing || (isTrusted && !asksObject && specIsKnown(entry, outputs.specs ? outputs.specs + index : nullptr));
}

void fillInfoFromEntry(const Level &level, const ListedEntry &entry, FSCatalogInfoBitmap which, FSCatalogInfo &info)
{
    if (which & kFSCatInfoNodeFlags)
    {
        const UInt16 open = isAnyForkOpen() ? openForkFlags({level.identity.device, entry.inode, 0}) : UInt16{0};
        info.nodeFlags = entry.type == DT_DIR ? static_cast<UInt16>(kFSNodeIsDirectoryMask | open) : open;
    }
    if (which & kFSCatInfoVolume)
        info.volume = level.listed.volume;
    if (which & kFSCatInfoParentDirID)
        info.parentDirID = level.listed.id;
}

void fillFromEntry(const Level &level, const ListedEntry &entry, std::size_t index, const Outputs &outputs)
{
    if (outputs.which)
        fillInfoFromEntry(level, entry, outputs.which, outputs.infos[index]);
    if (outputs.refs)
        writeListedReference(level.listed, entry.inode, 0, exchangesOf({level.identity.device, entry.inode, 0}), entry.name,
                             outputs.refs[index]);
    if (outputs.names)
        unicodeFromDiskName(entry.name, outputs.names[index]);
    if (outputs.specs)
    {
        outputs.specs[index].vRefNum = level.listed.volume;
        outputs.specs[index].parID = static_cast<SInt32>(level.listed.id);   // its name is there already
    }
}

// An object in the folder of a level, used for one entry after another and from step to step; its descriptor is the step's alone, so that no more folders
// stay open than may.
class PlacedObject
{
public:
    explicit PlacedObject(Level &level) : level_(level) {}
    ~PlacedObject()
    {
        if (level_.object)
            level_.object->folder.reset();
    }
    PlacedObject(const PlacedObject &) = delete;
    PlacedObject &operator=(const PlacedObject &) = delete;

    // Asks the disk for its status.
    OSErr become(const ListedEntry &entry)
    {
        if (!level_.object)
            place();
        Object &object = *level_.object;
        if (!object.folder)
            if (OSErr result = openFolderOf(level_, object.folder))
                return result;
        object.name = entry.name;
        object.sidecarIsAbsent = !entry.hasSidecar;
        return resultFromErrno(-linux_calls::statusAt(object.folder->number(), object.name.c_str(), object.status));
    }

    const Object &operator*() const { return *level_.object; }

private:
    void place()
    {
        level_.object = std::make_unique<Object>();
        level_.object->volume = level_.volume;
        level_.object->parentID = level_.listed.id;
    }

    Level &level_;
};

// What is mounted over lies on another device than its folder.
void fillReference(const Level &level, const Object &object, FSRef &reference)
{
    const Identity identity = object.identity();
    if (identity.device == level.identity.device)
        writeListedReference(level.listed, identity.inode, identity.birth, exchangesOf(identity), object.name, reference);
    else
        reference = makeReference(object);
}

OSErr fillFromObject(const Level &level, const Object &object, std::size_t index, const Outputs &outputs)
{
    if (outputs.which)
        if (OSErr result = fillCatalogInfo(object, outputs.which, outputs.infos[index]))
            return result;
    if (outputs.refs)
        fillReference(level, object, outputs.refs[index]);
    if (outputs.names)
        fillName(object, outputs.names[index]);
    if (outputs.specs)
        fillSpec(object, outputs.specs[index]);
    return noErr;
}

// An object that is gone meanwhile is passed over.
OSErr fillNext(Level &level, ItemCount most, const Outputs &outputs, ItemCount &count)
{
    PlacedObject object(level);
    ListedEntry entry;
    level.batch = level.next;
    level.batchCount = 0;
    while (count < most && level.remaining != 0 && level.listing.next(level.next, entry))
    {
        --level.remaining;
        ++level.batchCount;
        if (entrySuffices(level, entry, count, outputs))
        {
            fillFromEntry(level, entry, count++, outputs);
            continue;
        }
        OSErr result = object.become(entry);
        if (result == noErr)
            result = fillFromObject(level, *object, count, outputs);
        if (result != noErr && result != fnfErr)
            return result;
        count += result == noErr;
    }
    return count < most ? errFSNoMoreItems : noErr;
}

// --- has the folder changed? ------------------------------------------------------------------------------------------------------------

bool differsFromBefore(Level &level)
{
    FolderHandle folder;
    std::timespec now;
    if (openFolderOf(level, folder) != noErr || linux_calls::modificationOf(folder->number(), now) < 0)
        return true;
    const std::timespec &then = level.modification;
    return now.tv_sec != then.tv_sec || now.tv_nsec != then.tv_nsec;
}

// The disk is asked with the last object, and before that with every sixteenth if its clock has ticked since: a change is told a little later, and no
// later than with the last object.
bool hasChanged(Level &level)
{
    const bool isAtEnd = level.remaining == 0;
    if (!isAtEnd && level.remaining % 16 != 0)
        return level.hasChanged;
    const std::int64_t now = linux_calls::coarseMilliseconds();
    if (level.hasChanged || level.standsEmpty || level.failure != noErr ||
        (now == level.askedForChangeAt && !(isAtEnd && !level.askedAtEnd)))
        return level.hasChanged;
    level.askedForChangeAt = now;
    level.askedAtEnd = isAtEnd;
    return level.hasChanged = differsFromBefore(level);
}

}   // namespace

OSErr FSOpenIterator(const FSRef *container, FSIteratorFlags flags, FSIterator *iterator)
try
{
    Opening opening;
    if (!iterator)
        return paramErr;
    if (flags != kFSIterateFlat && flags != kFSIterateDelete)
        return errFSBadIteratorFlags;
    opening.level->deletes = flags == kFSIterateDelete;
    if (OSErr result = openFolderToIterate(container, opening))
        return result;
    if (OSErr result = readFolder(opening))
        return result;
    *iterator = openLevel(std::move(opening.level), std::move(opening.folder));
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSCloseIterator(FSIterator iterator)
try
{
    return closeLevel(iterator) ? noErr : errFSIteratorNotFound;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSGetCatalogInfoBulk(FSIterator iterator, ItemCount maximumObjects, ItemCount *actualObjects, Boolean *containerChanged,
                           FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfos, FSRef *refs, FSSpec *specs, HFSUniStr255 *names)
try
{
    const LockedLevel level = findLevel(iterator);
    ItemCount count = 0;
    if (!level)
        return errFSIteratorNotFound;
    if (!actualObjects || maximumObjects == 0)
        return errFSBadItemCount;
    if (whichInfo & ~everyCatalogBit)
        return errFSBadInfoBitmap;
    if (whichInfo && !catalogInfos)
        return errFSMissingCatInfo;
    const OSErr result =
        level->failure != noErr ? level->failure : fillNext(*level, maximumObjects, {whichInfo, catalogInfos, refs, specs, names}, count);
    if (level->deletes)
        level->handedOutAt = linux_calls::coarseMilliseconds();
    *actualObjects = count;
    if (containerChanged)
        *containerChanged = hasChanged(*level);
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
