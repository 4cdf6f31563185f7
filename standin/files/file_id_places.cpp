#include "standin/files/file_id_places.h"

#include "standin/files/exchanged_objects.h"
#include "standin/files/reference_format.h"

#include <cinttypes>
#include <cstdio>
#include <sys/statvfs.h>

namespace standin
{

namespace
{

// The folders from the root down to this one, without the root. False if the way is not known.
bool knownWay(const Volume &volume, UInt32 folderID, std::vector<Folder> &way)
{
    for (Folder folder; folderID != fsRtDirID; folderID = folder.parentID)
    {
        if (!recallFolder(volume, folderID, folder))
            return false;
        way.insert(way.begin(), folder);
    }
    return true;
}

StoredFolder storedFrom(const Volume &volume, const Folder &folder, RowNumber parent)
{
    return {0, parent, folder.name, storedIdentityOf(volume, folder.identity)};
}

OSErr bringFolderRowInLine(const Volume &volume, RowNumber volumeRow, const Folder &folder, RowNumber parent, RowNumber &row)
{
    StoredFolder present, wanted = storedFrom(volume, folder, parent);
    OSErr result = findFolderRow(volumeRow, wanted.identity, present);
    if (result == fidNotFound)
    {
        result = addFolderRow(volumeRow, wanted);
        row = wanted.number;
        return result;
    }
    row = present.number;
    if (result != noErr || (present.parent == parent && present.name == wanted.name))
        return result;
    present.parent = parent;
    present.name = wanted.name;
    return changeFolderRow(volumeRow, present);
}

bool liesAt(const VolumeHandle &volume, UInt32 folderID, const std::string &name, const Identity &identity)
{
    Object there;
    return findNamed(volume, folderID, name, there) == noErr && there.isFolder() && sameObject(there.identity(), identity);
}

// Makes the folders of a row known to this process. Where it remembers another place, either may be the older one: another process may have moved the
// folder, and on a disk without births what is remembered may be of an earlier folder that had the inode number. Then the disk is asked. False if it is not
// certain that they are the same ones.
bool rememberWay(const VolumeHandle &volume, const std::vector<StoredFolder> &way, UInt32 &folderID)
{
    bool isCertain = true;
    folderID = fsRtDirID;
    for (const StoredFolder &stored : way)
    {
        const Identity identity = presentIdentityOf(*volume, stored.identity);
        Folder known;
        const bool isKnown = recallFolder(*volume, identity, known);
        const bool isKnownElsewhere = isKnown && (known.parentID != folderID || known.name != stored.name);
        if (isKnownElsewhere && !liesAt(volume, folderID, stored.name, identity))
        {
            isCertain &= identity.birth != 0;
            folderID = known.id;
        }
        else
            folderID = rememberFolder(*volume, folderID, stored.name, identity);
    }
    return isCertain;
}

FSRef referenceFrom(const Volume &volume, UInt32 folderID, const StoredFile &row)
{
    const Identity identity = presentIdentityOf(volume, row.identity);
    ReferenceFields fields;
    fields.volume = volume.number;
    fields.parentID = folderID;
    fields.device = identity.device;
    fields.inode = identity.inode;
    fields.time = identity.birth;
    fields.timeIsBirth = identity.birth != 0;
    fields.exchanges = exchangesOf(identity);   // the row knows of those that were
    return writeReference(fields, row.name);
}

// Some editors keep what was there before under the name with a '~' and write the document anew: then the document is what has its name.
bool isKeptCopyOf(const std::string &name, const Object &found, UInt32 folderID)
{
    return found.parentID == folderID && found.name == name + '~';
}

bool findFileNamed(const VolumeHandle &volume, UInt32 folderID, const std::string &name, Object &object, OSErr &result)
{
    result = findNamed(volume, folderID, name, object);
    return result == noErr && !object.isFolder();
}

}   // namespace

std::string storedIdentityOf(const Volume &volume)
{
    struct statvfs disk;
    RootHandle handle;
    const bool isKnown =
        volume.root.open(Keeping::open, handle) == noErr && linux_calls::diskStatistics(handle->number(), disk) == 0 && disk.f_fsid != 0;
    const ObjectStatus &root = volume.rootStatus;
    char text[96];
    std::snprintf(text, sizeof text, "%016" PRIx64 " %" PRIu64 " %" PRIu64, isKnown ? std::uint64_t{disk.f_fsid} : 0, root.inode,
                  volume.comparesBirths ? packBirth(root.birth) : 0);
    return isKnown ? text : text + (' ' + volume.root.path());   // a disk that has no number of its own is known by its place
}

Identity storedIdentityOf(const Volume &volume, const Identity &identity)
{
    return {identity.device == volume.rootStatus.device ? 0 : identity.device, identity.inode, identity.birth};
}

Identity presentIdentityOf(const Volume &volume, const Identity &stored)
{
    return {stored.device == 0 ? volume.rootStatus.device : stored.device, stored.inode, volume.comparesBirths ? stored.birth : 0};
}

OSErr findRowOfFolder(const Volume &volume, RowNumber volumeRow, UInt32 folderID, RowNumber &row)
{
    Folder folder;
    StoredFolder stored;
    row = rootRow;
    if (folderID == fsRtDirID)
        return noErr;
    if (!recallFolder(volume, folderID, folder))
        return fidNotFound;
    const OSErr result = findFolderRow(volumeRow, storedIdentityOf(volume, folder.identity), stored);
    row = stored.number;
    return result;
}

OSErr giveRowToFolder(const Volume &volume, RowNumber volumeRow, UInt32 folderID, RowNumber &row)
{
    std::vector<Folder> way;
    if (!knownWay(volume, folderID, way))
        return dirNFErr;
    row = rootRow;
    for (const Folder &folder : way)
        if (OSErr result = bringFolderRowInLine(volume, volumeRow, folder, row, row))
            return result;
    return noErr;
}

bool meansFile(const StoredFile &row, const Identity &stored, RowNumber folder, const std::string &name)
{
    if (row.identity.inode != stored.inode || row.identity.device != stored.device)
        return false;
    const bool hasBirths = row.identity.birth != 0 && stored.birth != 0;
    return hasBirths ? row.identity.birth == stored.birth : row.folder == folder && row.name == name;
}

OSErr findFileOfRow(const VolumeHandle &volume, const StoredFile &row, const std::vector<StoredFolder> &way, Object &found, FoundBy &how)
{
    UInt32 folderID = 0;
    OSErr result = noErr;
    Object named;
    const bool isCertain = rememberWay(volume, way, folderID);
    const FSRef reference = referenceFrom(*volume, folderID, row);
    how = FoundBy::identity;
    const bool isFound = findObject(&reference, found) == noErr && !found.isFolder();
    if (isFound && !isKeptCopyOf(row.name, found, folderID))
        return noErr;
    if (isCertain && findFileNamed(volume, folderID, row.name, named, result))
    {
        how = FoundBy::nameAlone;
        found = std::move(named);
        return noErr;
    }
    if (isFound)
        return noErr;
    return result == noErr || result == dirNFErr ? static_cast<OSErr>(fnfErr) : result;
}

}   // namespace standin
