#include "standin/files/directories.h"

#include "standin/files/change_lock.h"
#include "standin/files/errors.h"
#include "standin/files/idle_folders.h"
#include "standin/files/listings.h"
#include "standin/files/open_levels.h"

#include <algorithm>
#include <fcntl.h>
#include <mutex>
#include <unordered_map>

namespace standin
{

namespace
{

constexpr std::size_t mostOpenFolders = 20;      // beside those of open iterators, which are as many at most
constexpr std::size_t longestPiece = 3800;       // of a path handed to the kernel at once
constexpr std::size_t deepestFolder = 1000000;   // beyond it the remembered parents must be going in a circle

struct OpenFolder
{
    FolderHandle handle;
    std::int64_t lastUse;
    bool isOnMountedDisk;
};

struct OpenFolderTable
{
    std::mutex mutex;
    std::unordered_map<std::uint64_t, OpenFolder> folders;   // by volume and ID
};

// Never destroyed: a thread may still look after idle folders when the process ends.
OpenFolderTable &table()
{
    static OpenFolderTable &folders = *new OpenFolderTable;
    return folders;
}

std::uint64_t keyOf(const Volume &volume, UInt32 id)
{
    return (static_cast<std::uint64_t>(static_cast<UInt16>(volume.number)) << 32) | id;
}

// A disk's root is null too where the disk is gone.
FolderHandle recentlyUsed(const Volume &volume, UInt32 id)
{
    FolderHandle root;
    if (id == fsRtDirID)
        return volume.root.open(Keeping::open, root) == noErr ? root : nullptr;
    const std::int64_t now = linux_calls::milliseconds();
    {
        const std::lock_guard lock(table().mutex);
        const auto found = table().folders.find(keyOf(volume, id));
        if (found != table().folders.end() && now - found->second.lastUse <= longestIdleMilliseconds)
        {
            found->second.lastUse = now;
            return found->second.handle;
        }
    }
    return folderOfLevel(volume.number, id);   // somebody may be walking through it
}

FolderHandle everUsed(const Volume &volume, UInt32 id)
{
    const std::lock_guard lock(table().mutex);
    const auto found = table().folders.find(keyOf(volume, id));
    return found == table().folders.end() ? nullptr : found->second.handle;
}

FolderHandle keep(const Volume &volume, UInt32 id, Descriptor descriptor)
{
    auto handle = std::make_shared<const Descriptor>(std::move(descriptor));
    {
        const std::lock_guard lock(table().mutex);
        auto &folders = table().folders;
        folders.insert_or_assign(keyOf(volume, id), OpenFolder{handle, linux_calls::milliseconds(), volume.isMountedDisk});
        if (folders.size() > mostOpenFolders)
            folders.erase(std::min_element(folders.begin(), folders.end(),
                                           [](const auto &a, const auto &b) { return a.second.lastUse < b.second.lastUse; }));
    }
    if (volume.isMountedDisk)
        noteKeptFolder();
    return handle;
}

bool isFolderOf(const Volume &volume, int descriptor, const Identity &identity)
{
    ObjectStatus status;
    return linux_calls::statusOf(descriptor, status) == 0 && status.mount == volume.rootStatus.mount &&
           sameObject(identityOf(volume, status), identity);
}

// One level down, for kernels that cannot go down a whole path at once, and for looking at each level.
Descriptor openChild(int parent, const std::string &name)
{
    return Descriptor(linux_calls::openAt(parent, name.c_str(), O_PATH | O_DIRECTORY));
}

// The remembered folders from just below an open one down to the wanted one, and that open one.
OSErr collectWay(const Volume &volume, UInt32 id, Anchoring anchoring, std::vector<Folder> &way, FolderHandle &start)
{
    for (;;)
    {
        const bool mayTake = id == fsRtDirID || (anchoring == Anchoring::recent && !way.empty());
        if (mayTake && (start = recentlyUsed(volume, id)))
            break;
        if (id == fsRtDirID)
        {
            if (OSErr result = volume.root.open(Keeping::open, start))
                return result;
            break;
        }
        Folder folder;
        if (way.size() > deepestFolder || !recallFolder(volume, id, folder))
            return dirNFErr;
        id = folder.parentID;
        way.push_back(std::move(folder));
    }
    std::reverse(way.begin(), way.end());
    return noErr;
}

// Goes down the remembered names, as many at a time as fit into a path. Not open if any of them is not there.
Descriptor descend(int start, const std::vector<Folder> &way)
{
    Descriptor current;
    for (std::size_t next = 0; next < way.size();)
    {
        std::string piece = way[next++].name;
        while (next < way.size() && piece.size() + way[next].name.size() < longestPiece)
            piece += '/' + way[next++].name;
        const int from = current.isOpen() ? current.number() : start;
        Descriptor below(linux_calls::openFolderBeneath(from, piece.c_str()));
        current = std::move(below);
        if (!current.isOpen())
            break;
    }
    return current;
}

// The folder by another way than its remembered name: a descriptor left from earlier, or its inode number where the process may open by that.
OSErr findElsewhere(const Volume &volume, const Folder &folder, UInt32 &id)
{
    if (const FolderHandle old = everUsed(volume, folder.id); old && anchorFolder(volume, old->number(), id) == noErr)
        return noErr;
    if (folder.identity.birth == 0)
        return dirNFErr;   // an inode number alone would be a guess
    FolderHandle root;
    if (OSErr result = volume.root.open(Keeping::open, root))
        return result;
    const Descriptor opened(linux_calls::openByInode(root->number(), folder.identity.inode));
    if (!opened.isOpen() || !isFolderOf(volume, opened.number(), folder.identity))
        return dirNFErr;
    return anchorFolder(volume, opened.number(), id);
}

// Down again level by level; where a name does not lead to the remembered folder, it is looked for under other names and in other places.
OSErr descendSlowly(const Volume &volume, FolderHandle start, const std::vector<Folder> &way, FolderHandle &handle)
{
    FolderHandle current = std::move(start);
    UInt32 parentID = way.front().parentID;
    for (const Folder &folder : way)
    {
        Descriptor next = openChild(current->number(), folder.name);
        if (linux_calls::saysUsedUp(next.number()))
            return resultFromErrno(-next.number());
        if (!next.isOpen() || !isFolderOf(volume, next.number(), folder.identity))
        {
            UInt32 id;
            const std::string name = findByIdentity(volume, current->number(), folder.identity);
            next = openChild(current->number(), name);
            // Without births it may be a file that got the inode number: that is nobody's folder, and must not be remembered as one.
            if (!next.isOpen() || !isFolderOf(volume, next.number(), folder.identity))
                return findElsewhere(volume, folder, id) == noErr ? openFolder(volume, way.back().id, handle, Anchoring::anew) : dirNFErr;
            rememberFolder(volume, parentID, name, folder.identity);
        }
        parentID = folder.id;
        current = std::make_shared<const Descriptor>(std::move(next));
    }
    handle = std::move(current);
    return handle->isOpen() ? noErr : dirNFErr;
}

}   // namespace

OSErr openFolder(const Volume &volume, UInt32 id, FolderHandle &handle, Anchoring anchoring)
{
    if (anchoring == Anchoring::recent || id == fsRtDirID)
        if ((handle = recentlyUsed(volume, id)))
            return noErr;
    std::vector<Folder> way;
    FolderHandle start;
    if (OSErr result = collectWay(volume, id, anchoring, way, start))
        return result;
    Descriptor reached = descend(start->number(), way);
    if (reached.isOpen() && isFolderOf(volume, reached.number(), way.back().identity))
    {
        handle = keep(volume, id, std::move(reached));
        return noErr;
    }
    if (linux_calls::saysUsedUp(reached.number()))
        return resultFromErrno(-reached.number());
    return descendSlowly(volume, start, way, handle);
}

OSErr anchorFolder(const Volume &volume, int folder, UInt32 &id)
{
    struct Step
    {
        std::string name;
        Identity identity;
    };
    std::vector<Step> levels;
    Descriptor current = Descriptor(linux_calls::openAt(folder, ".", O_PATH | O_DIRECTORY));
    ObjectStatus status;
    while (current.isOpen() && linux_calls::statusOf(current.number(), status) == 0 && levels.size() < deepestFolder)
    {
        const Identity identity = identityOf(volume, status);
        if (status.mount != volume.rootStatus.mount)
            return dirNFErr;
        if (sameObject(identity, identityOf(volume, volume.rootStatus)))
        {
            id = fsRtDirID;
            for (auto level = levels.rbegin(); level != levels.rend(); ++level)
                id = rememberFolder(volume, id, level->name, level->identity);
            return noErr;
        }
        Descriptor parent(linux_calls::openAt(current.number(), "..", O_PATH | O_DIRECTORY));
        if (!parent.isOpen())
            return dirNFErr;
        std::string name = findByIdentity(volume, parent.number(), identity);
        if (name.empty())
            return dirNFErr;   // deleted, or at the top of everything
        levels.push_back({std::move(name), identity});
        current = std::move(parent);
    }
    return dirNFErr;
}

void forgetDirectory(const Volume &volume, const Identity &identity)
{
    Folder folder;
    FolderHandle closed;
    if (!recallFolder(volume, identity, folder))
        return;
    const std::lock_guard lock(table().mutex);
    if (auto node = table().folders.extract(keyOf(volume, folder.id)))
        closed = std::move(node.mapped().handle);
}

std::size_t closeIdleDirectories(std::int64_t usedBefore)
{
    std::vector<FolderHandle> closed;   // after the mutex is free
    std::size_t left = 0;
    const std::lock_guard lock(table().mutex);
    for (auto entry = table().folders.begin(); entry != table().folders.end();)
    {
        const bool isIdle = entry->second.isOnMountedDisk && entry->second.lastUse < usedBefore;
        left += entry->second.isOnMountedDisk && !isIdle;
        if (isIdle)
            closed.push_back(std::move(entry->second.handle));
        entry = isIdle ? table().folders.erase(entry) : std::next(entry);
    }
    return left;
}

void forgetDirectoriesOf(FSVolumeRefNum volume)
{
    forgetLockDescriptors();
    const std::lock_guard lock(table().mutex);
    std::erase_if(table().folders, [&](const auto &entry) { return entry.first >> 32 == static_cast<UInt16>(volume); });
}

void forgetAllDirectories()
{
    forgetLockDescriptors();
    const std::lock_guard lock(table().mutex);
    table().folders.clear();
}

}   // namespace standin
