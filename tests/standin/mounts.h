// Disks that tests mount and unmount themselves, and what the volumes are then.
#pragma once

#include "standin/files/directories.h"
#include "standin/files/open_levels.h"
#include "standin/files/volumes.h"
#include "tests/standin/test_volume.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace support
{

// A tmpfs at a place of its own. What is still mounted goes with the object.
class MountedDisk
{
public:
    explicit MountedDisk(std::string place, unsigned long flags = 0) : place_(std::move(place))
    {
        mkdir(place_.c_str(), 0755);
        mount(flags);
    }
    ~MountedDisk()
    {
        while (umount2(place_.c_str(), MNT_DETACH) == 0)
            continue;
        rmdir(place_.c_str());
    }
    MountedDisk(const MountedDisk &) = delete;
    MountedDisk &operator=(const MountedDisk &) = delete;

    void mount(unsigned long flags = 0)
    {
        const bool isMounted = ::mount("tmpfs", place_.c_str(), "tmpfs", flags, "size=1m,mode=755") == 0;
        problem_ = isMounted ? "" : std::string("nothing can be mounted here: ") + std::strerror(errno);
    }

    // 0 or errno. Nothing is waited for, and nobody is passed over who still has something open.
    int unmountNow() const { return ::umount2(place_.c_str(), 0) == 0 ? 0 : errno; }

    // Whether it can be unmounted within two seconds.
    bool unmountSoon() const
    {
        const auto giveUpAt = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        int failure;
        while ((failure = unmountNow()) == EBUSY && std::chrono::steady_clock::now() < giveUpAt)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return failure == 0;
    }

    // At once, whoever has something open on it.
    bool unmountLazily() const { return ::umount2(place_.c_str(), MNT_DETACH) == 0; }

    const std::string &place() const { return place_; }
    std::string operator/(const std::string &name) const { return place_ + "/" + name; }
    const std::string &problem() const { return problem_; }

private:
    std::string place_, problem_;
};

#define SKIP_UNLESS_MOUNTED(disk)  \
    if (!(disk).problem().empty()) \
    GTEST_SKIP() << (disk).problem()

struct ListedVolume
{
    FSVolumeRefNum number = 0;
    FSVolumeInfo info{};
    std::u16string name;
    FSRef root{};
};

// One index after another; `result` is what ended it.
inline std::vector<ListedVolume> listVolumes(OSErr &result, FSVolumeInfoBitmap which = 0xFFFF)
{
    std::vector<ListedVolume> volumes;
    for (ItemCount index = 1;; ++index)
    {
        ListedVolume volume;
        HFSUniStr255 name{};
        result = FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &volume.number, which, &volume.info, &name, &volume.root);
        if (result != noErr)
            return volumes;
        volume.name = wide(name);
        volumes.push_back(volume);
    }
}

inline std::vector<ListedVolume> listVolumes()
{
    OSErr result = noErr;
    std::vector<ListedVolume> volumes = listVolumes(result);
    EXPECT_EQ(result, nsvErr);
    return volumes;
}

inline const ListedVolume *volumeNamed(const std::vector<ListedVolume> &volumes, const std::u16string &name)
{
    for (const ListedVolume &volume : volumes)
        if (volume.name == name)
            return &volume;
    return nullptr;
}

inline FSVolumeRefNum volumeNumberOf(const FSRef &ref)
{
    return infoOf(ref, kFSCatInfoVolume).volume;
}

inline OSErr checkVolume(FSVolumeRefNum number)
{
    return FSGetVolumeInfo(number, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, nullptr);
}

inline long entriesIn(const char *folder)
{
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

// How many descriptors are open when nothing is kept that is only kept to save work.
inline long descriptorsInUse()
{
    standin::closeIdleRoots(std::numeric_limits<std::int64_t>::max());
    standin::closeIdleLevels(std::numeric_limits<std::int64_t>::max());
    standin::forgetAllDirectories();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));   // what looks after idle folders may be closing one
    return entriesIn("/proc/self/fd");
}

// The record from which a volume is mounted again; empty if there is none.
inline Bytes mountRecordOf(FSVolumeRefNum number, OSErr &result)
{
    SInt16 size = 0;
    ParamBlockRec block{};
    block.ioParam.ioVRefNum = number;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&size);
    if ((result = PBGetVolMountInfoSize(&block)) != noErr)
        return {};
    Bytes record(static_cast<std::size_t>(size));
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(record.data());
    result = PBGetVolMountInfo(&block);
    return record;
}

inline Bytes mountRecordOf(FSVolumeRefNum number)
{
    OSErr result = noErr;
    Bytes record = mountRecordOf(number, result);
    EXPECT_EQ(result, noErr);
    return record;
}

inline OSErr mountFrom(const void *record, FSVolumeRefNum &number)
{
    ParamBlockRec block{};
    block.ioParam.ioBuffer = static_cast<Ptr>(const_cast<void *>(record));
    const OSErr result = PBVolumeMount(&block);
    EXPECT_EQ(+block.ioParam.ioResult, result);
    if (result == noErr)
        number = block.ioParam.ioVRefNum;
    return result;
}

}   // namespace support
