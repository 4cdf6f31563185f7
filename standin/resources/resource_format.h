// The format of resource files: bytes of a header and a map → what resources there are, without any disk. All integers are big-endian.
//
// Reading is liberal where real files differ: types and IDs in any order, one (type, ID) twice, rubbish in the map's copy of the header, in handles
// and in reserved bytes, no names, a list of names at the very end of the map. It is never fooled. The file is refused if its map does not lie whole
// in the fork, or the list of types or a list of references not whole in the map. A name that does not lie in the map counts as none. An entry whose
// bytes do not lie in the fork is told only when they are asked for: it does no harm to its neighbours.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace standin
{

constexpr std::size_t resourceHeaderSize = 16;
constexpr std::size_t smallestResourceMap = 30;

// The lists of a map are reached through offsets and counts of 16 bits. More bytes than this are never reached, so more need not be read.
constexpr std::size_t largestResourceMap = 1u << 20;

constexpr std::uint8_t compressedAttribute = 0x01;

// The first 16 bytes of a resource fork.
struct ResourceHeader
{
    std::uint32_t dataOffset, mapOffset, dataLength, mapLength;

    // How much of the map has to be read.
    std::size_t mapBytes() const { return mapLength < largestResourceMap ? mapLength : largestResourceMap; }
};

// Nothing if the header is cut off or its map does not lie whole in a fork of `forkSize` bytes, behind the header. The data's length is not looked at:
// every item is checked by itself, against the fork.
std::optional<ResourceHeader> parseResourceHeader(std::span<const std::uint8_t> bytes, std::uint64_t forkSize);

struct ResourceEntry
{
    ResType type;
    SInt16 id;
    std::uint8_t attributes;
    std::uint16_t nameOffset;   // in the list of names; noResourceName for none
    std::uint32_t dataOffset;   // from the start of the data
};

constexpr std::uint16_t noResourceName = 0xFFFF;

struct ResourceTypeList
{
    ResType type;
    std::vector<std::uint32_t> entries;   // their numbers in ResourceMap::entries, in the order of the file
};

// The map of one file. Looking up a resource costs the same however many there are; looking for a name goes through those of its type.
class ResourceMap
{
public:
    // `bytes` are the first mapBytes() of the map.
    static std::optional<ResourceMap> parse(std::vector<std::uint8_t> bytes);

    const std::vector<ResourceEntry> &entries() const { return entries_; }   // in the order of the file
    const std::vector<ResourceTypeList> &types() const { return types_; }    // each type once, where it comes first

    const ResourceTypeList *findType(ResType type) const;                           // null if there is none
    std::optional<std::uint32_t> find(ResType type, SInt16 id) const;               // the first of several
    std::optional<std::uint32_t> find(ResType type, std::string_view name) const;   // likewise; an empty name is no name

    // In Mac Roman, without its length byte; empty if there is none. Valid as long as the map.
    std::string_view nameOf(const ResourceEntry &entry) const;

private:
    bool readTypes();
    bool readReferences(ResType type, std::size_t offset, std::size_t count);
    ResourceTypeList &listOf(ResType type);

    std::vector<std::uint8_t> bytes_;
    std::size_t nameList_ = 0;
    std::vector<ResourceEntry> entries_;
    std::vector<ResourceTypeList> types_;
    std::unordered_map<ResType, std::size_t> typeNumbers_;
    std::unordered_map<std::uint64_t, std::uint32_t> entryNumbers_;   // by type and ID
};

// Where the length of an entry's item lies in a fork of so many bytes, 4 bytes of it; the item's own bytes follow. Nothing if they do not lie in the fork.
std::optional<std::uint64_t> itemPlace(const ResourceHeader &header, const ResourceEntry &entry, std::uint64_t forkSize);

// The length, from those 4 bytes. Nothing if the item does not lie whole in the fork.
std::optional<std::uint32_t> itemLength(std::span<const std::uint8_t, 4> bytes, std::uint64_t place, std::uint64_t forkSize);

// Names are equal if they differ in upper and lower case alone, letters with marks included.
bool sameResourceName(std::string_view one, std::string_view other);

// Whether data with this beginning are compressed: the attribute alone says nothing, real files have it on plain data.
bool isCompressedResource(std::uint8_t attributes, std::span<const std::uint8_t> beginning);

// Records that applications reach into have the machine's own byte order in memory: the fixed fields of 'DLOG' and 'ALRT'. Turns those of them that lie
// whole in the bytes; everything else stays as it is in the file, as do all other types. Turning twice gives the file's bytes again.
void turnResource(ResType type, std::span<std::uint8_t> bytes);

}   // namespace standin
