// From what people type to references, and back to paths.
#pragma once

#include "platform/file_records.h"

#include <functional>
#include <string>

namespace host
{

// What to do with a path whose last part is a symbolic link.
enum class Links
{
    follow,
    showThemselves
};

// The path as it is if it begins with '/'; else appended to the current directory. Where a folder serves as the startup volume
// (ZERB_STARTUP_VOLUME), that is the current directory as seen on the volume, or the volume's root if the current directory lies elsewhere.
// An empty path stays empty.
std::string absolutePath(const std::string &path);

// The same place in Linux's own tree, of a path from the startup volume's root.
std::string linuxPathOf(const std::string &path);

// The object at a path. Result: noErr, or what the file manager says. `ref` is written only on success.
OSStatus findObject(const std::string &path, Links links, FSRef &ref);

// The path that a call writes into the buffer that it is given. `path` is written only on success.
OSStatus writtenPath(const std::function<OSStatus(UInt8 *buffer, UInt32 size)> &write, std::string &path);

// The path of an object. `path` is written only on success.
OSStatus pathOfObject(const FSRef &ref, std::string &path);

}   // namespace host
