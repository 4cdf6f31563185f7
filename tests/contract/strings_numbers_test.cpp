// Conversions between numbers and text, value by value, and what they ask of the platform.

#include "tests/contract/strings_fixture.h"

#include <cmath>
#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr long smallest = -2147483647L - 1;

class StringsNumbers : public testing::Test
{
protected:
    PlatformDouble platform;
};

TEST_F(StringsNumbers, ValIsWhatThePlatformReads)
{
    EXPECT_EQ(Val(Buffer(pascal("123")).text()), 123);
    EXPECT_EQ(Val(Buffer(pascal("-123")).text()), -123);
    EXPECT_EQ(Val(Buffer(pascal("")).text()), 0);
    EXPECT_EQ(Val(Buffer(pascal("2147483647")).text()), 2147483647);
    EXPECT_EQ(Val(Buffer(pascal("-2147483648")).text()), smallest);
    EXPECT_EQ(Val(Buffer(pascal(" 1x")).text()), 18) << "no look of its own at the text: these are 0, 1 and 8 to the double";
    EXPECT_EQ(platform.calls(),
              (Calls{"StringToNum(\"123\", number)", "StringToNum(\"-123\", number)", "StringToNum(\"\", number)",
                     "StringToNum(\"2147483647\", number)", "StringToNum(\"-2147483648\", number)", "StringToNum(\" 1x\", number)"}));
}

TEST_F(StringsNumbers, StrIsWhatThePlatformWrites)
{
    Buffer destination;
    platform.nameAddress(destination.text(), "destination");
    Str(destination.text(), -1234);
    EXPECT_TRUE(destination.holds(pascal("-1234")));
    Str(destination.text(), smallest);
    EXPECT_TRUE(destination.holds(pascal("-2147483648")));
    EXPECT_EQ(platform.calls(), (Calls{"NumToString(-1234, destination)", "NumToString(-2147483648, destination)"}));
}

TEST_F(StringsNumbers, StrTakesTheLow32BitsOfItsValue)
{
    Buffer destination;
    Str(destination.text(), static_cast<long>(0x100000005));
    EXPECT_TRUE(destination.holds(pascal("5")));
    Buffer negative;
    Str(negative.text(), static_cast<long>(0xFFFFFFFF));
    EXPECT_TRUE(negative.holds(pascal("-1")));
}

struct RoundingCase
{
    double value;
    long expected;
};

TEST(StringsDoubleToLong, Rows)
{
    for (const RoundingCase &row : {
             // clang-format off
             RoundingCase{0.0, 0}, {-0.0, 0}, {0.4, 0}, {0.5, 1}, {0.7, 1}, {1.0, 1}, {2.4, 2}, {2.5, 3}, {3.5, 4}, {2.6, 3},
             {-0.4, 0}, {-0.5, -1}, {-0.7, -1}, {-0.9999, -1},
             {-1.0, -2}, {-1.2, -2}, {-1.5, -2}, {-1.9, -2}, {-2.0, -3}, {-2.7, -3}, {-100.0, -101},
             // through single precision
             {0.49999997, 0}, {0.49999999, 1}, {-0.49999997, 0}, {-0.49999999, -1}, {2.49999999, 3}, {2.4999998, 2},
             {8388607.5, 8388608}, {8388608.0, 8388608}, {8388608.5, 8388608}, {16777215.0, 16777215}, {16777216.0, 16777216},
             {16777217.0, 16777216}, {16777217.5, 16777218}, {16777219.0, 16777220}, {-16777217.0, -16777217},
             // around the end of the range
             {2147483520.0, 2147483520}, {2147483583.0, 2147483520}, {2147483584.0, 2147483647}, {2147483646.0, 2147483647},
             {2147483647.0, 2147483647}, {2147483648.0, 2147483647}, {2147483904.0, smallest}, {3.0e9, smallest}, {1e300, smallest},
             {-2147483520.0, -2147483521}, {-2147483647.0, 2147483647}, {-2147483648.0, 2147483647}, {-3.0e9, 2147483647}, {-1e300, 2147483647},
             // and beyond all ranges
             {infinity, smallest}, {-infinity, 2147483647}, {notANumber, smallest}, {-notANumber, smallest},
             {5e-324, 0}, {-5e-324, 0}, {1e-40, 0}, {3.4028235677973366e38, smallest}, {1.7976931348623157e308, smallest},
             // clang-format on
         })
        EXPECT_EQ(DoubleToLong(row.value), row.expected) << testing::PrintToString(row.value);
}

struct HexCase
{
    const char *name;
    std::string text;
    long value;
};

class StringsHex : public testing::TestWithParam<HexCase>
{
};

INSTANTIATE_TEST_SUITE_P(
    Rows, StringsHex,
    testing::Values(HexCase{"Empty", "", 0}, HexCase{"Small", "ff", 255}, HexCase{"Capital", "FF", 255},
                    HexCase{"Mixed", "aBcDeF", 0xABCDEF}, HexCase{"Digits", "12345678", 0x12345678}, HexCase{"OneDigit", "9", 9},
                    HexCase{"Zero", "0", 0}, HexCase{"DollarPrefix", "$FF", 255}, HexCase{"DollarAndDigit", "$1A", 26},
                    HexCase{"CPrefix", "0x1A", 26}, HexCase{"NoPrefix", "1A", 26}, HexCase{"AllBits", "FFFFFFFF", -1},
                    HexCase{"SignBit", "80000000", smallest}, HexCase{"Largest", "7fffffff", 2147483647},
                    HexCase{"InvalidIsAZeroDigit", "1G", 16}, HexCase{"InvalidOnly", "xyz", 0}, HexCase{"InvalidInside", "1 2", 0x102},
                    HexCase{"Minus", "-1", 1}, HexCase{"NinthFromTheEndDropsOut", "123456789", 0x23456789},
                    HexCase{"EightLeadingDigitsDropOut", "FFFFFFFF00000001", 1},
                    HexCase{"SeventeenthCountsAgain", "1" + std::string(16, '0'), 1},
                    HexCase{"TwentyFourthCountsAgain", "8" + std::string(23, '0'), smallest},
                    HexCase{"TwentyFifthDoesNot", "1" + std::string(24, '0'), 0},
                    HexCase{"CyclesAreOredTogether", "12000000000000000034", 0x12 << 8 | 0x34},
                    HexCase{"CyclesShareBits", "5" + std::string(15, '0') + "3", 7}, HexCase{"Longest", std::string(255, 'F'), -1}),
    rowName);

TEST_P(StringsHex, Row)
{
    Buffer text(pascal(GetParam().text));
    long value = 0x5A5A5A5A;
    StringHexToNum(text.text(), &value);
    EXPECT_EQ(value, GetParam().value);
    EXPECT_TRUE(text.isUntouched());
}

TEST(StringsHex, EveryCharacter)
{
    const std::string digits = "0123456789abcdef", capitals = "0123456789ABCDEF";
    for (int code = 0; code < 256; ++code)
    {
        const char character = static_cast<char>(code);
        std::size_t expected = std::min(digits.find(character), capitals.find(character));
        if (expected == std::string::npos)
            expected = 0;
        long value = -1;
        StringHexToNum(Buffer(pascal(std::string(1, character))).text(), &value);
        EXPECT_EQ(value, static_cast<long>(expected)) << code;
    }
}

struct WritingCase
{
    double value;
    short decimals;
    const char *text;
};

class StringsDoubleToText : public StringsNumbers
{
protected:
    static void expectText(const WritingCase &row)
    {
        Buffer destination;
        MyDoubleToString(destination.text(), row.value, row.decimals);
        EXPECT_TRUE(destination.holds(pascal(row.text))) << row.text << ", not " << charactersOf(destination.text());
    }
};

TEST_F(StringsDoubleToText, Rows)
{
    for (const WritingCase &row : {
             // clang-format off
             WritingCase{3.14159, 2, "3.14"}, {2.5, 2, "2.50"}, {2.0, 2, "2"}, {0.05, 2, "0.05"}, {0.0504, 3, "0.050"}, {0.0005, 3, "0"},
             {1.999, 2, "1.99"}, {100.01, 1, "100"}, {7.9, 0, "7"}, {1234.5678, -1, "1234"}, {-1.25, 1, "-1.2"}, {-12.5, 3, "-12.500"},
             {-0.004, 2, "-0"}, {0.9999999, 2, "0.100"},
             {0.29, 2, "0.29"}, {0.0, 2, "0"}, {-0.0, 2, "0"}, {-7.0, 0, "-7"}, {-1234.5678, -32768, "-1234"}, {0.001, 3, "0.001"},
             {0.0001234, 6, "0.000123"}, {0.000001, 6, "0.000001"}, {0.5, 9, "0.500000099"}, {16777215.25, 2, "16777215.25"},
             // the added bit
             {2.0, 6, "2"}, {1.0, 7, "1.0000001"}, {2.5, 8, "2.50000009"}, {0.99999995, 0, "0.1"}, {0.99999995, 1, "0.10"}, {-0.99999995, 0, "-0.1"},
             // the whole part through single precision
             {16777217.5, 1, "16777218.-4"}, {16777217.0, 1, "16777216.10"}, {16777219.0, 1, "16777220.-9"}, {16777217.95, 2, "16777218.0-4"},
             {-16777217.5, 1, "-16777218.-4"}, {2147483646.0, 1, "2147483647.-9"}, {1999999999.75, 1, "2000000000.-2"},
             // clang-format on
         })
        expectText(row);
}

// Meaningless, but the same everywhere: the steps are followed with integers that wrap and stay in their range.
TEST_F(StringsDoubleToText, BeyondWhatHasAMeaning)
{
    for (const WritingCase &row : {
             // clang-format off
             WritingCase{notANumber, 2, "--2147483648.-2147483648"}, {-notANumber, 2, "--2147483648.-2147483648"},
             {infinity, 2, "2147483647.2147483647"}, {-infinity, 2, "-2147483647.2147483647"},
             {1e300, 2, "2147483647.2147483647"}, {-1e300, 0, "-2147483647.2147483647"},
             {2147483648.0, 2, "2147483647.100"}, {-2147483648.0, 2, "-2147483647.100"},
             {0.5, 10, "0.705032845"}, {0.5, 11, "0.607876217"}, {0.5, 32, "0"}, {0.5, 32767, "0"}, {1.0, 31, "1.0-214"}, {0.5, 31, "0.-1073742038"},
             // clang-format on
         })
        expectText(row);
}

TEST_F(StringsDoubleToText, AsksForBothPartsInOrderAndIntoBuffersOfItsOwn)
{
    Buffer destination;
    platform.nameAddress(destination.text(), "destination");
    MyDoubleToString(destination.text(), -12.5, 3);
    MyDoubleToString(destination.text(), 2.0, 2);
    EXPECT_EQ(platform.calls(), (Calls{"NumToString(12, text)", "NumToString(500, text)", "NumToString(2, text)", "NumToString(0, text)"}));
}

struct ReadingCase
{
    const char *name;
    std::string text;
    double value;
    Calls asked;
};

class StringsTextToDouble : public testing::TestWithParam<ReadingCase>
{
protected:
    PlatformDouble platform;
};

std::string askedFor(const std::string &text)
{
    return "StringToNum(\"" + text + "\", number)";
}

ReadingCase reading(const char *name, const std::string &text, double value, const std::vector<std::string> &parts)
{
    ReadingCase row = {name, text, value, {}};
    for (const std::string &part : parts)
        row.asked.push_back(askedFor(part));
    return row;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StringsTextToDouble,
    testing::Values(
        // clang-format off
        reading("Point", "12.5", 12.5, {"12", "5"}),
        reading("Comma", "12,5", 12.5, {"12", "5"}),
        reading("NegativeComma", "-12,25", -12.25, {"-12", "25"}),
        reading("SpaceBehindTheSign", "- 2", -2.0, {"-2"}),
        reading("UnitBehindTheNumber", "3.75 kg", 3.75, {"3", "75"}),
        reading("ZerosBehindTheComma", "0,001", 0.001, {"0", "001"}),
        reading("ZeroBehindThePoint", "1.05", 1.05, {"1", "05"}),
        reading("NothingBeforeThePoint", ".5", 0.5, {"", "5"}),
        reading("NothingBehindThePoint", "3.", 3.0, {"3", ""}),
        reading("PlusIsPassedOver", "+7", 7.0, {"7"}),
        reading("ExponentMarkIsPassedOver", "1e5", 15.0, {"15"}),
        reading("NoDigits", "abc", 0.0, {""}),
        reading("Empty", "", 0.0, {""}),
        reading("SeparatorAlone", ",", 0.0, {"", ""}),
        reading("NegativeFraction", "-.5", -0.5, {"-", "5"}),
        reading("NegativeZero", "-0.0", -0.0, {"-0", "0"}),
        reading("SignBehindTheNumber", "1.5-", -(1 + 63 / 100.0), {"1", "5-"}),
        reading("SignBeforeTheFractionStays", "1.-5", -(1 - 5 / 100.0), {"1", "-5"}),
        reading("SignAnywhereInFrontOfASeparator", "1-2.5", -(232 + 0.5), {"1-2", "5"}),
        reading("PointGoesBeforeComma", "1,234.5", 22234.5, {"1,234", "5"}),
        reading("CommaBehindThePoint", "1.2,5", 1 + 325 / 1000.0, {"1", "2,5"}),
        reading("SecondPoint", "1.2.5", 1 + 345 / 1000.0, {"1", "2.5"}),
        reading("CurrencyAndGrouping", "$ 1'000.25", 1000.25, {"1000", "25"}),
        reading("NineDecimals", "0.123456789", 0.123456789, {"0", "123456789"}),
        reading("TenDecimalsWrap", "0.0000000005", 5 / 1410065408.0, {"0", "0000000005"}),
        reading("SmallestWholePartStaysNegative", "-2147483648.5", 2147483647.5, {"-2147483648", "5"}),
        reading("DivisorThatWrappedToZero", "1." + std::string(31, '0') + "5", infinity, {"1", std::string(31, '0') + "5"}),
        reading("NegativeAndDivisorZero", "-1." + std::string(31, '0') + "5", -infinity, {"-1", std::string(31, '0') + "5"}),
        reading("WholePartWraps", "4294967297.5", 1.5, {"4294967297", "5"}),
        reading("HighBytesArePassedOver", "\xC9" "1\xA5" "2\xFF", 12.0, {"12"}),
        reading("ZeroByteIsPassedOver", std::string("1\0" "2", 3), 12.0, {"12"})
        // clang-format on
        ),
    rowName);

TEST_P(StringsTextToDouble, Row)
{
    Buffer text(pascal(GetParam().text));
    double value = 1234.5;
    MyStringToDouble(text.text(), &value);
    EXPECT_EQ(value, GetParam().value);
    EXPECT_EQ(std::signbit(value), std::signbit(GetParam().value));
    EXPECT_EQ(platform.calls(), GetParam().asked);
    EXPECT_TRUE(text.isUntouched());
}

TEST_F(StringsNumbers, ZeroDividedByADivisorThatWrappedToZeroIsNotANumber)
{
    double value = 0;
    MyStringToDouble(Buffer(pascal("1." + std::string(32, '0'))).text(), &value);
    EXPECT_TRUE(std::isnan(value));
}

TEST_F(StringsNumbers, LongestTextIsReadWhole)
{
    double value = 0;
    MyStringToDouble(Buffer(pascal(std::string(251, 'x') + "12.5")).text(), &value);
    EXPECT_EQ(value, 12.5);
    platform.forgetCalls();
    MyStringToDouble(Buffer(pascal(std::string(254, '1') + ".")).text(), &value);
    EXPECT_EQ(platform.calls(), (Calls{askedFor(std::string(254, '1')), askedFor("")}));
    platform.forgetCalls();
    MyStringToDouble(Buffer(pascal(std::string(255, '1'))).text(), &value);
    EXPECT_EQ(platform.calls(), Calls{askedFor(std::string(255, '1'))});
}

// Which characters of all are looked at: each stands between two digits.
TEST_F(StringsNumbers, OnlyDigitsSignAndSeparatorsAreLookedAt)
{
    for (int code = 0; code < 256; ++code)
    {
        const char character = static_cast<char>(code);
        platform.forgetCalls();
        double value = 0;
        MyStringToDouble(Buffer(pascal(std::string("3") + character + "4")).text(), &value);
        Calls expected = {askedFor("34")};
        if (character == '.' || character == ',')
            expected = {askedFor("3"), askedFor("4")};
        else if ((code >= '0' && code <= '9') || character == '-')
            expected = {askedFor(std::string("3") + character + "4")};
        EXPECT_EQ(platform.calls(), expected) << code;
    }
}

}   // namespace
