// The drawing of text: where it goes, how the pen moves, and what there is without a font. Which font it is matters to the stored picture alone.
#include "standin/screen.h"
#include "tests/standin/disks.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_port.h"

#include <algorithm>
#include <cstring>

namespace
{

using standin::Pixel;
using support::looksLike;
using support::playRole;
using support::Role;
using support::RoleArguments;
using support::rowsOf;
using support::TestPort;

struct Pascal
{
    explicit Pascal(const std::string &characters)
    {
        text[0] = static_cast<unsigned char>(characters.size());
        std::memcpy(text + 1, characters.data(), characters.size());
    }
    operator ConstStr255Param() const { return text; }
    Str255 text{};
};

void drawAt(SInt16 h, SInt16 v, const std::string &characters)
{
    MoveTo(h, v);
    DrawString(Pascal(characters));
}

// What is not white.
Rect inkOf(GrafPtr port)
{
    const support::Picture picture = support::pictureOf(port);
    Rect ink = {0, 0, 0, 0};
    for (SInt16 v = 0; v < picture.height; ++v)
        for (SInt16 h = 0; h < picture.width; ++h)
            if (picture.pixels[static_cast<std::size_t>(v * picture.width + h)] != standin::whitePixel)
            {
                const Rect pixel = {v, h, static_cast<SInt16>(v + 1), static_cast<SInt16>(h + 1)};
                ink = EmptyRect(&ink) ? pixel
                                      : Rect{std::min(ink.top, pixel.top), std::min(ink.left, pixel.left),
                                             std::max(ink.bottom, pixel.bottom), std::max(ink.right, pixel.right)};
            }
    return ink;
}

TEST(DrawingText, MovesThePenByExactlyTheWidth)
{
    TestPort port(100, 20);
    const Pascal text("The quick brown fox \xA9 \xC9");
    MoveTo(-7, 12);
    DrawString(text);
    EXPECT_EQ(port->pen.pnLoc.h, -7 + StringWidth(text));
    EXPECT_EQ(port->pen.pnLoc.v, 12);
    DrawChar('W');
    EXPECT_EQ(port->pen.pnLoc.h, -7 + StringWidth(text) + CharWidth('W'));
    DrawString(Pascal(""));
    EXPECT_EQ(port->pen.pnLoc.h, -7 + StringWidth(text) + CharWidth('W'));
}

TEST(DrawingText, IsTheSameCharacterByCharacter)
{
    TestPort port(100, 20), single(100, 20);
    const std::string characters = "AVA To gj\x8E";
    SetPort(port);
    drawAt(3, 14, characters);
    SetPort(single);
    MoveTo(3, 14);
    for (char character : characters)
        DrawChar(character);   // which may be negative
    EXPECT_EQ(rowsOf(port), rowsOf(single));
    EXPECT_EQ(port->pixels, single->pixels);
}

TEST(DrawingText, StandsOnItsBaseLineBetweenAscentAndDescent)
{
    FontInfo info = {};
    GetFontInfo(&info);
    EXPECT_GT(info.ascent, 0);
    EXPECT_GT(info.descent, 0);
    EXPECT_GE(info.leading, 0);
    EXPECT_GE(info.widMax, CharWidth('W'));
    TestPort port(60, 60);
    drawAt(10, 30, "H");
    EXPECT_EQ(inkOf(port).bottom, 30);
    EXPECT_GE(inkOf(port).left, 10);
    EXPECT_LE(inkOf(port).right, 10 + CharWidth('H'));
    drawAt(10, 30, "gjpqy|()ABdfh");
    EXPECT_GT(inkOf(port).bottom, 30);
    EXPECT_LE(inkOf(port).bottom, 30 + info.descent);
    EXPECT_GE(inkOf(port).top, 30 - info.ascent);
}

TEST(DrawingText, SaysWhereItChangedThePort)
{
    TestPort port(60, 30);
    drawAt(10, 20, "Hg");
    const Rect ink = inkOf(port);
    Rect common;
    ASSERT_TRUE(SectRect(&ink, &port->changed, &common));
    EXPECT_EQ(std::memcmp(&common, &ink, sizeof ink), 0);
    EXPECT_LE(port->changed.right - port->changed.left, StringWidth(Pascal("Hg")) + 2);
}

TEST(DrawingText, MixesTheForegroundColourWithWhatIsThere)
{
    TestPort port(60, 20);
    const RGBColor red = {0xFFFF, 0, 0};
    RGBForeColor(&red);
    drawAt(2, 14, "Mixed @");
    int full = 0;
    for (Pixel pixel : port->pixels)
    {
        EXPECT_EQ(pixel & 0xFFFF0000, 0xFFFF0000);
        EXPECT_EQ(pixel >> 8 & 0xFF, pixel & 0xFF);
        full += pixel == 0xFFFF0000 ? 1 : 0;
    }
    EXPECT_GT(full, 0);
}

TEST(DrawingText, ShowsOnlyWhatTheClipLetsThrough)
{
    TestPort whole(80, 24), clipped(80, 24);
    const Rect clip = {8, 11, 15, 42};
    SetPort(whole);
    drawAt(-3, 16, "Clipped anywhere");
    SetPort(clipped);
    ClipRect(&clip);
    drawAt(-3, 16, "Clipped anywhere");
    EXPECT_EQ(whole->pen.pnLoc.h, clipped->pen.pnLoc.h);
    for (int v = 0; v < 24; ++v)
        for (int h = 0; h < 80; ++h)
        {
            const auto index = static_cast<std::size_t>(v * 80 + h);
            const bool inside = PtInRect({static_cast<SInt16>(v), static_cast<SInt16>(h)}, &clip);
            EXPECT_EQ(clipped->pixels[index], inside ? whole->pixels[index] : standin::whitePixel) << h << ", " << v;
        }
}

TEST(DrawingText, OfControlCharactersIsNotSeen)
{
    TestPort port(60, 20);
    drawAt(5, 14, std::string("\0\r\n\t\x1B\x7F ", 7));
    EXPECT_TRUE(EmptyRect(&port->changed));
    EXPECT_EQ(port->pen.pnLoc.h, 5 + CharWidth(' '));
}

TEST(DrawingText, AtTheEndsOfThePlaneWrapsThePenAround)
{
    TestPort port(Rect{32000, 32000, 32767, 32767}), other(Rect{-32768, -32768, -32700, -32700});
    const Pascal text(std::string(255, 'W'));
    for (GrafPtr each : {static_cast<GrafPtr>(port), static_cast<GrafPtr>(other)})
    {
        SetPort(each);
        for (const Point place : {Point{32767, 32767}, Point{-32768, -32768}, Point{32767, 32700}, Point{-32768, 32767}})
        {
            MoveTo(place.h, place.v);
            DrawString(text);
            EXPECT_EQ(each->pen.pnLoc.h, static_cast<SInt16>(place.h + StringWidth(text)));
        }
    }
}

TEST(DrawingText, PictureOfALine)
{
    if (const char *problem = standin::screenProblem())
        GTEST_SKIP() << problem;
    TestPort port(180, 40);
    drawAt(4, 15, "Pack my box, 1234567890");
    const RGBColor green = {0, 0x8000, 0}, grey = {0x4000, 0x4000, 0x4000};
    const Rect dark = {20, 0, 40, 180};
    RGBForeColor(&green);
    PaintRect(&dark);
    ForeColor(whiteColor);
    drawAt(4, 33, "R\x8Esum\x8E \xC9 \xA9 \xF0");
    RGBForeColor(&grey);
    drawAt(100, 33, "disabled");
    EXPECT_TRUE(looksLike(port, "text_line"));
}

// Everything without a font: 6 pixels and a box for each character.
const Role drawsWithoutAFont("drawsWithoutAFont", [](const RoleArguments &) {
    ASSERT_NE(standin::screenProblem(), nullptr);
    EXPECT_STREQ(standin::screenProblem(), "there is no font on this machine, and boxes stand for characters");
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(CharWidth(static_cast<SInt16>(code)), code < 0x20 || code == 0x7F ? 0 : 6) << code;
    EXPECT_EQ(StringWidth(Pascal(std::string(255, 'm'))), 1530);
    FontInfo info = {};
    GetFontInfo(&info);
    EXPECT_EQ(info.ascent, 10);
    EXPECT_EQ(info.widMax, 6);
    TestPort port(14, 11);
    drawAt(1, 10, "a b");
    EXPECT_EQ(rowsOf(port), "..............\n.#####.......#\n.#...#.......#\n.#...#.......#\n.#...#.......#\n"
                            ".#...#.......#\n.#...#.......#\n.#...#.......#\n.#...#.......#\n.#####.......#\n"
                            "..............\n");
});

TEST(DrawingText, WithoutAFontIsBoxes)
{
    const support::TemporaryFolder folder;
    support::writeFile(folder / "fonts.conf",
                       "<?xml version=\"1.0\"?><fontconfig><cachedir>" + (folder / "cache") + "</cachedir></fontconfig>");
    playRole("drawsWithoutAFont", {}, {0, {"FONTCONFIG_FILE=" + (folder / "fonts.conf")}});
}

const Role tellsFont("tellsFont", [](const RoleArguments &) {
    const char *problem = standin::screenProblem();
    std::printf("%s\n%d %d\n", problem != nullptr ? problem : "none", CharWidth('i'), CharWidth('W'));
});

TEST(DrawingText, IsInTheFamilyThatTheEnvironmentNames)
{
    const std::string told = playRole("tellsFont", {}, {0, {"ZERB_FONT=DejaVu Sans Mono"}});
    if (told.substr(0, 5) != "none\n")
        GTEST_SKIP() << told;
    int narrow = 0, wide = 1;
    ASSERT_EQ(std::sscanf(told.c_str(), "none\n%d %d", &narrow, &wide), 2) << told;
    EXPECT_EQ(narrow, wide);
    EXPECT_EQ(playRole("tellsFont", {}, {0, {"ZERB_FONT="}}), playRole("tellsFont", {}, {0, {"ZERB_FONT=DejaVu Sans"}}));
}

TEST(DrawingText, InAFamilyThatIsNotThereIsInAnother)
{
    const std::string told = playRole("tellsFont", {}, {0, {"ZERB_FONT=No Such Family"}});
    EXPECT_EQ(told.rfind("there is no font ", 0), 0U) << told;
}

// Shift-JIS: 0x82 0xA0 is one character; its second byte alone is another, and 0x82 alone is none.
const Role measuresJapanese("measuresJapanese", [](const RoleArguments &) {
    const int pair = StringWidth(Pascal("\x82\xA0"));
    EXPECT_GT(pair, 0);
    EXPECT_EQ(StringWidth(Pascal("\x82\xA0\x82\xA0 x")), 2 * pair + CharWidth(' ') + CharWidth('x'));
    EXPECT_EQ(StringWidth(Pascal("\x82")), CharWidth(0x82));
    EXPECT_EQ(StringWidth(Pascal("\x82 ")), CharWidth(0x82) + CharWidth(' '));
    for (int lead = 0x88; lead < 0x98; ++lead)   // more of them than are kept
        for (int trail = 0x80; trail < 0xF0; ++trail)
        {
            const unsigned char text[] = {2, static_cast<unsigned char>(lead), static_cast<unsigned char>(trail)};
            EXPECT_GT(StringWidth(text), 0);
        }
    TestPort port(40, 20);
    drawAt(2, 14, "\x82\xA0\xB1");
    EXPECT_EQ(port->pen.pnLoc.h, 2 + pair + CharWidth(0xB1));
});

TEST(DrawingText, TakesTwoByteCharactersAsOne)
{
    playRole("measuresJapanese", {}, {0, {"LC_ALL=ja_JP.UTF-8"}});
}

}   // namespace
