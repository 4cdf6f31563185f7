// Rows of the database of file IDs ↔ objects on the disks.
#pragma once

#include "standin/files/file_id_store.h"
#include "standin/files/references.h"

#include <string>

namespace standin
{

// What a volume is known by in the database: its disk and which folder of it is the root.
std::string storedIdentityOf(const Volume &volume);

Identity storedIdentityOf(const Volume &volume, const Identity &identity);   // devices as the database has them
Identity presentIdentityOf(const Volume &volume, const Identity &stored);    // and back

// The row of a folder that was met. The first does not write; the second adds and corrects what is needed, and the folders above likewise.
OSErr findRowOfFolder(const Volume &volume, RowNumber volumeRow, UInt32 folderID, RowNumber &row);
OSErr giveRowToFolder(const Volume &volume, RowNumber volumeRow, UInt32 folderID, RowNumber &row);

// Whether a row means this very file. Where there are no births an inode number alone says nothing, for it may be another file's by now: then the file must
// be where the row says, in the folder of row `folder` under `name`.
bool meansFile(const StoredFile &row, const Identity &stored, RowNumber folder, const std::string &name);

enum class FoundBy
{
    identity,
    nameAlone,   // another file has come in its place, as when an editor saves
};

// Finds the file of a row. `way`: the folders that it lies in. Result: noErr; fnfErr; the disk's code.
OSErr findFileOfRow(const VolumeHandle &volume, const StoredFile &row, const std::vector<StoredFolder> &way, Object &found, FoundBy &how);

}   // namespace standin
