// The pen, the two colours, and lines: a pen of any size hangs down and to the right of where it is.
#include "tests/standin/test_port.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

namespace
{

using support::rowsOf;
using support::TestPort;

Point place()
{
    PenState pen;
    GetPenState(&pen);
    return pen.pnLoc;
}

TEST(DrawingPen, MovesToPlacesAndByDistances)
{
    TestPort port(2, 2);
    MoveTo(-5, 300);
    EXPECT_EQ(place().h, -5);
    EXPECT_EQ(place().v, 300);
    Move(10, -300);
    EXPECT_EQ(place().h, 5);
    EXPECT_EQ(place().v, 0);
    MoveTo(32767, -32768);
    Move(1, -1);   // wraps around
    EXPECT_EQ(place().h, -32768);
    EXPECT_EQ(place().v, 32767);
    EXPECT_EQ(rowsOf(port), "..\n..\n");
}

TEST(DrawingPen, IsSavedAndRestoredWhole)
{
    TestPort port(2, 2);
    const PenState wanted = {{7, 8}, {3, 4}, 9, {1, 2, 3, 4, 5, 6, 7, 8}};
    SetPenState(&wanted);
    PenState pen;
    std::memset(&pen, 0xAA, sizeof pen);
    GetPenState(&pen);
    EXPECT_EQ(std::memcmp(&pen, &wanted, sizeof pen), 0);
    PenSize(5, 6);
    GetPenState(&pen);
    EXPECT_EQ(pen.pnSize.h, 5);
    EXPECT_EQ(pen.pnSize.v, 6);
}

TEST(DrawingPen, BecomesNormalWhereItIs)
{
    TestPort port(2, 2);
    const PenState odd = {{7, 8}, {3, 4}, 9, {}}, normal = {{7, 8}, {1, 1}, 8, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};
    SetPenState(&odd);
    PenNormal();
    PenState pen;
    GetPenState(&pen);
    EXPECT_EQ(std::memcmp(&pen, &normal, sizeof pen), 0);
}

TEST(DrawingColours, AreKeptToTheLastBit)
{
    TestPort port(1, 1);
    const RGBColor wanted = {0x1234, 0xFFFE, 0x0001}, other = {0x8000, 0x7FFF, 0xABCD};
    RGBForeColor(&wanted);
    RGBBackColor(&other);
    RGBColor color = {};
    GetForeColor(&color);
    EXPECT_EQ(std::memcmp(&color, &wanted, sizeof color), 0);
    GetBackColor(&color);
    EXPECT_EQ(std::memcmp(&color, &other, sizeof color), 0);
    const Rect all = {0, 0, 1, 1};
    PaintRect(&all);
    EXPECT_EQ(port->pixels[0], 0xFF12FF00);   // the high bytes
    EraseRect(&all);
    EXPECT_EQ(port->pixels[0], 0xFF807FAB);
}

TEST(DrawingColours, HaveEightClassicNumbers)
{
    TestPort port(1, 1);
    struct Row
    {
        SInt32 number;
        RGBColor color;
    };
    const Row rows[] = {{33, {0, 0, 0}},
                        {30, {0xFFFF, 0xFFFF, 0xFFFF}},
                        {205, {0xDD6B, 0x08C2, 0x06A2}},
                        {341, {0x0000, 0x8000, 0x11B0}},
                        {409, {0x0000, 0x0000, 0xD400}},
                        {273, {0x0241, 0xAB54, 0xEAFF}},
                        {137, {0xF2D7, 0x0856, 0x84EC}},
                        {69, {0xFC00, 0xF37D, 0x052F}}};
    for (const Row &row : rows)
    {
        RGBColor color = {1, 1, 1};
        ForeColor(row.number);
        GetForeColor(&color);
        EXPECT_EQ(std::memcmp(&color, &row.color, sizeof color), 0) << row.number;
        BackColor(row.number);
        ForeColor(row.number + 1);   // none of them: nothing changes
        GetBackColor(&color);
        EXPECT_EQ(std::memcmp(&color, &row.color, sizeof color), 0) << row.number;
        GetForeColor(&color);
        EXPECT_EQ(std::memcmp(&color, &row.color, sizeof color), 0) << row.number;
    }
}

struct LineRow
{
    const char *what;
    SInt16 width, height;   // of the pen
    Point from, to;
    const char *rows;   // of a port of 7 by 5
};

const LineRow lineRows[] = {
    {"a point", 1, 1, {2, 3}, {2, 3}, ".......\n.......\n...#...\n.......\n.......\n"},
    {"along a row", 1, 1, {1, 1}, {1, 5}, ".......\n.#####.\n.......\n.......\n.......\n"},
    {"down a column", 1, 1, {1, 2}, {4, 2}, ".......\n..#....\n..#....\n..#....\n..#....\n"},
    {"a large pen hangs", 3, 2, {1, 1}, {1, 2}, ".......\n.####..\n.####..\n.......\n.......\n"},
    {"slanting", 1, 1, {0, 0}, {4, 4}, "#......\n.#.....\n..#....\n...#...\n....#..\n"},
    {"slanting to the left", 1, 1, {0, 4}, {4, 0}, "....#..\n...#...\n..#....\n.#.....\n#......\n"},
    {"flat", 1, 1, {1, 0}, {3, 6}, ".......\n##.....\n..###..\n.....##\n.......\n"},
    {"steep", 1, 1, {0, 2}, {4, 3}, "..#....\n..#....\n...#...\n...#...\n...#...\n"},
    {"slanting with a large pen", 2, 2, {0, 0}, {3, 3}, "##.....\n###....\n.###...\n..###..\n...##..\n"},
    {"a pen without width", 0, 3, {1, 1}, {3, 5}, ".......\n.......\n.......\n.......\n.......\n"},
    {"a pen turned inside out", 2, -1, {1, 1}, {3, 5}, ".......\n.......\n.......\n.......\n.......\n"},
    {"across the whole plane", 1, 1, {2, -32768}, {2, 32767}, ".......\n.......\n#######\n.......\n.......\n"},
    {"beyond the last coordinate", 32767, 32767, {3, 5}, {32767, 32767}, ".......\n.......\n.......\n.....##\n.....##\n"},
};

TEST(DrawingLines, CoverWhatThePenCovers)
{
    for (const LineRow &row : lineRows)
    {
        TestPort port(7, 5), back(7, 5);
        for (bool there : {true, false})
        {
            SetPort(there ? port : back);
            PenSize(row.width, row.height);
            const Point start = there ? row.from : row.to, end = there ? row.to : row.from;
            MoveTo(start.h, start.v);
            LineTo(end.h, end.v);
            EXPECT_EQ(place().h, end.h) << row.what;
            EXPECT_EQ(place().v, end.v) << row.what;
        }
        EXPECT_EQ(rowsOf(port), row.rows) << row.what;
        EXPECT_EQ(rowsOf(back), row.rows) << row.what << ", and back";
    }
}

TEST(DrawingLines, GoByDistancesFromWhereThePenIs)
{
    TestPort port(4, 3);
    MoveTo(3, 2);
    Line(-2, 0);
    EXPECT_EQ(rowsOf(port), "....\n....\n.###\n");
    EXPECT_EQ(place().h, 1);
    MoveTo(32767, 0);
    Line(1, 0);   // wraps around
    EXPECT_EQ(place().h, -32768);
}

// The pixels of a line whose pen is stamped at each of its places: the rule itself, as slow as it likes.
void stamp(std::vector<standin::Pixel> &pixels, int side, Point from, Point to, Point size)
{
    const int across = to.h - from.h, down = to.v - from.v, steps = std::max(std::abs(across), std::abs(down));
    for (int step = 0; step <= steps; ++step)
    {
        // Halves go away from where the upper end is.
        const auto share = [&](int distance) {
            const int whole = steps == 0 ? 0 : (2 * step * std::abs(distance) + steps) / (2 * steps);
            return distance < 0 ? -whole : whole;
        };
        for (int v = from.v + share(down); v < from.v + share(down) + size.v; ++v)
            for (int h = from.h + share(across); h < from.h + share(across) + size.h; ++h)
                if (v >= 0 && v < side && h >= 0 && h < side)
                    pixels[static_cast<std::size_t>(v * side + h)] = standin::blackPixel;
    }
}

TEST(DrawingLines, AreThoseOfAPenThatIsStampedAlongTheWay)
{
    constexpr SInt16 side = 24;
    std::mt19937 random(7);
    const auto number = [&](int first, int last) { return static_cast<SInt16>(std::uniform_int_distribution<int>(first, last)(random)); };
    for (int round = 0; round < 2000; ++round)
    {
        TestPort port(side, side);
        Point from = {number(-10, 30), number(-10, 30)}, to = {number(-10, 30), number(-10, 30)};
        const Point size = {number(1, 6), number(1, 6)};
        PenSize(size.h, size.v);
        MoveTo(from.h, from.v);
        LineTo(to.h, to.v);
        if (from.v > to.v)
            std::swap(from, to);
        std::vector<standin::Pixel> expected(side * side, standin::whitePixel);
        stamp(expected, side, from, to, size);
        ASSERT_EQ(port->pixels, expected) << "from " << from.h << ", " << from.v << " to " << to.h << ", " << to.v << " with a pen of "
                                          << size.h << " by " << size.v << "\n"
                                          << rowsOf(port);
    }
}

}   // namespace
