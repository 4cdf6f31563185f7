#include "standin/files/catalog.h"

#include "standin/files/changes.h"
#include "standin/files/dates.h"
#include "standin/files/errors.h"
#include "standin/files/forks.h"
#include "standin/files/listings.h"
#include "standin/files/metadata.h"
#include "standin/files/short_lookups.h"
#include "standin/files/names.h"
#include "standin/files/specified_objects.h"

#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>

using namespace standin;

namespace
{

constexpr FSCatalogInfoBitmap datesInMetadata = kFSCatInfoCreateDate | kFSCatInfoBackupDate;
constexpr FSCatalogInfoBitmap bothFinderInfos = kFSCatInfoFinderInfo | kFSCatInfoFinderXInfo;

// What a folder's user may not do, in the byte of privileges.
constexpr UInt8 mayNotSeeFolders = 0x01, mayNotSeeFiles = 0x02, mayNotChange = 0x04, isNotOwner = 0x80;

constexpr OSType symbolicLinkType = fourCharCode("slnk"), symbolicLinkCreator = fourCharCode("rhap");

// Which parts of the metadata the fields asked for are kept in.
unsigned partsFor(FSCatalogInfoBitmap which)
{
    unsigned parts = 0;
    if (which & bothFinderInfos)
        parts |= kFinderPart;
    if (which & datesInMetadata)
        parts |= kDatesPart;
    if (which & kFSCatInfoNodeFlags)
        parts |= kLockPart;
    if (which & kFSCatInfoTextEncoding)
        parts |= kHintPart;
    return parts;
}

UInt16 nodeFlagsOf(const Object &object, const Metadata &metadata)
{
    const unsigned folder = object.isFolder() ? kFSNodeIsDirectoryMask : 0;
    const unsigned locked = metadata.own.locked ? kFSNodeLockedMask : 0;
    return static_cast<UInt16>(folder | locked | openForkFlags(object));
}

UInt8 userPrivilegesOf(const Object &object)
{
    if (!object.isFolder())
        return 0;
    const auto lacks = [&](int mode) { return !linux_calls::mayAccess(object.folder->number(), object.name.c_str(), mode); };
    const std::uint32_t user = linux_calls::effectiveUser();
    unsigned privileges = user != 0 && user != object.status.user ? isNotOwner : 0;
    if (lacks(R_OK | X_OK))
        privileges |= mayNotSeeFolders | mayNotSeeFiles;
    if (lacks(W_OK | X_OK))
        privileges |= mayNotChange;
    return static_cast<UInt8>(privileges);
}

void fillPermissions(const Object &object, UInt32 permissions[4])
{
    FSPermissionInfo record{};
    record.userID = object.status.user;
    record.groupID = object.status.group;
    record.mode = static_cast<UInt16>(object.status.mode);
    std::memcpy(permissions, &record, sizeof record);
}

void fillFinderInfo(const Object &object, const Metadata &metadata, FSCatalogInfoBitmap which, FSCatalogInfo &info)
{
    UInt8 finderInfo[16], extendedInfo[16];
    finderBytesFromDisk(metadata.finderInfo, object.isFolder(), finderInfo, extendedInfo);
    if (object.status.isSymbolicLink() && metadata.finderInfo == FinderBytes{})
    {
        std::memcpy(finderInfo, &symbolicLinkType, sizeof symbolicLinkType);
        std::memcpy(finderInfo + 4, &symbolicLinkCreator, sizeof symbolicLinkCreator);
    }
    if (which & kFSCatInfoFinderInfo)
        std::memcpy(info.finderInfo, finderInfo, sizeof finderInfo);
    if (which & kFSCatInfoFinderXInfo)
        std::memcpy(info.extFinderInfo, extendedInfo, sizeof extendedInfo);
}

// The fields that Linux itself knows.
void fillFromStatus(const Object &object, FSCatalogInfoBitmap which, FSCatalogInfo &info)
{
    const ObjectStatus &status = object.status;
    if (which & kFSCatInfoVolume)
        info.volume = object.volume->number;
    if (which & kFSCatInfoParentDirID)
        info.parentDirID = object.parentID;
    if (which & kFSCatInfoNodeID)
        info.nodeID = object.nodeID();
    if (which & kFSCatInfoContentMod)
        info.contentModDate = dateFromLinux(status.modification);
    if (which & kFSCatInfoAttrMod)
        info.attributeModDate = dateFromLinux(status.change);
    if (which & kFSCatInfoAccessDate)
        info.accessDate = dateFromLinux(status.access);
    if (which & kFSCatInfoPermissions)
        fillPermissions(object, info.permissions);
    if (which & kFSCatInfoDataSizes)
    {
        info.dataLogicalSize = object.isFolder() ? 0 : status.size;
        info.dataPhysicalSize = object.isFolder() ? 0 : status.allocated;
    }
    if (which & kFSCatInfoSharingFlags)
        info.sharingFlags = 0;
    if (which & kFSCatInfoUserPrivs)
        info.userPrivileges = userPrivilegesOf(object);
}

// The fields that the metadata hold.
void fillFromMetadata(const Object &object, const Metadata &metadata, FSCatalogInfoBitmap which, FSCatalogInfo &info)
{
    if (which & kFSCatInfoTextEncoding)
        info.textEncodingHint = metadata.own.hint.value_or(kTextEncodingMacRoman);
    if (which & kFSCatInfoNodeFlags)
        info.nodeFlags = nodeFlagsOf(object, metadata);
    if (which & kFSCatInfoCreateDate)
        info.createDate = creationDateOf(object, metadata.own);
    if (which & kFSCatInfoBackupDate)
        info.backupDate = metadata.own.backupDate.value_or(UTCDateTime{});
    if (which & bothFinderInfos)
        fillFinderInfo(object, metadata, which, info);
    if (which & kFSCatInfoRsrcSizes)
    {
        info.rsrcLogicalSize = metadata.forkLogicalSize;
        info.rsrcPhysicalSize = metadata.forkPhysicalSize;
    }
}

OSErr fillValence(const Object &object, FSCatalogInfo &info)
{
    UInt32 valence = 0;
    info.valence = 0;
    if (!object.isFolder() || object.isMountPoint())
        return noErr;
    const int opened = linux_calls::openAt(object.folder->number(), object.name.c_str(), O_PATH | O_DIRECTORY);
    if (opened < 0)
        return resultFromErrno(-opened);
    const Descriptor folder(opened);
    const int failure = countVisibleEntries(folder.number(), valence);
    info.valence = valence;
    return resultFromErrno(-failure);
}

// --- setting -------------------------------------------------------------------------------------------------------------------------------

bool wantsUnlocking(FSCatalogInfoBitmap which, const FSCatalogInfo &info)
{
    return (which & kFSCatInfoNodeFlags) && !(info.nodeFlags & kFSNodeLockedMask);
}

// What is locked may only be unlocked, with or without changes in the same call, or be told to stay locked.
OSErr checkLock(const Object &object, FSCatalogInfoBitmap which, const FSCatalogInfo &info)
{
    const bool onlyNodeFlags = (which & ~static_cast<FSCatalogInfoBitmap>(kFSCatInfoNodeFlags)) == 0;
    if (onlyNodeFlags || wantsUnlocking(which, info))
        return noErr;
    return checkNotLocked(object);
}

OSErr setOwner(const Object &object, int descriptor, const FSPermissionInfo &wanted)
{
    if (wanted.userID == object.status.user && wanted.groupID == object.status.group)
        return noErr;
    return resultFromErrno(-linux_calls::setOwner(descriptor, wanted.userID, wanted.groupID));
}

// A link has no mode of its own. A change of owner may have cleared bits, so that "the same as before" is no reason to leave it out then.
OSErr setMode(const Object &object, int descriptor, const FSPermissionInfo &wanted)
{
    const bool sameMode = (wanted.mode & 07777u) == (object.status.mode & 07777u);
    const bool sameOwner = wanted.userID == object.status.user && wanted.groupID == object.status.group;
    if (object.status.isSymbolicLink() || (sameMode && sameOwner))
        return noErr;
    return resultFromErrno(-linux_calls::setMode(descriptor, wanted.mode));
}

// The date of the last change of attributes is Linux's own and cannot be set: it is passed over.
OSErr setTimes(int descriptor, FSCatalogInfoBitmap which, const FSCatalogInfo &info)
{
    if (!(which & (kFSCatInfoContentMod | kFSCatInfoAccessDate)))
        return noErr;
    std::timespec times[2] = {{0, UTIME_OMIT}, {0, UTIME_OMIT}};
    if (which & kFSCatInfoAccessDate)
        times[0] = linuxFromDate(info.accessDate);
    if (which & kFSCatInfoContentMod)
        times[1] = linuxFromDate(info.contentModDate);
    return resultFromErrno(-linux_calls::setTimes(descriptor, times));
}

FinderBytes finderBytesOf(const Object &object, FSCatalogInfoBitmap which, const FSCatalogInfo &info, const FinderBytes &present)
{
    UInt8 finderInfo[16], extendedInfo[16];
    finderBytesFromDisk(present, object.isFolder(), finderInfo, extendedInfo);
    if (which & kFSCatInfoFinderInfo)
        std::memcpy(finderInfo, info.finderInfo, sizeof finderInfo);
    if (which & kFSCatInfoFinderXInfo)
        std::memcpy(extendedInfo, info.extFinderInfo, sizeof extendedInfo);
    return finderBytesToDisk(finderInfo, extendedInfo, object.isFolder());
}

// A date that is the disk's own anyway needs no place.
std::optional<UTCDateTime> creationDateToKeep(const Object &object, const UTCDateTime &wanted)
{
    const bool isOwn = object.status.hasBirth && sameDate(wanted, creationDateOf(object, OwnRecord{}));
    return isOwn ? std::nullopt : std::optional(wanted);
}

void takeFromInfo(const Object &object, FSCatalogInfoBitmap which, const FSCatalogInfo &info, Metadata &metadata)
{
    if (which & bothFinderInfos)
        metadata.finderInfo = finderBytesOf(object, which, info, metadata.finderInfo);
    if (which & kFSCatInfoCreateDate)
        metadata.own.creationDate = creationDateToKeep(object, info.createDate);
    if (which & kFSCatInfoBackupDate)
        metadata.own.backupDate = isZeroDate(info.backupDate) ? std::nullopt : std::optional(info.backupDate);
    if (which & kFSCatInfoNodeFlags)
        metadata.own.locked = (info.nodeFlags & kFSNodeLockedMask) != 0;
    if (which & kFSCatInfoTextEncoding)
        metadata.own.hint = info.textEncodingHint == kTextEncodingMacRoman ? std::nullopt : std::optional(info.textEncodingHint);
}

OSErr getCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap which, FSCatalogInfo *info, HFSUniStr255 *name, FSSpec *spec, FSRef *parent)
{
    Object object;
    if (which & ~everyCatalogBit)
        return errFSBadInfoBitmap;
    if (which != kFSCatInfoNone && !info)
        return errFSMissingCatInfo;
    if (OSErr result = findObject(ref, object))
        return result;
    if (which != kFSCatInfoNone)
        if (OSErr result = fillCatalogInfo(object, which, *info))
            return result;
    if (name)
        fillName(object, *name);
    if (spec)
    {
        fillSpec(object, *spec);
        noteSpecified(object, *spec);
    }
    if (parent)
        *parent = makeParentReference(object);
    return noErr;
}

}   // namespace

namespace standin
{

OSErr fillCatalogInfo(const Object &object, FSCatalogInfoBitmap which, FSCatalogInfo &info)
{
    unsigned parts = partsFor(which);
    if ((which & kFSCatInfoRsrcSizes) && object.status.isRegular())
        parts |= kForkPart;
    constexpr unsigned needSidecar = kLockPart | kForkPart;   // what is locked has a sidecar, too
    if (object.sidecarIsAbsent && (parts & ~needSidecar) == 0)
        parts = 0;
    Metadata metadata;
    if (parts)
        readMetadata(object, parts, metadata);
    fillFromStatus(object, which, info);
    fillFromMetadata(object, metadata, which, info);
    return which & kFSCatInfoValence ? fillValence(object, info) : static_cast<OSErr>(noErr);
}

OSErr checkSettable(FSCatalogInfoBitmap which, const FSCatalogInfo *info)
{
    if (which & ~static_cast<FSCatalogInfoBitmap>(kFSCatInfoSettableInfo))
        return errFSBadInfoBitmap;
    return which != kFSCatInfoNone && !info ? errFSMissingCatInfo : noErr;
}

// First what is most likely to be refused, so that nothing is changed then; the mode after the attributes, which it may forbid to write; the dates
// last, because everything else touches them.
OSErr applyCatalogInfo(const Object &object, FSCatalogInfoBitmap which, const FSCatalogInfo &info)
{
    FSPermissionInfo permissions;
    std::memcpy(&permissions, info.permissions, sizeof permissions);
    Descriptor itself;
    if (OSErr result = openItself(object, O_PATH, itself))
        return result;
    if (which & kFSCatInfoPermissions)
        if (OSErr result = setOwner(object, itself.number(), permissions))
            return result;
    const auto change = [&](Metadata &metadata) { takeFromInfo(object, which, info, metadata); };
    if (partsFor(which))
        if (OSErr result = changeMetadata(object, itself.number(), partsFor(which), change))
            return result;
    if (which & kFSCatInfoPermissions)
        if (OSErr result = setMode(object, itself.number(), permissions))
            return result;
    return setTimes(itself.number(), which, info);
}

void fillName(const Object &object, HFSUniStr255 &name)
{
    unicodeFromDiskName(object.isRoot() ? object.volume->name : object.name, name);
}

void fillSpec(const Object &object, FSSpec &spec)
{
    spec.vRefNum = object.volume->number;
    spec.parID = static_cast<SInt32>(object.parentID);
    makeShortName(object, spec.name);
}

}   // namespace standin

OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap which, FSCatalogInfo *info, HFSUniStr255 *name, FSSpec *spec, FSRef *parent)
try
{
    return getCatalogInfo(ref, which, info, name, spec, parent);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

OSErr FSSetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap which, const FSCatalogInfo *info)
try
{
    Object object;
    ChangeLock lock;
    if (OSErr result = checkSettable(which, info))
        return result;
    if (which == kFSCatInfoNone)
        return findObject(ref, object);   // nothing to set, but the object must be there
    if (OSErr result = findAndLock(ref, object, lock))
        return result;
    if (OSErr result = object.volume->checkChangeable())
        return result;
    if (OSErr result = checkLock(object, which, *info))
        return result;
    return applyCatalogInfo(object, which, *info);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
