// The default directory of this process: what a parameter block means with volume 0 and directory 0.
#pragma once

#include "platform/platform.h"
#include "standin/files/volumes.h"

namespace standin
{

// The volume of the default directory. Null only if there is no volume at all.
VolumeHandle defaultVolume();

// What the two numbers of a parameter block name: 0 and 0 the default directory, volume 0 the default volume, directory 0 of another one its root.
// Result: noErr; nsvErr; dirNFErr if the default directory is gone. The directory itself is not looked for.
OSErr directoryOfBlock(FSVolumeRefNum volumeNumber, SInt32 directoryID, VolumeHandle &volume, UInt32 &folderID);

}   // namespace standin
