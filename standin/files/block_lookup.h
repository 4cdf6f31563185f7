// Objects by what most parameter blocks name them with: volume, directory ID and short name.
#pragma once

#include "platform/platform.h"
#include "standin/files/references.h"

namespace standin
{

// Volume 0 and directory 0 are the default directory, volume 0 is its volume, directory 0 of another volume its root. Without a name the directory itself is meant; below fsRtParID lie the volumes' roots by their names.
// Result: noErr; nsvErr; dirNFErr; fnfErr; bdNamErr.
OSErr findByTriple(FSVolumeRefNum volumeNumber, SInt32 directoryID, ConstStr255Param name, Object &object);

}   // namespace standin
