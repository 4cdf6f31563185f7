#include "standin/files/file_id_notes.h"

#include "standin/files/file_id_database.h"
#include "standin/files/file_id_places.h"
#include "standin/files/linux_users.h"

#include <cstdlib>
#include <deque>
#include <mutex>

namespace standin
{

namespace
{

// In milliseconds: hardly, where a change goes on meanwhile; as for a folder's lock where the process ends and there is no later.
constexpr int patienceOfNotes = 50, patienceAtExit = 2000;

enum class NoteKind
{
    fileMoved,
    folderMoved,
    exchanged,
    arrived,   // at the end of an exchange that was cut off
};

struct PlaceNote
{
    NoteKind kind{};
    VolumeHandle volume;
    Identity identity;
    UInt32 oldParentID = 0, newParentID = 0;
    std::string oldName, newName;
    Identity other;   // of an exchange: the other file, whose birth need not be known once it is over
};

struct NoteQueue
{
    static constexpr std::size_t most = 65536;
    std::mutex mutex;
    std::deque<PlaceNote> notes;   // the oldest first
    int process = 0;               // whose they are
};

NoteQueue &noteQueue()
{
    static auto *queue = new NoteQueue;   // still there while the process ends
    return *queue;
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

// The IDs of the place go by the file that has come there. Those that already do were written before the exchange was cut off.
OSErr writeArrivalNote(const PlaceNote &note, RowNumber volumeRow)
{
    std::vector<StoredFile> files;
    RowNumber folder = rootRow;
    DatabaseTransaction transaction;
    const Identity stored = storedIdentityOf(*note.volume, note.identity);
    if (OSErr result = findRowOfFolder(*note.volume, volumeRow, note.newParentID, folder))
        return result;
    if (OSErr result = findFileRowsByPlace(volumeRow, folder, note.newName, files); result != noErr || files.empty())
        return result;
    if (OSErr result = transaction.begin(DatabaseTransaction::writing))
        return result;
    if (OSErr result = giveIdentity(volumeRow, files, storedIdentityOf(*note.volume, note.other), stored))
        return result;
    return transaction.commit();
}

OSErr writeNote(const PlaceNote &note)
{
    RowNumber volumeRow = 0;
    if (OSErr result = findVolumeRow(storedIdentityOf(*note.volume), volumeRow))
        return result;
    switch (note.kind)
    {
    case NoteKind::fileMoved: return writeFileNote(note, volumeRow);
    case NoteKind::folderMoved: return writeFolderNote(note, volumeRow);
    case NoteKind::exchanged: return writeExchangeNote(note, volumeRow);
    case NoteKind::arrived: return writeArrivalNote(note, volumeRow);
    }
    return noErr;
}

// With the queue's mutex held. A process that was forked off leaves to its parent what waited there.
void leaveNotesToParent()
{
    const int self = linux_calls::processNumber();
    if (noteQueue().process != self)
        noteQueue().notes.clear();
    noteQueue().process = self;
}

bool notesWait()
{
    const std::lock_guard lock(noteQueue().mutex);
    leaveNotesToParent();
    return !noteQueue().notes.empty();
}

void writeNotesAtExit()
{
    if (!notesWait())
        return;
    Database database(patienceAtExit);
    if (database.open(DatabaseUse::reading) == noErr)
        writeNotesForFileIDs(database, patienceAtExit);
}

void keepNote(PlaceNote note)
{
    [[maybe_unused]] static const int registered = std::atexit(writeNotesAtExit);
    const std::lock_guard lock(noteQueue().mutex);
    leaveNotesToParent();
    auto &notes = noteQueue().notes;
    notes.push_back(std::move(note));
    if (notes.size() > NoteQueue::most)
        notes.pop_front();
}

// Where there are no IDs at all, that is looked for ten times a second at most.
void takeNote(PlaceNote note)
{
    if (databaseWasMissing())
        return;
    keepNote(std::move(note));
    Database database(patienceOfNotes);
    const OSErr result = database.open(DatabaseUse::reading);
    if (result == noErr)
        return writeNotesForFileIDs(database, patienceOfNotes);
    if (result == fBsyErr)
        return;
    const std::lock_guard lock(noteQueue().mutex);
    noteQueue().notes.clear();   // there are no IDs, or none that can be read
}

// The folder that a file came from: its own, or one that this process has met.
bool findFolderLeft(const Object &object, const ExchangeJournal &journal, UInt32 &folderID)
{
    Folder folder;
    folderID = object.parentID;
    if (journal.from.folder == journal.to.folder)
        return true;
    const bool isKnown = recallFolder(*object.volume, Identity{object.status.device, journal.from.folder, 0}, folder);
    folderID = folder.id;
    return isKnown;
}

void noteArrival(const Object &object, std::uint64_t partner)
{
    PlaceNote note;
    note.kind = NoteKind::arrived;
    note.volume = object.volume;
    note.identity = object.identity();
    note.newParentID = object.parentID;
    note.newName = object.name;
    note.other = {object.status.device, partner, 0};
    takeNote(std::move(note));
}

}   // namespace

bool mayHaveFileID(const Volume &volume, const Identity &first, const Identity &second)
{
    if (databaseWasMissing())
        return false;
    Database database(patienceOfNotes);
    OSErr result = database.open(DatabaseUse::reading);
    if (result != noErr)
        return result != fidNotFound;
    writeNotesForFileIDs(database, patienceOfNotes);
    if (notesWait())
        return true;
    RowNumber volumeRow = 0;
    std::vector<StoredFile> files;
    result = findVolumeRow(storedIdentityOf(volume), volumeRow);
    for (const Identity *each : {&first, &second})
        if (result == noErr && files.empty())
            result = findFileRowsByIdentity(volumeRow, storedIdentityOf(volume, *each), files);
    return !files.empty() || (result != noErr && result != fidNotFound);
}

void noteMoveForFileIDs(const Object &object, UInt32 newParentID, const std::string &newName)
{
    if (databaseWasMissing())
        return;
    PlaceNote note;
    note.kind = object.isFolder() ? NoteKind::folderMoved : NoteKind::fileMoved;
    note.volume = object.volume;
    note.identity = object.identity();
    note.oldParentID = object.parentID;
    note.oldName = object.name;
    note.newParentID = newParentID;
    note.newName = newName;
    takeNote(std::move(note));
}

void noteExchangeForFileIDs(const VolumeHandle &volume, const Identity &first, const Identity &second)
{
    PlaceNote note;
    note.kind = NoteKind::exchanged;
    note.volume = volume;
    note.identity = first;
    note.other = second;
    takeNote(std::move(note));
}

void noteFinishedExchangeForFileIDs(const Object &object, const ExchangeJournal &journal)
{
    UInt32 folderID = 0;
    Object partner;
    noteArrival(object, journal.partner);
    if (findFolderLeft(object, journal, folderID) && findNamed(object.volume, folderID, journal.from.name, partner) == noErr &&
        partner.status.inode == journal.partner)
        noteArrival(partner, journal.file);
}

// Whatever else goes wrong with a note will not go better the next time.
void writeNotesForFileIDs(Database &database, int patience)
{
    database.setPatience(patience);
    const std::lock_guard lock(noteQueue().mutex);
    leaveNotesToParent();
    auto &notes = noteQueue().notes;
    while (!notes.empty() && writeNote(notes.front()) != fBsyErr)
        notes.pop_front();
}

OSErr changePlace(const Volume &volume, RowNumber volumeRow, StoredFile &file, UInt32 folderID, const std::string &name)
{
    if (OSErr result = giveRowToFolder(volume, volumeRow, folderID, file.folder))
        return result;
    file.name = name;
    return changeFileRow(volumeRow, file);
}

}   // namespace standin
