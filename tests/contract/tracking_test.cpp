// The mouse on icon buttons, as far as no menu opens.

#include "tests/contract/tracking_fixture.h"

namespace
{

class Tracking : public TrackingTest, public testing::WithParamInterface<Tracker>
{
protected:
    SInt16 trackWay(const std::string &way)
    {
        setWay(GetParam(), way);
        platform.forgetCalls();
        return track(GetParam(), withoutMenu);
    }

    // The calls of a whole way, look by look.
    static Calls callsOf(const std::string &way)
    {
        Calls calls = beginning(GetParam());
        char last = 'i';
        for (const char letter : way)
        {
            calls = calls + (letter == 'i' ? lookInside(GetParam(), last == 'o') : lookOutside(GetParam(), last == 'i'));
            last = letter;
        }
        return calls + ending(GetParam(), last == 'i');
    }

    const PopUpArguments withoutMenu = {.menuID = 0};
};

INSTANTIATE_TEST_SUITE_P(All, Tracking, testing::Values(itemTracker, rectTracker, rectPopUpTracker, itemPopUpTracker), rowName);

TEST_P(Tracking, MouseThatIsAlreadyUpIsAClick)
{
    EXPECT_EQ(trackWay(""), 1);
    EXPECT_EQ(platform.calls(), beginning(GetParam()) + ending(GetParam(), true));
}

TEST_P(Tracking, LeavingAndReturningDrawsOnceForEachChange)
{
    EXPECT_EQ(trackWay("iioooiio"), 0);
    const Tracker &tracker = GetParam();
    EXPECT_EQ(platform.calls(), beginning(tracker) + lookInside(tracker) + lookInside(tracker) + lookOutside(tracker, true) +
                                    lookOutside(tracker, false) + lookOutside(tracker, false) + lookInside(tracker, true) +
                                    lookInside(tracker) + lookOutside(tracker, true) + ending(tracker, false));
}

TEST_P(Tracking, EveryWayOfUpToSixLooksEndsWithWhereTheMouseWas)
{
    for (unsigned length = 0; length <= 6; ++length)
        for (unsigned bits = 0; bits < 1u << length; ++bits)
        {
            std::string way;
            for (unsigned look = 0; look < length; ++look)
                way += bits >> look & 1 ? 'o' : 'i';
            SCOPED_TRACE(way);
            ASSERT_EQ(trackWay(way), way.empty() || way.back() == 'i' ? 1 : 0);
            ASSERT_EQ(platform.calls(), callsOf(way));
        }
}

TEST_P(Tracking, AnyTrueValueOfStillDownAndPtInRectWillDo)
{
    for (const Boolean yes : {Boolean{1}, Boolean{2}, Boolean{0x80}, Boolean{0xFF}})
    {
        platform.events.down = yes;
        platform.drawing.inside = yes;
        EXPECT_EQ(trackWay("iioi"), 1);
        EXPECT_EQ(platform.calls(), callsOf("iioi"));
    }
}

TEST_P(Tracking, EdgesAreThoseOfTheRectangleAndNotOfTheIcon)
{
    const Point corner = GetParam().isOfDialog ? platform.dialogs.dialog.port.corner : Point{0, 0};
    struct
    {
        Point local;
        SInt16 result;
    } const rows[] = {{{10, 20}, 1}, {{41, 51}, 1}, {{9, 20}, 0}, {{10, 19}, 0}, {{42, 20}, 0}, {{10, 52}, 0}};
    for (const auto &row : rows)
    {
        platform.events.way = {{static_cast<SInt16>(row.local.v + corner.v), static_cast<SInt16>(row.local.h + corner.h)}};
        EXPECT_EQ(track(GetParam(), withoutMenu), row.result) << pointText(row.local);
    }
}

TEST_P(Tracking, WithoutIconsTheMouseIsFollowedAllTheSame)
{
    platform.icons.families.clear();
    EXPECT_EQ(trackWay("io"), 0);
    EXPECT_EQ(trackWay("ioi"), 1);
    const auto asksForIcons = [](const std::string &call) { return call.substr(0, 12) == "GetIconSuite"; };
    EXPECT_EQ(std::count_if(platform.calls().begin(), platform.calls().end(), asksForIcons), 4) << "in, out, in, out";
}

TEST_P(Tracking, FailureOfAnyCallChangesNothingButTheDrawing)
{
    for (int nth = 1;; ++nth)
    {
        platform.failCall(nth, ioErr);
        const SInt16 result = trackWay("ioio");
        EXPECT_EQ(result, 0) << platform.failedCall();
        const auto looks = std::count(platform.calls().begin(), platform.calls().end(), "GetMouse(mouse)");
        EXPECT_EQ(looks, 4) << platform.failedCall();
        if (!platform.failureReached())
            break;
    }
}

TEST_P(Tracking, MenuOfNumber0NeverOpens)
{
    platform.events.nextTicks = {0, 0xFFFFFFFF, 0x80000000, 51};
    EXPECT_EQ(trackWay("iii"), 1);
    EXPECT_EQ(platform.calls(), callsOf("iii"));
    EXPECT_EQ(trackWay("iio"), 0);
}

class TrackingLiterally : public TrackingTest
{
};

TEST_F(TrackingLiterally, Rect)
{
    setWay(rectTracker, "io");
    EXPECT_EQ(TrackRectIconButton({10, 20, 42, 52}, 128, 5), 0);
    EXPECT_EQ(
        platform.calls(),
        (Calls{"GetIconSuite(suite, 128, 0xFF00)", "SetRect(rect, 0, 0, 16, 16)", "OffsetRect(rect, 20, 10)",
               "PlotIconSuite({10, 20, 26, 36}, 5, 0x4000, suite 128)", "DisposeIconSuite(suite 128, 1)", "StillDown()", "GetMouse(mouse)",
               "PtInRect({20, 30}, {10, 20, 42, 52})", "StillDown()", "GetMouse(mouse)", "PtInRect({60, 30}, {10, 20, 42, 52})",
               "GetIconSuite(suite, 128, 0xFF00)", "SetRect(rect, 0, 0, 16, 16)", "OffsetRect(rect, 20, 10)",
               "PlotIconSuite({10, 20, 26, 36}, 5, 0x0, suite 128)", "DisposeIconSuite(suite 128, 1)", "StillDown()"}));
}

TEST_F(TrackingLiterally, Item)
{
    EXPECT_EQ(MyTrackIconButton(&platform.dialogs.dialog, 3, 128, 5), 1);
    const Calls afterPlotting = {"DisposeIconSuite(suite 128, 1)",
                                 "Get1Resource('STR ', 128)",
                                 "SetResLoad(0)",
                                 "GetResource('ICN#', 128)",
                                 "SetResLoad(1)",
                                 "StringWidth(\"\")",
                                 "GetForeColor(color)",
                                 "RGBForeColor({0x1234, 0xABCD, 0xFFFF})",
                                 "SetPenState(pen at {-3, 7})"};
    const Calls beforePlotting = {"GetPenState(pen)", "GetIconSuite(suite, 128, 0xFFFFFFFF)", "SetRect(rect, 0, 0, 32, 32)",
                                  "OffsetRect(rect, 20, 10)"};
    EXPECT_EQ(platform.calls(),
              Calls({"GetPort(port)", "GetDialogPort(dialog)", "SetPort(port:dialog)", "GetDialogItem(dialog, 3, type, item, box)"}) +
                  beforePlotting + Calls{"PlotIconSuite({10, 20, 42, 52}, 5, 0x4000, suite 128)"} + afterPlotting + Calls{"StillDown()"} +
                  beforePlotting + Calls{"PlotIconSuite({10, 20, 42, 52}, 5, 0x0, suite 128)"} + afterPlotting +
                  Calls{"SetPort(port:screen)"});
}

TEST_F(TrackingLiterally, LabelIsNotDrawn)
{
    platform.resources.files[1].push_back({fourCharCode("STR "), 128, "\5Print"});
    track(itemTracker);
    track(itemPopUpTracker);
    EXPECT_TRUE(platform.drawing.texts.empty());
}

TEST_F(TrackingLiterally, ItemThatTheDialogLacksIsAnEmptyRectangleAtTheOrigin)
{
    platform.events.way = {{100, 200}};
    EXPECT_EQ(onPatternedStack([this] { return MyTrackIconButton(&platform.dialogs.dialog, 99, 128, 5); }), 0);
    EXPECT_EQ(std::count(platform.calls().begin(), platform.calls().end(), "PtInRect({0, 0}, {0, 0, 0, 0})"), 1);
}

}   // namespace
