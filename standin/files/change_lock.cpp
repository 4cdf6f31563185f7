#include "standin/files/change_lock.h"

#include "standin/files/idle_folders.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <list>
#include <pthread.h>

namespace standin
{

namespace
{

constexpr int longestWaitMilliseconds = 2000;
constexpr int pauseMilliseconds = 2;
constexpr std::size_t mostKeptDescriptors = 8;

std::size_t stripeOf(FSVolumeRefNum volume, UInt32 folderID)
{
    return (folderID * 2654435761u + static_cast<UInt16>(volume)) % 64;
}

std::mutex &stripe(std::size_t index)
{
    static std::array<std::mutex, 64> stripes;
    return stripes[index];
}

std::atomic<std::uint64_t> &changesOf(std::size_t index)
{
    static std::array<std::atomic<std::uint64_t>, 64> changes{};
    return changes[index];
}

// --- the descriptors that are kept ---------------------------------------------------------------------------------------------------------

// A child made by fork() shares its parent's descriptors, and so it would share its locks.
std::atomic<unsigned> &forkCount()
{
    static std::atomic<unsigned> count{0};
    static const int registered = ::pthread_atfork(nullptr, nullptr, [] { forkCount().fetch_add(1); });
    (void)registered;
    return count;
}

struct KeptDescriptor
{
    std::weak_ptr<const Descriptor> folder;   // while this very handle is in use, the other descriptor is of the same folder
    std::shared_ptr<const Descriptor> readable;
    unsigned forkCount;
    bool isOnMountedDisk;
};

struct KeptTable
{
    std::mutex mutex;
    std::list<KeptDescriptor> descriptors;   // the one used last is the first
};

// Never destroyed: a thread may still look after idle folders when the process ends.
KeptTable &kept()
{
    static KeptTable &table = *new KeptTable;
    return table;
}

std::shared_ptr<const Descriptor> recallDescriptor(const FolderHandle &folder)
{
    const std::lock_guard lock(kept().mutex);
    auto &all = kept().descriptors;
    const unsigned forks = forkCount();
    all.remove_if([&](const KeptDescriptor &each) { return each.folder.expired() || each.forkCount != forks; });
    const auto found = std::find_if(all.begin(), all.end(), [&](const KeptDescriptor &each) { return each.folder.lock() == folder; });
    if (found == all.end())
        return nullptr;
    all.splice(all.begin(), all, found);
    return found->readable;
}

void keepDescriptor(const Volume &volume, const FolderHandle &folder, const std::shared_ptr<const Descriptor> &readable)
{
    const std::lock_guard lock(kept().mutex);
    auto &all = kept().descriptors;
    all.push_front({folder, readable, forkCount(), volume.isMountedDisk});
    if (all.size() > mostKeptDescriptors)
        all.pop_back();
    if (volume.isMountedDisk)
        noteKeptFolder();
}

void dropDescriptor(const std::shared_ptr<const Descriptor> &readable)
{
    const std::lock_guard lock(kept().mutex);
    kept().descriptors.remove_if([&](const KeptDescriptor &each) { return each.readable == readable; });
}

// Null for a folder that may not be read.
std::shared_ptr<const Descriptor> readableDescriptor(const Volume &volume, const FolderHandle &folder)
{
    if (auto known = recallDescriptor(folder))
        return known;
    Descriptor opened(linux_calls::openAt(folder->number(), ".", O_RDONLY | O_DIRECTORY));
    if (!opened.isOpen())
        return nullptr;
    auto readable = std::make_shared<const Descriptor>(std::move(opened));
    keepDescriptor(volume, folder, readable);
    return readable;
}

OSErr lockAmongProcesses(const Volume &volume, const FolderHandle &folder, std::shared_ptr<const Descriptor> &held)
{
    auto readable = readableDescriptor(volume, folder);
    if (!readable)
        return noErr;
    const std::int64_t giveUpAt = linux_calls::milliseconds() + longestWaitMilliseconds;
    int failure;
    while ((failure = linux_calls::tryLock(readable->number())) == -EWOULDBLOCK)
    {
        if (linux_calls::milliseconds() >= giveUpAt)
            return fBsyErr;
        linux_calls::sleepMilliseconds(pauseMilliseconds);
    }
    if (failure == 0)   // there are disks without locks
        held = std::move(readable);
    return noErr;
}

// A lock that cannot be taken off goes with its descriptor.
void unlockAmongProcesses(std::shared_ptr<const Descriptor> &held)
{
    if (held && linux_calls::unlock(held->number()) < 0)
        dropDescriptor(held);
    held.reset();
}

}   // namespace

OSErr ChangeLock::take(const Volume &volume, UInt32 folderID, const FolderHandle &folder)
{
    indices_[0] = stripeOf(volume.number, folderID);
    stripes_[0] = std::unique_lock(stripe(indices_[0]));
    return lockAmongProcesses(volume, folder, held_[0]);
}

OSErr ChangeLock::take(const Volume &volume, UInt32 firstID, const FolderHandle &first, UInt32 secondID, const FolderHandle &second)
{
    if (firstID == secondID)
        return take(volume, firstID, first);
    const bool inOrder = firstID < secondID;
    const std::size_t a = stripeOf(volume.number, firstID), b = stripeOf(volume.number, secondID);
    indices_[0] = std::min(a, b);
    indices_[1] = std::max(a, b);
    stripes_[0] = std::unique_lock(stripe(indices_[0]));
    if (a != b)
        stripes_[1] = std::unique_lock(stripe(indices_[1]));
    if (OSErr result = lockAmongProcesses(volume, inOrder ? first : second, held_[0]))
        return result;
    return lockAmongProcesses(volume, inOrder ? second : first, held_[1]);
}

void ChangeLock::release()
{
    for (auto &held : held_)
        unlockAmongProcesses(held);
    for (std::size_t i = 0; i < 2; ++i)
    {
        if (stripes_[i].owns_lock() && purpose_ == LockedFor::changing)
            changesOf(indices_[i]).fetch_add(1);
        stripes_[i] = {};
    }
}

std::uint64_t countOfChanges(FSVolumeRefNum volume, UInt32 folderID)
{
    return changesOf(stripeOf(volume, folderID)).load();
}

std::unique_lock<std::mutex> holdOffThreads(FSVolumeRefNum volume, UInt32 folderID)
{
    return std::unique_lock(stripe(stripeOf(volume, folderID)));
}

void forgetLockDescriptors()
{
    const std::lock_guard lock(kept().mutex);
    kept().descriptors.clear();
}

std::size_t forgetIdleLockDescriptors()
{
    const std::lock_guard lock(kept().mutex);
    auto &all = kept().descriptors;
    all.remove_if([](const KeptDescriptor &each) { return each.isOnMountedDisk && each.folder.expired(); });
    return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), [](const KeptDescriptor &each) { return each.isOnMountedDisk; }));
}

}   // namespace standin
