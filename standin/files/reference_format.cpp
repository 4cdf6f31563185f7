#include "standin/files/reference_format.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace standin
{

namespace
{

struct Layout
{
    std::uint64_t inode;
    Birth time;
    struct Place
    {
        UInt32 parentID;
        SInt16 volume;
        UInt16 device;
    } place;
    struct Marks
    {
        UInt32 checkSum;
        UInt8 nameLength;
        UInt8 timeIsBirth;
        UInt16 exchanges;
    } marks;
    char name[longestNameInReference];
};
static_assert(sizeof(Layout) == sizeof(FSRef));

// What a check sum of 1 adds to the word that it stands in.
constexpr std::uint64_t wordOfCheckSum = std::endian::native == std::endian::little ? 1 : std::uint64_t{1} << 32;

constexpr std::size_t wordCount = sizeof(Layout) / 8, placeWord = offsetof(Layout, place) / 8, marksWord = offsetof(Layout, marks) / 8,
                      nameWord = offsetof(Layout, name) / 8;
using Keys = std::array<std::uint64_t, wordCount + 1>;   // the last one is for nothing at all

Keys drawKeys()
{
    Keys keys;
    ::arc4random_buf(keys.data(), sizeof keys);   // the language's own source asks the processor for each number, and what kind it is
    for (std::uint64_t &key : keys)
        key |= 1;
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
    std::uint64_t sum = keys[wordCount] - layout.marks.checkSum * wordOfCheckSum * keys[marksWord];
    for (std::size_t i = 0; i < wordCount; ++i)
    {
        std::uint64_t word;
        std::memcpy(&word, reinterpret_cast<const char *>(&layout) + 8 * i, sizeof word);
        sum += word * keys[i];
    }
    return static_cast<UInt32>(sum >> 32);
}

// Up to eight bytes as they stand in memory, and zeros behind them.
std::uint64_t wordOf(const char *bytes, std::size_t count)
{
    std::uint64_t word = 0;
    if (count >= sizeof word)
        std::memcpy(&word, bytes, sizeof word);
    else
        std::memcpy(&word, bytes, count);
    return word;
}

// Writes a reference word by word and adds the check sum up on the way: a walk does that for each object. Words behind the name are 0 and add nothing.
void write(std::uint64_t inode, Birth time, const Layout::Place &place, Layout::Marks marks, std::string_view name, FSRef &reference)
{
    const Keys &keys = processKeys();
    std::uint64_t sum = keys[wordCount];
    const auto put = [&](std::size_t index, std::uint64_t word) {
        std::memcpy(reinterpret_cast<char *>(&reference) + 8 * index, &word, sizeof word);
        sum += word * keys[index];
    };
    std::memset(&reference, 0, sizeof reference);
    put(0, inode);
    put(1, time);
    put(placeWord, std::bit_cast<std::uint64_t>(place));
    if (isLongName(name))
        put(nameWord, longNameHash(name));
    else
        for (std::size_t done = 0; done < name.size(); done += 8)
            put(nameWord + done / 8, wordOf(name.data() + done, name.size() - done));
    marks.checkSum = 0;
    marks.nameLength = static_cast<UInt8>(isLongName(name) ? 0 : name.size());
    const auto marksBelow = std::bit_cast<std::uint64_t>(marks);
    put(marksWord, marksBelow);
    const std::uint64_t marksWithSum = marksBelow + (sum >> 32) * wordOfCheckSum;
    std::memcpy(reinterpret_cast<char *>(&reference) + 8 * marksWord, &marksWithSum, sizeof marksWithSum);
}

}   // namespace

bool isLongName(std::string_view diskName)
{
    return diskName.size() > longestNameInReference;
}

// Only this process ever sees it, so it goes in the processor's own words.
std::uint64_t longNameHash(std::string_view diskName)
{
    std::uint64_t hash = diskName.size();
    for (std::size_t done = 0; done < diskName.size(); done += 8)
    {
        hash = (hash ^ wordOf(diskName.data() + done, diskName.size() - done)) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    }
    return hash;
}

FSRef writeReference(const ReferenceFields &fields, std::string_view name)
{
    FSRef reference;
    write(fields.inode, fields.time, {fields.parentID, fields.volume, numberOfDevice(fields.device)},
          {0, 0, static_cast<UInt8>(fields.timeIsBirth), fields.exchanges}, name, reference);
    return reference;
}

void writeListedReference(const ListedFolder &folder, std::uint64_t inode, Birth birth, UInt16 exchanges, std::string_view name,
                          FSRef &reference)
{
    const bool timeIsBirth = birth != 0;
    write(inode, timeIsBirth ? birth : folder.moment, {folder.id, folder.volume, folder.device},
          {0, 0, static_cast<UInt8>(timeIsBirth), exchanges}, name, reference);
}

bool readReference(const FSRef &reference, ReferenceFields &fields)
{
    Layout layout;
    std::uint64_t device;
    std::memcpy(&layout, &reference, sizeof layout);
    if (layout.marks.checkSum != checkSumOf(layout) || layout.marks.nameLength > longestNameInReference ||
        !deviceOfNumber(layout.place.device, device))
        return false;
    fields.volume = layout.place.volume;
    fields.parentID = layout.place.parentID;
    fields.device = device;
    fields.inode = layout.inode;
    fields.time = layout.time;
    fields.timeIsBirth = layout.marks.timeIsBirth != 0;
    fields.exchanges = layout.marks.exchanges;
    fields.nameIsHashed = layout.marks.nameLength == 0;
    fields.name.assign(layout.name, layout.marks.nameLength);
    std::memcpy(&fields.nameHash, layout.name, sizeof fields.nameHash);
    return true;
}

}   // namespace standin
