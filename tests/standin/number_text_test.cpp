// Numbers as decimal text and back: both ends of the range, wrapping, and what characters that are no digits count.
#include "platform/text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

namespace
{

constexpr SInt32 smallest = -2147483647 - 1;
constexpr SInt32 largest = 2147483647;

std::string textOf(SInt32 number)
{
    Str255 text;
    NumToString(number, text);
    return std::string(reinterpret_cast<const char *>(text + 1), text[0]);
}

SInt32 numberOf(const std::string &text)
{
    Str255 pascal;
    std::memset(pascal, '7', sizeof pascal);   // what lies behind the length must not count
    pascal[0] = static_cast<unsigned char>(text.size());
    std::memcpy(pascal + 1, text.data(), text.size());
    SInt32 number = 0x5A5A5A5A;
    StringToNum(pascal, &number);
    return number;
}

// ---------------------------------------------------------------------------------------------------------------------
// NumToString

struct TextCase
{
    const char *name;
    SInt32 number;
    const char *text;
};

const TextCase textCases[] = {
    {"Zero", 0, "0"},
    {"One", 1, "1"},
    {"MinusOne", -1, "-1"},
    {"LastOfOneDigit", 9, "9"},
    {"FirstOfTwoDigits", 10, "10"},
    {"ZerosInside", 1000000, "1000000"},
    {"Negative", -907, "-907"},
    {"Largest", largest, "2147483647"},
    {"Smallest", smallest, "-2147483648"},
    {"OneAboveTheSmallest", smallest + 1, "-2147483647"},
};

class NumberToText : public testing::TestWithParam<TextCase>
{
};

TEST_P(NumberToText, IsDecimal)
{
    EXPECT_EQ(textOf(GetParam().number), GetParam().text);
}

TEST_P(NumberToText, IsReadBack)
{
    EXPECT_EQ(numberOf(GetParam().text), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Numbers, NumberToText, testing::ValuesIn(textCases), [](const auto &row) { return std::string(row.param.name); });

TEST(NumberToTextBytes, BehindTheTextAreLeftAlone)
{
    for (SInt32 number : {0, -42, smallest})
    {
        Str255 text;
        std::memset(text, 0xA5, sizeof text);
        NumToString(number, text);
        for (std::size_t index = text[0] + 1u; index < sizeof text; ++index)
            ASSERT_EQ(text[index], 0xA5) << number << ", byte " << index;
    }
}

TEST(NumberToTextRoundTrip, HoldsForNumbersOfEveryLength)
{
    std::mt19937 random(1984);
    for (int round = 0; round < 20000; ++round)
    {
        const std::uint32_t bits = static_cast<std::uint32_t>(random()) >> (round % 32);
        const SInt32 number = static_cast<SInt32>(bits);
        ASSERT_EQ(textOf(number), std::to_string(number));
        ASSERT_EQ(numberOf(textOf(number)), number);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// StringToNum

struct NumberCase
{
    const char *name, *text;
    SInt32 number;
};

const NumberCase numberCases[] = {
    {"Empty", "", 0},
    {"PlusSign", "+7", 7},
    {"MinusAlone", "-", 0},
    {"PlusAlone", "+", 0},
    {"MinusZero", "-0", 0},
    {"LeadingZeros", "000123", 123},
    {"LeadingZerosAfterASign", "-000123", -123},
    {"LargestWithPlus", "+2147483647", largest},
    {"OneMoreThanTheLargest", "2147483648", smallest},
    {"OneLessThanTheSmallest", "-2147483649", largest},
    {"AllThirtyTwoBits", "4294967295", -1},
    {"MinusAllThirtyTwoBits", "-4294967295", 1},
    {"OneMoreThanThirtyTwoBits", "4294967296", 0},
    {"TwoMoreThanThirtyTwoBits", "4294967297", 1},
    {"LetterA", "A", 1},
    {"LettersAsDigits", "abc", 123},
    {"LetterAboveNine", "O", 15},
    {"SpaceBefore", " 5", 5},
    {"SpaceBehindIsAZero", "5 ", 50},
    {"SpaceHidesTheSign", " -5", 135},
    {"MinusInside", "5-3", 633},
    {"SecondSignIsADigit", "--5", -135},
    {"PlusAfterMinus", "-+5", -115},
    {"CommaInside", "1,234", 22234},
    {"PointInside", "1.5", 245},
    {"UpperHalf", "\xC9", 9},
};

class TextToNumber : public testing::TestWithParam<NumberCase>
{
};

TEST_P(TextToNumber, IsReadWithoutValidation)
{
    EXPECT_EQ(numberOf(GetParam().text), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Texts, TextToNumber, testing::ValuesIn(numberCases), [](const auto &row) { return std::string(row.param.name); });

TEST(TextToNumberCharacters, CountWithTheirLowFourBits)
{
    for (int code = 0; code < 256; ++code)
    {
        const char character = static_cast<char>(code);
        EXPECT_EQ(numberOf({'1', character}), 10 + code % 16) << "behind a digit, code " << code;
        EXPECT_EQ(numberOf({'+', character}), code % 16) << "behind a sign, code " << code;
        const bool isSign = character == '-' || character == '+';
        EXPECT_EQ(numberOf({character}), isSign ? 0 : code % 16) << "alone, code " << code;
    }
}

TEST(TextToNumberLength, MayBe255)
{
    EXPECT_EQ(numberOf(std::string(254, '0') + "8"), 8);
    EXPECT_EQ(numberOf("-" + std::string(253, '0') + "8"), -8);
    std::uint32_t wrapped = 0;
    for (int digit = 0; digit < 255; ++digit)
        wrapped = wrapped * 10 + 9;
    EXPECT_EQ(numberOf(std::string(255, '9')), static_cast<SInt32>(wrapped));
}

}   // namespace
