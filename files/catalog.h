// Catalog and Finder information. What holds for every function of the toolkit is told in files/fstoolkit.h.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// Gives the FSSpec (volume, parent directory ID and short name) of the object that `ref` names.
//
// Result: noErr; paramErr if `spec` is null; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSRefMakeFSSpec(const FSRef *ref, FSSpec *spec);

// Makes a reference to the object called `name` in the directory `dirID` of the volume `volRefNum`.
//
// The three are handed on as they are and read as the File Manager reads them in every parameter block; with a null
// `name` the directory itself is meant. `name` is a length-prefixed string and is only read. The object must exist.
//
// Result: noErr; paramErr if `newRef` is null; otherwise PBMakeFSRefSync's code, unchanged.
OSErr FSMakeFSRef(FSVolumeRefNum volRefNum, SInt32 dirID, ConstStr255Param name, FSRef *newRef);

// Says whether `ref` names an object that exists and can be reached.
//
// Result: 1 if the File Manager finds the object, 0 if it reports any error at all. The answer is true for the moment
// of the call only: the object may be gone when it is next used.
Boolean FSRefValid(const FSRef *ref);

// Gives a reference to the folder that holds the object.
//
// The root folder of a volume has no parent: for it the result is noErr and all 80 bytes of `parentRef` are zero, which
// is no reference to anything.
//
// Result: noErr; paramErr if `parentRef` is null; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSGetParentRef(const FSRef *ref, FSRef *parentRef);

// Gives the object's own name in UTF-16, without any path; for the root folder that is the name of the volume.
//
// Result: noErr; paramErr if `outName` is null; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSGetFileDirName(const FSRef *ref, HFSUniStr255 *outName);

// Gives the object's node ID (for a folder: its directory ID) and whether it is a folder.
//
// Either output may be null. With both null the File Manager is still asked, for nothing, which makes the call a test
// of the reference that tells the reason. `isDirectory` becomes 1 for a folder and 0 for a file.
//
// Result: noErr; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSGetNodeID(const FSRef *ref, SInt32 *nodeID, Boolean *isDirectory);

// Gives the current user's privileges on the object and its permissions.
//
// `userPrivileges` is the byte of that name of the catalog record; `permissions` are its four words (16 bytes), laid out
// as FSPermissionInfo. Either may be null; with both null the reference is still tested.
//
// Result: noErr; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSGetUserPrivilegesPermissions(const FSRef *ref, UInt8 *userPrivileges, UInt32 permissions[4]);

// Says whether the object can be changed, as far as locks go: its own, then its volume's.
//
// The first lock found is the answer, in this order: the object's own, the volume's hardware lock, the volume's software
// lock. So a locked file on a locked volume gives fLckdErr. Permissions are not looked at.
//
// Result: noErr if nothing is locked; fLckdErr if the object is locked; wPrErr if the volume is locked by hardware;
// vLckdErr if it is locked by software; otherwise the code of FSGetCatalogInfo or FSGetVolumeInfo, unchanged.
OSErr FSCheckLock(const FSRef *ref);

// Sets the object's content modification date to now, and tells those who watch the folder.
//
// If the clock still shows the very date that the object has, the new date is one second later than that: two bumps
// within one tick of the clock give two different dates. A notification that the folder has changed goes to the object
// itself if it is a folder and to its parent if it is a file.
//
// A date that cannot be written is no error: the result is noErr, and no notification is sent. The notification's own
// failure is ignored too.
//
// Result: noErr; otherwise the code of FSGetCatalogInfo or GetUTCDateTime, and then nothing was changed.
OSErr FSBumpDate(const FSRef *ref);

// Gives the object's Finder information, its extended Finder information (16 bytes each), and whether it is a folder.
//
// Each output may be null; with all three null the reference is still tested. Read the unions by what the object is:
// `file` for a file, `folder` for a folder. `isDirectory` becomes 1 for a folder and 0 for a file.
//
// Result: noErr; otherwise FSGetCatalogInfo's code, unchanged.
OSErr FSGetFinderInfo(const FSRef *ref, FinderInfo *info, ExtendedFinderInfo *extendedInfo, Boolean *isDirectory);

// Replaces the object's Finder information, its extended Finder information, or both.
//
// A null `info` or `extendedInfo` leaves that part as it is; with both null the File Manager is still called, with
// nothing to set. Unlike the functions below, this one does not bump the date of the object's parent.
//
// Result: noErr; otherwise FSSetCatalogInfo's code, unchanged.
OSErr FSSetFinderInfo(const FSRef *ref, const FinderInfo *info, const ExtendedFinderInfo *extendedInfo);

// Changes a file's creator and type, and bumps the date of its parent.
//
// A code of zero keeps the present one; any other value is stored, 0xFFFFFFFF included. With both codes zero the Finder
// information is written back unchanged and the parent's date is still bumped. Once the file has changed, a failure to
// bump is ignored.
//
// Result: noErr; notAFileErr if `ref` names a folder, which is left as it is; otherwise the code of FSGetCatalogInfo or
// FSSetCatalogInfo, unchanged.
OSErr FSChangeCreatorType(const FSRef *ref, OSType fileCreator, OSType fileType);

// Sets or clears Finder flags of a file or folder, and bumps the date of its parent.
//
// With `setBits` true all bits of `flagBits` are set, otherwise they are cleared; other flags stay as they are. With
// `flagBits` 0 the Finder information is written back unchanged and the parent's date is still bumped. Once the object
// has changed, a failure to bump is ignored.
//
// Result: noErr; otherwise the code of FSGetCatalogInfo or FSSetCatalogInfo, unchanged.
OSErr FSChangeFinderFlags(const FSRef *ref, Boolean setBits, UInt16 flagBits);

// Makes the object invisible in the Finder (sets kIsInvisible). Otherwise as FSChangeFinderFlags.
OSErr FSSetInvisible(const FSRef *ref);

// Makes the object visible in the Finder (clears kIsInvisible). Otherwise as FSChangeFinderFlags.
OSErr FSClearInvisible(const FSRef *ref);

// Keeps the Finder's user from changing the object's name (sets kNameLocked). Otherwise as FSChangeFinderFlags.
OSErr FSSetNameLocked(const FSRef *ref);

// Lets the Finder's user change the object's name (clears kNameLocked). Otherwise as FSChangeFinderFlags.
OSErr FSClearNameLocked(const FSRef *ref);

// Makes the file a stationery pad (sets kIsStationery). Otherwise as FSChangeFinderFlags.
OSErr FSSetIsStationery(const FSRef *ref);

// Makes the stationery pad an ordinary file (clears kIsStationery). Otherwise as FSChangeFinderFlags.
OSErr FSClearIsStationery(const FSRef *ref);

// Says that the object brings an icon of its own (sets kHasCustomIcon). Otherwise as FSChangeFinderFlags.
OSErr FSSetHasCustomIcon(const FSRef *ref);

// Says that the object has no icon of its own (clears kHasCustomIcon). Otherwise as FSChangeFinderFlags.
OSErr FSClearHasCustomIcon(const FSRef *ref);

// Has the Finder look at the object as at a new one (clears kHasBeenInited). Otherwise as FSChangeFinderFlags.
//
// There is no function that sets the flag: only the Finder knows when it has looked.
OSErr FSClearHasBeenInited(const FSRef *ref);

// Gives one object the attributes of another: text encoding hint, node flags, all five dates, permissions, Finder
// information and extended Finder information.
//
// The destination is left for the Finder to look at anew (kHasBeenInited is clear, whatever the source has). It takes
// over the source's lock if `copyLockBit` is true, and is unlocked otherwise. The parent's date is not bumped.
//
// Result: noErr; otherwise the code of FSGetCatalogInfo on the source or of FSSetCatalogInfo on the destination.
OSErr FSCopyFileMgrAttributes(const FSRef *sourceRef, const FSRef *destRef, Boolean copyLockBit);

// Gives a reference to the file whose fork is open under the reference number `refNum`.
//
// `ref` is handed to the File Manager as it is; a null one makes the call a test of the number.
//
// Result: noErr; otherwise FSGetForkCBInfo's code (rfNumErr if no fork is open under that number), unchanged.
OSErr FileRefNumGetFSRef(SInt16 refNum, FSRef *ref);
}
#pragma GCC visibility pop
