// The host's parts that need neither disk nor plug-in: codes, flags, numbers, and text for people and for programs.

#include "host/finder_flags.h"
#include "host/four_character_codes.h"
#include "host/json_text.h"
#include "host/name_pattern.h"
#include "host/numbers.h"
#include "host/text.h"

#include "platform/file_constants.h"
#include "tests/whole/host_complaints.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <random>

namespace
{

using namespace std::string_literals;
using host_tests::complaintOf;
using testing::ElementsAre;
using testing::HasSubstr;

// ---------------------------------------------------------------------------------------------------------------------
// Four-character codes

struct CodeCase
{
    const char *name, *text;
    OSType code;
};

class HostCodes : public testing::TestWithParam<CodeCase>
{
};

TEST_P(HostCodes, AreRead)
{
    EXPECT_EQ(host::codeFromText(GetParam().text), GetParam().code);
}

const CodeCase codeCases[] = {
    {"Letters", "TEXT", 0x54455854},
    {"AccentInMacRoman", "R\u00E9s1", 0x528E7331},
    {"AccentDecomposed", "Re\u0301s1", 0x528E7331},
    {"TrademarkInMacRoman", "abc\u2122", 0x616263AA},
    {"SpaceAtTheEnd", "PDF ", 0x50444620},
    {"Hexadecimal", "0x54455854", 0x54455854},
    {"HexadecimalSmallLetters", "0Xabcdef01", 0xABCDEF01},
    {"FourCharactersThatAreANumber", "0x12", 0x12},
    {"ZeroIsNone", "0", 0},
    {"EmptyIsNone", "", 0},
    {"AllBits", "0xFFFFFFFF", 0xFFFFFFFF},
    {"Question", "????", 0x3F3F3F3F},
};

INSTANTIATE_TEST_SUITE_P(Texts, HostCodes, testing::ValuesIn(codeCases), [](const auto &row) { return row.param.name; });

TEST(HostCodes, RefuseOtherLengths)
{
    EXPECT_THAT(complaintOf([] { host::codeFromText("TEX"); }), HasSubstr("has 3 characters"));
    EXPECT_THAT(complaintOf([] { host::codeFromText("T"); }), HasSubstr("has 1 character,"));
    EXPECT_THAT(complaintOf([] { host::codeFromText("TEXTS"); }), HasSubstr("has 5 characters"));
    EXPECT_THAT(complaintOf([] { host::codeFromText("0x123456789"); }), HasSubstr("hexadecimal"));
    EXPECT_THAT(complaintOf([] { host::codeFromText("0xTEXT"); }), HasSubstr("hexadecimal"));
    EXPECT_THAT(complaintOf([] { host::codeFromText("0x"); }), HasSubstr("hexadecimal"));
}

TEST(HostCodes, RefuseWhatMacRomanLacks)
{
    EXPECT_THAT(complaintOf([] { host::codeFromText("ab\u4E2Dc"); }), HasSubstr("Mac Roman"));
    EXPECT_THAT(complaintOf([] { host::codeFromText("ab\xFF\x80"); }), HasSubstr("Mac Roman"));
}

TEST(HostCodes, AreShownAsTextOnlyWhenPrintable)
{
    EXPECT_EQ(host::describeCode(0x54455854), "'TEXT'");
    EXPECT_EQ(host::describeCode(0x528E7331), "'R\u00E9s1'");
    EXPECT_EQ(host::describeCode(0), "0x00000000");
    EXPECT_EQ(host::describeCode(0x5445580A), "0x5445580A");
    EXPECT_EQ(host::describeCode(0x7F455854), "0x7F455854");
    EXPECT_EQ(host::textOfCode(0x1F202020), std::nullopt);
    EXPECT_EQ(host::textOfCode(0x20202020), "    ");
}

TEST(HostCodes, OfEveryByteThatIsShownCanBeTypedAgain)
{
    for (OSType byte = 0x20; byte <= 0xFF; ++byte)
    {
        OSType code = 0x61616100 | byte;
        std::optional<std::string> text = host::textOfCode(code);
        if (byte == 0x7F)
            EXPECT_EQ(text, std::nullopt);
        else
            EXPECT_EQ(host::codeFromText(text.value()), code) << std::hex << byte;
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Flags and numbers

TEST(HostFlags, HaveTheirNames)
{
    EXPECT_THAT(host::namesOfBits(host::finderFlags(), kIsInvisible | kHasBeenInited), ElementsAre("hasBeenInited", "isInvisible"));
    EXPECT_THAT(host::namesOfBits(host::finderFlags(), 0xFFFF).size(), 10u);
    EXPECT_TRUE(host::namesOfBits(host::finderFlags(), 0x0E30).size() == 2) << "the label and the reserved bits have no name of a flag";
    EXPECT_TRUE(host::namesOfBits(host::finderFlags(), 0).empty());
}

TEST(HostFlags, LabelsAreThreeBits)
{
    EXPECT_EQ(host::labelOfFlags(0xFFF1), 0);
    EXPECT_EQ(host::labelOfFlags(0x400C), 6);
    EXPECT_STREQ(host::nameOfLabel(6), "red");
    EXPECT_EQ(host::labelFromText("RED"), 6);
    EXPECT_EQ(host::labelFromText("7"), 7);
    EXPECT_EQ(host::labelFromText("none"), 0);
    EXPECT_THAT(complaintOf([] { host::labelFromText("8"); }), HasSubstr("no label"));
    EXPECT_THAT(complaintOf([] { host::labelFromText("mauve"); }), HasSubstr("orange"));
}

TEST(HostFlags, ChangesAreReadByName)
{
    host::FlagChange change;
    host::readFlagChange("+isInvisible,-HASBUNDLE,+nameLocked", change);
    EXPECT_EQ(change.bitsToSet, 0x5000);
    EXPECT_EQ(change.bitsToClear, 0x2000);
    host::readFlagChange("+isAlias", change);
    EXPECT_EQ(change.bitsToSet, 0xD000) << "a second option adds to the first";
}

TEST(HostFlags, ChangesThatCannotBeMeantAreRefused)
{
    host::FlagChange change;
    EXPECT_THAT(complaintOf([&] { host::readFlagChange("isInvisible", change); }), HasSubstr("does not begin with"));
    EXPECT_THAT(complaintOf([&] { host::readFlagChange("+invisible", change); }), HasSubstr("the flags are isOnDesk"));
    EXPECT_THROW(host::readFlagChange("", change), host::UsageError);
    EXPECT_THROW(host::readFlagChange("+isAlias,", change), host::UsageError);
}

TEST(HostNumbers, AreReadWhole)
{
    EXPECT_EQ(host::hexadecimalFromText("0x4000", 4), 0x4000u);
    EXPECT_EQ(host::numberFromText("0", 10), 0u);
    EXPECT_EQ(host::numberFromText("4294967295", 0xFFFFFFFF), 0xFFFFFFFFu);
    EXPECT_EQ(host::numberFromText("0xA", 10), 10u);
    for (const char *text : {"", "-1", "+1", " 1", "1 ", "11", "0x", "0xB", "4294967297", "one"})
        EXPECT_THROW(host::numberFromText(text, 10), host::UsageError) << text;
    for (const char *text : {"4000", "0x", "0x12345", "0x-1", "0xg", "x40"})
        EXPECT_THROW(host::hexadecimalFromText(text, 4), host::UsageError) << text;
}

TEST(HostNumbers, AreShown)
{
    EXPECT_EQ(host::hexadecimal(0xab, 4), "0x00AB");
    EXPECT_EQ(host::grouped(0), "0");
    EXPECT_EQ(host::grouped(999), "999");
    EXPECT_EQ(host::grouped(1000), "1,000");
    EXPECT_EQ(host::grouped(18446744073709551615u), "18,446,744,073,709,551,615");
}

// ---------------------------------------------------------------------------------------------------------------------
// Text

TEST(HostText, BytesBecomeUnitsByTheRuleOfNames)
{
    EXPECT_EQ(host::unitsFromBytes("a\u00E9\U0001F600"), u"a\u00E9\U0001F600");
    EXPECT_EQ(host::unitsFromBytes("\xFF"), std::u16string({char16_t(0xDCFF)}));
    EXPECT_EQ(host::unitsFromBytes("\xC3("), std::u16string({char16_t(0xDCC3), u'('}));
    EXPECT_EQ(host::unitsFromBytes("\xED\xA0\x80"), std::u16string({char16_t(0xD800)})) << "an encoded surrogate";
    EXPECT_EQ(host::unitsFromBytes("\xED\xB2\x80"), std::u16string({char16_t(0xDCED), char16_t(0xDCB2), char16_t(0xDC80)}))
        << "one that stands for a byte";
    EXPECT_EQ(host::unitsFromBytes("\xED\xA0\x80\xED\xB0\x80"),
              std::u16string({char16_t(0xDCED), char16_t(0xDCA0), char16_t(0xDC80), char16_t(0xDC00)}))
        << "the first of a pair is taken apart";
    EXPECT_EQ(host::unitsFromBytes("\xED\xA0\x80\xFF"),
              std::u16string({char16_t(0xDCED), char16_t(0xDCA0), char16_t(0xDC80), char16_t(0xDCFF)}))
        << "before a byte too";
}

TEST(HostText, EveryShortByteStringComesBackFromItsUnits)
{
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second)
        {
            std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(host::bytesFromUnits(host::unitsFromBytes(bytes)), bytes) << first << " " << second;
        }
}

TEST(HostText, RandomBytesComeBackFromTheirUnits)
{
    std::mt19937 random(1904);
    const std::string pieces[] = {
        "\xED",     "\xA0", "\x80", "\xB0", "\xBF", "\xED\xA0\x80", "\xED\xB0\x80", "\xED\xB2\x81", "\xF0\x9F\x98\x80",
        "\xC3\xA9", "a",    "\xFF"};
    for (int round = 0; round < 20000; ++round)
    {
        std::string bytes;
        for (auto count = random() % 12; count > 0; --count)
            bytes += pieces[random() % std::size(pieces)];
        ASSERT_EQ(host::bytesFromUnits(host::unitsFromBytes(bytes)), bytes) << host::printable(bytes);
    }
}

TEST(HostText, PathComponentsBecomeNames)
{
    HFSUniStr255 name = host::nameFromPathComponent("a:b\xFF").value();
    EXPECT_EQ(std::u16string(name.unicode, name.unicode + name.length), std::u16string({u'a', u'/', u'b', char16_t(0xDCFF)}));
    EXPECT_TRUE(host::nameFromPathComponent(std::string(255, 'x')).has_value());
    EXPECT_FALSE(host::nameFromPathComponent(std::string(256, 'x')).has_value());
}

TEST(HostText, ANameWithAnImpossibleLengthIsCutAndNotRead)
{
    HFSUniStr255 name = {};
    name.length = 0xFFFF;
    EXPECT_EQ(host::bytesFromName(name).size(), 255u);
}

TEST(HostText, PascalStringsAreMacRoman)
{
    const unsigned char text[] = "\x04"
                                 "R\x8Es\xCA rubbish";
    EXPECT_EQ(host::utf8FromPascal(text), "R\u00E9s\u00A0");
}

TEST(HostText, PrintingCannotTouchTheTerminal)
{
    EXPECT_EQ(host::printable("plain \u00E9 \U0001F600"), "plain \u00E9 \U0001F600");
    EXPECT_EQ(host::printable("a\nb\x1B[31m\x7F"), "a\\x0Ab\\x1B[31m\\x7F");
    EXPECT_EQ(host::printable("\0"s), "\\x00");
    EXPECT_EQ(host::printable("\xC2\x9B"), "\\u{009B}") << "a control character beyond ASCII";
    EXPECT_EQ(host::printable("\u202Egnp\u2069"), "\\u{202E}gnp\\u{2069}") << "letters running the other way";
    EXPECT_EQ(host::printable("\u2028"), "\\u{2028}");
    EXPECT_EQ(host::printable("\xFF\xED\xA0\x80"), "\\xFF\\xED\\xA0\\x80");
    EXPECT_EQ(host::printable("a\\x0A"), "a\\\\x0A") << "what looks like an escape is none";
    EXPECT_EQ(host::columnsOf("a\u00E9\U0001F600"), 3u);
}

struct PatternCase
{
    const char *pattern, *name;
    bool matches, matchesInAnyCase;
};

TEST(HostPatterns, AreThoseOfShellsOnCharacters)
{
    const PatternCase cases[] = {
        {"*", "", true, true},
        {"*", ".point", true, true},
        {"Let*", "Letter", true, true},
        {"let*", "Letter", false, true},
        {"L?tter", "L\u00E4tter", true, true},
        {"l\u00C4tter", "L\u00E4tter", false, true},
        {"[!a-k]*", "Letter", true, true},
        {"\\*", "x", false, false},
        {"\\*", "*", true, true},
        {"[", "[", true, true},
        {"x", "xy", false, false},
        {"bad?", "bad\xFF", true, true},
        {"*/*", "a/b", true, true},
    };
    for (const PatternCase &row : cases)
    {
        EXPECT_EQ(host::NamePattern(row.pattern).matches(row.name), row.matches) << row.pattern << " " << row.name;
        EXPECT_EQ(host::NamePattern(row.pattern, true).matches(row.name), row.matchesInAnyCase) << row.pattern << " " << row.name;
    }
}

TEST(HostJson, StringsAreAsciiAndLoseNothing)
{
    EXPECT_EQ(host::jsonString("a\"b\\c/\n\t\x01\x7F"), "\"a\\\"b\\\\c/\\n\\t\\u0001\\u007f\"");
    EXPECT_EQ(host::jsonString("\u00E9\U0001F600"), "\"\\u00e9\\ud83d\\ude00\"");
    EXPECT_EQ(host::jsonString("\xFF\xC3"), "\"\\udcff\\udcc3\"");
    EXPECT_EQ(host::jsonString("\xED\xA0\x80"), "\"\\ud800\"");
    EXPECT_EQ(host::jsonString("\0"s), "\"\\u0000\"");
}

TEST(HostJson, TreesKeepTheirOrderAndTheirNumbers)
{
    host::Json tree = {
        {"z", 1}, {"a", {-2, 18446744073709551615u, true, nullptr}}, {"empty", host::Json::array()}, {"none", host::Json::object()}};
    EXPECT_EQ(
        host::jsonText(tree),
        "{\n  \"z\": 1,\n  \"a\": [\n    -2,\n    18446744073709551615,\n    true,\n    null\n  ],\n  \"empty\": [],\n  \"none\": {}\n}\n");
}

TEST(HostJson, WhatIsWrittenIsReadBack)
{
    host::Json tree = host::Json::array({{{"name \"1\"", "line\nend\u00E9\U0001F600"}, {"list", {1, "two", {{"three", 3}}}}}});
    nlohmann::json expected = nlohmann::json::array({{{"name \"1\"", "line\nend\u00E9\U0001F600"}, {"list", {1, "two", {{"three", 3}}}}}});
    EXPECT_EQ(nlohmann::json::parse(host::jsonText(tree)), expected);
    EXPECT_EQ(nlohmann::json::parse(tree.compact()), expected);
    EXPECT_EQ(tree.compact().find('\n'), std::string::npos);
}

struct JsonNumberCase
{
    host::Json number;
    const char *written;
};

TEST(HostJson, NumbersKeepTheirKindAndTheirValue)
{
    const JsonNumberCase cases[] = {
        {-2.0, "-2.0"},
        {0.1, "0.1"},
        {1e300, "1e+300"},
        {0.0, "0.0"},
        {std::nan(""), "null"},
        {INFINITY, "null"},
        {true, "true"},
        {'a', "97"},
        {INT64_MIN, "-9223372036854775808"},
        {UINT64_MAX, "18446744073709551615"},
    };
    for (const JsonNumberCase &row : cases)
        EXPECT_EQ(row.number.compact(), row.written);
}

TEST(HostJson, MembersAreFoundAgainAndLaterOnesComeBehind)
{
    host::Json object = {{"b", 1}};
    object["a"] = host::Json::array();
    object["a"].push_back("x");
    object["b"] = 2;
    EXPECT_EQ(object.compact(), "{\"b\": 2, \"a\": [\"x\"]}");
}

}   // namespace
