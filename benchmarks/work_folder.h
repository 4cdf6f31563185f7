// Where measuring takes place: a folder of its own on each disk, in memory and on whatever disk temporary files live.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

struct Disk
{
    std::string folder, name;
};

// tmpfs and disk. `./bench` says by ZERB_BENCH_MEMORY and ZERB_BENCH_DISK where they are, so that it can clear up after a program that was cut off; without it
// they are /dev/shm and $TMPDIR or /var/tmp. A disk without so much room is left out, which is said on standard error.
std::vector<Disk> disksWithRoom(std::size_t bytes);

// Gone with the object; one on the disk only when `./bench` ends, since a disk makes files more slowly for a while after many were deleted.
class WorkFolder
{
public:
    explicit WorkFolder(const Disk &disk);
    ~WorkFolder();
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;

    const std::string &path() const { return path_; }
    std::string operator/(const std::string &name) const { return path_ + '/' + name; }

private:
    std::string path_;
    bool isClearedByBench_;
};

// These end the program if it failed.
void require(OSStatus result, const char *what);
int requireNumber(long result, const char *what);   // of a system call, which is the answer
FSRef refAt(const std::string &path);
