// The check marks of a menu, which one of the functions clears in the end.

#include "tests/contract/tracking_fixture.h"

namespace
{

class TrackingMarks : public TrackingTest
{
protected:
    TrackingMarks() { platform.menus.resources[trackedMenu].itemCount = 2; }

    // Released at once, before any menu opens, or held until it does.
    SInt16 trackClick(const PopUpArguments &popUp)
    {
        platform.forgetCalls();
        return track(itemPopUpTracker, popUp);
    }

    SInt16 trackMenu(const PopUpArguments &popUp)
    {
        setWay(itemPopUpTracker, "i");
        platform.events.nextTicks = {0, 51};
        return trackClick(popUp);
    }

    // What comes once the port is restored.
    Calls callsAfterwards() const
    {
        const auto restored = std::find(platform.calls().begin(), platform.calls().end(), "SetPort(port:screen)");
        return restored == platform.calls().end() ? Calls{"the port is not restored"} : Calls(restored + 1, platform.calls().end());
    }

    static Calls clearing(int itemCount)
    {
        Calls calls;
        for (int item = 1; item <= itemCount; ++item)
            calls = calls + Calls{"CountMenuItems(menu 200)", "CheckMenuItem(menu 200, " + decimal(item) + ", 0)"};
        return calls + Calls{"CountMenuItems(menu 200)"};
    }

    OpaqueMenuRef &insertMenu()
    {
        platform.menus.inserted = {trackedMenu};
        return platform.menus.menus.emplace_back(OpaqueMenuRef{trackedMenu, 3, {1, 2, 3}});
    }
};

TEST_F(TrackingMarks, StayWhereNobodyWantsThemCleared)
{
    OpaqueMenuRef &menu = insertMenu();
    EXPECT_EQ(trackClick({.inserted = 1}), 1);
    EXPECT_EQ(callsAfterwards(), Calls{});
    EXPECT_EQ(trackMenu({.inserted = 1, .checkedItem = 3}), 0);
    EXPECT_EQ(callsAfterwards(), Calls{});
    EXPECT_EQ(menu.marked.size(), 3u);
}

TEST_F(TrackingMarks, OfNoMenuCannotBeCleared)
{
    EXPECT_EQ(trackMenu({.menuID = 0, .clearMarks = 1}), 1);
    EXPECT_EQ(callsAfterwards(), Calls{});
}

TEST_F(TrackingMarks, OfAnInsertedMenuThatWasOpenAreClearedThere)
{
    for (const Boolean flag : {Boolean{1}, Boolean{2}, Boolean{0x80}})
    {
        platform.menus.menus.clear();
        OpaqueMenuRef &menu = insertMenu();
        platform.menus.nextChoices = {0x00C80002};
        EXPECT_EQ(trackMenu({.inserted = flag, .checkedItem = 3, .clearMarks = flag}), 2);
        EXPECT_EQ(callsAfterwards(), clearing(3));
        EXPECT_TRUE(menu.marked.empty());
        EXPECT_FALSE(menu.isReleased);
    }
}

TEST_F(TrackingMarks, OfAnInsertedMenuThatWasNotOpenAreClearedOnceItIsFetched)
{
    OpaqueMenuRef &menu = insertMenu();
    EXPECT_EQ(trackClick({.inserted = 1, .clearMarks = 1}), 1);
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"} + clearing(3));
    EXPECT_TRUE(menu.marked.empty());
    EXPECT_FALSE(menu.isReleased) << "it is the caller's";
}

TEST_F(TrackingMarks, OfAMenuThatWasReleasedAreClearedOnceItIsFetchedAgain)
{
    platform.menus.nextChoices = {0x00C80002};
    EXPECT_EQ(trackMenu({.checkedItem = 1, .clearMarks = 1}), 2);
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"} + clearing(2) + Calls{"ReleaseResource(menu 200)"});
    EXPECT_EQ(platform.menus.menus.size(), 2u);
    EXPECT_EQ(platform.menus.find(trackedMenu), nullptr) << "both times it was given back";
}

TEST_F(TrackingMarks, OfAMenuThatWasNeverOpenAreClearedOnceItIsFetched)
{
    EXPECT_EQ(trackClick({.clearMarks = 1}), 1);
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"} + clearing(2) + Calls{"ReleaseResource(menu 200)"});
    EXPECT_EQ(platform.menus.find(trackedMenu), nullptr);
    setWay(itemPopUpTracker, "o");
    EXPECT_EQ(trackClick({.clearMarks = 1}), 0) << "also where the mouse was released elsewhere";
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"} + clearing(2) + Calls{"ReleaseResource(menu 200)"});
}

TEST_F(TrackingMarks, OfAMenuThatThereIsNotAreLeft)
{
    for (const Boolean inserted : {Boolean{0}, Boolean{1}})
    {
        EXPECT_EQ(trackClick({.menuID = -201, .inserted = inserted, .clearMarks = 1}), 1);
        EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(-201)"});
        EXPECT_EQ(trackMenu({.menuID = -201, .inserted = inserted, .clearMarks = 1}), 0);
        EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(-201)"}) << "it was not found the first time either";
    }
}

TEST_F(TrackingMarks, OfAMenuThatCannotBeFetchedAgainAreLeft)
{
    platform.menus.nextChoices = {0x00C80002};
    setWay(itemPopUpTracker, "i");
    platform.events.nextTicks = {0, 51};
    platform.icons.families.clear();
    platform.failCall(4, ioErr);   // the icons are asked for twice, the menu in between
    EXPECT_EQ(trackClick({.clearMarks = 1}), 2);
    EXPECT_EQ(platform.failedCall(), "GetMenu(200)");
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"});
}

TEST_F(TrackingMarks, OfTheMenuThatWasOpenLastAreCleared)
{
    OpaqueMenuRef &menu = insertMenu();
    setWay(itemPopUpTracker, "ii");
    platform.events.nextTicks = {0, 51, 52};
    trackClick({.inserted = 1, .clearMarks = 1});
    EXPECT_EQ(platform.menus.shown.size(), 2u);
    EXPECT_EQ(callsAfterwards(), clearing(3));
    EXPECT_TRUE(menu.marked.empty());
}

TEST_F(TrackingMarks, ItemsAreCountedAfreshBeforeEach)
{
    platform.menus.nextCounts = {1, 2, 3, 3};
    trackClick({.clearMarks = 1});
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"} + clearing(3) + Calls{"ReleaseResource(menu 200)"});
    platform.menus.nextCounts = {3, 1};
    trackClick({.clearMarks = 1});
    EXPECT_EQ(callsAfterwards(), Calls{"GetMenu(200)"} + clearing(1) + Calls{"ReleaseResource(menu 200)"});
}

TEST_F(TrackingMarks, MenuMayHaveNoItemsOrAsManyAsThereCanBe)
{
    platform.menus.resources[trackedMenu].itemCount = 0;
    trackClick({.clearMarks = 1});
    EXPECT_EQ(callsAfterwards(), (Calls{"GetMenu(200)", "CountMenuItems(menu 200)", "ReleaseResource(menu 200)"}));
    const UInt16 most = sizeof(void *) == 8 ? 65535 : 300;   // where this may be emulated, some are enough
    platform.menus.resources[trackedMenu].itemCount = most;
    trackClick({.clearMarks = 1});
    const Calls calls = callsAfterwards();
    ASSERT_EQ(calls.size(), 3u + 2 * most);
    EXPECT_EQ(calls[2u * most], "CheckMenuItem(menu 200, " + decimal(most) + ", 0)");
}

}   // namespace
