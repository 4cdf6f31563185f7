// How icons look, compared with stored pictures: every look of every depth, and icons that are stretched.
#include "tests/standin/icon_files.h"
#include "tests/standin/test_port.h"

#include <gtest/gtest.h>

namespace
{

using namespace support;

constexpr IconTransformType states[] = {kTransformNone, kTransformDisabled, kTransformOffline, kTransformOpen};

class IconPictures : public testing::Test
{
protected:
    static void plot(IconSelectorValue member, const Rect &rect, IconTransformType transform = kTransformNone,
                     IconAlignmentType alignment = kAlignNone)
    {
        IconSuiteRef suite = nullptr;
        ASSERT_EQ(GetIconSuite(&suite, 128, member), noErr);
        EXPECT_EQ(PlotIconSuite(&rect, alignment, transform, suite), noErr);
        DisposeIconSuite(suite, true);
    }

    static Rect cell(int column, int row, int side)
    {
        const int left = 4 + column * (side + 4), top = 4 + row * (side + 4);
        return {static_cast<SInt16>(top), static_cast<SInt16>(left), static_cast<SInt16>(top + side), static_cast<SInt16>(left + side)};
    }

    // The four states, then those selected; below them with each label.
    static void plotEveryLook(IconSelectorValue member, int side)
    {
        for (int label = 0; label <= 7; ++label)
            for (int look = 0; look < 8; ++look)
                plot(member, cell(look, label, side),
                     static_cast<IconTransformType>(label << 8 | (look >= 4 ? kTransformSelected : 0) | states[look % 4]));
    }

private:
    TemporaryFolder folder_;
    OpenResources file_{fileWithData(folder_, "icons", resourceFork(pageFamily(128)))};
};

TEST_F(IconPictures, LooksInEightBits)
{
    TestPort port(292, 292);
    plotEveryLook(svLarge8Bit, 32);
    EXPECT_TRUE(looksLike(port, "icon_looks_8_bit"));
}

TEST_F(IconPictures, LooksInFourBits)
{
    TestPort port(292, 292);
    plotEveryLook(svLarge4Bit, 32);
    EXPECT_TRUE(looksLike(port, "icon_looks_4_bit"));
}

TEST_F(IconPictures, LooksInOneBit)
{
    TestPort port(292, 292);
    plotEveryLook(svLarge1Bit, 32);
    EXPECT_TRUE(looksLike(port, "icon_looks_1_bit"));
}

TEST_F(IconPictures, SmallLooksOnAGrayBackground)
{
    TestPort port(164, 164);
    const RGBColor gray = {0xC0C0, 0xC0C0, 0xC0C0};
    const Rect all = {0, 0, 164, 164};
    RGBBackColor(&gray);
    EraseRect(&all);
    plotEveryLook(svSmall8Bit, 16);
    EXPECT_TRUE(looksLike(port, "icon_looks_small"));
}

TEST_F(IconPictures, StretchedAndPlaced)
{
    TestPort port(200, 120);
    plot(svAllAvailableData, {4, 4, 100, 68});
    plot(svAllAvailableData, {4, 72, 28, 102});
    plot(svSmall8Bit, {32, 72, 80, 120});
    plot(svAllAvailableData, {4, 124, 15, 196}, kTransformOffline);
    plot(svAllAvailableData, {20, 124, 100, 196}, kTransformSelected, kAlignCenterBottom);
    plot(svAllAvailableData, {100, 180, 140, 220});
    EXPECT_TRUE(looksLike(port, "icon_sizes"));
}

}   // namespace
