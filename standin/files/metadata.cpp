#include "standin/files/metadata.h"

#include "standin/files/dates.h"
#include "standin/files/errors.h"
#include "standin/files/file_id_notes.h"
#include "standin/files/metadata_attributes.h"
#include "standin/files/metadata_sidecars.h"
#include "standin/files/sidecar_store.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace standin
{

namespace
{

// Of a fork no attribute says anything.
Attributes readAttributesFor(const Object &object, unsigned parts)
{
    if (mayHaveAttributes(object) && parts != kForkPart)
        return readAttributes(object, (parts & ~static_cast<unsigned>(kFinderPart)) != 0);
    Attributes none;
    none.possible = mayHaveAttributes(object);
    return none;
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
    if (state == SidecarState::unreadable)
        attributes.failure = EACCES;
    if (state == SidecarState::failing)
        attributes.failure = sidecar.failure < 0 ? -sidecar.failure : EIO;
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
    if ((object.status.mode & 0600) == 0600 || !mayHaveAttributes(object))
        return step();
    const std::uint32_t user = linux_calls::effectiveUser();
    if (user == 0 || user != object.status.user)
        return step();
    if (const int failure = linux_calls::setMode(descriptor, object.status.mode | 0600))
        return resultFromErrno(-failure);
    const OSErr result = step();
    linux_calls::setMode(descriptor, object.status.mode);
    return result;
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
    if (parts & kBlankAccessPart)
        wanted.own.blankAccess = changes.own.blankAccess;
    return wanted;
}

Attributes readBoth(const Object &object, unsigned parts, Metadata &metadata)
{
    metadata = {};
    Attributes attributes = readAttributesFor(object, parts);
    takeAttributes(attributes, metadata);
    if (needsSidecar(attributes, parts))
        takeSidecar(object, attributes, parts, metadata);
    return attributes;
}

// --- exchanged files -----------------------------------------------------------------------------------------------------------------------

// Sets an attribute that is wanted, removes one that is there and not wanted.
template <typename Bytes>
int writeOrRemove(int descriptor, const char *name, bool isThere, const std::optional<Bytes> &wanted)
{
    if (wanted)
        return linux_calls::setAttribute(descriptor, name, *wanted);
    if (!isThere)
        return 0;
    const int failure = linux_calls::removeAttribute(descriptor, name);
    return failure == -ENODATA ? 0 : failure;
}

// Where the disk has no room for one attribute more, the room that the journal keeps free is given up.
int writeWithJournal(const Object &object, int descriptor, const std::function<int()> &write)
{
    const int failure = write();
    if (failure != -ENOSPC && failure != -E2BIG && failure != -EDQUOT)
        return failure;
    const auto journal = readAttributes(object, true).journal;
    if (!journal)
        return failure;
    const int shortened = linux_calls::setAttribute(descriptor, journalAttributeName, buildJournal(*journal));
    return shortened ? shortened : write();
}

OSErr writePlaceMetadata(const Object &object, int descriptor, const Attributes &before, const PlaceMetadata &metadata)
{
    Metadata wanted;
    wanted.own = metadata.own.value_or(OwnRecord{});
    if (metadata.shared)
        wanted.finderInfo = sharedFinderInfo(*metadata.shared);
    bool hasSidecar = false;
    if (!object.sidecarIsAbsent)
        if (OSErr result = bringSidecarInLine(object, kFinderPart | kDatesPart, wanted, hasSidecar))
            return result;
    wanted.own.finderInfoWasShared = hasSidecar && metadata.shared;
    const auto own = wanted.own.isDefault() ? std::nullopt : std::optional(buildOwnRecord(wanted.own));
    int failure = writeWithJournal(object, descriptor, [&] { return writeOrRemove(descriptor, ownAttributeName, before.hasOwn, own); });
    if (failure == 0)
        failure = writeWithJournal(object, descriptor,
                                   [&] { return writeOrRemove(descriptor, sharedAttributeName, before.hasShared, metadata.shared); });
    if (failure == 0)
        failure = linux_calls::removeAttribute(descriptor, journalAttributeName);
    return resultFromErrno(-failure);
}

// What was cut off: the place's metadata come to the file that has arrived there; what never went is as before. A parked file waits for its way.
OSErr finishExchange(const Object &object, int descriptor, const Attributes &attributes)
{
    const ExchangeJournal &journal = *attributes.journal;
    switch (stageOf(object, journal))
    {
    case ExchangeStage::arrived:
        noteFinishedExchangeForFileIDs(object, journal);
        return writePlaceMetadata(object, descriptor, attributes, journal.metadata);
    case ExchangeStage::parked: return noErr;
    default: return resultFromErrno(-linux_calls::removeAttribute(descriptor, journalAttributeName));
    }
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
        Attributes attributes = readBoth(object, kEveryPart, present);
        if (attributes.failure)
            return resultFromErrno(attributes.failure);
        if (attributes.journal)
        {
            if (OSErr result = finishExchange(object, descriptor, attributes))
                return result;
            attributes = readBoth(object, kEveryPart, present);
        }
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
    const auto moment = [](const std::timespec &date) { return std::pair(date.tv_sec, date.tv_nsec); };
    return dateFromLinux(std::min(status.modification, status.change, [&](const auto &a, const auto &b) { return moment(a) < moment(b); }));
}

OSErr makePlaceMetadata(const Object &object, const KnownMetadata &known, const Object &successor, PlaceMetadata &metadata,
                        std::size_t &room)
{
    const auto &[present, attributes] = known;
    if (attributes.failure)
        return resultFromErrno(attributes.failure);
    Metadata wanted;
    wanted.finderInfo = present.finderInfo;
    wanted.own.hint = present.own.hint;
    wanted.own.backupDate = present.own.backupDate;
    wanted.own.creationDate = creationDateOf(object, present.own);
    if (successor.status.hasBirth && sameDate(*wanted.own.creationDate, creationDateOf(successor, OwnRecord{})))
        wanted.own.creationDate.reset();
    metadata.shared = sharedFrom(successor, attributes, kFinderPart | kDatesPart, wanted);
    wanted.own.finderInfoWasShared = true;   // nothing counts that a sidecar brings along
    metadata.own = wanted.own;
    room = (attributes.shared ? 0 : sharedAttributeSize + roomForAttribute) + (attributes.own ? 0 : ownRecordSize + roomForAttribute);
    return noErr;
}

bool changesMetadata(const Attributes &attributes, const PlaceMetadata &metadata)
{
    OwnRecord own = metadata.own.value_or(OwnRecord{});
    own.finderInfoWasShared = false;   // without a sidecar it says nothing
    return attributes.hasShared || attributes.hasOwn || metadata.shared || !own.isDefault();
}

OSErr giveMetadataOfPlace(const Object &object, int descriptor, const Attributes &before, const PlaceMetadata &metadata)
{
    return withOwnersAccess(object, descriptor, [&] { return writePlaceMetadata(object, descriptor, before, metadata); });
}

OSErr writeJournal(const Object &object, int descriptor, const ExchangeJournal &journal, std::size_t room)
{
    return withOwnersAccess(object, descriptor, [&] {
        auto bytes = buildJournal(journal);
        bytes.resize(std::min(bytes.size() + room, largestJournal));
        return resultFromErrno(-linux_calls::setAttribute(descriptor, journalAttributeName, bytes));
    });
}

OSErr removeJournal(const Object &object, int descriptor)
{
    return withOwnersAccess(object, descriptor,
                            [&] { return resultFromErrno(-linux_calls::removeAttribute(descriptor, journalAttributeName)); });
}

KnownMetadata readKnownMetadata(const Object &object)
{
    KnownMetadata known;
    known.attributes = readBoth(object, kEveryPart & ~static_cast<unsigned>(kForkPart), known.all);
    return known;
}

OSErr checkNotLocked(const Object &object)
{
    return checkNotLocked(readKnownMetadata(object));
}

OSErr checkNotLocked(const KnownMetadata &known)
{
    const int failure = known.attributes.failure;
    if (known.all.own.locked)
        return fLckdErr;
    return failure == EACCES || failure == EPERM ? static_cast<OSErr>(noErr) : resultFromErrno(failure);
}

}   // namespace standin
