// What the tests of tracking share: the four functions as rows, ways for the mouse, and the calls that a way leads to.

#pragma once

#include "tests/contract/dialogs_fixture.h"

#include <string>

constexpr SInt16 trackedFamily = 128, trackedItem = 3, trackedAlignment = 5, trackedMenu = 200;
constexpr Rect trackedRect = {10, 20, 42, 52};

// The arguments that only some of the functions have.
struct PopUpArguments
{
    SInt16 menuID = trackedMenu;
    Boolean inserted = 0;
    SInt16 checkedItem = -1;
    Boolean clearMarks = 0;
    SInt16 delay = -1;
};

struct Tracker
{
    const char *name;
    bool isOfDialog, hasPopUp;
};

constexpr Tracker itemTracker = {"Item", true, false}, rectTracker = {"Rect", false, false},
                  rectPopUpTracker = {"RectWithPopUp", false, true}, itemPopUpTracker = {"ItemWithPopUp", true, true};

inline void PrintTo(const Tracker &tracker, std::ostream *stream)
{
    *stream << tracker.name;
}

class TrackingTest : public DialogsTest
{
protected:
    TrackingTest()
    {
        platform.dialogs.dialog.items = {{trackedItem, trackedRect}, {trackedItem + 1, {0, 0, 500, 500}}};
        platform.menus.resources[trackedMenu] = {trackedMenu, 5};
    }

    SInt16 track(const Tracker &tracker, const PopUpArguments &popUp = {})
    {
        const DialogRef dialog = &platform.dialogs.dialog;
        if (tracker.hasPopUp && tracker.isOfDialog)
            return MyTrackIconButtonWithPopUp(dialog, trackedItem, trackedFamily, trackedAlignment, popUp.menuID, popUp.inserted,
                                              popUp.checkedItem, popUp.clearMarks, popUp.delay);
        if (tracker.hasPopUp)
            return TrackIconButtonWithPopUp(trackedFamily, trackedAlignment, popUp.menuID, popUp.inserted, popUp.checkedItem, trackedRect);
        if (tracker.isOfDialog)
            return MyTrackIconButton(dialog, trackedItem, trackedFamily, trackedAlignment);
        return TrackRectIconButton(trackedRect, trackedFamily, trackedAlignment);
    }

    // A way of one letter for each look at the mouse: 'i' is in the button and 'o' is not.
    void setWay(const Tracker &tracker, const std::string &way)
    {
        const Point corner = tracker.isOfDialog ? platform.dialogs.dialog.port.corner : Point{0, 0};
        platform.events.way.clear();
        for (const char letter : way)
        {
            const Point local = letter == 'i' ? Point{20, 30} : Point{60, 30};
            platform.events.way.push_back({static_cast<SInt16>(local.v + corner.v), static_cast<SInt16>(local.h + corner.h)});
        }
    }

    static Calls beginning(const Tracker &tracker)
    {
        Calls calls;
        if (tracker.isOfDialog)
            calls = {"GetPort(port)", "GetDialogPort(dialog)", "SetPort(port:dialog)", "GetDialogItem(dialog, 3, type, item, box)"};
        calls = calls + drawn(tracker, kTransformSelected);
        return tracker.hasPopUp ? calls + Calls{"TickCount()"} : calls;
    }

    static Calls drawn(const Tracker &tracker, IconTransformType transform)
    {
        if (!tracker.isOfDialog)
            return smallIconCalls(trackedRect, trackedFamily, trackedAlignment, transform);
        return largeIconCalls(trackedRect, trackedFamily, trackedAlignment, transform) + Calls{"Get1Resource('STR ', 128)",
                                                                                               "SetResLoad(0)",
                                                                                               "GetResource('ICN#', 128)",
                                                                                               "SetResLoad(1)",
                                                                                               "StringWidth(\"\")",
                                                                                               "GetForeColor(color)",
                                                                                               "RGBForeColor({0x1234, 0xABCD, 0xFFFF})",
                                                                                               "SetPenState(pen at {-3, 7})"};
    }

    // One look at the mouse in the button, or outside, and what follows it in the loop.
    static Calls lookInside(const Tracker &tracker, bool redraws = false)
    {
        Calls calls = {"StillDown()", "GetMouse(mouse)", "PtInRect({20, 30}, {10, 20, 42, 52})"};
        if (redraws)
            calls = calls + drawn(tracker, kTransformSelected);
        return tracker.hasPopUp ? calls + Calls{"TickCount()"} : calls;
    }

    static Calls lookOutside(const Tracker &tracker, bool redraws)
    {
        const Calls calls = {"StillDown()", "GetMouse(mouse)", "PtInRect({60, 30}, {10, 20, 42, 52})"};
        return redraws ? calls + drawn(tracker, kTransformNone) : calls;
    }

    static Calls ending(const Tracker &tracker, bool redraws)
    {
        Calls calls = {"StillDown()"};
        if (redraws)
            calls = calls + drawn(tracker, kTransformNone);
        return tracker.isOfDialog ? calls + Calls{"SetPort(port:screen)"} : calls;
    }
};
