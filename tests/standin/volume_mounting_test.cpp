// Mounting volumes again from their records, by the platform's calls.
//
// What changes the volumes of a process is played in a process of its own.
#include "tests/standin/faults_calls.h"
#include "tests/standin/mounts.h"
#include "tests/standin/processes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

using namespace support;

OSErr addArchive(const std::string &directory, FSVolumeRefNum &number, bool locked = false)
{
    standin::VolumeOptions options;
    options.locked = locked;
    options.exchangeOffered = false;
    return standin::addDirectoryVolume("Archive", directory, options, &number);
}

// --- directory volumes ---------------------------------------------------------------------------------------------------------------------

const Role putsBack("putsADirectoryBack", [](const RoleArguments &arguments) {
    FSVolumeRefNum first = 0, again = 0, third = 0;
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    ASSERT_EQ(addArchive(arguments[1], first, true), noErr);
    const Bytes record = mountRecordOf(first);
    ASSERT_EQ(standin::removeDirectoryVolume(first), noErr);
    ASSERT_EQ(mountFrom(record.data(), again), noErr);
    EXPECT_NE(again, first);
    EXPECT_EQ(checkVolume(first), nsvErr);
    const FSRef root = refAt("/Volumes/Archive");
    EXPECT_EQ(volumeNumberOf(root), again);
    EXPECT_EQ(makeFile(root, "new"), vLckdErr) << "it is locked as it was";
    EXPECT_FALSE(offersExchange(root));
    EXPECT_EQ(mountFrom(record.data(), third), noErr);
    EXPECT_EQ(third, again) << "it is there already";

    ASSERT_EQ(standin::setVolumeLock(again, false), noErr);
    EXPECT_NE(mountRecordOf(again), record) << "a record tells of the lock that there is now";
});

TEST(VolumeMounting, ADirectoryVolumeIsPutBack)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "Startup");
    std::filesystem::create_directory(folder / "archive");
    playRole("putsADirectoryBack", {folder / "Startup", folder / "archive"});
}

const Role cannotPutBack("cannotPutADirectoryBack", [](const RoleArguments &arguments) {
    FSVolumeRefNum number = 0, other = 0;
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    ASSERT_EQ(addArchive(arguments[1], number), noErr);
    const Bytes record = mountRecordOf(number);
    ASSERT_EQ(standin::removeDirectoryVolume(number), noErr);
    ASSERT_EQ(addArchive(arguments[0], other), noErr);
    EXPECT_EQ(mountFrom(record.data(), number), dupFNErr) << "another volume has the name";
    ASSERT_EQ(standin::removeDirectoryVolume(other), noErr);
    std::filesystem::remove(arguments[1]);
    EXPECT_EQ(mountFrom(record.data(), number), dirNFErr);
    writeFile(arguments[1], "no folder");
    EXPECT_EQ(mountFrom(record.data(), number), errFSNotAFolder);
    EXPECT_EQ(listVolumes().size(), 1u);
});

TEST(VolumeMounting, WhatHasTakenADirectorysPlaceIsTold)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "Startup");
    std::filesystem::create_directory(folder / "archive");
    playRole("cannotPutADirectoryBack", {folder / "Startup", folder / "archive"});
}

TEST(VolumeMounting, TheStartupVolumeAndThoseThatAreNotThereHaveNoRecord)
{
    OSErr result = noErr;
    for (const FSVolumeRefNum number : {volumeNumberOf(refAt("/")), FSVolumeRefNum{0}})
    {
        EXPECT_TRUE(mountRecordOf(number, result).empty());
        EXPECT_EQ(result, paramErr);
    }
    EXPECT_TRUE(mountRecordOf(12345, result).empty());
    EXPECT_EQ(result, nsvErr);
    ParamBlockRec block{};
    char room[16] = {};
    block.ioParam.ioBuffer = room;
    block.ioParam.ioVRefNum = 12345;
    EXPECT_EQ(PBGetVolMountInfo(&block), nsvErr);
    EXPECT_EQ(+block.ioParam.ioResult, nsvErr);
}

TEST(VolumeMounting, WithoutABlockOrABufferNothingIsDone)
{
    for (OSErr (*call)(ParmBlkPtr) : {PBGetVolMountInfoSize, PBGetVolMountInfo, PBVolumeMount})
    {
        ParamBlockRec block{};
        block.ioParam.ioVRefNum = volumeNumberOf(refAt("/"));
        EXPECT_EQ(call(nullptr), paramErr);
        EXPECT_EQ(call(&block), paramErr);
        EXPECT_EQ(+block.ioParam.ioResult, paramErr);
    }
}

// --- mounted disks -------------------------------------------------------------------------------------------------------------------------

class DiskMounting : public testing::Test
{
protected:
    void SetUp() override
    {
        SKIP_UNLESS_MOUNTED(disk);
        if (!programExists("mount"))
            GTEST_SKIP() << "no program mount";
    }

    Bytes record() const { return mountRecordOf(volumeNumberOf(refAt(disk.place()))); }

    TemporaryFolder folder;
    MountedDisk disk{folder / "disk", MS_NOSUID | MS_NODEV};
};

TEST_F(DiskMounting, AnUnmountedDiskIsMountedAgainAsItWas)
{
    ASSERT_EQ(mount(nullptr, disk.place().c_str(), nullptr, MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr), 0);
    const FSVolumeRefNum former = volumeNumberOf(refAt(disk.place()));
    const Bytes saved = record();
    ASSERT_TRUE(disk.unmountLazily());
    FSVolumeRefNum number = 0;
    ASSERT_EQ(mountFrom(saved.data(), number), noErr);
    EXPECT_NE(number, former);
    EXPECT_EQ(volumeNumberOf(refAt(disk.place())), number);
    struct statvfs now;
    ASSERT_EQ(statvfs(disk.place().c_str(), &now), 0);
    EXPECT_EQ(now.f_flag & (ST_RDONLY | ST_NOSUID | ST_NODEV), static_cast<unsigned long>(ST_RDONLY | ST_NOSUID | ST_NODEV));
}

TEST_F(DiskMounting, ADiskThatIsMountedIsGivenAsItIs)
{
    const FSVolumeRefNum there = volumeNumberOf(refAt(disk.place()));
    FSVolumeRefNum number = 0;
    EXPECT_EQ(mountFrom(record().data(), number), noErr);
    EXPECT_EQ(number, there);
}

TEST_F(DiskMounting, APlaceThatAnotherDiskHasIsInUse)
{
    const Bytes saved = record();
    ASSERT_TRUE(disk.unmountLazily());
    ASSERT_EQ(mount("ramfs", disk.place().c_str(), "ramfs", 0, nullptr), 0);
    FSVolumeRefNum number = 1;
    EXPECT_EQ(mountFrom(saved.data(), number), fBsyErr);
    EXPECT_EQ(number, 1);
}

TEST_F(DiskMounting, AMissingPlaceIsTold)
{
    const Bytes saved = record();
    ASSERT_TRUE(disk.unmountLazily());
    std::filesystem::remove(disk.place());
    FSVolumeRefNum number = 1;
    EXPECT_EQ(mountFrom(saved.data(), number), dirNFErr);
    writeFile(disk.place());
    EXPECT_EQ(mountFrom(saved.data(), number), errFSNotAFolder);
    std::filesystem::remove(disk.place());
}

TEST_F(DiskMounting, AMissingDiskIsTold)
{
    ASSERT_TRUE(disk.unmountLazily());
    ASSERT_EQ(mount("/nowhere/device", disk.place().c_str(), "tmpfs", 0, nullptr), 0);
    const Bytes saved = record();
    ASSERT_TRUE(disk.unmountLazily());
    Bytes ext4 = saved;   // a tmpfs needs no device, so another kind is said to have been there
    const std::string bytes(saved.begin(), saved.end());
    std::copy_n("ext4x", 5, ext4.begin() + static_cast<std::ptrdiff_t>(bytes.find("tmpfs")));
    std::uint32_t sum = 2166136261u;
    for (std::size_t at = 0; at < ext4.size(); ++at)
        if (at < 8 || at > 11)
            sum = (sum ^ ext4[at]) * 16777619u;
    for (std::size_t i = 0; i < 4; ++i)
        ext4[8 + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
    FSVolumeRefNum number = 1;
    EXPECT_EQ(mountFrom(ext4.data(), number), nsvErr);
    EXPECT_EQ(number, 1);
}

const Role mayNotMount("mayNotMount", [](const RoleArguments &arguments) {
    const Bytes record = readFile(arguments[0]);
    FSVolumeRefNum number = 1;
    EXPECT_EQ(mountFrom(record.data(), number), permErr);
    EXPECT_EQ(number, 1);
});

TEST_F(DiskMounting, WhoMayNotMountIsToldSo)
{
    if (!canBecomeOtherUsers())
        GTEST_SKIP() << "nobody else can be played here";
    writeFile(folder / "record", record());
    ASSERT_TRUE(disk.unmountLazily());
    chmod(folder.path().c_str(), 0755);
    playRole("mayNotMount", {folder / "record"}, {ordinaryUser, {}});
}

TEST_F(DiskMounting, TwoThreadsGetOneVolume)
{
    const Bytes saved = record();
    ASSERT_TRUE(disk.unmountLazily());
    FSVolumeRefNum first = 0, second = 0;
    std::thread other([&] { EXPECT_EQ(mountFrom(saved.data(), second), noErr); });
    EXPECT_EQ(mountFrom(saved.data(), first), noErr);
    other.join();
    EXPECT_EQ(first, second);
    EXPECT_TRUE(disk.unmountLazily());
    EXPECT_EQ(disk.unmountNow(), EINVAL) << "it was mounted once";
}

TEST_F(DiskMounting, SavingAndReplayingWorkWithEachCallOfLinuxFailing)
{
    const FSRef root = refAt(disk.place());
    const long before = descriptorsInUse();
    for (const int errorNumber : {EIO, EMFILE})
        for (int nth = 1;; ++nth)
        {
            OSErr result = noErr;
            FSVolumeRefNum number = 0;
            ASSERT_LT(nth, 200);
            const FSVolumeRefNum former = volumeNumberOf(refAt(disk.place()));
            bool reached;
            {
                const FaultyCalls faults({nth, errorNumber});
                const Bytes saved = mountRecordOf(former, result);
                if (result == noErr)
                    result = mountFrom(saved.data(), number);
                reached = FaultyCalls::reached();
            }
            SCOPED_TRACE(FaultyCalls::failedCall());
            EXPECT_TRUE(result != noErr || number == former) << number;
            if (!reached)
                break;
        }
    EXPECT_EQ(checkRef(root), noErr);
    EXPECT_EQ(descriptorsInUse(), before);
}

// --- hostile records -----------------------------------------------------------------------------------------------------------------------

// Bytes that end where the readable memory does.
class BytesAtTheEnd
{
public:
    explicit BytesAtTheEnd(std::size_t most) : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
    {
        EXPECT_LE(most, page_);
        memory_ = static_cast<std::uint8_t *>(mmap(nullptr, 2 * page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(memory_ + page_, page_, PROT_NONE);
    }
    ~BytesAtTheEnd() { munmap(memory_, 2 * page_); }
    BytesAtTheEnd(const BytesAtTheEnd &) = delete;
    BytesAtTheEnd &operator=(const BytesAtTheEnd &) = delete;

    const void *place(const std::uint8_t *bytes, std::size_t length)
    {
        return length == 0 ? memory_ + page_ : std::memcpy(memory_ + page_ - length, bytes, length);
    }

private:
    std::size_t page_;
    std::uint8_t *memory_;
};

const Role refusesHostile("refusesHostileRecords", [](const RoleArguments &arguments) {
    FSVolumeRefNum number = 0;
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    ASSERT_EQ(addArchive(arguments[0], number), noErr);
    const Bytes record = mountRecordOf(number);
    ASSERT_EQ(standin::removeDirectoryVolume(number), noErr);
    BytesAtTheEnd memory(record.size());
    for (std::size_t length = 0; length < record.size(); ++length)
        EXPECT_EQ(mountFrom(memory.place(record.data(), length), number), paramErr) << length;
    for (std::size_t at = 0; at < record.size(); ++at)
        for (const int difference : {0x01, 0x80, 0xFF})
        {
            Bytes changed = record;
            changed[at] = static_cast<std::uint8_t>(changed[at] ^ difference);
            EXPECT_EQ(mountFrom(memory.place(changed.data(), changed.size()), number), paramErr) << at;
        }
    EXPECT_EQ(listVolumes().size(), 1u);
    EXPECT_EQ(mountFrom(memory.place(record.data(), record.size()), number), noErr);
});

TEST(VolumeMounting, HostileRecordsAreRefused)
{
    const TemporaryFolder folder;
    playRole("refusesHostileRecords", {folder.path()});
}

}   // namespace
