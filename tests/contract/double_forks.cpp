#include "tests/contract/double_forks.h"

#include "tests/contract/platform_double.h"

#include <algorithm>
#include <cstring>

namespace
{

// In an iterator that has been started; any other value than this one and 0 was never written by a call.
constexpr SInt32 started = 1;

OpenFork *findFork(SInt16 forkRefNum)
{
    std::map<SInt16, OpenFork> &open = PlatformDouble::current().forks.open;
    const auto found = open.find(forkRefNum);
    return found == open.end() ? nullptr : &found->second;
}

bool isPreparedRead(std::optional<PreparedRead> &prepared)
{
    return prepared && --prepared->nth == 0;
}

// Gives the bytes at the mark, and says how many there were.
ByteCount takeBytes(OpenFork &fork, ByteCount wanted, void *buffer)
{
    const UInt64 rest = fork.bytes.size() - static_cast<UInt64>(fork.mark);
    const ByteCount count = static_cast<ByteCount>(std::min<UInt64>(wanted, rest));
    std::memcpy(buffer, fork.bytes.data() + fork.mark, count);
    fork.mark += count;
    return count;
}

}   // namespace

OSErr FSIterateForks(const FSRef *ref, CatPositionRec *forkIterator, HFSUniStr255 *forkName, SInt64 *forkSize, UInt64 *forkPhysicalSize)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSIterateForks", {platform.files.describe(ref), platform.pointer(forkIterator, "iterator"),
                                                             platform.pointer(forkName, "name"), platform.pointer(forkSize, "size"),
                                                             platform.pointer(forkPhysicalSize, "physical")});
    if (failure != noErr)
        return failure;

    const FileObject *object = platform.files.find(ref);
    if (object == nullptr)
        return errFSBadFSRef;
    if (object->isFolder())
        return errFSForkNotFound;
    if (forkIterator->initialize == 0)
        *forkIterator = {started, {}};
    if (forkIterator->initialize != started)
        return paramErr;
    const std::vector<ForkSizes> &forks = platform.forks.sizes[object->name];
    const std::size_t position = static_cast<std::size_t>(forkIterator->priv[0]++);
    if (position >= forks.size())
        return platform.forks.endOfForks;
    if (forkSize != nullptr)
        *forkSize = forks[position].logical;
    if (forkPhysicalSize != nullptr)
        *forkPhysicalSize = forks[position].physical;
    return noErr;
}

OSErr FSGetForkSize(SInt16 forkRefNum, SInt64 *forkSize)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSGetForkSize", {decimal(forkRefNum), platform.pointer(forkSize, "size")});
    if (failure != noErr)
        return failure;
    const OpenFork *fork = findFork(forkRefNum);
    if (fork == nullptr)
        return rfNumErr;
    *forkSize = fork->pretendedSize.value_or(static_cast<SInt64>(fork->bytes.size()));
    return noErr;
}

OSErr FSSetForkSize(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSSetForkSize", {decimal(forkRefNum), hex(positionMode), decimal(positionOffset)});
    if (failure != noErr)
        return failure;
    OpenFork *fork = findFork(forkRefNum);
    if (fork == nullptr)
        return rfNumErr;
    if (positionMode != fsFromStart)
        return errFSBadPosMode;
    fork->bytes.resize(static_cast<std::size_t>(positionOffset), '?');   // what nobody wrote
    return noErr;
}

OSErr FSSetForkPosition(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSSetForkPosition", {decimal(forkRefNum), hex(positionMode), decimal(positionOffset)});
    if (failure != noErr)
        return failure;
    OpenFork *fork = findFork(forkRefNum);
    if (fork == nullptr)
        return rfNumErr;
    if (positionMode != fsFromStart)
        return errFSBadPosMode;
    fork->mark = positionOffset;
    return noErr;
}

OSErr FSReadFork(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset, ByteCount requestCount, void *buffer,
                 ByteCount *actualCount)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure =
        platform.record("FSReadFork", {decimal(forkRefNum), hex(positionMode), decimal(positionOffset), decimal(requestCount),
                                       platform.pointer(buffer, "buffer"), platform.pointer(actualCount, "actual")});
    if (failure != noErr)
        return failure;
    OpenFork *fork = findFork(forkRefNum);
    if (fork == nullptr)
        return rfNumErr;
    if ((positionMode & ~noCacheMask) != fsAtMark)
        return errFSBadPosMode;
    const bool isPrepared = isPreparedRead(platform.forks.preparedRead);
    *actualCount = takeBytes(*fork, isPrepared ? platform.forks.preparedRead->byteCount : requestCount, buffer);
    if (isPrepared)
        return platform.forks.preparedRead->code;
    return *actualCount < requestCount ? eofErr : noErr;
}

OSErr FSWriteFork(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset, ByteCount requestCount, const void *buffer,
                  ByteCount *actualCount)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure =
        platform.record("FSWriteFork", {decimal(forkRefNum), hex(positionMode), decimal(positionOffset), decimal(requestCount),
                                        platform.pointer(buffer, "buffer"), platform.pointer(actualCount, "actual")});
    if (failure != noErr)
        return failure;
    OpenFork *fork = findFork(forkRefNum);
    if (fork == nullptr)
        return rfNumErr;
    if ((positionMode & ~noCacheMask) != fsAtMark)
        return errFSBadPosMode;
    const std::size_t start = static_cast<std::size_t>(fork->mark);
    fork->bytes.resize(std::max<std::size_t>(fork->bytes.size(), start + requestCount));
    std::memcpy(fork->bytes.data() + start, buffer, requestCount);
    fork->mark += requestCount;
    if (actualCount != nullptr)
        *actualCount = requestCount;
    return noErr;
}
