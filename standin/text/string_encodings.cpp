#include "standin/text/string_encodings.h"

#include "standin/text/code_table.h"
#include "standin/text/encodings.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace standin
{

namespace
{

constexpr CFStringEncoding utf16BigEndian = 0x10000100, utf16LittleEndian = 0x14000100;
constexpr SInt32 anyMappingVersion = -1;
constexpr std::size_t mostUnits = 0x10000000;   // far beyond any path, and safe in all that counts with 32 bits

enum class Form
{
    utf8,
    utf16,
    swappedUTF16,   // its bytes are in the other order than the machine's
    coded
};

Form formOf(CFStringEncoding encoding)
{
    constexpr bool isBig = std::endian::native == std::endian::big;
    switch (encoding)
    {
    case kCFStringEncodingUTF8: return Form::utf8;
    case kCFStringEncodingUnicode: return Form::utf16;
    case utf16BigEndian: return isBig ? Form::utf16 : Form::swappedUTF16;
    case utf16LittleEndian: return isBig ? Form::swappedUTF16 : Form::utf16;
    default: return Form::coded;
    }
}

void swapBytes(std::u16string &units)
{
    for (char16_t &unit : units)
        unit = static_cast<char16_t>(unit >> 8 | unit << 8);
}

bool fromUTF8(std::string_view bytes, std::u16string &unicode)
{
    std::u16string converted(bytes.size(), u'\0');   // never more units than bytes
    const auto *codes = reinterpret_cast<const std::uint8_t *>(bytes.data());
    std::size_t length = 0;
    for (std::size_t next = 0; next < bytes.size();)
    {
        UChar32 character;
        U8_NEXT(codes, next, bytes.size(), character);
        if (character < 0)
            return false;
        U16_APPEND_UNSAFE(converted.data(), length, character);
    }
    converted.resize(length);
    unicode = std::move(converted);
    return true;
}

bool toUTF8(std::u16string_view unicode, std::string &bytes)
{
    std::string converted;
    converted.reserve(unicode.size());
    for (std::size_t next = 0; next < unicode.size();)
    {
        UChar32 character;
        std::uint8_t code[U8_MAX_LENGTH];
        std::size_t length = 0;
        U16_NEXT(unicode.data(), next, unicode.size(), character);
        if (U_IS_SURROGATE(character))
            return false;
        U8_APPEND_UNSAFE(code, length, character);
        converted.append(reinterpret_cast<const char *>(code), length);
    }
    bytes = std::move(converted);
    return true;
}

bool fromUTF16(std::string_view bytes, bool isSwapped, std::u16string &unicode)
{
    if (bytes.size() % sizeof(char16_t) != 0)
        return false;
    unicode.resize(bytes.size() / sizeof(char16_t));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char *>(unicode.data()));
    if (isSwapped)
        swapBytes(unicode);
    return true;
}

void toUTF16(std::u16string_view unicode, bool isSwapped, std::string &bytes)
{
    std::u16string units(unicode);
    if (isSwapped)
        swapBytes(units);
    bytes.assign(reinterpret_cast<const char *>(units.data()), units.size() * sizeof(char16_t));
}

// Other formats than the usual one, such as 32-bit units, are known of nothing here.
const CodeTable *tableOf(CFStringEncoding encoding)
{
    constexpr unsigned formatShift = 26;
    return encoding >> formatShift == 0 ? codeTableOf(GetTextEncodingBase(encoding)) : nullptr;
}

bool fromCodes(std::string_view bytes, CFStringEncoding encoding, std::u16string &unicode)
{
    const CodeTable *table = tableOf(encoding);
    return table != nullptr && unicodeFromCodes(*table, bytes, unicode);
}

// The converter knows what belongs together, and which letters an encoding has only apart.
bool toCodes(std::u16string_view unicode, CFStringEncoding encoding, std::string &bytes)
{
    const UnicodeMapping mapping{kCFStringEncodingUnicode, encoding, anyMappingVersion};
    UnicodeToTextInfo converter = nullptr;
    if (CreateUnicodeToTextInfo(&mapping, &converter) != noErr)
        return false;
    std::string converted(unicode.size() * 2, '\0');   // a character takes two bytes at most
    ByteCount read = 0, written = 0;
    const OSStatus result = ConvertFromUnicodeToText(converter, static_cast<ByteCount>(unicode.size() * sizeof(char16_t)),
                                                     reinterpret_cast<const UniChar *>(unicode.data()), 0, 0, nullptr, nullptr, nullptr,
                                                     static_cast<ByteCount>(converted.size()), &read, &written, converted.data());
    DisposeUnicodeToTextInfo(&converter);
    if (result != noErr)
        return false;
    converted.resize(written);
    bytes = std::move(converted);
    return true;
}

}   // namespace

bool unicodeFromBytes(std::string_view bytes, CFStringEncoding encoding, std::u16string &unicode)
{
    if (bytes.size() > mostUnits)
        return false;
    switch (formOf(encoding))
    {
    case Form::utf8: return fromUTF8(bytes, unicode);
    case Form::utf16: return fromUTF16(bytes, false, unicode);
    case Form::swappedUTF16: return fromUTF16(bytes, true, unicode);
    case Form::coded: break;
    }
    return fromCodes(bytes, encoding, unicode);
}

bool bytesFromUnicode(std::u16string_view unicode, CFStringEncoding encoding, std::string &bytes)
{
    if (unicode.size() > mostUnits)
        return false;
    switch (formOf(encoding))
    {
    case Form::utf8: return toUTF8(unicode, bytes);
    case Form::utf16: return toUTF16(unicode, false, bytes), true;
    case Form::swappedUTF16: return toUTF16(unicode, true, bytes), true;
    case Form::coded: break;
    }
    return toCodes(unicode, encoding, bytes);
}

std::size_t terminatorSize(CFStringEncoding encoding)
{
    const Form form = formOf(encoding);
    return form == Form::utf16 || form == Form::swappedUTF16 ? sizeof(char16_t) : 1;
}

}   // namespace standin
