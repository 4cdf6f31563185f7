#include "standin/files/references.h"

#include "standin/files/errors.h"
#include "standin/files/listings.h"
#include "standin/files/names.h"
#include "standin/files/reference_format.h"

#include <cerrno>
#include <algorithm>
#include <fcntl.h>
#include <list>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace standin
{

namespace
{

// --- what this process moved ---------------------------------------------------------------------------------------------------------

struct Place
{
    UInt32 parentID;
    std::string name;
};

struct MovedTable
{
    static constexpr std::size_t most = 65536;
    std::mutex mutex;
    std::unordered_map<std::uint64_t, std::list<std::pair<std::uint64_t, Place>>::iterator> byObject;
    std::list<std::pair<std::uint64_t, Place>> places;   // the oldest first
};

// Look-ups away from an object's own name share it; a change of place has it alone.
std::shared_mutex &placeMutex()
{
    static std::shared_mutex mutex;
    return mutex;
}

MovedTable &moved()
{
    static MovedTable table;
    return table;
}

std::uint64_t keyOf(const Volume &volume, const Identity &identity)
{
    return (identity.inode * 0x9E3779B97F4A7C15u) ^ (identity.device << 16) ^ static_cast<UInt16>(volume.number);
}

bool recallMoved(const Volume &volume, const Identity &identity, Place &place)
{
    const std::lock_guard lock(moved().mutex);
    const auto found = moved().byObject.find(keyOf(volume, identity));
    if (found == moved().byObject.end())
        return false;
    place = found->second->second;
    return true;
}

// --- is this object the one that the reference means? ----------------------------------------------------------------------------------

// Births need not be looked at where the moment of the listing lies in the future of the clock: it was set back since.
bool bornAfterItWasSeen(const ReferenceFields &fields, const Identity &identity)
{
    return !fields.timeIsBirth && identity.birth > fields.time && packBirth(linux_calls::now()) >= identity.birth;
}

bool isMeant(const ReferenceFields &fields, const Identity &identity)
{
    if (identity.inode != fields.inode || identity.device != fields.device)
        return false;
    if (identity.birth == 0 || fields.time == 0)
        return true;
    return fields.timeIsBirth ? identity.birth == fields.time : !bornAfterItWasSeen(fields, identity);
}

// Under another name an object is only believed to be the same with an equal birth, or one well before the moment of the listing.
bool isMeantUnderAnotherName(const ReferenceFields &fields, const Identity &identity)
{
    constexpr Birth twentyMilliseconds = 20000000;
    if (identity.inode != fields.inode || identity.device != fields.device || identity.birth == 0 || fields.time == 0)
        return false;
    return fields.timeIsBirth ? identity.birth == fields.time : identity.birth + twentyMilliseconds < fields.time;
}

OSErr statusNamed(Object &object)
{
    const int result = linux_calls::statusAt(object.folder->number(), object.name.c_str(), object.status);
    return result == 0 ? noErr : resultFromErrno(-result);
}

OSErr findPlaced(Object &object, const Place &place, Anchoring anchoring)
{
    object.parentID = place.parentID;
    object.name = place.name;
    if (OSErr result = openFolder(*object.volume, place.parentID, object.folder, anchoring))
        return result;
    return statusNamed(object);
}

// --- the steps of finding, one after another --------------------------------------------------------------------------------------------

// A listing shows the folder under a mounted disk, the object's status the root of that disk. Both are the same folder of ours.
bool isCoveredByMount(const ReferenceFields &fields, const Object &object)
{
    bool isListed = false;
    if (!object.isMountPoint() || fields.device != object.volume->rootStatus.device)
        return false;
    visitEntries(object.folder->number(), [&](const Entry &entry) {
        isListed = entry.inode == fields.inode && entry.name == object.name;
        return !isListed;
    });
    return isListed;
}

// Under its own name. A name too long for the reference is first found in its folder.
bool findUnderOwnName(const ReferenceFields &fields, Object &object)
{
    if (!fields.nameIsHashed)
    {
        object.name = fields.name;
        return statusNamed(object) == noErr && (isMeant(fields, object.identity()) || isCoveredByMount(fields, object));
    }
    const auto names = namesWhere(object.folder->number(),
                                  [&](std::string_view name) { return longNameHash(name) == fields.nameHash && isLongName(name); });
    return std::any_of(names.begin(), names.end(), [&](const std::string &name) {
        object.name = name;
        return statusNamed(object) == noErr && isMeant(fields, object.identity());
    });
}

// Where this process put it. Folders are remembered with their place in any case.
bool findWhereMoved(const ReferenceFields &fields, Object &object, Anchoring anchoring)
{
    const Identity identity{fields.device, fields.inode, fields.timeIsBirth ? fields.time : 0};
    Place place;
    Folder folder;
    if (recallMoved(*object.volume, identity, place) && findPlaced(object, place, anchoring) == noErr && isMeant(fields, object.identity()))
        return true;
    return recallFolder(*object.volume, identity, folder) && findPlaced(object, {folder.parentID, folder.name}, anchoring) == noErr &&
           isMeant(fields, object.identity());
}

bool findInSameFolder(const ReferenceFields &fields, Object &object)
{
    if (openFolder(*object.volume, fields.parentID, object.folder) != noErr)
        return false;
    object.parentID = fields.parentID;
    visitEntries(object.folder->number(), [&](const Entry &entry) {
        if (entry.inode != fields.inode)
            return true;
        object.name = entry.name;
        return !(statusNamed(object) == noErr && isMeantUnderAnotherName(fields, object.identity()) &&
                 (object.isFolder() || object.status.links == 1));
    });
    return !object.name.empty() && statusNamed(object) == noErr && isMeantUnderAnotherName(fields, object.identity()) &&
           (object.isFolder() || object.status.links == 1);
}

std::string parentPath(const std::string &path)
{
    return path.substr(0, path.rfind('/') + 1);
}

// By its inode number, where the process may open by that: the kernel says where it lies.
bool findByInode(const ReferenceFields &fields, Object &object)
{
    const Volume &volume = *object.volume;
    const Descriptor opened(linux_calls::openByInode(volume.root->number(), fields.inode));
    ObjectStatus status;
    if (!opened.isOpen() || linux_calls::statusOf(opened.number(), status) < 0 ||
        !isMeantUnderAnotherName(fields, identityOf(volume, status)) || (!status.isFolder() && status.links != 1))
        return false;
    const std::string path = linux_calls::pathOf(opened.number());
    if (path.empty() || path[0] != '/')
        return false;
    const Descriptor parent(linux_calls::openAbsoluteFolder(parentPath(path).c_str()));
    if (!parent.isOpen() || anchorFolder(volume, parent.number(), object.parentID) != noErr ||
        openFolder(volume, object.parentID, object.folder) != noErr)
        return false;
    object.name = path.substr(path.rfind('/') + 1);
    return statusNamed(object) == noErr && isMeantUnderAnotherName(fields, object.identity());
}

OSErr find(const FSRef *reference, Object &object, Anchoring anchoring)
{
    ReferenceFields fields;
    if (!reference)
        return paramErr;
    if (!readReference(*reference, fields))
        return errFSBadFSRef;
    object.volume = findVolume(fields.volume);
    if (!object.volume)
        return nsvErr;
    if (fields.parentID == fsRtParID)
        return findRoot(object.volume, object);
    object.parentID = fields.parentID;
    const OSErr opened = openFolder(*object.volume, fields.parentID, object.folder, anchoring);
    if (opened == noErr && findUnderOwnName(fields, object))
        return noErr;
    const std::shared_lock noChange(placeMutex());
    if (findWhereMoved(fields, object, anchoring) || (opened == noErr && findInSameFolder(fields, object)) || findByInode(fields, object))
        return noErr;
    return opened == noErr ? static_cast<OSErr>(fnfErr) : opened;
}

// A child that is mounted over is met as the folder of its own volume: an empty one.
Object withPlace(const VolumeHandle &volume, UInt32 parentID, FolderHandle folder, std::string name)
{
    Object object;
    object.volume = volume;
    object.parentID = parentID;
    object.folder = std::move(folder);
    object.name = std::move(name);
    return object;
}

// A plain short name is only good if nothing stands before the object among the names that it is looked up by.
bool plainNameLeadsBack(const Object &object, ConstStr255Param name)
{
    std::vector<std::string> candidates;
    if (lookupNamesFromPascal(name, candidates) != noErr)
        return false;
    for (const std::string &candidate : candidates)
    {
        if (candidate == object.name)
            return true;
        ObjectStatus status;
        if (linux_calls::statusAt(object.folder->number(), candidate.c_str(), status) == 0)
            return false;
    }
    return false;
}

bool samePascalString(ConstStr255Param a, ConstStr255Param b)
{
    return std::equal(a, a + a[0] + 1, b, b + b[0] + 1);
}

// Whether another entry of the folder is called by this short form too, plainly or by its own hash.
bool isTakenByAnother(const Object &object, ConstStr255Param form, int digits)
{
    const auto clashes = namesWhere(object.folder->number(), [&](std::string_view other) {
        Str63 plain, hashed;
        if (other == object.name)
            return false;
        if (plainShortName(other, plain))
            return samePascalString(plain, form);
        hashedShortName(other, digits, hashed);
        return samePascalString(hashed, form);
    });
    return !clashes.empty();
}

}   // namespace

PlaceChange::PlaceChange()
{
    placeMutex().lock();
}

PlaceChange::~PlaceChange()
{
    placeMutex().unlock();
}

UInt32 Object::nodeID() const
{
    if (isRoot())
        return fsRtDirID;
    return isFolder() ? rememberFolder(*volume, parentID, name, identity()) : nodeIDOf(*volume, identity());
}

OSErr findObject(const FSRef *reference, Object &object)
{
    return find(reference, object, Anchoring::recent);
}

OSErr findObjectAnew(const FSRef *reference, Object &object)
{
    return find(reference, object, Anchoring::anew);
}

OSErr findNamed(const VolumeHandle &volume, UInt32 parentID, const std::string &diskName, Object &object)
{
    FolderHandle folder;
    if (OSErr result = openFolder(*volume, parentID, folder))
        return result;
    object = withPlace(volume, parentID, std::move(folder), diskName);
    return statusNamed(object);
}

OSErr findFirstNamed(const VolumeHandle &volume, UInt32 parentID, const std::vector<std::string> &diskNames, Object &object)
{
    OSErr result = fnfErr;
    for (const std::string &diskName : diskNames)
        if ((result = findNamed(volume, parentID, diskName, object)) != fnfErr)
            return result;
    return result;
}

OSErr findShortNamed(const VolumeHandle &volume, UInt32 parentID, ConstStr255Param name, Object &object)
{
    std::vector<std::string> candidates;
    if (OSErr result = lookupNamesFromPascal(name, candidates))
        return result;
    const OSErr result = findFirstNamed(volume, parentID, candidates, object);
    const int digits = hashDigitsOf(name);
    if (result != fnfErr || digits == 0)
        return result;
    FolderHandle folder;
    if (OSErr failure = openFolder(*volume, parentID, folder))
        return failure;
    const auto names = namesWhere(folder->number(), [&](std::string_view entry) {
        Str63 form;
        hashedShortName(entry, digits, form);
        return samePascalString(form, name);
    });
    for (const std::string &entry : names)
    {
        Str63 form;
        object = withPlace(volume, parentID, folder, entry);
        if (statusNamed(object) != noErr)
            continue;
        makeShortName(object, form);
        if (samePascalString(form, name))   // two names made to agree in every digit: neither is guessed
            return digits == mostHashDigits && isTakenByAnother(object, name, digits) ? bdNamErr : noErr;
    }
    return fnfErr;
}

OSErr findRoot(const VolumeHandle &volume, Object &object)
{
    object = withPlace(volume, fsRtParID, volume->root, ".");
    return statusNamed(object);
}

OSErr findFolder(const VolumeHandle &volume, UInt32 id, Object &object)
{
    if (id == fsRtDirID)
        return findRoot(volume, object);
    FolderHandle itself;
    Folder folder;
    if (OSErr result = openFolder(*volume, id, itself))   // this also brings what is remembered of it up to date
        return result;
    if (!recallFolder(*volume, id, folder))
        return dirNFErr;
    if (OSErr result = findNamed(volume, folder.parentID, folder.name, object))
        return result;
    return sameObject(object.identity(), folder.identity) ? static_cast<OSErr>(noErr) : static_cast<OSErr>(dirNFErr);
}

FSRef makeReference(const Object &object)
{
    ReferenceFields fields;
    const Identity identity = object.identity();
    fields.volume = object.volume->number;
    fields.parentID = object.parentID;
    fields.device = identity.device;
    fields.inode = identity.inode;
    fields.time = identity.birth;
    fields.timeIsBirth = identity.birth != 0;
    return writeReference(fields, object.name);
}

FSRef makeListedReference(const Object &folder, UInt32 folderID, const Entry &entry, const std::timespec &moment)
{
    ReferenceFields fields;
    fields.volume = folder.volume->number;
    fields.parentID = folderID;
    fields.device = folder.status.device;
    fields.inode = entry.inode;
    fields.time = folder.volume->comparesBirths ? packBirth(moment) : 0;
    return writeReference(fields, entry.name);
}

FSRef makeParentReference(const Object &object)
{
    Folder folder;
    if (object.isRoot() || !recallFolder(*object.volume, object.parentID, folder))
        return {};
    ReferenceFields fields;
    fields.volume = object.volume->number;
    fields.parentID = folder.parentID;
    fields.device = folder.identity.device;
    fields.inode = folder.identity.inode;
    fields.time = folder.identity.birth;
    fields.timeIsBirth = folder.identity.birth != 0;
    return writeReference(fields, folder.name);
}

void makeShortName(const Object &object, Str63 name)
{
    const std::string_view diskName = object.isRoot() ? std::string_view(object.volume->name) : std::string_view(object.name);
    if (plainShortName(diskName, name) && (object.isRoot() || plainNameLeadsBack(object, name)))
        return;
    for (int digits = fewestHashDigits;; ++digits)
    {
        hashedShortName(diskName, digits, name);
        if (object.isRoot() || digits == mostHashDigits || !isTakenByAnother(object, name, digits))
            return;
    }
}

void noteMoved(const Object &object, UInt32 newParentID, std::string_view newName)
{
    if (object.isFolder())
    {
        rememberFolder(*object.volume, newParentID, newName, object.identity());
        return;
    }
    const std::uint64_t key = keyOf(*object.volume, object.identity());
    const std::lock_guard lock(moved().mutex);
    auto &[mutex, byObject, places] = moved();
    if (const auto known = byObject.find(key); known != byObject.end())
        places.erase(known->second);
    places.emplace_back(key, Place{newParentID, std::string(newName)});
    byObject[key] = std::prev(places.end());
    if (places.size() > MovedTable::most)
    {
        byObject.erase(places.front().first);
        places.pop_front();
    }
}

}   // namespace standin
