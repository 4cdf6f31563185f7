// File IDs by their parameter blocks, for tests.
#pragma once

#include "tests/standin/test_volume.h"

#include <gtest/gtest.h>

#include <string>

namespace support
{

struct NewFileID
{
    OSErr result = 1;
    UInt32 id = 0;
};

inline NewFileID makeID(const FSRef &file)
{
    FSSpec spec = specOf(file);
    HParamBlockRec block{};
    block.fidParam.ioNamePtr = spec.name;
    block.fidParam.ioVRefNum = spec.vRefNum;
    block.fidParam.ioSrcDirID = spec.parID;
    const OSErr result = PBCreateFileIDRefSync(&block);
    EXPECT_EQ(block.fidParam.ioResult, result);
    return {result, static_cast<UInt32>(block.fidParam.ioFileID)};
}

struct FoundFileID
{
    OSErr result = 1;
    SInt32 directory = 0;
    std::string name;   // short, in the system's encoding
};

inline FoundFileID resolveID(FSVolumeRefNum volume, UInt32 id)
{
    Str31 name{};
    HParamBlockRec block{};
    block.fidParam.ioNamePtr = name;
    block.fidParam.ioVRefNum = volume;
    block.fidParam.ioFileID = static_cast<SInt32>(id);
    const OSErr result = PBResolveFileIDRefSync(&block);
    EXPECT_EQ(block.fidParam.ioResult, result);
    return {result, block.fidParam.ioSrcDirID, std::string(reinterpret_cast<const char *>(name) + 1, name[0])};
}

// The path of the file, found as the plug-in does it; or the code of the step that failed.
inline std::string pathOfID(FSVolumeRefNum volume, UInt32 id)
{
    FSSpec spec{};
    FSRef ref{};
    const FoundFileID found = resolveID(volume, id);
    if (found.result != noErr)
        return "not resolved: " + std::to_string(found.result);
    spec.vRefNum = volume;
    spec.parID = found.directory;
    spec.name[0] = static_cast<unsigned char>(found.name.size());
    std::copy(found.name.begin(), found.name.end(), spec.name + 1);
    const OSErr result = findSpec(spec, ref);
    return result == noErr ? pathOf(ref) : "not found: " + std::to_string(result);
}

// Whether a file that another program renamed is found at all: not on disks that have no births.
inline bool findsWhatOthersRename(const std::string &folder)
{
    const std::string before = folder + "/renamed by others?", after = folder + "/renamed by others!";
    writeFile(before);
    const FSRef ref = refAt(before);
    ::rename(before.c_str(), after.c_str());
    const bool isFound = checkRef(ref) == noErr;
    ::remove(after.c_str());
    return isFound;
}

}   // namespace support
