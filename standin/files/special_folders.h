// Where the system's special folders lie: one table, which docs/folders.md shows to users.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <string>

namespace standin
{

struct SpecialFolder
{
    std::string path;             // as FSPathMakeRef takes it; empty where there is no home
    std::uint32_t modeWhenMade;   // 0: as every other folder
    bool isOnStartupVolume;       // whether it has to be: programs then make paths of it that have no volume
};

// The folder of this kind, whether or not it is there. False for a kind that nothing is known of.
bool findSpecialFolder(SInt16 domain, OSType folderType, SpecialFolder &folder);

}   // namespace standin
