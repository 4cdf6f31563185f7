#include "standin/files/reference_format.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <random>

namespace standin
{

namespace
{

struct Layout
{
    std::uint64_t inode;
    Birth time;
    UInt32 parentID;
    SInt16 volume;
    UInt16 device;
    UInt32 checkSum;
    UInt8 nameLength;
    UInt8 timeIsBirth;
    UInt16 exchanges;
    char name[longestNameInReference];
};
static_assert(sizeof(Layout) == sizeof(FSRef));

// What a check sum of 1 adds to the word that it stands in.
constexpr std::uint64_t wordOfCheckSum = std::endian::native == std::endian::little ? 1 : std::uint64_t{1} << 32;
static_assert(offsetof(Layout, checkSum) % 8 == 0);

constexpr std::size_t wordCount = sizeof(Layout) / 8;
using Keys = std::array<std::uint64_t, wordCount + 1>;   // the last one is for nothing at all

Keys drawKeys()
{
    std::random_device source;
    Keys keys;
    for (std::uint64_t &key : keys)
        key = (static_cast<std::uint64_t>(source()) << 32) | source() | 1;
    return keys;
}

const Keys &processKeys()
{
    static const Keys keys = drawKeys();
    return keys;
}

// Each word times a secret odd number, all of them added up: every bit that differs makes another upper half but for one time in 2^32, and a processor works
// the products out side by side. The check sum itself counts as 0.
UInt32 checkSumOf(const Layout &layout)
{
    const Keys &keys = processKeys();
    std::uint64_t sum = keys[wordCount] - layout.checkSum * wordOfCheckSum * keys[offsetof(Layout, checkSum) / 8];
    for (std::size_t i = 0; i < wordCount; ++i)
    {
        std::uint64_t word;
        std::memcpy(&word, reinterpret_cast<const char *>(&layout) + 8 * i, sizeof word);
        sum += word * keys[i];
    }
    return static_cast<UInt32>(sum >> 32);
}

void setName(Layout &layout, std::string_view name)
{
    if (isLongName(name))
    {
        const std::uint64_t hash = longNameHash(name);
        std::memcpy(layout.name, &hash, sizeof hash);
        return;
    }
    layout.nameLength = static_cast<UInt8>(name.size());
    std::memcpy(layout.name, name.data(), name.size());
}

}   // namespace

bool isLongName(std::string_view diskName)
{
    return diskName.size() > longestNameInReference;
}

std::uint64_t longNameHash(std::string_view diskName)
{
    std::uint64_t hash = 0xCBF29CE484222325u;   // FNV-1a
    for (const char byte : diskName)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
    return hash;
}

FSRef writeReference(const ReferenceFields &fields, std::string_view name)
{
    Layout layout{};
    layout.inode = fields.inode;
    layout.time = fields.time;
    layout.parentID = fields.parentID;
    layout.volume = fields.volume;
    layout.device = numberOfDevice(fields.device);
    layout.timeIsBirth = fields.timeIsBirth;
    layout.exchanges = fields.exchanges;
    setName(layout, name);
    layout.checkSum = checkSumOf(layout);
    FSRef reference;
    std::memcpy(&reference, &layout, sizeof reference);
    return reference;
}

void writeListedReference(const ListedFolder &folder, std::uint64_t inode, UInt16 exchanges, std::string_view name, FSRef &reference)
{
    Layout layout{};
    layout.inode = inode;
    layout.time = folder.moment;
    layout.parentID = folder.id;
    layout.volume = folder.volume;
    layout.device = folder.device;
    layout.exchanges = exchanges;
    setName(layout, name);
    layout.checkSum = checkSumOf(layout);
    std::memcpy(&reference, &layout, sizeof reference);
}

bool readReference(const FSRef &reference, ReferenceFields &fields)
{
    Layout layout;
    std::uint64_t device;
    std::memcpy(&layout, &reference, sizeof layout);
    if (layout.checkSum != checkSumOf(layout) || layout.nameLength > longestNameInReference || !deviceOfNumber(layout.device, device))
        return false;
    fields.volume = layout.volume;
    fields.parentID = layout.parentID;
    fields.device = device;
    fields.inode = layout.inode;
    fields.time = layout.time;
    fields.timeIsBirth = layout.timeIsBirth != 0;
    fields.exchanges = layout.exchanges;
    fields.nameIsHashed = layout.nameLength == 0;
    fields.name.assign(layout.name, layout.nameLength);
    std::memcpy(&fields.nameHash, layout.name, sizeof fields.nameHash);
    return true;
}

}   // namespace standin
