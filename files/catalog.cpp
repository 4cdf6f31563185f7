// One piece of an object's catalog record at a time: read it, change it, write it back.

#include "files/catalog.h"

#include <cstring>

namespace
{

bool isFolder(const FSCatalogInfo &info)
{
    return (info.nodeFlags & kFSNodeIsDirectoryMask) != 0;
}

// Finder flags have the same place in a file's and in a folder's information, so that of a file serves both.
FileInfo fileInfoOf(const FSCatalogInfo &info)
{
    FileInfo fileInfo;
    std::memcpy(&fileInfo, info.finderInfo, sizeof fileInfo);
    return fileInfo;
}

void setFileInfo(FSCatalogInfo &info, const FileInfo &fileInfo)
{
    std::memcpy(info.finderInfo, &fileInfo, sizeof fileInfo);
}

void changeFinderFlags(FSCatalogInfo &info, bool setBits, UInt16 flagBits)
{
    FileInfo fileInfo = fileInfoOf(info);
    const int flags = setBits ? fileInfo.finderFlags | flagBits : fileInfo.finderFlags & ~flagBits;
    fileInfo.finderFlags = static_cast<UInt16>(flags);
    setFileInfo(info, fileInfo);
}

// Every change of Finder information ends here.
OSErr writeFinderInfo(const FSRef *ref, const FSCatalogInfo &info, const FSRef &parentRef)
{
    const OSErr result = FSSetCatalogInfo(ref, kFSCatInfoFinderInfo, &info);
    if (result != noErr)
        return result;
    FSBumpDate(&parentRef);   // the change stands, whether or not the parent's date can follow
    return noErr;
}

bool sameDate(const UTCDateTime &a, const UTCDateTime &b)
{
    return a.fraction == b.fraction && a.lowSeconds == b.lowSeconds && a.highSeconds == b.highSeconds;
}

void addOneSecond(UTCDateTime &date)
{
    ++date.lowSeconds;
    if (date.lowSeconds == 0)
        ++date.highSeconds;
}

OSErr checkVolumeLock(FSVolumeRefNum volume)
{
    FSVolumeInfo volumeInfo;
    const OSErr result = FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoFlags, &volumeInfo, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (volumeInfo.flags & kFSVolFlagHardwareLockedMask)
        return wPrErr;
    if (volumeInfo.flags & kFSVolFlagSoftwareLockedMask)
        return vLckdErr;
    return noErr;
}

}   // namespace

OSErr FSRefMakeFSSpec(const FSRef *ref, FSSpec *spec)
{
    if (spec == nullptr)
        return paramErr;
    return FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, nullptr, spec, nullptr);
}

OSErr FSMakeFSRef(FSVolumeRefNum volRefNum, SInt32 dirID, ConstStr255Param name, FSRef *newRef)
{
    if (newRef == nullptr)
        return paramErr;
    FSRefParam block;
    block.ioVRefNum = volRefNum;
    block.ioDirID = dirID;
    block.ioNamePtr = const_cast<StringPtr>(name);   // only read
    block.newRef = newRef;
    return PBMakeFSRefSync(&block);
}

Boolean FSRefValid(const FSRef *ref)
{
    return FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr) == noErr;
}

OSErr FSGetParentRef(const FSRef *ref, FSRef *parentRef)
{
    if (parentRef == nullptr)
        return paramErr;
    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(ref, kFSCatInfoNodeID, &info, nullptr, nullptr, parentRef);
    if (result != noErr)
        return result;
    if (info.nodeID == fsRtDirID)
        *parentRef = FSRef{};
    return noErr;
}

OSErr FSGetFileDirName(const FSRef *ref, HFSUniStr255 *outName)
{
    if (outName == nullptr)
        return paramErr;
    return FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, outName, nullptr, nullptr);
}

OSErr FSGetNodeID(const FSRef *ref, SInt32 *nodeID, Boolean *isDirectory)
{
    FSCatalogInfoBitmap whichInfo = kFSCatInfoNone;
    if (nodeID != nullptr)
        whichInfo |= kFSCatInfoNodeID;
    if (isDirectory != nullptr)
        whichInfo |= kFSCatInfoNodeFlags;

    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(ref, whichInfo, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;

    if (nodeID != nullptr)
        *nodeID = static_cast<SInt32>(info.nodeID);
    if (isDirectory != nullptr)
        *isDirectory = isFolder(info);
    return noErr;
}

OSErr FSGetUserPrivilegesPermissions(const FSRef *ref, UInt8 *userPrivileges, UInt32 permissions[4])
{
    FSCatalogInfoBitmap whichInfo = kFSCatInfoNone;
    if (userPrivileges != nullptr)
        whichInfo |= kFSCatInfoUserPrivs;
    if (permissions != nullptr)
        whichInfo |= kFSCatInfoPermissions;

    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(ref, whichInfo, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;

    if (userPrivileges != nullptr)
        *userPrivileges = info.userPrivileges;
    if (permissions != nullptr)
        std::memcpy(permissions, info.permissions, sizeof info.permissions);
    return noErr;
}

OSErr FSCheckLock(const FSRef *ref)
{
    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(ref, kFSCatInfoNodeFlags | kFSCatInfoVolume, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (info.nodeFlags & kFSNodeLockedMask)
        return fLckdErr;
    return checkVolumeLock(info.volume);
}

OSErr FSBumpDate(const FSRef *ref)
{
    FSCatalogInfo info;
    FSRef parentRef;
    const OSErr result = FSGetCatalogInfo(ref, kFSCatInfoNodeFlags | kFSCatInfoContentMod, &info, nullptr, nullptr, &parentRef);
    if (result != noErr)
        return result;

    const UTCDateTime oldDate = info.contentModDate;
    const OSStatus clockResult = GetUTCDateTime(&info.contentModDate, kUTCDefaultOptions);
    if (clockResult != noErr)
        return static_cast<OSErr>(clockResult);
    if (sameDate(info.contentModDate, oldDate))
        addOneSecond(info.contentModDate);   // two bumps within one tick of the clock still give two dates

    // The write's failure is not reported: what was done to the object stands, even if its date can't show it.
    if (FSSetCatalogInfo(ref, kFSCatInfoContentMod, &info) != noErr)
        return noErr;
    FNNotify(isFolder(info) ? ref : &parentRef, kFNDirectoryModifiedMessage, 0);   // nobody has to be listening
    return noErr;
}

OSErr FSGetFinderInfo(const FSRef *ref, FinderInfo *info, ExtendedFinderInfo *extendedInfo, Boolean *isDirectory)
{
    FSCatalogInfoBitmap whichInfo = kFSCatInfoNone;
    if (info != nullptr)
        whichInfo |= kFSCatInfoFinderInfo;
    if (extendedInfo != nullptr)
        whichInfo |= kFSCatInfoFinderXInfo;
    if (isDirectory != nullptr)
        whichInfo |= kFSCatInfoNodeFlags;

    FSCatalogInfo catalogInfo;
    const OSErr result = FSGetCatalogInfo(ref, whichInfo, &catalogInfo, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;

    if (info != nullptr)
        std::memcpy(info, catalogInfo.finderInfo, sizeof *info);
    if (extendedInfo != nullptr)
        std::memcpy(extendedInfo, catalogInfo.extFinderInfo, sizeof *extendedInfo);
    if (isDirectory != nullptr)
        *isDirectory = isFolder(catalogInfo);
    return noErr;
}

OSErr FSSetFinderInfo(const FSRef *ref, const FinderInfo *info, const ExtendedFinderInfo *extendedInfo)
{
    FSCatalogInfoBitmap whichInfo = kFSCatInfoNone;
    FSCatalogInfo catalogInfo;
    if (info != nullptr)
    {
        whichInfo |= kFSCatInfoFinderInfo;
        std::memcpy(catalogInfo.finderInfo, info, sizeof *info);
    }
    if (extendedInfo != nullptr)
    {
        whichInfo |= kFSCatInfoFinderXInfo;
        std::memcpy(catalogInfo.extFinderInfo, extendedInfo, sizeof *extendedInfo);
    }
    return FSSetCatalogInfo(ref, whichInfo, &catalogInfo);
}

OSErr FSChangeCreatorType(const FSRef *ref, OSType fileCreator, OSType fileType)
{
    FSCatalogInfo info;
    FSRef parentRef;
    const OSErr result = FSGetCatalogInfo(ref, kFSCatInfoNodeFlags | kFSCatInfoFinderInfo, &info, nullptr, nullptr, &parentRef);
    if (result != noErr)
        return result;
    if (isFolder(info))
        return notAFileErr;

    FileInfo fileInfo = fileInfoOf(info);
    if (fileType != 0)
        fileInfo.fileType = fileType;
    if (fileCreator != 0)
        fileInfo.fileCreator = fileCreator;
    setFileInfo(info, fileInfo);
    return writeFinderInfo(ref, info, parentRef);
}

OSErr FSChangeFinderFlags(const FSRef *ref, Boolean setBits, UInt16 flagBits)
{
    FSCatalogInfo info;
    FSRef parentRef;
    const OSErr result = FSGetCatalogInfo(ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, &parentRef);
    if (result != noErr)
        return result;
    changeFinderFlags(info, setBits != 0, flagBits);
    return writeFinderInfo(ref, info, parentRef);
}

OSErr FSSetInvisible(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, true, kIsInvisible);
}

OSErr FSClearInvisible(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, false, kIsInvisible);
}

OSErr FSSetNameLocked(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, true, kNameLocked);
}

OSErr FSClearNameLocked(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, false, kNameLocked);
}

OSErr FSSetIsStationery(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, true, kIsStationery);
}

OSErr FSClearIsStationery(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, false, kIsStationery);
}

OSErr FSSetHasCustomIcon(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, true, kHasCustomIcon);
}

OSErr FSClearHasCustomIcon(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, false, kHasCustomIcon);
}

// It has no setter, which is meant: the Finder alone sets this flag.
OSErr FSClearHasBeenInited(const FSRef *ref)
{
    return FSChangeFinderFlags(ref, false, kHasBeenInited);
}

OSErr FSCopyFileMgrAttributes(const FSRef *sourceRef, const FSRef *destRef, Boolean copyLockBit)
{
    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(sourceRef, kFSCatInfoSettableInfo, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    changeFinderFlags(info, false, kHasBeenInited);   // the copy is new to the Finder, whatever the source was
    if (!copyLockBit)
        info.nodeFlags = static_cast<UInt16>(info.nodeFlags & ~kFSNodeLockedMask);
    return FSSetCatalogInfo(destRef, kFSCatInfoSettableInfo, &info);
}

OSErr FileRefNumGetFSRef(SInt16 refNum, FSRef *ref)
{
    return FSGetForkCBInfo(refNum, kFSInvalidVolumeRefNum, nullptr, nullptr, nullptr, ref, nullptr);
}
