// The lock that every change of names or metadata holds: a mutex among the threads of this process, striped by folder, and a lock on the folder among our
// own processes. Other programs take no part in it.
#pragma once

#include "platform/platform.h"
#include "standin/files/directories.h"

#include <mutex>

namespace standin
{

class ChangeLock
{
public:
    // Result: noErr; fBsyErr if another process holds the folder for longer than two seconds. A folder that cannot be read cannot be locked among
    // processes either; the change then goes on under the mutex alone.
    OSErr take(const Volume &volume, UInt32 folderID, const FolderHandle &folder);

    // Two folders, always in the same order whoever asks.
    OSErr take(const Volume &volume, UInt32 firstID, const FolderHandle &first, UInt32 secondID, const FolderHandle &second);

    void release();

private:
    OSErr lockAmongProcesses(const FolderHandle &folder, Descriptor &held);
    std::unique_lock<std::mutex> stripes_[2];
    Descriptor held_[2];
};

}   // namespace standin
