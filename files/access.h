// Access privileges of directories, users and groups, file IDs, and the default directory. What holds for every function
// of the toolkit is told in files/fstoolkit.h.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// Gives a directory's owner, group and access rights.
//
// The access rights are bits: 0 to 2 the owner's right to search, read and write, 8 to 10 the group's, 16 to 18
// everyone's, 28 for blank access privileges (those of the enclosing directory); the others are as the File Manager
// reports them. Each output may be null; with all three null the same question is still asked.
//
// Result: noErr; otherwise the code of FSGetCatalogInfo or PBHGetDirAccessSync, unchanged.
OSErr FSGetDirAccess(const FSRef *ref, SInt32 *ownerID, SInt32 *groupID, UInt32 *accessRights);

// Sets a directory's owner, group and access rights, all three at once.
//
// Of `accessRights` the bits of the mask 0x10070707 are passed on: the rights of owner, group and everyone and the bit
// for blank access privileges. All others are dropped.
//
// Result: noErr; otherwise the code of FSGetCatalogInfo or PBHSetDirAccessSync, unchanged.
OSErr FSSetDirAccess(const FSRef *ref, SInt32 ownerID, SInt32 groupID, UInt32 accessRights);

// Gives the name of the user or group that has the ID `ugID`.
//
// `objType` is 1 for a user and 2 for a group, and is handed to the File Manager as it is. `name` is a Str31, filled by
// the File Manager itself.
//
// Result: noErr; paramErr if `name` is null; otherwise PBHMapIDSync's code, unchanged.
OSErr FSMapID(FSVolumeRefNum volRefNum, SInt32 ugID, SInt16 objType, unsigned char *name);

// Gives the ID of the user or group called `name`.
//
// `objType` is 3 for a user and 4 for a group. Both it and `name` are handed to the File Manager as they are; `name` is
// only read.
//
// Result: noErr; paramErr if `ugID` is null; otherwise PBHMapNameSync's code, unchanged.
OSErr FSMapName(FSVolumeRefNum volRefNum, ConstStr255Param name, SInt16 objType, SInt32 *ugID);

// Gives a file an ID by which it can be found again after it was renamed or moved, and tells that ID.
//
// A file that already has one keeps it: then the result is fidExists (or afpIDExists on a server's volume), which is no
// failure, and `fileID` holds the ID all the same.
//
// Result: noErr, fidExists or afpIDExists, with `fileID` filled; paramErr if `fileID` is null; otherwise the code of
// FSGetCatalogInfo or PBCreateFileIDRefSync, unchanged, with nothing written.
OSErr FSCreateFileIDRef(const FSRef *ref, UInt32 *fileID);

// Gives a reference to the file of the volume `volRefNum` that has the ID `fileID`.
//
// Result: noErr; paramErr if `ref` is null; otherwise the code of PBResolveFileIDRefSync or PBMakeFSRefSync, unchanged.
OSErr FSResolveFileIDRef(FSVolumeRefNum volRefNum, UInt32 fileID, FSRef *ref);

// Makes a directory the default one of this process, and gives a reference to the one that was it before.
//
// Give `oldDefault` to FSRestoreDefault to go back. Calls may nest. `oldDefault` is filled before the default is
// changed, so it is valid even where that last step fails and the default has stayed.
//
// Result: noErr; paramErr if an argument is null; dirNFErr if `newDefault` names a file; otherwise the code of
// FSGetCatalogInfo, HGetVol, PBMakeFSRefSync or HSetVol, unchanged.
OSErr FSSetDefault(const FSRef *newDefault, FSRef *oldDefault);

// Makes the directory that was the default one the default again.
//
// Result: noErr; paramErr if `oldDefault` is null; dirNFErr if it names a file; otherwise the code of FSGetCatalogInfo or
// HSetVol, unchanged.
OSErr FSRestoreDefault(const FSRef *oldDefault);
}
#pragma GCC visibility pop
