// Which handle belongs to which entry of which open file.
//
// An entry has one handle at most, as long as it is neither released nor detached; a handle may be empty, where SetResLoad had said so.
#pragma once

#include "standin/resources/resource_files.h"

#include <mutex>
#include <string>

namespace standin
{

// Guards everything that this folder keeps. DisposeHandle takes it for a handle that belongs to an entry, so such a handle is never disposed of under it.
std::mutex &resourceLock();

struct ResourcePosition
{
    ResourceFile *file = nullptr;
    std::uint32_t entry = 0;

    const ResourceEntry &operator*() const { return file->map.entries()[entry]; }
    const ResourceEntry *operator->() const { return &file->map.entries()[entry]; }
};

// The handle of an entry, made if there is none, and filled if `load` says so and it is empty.
// Results: noErr; memFullErr; badExtResource for compressed data and for bytes that do not lie in the file; the code of reading.
// With any but noErr, `handle` is untouched, and the entry has the handle that it had.
OSErr handleOf(const ResourcePosition &position, bool load, Handle &handle);

// Fills the handle if it is empty. Results as above.
OSErr load(const ResourcePosition &position, Handle handle);

// The bytes that a loaded handle holds or would hold. Results as above.
OSErr copyBytes(const ResourcePosition &position, std::string &bytes);

// Whose handle this is. False if it belongs to no entry.
bool findPosition(Handle handle, ResourcePosition &position);

// The handle is an ordinary one from now on.
void forget(Handle handle);

// Gives back the handle, which belongs to an entry; all handles of a file.
void release(Handle handle);
void releaseAll(ResourceFile &file);

}   // namespace standin
