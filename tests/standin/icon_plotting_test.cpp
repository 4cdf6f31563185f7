// Icons in ports: where they lie, how they are stretched, what is clipped, and that nothing of what was there before shows.
#include "standin/drawing/icon_palettes.h"
#include "standin/drawing/port.h"
#include "tests/contract/rows.h"
#include "tests/standin/icon_files.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace support;
using standin::Pixel;

constexpr SInt16 plainID = 128, pageID = 129, smallID = 130, oneBitID = 131;
constexpr Pixel untouched = 0xFF00FFFF;

// A file with icons is open, and a port of a colour that no icon here has is current.
class IconPlotting : public testing::Test
{
protected:
    IconPlotting() : file_(fileWithData(folder_, "icons", resourceFork(resources()))) { makePort({0, 0, 80, 100}); }
    ~IconPlotting() override { DisposePort(port_); }

    void makePort(const Rect &bounds)
    {
        DisposePort(port_);
        port_ = standin::newPort(bounds, {0, 0});
        SetPort(port_);
        std::fill(port_->pixels.begin(), port_->pixels.end(), untouched);
    }

    static OSErr plot(SInt16 id, const Rect &rect, IconAlignmentType alignment = kAlignNone, IconTransformType transform = kTransformNone)
    {
        IconSuiteRef suite = nullptr;
        EXPECT_EQ(GetIconSuite(&suite, id, svAllAvailableData), noErr);
        const OSErr result = PlotIconSuite(&rect, alignment, transform, suite);
        EXPECT_EQ(DisposeIconSuite(suite, true), noErr);
        return result;
    }

    Pixel at(int h, int v) const
    {
        const int width = port_->bounds.right - port_->bounds.left;
        return port_->pixels[static_cast<std::size_t>((v - port_->bounds.top) * width + h - port_->bounds.left)];
    }

    // The smallest rectangle around what is not as it was; 0, 0, 0, 0 if all is.
    Rect drawn() const
    {
        Rect around = {0, 0, 0, 0};
        for (SInt16 v = port_->bounds.top; v < port_->bounds.bottom; ++v)
            for (SInt16 h = port_->bounds.left; h < port_->bounds.right; ++h)
                if (at(h, v) != untouched)
                    include(around, v, h);
        return around;
    }

    OpaqueGrafPtr &port() const { return *port_; }

private:
    static std::vector<TestResource> resources()
    {
        std::vector<TestResource> all = pageFamily(pageID);
        all.push_back(plainMember(code("icl8"), plainID, 216));
        all.push_back(plainMember(code("ics8"), plainID, 226));
        all.push_back(plainMember(code("ics8"), smallID, 226));
        all.push_back(plainMember(code("ICN#"), oneBitID, 1));
        return all;
    }

    static void include(Rect &around, SInt16 v, SInt16 h)
    {
        const Rect one = {v, h, static_cast<SInt16>(v + 1), static_cast<SInt16>(h + 1)};
        if (EmptyRect(&around))
            around = one;
        around = {std::min(around.top, one.top), std::min(around.left, one.left), std::max(around.bottom, one.bottom),
                  std::max(around.right, one.right)};
    }

    TemporaryFolder folder_;
    OpenResources file_;
    GrafPtr port_ = nullptr;
};

std::string textOf(const Rect &rect)
{
    return std::to_string(rect.top) + ' ' + std::to_string(rect.left) + ' ' + std::to_string(rect.bottom) + ' ' +
           std::to_string(rect.right);
}

// ---------------------------------------------------------------------------------------------------------------------
// Alignment

struct AlignmentCase
{
    const char *name;
    IconAlignmentType alignment;
    Rect rect, expected;   // top, left, bottom, right
    SInt16 id = plainID;
};

void PrintTo(const AlignmentCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class Alignments : public IconPlotting, public testing::WithParamInterface<AlignmentCase>
{
};

TEST_P(Alignments, PlaceTheIcon)
{
    const AlignmentCase &row = GetParam();
    EXPECT_EQ(plot(row.id, row.rect, row.alignment), noErr);
    EXPECT_EQ(textOf(drawn()), textOf(row.expected));
    EXPECT_EQ(textOf(port().changed), textOf(row.expected));
}

// Room for a large icon with 29 to spare across its width and 17 across its height.
constexpr Rect room = {10, 20, 59, 81};

// clang-format off
const AlignmentCase alignmentCases[] = {
    {"None",              kAlignNone,             room, room},
    {"VerticalCenter",    kAlignVerticalCenter,   room, {18, 20, 50, 52}},
    {"Top",               kAlignTop,              room, {10, 20, 42, 52}},
    {"Bottom",            kAlignBottom,           room, {27, 20, 59, 52}},
    {"HorizontalCenter",  kAlignHorizontalCenter, room, {10, 34, 42, 66}},
    {"AbsoluteCenter",    kAlignAbsoluteCenter,   room, {18, 34, 50, 66}},
    {"CenterTop",         kAlignCenterTop,        room, {10, 34, 42, 66}},
    {"CenterBottom",      kAlignCenterBottom,     room, {27, 34, 59, 66}},
    {"Left",              kAlignLeft,             room, {10, 20, 42, 52}},
    {"CenterLeft",        kAlignCenterLeft,       room, {18, 20, 50, 52}},
    {"TopLeft",           kAlignTopLeft,          room, {10, 20, 42, 52}},
    {"BottomLeft",        kAlignBottomLeft,       room, {27, 20, 59, 52}},
    {"Right",             kAlignRight,            room, {10, 49, 42, 81}},
    {"CenterRight",       kAlignCenterRight,      room, {18, 49, 50, 81}},
    {"TopRight",          kAlignTopRight,         room, {10, 49, 42, 81}},
    {"BottomRight",       kAlignBottomRight,      room, {27, 49, 59, 81}},
    {"UnknownBits",       0x7FF0,                 room, room},
    {"OwnSizeNone",       kAlignNone,             {5, 6, 37, 38}, {5, 6, 37, 38}},
    {"OwnSizeCentred",    kAlignAbsoluteCenter,   {5, 6, 37, 38}, {5, 6, 37, 38}},
    {"OwnSizeAtTheEnd",   kAlignBottomRight,      {5, 6, 37, 38}, {5, 6, 37, 38}},
    {"SmallOwnSize",      kAlignBottomRight,      {5, 6, 21, 22}, {5, 6, 21, 22}},
    {"SmallInItsRoom",    kAlignBottomRight,      {5, 6, 30, 36}, {14, 20, 30, 36}},
    {"SmallInOddRoom",    kAlignAbsoluteCenter,   {0, 0, 17, 19}, {0, 1, 16, 17}},
    {"SmallerThanTheIcon", kAlignAbsoluteCenter,  {0, 0, 10, 9},  {0, 0, 10, 9}},
    {"LowAndWide",        kAlignAbsoluteCenter,   {0, 0, 10, 60}, {0, 14, 10, 46}},
    {"OnlySmallStretched", kAlignNone,            {0, 0, 32, 32}, {0, 0, 32, 32}, smallID},
    {"OnlySmallPlaced",   kAlignAbsoluteCenter,   {0, 0, 32, 32}, {8, 8, 24, 24}, smallID},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(InARectangle, Alignments, testing::ValuesIn(alignmentCases), rowName);

// ---------------------------------------------------------------------------------------------------------------------
// Sizes

TEST_F(IconPlotting, AtItsOwnSizeEachPixelIsItself)
{
    EXPECT_EQ(plot(pageID, {0, 0, 32, 32}), noErr);
    // The page's outline, its fold, its paper and what is outside
    EXPECT_EQ(at(6, 0), 0xFF000000);
    EXPECT_EQ(at(5, 0), untouched);
    EXPECT_EQ(at(7, 2), standin::colorOfEightBits(1));
    EXPECT_EQ(at(20, 5), standin::colorOfEightBits(0x2B));
    EXPECT_EQ(at(25, 6), untouched);
    EXPECT_EQ(at(25, 31), 0xFF000000);
}

TEST_F(IconPlotting, TwiceAsLargeEachPixelIsFour)
{
    makePort({0, 0, 64, 64});
    EXPECT_EQ(plot(pageID, {0, 0, 64, 64}), noErr);
    const std::vector<Pixel> large = port().pixels;
    makePort({0, 0, 32, 32});
    EXPECT_EQ(plot(pageID, {0, 0, 32, 32}), noErr);
    for (int v = 0; v < 64; ++v)
        for (int h = 0; h < 64; ++h)
            ASSERT_EQ(large[static_cast<std::size_t>(64 * v + h)], at(h / 2, v / 2)) << h << ", " << v;
}

TEST_F(IconPlotting, StretchedOneWayTheOtherStaysAsItIs)
{
    makePort({0, 0, 32, 96});
    EXPECT_EQ(plot(pageID, {0, 0, 32, 96}), noErr);
    const std::vector<Pixel> wide = port().pixels;
    makePort({0, 0, 32, 32});
    EXPECT_EQ(plot(pageID, {0, 0, 32, 32}), noErr);
    for (int v = 0; v < 32; ++v)
        for (int h = 0; h < 96; ++h)
            ASSERT_EQ(wide[static_cast<std::size_t>(96 * v + h)], at(h / 3, v)) << h << ", " << v;
}

TEST_F(IconPlotting, EmptyRectanglesDrawNothing)
{
    for (const Rect &rect : {Rect{10, 10, 10, 42}, Rect{10, 10, 42, 10}, Rect{42, 42, 10, 10}, Rect{0, 0, 0, 0}})
        EXPECT_EQ(plot(pageID, rect), noErr);
    EXPECT_TRUE(EmptyRect(&port().changed));
    EXPECT_EQ(textOf(drawn()), "0 0 0 0");
}

TEST_F(IconPlotting, OutsideThePortNothingIsDrawn)
{
    for (const Rect &rect : {Rect{80, 0, 112, 32}, Rect{0, 100, 32, 132}, Rect{-32, 0, 0, 32}, Rect{0, -32, 32, 0}})
        EXPECT_EQ(plot(pageID, rect), noErr);
    EXPECT_TRUE(EmptyRect(&port().changed));
    EXPECT_EQ(textOf(drawn()), "0 0 0 0");
}

TEST_F(IconPlotting, TheWidestRectangleFillsThePort)
{
    EXPECT_EQ(plot(plainID, {-32768, -32768, 32767, 32767}), noErr);
    EXPECT_EQ(textOf(drawn()), "0 0 80 100");
    EXPECT_EQ(plot(plainID, {-32768, -32768, 32767, 32767}, kAlignBottomRight), noErr);
}

TEST_F(IconPlotting, OnlyWhatLiesInTheClipIsDrawn)
{
    const Rect clip = {4, 5, 20, 22};
    ClipRect(&clip);
    EXPECT_EQ(plot(plainID, {0, 0, 32, 32}), noErr);
    EXPECT_EQ(textOf(drawn()), textOf(clip));
    EXPECT_EQ(textOf(port().changed), textOf(clip));
}

TEST_F(IconPlotting, PortsMayBeginAnywhere)
{
    makePort({-300, 1000, -250, 1050});
    EXPECT_EQ(plot(plainID, {-310, 1040, -278, 1072}), noErr);
    EXPECT_EQ(textOf(drawn()), "-300 1040 -278 1050");
}

// ---------------------------------------------------------------------------------------------------------------------
// Looks

TEST_F(IconPlotting, DisabledIconsFadeToTheBackgroundColour)
{
    const RGBColor blue = {0, 0, 0xFFFF};
    RGBBackColor(&blue);
    EXPECT_EQ(plot(plainID, {0, 0, 32, 32}, kAlignNone, kTransformDisabled), noErr);
    EXPECT_EQ(at(3, 3), 0xFF6E007F);   // half way from DD0000
    EXPECT_EQ(plot(oneBitID, {0, 40, 32, 72}, kAlignNone, kTransformDisabled), noErr);
    EXPECT_EQ(at(40, 0), 0xFF0000FF);
    EXPECT_EQ(at(41, 0), 0xFF000000);
}

TEST_F(IconPlotting, TheForegroundColourDoesNotMatter)
{
    const RGBColor color = {0x1234, 0x5678, 0x9ABC};
    RGBForeColor(&color);
    EXPECT_EQ(plot(oneBitID, {0, 0, 32, 32}), noErr);
    EXPECT_EQ(at(0, 0), 0xFF000000);
    RGBColor later = {};
    GetForeColor(&later);
    EXPECT_EQ(later.red, color.red);
    EXPECT_EQ(later.green, color.green);
    EXPECT_EQ(later.blue, color.blue);
}

// Buttons go from one look to another and back, over and over in the same place.
TEST_F(IconPlotting, NothingOfAnEarlierLookShows)
{
    const IconTransformType looks[] = {kTransformNone,
                                       kTransformDisabled,
                                       kTransformOffline,
                                       kTransformOpen,
                                       kTransformSelected,
                                       kTransformSelectedDisabled,
                                       kTransformSelectedOffline,
                                       kTransformSelectedOpen,
                                       kTransformLabel3,
                                       kTransformSelected | kTransformLabel7};
    for (SInt16 id : {pageID, oneBitID})
    {
        for (IconTransformType look : looks)
        {
            makePort({0, 0, 32, 32});
            plot(id, {0, 0, 32, 32}, kAlignNone, look);
            const std::vector<Pixel> fresh = port().pixels;
            for (IconTransformType earlier : looks)
            {
                plot(id, {0, 0, 32, 32}, kAlignNone, earlier);
                plot(id, {0, 0, 32, 32}, kAlignNone, look);
                ASSERT_EQ(port().pixels, fresh) << look << " after " << earlier;
            }
        }
    }
}

// The pattern belongs to the icon.
TEST_F(IconPlotting, AnIconLooksTheSameWhereverItIsDrawn)
{
    for (IconTransformType look : {kTransformOffline, kTransformOpen})
    {
        EXPECT_EQ(plot(plainID, {0, 0, 32, 32}, kAlignNone, look), noErr);
        EXPECT_EQ(plot(plainID, {33, 47, 65, 79}, kAlignNone, look), noErr);
        for (int v = 0; v < 32; ++v)
            for (int h = 0; h < 32; ++h)
                ASSERT_EQ(at(h, v), at(h + 47, v + 33)) << h << ", " << v;
    }
}

}   // namespace
