// Reading folders: their entries as the disk gives them, and what of them a user sees.
#pragma once

#include "platform/platform.h"
#include "standin/files/nodes.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
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

// A whole folder as it was read: the entries that a user sees, their names back to back.
class Listing
{
public:
    // 0 or a negative errno. Sidecars of files that are there, our leftovers and temporaries are left out.
    int read(int folder);
    std::size_t size() const { return items_.size(); }
    Entry entry(std::size_t index) const;
    bool hasSidecar(std::size_t index) const { return items_[index].hasSidecar; }

private:
    struct Item
    {
        std::uint64_t inode;
        std::uint32_t nameOffset;
        std::uint8_t nameLength, type;
        bool hasSidecar;
    };
    std::string_view nameOf(const Item &item) const;
    void noteSidecars(int folder);
    bool isHidden(int folder, const Item &item, const std::unordered_set<std::string_view> &names) const;
    std::vector<Item> items_;
    std::string names_;
};

// How many entries a user sees.
int countVisibleEntries(int folder, UInt32 &count);

// The name in a folder that has this very object, checked by its own status; empty if there is none.
// A file with several links is not guessed at: only a folder, or a file with one link, is found.
std::string findByIdentity(const Volume &volume, int folder, const Identity &identity);

// The names in a folder that take more than a short name has: those which `matches` accepts, in the folder's order.
std::vector<std::string> namesWhere(int folder, const std::function<bool(std::string_view)> &matches);

}   // namespace standin
