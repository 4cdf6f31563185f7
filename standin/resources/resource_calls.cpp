// The Resource Manager's calls.
//
// They may come from any thread, one after the other; but the chain of files, the current file and SetResLoad's wish are the process's, so threads that
// change them have to agree. ResError tells the calling thread's last call of all those here but ResError and CurResFile.
#include "standin/memory/handles.h"
#include "standin/resources/loaded_resources.h"
#include "standin/resources/resources.h"

#include <algorithm>
#include <climits>
#include <new>

using namespace standin;

namespace
{

constexpr SInt16 noFile = -1;

thread_local OSErr lastResult = noErr;
bool loadsResources = true;

void report(OSErr result)
{
    lastResult = result;
}

SInt16 told(std::size_t count)
{
    return static_cast<SInt16>(std::min<std::size_t>(count, SHRT_MAX));
}

std::string_view textOf(ConstStr255Param text)
{
    return {reinterpret_cast<const char *>(text) + 1, text[0]};
}

template <typename Key>
bool findIn(ResourceFile &file, ResType type, const Key &key, ResourcePosition &position)
{
    const auto entry = file.map.find(type, key);
    if (entry)
        position = {&file, *entry};
    return entry.has_value();
}

// In the current file and, if the whole chain is meant, in those opened before it.
template <typename Key>
bool findInChain(ResType type, const Key &key, bool isWholeChain, ResourcePosition &position)
{
    for (ResourceFile *file = currentResourceFile(); file; file = isWholeChain ? openedBefore(*file) : nullptr)
        if (findIn(*file, type, key, position))
            return true;
    return false;
}

Handle handleAt(const ResourcePosition &position)
{
    Handle handle = nullptr;
    report(handleOf(position, loadsResources, handle));
    return handle;
}

template <typename Key>
Handle getResource(ResType type, const Key &key, bool isWholeChain)
try
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    if (findInChain(type, key, isWholeChain, position))
        return handleAt(position);
    report(resNotFound);
    return nullptr;
}
catch (const std::bad_alloc &)
{
    report(memFullErr);
    return nullptr;
}

// Leaves resNotFound for ResError where the handle belongs to no resource, else noErr.
bool isResource(Handle handle, ResourcePosition &position)
{
    const bool isOne = findPosition(handle, position);
    report(isOne ? noErr : resNotFound);
    return isOne;
}

void fillName(std::string_view name, Str255 text)
{
    text[0] = static_cast<unsigned char>(name.size());
    std::copy(name.begin(), name.end(), text + 1);
}

}   // namespace

namespace standin
{

bool copyResource(ResType type, SInt16 resID, std::string &bytes)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    return findInChain(type, resID, true, position) && copyBytes(position, bytes) == noErr;
}

}   // namespace standin

// Nothing is ever written, but with a permission to write the file must allow that.
// Result: the number of the open fork; -1 on failure, then ResError tells why (resource_files.h).
SInt16 FSOpenResFile(const FSRef *ref, SInt8 permission)
try
{
    const std::lock_guard lock(resourceLock());
    SInt16 number = noFile;
    report(ref ? openResourceFile(*ref, permission, number) : static_cast<OSErr>(paramErr));
    return number;
}
catch (const std::bad_alloc &)
{
    report(memFullErr);
    return noFile;
}

// The file's resources are released; handles that were detached stay. resFNotFound if it is not open.
void CloseResFile(SInt16 refNum)
{
    const std::lock_guard lock(resourceLock());
    ResourceFile *file = findResourceFile(refNum);
    if (file)
    {
        releaseAll(*file);
        closeResourceFile(*file);
    }
    report(file ? noErr : resFNotFound);
}

void UseResFile(SInt16 refNum)
{
    const std::lock_guard lock(resourceLock());
    const ResourceFile *file = findResourceFile(refNum);
    if (file)
        useResourceFile(*file);
    report(file ? noErr : resFNotFound);
}

// -1 if none is open.
SInt16 CurResFile(void)
{
    const std::lock_guard lock(resourceLock());
    const ResourceFile *file = currentResourceFile();
    return file ? file->number : noFile;
}

OSErr ResError(void)
{
    return lastResult;
}

// Null if there is none (resNotFound), or the first one that is found cannot be read: badExtResource, memFullErr or the code of reading.
Handle GetResource(ResType type, SInt16 resID)
{
    return getResource(type, resID, true);
}

Handle Get1Resource(ResType type, SInt16 resID)
{
    return getResource(type, resID, false);
}

// Upper and lower case are the same. Of several resources of one name it is the first.
Handle GetNamedResource(ResType type, ConstStr255Param name)
{
    return getResource(type, textOf(name), true);
}

Handle Get1NamedResource(ResType type, ConstStr255Param name)
{
    return getResource(type, textOf(name), false);
}

// Fills the handle if it is empty, whatever SetResLoad said.
void LoadResource(Handle resource)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    if (isResource(resource, position))
        report(load(position, resource));
}

// The handle and its bytes are the caller's from now on. The next GetResource makes another one.
void DetachResource(Handle resource)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    if (isResource(resource, position))
        forget(resource);
}

// With a handle that is no resource, or none any more, nothing happens.
void ReleaseResource(Handle resource)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    if (isResource(resource, position))
        release(resource);
}

// With false, resources that are not loaded come as handles whose master pointer is null.
void SetResLoad(Boolean load)
{
    const std::lock_guard lock(resourceLock());
    loadsResources = load != 0;
    report(noErr);
}

// Any output may be null. On failure they are untouched.
void GetResInfo(Handle resource, SInt16 *resID, ResType *type, Str255 name)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    if (!isResource(resource, position))
        return;
    if (resID)
        *resID = position->id;
    if (type)
        *type = position->type;
    if (name)
        fillName(position.file->map.nameOf(*position), name);
}

// As they are in the file. 0 on failure.
SInt16 GetResAttrs(Handle resource)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    return isResource(resource, position) ? position->attributes : SInt16{0};
}

// -1 on failure.
SInt16 HomeResFile(Handle resource)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    return isResource(resource, position) ? position.file->number : noFile;
}

// At most 32767 are told.
SInt16 Count1Types(void)
{
    const std::lock_guard lock(resourceLock());
    const ResourceFile *file = currentResourceFile();
    report(file ? noErr : resFNotFound);
    return file ? told(file->map.types().size()) : SInt16{0};
}

// 0, with resNotFound, if there is no such index.
void Get1IndType(ResType *type, SInt16 index)
{
    const std::lock_guard lock(resourceLock());
    const ResourceFile *file = currentResourceFile();
    const bool isThere = file && index >= 1 && static_cast<std::size_t>(index) <= file->map.types().size();
    report(isThere ? noErr : resNotFound);
    if (type)
        *type = isThere ? file->map.types()[static_cast<std::size_t>(index) - 1].type : 0;
}

SInt16 Count1Resources(ResType type)
{
    const std::lock_guard lock(resourceLock());
    const ResourceFile *file = currentResourceFile();
    const ResourceTypeList *list = file ? file->map.findType(type) : nullptr;
    report(file ? noErr : resFNotFound);
    return list ? told(list->entries.size()) : SInt16{0};
}

// In the order of the file. Where two have one ID, each comes with a handle of its own.
Handle Get1IndResource(ResType type, SInt16 index)
try
{
    const std::lock_guard lock(resourceLock());
    ResourceFile *file = currentResourceFile();
    const ResourceTypeList *list = file ? file->map.findType(type) : nullptr;
    if (list && index >= 1 && static_cast<std::size_t>(index) <= list->entries.size())
        return handleAt({file, list->entries[static_cast<std::size_t>(index) - 1]});
    report(resNotFound);
    return nullptr;
}
catch (const std::bad_alloc &)
{
    report(memFullErr);
    return nullptr;
}

// Of compressed data it is what they take in the file. -1 on failure.
long GetResourceSizeOnDisk(Handle resource)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    std::uint32_t size = 0;
    if (!isResource(resource, position))
        return -1;
    report(itemSize(*position.file, *position, size));
    return lastResult == noErr ? static_cast<long>(size) : -1;
}

// inputOutOfBounds, and nothing is copied, if not all of the bytes lie in the resource. The bytes are always the file's.
void ReadPartialResource(Handle resource, long offset, void *buffer, long count)
{
    const std::lock_guard lock(resourceLock());
    ResourcePosition position;
    std::uint32_t size = 0;
    if (!isResource(resource, position))
        return;
    OSErr result = itemSize(*position.file, *position, size);
    const auto start = static_cast<std::uint64_t>(offset), wanted = static_cast<std::uint64_t>(count);
    if (result == noErr && (offset < 0 || count < 0 || start > size || wanted > size - start))
        result = inputOutOfBounds;
    if (result == noErr && count > 0 && !buffer)
        result = paramErr;
    if (result == noErr)
        result = readItem(*position.file, *position, static_cast<std::uint32_t>(start), {static_cast<std::uint8_t *>(buffer), wanted});
    report(result);
}
