#include "standin/files/linux_copies.h"

#include "standin/files/linux_repeated.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace standin::linux_calls
{

namespace
{

// For disks between which the kernel cannot copy by itself.
int copyThroughBuffer(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length)
{
    std::vector<std::uint8_t> buffer(std::min<std::uint64_t>(length, 256 * 1024));
    while (length > 0)
    {
        const std::span<std::uint8_t> piece(buffer.data(), std::min<std::uint64_t>(length, buffer.size()));
        const ssize_t got = readAt(from, piece, fromOffset);
        if (got <= 0)
            return got < 0 ? static_cast<int>(got) : -EIO;
        if (const int failure = writeAt(to, piece.first(static_cast<std::size_t>(got)), toOffset))
            return failure;
        fromOffset += static_cast<std::uint64_t>(got);
        toOffset += static_cast<std::uint64_t>(got);
        length -= static_cast<std::uint64_t>(got);
    }
    return 0;
}

}   // namespace

int shareBlocks(int from, int to)
{
    return repeated([&] { return ::ioctl(to, FICLONE, from); });
}

ssize_t copyRange(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length)
{
    auto source = static_cast<off64_t>(fromOffset), target = static_cast<off64_t>(toOffset);
    return repeated([&] { return ::copy_file_range(from, &source, to, &target, bytesAtOnce(length), 0); });
}

int copyBytes(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length)
{
    auto source = static_cast<off64_t>(fromOffset), target = static_cast<off64_t>(toOffset);
    while (length > 0)
    {
        const ssize_t copied = repeated([&] { return ::copy_file_range(from, &source, to, &target, bytesAtOnce(length), 0); });
        if (copied < 0)
            return copyThroughBuffer(from, static_cast<std::uint64_t>(source), to, static_cast<std::uint64_t>(target), length);
        if (copied == 0)
            return -EIO;   // the source ended early: somebody cuts it while we copy
        length -= static_cast<std::uint64_t>(copied);
    }
    return 0;
}

ssize_t sendBytes(int from, std::uint64_t fromOffset, int to, std::uint64_t toOffset, std::uint64_t length)
{
    auto source = static_cast<off_t>(fromOffset);
    const auto placed = repeated([&] { return ::lseek(to, static_cast<off_t>(toOffset), SEEK_SET); });
    return placed < 0 ? static_cast<ssize_t>(placed) : repeated([&] { return ::sendfile(to, from, &source, bytesAtOnce(length)); });
}

std::int64_t nextData(int descriptor, std::uint64_t offset)
{
    return repeated([&] { return ::lseek(descriptor, static_cast<off_t>(offset), SEEK_DATA); });
}

std::int64_t nextHole(int descriptor, std::uint64_t offset)
{
    return repeated([&] { return ::lseek(descriptor, static_cast<off_t>(offset), SEEK_HOLE); });
}

int flushToDisk(int descriptor)
{
    return repeated([&] { return ::fsync(descriptor); });
}

int makeSymbolicLink(const char *target, int folder, const char *name)
{
    return repeated([&] { return ::symlinkat(target, folder, name); });
}

int giveName(int descriptor, int folder, const char *name)
{
    // The descriptor itself, without a way through /proc: from Linux 6.10 on for everybody, before that with a privilege. Who may not is told ENOENT.
    static std::atomic<bool> mayLinkDescriptors{true};
    if (mayLinkDescriptors)
    {
        const int result = repeated([&] { return ::linkat(descriptor, "", folder, name, AT_EMPTY_PATH); });
        if (result != -ENOENT)
            return result;
    }
    const std::string source = throughDescriptor(descriptor);
    const int result = repeated([&] { return ::linkat(AT_FDCWD, source.c_str(), folder, name, AT_SYMLINK_FOLLOW); });
    if (result == 0)
        mayLinkDescriptors = false;
    return result;
}

int setModeOf(int descriptor, std::uint32_t mode)
{
    return repeated([&] { return ::fchmod(descriptor, static_cast<mode_t>(mode & 07777)); });
}

ssize_t listAttributesOf(int descriptor, std::span<char> names)
{
    return repeated([&] { return ::flistxattr(descriptor, names.data(), names.size()); });
}

ssize_t getAttributeOf(int descriptor, const char *attribute, std::span<std::uint8_t> value)
{
    return repeated([&] { return ::fgetxattr(descriptor, attribute, value.data(), value.size()); });
}

int setAttributeOf(int descriptor, const char *attribute, std::span<const std::uint8_t> value)
{
    return repeated([&] { return ::fsetxattr(descriptor, attribute, value.data(), value.size(), 0); });
}

}   // namespace standin::linux_calls
