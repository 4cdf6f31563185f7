// Rectangles that are painted, erased, framed and inverted.
#include "tests/standin/test_port.h"

namespace
{

using support::looksLike;
using support::rowsOf;
using support::TestPort;

constexpr RGBColor red = {0xFFFF, 0, 0}, green = {0, 0xFFFF, 0};
constexpr Rect middle = {1, 1, 3, 4};

TEST(DrawingFills, PaintAndEraseInTheTwoColours)
{
    TestPort port(5, 4);
    RGBForeColor(&red);
    RGBBackColor(&green);
    PaintRect(&middle);
    EXPECT_EQ(rowsOf(port), ".....\n.rrr.\n.rrr.\n.....\n");
    const Rect part = {2, 3, 9, 9};
    EraseRect(&part);
    EXPECT_EQ(rowsOf(port), ".....\n.rrr.\n.rrgg\n...gg\n");
}

TEST(DrawingFills, InvertTwiceAndAllIsAsBefore)
{
    TestPort port(5, 4);
    RGBForeColor(&red);
    PaintRect(&middle);
    const std::string before = rowsOf(port);
    const Rect part = {0, 0, 2, 3};
    InvertRect(&part);
    EXPECT_EQ(rowsOf(port), "###..\n#??r.\n.rrr.\n.....\n");
    EXPECT_EQ(port->pixels[6], 0xFF00FFFF);
    InvertRect(&part);
    EXPECT_EQ(rowsOf(port), before);
}

TEST(DrawingFills, OfNothingDrawNothing)
{
    TestPort port(3, 2);
    const Rect rects[] = {{0, 0, 0, 3}, {1, 2, 0, 0}, {-9, -9, 0, 0}, {2, 3, 9, 9}};
    for (const Rect &rect : rects)
    {
        PaintRect(&rect);
        InvertRect(&rect);
        FrameRect(&rect);
    }
    EXPECT_EQ(rowsOf(port), "...\n...\n");
    EXPECT_TRUE(EmptyRect(&port->changed));
}

struct FrameRow
{
    const char *what;
    SInt16 width, height;
    Rect rect;
    const char *rows;   // of a port of 6 by 5
};

const FrameRow frameRows[] = {
    {"a thin pen", 1, 1, {0, 0, 5, 6}, "######\n#....#\n#....#\n#....#\n######\n"},
    {"a wide pen", 2, 1, {0, 0, 5, 6}, "######\n##..##\n##..##\n##..##\n######\n"},
    {"a high pen", 1, 2, {0, 0, 5, 6}, "######\n######\n#....#\n######\n######\n"},
    {"a pen that fills it", 3, 9, {1, 1, 4, 5}, "......\n.####.\n.####.\n.####.\n......\n"},
    {"a pen that is too wide", 32767, 1, {1, 1, 4, 5}, "......\n.####.\n.####.\n.####.\n......\n"},
    {"a pen of nothing", 0, 2, {0, 0, 5, 6}, "......\n......\n......\n......\n......\n"},
    {"one pixel", 1, 1, {2, 2, 3, 3}, "......\n......\n..#...\n......\n......\n"},
    {"partly outside", 1, 1, {-32768, 2, 3, 32767}, "..#...\n..#...\n..####\n......\n......\n"},
};

TEST(DrawingFills, FrameInsideTheRectangleAsThickAsThePen)
{
    for (const FrameRow &row : frameRows)
    {
        TestPort port(6, 5);
        PenSize(row.width, row.height);
        FrameRect(&row.rect);
        EXPECT_EQ(rowsOf(port), row.rows) << row.what;
    }
}

TEST(DrawingFills, TakeThePensPatternWhichLiesTheSameWayEverywhere)
{
    TestPort port(Rect{-2, -3, 2, 6});
    const PenState dotted = {{0, 0}, {1, 1}, patCopy, {0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55}};
    SetPenState(&dotted);
    const Rect left = {-2, -3, 2, 1}, right = {-2, 1, 2, 6};
    PaintRect(&left);
    PaintRect(&right);
    EXPECT_EQ(rowsOf(port), ".#.#.#.#.\n#.#.#.#.#\n.#.#.#.#.\n#.#.#.#.#\n");
}

TEST(DrawingFills, PicturesOfFramesAndPens)
{
    TestPort port(64, 48);
    const PenState grey = {{0, 0}, {4, 2}, patCopy, {0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55}};
    const Rect outer = {2, 2, 46, 62}, inner = {8, 10, 40, 54};
    FrameRect(&outer);
    SetPenState(&grey);
    FrameRect(&inner);
    PenNormal();
    RGBForeColor(&red);
    PenSize(3, 1);
    MoveTo(14, 12);
    LineTo(48, 34);
    ForeColor(blueColor);
    PenSize(1, 5);
    MoveTo(48, 12);
    LineTo(14, 32);
    EXPECT_TRUE(looksLike(port, "frames_and_pens"));
}

}   // namespace
