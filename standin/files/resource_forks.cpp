// The bytes of open resource forks, which lie in sidecars.
//
// A sidecar is known by its name alone: it can be written anew, be shared by a hard link for a while, or go, at any time. To look for it at
// each step would cost more than the step, so a look is trusted for a moment, and only
//   - while this process has not ended a change in the folder. Writing holds the mutex of the folder, so none is under way either.
//   - for 20 milliseconds, because of other processes. To ask for the size, and to be told of the end, always takes a look at the disk.
// Whatever changes the shape of a sidecar (it comes into being, the fork grows or shrinks) is done with the folder locked. Writing inside
// the present fork is one call without that lock. Another process of ours may just then write the sidecar anew, with such bytes left out:
// so they count as doubtful until the sidecar has been seen in its place with the folder locked, at the next look or when the fork is
// closed. If it was replaced, they are copied into the new one.
#include "standin/files/change_lock.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/forks.h"
#include "standin/files/metadata.h"

#include <algorithm>
#include <fcntl.h>

namespace standin
{

namespace
{

constexpr std::int64_t trustedMilliseconds = 20;

SidecarPlace placeOf(const Object &object)
{
    return {object.folder->number(), object.name, object.status};
}

// --- the sidecar as it is known ----------------------------------------------------------------------------------------------------------

SidecarEntry *forkEntry(Sidecar &sidecar)
{
    for (SidecarEntry &entry : sidecar.layout.entries)
        if (entry.id == kResourceForkEntry)
            return &entry;
    return nullptr;
}

std::uint64_t knownLength(const OpenFork &fork)
{
    return fork.known.sidecar.file.isOpen() ? fork.known.sidecar.forkLength() : 0;
}

bool isTrusted(const OpenFork &fork)
{
    const KnownSidecar &known = fork.known;
    return known.sidecar.file.isOpen() && known.changes == countOfChanges(fork.volume, known.folderID) &&
           linux_calls::milliseconds() - known.lookedAt < trustedMilliseconds;
}

void forget(OpenFork &fork)
{
    fork.known = {};
}

void remember(OpenFork &fork, Sidecar &&sidecar, bool isReady, UInt32 folderID, std::uint64_t changes)
{
    KnownSidecar &known = fork.known;
    known.sidecar = std::move(sidecar);
    known.isReady = isReady;
    known.folderID = folderID;
    known.changes = changes;
    known.lookedAt = linux_calls::milliseconds();
}

// --- looking -----------------------------------------------------------------------------------------------------------------------------

OSErr checkIsTheFile(const OpenFork &fork, const Object &object)
{
    return sameObject(object.identity(), fork.identity) ? static_cast<OSErr>(noErr) : static_cast<OSErr>(fnfErr);
}

OSErr findFile(const OpenFork &fork, Object &object)
{
    if (OSErr result = findObject(&fork.object, object))
        return result;
    return checkIsTheFile(fork, object);
}

OSErr findAndLockFile(const OpenFork &fork, Object &object, ChangeLock &lock)
{
    if (OSErr result = findAndLock(&fork.object, object, lock))
        return result;
    return checkIsTheFile(fork, object);
}

// A bad sidecar is an error, because there may be a fork in it.
OSErr resultFrom(SidecarState state, const Sidecar &sidecar)
{
    switch (state)
    {
    case SidecarState::absent:
    case SidecarState::good: return noErr;
    case SidecarState::unreadable: return afpAccessDenied;
    case SidecarState::failing: return sidecar.result();
    default: return ioErr;
    }
}

bool isStillThere(const Object &object)
{
    ObjectStatus status;
    const int failure = linux_calls::statusAt(object.folder->number(), object.name.c_str(), status);
    return failure == 0 && sameObject(identityOf(*object.volume, status), object.identity());
}

// Nothing is locked for it. A sidecar that seems to be missing may have followed its file to another name just now.
OSErr lookWithoutLock(OpenFork &fork)
{
    for (;;)
    {
        Object object;
        Sidecar sidecar;
        if (OSErr result = findFile(fork, object))
            return result;
        const std::uint64_t changes = countOfChanges(fork.volume, object.parentID);
        const SidecarState state = openSidecar(placeOf(object), false, sidecar);
        if (state == SidecarState::absent && !isStillThere(object))
            continue;
        if (OSErr result = resultFrom(state, sidecar))
            return result;
        remember(fork, std::move(sidecar), false, object.parentID, changes);
        return noErr;
    }
}

// The folder is locked: what was written in doubt is in the sidecar that has the name now, or gets there.
int settleDoubts(KnownSidecar &known, Sidecar &present)
{
    const Sidecar &old = known.sidecar;
    const bool isReplaced = old.status.inode != present.status.inode || old.status.device != present.status.device;
    const SidecarEntry *from = known.sidecar.layout.find(kResourceForkEntry), *to = forkEntry(present);
    const std::uint64_t end = to ? std::min(known.doubtfulTo, present.forkLength()) : 0;
    int failure = 0;
    if (known.hasDoubts() && isReplaced && from && end > known.doubtfulFrom)
        failure = linux_calls::copyBytes(old.file.number(), from->offset + known.doubtfulFrom, present.file.number(),
                                         to->offset + known.doubtfulFrom, end - known.doubtfulFrom);
    if (failure == 0)
        known.doubtfulFrom = known.doubtfulTo = 0;
    return failure;
}

// Looks with the folder locked. Where the sidecar or its file has gone, what was written has gone with it.
OSErr lookWithLock(OpenFork &fork)
{
    ChangeLock lock(LockedFor::looking);
    Object object;
    Sidecar sidecar;
    const OSErr found = findAndLockFile(fork, object, lock);
    if (found == fnfErr)
        forget(fork);
    if (found != noErr)
        return found;
    const SidecarState state = openSidecar(placeOf(object), true, sidecar);
    if (OSErr result = resultFrom(state, sidecar))
        return result;
    if (state == SidecarState::absent)
    {
        forget(fork);
        return noErr;
    }
    const bool isSame = sidecar.status.inode == fork.known.sidecar.status.inode && sidecar.status.links == 1;
    if (const int failure = settleDoubts(fork.known, sidecar))
        return resultFromErrno(-failure);
    remember(fork, std::move(sidecar), isSame && fork.known.isReady, object.parentID, countOfChanges(fork.volume, object.parentID));
    return noErr;
}

OSErr look(OpenFork &fork)
{
    return fork.known.hasDoubts() ? lookWithLock(fork) : lookWithoutLock(fork);
}

// --- changing ----------------------------------------------------------------------------------------------------------------------------

// A new sidecar has a copy of the Finder information. That it is only a copy is noted, as with every change of that information: else it
// would come back after a file server has cleared it.
OSErr noteCopy(const Object &object)
{
    Descriptor itself;
    if (OSErr result = openItself(object, O_PATH, itself))
        return result;
    return changeMetadata(object, itself.number(), kFinderPart, [](Metadata &) {});
}

// Opens the sidecar for writing, its fork able to grow; makes it where there is none.
OSErr makeReady(const Object &object, Sidecar &sidecar)
{
    Metadata metadata;
    bool isThere = false;
    if (OSErr result = findSidecar(placeOf(object), isThere))
        return result;
    if (!isThere)
        readMetadata(object, kFinderPart, metadata);
    if (OSErr result = openGrowingFork(placeOf(object), metadata.finderInfo, sidecar))
        return result;
    const bool copiesFinderInfo = !isThere && object.volume->hasAttributes && metadata.finderInfo != FinderBytes{};
    return copiesFinderInfo ? noteCopy(object) : static_cast<OSErr>(noErr);
}

// Does a change with the folder locked and the sidecar ready. Only one that writes inside a fork which was ready before changes nothing
// that others of this process have to know of.
template <typename Change>
OSErr changeSidecar(OpenFork &fork, LockedFor purpose, Change change)
{
    ChangeLock lock(purpose);
    Object object;
    Sidecar sidecar;
    if (OSErr result = findAndLockFile(fork, object, lock))
        return result;
    if (OSErr result = makeReady(object, sidecar))
        return result;
    int failure = settleDoubts(fork.known, sidecar);
    if (failure == 0)
        failure = change(sidecar);
    if (failure == 0)   // counting this very change, which ends with the lock
        remember(fork, std::move(sidecar), true, object.parentID,
                 countOfChanges(fork.volume, object.parentID) + (purpose == LockedFor::changing ? 1 : 0));
    return resultFromErrno(-failure);
}

// What lies behind the fork's end belongs to nobody, and must not show when the fork grows over it.
int cutBehindFork(Sidecar &sidecar)
{
    const SidecarEntry *entry = forkEntry(sidecar);
    const std::uint64_t end = entry->offset + entry->length;
    if (sidecar.status.size <= end)
        return 0;
    const int failure = linux_calls::setSize(sidecar.file.number(), end);
    if (failure == 0)
        sidecar.status.size = end;
    return failure;
}

int noteForkLength(Sidecar &sidecar, std::uint64_t length)
{
    SidecarEntry *entry = forkEntry(sidecar);
    const int failure = writeForkLength(sidecar, length);
    if (failure == 0)
    {
        entry->length = length;
        sidecar.status.size = std::max(sidecar.status.size, entry->offset + length);
    }
    return failure;
}

// Growing: first the room, then the length that speaks of it. Shrinking: the other way round.
int resize(Sidecar &sidecar, std::uint64_t size)
{
    const SidecarEntry before = *forkEntry(sidecar);
    int failure = 0;
    if (size > before.length)
    {
        failure = cutBehindFork(sidecar);
        if (failure == 0)
            failure = linux_calls::growAllocated(sidecar.file.number(), before.offset + before.length, before.offset + size);
        return failure ? failure : noteForkLength(sidecar, size);
    }
    failure = noteForkLength(sidecar, size);
    return failure ? failure : cutBehindFork(sidecar);
}

// Writes, and has the fork grow if the bytes end behind it: they come before the length that speaks of them.
int writeWithLock(Sidecar &sidecar, std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    const SidecarEntry before = *forkEntry(sidecar);
    const std::uint64_t end = position + bytes.size();
    const bool grows = end > before.length;
    int failure = grows ? cutBehindFork(sidecar) : 0;
    if (failure < 0)
        return failure;
    failure = linux_calls::writeAt(sidecar.file.number(), bytes, before.offset + position);
    if (failure < 0 && grows)
        linux_calls::setSize(sidecar.file.number(), before.offset + before.length);   // a part that got there takes no room then
    return failure == 0 && grows ? noteForkLength(sidecar, end) : failure;
}

// One call, if all that is known holds. False if it does not.
bool writeAtOnce(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes, OSErr &result)
{
    KnownSidecar &known = fork.known;
    const std::uint64_t end = position + bytes.size();
    if (!known.isReady || end > knownLength(fork))
        return false;
    const auto held = holdOffThreads(fork.volume, known.folderID);
    if (!isTrusted(fork))
        return false;
    known.doubtfulFrom = known.hasDoubts() ? std::min(known.doubtfulFrom, position) : position;
    known.doubtfulTo = std::max(known.doubtfulTo, end);
    const std::uint64_t offset = known.sidecar.layout.find(kResourceForkEntry)->offset;
    result = resultFromErrno(-linux_calls::writeAt(known.sidecar.file.number(), bytes, offset + position));
    return true;
}

// Whether the length in the table is the one that is known. One call.
bool lengthIsAsKnown(const OpenFork &fork)
{
    const Sidecar &sidecar = fork.known.sidecar;
    const SidecarEntry *entry = sidecar.layout.find(kResourceForkEntry);
    std::uint8_t bytes[4];
    if (!entry)
        return false;
    const auto index = static_cast<std::size_t>(entry - sidecar.layout.entries.data());
    const std::uint64_t offset = sidecarHeaderSize + sidecarDescriptorSize * index + 8;
    return linux_calls::readAt(sidecar.file.number(), bytes, offset) == 4 && readBig32(bytes) == entry->length;
}

// Makes sure that enough is known for reading: the end is never told from memory.
OSErr lookForReading(OpenFork &fork, std::uint64_t end)
{
    if (isTrusted(fork) && (end <= knownLength(fork) || lengthIsAsKnown(fork)))
        return noErr;
    return look(fork);
}

}   // namespace

OSErr getResourceSize(OpenFork &fork, std::uint64_t &size)
{
    const OSErr result = look(fork);
    size = result == noErr ? knownLength(fork) : 0;
    return result;
}

OSErr setResourceSize(OpenFork &fork, std::uint64_t size)
{
    std::uint64_t present;
    if (size > largestFork)
        return dskFulErr;
    if (OSErr result = getResourceSize(fork, present))
        return result;
    if (present == size)
        return noErr;   // above all: no sidecar for a fork of no bytes
    return changeSidecar(fork, LockedFor::changing, [&](Sidecar &sidecar) { return resize(sidecar, size); });
}

OSErr writeResource(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    OSErr result = noErr;
    if (bytes.empty())
        return noErr;
    if (position > largestFork || bytes.size() > largestFork - position)
        return dskFulErr;
    if (writeAtOnce(fork, position, bytes, result))
        return result;
    const bool keepsItsShape = fork.known.isReady && position + bytes.size() <= knownLength(fork);
    return changeSidecar(fork, keepsItsShape ? LockedFor::looking : LockedFor::changing,
                         [&](Sidecar &sidecar) { return writeWithLock(sidecar, position, bytes); });
}

OSErr readResource(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, Caching caching, std::size_t &got)
{
    if (OSErr result = lookForReading(fork, position + std::min<std::uint64_t>(bytes.size(), largestFork)))
        return result;
    const std::uint64_t size = knownLength(fork);
    const std::size_t wanted = position < size ? std::min<std::uint64_t>(bytes.size(), size - position) : 0;
    if (wanted == 0)
        return bytes.empty() ? noErr : eofErr;
    const Sidecar &sidecar = fork.known.sidecar;
    const std::uint64_t offset = sidecar.layout.find(kResourceForkEntry)->offset + position;
    const ssize_t read = readThrough(fork, sidecar.file.number(), bytes.first(wanted), offset, caching);
    if (read < 0)
        return resultFromErrno(static_cast<int>(-read));
    got = static_cast<std::size_t>(read);
    return got < bytes.size() ? eofErr : noErr;
}

// A file that was deleted meanwhile has taken its bytes with it: that is no failure of closing.
OSErr finishResource(OpenFork &fork)
{
    if (!fork.known.hasDoubts())
        return noErr;
    const OSErr result = lookWithLock(fork);
    return result == fnfErr ? static_cast<OSErr>(noErr) : result;
}

}   // namespace standin
