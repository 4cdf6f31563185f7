#include "standin/files/names.h"

#include "standin/text/system_encoding.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace standin
{

namespace
{

constexpr std::size_t longestUnicodeName = 255;
constexpr UniChar firstRawUnit = 0xDC80;   // a byte that is no text: 0xDC00 + byte, and such bytes are 0x80 and up
constexpr UniChar lastRawUnit = 0xDCFF;
constexpr std::size_t encodedSurrogateSize = 3;

bool isAsciiByte(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

bool isRawUnit(UChar32 character)
{
    return character >= firstRawUnit && character <= lastRawUnit;
}

UniChar rawUnit(char byte)
{
    return static_cast<UniChar>(0xDC00 + static_cast<unsigned char>(byte));
}

// ':' parts the names of a path on one side, '/' on the other, so the two change places.
UChar32 separatorsExchanged(UChar32 character)
{
    if (character == ':')
        return '/';
    if (character == '/')
        return ':';
    return character;
}

// The surrogate that the first three bytes encode, as UTF-8 would if it allowed that; 0 if they encode none.
UniChar encodedSurrogate(std::string_view bytes)
{
    if (bytes.size() < encodedSurrogateSize)
        return 0;
    const auto *front = reinterpret_cast<const std::uint8_t *>(bytes.data());
    const unsigned first = front[0], second = front[1], third = front[2];
    if (first != 0xED || second < 0xA0 || second > 0xBF || third < 0x80 || third > 0xBF)
        return 0;
    return static_cast<UniChar>(0xD000 | (second & 0x3F) << 6 | (third & 0x3F));
}

void appendUnit(HFSUniStr255 &name, UniChar unit)
{
    name.unicode[name.length++] = unit;
}

// Leading surrogates at the end would make pairs with a trailing one that follows: their bytes become raw units instead.
// These are trailing surrogates themselves, so a whole run of leading ones has to go.
void spellOutLeadingSurrogates(HFSUniStr255 &name)
{
    UInt16 runStart = name.length;
    while (runStart > 0 && U16_IS_LEAD(name.unicode[runStart - 1]))
        --runStart;
    const std::u16string run(name.unicode + runStart, name.unicode + name.length);
    name.length = runStart;
    for (char16_t surrogate : run)
    {
        appendUnit(name, rawUnit('\xED'));
        appendUnit(name, static_cast<UniChar>(0xDC80 | (surrogate >> 6 & 0x3F)));
        appendUnit(name, static_cast<UniChar>(0xDC80 | (surrogate & 0x3F)));
    }
}

void appendLoneSurrogate(HFSUniStr255 &name, UniChar surrogate)
{
    if (U16_IS_TRAIL(surrogate))
        spellOutLeadingSurrogates(name);
    appendUnit(name, surrogate);
}

void appendCharacter(HFSUniStr255 &name, UChar32 character)
{
    if (U_IS_SUPPLEMENTARY(character))
    {
        appendUnit(name, U16_LEAD(character));
        appendUnit(name, U16_TRAIL(character));
    }
    else
        appendUnit(name, static_cast<UniChar>(separatorsExchanged(character)));
}

// Takes one character, one encoded surrogate or one raw byte from the front. Gives the number of bytes, which is at least that of the units.
std::size_t takeFront(std::string_view bytes, HFSUniStr255 &name)
{
    const auto *front = reinterpret_cast<const std::uint8_t *>(bytes.data());
    std::int32_t taken = 0;
    UChar32 character;
    U8_NEXT(front, taken, static_cast<std::int32_t>(bytes.size()), character);
    if (character >= 0)
    {
        appendCharacter(name, character);
        return static_cast<std::size_t>(taken);
    }
    UniChar surrogate = encodedSurrogate(bytes);
    if (surrogate != 0 && !isRawUnit(surrogate))
    {
        appendLoneSurrogate(name, surrogate);
        return encodedSurrogateSize;
    }
    appendLoneSurrogate(name, rawUnit(bytes.front()));
    return 1;
}

// The bytes of a name of at most 255 units, whatever they are. This is the reverse of unicodeFromDiskName for every name that comes from there.
std::string bytesOfUnits(const UniChar *units, std::size_t count)
{
    std::uint8_t bytes[U8_MAX_LENGTH * longestUnicodeName];
    std::size_t length = 0;
    for (std::size_t index = 0; index < count;)
    {
        UChar32 character;
        U16_NEXT(units, index, count, character);
        character = separatorsExchanged(character);
        if (isRawUnit(character))
            bytes[length++] = static_cast<std::uint8_t>(character - 0xDC00);
        else
            U8_APPEND_UNSAFE(bytes, length, character);
    }
    return std::string(reinterpret_cast<const char *>(bytes), length);
}

bool comesBack(const std::string &bytes, const UniChar *units, std::size_t count)
{
    HFSUniStr255 name;
    unicodeFromDiskName(bytes, name);
    return name.length == count && std::equal(units, units + count, name.unicode);
}

bool isAsciiText(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), isAsciiByte);
}

OSErr diskNameFromText(std::u16string_view text, std::string &diskName)
{
    const std::vector<UniChar> units(text.begin(), text.end());
    return diskNameFromUnicode(units.data(), units.size(), diskName);
}

void addCandidate(std::u16string_view text, std::vector<std::string> &diskNames)
{
    std::string diskName;
    if (diskNameFromText(text, diskName) == noErr && std::find(diskNames.begin(), diskNames.end(), diskName) == diskNames.end())
        diskNames.push_back(std::move(diskName));
}

// False if the bytes are no text of the system's encoding.
bool unicodeFromPascal(ConstStr255Param name, std::vector<UniChar> &units)
{
    std::u16string unicode;
    if (!unicodeFromSystemText(std::string_view(reinterpret_cast<const char *>(name + 1), name[0]), unicode))
        return false;
    units.assign(unicode.begin(), unicode.end());
    return true;
}

}   // namespace

void unicodeFromDiskName(std::string_view diskName, HFSUniStr255 &name)
{
    const std::string_view bytes = diskName.substr(0, longestDiskName);
    std::size_t index = 0;
    for (; index < bytes.size() && isAsciiByte(bytes[index]); ++index)
        name.unicode[index] = static_cast<UniChar>(separatorsExchanged(bytes[index]));
    name.length = static_cast<UInt16>(index);
    while (index < bytes.size())
        index += takeFront(bytes.substr(index), name);
}

OSErr diskNameFromUnicode(const UniChar *units, std::size_t count, std::string &diskName)
{
    if (units == nullptr || count == 0)
        return errFSMissingName;
    if (count > longestUnicodeName)
        return errFSNameTooLong;
    if (std::any_of(units, units + count, [](UniChar unit) { return unit == ':' || unit == 0; }))
        return bdNamErr;
    std::string bytes = bytesOfUnits(units, count);
    if (bytes == "." || bytes == "..")
        return bdNamErr;
    if (bytes.size() > longestDiskName)
        return errFSNameTooLong;
    if (!isAsciiText(bytes) && !comesBack(bytes, units, count))
        return bdNamErr;
    diskName = std::move(bytes);
    return noErr;
}

OSErr storedNameFromUnicode(const UniChar *units, std::size_t count, std::string &diskName)
{
    std::string exact;
    OSErr result = diskNameFromUnicode(units, count, exact);
    bool mayCompose = result == noErr ? !isAsciiText(exact) : result == errFSNameTooLong && count <= longestUnicodeName;
    const std::u16string text(units, mayCompose ? units + count : units);
    if (!canCompose(text))
        return paramErr;
    if (mayCompose && diskNameFromText(composed(text), diskName) == noErr)
        return noErr;
    if (result == noErr)
        diskName = std::move(exact);
    return result;
}

OSErr lookupNamesFromUnicode(const UniChar *units, std::size_t count, std::vector<std::string> &diskNames)
{
    std::string exact;
    OSErr result = diskNameFromUnicode(units, count, exact);
    bool hasOtherForms = result == noErr ? !isAsciiText(exact) : result == errFSNameTooLong && count <= longestUnicodeName;
    std::vector<std::string> found;
    if (result == noErr)
        found.push_back(std::move(exact));
    if (hasOtherForms)
    {
        const std::u16string text(units, units + count);
        if (!canCompose(text) || !canDecompose(text))
            return paramErr;
        addCandidate(composed(text), found);
        addCandidate(decomposed(text), found);
    }
    if (found.empty())
        return result;
    diskNames = std::move(found);
    return noErr;
}

OSErr lookupNamesFromPascal(ConstStr255Param name, std::vector<std::string> &diskNames)
{
    std::vector<UniChar> units;
    if (!unicodeFromPascal(name, units))
        return bdNamErr;
    return lookupNamesFromUnicode(units.data(), units.size(), diskNames);
}

OSErr storedNameFromPascal(ConstStr255Param name, std::string &diskName)
{
    std::vector<UniChar> units;
    if (!unicodeFromPascal(name, units))
        return bdNamErr;
    return storedNameFromUnicode(units.data(), units.size(), diskName);
}

std::string sidecarNameOf(std::string_view diskName)
{
    std::string name;
    name.reserve(diskName.size() + 2);
    return name.append("._").append(diskName);
}

bool hasRoomForSidecar(std::string_view diskName)
{
    return diskName.size() + 2 <= longestDiskName;
}

bool looksLikeSidecar(std::string_view diskName)
{
    return diskName.size() > 2 && diskName.starts_with("._");
}

}   // namespace standin
