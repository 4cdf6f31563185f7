// Icon buttons as the library draws them with real icons and real text, compared with stored pictures.
#include "dialogs/iconbuttons.h"
#include "tests/standin/icon_files.h"
#include "tests/standin/interface_scenes.h"

#include <gtest/gtest.h>

namespace
{

using namespace support;

constexpr SInt16 noLabel = 0, beside = 1, below = 2;
constexpr SInt16 page = 128;         // every member; its label is a string
constexpr SInt16 namedPage = 129;    // every member; its label is the name of the icon list
constexpr SInt16 silentPage = 130;   // every member, no label
constexpr SInt16 smallPage = 131;    // the small members alone
constexpr SInt16 onlyAString = 132;
constexpr SInt16 firstOfWidths = 200;   // labels of growing widths
constexpr RGBColor white = {0xFFFF, 0xFFFF, 0xFFFF}, paper = {0xEEEE, 0xEEEE, 0xCCCC};

const std::vector<std::string> widths = {"", "i", "l.", "ll", "w", "Save", "Saved"};

std::vector<TestResource> resources()
{
    std::vector<TestResource> all;
    const auto addFamily = [&](SInt16 id, const std::string &name, const std::vector<OSType> &types = iconTypes()) {
        for (const TestResource &member : pageFamily(id, name, types))
            all.push_back(member);
    };
    const auto addString = [&](SInt16 id, const std::string &text) {
        all.push_back({code("STR "), id, bytesOf(static_cast<char>(text.size()) + text)});
    };
    addFamily(page, "not this");
    addString(page, "Page");
    addFamily(namedPage, "Named");
    addFamily(silentPage, "");
    addFamily(smallPage, "", {code("ics#"), code("ics8")});
    addString(onlyAString, "No icon");
    for (std::size_t index = 0; index < widths.size(); ++index)
    {
        const SInt16 id = static_cast<SInt16>(firstOfWidths + static_cast<int>(index));
        addFamily(id, "", {code("icl8"), code("ICN#")});
        addString(id, widths[index]);
    }
    all.push_back(arrowList(page, 8));
    return all;
}

// A window all in one colour that nobody sees; its port is the current one as long as it lives.
class ButtonWindow
{
public:
    ButtonWindow(int width, int height, const RGBColor &background)
    {
        useScript("");
        const Rect bounds = {0, 0, static_cast<SInt16>(height), static_cast<SInt16>(width)};
        GetPort(&earlier_);
        EXPECT_EQ(CreateNewWindow(kPlainWindowClass, kWindowNoAttributes, &bounds, &window_), noErr);
        SetPort(port());
        RGBBackColor(&background);
        EraseRect(&bounds);
    }
    ~ButtonWindow()
    {
        SetPort(earlier_);
        DisposeWindow(window_);
    }
    ButtonWindow(const ButtonWindow &) = delete;
    ButtonWindow &operator=(const ButtonWindow &) = delete;

    WindowRef window() const { return window_; }
    GrafPtr port() const { return GetWindowPort(window_); }

private:
    GrafPtr earlier_ = nullptr;
    WindowRef window_ = nullptr;
};

class IconButtons : public testing::Test
{
protected:
    // Only the corner counts.
    static Rect at(int left, int top)
    {
        return {static_cast<SInt16>(top), static_cast<SInt16>(left), static_cast<SInt16>(top), static_cast<SInt16>(left)};
    }

private:
    TemporaryFolder folder_;
    OpenResources file_{fileWithData(folder_, "icons", resourceFork(resources()))};
};

// Four states, then the same selected, then with three of the labels' colours: the four that are disabled or offline and
// nothing besides have a grey text.
TEST_F(IconButtons, EveryTransformHasItsText)
{
    const IconTransformType states[] = {kTransformNone, kTransformDisabled, kTransformOffline, kTransformOpen};
    const IconTransformType additions[] = {0, kTransformSelected, kTransformLabel1, kTransformLabel5,
                                           kTransformSelected | kTransformLabel7};
    const ButtonWindow window(4 * 80, 5 * 56, white);
    for (int row = 0; row < 5; ++row)
        for (int column = 0; column < 4; ++column)
            MyDrawIconButton(page, at(24 + column * 80, 4 + row * 56), kAlignNone,
                             static_cast<IconTransformType>(states[column] | additions[row]), below);
    EXPECT_TRUE(looksLike(window.port(), "buttons_transforms"));
}

// Half of an odd width is cut off. A line through each icon's middle shows on which side of it the odd pixel goes.
TEST_F(IconButtons, TextsOfEvenAndOddWidthsAreCentred)
{
    const ButtonWindow window(static_cast<int>(widths.size()) * 72 + 16, 120, white);
    int oddOnes = 0;
    for (std::size_t index = 0; index < widths.size(); ++index)
    {
        const SInt16 id = static_cast<SInt16>(firstOfWidths + static_cast<int>(index));
        const int left = 20 + static_cast<int>(index) * 72;
        MyDrawIconButton(id, at(left, 4), kAlignNone, kTransformNone, below);
        MyDrawIconButton(id, at(left - 8, 76), kAlignNone, kTransformNone, beside);
        MoveTo(static_cast<SInt16>(left + 16), 56);
        LineTo(static_cast<SInt16>(left + 16), 64);
        oddOnes += StringWidth(Pascal(widths[index])) % 2;
    }
    EXPECT_GT(oddOnes, 0);
    EXPECT_LT(oddOnes, static_cast<int>(widths.size()) - 1);   // the empty one is even
    EXPECT_TRUE(looksLike(window.port(), "buttons_widths"));
}

// In a button's 32 by 32 pixels a small icon has room to be aligned.
TEST_F(IconButtons, SmallIconsAreAligned)
{
    const IconAlignmentType across[] = {kAlignNone, kAlignLeft, kAlignHorizontalCenter, kAlignRight};
    const IconAlignmentType down[] = {kAlignNone, kAlignTop, kAlignVerticalCenter, kAlignBottom};
    const ButtonWindow window(4 * 40, 4 * 40, white);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
        {
            const int left = 4 + column * 40, top = 4 + row * 40;
            const Rect room = {static_cast<SInt16>(top - 1), static_cast<SInt16>(left - 1), static_cast<SInt16>(top + 33),
                               static_cast<SInt16>(left + 33)};
            FrameRect(&room);
            MyDrawIconButton(smallPage, at(left, top), static_cast<IconAlignmentType>(across[column] | down[row]), kTransformNone, noLabel);
        }
    EXPECT_TRUE(looksLike(window.port(), "buttons_alignments"));
}

// A string without an icon is no button, and leaves its place as it was.
TEST_F(IconButtons, AMissingFamilyLeavesItsPlaceEmpty)
{
    const ButtonWindow window(4 * 56, 60, paper);
    const SInt16 row[] = {page, onlyAString, namedPage, silentPage};
    for (int column = 0; column < 4; ++column)
        MyDrawIconButton(row[column], at(12 + column * 56, 4), kAlignNone, kTransformNone, below);
    const Picture buttons = pictureOf(window.port());
    EXPECT_TRUE(looksLike(buttons, "buttons_one_missing"));
    EXPECT_EQ(MyDrawIconInSuite(onlyAString, at(68, 4), kAlignNone, kTransformNone), resNotFound);
    EXPECT_EQ(pictureOf(window.port()).pixels, buttons.pixels);
}

TEST_F(IconButtons, SmallPicturesAreBlackOnTheBackgroundOfTheirWindow)
{
    const RGBColor red = {0xFFFF, 0, 0};
    const ButtonWindow window(8 * 20, 20, paper);
    for (SInt16 index = 0; index < 8; ++index)
    {
        RGBForeColor(&red);
        DrawSICN(window.window(), page, index, {2, static_cast<SInt16>(2 + index * 20)});
    }
    EXPECT_TRUE(looksLike(window.port(), "small_pictures"));
}

}   // namespace
