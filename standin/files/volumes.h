// The volumes: the startup volume, directories made volumes, and mounted disks.
//
// Mounted disks come and go while the process runs. One becomes a volume when a path first leads into it or when the volumes are listed, and is none any
// more once it is found to be gone.
#pragma once

#include "platform/platform.h"
#include "standin/files/volume_root.h"
#include "standin/standin.h"

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace standin
{

enum class VolumeKind
{
    startup,
    directory,   // one that the host or the environment made a volume
    mountedDisk,
};

struct Volume
{
    Volume(std::string path, Descriptor opened, const ObjectStatus &status, VolumeKind volumeKind);

    FSVolumeRefNum number = 0;
    std::string name;   // as on disk: ':' and '/' exchanged, see names.h
    VolumeRoot root;
    ObjectStatus rootStatus;
    bool isMountedDisk;               // its descriptors are given up when they are idle: it may be unmounted
    bool isDirectoryVolume = false;   // as are a startup volume that is a directory, and further ones
    VolumeOptions options;
    std::atomic<bool> softwareLocked{false};
    bool hasAttributes = true;      // extended ones, on what may have them
    bool trustsListings = false;    // a folder's entries have the inode numbers that the objects' own status has
    bool hasStableInodes = false;   // an object keeps its inode number as long as it lives: not on overlay, network and FUSE disks
    bool comparesBirths = false;    // births are there, and stable on these disks

    // noErr, or the code of the lock that stands against any change: wPrErr before vLckdErr.
    OSErr checkChangeable() const;
    bool hardwareLocked() const;
};
using VolumeHandle = std::shared_ptr<const Volume>;

// A volume by its number; 0 is the default volume. Null if there is none. A mounted disk's root stays open for a while: work on it will follow.
VolumeHandle findVolume(FSVolumeRefNum number);
VolumeHandle startupVolume();
VolumeHandle findVolumeNamed(std::string_view diskName);

// The volume at an index from 1, the startup volume first, and its root, which is open as long as the handle is there. Who asks for one index after
// another on one thread meets every volume that stays there meanwhile, and none twice.
// Result: noErr; nsvErr beyond the last; the code of why nobody can tell what is mounted.
OSErr volumeAtIndex(ItemCount index, VolumeHandle &volume, RootHandle &root);

// The volume whose root is this very object, or null.
VolumeHandle volumeWithRoot(const ObjectStatus &status);

// The volume of a mounted disk whose root was just met; it becomes a volume if it was none. Null if it cannot be reached.
VolumeHandle volumeOfMountPoint(int folder, const char *name, const ObjectStatus &status);

// Whether absolute paths have `/Volumes/NAME` for the other volumes, because the startup volume is a directory of the host's own.
bool startupIsDirectory();

// A device as a small number, for references, and back. Devices are never forgotten.
UInt16 numberOfDevice(std::uint64_t device);
bool deviceOfNumber(UInt16 number, std::uint64_t &device);

// Closes the roots of mounted disks that nobody has used since a moment of the coarse clock. The result is how many stay open.
std::size_t closeIdleRoots(std::int64_t usedBefore);

}   // namespace standin
