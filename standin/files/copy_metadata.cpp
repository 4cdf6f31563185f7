#include "standin/files/copy_metadata.h"

#include "standin/files/dates.h"
#include "standin/files/errors.h"
#include "standin/files/metadata.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace standin
{

namespace
{

constexpr std::size_t usualListSize = 1024, largestList = 65536, largestValue = 65536;   // the last two are the kernel's own
constexpr std::string_view ownPrefix = "user.zerb.";   // notes about this very file, such as where it goes in an exchange

bool keepsAttributes(const Object &source, const Volume &volume)
{
    return volume.hasAttributes && source.status.isRegular();
}

bool means(int failure, std::initializer_list<int> errors)
{
    return std::find(errors.begin(), errors.end(), -failure) != errors.end();
}

// Whoever may read the file may read what it has: what cannot be read would be lost.
int listNames(int descriptor, std::vector<char> &list)
{
    list.resize(usualListSize);
    ssize_t size = linux_calls::listAttributesOf(descriptor, list);
    if (size == -ERANGE)
    {
        list.resize(largestList);
        size = linux_calls::listAttributesOf(descriptor, list);
    }
    list.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return size == -EOPNOTSUPP ? 0 : static_cast<int>(std::min<ssize_t>(size, 0));
}

int readValue(int descriptor, const std::string &name, std::vector<CopiedMetadata::Attribute> &attributes)
{
    std::vector<std::uint8_t> value(1024);
    ssize_t size = linux_calls::getAttributeOf(descriptor, name.c_str(), value);
    if (size == -ERANGE)
    {
        value.resize(largestValue);
        size = linux_calls::getAttributeOf(descriptor, name.c_str(), value);
    }
    if (size < 0)
        return size == -ENODATA ? 0 : static_cast<int>(size);   // somebody has removed it meanwhile
    value.resize(static_cast<std::size_t>(size));
    const bool isOurs = name == sharedAttributeName || name == ownAttributeName;
    attributes.insert(isOurs ? attributes.begin() : attributes.end(), {name, std::move(value), isOurs});
    return 0;
}

// The attributes that everybody may have. `hasNotes` says that there are notes about this very file, which are not for the copy.
int readAttributeValues(int descriptor, std::vector<CopiedMetadata::Attribute> &attributes, bool &hasNotes)
{
    std::vector<char> list;
    int failure = listNames(descriptor, list);
    for (std::size_t start = 0; failure == 0 && start < list.size();)
    {
        const std::string name(list.data() + start, ::strnlen(list.data() + start, list.size() - start));
        start += name.size() + 1;
        hasNotes |= name.starts_with(ownPrefix);
        if (name.starts_with("user.") && !name.starts_with(ownPrefix))
            failure = readValue(descriptor, name, attributes);
    }
    return failure;
}

OSErr readSidecar(const Object &source, CopiedMetadata &metadata)
{
    if (source.sidecarIsAbsent)
        return noErr;
    switch (openSidecar({source.folder->number(), source.name, source.status}, false, metadata.sidecar))
    {
    case SidecarState::good: metadata.hasSidecar = true; return noErr;
    case SidecarState::unreadable: return afpAccessDenied;
    case SidecarState::failing: return metadata.sidecar.result();
    default: return noErr;
    }
}

CopiedMetadata::Attribute *findAttribute(CopiedMetadata &metadata, std::string_view name)
{
    auto &all = metadata.attributes;
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto &each) { return each.name == name; });
    return found == all.end() ? nullptr : &*found;
}

void setOurs(CopiedMetadata &metadata, const char *name, std::span<const std::uint8_t> value)
{
    CopiedMetadata::Attribute *present = findAttribute(metadata, name);
    if (!present)
        present = &*metadata.attributes.insert(metadata.attributes.begin(), {name, {}, true});
    present->value.assign(value.begin(), value.end());
}

std::optional<SharedAttribute> sharedIn(CopiedMetadata &metadata)
{
    SharedAttribute shared;
    const CopiedMetadata::Attribute *present = findAttribute(metadata, sharedAttributeName);
    return present && acceptSharedAttribute(present->value, shared) ? std::optional(shared) : std::nullopt;
}

// --- as it is -------------------------------------------------------------------------------------------------------------------------------

// The birth of the copy is today. A file that has metadata of ours or of a Macintosh has had its date of creation as one of them all along; a plain file
// stays plain.
void keepCreationDate(const Object &source, CopiedMetadata &metadata, std::optional<SharedAttribute> &shared)
{
    const CopiedMetadata::Attribute *present = findAttribute(metadata, ownAttributeName);
    OwnRecord own = present ? parseOwnRecord(present->value).value_or(OwnRecord{}) : OwnRecord{};
    const bool isPlain = !present && !shared && !metadata.hasSidecar;
    const bool isKnown = own.creationDate || (shared && sharedDates(*shared).creation != unknownSidecarDate);
    if (isPlain || isKnown || !source.status.hasBirth)
        return;
    own.creationDate = dateFromLinux(source.status.birth);
    setOurs(metadata, ownAttributeName, buildOwnRecord(own));
    if (!shared)
        return;
    SidecarDates dates = sharedDates(*shared);
    dates.creation = sidecarFromDate(*own.creationDate);
    setSharedDates(*shared, dates);
}

void takeAsItIs(const Object &source, bool keepsAttributesThere, CopiedMetadata &metadata)
{
    metadata.plan.isWanted = metadata.plan.asItIs = metadata.hasSidecar;
    if (!keepsAttributesThere)
        return;
    std::optional<SharedAttribute> shared = sharedIn(metadata);
    keepCreationDate(source, metadata, shared);
    if (!shared)
        return;
    clearPrivateEntries(*shared);
    setOurs(metadata, sharedAttributeName, *shared);
}

// --- said anew ------------------------------------------------------------------------------------------------------------------------------

SidecarDates datesOf(const Object &source, const OwnRecord &own)
{
    const auto orUnknown = [](const std::optional<UTCDateTime> &date) { return date ? sidecarFromDate(*date) : unknownSidecarDate; };
    return {orUnknown(own.creationDate), sidecarFromDate(dateFromLinux(source.status.modification)), orUnknown(own.backupDate),
            unknownSidecarDate};
}

bool saysNothing(const Metadata &all)
{
    return all.finderInfo == FinderBytes{} && !all.own.creationDate && !all.own.backupDate && !all.own.locked;
}

template <std::size_t Size>
SidecarPiece pieceOf(std::uint32_t id, const std::array<std::uint8_t, Size> &bytes)
{
    return {id, {bytes.begin(), bytes.end()}};
}

void sayInAttributes(const Object &source, const Metadata &all, CopiedMetadata &metadata)
{
    SharedAttribute shared = sharedIn(metadata).value_or(emptySharedAttribute());
    clearPrivateEntries(shared);
    setSharedFinderInfo(shared, all.finderInfo);
    setSharedLock(shared, all.own.locked);
    setSharedDates(shared, datesOf(source, all.own));
    if (!saysNothing(all) || findAttribute(metadata, sharedAttributeName))
        setOurs(metadata, sharedAttributeName, shared);
    OwnRecord own = all.own;
    own.finderInfoWasShared |= metadata.plan.isWanted && all.finderInfo != FinderBytes{};
    if (!own.isDefault() || findAttribute(metadata, ownAttributeName))
        setOurs(metadata, ownAttributeName, buildOwnRecord(own));
}

// Where attributes say the rest, the sidecar has the form that everybody opens, and others' entries. The lock alone needs one too.
void planSidecarBesideAttributes(const Metadata &all, bool saidInSidecar, CopiedMetadata &metadata)
{
    SidecarPlan &plan = metadata.plan;
    if (saidInSidecar)
        plan.leftOut = {kFileDatesEntry, kMacintoshFileInfoEntry, kOwnEntry};
    plan.pieces = {pieceOf(kFinderInfoEntry, all.finderInfo)};
    const auto &entries = metadata.sidecar.layout.entries;
    const bool hasMore = std::any_of(entries.begin(), entries.end(), [&](const SidecarEntry &entry) {
        const bool isLeftOut = std::find(plan.leftOut.begin(), plan.leftOut.end(), entry.id) != plan.leftOut.end();
        return entry.id == kResourceForkEntry ? metadata.sidecar.forkLength() > 0
               : entry.id == kFinderInfoEntry ? entry.length > finderInfoSize
                                              : !isLeftOut;
    });
    plan.isWanted = all.own.locked || (metadata.hasSidecar && hasMore);
}

void sayInSidecar(const Object &source, const Metadata &all, CopiedMetadata &metadata)
{
    SidecarPlan &plan = metadata.plan;
    OwnRecord own = all.own;
    own.finderInfoWasShared = false;
    metadata.attributes.clear();   // others' attributes have no place there
    plan.isWanted = metadata.hasSidecar || !own.isDefault() || all.finderInfo != FinderBytes{};
    plan.pieces = {pieceOf(kFinderInfoEntry, all.finderInfo)};
    if (own.isDefault())
        return;
    std::array<std::uint8_t, 16> dates{};
    std::array<std::uint8_t, 4> lock{};
    writeSidecarDates(dates, datesOf(source, own));
    if (metadata.hasSidecar)
        metadata.sidecar.read(kMacintoshFileInfoEntry, lock);   // its other bits are kept
    writeMacintoshLock(lock, own.locked);
    plan.pieces.push_back(pieceOf(kFileDatesEntry, dates));
    plan.pieces.push_back(pieceOf(kMacintoshFileInfoEntry, lock));
    plan.pieces.push_back(pieceOf(kOwnEntry, buildOwnRecord(own)));
}

void sayAnew(const Object &source, bool attributesHere, bool attributesThere, CopiedMetadata &metadata)
{
    Metadata all;
    readMetadata(source, kEveryPart, all);
    const bool isPlain = saysNothing(all) && all.own.isDefault() && !metadata.hasSidecar;
    if (!isPlain && !all.own.creationDate)
        all.own.creationDate = creationDateOf(source, all.own);
    if (!attributesThere)
        return sayInSidecar(source, all, metadata);
    planSidecarBesideAttributes(all, !attributesHere, metadata);
    if (!isPlain || findAttribute(metadata, ownAttributeName) || findAttribute(metadata, sharedAttributeName))
        sayInAttributes(source, all, metadata);
}

}   // namespace

OSErr readCopiedMetadata(const Object &source, int descriptor, const Volume &target, CopiedMetadata &metadata)
{
    bool hasNotes = false;
    const bool attributesHere = keepsAttributes(source, *source.volume), attributesThere = keepsAttributes(source, target);
    if (attributesHere)
        if (const int failure = readAttributeValues(descriptor, metadata.attributes, hasNotes))
            return resultFromErrno(-failure);
    if (OSErr result = readSidecar(source, metadata))
        return result;
    if (attributesHere == attributesThere && !hasNotes)
        takeAsItIs(source, attributesThere, metadata);
    else
        sayAnew(source, attributesHere, attributesThere, metadata);
    return noErr;
}

int writeAttributes(const CopiedMetadata &metadata, int copy)
{
    for (const CopiedMetadata::Attribute &attribute : metadata.attributes)
    {
        const int failure = linux_calls::setAttributeOf(copy, attribute.name.c_str(), attribute.value);
        const bool hasNoRoom = means(failure, {ENOSPC, E2BIG, ERANGE, EOPNOTSUPP, EPERM, EDQUOT});
        if (failure && (attribute.isOurs || !hasNoRoom))
            return failure;
    }
    return 0;
}

}   // namespace standin
