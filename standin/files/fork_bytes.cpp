// Reading, writing and sizing open forks: data forks here, resource forks in resource_forks.cpp.
#include "standin/files/errors.h"
#include "standin/files/forks.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace standin
{

namespace
{

constexpr std::uint64_t largestFile = std::numeric_limits<std::int64_t>::max();

OSErr dataSize(const OpenFork &fork, std::uint64_t &size)
{
    ObjectStatus status;
    const int failure = linux_calls::statusOf(fork.file.number(), status);
    size = status.size;
    return resultFromErrno(-failure);
}

OSErr setDataSize(const OpenFork &fork, std::uint64_t size)
{
    std::uint64_t present;
    if (OSErr result = dataSize(fork, present))
        return result;
    if (size == present)
        return noErr;
    const int failure =
        size > present ? linux_calls::growAllocated(fork.file.number(), present, size) : linux_calls::setSize(fork.file.number(), size);
    return resultFromErrno(-failure);
}

OSErr readData(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, Caching caching, std::size_t &got)
{
    const std::span<std::uint8_t> possible = bytes.first(std::min<std::uint64_t>(bytes.size(), largestFile - position));
    const ssize_t read = readThrough(fork, fork.file.number(), possible, position, caching);
    if (read < 0)
        return resultFromErrno(static_cast<int>(-read));
    got = static_cast<std::size_t>(read);
    return got < bytes.size() ? eofErr : noErr;
}

bool saysUnsupported(ssize_t result)
{
    return result == -EOPNOTSUPP || result == -EINVAL || result == -ENOSYS;
}

}   // namespace

// What is written stays in the cache in any case: to have it leave at once, the disk would have to be waited for, or be kept busier than
// the copying itself. Where the disk cannot read past the cache, it is told once that these bytes are not read again.
ssize_t readThrough(OpenFork &fork, int descriptor, std::span<std::uint8_t> bytes, std::uint64_t offset, Caching caching)
{
    if (caching == Caching::usual || !fork.diskCanReadPassingBy)
        return linux_calls::readAt(descriptor, bytes, offset);
    const ssize_t got = linux_calls::readPassingBy(descriptor, bytes, offset);
    if (!saysUnsupported(got))
        return got;
    fork.diskCanReadPassingBy = false;
    linux_calls::expectNoReuse(descriptor);
    return linux_calls::readAt(descriptor, bytes, offset);
}

OSErr getForkSize(OpenFork &fork, std::uint64_t &size)
{
    return fork.isResourceFork ? getResourceSize(fork, size) : dataSize(fork, size);
}

OSErr setForkSize(OpenFork &fork, std::uint64_t size)
{
    return fork.isResourceFork ? setResourceSize(fork, size) : setDataSize(fork, size);
}

OSErr readFork(OpenFork &fork, std::uint64_t position, std::span<std::uint8_t> bytes, Caching caching, std::size_t &got)
{
    got = 0;
    return fork.isResourceFork ? readResource(fork, position, bytes, caching, got) : readData(fork, position, bytes, caching, got);
}

OSErr writeFork(OpenFork &fork, std::uint64_t position, std::span<const std::uint8_t> bytes)
{
    if (bytes.size() > largestFile - position)
        return dskFulErr;
    if (fork.isResourceFork)
        return writeResource(fork, position, bytes);
    return resultFromErrno(-linux_calls::writeAt(fork.file.number(), bytes, position));
}

OSErr finishFork(OpenFork &fork)
{
    return fork.isResourceFork ? finishResource(fork) : static_cast<OSErr>(noErr);
}

}   // namespace standin
