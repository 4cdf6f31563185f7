// The volumes: the startup volume, directories made volumes, and mounted disks met on the way.
#pragma once

#include "platform/platform.h"
#include "standin/files/linux_calls.h"
#include "standin/standin.h"

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace standin
{

struct Volume
{
    FSVolumeRefNum number = 0;
    std::string name;   // as on disk: ':' and '/' exchanged, see names.h
    std::string path;   // of the root, absolute, without a '/' at its end; empty for `/`
    std::shared_ptr<const Descriptor> root;
    ObjectStatus rootStatus;
    bool isDirectoryVolume = false;
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

// A volume by its number; 0 is the default volume. Null if there is none.
VolumeHandle findVolume(FSVolumeRefNum number);
VolumeHandle startupVolume();
VolumeHandle volumeAtIndex(ItemCount index);   // from 1
VolumeHandle findVolumeNamed(std::string_view diskName);

// The volume whose root is this very object, or null.
VolumeHandle volumeWithRoot(const ObjectStatus &status);

// The volume of a mounted disk whose root was just met; it becomes a volume if it was none. Null if it cannot be reached.
VolumeHandle volumeOfMountPoint(int folder, const char *name, const ObjectStatus &status);

// Whether absolute paths have `/Volumes/NAME` for the other volumes, because the startup volume is a directory of the host's own.
bool startupIsDirectory();

// A device as a small number, for references, and back. Devices are never forgotten.
UInt16 numberOfDevice(std::uint64_t device);
bool deviceOfNumber(UInt16 number, std::uint64_t &device);

}   // namespace standin
