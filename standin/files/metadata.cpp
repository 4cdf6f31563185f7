#include "standin/files/metadata.h"

#include "standin/files/dates.h"
#include "standin/files/errors.h"
#include "standin/files/sidecar_store.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace standin
{

namespace
{

constexpr std::size_t attributeListSize = 4096;   // an object with more names than fit is asked for each by itself

struct Attributes
{
    bool possible = true;
    int failure = 0;   // the errno of what could not be read: it must not be written over
    std::optional<SharedAttribute> shared;
    std::optional<OwnRecord> own;
};

bool mayHaveAttributes(const Object &object)
{
    return object.volume->hasAttributes && (object.status.isFolder() || object.status.isRegular());
}

const char *placeName(const Object &object)
{
    return object.name.c_str();
}

SidecarPlace sidecarPlace(const Object &object)
{
    return {object.folder->number(), object.name, object.status};
}

bool listHolds(std::span<const char> list, const char *name)
{
    const std::size_t length = std::strlen(name) + 1;
    return std::search(list.begin(), list.end(), name, name + length) != list.end();
}

void noteFailure(ssize_t size, Attributes &attributes)
{
    if (size < 0 && size != -ENODATA && size != -EOPNOTSUPP && size != -ERANGE)
        attributes.failure = static_cast<int>(-size);
}

void readShared(const Object &object, Attributes &attributes)
{
    std::uint8_t bytes[sharedAttributeSize + 1];
    SharedAttribute shared;
    const ssize_t size = linux_calls::getAttribute(object.folder->number(), placeName(object), sharedAttributeName, bytes);
    if (size > 0 && acceptSharedAttribute({bytes, static_cast<std::size_t>(size)}, shared))
        attributes.shared = shared;
    noteFailure(size, attributes);
}

void readOwn(const Object &object, Attributes &attributes)
{
    std::uint8_t bytes[256];
    const ssize_t size = linux_calls::getAttribute(object.folder->number(), placeName(object), ownAttributeName, bytes);
    if (size > 0)
        attributes.own = parseOwnRecord({bytes, static_cast<std::size_t>(size)});
    noteFailure(size, attributes);
}

// One call tells which of the two there are. What may not be read counts as not there.
Attributes readAttributes(const Object &object, unsigned parts)
{
    Attributes attributes;
    attributes.possible = mayHaveAttributes(object);
    if (!attributes.possible || parts == kForkPart)
        return attributes;   // of a fork no attribute says anything
    char list[attributeListSize];
    const ssize_t size = linux_calls::listAttributes(object.folder->number(), placeName(object), list);
    const bool tooMany = size == -ERANGE;
    noteFailure(size, attributes);
    const std::span<const char> names(list, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    if (tooMany || listHolds(names, sharedAttributeName))
        readShared(object, attributes);
    const bool ownIsWanted = (parts & ~kFinderPart) != 0 || !attributes.shared;
    if (ownIsWanted && (tooMany || listHolds(names, ownAttributeName)))
        readOwn(object, attributes);
    return attributes;
}

// --- taking the parts from where they are ------------------------------------------------------------------------------------------------

void takeDates(const SidecarDates &dates, OwnRecord &own)
{
    if (!own.creationDate && dates.creation != unknownSidecarDate)
        own.creationDate = dateFromSidecar(dates.creation);
    if (!own.backupDate && dates.backup != unknownSidecarDate)
        own.backupDate = dateFromSidecar(dates.backup);
}

void takeAttributes(const Attributes &attributes, Metadata &metadata)
{
    if (attributes.own)
        metadata.own = *attributes.own;
    if (!attributes.shared)
        return;
    metadata.finderInfo = sharedFinderInfo(*attributes.shared);
    metadata.own.locked |= sharedLock(*attributes.shared);
    takeDates(sharedDates(*attributes.shared), metadata.own);
}

bool sidecarSaysLocked(const Sidecar &sidecar)
{
    std::array<std::uint8_t, 4> info{};
    if (sidecar.read(kMacintoshFileInfoEntry, info) && readMacintoshLock(info))
        return true;
    return sidecar.read(kAFPFileInfoEntry, info) && readAFPLock(info);
}

void takeEverything(const Sidecar &sidecar, Metadata &metadata)
{
    std::array<std::uint8_t, ownRecordSize> own{};
    std::array<std::uint8_t, 16> dates{};
    if (sidecar.read(kOwnEntry, own))
        metadata.own = parseOwnRecord(own).value_or(OwnRecord{});
    if (sidecar.read(kFileDatesEntry, dates))
        takeDates(readSidecarDates(dates), metadata.own);
}

void takeFork(const Sidecar &sidecar, Metadata &metadata)
{
    metadata.forkLogicalSize = sidecar.forkLength();
    metadata.forkPhysicalSize = metadata.forkLogicalSize ? sidecar.status.allocated : 0;
}

// Finder information that once was in the shared attribute is not looked for elsewhere: a file server that is told to clear it removes the attribute.
bool finderInfoIsInSidecar(const Attributes &attributes)
{
    return !attributes.shared && !(attributes.own && attributes.own->finderInfoWasShared);
}

bool needsSidecar(const Attributes &attributes, unsigned parts)
{
    if (!attributes.possible || (parts & (kForkPart | kLockPart)))
        return true;
    return (parts & kFinderPart) && finderInfoIsInSidecar(attributes);
}

void takeSidecar(const Object &object, Attributes &attributes, unsigned parts, Metadata &metadata)
{
    Sidecar sidecar;
    if (object.sidecarIsAbsent)
        return;
    const SidecarState state = openSidecar(sidecarPlace(object), false, sidecar);
    if (state == SidecarState::failing || state == SidecarState::unreadable)
        attributes.failure = state == SidecarState::failing ? EIO : EACCES;
    if (state != SidecarState::good)
        return;   // a bad sidecar never makes the data unreadable
    if (!attributes.possible)
        takeEverything(sidecar, metadata);
    if (finderInfoIsInSidecar(attributes))
        sidecar.read(kFinderInfoEntry, metadata.finderInfo);
    if (parts & kLockPart)
        metadata.own.locked |= sidecarSaysLocked(sidecar);
    if (parts & kForkPart)
        takeFork(sidecar, metadata);
}

// --- writing -------------------------------------------------------------------------------------------------------------------------------

// Does something for which the owner must be allowed to read and write the object, also where its mode says no for the moment.
template <typename Step>
OSErr withOwnersAccess(const Object &object, int descriptor, Step step)
{
    const std::uint32_t user = linux_calls::effectiveUser();
    const bool mayAlready = user == 0 || user != object.status.user || (object.status.mode & 0600) == 0600;
    if (mayAlready || !mayHaveAttributes(object))
        return step();
    if (const int failure = linux_calls::setMode(descriptor, object.status.mode | 0600))
        return resultFromErrno(-failure);
    const OSErr result = step();
    linux_calls::setMode(descriptor, object.status.mode);
    return result;
}

SidecarDates mirroredDates(const Object &object, const OwnRecord &own, std::int32_t access)
{
    SidecarDates dates{unknownSidecarDate, sidecarFromDate(dateFromLinux(object.status.modification)), unknownSidecarDate, access};
    if (own.creationDate)
        dates.creation = sidecarFromDate(*own.creationDate);
    if (own.backupDate)
        dates.backup = sidecarFromDate(*own.backupDate);
    return dates;
}

// The shared attribute as it should be; none if it was none and would say nothing.
std::optional<SharedAttribute> sharedFrom(const Object &object, const Attributes &present, unsigned parts, const Metadata &wanted)
{
    const bool saysNothing = wanted.finderInfo == FinderBytes{} && !wanted.own.creationDate && !wanted.own.backupDate && !wanted.own.locked;
    if (!present.shared && saysNothing)
        return std::nullopt;
    SharedAttribute shared = present.shared.value_or(emptySharedAttribute());
    setSharedFinderInfo(shared, wanted.finderInfo);
    if (parts & kLockPart)
        setSharedLock(shared, wanted.own.locked);
    if (parts & kDatesPart)
        setSharedDates(shared, mirroredDates(object, wanted.own, sharedDates(shared).access));
    return shared;
}

int writeOwn(int descriptor, const std::optional<OwnRecord> &present, const OwnRecord &wanted)
{
    const auto record = buildOwnRecord(wanted);
    if (present && record == buildOwnRecord(*present))
        return 0;
    if (!wanted.isDefault())
        return linux_calls::setAttribute(descriptor, ownAttributeName, record);
    return present ? linux_calls::removeAttribute(descriptor, ownAttributeName) : 0;
}

bool getsNewDate(const OwnRecord &present, const OwnRecord &wanted)
{
    return (wanted.creationDate && !present.creationDate) || (wanted.backupDate && !present.backupDate);
}

// The shared attribute first, but a date that our own record did not have before: the shared one's copy of it, in whole seconds, must not be all there is
// if we are stopped between the two.
int writeAttributes(const Object &object, int descriptor, const Attributes &present, unsigned parts, const Metadata &wanted)
{
    std::optional<OwnRecord> own = present.own;
    const OwnRecord ownBefore = present.own.value_or(OwnRecord{});
    if (getsNewDate(ownBefore, wanted.own))
    {
        own = wanted.own;
        own->finderInfoWasShared = ownBefore.finderInfoWasShared;
        if (const int failure = writeOwn(descriptor, present.own, *own))
            return failure;
    }
    const auto shared = sharedFrom(object, present, parts, wanted);
    if (shared && shared != present.shared)
        if (const int failure = linux_calls::setAttribute(descriptor, sharedAttributeName, *shared))
            return failure;
    return writeOwn(descriptor, own, wanted.own);
}

template <std::size_t Size>
SidecarPiece pieceOf(std::uint32_t id, const std::array<std::uint8_t, Size> &bytes)
{
    return {id, {bytes.begin(), bytes.end()}};
}

// Entry 10 or 14 with its other bits kept.
template <typename WriteLock>
SidecarPiece lockPiece(const Sidecar *sidecar, std::uint32_t id, bool locked, WriteLock writeLock)
{
    std::array<std::uint8_t, 4> info{};
    if (sidecar)
        sidecar->read(id, info);
    writeLock(std::span<std::uint8_t, 4>(info), locked);
    return pieceOf(id, info);
}

// Entry 8 with its access date, which we know nothing of, kept.
SidecarPiece datesPiece(const Object &object, const Sidecar *sidecar, const OwnRecord &own)
{
    std::array<std::uint8_t, 16> bytes{};
    const bool isThere = sidecar && sidecar->read(kFileDatesEntry, bytes);
    writeSidecarDates(bytes, mirroredDates(object, own, isThere ? readSidecarDates(bytes).access : unknownSidecarDate));
    return pieceOf(kFileDatesEntry, bytes);
}

// What a sidecar should say of the changed parts.
OSErr sidecarPieces(const Object &object, unsigned parts, const Metadata &wanted, std::vector<SidecarPiece> &pieces)
{
    Sidecar present;
    const SidecarState state = openSidecar(sidecarPlace(object), false, present);
    const bool exists = state == SidecarState::good;
    const Sidecar *sidecar = exists ? &present : nullptr;
    if (state == SidecarState::failing)
        return ioErr;
    if (parts & kFinderPart)
        pieces.push_back(pieceOf(kFinderInfoEntry, wanted.finderInfo));
    if (parts & kDatesPart)
        pieces.push_back(datesPiece(object, sidecar, wanted.own));
    if (parts & kLockPart)
        pieces.push_back(lockPiece(sidecar, kMacintoshFileInfoEntry, wanted.own.locked, writeMacintoshLock));
    if ((parts & kLockPart) && exists && present.layout.find(kAFPFileInfoEntry))
        pieces.push_back(lockPiece(sidecar, kAFPFileInfoEntry, wanted.own.locked, writeAFPLock));
    return noErr;
}

// Where the sidecar is the only place. Entries come into being as they are needed: Finder information alone has the form that everybody opens.
OSErr writeToSidecarAlone(const Object &object, unsigned parts, const Metadata &present, const Metadata &wanted)
{
    const auto record = buildOwnRecord(wanted.own);
    const bool ownChanges = record != buildOwnRecord(present.own);
    if (!ownChanges && wanted.finderInfo == present.finderInfo)
        return noErr;
    std::vector<SidecarPiece> pieces;
    if (OSErr result = sidecarPieces(object, kFinderPart | (ownChanges ? parts : 0), wanted, pieces))
        return result;
    if (ownChanges)
        pieces.push_back(pieceOf(kOwnEntry, record));
    return completeSidecar(sidecarPlace(object), pieces);
}

// Other programs' copies in a sidecar that is there anyway; and a sidecar for what is locked, so that a folder's listing alone tells what may be locked.
OSErr bringSidecarInLine(const Object &object, unsigned parts, const Metadata &wanted, bool &isThere)
{
    if ((parts & kLockPart) && wanted.own.locked)
        if (OSErr result = ensureSidecar(sidecarPlace(object), wanted.finderInfo))
            return result;
    if (OSErr result = findSidecar(sidecarPlace(object), isThere); result != noErr || !isThere)
        return result;
    std::vector<SidecarPiece> pieces;
    if (OSErr result = sidecarPieces(object, parts, wanted, pieces))
        return result;
    return updateSidecar(sidecarPlace(object), pieces);
}

// The sidecar first: an object must not be locked without one.
OSErr writeToBoth(const Object &object, int descriptor, const Attributes &attributes, unsigned parts, Metadata wanted)
{
    bool hasSidecar = false;
    if (OSErr result = bringSidecarInLine(object, parts, wanted, hasSidecar))
        return result;
    if (hasSidecar && (wanted.finderInfo != FinderBytes{} || attributes.shared))
        wanted.own.finderInfoWasShared = true;
    return resultFromErrno(-writeAttributes(object, descriptor, attributes, parts, wanted));
}

// What is there and what is asked for, laid over it. Our own record only ever gets what was given to it, not what others say.
Metadata withParts(const Metadata &present, const OwnRecord &ownBefore, unsigned parts, const Metadata &changes)
{
    Metadata wanted = present;
    wanted.own = ownBefore;
    if (parts & kFinderPart)
        wanted.finderInfo = changes.finderInfo;
    if (parts & kDatesPart)
    {
        wanted.own.creationDate = changes.own.creationDate;
        wanted.own.backupDate = changes.own.backupDate;
    }
    if (parts & kLockPart)
        wanted.own.locked = changes.own.locked;
    if (parts & kHintPart)
        wanted.own.hint = changes.own.hint;
    return wanted;
}

Attributes readBoth(const Object &object, unsigned parts, Metadata &metadata)
{
    metadata = {};
    Attributes attributes = readAttributes(object, parts);
    takeAttributes(attributes, metadata);
    if (needsSidecar(attributes, parts))
        takeSidecar(object, attributes, parts, metadata);
    return attributes;
}

}   // namespace

void readMetadata(const Object &object, unsigned parts, Metadata &metadata)
{
    readBoth(object, parts, metadata);
}

OSErr changeMetadata(const Object &object, int descriptor, unsigned parts, const std::function<void(Metadata &)> &change)
{
    return withOwnersAccess(object, descriptor, [&]() -> OSErr {
        Metadata present;
        const Attributes attributes = readBoth(object, kEveryPart, present);
        if (attributes.failure)
            return resultFromErrno(attributes.failure);
        Metadata changed = present;
        change(changed);
        if (!attributes.possible)
            return writeToSidecarAlone(object, parts, present, withParts(present, present.own, parts, changed));
        return writeToBoth(object, descriptor, attributes, parts, withParts(present, attributes.own.value_or(OwnRecord{}), parts, changed));
    });
}

UTCDateTime creationDateOf(const Object &object, const OwnRecord &own)
{
    if (own.creationDate)
        return *own.creationDate;
    const ObjectStatus &status = object.status;
    if (status.hasBirth)
        return dateFromLinux(status.birth);
    const bool modifiedFirst = status.modification.tv_sec < status.change.tv_sec;
    return dateFromLinux(modifiedFirst ? status.modification : status.change);
}

OSErr checkNotLocked(const Object &object)
{
    Metadata metadata;
    const int failure = readBoth(object, kLockPart, metadata).failure;
    if (metadata.own.locked)
        return fLckdErr;
    return failure == EACCES || failure == EPERM ? static_cast<OSErr>(noErr) : resultFromErrno(failure);
}

}   // namespace standin
