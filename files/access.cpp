// Calls that still take a volume, a directory ID and a name, for those who have a reference.

#include "files/access.h"

#include "files/catalog.h"

namespace
{

constexpr UInt32 settableAccessRights = 0x10070707;

// The volume and ID of what is to be the default directory; dirNFErr for a file.
OSErr findDirectory(const FSRef *ref, FSCatalogInfo &info)
{
    const FSCatalogInfoBitmap whichInfo = kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoNodeID;
    const OSErr result = FSGetCatalogInfo(ref, whichInfo, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    return info.nodeFlags & kFSNodeIsDirectoryMask ? noErr : dirNFErr;
}

OSErr makeDefault(const FSCatalogInfo &directory)
{
    return HSetVol(nullptr, directory.volume, static_cast<SInt32>(directory.nodeID));
}

void nameDirectory(AccessParam &block, FSSpec &spec)
{
    block.ioNamePtr = spec.name;
    block.ioVRefNum = spec.vRefNum;
    block.ioDirID = spec.parID;
}

}   // namespace

OSErr FSGetDirAccess(const FSRef *ref, SInt32 *ownerID, SInt32 *groupID, UInt32 *accessRights)
{
    FSSpec spec;
    HParamBlockRec block;
    OSErr result = FSRefMakeFSSpec(ref, &spec);
    if (result != noErr)
        return result;
    nameDirectory(block.accessParam, spec);
    result = PBHGetDirAccessSync(&block);
    if (result != noErr)
        return result;
    if (ownerID != nullptr)
        *ownerID = block.accessParam.ioACOwnerID;
    if (groupID != nullptr)
        *groupID = block.accessParam.ioACGroupID;
    if (accessRights != nullptr)
        *accessRights = static_cast<UInt32>(block.accessParam.ioACAccess);
    return noErr;
}

OSErr FSSetDirAccess(const FSRef *ref, SInt32 ownerID, SInt32 groupID, UInt32 accessRights)
{
    FSSpec spec;
    HParamBlockRec block;
    const OSErr result = FSRefMakeFSSpec(ref, &spec);
    if (result != noErr)
        return result;
    nameDirectory(block.accessParam, spec);
    block.accessParam.ioACOwnerID = ownerID;
    block.accessParam.ioACGroupID = groupID;
    block.accessParam.ioACAccess = static_cast<SInt32>(accessRights & settableAccessRights);
    return PBHSetDirAccessSync(&block);
}

OSErr FSMapID(FSVolumeRefNum volRefNum, SInt32 ugID, SInt16 objType, unsigned char *name)
{
    if (name == nullptr)
        return paramErr;
    HParamBlockRec block;
    block.objParam.ioNamePtr = nullptr;
    block.objParam.ioVRefNum = volRefNum;
    block.objParam.ioObjType = objType;
    block.objParam.ioObjNamePtr = name;
    block.objParam.ioObjID = ugID;
    return PBHMapIDSync(&block);
}

OSErr FSMapName(FSVolumeRefNum volRefNum, ConstStr255Param name, SInt16 objType, SInt32 *ugID)
{
    if (ugID == nullptr)
        return paramErr;
    HParamBlockRec block;
    block.objParam.ioNamePtr = nullptr;
    block.objParam.ioVRefNum = volRefNum;
    block.objParam.ioObjType = objType;
    block.objParam.ioObjNamePtr = const_cast<StringPtr>(name);   // only read
    const OSErr result = PBHMapNameSync(&block);
    if (result != noErr)
        return result;
    *ugID = block.objParam.ioObjID;
    return noErr;
}

OSErr FSCreateFileIDRef(const FSRef *ref, UInt32 *fileID)
{
    if (fileID == nullptr)
        return paramErr;
    FSSpec spec;
    HParamBlockRec block;
    OSErr result = FSRefMakeFSSpec(ref, &spec);
    if (result != noErr)
        return result;
    block.fidParam.ioNamePtr = spec.name;
    block.fidParam.ioVRefNum = spec.vRefNum;
    block.fidParam.ioSrcDirID = spec.parID;
    result = PBCreateFileIDRefSync(&block);
    if (result == noErr || result == fidExists || result == afpIDExists)
        *fileID = static_cast<UInt32>(block.fidParam.ioFileID);
    return result;   // that it existed is told together with the ID
}

OSErr FSResolveFileIDRef(FSVolumeRefNum volRefNum, UInt32 fileID, FSRef *ref)
{
    if (ref == nullptr)
        return paramErr;
    Str31 name;
    HParamBlockRec block;
    name[0] = 0;
    block.fidParam.ioNamePtr = name;
    block.fidParam.ioVRefNum = volRefNum;
    block.fidParam.ioFileID = static_cast<SInt32>(fileID);
    const OSErr result = PBResolveFileIDRefSync(&block);
    if (result != noErr)
        return result;
    return FSMakeFSRef(volRefNum, block.fidParam.ioSrcDirID, name, ref);
}

OSErr FSSetDefault(const FSRef *newDefault, FSRef *oldDefault)
{
    if (newDefault == nullptr || oldDefault == nullptr)
        return paramErr;
    FSCatalogInfo directory;
    FSVolumeRefNum oldVolume;
    SInt32 oldDirectoryID;
    OSErr result = findDirectory(newDefault, directory);
    if (result != noErr)
        return result;
    result = HGetVol(nullptr, &oldVolume, &oldDirectoryID);
    if (result != noErr)
        return result;
    result = FSMakeFSRef(oldVolume, oldDirectoryID, nullptr, oldDefault);
    if (result != noErr)
        return result;
    return makeDefault(directory);
}

OSErr FSRestoreDefault(const FSRef *oldDefault)
{
    if (oldDefault == nullptr)
        return paramErr;
    FSCatalogInfo directory;
    const OSErr result = findDirectory(oldDefault, directory);
    if (result != noErr)
        return result;
    return makeDefault(directory);
}
