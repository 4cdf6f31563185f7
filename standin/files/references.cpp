#include "standin/files/references.h"

#include "standin/files/errors.h"
#include "standin/files/exchanged_objects.h"
#include "standin/files/listings.h"
#include "standin/files/long_names.h"
#include "standin/files/moved_objects.h"
#include "standin/files/reference_format.h"

#include <cerrno>
#include <algorithm>
#include <fcntl.h>

namespace standin
{

namespace
{

// --- is this object the one that the reference means? ----------------------------------------------------------------------------------

// Births need not be looked at where the moment of the listing lies in the future of the clock: it was set back since.
bool bornAfterItWasSeen(const ReferenceFields &fields, const Identity &identity)
{
    return !fields.timeIsBirth && identity.birth > fields.time && packBirth(linux_calls::now()) >= identity.birth;
}

}   // namespace

bool isMeant(const ReferenceFields &fields, const Identity &identity)
{
    if (identity.inode != fields.inode || identity.device != fields.device)
        return false;
    if (identity.birth == 0 || fields.time == 0)
        return true;
    return fields.timeIsBirth ? identity.birth == fields.time : !bornAfterItWasSeen(fields, identity);
}

namespace
{

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

bool findAmong(const std::vector<std::string> &longNames, const ReferenceFields &fields, Object &object)
{
    return std::any_of(longNames.begin(), longNames.end(), [&](const std::string &name) {
        object.name = name;
        return longNameHash(name) == fields.nameHash && statusNamed(object) == noErr && isMeant(fields, object.identity());
    });
}

// Under its own name. A name too long for the reference is first found in its folder.
bool findUnderOwnName(const ReferenceFields &fields, Object &object)
{
    if (!fields.nameIsHashed)
    {
        object.name = fields.name;
        return statusNamed(object) == noErr && (isMeant(fields, object.identity()) || isCoveredByMount(fields, object));
    }
    if (findAmong(knownLongNames(*object.volume, object.parentID, fields.inode), fields, object))
        return true;
    readLongNames(*object.volume, object.parentID, object.folder->number());
    return findAmong(knownLongNames(*object.volume, object.parentID, fields.inode), fields, object);
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
    FolderHandle root;
    if (volume.root.open(Keeping::open, root) != noErr)
        return false;
    const Descriptor opened(linux_calls::openByInode(root->number(), fields.inode));
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

// Whether an object's folder, opened a moment ago, is the one that a reference names.
bool isFolderOf(const Object &object, const ReferenceFields &fields)
{
    return object.volume && object.folder && object.volume->number == fields.volume && object.parentID == fields.parentID;
}

OSErr find(const FSRef *reference, Object &object, Anchoring anchoring, bool folderMayBeOpen = false)
{
    ReferenceFields fields;
    if (!reference)
        return paramErr;
    if (!readReference(*reference, fields))
        return errFSBadFSRef;
    const bool isOpen = folderMayBeOpen && isFolderOf(object, fields);
    if (!isOpen)
        object.volume = findVolume(fields.volume);
    if (!object.volume)
        return nsvErr;
    if (fields.parentID == fsRtParID)
        return findRoot(object.volume, object);
    followExchanges(fields);
    object.parentID = fields.parentID;
    const OSErr opened = isOpen ? static_cast<OSErr>(noErr) : openFolder(*object.volume, fields.parentID, object.folder, anchoring);
    if (opened == noErr && findUnderOwnName(fields, object))
        return noErr;
    const PlacesHeld noChange;
    if (followExchanges(fields) && opened == noErr && findUnderOwnName(fields, object))   // it was exchanged just now
        return noErr;
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

}   // namespace

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

OSErr findObjectInOpenFolder(const FSRef *reference, Object &object)
{
    return find(reference, object, Anchoring::recent, true);
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

OSErr findRoot(const VolumeHandle &volume, Object &object)
{
    FolderHandle root;
    if (OSErr result = volume->root.open(Keeping::closed, root))
        return result;
    object = withPlace(volume, fsRtParID, std::move(root), ".");
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

OSErr openItself(const Object &object, int flags, Descriptor &itself)
{
    ObjectStatus status;
    const int opened = linux_calls::openAt(object.folder->number(), object.name.c_str(), flags | O_NONBLOCK);
    if (opened < 0)
        return resultFromErrno(-opened);
    itself = Descriptor(opened);
    if (const int failure = linux_calls::statusOf(itself.number(), status))
        return resultFromErrno(-failure);
    return sameObject(identityOf(*object.volume, status), object.identity()) ? static_cast<OSErr>(noErr) : static_cast<OSErr>(fnfErr);
}

FSRef makeReference(const Object &object)
{
    ReferenceFields fields;
    const Identity identity = object.identity();
    if (isLongName(object.name))
        noteLongName(*object.volume, object.parentID, identity.inode, object.name);
    fields.volume = object.volume->number;
    fields.parentID = object.parentID;
    fields.device = identity.device;
    fields.inode = identity.inode;
    fields.time = identity.birth;
    fields.timeIsBirth = identity.birth != 0;
    fields.exchanges = exchangesOf(identity);
    return writeReference(fields, object.name);
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
    fields.exchanges = exchangesOf(folder.identity);
    return writeReference(fields, folder.name);
}

}   // namespace standin
