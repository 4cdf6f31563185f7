// What a volume of the double says that it can do, and its service that copies files.

#include "tests/contract/platform_double.h"

#include <algorithm>
#include <cstring>

OSErr PBHGetVolParmsSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    IOParam &block = paramBlock->ioParam;
    const OSErr failure =
        platform.record("PBHGetVolParmsSync",
                        {field("ioNamePtr", quoted(block.ioNamePtr)), field("ioVRefNum", decimal(block.ioVRefNum)),
                         field("ioReqCount", decimal(block.ioReqCount)), field("ioBuffer", platform.pointer(block.ioBuffer, "buffer"))});
    if (failure != noErr)
        return failure;

    const VolumeObject *volume = platform.files.findVolume(block.ioVRefNum);
    if (volume == nullptr)
        return nsvErr;
    const std::size_t count = std::min(static_cast<std::size_t>(block.ioReqCount), sizeof volume->parameters);
    std::memcpy(block.ioBuffer, &volume->parameters, count);
    block.ioActCount = static_cast<SInt32>(count);
    return volume->parametersResult;
}

OSErr PBHCopyFileSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const CopyParam &block = paramBlock->copyParam;
    const OSErr failure =
        platform.record("PBHCopyFileSync", {field("ioVRefNum", decimal(block.ioVRefNum)), field("ioDirID", decimal(block.ioDirID)),
                                            field("ioNamePtr", quoted(block.ioNamePtr)), field("ioDstVRefNum", decimal(block.ioDstVRefNum)),
                                            field("ioNewDirID", decimal(block.ioNewDirID)), field("ioNewName", quoted(block.ioNewName)),
                                            field("ioCopyName", quoted(block.ioCopyName))});
    if (failure != noErr)
        return failure;

    const FileObject *directory = platform.files.findDirectory(block.ioVRefNum, block.ioDirID);
    FileObject *destination = platform.files.findDirectory(block.ioDstVRefNum, block.ioNewDirID);
    if (directory == nullptr || destination == nullptr)
        return dirNFErr;
    const FileObject *source = platform.files.findChild(*directory, block.ioNamePtr);
    if (source == nullptr)
        return fnfErr;
    const ConstStr255Param name = block.ioCopyName == nullptr ? block.ioNamePtr : block.ioCopyName;
    if (name[0] == 0)
        return bdNamErr;
    if (platform.files.findChild(*destination, name) != nullptr)
        return dupFNErr;
    FileObject &copy = platform.files.add(std::string(reinterpret_cast<const char *>(name + 1), name[0]), destination, false);
    copy.ref.hidden[sizeof copy.ref.hidden - 2] = 1;   // tells it from a source of the same name
    return noErr;
}
