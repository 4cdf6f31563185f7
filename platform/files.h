// The calls of the File Manager that take references, open forks and paths. Those by parameter block are in
// parameter_blocks.h.

#pragma once

#include "platform/file_constants.h"
#include "platform/file_records.h"
#include "platform/results.h"
#include "platform/types.h"

#pragma GCC visibility push(default)
extern "C"
{

// The catalog. Every output may be null.
OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfo, HFSUniStr255 *outName, FSSpec *fsSpec,
                       FSRef *parentRef);
OSErr FSSetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, const FSCatalogInfo *catalogInfo);

// Walking the items of a folder
OSErr FSOpenIterator(const FSRef *container, FSIteratorFlags iteratorFlags, FSIterator *iterator);
OSErr FSCloseIterator(FSIterator iterator);
OSErr FSGetCatalogInfoBulk(FSIterator iterator, ItemCount maximumObjects, ItemCount *actualObjects, Boolean *containerChanged,
                           FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfos, FSRef *refs, FSSpec *specs, HFSUniStr255 *names);

// Volumes, by reference number or, with an index of 1 or more, one after the other
OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum *actualVolume, FSVolumeInfoBitmap whichInfo,
                      FSVolumeInfo *info, HFSUniStr255 *volumeName, FSRef *rootDirectory);

// Forks
OSErr FSGetDataForkName(HFSUniStr255 *dataForkName);
OSErr FSGetResourceForkName(HFSUniStr255 *resourceForkName);
OSErr FSIterateForks(const FSRef *ref, CatPositionRec *forkIterator, HFSUniStr255 *forkName, SInt64 *forkSize, UInt64 *forkPhysicalSize);
OSErr FSOpenFork(const FSRef *ref, UniCharCount forkNameLength, const UniChar *forkName, SInt8 permissions, SInt16 *forkRefNum);
OSErr FSCloseFork(SInt16 forkRefNum);
OSErr FSGetForkSize(SInt16 forkRefNum, SInt64 *forkSize);
OSErr FSSetForkSize(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset);
OSErr FSSetForkPosition(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset);
OSErr FSReadFork(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset, ByteCount requestCount, void *buffer,
                 ByteCount *actualCount);
OSErr FSWriteFork(SInt16 forkRefNum, UInt16 positionMode, SInt64 positionOffset, ByteCount requestCount, const void *buffer,
                  ByteCount *actualCount);
OSErr FSGetForkCBInfo(SInt16 desiredRefNum, FSVolumeRefNum volume, SInt16 *iterator, SInt16 *actualRefNum, FSForkInfo *forkInfo, FSRef *ref,
                      HFSUniStr255 *outForkName);

// Making, moving and deleting
OSErr FSCreateFileUnicode(const FSRef *parentRef, UniCharCount nameLength, const UniChar *name, FSCatalogInfoBitmap whichInfo,
                          const FSCatalogInfo *catalogInfo, FSRef *newRef, FSSpec *newSpec);
OSErr FSCreateDirectoryUnicode(const FSRef *parentRef, UniCharCount nameLength, const UniChar *name, FSCatalogInfoBitmap whichInfo,
                               const FSCatalogInfo *catalogInfo, FSRef *newRef, FSSpec *newSpec, UInt32 *newDirID);
OSErr FSDeleteObject(const FSRef *ref);
OSErr FSMoveObject(const FSRef *ref, const FSRef *destDirectory, FSRef *newRef);
OSErr FSRenameUnicode(const FSRef *ref, UniCharCount nameLength, const UniChar *name, TextEncoding textEncodingHint, FSRef *newRef);
OSErr FSExchangeObjects(const FSRef *ref, const FSRef *destRef);

// POSIX paths, in UTF-8 and ended by a zero byte
OSStatus FSPathMakeRef(const UInt8 *path, FSRef *ref, Boolean *isDirectory);
OSStatus FSRefMakePath(const FSRef *ref, UInt8 *path, UInt32 maxPathSize);

// The default directory
OSErr HGetVol(StringPtr volName, SInt16 *vRefNum, SInt32 *dirID);
OSErr HSetVol(ConstStr255Param volName, SInt16 vRefNum, SInt32 dirID);
}
#pragma GCC visibility pop
