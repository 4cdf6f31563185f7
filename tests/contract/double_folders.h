// Which folders of the double's disk are special ones, and what new objects were made of.

#pragma once

#include "platform/platform.h"

#include <map>
#include <string>
#include <utility>

struct FoldersDouble
{
    std::map<std::pair<SInt16, OSType>, std::string> special;   // the folder's label by domain and type; of others there are none
    FSCatalogInfo creationInfo = {};                            // of the last file that was created
};
