// What the commands share that list and walk folders.
#pragma once

#include "host/catalog_reading.h"
#include "host/command.h"
#include "host/json_text.h"
#include "host/terminal.h"

#include <functional>
#include <string>

namespace host
{

// FOLDER/NAME, without a second '/' where the folder's path ends with one.
std::string pathInFolder(const std::string &folder, const std::string &name);

// The path's last part that is a name, or the path itself if it has none.
std::string lastNameOf(const std::string &path);

// The object itself that a path names, a symbolic link too. With '/' at its end the path has to name a folder, and no link to one: else
// errFSNotAFolder.
OSStatus findItself(const std::string &path, FSRef &ref);

// Walks a folder with FSIterateContainer, at most so many levels (0: all). `visit` gets each object before what is inside it, and with
// `wantName` its name; it returns true to end the walk. What it throws ends the walk and is thrown again here.
// Result: that of FSIterateContainer.
using Visit = std::function<bool(UInt32 level, const FSCatalogInfo &catalog, const FSRef &ref, const HFSUniStr255 *name)>;
OSErr walkFolder(const Plugin &plugin, const FSRef &folder, UInt32 levels, FSCatalogInfoBitmap whichInfo, bool wantName,
                 const Visit &visit);

// Whether a folder that a walk has just come to may be read. A walk says nothing of one that may not: to it the folder is empty.
bool mayBeRead(const FSRef &folder);

// What ls and tree show of an object.
constexpr FSCatalogInfoBitmap shownInfo = kindInfo | kFSCatInfoContentMod | kFSCatInfoDataSizes | kFSCatInfoRsrcSizes;

struct ShownObject
{
    std::string name;   // as in paths
    FSCatalogInfo catalog;
};

// Whether it is shown only to those who ask: its flag says so or its name begins with a point.
bool isHidden(const ShownObject &object);

// The order of names: ignoring the case of Latin letters first, so that "a" comes beside "A"; equal ones by their bytes.
bool nameComesBefore(const ShownObject &one, const ShownObject &other);

// The name, printable, in the colour of its kind. Hidden ones are pale.
std::string shownName(const ShownObject &object, const Style &style);

// Four characters, "----" for none, 0x00000001 where they cannot be printed.
std::string shownCode(OSType code);

// For programs, with all that shownInfo asks for.
Json shownJson(const ShownObject &object, const std::string &path);

}   // namespace host
