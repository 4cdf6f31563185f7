#include "standin/resources/loaded_resources.h"

#include "standin/memory/handles.h"

#include <memory>

namespace standin
{

namespace
{

struct Disposal
{
    void operator()(Handle handle) const { DisposeHandle(handle); }
};

// One that belongs to no entry yet, if it ever will.
using OwnHandle = std::unique_ptr<Ptr, Disposal>;

std::unordered_map<Handle, ResourcePosition> &positions()
{
    static std::unordered_map<Handle, ResourcePosition> all;
    return all;
}

void forgetDisposed(Handle handle)
{
    const std::lock_guard lock(resourceLock());
    forget(handle);
}

std::span<std::uint8_t> bytesOf(Handle handle, std::uint32_t size)
{
    return {reinterpret_cast<std::uint8_t *>(*handle), size};
}

OSErr readPlain(const ResourcePosition &position, std::span<std::uint8_t> bytes)
{
    if (OSErr result = readItem(*position.file, *position, 0, bytes))
        return result;
    if (isCompressedResource(position->attributes, bytes))
        return badExtResource;
    turnResource(position->type, bytes);
    return noErr;
}

Handle existingHandle(const ResourcePosition &position)
{
    const auto found = position.file->handles.find(position.entry);
    return found == position.file->handles.end() ? nullptr : found->second;
}

// Both sides know it, or without memory neither does.
void remember(const ResourcePosition &position, Handle handle)
{
    positions().emplace(handle, position);
    try
    {
        position.file->handles.emplace(position.entry, handle);
    }
    catch (const std::bad_alloc &)
    {
        positions().erase(handle);
        throw;
    }
    setDisposalObserver(forgetDisposed);
    watchHandle(handle, true);
}

}   // namespace

std::mutex &resourceLock()
{
    static std::mutex lock;
    return lock;
}

OSErr load(const ResourcePosition &position, Handle handle)
{
    std::uint32_t size = 0;
    if (*handle)
        return noErr;
    if (OSErr result = itemSize(*position.file, *position, size))
        return result;
    if (!fillHandle(handle, static_cast<Size>(size)))
        return memFullErr;
    const OSErr result = readPlain(position, bytesOf(handle, size));
    if (result != noErr)
        emptyHandle(handle);
    return result;
}

OSErr handleOf(const ResourcePosition &position, bool wantsBytes, Handle &handle)
{
    const Handle known = existingHandle(position);
    OwnHandle made(known ? nullptr : newEmptyHandle());
    const Handle used = known ? known : made.get();
    if (!used)
        return memFullErr;
    const OSErr result = wantsBytes ? load(position, used) : static_cast<OSErr>(noErr);
    if (result != noErr)
        return result;
    if (made)
        remember(position, made.get());
    made.release();
    handle = used;
    return noErr;
}

OSErr copyBytes(const ResourcePosition &position, std::string &bytes)
{
    const Handle known = existingHandle(position);
    if (known && *known)
    {
        bytes.assign(*known, static_cast<std::size_t>(GetHandleSize(known)));
        return noErr;
    }
    const OwnHandle copy(newEmptyHandle());   // which may be refused a size that a string is not
    if (!copy)
        return memFullErr;
    const OSErr result = load(position, copy.get());
    if (result == noErr)
        bytes.assign(*copy, static_cast<std::size_t>(GetHandleSize(copy.get())));
    return result;
}

bool findPosition(Handle handle, ResourcePosition &position)
{
    const auto found = positions().find(handle);
    if (found == positions().end())
        return false;
    position = found->second;
    return true;
}

void forget(Handle handle)
{
    const auto found = positions().find(handle);
    if (found == positions().end())
        return;
    found->second.file->handles.erase(found->second.entry);
    positions().erase(found);
    watchHandle(handle, false);
}

void release(Handle handle)
{
    forget(handle);
    DisposeHandle(handle);
}

void releaseAll(ResourceFile &file)
{
    while (!file.handles.empty())
        release(file.handles.begin()->second);
}

}   // namespace standin
