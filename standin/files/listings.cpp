#include "standin/files/listings.h"

#include "standin/files/linux_calls.h"
#include "standin/files/names.h"
#include "standin/files/sidecar_store.h"

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unordered_set>

namespace standin
{

namespace
{

// The kernel's struct linux_dirent64, read field by field: the entries in the buffer are aligned, but its type is not ours.
struct EntryHeader
{
    std::uint64_t inode;
    std::int64_t position;
    std::uint16_t length;
    std::uint8_t type;
};
constexpr std::size_t nameOffset = 19;

bool isDots(std::string_view name)
{
    return name == "." || name == "..";
}

// Gives the entries of one filled buffer; false once `visit` said so.
bool visitBuffer(std::span<const char> filled, const std::function<bool(const Entry &)> &visit)
{
    for (std::size_t offset = 0; offset + nameOffset < filled.size();)
    {
        const char *record = filled.data() + offset;
        EntryHeader header;
        std::memcpy(&header, record, nameOffset);
        const std::string_view name(record + nameOffset);
        if (!isDots(name) && !visit({header.inode, header.type, name}))
            return false;
        offset += header.length;
    }
    return true;
}

}   // namespace

int visitEntries(int folder, const std::function<bool(const Entry &)> &visit)
{
    const int opened = linux_calls::openAt(folder, ".", O_RDONLY | O_DIRECTORY);
    if (opened < 0)
        return opened;
    const Descriptor readable(opened);
    alignas(8) char buffer[32768];
    for (;;)
    {
        const ssize_t filled = linux_calls::readDirectory(readable.number(), buffer);
        if (filled <= 0)
            return static_cast<int>(filled);
        if (!visitBuffer({buffer, static_cast<std::size_t>(filled)}, visit))
            return 0;
    }
}

std::string_view Listing::nameOf(const Item &item) const
{
    return std::string_view(names_).substr(item.nameOffset, item.nameLength);
}

Entry Listing::entry(std::size_t index) const
{
    const Item &item = items_[index];
    return {item.inode, item.type, nameOf(item)};
}

// An orphan may be somebody's only copy of a fork: it is shown as a file of its own.
bool Listing::isHidden(int folder, const Item &item, const std::unordered_set<std::string_view> &names) const
{
    const std::string_view name = nameOf(item);
    if (name.starts_with(temporaryPrefix))
        return true;
    if (!looksLikeSidecar(name) || item.type == DT_DIR)
        return false;
    const std::string_view owner = name.substr(2);
    return owner == "." || names.contains(owner) || isLeftoverSidecar(folder, std::string(name));
}

int Listing::read(int folder)
{
    bool anySidecars = false;
    const int result = visitEntries(folder, [&](const Entry &entry) {
        anySidecars |= looksLikeSidecar(entry.name) || entry.name.starts_with(temporaryPrefix);
        items_.push_back(
            {entry.inode, static_cast<std::uint32_t>(names_.size()), static_cast<std::uint8_t>(entry.name.size()), entry.type, false});
        names_ += entry.name;
        return true;
    });
    if (result == 0 && anySidecars)
        noteSidecars(folder);
    return result;
}

// Who has a sidecar, and which entries are nothing but that.
void Listing::noteSidecars(int folder)
{
    std::unordered_set<std::string_view> names;
    for (const Item &item : items_)
        names.insert(nameOf(item));
    for (Item &item : items_)
        item.hasSidecar = names.contains(sidecarNameOf(nameOf(item)));
    std::erase_if(items_, [&](const Item &item) { return isHidden(folder, item, names); });
}

int countVisibleEntries(int folder, UInt32 &count)
{
    Listing listing;
    const int result = listing.read(folder);
    count = static_cast<UInt32>(listing.size());
    return result;
}

std::string findByIdentity(const Volume &volume, int folder, const Identity &identity)
{
    std::string found;
    visitEntries(folder, [&](const Entry &entry) {
        if (entry.inode != identity.inode)
            return true;
        const std::string name(entry.name);
        ObjectStatus status;
        if (linux_calls::statusAt(folder, name.c_str(), status) < 0 || !sameObject(identityOf(volume, status), identity))
            return true;
        if (status.isFolder() || status.links == 1)
            found = name;
        return found.empty();
    });
    return found;
}

std::vector<std::string> namesWhere(int folder, const std::function<bool(std::string_view)> &matches)
{
    std::vector<std::string> names;
    visitEntries(folder, [&](const Entry &entry) {
        if (matches(entry.name))
            names.emplace_back(entry.name);
        return true;
    });
    return names;
}

}   // namespace standin
