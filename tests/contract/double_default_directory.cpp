// The File Manager's default directory.

#include "tests/contract/platform_double.h"

OSErr HGetVol(StringPtr volName, SInt16 *vRefNum, SInt32 *dirID)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record(
        "HGetVol", {platform.pointer(volName, "name"), platform.pointer(vRefNum, "volume"), platform.pointer(dirID, "directory")});
    if (failure != noErr)
        return failure;

    *vRefNum = platform.access.defaultVolume;
    *dirID = platform.access.defaultDirectory;
    return noErr;
}

OSErr HSetVol(ConstStr255Param volName, SInt16 vRefNum, SInt32 dirID)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("HSetVol", {quoted(volName), decimal(vRefNum), decimal(dirID)});
    if (failure != noErr)
        return failure;

    if (platform.files.findDirectory(vRefNum, dirID) == nullptr)
        return dirNFErr;
    platform.access.defaultVolume = vRefNum;
    platform.access.defaultDirectory = dirID;
    return noErr;
}
