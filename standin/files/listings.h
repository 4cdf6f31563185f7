// Reading folders: their entries as the disk gives them, and what of them a user sees.
#pragma once

#include "platform/platform.h"
#include "standin/files/nodes.h"

#include <functional>
#include <span>
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

struct ListedEntry : Entry
{
    bool hasSidecar;
};

// Gives every entry but "." and ".." to `visit` until it says false. `folder` may be an O_PATH descriptor.
// The result is 0 or a negative errno.
int visitEntries(int folder, const std::function<bool(const Entry &)> &visit);

// The temporary files of the layer itself begin with this; nobody else sees them.
constexpr std::string_view temporaryPrefix = ".zerb-";

struct ListingPiece;

// A whole folder as it was read: the entries that a user sees, in the disk's order. An entry takes eleven bytes and its name.
class Listing
{
public:
    Listing() = default;
    Listing(Listing &&other) noexcept;
    Listing &operator=(Listing &&) = delete;
    ~Listing();

    // Reads on from where the descriptor stands. Sidecars of files that are there, our leftovers and temporaries are left out.
    // 0 or a negative errno.
    int read(int readable);

    // How many entries a user sees.
    std::uint32_t size() const { return visible_; }

    // Stands before an entry, or at the end.
    class Position
    {
        friend class Listing;
        const ListingPiece *piece = nullptr;
        std::uint32_t offset = 0;
    };
    Position begin() const;

    // Gives the entry behind a position, which moves on. False at the end.
    bool next(Position &position, ListedEntry &entry) const;

private:
    void append(std::span<const char> packed);
    void noteSidecars(int folder);
    ListingPiece *first_ = nullptr, *last_ = nullptr;
    std::uint32_t visible_ = 0;
};

// How many entries a user sees.
int countVisibleEntries(int folder, UInt32 &count);

// The name in a folder that has this very object, checked by its own status; empty if there is none.
// A file with several links is not guessed at: only a folder, or a file with one link, is found.
std::string findByIdentity(const Volume &volume, int folder, const Identity &identity);

// The names in a folder that take more than a short name has: those which `matches` accepts, in the folder's order.
std::vector<std::string> namesWhere(int folder, const std::function<bool(std::string_view)> &matches);

}   // namespace standin
