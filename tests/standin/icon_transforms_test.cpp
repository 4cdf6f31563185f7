// The looks of icons, pixel by pixel: each state, selection, label and what they make together, in colour and in one bit.
#include "standin/drawing/icon_transforms.h"
#include "tests/contract/rows.h"

#include <gtest/gtest.h>

namespace
{

using namespace standin;

constexpr Pixel outside = 0x00FFFFFF;

// Four by four of these, and nothing of it outside the mask but the last row.
IconPixels plain(int bitsPerPixel, Pixel color)
{
    IconPixels icon = {4, bitsPerPixel, std::vector<Pixel>(16, color)};
    std::fill(icon.pixels.end() - 4, icon.pixels.end(), outside);
    return icon;
}

struct LookCase
{
    const char *name;
    int bitsPerPixel;
    IconTransformType transform;
    Pixel color;
    // What the pixels become at (0, 0), (1, 0), (0, 1), (1, 1)
    Pixel evenEven, oddEven, evenOdd, oddOdd;
};

constexpr Pixel background = 0xFF00FF40;

class Looks : public testing::TestWithParam<LookCase>
{
};

TEST_P(Looks, ChangeThePixelsInsideTheMask)
{
    const LookCase &row = GetParam();
    IconPixels icon = plain(row.bitsPerPixel, row.color);
    transformIcon(row.transform, background, icon);
    const Pixel expected[2][2] = {{row.evenEven, row.oddEven}, {row.evenOdd, row.oddOdd}};
    ASSERT_EQ(icon.pixels.size(), 16u);
    for (std::size_t y = 0; y < 3; ++y)
        for (std::size_t x = 0; x < 4; ++x)
            EXPECT_EQ(icon.pixels[4 * y + x], expected[y % 2][x % 2]) << x << ", " << y << std::hex << ": " << icon.pixels[4 * y + x];
    for (std::size_t x = 0; x < 4; ++x)
        EXPECT_EQ(icon.pixels[12 + x], outside);
}

constexpr Pixel black = 0xFF000000, white = 0xFFFFFFFF, gray = 0xFF808080, lightGray = 0xFFC0C0C0, orange = 0xFFFF6402, red = 0xFFF04030;
constexpr IconTransformType selected = kTransformSelected;

// clang-format off
const LookCase lookCases[] = {
    {"NoneInColour",               8, kTransformNone,             orange, orange, orange, orange, orange},
    {"NoneInOneBit",               1, kTransformNone,             black,  black, black, black, black},
    {"SelectedHalvesEachComponent", 8, selected,                  orange, 0xFF7F3201, 0xFF7F3201, 0xFF7F3201, 0xFF7F3201},
    {"SelectedInFourBits",         4, selected,                   white,  0xFF7F7F7F, 0xFF7F7F7F, 0xFF7F7F7F, 0xFF7F7F7F},
    {"SelectedInvertsOneBit",      1, selected,                   black,  white, white, white, white},
    {"SelectedInvertsOneBitBack",  1, selected,                   white,  black, black, black, black},
    {"DisabledGoesHalfWay",        8, kTransformDisabled,         orange, 0xFF7FB121, 0xFF7FB121, 0xFF7FB121, 0xFF7FB121},
    {"DisabledWhereBothAreOdd",    8, kTransformDisabled,         0xFF01FF41, 0xFF00FF40, 0xFF00FF40, 0xFF00FF40, 0xFF00FF40},
    {"DisabledThinsOneBit",        1, kTransformDisabled,         black,  background, black, black, background},
    {"DisabledThinsWhiteToo",      1, kTransformDisabled,         white,  background, white, white, background},
    {"OfflineIsACheckerboard",     8, kTransformOffline,          orange, gray, orange, orange, gray},
    {"OfflineInOneBit",            1, kTransformOffline,          white,  black, white, white, black},
    {"OpenIsDotted",               8, kTransformOpen,             orange, gray, lightGray, lightGray, lightGray},
    {"OpenInOneBit",               1, kTransformOpen,             black,  black, white, white, white},
    {"LabelTintsWhite",            8, kTransformLabel6,           white,  red, red, red, red},
    {"LabelLeavesBlack",           8, kTransformLabel6,           black,  black, black, black, black},
    {"LabelMultiplies",            8, kTransformLabel6,           gray,   0xFF782018, 0xFF782018, 0xFF782018, 0xFF782018},
    {"LabelColoursBlackOfOneBit",  1, kTransformLabel6,           black,  red, red, red, red},
    {"LabelLeavesWhiteOfOneBit",   1, kTransformLabel6,           white,  white, white, white, white},
    {"SelectedDisabled",           8, kTransformSelectedDisabled, orange, 0xFF3F9820, 0xFF3F9820, 0xFF3F9820, 0xFF3F9820},
    {"SelectedDisabledInOneBit",   1, kTransformSelectedDisabled, black,  background, white, white, background},
    {"SelectedOffline",            8, kTransformSelectedOffline,  orange, 0xFF404040, 0xFF7F3201, 0xFF7F3201, 0xFF404040},
    {"SelectedOfflineInOneBit",    1, kTransformSelectedOffline,  black,  black, white, white, black},
    {"SelectedOfflineWhite",       1, kTransformSelectedOffline,  white,  black, black, black, black},
    {"SelectedOpen",               8, kTransformSelectedOpen,     orange, 0xFF404040, 0xFF606060, 0xFF606060, 0xFF606060},
    {"SelectedOpenInOneBit",       1, kTransformSelectedOpen,     white,  white, black, black, black},
    {"SelectedLabel",              8, selected | kTransformLabel6, white, 0xFF771F17, 0xFF771F17, 0xFF771F17, 0xFF771F17},
    {"SelectedLabelInOneBit",      1, selected | kTransformLabel6, white, red, red, red, red},
    {"LabelDisabled",              8, kTransformLabel6 | kTransformDisabled, white, 0xFF789F38, 0xFF789F38, 0xFF789F38, 0xFF789F38},
    {"LabelDisabledInOneBit",      1, kTransformLabel6 | kTransformDisabled, black, background, red, red, background},
    {"LabelOpen",                  8, kTransformLabel6 | kTransformOpen, orange, 0xFF782018, 0xFFB43024, 0xFFB43024, 0xFFB43024},
    {"UnknownStateCountsAsNone",   8, 4,                          orange, orange, orange, orange, orange},
    {"LargestStateCountsAsNone",   8, 255,                        orange, orange, orange, orange, orange},
    {"UnknownBitsCountAsNone",     8, 0x3800,                     orange, orange, orange, orange, orange},
    {"TheSignBitCountsAsNone",     8, static_cast<IconTransformType>(0x8000), orange, orange, orange, orange, orange},
    {"SelectedWithUnknownState",   8, selected | 77,              white,  0xFF7F7F7F, 0xFF7F7F7F, 0xFF7F7F7F, 0xFF7F7F7F},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(OfIcons, Looks, testing::ValuesIn(lookCases), rowName);

TEST(IconLabels, AreSevenColours)
{
    for (int label = 1; label <= 7; ++label)
    {
        IconPixels icon = plain(8, white);
        transformIcon(static_cast<IconTransformType>(label << 8), background, icon);
        EXPECT_EQ(icon.pixels[0], colorOfLabel(label));
        EXPECT_EQ(icon.pixels[0] >> 24, 0xFFu);
        for (int other = 1; other < label; ++other)
            EXPECT_NE(colorOfLabel(label), colorOfLabel(other)) << label << " and " << other;
    }
}

// A look drawn over another one leaves nothing of it: no pixel inside the mask becomes transparent.
TEST(IconLooks, EveryPixelInsideTheMaskStaysOpaque)
{
    for (int transform = -0x8000; transform < 0x8000; transform += 5)
    {
        for (int bitsPerPixel : {1, 8})
        {
            IconPixels icon = plain(bitsPerPixel, black);
            transformIcon(static_cast<IconTransformType>(transform), background, icon);
            for (std::size_t pixel = 0; pixel < 16; ++pixel)
                ASSERT_EQ(icon.pixels[pixel] >> 24, pixel < 12 ? 0xFFu : 0u) << transform;
        }
    }
}

}   // namespace
