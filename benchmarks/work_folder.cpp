#include "benchmarks/work_folder.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

std::string folderFrom(const std::vector<const char *> &variables, const char *otherwise)
{
    for (const char *variable : variables)
        if (const char *folder = std::getenv(variable))
            return folder;
    return otherwise;
}

bool hasRoom(const std::string &folder, std::size_t bytes)
{
    struct statvfs room;
    return ::access(folder.c_str(), W_OK) == 0 && ::statvfs(folder.c_str(), &room) == 0 && room.f_bavail * room.f_frsize > bytes;
}

}   // namespace

std::vector<Disk> disksWithRoom(std::size_t bytes)
{
    std::vector<Disk> disks;
    for (const Disk &disk : {Disk{folderFrom({"ZERB_BENCH_MEMORY"}, "/dev/shm"), "tmpfs"},
                             Disk{folderFrom({"ZERB_BENCH_DISK", "TMPDIR"}, "/var/tmp"), "disk"}})
    {
        if (hasRoom(disk.folder, bytes))
            disks.push_back(disk);
        else
            std::fprintf(stderr, "%s is left out: it takes %zu MiB in %s\n", disk.name.c_str(), bytes >> 20, disk.folder.c_str());
    }
    return disks;
}

WorkFolder::WorkFolder(const Disk &disk)
    : path_(disk.folder + "/zerb-bench-XXXXXX"), isClearedByBench_(disk.name == "disk" && std::getenv("ZERB_BENCH_DISK"))
{
    require(::mkdtemp(path_.data()) ? noErr : ioErr, path_.c_str());
}

WorkFolder::~WorkFolder()
{
    if (isClearedByBench_)
        return;
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void require(OSStatus result, const char *what)
{
    if (result == noErr)
        return;
    std::fprintf(stderr, "%s: %d\n", what, static_cast<int>(result));
    std::exit(1);
}

int requireNumber(long result, const char *what)
{
    require(result < 0 ? ioErr : noErr, what);
    return static_cast<int>(result);
}

FSRef refAt(const std::string &path)
{
    FSRef ref;
    require(FSPathMakeRef(reinterpret_cast<const UInt8 *>(path.c_str()), &ref, nullptr), path.c_str());
    return ref;
}
