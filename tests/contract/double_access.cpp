// The File Manager's calls on access privileges, users and groups.

#include "tests/contract/platform_double.h"

#include <cstring>

const MappedName *AccessDouble::find(SInt16 objectType, SInt32 id) const
{
    for (const MappedName &each : names)
        if (each.objectType == objectType && each.id == id)
            return &each;
    return nullptr;
}

const MappedName *AccessDouble::find(SInt16 objectType, const std::string &name) const
{
    for (const MappedName &each : names)
        if (each.objectType == objectType && each.name == name)
            return &each;
    return nullptr;
}

namespace
{

// The object that a block names; a root folder lies in no directory, but has the name of its volume. Or null with the reason.
const FileObject *findObject(FilesDouble &files, const AccessParam &block, OSErr &result)
{
    const VolumeObject *volume = files.findVolume(block.ioVRefNum);
    if (block.ioDirID == fsRtParID && volume != nullptr && volume->root->name == plainText(block.ioNamePtr))
        return volume->root;
    const FileObject *parent = files.findDirectory(block.ioVRefNum, block.ioDirID);
    const FileObject *found = parent == nullptr ? nullptr : files.findChild(*parent, block.ioNamePtr);
    if (found == nullptr)
        result = parent == nullptr ? dirNFErr : fnfErr;
    return found;
}

// The access of the directory that a block names, or null with the reason.
DirectoryAccess *findAccess(PlatformDouble &platform, const AccessParam &block, OSErr &result)
{
    const FileObject *found = findObject(platform.files, block, result);
    if (found == nullptr)
        return nullptr;
    if (!found->isFolder())
    {
        result = dirNFErr;
        return nullptr;
    }
    return &platform.access.directories[found->label];
}

}   // namespace

OSErr PBHGetDirAccessSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    AccessParam &block = paramBlock->accessParam;
    OSErr result =
        platform.record("PBHGetDirAccessSync", {field("ioVRefNum", decimal(block.ioVRefNum)), field("ioDirID", decimal(block.ioDirID)),
                                                field("ioNamePtr", quoted(block.ioNamePtr))});
    if (result != noErr)
        return result;

    const DirectoryAccess *access = findAccess(platform, block, result);
    if (access == nullptr)
        return result;
    block.ioACOwnerID = access->ownerID;
    block.ioACGroupID = access->groupID;
    block.ioACAccess = static_cast<SInt32>(access->rights);
    return noErr;
}

OSErr PBHSetDirAccessSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const AccessParam &block = paramBlock->accessParam;
    const UInt32 rights = static_cast<UInt32>(block.ioACAccess);
    OSErr result = platform.record("PBHSetDirAccessSync",
                                   {field("ioVRefNum", decimal(block.ioVRefNum)), field("ioDirID", decimal(block.ioDirID)),
                                    field("ioNamePtr", quoted(block.ioNamePtr)), field("ioACOwnerID", decimal(block.ioACOwnerID)),
                                    field("ioACGroupID", decimal(block.ioACGroupID)), field("ioACAccess", hex(rights))});
    if (result != noErr)
        return result;

    DirectoryAccess *access = findAccess(platform, block, result);
    if (access != nullptr)
        *access = {block.ioACOwnerID, block.ioACGroupID, rights};
    return result;
}

OSErr PBHMapIDSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const ObjParam &block = paramBlock->objParam;
    const OSErr failure = platform.record(
        "PBHMapIDSync", {field("ioNamePtr", quoted(block.ioNamePtr)), field("ioVRefNum", decimal(block.ioVRefNum)),
                         field("ioObjType", decimal(block.ioObjType)), field("ioObjNamePtr", platform.pointer(block.ioObjNamePtr, "name")),
                         field("ioObjID", decimal(block.ioObjID))});
    if (failure != noErr)
        return failure;

    if (platform.files.findVolume(block.ioVRefNum) == nullptr)
        return nsvErr;
    const MappedName *found = platform.access.find(block.ioObjType, block.ioObjID);
    if (found == nullptr)
        return fnfErr;
    block.ioObjNamePtr[0] = static_cast<unsigned char>(found->name.size());
    std::memcpy(block.ioObjNamePtr + 1, found->name.data(), found->name.size());
    return noErr;
}

OSErr PBHMapNameSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    ObjParam &block = paramBlock->objParam;
    const std::string name = quoted(block.ioObjNamePtr);
    const OSErr failure =
        platform.record("PBHMapNameSync",
                        {field("ioNamePtr", quoted(block.ioNamePtr)), field("ioVRefNum", decimal(block.ioVRefNum)),
                         field("ioObjType", decimal(block.ioObjType)), field("ioObjNamePtr", platform.pointer(block.ioObjNamePtr, name))});
    if (failure != noErr)
        return failure;

    if (platform.files.findVolume(block.ioVRefNum) == nullptr)
        return nsvErr;
    if (block.ioObjNamePtr == nullptr)
        return paramErr;
    const MappedName *found = platform.access.find(block.ioObjType, plainText(block.ioObjNamePtr));
    if (found == nullptr)
        return fnfErr;
    block.ioObjID = found->id;
    return noErr;
}
