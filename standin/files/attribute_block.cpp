#include "standin/files/attribute_block.h"

#include "standin/files/sidecar_format.h"

#include <cstring>

namespace standin
{

namespace
{

constexpr std::size_t blockStart = finderInfoSize + 2;   // after two bytes of padding
constexpr std::size_t totalSizeField = blockStart + 8, dataStartField = blockStart + 12;
constexpr std::size_t countField = blockStart + 34, firstEntry = blockStart + 36;
constexpr std::size_t entryHeaderSize = 11;   // offset 4, length 4, flags 2, name length 1

void move(std::uint8_t *field, std::int64_t distance)
{
    writeBig32(field, static_cast<std::uint32_t>(readBig32(field) + distance));
}

// Entries stand on multiples of 4 in the file, where entry 9 itself begins at 50 or, after more descriptors, at 50 and a multiple of 12.
std::size_t nextEntry(std::size_t offset, std::size_t nameLength)
{
    constexpr std::size_t misalignment = 2;
    return ((offset + misalignment + entryHeaderSize + nameLength + 3) & ~std::size_t{3}) - misalignment;
}

}   // namespace

void moveAttributeBlock(std::span<std::uint8_t> entry, std::int64_t distance)
{
    if (entry.size() < firstEntry || std::memcmp(entry.data() + blockStart, "ATTR", 4) != 0)
        return;
    move(entry.data() + totalSizeField, distance);
    move(entry.data() + dataStartField, distance);
    std::size_t offset = firstEntry;
    for (unsigned left = readBig16(entry.data() + countField); left > 0 && offset + entryHeaderSize <= entry.size(); --left)
    {
        std::uint8_t *attribute = entry.data() + offset;
        if (readBig32(attribute) != 0)   // an empty value has offset 0
            move(attribute, distance);
        offset = nextEntry(offset, attribute[10]);
    }
}

}   // namespace standin
