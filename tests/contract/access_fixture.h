// What the tests of access privileges, file IDs and the default directory share.

#pragma once

#include "files/fstoolkit.h"
#include "tests/contract/patterned.h"
#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <string>

// A variable for every output of these functions
struct AccessResults
{
    SInt32 ownerID, groupID;
    UInt32 rights;
    unsigned char name[40];   // longer than such a name, so that what is written behind it shows
    SInt32 mappedID;
    UInt32 fileID;
    FSRef ref;
};

class AccessTest : public testing::Test
{
protected:
    AccessTest()
    {
        platform.nameAddress(results.name, "caller's name");
        platform.nameAddress(&results.ref, "caller's ref");
    }

    FSCatalogInfo &infoOf(const std::string &label) { return platform.files.object(label).info; }

    // The one call that turns a reference into volume, directory and name
    static std::string converting(const std::string &label) { return "FSGetCatalogInfo(ref:" + label + ", 0x0, -, -, spec, -)"; }

    static constexpr OSErr someCode = -12345;   // no code that anything here knows

    PlatformDouble platform;
    Patterned<AccessResults> results, expected;
    const FSRef file = platform.files.ref("file"), folder = platform.files.ref("folder"), nested = platform.files.ref("nested");
    const FSRef noObject = {{1}};
};
