// What the forks of files hold: their sizes, and copies of one fork or of a whole file.

#include "files/forks.h"

#include "files/catalog.h"
#include "files/names.h"

namespace
{

constexpr UInt32 blockSize = 4096;      // reads, writes and buffers are multiples of this wherever there is room for one
constexpr UInt32 freeReserve = 32768;   // left to the application, in bytes
constexpr UInt16 readAndWriteMode = fsAtMark + noCacheMask;

UInt32 wholeBlocks(UInt32 byteCount)
{
    return byteCount - byteCount % blockSize;
}

UInt32 atLeastOneBlock(UInt32 byteCount)
{
    return byteCount < blockSize ? blockSize : byteCount;
}

// All of it is 32-bit unsigned: with less free than the reserve, the limit wraps around to one that limits nothing.
UInt32 largestSizeToSpare()
{
    const UInt32 limit = wholeBlocks(static_cast<UInt32>(FreeMem()) - freeReserve);
    const UInt32 size = wholeBlocks(static_cast<UInt32>(MaxBlock()));
    return atLeastOneBlock(size > limit ? limit : size);
}

Ptr newBlock(UInt32 size, UInt32 *actualSize)
{
    const Ptr block = NewPtr(static_cast<Size>(size));
    *actualSize = block == nullptr ? 0 : size;
    return block;
}

OSErr rewind(SInt16 forkRefNum)
{
    return FSSetForkPosition(forkRefNum, fsFromStart, 0);
}

OSErr prepareForks(SInt16 srcRefNum, SInt16 dstRefNum)
{
    SInt64 forkSize;
    OSErr result = FSGetForkSize(srcRefNum, &forkSize);
    if (result == noErr)
        result = FSSetForkSize(dstRefNum, fsFromStart, forkSize);
    if (result == noErr)
        result = rewind(srcRefNum);
    if (result == noErr)
        result = rewind(dstRefNum);
    return result;
}

OSErr copyContents(SInt16 srcRefNum, SInt16 dstRefNum, void *buffer, UInt32 readSize)
{
    OSErr readResult, writeResult;
    do
    {
        ByteCount actualCount = 0;   // a read may fail without reporting any
        readResult = FSReadFork(srcRefNum, readAndWriteMode, 0, readSize, buffer, &actualCount);
        // Also after a failed read: what it has given before the failure is part of the copy.
        writeResult = FSWriteFork(dstRefNum, readAndWriteMode, 0, actualCount, buffer, nullptr);
    } while (readResult == noErr && writeResult == noErr);

    if (writeResult != noErr)
        return writeResult;
    return readResult == eofErr ? OSErr{noErr} : readResult;
}

bool hasCopyService(FSVolumeRefNum volume)
{
    GetVolParmsInfoBuffer volumeParameters = {};   // a volume may know fewer of them
    HParamBlockRec block;
    block.ioParam.ioNamePtr = nullptr;
    block.ioParam.ioVRefNum = volume;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&volumeParameters);
    block.ioParam.ioReqCount = sizeof volumeParameters;
    return PBHGetVolParmsSync(&block) == noErr && (volumeParameters.vMAttrib & 1 << bHasCopyFile) != 0;
}

// The name of the copy is null where it keeps that of its source.
OSErr copyByVolume(const FSSpec &source, const FSCatalogInfo &folder, StringPtr copyName)
{
    HParamBlockRec block;
    block.copyParam.ioVRefNum = source.vRefNum;
    block.copyParam.ioDirID = source.parID;
    block.copyParam.ioNamePtr = const_cast<StringPtr>(source.name);   // only read
    block.copyParam.ioDstVRefNum = folder.volume;
    block.copyParam.ioNewDirID = static_cast<SInt32>(folder.nodeID);
    block.copyParam.ioNewName = nullptr;   // the folder is given by its ID alone
    block.copyParam.ioCopyName = copyName;
    return PBHCopyFileSync(&block);
}

}   // namespace

OSErr FSGetForkSizes(const FSRef *ref, UInt64 *dataLogicalSize, UInt64 *rsrcLogicalSize)
{
    FSCatalogInfoBitmap whichInfo = kFSCatInfoNodeFlags;
    if (dataLogicalSize != nullptr)
        whichInfo |= kFSCatInfoDataSizes;
    if (rsrcLogicalSize != nullptr)
        whichInfo |= kFSCatInfoRsrcSizes;

    FSCatalogInfo info;
    const OSErr result = FSGetCatalogInfo(ref, whichInfo, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    if (info.nodeFlags & kFSNodeIsDirectoryMask)
        return notAFileErr;

    if (dataLogicalSize != nullptr)
        *dataLogicalSize = info.dataLogicalSize;
    if (rsrcLogicalSize != nullptr)
        *rsrcLogicalSize = info.rsrcLogicalSize;
    return noErr;
}

OSErr FSGetTotalForkSizes(const FSRef *ref, UInt64 *totalLogicalSize, UInt64 *totalPhysicalSize, UInt32 *forkCount)
{
    if (totalLogicalSize != nullptr)
        *totalLogicalSize = 0;
    if (totalPhysicalSize != nullptr)
        *totalPhysicalSize = 0;
    if (forkCount != nullptr)
        *forkCount = 0;

    SInt64 logicalSize;
    UInt64 physicalSize;
    SInt64 *const logicalSizePtr = totalLogicalSize == nullptr ? nullptr : &logicalSize;
    UInt64 *const physicalSizePtr = totalPhysicalSize == nullptr ? nullptr : &physicalSize;
    CatPositionRec iterator;
    iterator.initialize = 0;
    OSErr result;
    while ((result = FSIterateForks(ref, &iterator, nullptr, logicalSizePtr, physicalSizePtr)) == noErr)
    {
        if (totalLogicalSize != nullptr)
            *totalLogicalSize += static_cast<UInt64>(logicalSize);
        if (totalPhysicalSize != nullptr)
            *totalPhysicalSize += physicalSize;
        if (forkCount != nullptr)
            ++*forkCount;
    }
    return result == errFSNoMoreItems ? OSErr{noErr} : result;
}

Ptr GetTempBufferX(UInt32 buffReqSize, UInt32 *buffActSize)
{
    if (buffActSize == nullptr)
        return nullptr;
    const UInt32 wantedSize = atLeastOneBlock(wholeBlocks(buffReqSize));
    const Ptr buffer = newBlock(wantedSize, buffActSize);
    if (buffer != nullptr || wantedSize == blockSize)
        return buffer;
    return newBlock(largestSizeToSpare(), buffActSize);
}

OSErr FSCopyFork(SInt16 srcRefNum, SInt16 dstRefNum, void *copyBufferPtr, UInt32 copyBufferSize)
{
    if (copyBufferPtr == nullptr || copyBufferSize == 0)
        return paramErr;
    const OSErr result = prepareForks(srcRefNum, dstRefNum);
    if (result != noErr)
        return result;
    const UInt32 readSize = copyBufferSize < blockSize ? copyBufferSize : wholeBlocks(copyBufferSize);
    return copyContents(srcRefNum, dstRefNum, copyBufferPtr, readSize);
}

OSErr FSCopyFile(const FSRef *srcFileRef, const FSRef *dstDirectoryRef, UniCharCount nameLength, const UniChar *copyName,
                 TextEncoding textEncodingHint, FSRef *newRef)
{
    FSSpec source;
    OSErr result = FSRefMakeFSSpec(srcFileRef, &source);
    if (result != noErr)
        return result;
    if (!hasCopyService(source.vRefNum))
        return paramErr;

    FSCatalogInfo folder;
    result = FSGetCatalogInfo(dstDirectoryRef, kFSCatInfoVolume | kFSCatInfoNodeID, &folder, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;

    Str31 shortName;
    if (copyName != nullptr)
        result = UnicodeNameGetHFSName(nameLength, copyName, textEncodingHint, false, shortName);
    if (result != noErr)
        return result;
    const StringPtr shortNamePtr = copyName == nullptr ? nullptr : shortName;

    result = copyByVolume(source, folder, shortNamePtr);
    if (result != noErr)
        return result;
    // Without a name this gives the folder, which is meant. The copy is there, with a reference or without.
    if (newRef != nullptr)
        FSMakeFSRef(folder.volume, static_cast<SInt32>(folder.nodeID), shortNamePtr, newRef);
    return noErr;
}
