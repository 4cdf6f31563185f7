// How volumes are named on the command line.
#pragma once

#include "platform/types.h"

#include <string>

namespace host
{

// A number, a path of anything on it (with a '/' in it), or its name. `volume` is written only on success.
OSStatus findVolume(const std::string &text, FSVolumeRefNum &volume);

// The volume that an object lies on, likewise.
OSStatus volumeOfPath(const std::string &path, FSVolumeRefNum &volume);

}   // namespace host
