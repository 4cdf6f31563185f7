// Everything that is known about one object, gathered once and then shown in whatever form.
#pragma once

#include "host/catalog_reading.h"
#include "host/json_text.h"
#include "host/plugin.h"
#include "host/terminal.h"

#include "platform/platform.h"

#include <string>

namespace host
{

// Texts are bytes as on disk or in UTF-8; they still have to be made printable.
struct ObjectInfo
{
    std::string path;
    std::string name;
    std::string shortName;
    std::string volumeName;   // empty if the volume does not say
    FSCatalogInfo catalog;
    FSPermissionInfo permissions;
    FinderInfo finder;
    ExtendedFinderInfo extendedFinder;
    OSErr lockCheck;
    Kind kind;

    bool isFolder() const { return kind == Kind::folder; }
    UInt16 finderFlags() const { return isFolder() ? finder.folder.finderFlags : finder.file.finderFlags; }
    UInt16 extendedFlags() const
    {
        return isFolder() ? extendedFinder.folder.extendedFinderFlags : extendedFinder.file.extendedFinderFlags;
    }
    SInt32 putAwayFolder() const { return isFolder() ? extendedFinder.folder.putAwayFolderID : extendedFinder.file.putAwayFolderID; }
    Point location() const { return isFolder() ? finder.folder.location : finder.file.location; }
};

// Result: noErr; FSGetCatalogInfo's code, or that of the first further call that an object must answer. `info` is complete only on success.
OSStatus gatherInfo(const Plugin &plugin, const FSRef &ref, ObjectInfo &info);

// -rw-r--r--, with the letter of what it is on disk.
std::string describeMode(UInt16 mode);

// Many lines for people, grouped and lined up.
std::string infoText(const ObjectInfo &info, const Style &style);

// One object for programs. Names and meanings of the members are described in the manual.
Json infoJson(const ObjectInfo &info);

}   // namespace host
