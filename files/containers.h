// Walking, listing and deleting what folders contain. What holds for every function of the toolkit is told in
// files/fstoolkit.h.
#pragma once

#include "platform/platform.h"

#pragma GCC visibility push(default)
extern "C"
{

// The caller's function that FSIterateContainer hands every object to.
//
// - `containerChanged`: 1 if the folder that holds the object was changed while it was being walked, as the File Manager
//   says with each object; otherwise 0.
// - `currentLevel`: 1 for an object directly inside the container that the walk began with, 2 for one inside that
//   one's folders, and so on.
// - `catalogInfo`: the fields that were asked for, and always the node flags; other fields hold nothing of use.
// - `ref`: names the object. The function may delete it, or a file of it, as it goes.
// - `spec`, `name`: null unless they were asked for.
// - `yourDataPtr`: what was given to FSIterateContainer.
//
// All that is pointed to belongs to the walk and is overwritten with the next object: copy what is to be kept.
//
// Result: true ends the walk, all of it and at once; false lets it go on.
typedef Boolean (*ContainerFilterProc)(Boolean containerChanged, UInt32 currentLevel, const FSCatalogInfo *catalogInfo, const FSRef *ref,
                                       const FSSpec *spec, const HFSUniStr255 *name, void *yourDataPtr);

// Walks everything inside a folder, and hands each object to `filter`.
//
// `maxLevels` is how deep to go: 1 for the container's own items alone, 2 for their items too, 0 for everything however
// deep. Levels that are not to be visited are not opened. `whichInfo` says which fields of the catalog record the filter
// is to get; the node flags are always among them. With `wantFSSpec` or `wantName` true it gets an FSSpec or the UTF-16
// name as well. `yourDataPtr` is handed to the filter as it is.
//
// A folder comes before what is inside it; within a folder the order is the File Manager's. The container itself is not
// handed to the filter. A filter that returns true ends the whole walk, not only this branch of it, and the result is
// noErr then; it returns true for a folder, and nothing of that folder is seen.
//
// A folder that can be opened but not read (afpAccessDenied) counts as empty, and the walk goes on beside it. A folder
// that cannot even be opened ends the walk of the folder that holds it as well, whose remaining objects are not seen:
// if the reason was afpAccessDenied or errFSNoMoreItems the walk then goes on one level further up, with any other
// it ends. For the container itself every reason is reported. This is meant: what could not be seen was not to be seen.
//
// Folders are walked one inside the other, so the use of the stack grows with the depth, by a few hundred bytes a level.
//
// Result: noErr; paramErr if `filter` is null; otherwise the code of FSOpenIterator (errFSNotAFolder or dirNFErr if
// `container` names a file, as the File Manager has it) or of FSGetCatalogInfoBulk, unchanged.
OSErr FSIterateContainer(const FSRef *container, UInt32 maxLevels, FSCatalogInfoBitmap whichInfo, Boolean wantFSSpec, Boolean wantName,
                         ContainerFilterProc filter, void *yourDataPtr);

// Lists the objects directly inside a folder.
//
// `refsHandle` becomes a handle with one FSRef of 80 bytes for each object, back to back and in the order in which the
// File Manager gives them, and `numRefs` their number. An empty folder gives a handle of no bytes and 0. The handle
// belongs to the caller, who disposes of it with DisposeHandle. `containerChanged` becomes 1 if the folder was changed
// while it was being listed, which may then have missed objects or listed some twice; otherwise 0.
//
// After a failure `refsHandle` is null and `numRefs` is 0, whatever they were before and however far the listing came.
// `containerChanged` then says what was known until the failure. Only with paramErr nothing is written.
//
// Result: noErr; paramErr if any of the three outputs is null; memFullErr if there is no memory for the handle;
// otherwise the code of FSOpenIterator, FSGetCatalogInfoBulk or of the growing handle (memFullErr), unchanged.
OSErr FSGetDirectoryItems(const FSRef *container, Handle *refsHandle, UInt32 *numRefs, Boolean *containerChanged);

// Deletes everything inside a folder, however deep, and keeps the folder itself.
//
// Locked files and folders inside are unlocked first; that an object cannot be unlocked is not reported, since its
// deletion then fails and is. The first failure ends the deletion: what was deleted until then stays deleted, and
// everything else stays. A folder that may not be read (afpAccessDenied) is such a failure. The code errFSNoMoreItems
// alone is none, wherever it comes from: it ends the deletion of the folder in which it came, as the end of its items.
//
// Folders are deleted one inside the other, so the use of the stack grows with the depth, by a few hundred bytes a level.
//
// Result: noErr; otherwise the code of FSOpenIterator (errFSNotAFolder or dirNFErr if `container` names a file, as the
// File Manager has it), FSGetCatalogInfoBulk or FSDeleteObject, unchanged.
OSErr FSDeleteContainerContents(const FSRef *container);

// Deletes a folder and everything inside it, however deep.
//
// The contents go first, as with FSDeleteContainerContents; only if all of them are gone the folder follows. It is
// unlocked if it was locked when the deletion began, and a failure to unlock is not reported.
//
// Result: noErr; dirNFErr if `container` names a file, which is left as it is; otherwise the code of FSGetCatalogInfo,
// FSOpenIterator, FSGetCatalogInfoBulk or FSDeleteObject, unchanged.
OSErr FSDeleteContainer(const FSRef *container);
}
#pragma GCC visibility pop
