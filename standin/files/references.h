// References: the 80 bytes of an FSRef ↔ an object on a disk.
//
// A reference holds volume, parent folder's ID, device and inode, the name (or a hash of it, if it is longer than 48 bytes) and a time: the object's exact
// birth where its status was asked for, else the moment at which a listing showed it. A keyed check sum tells a reference of this process from other bytes.
#pragma once

#include "platform/platform.h"
#include "standin/files/directories.h"
#include "standin/files/listings.h"

#include <string>
#include <string_view>
#include <vector>

namespace standin
{

// An object that was found, with the status that it had then.
struct Object
{
    VolumeHandle volume;
    UInt32 parentID = 0;
    FolderHandle folder;   // the parent; for a volume's root the root itself
    std::string name;      // on disk; "." for a root
    ObjectStatus status;
    bool sidecarIsAbsent = false;   // a listing showed that it has none: nobody needs to look

    bool isRoot() const { return name == "."; }
    bool isFolder() const { return status.isFolder(); }
    Identity identity() const { return identityOf(*volume, status); }
    // The object's ID; a folder is remembered with it.
    UInt32 nodeID() const;
    // A folder mounted over: it stands for an empty folder.
    bool isMountPoint() const { return status.isMountPoint && !isRoot(); }
};

// Finds the object that a reference names: under its own name, where this process moved it, under another name in the same folder,
// or by its inode number where the process may. Result: noErr; paramErr for null; errFSBadFSRef for bytes that are no reference; nsvErr; fnfErr; dirNFErr.
OSErr findObject(const FSRef *reference, Object &object);

// The same for an object whose volume and folder the caller opened just now: they are not opened once more if the reference names them.
OSErr findObjectInOpenFolder(const FSRef *reference, Object &object);

// The same, but the folder must be found from the volume's root anew: before a deletion.
OSErr findObjectAnew(const FSRef *reference, Object &object);

// Looks a name up in a folder by its disk name. Result: noErr; fnfErr; dirNFErr.
OSErr findNamed(const VolumeHandle &volume, UInt32 parentID, const std::string &diskName, Object &object);

// Tries disk names in order.
OSErr findFirstNamed(const VolumeHandle &volume, UInt32 parentID, const std::vector<std::string> &diskNames, Object &object);

OSErr findRoot(const VolumeHandle &volume, Object &object);
OSErr findFolder(const VolumeHandle &volume, UInt32 id, Object &object);

// Opens an object by its place, never waiting, and makes sure that it is the very object and no other that took its name meanwhile.
// Result: noErr; fnfErr if it is another one; the disk's code.
OSErr openItself(const Object &object, int flags, Descriptor &itself);

// Whether an object that has its own name is the one that a reference means.
struct ReferenceFields;
bool isMeant(const ReferenceFields &fields, const Identity &identity);

// The reference to an object whose status was asked for.
FSRef makeReference(const Object &object);

// The reference to an object's parent folder; 80 zero bytes for a volume's root.
FSRef makeParentReference(const Object &object);

}   // namespace standin
