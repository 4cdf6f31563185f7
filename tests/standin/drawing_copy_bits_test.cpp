// CopyBits: depths, sizes, clips, and maps and rectangles that lie.
#include "tests/standin/test_port.h"

#include <cstring>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

using standin::Pixel;
using support::rowsOf;
using support::TestPort;

constexpr RGBColor red = {0xFFFF, 0, 0}, green = {0, 0xFFFF, 0};

// A picture of 1 bit, as it stands in resources: a cross in a frame.
const UInt8 crossBytes[] = {0xFF, 0x81, 0x99, 0xBD, 0xBD, 0x99, 0x81, 0xFF};

BitMap crossMap(SInt16 left = 0, SInt16 top = 0)
{
    return {reinterpret_cast<Ptr>(const_cast<UInt8 *>(crossBytes)),
            1,
            {top, left, static_cast<SInt16>(top + 8), static_cast<SInt16>(left + 8)}};
}

const char *crossRows = "########\n#......#\n#..##..#\n#.####.#\n#.####.#\n#..##..#\n#......#\n########\n";

void copyTo(GrafPtr port, const BitMap &source, const Rect &from, const Rect &to)
{
    CopyBits(&source, GetPortBitMapForCopyBits(port), &from, &to, srcCopy, nullptr);
}

TEST(DrawingCopyBits, OfOneBitTakesTheColoursOfTheCurrentPort)
{
    TestPort port(8, 8), other(1, 1);
    SetPort(port);
    const BitMap cross = crossMap();
    copyTo(port, cross, cross.bounds, cross.bounds);
    EXPECT_EQ(rowsOf(port), crossRows);
    SetPort(other);
    RGBForeColor(&red);
    RGBBackColor(&green);
    const Rect part = {1, 1, 4, 5};
    copyTo(port, cross, part, part);
    EXPECT_EQ(rowsOf(port), "########\n#gggg..#\n#ggrr..#\n#grrr#.#\n#.####.#\n#..##..#\n#......#\n########\n");
}

TEST(DrawingCopyBits, CountsCoordinatesFromTheMapsBounds)
{
    TestPort port(Rect{100, 200, 108, 208});
    const BitMap cross = crossMap(-20, 3000);
    copyTo(port, cross, cross.bounds, port->bounds);
    EXPECT_EQ(rowsOf(port), crossRows);
    EXPECT_EQ(std::memcmp(&port->changed, &port->bounds, sizeof(Rect)), 0);
}

TEST(DrawingCopyBits, PassesOverBytesBehindARow)
{
    TestPort port(8, 2);
    const UInt8 bytes[] = {0xF0, 0xFF, 0xFF, 0x0F, 0xFF, 0xFF};
    const BitMap map = {reinterpret_cast<Ptr>(const_cast<UInt8 *>(bytes)), 3, {0, 0, 2, 8}};
    copyTo(port, map, map.bounds, map.bounds);
    EXPECT_EQ(rowsOf(port), "####....\n....####\n");
}

TEST(DrawingCopyBits, OfThirtyTwoBitsCopiesPixelsAsTheyAre)
{
    TestPort source(3, 2), port(3, 2);
    SetPort(source);
    RGBForeColor(&red);
    const Rect left = {0, 0, 2, 1};
    PaintRect(&left);
    SetPort(port);
    RGBForeColor(&green);
    RGBBackColor(&green);
    const Rect all = {0, 0, 2, 3};
    copyTo(port, *GetPortBitMapForCopyBits(source), all, all);
    EXPECT_EQ(rowsOf(port), "r..\nr..\n");
}

TEST(DrawingCopyBits, ReadsAndWritesThirtyTwoBitsInMemoryWhereverTheyLie)
{
    std::vector<char> bytes(1 + 2 * 3 * sizeof(Pixel) + 7, 0x55);
    const Pixel pixels[] = {0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000, 0x00FFFFFF, 0x12000000};
    std::memcpy(bytes.data() + 1, pixels, sizeof pixels);
    const BitMap map = {bytes.data() + 1, static_cast<SInt16>(0x8000 | 12), {0, 0, 2, 3}};
    TestPort port(3, 2);
    copyTo(port, map, map.bounds, map.bounds);
    EXPECT_EQ(rowsOf(port), "rgb\n#.#\n");   // opaque, whatever the fourth byte was
    InvertRect(&map.bounds);
    CopyBits(GetPortBitMapForCopyBits(port), &map, &map.bounds, &map.bounds, srcCopy, nullptr);
    Pixel written[6];
    std::memcpy(written, bytes.data() + 1, sizeof written);
    EXPECT_EQ(written[0], 0xFF00FFFF);
    EXPECT_EQ(written[3], 0xFFFFFFFF);
    EXPECT_EQ(bytes[0], 0x55);
    EXPECT_EQ(bytes[25], 0x55);
}

TEST(DrawingCopyBits, WritesToNoMapOfOneBitAndThroughNoMask)
{
    UInt8 bytes[8] = {};
    const BitMap memory = {reinterpret_cast<Ptr>(bytes), 1, {0, 0, 8, 8}}, cross = crossMap();
    CopyBits(&cross, &memory, &cross.bounds, &cross.bounds, srcCopy, nullptr);
    EXPECT_EQ(std::count(std::begin(bytes), std::end(bytes), 0), 8);
    TestPort port(2, 1);
    int mask = 0;
    CopyBits(&cross, GetPortBitMapForCopyBits(port), &cross.bounds, &cross.bounds, srcCopy, reinterpret_cast<RgnHandle>(&mask));
    EXPECT_EQ(rowsOf(port), "..\n");
    EXPECT_TRUE(EmptyRect(&port->changed));
}

struct SizeRow
{
    const char *what;
    Rect from, to;
    const char *rows;   // of a port of 8 by 4
};

const SizeRow sizeRows[] = {
    {"twice as wide", {2, 2, 4, 6}, {0, 0, 2, 8}, "..####..\n########\n........\n........\n"},
    {"twice as high", {2, 2, 4, 6}, {0, 0, 4, 4}, ".##.....\n.##.....\n####....\n####....\n"},
    {"half as large, from the middles", {0, 0, 8, 8}, {0, 0, 4, 4}, "...#....\n.###....\n.#.#....\n####....\n"},
    {"one pixel for all", {3, 3, 4, 4}, {0, 0, 4, 8}, "########\n########\n########\n########\n"},
    {"reaching out of the source", {-2, -2, 2, 2}, {0, 0, 4, 4}, "........\n........\n..##....\n..#.....\n"},
    {"reaching out of the port", {0, 0, 8, 8}, {-6, -4, 2, 4}, "...#....\n####....\n........\n........\n"},
    {"beside the source", {0, 8, 4, 16}, {0, 0, 4, 8}, "........\n........\n........\n........\n"},
    {"beside the port", {0, 0, 8, 8}, {4, 0, 12, 8}, "........\n........\n........\n........\n"},
    {"an empty source", {0, 0, 0, 8}, {0, 0, 4, 8}, "........\n........\n........\n........\n"},
    {"a destination turned inside out", {0, 0, 8, 8}, {4, 8, 0, 0}, "........\n........\n........\n........\n"},
};

TEST(DrawingCopyBits, TakesTheNearestPixelsAndClipsBothEnds)
{
    const BitMap cross = crossMap();
    for (const SizeRow &row : sizeRows)
    {
        TestPort port(8, 4);
        copyTo(port, cross, row.from, row.to);
        EXPECT_EQ(rowsOf(port), row.rows) << row.what;
    }
}

TEST(DrawingCopyBits, StaysWithinTheDestinationsClip)
{
    TestPort port(8, 8), other(1, 1);
    SetPort(port);
    const Rect clip = {2, 2, 4, 6};
    ClipRect(&clip);
    SetPort(other);   // whose clip has no say
    const BitMap cross = crossMap();
    copyTo(port, cross, cross.bounds, cross.bounds);
    EXPECT_EQ(rowsOf(port), "........\n........\n...##...\n..####..\n........\n........\n........\n........\n");
    EXPECT_EQ(std::memcmp(&port->changed, &clip, sizeof clip), 0);
}

TEST(DrawingCopyBits, WithinOnePortReadsAllBeforeItWrites)
{
    for (const SInt16 move : {SInt16{-1}, SInt16{1}})
    {
        TestPort port(8, 8);
        const BitMap cross = crossMap();
        copyTo(port, cross, cross.bounds, cross.bounds);
        Rect moved = cross.bounds;
        OffsetRect(&moved, move, move);
        copyTo(port, *GetPortBitMapForCopyBits(port), cross.bounds, moved);
        const char *up = "......##\n..##..##\n.####.##\n.####.##\n..##..##\n......##\n########\n########\n";
        const char *down = "########\n########\n##......\n##..##..\n##.####.\n##.####.\n##..##..\n##......\n";
        EXPECT_EQ(rowsOf(port), move < 0 ? up : down);
    }
}

// The last byte before memory that nobody may touch.
class GuardedBytes
{
public:
    explicit GuardedBytes(std::size_t length) : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
    {
        memory_ = static_cast<char *>(mmap(nullptr, 3 * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(memory_ + page_, page_, PROT_READ | PROT_WRITE);
        start_ = memory_ + 2 * page_ - length;
    }
    ~GuardedBytes() { munmap(memory_, 3 * page_); }
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;
    Ptr start() const { return start_; }

private:
    std::size_t page_;
    char *memory_;
    Ptr start_;
};

TEST(DrawingCopyBits, WithHostileRectanglesTouchesNothingOutside)
{
    const GuardedBytes bits(4 * 2), pixels(4 * 12);
    const BitMap maps[] = {{bits.start(), 2, {0, 0, 4, 16}},
                           {bits.start(), 2, {-2, 32000, 2, 32767}},   // more columns than bytes
                           {pixels.start(), static_cast<SInt16>(0x8000 | 12), {0, 0, 4, 30000}},
                           {pixels.start(), static_cast<SInt16>(0x8000 | 14), {-1, -1, 2, 9}},   // no whole pixels
                           {pixels.start(), static_cast<SInt16>(0x8000), {0, 0, 4, 4}},
                           {nullptr, 2, {0, 0, 4, 16}},
                           {bits.start(), 2, {4, 16, 0, 0}}};
    const SInt16 ends[] = {-32768, -32767, -3, -1, 0, 1, 2, 5, 40, 32766, 32767};
    std::mt19937 random(11);
    const auto end = [&] { return ends[std::uniform_int_distribution<std::size_t>(0, std::size(ends) - 1)(random)]; };
    TestPort port(20, 10);
    for (int round = 0; round < 5000; ++round)
    {
        const BitMap &source = maps[round % std::size(maps)], &other = maps[static_cast<std::size_t>(round) / 7 % std::size(maps)];
        const Rect from = {end(), end(), end(), end()}, to = {end(), end(), end(), end()};
        CopyBits(&source, GetPortBitMapForCopyBits(port), &from, &to, srcCopy, nullptr);
        CopyBits(GetPortBitMapForCopyBits(port), &other, &from, &to, srcCopy, nullptr);
        CopyBits(&source, &other, &from, &to, srcCopy, nullptr);
    }
}

}   // namespace
