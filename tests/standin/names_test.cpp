// Names on disk and as Unicode: rows for each rule, then every short string and many random ones there and back.
#include "standin/files/names.h"
#include "tests/how_built.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace
{

using namespace std::string_literals;
using Names = std::vector<std::string>;

std::u16string unicodeOf(const std::string &diskName)
{
    HFSUniStr255 name;
    std::memset(&name, 0xA5, sizeof name);
    standin::unicodeFromDiskName(diskName, name);
    return std::u16string(name.unicode, name.unicode + name.length);
}

std::vector<UniChar> unitsOf(const std::u16string &text)
{
    return std::vector<UniChar>(text.begin(), text.end());
}

OSErr diskNameOf(const std::u16string &text, std::string &diskName)
{
    return standin::diskNameFromUnicode(unitsOf(text).data(), text.size(), diskName);
}

std::vector<unsigned char> pascal(const std::string &text)
{
    std::vector<unsigned char> name(text.begin(), text.end());
    name.insert(name.begin(), static_cast<unsigned char>(text.size()));
    return name;
}

std::string repeated(const std::string &text, int count)
{
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

bool isDiskName(const std::string &bytes)
{
    return !bytes.empty() && bytes.size() <= 255 && bytes.find_first_of("/\0"s) == std::string::npos;
}

void expectItComesBack(const std::string &diskName)
{
    const std::u16string name = unicodeOf(diskName);
    ASSERT_LE(name.size(), diskName.size());
    std::string back;
    OSErr result = diskNameOf(name, back);
    if (diskName == "." || diskName == "..")
        ASSERT_EQ(result, bdNamErr);
    else
        ASSERT_TRUE(result == noErr && back == diskName)
            << testing::PrintToString(diskName) << " gives " << result << " " << testing::PrintToString(back);
}

// ---- disk name → Unicode ----

struct DiskNameCase
{
    const char *name;
    std::string diskName;
    std::u16string unicode;
};

void PrintTo(const DiskNameCase &row, std::ostream *out)
{
    *out << testing::PrintToString(row.diskName);
}

std::u16string units(std::initializer_list<int> values)
{
    return std::u16string(values.begin(), values.end());
}

class DiskNames : public testing::TestWithParam<DiskNameCase>
{
};

TEST_P(DiskNames, HaveThisNameAndComeBack)
{
    EXPECT_EQ(unicodeOf(GetParam().diskName), GetParam().unicode);
    expectItComesBack(GetParam().diskName);
}

INSTANTIATE_TEST_SUITE_P(Rows, DiskNames,
                         testing::Values(DiskNameCase{"Ascii", "Read Me.txt", u"Read Me.txt"},
                                         DiskNameCase{"ColonIsASlash", "in:out", u"in/out"}, DiskNameCase{"Return", "Icon\r", u"Icon\r"},
                                         DiskNameCase{"TwoBytes", "caf\xC3\xA9", u"caf\u00E9"},
                                         DiskNameCase{"DecomposedStays", "cafe\xCC\x81", u"cafe\u0301"},
                                         DiskNameCase{"ThreeBytes", "\xE4\xB8\xAD", u"\u4E2D"},
                                         DiskNameCase{"FourBytes", "\xF0\x9F\x98\x80", u"\U0001F600"},
                                         DiskNameCase{"LastCharacter", "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
                                         DiskNameCase{"NoCharacter", "\xEF\xBF\xBF\xEF\xBB\xBF", units({0xFFFF, 0xFEFF})},
                                         DiskNameCase{"Latin1", "caf\xE9", units({'c', 'a', 'f', 0xDCE9})},
                                         DiskNameCase{"StrayTrailByte", "\x80x", units({0xDC80, 'x'})},
                                         DiskNameCase{"CutShort", "\xE4\xB8", units({0xDCE4, 0xDCB8})},
                                         DiskNameCase{"CutShortByText", "\xE4\xB8z", units({0xDCE4, 0xDCB8, 'z'})},
                                         DiskNameCase{"OverlongTwo", "\xC1\x81", units({0xDCC1, 0xDC81})},
                                         DiskNameCase{"OverlongNul", "\xC0\x80", units({0xDCC0, 0xDC80})},
                                         DiskNameCase{"OverlongThree", "\xE0\x9F\xBF", units({0xDCE0, 0xDC9F, 0xDCBF})},
                                         DiskNameCase{"OverlongSlash", "\xE0\x80\xAF", units({0xDCE0, 0xDC80, 0xDCAF})},
                                         DiskNameCase{"OverlongFour", "\xF0\x8F\xBF\xBF", units({0xDCF0, 0xDC8F, 0xDCBF, 0xDCBF})},
                                         DiskNameCase{"BehindTheLast", "\xF4\x90\x80\x80", units({0xDCF4, 0xDC90, 0xDC80, 0xDC80})},
                                         DiskNameCase{"LeadThatNeverIs", "\xF5\xFF\xFE", units({0xDCF5, 0xDCFF, 0xDCFE})}),
                         [](const testing::TestParamInfo<DiskNameCase> &row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Surrogates, DiskNames,
    testing::Values(
        DiskNameCase{"Leading", "\xED\xA0\x80", units({0xD800})}, DiskNameCase{"LastLeading", "\xED\xAF\xBFx", units({0xDBFF, 'x'})},
        DiskNameCase{"Trailing", "\xED\xB0\x80", units({0xDC00})}, DiskNameCase{"BelowRawUnits", "\xED\xB1\xBF", units({0xDC7F})},
        DiskNameCase{"FirstRawUnit", "\xED\xB2\x80", units({0xDCED, 0xDCB2, 0xDC80})},
        DiskNameCase{"LastRawUnit", "\xED\xB3\xBF", units({0xDCED, 0xDCB3, 0xDCBF})},
        DiskNameCase{"AboveRawUnits", "\xED\xB4\x80", units({0xDD00})}, DiskNameCase{"LastTrailing", "\xED\xBF\xBF", units({0xDFFF})},
        DiskNameCase{"TrailingThenLeading", "\xED\xB0\x80\xED\xA0\x80", units({0xDC00, 0xD800})},
        DiskNameCase{"TwoLeading", "\xED\xA0\x80\xED\xA0\x81", units({0xD800, 0xD801})},
        DiskNameCase{"Pair", "\xED\xA0\xBD\xED\xB8\x80", units({0xDCED, 0xDCA0, 0xDCBD, 0xDE00})},
        DiskNameCase{"LeadingBeforeARawByte", "\xED\xA0\x80\xFF", units({0xDCED, 0xDCA0, 0xDC80, 0xDCFF})},
        DiskNameCase{"LeadingBeforeARawUnit", "\xED\xA0\x80\xED\xB2\x80", units({0xDCED, 0xDCA0, 0xDC80, 0xDCED, 0xDCB2, 0xDC80})},
        DiskNameCase{"RunOfLeadingBeforeATrailing", "\xED\xA0\x80\xED\xAF\xBF\xED\xBF\xBF",
                     units({0xDCED, 0xDCA0, 0xDC80, 0xDCED, 0xDCAF, 0xDCBF, 0xDFFF})},
        DiskNameCase{"LeadingBeforeACharacterOfTwoUnits", "\xED\xA0\x80\xF0\x9F\x98\x80", units({0xD800, 0xD83D, 0xDE00})},
        DiskNameCase{"CharacterOfTwoUnitsBeforeATrailing", "\xF0\x9F\x98\x80\xED\xB0\x80", units({0xD83D, 0xDE00, 0xDC00})},
        DiskNameCase{"CutShort", "\xED\xA0", units({0xDCED, 0xDCA0})}),
    [](const testing::TestParamInfo<DiskNameCase> &row) { return row.param.name; });

TEST(RoundTrip, OfEveryStringOfOneAndTwoBytes)
{
    for (int first = 1; first < 256; ++first)
        for (int second = 0; second < 256; ++second)
        {
            std::string bytes(1, static_cast<char>(first));
            if (second != 0)
                bytes.push_back(static_cast<char>(second));
            if (!isDiskName(bytes))
                continue;
            ASSERT_NO_FATAL_FAILURE(expectItComesBack(bytes));
        }
}

// Both ends of every class of byte that UTF-8 knows.
const std::string tellingBytes = ":.a\x7F\x80\x81\x8F\x90\x9F\xA0\xAF\xB0\xB1\xB2\xB3\xB4\xBF\xC0\xC1\xC2\xC3\xDF"
                                 "\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xF8\xFC\xFE\xFF";

TEST(RoundTrip, OfEveryStringOfThreeTellingBytes)
{
    for (char first : tellingBytes)
        for (char second : tellingBytes)
            for (char third : tellingBytes)
                ASSERT_NO_FATAL_FAILURE(expectItComesBack({first, second, third}));
}

TEST(RoundTrip, OfEveryFourPiecesWithSurrogates)
{
    const std::vector<std::string> pieces = {
        "",     "a",        "\xED\xA0\x80", "\xED\xAF\xBF", "\xED\xB0\x80", "\xED\xB2\x80", "\xED\xB3\xBF", "\xED\xBF\xBF",
        "\xED", "\xED\xA0", "\x80",         "\xFF",         "\xC3\xA9",     "\xED\x9F\xBF", "\xEE\x80\x80", "\xF0\x9F\x98\x80"};
    for (const std::string &first : pieces)
        for (const std::string &second : pieces)
            for (const std::string &third : pieces)
                for (const std::string &fourth : pieces)
                    ASSERT_NO_FATAL_FAILURE(expectItComesBack("x" + first + second + third + fourth));
}

std::string randomDiskName(std::mt19937 &random)
{
    std::string bytes;
    bool wild = random() % 2 == 0;
    for (std::size_t length = 1 + random() % (random() % 16 == 0 ? 255 : 12); length > 0; --length)
    {
        char byte = wild ? static_cast<char>(random()) : tellingBytes[random() % tellingBytes.size()];
        bytes.push_back(byte == '/' || byte == 0 ? ':' : byte);
    }
    return bytes;
}

const int randomNames = hasLongRuns() ? 1000000 : 50000;

TEST(RoundTrip, OfRandomStrings)
{
    std::mt19937 random(7);
    for (int round = 0; round < randomNames; ++round)
        ASSERT_NO_FATAL_FAILURE(expectItComesBack(randomDiskName(random)));
}

TEST(RoundTrip, OfTheLongestNames)
{
    for (const std::string &piece :
         {"a"s, "\xFF"s, "\xC3\xA9"s, "\xE4\xB8\xAD"s, "\xF0\x9F\x98\x80"s, "\xED\xA0\x80"s, "\xED\xA0\x80\xED\xB0\x80"s})
        for (std::size_t size : {253u, 254u, 255u})
            ASSERT_NO_FATAL_FAILURE(expectItComesBack(repeated(piece, 255).substr(0, size)));
    ASSERT_NO_FATAL_FAILURE(expectItComesBack(repeated("\xED\xA0\x80", 84) + "\xFF"));
}

TEST(RoundTrip, EveryNameThatIsAcceptedComesBack)
{
    std::mt19937 random(11);
    const std::u16string alphabet = units({'a',    '/',    '.',    0x7F,   0xA9,   0xC3,   0xE9,   0x301,  0xD7FF, 0xD800, 0xDBFF, 0xDC00,
                                           0xDC7F, 0xDC80, 0xDCA9, 0xDCC3, 0xDCB2, 0xDCED, 0xDCFF, 0xDD00, 0xDFFF, 0xE000, 0xFFFF});
    int accepted = 0;
    for (int round = 0; round < 200000; ++round)
    {
        std::u16string name;
        for (std::size_t length = 1 + random() % 6; length > 0; --length)
            name.push_back(alphabet[random() % alphabet.size()]);
        std::string diskName;
        if (diskNameOf(name, diskName) != noErr)
            continue;
        ++accepted;
        ASSERT_TRUE(isDiskName(diskName));
        ASSERT_EQ(unicodeOf(diskName), name);
    }
    EXPECT_GT(accepted, 50000);
    EXPECT_LT(accepted, 199000);
}

TEST(UnicodeFromDiskName, LooksAtNoMoreThan255Bytes)
{
    EXPECT_EQ(unicodeOf(std::string(300, 'x')), std::u16string(255, u'x'));
    EXPECT_EQ(unicodeOf(std::string(254, 'x') + "\xC3\xA9"), std::u16string(254, u'x') + units({0xDCC3}));
    EXPECT_EQ(unicodeOf(""), u"");
}

// ---- Unicode → disk name ----

struct UnicodeCase
{
    const char *name;
    std::u16string unicode;
    OSErr result;
    std::string diskName;
};

void PrintTo(const UnicodeCase &row, std::ostream *out)
{
    *out << testing::PrintToString(row.unicode);
}

class UnicodeNames : public testing::TestWithParam<UnicodeCase>
{
};

TEST_P(UnicodeNames, GiveThisDiskNameOrARefusal)
{
    std::string diskName = "untouched";
    EXPECT_EQ(diskNameOf(GetParam().unicode, diskName), GetParam().result);
    EXPECT_EQ(diskName, GetParam().result == noErr ? GetParam().diskName : "untouched");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnicodeNames,
    testing::Values(UnicodeCase{"Plain", u"Read Me", noErr, "Read Me"}, UnicodeCase{"SlashIsAColon", u"in/out", noErr, "in:out"},
                    UnicodeCase{"NotComposed", u"e\u0301", noErr, "e\xCC\x81"}, UnicodeCase{"RawByte", units({0xDCE9}), noErr, "\xE9"},
                    UnicodeCase{"Empty", u"", errFSMissingName, ""}, UnicodeCase{"Colon", u"a:b", bdNamErr, ""},
                    UnicodeCase{"Nul", u"a\0b"s, bdNamErr, ""}, UnicodeCase{"Dot", u".", bdNamErr, ""},
                    UnicodeCase{"TwoDots", u"..", bdNamErr, ""}, UnicodeCase{"ThreeDots", u"...", noErr, "..."},
                    UnicodeCase{"RawBytesThatAreText", units({0xDCC3, 0xDCA9}), bdNamErr, ""},
                    UnicodeCase{"RawBytesThatAreASurrogate", units({0xDCED, 0xDCB0, 0xDC80}), bdNamErr, ""},
                    UnicodeCase{"RawBytesThatAreARawUnit", units({0xDCED, 0xDCB2, 0xDC80}), noErr, "\xED\xB2\x80"},
                    UnicodeCase{"RawUnitBelowAscii", units({0xDC41}), noErr, "\xED\xB1\x81"},
                    UnicodeCase{"LeadingBeforeRaw", units({0xD800, 0xDCFF}), noErr, "\xF0\x90\x83\xBF"},
                    UnicodeCase{"Longest", std::u16string(255, u'x'), noErr, std::string(255, 'x')},
                    UnicodeCase{"TooManyUnits", std::u16string(256, u'x'), errFSNameTooLong, ""},
                    UnicodeCase{"LongestInTwoBytes", std::u16string(127, u'\u00E9') + u"x", noErr, repeated("\xC3\xA9", 127) + "x"},
                    UnicodeCase{"TooManyBytes", std::u16string(128, u'\u00E9'), errFSNameTooLong, ""},
                    UnicodeCase{"TooManyBytesOfAll", std::u16string(255, u'\uFFFF'), errFSNameTooLong, ""}),
    [](const testing::TestParamInfo<UnicodeCase> &row) { return row.param.name; });

TEST(DiskNameFromUnicode, NoNameAtAllIsMissing)
{
    std::string diskName = "untouched";
    Names diskNames = {"untouched"};
    EXPECT_EQ(standin::diskNameFromUnicode(nullptr, 0, diskName), errFSMissingName);
    EXPECT_EQ(standin::diskNameFromUnicode(nullptr, 5, diskName), errFSMissingName);
    EXPECT_EQ(standin::storedNameFromUnicode(nullptr, 5, diskName), errFSMissingName);
    EXPECT_EQ(standin::lookupNamesFromUnicode(nullptr, 5, diskNames), errFSMissingName);
    EXPECT_EQ(standin::storedNameFromPascal(pascal("").data(), diskName), errFSMissingName);
    EXPECT_EQ(standin::lookupNamesFromPascal(pascal("").data(), diskNames), errFSMissingName);
    EXPECT_EQ(diskName, "untouched");
    EXPECT_EQ(diskNames, Names{"untouched"});
}

// ---- names to store and names to look for ----

struct FormsCase
{
    const char *name;
    std::u16string unicode;
    OSErr result;
    std::string stored;
    Names lookedFor;
};

void PrintTo(const FormsCase &row, std::ostream *out)
{
    *out << testing::PrintToString(row.unicode);
}

class NameForms : public testing::TestWithParam<FormsCase>
{
};

TEST_P(NameForms, AreStoredAndLookedFor)
{
    const std::vector<UniChar> name = unitsOf(GetParam().unicode);
    std::string stored = "untouched";
    Names lookedFor = {"untouched"};
    EXPECT_EQ(standin::storedNameFromUnicode(name.data(), name.size(), stored), GetParam().result);
    EXPECT_EQ(standin::lookupNamesFromUnicode(name.data(), name.size(), lookedFor), GetParam().result);
    EXPECT_EQ(stored, GetParam().stored);
    EXPECT_EQ(lookedFor, GetParam().lookedFor);
}

std::u16string repeatedUnits(const std::u16string &text, int count)
{
    std::u16string result;
    while (count-- > 0)
        result += text;
    return result;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NameForms,
    testing::Values(
        FormsCase{"Ascii", u"Read Me", noErr, "Read Me", {"Read Me"}},
        FormsCase{"Composed", u"\u00E9", noErr, "\xC3\xA9", {"\xC3\xA9", "e\xCC\x81"}},
        FormsCase{"Decomposed", u"e\u0301", noErr, "\xC3\xA9", {"e\xCC\x81", "\xC3\xA9"}},
        FormsCase{"Mixed",
                  u"\u00E9e\u0301",
                  noErr,
                  "\xC3\xA9\xC3\xA9",
                  {"\xC3\xA9"
                   "e\xCC\x81",
                   "\xC3\xA9\xC3\xA9",
                   "e\xCC\x81"
                   "e\xCC\x81"}},
        FormsCase{"OneFormOnly", u"\u4E2D/\u2260", noErr, "\xE4\xB8\xAD:\xE2\x89\xA0", {"\xE4\xB8\xAD:\xE2\x89\xA0"}},
        FormsCase{"RawByteBesideText",
                  units({0xDCFF, 'e', 0x301}),
                  noErr,
                  "\xFF\xC3\xA9",
                  {"\xFF"
                   "e\xCC\x81",
                   "\xFF\xC3\xA9"}},
        FormsCase{"DecomposedIsTooLong", repeatedUnits(u"\u00E9", 100), noErr, repeated("\xC3\xA9", 100), {repeated("\xC3\xA9", 100)}},
        FormsCase{"ExactIsTooLong", repeatedUnits(u"e\u0301", 100), noErr, repeated("\xC3\xA9", 100), {repeated("\xC3\xA9", 100)}},
        FormsCase{"AllAreTooLong", repeatedUnits(u"\u00E9", 128), errFSNameTooLong, "untouched", {"untouched"}},
        FormsCase{"TooManyUnits", repeatedUnits(u"e\u0301", 128), errFSNameTooLong, "untouched", {"untouched"}},
        FormsCase{"Refused", u"e\u0301:", bdNamErr, "untouched", {"untouched"}},
        FormsCase{"Dot", u".", bdNamErr, "untouched", {"untouched"}}),
    [](const testing::TestParamInfo<FormsCase> &row) { return row.param.name; });

TEST(PascalNames, AreInTheSystemsEncoding)
{
    std::string stored;
    Names lookedFor;
    EXPECT_EQ(standin::storedNameFromPascal(pascal("caf\x8E/\xAD").data(), stored), noErr);
    EXPECT_EQ(stored, "caf\xC3\xA9:\xE2\x89\xA0");
    EXPECT_EQ(standin::lookupNamesFromPascal(pascal("caf\x8E/\xAD").data(), lookedFor), noErr);
    EXPECT_EQ(lookedFor, (Names{"caf\xC3\xA9:\xE2\x89\xA0", "cafe\xCC\x81:\xE2\x89\xA0"}));
    EXPECT_EQ(standin::storedNameFromPascal(pascal("a:b").data(), stored), bdNamErr);
    EXPECT_EQ(standin::lookupNamesFromPascal(pascal("..").data(), lookedFor), bdNamErr);
    EXPECT_EQ(standin::storedNameFromPascal(pascal(std::string(255, 'x')).data(), stored), noErr);
    EXPECT_EQ(stored, std::string(255, 'x'));
    EXPECT_EQ(standin::lookupNamesFromPascal(pascal(std::string(255, '\x8E')).data(), lookedFor), errFSNameTooLong);
}

// ---- sidecars ----

TEST(SidecarNames, BeginWithDotAndLowLine)
{
    EXPECT_EQ(standin::sidecarNameOf("name"), "._name");
    EXPECT_EQ(standin::sidecarNameOf("."), "._.");
    EXPECT_TRUE(standin::looksLikeSidecar("._name"));
    EXPECT_TRUE(standin::looksLikeSidecar("._."));
    for (const char *other : {"._", ".name", "_.name", "", ".", "name._"})
        EXPECT_FALSE(standin::looksLikeSidecar(other)) << other;
    EXPECT_TRUE(standin::hasRoomForSidecar(std::string(253, 'x')));
    EXPECT_FALSE(standin::hasRoomForSidecar(std::string(254, 'x')));
}

}   // namespace
