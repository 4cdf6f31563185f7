// Icon buttons: where their label comes from, where it goes and which colour it has.

#include "tests/contract/dialogs_fixture.h"

namespace
{

constexpr ResType stringType = fourCharCode("STR "), iconListType = fourCharCode("ICN#");
constexpr SInt16 noLabel = 0, beside = 1, below = 2;

std::string pascal(const std::string &characters)
{
    return static_cast<char>(static_cast<unsigned char>(characters.size())) + characters;
}

class DialogsButtons : public DialogsTest
{
protected:
    void SetUp() override { portBefore = platform.drawing.screen; }

    void TearDown() override
    {
        EXPECT_TRUE(sameBytes(platform.drawing.screen.pen, portBefore.pen)) << "the pen is not what it was";
        EXPECT_TRUE(sameBytes(platform.drawing.screen.foreColor, portBefore.foreColor)) << "the colour is not what it was";
        DialogsTest::TearDown();
    }

    Resource &addString(const std::string &label, std::size_t file = 1)
    {
        return platform.resources.files[file].emplace_back(Resource{stringType, family, pascal(label)});
    }

    Resource &addIconList(const std::string &name, std::size_t file = 1)
    {
        return platform.resources.files[file].emplace_back(Resource{iconListType, family, std::string(256, 'i'), name});
    }

    void draw(SInt16 placement, IconTransformType transform = kTransformNone) { MyDrawIconButton(family, where, 3, transform, placement); }

    static Calls icon(IconTransformType transform = kTransformNone) { return largeIconCalls(where, family, 3, transform); }

    static Calls labelOfString()
    {
        return {"Get1Resource('STR ', 128)", "DetachResource('STR ' 128)", "ReleaseResource('STR ' 128)", "DisposeHandle('STR ' 128)"};
    }

    static Calls labelOfIconList()
    {
        return {"Get1Resource('STR ', 128)", "SetResLoad(0)", "GetResource('ICN#', 128)", "GetResInfo('ICN#' 128, id, type, name)",
                "SetResLoad(1)"};
    }

    static Calls noLabelAtAll() { return {"Get1Resource('STR ', 128)", "SetResLoad(0)", "GetResource('ICN#', 128)", "SetResLoad(1)"}; }

    static Calls measuring(const std::string &label) { return {"StringWidth(\"" + label + "\")", "GetForeColor(color)"}; }

    static Calls drawing(const std::string &label, int h, int v)
    {
        return {"MoveTo(" + decimal(h) + ", " + decimal(v) + ")", "DrawString(\"" + label + "\")"};
    }

    static Calls restoring() { return {"RGBForeColor({0x1234, 0xABCD, 0xFFFF})", "SetPenState(pen at {-3, 7})"}; }

    // What the button says, as its label is drawn.
    std::string label()
    {
        platform.drawing.texts.clear();
        draw(beside);
        return platform.drawing.texts.size() == 1 ? platform.drawing.texts.front().text : "no label was drawn";
    }

    OpaqueGrafPtr portBefore;
};

TEST_F(DialogsButtons, LabelBesideTheIcon)
{
    addString("Print");
    draw(beside);
    EXPECT_EQ(platform.calls(), icon() + labelOfString() + measuring("Print") + drawing("Print", 48, 23) + restoring());
}

TEST_F(DialogsButtons, LabelBelowTheIconIsCentred)
{
    addString("Print");
    draw(below);
    EXPECT_EQ(platform.calls(), icon() + labelOfString() + measuring("Print") + drawing("Print", 16, 55) + restoring()) << "40 pixels wide";
}

TEST_F(DialogsButtons, LabelIsLookedUpAndMeasuredAlsoWhereItIsNotDrawn)
{
    addString("Print");
    draw(noLabel);
    EXPECT_EQ(platform.calls(), icon() + labelOfString() + measuring("Print") + restoring());
}

TEST_F(DialogsButtons, LabelIsTheNameOfTheIconListWhereThereIsNoString)
{
    Resource &iconList = addIconList("Save");
    draw(beside, kTransformSelected);
    EXPECT_EQ(platform.calls(), icon(kTransformSelected) + labelOfIconList() + measuring("Save") + drawing("Save", 48, 23) + restoring());
    ASSERT_NE(iconList.handle, nullptr) << "it stays in the map";
    EXPECT_EQ(*iconList.handle, nullptr) << "and its bytes were not loaded";
}

TEST_F(DialogsButtons, ButtonWithNeitherHasAnEmptyLabel)
{
    onPatternedStack([this] {
        draw(beside);
        return 0;
    });
    EXPECT_EQ(platform.calls(), icon() + noLabelAtAll() + measuring("") + drawing("", 48, 23) + restoring());
    platform.forgetCalls();
    draw(below);
    EXPECT_EQ(platform.calls(), icon() + noLabelAtAll() + measuring("") + drawing("", 36, 55) + restoring()) << "at the icon's centre";
}

TEST_F(DialogsButtons, IconListWithoutANameIsAnEmptyLabel)
{
    addIconList("");
    draw(beside);
    EXPECT_EQ(platform.calls(), icon() + labelOfIconList() + measuring("") + drawing("", 48, 23) + restoring());
}

TEST_F(DialogsButtons, StringOfAnotherFileDoesNotCountButTheIconListDoes)
{
    addString("of an older file", 2);
    addString("of the newest file", 0);
    EXPECT_EQ(label(), "");
    addIconList("Save", 2);
    EXPECT_EQ(label(), "Save");
    addIconList("Nearer", 1);
    EXPECT_EQ(label(), "Nearer");
    addString("Print", 1);
    EXPECT_EQ(label(), "Print");
}

TEST_F(DialogsButtons, ResourcesOfOtherTypesAndNumbersDoNotCount)
{
    for (const auto &[type, id] : {std::pair{stringType, noFamily}, {fourCharCode("STR#"), family}, {iconListType, noFamily}})
        platform.resources.files[1].push_back({type, id, pascal("other"), "other"});
    EXPECT_EQ(label(), "");
}

TEST_F(DialogsButtons, OfTheStringResourceNothingIsLeft)
{
    Resource &string = addString("Print");
    EXPECT_EQ(label(), "Print");
    EXPECT_EQ(string.handle, nullptr);
    EXPECT_TRUE(platform.handles.blocks.empty());
    EXPECT_EQ(platform.handles.lastError, noErr) << "what was disposed of was a block";
    EXPECT_EQ(platform.resources.lastError, resNotFound) << "and by then no resource any more";
    EXPECT_EQ(label(), "Print") << "once more";
}

TEST_F(DialogsButtons, LabelHasAsManyBytesAsItsLengthSays)
{
    Resource &string = addString("");
    for (const std::size_t length : {0, 1, 31, 127, 128, 200, 255})
    {
        string.bytes = pascal(std::string(length, '\xE9'));
        EXPECT_EQ(label(), std::string(length, '\xE9'));
        string.bytes += "bytes behind it";
        EXPECT_EQ(label(), std::string(length, '\xE9'));
    }
    platform.resources.files[1].clear();
    addIconList(std::string(255, '\xE9'));
    EXPECT_EQ(label(), std::string(255, '\xE9'));
}

TEST_F(DialogsButtons, StringThatIsNotInMemoryIsAnEmptyLabel)
{
    addString("Print");
    platform.resources.loads = false;
    loadsAfterwards = false;
    onPatternedStack([this] {
        draw(beside);
        return 0;
    });
    EXPECT_EQ(platform.calls(), icon() + labelOfString() + measuring("") + drawing("", 48, 23) + restoring());
    EXPECT_TRUE(platform.handles.blocks.empty());
}

TEST_F(DialogsButtons, LoadingIsOnAfterTheLookUpOfANameEvenIfItWasOff)
{
    addIconList("Save");
    platform.resources.loads = false;
    EXPECT_EQ(label(), "Save");
    EXPECT_TRUE(platform.resources.loads);
}

TEST_F(DialogsButtons, IconListThatIsInMemoryStaysThere)
{
    Resource &iconList = addIconList("Save");
    const Handle handle = GetResource(iconListType, family);
    EXPECT_EQ(label(), "Save");
    EXPECT_EQ(iconList.handle, handle);
    EXPECT_NE(*handle, nullptr);
}

TEST_F(DialogsButtons, WithoutAFamilyNothingIsDrawnAndThePenIsPutBack)
{
    addString("Print");
    for (const SInt16 placement : {noLabel, beside, below})
    {
        platform.forgetCalls();
        MyDrawIconButton(noFamily, where, 3, kTransformDisabled, placement);
        EXPECT_EQ(platform.calls(), (Calls{"GetPenState(pen)", "GetIconSuite(suite, 129, 0xFFFFFFFF)", "SetPenState(pen at {-3, 7})"}));
    }
}

TEST_F(DialogsButtons, OnlyTheSuiteDecidesAndNotTheCodeThatComesWithIt)
{
    platform.icons.codeBesideASuite = ioErr;
    draw(beside);
    EXPECT_EQ(platform.calls(), icon() + noLabelAtAll() + measuring("") + drawing("", 48, 23) + restoring());
    platform.forgetCalls();
    platform.icons.codeWithoutASuite = noErr;
    MyDrawIconButton(noFamily, where, 3, 0, beside);
    EXPECT_EQ(platform.calls().size(), 3u);
}

TEST_F(DialogsButtons, AnyMemberOfTheFamilyWillDo)
{
    for (int bit = 0; bit < 32; ++bit)
    {
        platform.icons.families[family] = IconSelectorValue{1} << bit;
        EXPECT_EQ(label(), "");
    }
}

class DialogsButtonsFailing : public DialogsButtons
{
protected:
    Calls callsWithout(const std::string &name)
    {
        platform.forgetCalls();
        platform.failEvery(name, ioErr);
        onPatternedStack([this] {
            draw(beside);
            return 0;
        });
        platform.failEvery(name, noErr);
        return platform.calls();
    }
};

TEST_F(DialogsButtonsFailing, EachCallEndsAsItsRuleSays)
{
    addString("Print");
    addIconList("Save");
    const Calls asEver = icon() + labelOfString() + measuring("Print") + drawing("Print", 48, 23) + restoring();
    const Calls named = icon() + labelOfIconList() + measuring("Save") + drawing("Save", 48, 23) + restoring();
    EXPECT_EQ(callsWithout("PlotIconSuite"), asEver) << "an icon that cannot be drawn has its label";
    EXPECT_EQ(callsWithout("DisposeIconSuite"), asEver);
    EXPECT_EQ(callsWithout("Get1Resource"), named);
    EXPECT_EQ(callsWithout("GetIconSuite"),
              (Calls{"GetPenState(pen)", "GetIconSuite(suite, 128, 0xFFFFFFFF)", "SetPenState(pen at {-3, 7})"}));
    platform.resources.files[1].pop_front();
    EXPECT_EQ(callsWithout("GetResource"), icon() + noLabelAtAll() + measuring("") + drawing("", 48, 23) + restoring());
}

TEST_F(DialogsButtons, LabelIsDarkGreyWithExactlyFourTransforms)
{
    const RGBColor grey = {0x4000, 0x4000, 0x4000};
    EXPECT_TRUE(sameBytes(kDarkGrey, grey));
    addString("Print");
    for (const int transform : {1, 2, 0x4001, 0x4002})
    {
        platform.forgetCalls();
        draw(below, static_cast<IconTransformType>(transform));
        EXPECT_EQ(platform.calls(), icon(static_cast<IconTransformType>(transform)) + labelOfString() + measuring("Print") +
                                        Calls{"RGBForeColor({0x4000, 0x4000, 0x4000})"} + drawing("Print", 16, 55) + restoring());
        EXPECT_TRUE(sameBytes(platform.drawing.texts.back().color, grey));
    }
}

TEST_F(DialogsButtons, GreyIsSetAlsoWhereTheLabelIsNotDrawn)
{
    draw(noLabel, kTransformDisabled);
    EXPECT_EQ(platform.calls(),
              icon(kTransformDisabled) + noLabelAtAll() + measuring("") + Calls{"RGBForeColor({0x4000, 0x4000, 0x4000})"} + restoring());
}

// Every transform comes once, and every placement once, each with another one of the other kind; on targets that may be
// emulated, a good sample of them.
TEST_F(DialogsButtons, NoOtherTransformChangesTheColourAndNoOtherPlacementDrawsALabel)
{
    addString("P");
    constexpr int step = sizeof(void *) == 8 ? 1 : 11;
    for (int number = -32768; number <= 32767; number += step)
    {
        const SInt16 transform = static_cast<SInt16>(number), placement = static_cast<SInt16>(number * 12345 + 678);
        const bool isGrey = number == 1 || number == 2 || number == 0x4001 || number == 0x4002;
        const bool isDrawn = placement == 1 || placement == 2;
        platform.forgetCalls();
        platform.drawing.texts.clear();
        draw(placement, transform);
        ASSERT_EQ(platform.calls().size(), 14u + isGrey + 2 * isDrawn) << transform << ' ' << placement;
        ASSERT_EQ(platform.calls()[12] == "RGBForeColor({0x4000, 0x4000, 0x4000})", isGrey) << transform;
        ASSERT_EQ(platform.drawing.texts.size(), isDrawn ? 1u : 0u) << placement;
    }
}

TEST_F(DialogsButtons, TransformsWithSomethingBesidesLeaveTheLabelsColour)
{
    addString("P");
    for (const int transform : {0, 3, 0x101, 0x0F02, 0x4000, 0x4003, 0x4101, 0x8001, 0xC002})
    {
        draw(beside, static_cast<IconTransformType>(transform));
        EXPECT_TRUE(sameBytes(platform.drawing.texts.back().color, portBefore.foreColor)) << hex(static_cast<UInt64>(transform));
    }
}

struct WidthRow
{
    const char *name;
    SInt16 width;
    int start;   // of the label below an icon from 20 to 52
};

void PrintTo(const WidthRow &row, std::ostream *stream)
{
    *stream << row.name;
}

const WidthRow widthRows[] = {
    {"None", 0, 36},
    {"One", 1, 36},
    {"Two", 2, 35},
    {"Odd", 7, 33},
    {"Even", 8, 32},
    {"AsTheIcon", 32, 20},
    {"Wider", 101, -14},
    {"MinusOne", -1, 36},
    {"MinusTwo", -2, 37},
    {"NegativeOdd", -7, 39},
    {"Widest", 32767, -16347},
    {"MostNegative", -32768, 16420},
};

class DialogsButtonsWidths : public DialogsButtons, public testing::WithParamInterface<WidthRow>
{
};

INSTANTIATE_TEST_SUITE_P(Widths, DialogsButtonsWidths, testing::ValuesIn(widthRows), rowName);

TEST_P(DialogsButtonsWidths, HalfOfTheWidthIsCutOff)
{
    platform.text.nextStringWidths = {GetParam().width};
    draw(below);
    EXPECT_EQ(platform.calls(), icon() + noLabelAtAll() + measuring("") + drawing("", GetParam().start, 55) + restoring());
}

TEST_P(DialogsButtonsWidths, LabelBesideTheIconStartsAlwaysThere)
{
    platform.text.nextStringWidths = {GetParam().width};
    draw(beside);
    EXPECT_EQ(platform.calls(), icon() + noLabelAtAll() + measuring("") + drawing("", 48, 23) + restoring());
}

TEST_F(DialogsButtons, PlaceOfTheLabelWrapsAround)
{
    const Rect edge = {32740, 32740, 0, 0};   // the icon's other corner is at -32764
    MyDrawIconButton(family, edge, 3, 0, beside);
    EXPECT_EQ(platform.calls()[12], "MoveTo(-32768, 32753)") << "4 before -32764";
    platform.forgetCalls();
    MyDrawIconButton(family, edge, 3, 0, below);
    EXPECT_EQ(platform.calls()[12], "MoveTo(-12, -32751)") << "half the way from 32740 to -32764";
    platform.forgetCalls();
    MyDrawIconButton(family, {32767, 0, 0, 0}, 3, 0, beside);
    EXPECT_EQ(platform.calls()[12], "MoveTo(28, -32756)");
    platform.forgetCalls();
    platform.text.nextStringWidths = {-32768};
    MyDrawIconButton(family, {0, 32000, 0, 0}, 3, 0, below);
    EXPECT_EQ(platform.calls()[12], "MoveTo(-17136, 45)") << "32016 and 16384";
}

}   // namespace
