// Access rights of folders: owner, group and mode ↔ the platform's three numbers.
#include "platform/platform.h"
#include "standin/files/access_rights.h"
#include "standin/files/block_lookup.h"
#include "standin/files/changes.h"
#include "standin/files/errors.h"
#include "standin/files/linux_users.h"
#include "standin/files/metadata.h"

#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

using namespace standin;

namespace
{

// One user's rights lie the other way round than in a mode: search is the lowest bit, write the highest.
constexpr UInt32 mayRead = 2, mayWrite = 4, maySearch = 1;
constexpr unsigned groupShift = 8, everyoneShift = 16, callerShift = 24;
constexpr UInt32 blankAccess = 0x10000000, callerIsOwner = 0x80000000;
constexpr std::uint32_t rightsInMode = 0777, otherBitsInMode = 07000;

UInt32 rightsOfThree(std::uint32_t bits)
{
    return ((bits & 4) ? mayRead : 0) | ((bits & 2) ? mayWrite : 0) | ((bits & 1) ? maySearch : 0);
}

std::uint32_t modeOfThree(UInt32 rights)
{
    return ((rights & mayRead) ? 4u : 0u) | ((rights & mayWrite) ? 2u : 0u) | ((rights & maySearch) ? 1u : 0u);
}

// What this process itself may do, whatever gives it that right: also its being root, or a further rule of the disk.
UInt32 callersRights(const Object &object)
{
    const auto may = [&](int mode) { return linux_calls::mayAccess(object.folder->number(), object.name.c_str(), mode); };
    const bool changeable = object.volume->checkChangeable() == noErr;
    return (may(R_OK) ? mayRead : 0) | (changeable && may(W_OK) ? mayWrite : 0) | (may(X_OK) ? maySearch : 0);
}

bool callerOwns(const Object &object)
{
    const std::uint32_t user = linux_calls::effectiveUser();
    return user == 0 || user == object.status.user;
}

bool hasBlankAccess(const Object &object)
{
    Metadata metadata;
    readMetadata(object, kBlankAccessPart, metadata);
    return metadata.own.blankAccess;
}

OSErr findFolderOfBlock(const AccessParam &block, Object &object)
{
    if (OSErr result = findByTriple(block.ioVRefNum, block.ioDirID, block.ioNamePtr, object))
        return result;
    return object.isFolder() ? noErr : dirNFErr;
}

OSErr getAccess(AccessParam &block)
{
    Object object;
    if (OSErr result = findFolderOfBlock(block, object))
        return result;
    UInt32 rights = accessRightsOfMode(object.status.mode) | callersRights(object) << callerShift;
    rights |= hasBlankAccess(object) ? blankAccess : 0;
    rights |= callerOwns(object) ? callerIsOwner : 0;
    block.ioACOwnerID = static_cast<SInt32>(object.status.user);
    block.ioACGroupID = static_cast<SInt32>(object.status.group);
    block.ioACAccess = static_cast<SInt32>(rights);
    return noErr;
}

// --- setting -------------------------------------------------------------------------------------------------------------------------------

struct WantedAccess
{
    std::uint32_t user, group, mode;
    bool blank;
};

// A folder with blank access has the rights of the folder that it lies in.
OSErr takeEnclosingRights(const Object &object, std::uint32_t &mode)
{
    ObjectStatus enclosing;
    if (object.isRoot())
        return paramErr;   // nothing encloses it
    if (const int failure = linux_calls::statusOf(object.folder->number(), enclosing))
        return resultFromErrno(-failure);
    mode = (mode & otherBitsInMode) | (enclosing.mode & rightsInMode);
    return noErr;
}

OSErr wantedAccess(const AccessParam &block, const Object &object, WantedAccess &wanted)
{
    const auto rights = static_cast<UInt32>(block.ioACAccess);
    wanted.user = static_cast<std::uint32_t>(block.ioACOwnerID);
    wanted.group = static_cast<std::uint32_t>(block.ioACGroupID);
    wanted.mode = (object.status.mode & otherBitsInMode) | modeOfAccessRights(rights);
    wanted.blank = (rights & blankAccess) != 0;
    if (block.ioACOwnerID == -1 || block.ioACGroupID == -1)
        return paramErr;   // nobody's number: to Linux it would mean "as it is"
    return wanted.blank ? takeEnclosingRights(object, wanted.mode) : static_cast<OSErr>(noErr);
}

// Linux silently clears the bit that gives a folder's group to what is made in it, when somebody who is not of that group sets the mode.
OSErr checkKeepsGroupBit(const WantedAccess &wanted)
{
    const bool wouldBeLost = (wanted.mode & S_ISGID) && linux_calls::effectiveUser() != 0 && !linux_calls::isInGroup(wanted.group);
    return wouldBeLost ? permErr : noErr;
}

OSErr setOwner(int descriptor, std::uint32_t user, std::uint32_t group)
{
    return resultFromErrno(-linux_calls::setOwner(descriptor, user, group));
}

OSErr setBlankAccess(const Object &object, int descriptor, bool blank)
{
    if (blank == hasBlankAccess(object))
        return noErr;
    return changeMetadata(object, descriptor, kBlankAccessPart, [&](Metadata &metadata) { metadata.own.blankAccess = blank; });
}

// The owner first, who may be refused most easily. What was done before a failure is undone: the steps back were allowed a moment ago.
// The mode comes last because it may take the right to write the bit away.
OSErr applyAccess(const Object &object, int descriptor, const WantedAccess &wanted)
{
    const bool ownerChanges = wanted.user != object.status.user || wanted.group != object.status.group;
    if (ownerChanges)
        if (OSErr result = setOwner(descriptor, wanted.user, wanted.group))
            return result;
    const bool wasBlank = hasBlankAccess(object);
    OSErr result = setBlankAccess(object, descriptor, wanted.blank);
    if (result == noErr)
        result = resultFromErrno(-linux_calls::setMode(descriptor, wanted.mode));
    if (result == noErr)
        return noErr;
    setBlankAccess(object, descriptor, wasBlank);
    if (ownerChanges)
        setOwner(descriptor, object.status.user, object.status.group);
    return result;
}

OSErr setAccess(const AccessParam &block)
{
    Object object;
    ChangeLock lock;
    Descriptor itself;
    WantedAccess wanted{};
    if (OSErr result = findFolderOfBlock(block, object))
        return result;
    const FSRef reference = makeReference(object);
    if (OSErr result = findAndLock(&reference, object, lock))
        return result;
    if (OSErr result = object.volume->checkChangeable())
        return result;
    if (OSErr result = checkNotLocked(object))
        return result;
    if (OSErr result = wantedAccess(block, object, wanted))
        return result;
    if (OSErr result = checkKeepsGroupBit(wanted))
        return result;
    if (OSErr result = openItself(object, O_PATH, itself))
        return result;
    return applyAccess(object, itself.number(), wanted);
}

}   // namespace

namespace standin
{

UInt32 accessRightsOfMode(std::uint32_t mode)
{
    return rightsOfThree(mode >> 6) | rightsOfThree(mode >> 3) << groupShift | rightsOfThree(mode) << everyoneShift;
}

std::uint32_t modeOfAccessRights(UInt32 rights)
{
    return modeOfThree(rights) << 6 | modeOfThree(rights >> groupShift) << 3 | modeOfThree(rights >> everyoneShift);
}

}   // namespace standin

OSErr PBHGetDirAccessSync(HParmBlkPtr block)
try
{
    return block ? block->accessParam.ioResult = getAccess(block->accessParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->accessParam.ioResult = memFullErr;
}

OSErr PBHSetDirAccessSync(HParmBlkPtr block)
try
{
    return block ? block->accessParam.ioResult = setAccess(block->accessParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->accessParam.ioResult = memFullErr;
}
