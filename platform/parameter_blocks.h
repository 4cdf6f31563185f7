// Parameter blocks of the File Manager and the calls that take them.
//
// Every block begins with the same header, up to `ioVRefNum`, written out in each so that the blocks of one union
// share their first fields. A caller fills the fields that its call reads and leaves the others as they are.

#pragma once

#include "platform/file_records.h"
#include "platform/results.h"
#include "platform/types.h"

#pragma pack(push, 2)

struct IOParam
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt16 ioRefNum;
    SInt8 ioVersNum, ioPermssn;
    Ptr ioMisc, ioBuffer;
    SInt32 ioReqCount, ioActCount;
    SInt16 ioPosMode;
    SInt32 ioPosOffset;
};

// For PBHCopyFileSync and PBHMoveRenameSync
struct CopyParam
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt16 ioDstVRefNum, filler8;
    StringPtr ioNewName, ioCopyName;
    SInt32 ioNewDirID, filler14, filler15, ioDirID;
};

struct AccessParam
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt16 filler3, ioDenyModes, filler4;
    SInt8 filler5, ioACUser;
    SInt32 filler6, ioACOwnerID, ioACGroupID, ioACAccess, ioDirID;
};

// For PBHMapIDSync and PBHMapNameSync
struct ObjParam
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt16 filler7, ioObjType;
    StringPtr ioObjNamePtr;
    SInt32 ioObjID;
};

// For file IDs. The file's name is the header's `ioNamePtr`: read for creation, a buffer that resolution fills.
// `ioSrcDirID` is read for creation and written by resolution.
struct FIDParam
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt32 filler14;
    StringPtr ioDestNamePtr;
    SInt32 filler15, ioDestDirID, filler16, filler17, ioSrcDirID;
    SInt16 filler18;
    SInt32 ioFileID;
};

struct DirInfo
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt16 ioFRefNum;
    SInt8 ioFVersNum, filler1;
    SInt16 ioFDirIndex;
    SInt8 ioFlAttrib, ioACUser;
    FolderInfo ioDrUsrWds;
    SInt32 ioDrDirID;
    UInt16 ioDrNmFls;
    SInt16 filler3[9];
    UInt32 ioDrCrDat, ioDrMdDat, ioDrBkDat;
    ExtendedFolderInfo ioDrFndrInfo;
    SInt32 ioDrParID;
};

struct FSRefParam
{
    QElemPtr qLink;
    SInt16 qType, ioTrap;
    Ptr ioCmdAddr;
    IOCompletionUPP ioCompletion;
    OSErr ioResult;
    StringPtr ioNamePtr;
    FSVolumeRefNum ioVRefNum;

    SInt16 reserved1;
    UInt8 reserved2, reserved3;
    const FSRef *ref;
    FSCatalogInfoBitmap whichInfo;
    FSCatalogInfo *catInfo;
    UniCharCount nameLength;
    const UniChar *name;
    SInt32 ioDirID;
    FSSpec *spec;
    FSRef *parentRef, *newRef;
    TextEncoding textEncodingHint;
};

union HParamBlockRec
{
    IOParam ioParam;
    CopyParam copyParam;
    AccessParam accessParam;
    ObjParam objParam;
    FIDParam fidParam;
};

union CInfoPBRec
{
    DirInfo dirInfo;
};

union ParamBlockRec
{
    IOParam ioParam;
};

#pragma pack(pop)

using HParmBlkPtr = HParamBlockRec *;
using CInfoPBPtr = CInfoPBRec *;
using ParmBlkPtr = ParamBlockRec *;
using FSRefParamPtr = FSRefParam *;

#pragma GCC visibility push(default)
extern "C"
{

OSErr PBHGetVolParmsSync(HParmBlkPtr paramBlock);
OSErr PBHCopyFileSync(HParmBlkPtr paramBlock);
OSErr PBHMoveRenameSync(HParmBlkPtr paramBlock);
OSErr PBHGetDirAccessSync(HParmBlkPtr paramBlock);
OSErr PBHSetDirAccessSync(HParmBlkPtr paramBlock);
OSErr PBHMapIDSync(HParmBlkPtr paramBlock);
OSErr PBHMapNameSync(HParmBlkPtr paramBlock);
OSErr PBCreateFileIDRefSync(HParmBlkPtr paramBlock);
OSErr PBResolveFileIDRefSync(HParmBlkPtr paramBlock);

OSErr PBGetCatInfoSync(CInfoPBPtr paramBlock);

OSErr PBMakeFSRefSync(FSRefParamPtr paramBlock);
OSErr PBMakeFSRefUnicodeSync(FSRefParamPtr paramBlock);

OSErr PBGetVolMountInfoSize(ParmBlkPtr paramBlock);
OSErr PBGetVolMountInfo(ParmBlkPtr paramBlock);
OSErr PBVolumeMount(ParmBlkPtr paramBlock);
}
#pragma GCC visibility pop
