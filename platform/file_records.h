// The records of the File Manager: references, names, catalog and volume information, Finder information.
//
// Multi-byte fields are in the machine's own byte order. The Finder records lie over byte arrays of FSCatalogInfo:
// FileInfo and FolderInfo over `finderInfo`, the extended ones over `extFinderInfo`, FSPermissionInfo over `permissions`.
// Copy them with memcpy and never read them through a cast pointer.

#pragma once

#include "platform/dates.h"
#include "platform/geometry.h"
#include "platform/types.h"

#include <type_traits>

#pragma pack(push, 2)

// Names a file-system object. What the bytes mean is the platform's own business.
struct FSRef
{
    UInt8 hidden[80];
};

// Names an object by its volume, its parent's directory ID and a short name.
struct FSSpec
{
    SInt16 vRefNum;
    SInt32 parID;
    Str63 name;
};

// A name of `length` UTF-16 code units.
struct HFSUniStr255
{
    UInt16 length;
    UniChar unicode[255];
};

struct FSPermissionInfo
{
    UInt32 userID, groupID;
    UInt8 reserved1, userAccess;
    UInt16 mode;
    UInt32 reserved2;
};

// What the catalog knows of one object. A bitmap of kFSCatInfo… says which fields are meant.
struct FSCatalogInfo
{
    UInt16 nodeFlags;
    FSVolumeRefNum volume;
    UInt32 parentDirID, nodeID;
    UInt8 sharingFlags, userPrivileges, reserved1, reserved2;
    UTCDateTime createDate, contentModDate, attributeModDate, accessDate, backupDate;
    UInt32 permissions[4];
    UInt8 finderInfo[16], extFinderInfo[16];
    UInt64 dataLogicalSize, dataPhysicalSize, rsrcLogicalSize, rsrcPhysicalSize;
    UInt32 valence;   // the number of objects in a folder
    TextEncoding textEncodingHint;
};

// What is known of one volume. A bitmap of kFSVolInfo… says which fields are meant.
struct FSVolumeInfo
{
    UTCDateTime createDate, modifyDate, backupDate, checkedDate;
    UInt32 fileCount, folderCount;
    UInt64 totalBytes, freeBytes;
    UInt32 blockSize, totalBlocks, freeBlocks, nextAllocation, rsrcClumpSize, dataClumpSize, nextCatalogID;
    UInt8 finderInfo[32];
    UInt16 flags, filesystemID, signature, driveNumber;
    SInt16 driverRefNum;
};

// A place in the list of an object's forks; `initialize` of 0 asks for the first.
struct CatPositionRec
{
    SInt32 initialize;
    SInt16 priv[6];
};

struct FileInfo
{
    OSType fileType, fileCreator;
    UInt16 finderFlags;
    Point location;
    UInt16 reservedField;
};

struct FolderInfo
{
    Rect windowBounds;
    UInt16 finderFlags;
    Point location;
    UInt16 reservedField;
};

struct ExtendedFileInfo
{
    SInt16 reserved1[4];
    UInt16 extendedFinderFlags;
    SInt16 reserved2;
    SInt32 putAwayFolderID;
};

struct ExtendedFolderInfo
{
    Point scrollPosition;
    SInt32 reserved1;
    UInt16 extendedFinderFlags;
    SInt16 reserved2;
    SInt32 putAwayFolderID;
};

union FinderInfo
{
    FileInfo file;
    FolderInfo folder;
};

union ExtendedFinderInfo
{
    ExtendedFileInfo file;
    ExtendedFolderInfo folder;
};

// What a volume can do. 32 bytes on every target, so that the request count of 32 covers the whole record:
// the two pointers keep their 4 bytes where pointers are wider.
struct GetVolParmsInfoBuffer
{
    SInt16 vMVersion;
    SInt32 vMAttrib;
    std::conditional_t<sizeof(Handle) == 4, Handle, UInt32> vMLocalHand;
    SInt32 vMServerAdr;
    SInt32 vMVolumeGrade;
    SInt16 vMForeignPrivID;
    SInt32 vMExtendedAttributes;
    std::conditional_t<sizeof(void *) == 4, void *, UInt32> vMDeviceID;
    UniCharCount vMMaxNameLength;
};

#pragma pack(pop)

// Known to the File Manager alone.
struct FSForkInfo;
