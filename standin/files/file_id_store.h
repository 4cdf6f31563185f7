// What is kept of files that have an ID: rows of volumes, folders and files, without any look at the disk that they lie on.
#pragma once

#include "platform/platform.h"
#include "standin/files/nodes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace standin
{

using RowNumber = std::int64_t;
constexpr RowNumber rootRow = 0;   // the folder that every volume has

// A folder, and those above it up to the volume's root, the nearest to the root first. Its own is the last. Empty for the root.
struct StoredFolder
{
    RowNumber number = rootRow, parent = rootRow;
    std::string name;
    Identity identity;   // device 0 is that of the volume's root, whose number may change from one day to the next
};

struct StoredFile
{
    UInt32 id = 0;
    RowNumber folder = rootRow;
    std::string name;
    Identity identity;
};

// All with the database open and, where they write, inside a transaction. Results: noErr; fidNotFound where there is no such row;
// ioErr for rows that make no sense; the database's codes.

OSErr findVolumeRow(const std::string &identity, RowNumber &volume);
OSErr findOrAddVolumeRow(const std::string &identity, RowNumber &volume);

OSErr findFileRow(RowNumber volume, UInt32 id, StoredFile &file);
OSErr findFileRowsByIdentity(RowNumber volume, const Identity &identity, std::vector<StoredFile> &files);   // also such with another birth
OSErr findFileRowsByPlace(RowNumber volume, RowNumber folder, const std::string &name, std::vector<StoredFile> &files);

OSErr addFileRow(RowNumber volume, StoredFile &file);   // gives it its ID
OSErr changeFileRow(RowNumber volume, const StoredFile &file);

OSErr findFolderRows(RowNumber volume, RowNumber folder, std::vector<StoredFolder> &way);
OSErr findFolderRow(RowNumber volume, const Identity &identity, StoredFolder &folder);
OSErr addFolderRow(RowNumber volume, StoredFolder &folder);   // gives it its number
OSErr changeFolderRow(RowNumber volume, const StoredFolder &folder);

}   // namespace standin
