// System calls that only open forks need: room set aside for bytes to come, and reading that leaves the page cache to others.
#include "standin/files/linux_repeated.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace standin::linux_calls
{

namespace
{

constexpr int dropBehind = 0x80;   // RWF_DONTCACHE, Linux 6.14; older headers do not know it
constexpr int mostInterruptions = 3;

bool saysUnsupported(int failure)
{
    return failure == -EOPNOTSUPP || failure == -ENOSYS || failure == -EINVAL;
}

// tmpfs gives up and starts from nothing at each signal: with a timer that goes off often enough it would never come to an end.
int allocateRoom(int descriptor, std::uint64_t from, std::uint64_t to)
{
    int interruptions = 0;
    return repeated([&] {
        const int result = ::fallocate(descriptor, 0, static_cast<off_t>(from), static_cast<off_t>(to - from));
        if (result < 0 && errno == EINTR && ++interruptions > mostInterruptions)
            errno = EOPNOTSUPP;
        return result;
    });
}

}   // namespace

// Never posix_fallocate: where the disk cannot allocate, it writes to each block.
int growAllocated(int descriptor, std::uint64_t from, std::uint64_t to)
{
    const int failure = allocateRoom(descriptor, from, to);
    if (saysUnsupported(failure))
        return setSize(descriptor, to);
    if (failure < 0)
        setSize(descriptor, from);   // ext4 keeps what it got before the disk was full
    return failure;
}

ssize_t readPassingBy(int descriptor, std::span<std::uint8_t> bytes, std::uint64_t offset)
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const iovec piece{bytes.data() + done, bytesAtOnce(bytes.size() - done)};
        const ssize_t got = repeated([&] { return ::preadv2(descriptor, &piece, 1, static_cast<off_t>(offset + done), dropBehind); });
        if (got < 0)
            return got;
        done += static_cast<std::size_t>(got);
        if (got == 0)
            break;
    }
    return static_cast<ssize_t>(done);
}

int expectNoReuse(int descriptor)
{
    return repeated([&] { return -::posix_fadvise(descriptor, 0, 0, POSIX_FADV_NOREUSE); });
}

}   // namespace standin::linux_calls
