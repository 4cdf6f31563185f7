// The sidecar format (AppleDouble): bytes ↔ entries, without any disk. All integers are big-endian.
//
// Reading is liberal: version 1 and 2, any filler, any order, holes, long entry 9, unknown entries, no entries at all. It is never fooled: every entry
// that has bytes lies inside the file, past the table and clear of the others, or the sidecar is refused.
#pragma once

#include "platform/platform.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace standin
{

enum SidecarEntryID : std::uint32_t
{
    kResourceForkEntry = 2,
    kFileInfoEntry = 7,   // version 1 only
    kFileDatesEntry = 8,
    kFinderInfoEntry = 9,
    kMacintoshFileInfoEntry = 10,
    kAFPFileInfoEntry = 14,
    kOwnEntry = 0x805A5242,   // our own record (attribute_format.h), where the disk has no attributes
};

// What file servers note of the very file that a sidecar belongs to: device, inode, stamp and ID. It is wrong for any other file.
constexpr bool isPrivateEntry(std::uint32_t id)
{
    return id == 0x80444556 || id == 0x80494E4F || id == 0x8053594E || id == 0x8053567E;
}

constexpr std::size_t sidecarHeaderSize = 26;
constexpr std::size_t sidecarDescriptorSize = 12;
constexpr std::size_t mostSidecarEntries = 64;   // more than any writer makes; a table with more is refused
constexpr std::size_t largestSidecarTable = sidecarHeaderSize + mostSidecarEntries * sidecarDescriptorSize;
constexpr std::uint32_t finderInfoSize = 32;   // the two 16-byte records

struct SidecarEntry
{
    std::uint32_t id;
    std::uint64_t offset;   // from the start of the file
    std::uint64_t length;
};

using SidecarFiller = std::array<std::uint8_t, 16>;

struct SidecarLayout
{
    std::uint32_t version = 0x00020000;   // or 0x00010000
    SidecarFiller filler = {};            // the 16 bytes in which many writers leave their name; a rewritten sidecar keeps them
    std::vector<SidecarEntry> entries;    // in table order
    const SidecarEntry *find(std::uint32_t id) const;   // null if there is none; valid as long as `entries` is not changed
};

enum class SidecarProblem
{
    none,
    notASidecar,   // wrong magic number or version, or shorter than a header
    truncated,     // the table or an entry goes past the end of the file
    badTable,      // entry 0, an entry twice, entries or the table overlapping, or more than mostSidecarEntries
};

// Reads the table from the first bytes of a sidecar; `fileSize` is the size of the whole file. `head` must hold the whole table
// (sidecarHeaderSize + 12 × entries; largestSidecarTable bytes are always enough) unless the file itself is shorter; a `head` cut off inside the table
// is `truncated`. So is every entry that goes past the end, the resource fork included: a fork that lost its end is not shown as a shorter one.
// An entry of length 0 may begin anywhere from 0 to `fileSize` and overlaps nothing. A table of 0 entries is legal.
// Where several things are wrong, what the entries say one by one (in table order) is told before what they say about each other.
// `layout` is written only if the result is `none`.
SidecarProblem parseSidecar(std::span<const std::uint8_t> head, std::uint64_t fileSize, SidecarLayout &layout);

// A resource fork that says it was left blank on purpose counts as none: exactly 286 bytes, no data, and the sentence
// "This resource fork intentionally left blank" in the header's reserved bytes.
bool isIntentionallyBlankFork(std::span<const std::uint8_t> fork);

// One small entry of a sidecar to be written anew.
struct SidecarPiece
{
    std::uint32_t id;
    std::vector<std::uint8_t> bytes;
};

// Everything of a sidecar before the fork's first byte: header (version 2, `filler`), table and pieces. Entry 9 comes first if it is among the pieces,
// then the other pieces in the given order; entry 2 with `forkLength` is the last descriptor and begins where the result ends.
// Nothing (an empty result) if the pieces make no legal table: entry 0 or 2 among them, an entry twice, mostSidecarEntries or more of them, or over 4 GiB.
std::vector<std::uint8_t> buildSidecarHead(std::span<const SidecarPiece> pieces, std::span<const std::uint8_t, 16> filler,
                                           std::uint32_t forkLength);

// Big-endian integers in byte arrays.
std::uint16_t readBig16(const std::uint8_t *bytes);
std::uint32_t readBig32(const std::uint8_t *bytes);
std::uint64_t readBig64(const std::uint8_t *bytes);
void writeBig16(std::uint8_t *bytes, std::uint16_t value);
void writeBig32(std::uint8_t *bytes, std::uint32_t value);
void writeBig64(std::uint8_t *bytes, std::uint64_t value);

// The two Finder records in the machine's own byte order, as FSCatalogInfo holds them, ↔ the 32 big-endian bytes on disk.
// `isFolder` says which of the two shapes the bytes have. Every field changes its byte order on a little-endian machine and none on a big-endian one.
using FinderBytes = std::array<std::uint8_t, finderInfoSize>;
FinderBytes finderBytesToDisk(const UInt8 finderInfo[16], const UInt8 extendedInfo[16], bool isFolder);
void finderBytesFromDisk(const FinderBytes &disk, bool isFolder, UInt8 finderInfo[16], UInt8 extendedInfo[16]);

}   // namespace standin
