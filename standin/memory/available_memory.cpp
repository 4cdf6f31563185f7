#include "standin/memory/available_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

namespace standin
{

namespace
{

std::uint64_t pageSize()
{
    return static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::uint64_t machineMemory()
{
    struct sysinfo machine;
    if (sysinfo(&machine) != 0)
        return std::numeric_limits<std::int32_t>::max();
    return (std::uint64_t{machine.totalram} + machine.totalswap) * machine.mem_unit;
}

// The beginning of a file of /proc. Nothing is allocated: this is asked when memory has run out.
template <std::size_t size>
void readText(const char *path, char (&text)[size])
{
    text[0] = '\0';
    int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return;
    ssize_t length = read(file, text, size - 1);
    text[length > 0 ? length : 0] = '\0';
    close(file);
}

// Free pages and those that Linux would give up for the asking, its file caches above all.
std::uint64_t availableInMachine()
{
    constexpr const char *label = "MemAvailable:";
    char text[1024];
    readText("/proc/meminfo", text);
    if (const char *line = std::strstr(text, label))
        return std::strtoull(line + std::strlen(label), nullptr, 10) * 1024;
    return static_cast<std::uint64_t>(std::max(0L, sysconf(_SC_AVPHYS_PAGES))) * pageSize();
}

// What `ulimit -v` leaves.
std::uint64_t leftOfAddressSpace()
{
    rlimit limit;
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return std::numeric_limits<std::uint64_t>::max();
    char text[128];
    readText("/proc/self/statm", text);   // its first number is the address space in pages
    const std::uint64_t inUse = std::strtoull(text, nullptr, 10) * pageSize();
    return limit.rlim_cur > inUse ? limit.rlim_cur - inUse : 0;
}

}   // namespace

std::uint64_t largestReasonableBlock()
{
    static const std::uint64_t size = machineMemory();
    return size;
}

std::uint64_t availableMemory()
{
    return std::min(availableInMachine(), leftOfAddressSpace());
}

}   // namespace standin
