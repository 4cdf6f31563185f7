// Moving, renaming and exchanging objects of one volume. What holds for every function of the toolkit is told in
// files/fstoolkit.h.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// Moves a file to another folder and gives it a new name, in one step of the volume's own.
//
// Only some volumes can do that; on others the result is paramErr, and FSMoveRenameObjectUnicode does the same in steps.
// `moveName` is the new name, in `nameLength` UTF-16 code units. It becomes a short name of at most 31 bytes in the text
// encoding `textEncodingHint` (kTextEncodingUnknown: that of the system), as UnicodeNameGetHFSName makes it. A null
// `moveName` keeps the file's name; one of length 0 is not the same, it is handed on as an empty name.
//
// `newRef`, which may be null, is looked up afterwards by the new name in the destination folder. The move stands
// even if that fails: the result is noErr all the same and `newRef` is what the look-up left. Without a name there is
// nothing to look up but the folder: `newRef` then names the destination folder, and not the file. This is meant.
//
// Result: noErr; paramErr if the source's volume can't move and rename, or won't say whether it can; diffVolErr if
// the destination is on another volume; otherwise the code of FSGetCatalogInfo, UnicodeNameGetHFSName or
// PBHMoveRenameSync, unchanged.
OSErr FSMoveRename(const FSRef *srcFileRef, const FSRef *dstDirectoryRef, UniCharCount nameLength, const UniChar *moveName,
                   TextEncoding textEncodingHint, FSRef *newRef);

// Moves a file or folder to another folder of its volume and gives it a new name, on any volume.
//
// `name` is the new name, in `nameLength` UTF-16 code units, and `textEncodingHint` the text encoding that goes with it.
// With a null `name` the object is only moved; with length 0 it is renamed, to nothing, which the File Manager refuses.
//
// With a name this takes three steps: the object gets a temporary name that exists in neither folder, is moved, and gets
// its new name. The temporary name has eight upper-case hexadecimal digits, from 3D1F5A27 on. If a step fails, those
// before it are undone as far as possible; that undoing has failed is not reported.
//
// `newRef` is required. It names the object where it stands at the end, after a failure too (but for paramErr); where
// nothing was moved or renamed it is a copy of `ref`.
//
// Result: noErr; paramErr if `newRef` is null; diffVolErr if object and folder are on different volumes; otherwise the
// code of FSGetCatalogInfo, PBMakeFSRefUnicodeSync (fnfErr aside), FSRenameUnicode or FSMoveObject, unchanged.
OSErr FSMoveRenameObjectUnicode(const FSRef *ref, const FSRef *destDirectory, UniCharCount nameLength, const UniChar *name,
                                TextEncoding textEncodingHint, FSRef *newRef);

// Exchanges two files of one volume: each comes to stand at the place and under the name of the other.
//
// Where the volume can exchange files itself (FSExchangeObjects), it does, and `newSourceRef` and `newDestRef` are copies
// of `sourceRef` and `destRef`, which then name what the volume made of them.
//
// Elsewhere the files change names, folders and catalog information. Each takes over the other's dates of creation,
// access and backup, node flags, permissions, Finder information and text encoding hint; it keeps its own two
// modification dates. The file IDs stay with the files. `newSourceRef` names afterwards the object that stands at the
// source's place and name, which was the destination; `newDestRef` the one at the destination's. For a moment both
// files have temporary names, eight upper-case hexadecimal digits from 3D1F5A27 on, which exist in neither folder.
//
// If a step fails, those before it are undone in reverse order, each as far as possible; that undoing has failed is not
// reported. Afterwards `newSourceRef` names the source and `newDestRef` the destination, each where it finally stands,
// so that the caller can find both. Undoing writes the catalog information back with both modification dates, though these
// were never read: where it was written back they are zero. This is meant.
//
// Both outputs are required.
//
// Result: noErr; paramErr if an output is null; diffVolErr if the files are on different volumes; notAFileErr if one of
// them is a folder; otherwise the code of FSGetCatalogInfo, FSExchangeObjects, PBMakeFSRefUnicodeSync (fnfErr
// aside), FSRenameUnicode, FSMoveObject or FSSetCatalogInfo, unchanged: that of the step that failed.
OSErr FSExchangeObjectsCompat(const FSRef *sourceRef, const FSRef *destRef, FSRef *newSourceRef, FSRef *newDestRef);
}
#pragma GCC visibility pop
