// Conversion between Unicode and text: every status with its exact counts, letters composed and apart, hostile input.
#include "tests/standin/conversions.h"

#include "standin/text/unicode_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

namespace
{

using namespace support;
using namespace std::string_literals;

constexpr TextEncoding roman = 0, japanese = 1, korean = 3, greek = 6, cyrillic = 7, hebrew = 5;
constexpr OptionBits loose = kUnicodeLooseMappingsMask, fallbacks = kUnicodeUseFallbacksMask;

TEST(MacRoman, EveryByteIsTheCharacterOfTheTableAndComesBack)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        const std::string text(1, static_cast<char>(byte));
        const std::u16string unicode(1, macRoman(byte));
        EXPECT_EQ(toUnicode(roman, text, asItIs), (UnicodeResult{noErr, 1, unicode})) << byte;
        EXPECT_EQ(toUnicode(roman, text), (UnicodeResult{noErr, 1, standin::decomposed(unicode)})) << byte;
        EXPECT_EQ(toText(roman, unicode), (TextResult{noErr, 2, text})) << byte;
        const std::u16string apart = standin::decomposed(unicode);
        EXPECT_EQ(toText(roman, apart), (TextResult{noErr, apart.size() * 2, text})) << byte;
    }
}

TEST(MacRoman, HasTheEuroSignAndTheApple)
{
    EXPECT_EQ(toText(roman, u"\u20AC\uF8FF").text, "\xDB\xF0");
    EXPECT_EQ(toUnicode(roman, "\xDB\xF0").unicode, u"\u20AC\uF8FF");
}

TEST(MacRoman, HasNoOtherCharacter)
{
    std::u16string all;
    for (int byte = 0; byte < 256; ++byte)
        all.push_back(macRoman(byte));
    for (int unit = 0; unit <= 0xFFFF; ++unit)
    {
        const bool isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
        const char16_t character = static_cast<char16_t>(unit);
        if (isSurrogate || all.find(character) != std::u16string::npos || unit == 0x0340 || unit == 0x0341)
            continue;
        // What decomposes to a character of the table is that character, so the Greek question mark is a semicolon.
        const std::u16string apart = standin::decomposed(std::u16string(1, character));
        const bool isTwin = apart.size() == 1 && all.find(apart[0]) != std::u16string::npos;
        ASSERT_EQ(toText(roman, std::u16string(1, character), 0, 4).status, isTwin ? noErr : kTECUnmappableElementErr) << std::hex << unit;
    }
}

struct ConversionCase
{
    const char *name;
    TextEncoding base;
    std::u16string unicode;
    OptionBits flags;
    TextResult result;
};

void PrintTo(const ConversionCase &row, std::ostream *stream)
{
    *stream << testing::PrintToString(row.unicode);
}

class FromUnicode : public testing::TestWithParam<ConversionCase>
{
};

TEST_P(FromUnicode, GivesTextStatusAndCounts)
{
    EXPECT_EQ(toText(GetParam().base, GetParam().unicode, GetParam().flags), GetParam().result);
}

std::u16string units(std::initializer_list<int> values)
{
    return std::u16string(values.begin(), values.end());
}

std::string nameOfRow(const testing::TestParamInfo<ConversionCase> &row)
{
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Strictly, FromUnicode,
    testing::Values(ConversionCase{"Empty", roman, u"", 0, {noErr, 0, ""}},
                    ConversionCase{"Composed", roman, u"caf\u00E9", 0, {noErr, 8, "caf\x8E"}},
                    ConversionCase{"Apart", roman, u"cafe\u0301!", 0, {noErr, 12, "caf\x8E!"}},
                    ConversionCase{"SecondAccentHasNoCode", roman, u"ae\u0301\u0323", 0, {kTECUnmappableElementErr, 2, "a"}},
                    ConversionCase{"LetterWithAccentHasNoCode", roman, u"az\u0301b", 0, {kTECUnmappableElementErr, 2, "a"}},
                    ConversionCase{"AccentAlone", roman, u"\u0301", 0, {kTECUnmappableElementErr, 0, ""}},
                    ConversionCase{"NotEqual", roman, u"\u2260", 0, {noErr, 2, "\xAD"}},
                    ConversionCase{"NotEqualApartIsTwo", roman, u"=\u0338", 0, {kTECUnmappableElementErr, 0, ""}},
                    ConversionCase{"OhmIsNotOmega", roman, u"\u2126", 0, {kTECUnmappableElementErr, 0, ""}},
                    ConversionCase{"Foreign", roman, u"ab\u65E5c", 0, {kTECUnmappableElementErr, 4, "ab"}},
                    ConversionCase{"Emoji", roman, u"ab\U0001F600c", 0, {kTECUnmappableElementErr, 4, "ab"}},
                    ConversionCase{"Nul", roman, u"a\0b"s, 0, {noErr, 6, "a\0b"s}},
                    ConversionCase{"LeadAtTheEnd", roman, units({'a', 0xD83D}), 0, {kTECPartialCharErr, 2, "a"}},
                    ConversionCase{"LeadBeforeText", roman, units({'a', 0xD83D, 'b'}), 0, {kTextMalformedInputErr, 2, "a"}},
                    ConversionCase{"TrailAlone", roman, units({'a', 0xDC80}), 0, {kTextMalformedInputErr, 2, "a"}},
                    ConversionCase{"TwoLeads", roman, units({0xD83D, 0xD83D}), 0, {kTextMalformedInputErr, 0, ""}},
                    ConversionCase{"Kana", japanese, u"\u304C", 0, {noErr, 2, "\x82\xAA"}},
                    ConversionCase{"KanaApart", japanese, u"\u304B\u3099", 0, {noErr, 4, "\x82\xAA"}},
                    ConversionCase{"SyllableInParts", korean, u"\u1112\u1161\u11AB", 0, {noErr, 6, "\xC7\xD1"}},
                    ConversionCase{"SyllableInTwoParts", korean, u"\uD558\u11AB", 0, {noErr, 4, "\xC7\xD1"}},
                    ConversionCase{"GreekWithTwoMarks", greek, u"\u03B9\u0308\u0301", 0, {noErr, 6, "\xFD"}},
                    ConversionCase{"CyrillicApart", cyrillic, u"\u0438\u0306", 0, {noErr, 4, "\xE9"}},
                    ConversionCase{"HebrewPoint", hebrew, u"\u05D0\u05B7", 0, {noErr, 4, "\xE0\xCC"}},
                    ConversionCase{"HebrewLetterThatNeverComposes", hebrew, u"\u05E9\u05C1", 0, {noErr, 4, "\xD6"}},
                    ConversionCase{"HebrewLetterWithAPointMore", hebrew, u"\u05E9\u05B7\u05C1", 0, {noErr, 6, "\xD6\xCC"}},
                    ConversionCase{"HebrewLetterWithAForeignMark", hebrew, u"a\u05E9\u05C1\u0301", 0, {kTECUnmappableElementErr, 2, "a"}}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Loosely, FromUnicode,
    testing::Values(ConversionCase{"ExactFirst", roman, u"\u2018\u2013\u03A9", loose, {noErr, 6, "\xD4\xD0\xBD"}},
                    ConversionCase{"Ohm", roman, u"\u2126", loose, {noErr, 2, "\xBD"}},
                    ConversionCase{"Wide", roman, u"\uFF21\uFF11\u3000", loose, {noErr, 6, "A1 "}},
                    ConversionCase{"Narrow", japanese, u"\uFFE0", loose, {noErr, 2, "\x81\x91"}},
                    ConversionCase{"Spaces", roman, u"\u2002\u2009\u202F", loose, {noErr, 6, "   "}},
                    ConversionCase{"Hyphens", roman, u"\u2010\u2011\u2212", loose, {noErr, 6, "---"}},
                    ConversionCase{"Bars", roman, u"\u2012\u2015", loose, {noErr, 4, "\xD0\xD1"}},
                    ConversionCase{"BarInTwoSteps", 0x0201, u"\u2015", loose, {noErr, 2, "-"}},
                    ConversionCase{"CurlyQuotes", 0x0201, u"\u2018\u201C\u201D\u2019", loose, {noErr, 8, "'\"\"'"}},
                    ConversionCase{"Ellipsis", 0x0201, u"\u2026", loose, {noErr, 2, "..."}},
                    ConversionCase{"Ligature", 0x0201, u"\uFB01", loose, {noErr, 2, "fi"}},
                    ConversionCase{"Micro", roman, u"\u03BC", loose, {noErr, 2, "\xB5"}},
                    ConversionCase{"AccentIsNeverDropped", roman, u"a\u0160", loose, {kTECUnmappableElementErr, 2, "a"}},
                    ConversionCase{"ColonIsNeverMade", roman, u"a\uFF1A", loose, {kTECUnmappableElementErr, 2, "a"}},
                    ConversionCase{"CircleIsPartOfTheSign", roman, u"\u2460", loose, {kTECUnmappableElementErr, 0, ""}},
                    ConversionCase{"Foreign", roman, u"\u65E5", loose, {kTECUnmappableElementErr, 0, ""}},
                    ConversionCase{"NoLooseUnit", roman, units({0xDC80}), loose, {kTextMalformedInputErr, 0, ""}}),
    nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    WithFallbacks, FromUnicode,
    testing::Values(ConversionCase{"OneForEachLetter", roman, u"a\u65E5z\u0301b", fallbacks, {kTECUsedFallbacksStatus, 10, "a??b"}},
                    ConversionCase{"NotForWhatHasACode", roman, u"\u00E9", fallbacks, {noErr, 2, "\x8E"}},
                    ConversionCase{"Emoji", roman, u"\U0001F600", fallbacks, {kTECUsedFallbacksStatus, 4, "?"}},
                    ConversionCase{"LooseOnesComeFirst", roman, u"\uFF21\u65E5", fallbacks | loose, {kTECUsedFallbacksStatus, 4, "A?"}},
                    ConversionCase{"NotForBrokenInput", roman, units({'a', 0xDC80, 'b'}), fallbacks, {kTextMalformedInputErr, 2, "a"}}),
    nameOfRow);

struct TextCase
{
    const char *name;
    TextEncoding base;
    std::string text;
    OptionBits flags;
    UnicodeResult result;   // in the decomposed form
};

void PrintTo(const TextCase &row, std::ostream *stream)
{
    *stream << testing::PrintToString(row.text);
}

class FromText : public testing::TestWithParam<TextCase>
{
};

TEST_P(FromText, GivesUnicodeStatusAndCounts)
{
    EXPECT_EQ(toUnicode(GetParam().base, GetParam().text, decomposedForm, GetParam().flags), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FromText,
    testing::Values(TextCase{"Empty", roman, "", 0, {noErr, 0, u""}}, TextCase{"Apart", roman, "caf\x8E", 0, {noErr, 4, u"cafe\u0301"}},
                    TextCase{"NotEqualStaysWhole", roman, "\xAD", 0, {noErr, 1, u"\u2260"}},
                    TextCase{"LigatureStaysWhole", roman, "\xDE", 0, {noErr, 1, u"\uFB01"}},
                    TextCase{"Nul", roman, "a\0b"s, 0, {noErr, 3, u"a\0b"s}},
                    TextCase{"Kana", japanese, "\x82\xAA", 0, {noErr, 2, u"\u304B\u3099"}},
                    TextCase{"Syllable", korean, "\xC7\xD1", 0, {noErr, 2, u"\u1112\u1161\u11AB"}},
                    TextCase{"GreekWithTwoMarks", greek, "\xFD", 0, {noErr, 1, u"\u03B9\u0308\u0301"}},
                    TextCase{"HebrewPointsInTheirOrder", hebrew, "\xE0\xC6\xCC", 0, {noErr, 3, u"\u05D0\u05B7\u05BC"}},
                    TextCase{"HalfACode", japanese, "a\x82", 0, {kTECPartialCharErr, 1, u"a"}},
                    TextCase{"BadSecondByte", japanese, "a\x82 b", 0, {kTextMalformedInputErr, 1, u"a"}},
                    TextCase{"CodeWithoutACharacter", japanese, "a\x85\x40z", 0, {kTECUnmappableElementErr, 1, u"a"}},
                    TextCase{"ByteWithoutACharacter", hebrew, "a\x81", 0, {kTECUnmappableElementErr, 1, u"a"}},
                    TextCase{"ByteAboveAscii", 0x0600, "a\x80", 0, {kTECUnmappableElementErr, 1, u"a"}},
                    TextCase{"Fallback", japanese, "a\x85\x40z", fallbacks, {kTECUsedFallbacksStatus, 4, u"a\uFFFDz"}},
                    TextCase{"NoFallbackForBrokenInput", japanese, "a\x82 b", fallbacks, {kTextMalformedInputErr, 1, u"a"}},
                    TextCase{"NoFallbackForHalfACode", japanese, "a\x82", fallbacks, {kTECPartialCharErr, 1, u"a"}}),
    [](const testing::TestParamInfo<TextCase> &row) { return row.param.name; });

// ---- hostile input ----

const TextEncoding someEncodings[] = {0, 1, 2, 3, 4, 5, 6, 21, 25, 29, 0x0600};

// What was converted is converted alike alone and comes back; what stopped the conversion is at the place that is told.
TEST(RandomText, ConvertsUpToWhatStopsIt)
{
    std::mt19937 random(5);
    for (int round = 0; round < 10000; ++round)
    {
        const TextEncoding base = someEncodings[random() % std::size(someEncodings)];
        std::string text(random() % 24, '\0');
        const unsigned least = random() % 2 ? 0x80 : 0;
        std::generate(text.begin(), text.end(), [&] { return static_cast<char>(least + random() % (256 - least)); });
        const UInt32 variant = random() % 2 ? decomposedForm : asItIs;
        const std::size_t capacity = random() % 64;
        const UnicodeResult result = toUnicode(base, text, variant, 0, capacity);
        const std::string taken = text.substr(0, result.read);
        ASSERT_EQ(toUnicode(base, taken, variant), (UnicodeResult{noErr, taken.size(), result.unicode}));
        ASSERT_EQ(result.status == noErr, result.read == text.size());
        const TextResult back = toText(base, result.unicode);
        ASSERT_EQ(back.status, noErr);
        ASSERT_EQ(standin::decomposed(toUnicode(base, back.text, variant).unicode), standin::decomposed(result.unicode));
    }
}

std::u16string randomUnicode(std::mt19937 &random)
{
    static const std::u16string alphabet = u"ab:\u00E9\u00C5\u0301\u0308\u0323\u0338=\u0394\u03B9\u0451\u05E9\u05C1\u05BC\u0627\u0653"
                                           u"\u0E01\u1112\u1161\u11AB\uD55C\u2026\u2126\u2260\u304B\u3099\u65E5\uFB01\uFF21\uFF76";
    std::u16string text(random() % 20, u'\0');
    std::generate(text.begin(), text.end(), [&] {
        if (random() % 12 == 0)
            return static_cast<char16_t>(random() % 8 ? 0xD800 + random() % 0x800 : random());
        return alphabet[random() % alphabet.size()];
    });
    return text;
}

// Converted strictly, text comes back in one of the forms that are the same text.
TEST(RandomUnicode, ConvertsUpToWhatStopsIt)
{
    std::mt19937 random(6);
    for (int round = 0; round < 10000; ++round)
    {
        const TextEncoding base = someEncodings[random() % std::size(someEncodings)];
        const std::u16string unicode = randomUnicode(random);
        const OptionBits flags = random() % 4 == 0 ? loose : 0;
        const TextResult result = toText(base, unicode, flags, random() % 40);
        ASSERT_EQ(result.status == noErr, result.read == unicode.size() * 2);
        const std::u16string taken = unicode.substr(0, result.read / 2);
        ASSERT_EQ(toText(base, taken, flags), (TextResult{noErr, result.read, result.text}));
        if (flags == 0)
        {
            ASSERT_EQ(toUnicode(base, result.text).unicode, standin::decomposed(taken)) << base << testing::PrintToString(taken);
        }
        const TextResult filled = toText(base, unicode, flags | fallbacks);
        ASSERT_TRUE(filled.status == noErr || filled.status == kTECUsedFallbacksStatus || filled.status == kTextMalformedInputErr ||
                    filled.status == kTECPartialCharErr);
    }
}

TEST(ThreadsInConversion, MakeUseAndCloseTheirOwnConverters)
{
    std::vector<std::thread> threads;
    std::vector<int> failures(8);
    for (std::size_t number = 0; number < failures.size(); ++number)
        threads.emplace_back([&failed = failures[number], base = number % 2 ? japanese : korean] {
            const std::string expected = base == japanese ? "\x93\xFA a" : "\xEC\xED a";
            for (int round = 0; round < 500; ++round)
            {
                const UnicodeMapping mapping = mappingOf(base);
                UnicodeToTextInfo converter = nullptr;
                const UniChar unicode[] = {0x65E5, ' ', 'a'};
                char text[8];
                ByteCount read = 0, written = 0;
                failed += CreateUnicodeToTextInfo(&mapping, &converter) != noErr;
                failed +=
                    ConvertFromUnicodeToText(converter, 6, unicode, 0, 0, nullptr, nullptr, nullptr, 8, &read, &written, text) != noErr;
                failed += std::string(text, written) != expected;
                failed += DisposeUnicodeToTextInfo(&converter) != noErr;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(8));
}

}   // namespace
