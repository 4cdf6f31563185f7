#include "standin/files/change_lock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>

namespace standin
{

namespace
{

constexpr int longestWaitMilliseconds = 2000;
constexpr int pauseMilliseconds = 2;

std::size_t stripeOf(const Volume &volume, UInt32 folderID)
{
    return (folderID * 2654435761u + static_cast<UInt16>(volume.number)) % 64;
}

std::mutex &stripe(std::size_t index)
{
    static std::array<std::mutex, 64> stripes;
    return stripes[index];
}

}   // namespace

OSErr ChangeLock::lockAmongProcesses(const FolderHandle &folder, Descriptor &held)
{
    Descriptor readable(linux_calls::openAt(folder->number(), ".", O_RDONLY | O_DIRECTORY));
    if (!readable.isOpen())
        return noErr;
    const std::int64_t giveUpAt = linux_calls::milliseconds() + longestWaitMilliseconds;
    while (linux_calls::tryLock(readable.number()) == -EWOULDBLOCK)
    {
        if (linux_calls::milliseconds() >= giveUpAt)
            return fBsyErr;
        linux_calls::sleepMilliseconds(pauseMilliseconds);
    }
    held = std::move(readable);
    return noErr;
}

OSErr ChangeLock::take(const Volume &volume, UInt32 folderID, const FolderHandle &folder)
{
    stripes_[0] = std::unique_lock(stripe(stripeOf(volume, folderID)));
    return lockAmongProcesses(folder, held_[0]);
}

OSErr ChangeLock::take(const Volume &volume, UInt32 firstID, const FolderHandle &first, UInt32 secondID, const FolderHandle &second)
{
    if (firstID == secondID)
        return take(volume, firstID, first);
    const bool inOrder = firstID < secondID;
    const std::size_t a = stripeOf(volume, firstID), b = stripeOf(volume, secondID);
    stripes_[0] = std::unique_lock(stripe(std::min(a, b)));
    if (a != b)
        stripes_[1] = std::unique_lock(stripe(std::max(a, b)));
    if (OSErr result = lockAmongProcesses(inOrder ? first : second, held_[0]))
        return result;
    return lockAmongProcesses(inOrder ? second : first, held_[1]);
}

void ChangeLock::release()
{
    for (Descriptor &held : held_)
        held.reset();
    for (auto &stripe : stripes_)
        stripe = {};
}

}   // namespace standin
