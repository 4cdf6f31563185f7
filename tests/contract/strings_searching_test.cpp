// Finding, comparing and testing of strings.

#include "tests/contract/strings_fixture.h"

#include <random>

namespace
{

struct PosCase
{
    const char *name;
    char character;
    std::string text;
    short position;
};

class StringsPos : public testing::TestWithParam<PosCase>
{
};

INSTANTIATE_TEST_SUITE_P(Rows, StringsPos,
                         testing::Values(PosCase{"FirstOfTwo", 'l', "hello", 3}, PosCase{"First", 'h', "hello", 1},
                                         PosCase{"Last", 'o', "hello", 5}, PosCase{"Absent", 'z', "hello", 0},
                                         PosCase{"OtherCaseIsAnother", 'L', "hello", 0}, PosCase{"InTheEmptyString", 'l', "", 0},
                                         PosCase{"Zero", '\0', std::string("ab\0", 3), 3}, PosCase{"Largest", '\x7F', "\x7E\x7F", 2},
                                         PosCase{"EllipsisIsNeverFound", static_cast<char>(0xC9), "a\xC9", 0},
                                         PosCase{"FirstUnfindable", static_cast<char>(0x80), "a\x80", 0},
                                         PosCase{"LastUnfindable", static_cast<char>(0xFF), "a\xFF", 0},
                                         PosCase{"LengthByteIsNoCharacter", '\x03', "abc", 0},
                                         PosCase{"At255", 'x', std::string(254, 'a') + 'x', 255}),
                         rowName);

TEST_P(StringsPos, Row)
{
    Buffer text(pascal(GetParam().text));
    EXPECT_EQ(Pos(GetParam().character, text.text()), GetParam().position);
    EXPECT_TRUE(text.isUntouched());
}

TEST(StringsPos, EveryCharacterInATextOfAll)
{
    std::string all;
    for (int code = 1; code < 256; ++code)
        all += static_cast<char>(code);
    Buffer text(pascal(all));
    for (int code = 1; code < 256; ++code)
        EXPECT_EQ(Pos(static_cast<char>(code), text.text()), code < 128 ? code : 0);
}

TEST(StringsPos, WhatFollowsTheTextIsNotSearched)
{
    Buffer text(pascal("abc") + "x");
    EXPECT_EQ(Pos('x', text.text()), 0);
}

struct PosnCase
{
    const char *name, *pattern, *text;
    short position;
};

class StringsPosn : public testing::TestWithParam<PosnCase>
{
};

INSTANTIATE_TEST_SUITE_P(Rows, StringsPosn,
                         testing::Values(PosnCase{"InTheMiddle", "ell", "hello", 2}, PosnCase{"AtTheEnd", "lo", "hello", 4},
                                         PosnCase{"FirstOfTwo", "l", "hello", 3}, PosnCase{"Doubled", "ll", "hello", 3},
                                         PosnCase{"OneLetterOff", "lp", "hello", 0}, PosnCase{"WholeText", "hello", "hello", 1},
                                         PosnCase{"LongerThanTheText", "hello!", "hello", 0},
                                         PosnCase{"OtherCaseIsNoMatch", "LO", "hello", 0}, PosnCase{"InTheEmptyString", "a", "", 0},
                                         PosnCase{"AfterAFalseStart", "aab", "aaab", 2}, PosnCase{"OverlappingMatches", "aa", "aaaa", 1},
                                         PosnCase{"HighBytes", "\xC9\xFF", "a\xC9\xC9\xFF", 3},
                                         PosnCase{"FirstAndLastAgreeOnly", "abc", "aXcabcd", 4},
                                         PosnCase{"RunsOverTheEnd", "lox", "hello", 0}),
                         rowName);

TEST_P(StringsPosn, Row)
{
    Buffer pattern(pascal(GetParam().pattern)), text(pascal(GetParam().text));
    EXPECT_EQ(Posn(pattern.text(), text.text()), GetParam().position);
    EXPECT_EQ(PosnAt(pattern.text(), text.text(), 1), GetParam().position);
    EXPECT_TRUE(pattern.isUntouched());
    EXPECT_TRUE(text.isUntouched());
}

// The byte behind an empty pattern's length byte is looked for, in the text and in the one byte that follows it.
TEST(StringsPosn, EmptyPatternLooksForTheByteBehindIt)
{
    Buffer pattern(pascal("") + "l");
    EXPECT_EQ(Posn(pattern.text(), Buffer(pascal("hello")).text()), 3);
    EXPECT_EQ(Posn(pattern.text(), Buffer(pascal("heo") + "l").text()), 4) << "one byte behind the text counts";
    EXPECT_EQ(Posn(pattern.text(), Buffer(pascal("heo") + "xl").text()), 0) << "two bytes behind the text don't";
    EXPECT_EQ(Posn(pattern.text(), Buffer(pascal("") + "l").text()), 1);
    EXPECT_EQ(Posn(pattern.text(), Buffer(pascal("") + "x").text()), 0);
    EXPECT_EQ(Posn(pattern.text(), Buffer(pascal(std::string(255, 'x')) + "l").text()), 256);
}

struct PosnAtCase
{
    const char *name;
    std::string pattern, text;
    short start, position;
};

class StringsPosnAt : public testing::TestWithParam<PosnAtCase>
{
};

INSTANTIATE_TEST_SUITE_P(
    Rows, StringsPosnAt,
    testing::Values(PosnAtCase{"SecondOfTwo", "l", "hello", 4, 4}, PosnAtCase{"BehindTheLastPlace", "l", "hello", 6, 0},
                    PosnAtCase{"NoneFromThere", "l", "hello", 5, 0}, PosnAtCase{"JustThere", "lo", "hello", 4, 4},
                    PosnAtCase{"WhereThePatternHasNoRoom", "lo", "hello", 5, 0}, PosnAtCase{"LargestStart", "l", "hello", 32767, 0},
                    PosnAtCase{"StartAtTheLengthByte", "h", "hello", 0, 1}, PosnAtCase{"StartInFrontOfIt", "ell", "hello", -5, 2},
                    PosnAtCase{"LengthByteDoesNotCountAndTheSearchGoesOn", "\x03", "ab\x03", 0, 3},
                    PosnAtCase{"MatchOnlyAtTheLengthByte",
                               "\x03"
                               "ab",
                               "abc", 0, 0},
                    PosnAtCase{"LongMatchAtTheLengthByteThenAnother",
                               "\x05"
                               "\x05",
                               "\x05"
                               "b\x05\x05"
                               "c",
                               0, 3},
                    PosnAtCase{"PatternLongerThanTheText", "hello!", "hello", -9, 0},
                    PosnAtCase{"PatternLongerThanTheTextFromItsLengthByte",
                               "\x02"
                               "ab",
                               "ab", 0, 0},
                    PosnAtCase{"EmptyStringFromItsLengthByte", "a", "", 0, 0}),
    rowName);

TEST_P(StringsPosnAt, Row)
{
    Buffer pattern(pascal(GetParam().pattern)), text(pascal(GetParam().text));
    EXPECT_EQ(PosnAt(pattern.text(), text.text(), GetParam().start), GetParam().position);
}

TEST(StringsPosnAt, MatchInFrontOfTheLengthByteIsANegativePosition)
{
    Buffer text(pascal("hello"));
    const std::string before(reinterpret_cast<const char *>(text.text() - 7), 2);
    Buffer pattern(pascal(before));
    EXPECT_EQ(PosnAt(pattern.text(), text.text(), -9), -7);
    EXPECT_EQ(PosnAt(pattern.text(), text.text(), -7), -7);
    EXPECT_EQ(PosnAt(pattern.text(), text.text(), -6), 0);

    const std::string longBefore(reinterpret_cast<const char *>(text.text() - 8), 6);
    EXPECT_EQ(PosnAt(Buffer(pascal(longBefore)).text(), text.text(), -8), 0) << "longer than the text, so that no place counts";
}

short findByteAfterByte(const unsigned char *pattern, const unsigned char *text, short start)
{
    const int last = text[0] - pattern[0] + 1;
    if (last < 1)
        return 0;
    for (int index = start; index <= last; ++index)
    {
        bool fits = text[index] == pattern[1];
        for (int position = 2; fits && position <= pattern[0]; ++position)
            fits = text[index + position - 1] == pattern[position];
        if (fits && index != 0)
            return static_cast<short>(index);
    }
    return 0;
}

// Texts of two letters, so that nearly fitting places are many; some of them longer than any step that a search may take.
TEST(StringsPosnAt, AgreesWithLookingAtEveryPlace)
{
    std::mt19937 random{255};
    const auto anyText = [&random](unsigned greatestLength) {
        std::string text;
        for (auto length = random() % (greatestLength + 1); length > 0; --length)
            text += "ab"[random() % 2];
        return text;
    };
    for (int round = 0; round < 20000; ++round)
    {
        const std::string patternCharacters = anyText(round % 2 == 0 ? 3 : 14), textCharacters = anyText(round % 3 == 0 ? 255 : 24);
        Buffer pattern(pascal(patternCharacters) + "a"), text(pascal(textCharacters) + "b");
        for (const short start : std::initializer_list<short>{-20, 0, 1, 2, 9, 100})
        {
            ASSERT_EQ(PosnAt(pattern.text(), text.text(), start), findByteAfterByte(pattern.text(), text.text(), start))
                << patternCharacters << " in " << textCharacters << " from " << start;
        }
        ASSERT_EQ(Posn(pattern.text(), text.text()), findByteAfterByte(pattern.text(), text.text(), 1));
    }
}

// The pattern at every place of a long text, and one byte short of it at each.
TEST(StringsPosnAt, FindsEveryPlace)
{
    for (const std::size_t length : {1u, 2u, 3u, 8u, 9u, 32u, 200u, 255u})
    {
        const std::string characters(length, 'p');
        Buffer pattern(pascal(characters));
        for (std::size_t place = 0; place + length <= 255; ++place)
        {
            std::string text(255, '.');
            text.replace(place, length, characters);
            EXPECT_EQ(Posn(pattern.text(), Buffer(pascal(text)).text()), static_cast<short>(place + 1));
            text[place + length / 2] = '-';
            EXPECT_EQ(Posn(pattern.text(), Buffer(pascal(text)).text()), 0);
        }
    }
}

TEST(StringsComp, EqualOnlyByteForByte)
{
    const auto compared = [](const std::string &a, const std::string &b) { return Comp(Buffer(a).text(), Buffer(b).text()); };
    EXPECT_EQ(compared(pascal("abc"), pascal("abc")), 1);
    EXPECT_EQ(compared(pascal("abc"), pascal("ABC")), 0);
    EXPECT_EQ(compared(pascal("ab"), pascal("abc")), 0);
    EXPECT_EQ(compared(pascal("abc"), pascal("ab")), 0);
    EXPECT_EQ(compared(pascal(""), pascal("")), 1);
    EXPECT_EQ(compared(pascal("") + "x", pascal("") + "y"), 1) << "what follows is no part of the string";
    EXPECT_EQ(compared(pascal("abc") + "x", pascal("abc") + "y"), 1);
    EXPECT_EQ(compared(pascal(std::string("a\0b", 3)), pascal(std::string("a\0c", 3))), 0) << "a zero ends nothing";
}

TEST(StringsComp, NoticesEveryByteOfALongText)
{
    const std::string characters = variedCharacters(255);
    Buffer a(pascal(characters));
    EXPECT_EQ(Comp(a.text(), Buffer(pascal(characters)).text()), 1);
    EXPECT_EQ(Comp(a.text(), a.text()), 1);
    for (std::size_t place = 0; place < 255; ++place)
    {
        std::string other = characters;
        other[place] = static_cast<char>(other[place] ^ 0x80);
        EXPECT_EQ(Comp(a.text(), Buffer(pascal(other)).text()), 0) << place;
    }
}

TEST(StringsAllisNum, DigitsAlone)
{
    const auto isNumber = [](const std::string &text) { return AllisNum(Buffer(pascal(text)).text()); };
    EXPECT_EQ(isNumber("0123"), 1);
    EXPECT_EQ(isNumber("0123456789"), 1);
    EXPECT_EQ(isNumber("7"), 1);
    EXPECT_EQ(isNumber(std::string(255, '9')), 1);
    for (const char *text : {"", "12 3", "-1", "+1", "1.5", "1,5", "12a", "a12", " ", "0x1"})
        EXPECT_EQ(isNumber(text), 0) << text;
    EXPECT_EQ(AllisNum(Buffer(pascal("12") + "a").text()), 1) << "what follows is no part of the string";
}

TEST(StringsAllisNum, EveryCharacterAtEveryPlace)
{
    for (int code = 0; code < 256; ++code)
    {
        for (std::size_t place = 0; place < 20; ++place)
        {
            std::string characters(20, '5');
            characters[place] = static_cast<char>(code);
            Buffer text(pascal(characters));
            EXPECT_EQ(AllisNum(text.text()), code >= 48 && code <= 57 ? 1 : 0) << code << " at " << place;
            EXPECT_TRUE(text.isUntouched());
        }
    }
}

TEST(StringsValc, DigitsHaveTheirValueAndAllElseIsZero)
{
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(Valc(static_cast<char>(code)), code >= 48 && code <= 57 ? code - 48 : 0) << code;
}

}   // namespace
