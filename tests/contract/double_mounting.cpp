// The File Manager's calls that save and replay how a volume was mounted. A record begins with its own size, the high
// byte first.

#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

std::string bufferOf(const IOParam &block, const std::string &role)
{
    return field("ioBuffer", PlatformDouble::current().pointer(block.ioBuffer, role));
}

// The record of the volume that a block names, or null with the reason.
const std::string *findRecord(PlatformDouble &platform, const IOParam &block, OSErr &result)
{
    const auto found = platform.mounting.records.find(block.ioVRefNum);
    if (found != platform.mounting.records.end())
        return &found->second;
    result = platform.files.findVolume(block.ioVRefNum) == nullptr ? nsvErr : paramErr;
    return nullptr;
}

}   // namespace

OSErr PBGetVolMountInfoSize(ParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const IOParam &block = paramBlock->ioParam;
    OSErr result = platform.record("PBGetVolMountInfoSize", {field("ioNamePtr", quoted(block.ioNamePtr)),
                                                             field("ioVRefNum", decimal(block.ioVRefNum)), bufferOf(block, "size")});
    if (result != noErr)
        return result;

    const std::string *record = findRecord(platform, block, result);
    if (record == nullptr)
        return result;
    const SInt16 size = static_cast<SInt16>(record->size());
    std::memcpy(block.ioBuffer, &size, sizeof size);
    return noErr;
}

OSErr PBGetVolMountInfo(ParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const IOParam &block = paramBlock->ioParam;
    OSErr result = platform.record("PBGetVolMountInfo", {field("ioNamePtr", quoted(block.ioNamePtr)),
                                                         field("ioVRefNum", decimal(block.ioVRefNum)), bufferOf(block, "record")});
    if (result != noErr)
        return result;

    const std::string *record = findRecord(platform, block, result);
    if (record != nullptr)
        std::memcpy(block.ioBuffer, record->data(), record->size());
    return result;
}

OSErr PBVolumeMount(ParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    IOParam &block = paramBlock->ioParam;
    const OSErr failure = platform.record("PBVolumeMount", {bufferOf(block, "record")});
    if (failure != noErr)
        return failure;

    if (block.ioBuffer == nullptr)
        return paramErr;
    for (const auto &[number, record] : platform.mounting.records)
    {
        if (std::memcmp(block.ioBuffer, record.data(), 2) != 0 || std::memcmp(block.ioBuffer, record.data(), record.size()) != 0)
            continue;
        VolumeObject mounted = *platform.files.findVolume(number);
        mounted.number = platform.mounting.nextNumber++;
        platform.files.volumes.push_back(mounted);
        block.ioVRefNum = mounted.number;
        return noErr;
    }
    return nsvErr;
}
