// The open iterators, one for each level of a walk or a deletion, and the descriptors of their folders.
//
// An iterator is a number dressed as a pointer, so that a wild one is told from an open one. One step at a time is made on each.
//
// A level keeps its folder open, but not more than 20 levels do, however deep a tree is: the one that was used least lately gives its descriptor up. It
// gets one back when the level below it is closed: the way up is `..`, and what is there must be the very folder. So a walk never has to go down from the
// root again, and a level far out takes no more than its record and what is left of its listing.
#pragma once

#include "platform/platform.h"
#include "standin/files/directories.h"
#include "standin/files/listings.h"
#include "standin/files/reference_format.h"
#include "standin/files/references.h"
#include "standin/files/step_lock.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace standin
{

struct Level
{
    VolumeHandle volume;
    Identity identity;     // of the folder
    ListedFolder listed;   // its ID, and when it was read: what is born later was not seen
    std::timespec modification{};
    Listing listing;
    Listing::Position next, batch;   // batch: what the last step handed out begins here
    std::uint32_t remaining = 0;     // entries not yet handed out
    std::uint32_t batchCount = 0;
    std::uint64_t changes = 0;   // how many this process had made in the folder when it was read
    std::int64_t handedOutAt = 0, askedForChangeAt = 0;
    OSErr failure = noErr;   // of reading the folder, told with the first step
    bool deletes = false;
    bool standsEmpty = false;   // a mount point, which is an empty folder; or a folder that is gone again
    bool hasChanged = false, askedAtEnd = false;
    std::unique_ptr<Object> object;   // the one asked last for its status, kept for its place

    // The table's own.
    std::uintptr_t number = 0, above = 0;   // above: the level that this one was reached through, or 0
    FolderHandle folder;
    bool isHeld = false;   // among those that may have a descriptor
    std::atomic<std::int64_t> lastUse{0};
    Level *newer = nullptr, *older = nullptr;
};

// An open level while somebody makes a step on it; nothing where there is none.
struct LockedLevel
{
    std::unique_lock<StepLock> lock;
    Level *level = nullptr;

    explicit operator bool() const { return level != nullptr; }
    Level &operator*() const { return *level; }
    Level *operator->() const { return level; }
};

// Opens a level; `folder` is its descriptor, or null for a mount point. When that was used last is said already.
FSIterator openLevel(std::unique_ptr<Level> level, FolderHandle folder);
LockedLevel findLevel(FSIterator iterator);
bool closeLevel(FSIterator iterator);

// The level, if there is one with an open descriptor, that reads a folder. `mustDelete`: only an iterator that was opened for deleting.
// `folder` becomes its descriptor if that was used within the last second, and that counts as a use; else openFolderOf has to be asked.
LockedLevel findLevelReading(FSVolumeRefNum volume, UInt32 folderID, bool mustDelete, FolderHandle &folder);

// The descriptor of a folder that some level reads and used within the last second, or null.
FolderHandle folderOfLevel(FSVolumeRefNum volume, UInt32 folderID);

// The descriptor of a level's folder, found again if need be. Result: noErr or that of openFolder.
OSErr openFolderOf(Level &level, FolderHandle &folder);

// Closes the folders of levels on mounted disks that nobody has used since a moment of the coarse clock: they are found again. The result is how many stay
// open there.
std::size_t closeIdleLevels(std::int64_t usedBefore);

// Whether the last step handed an object out that these fields name.
bool wasHandedOut(const Level &level, const ReferenceFields &fields, ListedEntry &entry);

}   // namespace standin
