#include "host/text.h"

#include "standin/standin.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace host
{

namespace
{

// One character of a byte string: `units` stands for `length` of its bytes.
struct Piece
{
    char16_t units[2];
    int unitCount;
    std::size_t length;
};

std::uint8_t byteAt(std::string_view bytes, std::size_t position)
{
    return static_cast<std::uint8_t>(bytes[position]);
}

bool isByteUnit(char16_t unit)
{
    return unit >= 0xDC80 && unit <= 0xDCFF;
}

// The code point that starts at `position` and its length, or -1 with length 1.
UChar32 codePointAt(std::string_view bytes, std::size_t position, std::size_t &length)
{
    const auto *text = reinterpret_cast<const std::uint8_t *>(bytes.data());
    auto index = static_cast<std::int32_t>(position);
    UChar32 character;
    U8_NEXT(text, index, static_cast<std::int32_t>(bytes.size()), character);
    length = character < 0 ? 1 : static_cast<std::size_t>(index) - position;
    return character < 0 ? -1 : character;
}

// The surrogate whose three-byte form starts at `position`, or 0.
char16_t encodedSurrogateAt(std::string_view bytes, std::size_t position)
{
    if (bytes.size() - position < 3 || byteAt(bytes, position) != 0xED)
        return 0;
    unsigned second = byteAt(bytes, position + 1);
    unsigned third = byteAt(bytes, position + 2);
    if (second < 0xA0 || second > 0xBF || third < 0x80 || third > 0xBF)
        return 0;
    return static_cast<char16_t>(0xD000 | (second & 0x3F) << 6 | (third & 0x3F));
}

Piece byteAlone(std::string_view bytes, std::size_t position)
{
    return {{static_cast<char16_t>(0xDC00 + byteAt(bytes, position)), 0}, 1, 1};
}

// Whether the unit that comes from `position` on is a low surrogate, which would join a high one before it. Bytes become low surrogates too, and so
// do the bytes of a high surrogate that has to be taken apart because it would join the unit behind it.
bool lowSurrogateFollows(std::string_view bytes, std::size_t position)
{
    std::size_t length;
    for (; position < bytes.size() && codePointAt(bytes, position, length) < 0; position += 3)
        if (!U16_IS_LEAD(encodedSurrogateAt(bytes, position)))
            return true;
    return false;
}

Piece pieceAt(std::string_view bytes, std::size_t position)
{
    std::size_t length;
    UChar32 character = codePointAt(bytes, position, length);
    if (character >= 0x10000)
        return {{U16_LEAD(character), U16_TRAIL(character)}, 2, length};
    if (character >= 0)
        return {{static_cast<char16_t>(character), 0}, 1, length};
    char16_t surrogate = encodedSurrogateAt(bytes, position);
    if (surrogate == 0 || isByteUnit(surrogate))
        return byteAlone(bytes, position);
    bool joinsTheNext = U16_IS_LEAD(surrogate) && lowSurrogateFollows(bytes, position + 3);
    return joinsTheNext ? byteAlone(bytes, position) : Piece{{surrogate, 0}, 1, 3};
}

void appendThreeBytes(std::string &bytes, char16_t unit)
{
    bytes += static_cast<char>(0xE0 | unit >> 12);
    bytes += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
    bytes += static_cast<char>(0x80 | (unit & 0x3F));
}

void appendCodePoint(std::string &bytes, UChar32 character)
{
    char buffer[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, character);
    bytes.append(buffer, static_cast<std::size_t>(length));
}

void appendEscape(std::string &text, const char *format, unsigned value)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, format, value);
    text += buffer;
}

void appendPrintable(std::string &text, std::string_view bytes, std::size_t position, std::size_t &length)
{
    UChar32 character = codePointAt(bytes, position, length);
    if (character < 0)
        appendEscape(text, "\\x%02X", byteAt(bytes, position));
    else if (character == '\\')
        text += "\\\\";
    else if (standin::isPlainCharacter(static_cast<char32_t>(character)))
        text += bytes.substr(position, length);
    else
        appendEscape(text, character < 0x80 ? "\\x%02X" : "\\u{%04X}", static_cast<unsigned>(character));
}

void appendJsonUnit(std::string &text, char16_t unit)
{
    if (unit == '"' || unit == '\\')
        text += {'\\', static_cast<char>(unit)};
    else if (unit == '\n')
        text += "\\n";
    else if (unit == '\t')
        text += "\\t";
    else if (unit >= 0x20 && unit < 0x7F)
        text += static_cast<char>(unit);
    else
        appendEscape(text, "\\u%04x", unit);
}

}   // namespace

std::u16string unitsFromBytes(std::string_view bytes)
{
    std::u16string units;
    units.reserve(bytes.size());
    for (std::size_t position = 0; position < bytes.size();)
    {
        Piece piece = pieceAt(bytes, position);
        units.append(piece.units, static_cast<std::size_t>(piece.unitCount));
        position += piece.length;
    }
    return units;
}

std::string bytesFromUnits(std::u16string_view units)
{
    std::string bytes;
    for (std::size_t index = 0; index < units.size(); ++index)
    {
        char16_t unit = units[index];
        if (U16_IS_LEAD(unit) && index + 1 < units.size() && U16_IS_TRAIL(units[index + 1]))
            appendCodePoint(bytes, U16_GET_SUPPLEMENTARY(unit, units[++index]));
        else if (isByteUnit(unit))
            bytes += static_cast<char>(unit - 0xDC00);
        else if (U16_IS_SURROGATE(unit))
            appendThreeBytes(bytes, unit);
        else
            appendCodePoint(bytes, unit);
    }
    return bytes;
}

std::string bytesFromName(const HFSUniStr255 &name)
{
    const std::size_t length = std::min<std::size_t>(name.length, 255);
    std::string ascii(length, '\0');
    std::size_t index = 0;
    for (; index < length && name.unicode[index] < 0x80; ++index)
        ascii[index] = static_cast<char>(name.unicode[index]);
    if (index == length)
        return ascii;
    return bytesFromUnits(std::u16string(name.unicode, name.unicode + length));
}

std::optional<HFSUniStr255> nameFromPathComponent(std::string_view component)
{
    std::u16string units = unitsFromBytes(component);
    if (units.size() > 255)
        return std::nullopt;
    HFSUniStr255 name = {};
    name.length = static_cast<UInt16>(units.size());
    for (std::size_t index = 0; index < units.size(); ++index)
        name.unicode[index] = units[index] == ':' ? UniChar('/') : static_cast<UniChar>(units[index]);
    return name;
}

std::string pathComponentFromName(const HFSUniStr255 &name)
{
    std::string component = bytesFromName(name);
    std::replace(component.begin(), component.end(), '/', ':');
    return component;
}

bool isPlainAscii(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= ' ' && byte <= '~' && byte != '\\'; });
}

std::string printable(std::string_view bytes)
{
    if (isPlainAscii(bytes))
        return std::string(bytes);
    std::string text;
    std::size_t length;
    for (std::size_t position = 0; position < bytes.size(); position += length)
        appendPrintable(text, bytes, position, length);
    return text;
}

std::size_t columnsOf(std::string_view printableText)
{
    return static_cast<std::size_t>(
        std::count_if(printableText.begin(), printableText.end(), [](char c) { return !U8_IS_TRAIL(static_cast<std::uint8_t>(c)); }));
}

std::string jsonString(std::string_view bytes)
{
    std::string text = "\"";
    for (char16_t unit : unitsFromBytes(bytes))
        appendJsonUnit(text, unit);
    return text + "\"";
}

}   // namespace host
