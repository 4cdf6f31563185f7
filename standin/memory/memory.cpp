// The Memory Manager over malloc.
//
// All calls may come from any thread; using one block or handle from several at once is the callers' business.
// Every call but BlockMoveData, FreeMem, MaxBlock and MemError itself leaves its result for MemError, which tells the calling thread's last one.
// A pointer or handle that never came from here, or was disposed of before, cannot be told from a good one.
// An empty handle, of a resource that is not loaded, has no block: its size is told as 0, with nilHandleErr, and nothing can be appended.
#include "platform/memory.h"

#include "standin/memory/available_memory.h"
#include "standin/memory/handles.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace
{

thread_local OSErr lastResult = noErr;

// Lies before the block that a Ptr names.
struct alignas(std::max_align_t) PtrHeader
{
    Size byteCount;
};

// A Handle is the address of `block`, the master pointer.
struct HandleRecord
{
    Ptr block;   // may move when it grows, unless locked; null in an empty handle alone
    Size byteCount;
    Size capacity;
    bool locked;
    bool isWatched;
};

std::atomic<standin::DisposalObserver> disposalObserver{nullptr};

constexpr Size smallestCapacity = 16;

// 32-bit arithmetic of a caller still works on these, the header's and rounding included.
constexpr std::uint64_t mostMemoryTold = 0x7FFFFFFF;

template <typename Value>
Value reported(OSErr result, Value value)
{
    lastResult = result;
    return value;
}

bool isReasonable(Size byteCount)
{
    return byteCount >= 0 && static_cast<std::uint64_t>(byteCount) <= standin::largestReasonableBlock();
}

PtrHeader *headerOf(Ptr pointer)
{
    return reinterpret_cast<PtrHeader *>(pointer) - 1;
}

HandleRecord *recordOf(Handle handle)
{
    return reinterpret_cast<HandleRecord *>(handle);
}

bool moveBlock(HandleRecord &record, Size capacity)
{
    auto *block = static_cast<Ptr>(std::realloc(record.block, static_cast<std::size_t>(capacity)));
    if (block == nullptr)
        return false;
    record.block = block;
    record.capacity = capacity;
    return true;
}

// Makes room for `extra` bytes more. Doubling keeps long lists cheap that grow by a few references at a time; the exact size is the last try.
bool makeRoom(HandleRecord &record, Size extra)
{
    if (!isReasonable(extra))
        return false;
    const Size needed = record.byteCount + extra;
    if (needed <= record.capacity)
        return true;
    if (record.locked || !isReasonable(needed))
        return false;
    const Size roomy = std::max(needed, 2 * record.capacity);
    return (isReasonable(roomy) && moveBlock(record, roomy)) || moveBlock(record, needed);
}

long toldMemory()
{
    return static_cast<long>(std::min(standin::availableMemory(), mostMemoryTold));
}

}   // namespace

namespace standin
{

Handle newEmptyHandle()
{
    auto *record = new (std::nothrow) HandleRecord{nullptr, 0, 0, false, false};
    return record == nullptr ? nullptr : &record->block;
}

bool fillHandle(Handle handle, Size byteCount)
{
    HandleRecord &record = *recordOf(handle);
    if (!isReasonable(byteCount) || !moveBlock(record, byteCount + clearedBytesBehind))
        return false;
    std::memset(record.block + byteCount, 0, clearedBytesBehind);
    record.byteCount = byteCount;
    return true;
}

void emptyHandle(Handle handle)
{
    HandleRecord &record = *recordOf(handle);
    std::free(record.block);
    record = {nullptr, 0, 0, record.locked, record.isWatched};
}

void watchHandle(Handle handle, bool isWatched)
{
    recordOf(handle)->isWatched = isWatched;
}

void setDisposalObserver(DisposalObserver observer)
{
    disposalObserver = observer;
}

}   // namespace standin

// The bytes are not cleared. A size of 0 is legal.
// Result: null, with memFullErr, if there is no memory or the size is negative or more than the machine has.
Ptr NewPtr(Size byteCount)
{
    void *memory = isReasonable(byteCount) ? std::malloc(sizeof(PtrHeader) + static_cast<std::size_t>(byteCount)) : nullptr;
    if (memory == nullptr)
        return reported(memFullErr, nullptr);
    auto *header = new (memory) PtrHeader{byteCount};
    return reported(noErr, reinterpret_cast<Ptr>(header + 1));
}

// A null pointer is nothing to dispose of and no error.
void DisposePtr(Ptr pointer)
{
    if (pointer != nullptr)
        std::free(headerOf(pointer));
    lastResult = noErr;
}

// The size that was asked for. 0, with memWZErr, for null.
Size GetPtrSize(Ptr pointer)
{
    if (pointer == nullptr)
        return reported(memWZErr, Size{0});
    return reported(noErr, headerOf(pointer)->byteCount);
}

// As NewPtr. The master pointer of an empty handle is not null.
Handle NewHandle(Size byteCount)
{
    if (!isReasonable(byteCount))
        return reported(memFullErr, nullptr);
    HandleRecord record{nullptr, byteCount, 0, false, false};
    if (!moveBlock(record, std::max(byteCount, smallestCapacity)))
        return reported(memFullErr, nullptr);
    auto *kept = new (std::nothrow) HandleRecord(record);
    if (kept == nullptr)
    {
        std::free(record.block);
        return reported(memFullErr, nullptr);
    }
    return reported(noErr, &kept->block);
}

// A null handle is nothing to dispose of and no error. A locked one goes too.
void DisposeHandle(Handle handle)
{
    if (handle != nullptr)
    {
        const standin::DisposalObserver observer = disposalObserver;
        if (recordOf(handle)->isWatched && observer != nullptr)
            observer(handle);
        std::free(*handle);
        delete recordOf(handle);
    }
    lastResult = noErr;
}

// 0, with nilHandleErr, for null and for an empty handle.
Size GetHandleSize(Handle handle)
{
    if (handle == nullptr || *handle == nullptr)
        return reported(nilHandleErr, Size{0});
    return reported(noErr, recordOf(handle)->byteCount);
}

// What is new at the end is not cleared. A locked block can grow only where it is.
// Result, for MemError: noErr; nilHandleErr for a null handle; paramErr for a negative size; memFullErr. On failure the handle is unchanged.
void SetHandleSize(Handle handle, Size newSize)
{
    lastResult = handle == nullptr ? nilHandleErr : newSize < 0 ? paramErr : noErr;
    if (lastResult != noErr)
        return;
    HandleRecord &record = *recordOf(handle);
    if (newSize > record.byteCount && !makeRoom(record, newSize - record.byteCount))
        lastResult = memFullErr;
    else
        record.byteCount = newSize;
}

// The block stays where it is until HUnlock; there is one lock, not a count.
void HLock(Handle handle)
{
    if (handle != nullptr)
        recordOf(handle)->locked = true;
    lastResult = handle != nullptr ? noErr : nilHandleErr;
}

void HUnlock(Handle handle)
{
    if (handle != nullptr)
        recordOf(handle)->locked = false;
    lastResult = handle != nullptr ? noErr : nilHandleErr;
}

// Appends `size` bytes. The block may move unless it is locked, so `source` must not lie in it.
// Result: noErr; nilHandleErr for a null or empty handle; paramErr for a negative size or a null source with bytes to copy;
// memFullErr if there is no memory, or none without moving a locked block. On failure the handle is unchanged.
OSErr PtrAndHand(const void *source, Handle handle, long size)
{
    if (handle == nullptr || *handle == nullptr)
        return lastResult = nilHandleErr;
    if (size < 0 || (source == nullptr && size > 0))
        return lastResult = paramErr;
    HandleRecord &record = *recordOf(handle);
    if (!makeRoom(record, size))
        return lastResult = memFullErr;
    BlockMoveData(source, record.block + record.byteCount, size);
    record.byteCount += size;
    return lastResult = noErr;
}

// The blocks may overlap. A size of 0 or less copies nothing.
void BlockMoveData(const void *source, void *destination, Size byteCount)
{
    if (byteCount > 0)
        std::memmove(destination, source, static_cast<std::size_t>(byteCount));
}

// The result of this thread's last call that leaves one.
OSErr MemError(void)
{
    return lastResult;
}

// What could still be allocated without harm, at most 0x7FFFFFFF so that callers with 32-bit sums do not overflow.
long FreeMem(void)
{
    return toldMemory();
}

// The same: address space is never in pieces here.
long MaxBlock(void)
{
    return toldMemory();
}
