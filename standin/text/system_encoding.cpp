#include "standin/text/system_encoding.h"

#include <unicode/normalizer2.h>
#include <unicode/ucnv.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace standin
{

namespace
{

constexpr char16_t replacementCharacter = 0xFFFD;
constexpr std::size_t firstNonAscii = 0x80;
constexpr std::size_t byteCount = 256;

// Both directions of the encoding, filled once. All of its characters are single UTF-16 units.
class EncodingTable
{
public:
    EncodingTable()
    {
        fillUnits();
        for (std::size_t byte = firstNonAscii; byte < byteCount; ++byte)
            bytes[byte - firstNonAscii] = {units[byte], static_cast<UInt8>(byte)};
        std::sort(bytes.begin(), bytes.end());
    }

    char16_t unitOf(UInt8 byte) const { return units[byte]; }

    bool byteOf(char16_t unit, UInt8 &byte) const
    {
        const auto *found = std::lower_bound(bytes.begin(), bytes.end(), std::pair<char16_t, UInt8>(unit, 0));
        if (found == bytes.end() || found->first != unit || unit == replacementCharacter)
            return false;
        byte = found->second;
        return true;
    }

private:
    // Without a converter the upper half has no characters: text that needs them is then refused, never changed.
    void fillUnits()
    {
        for (std::size_t byte = 0; byte < byteCount; ++byte)
            units[byte] = byte < firstNonAscii ? static_cast<char16_t>(byte) : replacementCharacter;
        UErrorCode status = U_ZERO_ERROR;
        UConverter *converter = ucnv_open("macintosh", &status);
        if (U_FAILURE(status))
            return;
        for (std::size_t byte = firstNonAscii; byte < byteCount; ++byte)
            units[byte] = converted(converter, static_cast<char>(byte));
        ucnv_close(converter);
    }

    static char16_t converted(UConverter *converter, char byte)
    {
        UErrorCode status = U_ZERO_ERROR;
        char16_t unit[4];
        std::int32_t count = ucnv_toUChars(converter, unit, 4, &byte, 1, &status);
        return U_SUCCESS(status) && count == 1 ? unit[0] : replacementCharacter;
    }

    std::array<char16_t, byteCount> units;
    std::array<std::pair<char16_t, UInt8>, byteCount - firstNonAscii> bytes;   // the upper half, sorted by character
};

const EncodingTable &encodingTable()
{
    static const EncodingTable table;
    return table;
}

// Both forms of text that stays below these are the text itself, which spares most names the work.
constexpr char16_t firstDecomposable = 0x00C0;
constexpr char16_t firstComposable = 0x0300;

bool staysBelow(std::u16string_view unicode, char16_t limit)
{
    return std::all_of(unicode.begin(), unicode.end(), [limit](char16_t unit) { return unit < limit; });
}

// The characters that the file system normalizes: all but its three ranges.
const icu::UnicodeSet &normalizedCharacters()
{
    static const icu::UnicodeSet *const characters = [] {
        auto *set = new icu::UnicodeSet(0, 0x10FFFF);   // kept until the process ends: threads may still convert names then
        set->remove(0x2000, 0x2FFF).remove(0xF900, 0xFAFF).remove(0x2F800, 0x2FAFF);
        set->freeze();
        return set;
    }();
    return *characters;
}

// Normalizes one stretch without characters of the ranges. Memory that runs out leaves it as it was.
icu::UnicodeString normalizedStretch(const icu::Normalizer2 &normalizer, const icu::UnicodeString &stretch)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString result = normalizer.normalize(stretch, status);
    return U_SUCCESS(status) ? result : stretch;
}

// Composing a stretch without characters of the ranges can make one (U+2260 from "=" and U+0338). Those are taken apart again.
icu::UnicodeString withoutMadeCharacters(const icu::Normalizer2 &normalizer, const icu::UnicodeString &stretch)
{
    if (normalizedCharacters().containsAll(stretch))
        return stretch;
    icu::UnicodeString result;
    for (std::int32_t index = 0; index < stretch.length(); index = stretch.moveIndex32(index, 1))
    {
        UChar32 character = stretch.char32At(index);
        icu::UnicodeString apart;
        if (!normalizedCharacters().contains(character) && normalizer.getDecomposition(character, apart))
            result.append(apart);
        else
            result.append(character);
    }
    return result;
}

// Applies `normalize` to each stretch between characters of the ranges, which stay as they are.
template <typename Normalize>
std::u16string normalizedBetweenRanges(std::u16string_view unicode, Normalize normalize)
{
    icu::UnicodeString source(false, icu::ConstChar16Ptr(unicode.data()), static_cast<std::int32_t>(unicode.size()));
    icu::UnicodeString result;
    for (std::int32_t start = 0; start < source.length();)
    {
        std::int32_t end = normalizedCharacters().span(source, start, USET_SPAN_SIMPLE);
        if (end > start)
            result.append(normalize(source.tempSubStringBetween(start, end)));
        start = normalizedCharacters().span(source, end, USET_SPAN_NOT_CONTAINED);
        result.append(source, end, start - end);
    }
    return std::u16string(result.getBuffer(), static_cast<std::size_t>(result.length()));
}

}   // namespace

UniChar unicodeFromSystemByte(UInt8 byte)
{
    return encodingTable().unitOf(byte);
}

bool systemByteFromUnicode(UniChar unit, UInt8 &byte)
{
    if (unit >= firstNonAscii)
        return encodingTable().byteOf(unit, byte);
    byte = static_cast<UInt8>(unit);
    return true;
}

std::u16string unicodeFromSystemText(std::string_view text)
{
    std::u16string unicode;
    unicode.reserve(text.size());
    for (char byte : text)
        unicode.push_back(unicodeFromSystemByte(static_cast<UInt8>(byte)));
    return unicode;
}

bool systemTextFromUnicode(std::u16string_view unicode, std::string &text)
{
    std::string converted;
    converted.reserve(unicode.size());
    for (char16_t unit : unicode)
    {
        UInt8 byte;
        if (!systemByteFromUnicode(unit, byte))
            return false;
        converted.push_back(static_cast<char>(byte));
    }
    text = std::move(converted);
    return true;
}

std::u16string decomposed(std::u16string_view unicode)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = staysBelow(unicode, firstDecomposable) ? nullptr : icu::Normalizer2::getNFDInstance(status);
    if (normalizer == nullptr || U_FAILURE(status))
        return std::u16string(unicode);
    return normalizedBetweenRanges(unicode, [&](const icu::UnicodeString &stretch) { return normalizedStretch(*normalizer, stretch); });
}

std::u16string composed(std::u16string_view unicode)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = staysBelow(unicode, firstComposable) ? nullptr : icu::Normalizer2::getNFCInstance(status);
    if (normalizer == nullptr || U_FAILURE(status))
        return std::u16string(unicode);
    return normalizedBetweenRanges(unicode, [&](const icu::UnicodeString &stretch) {
        return withoutMadeCharacters(*normalizer, normalizedStretch(*normalizer, stretch));
    });
}

}   // namespace standin
