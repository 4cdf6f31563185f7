// Paths with colons, as they are typed, and what the plug-in takes of them.
#pragma once

#include "host/command.h"

#include "platform/platform.h"

#include <string>

namespace host
{

// Which encoding the plug-in is given paths in; people always type UTF-8.
struct PathEncoding
{
    CFStringEncoding encoding = kCFStringEncodingUTF8;
};

// --encoding
Arguments::Item addPathEncodingOption(Arguments &arguments, PathEncoding &encoding);

// A typed path as the plug-in takes it. False, and reported, if it cannot be said in that encoding in 255 bytes.
bool takeColonPath(Invocation &invocation, const std::string &typed, const PathEncoding &encoding, Str255 path);

// Deletes a file or an empty folder with FSpDelete2. What fails is reported.
bool deleteColonPath(Invocation &invocation, const std::string &typed, const PathEncoding &encoding);

// The path with slashes that a colon path stands for.
std::string slashedPath(std::string colonPath);

// The colon path of a folder, in UTF-8. Result: that of ZerbPathNameFromDirID; diffVolErr where the folder is not on the startup volume,
// which is the only one that such paths lead to.
OSErr colonPathOfFolder(const Plugin &plugin, FSVolumeRefNum volume, SInt32 folderID, std::string &colonPath);

}   // namespace host
