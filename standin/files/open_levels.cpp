#include "standin/files/open_levels.h"

#include "standin/files/idle_folders.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <fcntl.h>
#include <type_traits>
#include <utility>
#include <vector>

namespace standin
{

namespace
{

constexpr std::size_t mostHeldFolders = 20;
constexpr unsigned indexBits = 24;   // of an iterator's number; the rest counts how many were opened
constexpr std::size_t slotsInChunk = 256;
constexpr std::uint32_t longestBatchLookedAt = 16;

// A slot is used for one level after another. Both mutexes are held when a level comes or goes, so either is enough to look.
struct Slot
{
    StepLock mutex;
    std::unique_ptr<Level> level;
    std::uint32_t nextFree = 0;   // its index and 1
};

struct LevelTable
{
    StepLock mutex;
    std::array<std::atomic<Slot *>, (std::size_t{1} << indexBits) / slotsInChunk> chunks{};   // they stay
    std::uint32_t firstFree = 0;                                                              // its index and 1
    std::uint32_t slotCount = 0;
    std::uintptr_t opened = 0;
    Level *newest = nullptr, *oldest = nullptr;   // of those that hold a descriptor
    std::size_t heldCount = 0;
    std::atomic<std::size_t> deletingCount{0};
};

// Made before anything runs and never destroyed: a thread may still walk when the process ends.
constinit LevelTable levels;
static_assert(std::is_trivially_destructible_v<LevelTable>);

LevelTable &table()
{
    return levels;
}

// --- slots ------------------------------------------------------------------------------------------------------------------------------

// Null for an index that never was.
Slot *slotAt(std::size_t index)
{
    Slot *slots = table().chunks[index / slotsInChunk].load(std::memory_order_acquire);
    return slots ? slots + index % slotsInChunk : nullptr;
}

Slot *slotOf(std::uintptr_t number)
{
    return slotAt(number & ((std::uintptr_t{1} << indexBits) - 1));
}

// With the table's mutex held.
std::uint32_t takeSlot()
{
    LevelTable &all = table();
    if (all.firstFree != 0)
    {
        const std::uint32_t free = all.firstFree - 1;
        all.firstFree = slotAt(free)->nextFree;
        return free;
    }
    const std::uint32_t index = all.slotCount++;
    std::atomic<Slot *> &chunk = all.chunks[index / slotsInChunk];
    if (!chunk.load(std::memory_order_relaxed))
        chunk.store(new Slot[slotsInChunk], std::memory_order_release);
    return index;
}

// With one of the mutexes held.
Level *levelIn(const Slot *slot, std::uintptr_t number)
{
    return slot && slot->level && slot->level->number == number ? slot->level.get() : nullptr;
}

// --- held descriptors: with the table's mutex held --------------------------------------------------------------------------------------

void unlinkHeld(Level &level)
{
    (level.newer ? level.newer->older : table().newest) = level.older;
    (level.older ? level.older->newer : table().oldest) = level.newer;
    level.newer = level.older = nullptr;
    level.isHeld = false;
    --table().heldCount;
}

void noteUse(Level &level)
{
    level.lastUse = linux_calls::coarseMilliseconds();
}

// Gives what has to be closed, so that it is closed when the mutex is free.
FolderHandle release(Level &level)
{
    if (level.isHeld)
        unlinkHeld(level);
    return std::move(level.folder);
}

FolderHandle hold(Level &level, FolderHandle folder)
{
    LevelTable &all = table();
    FolderHandle former = release(level);
    level.folder = std::move(folder);
    level.isHeld = true;
    if (level.volume->isMountedDisk)
        noteKeptFolder();
    level.older = all.newest;
    (all.newest ? all.newest->newer : all.oldest) = &level;
    all.newest = &level;
    return ++all.heldCount > mostHeldFolders ? release(*all.oldest) : std::move(former);
}

Level *findHeld(FSVolumeRefNum volume, UInt32 folderID, bool mustDelete)
{
    for (Level *level = table().newest; level; level = level->older)
        if (level->listed.id == folderID && level->listed.volume == volume && (level->deletes || !mustDelete))
            return level;
    return nullptr;
}

// The descriptor of a level, or null if it was not used for too long to be believed.
FolderHandle takeIfUsedLately(Level &level)
{
    const std::int64_t now = linux_calls::coarseMilliseconds();
    if (!level.folder || now - level.lastUse > longestIdleMilliseconds)
        return nullptr;
    level.lastUse = now;
    return level.folder;
}

// --- the way up -------------------------------------------------------------------------------------------------------------------------

// What the level below did was in the folder above, too. True if that has no descriptor any more and should get one. With the table's mutex held.
bool noteUseAbove(const Level &below, Identity &identity)
{
    Level *above = below.above != 0 ? levelIn(slotOf(below.above), below.above) : nullptr;
    if (!above)
        return false;
    above->lastUse = std::max(above->lastUse.load(), below.lastUse.load());
    identity = above->identity;
    return !above->folder;
}

// The folder above, by the way up; `identity` is what must be there.
void giveBackAbove(const Level &below, const FolderHandle &folderBelow, const Identity &identity)
{
    ObjectStatus status;
    auto up = std::make_shared<const Descriptor>(linux_calls::openAt(folderBelow->number(), "..", O_PATH | O_DIRECTORY));
    if (!up->isOpen() || linux_calls::statusOf(up->number(), status) < 0 || status.mount != below.volume->rootStatus.mount ||
        !sameObject(identityOf(*below.volume, status), identity))
        return;   // moved away meanwhile: the level will look for its folder itself
    FolderHandle former;
    const std::lock_guard lock(table().mutex);
    Level *above = levelIn(slotOf(below.above), below.above);
    if (!above || above->folder)
        return;
    noteUse(*above);
    former = hold(*above, std::move(up));
}

}   // namespace

FSIterator openLevel(std::unique_ptr<Level> level, FolderHandle folder)
{
    LevelTable &all = table();
    std::uint32_t index;
    {
        const std::lock_guard lock(all.mutex);
        index = takeSlot();
    }
    FolderHandle former;
    const std::lock_guard slotLock(slotAt(index)->mutex);
    const std::lock_guard lock(all.mutex);
    Level &opened = *level;
    const std::uintptr_t number = ++all.opened << indexBits | index;
    opened.number = number;
    all.deletingCount += opened.deletes;
    slotAt(index)->level = std::move(level);
    if (folder)
        former = hold(opened, std::move(folder));
    return reinterpret_cast<FSIterator>(number);
}

LockedLevel findLevel(FSIterator iterator)
{
    const auto number = reinterpret_cast<std::uintptr_t>(iterator);
    Slot *slot = slotOf(number);
    if (!slot)
        return {};
    std::unique_lock lock(slot->mutex);
    Level *level = levelIn(slot, number);
    return level ? LockedLevel{std::move(lock), level} : LockedLevel{};
}

bool closeLevel(FSIterator iterator)
{
    const auto number = reinterpret_cast<std::uintptr_t>(iterator);
    std::unique_ptr<Level> closed;
    FolderHandle folder;
    Identity identityAbove;
    bool aboveLacksFolder;
    Slot *slot = slotOf(number);
    if (!slot)
        return false;
    {
        const std::lock_guard slotLock(slot->mutex);
        const std::lock_guard lock(table().mutex);
        if (!levelIn(slot, number))
            return false;
        folder = release(*slot->level);
        closed = std::move(slot->level);
        table().deletingCount -= closed->deletes;
        aboveLacksFolder = noteUseAbove(*closed, identityAbove);
        slot->nextFree = std::exchange(table().firstFree, static_cast<std::uint32_t>(number & ((std::uintptr_t{1} << indexBits) - 1)) + 1);
    }
    if (aboveLacksFolder && folder)
        giveBackAbove(*closed, folder, identityAbove);
    return true;
}

LockedLevel findLevelReading(FSVolumeRefNum volume, UInt32 folderID, bool mustDelete, FolderHandle &folder)
{
    std::uintptr_t number;
    if (mustDelete && table().deletingCount == 0)
        return {};
    {
        const std::lock_guard lock(table().mutex);
        Level *level = findHeld(volume, folderID, mustDelete);
        if (!level)
            return {};
        number = level->number;
        folder = takeIfUsedLately(*level);
    }
    return findLevel(reinterpret_cast<FSIterator>(number));
}

FolderHandle folderOfLevel(FSVolumeRefNum volume, UInt32 folderID)
{
    const std::lock_guard lock(table().mutex);
    Level *level = findHeld(volume, folderID, false);
    return level ? takeIfUsedLately(*level) : nullptr;
}

OSErr openFolderOf(Level &level, FolderHandle &folder)
{
    {
        const std::lock_guard lock(table().mutex);
        if ((folder = takeIfUsedLately(level)))
            return noErr;
    }
    if (OSErr result = openFolder(*level.volume, level.listed.id, folder, level.deletes ? Anchoring::anew : Anchoring::recent))
        return result;
    FolderHandle former;
    const std::lock_guard lock(table().mutex);
    noteUse(level);
    former = hold(level, folder);
    return noErr;
}

std::size_t closeIdleLevels(std::int64_t usedBefore)
{
    std::vector<FolderHandle> closed;   // after the mutex is free
    std::size_t left = 0;
    const std::lock_guard lock(table().mutex);
    for (Level *level = table().newest; level; level = level->older)
    {
        const bool isOpen = level->folder && level->volume->isMountedDisk;
        const bool isIdle = isOpen && level->lastUse < usedBefore;
        left += isOpen && !isIdle;
        if (isIdle)
            closed.push_back(std::move(level->folder));
    }
    return left;
}

bool wasHandedOut(const Level &level, const ReferenceFields &fields, ListedEntry &entry)
{
    Listing::Position position = level.batch;
    const std::uint32_t count = level.batchCount <= longestBatchLookedAt ? level.batchCount : 0;
    for (std::uint32_t number = 0; number < count && level.listing.next(position, entry); ++number)
    {
        const bool hasName =
            fields.nameIsHashed ? isLongName(entry.name) && longNameHash(entry.name) == fields.nameHash : entry.name == fields.name;
        if (entry.inode == fields.inode && hasName)
            return true;
    }
    return false;
}

}   // namespace standin
