#include "standin/files/nodes.h"

#include <mutex>
#include <unordered_map>

namespace standin
{

namespace
{

constexpr UInt32 firstPlainID = 16, lastPlainID = 0x7FFFFFFF, hashedIDs = 0x80000000;

struct FolderTable
{
    std::mutex mutex;
    std::unordered_map<std::uint64_t, Folder> folders;   // by volume and ID
};

FolderTable &table()
{
    static FolderTable folders;
    return folders;
}

std::uint64_t keyOf(FSVolumeRefNum volume, UInt32 id)
{
    return (static_cast<std::uint64_t>(static_cast<UInt16>(volume)) << 32) | id;
}

// Spreads every bit over all (the finaliser of a well-known mixing function).
std::uint64_t mixed(std::uint64_t value)
{
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
}

// The candidates for an ID in order: attempt 0 is the rule, the others serve when a folder that is remembered has taken it.
UInt32 candidateID(const Volume &volume, const Identity &identity, unsigned attempt)
{
    if (attempt == 0 && identity.device == volume.rootStatus.device && identity.inode >= firstPlainID && identity.inode <= lastPlainID)
        return static_cast<UInt32>(identity.inode);
    return hashedIDs | static_cast<UInt32>(mixed(identity.inode ^ mixed(identity.device + attempt)) >> 33);
}

bool isRootOf(const Volume &volume, const Identity &identity)
{
    return identity.inode == volume.rootStatus.inode && identity.device == volume.rootStatus.device;
}

// With the mutex held: the folder's entry, or the free ID that is its own.
Folder *findByIdentity(const Volume &volume, const Identity &identity, UInt32 &id)
{
    for (unsigned attempt = 0;; ++attempt)
    {
        id = candidateID(volume, identity, attempt);
        const auto found = table().folders.find(keyOf(volume.number, id));
        if (found == table().folders.end())
            return nullptr;
        if (sameObject(found->second.identity, identity))
            return &found->second;
    }
}

Folder rootFolder(const Volume &volume)
{
    return {fsRtDirID, fsRtParID, ".", identityOf(volume, volume.rootStatus)};
}

}   // namespace

Birth packBirth(const std::timespec &time)
{
    if (time.tv_sec < 0)
        return 1;   // before 1970: told from "unknown", not from each other
    return (static_cast<std::uint64_t>(time.tv_sec) << 30 | static_cast<std::uint64_t>(time.tv_nsec)) & 0x7FFFFFFFFFFFFFFF;
}

Identity identityOf(const Volume &volume, const ObjectStatus &status)
{
    return {status.device, status.inode, volume.comparesBirths && status.hasBirth ? packBirth(status.birth) : 0};
}

bool sameObject(const Identity &a, const Identity &b)
{
    return a.inode == b.inode && a.device == b.device && (a.birth == b.birth || a.birth == 0 || b.birth == 0);
}

UInt32 nodeIDOf(const Volume &volume, const Identity &identity)
{
    return candidateID(volume, identity, 0);
}

UInt32 rememberFolder(const Volume &volume, UInt32 parentID, std::string_view name, const Identity &identity)
{
    if (isRootOf(volume, identity))
        return fsRtDirID;
    const std::lock_guard lock(table().mutex);
    UInt32 id;
    if (Folder *known = findByIdentity(volume, identity, id))
    {
        known->parentID = parentID;
        known->name = name;
        return id;
    }
    table().folders.emplace(keyOf(volume.number, id), Folder{id, parentID, std::string(name), identity});
    return id;
}

bool recallFolder(const Volume &volume, UInt32 id, Folder &folder)
{
    if (id == fsRtDirID)
    {
        folder = rootFolder(volume);
        return true;
    }
    const std::lock_guard lock(table().mutex);
    const auto found = table().folders.find(keyOf(volume.number, id));
    if (found == table().folders.end())
        return false;
    folder = found->second;
    return true;
}

bool recallFolder(const Volume &volume, const Identity &identity, Folder &folder)
{
    if (isRootOf(volume, identity))
        return recallFolder(volume, fsRtDirID, folder);
    const std::lock_guard lock(table().mutex);
    UInt32 id;
    const Folder *known = findByIdentity(volume, identity, id);
    if (known)
        folder = *known;
    return known != nullptr;
}

void forgetFoldersOf(FSVolumeRefNum volume)
{
    const std::lock_guard lock(table().mutex);
    std::erase_if(table().folders, [&](const auto &entry) { return entry.first >> 32 == static_cast<UInt16>(volume); });
}

void forgetAllFolders()
{
    const std::lock_guard lock(table().mutex);
    table().folders.clear();
}

}   // namespace standin
