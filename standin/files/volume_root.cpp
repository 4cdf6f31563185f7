#include "standin/files/volume_root.h"

#include "standin/files/errors.h"
#include "standin/files/idle_folders.h"

#include <cerrno>

namespace standin
{

namespace
{

// What says that the place itself is gone, or is no place for a disk any more.
bool saysGone(int failure)
{
    return failure == -ENOENT || failure == -ENOTDIR || failure == -ELOOP || failure == -ENODEV || failure == -ENXIO;
}

bool sameTime(const std::timespec &a, const std::timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}   // namespace

bool isSameRoot(const ObjectStatus &a, const ObjectStatus &b)
{
    const bool sameNumbers = a.mount == b.mount && a.device == b.device && a.inode == b.inode;
    return sameNumbers && (a.mountIsUnique || !a.hasBirth || !b.hasBirth || sameTime(a.birth, b.birth));
}

VolumeRoot::VolumeRoot(std::string path, Descriptor opened, const ObjectStatus &status, bool isMountedDisk)
    : status_(status), path_(std::move(path))
{
    auto root = std::make_shared<const Descriptor>(std::move(opened));
    if (!isMountedDisk)
        always_ = std::move(root);
}

OSErr VolumeRoot::openAnew(RootHandle &root) const
{
    ObjectStatus status;
    auto opened = std::make_shared<const Descriptor>(linux_calls::openAbsoluteFolder(path_.empty() ? "/" : path_.c_str()));
    if (!opened->isOpen())
        return saysGone(opened->number()) ? static_cast<OSErr>(nsvErr) : resultFromErrno(-opened->number());
    if (const int failure = linux_calls::statusOf(opened->number(), status))
        return resultFromErrno(-failure);
    if (!isSameRoot(status, status_))
        return nsvErr;
    root = std::move(opened);
    return noErr;
}

OSErr VolumeRoot::open(Keeping keeping, RootHandle &root) const
{
    bool isNew = false;
    if (always_)
    {
        root = always_;
        return noErr;
    }
    {
        const std::lock_guard lock(mutex_);
        root = recent_.lock();
        if (!root)
            if (OSErr result = openAnew(root))
                return result;
        recent_ = root;
        if (keeping == Keeping::open)
        {
            isNew = !kept_;
            kept_ = root;
            lastUse_ = linux_calls::coarseMilliseconds();
        }
    }
    if (isNew)
        noteKeptFolder();
    return noErr;
}

OSErr VolumeRoot::checkIsThere() const
{
    RootHandle root;
    if (always_)
        return noErr;
    const std::lock_guard lock(mutex_);
    return openAnew(root);
}

std::string VolumeRoot::path() const
{
    const std::lock_guard lock(mutex_);
    return path_;
}

void VolumeRoot::moveTo(const std::string &path) const
{
    const std::lock_guard lock(mutex_);
    path_ = path;
}

std::size_t VolumeRoot::closeIfIdle(std::int64_t usedBefore) const
{
    RootHandle closed;   // after the mutex is free
    const std::lock_guard lock(mutex_);
    if (kept_ && lastUse_ < usedBefore)
        closed = std::move(kept_);
    return kept_ ? 1 : 0;
}

}   // namespace standin
