// The File Manager's calls that rename, move, exchange and delete what is on the double's disk.

#include "tests/contract/platform_double.h"

namespace
{

bool isLocked(const FileObject &object)
{
    return (object.info.nodeFlags & kFSNodeLockedMask) != 0;
}

OSErr checkPlace(FilesDouble &files, const FileObject &object, const FileObject &directory, const std::string &name)
{
    if (name.empty())
        return bdNamErr;
    const FileObject *there = files.findChild(directory, name);
    return there == nullptr || there == &object ? OSErr{noErr} : dupFNErr;
}

OSErr place(FilesDouble &files, FileObject &object, FileObject &directory, const std::string &name)
{
    if (object.parent == nullptr)
        return errFSBadFSRef;
    if (isLocked(object))
        return fLckdErr;
    const OSErr result = checkPlace(files, object, directory, name);
    if (result != noErr)
        return result;
    object.parent = &directory;
    object.info.parentDirID = directory.info.nodeID;
    object.name = name;
    files.renewReference(object);
    return noErr;
}

}   // namespace

OSErr FSRenameUnicode(const FSRef *ref, UniCharCount nameLength, const UniChar *name, TextEncoding textEncodingHint, FSRef *newRef)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string text = textOf(name, nameLength);
    const OSErr failure = platform.record(
        "FSRenameUnicode", {platform.files.describe(ref), '"' + text + '"', hex(textEncodingHint), platform.pointer(newRef, "new")});
    if (failure != noErr)
        return failure;

    FileObject *object = platform.files.find(ref);
    if (object == nullptr)
        return errFSBadFSRef;
    const OSErr result = place(platform.files, *object, *object->parent, text);
    if (result != noErr)
        return result;
    object->info.textEncodingHint = textEncodingHint;
    if (newRef != nullptr)
        *newRef = object->ref;
    return noErr;
}

OSErr FSMoveObject(const FSRef *ref, const FSRef *destDirectory, FSRef *newRef)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record(
        "FSMoveObject", {platform.files.describe(ref), platform.files.describe(destDirectory), platform.pointer(newRef, "new")});
    if (failure != noErr)
        return failure;

    FileObject *object = platform.files.find(ref), *directory = platform.files.find(destDirectory);
    if (object == nullptr || directory == nullptr)
        return errFSBadFSRef;
    if (!directory->isFolder())
        return errFSNotAFolder;
    const OSErr result = place(platform.files, *object, *directory, object->name);
    if (result == noErr && newRef != nullptr)
        *newRef = object->ref;
    return result;
}

// The volume's own exchange: the contents change places, which shows in their sizes. The references stay.
OSErr FSExchangeObjects(const FSRef *ref, const FSRef *destRef)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSExchangeObjects", {platform.files.describe(ref), platform.files.describe(destRef)});
    if (failure != noErr)
        return failure;

    FileObject *one = platform.files.find(ref), *other = platform.files.find(destRef);
    if (one == nullptr || other == nullptr)
        return errFSBadFSRef;
    const UInt64 size = one->info.dataLogicalSize;
    one->info.dataLogicalSize = other->info.dataLogicalSize;
    other->info.dataLogicalSize = size;
    return noErr;
}

OSErr FSDeleteObject(const FSRef *ref)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("FSDeleteObject", {platform.files.describe(ref)});
    if (failure != noErr)
        return failure;

    const FileObject *object = platform.files.find(ref);
    if (object == nullptr)
        return errFSBadFSRef;
    if (isLocked(*object))
        return fLckdErr;
    for (const FileObject &each : platform.files.objects)
        if (each.parent == object)
            return fBsyErr;
    platform.files.objects.remove_if([object](const FileObject &each) { return &each == object; });
    return noErr;
}

OSErr PBMakeFSRefUnicodeSync(FSRefParamPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string name = textOf(paramBlock->name, paramBlock->nameLength);
    const OSErr failure =
        platform.record("PBMakeFSRefUnicodeSync", {field("ref", platform.files.describe(paramBlock->ref)), field("name", '"' + name + '"'),
                                                   field("textEncodingHint", hex(paramBlock->textEncodingHint)),
                                                   field("newRef", platform.pointer(paramBlock->newRef, "ref"))});
    if (failure != noErr)
        return failure;

    const FileObject *directory = platform.files.find(paramBlock->ref);
    if (directory == nullptr)
        return errFSBadFSRef;
    const FileObject *found = platform.files.findChild(*directory, name);
    if (found == nullptr)
        return fnfErr;
    *paramBlock->newRef = found->ref;
    return noErr;
}

OSErr PBHMoveRenameSync(HParmBlkPtr paramBlock)
{
    PlatformDouble &platform = PlatformDouble::current();
    const CopyParam &block = paramBlock->copyParam;
    const OSErr failure =
        platform.record("PBHMoveRenameSync", {field("ioVRefNum", decimal(block.ioVRefNum)), field("ioDirID", decimal(block.ioDirID)),
                                              field("ioNamePtr", quoted(block.ioNamePtr)), field("ioNewDirID", decimal(block.ioNewDirID)),
                                              field("ioNewName", quoted(block.ioNewName)), field("ioCopyName", quoted(block.ioCopyName))});
    if (failure != noErr)
        return failure;

    const FileObject *from = platform.files.findDirectory(block.ioVRefNum, block.ioDirID);
    FileObject *to = platform.files.findDirectory(block.ioVRefNum, block.ioNewDirID);
    if (from == nullptr || to == nullptr)
        return dirNFErr;
    FileObject *object = platform.files.findChild(*from, plainText(block.ioNamePtr));
    if (object == nullptr)
        return fnfErr;
    return place(platform.files, *object, *to, block.ioCopyName == nullptr ? object->name : plainText(block.ioCopyName));
}
