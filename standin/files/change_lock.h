// The lock that every change of names or metadata holds: a mutex among the threads of this process, striped by folder, and a lock on the folder among our
// own processes. Other programs take no part in it.
//
// The readable descriptor that the lock among processes needs is kept for a few folders, so that the next change in one of them costs two calls: to lock
// and to unlock. The threads of this process share it; the mutex keeps them apart.
#pragma once

#include "platform/platform.h"
#include "standin/files/directories.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace standin
{

// What a lock is taken for. Looking changes nothing that an open fork has to know of.
enum class LockedFor
{
    changing,
    looking,
};

class ChangeLock
{
public:
    explicit ChangeLock(LockedFor purpose = LockedFor::changing) : purpose_(purpose) {}
    ~ChangeLock() { release(); }
    ChangeLock(const ChangeLock &) = delete;
    ChangeLock &operator=(const ChangeLock &) = delete;

    // Result: noErr; fBsyErr if another process holds the folder for longer than two seconds. A folder that cannot be read cannot be locked among
    // processes either; the change then goes on under the mutex alone.
    OSErr take(const Volume &volume, UInt32 folderID, const FolderHandle &folder);

    // Two folders, always in the same order whoever asks.
    OSErr take(const Volume &volume, UInt32 firstID, const FolderHandle &first, UInt32 secondID, const FolderHandle &second);

    void release();

private:
    LockedFor purpose_;
    std::size_t indices_[2] = {};   // of the mutexes
    std::unique_lock<std::mutex> stripes_[2];
    std::shared_ptr<const Descriptor> held_[2];   // locked as long as they are here
};

// How many changes in a folder, or in one that shares its mutex, this process has ended so far. No system call.
std::uint64_t countOfChanges(FSVolumeRefNum volume, UInt32 folderID);

// The mutex alone: while it is held no thread of this process changes anything in the folder. No system call unless it has to be waited for.
[[nodiscard]] std::unique_lock<std::mutex> holdOffThreads(FSVolumeRefNum volume, UInt32 folderID);

// Closes the descriptors that are kept for locking.
void forgetLockDescriptors();

// Closes those on mounted disks whose folder nobody has open any more. The result is how many stay open there.
std::size_t forgetIdleLockDescriptors();

}   // namespace standin
