// What volumes are mounted, what they are called, how large they are and what they can do.

#include "files/volumes.h"

namespace
{

OSErr appendRoots(Handle volumeRefs, UInt32 &numVolumes)
{
    for (ItemCount volumeIndex = 1;; ++volumeIndex)
    {
        FSRef rootRef;
        OSErr result = FSGetVolumeInfo(kFSInvalidVolumeRefNum, volumeIndex, nullptr, kFSVolInfoNone, nullptr, nullptr, &rootRef);
        if (result == nsvErr)
            return noErr;   // one past the last
        if (result != noErr)
            return result;
        PtrAndHand(&rootRef, volumeRefs, sizeof rootRef);
        result = MemError();
        if (result != noErr)
            return result;
        ++numVolumes;
    }
}

}   // namespace

OSErr FSGetVolParms(FSVolumeRefNum volRefNum, UInt32 bufferSize, GetVolParmsInfoBuffer *volParmsInfo, UInt32 *actualInfoSize)
{
    if (volParmsInfo == nullptr || actualInfoSize == nullptr)
        return paramErr;
    HParamBlockRec block;
    block.ioParam.ioNamePtr = nullptr;
    block.ioParam.ioVRefNum = volRefNum;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(volParmsInfo);
    block.ioParam.ioReqCount = static_cast<SInt32>(bufferSize);
    const OSErr result = PBHGetVolParmsSync(&block);
    if (result != noErr)
        return result;
    *actualInfoSize = static_cast<UInt32>(block.ioParam.ioActCount);
    return noErr;
}

OSErr FSGetVRefNum(const FSRef *ref, FSVolumeRefNum *vRefNum)
{
    if (vRefNum == nullptr)
        return paramErr;
    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(ref, kFSCatInfoVolume, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    *vRefNum = info.volume;
    return noErr;
}

OSErr FSGetVInfo(FSVolumeRefNum volume, HFSUniStr255 *volumeName, UInt64 *freeBytes, UInt64 *totalBytes)
{
    const bool wantsSizes = freeBytes != nullptr || totalBytes != nullptr;
    FSVolumeInfo info;
    const OSErr result = FSGetVolumeInfo(volume, 0, nullptr, wantsSizes ? kFSVolInfoSizes : kFSVolInfoNone, &info, volumeName, nullptr);
    if (result != noErr)
        return result;
    if (freeBytes != nullptr)
        *freeBytes = info.freeBytes;
    if (totalBytes != nullptr)
        *totalBytes = info.totalBytes;
    return noErr;
}

OSErr FSGetVolFileSystemID(FSVolumeRefNum volume, UInt16 *fileSystemID, UInt16 *signature)
{
    FSVolumeInfo info;
    const OSErr result = FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoFSInfo, &info, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (fileSystemID != nullptr)
        *fileSystemID = info.filesystemID;
    if (signature != nullptr)
        *signature = info.signature;
    return noErr;
}

OSErr FSGetMountedVolumes(Handle *volumeRefsHandle, UInt32 *numVolumes)
{
    if (volumeRefsHandle == nullptr || numVolumes == nullptr)
        return paramErr;
    *numVolumes = 0;
    *volumeRefsHandle = NewHandle(0);
    if (*volumeRefsHandle == nullptr)
        return memFullErr;
    const OSErr result = appendRoots(*volumeRefsHandle, *numVolumes);
    if (result != noErr)
    {
        DisposeHandle(*volumeRefsHandle);
        *volumeRefsHandle = nullptr;
        *numVolumes = 0;
    }
    return result;
}

OSErr FSGetVolMountInfoSize(FSVolumeRefNum volRefNum, SInt16 *size)
{
    if (size == nullptr)
        return paramErr;
    ParamBlockRec block;
    block.ioParam.ioNamePtr = nullptr;
    block.ioParam.ioVRefNum = volRefNum;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(size);
    return PBGetVolMountInfoSize(&block);
}

OSErr FSGetVolMountInfo(FSVolumeRefNum volRefNum, void *volMountInfo)
{
    if (volMountInfo == nullptr)
        return paramErr;
    ParamBlockRec block;
    block.ioParam.ioNamePtr = nullptr;
    block.ioParam.ioVRefNum = volRefNum;
    block.ioParam.ioBuffer = static_cast<Ptr>(volMountInfo);
    return PBGetVolMountInfo(&block);
}

OSErr FSVolumeMount(const void *volMountInfo, FSVolumeRefNum *volRefNum)
{
    if (volRefNum == nullptr)
        return paramErr;
    ParamBlockRec block;
    block.ioParam.ioBuffer = static_cast<Ptr>(const_cast<void *>(volMountInfo));   // only read
    const OSErr result = PBVolumeMount(&block);
    if (result != noErr)
        return result;
    *volRefNum = block.ioParam.ioVRefNum;
    return noErr;
}
