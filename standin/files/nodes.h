// Which object is which: identities, node IDs, and what is known of the folders that were met.
//
// A node ID is 2 for a volume's root, the inode number where that is 16..0x7FFFFFFF on the root's own device, and else 0x80000000 with 31 bits of a hash
// of device and inode. Folders are remembered and an ID never changes its meaning; a file's ID is unique only in its folder and while the file lives.
#pragma once

#include "platform/platform.h"
#include "standin/files/volumes.h"

#include <string>
#include <string_view>

namespace standin
{

// A time of birth, packed so that earlier is smaller; 0 where the disk has none or it is not to be trusted.
using Birth = std::uint64_t;
Birth packBirth(const std::timespec &time);

// Tells one object from every other, also from a later one that takes over its inode number.
struct Identity
{
    std::uint64_t device = 0, inode = 0;
    Birth birth = 0;
};
Identity identityOf(const Volume &volume, const ObjectStatus &status);

// Device and inode agree, and the births where both are known.
bool sameObject(const Identity &a, const Identity &b);

struct Folder
{
    UInt32 id = 0, parentID = 0;
    std::string name;   // on disk, in its parent; "." for a root
    Identity identity;
};

// The ID of an object that is no folder.
UInt32 nodeIDOf(const Volume &volume, const Identity &identity);

// The ID of a folder, which is remembered with where it lies now. A deleted folder stays remembered: its ID must not come to mean another one.
UInt32 rememberFolder(const Volume &volume, UInt32 parentID, std::string_view name, const Identity &identity);

// What is remembered of a folder. False if none has the ID.
bool recallFolder(const Volume &volume, UInt32 id, Folder &folder);

// The same, by identity.
bool recallFolder(const Volume &volume, const Identity &identity, Folder &folder);

void forgetFoldersOf(FSVolumeRefNum volume);
void forgetAllFolders();

}   // namespace standin
