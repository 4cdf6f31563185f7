// Reading, writing and sizing open forks.
#include "standin/files/change_lock.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/forks.h"
#include "standin/files/metadata.h"
#include "standin/files/sidecar_store.h"

#include <algorithm>
#include <fcntl.h>

namespace standin
{

namespace
{

SidecarPlace placeOf(const Object &object)
{
    return {object.folder->number(), object.name, object.status};
}

OSErr dataSize(const OpenFork &fork, std::uint64_t &size)
{
    ObjectStatus status;
    const int failure = linux_calls::statusOf(fork.file.number(), status);
    size = status.size;
    return resultFromErrno(-failure);
}

// The sidecar as it is now. A missing one is a fork without bytes; a bad one is an error, because there may be a fork in it.
OSErr openForReading(const OpenFork &fork, Sidecar &sidecar, std::uint64_t &size)
{
    Object object;
    size = 0;
    if (OSErr result = findObject(&fork.object, object))
        return result;
    switch (openSidecar(placeOf(object), false, sidecar))
    {
    case SidecarState::absent: return noErr;
    case SidecarState::good: size = sidecar.forkLength(); return noErr;
    case SidecarState::unreadable: return afpAccessDenied;
    default: return ioErr;
    }
}

OSErr resourceSize(const OpenFork &fork, std::uint64_t &size)
{
    Sidecar sidecar;
    return openForReading(fork, sidecar, size);
}

// A new sidecar has a copy of the Finder information. That it is only a copy is noted, as with every change of that information: else it would
// come back after a file server has cleared it.
OSErr noteCopy(const Object &object)
{
    Descriptor itself;
    if (OSErr result = openItself(object, O_PATH, itself))
        return result;
    return changeMetadata(object, itself.number(), kFinderPart, [](Metadata &) {});
}

// Does a change with the sidecar open for writing, its fork able to grow, and the folder locked.
template <typename Change>
OSErr changeSidecar(const OpenFork &fork, Change change)
{
    Object object;
    ChangeLock lock;
    Sidecar sidecar;
    if (OSErr result = findAndLock(&fork.object, object, lock))
        return result;
    Metadata metadata;
    bool isThere = false;
    readMetadata(object, kFinderPart, metadata);
    if (OSErr result = findSidecar(placeOf(object), isThere))
        return result;
    if (OSErr result = openGrowingFork(placeOf(object), metadata.finderInfo, sidecar))
        return result;
    if (!isThere && object.volume->hasAttributes && metadata.finderInfo != FinderBytes{})
        if (OSErr result = noteCopy(object))
            return result;
    return resultFromErrno(-change(sidecar));
}

int resize(const Sidecar &sidecar, std::uint64_t size)
{
    const SidecarEntry *entry = sidecar.layout.find(kResourceForkEntry);
    const std::uint64_t end = entry->offset + size;
    // Growing: first the room, then the length that speaks of it. Shrinking: the other way round.
    int failure = size > entry->length ? linux_calls::setSize(sidecar.file.number(), std::max(end, sidecar.status.size)) : 0;
    if (failure == 0)
        failure = writeForkLength(sidecar, size);
    if (failure == 0 && size < entry->length)
        failure = linux_calls::setSize(sidecar.file.number(), end);
    return failure;
}

OSErr setResourceSize(const OpenFork &fork, std::uint64_t size)
{
    std::uint64_t present;
    if (size > largestFork)
        return dskFulErr;
    if (OSErr result = resourceSize(fork, present))
        return result;
    if (present == size)
        return noErr;   // above all: no sidecar for a fork of no bytes
    return changeSidecar(fork, [&](const Sidecar &sidecar) { return resize(sidecar, size); });
}

OSErr writeResource(const OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    if (position + bytes.size() > largestFork)
        return dskFulErr;
    if (bytes.empty())
        return noErr;
    return changeSidecar(fork, [&](const Sidecar &sidecar) {
        const SidecarEntry *entry = sidecar.layout.find(kResourceForkEntry);
        const std::uint64_t end = position + bytes.size();
        int failure = position > entry->length ? linux_calls::setSize(sidecar.file.number(), entry->offset + position) : 0;
        if (failure == 0)
            failure = linux_calls::writeAt(sidecar.file.number(), bytes, entry->offset + position);
        return failure == 0 && end > entry->length ? writeForkLength(sidecar, end) : failure;
    });
}

OSErr readResource(const OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, std::size_t &got)
{
    Sidecar sidecar;
    std::uint64_t size;
    if (OSErr result = openForReading(fork, sidecar, size))
        return result;
    got = position < size ? std::min<std::uint64_t>(bytes.size(), size - position) : 0;
    if (got == 0)
        return bytes.empty() ? noErr : eofErr;
    const ssize_t read =
        linux_calls::readAt(sidecar.file.number(), bytes.first(got), sidecar.layout.find(kResourceForkEntry)->offset + position);
    got = static_cast<std::size_t>(std::max<ssize_t>(read, 0));
    if (read < 0)
        return resultFromErrno(static_cast<int>(-read));
    return got < bytes.size() ? eofErr : noErr;
}

}   // namespace

OSErr getForkSize(OpenFork &fork, std::uint64_t &size)
{
    return fork.isResourceFork ? resourceSize(fork, size) : dataSize(fork, size);
}

OSErr setForkSize(OpenFork &fork, std::uint64_t size)
{
    return fork.isResourceFork ? setResourceSize(fork, size) : resultFromErrno(-linux_calls::setSize(fork.file.number(), size));
}

OSErr readFork(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, std::size_t &got)
{
    got = 0;
    if (fork.isResourceFork)
        return readResource(fork, position, bytes, got);
    const ssize_t read = linux_calls::readAt(fork.file.number(), bytes, position);
    if (read < 0)
        return resultFromErrno(static_cast<int>(-read));
    got = static_cast<std::size_t>(read);
    return got < bytes.size() ? eofErr : noErr;
}

OSErr writeFork(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    if (fork.isResourceFork)
        return writeResource(fork, position, bytes);
    return resultFromErrno(-linux_calls::writeAt(fork.file.number(), bytes, position));
}

}   // namespace standin
