// Volumes: their parameters, names, sizes and identity, which are mounted, and how one is mounted again. What holds for
// every function of the toolkit is told in files/fstoolkit.h.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// Gives a volume's parameters: what services it offers, among other things.
//
// At most `bufferSize` bytes of the record are filled (the whole record has 32), and `actualInfoSize` tells how many
// were. Fields beyond that are left as they were.
//
// Result: noErr; paramErr if `volParmsInfo` or `actualInfoSize` is null; otherwise PBHGetVolParmsSync's code, unchanged.
OSErr FSGetVolParms(FSVolumeRefNum volRefNum, UInt32 bufferSize, GetVolParmsInfoBuffer *volParmsInfo, UInt32 *actualInfoSize);

// Gives the reference number of the volume that the object lies on.
//
// Result: noErr; paramErr if `vRefNum` is null; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSGetVRefNum(const FSRef *ref, FSVolumeRefNum *vRefNum);

// Gives a volume's name in UTF-16, its free bytes and the bytes that it has in all.
//
// Each output may be null; with all three null the volume is still asked for, which makes the call a test of its
// reference number. The counts are the File Manager's own. The name is filled by the File Manager itself, so after a
// failure it holds whatever that left there.
//
// Result: noErr; otherwise FSGetVolumeInfo's code (nsvErr if there is no such volume), unchanged.
OSErr FSGetVInfo(FSVolumeRefNum volume, HFSUniStr255 *volumeName, UInt64 *freeBytes, UInt64 *totalBytes);

// Gives the ID of a volume's file system and its signature.
//
// Either output may be null; with both null the same question is still asked.
//
// Result: noErr; otherwise FSGetVolumeInfo's code, unchanged.
OSErr FSGetVolFileSystemID(FSVolumeRefNum volume, UInt16 *fileSystemID, UInt16 *signature);

// Lists the mounted volumes: a reference to the root folder of each, 80 bytes apiece, back to back, in the order of the
// File Manager's volume index.
//
// The handle belongs to the caller, who disposes of it with DisposeHandle. There is never a part of a list: after a
// failure `volumeRefsHandle` holds a null handle and `numVolumes` is 0.
//
// Result: noErr; paramErr if an output is null, and then nothing is written; memFullErr if there is no memory for an
// empty handle; MemError's code if the handle cannot grow; otherwise FSGetVolumeInfo's code, except for nsvErr, which
// ends the list.
OSErr FSGetMountedVolumes(Handle *volumeRefsHandle, UInt32 *numVolumes);

// Gives the size, in bytes, of the record from which the volume can be mounted again.
//
// Result: noErr; paramErr if `size` is null; otherwise PBGetVolMountInfoSize's code, unchanged.
OSErr FSGetVolMountInfoSize(FSVolumeRefNum volRefNum, SInt16 *size);

// Gives the record from which the volume can be mounted again. It may be kept for as long as wanted; its contents are
// the File Manager's business.
//
// `volMountInfo` must have room for as many bytes as FSGetVolMountInfoSize tells.
//
// Result: noErr; paramErr if `volMountInfo` is null; otherwise PBGetVolMountInfo's code, unchanged.
OSErr FSGetVolMountInfo(FSVolumeRefNum volRefNum, void *volMountInfo);

// Mounts a volume from a record that FSGetVolMountInfo gave, and tells its reference number.
//
// `volMountInfo` is handed to the File Manager as it is, a null one included.
//
// Result: noErr; paramErr if `volRefNum` is null; otherwise PBVolumeMount's code, unchanged.
OSErr FSVolumeMount(const void *volMountInfo, FSVolumeRefNum *volRefNum);
}
#pragma GCC visibility pop
