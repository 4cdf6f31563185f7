#include "standin/files/volumes.h"

#include "standin/files/default_directory.h"
#include "standin/files/directories.h"
#include "standin/files/forks.h"
#include "standin/files/mounted_disks.h"
#include "standin/files/nodes.h"
#include "standin/files/volume_opening.h"
#include "standin/files/volume_table.h"

#include <algorithm>
#include <fcntl.h>
#include <limits>
#include <mutex>
#include <sys/statvfs.h>

namespace standin
{

namespace
{

constexpr FSVolumeRefNum firstVolumeNumber = -100, lastVolumeNumber = -32768;

struct VolumeTable
{
    std::mutex mutex;
    bool isReady = false;
    std::vector<std::shared_ptr<Volume>> volumes;   // the startup volume first
    FSVolumeRefNum nextNumber = firstVolumeNumber;
    std::string environmentProblem;
    std::vector<std::uint64_t> devices;
};

// Never destroyed: a thread may still look after idle folders when the process ends.
VolumeTable &table()
{
    static VolumeTable &volumes = *new VolumeTable;
    return volumes;
}

// With the table's mutex held, all below.

template <typename Matches>
std::shared_ptr<Volume> volumeWhere(Matches matches)
{
    const auto &volumes = table().volumes;
    const auto found = std::find_if(volumes.begin(), volumes.end(), [&](const auto &volume) { return matches(*volume); });
    return found == volumes.end() ? nullptr : *found;
}

std::shared_ptr<Volume> volumeNamed(std::string_view name)
{
    return volumeWhere([&](const Volume &volume) { return volume.name == name; });
}

std::shared_ptr<Volume> withNumber(FSVolumeRefNum number)
{
    return volumeWhere([&](const Volume &volume) { return volume.number == number; });
}

std::shared_ptr<Volume> volumeRootedAt(const ObjectStatus &status)
{
    return volumeWhere([&](const Volume &volume) { return isSameRoot(volume.rootStatus, status); });
}

// At most 27 bytes, cut between characters, and not the name of another volume.
std::string freeVolumeName(std::string wanted)
{
    if (wanted.empty())
        wanted = "Untitled";
    for (int number = 1;; ++number)
    {
        const std::string suffix = number == 1 ? "" : ' ' + std::to_string(number);
        std::size_t length = std::min(wanted.size(), longestVolumeName - suffix.size());
        while (length < wanted.size() && length > 1 && (static_cast<unsigned char>(wanted[length]) & 0xC0) == 0x80)
            --length;
        std::string name = wanted.substr(0, length) + suffix;
        if (!volumeNamed(name))
            return name;
    }
}

// A number comes again when all the others were used.
FSVolumeRefNum takeNumber()
{
    FSVolumeRefNum &next = table().nextNumber;
    FSVolumeRefNum taken;
    do
    {
        taken = next;
        next = next == lastVolumeNumber ? firstVolumeNumber : static_cast<FSVolumeRefNum>(next - 1);
    } while (withNumber(taken));
    return taken;
}

void add(std::shared_ptr<Volume> volume, const std::string &name)
{
    volume->name = name;
    volume->number = takeNumber();
    table().volumes.push_back(std::move(volume));
}

void startFromEnvironment()
{
    std::shared_ptr<Volume> volume;
    const WantedVolume wanted = wantedStartupVolume();
    if (openVolume(wanted.directory, VolumeKind::startup, wanted.options, volume) != noErr)
    {
        table().environmentProblem = "ZERB_STARTUP_VOLUME names \"" + wanted.directory + "\", which is no folder that can be opened";
        return;
    }
    volume->isDirectoryVolume = !wanted.entry.empty();
    const std::string name = freeVolumeName(usualName(*volume));
    add(std::move(volume), name);
}

void addFromEnvironment(const WantedVolume &wanted)
{
    std::shared_ptr<Volume> volume;
    if (!wanted.name.empty() && openVolume(wanted.directory, VolumeKind::directory, wanted.options, volume) == noErr)
        add(std::move(volume), freeVolumeName(wanted.name));
    else if (table().environmentProblem.empty())
        table().environmentProblem = "ZERB_VOLUMES holds \"" + wanted.entry + "\", which is no NAME=DIR with a folder that can be opened";
}

void makeReady()
{
    if (table().isReady)
        return;
    table().isReady = true;
    startFromEnvironment();
    if (table().volumes.empty())
        return;   // no other volume takes the startup volume's place
    for (const WantedVolume &wanted : wantedFurtherVolumes())
        addFromEnvironment(wanted);
}

// Takes the table's mutex, unlike those above.
template <typename Matches>
VolumeHandle findWhere(Matches matches)
{
    const std::lock_guard lock(table().mutex);
    makeReady();
    return volumeWhere(matches);
}

void forgetWhatIsKnownOf(FSVolumeRefNum number)
{
    forgetFoldersOf(number);
    forgetDirectoriesOf(number);
}

// A disk that is not where it was may have been moved. Null if it is gone.
VolumeHandle ifStillThere(VolumeHandle volume, Keeping keeping)
{
    RootHandle root;
    if (!volume || volume->root.open(keeping, root) != nsvErr)
        return volume;
    if (bringMountedDisksInLine() != noErr)
        return volume;   // nobody can tell
    return volume->root.open(keeping, root) != nsvErr ? volume : nullptr;
}

// A disk that is gone still has its name until that is noticed.
void leaveNameOfGoneDisk(const std::string &name)
{
    const VolumeHandle other = findWhere([&](const Volume &volume) { return volume.name == name; });
    if (other && other->root.checkIsThere() == nsvErr)
        bringMountedDisksInLine();
}

}   // namespace

Volume::Volume(std::string path, Descriptor opened, const ObjectStatus &status, VolumeKind volumeKind)
    : root(std::move(path), std::move(opened), status, volumeKind == VolumeKind::mountedDisk), rootStatus(status),
      isMountedDisk(volumeKind == VolumeKind::mountedDisk)
{
}

bool Volume::hardwareLocked() const
{
    RootHandle opened;
    struct statvfs statistics;
    return root.open(Keeping::open, opened) == noErr && linux_calls::diskStatistics(opened->number(), statistics) == 0 &&
           (statistics.f_flag & ST_RDONLY) != 0;
}

OSErr Volume::checkChangeable() const
{
    if (!softwareLocked)
        return noErr;   // a read-only disk says so itself when it is written to
    return hardwareLocked() ? wPrErr : vLckdErr;
}

VolumeHandle findVolume(FSVolumeRefNum number)
{
    if (number == 0)
        return defaultVolume();
    return ifStillThere(volumeNumbered(number), Keeping::open);
}

VolumeHandle startupVolume()
{
    return findWhere([](const Volume &) { return true; });
}

VolumeHandle findVolumeNamed(std::string_view diskName)
{
    const auto hasName = [&](const Volume &volume) { return volume.name == diskName; };
    if (VolumeHandle known = ifStillThere(findWhere(hasName), Keeping::closed))
        return known;
    bringMountedDisksInLine();   // it may have come meanwhile; if nobody can tell, it is not found
    return findWhere(hasName);
}

VolumeHandle volumeWithRoot(const ObjectStatus &status)
{
    return findWhere([&](const Volume &volume) { return isSameRoot(volume.rootStatus, status); });
}

VolumeHandle volumeOfMountPoint(int folder, const char *name, const ObjectStatus &status)
{
    if (VolumeHandle known = volumeWithRoot(status))
        return known;
    const Descriptor root(linux_calls::openAt(folder, name, O_PATH | O_DIRECTORY));
    std::shared_ptr<Volume> volume;
    if (!root.isOpen() || openVolume(linux_calls::pathOf(root.number()), VolumeKind::mountedDisk, {}, volume) != noErr ||
        !isSameRoot(volume->rootStatus, status))
        return nullptr;
    leaveNameOfGoneDisk(usualName(*volume));
    return addMountedDisk(std::move(volume));
}

bool startupIsDirectory()
{
    const VolumeHandle volume = startupVolume();
    return volume && volume->isDirectoryVolume;
}

UInt16 numberOfDevice(std::uint64_t device)
{
    const std::lock_guard lock(table().mutex);
    auto &devices = table().devices;
    const auto found = std::find(devices.begin(), devices.end(), device);
    if (found != devices.end())
        return static_cast<UInt16>(found - devices.begin());
    if (devices.size() == 0xFFFF)
        return 0xFFFF;   // no device has this number: such a reference is found by nothing
    devices.push_back(device);
    return static_cast<UInt16>(devices.size() - 1);
}

bool deviceOfNumber(UInt16 number, std::uint64_t &device)
{
    const std::lock_guard lock(table().mutex);
    if (number >= table().devices.size())
        return false;
    device = table().devices[number];
    return true;
}

std::size_t closeIdleRoots(std::int64_t usedBefore)
{
    std::size_t left = 0;
    for (const VolumeHandle &volume : allVolumes())
        left += volume->root.closeIfIdle(usedBefore);
    return left;
}

// --- the table, for the sources beside this one --------------------------------------------------------------------------------------------

std::vector<VolumeHandle> allVolumes()
{
    const std::lock_guard lock(table().mutex);
    makeReady();
    return {table().volumes.begin(), table().volumes.end()};
}

VolumeHandle volumeNumbered(FSVolumeRefNum number)
{
    return findWhere([&](const Volume &volume) { return volume.number == number; });
}

VolumeHandle addMountedDisk(std::shared_ptr<Volume> disk)
{
    const std::lock_guard lock(table().mutex);
    if (VolumeHandle known = volumeRootedAt(disk->rootStatus))
        return known;
    add(disk, freeVolumeName(usualName(*disk)));
    return disk;
}

void removeMountedDisk(const VolumeHandle &disk)
{
    const std::lock_guard lock(table().mutex);
    if (std::erase(table().volumes, disk) != 0)
        forgetWhatIsKnownOf(disk->number);
    disk->root.closeIfIdle(std::numeric_limits<std::int64_t>::max());   // an open iterator may hold the volume
}

OSErr addNamedVolume(std::shared_ptr<Volume> volume, const std::string &name)
{
    const std::lock_guard lock(table().mutex);
    makeReady();
    if (volumeNamed(name))
        return dupFNErr;
    add(std::move(volume), name);
    return noErr;
}

// --- what a host may ask -------------------------------------------------------------------------------------------------------------------

OSErr useStartupVolume(const std::string &directory, const VolumeOptions &options)
{
    std::shared_ptr<Volume> volume;
    if (OSErr result = openVolume(directory, VolumeKind::startup, options, volume))
        return result;
    volume->isDirectoryVolume = !volume->root.path().empty();
    forgetAllFolders();
    forgetAllDirectories();
    const std::lock_guard lock(table().mutex);
    table().isReady = true;
    table().volumes.clear();
    const std::string name = freeVolumeName(usualName(*volume));
    add(std::move(volume), name);
    return noErr;
}

OSErr addDirectoryVolume(const std::string &name, const std::string &directory, const VolumeOptions &options, FSVolumeRefNum *number)
{
    std::shared_ptr<Volume> volume;
    if (!isVolumeName(name))
        return bdNamErr;
    if (OSErr result = openVolume(directory, VolumeKind::directory, options, volume))
        return result;
    if (OSErr result = addNamedVolume(volume, name))
        return result;
    if (number)
        *number = volume->number;
    return noErr;
}

OSErr removeDirectoryVolume(FSVolumeRefNum number)
{
    const std::lock_guard lock(table().mutex);
    const auto volume = withNumber(number);
    if (!volume || !volume->isDirectoryVolume || volume == table().volumes.front())
        return nsvErr;
    if (hasOpenForksOn(number))
        return fBsyErr;
    forgetWhatIsKnownOf(number);
    std::erase(table().volumes, volume);
    return noErr;
}

OSErr setVolumeLock(FSVolumeRefNum number, bool locked)
{
    const std::lock_guard lock(table().mutex);
    const auto volume = withNumber(number);
    if (!volume)
        return nsvErr;
    if (!volume->isDirectoryVolume)
        return paramErr;
    volume->softwareLocked = locked;
    return noErr;
}

std::uint64_t systemCallCount()
{
    return linux_calls::count();
}

const char *environmentProblem()
{
    const std::lock_guard lock(table().mutex);
    makeReady();
    return table().environmentProblem.empty() ? nullptr : table().environmentProblem.c_str();
}

}   // namespace standin
