// Special folders, a directory's own information, and new files and folders.

#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

OSErr addObject(const FSRef *parentRef, const std::string &name, bool isFolder)
{
    PlatformDouble &platform = PlatformDouble::current();
    FileObject *parent = platform.files.find(parentRef);
    if (parent == nullptr)
        return errFSBadFSRef;
    if (!parent->isFolder())
        return notAFileErr;
    if (name.empty())
        return bdNamErr;
    if (platform.files.findChild(*parent, name) != nullptr)
        return dupFNErr;
    platform.files.add(name, parent, isFolder);
    return noErr;
}

}   // namespace

OSErr FindFolder(SInt16 domain, OSType folderType, Boolean createFolder, SInt16 *foundVRefNum, SInt32 *foundDirID)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure =
        platform.record("FindFolder", {decimal(domain), codeText(folderType), decimal(createFolder),
                                       platform.pointer(foundVRefNum, "volume"), platform.pointer(foundDirID, "directory")});
    if (failure != noErr)
        return failure;

    const auto found = platform.folders.special.find({domain, folderType});
    if (found == platform.folders.special.end())
        return fnfErr;
    const FileObject &folder = platform.files.object(found->second);
    *foundVRefNum = folder.info.volume;
    *foundDirID = static_cast<SInt32>(folder.info.nodeID);
    return noErr;
}

// Of the block only the fields that are named in the record are read, and only the name and the two IDs written.
OSErr PBGetCatInfoSync(CInfoPBPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    auto &block = paramBlock->dirInfo;
    const OSErr failure = platform.record(
        "PBGetCatInfoSync", {field("ioNamePtr", platform.pointer(block.ioNamePtr, "name")), field("ioVRefNum", decimal(block.ioVRefNum)),
                             field("ioFDirIndex", decimal(block.ioFDirIndex)), field("ioDrDirID", decimal(block.ioDrDirID))});
    if (failure != noErr)
        return failure;

    const FileObject *directory = platform.files.findDirectory(block.ioVRefNum, block.ioDrDirID);
    if (directory == nullptr)
        return dirNFErr;
    block.ioNamePtr[0] = static_cast<unsigned char>(directory->name.size());
    std::memcpy(block.ioNamePtr + 1, directory->name.data(), directory->name.size());
    block.ioDrParID = static_cast<SInt32>(directory->info.parentDirID);
    return noErr;
}

OSErr FSCreateFileUnicode(const FSRef *parentRef, UniCharCount nameLength, const UniChar *name, FSCatalogInfoBitmap whichInfo,
                          const FSCatalogInfo *catalogInfo, FSRef *newRef, FSSpec *newSpec)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string text = textOf(name, nameLength);
    const OSErr failure = platform.record("FSCreateFileUnicode", {platform.files.describe(parentRef), '"' + text + '"', hex(whichInfo),
                                                                  platform.pointer(catalogInfo, "info"), platform.pointer(newRef, "newRef"),
                                                                  platform.pointer(newSpec, "newSpec")});
    if (failure != noErr)
        return failure;
    if (catalogInfo != nullptr)
        platform.folders.creationInfo = *catalogInfo;
    return addObject(parentRef, text, false);
}

OSErr FSCreateDirectoryUnicode(const FSRef *parentRef, UniCharCount nameLength, const UniChar *name, FSCatalogInfoBitmap whichInfo,
                               const FSCatalogInfo *catalogInfo, FSRef *newRef, FSSpec *newSpec, UInt32 *newDirID)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string text = textOf(name, nameLength);
    const OSErr failure =
        platform.record("FSCreateDirectoryUnicode",
                        {platform.files.describe(parentRef), '"' + text + '"', hex(whichInfo), platform.pointer(catalogInfo, "info"),
                         platform.pointer(newRef, "newRef"), platform.pointer(newSpec, "newSpec"), platform.pointer(newDirID, "newDirID")});
    return failure != noErr ? failure : addObject(parentRef, text, true);
}

// A file that is open gets the number of its node.
OSErr FSOpenFork(const FSRef *ref, UniCharCount forkNameLength, const UniChar *forkName, SInt8 permissions, SInt16 *forkRefNum)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure =
        platform.record("FSOpenFork", {platform.files.describe(ref), decimal(forkNameLength), platform.pointer(forkName, "forkName"),
                                       decimal(permissions), platform.pointer(forkRefNum, "refNum")});
    if (failure != noErr)
        return failure;
    const FileObject *file = platform.files.find(ref);
    if (file == nullptr)
        return errFSBadFSRef;
    if (file->isFolder())
        return notAFileErr;
    *forkRefNum = static_cast<SInt16>(file->info.nodeID);
    return noErr;
}
