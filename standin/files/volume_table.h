// The table of volumes, for the sources that bring it in line with what there is. Everybody else asks volumes.h.
#pragma once

#include "standin/files/volumes.h"

namespace standin
{

// All of them, the startup volume first, the others in the order in which they came.
std::vector<VolumeHandle> allVolumes();

// The volume with a number, without a look whether a disk is still there. Null if there is none.
VolumeHandle volumeNumbered(FSVolumeRefNum number);

// Adds a mounted disk that has neither number nor name yet. If its root is that of a volume already, that one is the result.
VolumeHandle addMountedDisk(std::shared_ptr<Volume> disk);

// Takes a mounted disk away that is gone, with all that is remembered of it.
void removeMountedDisk(const VolumeHandle &disk);

// Adds a directory volume under a name that is free. Result: noErr; dupFNErr.
OSErr addNamedVolume(std::shared_ptr<Volume> volume, const std::string &name);

}   // namespace standin
