#include "standin/files/attribute_format.h"

#include "standin/files/dates.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr std::uint32_t attributeMagic = 0x00051607;   // the same container as a sidecar
constexpr std::uint32_t attributeVersion = 0x00020000;
constexpr std::size_t versionAt = 4;
constexpr std::size_t countAt = 24;

struct SharedEntry
{
    std::uint32_t id;
    std::uint32_t offset;
    std::uint32_t room;
    std::uint32_t shortest;   // besides `room`, the lengths that others write
    bool anyLengthBetween;
    std::uint32_t lengthWhenNew;
};

// The published table, in its order. A reader that finds anything else refuses the whole attribute.
constexpr SharedEntry sharedEntries[] = {
    {4, 154, 200, 0, true, 0},           // comment
    {8, 354, 16, 16, false, 16},         // dates
    {9, 122, 32, 32, false, 32},         // Finder information
    {14, 370, 4, 4, false, 4},           // file server's attributes
    {0x80444556, 374, 8, 0, false, 0},   // "DEV": device
    {0x80494E4F, 382, 8, 0, false, 0},   // "INO": inode
    {0x8053594E, 390, 8, 0, false, 0},   // "SYN": stamp
    {0x8053567E, 398, 4, 0, false, 0},   // "SV~": ID
};
constexpr std::size_t datesAt = 354;
constexpr std::size_t finderInfoAt = 122;
constexpr std::size_t serverAttributesAt = 370;

// No-write, no-rename and no-delete: a lock is all three together, because each has another meaning alone.
constexpr std::uint16_t serverLockBits = 0x0020 | 0x0080 | 0x0100;
constexpr std::uint8_t macintoshLockBit = 0x01;

constexpr std::uint32_t ownTag = 0x5A455242;   // "ZERB"
constexpr std::uint8_t ownVersion = 1;
constexpr std::uint8_t lockedFlag = 0x01;
constexpr std::uint8_t hintFlag = 0x02;
constexpr std::uint8_t creationFlag = 0x04;
constexpr std::uint8_t backupFlag = 0x08;
constexpr std::uint8_t finderInfoWasSharedFlag = 0x10;
constexpr std::uint8_t blankAccessFlag = 0x20;

// Where the fields of our own record stand.
constexpr std::size_t ownVersionAt = 4;
constexpr std::size_t ownFlagsAt = 5;
constexpr std::size_t ownHintAt = 8;
constexpr std::size_t ownCreationAt = 12;
constexpr std::size_t ownBackupAt = 20;

std::size_t descriptorAt(std::size_t index)
{
    return sidecarHeaderSize + index * sidecarDescriptorSize;
}

bool acceptsLength(const SharedEntry &entry, std::uint32_t length)
{
    if (entry.anyLengthBetween)
        return length >= entry.shortest && length <= entry.room;
    return length == entry.shortest || length == entry.room;
}

bool isPublishedDescriptor(const SharedEntry &entry, const std::uint8_t *bytes)
{
    return readBig32(bytes) == entry.id && readBig32(bytes + 4) == entry.offset && acceptsLength(entry, readBig32(bytes + 8));
}

UTCDateTime readDate(const std::uint8_t *bytes)
{
    UTCDateTime date = {};
    date.highSeconds = readBig16(bytes);
    date.lowSeconds = readBig32(bytes + 2);
    date.fraction = readBig16(bytes + 6);
    return date;
}

void writeDate(std::uint8_t *bytes, const UTCDateTime &date)
{
    writeBig16(bytes, date.highSeconds);
    writeBig32(bytes + 2, static_cast<std::uint32_t>(date.lowSeconds));
    writeBig16(bytes + 6, date.fraction);
}

std::span<const std::uint8_t, 16> datesOf(const SharedAttribute &attribute)
{
    return std::span(attribute).subspan<datesAt, 16>();
}

std::span<const std::uint8_t, 4> serverAttributesOf(const SharedAttribute &attribute)
{
    return std::span(attribute).subspan<serverAttributesAt, 4>();
}

}   // namespace

SharedAttribute emptySharedAttribute()
{
    SharedAttribute attribute = {};
    writeBig32(attribute.data(), attributeMagic);
    writeBig32(attribute.data() + versionAt, attributeVersion);
    writeBig16(attribute.data() + countAt, static_cast<std::uint16_t>(std::size(sharedEntries)));
    std::uint8_t *descriptor = attribute.data() + descriptorAt(0);
    for (const SharedEntry &entry : sharedEntries)
    {
        writeBig32(descriptor, entry.id);
        writeBig32(descriptor + 4, entry.offset);
        writeBig32(descriptor + 8, entry.lengthWhenNew);
        descriptor += sidecarDescriptorSize;
    }
    setSharedDates(attribute, {unknownSidecarDate, unknownSidecarDate, unknownSidecarDate, unknownSidecarDate});
    return attribute;
}

bool acceptSharedAttribute(std::span<const std::uint8_t> bytes, SharedAttribute &attribute)
{
    if (bytes.size() != sharedAttributeSize)
        return false;
    if (readBig32(bytes.data()) != attributeMagic || readBig32(bytes.data() + versionAt) != attributeVersion)
        return false;
    if (readBig16(bytes.data() + countAt) != std::size(sharedEntries))
        return false;
    for (std::size_t index = 0; index < std::size(sharedEntries); ++index)
        if (!isPublishedDescriptor(sharedEntries[index], bytes.data() + descriptorAt(index)))
            return false;
    std::copy(bytes.begin(), bytes.end(), attribute.begin());
    return true;
}

void clearPrivateEntries(SharedAttribute &attribute)
{
    for (std::size_t i = 0; i < std::size(sharedEntries); ++i)
    {
        const SharedEntry &entry = sharedEntries[i];
        if (!isPrivateEntry(entry.id))
            continue;
        writeBig32(attribute.data() + descriptorAt(i) + 8, entry.lengthWhenNew);
        std::fill_n(attribute.begin() + entry.offset, entry.room, std::uint8_t{0});
    }
}

FinderBytes sharedFinderInfo(const SharedAttribute &attribute)
{
    FinderBytes info;
    std::copy_n(attribute.begin() + finderInfoAt, info.size(), info.begin());
    return info;
}

void setSharedFinderInfo(SharedAttribute &attribute, const FinderBytes &info)
{
    std::copy(info.begin(), info.end(), attribute.begin() + finderInfoAt);
}

SidecarDates sharedDates(const SharedAttribute &attribute)
{
    return readSidecarDates(datesOf(attribute));
}

void setSharedDates(SharedAttribute &attribute, const SidecarDates &dates)
{
    writeSidecarDates(std::span(attribute).subspan<datesAt, 16>(), dates);
}

bool sharedLock(const SharedAttribute &attribute)
{
    return readAFPLock(serverAttributesOf(attribute));
}

void setSharedLock(SharedAttribute &attribute, bool locked)
{
    writeAFPLock(std::span(attribute).subspan<serverAttributesAt, 4>(), locked);
}

SidecarDates readSidecarDates(std::span<const std::uint8_t, 16> bytes)
{
    const auto dateAt = [&](std::size_t offset) { return static_cast<std::int32_t>(readBig32(bytes.data() + offset)); };
    return {dateAt(0), dateAt(4), dateAt(8), dateAt(12)};
}

void writeSidecarDates(std::span<std::uint8_t, 16> bytes, const SidecarDates &dates)
{
    writeBig32(bytes.data(), static_cast<std::uint32_t>(dates.creation));
    writeBig32(bytes.data() + 4, static_cast<std::uint32_t>(dates.modification));
    writeBig32(bytes.data() + 8, static_cast<std::uint32_t>(dates.backup));
    writeBig32(bytes.data() + 12, static_cast<std::uint32_t>(dates.access));
}

bool readAFPLock(std::span<const std::uint8_t, 4> bytes)
{
    return (readBig16(bytes.data() + 2) & serverLockBits) == serverLockBits;
}

void writeAFPLock(std::span<std::uint8_t, 4> bytes, bool locked)
{
    const unsigned others = readBig16(bytes.data() + 2) & ~static_cast<unsigned>(serverLockBits);
    writeBig16(bytes.data() + 2, static_cast<std::uint16_t>(others | (locked ? serverLockBits : 0u)));
}

bool readMacintoshLock(std::span<const std::uint8_t, 4> bytes)
{
    return (bytes[3] & macintoshLockBit) != 0;
}

void writeMacintoshLock(std::span<std::uint8_t, 4> bytes, bool locked)
{
    const unsigned others = bytes[3] & ~static_cast<unsigned>(macintoshLockBit);
    bytes[3] = static_cast<std::uint8_t>(others | (locked ? macintoshLockBit : 0u));
}

bool OwnRecord::isDefault() const
{
    return !locked && !hint && !creationDate && !backupDate && !finderInfoWasShared && !blankAccess;
}

std::array<std::uint8_t, ownRecordSize> buildOwnRecord(const OwnRecord &record)
{
    std::array<std::uint8_t, ownRecordSize> bytes = {};
    unsigned flags = 0;
    writeBig32(bytes.data(), ownTag);
    bytes[ownVersionAt] = ownVersion;
    if (record.locked)
        flags |= lockedFlag;
    if (record.hint)
    {
        flags |= hintFlag;
        writeBig32(bytes.data() + ownHintAt, static_cast<std::uint32_t>(*record.hint));
    }
    if (record.creationDate)
    {
        flags |= creationFlag;
        writeDate(bytes.data() + ownCreationAt, *record.creationDate);
    }
    if (record.backupDate)
    {
        flags |= backupFlag;
        writeDate(bytes.data() + ownBackupAt, *record.backupDate);
    }
    if (record.finderInfoWasShared)
        flags |= finderInfoWasSharedFlag;
    if (record.blankAccess)
        flags |= blankAccessFlag;
    bytes[ownFlagsAt] = static_cast<std::uint8_t>(flags);
    return bytes;
}

std::optional<OwnRecord> parseOwnRecord(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < ownRecordSize || readBig32(bytes.data()) != ownTag || bytes[ownVersionAt] < ownVersion)
        return std::nullopt;
    const std::uint8_t flags = bytes[ownFlagsAt];
    OwnRecord record;
    record.locked = (flags & lockedFlag) != 0;
    if (flags & hintFlag)
        record.hint = static_cast<TextEncoding>(readBig32(bytes.data() + ownHintAt));
    if (flags & creationFlag)
        record.creationDate = readDate(bytes.data() + ownCreationAt);
    if (flags & backupFlag)
        record.backupDate = readDate(bytes.data() + ownBackupAt);
    record.finderInfoWasShared = (flags & finderInfoWasSharedFlag) != 0;
    record.blankAccess = (flags & blankAccessFlag) != 0;
    return record;
}

}   // namespace standin
