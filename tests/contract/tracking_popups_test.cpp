// The menus of icon buttons: when they open, what is shown of them, what comes back, and what is left.

#include "tests/contract/tracking_fixture.h"

namespace
{

SInt32 choiceOf(UInt32 value)
{
    return static_cast<SInt32>(value);
}

class TrackingPopUps : public TrackingTest, public testing::WithParamInterface<Tracker>
{
protected:
    // The mouse goes this way, and the clock shows these ticks after the beginning.
    SInt16 trackWay(const std::string &way, const std::deque<UInt32> &elapsed, const PopUpArguments &popUp = {}, UInt32 start = 7000)
    {
        setWay(GetParam(), way);
        platform.events.nextTicks = {start};
        for (const UInt32 ticks : elapsed)
            platform.events.nextTicks.push_back(start + ticks);
        platform.forgetCalls();
        return track(GetParam(), popUp);
    }

    bool opensAfter(UInt32 elapsed, const PopUpArguments &popUp = {}, UInt32 start = 7000)
    {
        platform.menus.shown.clear();
        trackWay("i", {elapsed}, popUp, start);
        return platform.menus.shown.size() == 1;
    }

    static Calls anchored(int item)
    {
        if (GetParam().isOfDialog)
            return {"LocalToGlobal({10, 52})", "PopUpMenuSelect(menu 200, 110, 252, " + decimal(item) + ")"};
        return {"LocalToGlobal({10, 52})", "PopUpMenuSelect(menu 200, 10, 52, " + decimal(item) + ")"};
    }

    // Everything up to the menu, with one look at the mouse.
    static Calls upToMenu() { return beginning(GetParam()) + lookInside(GetParam()); }

    static Calls afterMenu() { return ending(GetParam(), true); }

    OpaqueMenuRef &insertMenu()
    {
        platform.menus.inserted = {trackedMenu};
        return platform.menus.menus.emplace_back(platform.menus.resources[trackedMenu]);
    }
};

INSTANTIATE_TEST_SUITE_P(Both, TrackingPopUps, testing::Values(rectPopUpTracker, itemPopUpTracker), rowName);

TEST_P(TrackingPopUps, MenuIsInsertedForTheTimeThatItIsOpen)
{
    platform.menus.nextChoices = {choiceOf(0x00C80004)};
    EXPECT_EQ(trackWay("i", {51}), 4);
    EXPECT_EQ(platform.calls(), (upToMenu() + Calls{"GetMenu(200)", "InsertMenu(menu 200, -1)", "CountMenuItems(menu 200)"} + anchored(5) +
                                 Calls{"DeleteMenu(200)", "ReleaseResource(menu 200)"} + afterMenu()));
    EXPECT_TRUE(platform.menus.shown.back().isInserted);
    EXPECT_TRUE(platform.menus.shown.back().menu.marked.empty());
    EXPECT_TRUE(platform.menus.inserted.empty());
}

TEST_P(TrackingPopUps, CheckedItemHasItsMarkForTheTimeThatTheMenuIsOpen)
{
    platform.menus.nextChoices = {choiceOf(0x00C80002)};
    EXPECT_EQ(trackWay("i", {51}, {.checkedItem = 3}), 2);
    EXPECT_EQ(platform.calls(),
              (upToMenu() + Calls{"GetMenu(200)", "InsertMenu(menu 200, -1)", "CheckMenuItem(menu 200, 3, 1)"} + anchored(3) +
               Calls{"CheckMenuItem(menu 200, 3, 0)", "DeleteMenu(200)", "ReleaseResource(menu 200)"} + afterMenu()));
    EXPECT_EQ(platform.menus.shown.back().menu.marked, std::set<MenuItemIndex>{3});
}

TEST_P(TrackingPopUps, MenuThatIsInsertedAlreadyIsLeftAsItIsWithItsMark)
{
    for (const Boolean inserted : {Boolean{1}, Boolean{0x80}})
    {
        platform.menus.menus.clear();
        OpaqueMenuRef &menu = insertMenu();
        platform.menus.nextChoices = {choiceOf(0x00C80002)};
        EXPECT_EQ(trackWay("i", {51}, {.inserted = inserted, .checkedItem = 3}), 2);
        EXPECT_EQ(platform.calls(), (upToMenu() + Calls{"GetMenu(200)", "CheckMenuItem(menu 200, 3, 1)"} + anchored(3) + afterMenu()));
        EXPECT_EQ(menu.marked, std::set<MenuItemIndex>{3});
        EXPECT_FALSE(menu.isReleased);
        EXPECT_TRUE(platform.menus.isInserted(trackedMenu));
    }
}

TEST_P(TrackingPopUps, MenuThatIsInsertedAlreadyWithoutACheckedItemOpensAtItsLast)
{
    insertMenu();
    EXPECT_EQ(trackWay("i", {51}, {.inserted = 1}), 0);
    EXPECT_EQ(platform.calls(), (upToMenu() + Calls{"GetMenu(200)", "CountMenuItems(menu 200)"} + anchored(5) + afterMenu()));
}

TEST_P(TrackingPopUps, AnyOtherNumberOfACheckedItemIsHandedOn)
{
    struct
    {
        SInt16 item;
        int shown;
    } const rows[] = {{0, 0}, {1, 1}, {99, 99}, {32767, 32767}, {-2, 65534}, {-32768, 32768}};
    for (const auto &row : rows)
    {
        trackWay("i", {51}, {.checkedItem = row.item});
        const std::string mark = "CheckMenuItem(menu 200, " + decimal(row.shown) + ", ";
        EXPECT_EQ(platform.calls(), (upToMenu() + Calls{"GetMenu(200)", "InsertMenu(menu 200, -1)", mark + "1)"} + anchored(row.shown) +
                                     Calls{mark + "0)", "DeleteMenu(200)", "ReleaseResource(menu 200)"} + afterMenu()));
    }
}

TEST_P(TrackingPopUps, MenuOpensInTheButtonsPort)
{
    trackWay("i", {51});
    EXPECT_EQ(platform.menus.shown.back().port, GetParam().isOfDialog ? "dialog" : "screen");
}

TEST_P(TrackingPopUps, ResultIsTheChosenItem)
{
    struct
    {
        UInt32 choice;
        SInt16 result;
    } const rows[] = {{0, 0},          {0x00C80001, 1}, {0x00C80005, 5}, {0x00C80000, 0},  {0x00000003, 0},     {0x0000FFFF, 0},
                      {0x00010003, 3}, {0xFFFF0003, 3}, {0x80000007, 7}, {0x00C8FFFF, -1}, {0x00C88000, -32768}};
    for (const auto &row : rows)
    {
        platform.menus.nextChoices = {choiceOf(row.choice)};
        EXPECT_EQ(trackWay("i", {51}), row.result) << hex(row.choice);
        EXPECT_TRUE(platform.menus.nextChoices.empty());
    }
}

TEST_P(TrackingPopUps, ClickThatOpensNoMenuIs1)
{
    EXPECT_EQ(trackWay("", {}), 1);
    EXPECT_EQ(platform.calls(), beginning(GetParam()) + afterMenu());
    EXPECT_EQ(trackWay("ii", {50, 50}), 1);
    EXPECT_EQ(platform.calls(), upToMenu() + lookInside(GetParam()) + afterMenu());
    EXPECT_EQ(trackWay("io", {50}), 0);
}

TEST_P(TrackingPopUps, MenuOpensAfterMoreThan50Ticks)
{
    for (const UInt32 elapsed : {0u, 1u, 49u, 50u})
        EXPECT_FALSE(opensAfter(elapsed)) << elapsed;
    for (const UInt32 elapsed : {51u, 52u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_TRUE(opensAfter(elapsed)) << elapsed;
}

TEST_P(TrackingPopUps, TicksMayWrapAround)
{
    for (const UInt32 start : {0u, 0xFFFFFFD0u, 0xFFFFFFCDu, 0xFFFFFFFFu, 0x7FFFFFFFu})
    {
        EXPECT_FALSE(opensAfter(50, {}, start)) << hex(start);
        EXPECT_TRUE(opensAfter(51, {}, start)) << hex(start);
    }
}

TEST_P(TrackingPopUps, ReturningAfterTheDelayOpensTheMenuAtOnce)
{
    const Tracker &tracker = GetParam();
    trackWay("ioooi", {10, 51});
    const Calls calls = platform.calls();
    const Calls expected = upToMenu() + lookOutside(tracker, true) + lookOutside(tracker, false) + lookOutside(tracker, false) +
                           lookInside(tracker, true) + Calls{"GetMenu(200)"};
    ASSERT_GT(calls.size(), expected.size());
    EXPECT_EQ(Calls(calls.begin(), calls.begin() + static_cast<long>(expected.size())), expected);
}

TEST_P(TrackingPopUps, NoMenuOpensWhileTheMouseIsElsewhere)
{
    platform.events.tick = 100000;
    setWay(GetParam(), "oooo");
    platform.events.nextTicks = {0};
    EXPECT_EQ(track(GetParam()), 0);
    EXPECT_TRUE(platform.menus.shown.empty());
}

TEST_P(TrackingPopUps, AfterTheMenuTheMouseIsAskedForAgain)
{
    platform.menus.nextChoices = {choiceOf(0x00C80004), choiceOf(0x00C80002)};
    EXPECT_EQ(trackWay("io", {51}), 0) << "it was down again, and released elsewhere";
    EXPECT_EQ(trackWay("ii", {51, 51}), 0) << "the second menu's second choice is none";
    EXPECT_EQ(platform.menus.shown.size(), 3u);
    platform.menus.nextChoices = {choiceOf(0x00C80004), choiceOf(0x00C80002)};
    EXPECT_EQ(trackWay("ii", {51, 52}), 2);
    platform.menus.nextChoices = {choiceOf(0x00C80004), choiceOf(0x00C80002)};
    EXPECT_EQ(trackWay("ioi", {51, 52}), 2);
    platform.menus.nextChoices = {choiceOf(0x00C80004)};
    EXPECT_EQ(trackWay("ioi", {51, 3}), 4) << "moving out and in again does not change what was chosen";
    EXPECT_EQ(trackWay("ioio", {51, 51}), 0);
}

TEST_P(TrackingPopUps, EachOpeningFetchesTheMenuAnew)
{
    trackWay("ii", {51, 52});
    const Calls menuCalls = Calls{"GetMenu(200)", "InsertMenu(menu 200, -1)", "CountMenuItems(menu 200)"} + anchored(5) +
                            Calls{"DeleteMenu(200)", "ReleaseResource(menu 200)"};
    EXPECT_EQ(platform.calls(), upToMenu() + menuCalls + lookInside(GetParam()) + menuCalls + afterMenu());
}

TEST_P(TrackingPopUps, EachOpeningAsksForAnInsertedMenuAnewToo)
{
    insertMenu();
    trackWay("ii", {51, 52}, {.inserted = 1});
    const Calls menuCalls = Calls{"GetMenu(200)", "CountMenuItems(menu 200)"} + anchored(5);
    EXPECT_EQ(platform.calls(), upToMenu() + menuCalls + lookInside(GetParam()) + menuCalls + afterMenu());
}

TEST_P(TrackingPopUps, MenuThatIsNotFoundIsNotTestedFor)
{
    const std::string place = GetParam().isOfDialog ? "110, 252" : "10, 52";
    EXPECT_EQ(trackWay("i", {51}, {.menuID = -201, .checkedItem = 2}), 0);
    EXPECT_EQ(platform.calls(),
              (upToMenu() +
               Calls{"GetMenu(-201)", "InsertMenu(-, -1)", "CheckMenuItem(-, 2, 1)", "LocalToGlobal({10, 52})",
                     "PopUpMenuSelect(-, " + place + ", 2)", "CheckMenuItem(-, 2, 0)", "DeleteMenu(-201)", "ReleaseResource(-)"} +
               afterMenu()));
}

class TrackingDelays : public TrackingPopUps
{
};

INSTANTIATE_TEST_SUITE_P(Item, TrackingDelays, testing::Values(itemPopUpTracker), rowName);

TEST_P(TrackingDelays, MinusOneIs50)
{
    EXPECT_FALSE(opensAfter(50, {.delay = -1}));
    EXPECT_TRUE(opensAfter(51, {.delay = -1}));
}

TEST_P(TrackingDelays, MenuOpensAfterMoreTicksThanThese)
{
    for (const int delay : {0, 1, 49, 51, 100, 32767})
    {
        const PopUpArguments popUp = {.delay = static_cast<SInt16>(delay)};
        const UInt32 ticks = static_cast<UInt32>(delay);
        EXPECT_FALSE(opensAfter(0, popUp)) << delay;
        EXPECT_FALSE(opensAfter(ticks, popUp)) << delay;
        EXPECT_TRUE(opensAfter(ticks + 1, popUp)) << delay;
        EXPECT_TRUE(opensAfter(ticks + 1, popUp, 0xFFFFFFFE)) << delay;
    }
}

TEST_P(TrackingDelays, OtherNegativeOnesNeverEnd)
{
    for (const int delay : {-2, -3, -50, -32768})
    {
        const PopUpArguments popUp = {.delay = static_cast<SInt16>(delay)};
        for (const UInt32 elapsed : {0u, 1u, 51u, 65534u, 65535u, 65536u, 0x7FFFFFFFu, 0x80000000u, 0xFFFF7FFFu, 0xFFFF8000u})
            EXPECT_FALSE(opensAfter(elapsed, popUp)) << delay << ' ' << hex(elapsed);
    }
    EXPECT_FALSE(opensAfter(0xFFFFFFFE, {.delay = -2}));
}

}   // namespace
