// The two extended attributes of a file, bytes ↔ records, without any disk.
//
// `user.org.netatalk.Metadata` is shared with the file servers that keep Finder information on Linux: exactly 402 bytes, exactly 8 entries in their order.
// `user.zerb` is our own: what the shared one has no room for.
#pragma once

#include "standin/files/sidecar_format.h"

#include <optional>

namespace standin
{

constexpr const char *sharedAttributeName = "user.org.netatalk.Metadata";
constexpr const char *ownAttributeName = "user.zerb";
constexpr std::size_t sharedAttributeSize = 402;
constexpr std::size_t ownRecordSize = 28;   // of what we write; a later version may be longer

using SharedAttribute = std::array<std::uint8_t, sharedAttributeSize>;

// Creation, modification, backup and access date as signed seconds from 2000; unknownSidecarDate where unknown.
struct SidecarDates
{
    std::int32_t creation, modification, backup, access;
};

SharedAttribute emptySharedAttribute();   // no Finder information, all dates unknown, no lock, private entries with length 0

// Takes a blob as read. False if it does not have the published layout (402 bytes, version 2, the 8 entries in order at their offsets);
// `attribute` is then untouched. The comment may have 0 to 200 bytes, each of the four private entries its full length (netatalk) or 0 (Samba).
// They, and the filler, are kept as they are.
bool acceptSharedAttribute(std::span<const std::uint8_t> bytes, SharedAttribute &attribute);

// Empties the private entries: they say to which device and inode the attribute belongs, which is wrong for a copy of the file.
void clearPrivateEntries(SharedAttribute &attribute);

FinderBytes sharedFinderInfo(const SharedAttribute &attribute);
void setSharedFinderInfo(SharedAttribute &attribute, const FinderBytes &info);

SidecarDates sharedDates(const SharedAttribute &attribute);
void setSharedDates(SharedAttribute &attribute, const SidecarDates &dates);

bool sharedLock(const SharedAttribute &attribute);             // no-write, no-rename and no-delete all set
void setSharedLock(SharedAttribute &attribute, bool locked);   // sets or clears those three, keeps the other bits

// The four dates as they stand in entry 8, of the attribute and of a sidecar alike (16 bytes).
SidecarDates readSidecarDates(std::span<const std::uint8_t, 16> bytes);
void writeSidecarDates(std::span<std::uint8_t, 16> bytes, const SidecarDates &dates);

// The lock as it stands in entry 14 (no-write, no-rename and no-delete together) and in entry 10 (one bit) of a sidecar. Writing keeps all other bits.
bool readAFPLock(std::span<const std::uint8_t, 4> bytes);
void writeAFPLock(std::span<std::uint8_t, 4> bytes, bool locked);
bool readMacintoshLock(std::span<const std::uint8_t, 4> bytes);
void writeMacintoshLock(std::span<std::uint8_t, 4> bytes, bool locked);

// Our own record, 28 bytes big-endian: "ZERB", version (1 byte, 1), flags (1 byte), 2 reserved bytes, hint (4), creation date (8), backup date (8).
// The flags say which of the values were ever set: 0x01 locked, 0x02 hint, 0x04 creation date, 0x08 backup date,
// 0x10 finderInfoWasShared, 0x20 blank access. What is not set is written as zeros and read as absent whatever its bytes say. A date is its three fields in order.
// A later version may raise the number, append bytes and use further flags: what this version does not know is ignored.
struct OwnRecord
{
    bool locked = false;
    std::optional<TextEncoding> hint;
    std::optional<UTCDateTime> creationDate;
    std::optional<UTCDateTime> backupDate;
    // The Finder information was written to the shared attribute while a sidecar held a copy. If the shared attribute is gone, a file server
    // has cleared it, and the copy no longer counts.
    bool finderInfoWasShared = false;
    bool blankAccess = false;   // of a folder: it was given the access rights of the folder that it lies in
    bool isDefault() const;     // nothing is set: nothing needs to be written
};
std::array<std::uint8_t, ownRecordSize> buildOwnRecord(const OwnRecord &record);

// Nothing if it is not such a record: under 28 bytes, another tag, or version 0.
std::optional<OwnRecord> parseOwnRecord(std::span<const std::uint8_t> bytes);

}   // namespace standin
