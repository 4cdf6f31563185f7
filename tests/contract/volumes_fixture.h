// What the tests of volumes share.

#pragma once

#include "files/fstoolkit.h"
#include "tests/contract/patterned.h"
#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

// A variable for every output of the functions on volumes
struct VolumeResults
{
    GetVolParmsInfoBuffer parameters;
    UInt32 parametersSize;
    FSVolumeRefNum number;
    HFSUniStr255 name;
    UInt64 freeBytes, totalBytes;
    UInt16 fileSystemID, signature;
    SInt16 recordSize;
    char record[16];
};

class VolumesTest : public testing::Test
{
protected:
    VolumesTest()
    {
        platform.nameAddress(&results.parameters, "caller's parameters");
        platform.nameAddress(&results.name, "caller's name");
        platform.nameAddress(&results.recordSize, "caller's size");
        platform.nameAddress(results.record, "caller's record");
    }

    VolumeObject &volume() { return platform.files.volumes.front(); }

    static constexpr OSErr someCode = -12345;   // no code that anything here knows

    PlatformDouble platform;
    Patterned<VolumeResults> results, expected;
};
