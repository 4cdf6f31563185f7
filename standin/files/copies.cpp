// Copying a file with all that belongs to it. All of it is written under no name; then the sidecar gets its name, and then the file.
#include "platform/platform.h"
#include "standin/files/block_lookup.h"
#include "standin/files/changes.h"
#include "standin/files/copy_metadata.h"
#include "standin/files/default_directory.h"
#include "standin/files/errors.h"
#include "standin/files/names.h"
#include "standin/files/sidecar_carrying.h"
#include "standin/files/specified_objects.h"
#include "standin/files/volume_services.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>

using namespace standin;

namespace
{

constexpr std::uint64_t worthAskingFirst = 256 << 10;   // bytes; before that many are copied, the name is looked at
constexpr std::size_t longestLinkTarget = 4096;
constexpr int mostAttempts = 5;

struct Source
{
    Object object;
    Descriptor file;   // not open for a symbolic link
    CopiedMetadata metadata;

    std::uint64_t sidecarSize() const { return metadata.plan.isWanted ? std::max<std::uint64_t>(metadata.sidecar.status.size, 1) : 0; }
};

struct Target
{
    VolumeHandle volume;
    UInt32 folderID = 0;
    FolderHandle folder;
    std::string name;
    std::vector<std::string> names;   // every form of the name: none of them may be taken
};

// --- the source -----------------------------------------------------------------------------------------------------------------------------

OSErr checkMayBeCopied(const Object &object)
{
    if (!offersCopyFile(*object.volume))
        return paramErr;
    return object.status.isRegular() || object.status.isSymbolicLink() ? static_cast<OSErr>(noErr) : static_cast<OSErr>(notAFileErr);
}

bool isUnchanged(const ObjectStatus &before, const ObjectStatus &now)
{
    return now.change.tv_sec == before.change.tv_sec && now.change.tv_nsec == before.change.tv_nsec;
}

// Whether file and sidecar were one pair when they were opened: with a rename or an exchange a file's change date changes.
bool isStillThere(const Object &before, const ObjectStatus &now)
{
    ObjectStatus named;
    const Identity identity = before.identity();
    if (!sameObject(identity, identityOf(*before.volume, now)))
        return false;
    if (isUnchanged(before.status, now))
        return true;
    return linux_calls::statusAt(before.folder->number(), before.name.c_str(), named) == 0 &&
           sameObject(identity, identityOf(*before.volume, named));
}

// Opens the file and reads what belongs to it. `fits` is false if the file was moved meanwhile.
OSErr openSource(Source &source, const Volume &target, bool &fits)
{
    ObjectStatus now;
    const Object &object = source.object;
    const int folder = object.folder->number();
    fits = false;
    if (object.status.isRegular())
        source.file = Descriptor(linux_calls::openAt(folder, object.name.c_str(), O_RDONLY | O_NONBLOCK));
    if (object.status.isRegular() && !source.file.isOpen())
        return resultFromErrno(-source.file.number());
    if (OSErr result = readCopiedMetadata(object, source.file.number(), target, source.metadata))
        return result;
    const int failure =
        source.file.isOpen() ? linux_calls::statusOf(source.file.number(), now) : linux_calls::statusAt(folder, object.name.c_str(), now);
    if (failure && failure != -ENOENT)
        return resultFromErrno(-failure);
    fits = failure == 0 && isStillThere(object, now);
    source.object.status = now;
    return noErr;
}

// Who asked for the source's FSSpec a moment ago has looked it up already: opening it shows whether it is still that very file, unchanged. False if it is not.
bool openSpecified(const CopyParam &block, const Volume &target, Source &source, OSErr &result)
{
    bool fits = false;
    if (!recallSpecified(block.ioVRefNum, block.ioDirID, block.ioNamePtr, source.object) || checkMayBeCopied(source.object) != noErr)
        return false;
    const ObjectStatus before = source.object.status;
    result = openSource(source, target, fits);
    return source.file.isOpen() && (result != noErr || (fits && isUnchanged(before, source.object.status)));
}

OSErr findSource(const CopyParam &block, const Volume &target, Source &source)
{
    OSErr resultOfSpecified = noErr;
    if (openSpecified(block, target, source, resultOfSpecified))
        return resultOfSpecified;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        bool fits;
        source = {};
        if (OSErr result = findByTriple(block.ioVRefNum, block.ioDirID, block.ioNamePtr, source.object))
            return result;
        if (OSErr result = checkMayBeCopied(source.object))
            return result;
        if (OSErr result = openSource(source, target, fits); result != noErr || fits)
            return result;
    }
    return fBsyErr;
}

// --- the target -----------------------------------------------------------------------------------------------------------------------------

// What a failing step in the target folder says: what is missing there is the folder itself.
OSErr targetResult(int failure)
{
    return failure == -ENOENT ? static_cast<OSErr>(dirNFErr) : resultFromErrno(-failure);
}

// By ID alone, or by the name of a folder in there.
OSErr findTargetFolder(const CopyParam &block, Target &target)
{
    Object folder;
    if (OSErr result = directoryOfBlock(block.ioDstVRefNum, block.ioNewDirID, target.volume, target.folderID))
        return result;
    if (block.ioNewName && block.ioNewName[0] > 0)
    {
        if (OSErr result = findByTriple(block.ioDstVRefNum, block.ioNewDirID, block.ioNewName, folder))
            return result == fnfErr ? static_cast<OSErr>(dirNFErr) : result;
        if (!folder.isFolder())
            return errFSNotAFolder;
        target.volume = folder.volume;
        target.folderID = folder.nodeID();
    }
    if (OSErr result = target.volume->checkChangeable())
        return result;
    return openFolder(*target.volume, target.folderID, target.folder);
}

OSErr nameTarget(const CopyParam &block, const Object &source, Target &target)
{
    if (block.ioCopyName && block.ioCopyName[0] > 0)
    {
        if (OSErr result = storedNameFromPascal(block.ioCopyName, target.name))
            return result;
        return lookupNamesFromPascal(block.ioCopyName, target.names);
    }
    HFSUniStr255 name;
    target.name = source.name;   // to the byte, also where it is no text
    target.names = {source.name};
    if (std::all_of(source.name.begin(), source.name.end(), [](char letter) { return static_cast<unsigned char>(letter) < 0x80; }))
        return noErr;   // ASCII has no other forms
    unicodeFromDiskName(source.name, name);
    return lookupNamesFromUnicode(name.unicode, name.length, target.names);
}

// Looks at the copy's name only where more depends on it than the last step, which refuses a taken name by itself.
OSErr checkName(const Target &target, bool alsoItself)
{
    return checkNamesAreFree(target.folder->number(), target.names, alsoItself ? nullptr : &target.name);
}

// A sidecar that stands there without a file must not become the copy's.
OSErr clearTheWay(const Target &target, bool bringsSidecar)
{
    bool isThere = false;
    const ObjectStatus unknown;
    if (OSErr result = findSidecar({target.folder->number(), target.name, unknown}, isThere))
        return result;
    if (OSErr result = checkName(target, isThere || bringsSidecar))
        return result;
    return isThere ? clearTheWayFor(target.folder->number(), target.name) : static_cast<OSErr>(noErr);
}

// --- the copy -------------------------------------------------------------------------------------------------------------------------------

// What is written so far, and what is on its way.
struct Copy
{
    TemporaryFile file;
    SidecarCopy sidecar;
};

// The source's owner is not kept, so the bits that lend an owner's rights are not either.
int finish(const Source &source, int copy)
{
    const std::timespec times[2] = {{0, UTIME_OMIT}, source.object.status.modification};
    const int failure = writeAttributes(source.metadata, copy);
    if (failure)
        return failure;
    if (const int refused = linux_calls::setModeOf(copy, source.object.status.mode & 0777))
        return refused;
    return linux_calls::setTimes(copy, times);
}

int copyFileTo(const Source &source, const Target &target, CopyMeter &meter, Copy &copy)
{
    int failure = copy.file.make(target.folder->number(), source.object.status.mode | 0600);
    if (failure == 0)
        failure = copyContents(source.file.number(), source.object.status, copy.file.descriptor(), meter);
    return failure ? failure : finish(source, copy.file.descriptor());
}

int copyLinkTo(const Source &source, const Target &target, Copy &copy)
{
    std::string text(longestLinkTarget, '\0');
    const std::timespec times[2] = {{0, UTIME_OMIT}, source.object.status.modification};
    const ssize_t length = linux_calls::readLink(source.object.folder->number(), source.object.name.c_str(), text);
    if (length < 0)
        return static_cast<int>(length);
    text.resize(static_cast<std::size_t>(length));
    const int failure = copy.file.makeSymbolicLink(target.folder->number(), text.c_str());
    return failure ? failure : linux_calls::setTimes(copy.file.descriptor(), times);
}

OSErr write(const Source &source, const Target &target, Copy &copy)
{
    const bool isLink = source.object.status.isSymbolicLink();
    CopyMeter meter((isLink ? 0 : source.object.status.size) + source.sidecarSize());
    if (source.metadata.plan.isWanted && !hasRoomForSidecar(target.name))
        return errFSNameTooLong;
    if (source.sidecarSize() > 0 || source.object.status.size >= worthAskingFirst)
        if (OSErr result = checkName(target, true))
            return result;
    const int failure = isLink ? copyLinkTo(source, target, copy) : copyFileTo(source, target, meter, copy);
    if (failure)
        return targetResult(failure);
    const Sidecar *sidecar = source.metadata.hasSidecar ? &source.metadata.sidecar : nullptr;
    return copy.sidecar.write(sidecar, source.metadata.plan, target.folder->number(), source.object.status.mode, meter);
}

int flush(const Source &source, const Copy &copy)
{
    if (!copiesAreSynced())
        return 0;
    const int failure = source.file.isOpen() ? linux_calls::flushToDisk(copy.file.descriptor()) : 0;
    return failure ? failure : copy.sidecar.flush();
}

int flushNames(const Target &target)
{
    if (!copiesAreSynced())
        return 0;
    const Descriptor folder(linux_calls::openAt(target.folder->number(), ".", O_RDONLY | O_DIRECTORY));
    return folder.isOpen() ? linux_calls::flushToDisk(folder.number()) : folder.number();
}

// The sidecar's name first: a file is never seen without its fork. One without its file is known as left over.
int appear(const Target &target, Copy &copy)
{
    int failure = copy.sidecar.appear(target.name);
    if (failure == 0)
        failure = copy.file.appear(target.name.c_str());
    if (failure)
    {
        copy.sidecar.takeBack();
        return failure;
    }
    failure = copy.sidecar.settle();
    if (failure == 0)
        failure = flushNames(target);
    if (failure == 0)
        return 0;
    linux_calls::unlinkAt(target.folder->number(), target.name.c_str());   // all or nothing: who is told that it failed must not find it
    copy.sidecar.takeBack();
    return failure;
}

OSErr copyFile(const CopyParam &block)
{
    Source source;
    Target target;
    Copy copy;
    ChangeLock lock;
    if (OSErr result = findTargetFolder(block, target))
        return result;
    if (OSErr result = findSource(block, *target.volume, source))
        return result;
    if (OSErr result = nameTarget(block, source.object, target))
        return result;
    if (OSErr result = write(source, target, copy))
        return result;
    if (const int failure = flush(source, copy))
        return resultFromErrno(-failure);
    // Also where one call gives the copy its name: another process of ours that moves a file there links its sidecar first, and if it were killed then, the
    // copy would have that fork.
    if (OSErr result = lock.take(*target.volume, target.folderID, target.folder))
        return result;
    if (OSErr result = clearTheWay(target, source.metadata.plan.isWanted))
        return result;
    return targetResult(appear(target, copy));
}

}   // namespace

OSErr PBHCopyFileSync(HParmBlkPtr block)
try
{
    return block ? block->copyParam.ioResult = copyFile(block->copyParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->copyParam.ioResult = memFullErr;
}
