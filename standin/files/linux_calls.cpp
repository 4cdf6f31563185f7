#include "standin/files/held_clock.h"
#include "standin/files/linux_repeated.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/openat2.h>
#include <linux/stat.h>
#include <new>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace standin
{

using namespace linux_calls;

namespace
{

std::timespec fromStatx(const statx_timestamp &time)
{
    return {static_cast<time_t>(time.tv_sec), static_cast<long>(time.tv_nsec)};
}

// Since Linux 6.8 a mount has a number that no later one gets, and older headers do not know it. Older kernels give the other number.
constexpr unsigned uniqueMountNumber = 0x4000;

void take(const struct statx &from, ObjectStatus &to)
{
    to.device = (static_cast<std::uint64_t>(from.stx_dev_major) << 32) | from.stx_dev_minor;
    to.inode = from.stx_ino;
    to.mount = (from.stx_mask & (STATX_MNT_ID | uniqueMountNumber)) ? from.stx_mnt_id : 0;
    to.mountIsUnique = (from.stx_mask & uniqueMountNumber) != 0;
    to.mode = from.stx_mode;
    to.links = from.stx_nlink;
    to.user = from.stx_uid;
    to.group = from.stx_gid;
    to.size = from.stx_size;
    to.allocated = from.stx_blocks * 512;
    to.access = fromStatx(from.stx_atime);
    to.change = fromStatx(from.stx_ctime);
    to.modification = fromStatx(from.stx_mtime);
    to.birth = fromStatx(from.stx_btime);
    to.hasBirth = (from.stx_mask & STATX_BTIME) != 0;
    to.isMountPoint = (from.stx_attributes & from.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0;
}

int status(int descriptor, const char *name, int flags, ObjectStatus &result)
{
    struct statx record;
    const int failure = repeated([&] {
        return statx(descriptor, name, flags | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
                     STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID | uniqueMountNumber, &record);
    });
    if (failure == 0)
        take(record, result);
    return failure;
}

std::atomic<std::int64_t> heldMilliseconds{0};   // 0: the clocks go

std::int64_t millisecondsOf(clockid_t clock)
{
    if (const std::int64_t held = heldMilliseconds.load(std::memory_order_relaxed))
        return held;
    std::timespec time;
    ::clock_gettime(clock, &time);
    return static_cast<std::int64_t>(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

}   // namespace

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    std::swap(number_, other.number_);
    return *this;
}

void Descriptor::reset()
{
    if (number_ < 0)
        return;
    if (countsCalls)
        callCount.fetch_add(1, std::memory_order_relaxed);
    ::close(std::exchange(number_, -1));   // never again after EINTR: Linux has closed it all the same
}

namespace linux_calls
{

std::uint64_t count()
{
    return callCount.load(std::memory_order_relaxed);
}

void setCallFilter(CallFilter filter)
{
    callFilter = filter;
}

void setMostBytesAtOnce(std::size_t most)
{
    mostBytesAtOnce = most;
}

std::timespec now()
{
    std::timespec time;
    ::clock_gettime(CLOCK_REALTIME, &time);
    return time;
}

std::int64_t milliseconds()
{
    return millisecondsOf(CLOCK_MONOTONIC);
}

std::int64_t coarseMilliseconds()
{
    return millisecondsOf(CLOCK_MONOTONIC_COARSE);
}

void holdClock()
{
    heldMilliseconds = milliseconds();
}

void doNotCountOnThisThread()
{
    countsCalls = false;
}

void sleepMilliseconds(int milliseconds)
{
    const std::timespec time{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
    ::nanosleep(&time, nullptr);
}

bool saysAbsent(int failure)
{
    return failure == -ENOENT || failure == -ENAMETOOLONG || failure == -EILSEQ || failure == -EINVAL;
}

bool saysUsedUp(int failure)
{
    return failure == -EMFILE || failure == -ENFILE || failure == -ENOMEM;
}

int statusAt(int folder, const char *name, ObjectStatus &result)
{
    return status(folder, name, 0, result);
}

int statusOf(int descriptor, ObjectStatus &result)
{
    return status(descriptor, "", AT_EMPTY_PATH, result);
}

int modificationOf(int descriptor, std::timespec &time)
{
    struct stat status;
    const int failure = repeated([&] { return ::fstat(descriptor, &status); });
    if (failure == 0)
        time = status.st_mtim;
    return failure;
}

int openAt(int folder, const char *name, int flags, mode_t mode)
{
    return repeated([&] { return ::openat(folder, name, flags | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, mode); });
}

int openAbsoluteFolder(const char *path)
{
    return repeated([&] { return ::open(path, O_PATH | O_DIRECTORY | O_CLOEXEC); });
}

int openFolderBeneath(int folder, const char *relativePath)
{
    struct open_how how
    {
    };
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV;
    return static_cast<int>(repeated([&] { return ::syscall(SYS_openat2, folder, relativePath, &how, sizeof how); }));
}

int openListedFolder(int folder, const char *name)
{
    struct open_how how
    {
    };
    how.flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV;
    return static_cast<int>(repeated([&] { return ::syscall(SYS_openat2, folder, name, &how, sizeof how); }));
}

int openTemporary(int folder, mode_t mode)
{
    return repeated([&] { return ::openat(folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode); });
}

int openByInode(int anyDescriptorOnDisk, std::uint64_t inode)
{
    if (inode > UINT32_MAX)
        return -EOPNOTSUPP;
    // The ext family's handle: inode and generation, 32 bits each; generation 0 means any.
    const std::uint32_t words[2] = {static_cast<std::uint32_t>(inode), 0};
    alignas(file_handle) unsigned char space[sizeof(file_handle) + sizeof words];
    auto *handle = new (space) file_handle;
    handle->handle_bytes = sizeof words;
    handle->handle_type = 1;
    std::memcpy(space + sizeof(file_handle), words, sizeof words);
    // The kernel takes the disk from a descriptor that is no O_PATH one.
    const Descriptor disk(openAt(anyDescriptorOnDisk, ".", O_RDONLY | O_DIRECTORY));
    if (!disk.isOpen())
        return -EACCES;
    return repeated([&] { return ::open_by_handle_at(disk.number(), handle, O_PATH | O_NOFOLLOW | O_CLOEXEC); });
}

ssize_t readDirectory(int descriptor, std::span<char> buffer)
{
    return static_cast<ssize_t>(repeated([&] { return ::syscall(SYS_getdents64, descriptor, buffer.data(), buffer.size()); }));
}

ssize_t readLink(int folder, const char *name, std::span<char> target)
{
    return repeated([&] { return ::readlinkat(folder, name, target.data(), target.size()); });
}

std::string pathOf(int descriptor)
{
    std::string path(65536, '\0');
    const ssize_t length = readLink(AT_FDCWD, throughDescriptor(descriptor).c_str(), path);
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path;
}

std::string currentDirectory()
{
    std::string path(65536, '\0');
    callCount.fetch_add(1, std::memory_order_relaxed);
    return ::getcwd(path.data(), path.size()) ? std::string(path.c_str()) : std::string();
}

int setTimes(int descriptor, const std::timespec times[2])
{
    const int result = repeated([&] { return ::utimensat(descriptor, "", times, AT_EMPTY_PATH); });
    if (result != -EINVAL && result != -ENOENT && result != -EBADF)
        return result;
    const std::string path = throughDescriptor(descriptor);   // before Linux 5.8
    return repeated([&] { return ::utimensat(AT_FDCWD, path.c_str(), times, 0); });
}

int setMode(int descriptor, std::uint32_t mode)
{
    const std::string path = throughDescriptor(descriptor);
    return repeated([&] { return ::fchmodat(AT_FDCWD, path.c_str(), static_cast<mode_t>(mode & 07777), 0); });
}

int setOwner(int descriptor, std::uint32_t user, std::uint32_t group)
{
    return repeated([&] { return ::fchownat(descriptor, "", user, group, AT_EMPTY_PATH); });
}

int linkAt(int fromFolder, const char *fromName, int toFolder, const char *toName)
{
    return repeated([&] { return ::linkat(fromFolder, fromName, toFolder, toName, 0); });
}

int renameAt(int fromFolder, const char *fromName, int toFolder, const char *toName)
{
    return repeated([&] { return ::renameat(fromFolder, fromName, toFolder, toName); });
}

int renameWithoutReplacing(int fromFolder, const char *fromName, int toFolder, const char *toName)
{
    const int result = repeated([&] { return ::renameat2(fromFolder, fromName, toFolder, toName, RENAME_NOREPLACE); });
    if (result != -EINVAL && result != -ENOSYS)
        return result;
    ObjectStatus existing;   // a disk without the flag: a look before the step is all there is
    const int found = statusAt(toFolder, toName, existing);
    if (found == 0)
        return -EEXIST;
    return found == -ENOENT ? renameAt(fromFolder, fromName, toFolder, toName) : found;
}

int exchangeNames(int firstFolder, const char *firstName, int secondFolder, const char *secondName)
{
    return repeated([&] { return ::renameat2(firstFolder, firstName, secondFolder, secondName, RENAME_EXCHANGE); });
}

int unlinkAt(int folder, const char *name)
{
    return repeated([&] { return ::unlinkat(folder, name, 0); });
}

int removeFolderAt(int folder, const char *name)
{
    return repeated([&] { return ::unlinkat(folder, name, AT_REMOVEDIR); });
}

int makeFolderAt(int folder, const char *name, mode_t mode)
{
    return repeated([&] { return ::mkdirat(folder, name, mode); });
}

ssize_t readAt(int descriptor, std::span<std::uint8_t> bytes, std::uint64_t offset)
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const std::size_t piece = bytesAtOnce(bytes.size() - done);
        const ssize_t got = repeated([&] { return ::pread(descriptor, bytes.data() + done, piece, static_cast<off_t>(offset + done)); });
        if (got < 0)
            return got;
        done += static_cast<std::size_t>(got);
        if (got == 0)
            break;
    }
    return static_cast<ssize_t>(done);
}

int writeAt(int descriptor, std::span<const std::uint8_t> bytes, std::uint64_t offset)
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const std::size_t piece = bytesAtOnce(bytes.size() - done);
        const ssize_t written =
            repeated([&] { return ::pwrite(descriptor, bytes.data() + done, piece, static_cast<off_t>(offset + done)); });
        if (written < 0)
            return static_cast<int>(written);
        done += static_cast<std::size_t>(written);
    }
    return 0;
}

int setSize(int descriptor, std::uint64_t size)
{
    return repeated([&] { return ::ftruncate(descriptor, static_cast<off_t>(size)); });
}

int tryLock(int descriptor)
{
    return repeated([&] { return ::flock(descriptor, LOCK_EX | LOCK_NB); });
}

int unlock(int descriptor)
{
    return repeated([&] { return ::flock(descriptor, LOCK_UN); });
}

int diskStatistics(int descriptor, struct statvfs &statistics)
{
    return repeated([&] { return ::fstatvfs(descriptor, &statistics); });
}

std::int64_t diskKind(int descriptor)
{
    struct statfs statistics;
    return repeated([&] { return ::fstatfs(descriptor, &statistics); }) == 0 ? static_cast<std::int64_t>(statistics.f_type) : 0;
}

bool mayAccess(int folder, const char *name, int mode)
{
    return repeated([&] { return ::faccessat(folder, name, mode, AT_EACCESS | AT_SYMLINK_NOFOLLOW); }) == 0;
}

std::uint32_t effectiveUser()
{
    return ::geteuid();
}

}   // namespace linux_calls
}   // namespace standin
