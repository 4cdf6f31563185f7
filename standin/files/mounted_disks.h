// Which disks are mounted now, and which volumes they are.
#pragma once

#include "standin/files/mount_list.h"
#include "standin/files/volumes.h"

#include <string>
#include <vector>

namespace standin
{

// Looks at what is mounted: new disks become volumes, those that are gone are none any more, those that were moved get their new place. Where the startup
// volume is a directory, disks that do not lie beneath it or another directory volume are left alone: no path leads there.
// Disks that cannot be opened count as not there. Result: noErr; the code of why nobody can tell what is mounted.
OSErr bringMountedDisksInLine();

// The same, and which volumes there are then: the startup volume, directory volumes and disks in the order in which they came. What is mounted but is no
// disk (see isDisk) is left out, though a path may have made it a volume.
OSErr listVolumes(std::vector<VolumeHandle> &volumes);

// The mounts as the kernel lists them. An empty list where the kernel shows none.
OSErr readMounts(std::vector<Mount> &mounts);

// Whether paths can lead to a place of Linux.
bool isReachable(const std::string &place);

// The volume of the disk that is mounted at a place, whatever kind it is; null if there is none.
// Result: noErr, also for null; the code of why nobody can tell.
OSErr volumeMountedAt(const std::string &place, VolumeHandle &volume);

}   // namespace standin
