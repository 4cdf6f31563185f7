// The double's relocatable blocks. They move whenever they grow.

#pragma once

#include "platform/platform.h"

#include <list>
#include <memory>

struct RelocatableBlock
{
    Ptr master;   // what the handle points to
    std::unique_ptr<char[]> bytes;
    Size size;
};

struct HandlesDouble
{
    // A handle's block, or null.
    RelocatableBlock *find(Handle handle);

    std::list<RelocatableBlock> blocks;   // all that were made and not disposed of
    OSErr lastError = noErr;              // what MemError answers
};
