// Open folders: descriptors for the folders that work goes on in, bounded in number, found again when they were closed or moved.
#pragma once

#include "platform/platform.h"
#include "standin/files/nodes.h"

#include <memory>

namespace standin
{

using FolderHandle = std::shared_ptr<const Descriptor>;   // O_PATH; stays open while somebody holds it

enum class Anchoring
{
    recent,   // a descriptor used within the last second is taken as it is
    anew,     // the way from the volume's root is gone again: before a deletion
};

// Opens a folder by its ID. Neither links nor mounts are crossed on the way.
// Result: noErr; dirNFErr if the ID is unknown, or the folder is gone or cannot be found again.
OSErr openFolder(const Volume &volume, UInt32 id, FolderHandle &handle, Anchoring anchoring = Anchoring::recent);

// Finds out where an open folder lies now, remembers the way, and gives its ID. dirNFErr if it does not lie on the volume.
OSErr anchorFolder(const Volume &volume, int folder, UInt32 &id);

// A folder was deleted: where the disk has no births, the next one with its inode number must not be taken for it.
void forgetDirectory(const Volume &volume, const Identity &identity);

// Closes those on mounted disks that nobody has used since a moment of linux_calls::milliseconds(). The result is how many stay open there.
std::size_t closeIdleDirectories(std::int64_t usedBefore);

void forgetDirectoriesOf(FSVolumeRefNum volume);
void forgetAllDirectories();

}   // namespace standin
