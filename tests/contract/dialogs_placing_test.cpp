// Where a dialog's template is moved to, and the alert with a number.

#include "tests/contract/dialogs_fixture.h"

namespace
{

class DialogsPlacing : public DialogsTest
{
protected:
    DialogsPlacing() { std::memset(static_cast<void *>(&record), 0x5A, sizeof record); }

    void setScreen(const Rect &rect) { platform.screens.mainDevice.gdRect = rect; }

    Rect placed(const Rect &bounds)
    {
        record.boundsRect = bounds;
        DialogTemplate *master = &record;
        ZerbCenterDialog(&master);
        EXPECT_EQ(master, &record);
        return record.boundsRect;
    }

    static Calls moves(int left, int top, int h, int v)
    {
        return {"OffsetRect(rect, " + decimal(left) + ", " + decimal(top) + ")",
                "OffsetRect(rect, " + decimal(h) + ", " + decimal(v) + ")"};
    }

    DialogTemplate record;
};

struct PlacingRow
{
    const char *name;
    Rect screen, bounds, placed;
};

void PrintTo(const PlacingRow &row, std::ostream *stream)
{
    *stream << row.name;
}

constexpr Rect usualScreen = {0, 0, 768, 1024};

const PlacingRow placingRows[] = {
    {"Usual", usualScreen, {0, 0, 300, 400}, {169, 312, 469, 712}},
    {"FromWhereverItWas", usualScreen, {70, 80, 370, 480}, {169, 312, 469, 712}},
    {"FromOutsideTheScreen", usualScreen, {-50, -2000, 250, -1600}, {169, 312, 469, 712}},
    {"ScreenElsewhere", {-100, 2000, 668, 3024}, {0, 0, 300, 400}, {169, 312, 469, 712}},
    {"SmallScreen", {0, 0, 342, 512}, {0, 0, 100, 200}, {94, 156, 194, 356}},
    {"NoDialogAtAll", usualScreen, {9, 9, 9, 9}, {269, 512, 269, 512}},
    {"AsLargeAsTheScreen", usualScreen, {0, 0, 768, 1024}, {14, 0, 782, 1024}},
    {"OneWider", usualScreen, {0, 0, 300, 1025}, {169, 0, 469, 1025}},
    {"TwoWider", usualScreen, {0, 0, 300, 1026}, {169, -1, 469, 1025}},
    {"ThreeWider", usualScreen, {0, 0, 300, 1027}, {169, -1, 469, 1026}},
    {"FourWider", usualScreen, {0, 0, 300, 1028}, {169, -2, 469, 1026}},
    {"OneNarrower", usualScreen, {0, 0, 300, 1023}, {169, 0, 469, 1023}},
    {"NothingFreeBelowTheBand", usualScreen, {0, 0, 748, 400}, {20, 312, 768, 712}},
    {"TwoFree", usualScreen, {0, 0, 746, 400}, {20, 312, 766, 712}},
    {"ThreeFree", usualScreen, {0, 0, 745, 400}, {21, 312, 766, 712}},
    {"TwoTooMany", usualScreen, {0, 0, 750, 400}, {20, 312, 770, 712}},
    {"ThreeTooMany", usualScreen, {0, 0, 751, 400}, {19, 312, 770, 712}},
    {"TenTooMany", usualScreen, {0, 0, 758, 400}, {17, 312, 775, 712}},
    {"UpsideDown", usualScreen, {300, 400, 0, 0}, {369, 712, 69, 312}},
    {"ScreenThatWrapsAround", {-32768, -32768, 32767, 32767}, {0, 0, 100, 100}, {-20, -50, 80, 50}},
    {"DialogThatWrapsAround", usualScreen, {-32768, -32768, 32767, 32767}, {269, 512, 268, 511}},
    {"DifferenceOver16Bits", {0, 0, 32767, 32767}, {0, 0, -32768, -32768}, {21858, 32767, -10910, -1}},
    {"DifferenceUnder16Bits", {0, 0, -32768, -32768}, {0, 0, 32767, 32767}, {-21831, -32767, 10936, 0}},
};

class DialogsPlacingOf : public DialogsPlacing, public testing::WithParamInterface<PlacingRow>
{
};

INSTANTIATE_TEST_SUITE_P(Screens, DialogsPlacingOf, testing::ValuesIn(placingRows), rowName);

TEST_P(DialogsPlacingOf, MainScreen)
{
    setScreen(GetParam().screen);
    platform.screens.oldScreen = {7, 7, 77, 77};
    EXPECT_EQ(placed(GetParam().bounds), GetParam().placed);
}

TEST_P(DialogsPlacingOf, OldScreen)
{
    setScreen({7, 7, 77, 77});
    platform.screens.oldScreen = GetParam().screen;
    platform.screens.quickdrawVersion = 0;
    EXPECT_EQ(placed(GetParam().bounds), GetParam().placed);
}

TEST_P(DialogsPlacingOf, NothingElseInTheTemplateIsTouched)
{
    setScreen(GetParam().screen);
    DialogTemplate expected = record;
    expected.boundsRect = GetParam().placed;
    placed(GetParam().bounds);
    EXPECT_TRUE(sameBytes(record, expected));
}

TEST_F(DialogsPlacing, CallsAreTheseInThisOrder)
{
    placed({70, 80, 370, 480});
    EXPECT_EQ(platform.calls(), (Calls{"Gestalt('qd  ', response)", "GetMainDevice()"} + moves(-80, -70, 312, 169)));
}

TEST_F(DialogsPlacing, CornerThatHasNoOppositeWrapsAround)
{
    placed({-32768, -32768, 0, 0});
    EXPECT_EQ(Calls(platform.calls().begin() + 2, platform.calls().end()), moves(-32768, -32768, 16896, 11192));
}

TEST_F(DialogsPlacing, OldScreenCountsWithoutColourQuickDraw)
{
    platform.screens.oldScreen = {0, 0, 342, 512};
    const Calls oldScreen = Calls{"Gestalt('qd  ', response)", "GetQDGlobalsScreenBits(bits)"} + moves(0, 0, 156, 94);
    const Calls mainScreen = Calls{"Gestalt('qd  ', response)", "GetMainDevice()"} + moves(0, 0, 412, 236);
    for (const SInt32 version : {0xFF, 0xFE, 1, 0, -1, -0x230, std::numeric_limits<int>::min()})
    {
        platform.forgetCalls();
        platform.screens.quickdrawVersion = version;
        placed({0, 0, 100, 200});
        EXPECT_EQ(platform.calls(), oldScreen) << version;
    }
    for (const SInt32 version : {0x100, 0x101, 0x230, 0x10000, std::numeric_limits<int>::max()})
    {
        platform.forgetCalls();
        platform.screens.quickdrawVersion = version;
        placed({0, 0, 100, 200});
        EXPECT_EQ(platform.calls(), mainScreen) << version;
    }
}

TEST_F(DialogsPlacing, OldScreenCountsWhereTheVersionIsNotToBeKnown)
{
    for (const OSErr code : {ioErr, OSErr{-5551}, OSErr{1}})
    {
        platform.forgetCalls();
        platform.failEvery("Gestalt", code);
        const Rect rect = onPatternedStack([this] { return placed({0, 0, 100, 200}); });
        EXPECT_EQ(rect, (Rect{94, 156, 194, 356}));
        EXPECT_EQ(platform.calls()[1], "GetQDGlobalsScreenBits(bits)");
    }
}

TEST_F(DialogsPlacing, VersionThatComesWithAnErrorDoesNotCount)
{
    for (const OSErr code : {ioErr, OSErr{1}})
    {
        platform.screens.codeBesideTheVersion = code;
        EXPECT_EQ(placed({0, 0, 100, 200}), (Rect{94, 156, 194, 356}));
    }
}

class DialogsAlert : public DialogsTest
{
protected:
    std::string shown(SInt32 number, SInt32 alertID = 500)
    {
        ZerbErrorAlert(alertID, number, nullptr);
        return platform.dialogs.alerts.back().texts[0];
    }
};

TEST_F(DialogsAlert, CallsAreTheseInThisOrder)
{
    ZerbErrorAlert(500, -43, nullptr);
    EXPECT_EQ(platform.calls(), (Calls{"NumToString(-43, text)", "ParamText(\"-43\", -, -, -)", "StopAlert(500, -)"}));
}

TEST_F(DialogsAlert, ShowsTheNumberAndLeavesTheOtherTexts)
{
    platform.dialogs.texts = {"old", "first", "second", "third"};
    EXPECT_EQ(shown(-43), "-43");
    EXPECT_EQ(platform.dialogs.alerts.back().texts, (std::array<std::string, 4>{"-43", "first", "second", "third"}));
}

TEST_F(DialogsAlert, ShowsEveryNumber)
{
    EXPECT_EQ(shown(0), "0");
    EXPECT_EQ(shown(1), "1");
    EXPECT_EQ(shown(-1), "-1");
    EXPECT_EQ(shown(40000), "40000");
    EXPECT_EQ(shown(-65579), "-65579");
    EXPECT_EQ(shown(std::numeric_limits<SInt32>::max()), "2147483647");
    EXPECT_EQ(shown(std::numeric_limits<SInt32>::min()), "-2147483648");
}

TEST_F(DialogsAlert, IsTheOneOfTheLow16Bits)
{
    struct
    {
        UInt32 given;
        SInt16 shown;
    } const rows[] = {{0, 0},       {128, 128},       {0x12340080, 128}, {0x7FFF, 32767}, {0x8000, -32768},    {0xFFFF, -1},
                      {0x10000, 0}, {0xFFFFFFFF, -1}, {0xFFFF0080, 128}, {0x80000001, 1}, {0x7FFF8001, -32767}};
    for (const auto &row : rows)
    {
        shown(0, static_cast<SInt32>(row.given));
        EXPECT_EQ(platform.dialogs.alerts.back().id, row.shown) << hex(row.given);
    }
}

TEST_F(DialogsAlert, LooksNeitherAtTheUnusedPointerNorAtTheClosingItem)
{
    platform.dialogs.closingItem = -1;
    ZerbErrorAlert(500, 7, reinterpret_cast<void *>(1));
    EXPECT_EQ(platform.calls(), (Calls{"NumToString(7, text)", "ParamText(\"7\", -, -, -)", "StopAlert(500, -)"}));
}

}   // namespace
