#include "standin/files/volumes.h"

#include "standin/files/attribute_format.h"
#include "standin/files/default_directory.h"
#include "standin/files/directories.h"
#include "standin/files/errors.h"
#include "standin/files/forks.h"
#include "standin/files/names.h"
#include "standin/files/nodes.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/magic.h>
#include <mutex>
#include <sys/statvfs.h>

namespace standin
{

namespace
{

constexpr FSVolumeRefNum firstVolumeNumber = -100;
constexpr std::size_t longestVolumeName = 27;
constexpr const char *nameOfSlash = "Linux";

struct VolumeTable
{
    std::mutex mutex;
    bool isReady = false;
    std::vector<std::shared_ptr<Volume>> volumes;   // the startup volume first
    FSVolumeRefNum nextNumber = firstVolumeNumber;
    std::string environmentProblem;
    std::vector<std::uint64_t> devices;
};

VolumeTable &table()
{
    static VolumeTable volumes;
    return volumes;
}

// Inode numbers and births change on overlay with the first write, and are made up or missing on network and FUSE disks.
bool keepsInodes(int root)
{
    constexpr std::int64_t fuse = 0x65735546, smb2 = 0xFE534D42, cifs = 0xFF534D42, plan9 = 0x01021997, ceph = 0x00C36400, afs = 0x5346414F;
    static constexpr std::int64_t unstable[] = {
        OVERLAYFS_SUPER_MAGIC, NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, fuse, smb2, cifs, plan9, ceph, afs};
    return std::find(std::begin(unstable), std::end(unstable), linux_calls::diskKind(root)) == std::end(unstable);
}

bool hasTrueListings(int root)
{
    constexpr std::int64_t f2fs = 0xF2F52010;   // in older headers it has no name
    static constexpr std::int64_t trusted[] = {EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, TMPFS_MAGIC, f2fs};
    return std::find(std::begin(trusted), std::end(trusted), linux_calls::diskKind(root)) != std::end(trusted);
}

std::string lastComponent(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string withoutSlashesAtEnd(std::string path)
{
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    return path;
}

// Opens a directory as a volume; `volume` then lacks only its number and name.
OSErr openVolume(const std::string &directory, const VolumeOptions &options, std::shared_ptr<Volume> &volume)
{
    Descriptor root(linux_calls::openAbsoluteFolder(directory.c_str()));
    if (!root.isOpen())
        return root.number() == -ENOTDIR ? errFSNotAFolder : dirNFErr;
    auto made = std::make_shared<Volume>();
    if (linux_calls::statusOf(root.number(), made->rootStatus) < 0)
        return dirNFErr;
    made->path = withoutSlashesAtEnd(linux_calls::pathOf(root.number()));
    made->trustsListings = hasTrueListings(root.number());
    made->hasStableInodes = keepsInodes(root.number());
    made->comparesBirths = made->hasStableInodes && made->rootStatus.hasBirth;
    made->hasAttributes = linux_calls::getAttribute(root.number(), ".", ownAttributeName, {}) != -EOPNOTSUPP;
    made->options = options;
    made->softwareLocked = options.locked;
    made->root = std::make_shared<const Descriptor>(std::move(root));
    volume = std::move(made);
    return noErr;
}

// With the table's mutex held, all below.

std::shared_ptr<Volume> volumeNamed(std::string_view name)
{
    const auto &volumes = table().volumes;
    const auto found = std::find_if(volumes.begin(), volumes.end(), [&](const auto &volume) { return volume->name == name; });
    return found == volumes.end() ? nullptr : *found;
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

void add(std::shared_ptr<Volume> volume, bool asStartup)
{
    VolumeTable &all = table();
    volume->number = all.nextNumber--;
    all.volumes.insert(asStartup ? all.volumes.begin() : all.volumes.end(), std::move(volume));
}

bool takeOption(std::string_view word, VolumeOptions &options)
{
    if (word == "locked")
        options.locked = true;
    else if (word == "nocopyfile")
        options.copyFileOffered = false;
    else if (word == "nomoverename")
        options.moveRenameOffered = false;
    else if (word == "noexchange")
        options.exchangeOffered = false;
    else
        return false;
    return true;
}

// `DIR[,option…]`; a comma that no option follows belongs to the directory's name.
std::string directoryAndOptions(std::string text, VolumeOptions &options)
{
    for (std::size_t comma; (comma = text.rfind(',')) != std::string::npos; text.resize(comma))
        if (!takeOption(std::string_view(text).substr(comma + 1), options))
            break;
    return text;
}

void startFromEnvironment()
{
    const char *directory = std::getenv("ZERB_STARTUP_VOLUME");
    VolumeOptions options;
    std::shared_ptr<Volume> volume;
    const bool isDirectory = directory && *directory;
    const std::string root = isDirectory ? directoryAndOptions(directory, options) : "/";
    if (openVolume(root, options, volume) != noErr)
    {
        table().environmentProblem = "ZERB_STARTUP_VOLUME names \"" + root + "\", which is no folder that can be opened";
        return;
    }
    volume->isDirectoryVolume = isDirectory;
    volume->name = freeVolumeName(volume->path.empty() ? nameOfSlash : lastComponent(volume->path));
    add(std::move(volume), true);
}

void addFromEnvironment(const std::string &entry)
{
    const std::size_t equals = entry.find('=');
    VolumeOptions options;
    std::shared_ptr<Volume> volume;
    if (equals == std::string::npos || equals == 0 ||
        openVolume(directoryAndOptions(entry.substr(equals + 1), options), options, volume) != noErr)
    {
        if (table().environmentProblem.empty())
            table().environmentProblem = "ZERB_VOLUMES holds \"" + entry + "\", which is no NAME=DIR with a folder that can be opened";
        return;
    }
    volume->isDirectoryVolume = true;
    volume->name = freeVolumeName(entry.substr(0, equals));
    add(std::move(volume), false);
}

void makeReady()
{
    if (table().isReady)
        return;
    table().isReady = true;
    startFromEnvironment();
    if (table().volumes.empty())
        return;   // no other volume takes the startup volume's place
    const char *rest = std::getenv("ZERB_VOLUMES");
    std::string entries = rest ? rest : "";
    for (std::size_t start = 0; start < entries.size();)
    {
        const std::size_t end = std::min(entries.find(';', start), entries.size());
        if (end > start)
            addFromEnvironment(entries.substr(start, end - start));
        start = end + 1;
    }
}

template <typename Matches>
VolumeHandle findWhere(Matches matches)
{
    const std::lock_guard lock(table().mutex);
    makeReady();
    const auto &volumes = table().volumes;
    const auto found = std::find_if(volumes.begin(), volumes.end(), [&](const auto &volume) { return matches(*volume); });
    return found == volumes.end() ? nullptr : *found;
}

std::shared_ptr<Volume> volumeNumbered(FSVolumeRefNum number)
{
    const auto &volumes = table().volumes;
    const auto found = std::find_if(volumes.begin(), volumes.end(), [&](const auto &volume) { return volume->number == number; });
    return found == volumes.end() ? nullptr : *found;
}

}   // namespace

bool Volume::hardwareLocked() const
{
    struct statvfs statistics;
    return linux_calls::diskStatistics(root->number(), statistics) == 0 && (statistics.f_flag & ST_RDONLY) != 0;
}

OSErr Volume::checkChangeable() const
{
    if (!softwareLocked)
        return noErr;   // a read-only disk says so itself when it is written to
    return hardwareLocked() ? wPrErr : vLckdErr;
}

VolumeHandle findVolume(FSVolumeRefNum number)
{
    return number == 0 ? defaultVolume() : findWhere([&](const Volume &volume) { return volume.number == number; });
}

VolumeHandle startupVolume()
{
    return volumeAtIndex(1);
}

VolumeHandle volumeAtIndex(ItemCount index)
{
    const std::lock_guard lock(table().mutex);
    makeReady();
    const auto &volumes = table().volumes;
    return index >= 1 && index <= volumes.size() ? volumes[index - 1] : nullptr;
}

VolumeHandle findVolumeNamed(std::string_view diskName)
{
    return findWhere([&](const Volume &volume) { return volume.name == diskName; });
}

VolumeHandle volumeWithRoot(const ObjectStatus &status)
{
    return findWhere([&](const Volume &volume) {
        return volume.rootStatus.device == status.device && volume.rootStatus.inode == status.inode &&
               volume.rootStatus.mount == status.mount;
    });
}

VolumeHandle volumeOfMountPoint(int folder, const char *name, const ObjectStatus &status)
{
    if (VolumeHandle known = volumeWithRoot(status))
        return known;
    const Descriptor root(linux_calls::openAt(folder, name, O_PATH | O_DIRECTORY));
    std::shared_ptr<Volume> volume;
    if (!root.isOpen() || openVolume(linux_calls::pathOf(root.number()), {}, volume) != noErr)
        return nullptr;
    const std::lock_guard lock(table().mutex);
    volume->name = freeVolumeName(lastComponent(volume->path));
    add(volume, false);
    return volume;
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

OSErr useStartupVolume(const std::string &directory, const VolumeOptions &options)
{
    std::shared_ptr<Volume> volume;
    if (OSErr result = openVolume(directory, options, volume))
        return result;
    volume->isDirectoryVolume = !volume->path.empty();
    forgetAllFolders();
    forgetAllDirectories();
    const std::lock_guard lock(table().mutex);
    table().isReady = true;
    table().volumes.clear();
    volume->name = freeVolumeName(volume->path.empty() ? nameOfSlash : lastComponent(volume->path));
    add(std::move(volume), true);
    return noErr;
}

OSErr addDirectoryVolume(const std::string &name, const std::string &directory, const VolumeOptions &options, FSVolumeRefNum *number)
{
    if (name.empty() || name.size() > longestVolumeName || name.find_first_of(std::string_view(":/\0", 3)) != std::string::npos)
        return bdNamErr;
    std::shared_ptr<Volume> volume;
    if (OSErr result = openVolume(directory, options, volume))
        return result;
    const std::lock_guard lock(table().mutex);
    makeReady();
    if (volumeNamed(name))
        return dupFNErr;
    volume->isDirectoryVolume = true;
    volume->name = name;
    add(volume, false);
    if (number)
        *number = volume->number;
    return noErr;
}

OSErr removeDirectoryVolume(FSVolumeRefNum number)
{
    const std::lock_guard lock(table().mutex);
    const auto volume = volumeNumbered(number);
    if (!volume || !volume->isDirectoryVolume || volume == table().volumes.front())
        return nsvErr;
    if (hasOpenForksOn(number))
        return fBsyErr;
    forgetFoldersOf(number);
    forgetDirectoriesOf(number);
    std::erase(table().volumes, volume);
    return noErr;
}

OSErr setVolumeLock(FSVolumeRefNum number, bool locked)
{
    const std::lock_guard lock(table().mutex);
    const auto volume = volumeNumbered(number);
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
