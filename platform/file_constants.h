// The bits, masks and numbers that go to and come from the File Manager.

#pragma once

#include "platform/types.h"

// Fields of FSCatalogInfo
enum : FSCatalogInfoBitmap
{
    kFSCatInfoNone = 0x00000000,
    kFSCatInfoTextEncoding = 0x00000001,
    kFSCatInfoNodeFlags = 0x00000002,
    kFSCatInfoVolume = 0x00000004,
    kFSCatInfoParentDirID = 0x00000008,
    kFSCatInfoNodeID = 0x00000010,
    kFSCatInfoCreateDate = 0x00000020,
    kFSCatInfoContentMod = 0x00000040,
    kFSCatInfoAttrMod = 0x00000080,
    kFSCatInfoAccessDate = 0x00000100,
    kFSCatInfoBackupDate = 0x00000200,
    kFSCatInfoPermissions = 0x00000400,
    kFSCatInfoFinderInfo = 0x00000800,
    kFSCatInfoFinderXInfo = 0x00001000,
    kFSCatInfoValence = 0x00002000,
    kFSCatInfoDataSizes = 0x00004000,
    kFSCatInfoRsrcSizes = 0x00008000,
    kFSCatInfoSharingFlags = 0x00010000,
    kFSCatInfoUserPrivs = 0x00020000,
    kFSCatInfoSettableInfo = 0x00001FE3   // every field that FSSetCatalogInfo can set
};

// Bits of FSCatalogInfo.nodeFlags
enum : UInt16
{
    kFSNodeLockedMask = 0x0001,
    kFSNodeResOpenMask = 0x0004,
    kFSNodeDataOpenMask = 0x0008,
    kFSNodeIsDirectoryMask = 0x0010,
    kFSNodeForkOpenMask = 0x0080
};

// Fields of FSVolumeInfo
enum : FSVolumeInfoBitmap
{
    kFSVolInfoNone = 0x0000,
    kFSVolInfoCreateDate = 0x0001,
    kFSVolInfoModDate = 0x0002,
    kFSVolInfoBackupDate = 0x0004,
    kFSVolInfoCheckedDate = 0x0008,
    kFSVolInfoFileCount = 0x0010,
    kFSVolInfoDirCount = 0x0020,
    kFSVolInfoSizes = 0x0040,
    kFSVolInfoBlocks = 0x0080,
    kFSVolInfoNextAlloc = 0x0100,
    kFSVolInfoRsrcClump = 0x0200,
    kFSVolInfoDataClump = 0x0400,
    kFSVolInfoNextID = 0x0800,
    kFSVolInfoFinderInfo = 0x1000,
    kFSVolInfoFlags = 0x2000,
    kFSVolInfoFSInfo = 0x4000,
    kFSVolInfoDriveInfo = 0x8000
};

// Bits of FSVolumeInfo.flags
enum : UInt16
{
    kFSVolFlagHardwareLockedMask = 0x0080,
    kFSVolFlagSoftwareLockedMask = 0x8000
};

constexpr FSVolumeRefNum kFSInvalidVolumeRefNum = 0;

// Directory IDs that mean the same on every volume
constexpr SInt32 fsRtParID = 1;   // the parent of the root folder, which is no folder
constexpr SInt32 fsRtDirID = 2;   // the root folder

// How an iterator walks
enum : FSIteratorFlags
{
    kFSIterateFlat = 0,
    kFSIterateDelete = 2   // the items are deleted as they come
};

// Positioning modes of forks
enum : UInt16
{
    fsAtMark = 0,
    fsFromStart = 1,
    fsFromLEOF = 2,
    fsFromMark = 3,
    noCacheMask = 0x20   // added to a mode: do not keep these bytes in memory
};

// Permissions of opening a fork
enum : SInt8
{
    fsCurPerm = 0,   // whatever is possible
    fsRdPerm = 1,
    fsWrPerm = 2,
    fsRdWrPerm = 3
};

// What a volume can do, as bit numbers: test with 1 << number
constexpr int bHasMoveRename = 13;              // in vMAttrib
constexpr int bHasCopyFile = 14;                // in vMAttrib
constexpr int bSupportsFSExchangeObjects = 3;   // in vMExtendedAttributes

// Finder flags
enum : UInt16
{
    kHasBeenInited = 0x0100,
    kHasCustomIcon = 0x0400,
    kIsStationery = 0x0800,
    kNameLocked = 0x1000,
    kIsInvisible = 0x4000
};
