// Short forms for tests of copying.
#pragma once

#include "tests/standin/test_volume.h"

#include <algorithm>

namespace support
{

inline void setPascal(std::string_view text, Str255 name)
{
    name[0] = static_cast<UInt8>(text.size());
    std::copy(text.begin(), text.end(), name + 1);
}

// By the object's spec and the folder's ID; without a name the copy keeps the source's. Bytes of `name` are in the system's encoding.
inline OSErr copyFile(const FSRef &source, const FSRef &folder, std::string_view name = {})
{
    HParamBlockRec block{};
    FSSpec spec{};
    FSCatalogInfo target{};
    Str255 copyName{};
    setPascal(name, copyName);
    if (OSErr result = FSGetCatalogInfo(&source, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr))
        return result;
    if (OSErr result = FSGetCatalogInfo(&folder, kFSCatInfoVolume | kFSCatInfoNodeID, &target, nullptr, nullptr, nullptr))
        return result;
    block.copyParam.ioVRefNum = spec.vRefNum;
    block.copyParam.ioDirID = spec.parID;
    block.copyParam.ioNamePtr = spec.name;
    block.copyParam.ioDstVRefNum = target.volume;
    block.copyParam.ioNewDirID = static_cast<SInt32>(target.nodeID);
    block.copyParam.ioCopyName = name.empty() ? nullptr : copyName;
    OSErr result = PBHCopyFileSync(&block);
    EXPECT_EQ(+block.copyParam.ioResult, result);
    return result;
}

inline Bytes patternBytes(std::size_t size, unsigned seed)
{
    Bytes bytes(size);
    for (std::uint8_t &byte : bytes)
        byte = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    return bytes;
}

}   // namespace support
