#include "standin/files/mounted_disks.h"

#include "standin/files/errors.h"
#include "standin/files/linux_mounts.h"
#include "standin/files/volume_opening.h"
#include "standin/files/volume_table.h"

#include <algorithm>
#include <cerrno>
#include <set>

namespace standin
{

namespace
{

// A place on the startup volume itself is no disk of its own.
bool isRootOfStartup(const std::string &place)
{
    const VolumeHandle startup = startupVolume();
    return startup && (place == "/" ? "" : place) == startup->root.path();
}

// Asks what is mounted at a place. `isThere` is false for what cannot be opened, for a single file that something is mounted on, and for a place that
// another mount covers.
OSErr lookAt(const std::string &place, bool &isThere, ObjectStatus &status)
{
    isThere = false;
    const Descriptor root(linux_calls::openAbsoluteFolder(place.c_str()));
    if (!root.isOpen())
        return linux_calls::saysUsedUp(root.number()) ? resultFromErrno(-root.number()) : static_cast<OSErr>(noErr);
    if (const int failure = linux_calls::statusOf(root.number(), status))
        return linux_calls::saysUsedUp(failure) ? resultFromErrno(-failure) : static_cast<OSErr>(noErr);
    isThere = status.isMountPoint;
    return noErr;
}

// The volume of what is mounted at a place, if it is one already. `isNew`: it is there, and is none yet.
OSErr findDisk(const std::string &place, VolumeHandle &volume, bool &isNew)
{
    bool isThere = false;
    ObjectStatus status;
    const OSErr result = lookAt(place, isThere, status);
    volume = isThere ? volumeWithRoot(status) : nullptr;
    isNew = isThere && !volume;
    if (volume && volume->isMountedDisk && volume->root.path() != place)
        volume->root.moveTo(place);
    return result;
}

// Null for what is gone again.
OSErr addDisk(const std::string &place, VolumeHandle &volume)
{
    std::shared_ptr<Volume> opened;
    const OSErr result = openVolume(place, VolumeKind::mountedDisk, {}, opened);
    volume = result == noErr ? addMountedDisk(std::move(opened)) : nullptr;
    return result == dirNFErr || result == errFSNotAFolder ? static_cast<OSErr>(noErr) : result;
}

// Volumes of mounted disks that the list of mounts does not show: a path may have led to what is no disk, and others are gone.
OSErr removeThoseThatAreGone(const std::set<VolumeHandle> &seen)
{
    for (const VolumeHandle &volume : allVolumes())
    {
        if (!volume->isMountedDisk || seen.contains(volume))
            continue;
        const OSErr result = volume->root.checkIsThere();
        if (result == nsvErr)
            removeMountedDisk(volume);
        else if (result == tmfoErr || result == memFullErr)
            return result;
    }
    return noErr;
}

OSErr disksOfKernel(std::vector<std::string> &places)
{
    std::vector<Mount> mounts;
    if (OSErr result = readMounts(mounts))
        return result;
    for (const Mount &mount : mounts)
        if (isDisk(mount) && isReachable(mount.place) && !isRootOfStartup(mount.place))
            places.push_back(mount.place);
    return noErr;
}

// Those that are gone make room, and leave their names, before new ones come.
OSErr takeDisks(std::set<VolumeHandle> &disks)
{
    std::vector<std::string> places, placesOfNew;
    if (OSErr result = disksOfKernel(places))
        return result;
    for (const std::string &place : places)
    {
        VolumeHandle volume;
        bool isNew = false;
        if (OSErr result = findDisk(place, volume, isNew))
            return result;
        if (isNew)
            placesOfNew.push_back(place);
        else if (volume)
            disks.insert(volume);
    }
    if (OSErr result = removeThoseThatAreGone(disks))
        return result;
    for (const std::string &place : placesOfNew)
    {
        VolumeHandle volume;
        if (OSErr result = addDisk(place, volume))
            return result;
        if (volume)
            disks.insert(volume);
    }
    return noErr;
}

}   // namespace

OSErr bringMountedDisksInLine()
{
    std::set<VolumeHandle> disks;
    return startupVolume() ? takeDisks(disks) : static_cast<OSErr>(noErr);
}

OSErr listVolumes(std::vector<VolumeHandle> &volumes)
{
    std::set<VolumeHandle> disks;
    volumes.clear();
    if (!startupVolume())
        return noErr;
    if (OSErr result = takeDisks(disks))
        return result;
    volumes = allVolumes();
    std::erase_if(volumes, [&](const VolumeHandle &volume) { return volume->isMountedDisk && !disks.contains(volume); });
    return noErr;
}

OSErr readMounts(std::vector<Mount> &mounts)
{
    std::string text;
    const int failure = linux_calls::readMountList(text);
    if (failure != 0 && failure != -ENOENT)
        return resultFromErrno(-failure);
    mounts = parseMountList(text);
    return noErr;
}

bool isReachable(const std::string &place)
{
    if (!startupIsDirectory())
        return true;
    const std::vector<VolumeHandle> volumes = allVolumes();
    return std::any_of(volumes.begin(), volumes.end(),
                       [&](const VolumeHandle &volume) { return !volume->isMountedDisk && isBeneath(place, volume->root.path()); });
}

OSErr volumeMountedAt(const std::string &place, VolumeHandle &volume)
{
    bool isNew = false;
    if (OSErr result = bringMountedDisksInLine())
        return result;
    if (OSErr result = findDisk(place, volume, isNew))
        return result;
    return isNew ? addDisk(place, volume) : static_cast<OSErr>(noErr);
}

}   // namespace standin
