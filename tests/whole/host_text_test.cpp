// `zerb text`: the plug-in's string functions from the command line.

#include "host/commands/text_bytes.h"
#include "host/commands/text_number_checks.h"

#include "tests/whole/host_complaints.h"
#include "tests/whole/host_text.h"

#include <gmock/gmock.h>

namespace
{

using namespace std::string_literals;
using host_tests::complaintOf;
using host_tests::Outcome;
using host_tests::Words;
using host_tests::zerbText;
using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

// ---------------------------------------------------------------------------------------------------------------------
// What it shows

struct OutputCase
{
    const char *name;
    Words words;
    const char *output;
};

void PrintTo(const OutputCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class HostTextOutput : public testing::TestWithParam<OutputCase>
{
};

TEST_P(HostTextOutput, IsWhatTheLibraryMakes)
{
    Outcome outcome = zerbText(GetParam().words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, GetParam().output);
    EXPECT_EQ(outcome.errors, "");
}

const OutputCase outputCases[] = {
    {"NumbersToText", {"from-number", "0", "42", "-7", "+7", "-2147483648", "2147483647"}, "0\n42\n-7\n7\n-2147483648\n2147483647\n"},
    {"FractionsToText", {"from-number", "--decimals", "2", "3.14159", "2.5", "2", "0.05", "1.999"}, "3.14\n2.50\n2\n0.05\n1.99\n"},
    {"NegativeFractionsToText", {"from-number", "--decimals", "1", "-1.25", "-12.5"}, "-1.2\n-12.5\n"},
    {"SmallNegativeKeepsItsSign", {"from-number", "--decimals", "2", "-0.004"}, "-0\n"},
    {"NoDecimals", {"from-number", "--decimals", "0", "7.9"}, "7\n"},
    {"SevenDecimalsShowTheBias", {"from-number", "--decimals", "7", "1"}, "1.0000001\n"},
    {"EightDecimals", {"from-number", "--decimals", "8", "2.5"}, "2.50000009\n"},
    {"NineDecimals", {"from-number", "--decimals", "9", "0.123456789"}, "0.123456889\n"},
    {"ExponentsAreNumbers", {"from-number", "--decimals", "2", "1e3"}, "1000\n"},
    {"TextToNumbers",
     {"to-number", "0", "42", "-7", "+7", "000123", "-2147483648", "2147483647"},
     "0\n42\n-7\n7\n123\n-2147483648\n2147483647\n"},
    {"TextToFractions",
     {"to-number", "--fraction", "12.5", "12,5", "-12,25", "3.75 kg", ".5", "3.", "0,001"},
     "12.5\n12.5\n-12.25\n3.75\n0.5\n3.0\n0.001\n"},
    {"TextToFractionsOfWholeNumbers", {"to-number", "--fraction", "-2"}, "-2.0\n"},
    {"HexadecimalToNumbers", {"to-number", "--hex", "1A", "$1a", "0x1A", "FFFFFFFF", "00000000FF"}, "26\n26\n26\n-1\n255\n"},
    {"TextToBytes", {"encode", "Hello", "", "R\u00E9sum\u00E9"}, "05 48 65 6C 6C 6F\n00\n06 52 8E 73 75 6D 8E\n"},
    {"DecomposedTextToBytes", {"encode", "e\u0301"}, "01 8E\n"},
    {"TextToLiterals", {"encode", "--c-string", "Hello", "1 \"\\ 2\u2026"}, "\"\\005Hello\"\n\"\\0071 \\042\\134 2\\311\"\n"},
    {"BytesToText", {"decode", "05 48 65 6C 6C 6F", "0548656c6c6f", "00", "06 52 8E 73 75 6D 8E"}, "Hello\nHello\n\nR\u00E9sum\u00E9\n"},
    {"LiteralsToText", {"decode", "\"\\005Hello\"", "\"\\x02\\x41\\311\""}, "Hello\nA\u2026\n"},
    {"BytesBehindTheLength", {"decode", "02 48 69 FF FF"}, "Hi\n"},
    {"ControlsAsEscapes", {"decode", "05 41 1B 0D 00 5C"}, "A\\x1B\\x0D\\x00\\\\\n"},
    {"BracketsAndBraces", {"encode", "[a,b]", "{}"}, "05 5B 61 2C 62 5D\n02 7B 7D\n"},
    {"NameOfAPartAsText", {"encode", "decode"}, "06 64 65 63 6F 64 65\n"},
    {"DashBehindTheMark", {"encode", "--", "-x", "--json"}, "02 2D 78\n06 2D 2D 6A 73 6F 6E\n"},
};

INSTANTIATE_TEST_SUITE_P(Words, HostTextOutput, testing::ValuesIn(outputCases), [](const auto &row) { return row.param.name; });

TEST(HostText, RawOutputIsTheTextItself)
{
    EXPECT_EQ(zerbText({"decode", "--raw", "05 41 1B 0D 00 5C"}).output, "A\x1B\r\0\\\n"s);
    EXPECT_EQ(zerbText({"shorten", "--raw", "--width", "600", "back\\slash\t"}).output, "back\\slash\t\n");
}

TEST(HostText, EveryMacRomanStringComesBack)
{
    for (int first = 1; first < 256; first += 51)   // from 1: a zero byte cannot be an argument
    {
        std::string bytes(1, 51);
        for (int code = first; code < first + 51; ++code)
            bytes += static_cast<char>(code);
        const std::string dump = host::hexDump(bytes);
        const json decoded = json::parse(zerbText({"decode", "--json", dump}).output)[0];
        EXPECT_EQ(decoded["hex"], dump);
        EXPECT_EQ(decoded["length"], 51);
        EXPECT_EQ(zerbText({"decode", decoded["c"]}).output, zerbText({"decode", dump}).output);
        EXPECT_EQ(zerbText({"encode", "--", decoded["text"]}).output, dump + "\n");
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// JSON

TEST(HostTextJson, HasNumbersAndTheirTexts)
{
    EXPECT_EQ(json::parse(zerbText({"from-number", "--json", "-7"}).output), json::parse(R"([{"number": -7, "text": "-7"}])"));
    EXPECT_EQ(json::parse(zerbText({"from-number", "--json", "--decimals", "1", "2.5"}).output),
              json::parse(R"([{"number": 2.5, "text": "2.5"}])"));
    EXPECT_EQ(json::parse(zerbText({"to-number", "--json", "7"}).output), json::parse(R"([{"text": "7", "number": 7, "exact": true}])"));
    EXPECT_EQ(json::parse(zerbText({"to-number", "--json", "--fraction", "1,5"}).output),
              json::parse(R"([{"text": "1,5", "number": 1.5, "exact": true}])"));
}

TEST(HostTextJson, HasBytesInBothForms)
{
    json expected = {{{"text", "Caf\u00E9"}, {"length", 4}, {"hex", "04 43 61 66 8E"}, {"c", "\"\\004Caf\\216\""}}};
    EXPECT_EQ(json::parse(zerbText({"encode", "--json", "Caf\u00E9"}).output), expected);
    EXPECT_EQ(json::parse(zerbText({"decode", "--json", "04 43 61 66 8E"}).output), expected);
}

TEST(HostTextJson, HasTheErrorInTheTextsPlace)
{
    Outcome outcome = zerbText({"encode", "--json", "\u65E5", "A"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("zerb: text: \u65E5: has a character that is not in Mac Roman"));
    json list = json::parse(outcome.output);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["text"], "\u65E5");
    EXPECT_THAT(list[0]["error"], HasSubstr("Mac Roman"));
    EXPECT_EQ(list[1]["hex"], "01 41");
}

// ---------------------------------------------------------------------------------------------------------------------
// Texts that are no plain numbers: read as the library reads them, with a word about it

struct GuessCase
{
    const char *name;
    Words words;
    const char *output, *remark;
};

void PrintTo(const GuessCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class HostTextGuess : public testing::TestWithParam<GuessCase>
{
};

TEST_P(HostTextGuess, IsRemarkedOn)
{
    Outcome outcome = zerbText(GetParam().words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, GetParam().output);
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().remark));
    EXPECT_THAT(outcome.errors, HasSubstr("; the library reads it as " + std::string(GetParam().output)));
}

const GuessCase guessCases[] = {
    {"Letters", {"to-number", "abc"}, "123\n", "zerb: text: abc: is not a whole number of 32 bits"},
    {"DigitsAndLetters", {"to-number", "12x"}, "128\n", "12x: is not a whole number"},
    {"Empty", {"to-number", ""}, "0\n", "\"\": is not a whole number"},
    {"Wrapped", {"to-number", "4294967297"}, "1\n", "4294967297: is not a whole number"},
    {"JustTooLarge", {"to-number", "2147483648"}, "-2147483648\n", "2147483648: is not a whole number"},
    {"NoHexadecimalDigit", {"to-number", "--hex", "1G"}, "16\n", "1G: is not one to eight hexadecimal digits"},
    {"NineHexadecimalDigits", {"to-number", "--hex", "123456789"}, "591751049\n", "123456789: is not one to eight"},
    {"PrefixAlone", {"to-number", "--hex", "$"}, "0\n", "$: is not one to eight"},
    {"NoDigits", {"to-number", "--fraction", "abc"}, "0.0\n", "abc: is not a number with up to nine decimals"},
    {"Exponent", {"to-number", "--fraction", "1e5"}, "15.0\n", "1e5: is not a number"},
    {"Grouping", {"to-number", "--fraction", "1,234.5"}, "22234.5\n", "1,234.5: is not a number"},
};

INSTANTIATE_TEST_SUITE_P(Words, HostTextGuess, testing::ValuesIn(guessCases), [](const auto &row) { return row.param.name; });

TEST(HostTextNumbers, AreExactUpToTheirLimits)
{
    for (const char *text : {"0", "+0", "-0", "007", "2147483647", "-2147483648"})
        EXPECT_TRUE(host::isExactWhole(text)) << text;
    for (const char *text : {"", "+", "-", "+-1", "--1", " 1", "1 ", "1.0", "2147483648", "-2147483649"})
        EXPECT_FALSE(host::isExactWhole(text)) << text;
    for (const char *text : {"0", "fF", "$0", "0x12345678", "0X00012345678", "FFFFFFFF"})
        EXPECT_TRUE(host::isExactHexadecimal(text)) << text;
    for (const char *text : {"", "$", "0x", "x1", "123456789", "-1", "1 "})
        EXPECT_FALSE(host::isExactHexadecimal(text)) << text;
    for (const char *text : {"1", ".5", "5.", "-1,5", "2147483647.999999999", "$ 3.75 (net)", "- 2", "+7", "3. kg"})
        EXPECT_TRUE(host::isExactFraction(text)) << text;
    for (const char *text :
         {"", ".", "-", "a", "5-3", "1-", "1.2.3", "1,2.3", "1e5", "1 000", "--5", "1.5-", "-.", "2147483648", "0.1234567890"})
        EXPECT_FALSE(host::isExactFraction(text)) << text;
}

// ---------------------------------------------------------------------------------------------------------------------
// Texts that are refused: status 1, and the rest is still done

struct RefusalCase
{
    const char *name;
    Words words;
    const char *complaint;
};

void PrintTo(const RefusalCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class HostTextRefusal : public testing::TestWithParam<RefusalCase>
{
};

TEST_P(HostTextRefusal, HasAReasonAndStatus1)
{
    Outcome outcome = zerbText(GetParam().words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("zerb: text: "));
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().complaint));
}

const RefusalCase refusalCases[] = {
    {"NoNumber", {"from-number", "x"}, "x: is not a whole number"},
    {"EmptyNumber", {"from-number", ""}, "\"\": is not a whole number"},
    {"FractionWithoutDecimals", {"from-number", "2.5"}, "--decimals N takes fractions"},
    {"NumberTooLarge", {"from-number", "2147483648"}, "2147483648: is not a whole number"},
    {"NumberTooSmall", {"from-number", "-2147483649"}, "from -2147483648 to 2147483647"},
    {"FractionTooLarge", {"from-number", "--decimals", "1", "2147483648"}, "smaller than 2147483648"},
    {"Infinity", {"from-number", "--decimals", "1", "inf"}, "inf: is not a number"},
    {"NotANumber", {"from-number", "--decimals", "1", "nan"}, "nan: is not a number"},
    {"FractionWithMoreBehindIt", {"from-number", "--decimals", "1", "2.5x"}, "2.5x: is not a number"},
    {"NotInMacRoman", {"encode", "\u65E5\u672C"}, "not in Mac Roman"},
    {"NotUtf8", {"encode", "a\xFFz"}, "a\\xFFz: has a character that is not in Mac Roman, or is no UTF-8"},
    {"NumberNotInMacRoman", {"to-number", "\u0663"}, "not in Mac Roman"},
    {"NoDump", {"decode", "xyz"}, "neither pairs of hexadecimal digits nor"},
    {"HalfAPair", {"decode", "01 4"}, "neither pairs"},
    {"EmptyDump", {"decode", ""}, "has no bytes"},
    {"CutOff", {"decode", "05 48 65"}, "its length byte says 5 but 2 characters follow"},
    {"LiteralWithoutEnd", {"decode", "\"\\001A"}, "the quote at the end is missing"},
    {"LiteralWithMoreBehindIt", {"decode", "\"\\001A\"B"}, "behind the closing quote"},
    {"LiteralOutsideAscii", {"decode", "\"\\001\u00E9\""}, "have to be escapes"},
    {"EscapeTooLarge", {"decode", "\"\\777\""}, "\\0 to \\377"},
    {"EscapeWithoutDigits", {"decode", "\"\\xg\""}, "without hexadecimal digits"},
    {"EscapeUnknown", {"decode", "\"\\q\""}, "an escape that is not read here"},
    {"EscapeCutOff", {"decode", "\"\\001A\\"}, "ends with a backslash"},
};

INSTANTIATE_TEST_SUITE_P(Words, HostTextRefusal, testing::ValuesIn(refusalCases), [](const auto &row) { return row.param.name; });

TEST(HostTextLengths, GoTo255Characters)
{
    EXPECT_EQ(zerbText({"encode", std::string(255, 'A')}).output.substr(0, 5), "FF 41");
    Outcome tooLong = zerbText({"encode", std::string(256, 'A')});
    EXPECT_EQ(tooLong.status, 1);
    EXPECT_THAT(tooLong.errors, HasSubstr("has 256 characters; a Pascal string has room for 255"));
    EXPECT_EQ(zerbText({"encode", std::string(300, 'A')}).status, 1) << "not cut to 44";
    std::string buffer(256, 'A');
    buffer[0] = 3;
    EXPECT_EQ(host::pascalFromDump(host::hexDump(buffer)), "\3AAA");
    EXPECT_THAT(complaintOf([&] { host::pascalFromDump(host::hexDump(buffer + "A")); }), HasSubstr("has 257 bytes"));
}

TEST(HostTextFailures, DoNotStopTheRest)
{
    Outcome outcome = zerbText({"from-number", "1", "x", "2"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "1\n2\n");
}

// ---------------------------------------------------------------------------------------------------------------------
// Wrong usage: status 2

struct TextUsageCase
{
    const char *name;
    Words words;
    const char *complaint;
};

void PrintTo(const TextUsageCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class HostTextUsage : public testing::TestWithParam<TextUsageCase>
{
};

TEST_P(HostTextUsage, IsRefusedWithStatus2)
{
    Outcome outcome = zerbText(GetParam().words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("zerb: text: "));
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().complaint));
    EXPECT_THAT(outcome.errors, HasSubstr("`zerb text --help` shows how"));
}

const TextUsageCase usageCases[] = {
    {"NoPart", {}, "a part is missing; it has "},
    {"NoSuchPart", {"upper", "x"}, "there is no part \"upper\"; it has "},
    {"NoText", {"encode"}, "TEXT is required"},
    {"NoNumber", {"from-number"}, "NUMBER is required"},
    {"TenDecimals", {"from-number", "--decimals", "10", "1"}, "\"10\" is not a number from 0 to 9"},
    {"NegativeDecimals", {"from-number", "--decimals=-1", "1"}, "\"-1\" is not a number from 0 to 9"},
    {"TwoKinds", {"to-number", "--hex", "--fraction", "1"}, "--fraction excludes --hex"},
    {"RawJson", {"decode", "--raw", "--json", "00"}, "--json excludes --raw"},
    {"NoWidth", {"shorten", "x"}, "--width is required"},
    {"WidthZero", {"shorten", "--width", "0", "x"}, "--width: 0 pixels are too narrow: a space and an ellipsis take "},
    {"WidthOfOnePixel", {"shorten", "--width", "1", "x"}, "1 pixels are too narrow"},
    {"WidthNegative", {"shorten", "--width=-90", "x"}, "\"-90\" is not a number"},
    {"WidthTooLarge", {"shorten", "--width", "32768", "x"}, "\"32768\" is not a number from 0 to 32767"},
};

INSTANTIATE_TEST_SUITE_P(Words, HostTextUsage, testing::ValuesIn(usageCases), [](const auto &row) { return row.param.name; });

TEST(HostTextHelp, ExplainsEveryPartWithExamples)
{
    Outcome general = zerbText({"--help"});
    EXPECT_EQ(general.status, 0);
    for (const char *part : {"from-number", "to-number", "encode", "decode", "shorten"})
    {
        EXPECT_THAT(general.output, HasSubstr("\n  " + std::string(part) + " "));
        Outcome help = zerbText({part, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_THAT(help.output, HasSubstr("\nExamples:\n  zerb text " + std::string(part) + " "));
    }
}

}   // namespace
