// The double's relocatable blocks. They move whenever they grow.

#pragma once

#include "platform/platform.h"

#include <list>
#include <memory>
#include <string>

struct RelocatableBlock
{
    void fill(const std::string &contents);

    Ptr master;   // what the handle points to
    std::unique_ptr<char[]> bytes;
    Size size;
    bool isLocked = false;
};

struct HandlesDouble
{
    // A handle's block, or null.
    RelocatableBlock *find(Handle handle);

    // A new block without any bytes, as of a resource that is not loaded: its handle points to null.
    Handle addEmpty();

    void remove(Handle handle);

    std::list<RelocatableBlock> blocks;   // all that were made and not disposed of
    OSErr lastError = noErr;              // what MemError answers
};
