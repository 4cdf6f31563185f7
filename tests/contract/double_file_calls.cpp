// The File Manager's calls, answered from the double's disk.

#include "tests/contract/platform_double.h"

#include <cstring>

FSSpec specificationOf(const FileObject &object)
{
    FSSpec spec = {};
    spec.vRefNum = object.info.volume;
    spec.parID = static_cast<SInt32>(object.info.parentDirID);
    storePascalString(object.name, spec.name);
    return spec;
}

namespace
{

// The root folder's "parent" is not an object, but not all zero bytes either.
FSRef parentReferenceOf(const FileObject &object)
{
    if (object.parent != nullptr)
        return object.parent->ref;
    FSRef none;
    std::memset(&none, 0xEE, sizeof none);
    return none;
}

}   // namespace

OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfo, HFSUniStr255 *outName, FSSpec *fsSpec,
                       FSRef *parentRef)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSGetCatalogInfo", {platform.files.describe(ref), hex(whichInfo),
                                                               platform.pointer(catalogInfo, "info"), platform.pointer(outName, "name"),
                                                               platform.pointer(fsSpec, "spec"), platform.pointer(parentRef, "parent")});
    if (failure != noErr)
        return failure;

    const FileObject *object = platform.files.find(ref);
    if (object == nullptr)
        return errFSBadFSRef;
    if (whichInfo != kFSCatInfoNone && catalogInfo == nullptr)
        return errFSMissingCatInfo;
    if (catalogInfo != nullptr)
    {
        if (platform.files.spoilsRecords)
            std::memset(catalogInfo, neverAskedFor, sizeof *catalogInfo);
        copyCatalogFields(whichInfo, object->info, *catalogInfo);
    }
    if (outName != nullptr)
        *outName = unicodeName(object->name);
    if (fsSpec != nullptr)
        *fsSpec = specificationOf(*object);
    if (parentRef != nullptr)
        *parentRef = parentReferenceOf(*object);
    return noErr;
}

OSErr FSSetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, const FSCatalogInfo *catalogInfo)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure =
        platform.record("FSSetCatalogInfo", {platform.files.describe(ref), hex(whichInfo), platform.pointer(catalogInfo, "info")});
    if (failure != noErr)
        return failure;

    FileObject *object = platform.files.find(ref);
    if (object == nullptr)
        return errFSBadFSRef;
    if (whichInfo & ~FSCatalogInfoBitmap{kFSCatInfoSettableInfo})
        return errFSBadInfoBitmap;
    if (whichInfo == kFSCatInfoNone)
        return noErr;
    if (catalogInfo == nullptr)
        return errFSMissingCatInfo;
    copyCatalogFields(whichInfo, *catalogInfo, object->info);
    return noErr;
}

OSErr FSGetVolumeInfo(FSVolumeRefNum volume, ItemCount volumeIndex, FSVolumeRefNum *actualVolume, FSVolumeInfoBitmap whichInfo,
                      FSVolumeInfo *info, HFSUniStr255 *volumeName, FSRef *rootDirectory)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record(
        "FSGetVolumeInfo", {decimal(volume), decimal(volumeIndex), platform.pointer(actualVolume, "actual"), hex(whichInfo),
                            platform.pointer(info, "info"), platform.pointer(volumeName, "name"), platform.pointer(rootDirectory, "root")});
    if (failure != noErr)
        return failure;

    const VolumeObject *found = platform.files.findVolume(volume, volumeIndex);
    if (found == nullptr)
        return nsvErr;
    if (actualVolume != nullptr)
        *actualVolume = found->number;
    if (info != nullptr)
    {
        std::memset(info, neverAskedFor, sizeof *info);
        copyVolumeFields(whichInfo, found->info, *info);
    }
    if (volumeName != nullptr)
        *volumeName = unicodeName(found->root->name);
    if (rootDirectory != nullptr)
        *rootDirectory = found->root->ref;
    return noErr;
}

OSErr PBMakeFSRefSync(FSRefParamPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string name = quoted(paramBlock->ioNamePtr);
    const OSErr failure = platform.record("PBMakeFSRefSync", {field("ioVRefNum", decimal(paramBlock->ioVRefNum)),
                                                              field("ioDirID", decimal(paramBlock->ioDirID)),
                                                              field("ioNamePtr", platform.pointer(paramBlock->ioNamePtr, name)),
                                                              field("newRef", platform.pointer(paramBlock->newRef, "ref"))});
    std::memcpy(platform.files.lastReferenceBlock.data(), paramBlock, sizeof *paramBlock);
    if (failure != noErr)
        return failure;

    const FileObject *found = platform.files.findDirectory(paramBlock->ioVRefNum, paramBlock->ioDirID);
    if (found == nullptr)
        return dirNFErr;
    if (paramBlock->ioNamePtr != nullptr)
        found = platform.files.findChild(*found, paramBlock->ioNamePtr);
    if (found == nullptr)
        return fnfErr;
    *paramBlock->newRef = found->ref;
    return noErr;
}

OSErr FSGetForkCBInfo(SInt16 desiredRefNum, FSVolumeRefNum volume, SInt16 *iterator, SInt16 *actualRefNum, FSForkInfo *forkInfo, FSRef *ref,
                      HFSUniStr255 *outForkName)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure =
        platform.record("FSGetForkCBInfo", {decimal(desiredRefNum), decimal(volume), platform.pointer(iterator, "iterator"),
                                            platform.pointer(actualRefNum, "actual"), platform.pointer(forkInfo, "info"),
                                            platform.pointer(ref, "ref"), platform.pointer(outForkName, "name")});
    if (failure != noErr)
        return failure;

    const auto fork = platform.files.openForks.find(desiredRefNum);
    if (fork == platform.files.openForks.end())
        return rfNumErr;
    if (ref != nullptr)
        *ref = fork->second->ref;
    return noErr;
}
