// Special folders, paths with colons, and small files by such paths.
//
// A colon path is a length-prefixed string: it begins with ':', every folder on the way is followed by another one, and
// there is no volume's name in it. :Library:Preferences: names the folder /Library/Preferences of the startup volume, and
// :Users:Shared:data the file /Users/Shared/data. Whoever turns every ':' into '/' has the path that the system takes. What
// holds for all functions:
//
// - A required output that is null gives paramErr before anything is asked; other pointers may not be null.
// - The code is that of the first call of the system that failed, unchanged, or cut to 16 bits where it has 32. Each
//   function makes one change at most, so nothing has to be undone.
// - Functions may be called from any thread; nothing is kept between calls.

#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)

// ---------------------------------------------------------------------------------------------------------------------
// Folders
// ---------------------------------------------------------------------------------------------------------------------

// The name of the library's own folder in the shared user data folder, in Mac Roman. Its text is set when the library is
// built; it is only ever read.
extern Str63 ZerbSharedFolderName;

// Find the folder of the preferences of all users, of this user's preferences, and the system's desktop folder.
//
// The volume and the directory ID are set to 0 first, and are what FindFolder makes of them. No folder is created.
//
// Result: noErr; paramErr if an output is null; otherwise FindFolder's code.
OSErr ZerbFindPrefFolder(SInt16 *volume, SInt32 *dirID);
OSErr ZerbFindUserPrefFolder(SInt16 *volume, SInt32 *dirID);
OSErr ZerbFindSysFolder(SInt16 *volume, SInt32 *dirID);

// Gives a directory's colon path, in a Str255.
//
// The root's path is one colon: its name, which is the volume's, is left out on purpose.
//
// Result: noErr; bdNamErr where the path would be longer than 255 bytes; paramErr if `path` is null; otherwise the code
// of PBGetCatInfoSync. After a failure `path` holds what was found until then: the deepest directories, beginning with
// a colon only if there is one.
OSErr ZerbPathNameFromDirID(SInt32 dirID, SInt16 volume, unsigned char *path);

// Gives the colon path of the library's own folder in the shared user data folder, in a Str255, and creates that folder,
// and the shared one around it, where it is missing.
//
// Result: noErr; bdNamErr where the path would be longer than 255 bytes, and then nothing is created; paramErr if `path`
// is null; otherwise the code of FindFolder, PBGetCatInfoSync, FSPathMakeRef for the parent, or FSCreateDirectoryUnicode.
// Where one of the last two fails, `path` is the whole path all the same, with its last colon; after any failure before
// them it is what ZerbPathNameFromDirID left, and untouched where FindFolder failed.
OSErr ZerbFindSharedUserFolder(unsigned char *path);

// ---------------------------------------------------------------------------------------------------------------------
// Files
//
// `encoding` says how the path's bytes are read. With kCFStringEncodingUTF8 they are taken as they are; with any other they
// are converted to UTF-8, and a path that can't be, or is longer than 511 bytes then, is whatever the conversion left.
// ---------------------------------------------------------------------------------------------------------------------

// Creates an empty file with a creator and a type. The rest of its Finder information is zero.
//
// Where a path has no colon, its folder's path is empty.
//
// Result: noErr; otherwise the code of FSPathMakeRef for the folder, or of FSCreateFileUnicode.
OSErr FSpCreate2(unsigned char const *path, CFStringEncoding encoding, OSType creator, OSType fileType);

// Opens a file's data fork. `permission` is one of fsCurPerm, fsRdPerm, fsWrPerm and fsRdWrPerm; the fork that `refNum`
// names is the caller's to close, with FSCloseFork.
//
// Result: noErr; paramErr if `refNum` is null; otherwise the code of FSPathMakeRef or FSOpenFork.
OSErr FSpOpenDF2(unsigned char const *path, CFStringEncoding encoding, SInt8 permission, SInt16 *refNum);

// Deletes a file or an empty folder.
//
// Result: noErr; otherwise the code of FSPathMakeRef or FSDeleteObject.
OSErr FSpDelete2(unsigned char const *path, CFStringEncoding encoding);

// Lets the owner, the group and everybody else write to a file or folder. All other permissions stay: 0644 becomes 0666,
// and 0600 becomes 0622.
//
// Result: noErr; otherwise the code of FSMakeFSRef, FSGetCatalogInfo or FSSetCatalogInfo.
OSErr ZerbMakeWritableByAll(FSSpec *file);

#pragma GCC visibility pop
