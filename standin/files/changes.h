// What making, removing and moving objects have in common.
#pragma once

#include "platform/platform.h"
#include "standin/files/change_lock.h"
#include "standin/files/metadata.h"
#include "standin/files/references.h"

#include <string>

namespace standin
{

// Finds a folder that something is to be put into, checks that its volume may be changed, and takes its lock.
OSErr openForAdding(const FSRef *folderReference, Object &folder, FolderHandle &opened, ChangeLock &lock);

// The folder in which an object most likely lies still, so that its lock can be taken before the object is looked for: fills all but name and status.
// Results as of findObject.
OSErr guessPlace(const FSRef *reference, Object &object);

// Finds an object and takes the lock of the folder that it lies in, or of that and another one of `volume`; the object is the one found with the
// lock held. `anchoring` says how it is looked for. Result: those of findObject and ChangeLock; diffVolErr if the object lies on another volume.
OSErr findAndLock(const FSRef *reference, Object &object, ChangeLock &lock, Anchoring anchoring = Anchoring::recent);
OSErr findAndLockBoth(const FSRef *reference, const Volume &volume, UInt32 otherID, const FolderHandle &other, Object &object,
                      ChangeLock &lock);

// Checks that an object may be moved, renamed or removed at all. Result: noErr; fBsyErr for a root or a mount point; the code of a lock.
// The second form leaves what was read for that.
OSErr checkMayLeave(const Object &object);
OSErr checkMayLeave(const Object &object, KnownMetadata &known);

// Checks that none of these disk names is taken in a folder; `self`, if it is given, may have one. Result: noErr; dupFNErr; the disk's code.
OSErr checkNamesAreFree(int folder, const std::vector<std::string> &names, const std::string *self);

// The same for every form of a Unicode name.
OSErr checkNameIsFree(int folder, const UniChar *units, std::size_t count, const std::string *self);

// Fills a caller's optional outputs for an object that was just made or moved.
void giveReference(const Object &object, FSRef *reference, FSSpec *spec);

}   // namespace standin
