#include "standin/files/reference_format.h"

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
    char name[longestNameInReference];
};
static_assert(sizeof(Layout) == sizeof(FSRef));

std::uint64_t drawKey()
{
    std::random_device source;
    return (static_cast<std::uint64_t>(source()) << 32) | source() | 1;
}

// Mixes eight bytes into a sum; every bit of both ends up in all of it.
std::uint64_t mixIn(std::uint64_t sum, std::uint64_t word)
{
    sum = (sum ^ word) * 0x9FB21C651E98DF25u;
    return sum ^ (sum >> 29);
}

UInt32 checkSumOf(Layout layout)
{
    static const std::uint64_t key = drawKey();
    std::uint64_t words[sizeof(Layout) / 8], sum = key;
    layout.checkSum = 0;
    std::memcpy(words, &layout, sizeof words);
    for (const std::uint64_t word : words)
        sum = mixIn(sum, word);
    sum = mixIn(sum, key);
    return static_cast<UInt32>(sum >> 32);
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
    if (isLongName(name))
    {
        const std::uint64_t hash = longNameHash(name);
        std::memcpy(layout.name, &hash, sizeof hash);
    }
    else
    {
        layout.nameLength = static_cast<UInt8>(name.size());
        std::memcpy(layout.name, name.data(), name.size());
    }
    layout.checkSum = checkSumOf(layout);
    FSRef reference;
    std::memcpy(&reference, &layout, sizeof reference);
    return reference;
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
    fields.nameIsHashed = layout.nameLength == 0;
    fields.name.assign(layout.name, layout.nameLength);
    std::memcpy(&fields.nameHash, layout.name, sizeof fields.nameHash);
    return true;
}

}   // namespace standin
