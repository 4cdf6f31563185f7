// Copying one file, by the volume's service or fork by fork.
#pragma once

#include "host/command.h"

#include "platform/file_records.h"

#include <functional>
#include <optional>

namespace host
{

enum class CopyWay
{
    service,   // FSCopyFile: the volume copies
    forks      // FSCopyFork and FSCopyFileMgrAttributes: this program copies
};

// Where a copy is to go: a folder, and the name there unless it keeps its own.
struct CopyTarget
{
    const FSRef &folder;
    std::optional<HFSUniStr255> name;
};

// What came of it, and how.
struct Copied
{
    OSErr result = noErr;
    const char *way = "";   // for people: "by the volume", …
};

// Copies a file; nothing is replaced, and after a failure nothing is left of the copy. A name that the service cannot take exactly, since it is
// given a short name of 31 bytes, is given by renaming a copy that was made under a temporary name.
// `advance` is told of bytes as they are copied fork by fork; the service tells by standin::setCopyProgress.
Copied copyFile(const Plugin &plugin, const FSRef &file, const CopyTarget &target, CopyWay way, const std::function<void(UInt64)> &advance);

// Whether the volume of an object says that it copies files.
bool offersCopying(const FSRef &object);

}   // namespace host
