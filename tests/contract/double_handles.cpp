// The Memory Manager's calls on handles.

#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

void resize(RelocatableBlock &block, Size size)
{
    auto bytes = std::make_unique<char[]>(static_cast<std::size_t>(size));
    std::memcpy(bytes.get(), block.bytes.get(), static_cast<std::size_t>(block.size));
    block.bytes = std::move(bytes);
    block.master = block.bytes.get();
    block.size = size;
}

}   // namespace

RelocatableBlock *HandlesDouble::find(Handle handle)
{
    for (RelocatableBlock &each : blocks)
        if (&each.master == handle)
            return &each;
    return nullptr;
}

void RelocatableBlock::fill(const std::string &contents)
{
    bytes = std::make_unique<char[]>(contents.size());
    std::memcpy(bytes.get(), contents.data(), contents.size());
    master = bytes.get();
    size = static_cast<Size>(contents.size());
}

Handle HandlesDouble::addEmpty()
{
    return &blocks.emplace_back(RelocatableBlock{nullptr, nullptr, 0}).master;
}

void HandlesDouble::remove(Handle handle)
{
    blocks.remove_if([handle](const RelocatableBlock &each) { return &each.master == handle; });
}

Handle NewHandle(Size byteCount)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.handles.lastError = platform.record("NewHandle", {decimal(byteCount)});
    if (platform.handles.lastError != noErr)
        return nullptr;
    auto bytes = std::make_unique<char[]>(static_cast<std::size_t>(byteCount));
    Ptr master = bytes.get();
    return &platform.handles.blocks.emplace_back(RelocatableBlock{master, std::move(bytes), byteCount}).master;
}

void DisposeHandle(Handle handle)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("DisposeHandle", {platform.pointer(handle, "handle")});
    const RelocatableBlock *found = platform.handles.find(handle);
    platform.handles.lastError = found == nullptr ? memWZErr : OSErr{noErr};
    platform.handles.remove(handle);
}

void HLock(Handle handle)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("HLock", {platform.pointer(handle, "handle")});
    if (RelocatableBlock *block = platform.handles.find(handle))
        block->isLocked = true;
}

void HUnlock(Handle handle)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("HUnlock", {platform.pointer(handle, "handle")});
    if (RelocatableBlock *block = platform.handles.find(handle))
        block->isLocked = false;
}

OSErr PtrAndHand(const void *source, Handle handle, long size)
{
    PlatformDouble &platform = PlatformDouble::current();
    OSErr &error = platform.handles.lastError;
    error = platform.record("PtrAndHand", {platform.pointer(source, "bytes"), platform.pointer(handle, "handle"), decimal(size)});
    if (error != noErr)
        return error;
    RelocatableBlock *block = platform.handles.find(handle);
    if (block == nullptr)
        return error = memWZErr;
    const Size oldSize = block->size;
    resize(*block, oldSize + size);
    std::memcpy(block->master + oldSize, source, static_cast<std::size_t>(size));
    return noErr;
}

OSErr MemError()
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("MemError", {});
    return failure != noErr ? failure : platform.handles.lastError;
}

// Blocks of this size are taken for references.
void BlockMoveData(const void *source, void *destination, Size byteCount)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string what = byteCount == sizeof(FSRef) ? platform.files.describe(static_cast<const FSRef *>(source)) : "bytes";
    platform.note("BlockMoveData", {what, platform.pointer(destination, "ref"), decimal(byteCount)});
    std::memmove(destination, source, static_cast<std::size_t>(byteCount));
}
