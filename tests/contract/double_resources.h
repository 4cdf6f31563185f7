// The double's resource files, one behind the other, and what is loaded of them.

#pragma once

#include "platform/platform.h"

#include <array>
#include <deque>
#include <string>

struct Resource
{
    ResType type;
    SInt16 id;
    std::string bytes;
    std::string name = {};
    Handle handle = nullptr;   // null while it is not in memory; of one block of handles otherwise
};

struct ResourcesDouble
{
    // Of this file, or of it and the older ones behind it; null where there is none.
    Resource *find(std::size_t file, ResType type, SInt16 id);
    Resource *findFrom(std::size_t file, ResType type, SInt16 id);
    Resource *find(Handle handle);

    // Which byte of which resource: 'SICN' 128 + 64.
    std::string describeBytes(const char *address);

    std::array<std::deque<Resource>, 3> files;   // the newest first
    std::size_t current = 1;                     // a search begins here, and so never sees the newest
    bool loads = true;                           // as SetResLoad says
    OSErr lastError = noErr;
};
