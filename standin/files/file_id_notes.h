// Keeping the database of file IDs up with changes of place that this layer makes.
//
// A note is written at once if it can be. What another process's writing holds up waits for the next call that uses the database, or for the end of this
// process. Nothing here fails, and where this user has no file IDs it costs one look for the database in a tenth of a second at most.
// None of these is to be called while a PlaceChange is held.
#pragma once

#include "standin/files/exchange_journal.h"
#include "standin/files/file_id_store.h"
#include "standin/files/references.h"

#include <string>

namespace standin
{

class Database;

// False if it is sure that neither of two files has an ID. As an ID is given with the folder's lock held, it stays so as long as the caller holds that.
bool mayHaveFileID(const Volume &volume, const Identity &first, const Identity &second);

// This process gave an object another place: `object` is as it was before.
void noteMoveForFileIDs(const Object &object, UInt32 newParentID, const std::string &newName);

// Two files have changed places: IDs stay with the places.
void noteExchangeForFileIDs(const VolumeHandle &volume, const Identity &first, const Identity &second);

// The same where the exchange was cut off: `object` has arrived where its journal says. Noting it twice, or once more than the exchange itself did, changes
// nothing.
void noteFinishedExchangeForFileIDs(const Object &object, const ExchangeJournal &journal);

// Writes what waits, with the database open. `patience` as for Database.
void writeNotesForFileIDs(Database &database, int patience);

// Gives a file's row another place. In a transaction.
OSErr changePlace(const Volume &volume, RowNumber volumeRow, StoredFile &file, UInt32 folderID, const std::string &name);

}   // namespace standin
