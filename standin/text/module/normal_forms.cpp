// The forms of Unicode text: the file system's two, and Unicode's own composed one.
#include "standin/text/module/text_module.h"

#include <unicode/normalizer2.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include <cstdint>

namespace standin::text_module
{

namespace
{

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

std::u16string decomposed(std::u16string_view unicode)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        return std::u16string(unicode);
    return normalizedBetweenRanges(unicode, [&](const icu::UnicodeString &stretch) { return normalizedStretch(*normalizer, stretch); });
}

std::u16string composed(std::u16string_view unicode)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return std::u16string(unicode);
    return normalizedBetweenRanges(unicode, [&](const icu::UnicodeString &stretch) {
        return withoutMadeCharacters(*normalizer, normalizedStretch(*normalizer, stretch));
    });
}

std::u16string plainlyComposed(std::u16string_view unicode)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return std::u16string(unicode);
    const icu::UnicodeString source(false, icu::ConstChar16Ptr(unicode.data()), static_cast<std::int32_t>(unicode.size()));
    const icu::UnicodeString result = normalizedStretch(*normalizer, source);
    return std::u16string(result.getBuffer(), static_cast<std::size_t>(result.length()));
}

}   // namespace standin::text_module
