// What the double's volumes are mounted from.

#pragma once

#include "platform/platform.h"

#include <map>
#include <string>

struct MountingDouble
{
    // The records of the volumes that can be mounted again. Mounting one makes another volume with the same root folder.
    std::map<FSVolumeRefNum, std::string> records = {{-100, std::string("\x00\x0A"
                                                                        "afp\x00\xFF\x80\x01\x7F",
                                                                        10)}};
    FSVolumeRefNum nextNumber = -32768;
};
