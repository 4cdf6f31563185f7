// Ports: what they begin with, which one is current, their coordinates and their clip.
#include "tests/standin/test_port.h"

#include <cstring>

namespace
{

using support::rowsOf;
using support::TestPort;

TEST(DrawingPorts, BeginWhiteWithABlackPenOfOnePixel)
{
    TestPort port(3, 2);
    EXPECT_EQ(rowsOf(port), "...\n...\n");
    PenState pen;
    GetPenState(&pen);
    const PenState expected = {{0, 0}, {1, 1}, 8, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};
    EXPECT_EQ(std::memcmp(&pen, &expected, sizeof pen), 0);
    RGBColor fore = {1, 1, 1}, back = {1, 1, 1};
    GetForeColor(&fore);
    GetBackColor(&back);
    EXPECT_EQ(fore.red | fore.green | fore.blue, 0);
    EXPECT_EQ(back.red & back.green & back.blue, 0xFFFF);
    EXPECT_TRUE(EmptyRect(&port->changed));
}

TEST(DrawingPorts, CannotBeEmptyNorWiderThanABitMapTells)
{
    EXPECT_EQ(standin::newPort({0, 0, 0, 5}, {0, 0}), nullptr);
    EXPECT_EQ(standin::newPort({0, 0, 5, 0}, {0, 0}), nullptr);
    EXPECT_EQ(standin::newPort({5, 0, 0, 5}, {0, 0}), nullptr);
    EXPECT_EQ(standin::newPort({0, 0, 1, 4096}, {0, 0}), nullptr);
    GrafPtr widest = standin::newPort({0, 0, 1, 4095}, {0, 0});
    ASSERT_NE(widest, nullptr);
    EXPECT_EQ(static_cast<UInt16>(GetPortBitMapForCopyBits(widest)->rowBytes), 0x8000 | 16380);
    DisposePort(widest);
}

TEST(DrawingPorts, TellTheirBitMap)
{
    TestPort port(Rect{-3, -5, 4, 7});
    const BitMap *map = GetPortBitMapForCopyBits(port);
    EXPECT_EQ(map->baseAddr, reinterpret_cast<Ptr>(port->pixels.data()));
    EXPECT_EQ(static_cast<UInt16>(map->rowBytes), 0x8000 | 48);
    EXPECT_EQ(map->bounds.top, -3);
    EXPECT_EQ(map->bounds.left, -5);
    EXPECT_EQ(map->bounds.bottom, 4);
    EXPECT_EQ(map->bounds.right, 7);
    Rect bounds = {};
    EXPECT_EQ(GetPortBounds(port, &bounds), &bounds);
    EXPECT_EQ(std::memcmp(&bounds, &map->bounds, sizeof bounds), 0);
}

TEST(DrawingPorts, OneIsAlwaysCurrent)
{
    GrafPtr first = nullptr, now = nullptr;
    GetPort(&first);
    ASSERT_NE(first, nullptr);
    {
        TestPort port(2, 2);
        GetPort(&now);
        EXPECT_EQ(now, port);
    }
    GetPort(&now);
    EXPECT_EQ(now, first);
}

TEST(DrawingPorts, TheCurrentOneMayBeDisposedOf)
{
    GrafPtr earlier, port = CreateNewPort(), now = nullptr;
    GetPort(&earlier);
    ASSERT_NE(port, nullptr);
    SetPort(port);
    DisposePort(port);
    GetPort(&now);
    EXPECT_NE(now, port);
    const Rect everything = {-32768, -32768, 32767, 32767};
    PaintRect(&everything);   // goes nowhere
    DisposePort(now);         // nor does what is left
    DisposePort(port);
    SetPort(port);
    SetPort(nullptr);
    GrafPtr still = nullptr;
    GetPort(&still);
    EXPECT_EQ(still, now);
    SetPort(earlier);
}

TEST(DrawingPorts, ASettingGivesBackWhatWasCurrent)
{
    TestPort outer(1, 1), other(2, 2);
    SetPort(outer);
    {
        standin::PortSetting setting(other);
        EXPECT_EQ(&standin::currentPort(), static_cast<GrafPtr>(other));
    }
    EXPECT_EQ(&standin::currentPort(), static_cast<GrafPtr>(outer));
    GrafPtr gone = standin::newPort({0, 0, 1, 1}, {0, 0});
    SetPort(gone);
    {
        standin::PortSetting setting(other);
        DisposePort(gone);
    }
    EXPECT_NE(&standin::currentPort(), gone);
}

TEST(DrawingPorts, KeepPenAndColoursOfTheirOwn)
{
    TestPort one(4, 4), other(4, 4);
    SetPort(one);
    MoveTo(3, 2);
    ForeColor(redColor);
    SetPort(other);
    EXPECT_EQ(other->pen.pnLoc.h, 0);
    EXPECT_EQ(other->foreColor.red, 0);
    EXPECT_EQ(one->pen.pnLoc.h, 3);
    EXPECT_NE(one->foreColor.red, 0);
}

TEST(DrawingPorts, OfAWorldHaveThirtyTwoBits)
{
    const Rect bounds = {10, 20, 12, 24}, empty = {0, 0, 0, 9}, wide = {0, 0, 1, 4096};
    for (const int depth : {0, 32})
    {
        GWorldPtr world = nullptr;
        ASSERT_EQ(NewGWorld(&world, static_cast<SInt16>(depth), &bounds, nullptr, nullptr, 0), noErr);
        EXPECT_EQ(rowsOf(world), "....\n....\n");
        DisposeGWorld(world);
    }
    GWorldPtr untouched = nullptr;
    for (const int depth : {1, 8, 16, 33, -1})
        EXPECT_EQ(NewGWorld(&untouched, static_cast<SInt16>(depth), &bounds, nullptr, nullptr, 0), cDepthErr);
    EXPECT_EQ(NewGWorld(&untouched, 32, &empty, nullptr, nullptr, 0), paramErr);
    EXPECT_EQ(NewGWorld(&untouched, 32, &wide, nullptr, nullptr, 0), paramErr);
    EXPECT_EQ(untouched, nullptr);
}

TEST(DrawingPorts, TurnLocalPointsIntoGlobalOnesAndBack)
{
    GrafPtr port = standin::newPort({-10, -20, 10, 20}, {100, 200}), earlier;
    GetPort(&earlier);
    SetPort(port);
    Point point = {-10, -20};
    LocalToGlobal(&point);
    EXPECT_EQ(point.v, 100);
    EXPECT_EQ(point.h, 200);
    point = {32767, 0};
    LocalToGlobal(&point);   // wraps around
    EXPECT_EQ(point.v, static_cast<SInt16>(32767 + 110));
    EXPECT_EQ(point.h, 220);
    GlobalToLocal(&point);
    EXPECT_EQ(point.v, 32767);
    EXPECT_EQ(point.h, 0);
    SetPort(earlier);
    DisposePort(port);
}

TEST(DrawingPorts, AreDrawnToWithinTheirClip)
{
    TestPort port(5, 4);
    const Rect clip = {1, 1, 3, 4}, everything = {-32768, -32768, 32767, 32767}, outside = {9, 9, 20, 20};
    ClipRect(&clip);
    PaintRect(&everything);
    EXPECT_EQ(rowsOf(port), ".....\n.###.\n.###.\n.....\n");
    EXPECT_EQ(std::memcmp(&port->changed, &clip, sizeof clip), 0);
    ClipRect(&outside);
    InvertRect(&everything);
    EXPECT_EQ(rowsOf(port), ".....\n.###.\n.###.\n.....\n");
    ClipRect(&everything);   // no wider than the port
    InvertRect(&everything);
    EXPECT_EQ(rowsOf(port), "#####\n#...#\n#...#\n#####\n");
}

TEST(DrawingPorts, GatherWhatWasChanged)
{
    TestPort port(10, 10);
    const Rect one = {1, 1, 2, 2}, other = {5, 7, 6, 20}, outside = {20, 20, 30, 30};
    PaintRect(&one);
    EXPECT_EQ(std::memcmp(&port->changed, &one, sizeof one), 0);
    EraseRect(&other);
    PaintRect(&outside);
    EXPECT_EQ(port->changed.top, 1);
    EXPECT_EQ(port->changed.left, 1);
    EXPECT_EQ(port->changed.bottom, 6);
    EXPECT_EQ(port->changed.right, 10);
}

}   // namespace
