// Short names of disk names: the plain ones, which are found again, and the hashed ones, which always fit.
#include "standin/files/names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

namespace
{

using namespace std::string_literals;
using Names = std::vector<std::string>;

std::vector<unsigned char> pascal(const std::string &text)
{
    std::vector<unsigned char> name(text.begin(), text.end());
    name.insert(name.begin(), static_cast<unsigned char>(text.size()));
    return name;
}

std::string textOf(ConstStr255Param name)
{
    return std::string(reinterpret_cast<const char *>(name + 1), name[0]);
}

std::string repeated(const std::string &text, int count)
{
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

struct PlainCase
{
    const char *name;
    std::string diskName, shortName;   // an empty one: there is none
};

void PrintTo(const PlainCase &row, std::ostream *out)
{
    *out << testing::PrintToString(row.diskName);
}

class PlainShortNames : public testing::TestWithParam<PlainCase>
{
};

TEST_P(PlainShortNames, AreFoundAgainOrRefused)
{
    Str63 name;
    std::memset(name, 0xA5, sizeof name);
    bool converts = standin::plainShortName(GetParam().diskName, name);
    ASSERT_EQ(converts, !GetParam().shortName.empty());
    if (!converts)
    {
        EXPECT_TRUE(std::all_of(std::begin(name), std::end(name), [](unsigned char byte) { return byte == 0xA5; }));
        return;
    }
    EXPECT_EQ(textOf(name), GetParam().shortName);
    Names lookedFor;
    EXPECT_EQ(standin::lookupNamesFromPascal(name, lookedFor), noErr);
    EXPECT_NE(std::find(lookedFor.begin(), lookedFor.end(), GetParam().diskName), lookedFor.end());
}

INSTANTIATE_TEST_SUITE_P(Rows, PlainShortNames,
                         testing::Values(PlainCase{"Ascii", "Read Me.txt", "Read Me.txt"}, PlainCase{"ColonIsASlash", "in:out", "in/out"},
                                         PlainCase{"Control", "Icon\r", "Icon\r"},
                                         PlainCase{"Longest", std::string(31, 'x'), std::string(31, 'x')},
                                         PlainCase{"TooLong", std::string(32, 'x'), ""},
                                         PlainCase{"LongestInTwoBytes", repeated("\xC3\xA9", 31), std::string(31, '\x8E')},
                                         PlainCase{"TooLongInTwoBytes", repeated("\xC3\xA9", 32), ""},
                                         PlainCase{"Decomposed", "cafe\xCC\x81", "caf\x8E"},
                                         PlainCase{"Mixed",
                                                   "\xC3\xA9"
                                                   "e\xCC\x81",
                                                   ""},
                                         PlainCase{"Foreign", "\xE4\xB8\xAD", ""}, PlainCase{"RawByte", "caf\xE9", ""},
                                         PlainCase{"Surrogate", "\xED\xA0\x80", ""}, PlainCase{"NotEqual", "\xE2\x89\xA0", "\xAD"},
                                         PlainCase{"Apple", "\xEF\xA3\xBF", "\xF0"}, PlainCase{"OhmIsNotOmega", "\xE2\x84\xA6", ""},
                                         PlainCase{"LooksHashed", "begin#1A2B3C.ext", "begin#1A2B3C.ext"}, PlainCase{"Empty", "", ""},
                                         PlainCase{"Dot", ".", ""}, PlainCase{"TwoDots", "..", ""}, PlainCase{"NoDiskName", "a/b", ""}),
                         [](const testing::TestParamInfo<PlainCase> &row) { return row.param.name; });

std::string hashed(const std::string &diskName, int digits = 6)
{
    Str63 name;
    standin::hashedShortName(diskName, digits, name);
    EXPECT_EQ(standin::hashDigitsOf(name), std::clamp(digits, 6, 16)) << textOf(name);
    return textOf(name);
}

// These stand in users' scripts: a row that fails means that the hash changed, which must not be.
TEST(HashedShortNames, NeverChange)
{
    EXPECT_EQ(hashed("a", 16), "a#82A2A958A9BECE5B");
    EXPECT_EQ(hashed("The quick brown fox jumps over the lazy dog.txt"), "The quick brown fox #7E2808.txt");
    EXPECT_EQ(hashed("The quick brown fox jumps over the lazy dog.txt", 16), "The quick #7E280803F8566B1F.txt");
}

std::string form(const std::string &shortName)
{
    std::string text = shortName;
    const std::size_t mark = text.rfind('#');
    return text.replace(mark + 1, 6, "HHHHHH");
}

TEST(HashedShortNames, KeepBeginningAndExtension)
{
    EXPECT_EQ(form(hashed(std::string(40, 'x') + ".jpeg")), std::string(19, 'x') + "#HHHHHH.jpeg");
    EXPECT_EQ(form(hashed(std::string(40, 'x') + ".c")), std::string(22, 'x') + "#HHHHHH.c");
    EXPECT_EQ(form(hashed(std::string(40, 'x') + ".jpegs")), std::string(24, 'x') + "#HHHHHH");
    EXPECT_EQ(form(hashed(std::string(40, 'x') + ".")), std::string(24, 'x') + "#HHHHHH");
    EXPECT_EQ(form(hashed("short.tar.gz")), "short.tar#HHHHHH.gz");
    EXPECT_EQ(form(hashed(".rc")), ".rc#HHHHHH");
    EXPECT_EQ(form(hashed("x.\xC3\xA9\xC3\xA9")), "x#HHHHHH.\x8E\x8E");
    EXPECT_EQ(form(hashed("in:out.a:b")), "in/out#HHHHHH.a/b");
}

TEST(HashedShortNames, ReplaceWhatDoesNotConvert)
{
    EXPECT_EQ(form(hashed("\xE4\xB8\xAD\xE6\x96\x87.txt")), "__#HHHHHH.txt");
    EXPECT_EQ(form(hashed("\xF0\x9F\x98\x80 smile")), "_ smile#HHHHHH");
    EXPECT_EQ(form(hashed("name.\xE4\xB8\xAD")), "name._#HHHHHH");
    EXPECT_EQ(form(hashed("caf\xE9.txt")), "caf_#HHHHHH.txt");
    EXPECT_EQ(form(hashed("e\xCC\x81"
                          "\xC3\xA9")),
              "\x8E\x8E#HHHHHH");
    EXPECT_EQ(form(hashed("\xFF")), "_#HHHHHH");
}

TEST(HashedShortNames, MoreDigitsContinueFewerOnes)
{
    const std::string name(60, 'n');
    const std::string all = hashed(name, 16).substr(15);
    std::set<std::string> different;
    for (int digits = 6; digits <= 16; ++digits)
    {
        const std::string shortName = hashed(name, digits);
        EXPECT_EQ(shortName.size(), 31u);
        EXPECT_EQ(shortName.substr(shortName.rfind('#') + 1), all.substr(0, static_cast<std::size_t>(digits)));
        different.insert(shortName);
    }
    EXPECT_EQ(different.size(), 11u);
    EXPECT_EQ(hashed(name, 0), hashed(name, 6));
    EXPECT_EQ(hashed(name, 99), hashed(name, 16));
}

TEST(HashedShortNames, AreAlwaysPossibleAndLegal)
{
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round)
    {
        std::string diskName(1 + random() % 40, 'x');
        std::generate(diskName.begin(), diskName.end(), [&] { return static_cast<char>(1 + random() % 255); });
        std::replace(diskName.begin(), diskName.end(), '/', ':');
        const int digits = 6 + static_cast<int>(random() % 11);
        const std::string name = hashed(diskName, digits);
        ASSERT_LE(name.size(), 31u);
        ASSERT_EQ(name.find_first_of(":\0"s), std::string::npos);
        ASSERT_EQ(name, hashed(diskName, digits));
    }
}

TEST(HashedShortNames, TellSimilarNamesApart)
{
    std::set<std::string> different;
    for (int number = 0; number < 1000; ++number)
        different.insert(hashed("a rather long name of a picture, number " + std::to_string(number) + ".jpg"));
    EXPECT_GE(different.size(), 998u);
}

struct HintCase
{
    const char *name;
    std::string shortName;
    int digits;
};

void PrintTo(const HintCase &row, std::ostream *out)
{
    *out << testing::PrintToString(row.shortName);
}

class HashHints : public testing::TestWithParam<HintCase>
{
};

TEST_P(HashHints, TellTheDigits)
{
    EXPECT_EQ(standin::hashDigitsOf(pascal(GetParam().shortName).data()), GetParam().digits);
}

INSTANTIATE_TEST_SUITE_P(Rows, HashHints,
                         testing::Values(HintCase{"WithExtension", "begin#1A2B3C.ext", 6}, HintCase{"WithoutExtension", "begin#1A2B3C4", 7},
                                         HintCase{"Most", "b#0123456789ABCDEF", 16}, HintCase{"TooManyDigits", "b#0123456789ABCDEF0", 0},
                                         HintCase{"TooFewDigits", "begin#1A2B3", 0}, HintCase{"LowerCase", "begin#1a2b3c", 0},
                                         HintCase{"NoMark", "begin1A2B3C", 0}, HintCase{"NoBeginning", "#1A2B3C.ext", 0},
                                         HintCase{"TextBehind", "begin#1A2B3Cx", 0}, HintCase{"LongExtension", "begin#1A2B3C.jpegs", 0},
                                         HintCase{"BareDot", "begin#1A2B3C.", 0}, HintCase{"TwoMarks", "a#b#1A2B3C.c#d", 6},
                                         HintCase{"TooLong", std::string(25, 'x') + "#1A2B3C", 0},
                                         HintCase{"Longest", std::string(24, 'x') + "#1A2B3C", 6}, HintCase{"Empty", "", 0},
                                         HintCase{"Plain", "Read Me.txt", 0}),
                         [](const testing::TestParamInfo<HintCase> &row) { return row.param.name; });

}   // namespace
