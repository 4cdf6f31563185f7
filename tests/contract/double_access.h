// Who may do what on the double's disk, who there is, which files have IDs, and which directory is the default one.

#pragma once

#include "platform/platform.h"

#include <map>
#include <string>
#include <vector>

struct FileObject;

// The rights as they are reported: with bits that no one can set.
struct DirectoryAccess
{
    SInt32 ownerID = 501, groupID = -2;
    UInt32 rights = 0x87040705;
};

// An ID is one thing for each object type, so that a type that gets lost shows.
struct MappedName
{
    SInt16 objectType;
    SInt32 id;
    std::string name;
};

struct AccessDouble
{
    // An ID and a name, or null. Names are looked up by two object types of their own.
    const MappedName *find(SInt16 objectType, SInt32 id) const;
    const MappedName *find(SInt16 objectType, const std::string &name) const;

    std::map<std::string, DirectoryAccess> directories;   // by label; the others have what every directory has
    std::vector<MappedName> names = {{1, 501, "Anna"},    {2, 501, "Editors"},      {3, 501, "Anna"},
                                     {4, 501, "Editors"}, {1, -2147483647, "Nemo"}, {3, -2147483647, "Nemo"}};

    std::map<UInt32, std::string> fileIDs;   // label by ID
    UInt32 nextFileID = 0x80000001;
    OSErr resultForNewID = noErr;            // of the call that gives a file its ID, and tells the ID all the same
    OSErr resultForExistingID = fidExists;   // likewise; a server says afpIDExists

    FSVolumeRefNum defaultVolume = -100;
    SInt32 defaultDirectory = fsRtDirID;
};
