// Descriptions of resources: what each line becomes, byte by byte, and what is complained of, with the line's number.

#include "host/described_icons.h"
#include "host/resource_description.h"
#include "host/resource_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{

using host::WritableResource;
using testing::HasSubstr;
using testing::SizeIs;

std::vector<WritableResource> compiled(const std::string &description)
{
    return host::resourcesFromDescription(description);
}

std::string hexadecimal(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes)
    {
        constexpr char digits[] = "0123456789ABCDEF";
        text += digits[static_cast<unsigned char>(byte) >> 4];
        text += digits[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

// The bytes of the only resource, in hexadecimal.
std::string bytesOf(const std::string &description)
{
    const auto resources = compiled(description);
    return resources.size() == 1 ? hexadecimal(resources[0].bytes) : std::to_string(resources.size()) + " resources";
}

std::string squeezed(std::string text)
{
    std::erase(text, ' ');
    return text;
}

struct Meaning
{
    const char *name;
    std::string description;
    std::string bytes;   // in hexadecimal, spaces between them
};

void PrintTo(const Meaning &row, std::ostream *stream)
{
    *stream << row.name;
}

class Descriptions : public testing::TestWithParam<Meaning>
{
};

TEST_P(Descriptions, Mean)
{
    EXPECT_EQ(bytesOf(GetParam().description), squeezed(GetParam().bytes));
}

const Meaning meanings[] = {
    {"Nothing", "'none' 1\n", ""},
    {"Bytes", "'HEXA' 1\n bytes 00 01FF a0\n bytes 7f", "00 01 FF A0 7F"},
    {"Numbers", "'NUMB' 1\n byte 255\n byte -1\n word 258\n word -2\n long 0x1020304\n long -3", "FF FF 0102 FFFE 01020304 FFFFFFFD"},
    {"StringsInBytes", "'MIXD' 1\n string \"ab\"\n text \"cd\"", "02 61 62 63 64"},
    {"String", "'STR ' 1\n \"Caf\u00E9\"", "04 43 61 66 8E"},
    {"EmptyString", "'STR ' 1\n \"\"", "00"},
    {"StringInPieces", "'STR ' 1\n \"ab\"\n \"cd\"", "04 61 62 63 64"},
    {"StringWithBytesBehind", "'STR ' 1\n string \"a\"\n bytes EE", "01 61 EE"},
    {"Escapes", "'STR ' 1\n \"\\\"\\\\\\n\\t\\xC9\\x00'\"", "07 22 5C 0D 09 C9 00 27"},
    {"Text", "'TEXT' 1\n \"one\\n\"\n \"two\"", "6F 6E 65 0D 74 77 6F"},
    {"StringList", "'STR#' 1\n \"a\"\n \"\"\n \"bc\"", "0003 01 61 00 02 62 63"},
    {"EmptyStringList", "'STR#' 1\n", "0000"},
    {"Comments", "// a comment\n'HEXA' 1 // another\n\n // a third\n bytes 01 // 02\n", "01"},
    {"LineEndsOfOthers", "'STR ' 1\r\n \"a\"\r\n", "01 61"},
    {"TabsAsIndent", "'STR ' 1\n\t\"a\"", "01 61"},
    {"Menu",
     "'MENU' 130\n title \"T\"\n item \"A\" key \"K\" mark \"\u2022\" icon 2 bold underline\n separator\n item \"B\" check disabled\n",
     "0082 0000 0000 0000 0000 FFFFFFF3 01 54  01 41 02 4B A5 05  01 2D 00 00 00 00  01 42 00 00 12 00  00"},
    {"DisabledMenu", "'MENU' -2\n disabled\n title \"\"", "FFFE 0000 0000 0000 0000 FFFFFFFE 00 00"},
    {"Dialog", "'DLOG' 1\n bounds -1 2 30 400\n title \"Hi\"\n kind 4\n items 129\n hidden\n goaway\n refcon 0x12345678",
     "FFFF 0002 001E 0190 0004 0000 0100 12345678 0081 02 48 69"},
    {"PlainDialog", "'DLOG' 1\n items -1\n bounds 0 0 1 1", "0000 0000 0001 0001 0001 0100 0000 00000000 FFFF 00"},
    {"Alert", "'ALRT' 1\n bounds 1 2 3 4\n items 5", "0001 0002 0003 0004 0005 5555"},
    {"AlertStages", "'ALRT' 1\n bounds 1 2 3 4\n items 5\n stages 0xF421", "0001 0002 0003 0004 0005 F421"},
    {"DialogItems",
     "'DITL' 1\n button 1 2 3 4 \"OK\"\n text 1 2 3 4 \"odd\" disabled\n icon 1 2 3 4 -5\n user 1 2 3 4\n picture 1 2 3 4 9 disabled\n"
     " checkbox 1 2 3 4 \"\"\n radio 1 2 3 4 \"r!\"\n control 1 2 3 4 6\n edit 1 2 3 4 \"\" disabled",
     "0008"
     "00000000 0001 0002 0003 0004 04 02 4F 4B"
     "00000000 0001 0002 0003 0004 88 03 6F 64 64 00"
     "00000000 0001 0002 0003 0004 20 02 FFFB"
     "00000000 0001 0002 0003 0004 00 00"
     "00000000 0001 0002 0003 0004 C0 02 0009"
     "00000000 0001 0002 0003 0004 05 00"
     "00000000 0001 0002 0003 0004 06 02 72 21"
     "00000000 0001 0002 0003 0004 07 02 0006"
     "00000000 0001 0002 0003 0004 90 00"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Descriptions, testing::ValuesIn(meanings), [](const auto &row) { return std::string(row.param.name); });

// `side` rows, of which the first is this one and the others are of points.
std::string picture(std::string first, std::size_t side)
{
    first.resize(side, '.');
    std::string rows = " |" + first + "|\n";
    for (std::size_t row = 1; row < side; ++row)
        rows += " |" + std::string(side, '.') + "|\n";
    return rows;
}

std::string start(const std::string &bytes, std::size_t digits)
{
    return bytes.substr(0, digits);
}

TEST(DescribedIcons, OneBitPicturesHaveTheirMasksBehindThem)
{
    const std::string small = bytesOf("'ics#' 1\n" + picture("#.o #", 16));
    ASSERT_THAT(small, SizeIs(2 * 64));
    EXPECT_EQ(start(small, 8), "88000000");
    EXPECT_EQ(small.substr(64, 8), "B8000000");
    const std::string large = bytesOf("'ICN#' 1\n" + picture("#.o #.........................##", 32));
    ASSERT_THAT(large, SizeIs(2 * 256));
    EXPECT_EQ(start(large, 16), "8800000300000000");
    EXPECT_EQ(large.substr(256, 8), "B8000003");
}

TEST(DescribedIcons, SeveralSmallPicturesFollowEachOther)
{
    const std::string bytes = bytesOf("'SICN' 1\n" + picture("#", 16) + "\n // the next one\n" + picture("##", 16));
    ASSERT_THAT(bytes, SizeIs(2 * 64));
    EXPECT_EQ(start(bytes, 4), "8000");
    EXPECT_EQ(bytes.substr(64, 4), "C000");
}

TEST(DescribedIcons, ColorsAreTheNearestOfTheSystem)
{
    const std::string colors = "color r red\ncolor y FFF000\ncolor g 7F8182\n";
    EXPECT_EQ(start(bytesOf(colors + "'ics4' 1\n" + picture("#r.yg o", 16)), 8), "F301D000");
    const std::string eight = bytesOf(colors + "'ics8' 1\n" + picture("#r.yg o", 16));
    ASSERT_THAT(eight, SizeIs(2 * 256));
    const auto colorAt = [&](std::size_t pixel) { return host::eightBitColors()[std::stoul(eight.substr(2 * pixel, 2), nullptr, 16)]; };
    EXPECT_EQ(start(eight, 2), "FF");
    EXPECT_EQ(colorAt(1), (std::array<UInt8, 3>{0xDD, 0, 0}));
    EXPECT_EQ(colorAt(3), (std::array<UInt8, 3>{0xFF, 0xFF, 0}));
    EXPECT_EQ(colorAt(4), (std::array<UInt8, 3>{0x88, 0x88, 0x88}));
    EXPECT_EQ(eight.substr(4, 2), "00");
}

TEST(DescribedIcons, ThePalettesAreTheSystems)
{
    const auto colors = host::eightBitColors();
    ASSERT_EQ(colors.size(), 256u);
    EXPECT_EQ((std::set<std::array<UInt8, 3>>(colors.begin(), colors.end()).size()), 256u);
    const std::pair<std::size_t, std::array<UInt8, 3>> rows[] = {
        {0, {0xFF, 0xFF, 0xFF}}, {1, {0xFF, 0xFF, 0xCC}},   {6, {0xFF, 0xCC, 0xFF}},   {36, {0xCC, 0xFF, 0xFF}},
        {214, {0, 0, 0x33}},     {215, {0xEE, 0, 0}},       {224, {0x11, 0, 0}},       {225, {0, 0xEE, 0}},
        {235, {0, 0, 0xEE}},     {245, {0xEE, 0xEE, 0xEE}}, {254, {0x11, 0x11, 0x11}}, {255, {0, 0, 0}}};
    for (const auto &[index, color] : rows)
        EXPECT_EQ(colors[index], color) << index;
    EXPECT_EQ(host::fourBitColors().size(), 16u);
}

TEST(DescribedIcons, OneDrawingMakesAFamily)
{
    const auto small = compiled("color d 444444\ncolor w 444444 white\nicons 5 \"Name\" purgeable\n" + picture("dw", 16));
    ASSERT_THAT(small, SizeIs(3));
    EXPECT_EQ(small[0].type, fourCharCode("ics#"));
    EXPECT_EQ(small[1].type, fourCharCode("ics4"));
    EXPECT_EQ(small[2].type, fourCharCode("ics8"));
    EXPECT_EQ(start(hexadecimal(small[0].bytes), 4), "8000");
    EXPECT_EQ(hexadecimal(small[0].bytes).substr(64, 4), "C000");
    EXPECT_EQ(start(hexadecimal(small[1].bytes), 4), "EE00");
    for (const WritableResource &resource : small)
    {
        EXPECT_EQ(resource.id, 5);
        EXPECT_EQ(resource.name, "Name");
        EXPECT_EQ(resource.attributes, 0x20);
    }
    const auto large = compiled("icons 5\n" + picture("#", 32));
    ASSERT_THAT(large, SizeIs(3));
    EXPECT_EQ(large[2].type, fourCharCode("icl8"));
    EXPECT_THAT(large[2].bytes, SizeIs(1024));
}

TEST(DescribedHeads, SayTypeIDNameAndAttributes)
{
    const auto resources =
        compiled("'TEXT' -32768 \"\u00C4 name\" preload protected locked purgeable sysheap\n'TEXT' 0x7FFF\n'\u00E9\u00E9\u00E9\u00E9' 1\n");
    ASSERT_THAT(resources, SizeIs(3));
    EXPECT_EQ(resources[0].id, -32768);
    EXPECT_EQ(resources[0].name, "\x80 name");
    EXPECT_EQ(resources[0].attributes, 0x7C);
    EXPECT_EQ(resources[1].id, 32767);
    EXPECT_EQ(resources[1].name, "");
    EXPECT_EQ(resources[2].type, 0x8E8E8E8Eu);
}

struct Complaint
{
    const char *name;
    std::string description;
    std::size_t line;
    const char *message;
};

void PrintTo(const Complaint &row, std::ostream *stream)
{
    *stream << row.name;
}

class DescriptionComplaints : public testing::TestWithParam<Complaint>
{
};

TEST_P(DescriptionComplaints, NameTheLine)
{
    try
    {
        compiled(GetParam().description);
        ADD_FAILURE() << "nothing was complained of";
    }
    catch (const host::DescriptionError &error)
    {
        EXPECT_EQ(error.line, GetParam().line);
        EXPECT_THAT(error.what(), HasSubstr(GetParam().message));
    }
}

const Complaint complaints[] = {
    {"NoType", "STR 1\n", 1, "a type such as 'STR ' is wanted here, not: STR"},
    {"ShortType", "\n'STR' 1\n", 2, "a type has four characters"},
    {"NoID", "'STR '", 1, "an ID is wanted here, but the line ends"},
    {"IDTooLarge", "'STR ' 32768", 1, "32768 is no number from -32768 to 32767"},
    {"IDNoNumber", "'STR ' 12x", 1, "an ID is wanted here, not: 12x"},
    {"HugeNumber", "'STR ' 99999999999999999999", 1, "an ID is wanted here"},
    {"NoSuchAttribute", "'STR ' 1 purgable\n", 1, "nothing more is wanted in this line: purgable"},
    {"IndentWithoutHead", "// first\n  \"text\"\n", 2, "belongs to a resource above it"},
    {"Twice", "'STR ' 1\n \"a\"\n'STR ' 2\n \"b\"\n'STR ' 1\n \"c\"", 5, "described in line 1 already"},
    {"FamilyTwice", "icons 1\n" + picture("#", 16) + "'ics4' 1\n" + picture("#", 16), 18, "described in line 1 already"},
    {"NoEndOfText", "'STR ' 1\n \"text", 2, "there is no \" at the end"},
    {"NotMacRoman", "'STR ' 1\n \"\u4E2D\"", 2, "Mac Roman does not have"},
    {"NotUtf8", "'STR ' 1\n \"\xFF\"", 2, "Mac Roman does not have"},
    {"BadEscape", "'STR ' 1\n \"\\q\"", 2, "after a backslash"},
    {"BadByteEscape", "'STR ' 1\n \"\\x1\"", 2, "after a backslash"},
    {"LongString", "'STR ' 1\n \"" + std::string(256, 'x') + "\"", 1, "256 characters long"},
    {"LongListString", "'STR#' 1\n \"a\"\n \"" + std::string(256, 'x') + "\"", 3, "256 characters long"},
    {"OddBytes", "'HEXA' 1\n bytes 012", 2, "pairs of hexadecimal digits"},
    {"BadBytes", "'HEXA' 1\n bytes 0G", 2, "pairs of hexadecimal digits"},
    {"NumberTooLarge", "'HEXA' 1\n word 65536", 2, "65536 is no number from -32768 to 65535"},
    {"NoStatement", "'HEXA' 1\n \"text\"", 2, "bytes come in lines"},
    {"RowTooShort", "'ics#' 1\n |#|\n", 2, "the row has 1 characters instead of 16"},
    {"RowWithoutBar", "'ics#' 1\n |#\n", 2, "a bar at its end"},
    {"TooFewRows", "'ics#' 1\n |................|\n |................|\n'STR ' 1\n", 3, "the picture ends after 2 of 16 rows"},
    {"TooManyRows", "'ics#' 1\n" + picture("#", 17 - 1) + " |................|\n", 18, "more than 16 rows"},
    {"NoRows", "'icl8' 1\n", 1, "needs a picture of 32 rows"},
    {"NoPictures", "'SICN' 1\n", 1, "needs one picture"},
    {"HalfASmallPicture", "'SICN' 1\n" + picture("#", 16) + " |................|\n", 18, "the picture ends after 1 of 16 rows"},
    {"UnknownColor", "'ics#' 1\n" + picture("x", 16), 2, "no line `color` says what 'x' is"},
    {"ColorTooLate", "'ics4' 1\n" + picture("x", 16) + "color x red\n", 2, "no line `color`"},
    {"NoSuchColor", "color x pink\n", 1, "pink is no color"},
    {"PointAsColor", "color . red\n", 1, "not the point"},
    {"MenuWithoutTitle", "'MENU' 1\n item \"A\"\n", 1, "needs a line `title`"},
    {"MenuWithoutAnything", "'MENU' 1\n", 1, "needs a line `title`"},
    {"EmptyItem", "'MENU' 1\n title \"\"\n item \"\"\n", 3, "cannot be empty"},
    {"LongKey", "'MENU' 1\n title \"\"\n item \"A\" key \"AB\"", 3, "one character after `key`"},
    {"BadItemWord", "'MENU' 1\n title \"\"\n item \"A\" blue", 3, "not: blue"},
    {"BadMenuWord", "'MENU' 1\n color\n", 2, "a menu has lines"},
    {"DialogWithoutBounds", "'DLOG' 1\n items 1\n", 1, "needs a line `bounds`"},
    {"DialogWithoutItems", "'DLOG' 1\n bounds 0 0 1 1\n", 1, "needs a line `items`"},
    {"RectangleInsideOut", "'DLOG' 1\n bounds 10 0 0 1\n", 2, "turned inside out"},
    {"RectangleTooShort", "'DLOG' 1\n bounds 10 0 20\n", 2, "the right of a rectangle is wanted here"},
    {"NoItems", "'DITL' 1\n", 1, "one item at least"},
    {"NoSuchItem", "'DITL' 1\n knob 1 2 3 4\n", 2, "not: knob"},
    {"ItemWithoutText", "'DITL' 1\n button 1 2 3 4\n", 2, "an item's text is wanted here"},
    {"UserItemWithText", "'DITL' 1\n user 1 2 3 4 \"x\"\n", 2, "nothing more is wanted"},
    {"AlertWithoutItems", "'ALRT' 1\n bounds 0 0 1 1\n", 1, "needs a line `items`"},
};

INSTANTIATE_TEST_SUITE_P(Rows, DescriptionComplaints, testing::ValuesIn(complaints),
                         [](const auto &row) { return std::string(row.param.name); });

// ---------------------------------------------------------------------------------------------------------------------
// what the format can hold

TEST(ResourceWriter, RefusesMoreThanTheFormatCanHold)
{
    const WritableResource large = {fourCharCode("TEXT"), 1, "", 0, std::string(0x1000000, 'x')};
    WritableResource behind = large;
    behind.id = 2;
    EXPECT_NO_THROW(host::resourceFileBytes({large}));
    EXPECT_THROW(host::resourceFileBytes({large, behind}), host::ResourceFileError);
    std::vector<WritableResource> many;
    for (int id = 0; id < 6000; ++id)
        many.push_back({fourCharCode("TEXT"), static_cast<SInt16>(id), "", 0, ""});
    EXPECT_THROW(host::resourceFileBytes(many), host::ResourceFileError);
    many.resize(5000);
    EXPECT_NO_THROW(host::resourceFileBytes(many));
    for (WritableResource &resource : many)
        resource.name = std::string(30, 'n');
    EXPECT_THROW(host::resourceFileBytes(many), host::ResourceFileError);
}

TEST(ResourceText, IsDecodedAndNeverReadTooFar)
{
    using host::textOfResource;
    EXPECT_EQ(textOfResource(fourCharCode("STR "), "\4Caf\x8Emore"), "Caf\u00E9\n");
    EXPECT_EQ(textOfResource(fourCharCode("STR "), std::string("\0", 1)), "\n");
    EXPECT_EQ(textOfResource(fourCharCode("STR "), ""), std::nullopt);
    EXPECT_EQ(textOfResource(fourCharCode("STR "), "\5four"), std::nullopt);
    EXPECT_EQ(textOfResource(fourCharCode("STR#"), std::string("\0\2\1a\2bc", 7)), "a\nbc\n");
    EXPECT_EQ(textOfResource(fourCharCode("STR#"), std::string("\xFF\xFF\1a\2bc", 7)), std::nullopt);
    EXPECT_EQ(textOfResource(fourCharCode("TEXT"), "one\rtwo\r\rfour\x1B"), "one\ntwo\n\nfour\\x1B\n");
    EXPECT_EQ(textOfResource(fourCharCode("TEXT"), ""), "");
    EXPECT_EQ(textOfResource(fourCharCode("vers"), std::string("\x12\x34\x60\x05\0\3\0011\0012", 10)), "12.3.4 beta 5, region 3\n1\n2\n");
    EXPECT_EQ(textOfResource(fourCharCode("vers"), std::string("\x12\x34\x60\x05\0\3\0011\0022", 10)), std::nullopt);
    EXPECT_EQ(textOfResource(fourCharCode("PICT"), "\4Text"), std::nullopt);
}

}   // namespace
