// Mounted disks as volumes: which are listed, what is told of them, and how they come and go while the process runs.
//
// What counts the volumes of a process is played in a process of its own.
#include "tests/standin/faults_calls.h"
#include "tests/standin/mounts.h"
#include "tests/standin/processes.h"

#include <algorithm>
#include <deque>
#include <fcntl.h>
#include <set>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

using namespace support;
using std::chrono::milliseconds;

constexpr milliseconds longerThanIdle{1600};

class MountedVolumes : public testing::Test
{
protected:
    void SetUp() override { SKIP_UNLESS_MOUNTED(disk); }

    TemporaryFolder folder;
    MountedDisk disk{folder / "disk"};
};

TEST_F(MountedVolumes, AreGoneWhenTheyAreUnmountedAndNewWhenTheyAreMountedAgain)
{
    writeFile(disk / "file", "data");
    const FSRef file = refAt(disk / "file");
    const FSVolumeRefNum number = volumeNumberOf(file);
    EXPECT_EQ(checkVolume(number), noErr);
    ASSERT_TRUE(disk.unmountSoon());
    EXPECT_EQ(checkVolume(number), nsvErr);
    EXPECT_EQ(checkRef(file), nsvErr);
    EXPECT_EQ(volumeNamed(listVolumes(), u"disk"), nullptr);

    disk.mount();
    const FSRef root = refAt(disk.place());
    EXPECT_NE(volumeNumberOf(root), number);
    EXPECT_EQ(checkVolume(number), nsvErr) << "a number does not come to mean another disk";
    EXPECT_EQ(checkRef(file), nsvErr);
}

TEST_F(MountedVolumes, CanBeUnmountedAMomentAfterTheyWereListedAndChanged)
{
    const FSRef root = refAt(disk.place());
    FSRef inner{}, file{};
    ASSERT_EQ(makeFolder(root, "inner", &inner), noErr);
    ASSERT_EQ(makeFile(inner, "file", &file), noErr);
    ASSERT_EQ(setType(file, code("TEXT"), code("ttxt")), noErr);
    ASSERT_EQ(writeFork(file, true, bytesOf("fork")), noErr);
    ASSERT_NE(volumeNamed(listVolumes(), u"disk"), nullptr);
    EXPECT_TRUE(disk.unmountSoon());
}

TEST_F(MountedVolumes, CanBeUnmountedAtOnceAfterListingVolumesByTheirIndex)
{
    ASSERT_NE(volumeNamed(listVolumes(), u"disk"), nullptr);
    EXPECT_EQ(disk.unmountNow(), 0);
}

TEST_F(MountedVolumes, IteratorsThatRestKeepNoneAndGoOnAfterwards)
{
    constexpr ItemCount count = 10;
    for (ItemCount number = 0; number < count; ++number)
        writeFile(disk / std::to_string(number), "data");
    std::filesystem::create_directories(disk / "outer/inner");
    writeFile(disk / "outer/inner/file", "data");
    const FSRef root = refAt(disk.place()), outer = refAt(disk / "outer");
    FSIterator files = nullptr, above = nullptr, below = nullptr;
    FSRef inner{}, file{};
    ItemCount got = 0;
    ASSERT_EQ(FSOpenIterator(&root, kFSIterateFlat, &files), noErr);
    EXPECT_EQ(FSGetCatalogInfoBulk(files, 1, &got, nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), noErr);
    ASSERT_EQ(FSOpenIterator(&outer, kFSIterateFlat, &above), noErr);
    EXPECT_EQ(FSGetCatalogInfoBulk(above, 1, &got, nullptr, kFSCatInfoNone, nullptr, &inner, nullptr, nullptr), noErr);
    std::this_thread::sleep_for(longerThanIdle);

    std::vector<FSCatalogInfo> rest(count + 1);
    EXPECT_EQ(FSGetCatalogInfoBulk(files, count + 1, &got, nullptr, kFSCatInfoDataSizes, rest.data(), nullptr, nullptr, nullptr),
              errFSNoMoreItems);
    EXPECT_EQ(got, count) << "all but the first one";
    ASSERT_EQ(FSOpenIterator(&inner, kFSIterateFlat, &below), noErr);
    EXPECT_EQ(FSGetCatalogInfoBulk(below, 1, &got, nullptr, kFSCatInfoNone, nullptr, &file, nullptr, nullptr), noErr);
    EXPECT_EQ(nameOf(file), u"file");
    EXPECT_TRUE(disk.unmountSoon()) << "with all of them open";
    for (FSIterator iterator : {below, above, files})
        EXPECT_EQ(FSCloseIterator(iterator), noErr);
}

TEST_F(MountedVolumes, AnOpenForkKeepsThem)
{
    writeFile(disk / "file", "data");
    const FSRef file = refAt(disk / "file");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(file, false, fsRdPerm, fork), noErr);
    std::this_thread::sleep_for(longerThanIdle);
    EXPECT_EQ(disk.unmountNow(), EBUSY);
    ASSERT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(disk.unmountNow(), 0);
}

long descriptorsOn(const std::string &place)
{
    long count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
    {
        std::error_code isGone;
        count += std::filesystem::read_symlink(entry, isGone).string().starts_with(place);
    }
    return count;
}

TEST_F(MountedVolumes, NothingIsKeptAndNobodyLooksAfterThemWhenTheyRest)
{
    std::filesystem::create_directory(disk / "inner");
    writeFile(disk / "inner/file", "data");
    EXPECT_EQ(setType(refAt(disk / "inner/file"), code("TEXT"), code("ttxt")), noErr);
    EXPECT_GT(descriptorsOn(disk.place()), 0) << "work that goes on need not open everything again";
    const long threads = entriesIn("/proc/self/task");
    std::this_thread::sleep_for(longerThanIdle);
    EXPECT_EQ(descriptorsOn(disk.place()), 0);
    EXPECT_LT(entriesIn("/proc/self/task"), threads) << "other threads of earlier tests may have ended too";
}

TEST_F(MountedVolumes, KeepTheirNumberWhenTheyAreMovedToAnotherPlace)
{
    writeFile(disk / "file", "data");
    const FSRef file = refAt(disk / "file");
    const FSVolumeRefNum number = volumeNumberOf(file);
    const std::string other = folder / "other";
    std::filesystem::create_directory(other);
    std::this_thread::sleep_for(longerThanIdle);
    ASSERT_EQ(mount(disk.place().c_str(), other.c_str(), nullptr, MS_MOVE, nullptr), 0);
    EXPECT_EQ(checkVolume(number), noErr);
    EXPECT_EQ(pathOf(file), other + "/file");
    EXPECT_EQ(umount2(other.c_str(), MNT_DETACH), 0);
}

TEST_F(MountedVolumes, ThatAreReadOnlyAreLockedByTheirHardware)
{
    ASSERT_EQ(mount(nullptr, disk.place().c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const std::vector<ListedVolume> volumes = listVolumes();
    const ListedVolume *volume = volumeNamed(volumes, u"disk");
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->info.flags & kFSVolFlagHardwareLockedMask, kFSVolFlagHardwareLockedMask);
    EXPECT_EQ(volume->info.flags & kFSVolFlagSoftwareLockedMask, 0);
    EXPECT_EQ(makeFile(volume->root, "new"), wPrErr);
}

TEST_F(MountedVolumes, HaveNamesThatDiffer)
{
    std::filesystem::create_directory(folder / "again");
    MountedDisk second(folder / "again/disk"), third(folder / "A name of many characters, all of them plain");
    const std::vector<ListedVolume> volumes = listVolumes();
    const ListedVolume *one = volumeNamed(volumes, u"disk"), *two = volumeNamed(volumes, u"disk 2");
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(volumeNumberOf(refAt(disk.place())), one->number);
    EXPECT_EQ(volumeNumberOf(refAt(second.place())), two->number);
    EXPECT_NE(volumeNamed(volumes, u"A name of many characters, "), nullptr) << "at most 27 bytes";
}

TEST_F(MountedVolumes, AreListedOnceWhereOneCoversAnother)
{
    writeFile(disk / "below", "data");
    disk.mount();
    const std::vector<ListedVolume> volumes = listVolumes();
    ASSERT_EQ(std::count_if(volumes.begin(), volumes.end(), [](const ListedVolume &each) { return each.name == u"disk"; }), 1);
    FSRef below{};
    EXPECT_EQ(findChild(volumeNamed(volumes, u"disk")->root, units("below"), below), fnfErr);
}

TEST_F(MountedVolumes, ArePlainDisksAlone)
{
    const std::string plumbing = folder / "plumbing", file = folder / "file";
    std::filesystem::create_directory(plumbing);
    writeFile(file, "data");
    ASSERT_EQ(mount("sysfs", plumbing.c_str(), "sysfs", MS_RDONLY, nullptr), 0) << std::strerror(errno);
    ASSERT_EQ(mount((disk / "").c_str(), file.c_str(), nullptr, MS_BIND, nullptr), -1);
    writeFile(disk / "source", "other");
    ASSERT_EQ(mount((disk / "source").c_str(), file.c_str(), nullptr, MS_BIND, nullptr), 0);
    const FSRef root = refAt(plumbing);
    EXPECT_EQ(checkVolume(volumeNumberOf(root)), noErr) << "a path leads there all the same";
    const std::vector<ListedVolume> volumes = listVolumes();
    EXPECT_EQ(volumeNamed(volumes, u"plumbing"), nullptr);
    EXPECT_EQ(volumeNamed(volumes, u"file"), nullptr);
    EXPECT_NE(volumeNamed(volumes, u"disk"), nullptr);
    EXPECT_EQ(checkVolume(volumeNumberOf(root)), noErr) << "and listing the volumes does not take it away";
    EXPECT_EQ(umount2(file.c_str(), MNT_DETACH), 0);
    EXPECT_EQ(umount2(plumbing.c_str(), MNT_DETACH), 0);
}

// With EIO a disk counts as not there; with EMFILE nobody can tell, and that is the result.
TEST_F(MountedVolumes, AreAllListedOrTheListFailsWithEachCallOfLinuxFailing)
{
    const std::size_t all = listVolumes().size();
    const long descriptors = descriptorsInUse();
    for (const int errorNumber : {EMFILE, EIO})
        for (int nth = 1;; ++nth)
        {
            OSErr result = noErr;
            std::vector<ListedVolume> volumes;
            bool reached;
            {
                const FaultyCalls faults({nth, errorNumber});
                volumes = listVolumes(result);
                reached = FaultyCalls::reached();
            }
            SCOPED_TRACE(FaultyCalls::failedCall());
            ASSERT_LT(nth, 500);
            if (result == nsvErr)
                EXPECT_GE(volumes.size() + (errorNumber == EIO && reached), all) << nth;
            else
                EXPECT_EQ(result, errorNumber == EIO ? ioErr : tmfoErr) << nth;
            if (!reached)
                break;
        }
    EXPECT_EQ(listVolumes().size(), all);
    EXPECT_EQ(descriptorsInUse(), descriptors);
}

// --- many of them --------------------------------------------------------------------------------------------------------------------------

std::u16string nameOfNumber(int number)
{
    const std::string text = "disk " + std::to_string(number);
    return {text.begin(), text.end()};
}

std::deque<MountedDisk> mountMany(const std::string &folder, int count)
{
    std::deque<MountedDisk> disks;
    for (int number = 1; number <= count; ++number)
        disks.emplace_back(folder + "/disk " + std::to_string(number));
    return disks;
}

void expectSizesOfDisk(const ListedVolume &volume, const std::string &place)
{
    struct statvfs disk;
    ASSERT_EQ(statvfs(place.c_str(), &disk), 0);
    EXPECT_EQ(+volume.info.totalBytes, static_cast<UInt64>(disk.f_blocks) * disk.f_frsize) << place;
    EXPECT_EQ(+volume.info.freeBytes, static_cast<UInt64>(disk.f_bavail) * disk.f_frsize) << place;
}

const Role listsMany("listsManyVolumes", [](const RoleArguments &arguments) {
    constexpr int count = 25;
    const std::size_t others = listVolumes().size();
    const std::deque<MountedDisk> disks = mountMany(arguments[0], count);
    const std::vector<ListedVolume> volumes = listVolumes();
    ASSERT_EQ(volumes.size(), others + count);
    EXPECT_EQ(pathOf(volumes[0].root), "/") << "the startup volume comes first";
    for (int number = 1; number <= count; ++number)
    {
        const ListedVolume &volume = volumes[others + static_cast<std::size_t>(number) - 1];
        EXPECT_EQ(volume.name, nameOfNumber(number));
        EXPECT_EQ(pathOf(volume.root), disks[static_cast<std::size_t>(number) - 1].place());
        expectSizesOfDisk(volume, disks[static_cast<std::size_t>(number) - 1].place());
    }
    const std::vector<ListedVolume> again = listVolumes();
    EXPECT_TRUE(std::equal(volumes.begin(), volumes.end(), again.begin(), again.end(), [](const ListedVolume &a, const ListedVolume &b) {
        return a.number == b.number;
    })) << "in the same order";
});

TEST_F(MountedVolumes, AreListedHoweverManyThereAre)
{
    playRole("listsManyVolumes", {folder.path()});
}

const Role losesSomeWhileListing("losesVolumesWhileListing", [](const RoleArguments &arguments) {
    constexpr int count = 9;
    const std::deque<MountedDisk> disks = mountMany(arguments[0], count);
    for (std::size_t gone = 0; gone < count; gone += 3)
    {
        std::multiset<std::u16string> names;
        OSErr result = noErr;
        for (ItemCount index = 1; result == noErr; ++index)
        {
            HFSUniStr255 name{};
            result = FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, nullptr, kFSVolInfoNone, nullptr, &name, nullptr);
            if (result == noErr)
                names.insert(wide(name));
            if (wide(name) == nameOfNumber(static_cast<int>(gone) + 2))
            {   // one that was met, the one met just now, and the next one
                for (std::size_t which = gone; which < gone + 3; ++which)
                    ASSERT_EQ(disks[which].unmountNow(), 0);
                checkVolume(-30000);
            }
        }
        EXPECT_EQ(result, nsvErr);
        for (std::size_t which = gone; which < count; ++which)
            EXPECT_EQ(names.count(nameOfNumber(static_cast<int>(which) + 1)), which == gone + 2 ? 0u : 1u) << gone << " " << which;
        EXPECT_EQ(std::set<std::u16string>(names.begin(), names.end()).size(), names.size()) << "none is met twice";
    }
});

TEST_F(MountedVolumes, ThatGoWhileTheyAreListedTakeNoOtherAway)
{
    playRole("losesVolumesWhileListing", {folder.path()});
}

const Role staysInside("listsInsideADirectory", [](const RoleArguments &arguments) {
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    const MountedDisk inside(arguments[0] + "/inside"), outside(arguments[1] + "/outside");
    const std::vector<ListedVolume> volumes = listVolumes();
    ASSERT_EQ(volumes.size(), 2u);
    EXPECT_EQ(volumes[1].name, u"inside");
    EXPECT_EQ(pathOf(volumes[1].root), "/Volumes/inside");
    EXPECT_EQ(volumeNumberOf(refAt("/inside")), volumes[1].number);
    EXPECT_EQ(volumeNumberOf(refAt("/Volumes/inside")), volumes[1].number);
});

TEST_F(MountedVolumes, OutsideAStartupVolumeThatIsADirectoryAreNotThere)
{
    std::filesystem::create_directory(folder / "Startup");
    playRole("listsInsideADirectory", {folder / "Startup", folder.path()});
}

const Role numbersComeAgain("usesUpAllNumbers", [](const RoleArguments &arguments) {
    std::set<FSVolumeRefNum> numbers;
    constexpr int all = 32768 - 100 + 1;
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    for (int count = 0; count < all - 1; ++count)
    {
        FSVolumeRefNum number = 0;
        ASSERT_EQ(standin::addDirectoryVolume("Extra", arguments[0], {}, &number), noErr);
        ASSERT_TRUE(number < 0 && numbers.insert(number).second) << count << ": " << number;
        ASSERT_EQ(standin::removeDirectoryVolume(number), noErr);
    }
    FSVolumeRefNum number = 0;
    ASSERT_EQ(standin::addDirectoryVolume("Extra", arguments[0], {}, &number), noErr);
    EXPECT_EQ(number, -101) << "-100 is the startup volume's";
});

TEST(Volumes, ANumberComesAgainWhenAllTheOthersWereUsed)
{
    const TemporaryFolder folder;
    playRole("usesUpAllNumbers", {folder.path()});
}

}   // namespace
