// The system's encoding against a table of its own, and the file system's two forms of Unicode text.
#include "standin/text/system_encoding.h"

#include "tests/how_built.h"
#include "tests/standin/conversions.h"

#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <random>
#include <thread>
#include <vector>

namespace
{

using standin::composed;
using standin::decomposed;
using support::macRoman;

bool isLeftAlone(UChar32 character)
{
    return (character >= 0x2000 && character <= 0x2FFF) || (character >= 0xF900 && character <= 0xFAFF) ||
           (character >= 0x2F800 && character <= 0x2FAFF);
}

std::u16string textOf(UChar32 character)
{
    std::u16string text;
    if (character > 0xFFFF)
        text.push_back(U16_LEAD(character));
    text.push_back(static_cast<char16_t>(character > 0xFFFF ? U16_TRAIL(character) : character));
    return text;
}

std::u16string plainlyNormalized(const icu::Normalizer2 *normalizer, const std::u16string &text)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString result = normalizer->normalize(icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())), status);
    EXPECT_TRUE(U_SUCCESS(status));
    return std::u16string(result.getBuffer(), static_cast<std::size_t>(result.length()));
}

const icu::Normalizer2 *canonicalDecomposition()
{
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFDInstance(status);
}

std::u16string leftAloneIn(const std::u16string &text)
{
    std::u16string found;
    for (std::size_t index = 0; index < text.size();)
    {
        UChar32 character;
        U16_NEXT(text.data(), index, text.size(), character);
        if (isLeftAlone(character))
            found += textOf(character);
    }
    return found;
}

// Letters, marks of several classes, Hangul, characters of the ranges (marks among them) and lone surrogates, in any order.
std::u16string randomText(std::mt19937 &random)
{
    static const UChar32 alphabet[] = {'a',    'e',    '=',    '<',    '>',    'K',    0x00E9, 0x00C5,  0x0301,  0x0308,
                                       0x0323, 0x0327, 0x0338, 0x0344, 0x0345, 0x037E, 0x0928, 0x093C,  0x0958,  0x1100,
                                       0x1161, 0x11A8, 0x1EC7, 0x20D0, 0x20D2, 0x2126, 0x212A, 0x212B,  0x2260,  0x226E,
                                       0x2ADC, 0xAC01, 0xD800, 0xDC41, 0xF900, 0xFA10, 0xFB1D, 0x110BA, 0x1D15E, 0x2F800};
    std::u16string text;
    for (std::size_t length = random() % 9; length > 0; --length)
        text += textOf(alphabet[random() % std::size(alphabet)]);
    return text;
}

TEST(SystemEncoding, IsMacRomanWithoutALocale)
{
    EXPECT_EQ(standin::systemEncoding(), kTextEncodingMacRoman);
}

TEST(SystemEncoding, EveryByteIsTheCharacterOfTheTable)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        std::u16string unicode;
        ASSERT_TRUE(standin::unicodeFromSystemText(std::string(1, static_cast<char>(byte)), unicode));
        EXPECT_EQ(unicode, std::u16string(1, macRoman(byte))) << "byte " << byte;
    }
}

TEST(SystemEncoding, OnlyTheCharactersOfTheTableHaveAByte)
{
    for (int unit = 0; unit <= 0xFFFF; ++unit)
    {
        int expected = 0;
        while (expected < 256 && macRoman(expected) != unit)
            ++expected;
        std::string text = "untouched";
        bool converts = standin::systemTextFromUnicode(std::u16string(1, static_cast<char16_t>(unit)), text);
        ASSERT_EQ(converts, expected < 256) << "unit " << unit;
        ASSERT_EQ(text, converts ? std::string(1, static_cast<char>(expected)) : "untouched") << "unit " << unit;
    }
}

TEST(SystemEncoding, TextConvertsThereAndBack)
{
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte.push_back(static_cast<char>(byte));
    std::u16string unicode;
    ASSERT_TRUE(standin::unicodeFromSystemText(everyByte, unicode));
    EXPECT_EQ(unicode.size(), 256u);
    std::string back;
    ASSERT_TRUE(standin::systemTextFromUnicode(unicode, back));
    EXPECT_EQ(back, everyByte);
}

TEST(SystemEncoding, TextWithOneForeignCharacterIsRefusedWhole)
{
    for (const char16_t *text : {u"abc\u4E2D", u"e\u0301", u"\uFFFD", u"\u2126"})
    {
        std::string untouched = "untouched";
        EXPECT_FALSE(standin::systemTextFromUnicode(text, untouched));
        EXPECT_EQ(untouched, "untouched");
    }
}

struct FormCase
{
    const char *name;
    std::u16string text, composedForm, decomposedForm;
};

void PrintTo(const FormCase &row, std::ostream *out)
{
    *out << testing::PrintToString(row.text);
}

class Forms : public testing::TestWithParam<FormCase>
{
};

TEST_P(Forms, AreThoseOfTheFileSystem)
{
    EXPECT_EQ(composed(GetParam().text), GetParam().composedForm);
    EXPECT_EQ(decomposed(GetParam().text), GetParam().decomposedForm);
}

const std::u16string loneLead(1, char16_t{0xD800}), loneTrail(1, char16_t{0xDC80});

INSTANTIATE_TEST_SUITE_P(Rows, Forms,
                         testing::Values(FormCase{"Empty", u"", u"", u""}, FormCase{"Ascii", u"plain", u"plain", u"plain"},
                                         FormCase{"ComposedLetter", u"caf\u00E9", u"caf\u00E9", u"cafe\u0301"},
                                         FormCase{"DecomposedLetter", u"cafe\u0301", u"caf\u00E9", u"cafe\u0301"},
                                         FormCase{"TwoMarksInOtherOrder", u"e\u0302\u0323", u"\u1EC7", u"e\u0323\u0302"},
                                         FormCase{"Hangul", u"\uAC01", u"\uAC01", u"\u1100\u1161\u11A8"},
                                         FormCase{"NotEqualStaysWhole", u"\u2260", u"\u2260", u"\u2260"},
                                         FormCase{"NotEqualIsNeverMade", u"=\u0338", u"=\u0338", u"=\u0338"},
                                         FormCase{"NotLessIsNeverMade", u"e\u0301<\u0338x", u"\u00E9<\u0338x", u"e\u0301<\u0338x"},
                                         FormCase{"AngstromSignStays", u"\u212B\u00C5", u"\u212B\u00C5", u"\u212BA\u030A"},
                                         FormCase{"CompatibilityIdeographStays", u"\uF900", u"\uF900", u"\uF900"},
                                         FormCase{"SupplementaryIdeographStays", u"\U0002F800", u"\U0002F800", u"\U0002F800"},
                                         FormCase{"MarkOfTheRangesParts", u"a\u20D2\u0301", u"a\u20D2\u0301", u"a\u20D2\u0301"},
                                         FormCase{"MarkBesideTheRanges", u"\u2190\u0338e\u0301", u"\u2190\u0338\u00E9",
                                                  u"\u2190\u0338e\u0301"},
                                         FormCase{"LoneSurrogates", loneTrail + u"e\u0301" + loneLead, loneTrail + u"\u00E9" + loneLead,
                                                  loneTrail + u"e\u0301" + loneLead},
                                         FormCase{"Musical", u"\U0001D15E", u"\U0001D157\U0001D165", u"\U0001D157\U0001D165"}),
                         [](const testing::TestParamInfo<FormCase> &row) { return row.param.name; });

TEST(NormalForms, EveryCharacterDecomposesCanonicallyOrIsLeftAlone)
{
    const UChar32 last = hasLongRuns() ? 0x10FFFF : 0x2FFFF;   // no plane beyond the second has anything to decompose
    for (UChar32 character = 1; character <= last; ++character)
    {
        const std::u16string text = textOf(character);
        const std::u16string expected = isLeftAlone(character) ? text : plainlyNormalized(canonicalDecomposition(), text);
        ASSERT_EQ(decomposed(text), expected) << std::hex << character;
        ASSERT_EQ(decomposed(composed(text)), expected) << std::hex << character;
        if (isLeftAlone(character))
            ASSERT_EQ(composed(text), text) << std::hex << character;
        else
            ASSERT_EQ(leftAloneIn(composed(expected)), u"") << std::hex << character;
    }
}

TEST(NormalForms, AgreeWithEachOtherAndLeaveTheRangesAlone)
{
    std::mt19937 random(20);
    for (int round = 0; round < 200000; ++round)
    {
        const std::u16string text = randomText(random);
        const std::u16string whole = composed(text), apart = decomposed(text);
        ASSERT_EQ(composed(whole), whole);
        ASSERT_EQ(decomposed(apart), apart);
        ASSERT_EQ(composed(apart), whole);
        ASSERT_EQ(decomposed(whole), apart);
        ASSERT_EQ(leftAloneIn(whole), leftAloneIn(text));
        ASSERT_EQ(leftAloneIn(apart), leftAloneIn(text));
    }
}

TEST(ThreadsInText, ConvertSideBySide)
{
    std::vector<std::thread> threads;
    std::vector<int> failures(8);
    for (int &failed : failures)
        threads.emplace_back([&failed] {
            for (int round = 0; round < 2000; ++round)
            {
                std::string text;
                bool converts = standin::systemTextFromUnicode(composed(u"e\u0301\u2260\u20AC"), text);
                failed += !converts || text != "\x8E\xAD\xDB";
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(8));
}

}   // namespace
