#include "standin/files/long_names.h"

#include "standin/files/listings.h"
#include "standin/files/reference_format.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <unordered_map>

namespace standin
{

namespace
{

using NamesByInode = std::unordered_multimap<std::uint64_t, std::string>;

struct FolderNames
{
    FSVolumeRefNum volume = 0;
    UInt32 folderID = 0;   // 0: not in use
    std::uint64_t lastUse = 0;
    NamesByInode names;
};

struct LongNameTable
{
    std::mutex mutex;
    std::array<FolderNames, 8> folders;
    std::uint64_t uses = 0;
};

LongNameTable &table()
{
    static LongNameTable names;
    return names;
}

// With the mutex held.
FolderNames *find(const Volume &volume, UInt32 folderID)
{
    auto &folders = table().folders;
    const auto found = std::find_if(folders.begin(), folders.end(), [&](const FolderNames &folder) {
        return folder.folderID == folderID && folder.volume == volume.number;
    });
    if (found == folders.end())
        return nullptr;
    found->lastUse = ++table().uses;
    return &*found;
}

FolderNames &leastUsed()
{
    auto &folders = table().folders;
    return *std::min_element(folders.begin(), folders.end(), [](const auto &a, const auto &b) { return a.lastUse < b.lastUse; });
}

}   // namespace

std::vector<std::string> knownLongNames(const Volume &volume, UInt32 folderID, std::uint64_t inode)
{
    std::vector<std::string> known;
    const std::lock_guard lock(table().mutex);
    if (const FolderNames *folder = find(volume, folderID))
        for (auto [name, end] = folder->names.equal_range(inode); name != end; ++name)
            known.push_back(name->second);
    return known;
}

void readLongNames(const Volume &volume, UInt32 folderID, int folder)
{
    NamesByInode names;
    visitEntries(folder, [&](const Entry &entry) {
        if (isLongName(entry.name))
            names.emplace(entry.inode, entry.name);
        return true;
    });
    const std::lock_guard lock(table().mutex);
    FolderNames *known = find(volume, folderID);
    FolderNames &place = known ? *known : leastUsed();
    place.volume = volume.number;
    place.folderID = folderID;
    place.lastUse = ++table().uses;
    place.names.swap(names);   // the old ones go when the mutex is free
}

void noteLongName(const Volume &volume, UInt32 folderID, std::uint64_t inode, std::string_view name)
{
    const std::lock_guard lock(table().mutex);
    FolderNames *folder = find(volume, folderID);
    if (!folder)
        return;
    const auto [first, end] = folder->names.equal_range(inode);
    if (std::none_of(first, end, [&](const auto &entry) { return entry.second == name; }))
        folder->names.emplace(inode, name);
}

}   // namespace standin
