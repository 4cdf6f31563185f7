// The File Manager's calls on open forks.
#include "platform/platform.h"
#include "standin/files/forks.h"

#include <limits>
#include <new>

using namespace standin;

namespace
{

constexpr UInt16 whereFrom = 0x0003;

// Where a step begins: at the mark, or so far from the start, the end or the mark.
OSErr positionOf(OpenFork &fork, UInt16 mode, SInt64 offset, std::int64_t &position)
{
    std::uint64_t size = 0;
    std::int64_t base = 0;
    if (mode & ~(whereFrom | noCacheMask))
        return errFSBadPosMode;
    const UInt16 from = mode & whereFrom;
    if (from == fsFromLEOF)
        if (OSErr result = getForkSize(fork, size))
            return result;
    if (from == fsAtMark)
        offset = 0;
    if (from == fsFromLEOF)
        base = static_cast<std::int64_t>(size);
    else if (from != fsFromStart)
        base = fork.mark;
    if (__builtin_add_overflow(base, offset, &position) || position < 0)
        return posErr;
    return noErr;
}

OSErr checkArguments(ByteCount count, const void *buffer, bool isAllowed)
{
    if (count > 0 && !buffer)
        return errFSBadBuffer;
    return isAllowed ? noErr : permErr;
}

// The start is inside every fork, and so is what lies before the end that was just asked for: only elsewhere the size has to be asked.
OSErr moveMark(OpenFork &fork, UInt16 mode, std::int64_t offset, std::int64_t position)
{
    std::uint64_t size = 0;
    const bool isInside = position == 0 || ((mode & whereFrom) == fsFromLEOF && offset <= 0);
    if (!isInside)
        if (OSErr result = getForkSize(fork, size))
            return result;
    if (!isInside && static_cast<std::uint64_t>(position) > size)
        return eofErr;
    fork.mark = position;
    return noErr;
}

}   // namespace

OSErr FSGetForkSize(SInt16 number, SInt64 *size)
try
{
    const auto fork = findFork(number);
    std::uint64_t bytes;
    if (!size)
        return paramErr;
    if (!fork)
        return rfNumErr;
    const std::lock_guard lock(fork->mutex);
    const OSErr result = getForkSize(*fork, bytes);
    if (result == noErr)
        *size = static_cast<SInt64>(bytes);
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSSetForkSize(SInt16 number, UInt16 mode, SInt64 offset)
try
{
    const auto fork = findFork(number);
    std::int64_t size;
    if (!fork)
        return rfNumErr;
    const std::lock_guard lock(fork->mutex);
    if (!fork->mayWrite)
        return permErr;
    if (OSErr result = positionOf(*fork, mode, offset, size))
        return result;
    const OSErr result = setForkSize(*fork, static_cast<std::uint64_t>(size));
    if (result == noErr && fork->mark > size)
        fork->mark = size;
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSSetForkPosition(SInt16 number, UInt16 mode, SInt64 offset)
try
{
    const auto fork = findFork(number);
    std::int64_t position;
    if (!fork)
        return rfNumErr;
    const std::lock_guard lock(fork->mutex);
    if (OSErr result = positionOf(*fork, mode, offset, position))
        return result;
    return moveMark(*fork, mode, offset, position);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSReadFork(SInt16 number, UInt16 mode, SInt64 offset, ByteCount count, void *buffer, ByteCount *actual)
try
{
    const auto fork = findFork(number);
    std::int64_t position;
    std::size_t got = 0;
    if (!fork)
        return rfNumErr;
    const std::lock_guard lock(fork->mutex);
    if (OSErr result = checkArguments(count, buffer, fork->mayRead))
        return result;
    if (OSErr result = positionOf(*fork, mode, offset, position))
        return result;
    const Caching caching = mode & noCacheMask ? Caching::passingBy : Caching::usual;
    const OSErr result = readFork(*fork, static_cast<std::uint64_t>(position), {static_cast<std::uint8_t *>(buffer), count}, caching, got);
    if (actual)
        *actual = static_cast<ByteCount>(got);
    if (result == noErr || (result == eofErr && got > 0))   // who meets nothing but the end stays where he was
        fork->mark = position + static_cast<std::int64_t>(got);
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSWriteFork(SInt16 number, UInt16 mode, SInt64 offset, ByteCount count, const void *buffer, ByteCount *actual)
try
{
    const auto fork = findFork(number);
    std::int64_t position;
    if (!fork)
        return rfNumErr;
    const std::lock_guard lock(fork->mutex);
    if (OSErr result = checkArguments(count, buffer, fork->mayWrite))
        return result;
    if (OSErr result = positionOf(*fork, mode, offset, position))
        return result;
    const OSErr result = writeFork(*fork, static_cast<std::uint64_t>(position), {static_cast<const std::uint8_t *>(buffer), count});
    if (actual)
        *actual = result == noErr ? count : 0;
    if (result == noErr)
        fork->mark = position + count;
    return result;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
