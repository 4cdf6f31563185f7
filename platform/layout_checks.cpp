// The build ends here when a record is not laid out as the platform has it.
//
// Parameter blocks hold pointers, so their sizes and offsets are those of the platform on 32-bit targets only.

#include "platform/platform.h"

#include <cstddef>

namespace
{
constexpr bool widePointers = sizeof(void *) == 8;
}

static_assert(sizeof(SInt8) == 1 && sizeof(UInt8) == 1 && sizeof(Boolean) == 1);
static_assert(sizeof(SInt16) == 2 && sizeof(UInt16) == 2 && sizeof(UniChar) == 2);
static_assert(sizeof(SInt32) == 4 && sizeof(UInt32) == 4 && sizeof(OSStatus) == 4);
static_assert(sizeof(SInt64) == 8 && sizeof(UInt64) == 8);
static_assert(static_cast<SInt8>(-1) < 0 && static_cast<UInt8>(-1) > 0);
static_assert(sizeof(Str255) == 256 && sizeof(Str63) == 64 && sizeof(Str31) == 32 && sizeof(Str27) == 28);
static_assert(fourCharCode("pref") == 0x70726566 && gestaltQuickdrawVersion == 0x71642020);

static_assert(sizeof(FSRef) == 80 && alignof(FSRef) == 1);

static_assert(sizeof(FSSpec) == 70 && alignof(FSSpec) == 2);
static_assert(offsetof(FSSpec, vRefNum) == 0);
static_assert(offsetof(FSSpec, parID) == 2);
static_assert(offsetof(FSSpec, name) == 6);

static_assert(sizeof(HFSUniStr255) == 512 && alignof(HFSUniStr255) == 2);
static_assert(offsetof(HFSUniStr255, length) == 0);
static_assert(offsetof(HFSUniStr255, unicode) == 2);

static_assert(sizeof(UTCDateTime) == 8 && alignof(UTCDateTime) == 2);
static_assert(offsetof(UTCDateTime, highSeconds) == 0);
static_assert(offsetof(UTCDateTime, lowSeconds) == 2);
static_assert(offsetof(UTCDateTime, fraction) == 6);

static_assert(sizeof(FSPermissionInfo) == 16 && alignof(FSPermissionInfo) == 2);
static_assert(offsetof(FSPermissionInfo, userID) == 0);
static_assert(offsetof(FSPermissionInfo, groupID) == 4);
static_assert(offsetof(FSPermissionInfo, reserved1) == 8);
static_assert(offsetof(FSPermissionInfo, userAccess) == 9);
static_assert(offsetof(FSPermissionInfo, mode) == 10);
static_assert(offsetof(FSPermissionInfo, reserved2) == 12);

static_assert(sizeof(FSCatalogInfo) == 144 && alignof(FSCatalogInfo) == 2);
static_assert(offsetof(FSCatalogInfo, nodeFlags) == 0);
static_assert(offsetof(FSCatalogInfo, volume) == 2);
static_assert(offsetof(FSCatalogInfo, parentDirID) == 4);
static_assert(offsetof(FSCatalogInfo, nodeID) == 8);
static_assert(offsetof(FSCatalogInfo, sharingFlags) == 12);
static_assert(offsetof(FSCatalogInfo, userPrivileges) == 13);
static_assert(offsetof(FSCatalogInfo, reserved1) == 14);
static_assert(offsetof(FSCatalogInfo, reserved2) == 15);
static_assert(offsetof(FSCatalogInfo, createDate) == 16);
static_assert(offsetof(FSCatalogInfo, contentModDate) == 24);
static_assert(offsetof(FSCatalogInfo, attributeModDate) == 32);
static_assert(offsetof(FSCatalogInfo, accessDate) == 40);
static_assert(offsetof(FSCatalogInfo, backupDate) == 48);
static_assert(offsetof(FSCatalogInfo, permissions) == 56);
static_assert(offsetof(FSCatalogInfo, finderInfo) == 72);
static_assert(offsetof(FSCatalogInfo, extFinderInfo) == 88);
static_assert(offsetof(FSCatalogInfo, dataLogicalSize) == 104);
static_assert(offsetof(FSCatalogInfo, dataPhysicalSize) == 112);
static_assert(offsetof(FSCatalogInfo, rsrcLogicalSize) == 120);
static_assert(offsetof(FSCatalogInfo, rsrcPhysicalSize) == 128);
static_assert(offsetof(FSCatalogInfo, valence) == 136);
static_assert(offsetof(FSCatalogInfo, textEncodingHint) == 140);

static_assert(sizeof(FSVolumeInfo) == 126 && alignof(FSVolumeInfo) == 2);
static_assert(offsetof(FSVolumeInfo, createDate) == 0);
static_assert(offsetof(FSVolumeInfo, modifyDate) == 8);
static_assert(offsetof(FSVolumeInfo, backupDate) == 16);
static_assert(offsetof(FSVolumeInfo, checkedDate) == 24);
static_assert(offsetof(FSVolumeInfo, fileCount) == 32);
static_assert(offsetof(FSVolumeInfo, folderCount) == 36);
static_assert(offsetof(FSVolumeInfo, totalBytes) == 40);
static_assert(offsetof(FSVolumeInfo, freeBytes) == 48);
static_assert(offsetof(FSVolumeInfo, blockSize) == 56);
static_assert(offsetof(FSVolumeInfo, totalBlocks) == 60);
static_assert(offsetof(FSVolumeInfo, freeBlocks) == 64);
static_assert(offsetof(FSVolumeInfo, nextAllocation) == 68);
static_assert(offsetof(FSVolumeInfo, rsrcClumpSize) == 72);
static_assert(offsetof(FSVolumeInfo, dataClumpSize) == 76);
static_assert(offsetof(FSVolumeInfo, nextCatalogID) == 80);
static_assert(offsetof(FSVolumeInfo, finderInfo) == 84);
static_assert(offsetof(FSVolumeInfo, flags) == 116);
static_assert(offsetof(FSVolumeInfo, filesystemID) == 118);
static_assert(offsetof(FSVolumeInfo, signature) == 120);
static_assert(offsetof(FSVolumeInfo, driveNumber) == 122);
static_assert(offsetof(FSVolumeInfo, driverRefNum) == 124);

static_assert(sizeof(CatPositionRec) == 16 && alignof(CatPositionRec) == 2);
static_assert(offsetof(CatPositionRec, initialize) == 0);
static_assert(offsetof(CatPositionRec, priv) == 4);

static_assert(sizeof(FileInfo) == 16 && alignof(FileInfo) == 2);
static_assert(offsetof(FileInfo, fileType) == 0);
static_assert(offsetof(FileInfo, fileCreator) == 4);
static_assert(offsetof(FileInfo, finderFlags) == 8);
static_assert(offsetof(FileInfo, location) == 10);
static_assert(offsetof(FileInfo, reservedField) == 14);

static_assert(sizeof(FolderInfo) == 16 && alignof(FolderInfo) == 2);
static_assert(offsetof(FolderInfo, windowBounds) == 0);
static_assert(offsetof(FolderInfo, finderFlags) == offsetof(FileInfo, finderFlags));
static_assert(offsetof(FolderInfo, location) == 10);
static_assert(offsetof(FolderInfo, reservedField) == 14);

static_assert(sizeof(ExtendedFileInfo) == 16 && alignof(ExtendedFileInfo) == 2);
static_assert(offsetof(ExtendedFileInfo, reserved1) == 0);
static_assert(offsetof(ExtendedFileInfo, extendedFinderFlags) == 8);
static_assert(offsetof(ExtendedFileInfo, reserved2) == 10);
static_assert(offsetof(ExtendedFileInfo, putAwayFolderID) == 12);

static_assert(sizeof(ExtendedFolderInfo) == 16 && alignof(ExtendedFolderInfo) == 2);
static_assert(offsetof(ExtendedFolderInfo, scrollPosition) == 0);
static_assert(offsetof(ExtendedFolderInfo, reserved1) == 4);
static_assert(offsetof(ExtendedFolderInfo, extendedFinderFlags) == 8);
static_assert(offsetof(ExtendedFolderInfo, reserved2) == 10);
static_assert(offsetof(ExtendedFolderInfo, putAwayFolderID) == 12);

static_assert(sizeof(FinderInfo) == 16 && sizeof(ExtendedFinderInfo) == 16);
static_assert(sizeof(FinderInfo) == sizeof(FSCatalogInfo::finderInfo));
static_assert(sizeof(ExtendedFinderInfo) == sizeof(FSCatalogInfo::extFinderInfo));
static_assert(sizeof(FSPermissionInfo) == sizeof(FSCatalogInfo::permissions));

static_assert(sizeof(GetVolParmsInfoBuffer) == 32 && alignof(GetVolParmsInfoBuffer) == 2);
static_assert(offsetof(GetVolParmsInfoBuffer, vMVersion) == 0);
static_assert(offsetof(GetVolParmsInfoBuffer, vMAttrib) == 2);
static_assert(offsetof(GetVolParmsInfoBuffer, vMLocalHand) == 6);
static_assert(offsetof(GetVolParmsInfoBuffer, vMServerAdr) == 10);
static_assert(offsetof(GetVolParmsInfoBuffer, vMVolumeGrade) == 14);
static_assert(offsetof(GetVolParmsInfoBuffer, vMForeignPrivID) == 18);
static_assert(offsetof(GetVolParmsInfoBuffer, vMExtendedAttributes) == 20);
static_assert(offsetof(GetVolParmsInfoBuffer, vMDeviceID) == 24);
static_assert(offsetof(GetVolParmsInfoBuffer, vMMaxNameLength) == 28);

static_assert(sizeof(Point) == 4 && alignof(Point) == 2);
static_assert(offsetof(Point, v) == 0);
static_assert(offsetof(Point, h) == 2);

static_assert(sizeof(Rect) == 8 && alignof(Rect) == 2);
static_assert(offsetof(Rect, top) == 0);
static_assert(offsetof(Rect, left) == 2);
static_assert(offsetof(Rect, bottom) == 4);
static_assert(offsetof(Rect, right) == 6);

static_assert(sizeof(RGBColor) == 6 && alignof(RGBColor) == 2);
static_assert(offsetof(RGBColor, red) == 0);
static_assert(offsetof(RGBColor, green) == 2);
static_assert(offsetof(RGBColor, blue) == 4);

static_assert(sizeof(BitMap) == (widePointers ? 18 : 14) && alignof(BitMap) == 2);
static_assert(offsetof(BitMap, baseAddr) == 0);
static_assert(offsetof(BitMap, rowBytes) == sizeof(Ptr));
static_assert(offsetof(BitMap, bounds) == sizeof(Ptr) + 2);

static_assert(sizeof(PenState) == 18 && alignof(PenState) == 2);
static_assert(offsetof(PenState, pnLoc) == 0);
static_assert(offsetof(PenState, pnSize) == 4);
static_assert(offsetof(PenState, pnMode) == 8);
static_assert(offsetof(PenState, pnPat) == 10);

static_assert(sizeof(GDevice) == 8);

static_assert(sizeof(EventRecord) == (widePointers ? 20 : 16) && alignof(EventRecord) == 2);
static_assert(offsetof(EventRecord, message) == 2);
static_assert(offsetof(EventRecord, when) == (widePointers ? 10 : 6));

static_assert(sizeof(AlertTemplate) == 12 && alignof(AlertTemplate) == 2);
static_assert(offsetof(AlertTemplate, boundsRect) == 0);
static_assert(offsetof(AlertTemplate, itemsID) == 8);
static_assert(offsetof(AlertTemplate, stages) == 10);
static_assert(sizeof(DialogTemplate) == 276 && alignof(DialogTemplate) == 2);
static_assert(offsetof(DialogTemplate, boundsRect) == 0);
static_assert(offsetof(DialogTemplate, procID) == 8);
static_assert(offsetof(DialogTemplate, visible) == 10);
static_assert(offsetof(DialogTemplate, filler1) == 11);
static_assert(offsetof(DialogTemplate, goAwayFlag) == 12);
static_assert(offsetof(DialogTemplate, filler2) == 13);
static_assert(offsetof(DialogTemplate, refCon) == 14);
static_assert(offsetof(DialogTemplate, itemsID) == 18);
static_assert(offsetof(DialogTemplate, title) == 20);

static_assert(sizeof(UnicodeMapping) == 12 && alignof(UnicodeMapping) == 2);
static_assert(offsetof(UnicodeMapping, unicodeEncoding) == 0);
static_assert(offsetof(UnicodeMapping, otherEncoding) == 4);
static_assert(offsetof(UnicodeMapping, mappingVersion) == 8);

static_assert(alignof(IOParam) == 2 && alignof(CopyParam) == 2 && alignof(AccessParam) == 2 && alignof(ObjParam) == 2);
static_assert(alignof(FIDParam) == 2 && alignof(DirInfo) == 2 && alignof(FSRefParam) == 2);

static_assert(widePointers || sizeof(IOParam) == 50);
static_assert(widePointers || offsetof(IOParam, qLink) == 0);
static_assert(widePointers || offsetof(IOParam, qType) == 4);
static_assert(widePointers || offsetof(IOParam, ioTrap) == 6);
static_assert(widePointers || offsetof(IOParam, ioCmdAddr) == 8);
static_assert(widePointers || offsetof(IOParam, ioCompletion) == 12);
static_assert(widePointers || offsetof(IOParam, ioResult) == 16);
static_assert(widePointers || offsetof(IOParam, ioNamePtr) == 18);
static_assert(widePointers || offsetof(IOParam, ioVRefNum) == 22);
static_assert(widePointers || offsetof(IOParam, ioRefNum) == 24);
static_assert(widePointers || offsetof(IOParam, ioVersNum) == 26);
static_assert(widePointers || offsetof(IOParam, ioPermssn) == 27);
static_assert(widePointers || offsetof(IOParam, ioMisc) == 28);
static_assert(widePointers || offsetof(IOParam, ioBuffer) == 32);
static_assert(widePointers || offsetof(IOParam, ioReqCount) == 36);
static_assert(widePointers || offsetof(IOParam, ioActCount) == 40);
static_assert(widePointers || offsetof(IOParam, ioPosMode) == 44);
static_assert(widePointers || offsetof(IOParam, ioPosOffset) == 46);

static_assert(widePointers || sizeof(CopyParam) == 52);
static_assert(offsetof(CopyParam, ioNamePtr) == offsetof(IOParam, ioNamePtr));
static_assert(offsetof(CopyParam, ioVRefNum) == offsetof(IOParam, ioVRefNum));
static_assert(widePointers || offsetof(CopyParam, ioDstVRefNum) == 24);
static_assert(widePointers || offsetof(CopyParam, filler8) == 26);
static_assert(widePointers || offsetof(CopyParam, ioNewName) == 28);
static_assert(widePointers || offsetof(CopyParam, ioCopyName) == 32);
static_assert(widePointers || offsetof(CopyParam, ioNewDirID) == 36);
static_assert(widePointers || offsetof(CopyParam, filler14) == 40);
static_assert(widePointers || offsetof(CopyParam, filler15) == 44);
static_assert(widePointers || offsetof(CopyParam, ioDirID) == 48);

static_assert(widePointers || sizeof(AccessParam) == 52);
static_assert(offsetof(AccessParam, ioNamePtr) == offsetof(IOParam, ioNamePtr));
static_assert(offsetof(AccessParam, ioVRefNum) == offsetof(IOParam, ioVRefNum));
static_assert(widePointers || offsetof(AccessParam, filler3) == 24);
static_assert(widePointers || offsetof(AccessParam, ioDenyModes) == 26);
static_assert(widePointers || offsetof(AccessParam, filler4) == 28);
static_assert(widePointers || offsetof(AccessParam, filler5) == 30);
static_assert(widePointers || offsetof(AccessParam, ioACUser) == 31);
static_assert(widePointers || offsetof(AccessParam, filler6) == 32);
static_assert(widePointers || offsetof(AccessParam, ioACOwnerID) == 36);
static_assert(widePointers || offsetof(AccessParam, ioACGroupID) == 40);
static_assert(widePointers || offsetof(AccessParam, ioACAccess) == 44);
static_assert(widePointers || offsetof(AccessParam, ioDirID) == 48);

static_assert(widePointers || sizeof(ObjParam) == 36);
static_assert(offsetof(ObjParam, ioNamePtr) == offsetof(IOParam, ioNamePtr));
static_assert(offsetof(ObjParam, ioVRefNum) == offsetof(IOParam, ioVRefNum));
static_assert(widePointers || offsetof(ObjParam, filler7) == 24);
static_assert(widePointers || offsetof(ObjParam, ioObjType) == 26);
static_assert(widePointers || offsetof(ObjParam, ioObjNamePtr) == 28);
static_assert(widePointers || offsetof(ObjParam, ioObjID) == 32);

static_assert(widePointers || sizeof(FIDParam) == 58);
static_assert(offsetof(FIDParam, ioNamePtr) == offsetof(IOParam, ioNamePtr));
static_assert(offsetof(FIDParam, ioVRefNum) == offsetof(IOParam, ioVRefNum));
static_assert(widePointers || offsetof(FIDParam, filler14) == 24);
static_assert(widePointers || offsetof(FIDParam, ioDestNamePtr) == 28);
static_assert(widePointers || offsetof(FIDParam, filler15) == 32);
static_assert(widePointers || offsetof(FIDParam, ioDestDirID) == 36);
static_assert(widePointers || offsetof(FIDParam, filler16) == 40);
static_assert(widePointers || offsetof(FIDParam, filler17) == 44);
static_assert(widePointers || offsetof(FIDParam, ioSrcDirID) == 48);
static_assert(widePointers || offsetof(FIDParam, filler18) == 52);
static_assert(widePointers || offsetof(FIDParam, ioFileID) == 54);

static_assert(widePointers || sizeof(DirInfo) == 104);
static_assert(offsetof(DirInfo, ioNamePtr) == offsetof(IOParam, ioNamePtr));
static_assert(offsetof(DirInfo, ioVRefNum) == offsetof(IOParam, ioVRefNum));
static_assert(widePointers || offsetof(DirInfo, ioFRefNum) == 24);
static_assert(widePointers || offsetof(DirInfo, ioFVersNum) == 26);
static_assert(widePointers || offsetof(DirInfo, filler1) == 27);
static_assert(widePointers || offsetof(DirInfo, ioFDirIndex) == 28);
static_assert(widePointers || offsetof(DirInfo, ioFlAttrib) == 30);
static_assert(widePointers || offsetof(DirInfo, ioACUser) == 31);
static_assert(widePointers || offsetof(DirInfo, ioDrUsrWds) == 32);
static_assert(widePointers || offsetof(DirInfo, ioDrDirID) == 48);
static_assert(widePointers || offsetof(DirInfo, ioDrNmFls) == 52);
static_assert(widePointers || offsetof(DirInfo, filler3) == 54);
static_assert(widePointers || offsetof(DirInfo, ioDrCrDat) == 72);
static_assert(widePointers || offsetof(DirInfo, ioDrMdDat) == 76);
static_assert(widePointers || offsetof(DirInfo, ioDrBkDat) == 80);
static_assert(widePointers || offsetof(DirInfo, ioDrFndrInfo) == 84);
static_assert(widePointers || offsetof(DirInfo, ioDrParID) == 100);

static_assert(widePointers || sizeof(FSRefParam) == 68);
static_assert(offsetof(FSRefParam, ioNamePtr) == offsetof(IOParam, ioNamePtr));
static_assert(offsetof(FSRefParam, ioVRefNum) == offsetof(IOParam, ioVRefNum));
static_assert(widePointers || offsetof(FSRefParam, reserved1) == 24);
static_assert(widePointers || offsetof(FSRefParam, reserved2) == 26);
static_assert(widePointers || offsetof(FSRefParam, reserved3) == 27);
static_assert(widePointers || offsetof(FSRefParam, ref) == 28);
static_assert(widePointers || offsetof(FSRefParam, whichInfo) == 32);
static_assert(widePointers || offsetof(FSRefParam, catInfo) == 36);
static_assert(widePointers || offsetof(FSRefParam, nameLength) == 40);
static_assert(widePointers || offsetof(FSRefParam, name) == 44);
static_assert(widePointers || offsetof(FSRefParam, ioDirID) == 48);
static_assert(widePointers || offsetof(FSRefParam, spec) == 52);
static_assert(widePointers || offsetof(FSRefParam, parentRef) == 56);
static_assert(widePointers || offsetof(FSRefParam, newRef) == 60);
static_assert(widePointers || offsetof(FSRefParam, textEncodingHint) == 64);

static_assert(widePointers || (sizeof(HParamBlockRec) == 58 && sizeof(CInfoPBRec) == 104 && sizeof(ParamBlockRec) == 50));
