#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

std::string describe(const Resource &resource)
{
    return codeText(resource.type) + ' ' + decimal(resource.id);
}

// A resource that is found has a handle. Its bytes come only where loading is on; without them the handle is empty.
Handle handleOf(Resource *resource)
{
    if (resource == nullptr)
        return nullptr;
    PlatformDouble &platform = PlatformDouble::current();
    if (resource->handle == nullptr)
        resource->handle = platform.handles.addEmpty();
    platform.nameAddress(resource->handle, describe(*resource));
    if (*resource->handle == nullptr && platform.resources.loads)
        platform.handles.find(resource->handle)->fill(resource->bytes);
    return resource->handle;
}

}   // namespace

Resource *ResourcesDouble::find(std::size_t file, ResType type, SInt16 id)
{
    for (Resource &each : files[file])
        if (each.type == type && each.id == id)
            return &each;
    return nullptr;
}

Resource *ResourcesDouble::findFrom(std::size_t file, ResType type, SInt16 id)
{
    for (; file < files.size(); ++file)
        if (Resource *found = find(file, type, id))
            return found;
    return nullptr;
}

Resource *ResourcesDouble::find(Handle handle)
{
    for (std::deque<Resource> &file : files)
        for (Resource &each : file)
            if (handle != nullptr && each.handle == handle)
                return &each;
    return nullptr;
}

std::string ResourcesDouble::describeBytes(const char *address)
{
    for (std::deque<Resource> &file : files)
        for (Resource &each : file)
            if (each.handle != nullptr && address >= *each.handle && address < *each.handle + each.bytes.size())
                return describe(each) + " + " + decimal(address - *each.handle);
    return "bytes";
}

Handle GetResource(ResType type, SInt16 resID)
{
    PlatformDouble &platform = PlatformDouble::current();
    if (platform.record("GetResource", {codeText(type), decimal(resID)}) != noErr)
        return nullptr;
    return handleOf(platform.resources.findFrom(platform.resources.current, type, resID));
}

Handle Get1Resource(ResType type, SInt16 resID)
{
    PlatformDouble &platform = PlatformDouble::current();
    if (platform.record("Get1Resource", {codeText(type), decimal(resID)}) != noErr)
        return nullptr;
    return handleOf(platform.resources.find(platform.resources.current, type, resID));
}

// From then on it is a block like any other.
void DetachResource(Handle handle)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("DetachResource", {platform.pointer(handle, "handle")});
    Resource *resource = platform.resources.find(handle);
    platform.resources.lastError = resource == nullptr ? resNotFound : OSErr{noErr};
    if (resource != nullptr)
        resource->handle = nullptr;
}

// What is no resource, or no longer one, is left alone. A menu is a resource too.
void ReleaseResource(Handle handle)
{
    PlatformDouble &platform = PlatformDouble::current();
    if (OpaqueMenuRef *menu = platform.menus.find(handle))
    {
        platform.note("ReleaseResource", {MenusDouble::describe(menu)});
        menu->isReleased = true;
        return;
    }
    platform.note("ReleaseResource", {platform.pointer(handle, "handle")});
    Resource *resource = platform.resources.find(handle);
    platform.resources.lastError = resource == nullptr ? resNotFound : OSErr{noErr};
    if (resource == nullptr)
        return;
    platform.handles.remove(handle);
    resource->handle = nullptr;
}

void SetResLoad(Boolean load)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("SetResLoad", {decimal(load)});
    platform.resources.loads = load != 0;
}

void GetResInfo(Handle handle, SInt16 *resID, ResType *type, Str255 name)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetResInfo", {platform.pointer(handle, "handle"), platform.pointer(resID, "id"), platform.pointer(type, "type"),
                                 platform.pointer(name, "name")});
    const Resource *resource = platform.resources.find(handle);
    platform.resources.lastError = resource == nullptr ? resNotFound : OSErr{noErr};
    if (resource == nullptr)
        return;
    *resID = resource->id;
    *type = resource->type;
    name[0] = static_cast<unsigned char>(resource->name.size());
    std::memcpy(name + 1, resource->name.data(), resource->name.size());
}
