// The double's forks: which a file has and how large they are, and the bytes of those that are open.

#pragma once

#include "platform/platform.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

struct ForkSizes
{
    SInt64 logical;
    UInt64 physical;
};

struct OpenFork
{
    std::string bytes;
    SInt64 mark = 0;
    std::optional<SInt64> pretendedSize;   // what FSGetForkSize answers instead of the number of bytes
};

// One read that ends otherwise than reads do.
struct PreparedRead
{
    int nth;   // 1 is the next read
    OSErr code;
    ByteCount byteCount;   // that it gives and reports all the same
};

struct ForksDouble
{
    // By the name of the object. A file of which nothing stands here has no forks at all, and a folder never has.
    std::map<std::string, std::vector<ForkSizes>> sizes;

    // What FSIterateForks answers behind the last fork.
    OSErr endOfForks = errFSNoMoreItems;

    std::map<SInt16, OpenFork> open;
    std::optional<PreparedRead> preparedRead;
};
