// Disks that come and go while threads look at the volumes.
#include "tests/standin/mounts.h"

#include <atomic>
#include <set>

namespace
{

using namespace support;

// What must not happen while it goes on, in one word each; the test fails with the first.
class Watch
{
public:
    void expect(bool holds, const std::string &what)
    {
        if (!holds && !found_.exchange(true))
            what_ = what;
    }
    const std::string &problem() const { return what_; }

private:
    std::atomic<bool> found_{false};
    std::string what_;
};

// All that stay are met once, the startup volume first; the one that comes and goes is met once at most, and is what it should be.
void checkListing(const std::vector<FSVolumeRefNum> &staying, UInt64 totalBytes, Watch &watch)
{
    OSErr result = noErr;
    std::set<FSVolumeRefNum> met;
    const std::vector<ListedVolume> volumes = listVolumes(result);
    watch.expect(result == nsvErr, "ends with " + std::to_string(result));
    for (const ListedVolume &volume : volumes)
    {
        watch.expect(met.insert(volume.number).second, "twice");
        watch.expect(volume.name != u"comes and goes" || volume.info.totalBytes == totalBytes, "another disk's size");
        watch.expect(volume.name != u"comes and goes 2", "a name that is not free");
    }
    watch.expect(!volumes.empty() && volumes[0].number == staying[0], "another startup volume");
    for (const FSVolumeRefNum number : staying)
        watch.expect(met.contains(number), "one is missing");
}

// A reference made to it works or says that it is gone.
void checkReference(const std::string &place, Watch &watch)
{
    FSRef ref{};
    const OSStatus found = findRef(place + "/file", ref);
    watch.expect(found == noErr || found == fnfErr || found == dirNFErr || found == nsvErr, "a path gives " + std::to_string(found));
    if (found != noErr)
        return;
    const OSErr result = FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
    watch.expect(result == noErr || result == fnfErr || result == dirNFErr || result == nsvErr,
                 "a reference gives " + std::to_string(result));
}

TEST(ThreadsVolumes, ADiskComesAndGoesAThousandTimesWhileOthersLook)
{
    constexpr int rounds = 1000;
    const TemporaryFolder folder;
    MountedDisk disk(folder / "comes and goes");
    SKIP_UNLESS_MOUNTED(disk);
    ASSERT_TRUE(disk.unmountLazily());
    const MountedDisk stays(folder / "stays");
    std::vector<FSVolumeRefNum> staying;
    for (const ListedVolume &volume : listVolumes())
        staying.push_back(volume.number);

    Watch watch;
    const long descriptors = descriptorsInUse();
    std::atomic<bool> isOver{false};
    std::vector<std::thread> others;
    others.emplace_back([&] {
        while (!isOver)
            checkListing(staying, 1 << 20, watch);
    });
    others.emplace_back([&] {
        while (!isOver)
            checkReference(disk.place(), watch);
    });
    for (int round = 0; round < rounds; ++round)
    {
        disk.mount();
        watch.expect(disk.problem().empty(), disk.problem());
        if (round % 2)
            writeFile(disk / "file", "data");
        watch.expect(disk.unmountLazily(), "cannot be unmounted");
    }
    isOver = true;
    for (std::thread &other : others)
        other.join();
    EXPECT_EQ(watch.problem(), "");
    EXPECT_EQ(volumeNamed(listVolumes(), u"comes and goes"), nullptr);
    EXPECT_EQ(descriptorsInUse(), descriptors) << "descriptors are left";
}

TEST(ThreadsVolumes, ADirectoryVolumeComesAndGoesWhileOthersLook)
{
    const TemporaryFolder folder;
    std::vector<FSVolumeRefNum> staying;
    for (const ListedVolume &volume : listVolumes())
        staying.push_back(volume.number);
    Watch watch;
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver)
            checkListing(staying, 0, watch);
    });
    for (int round = 0; round < 500; ++round)
    {
        FSVolumeRefNum number = 0, again = 0;
        watch.expect(standin::addDirectoryVolume("Extra", folder.path(), {}, &number) == noErr, "cannot be added");
        OSErr result = noErr;
        const Bytes record = mountRecordOf(number, result);
        watch.expect(result == noErr, "has no record");
        watch.expect(standin::removeDirectoryVolume(number) == noErr, "cannot be removed");
        watch.expect(mountFrom(record.data(), again) == noErr && again != number, "cannot be put back");
        watch.expect(standin::removeDirectoryVolume(again) == noErr, "cannot be removed again");
    }
    isOver = true;
    other.join();
    EXPECT_EQ(watch.problem(), "");
}

}   // namespace
