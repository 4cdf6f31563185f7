#include "standin/resources/resource_format.h"

#include "standin/files/sidecar_format.h"
#include "standin/text/encodings.h"
#include "standin/text/text_part.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace standin
{

namespace
{

// Where the fields of the map stand.
constexpr std::size_t typeListAt = 24, nameListAt = 26, fixedFieldsEnd = 28;

constexpr std::size_t typeSize = 8, referenceSize = 12;
constexpr std::uint32_t compressedBeginning = 0xA89F6572;

std::uint64_t keyOf(ResType type, SInt16 id)
{
    return std::uint64_t{type} << 16 | static_cast<std::uint16_t>(id);
}

ResourceEntry readReference(ResType type, const std::uint8_t *bytes)
{
    return {type, static_cast<SInt16>(readBig16(bytes)), bytes[4], readBig16(bytes + 2), readBig32(bytes + 4) & 0x00FFFFFF};
}

// The character of a byte without its case. Letters beyond ASCII keep theirs where the part that knows them is missing.
char32_t folded(char byte)
{
    static const CodeTable *table = codeTableOf(kTextEncodingMacRoman);
    const char16_t character = table->characterOf(static_cast<unsigned char>(byte));
    if (character < 0x80)
        return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character;
    return textPart() ? textPart()->folded(character) : character;
}

struct Field
{
    std::size_t offset, size;
};

constexpr Field dialogFields[] = {{0, 2}, {2, 2}, {4, 2}, {6, 2}, {8, 2}, {14, 4}, {18, 2}};
constexpr Field alertFields[] = {{0, 2}, {2, 2}, {4, 2}, {6, 2}, {8, 2}, {10, 2}};

std::span<const Field> turnedFields(ResType type)
{
    if (type == fourCharCode("DLOG"))
        return dialogFields;
    if (type == fourCharCode("ALRT"))
        return alertFields;
    return {};
}

}   // namespace

std::optional<ResourceHeader> parseResourceHeader(std::span<const std::uint8_t> bytes, std::uint64_t forkSize)
{
    if (bytes.size() < resourceHeaderSize)
        return std::nullopt;
    const ResourceHeader header{readBig32(bytes.data()), readBig32(bytes.data() + 4), readBig32(bytes.data() + 8),
                                readBig32(bytes.data() + 12)};
    const bool isWhole = header.mapOffset >= resourceHeaderSize && header.mapLength >= smallestResourceMap &&
                         std::uint64_t{header.mapOffset} + header.mapLength <= forkSize;
    return isWhole ? std::optional(header) : std::nullopt;
}

std::optional<ResourceMap> ResourceMap::parse(std::vector<std::uint8_t> bytes)
{
    ResourceMap map;
    if (bytes.size() < smallestResourceMap)
        return std::nullopt;
    map.bytes_ = std::move(bytes);
    map.nameList_ = readBig16(map.bytes_.data() + nameListAt);
    return map.readTypes() ? std::optional(std::move(map)) : std::nullopt;
}

bool ResourceMap::readTypes()
{
    const std::size_t list = readBig16(bytes_.data() + typeListAt);
    if (list < fixedFieldsEnd || list + 2 > bytes_.size())
        return false;
    const std::uint16_t count = static_cast<std::uint16_t>(readBig16(bytes_.data() + list) + 1);   // 0xFFFF is none
    if (count * typeSize > bytes_.size() - list - 2)
        return false;
    for (std::size_t index = 0; index < count; ++index)
    {
        const std::uint8_t *type = bytes_.data() + list + 2 + index * typeSize;
        if (!readReferences(readBig32(type), list + readBig16(type + 6), std::size_t{readBig16(type + 4)} + 1))
            return false;
    }
    return true;
}

// Lists may lie anywhere, but all together are never longer than the map: many types on one list would take time and memory without bound.
bool ResourceMap::readReferences(ResType type, std::size_t offset, std::size_t count)
{
    if (offset > bytes_.size() || count * referenceSize > bytes_.size() - offset)
        return false;
    if ((entries_.size() + count) * referenceSize > bytes_.size())
        return false;
    ResourceTypeList &list = listOf(type);
    for (std::size_t index = 0; index < count; ++index)
    {
        const auto number = static_cast<std::uint32_t>(entries_.size());
        entries_.push_back(readReference(type, bytes_.data() + offset + index * referenceSize));
        list.entries.push_back(number);
        entryNumbers_.try_emplace(keyOf(type, entries_.back().id), number);
    }
    return true;
}

ResourceTypeList &ResourceMap::listOf(ResType type)
{
    const auto [place, isNew] = typeNumbers_.try_emplace(type, types_.size());
    if (isNew)
        types_.push_back({type, {}});
    return types_[place->second];
}

const ResourceTypeList *ResourceMap::findType(ResType type) const
{
    const auto found = typeNumbers_.find(type);
    return found == typeNumbers_.end() ? nullptr : &types_[found->second];
}

std::optional<std::uint32_t> ResourceMap::find(ResType type, SInt16 id) const
{
    const auto found = entryNumbers_.find(keyOf(type, id));
    return found == entryNumbers_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::uint32_t> ResourceMap::find(ResType type, std::string_view name) const
{
    const ResourceTypeList *list = findType(type);
    if (!list || name.empty())
        return std::nullopt;
    const auto hasName = [&](std::uint32_t number) { return sameResourceName(nameOf(entries_[number]), name); };
    const auto found = std::find_if(list->entries.begin(), list->entries.end(), hasName);
    return found == list->entries.end() ? std::nullopt : std::optional(*found);
}

std::string_view ResourceMap::nameOf(const ResourceEntry &entry) const
{
    const std::size_t offset = nameList_ + entry.nameOffset;
    if (entry.nameOffset == noResourceName || offset >= bytes_.size())
        return {};
    const std::size_t length = bytes_[offset];
    if (length > bytes_.size() - offset - 1)
        return {};
    return {reinterpret_cast<const char *>(bytes_.data()) + offset + 1, length};
}

std::optional<std::uint64_t> itemPlace(const ResourceHeader &header, const ResourceEntry &entry, std::uint64_t forkSize)
{
    const std::uint64_t place = std::uint64_t{header.dataOffset} + entry.dataOffset;
    return place + 4 <= forkSize ? std::optional(place) : std::nullopt;
}

std::optional<std::uint32_t> itemLength(std::span<const std::uint8_t, 4> bytes, std::uint64_t place, std::uint64_t forkSize)
{
    const std::uint32_t length = readBig32(bytes.data());
    return length <= forkSize - place - 4 ? std::optional(length) : std::nullopt;
}

bool sameResourceName(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char a, char b) { return folded(a) == folded(b); });
}

bool isCompressedResource(std::uint8_t attributes, std::span<const std::uint8_t> beginning)
{
    return (attributes & compressedAttribute) && beginning.size() >= 4 && readBig32(beginning.data()) == compressedBeginning;
}

void turnResource(ResType type, std::span<std::uint8_t> bytes)
{
    if constexpr (std::endian::native == std::endian::big)
        return;
    for (const Field &field : turnedFields(type))
        if (field.offset + field.size <= bytes.size())
            std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(field.offset),
                         bytes.begin() + static_cast<std::ptrdiff_t>(field.offset + field.size));
}

}   // namespace standin
