// The File Manager's calls on file IDs.

#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

// The ID of an object, or 0.
UInt32 idOf(const AccessDouble &access, const FileObject &object)
{
    for (const auto &[id, label] : access.fileIDs)
        if (label == object.label)
            return id;
    return 0;
}

}   // namespace

OSErr PBCreateFileIDRefSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    AccessDouble &access = platform.access;
    FIDParam &block = paramBlock->fidParam;
    const OSErr failure = platform.record("PBCreateFileIDRefSync",
                                          {field("ioVRefNum", decimal(block.ioVRefNum)), field("ioSrcDirID", decimal(block.ioSrcDirID)),
                                           field("ioNamePtr", quoted(block.ioNamePtr))});
    if (failure != noErr)
        return failure;

    const FileObject *directory = platform.files.findDirectory(block.ioVRefNum, block.ioSrcDirID);
    if (directory == nullptr)
        return dirNFErr;
    const FileObject *found = platform.files.findChild(*directory, block.ioNamePtr);
    if (found == nullptr)
        return fnfErr;
    if (found->isFolder())
        return notAFileErr;
    UInt32 id = idOf(access, *found);
    const OSErr result = id == 0 ? access.resultForNewID : access.resultForExistingID;
    if (id == 0)
    {
        id = access.nextFileID++;
        access.fileIDs[id] = found->label;
    }
    block.ioFileID = static_cast<SInt32>(id);
    return result;
}

// The name's buffer holds 31 characters, as names in parameter blocks do.
OSErr PBResolveFileIDRefSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    FIDParam &block = paramBlock->fidParam;
    const UInt32 id = static_cast<UInt32>(block.ioFileID);
    const OSErr failure =
        platform.record("PBResolveFileIDRefSync", {field("ioVRefNum", decimal(block.ioVRefNum)), field("ioFileID", hex(id)),
                                                   field("ioNamePtr", quoted(block.ioNamePtr))});
    if (failure != noErr)
        return failure;

    if (platform.files.findVolume(block.ioVRefNum) == nullptr)
        return nsvErr;
    const auto known = platform.access.fileIDs.find(id);
    if (known == platform.access.fileIDs.end())
        return fidNotFound;
    const FSSpec spec = specificationOf(platform.files.object(known->second));
    std::memcpy(block.ioNamePtr, spec.name, 1u + spec.name[0]);
    block.ioSrcDirID = spec.parID;
    return noErr;
}
