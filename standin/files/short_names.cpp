// The short forms of names.h: names for an FSSpec or a parameter block.
#include "standin/files/names.h"

#include "standin/text/system_encoding.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace standin
{

namespace
{

constexpr std::size_t longestExtension = 5;   // with its dot

// A name that needs no conversion but that of its separators, as most do. Other bytes of ASCII go the long way, the backslash among them: its
// code is the yen sign's in Mac Japanese.
bool isPlainAsciiName(std::string_view diskName)
{
    bool isPrintable =
        std::all_of(diskName.begin(), diskName.end(), [](char byte) { return byte >= ' ' && byte <= '~' && byte != '/' && byte != '\\'; });
    return isPrintable && !diskName.empty() && diskName.size() <= longestShortName && diskName != "." && diskName != "..";
}

void copyToPascal(std::string_view text, Str63 name)
{
    name[0] = static_cast<unsigned char>(text.size());
    std::memcpy(name + 1, text.data(), text.size());
}

std::u16string composedNameOf(std::string_view diskName)
{
    HFSUniStr255 name;
    unicodeFromDiskName(diskName, name);
    return composed(std::u16string(name.unicode, name.unicode + name.length));
}

bool findsAgain(ConstStr255Param name, std::string_view diskName)
{
    std::vector<std::string> candidates;
    return lookupNamesFromPascal(name, candidates) == noErr &&
           std::find(candidates.begin(), candidates.end(), diskName) != candidates.end();
}

// FNV-1a with 64 bits, its bits then mixed so that the first digits depend on every byte.
// Users see these digits and scripts may hold them: this never changes.
std::uint64_t stableHash(std::string_view bytes)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    hash = (hash ^ hash >> 33) * 0xFF51AFD7ED558CCD;
    hash = (hash ^ hash >> 33) * 0xC4CEB9FE1A85EC53;
    return hash ^ hash >> 33;
}

// More digits continue fewer ones.
std::string hashDigits(std::string_view bytes, int digits)
{
    const std::uint64_t hash = stableHash(bytes);
    std::string text;
    for (int digit = 0; digit < digits; ++digit)
        text.push_back("0123456789ABCDEF"[hash >> (60 - 4 * digit) & 0xF]);
    return text;
}

bool isHashDigit(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F');
}

// Where the last dot stands, if it has something before it and a little behind it; else the end of the text.
template <typename Text>
std::size_t extensionStart(const Text &text)
{
    const std::size_t dot = text.rfind('.');
    bool isExtension = dot != Text::npos && dot > 0 && dot + 1 < text.size() && text.size() - dot <= longestExtension;
    return isExtension ? dot : text.size();
}

// The extension in the system's encoding, or nothing if it is to be dropped.
std::string shortExtension(std::u16string_view name)
{
    std::string extension;
    bool isText = systemTextFromUnicode(name.substr(extensionStart(name)), extension) && extension.size() <= longestExtension;
    return isText && extension.find_first_of(std::string_view(":\0", 2)) == std::string::npos ? extension : std::string();
}

// As many characters as fit into `length` bytes of the system's encoding, '_' for each that it lacks or that no name may hold.
std::string shortBeginning(std::u16string_view name, std::size_t length)
{
    std::string beginning;
    for (std::size_t next = 0; next < name.size();)
    {
        const std::size_t start = next;
        UChar32 character;
        U16_NEXT(name.data(), next, name.size(), character);
        std::string code = "_";
        if (character != 0 && character != ':')
            systemTextFromUnicode(name.substr(start, next - start), code);
        if (code.size() > length - beginning.size())
            break;
        beginning += code;
    }
    return beginning;
}

}   // namespace

bool plainShortName(std::string_view diskName, Str63 name)
{
    if (isPlainAsciiName(diskName))
    {
        copyToPascal(diskName, name);
        std::replace(name + 1, name + 1 + name[0], ':', '/');
        return true;
    }
    std::string text;
    if (diskName.empty() || !systemTextFromUnicode(composedNameOf(diskName), text) || text.size() > longestShortName)
        return false;
    Str63 attempt;
    copyToPascal(text, attempt);
    if (!findsAgain(attempt, diskName))
        return false;
    std::memcpy(name, attempt, 1 + text.size());
    return true;
}

void hashedShortName(std::string_view diskName, int digits, Str63 name)
{
    const std::string hash = '#' + hashDigits(diskName, std::clamp(digits, fewestHashDigits, mostHashDigits));
    const std::u16string whole = composedNameOf(diskName);
    const std::string extension = shortExtension(whole);
    const std::u16string_view stem = std::u16string_view(whole).substr(0, extension.empty() ? whole.size() : extensionStart(whole));
    const std::string beginning = shortBeginning(stem, longestShortName - hash.size() - extension.size());
    copyToPascal(beginning + hash + extension, name);
}

int hashDigitsOf(ConstStr255Param name)
{
    const std::string_view text(reinterpret_cast<const char *>(name + 1), name[0]);
    if (text.size() > longestShortName)
        return 0;
    const std::size_t end = extensionStart(text);
    std::size_t start = end;
    while (start > 0 && isHashDigit(text[start - 1]))
        --start;
    const std::size_t digits = end - start;
    bool isHashed = start >= 2 && text[start - 1] == '#' && digits >= fewestHashDigits && digits <= mostHashDigits;
    return isHashed ? static_cast<int>(digits) : 0;
}

}   // namespace standin
