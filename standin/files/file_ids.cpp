#include "standin/files/file_ids.h"

#include "platform/platform.h"
#include "standin/files/block_lookup.h"
#include "standin/files/file_id_database.h"
#include "standin/files/file_id_places.h"
#include "standin/files/short_lookups.h"

#include <algorithm>
#include <deque>
#include <mutex>

using namespace standin;

namespace
{

// How long others' writing is waited for, in milliseconds: as for a folder's lock where an ID is asked for; hardly where it is only kept up with a change.
constexpr int patienceOfCalls = 2000, patienceOfNotes = 50, noPatience = 0;

// --- keeping up with changes of place ------------------------------------------------------------------------------------------------------

struct PlaceNote
{
    VolumeHandle volume;
    Identity identity;
    bool isFolder = false;
    UInt32 oldParentID = 0, newParentID = 0;
    std::string oldName, newName;
    bool isExchange = false;
    Identity other;   // of an exchange
};

struct NoteQueue
{
    static constexpr std::size_t most = 65536;
    std::mutex mutex;
    std::deque<PlaceNote> notes;   // the oldest first
};

NoteQueue &noteQueue()
{
    static NoteQueue queue;
    return queue;
}

// The folder's row if the database has it.
OSErr writeFolderNote(const PlaceNote &note, RowNumber volumeRow)
{
    StoredFolder folder;
    DatabaseTransaction transaction;
    const Identity stored = storedIdentityOf(*note.volume, note.identity);
    if (OSErr result = findFolderRow(volumeRow, stored, folder))
        return result;
    if (OSErr result = transaction.begin(DatabaseTransaction::writing))
        return result;
    if (OSErr result = giveRowToFolder(*note.volume, volumeRow, note.newParentID, folder.parent))
        return result;
    folder.name = note.newName;
    if (OSErr result = changeFolderRow(volumeRow, folder))
        return result;
    return transaction.commit();
}

OSErr changePlace(const Volume &volume, RowNumber volumeRow, StoredFile &file, UInt32 folderID, const std::string &name)
{
    if (OSErr result = giveRowToFolder(volume, volumeRow, folderID, file.folder))
        return result;
    file.name = name;
    return changeFileRow(volumeRow, file);
}

OSErr writeFileNote(const PlaceNote &note, RowNumber volumeRow)
{
    std::vector<StoredFile> files;
    RowNumber oldFolder = rootRow;
    DatabaseTransaction transaction;
    const Identity stored = storedIdentityOf(*note.volume, note.identity);
    if (OSErr result = findFileRowsByIdentity(volumeRow, stored, files); result != noErr || files.empty())
        return result;
    if (OSErr result = transaction.begin(DatabaseTransaction::writing))
        return result;
    findRowOfFolder(*note.volume, volumeRow, note.oldParentID, oldFolder);
    for (StoredFile &file : files)
        if (meansFile(file, stored, oldFolder, note.oldName))
            if (OSErr result = changePlace(*note.volume, volumeRow, file, note.newParentID, note.newName))
                return result;
    return transaction.commit();
}

OSErr giveIdentity(RowNumber volumeRow, std::vector<StoredFile> &files, const Identity &before, const Identity &now)
{
    for (StoredFile &file : files)
    {
        if (!sameObject(file.identity, before))
            continue;
        file.identity = now;
        if (OSErr result = changeFileRow(volumeRow, file))
            return result;
    }
    return noErr;
}

OSErr writeExchangeNote(const PlaceNote &note, RowNumber volumeRow)
{
    std::vector<StoredFile> firstFiles, secondFiles;
    DatabaseTransaction transaction;
    const Identity first = storedIdentityOf(*note.volume, note.identity), second = storedIdentityOf(*note.volume, note.other);
    if (OSErr result = findFileRowsByIdentity(volumeRow, first, firstFiles))
        return result;
    if (OSErr result = findFileRowsByIdentity(volumeRow, second, secondFiles))
        return result;
    if (firstFiles.empty() && secondFiles.empty())
        return noErr;
    if (OSErr result = transaction.begin(DatabaseTransaction::writing))
        return result;
    if (OSErr result = giveIdentity(volumeRow, firstFiles, first, second))
        return result;
    if (OSErr result = giveIdentity(volumeRow, secondFiles, second, first))
        return result;
    return transaction.commit();
}

OSErr writeNote(const PlaceNote &note)
{
    RowNumber volumeRow = 0;
    if (OSErr result = findVolumeRow(storedIdentityOf(*note.volume), volumeRow))
        return result;
    if (note.isExchange)
        return writeExchangeNote(note, volumeRow);
    return note.isFolder ? writeFolderNote(note, volumeRow) : writeFileNote(note, volumeRow);
}

// With the database open. Whatever else goes wrong with a note will not go better the next time.
void writeNotes(Database &database, int patience)
{
    database.setPatience(patience);
    const std::lock_guard lock(noteQueue().mutex);
    auto &notes = noteQueue().notes;
    while (!notes.empty() && writeNote(notes.front()) != fBsyErr)
        notes.pop_front();
}

// Where there are no IDs at all, that is looked for ten times a second at most.
void takeNote(PlaceNote note)
{
    if (databaseWasMissing())
        return;
    {
        const std::lock_guard lock(noteQueue().mutex);
        auto &notes = noteQueue().notes;
        notes.push_back(std::move(note));
        if (notes.size() > NoteQueue::most)
            notes.pop_front();
    }
    Database database(patienceOfNotes);
    const OSErr result = database.open(DatabaseUse::reading);
    if (result == noErr)
        return writeNotes(database, patienceOfNotes);
    if (result == fBsyErr)
        return;
    const std::lock_guard lock(noteQueue().mutex);
    noteQueue().notes.clear();   // there are no IDs, or none that can be read
}

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

OSErr createID(FIDParam &block)
{
    Object object;
    if (OSErr result = findByTriple(block.ioVRefNum, block.ioSrcDirID, block.ioNamePtr, object))
        return result;
    if (object.isFolder())
        return notAFileErr;
    Database database(patienceOfCalls);
    DatabaseTransaction transaction;
    NewID wanted{object, 0, 0, storedIdentityOf(*object.volume, object.identity()), 0};
    if (OSErr result = database.open(DatabaseUse::creating))
        return result;
    writeNotes(database, noPatience);
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
    writeNotes(database, noPatience);
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

OSErr resolveID(FIDParam &block)
{
    Object found;
    FoundBy how{};
    StoredPlace place;
    const VolumeHandle volume = findVolume(block.ioVRefNum);
    if (!volume)
        return nsvErr;
    if (OSErr result = readPlace(*volume, static_cast<UInt32>(block.ioFileID), place))
        return result;
    if (OSErr result = findFileOfRow(volume, place.file, place.way, found, how))
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

namespace standin
{

void noteMoveForFileIDs(const Object &object, UInt32 newParentID, const std::string &newName)
{
    PlaceNote note;
    note.volume = object.volume;
    note.identity = object.identity();
    note.isFolder = object.isFolder();
    note.oldParentID = object.parentID;
    note.oldName = object.name;
    note.newParentID = newParentID;
    note.newName = newName;
    takeNote(std::move(note));
}

void noteExchangeForFileIDs(const VolumeHandle &volume, const Identity &first, const Identity &second)
{
    PlaceNote note;
    note.volume = volume;
    note.identity = first;
    note.isExchange = true;
    note.other = second;
    takeNote(std::move(note));
}

}   // namespace standin

OSErr PBCreateFileIDRefSync(HParmBlkPtr block)
{
    return block ? block->fidParam.ioResult = createID(block->fidParam) : static_cast<OSErr>(paramErr);
}

OSErr PBResolveFileIDRefSync(HParmBlkPtr block)
{
    return block ? block->fidParam.ioResult = resolveID(block->fidParam) : static_cast<OSErr>(paramErr);
}
