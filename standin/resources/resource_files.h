// The chain of open resource files. Maps are read once, when a file is opened; the bytes of a resource when they are asked for.
//
// Everything here is called with the lock of loaded_resources.h held.
#pragma once

#include "standin/resources/resource_format.h"

namespace standin
{

struct ResourceFile
{
    SInt16 number = 0;   // of the open fork
    FSRef object{};
    std::uint64_t start = 0, size = 0;   // of the resources, inside that fork
    ResourceHeader header{};
    ResourceMap map;
    std::unordered_map<std::uint32_t, Handle> handles;   // by the entry's number
};

// Opens the file's resource fork; where that has no bytes, the file itself, as a bare resource fork or a container of one. The file becomes the current
// one, unless it was open already.
// Results: noErr; the code of opening or reading a fork; eofErr if there is nothing to read in either fork, or a container has no resource fork;
// mapReadErr if there is something and it is no resource file, or a damaged one.
OSErr openResourceFile(const FSRef &object, SInt8 permission, SInt16 &number);

// Takes a file out of the chain; its handles are the caller's business before. Where it was the current one, that is now the one opened before it,
// or else the newest.
void closeResourceFile(ResourceFile &file);

ResourceFile *findResourceFile(SInt16 number);          // null if it is not open
ResourceFile *currentResourceFile();                    // null if none is open
ResourceFile *openedBefore(const ResourceFile &file);   // null for the first one
void useResourceFile(const ResourceFile &file);

// The bytes of an entry as they are in the file.
// Results: noErr; badExtResource if they do not lie in the file; the code of reading.
OSErr itemSize(const ResourceFile &file, const ResourceEntry &entry, std::uint32_t &size);
OSErr readItem(const ResourceFile &file, const ResourceEntry &entry, std::uint32_t offset, std::span<std::uint8_t> bytes);

}   // namespace standin
