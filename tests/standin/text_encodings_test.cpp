// Text encodings as numbers, which of them script, language and region decide, and what is in each that can be converted.
#include "tests/standin/conversions.h"

#include <gtest/gtest.h>

#include <set>

namespace
{

using namespace support;

TEST(TextEncodings, AreBaseVariantAndFormatInOneNumber)
{
    EXPECT_EQ(CreateTextEncoding(0x0103, 2, 0), 0x00020103u);
    EXPECT_EQ(CreateTextEncoding(0x0100, 0, 2), 0x08000100u);
    EXPECT_EQ(CreateTextEncoding(kTextEncodingMacRoman, 0, 0), 0u);
    EXPECT_EQ(CreateTextEncoding(0xFFFFFFFF, 0, 0), 0x0000FFFFu);
    EXPECT_EQ(CreateTextEncoding(0, 0xFFFFFFFF, 0), 0x03FF0000u);
    EXPECT_EQ(CreateTextEncoding(0, 0, 0xFFFFFFFF), 0x3C000000u);
    EXPECT_EQ(GetTextEncodingBase(0x08020103), 0x0103u);
    EXPECT_EQ(GetTextEncodingBase(0xFFFF0000), 0u);
}

constexpr SInt16 any = -128;

struct UpgradeCase
{
    const char *name;
    SInt16 script, language, region;
    OSStatus result;
    TextEncoding encoding;
};

class Upgrades : public testing::TestWithParam<UpgradeCase>
{
};

TEST_P(Upgrades, GiveTheEncodingOrARefusal)
{
    const UpgradeCase &row = GetParam();
    TextEncoding encoding = 0x5555;
    EXPECT_EQ(UpgradeScriptInfoToTextEncoding(row.script, row.language, row.region, nullptr, &encoding), row.result);
    EXPECT_EQ(encoding, row.result == noErr ? row.encoding : 0x5555u);
}

std::string nameOfRow(const testing::TestParamInfo<UpgradeCase> &row)
{
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(Regions, Upgrades,
                         testing::Values(UpgradeCase{"UnitedStates", 0, any, 0, noErr, 0}, UpgradeCase{"Japan", 1, any, 14, noErr, 1},
                                         UpgradeCase{"Taiwan", 2, any, 53, noErr, 2}, UpgradeCase{"Korea", 3, any, 51, noErr, 3},
                                         UpgradeCase{"ArabicCountries", 4, any, 16, noErr, 4}, UpgradeCase{"Iran", 4, any, 48, noErr, 0x8C},
                                         UpgradeCase{"Pakistan", 4, any, 34, noErr, 0x8C}, UpgradeCase{"Israel", 5, any, 13, noErr, 5},
                                         UpgradeCase{"Greece", 6, any, 20, noErr, 6}, UpgradeCase{"Russia", 7, any, 49, noErr, 7},
                                         UpgradeCase{"Ukraine", 7, any, 62, noErr, 0x98}, UpgradeCase{"India", 9, any, 33, noErr, 9},
                                         UpgradeCase{"Thailand", 21, any, 54, noErr, 21}, UpgradeCase{"China", 25, any, 52, noErr, 25},
                                         UpgradeCase{"Poland", 29, any, 42, noErr, 29}, UpgradeCase{"Turkey", 0, any, 24, noErr, 35},
                                         UpgradeCase{"Croatia", 0, any, 68, noErr, 36}, UpgradeCase{"Slovenia", 0, any, 66, noErr, 36},
                                         UpgradeCase{"Iceland", 0, any, 21, noErr, 37}, UpgradeCase{"Romania", 0, any, 39, noErr, 38},
                                         UpgradeCase{"Wales", 0, any, 79, noErr, 39}, UpgradeCase{"OldIrish", 0, any, 81, noErr, 40},
                                         UpgradeCase{"Nunavut", 28, any, 78, noErr, 0xEC}),
                         nameOfRow);

INSTANTIATE_TEST_SUITE_P(
    Others, Upgrades,
    testing::Values(UpgradeCase{"ScriptAlone", 7, any, any, noErr, 7}, UpgradeCase{"LanguageAlone", any, 45, any, noErr, 0x98},
                    UpgradeCase{"RegionAlone", any, any, 14, noErr, 1}, UpgradeCase{"AllThree", 0, 17, 24, noErr, 35},
                    UpgradeCase{"LanguageKnowsMoreThanTheRegion", 0, 18, 0, noErr, 36},
                    UpgradeCase{"RegionKnowsMoreThanTheLanguage", 0, 0, 21, noErr, 37},
                    UpgradeCase{"InternationalGoesWithAnyScript", 7, any, 37, noErr, 7},
                    UpgradeCase{"Unicode", 0x7E, any, any, noErr, 0x7E}, UpgradeCase{"NothingSaid", any, any, any, paramErr, 0},
                    UpgradeCase{"InternationalAlone", any, any, 37, paramErr, 0}, UpgradeCase{"RomanInJapan", 0, any, 14, paramErr, 0},
                    UpgradeCase{"GreekInRussia", 6, any, 49, paramErr, 0}, UpgradeCase{"JapaneseInRoman", 0, 11, any, paramErr, 0},
                    UpgradeCase{"JapaneseInKorea", any, 11, 51, paramErr, 0}, UpgradeCase{"TurkishInIceland", 0, 17, 21, paramErr, 0},
                    UpgradeCase{"RightToLeftSymbols", 8, any, any, paramErr, 0}, UpgradeCase{"NoSuchScript", 33, any, any, paramErr, 0},
                    UpgradeCase{"NegativeScript", -1, any, any, paramErr, 0}, UpgradeCase{"NoSuchRegion", 0, any, 38, paramErr, 0},
                    UpgradeCase{"NegativeRegion", 0, any, -1, paramErr, 0}, UpgradeCase{"NoSuchLanguage", 0, 1000, any, paramErr, 0}),
    nameOfRow);

TEST(UpgradeScriptInfo, NeedsSomewhereToPutTheEncoding)
{
    EXPECT_EQ(UpgradeScriptInfoToTextEncoding(0, any, 0, nullptr, nullptr), paramErr);
}

TEST(UpgradeScriptInfo, DoesNotLookAtTheFont)
{
    const unsigned char font[] = "\006Osaka ";
    TextEncoding encoding = 0x5555;
    EXPECT_EQ(UpgradeScriptInfoToTextEncoding(0, any, any, font, &encoding), noErr);
    EXPECT_EQ(encoding, 0u);
}

TEST(UpgradeScriptInfo, EveryRegionHasOneScript)
{
    for (SInt16 region = 0; region < 120; ++region)
    {
        TextEncoding encoding = 0, again = 0;
        if (region == 37 || region == 55 || region == 58 || region == 74)   // those go with every script
            continue;
        int scripts = 0;
        for (SInt16 script = 0; script <= 32; ++script)
            scripts += UpgradeScriptInfoToTextEncoding(script, any, region, nullptr, &encoding) == noErr;
        const bool exists = UpgradeScriptInfoToTextEncoding(any, any, region, nullptr, &again) == noErr;
        EXPECT_EQ(scripts, exists ? 1 : 0) << region;
    }
}

const TextEncoding oneByteEncodings[] = {0,    4,    5,      6,      7,      21,     29,     35,     36,     37,    38,
                                         0x8C, 0x98, 0x0201, 0x0202, 0x0205, 0x0209, 0x020F, 0x0500, 0x0501, 0x0502};

// In encodings for text from right to left some codes stand for a character of ASCII once more: those come back as ASCII.
TEST(Encodings, OfOneByteConvertThereAndBack)
{
    for (TextEncoding base : oneByteEncodings)
        for (int byte = 0; byte < 256; ++byte)
            for (UInt32 variant : {asItIs, decomposedForm})
            {
                const std::string text(1, static_cast<char>(byte));
                const UnicodeResult unicode = toUnicode(base, text, variant);
                if (unicode.status == kTECUnmappableElementErr)
                    continue;
                ASSERT_EQ(unicode.status, noErr) << base << ", byte " << byte;
                const TextResult back = toText(base, unicode.unicode);
                ASSERT_EQ(back.status, noErr) << base << ", byte " << byte;
                const bool isSecondCode = byte >= 0x80 && unicode.unicode.size() == 1 && unicode.unicode[0] < 0x80;
                ASSERT_EQ(back.text, isSecondCode ? std::string(1, static_cast<char>(unicode.unicode[0])) : text)
                    << base << ", byte " << byte;
                ASSERT_TRUE(!isSecondCode || base == 4 || base == 5 || base == 0x8C) << base << ", byte " << byte;
            }
}

TEST(Encodings, OfTheMacintoshHaveACharacterForEachByte)
{
    for (TextEncoding base : {0, 4, 6, 7, 29, 35, 36, 37, 38, 0x8C, 0x98})
    {
        std::set<std::u16string> characters;
        for (int byte = 0; byte < 256; ++byte)
        {
            const UnicodeResult result = toUnicode(base, std::string(1, static_cast<char>(byte)), asItIs);
            EXPECT_EQ(result.status, noErr) << base << ", byte " << byte;
            EXPECT_TRUE(characters.insert(result.unicode).second || base == 4 || base == 0x8C) << base << ", byte " << byte;
        }
    }
}

struct SampleCase
{
    const char *name;
    TextEncoding base;
    std::u16string unicode;
    std::string text;
};

void PrintTo(const SampleCase &row, std::ostream *stream)
{
    *stream << testing::PrintToString(row.unicode);
}

class Samples : public testing::TestWithParam<SampleCase>
{
};

TEST_P(Samples, ConvertBothWays)
{
    const SampleCase &row = GetParam();
    EXPECT_EQ(toText(row.base, row.unicode), (TextResult{noErr, row.unicode.size() * 2, row.text}));
    EXPECT_EQ(toUnicode(row.base, row.text, asItIs), (UnicodeResult{noErr, row.text.size(), row.unicode}));
}

INSTANTIATE_TEST_SUITE_P(Rows, Samples,
                         testing::Values(SampleCase{"Japanese", 1, u"\u65E5\u672C\u8A9E", "\x93\xFA\x96\x7B\x8C\xEA"},
                                         SampleCase{"JapaneseKana", 1, u"\u304C\u30D1\uFF76a",
                                                    "\x82\xAA\x83\x70\xB6"
                                                    "a"},
                                         SampleCase{"JapaneseYenAndBackslash", 1, u"\u00A5\\~", "\x5C\x80~"},
                                         SampleCase{"JapaneseSigns", 1, u"\u301C\u2016\u2212\u00A2\u00AC\u2026\u2122",
                                                    "\x81\x60\x81\x61\x81\x7C\x81\x91\x81\xCA\x81\x63\xFE"},
                                         SampleCase{"ChineseTraditional", 2, u"\u4E2D\u6587\u5341", "\xA4\xA4\xA4\xE5\xA4\x51"},
                                         SampleCase{"ChineseSimplified", 25, u"\u4E2D\u6587\u2122", "\xD6\xD0\xCE\xC4\xFE"},
                                         SampleCase{"Korean", 3, u"\uD55C\uAE00\u20A9", "\xC7\xD1\xB1\xDB\x81"},
                                         SampleCase{"Arabic", 4, u"\u0633\u0644\u0627\u0645\u061F", "\xD3\xE4\xC7\xE5\xBF"},
                                         SampleCase{"Farsi", 0x8C, u"\u067E\u06F1", "\xF3\xB1"},
                                         SampleCase{"Hebrew", 5, u"\u05E9\u05DC\u05D5\u05DD\u20AA", "\xF9\xEC\xE5\xED\xA6"},
                                         SampleCase{"Greek", 6, u"\u0395\u03BB\u03AC\u20AC", "\xB6\xEC\xC0\x9C"},
                                         SampleCase{"Cyrillic", 7, u"\u041C\u0438\u0440\u0451", "\x8C\xE8\xF0\xDE"},
                                         SampleCase{"Ukrainian", 0x98, u"\u0490\u0491\u0457", "\xA2\xB6\xBB"},
                                         SampleCase{"Thai", 21, u"\u0E44\u0E17\u0E22\u2026", "\xE4\xB7\xC2\x82"},
                                         SampleCase{"CentralEuropean", 29, u"\u0141\u00F3d\u017A",
                                                    "\xFC\x97"
                                                    "d\x90"},
                                         SampleCase{"Turkish", 35, u"\u0130\u015E\u011F\u0131", "\xDC\xDE\xDB\xDD"},
                                         SampleCase{"Croatian", 36, u"\u0160\u0111\u010D", "\xA9\xF0\xE8"},
                                         SampleCase{"Icelandic", 37, u"\u00DE\u00F0\u00FD", "\xDE\xDD\xE0"},
                                         SampleCase{"Romanian", 38, u"\u0103\u0218\u021B", "\xBE\xAF\xDF"},
                                         SampleCase{"Latin1", 0x0201, u"\u00E9\u00A4", "\xE9\xA4"},
                                         SampleCase{"Windows", 0x0500, u"\u20AC\u2026", "\x80\x85"}),
                         [](const testing::TestParamInfo<SampleCase> &row) { return row.param.name; });

std::string twoBytes(unsigned code)
{
    return {static_cast<char>(code >> 8), static_cast<char>(code)};
}

TEST(Encodings, OfTwoBytesConvertThereAndBack)
{
    struct
    {
        TextEncoding base;
        int characters, secondCodes;
    } rows[] = {{1, 6879, 0}, {2, 13456, 0}, {3, 8224, 0}, {25, 7445, 0}};
    for (const auto &row : rows)
    {
        int characters = 0, secondCodes = 0;
        for (unsigned code = 0x8000; code < 0x10000; ++code)
        {
            const UnicodeResult unicode = toUnicode(row.base, twoBytes(code), decomposedForm, 0, 64);
            if (unicode.status != noErr || toUnicode(row.base, twoBytes(code).substr(0, 1), asItIs, 0, 64).status != kTECPartialCharErr)
                continue;
            ++characters;
            const TextResult back = toText(row.base, unicode.unicode, 0, 64);
            ASSERT_EQ(back.status, noErr) << row.base << ", code " << std::hex << code;
            secondCodes += back.text != twoBytes(code);
        }
        EXPECT_EQ(characters, row.characters) << row.base;
        EXPECT_EQ(secondCodes, row.secondCodes) << row.base;
    }
}

TEST(Encodings, WithoutATableAreUnsupported)
{
    for (TextEncoding base :
         {TextEncoding{9}, TextEncoding{30}, TextEncoding{39}, TextEncoding{0x7E}, TextEncoding{0x0100}, kTextEncodingUnknown})
    {
        const UnicodeMapping mapping = mappingOf(base);
        UnicodeToTextInfo fromUnicode = nullptr;
        TextToUnicodeInfo fromText = nullptr;
        EXPECT_EQ(CreateUnicodeToTextInfo(&mapping, &fromUnicode), kTextUnsupportedEncodingErr) << base;
        EXPECT_EQ(CreateTextToUnicodeInfo(&mapping, &fromText), kTextUnsupportedEncodingErr) << base;
        EXPECT_EQ(fromUnicode, nullptr);
        EXPECT_EQ(fromText, nullptr);
    }
}

TEST(Encodings, OfTheUnicodeSideAreThoseOf16Bits)
{
    struct
    {
        TextEncoding encoding;
        OSStatus result;
    } rows[] = {{CreateTextEncoding(0x0100, 0, 0), noErr},
                {CreateTextEncoding(0x0101, 2, 0), noErr},
                {CreateTextEncoding(0x0103, 2, 0), noErr},
                {CreateTextEncoding(0x0103, 1, 0), kTextUnsupportedEncodingErr},
                {CreateTextEncoding(0x0100, 0, 2), kTextUnsupportedEncodingErr},
                {CreateTextEncoding(0x0104, 0, 0), kTextUnsupportedEncodingErr},
                {kTextEncodingMacRoman, kTextUnsupportedEncodingErr}};
    for (const auto &row : rows)
    {
        const UnicodeMapping mapping{row.encoding, kTextEncodingMacRoman, 4};
        UnicodeToTextInfo converter = nullptr;
        EXPECT_EQ(CreateUnicodeToTextInfo(&mapping, &converter), row.result) << row.encoding;
        EXPECT_EQ(DisposeUnicodeToTextInfo(&converter), row.result == noErr ? noErr : paramErr);
    }
}

}   // namespace
