// Reading folders: their entries as the disk gives them, and what of them a user sees.
#pragma once

#include "platform/platform.h"
#include "standin/files/nodes.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace standin
{

struct Entry
{
    std::uint64_t inode;
    unsigned char type;   // DT_REG, DT_DIR, …; DT_UNKNOWN where the disk does not say
    std::string_view name;
};

// Gives every entry but "." and ".." to `visit` until it says false. `folder` may be an O_PATH descriptor.
// The result is 0 or a negative errno.
int visitEntries(int folder, const std::function<bool(const Entry &)> &visit);

// The temporary files of the layer itself begin with this; nobody else sees them.
constexpr std::string_view temporaryPrefix = ".zerb-";

// How many entries a user sees: sidecars of files that are there, our leftovers and temporaries are not counted.
int countVisibleEntries(int folder, UInt32 &count);

// The name in a folder that has this very object, checked by its own status; empty if there is none.
// A file with several links is not guessed at: only a folder, or a file with one link, is found.
std::string findByIdentity(const Volume &volume, int folder, const Identity &identity);

// The names in a folder that take more than a short name has: those which `matches` accepts, in the folder's order.
std::vector<std::string> namesWhere(int folder, const std::function<bool(std::string_view)> &matches);

}   // namespace standin
