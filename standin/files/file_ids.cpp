// File IDs: numbers by which a file is found again, also by another process and after it was renamed or moved.
#include "platform/platform.h"
#include "standin/files/block_lookup.h"
#include "standin/files/changes.h"
#include "standin/files/exchange_finishing.h"
#include "standin/files/file_id_database.h"
#include "standin/files/file_id_notes.h"
#include "standin/files/file_id_places.h"
#include "standin/files/short_lookups.h"

#include <algorithm>
#include <new>

using namespace standin;

namespace
{

// How long others' writing is waited for, in milliseconds: as for a folder's lock.
constexpr int patienceOfCalls = 2000, noPatience = 0;

// --- creating ------------------------------------------------------------------------------------------------------------------------------

struct NewID
{
    const Object &object;
    RowNumber volumeRow = 0, folderRow = 0;
    Identity stored;
    UInt32 id = 0;
};

// A row of the file itself, wherever it was before.
OSErr findRowOfFile(NewID &wanted)
{
    std::vector<StoredFile> files;
    if (OSErr result = findFileRowsByIdentity(wanted.volumeRow, wanted.stored, files))
        return result;
    for (StoredFile &file : files)
    {
        if (!meansFile(file, wanted.stored, wanted.folderRow, wanted.object.name))
            continue;
        wanted.id = file.id;
        if (file.folder == wanted.folderRow && file.name == wanted.object.name)
            return fidExists;
        const OSErr result = changePlace(*wanted.object.volume, wanted.volumeRow, file, wanted.object.parentID, wanted.object.name);
        return result == noErr ? static_cast<OSErr>(fidExists) : result;
    }
    return noErr;
}

// A row of the file that was here before: this one has come in its place if that one is nowhere. From now on the ID goes by this one.
OSErr takeOverRow(NewID &wanted, StoredFile &file)
{
    Object found;
    FoundBy how{};
    std::vector<StoredFolder> way;
    if (OSErr result = findFolderRows(wanted.volumeRow, file.folder, way))
        return result;
    if (findFileOfRow(wanted.object.volume, file, way, found, how) != noErr)
        return noErr;
    if (how == FoundBy::identity)
        return changePlace(*found.volume, wanted.volumeRow, file, found.parentID, found.name);   // it lies elsewhere: that is noted
    if (!sameObject(found.identity(), wanted.object.identity()))
        return noErr;
    wanted.id = file.id;
    file.identity = wanted.stored;
    const OSErr result = changeFileRow(wanted.volumeRow, file);
    return result == noErr ? static_cast<OSErr>(fidExists) : result;
}

OSErr findRowOfPlace(NewID &wanted)
{
    std::vector<StoredFile> files;
    if (OSErr result = findFileRowsByPlace(wanted.volumeRow, wanted.folderRow, wanted.object.name, files))
        return result;
    for (StoredFile &file : files)
        if (OSErr result = takeOverRow(wanted, file))
            return result;
    return noErr;
}

// Result: noErr for a new ID, fidExists for one that was there; both are to be committed.
OSErr giveID(NewID &wanted)
{
    const Object &object = wanted.object;
    if (OSErr result = findOrAddVolumeRow(storedIdentityOf(*object.volume), wanted.volumeRow))
        return result;
    if (OSErr result = giveRowToFolder(*object.volume, wanted.volumeRow, object.parentID, wanted.folderRow))
        return result;
    if (OSErr result = findRowOfFile(wanted))
        return result;
    if (OSErr result = findRowOfPlace(wanted))
        return result;
    StoredFile file{0, wanted.folderRow, object.name, wanted.stored};
    const OSErr result = addFileRow(wanted.volumeRow, file);
    wanted.id = file.id;
    return result;
}

// A file whose exchange was cut off gets its ID when that is over: until then its IDs may be those of another place.
OSErr findFinished(const FIDParam &block, Object &object)
{
    const auto find = [&] { return findByTriple(block.ioVRefNum, block.ioSrcDirID, block.ioNamePtr, object); };
    const OSErr result = find();
    return result == noErr && finishExchangeIfCutOff(object) ? find() : result;
}

OSErr createID(FIDParam &block)
{
    Object object;
    if (OSErr result = findFinished(block, object))
        return result;
    if (object.isFolder())
        return notAFileErr;
    // Who exchanges the file looks for its IDs under this lock, and if there are none writes nothing that would lead them back were it killed.
    const FSRef reference = makeReference(object);
    ChangeLock lock(LockedFor::looking);
    if (OSErr result = findAndLock(&reference, object, lock))
        return result;
    Database database(patienceOfCalls);
    DatabaseTransaction transaction;
    NewID wanted{object, 0, 0, storedIdentityOf(*object.volume, object.identity()), 0};
    if (OSErr result = database.open(DatabaseUse::creating))
        return result;
    writeNotesForFileIDs(database, noPatience);
    database.setPatience(patienceOfCalls);
    if (OSErr result = transaction.begin(DatabaseTransaction::writing))
        return result;
    const OSErr given = giveID(wanted);
    if (given != noErr && given != fidExists)
        return given;
    if (OSErr result = transaction.commit())
        return result;
    block.ioFileID = static_cast<SInt32>(wanted.id);
    return given;
}

// --- resolving -----------------------------------------------------------------------------------------------------------------------------

struct StoredPlace
{
    RowNumber volumeRow = 0;
    StoredFile file;
    std::vector<StoredFolder> way;
};

OSErr readPlace(const Volume &volume, UInt32 id, StoredPlace &place)
{
    Database database(patienceOfCalls);
    DatabaseTransaction transaction;
    if (OSErr result = database.open(DatabaseUse::reading))
        return result;
    writeNotesForFileIDs(database, noPatience);
    database.setPatience(patienceOfCalls);
    if (OSErr result = transaction.begin(DatabaseTransaction::reading))
        return result;
    if (OSErr result = findVolumeRow(storedIdentityOf(volume), place.volumeRow))
        return result;
    if (OSErr result = findFileRow(place.volumeRow, id, place.file))
        return result;
    return findFolderRows(place.volumeRow, place.file.folder, place.way);
}

bool isWhereItWas(const Object &found, const StoredPlace &place)
{
    Folder parent;
    if (found.name != place.file.name)
        return false;
    if (place.way.empty() || found.parentID == fsRtDirID)
        return place.way.empty() && found.parentID == fsRtDirID;
    return recallFolder(*found.volume, found.parentID, parent) &&
           sameObject(parent.identity, presentIdentityOf(*found.volume, place.way.back().identity));
}

// Other programs rename without a word to us. Whether it could be written is of no interest to who asked for the file.
void noteWhereFound(const Object &found, StoredPlace &place)
{
    Database database(noPatience);
    DatabaseTransaction transaction;
    if (isWhereItWas(found, place) || database.open(DatabaseUse::reading) != noErr ||
        transaction.begin(DatabaseTransaction::writing) != noErr)
        return;
    StoredFile now;
    const bool isUnchanged = findFileRow(place.volumeRow, place.file.id, now) == noErr && sameObject(now.identity, place.file.identity);
    if (isUnchanged && changePlace(*found.volume, place.volumeRow, now, found.parentID, found.name) == noErr)
        transaction.commit();
}

OSErr findFileOfID(const VolumeHandle &volume, UInt32 id, StoredPlace &place, Object &found, FoundBy &how)
{
    if (OSErr result = readPlace(*volume, id, place))
        return result;
    return findFileOfRow(volume, place.file, place.way, found, how);
}

OSErr resolveID(FIDParam &block)
{
    Object found;
    FoundBy how{};
    StoredPlace place;
    const auto id = static_cast<UInt32>(block.ioFileID);
    const VolumeHandle volume = findVolume(block.ioVRefNum);
    if (!volume)
        return nsvErr;
    if (OSErr result = findFileOfID(volume, id, place, found, how))
        return result;
    if (how == FoundBy::identity && !isWhereItWas(found, place) && finishExchangeIfCutOff(found))
        if (OSErr result = findFileOfID(volume, id, place, found, how))
            return result;
    if (how == FoundBy::identity)
        noteWhereFound(found, place);
    Str63 name;
    makeShortName(found, name);
    if (block.ioNamePtr)
        std::copy_n(name, name[0] + 1, block.ioNamePtr);
    block.ioSrcDirID = static_cast<SInt32>(found.parentID);
    return noErr;
}

}   // namespace

OSErr PBCreateFileIDRefSync(HParmBlkPtr block)
try
{
    return block ? block->fidParam.ioResult = createID(block->fidParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->fidParam.ioResult = memFullErr;
}

OSErr PBResolveFileIDRefSync(HParmBlkPtr block)
try
{
    return block ? block->fidParam.ioResult = resolveID(block->fidParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->fidParam.ioResult = memFullErr;
}
