// The mouse, the clock of ticks and events, on a scripted screen.
#include "standin/interface/event_queue.h"
#include "tests/standin/interface_scenes.h"

namespace
{

using support::useScript;

EventRecord nextEvent(EventMask mask = everyEvent, UInt32 sleep = 1000)
{
    EventRecord event{};
    WaitNextEvent(mask, &event, sleep, nullptr);
    return event;
}

TEST(InterfaceScript, RefusesWhatIsNoStepOrSetting)
{
    const char *const refused[] = {
        "x mouse 1 2",    "1",         "1 mouse 1", "1 mouse 1 99999", "1 down twice",   "1 key",       "1 key ab",
        "5 up\n4 down",   "1 jump",    "-1 up",     "screen 0 100",    "screen 5000 10", "poll 0",      "1 up\nscreen 10 10",
        "99999999999 up", "1 picture", "begin -5",  "1 mouse 1 2 3",   "1x up",          "1 close box", "1 key unknown",
    };
    for (const char *script : refused)
        EXPECT_NE(standin::useScriptedScreen(script), "") << script;
    EXPECT_EQ(standin::useScriptedScreen("1 up\n\n  # a remark\n2 bad"),
              "line 4 of the script is no step and no setting, or goes back in time");
}

TEST(InterfaceScript, SaysHowLargeTheScreenIs)
{
    useScript("screen 640 480");
    const Rect main = (*GetMainDevice())->gdRect;
    EXPECT_EQ(main.right, 640);
    EXPECT_EQ(main.bottom, 480);
    BitMap bits{};
    EXPECT_EQ(GetQDGlobalsScreenBits(&bits), &bits);
    EXPECT_EQ(bits.bounds.right, 640);
    EXPECT_EQ(bits.bounds.bottom, 480);
    EXPECT_EQ(standin::inputProblem(), "");
}

TEST(InterfaceEvents, TicksGoOnWithEachLookAndWrapAround)
{
    useScript("begin 4294967294\npoll 1\n100 up");
    EXPECT_EQ(TickCount(), 0xFFFFFFFF);
    EXPECT_EQ(TickCount(), 0u);
    EXPECT_EQ(TickCount(), 1u);
    useScript("begin 1000\npoll 50\n10000 up");
    EXPECT_EQ(TickCount(), 1050u);
    EXPECT_EQ(TickCount(), 1100u);
}

TEST(InterfaceEvents, TheMouseFollowsItsPath)
{
    useScript("2 mouse 10 20\n3 mouse 30 40\n9 up");
    GrafPtr port = CreateNewPort();
    SetPort(port);
    port->topLeft = {5, 100};
    Point where{};
    GetMouse(&where);
    GetMouse(&where);
    EXPECT_EQ(where.h, 10 - 100 + port->bounds.left);   // in the port's own coordinates
    EXPECT_EQ(where.v, 20 - 5 + port->bounds.top);
    GetMouse(&where);
    EXPECT_EQ(where.h, 30 - 100 + port->bounds.left);
    DisposePort(port);
}

TEST(InterfaceEvents, APressAndItsReleaseComeWithTimeAndPlace)
{
    useScript("5 mouse 11 22\n10 down\n20 mouse 33 44\n30 up");
    EventRecord event = nextEvent();
    EXPECT_EQ(event.what, mouseDown);
    EXPECT_EQ(event.when, 10u);
    EXPECT_EQ(event.where.h, 11);
    EXPECT_EQ(event.where.v, 22);
    EXPECT_EQ(event.modifiers & btnState, 0);
    event = nextEvent();
    EXPECT_EQ(event.what, mouseUp);
    EXPECT_EQ(event.when, 30u);
    EXPECT_EQ(event.where.h, 33);
    EXPECT_EQ(event.modifiers & btnState, btnState);
}

TEST(InterfaceEvents, StillDownIsSoUntilTheReleaseAndNotForAnotherPress)
{
    useScript("1 down\n6 up\n7 down\n9 up\n20 up");
    EXPECT_EQ(nextEvent().what, mouseDown);
    int passes = 0;
    while (StillDown())
        ++passes;
    EXPECT_EQ(passes, 4);   // at ticks 2 to 5
    EXPECT_EQ(nextEvent().what, mouseUp);
    EXPECT_TRUE(Button());       // pressed once more …
    EXPECT_FALSE(StillDown());   // … which is another press, and waits
}

TEST(InterfaceEvents, APressThatWaitsIsNotHeld)
{
    useScript("1 down\n50 up");
    EXPECT_FALSE(StillDown());   // nobody has taken the press
    EXPECT_TRUE(Button());
    EXPECT_EQ(nextEvent(mDownMask).what, mouseDown);
    EXPECT_TRUE(StillDown());
}

TEST(InterfaceEvents, KeysHaveTheirCharacters)
{
    useScript("1 key a\n2 key return\n3 key escape\n4 key space");
    for (unsigned character : {0x61u, 0x0Du, 0x1Bu, 0x20u})
    {
        const EventRecord event = nextEvent();
        EXPECT_EQ(event.what, keyDown);
        EXPECT_EQ(event.message & charCodeMask, character);
    }
}

TEST(InterfaceEvents, OnlyWantedKindsAreTaken)
{
    useScript("1 key a\n2 down\n3 up");
    EXPECT_EQ(nextEvent(mUpMask).what, mouseUp);
    EventRecord event{};
    EXPECT_TRUE(EventAvail(everyEvent, &event));
    EXPECT_EQ(event.what, keyDown);
    FlushEvents(keyDownMask, 0);
    EXPECT_EQ(nextEvent(static_cast<EventMask>(everyEvent & ~highLevelEventMask), 0).what, mouseDown);
}

TEST(InterfaceEvents, WaitingEndsAfterItsTime)
{
    useScript("100 key a");
    EventRecord event{};
    EXPECT_FALSE(WaitNextEvent(everyEvent, &event, 20, nullptr));
    EXPECT_EQ(event.what, nullEvent);
    EXPECT_GE(event.when, 20u);
    EXPECT_LT(event.when, 30u);
    EXPECT_TRUE(WaitNextEvent(everyEvent, &event, 200, nullptr));
    EXPECT_EQ(event.when, 100u);
    EXPECT_FALSE(WaitNextEvent(everyEvent, nullptr, 0, nullptr));
}

TEST(InterfaceEvents, WhenTheScriptIsOverTheButtonIsUpAndTheProgramIsToEndOverAndOver)
{
    useScript("1 down");
    EXPECT_EQ(nextEvent().what, mouseDown);
    while (StillDown())
        continue;
    EXPECT_EQ(nextEvent().what, mouseUp);
    for (int time = 0; time < 3; ++time)
    {
        const EventRecord event = nextEvent();
        EXPECT_EQ(event.what, kHighLevelEvent);
        EXPECT_EQ(event.message, kCoreEventClass);
        EXPECT_EQ(static_cast<UInt32>(static_cast<UInt16>(event.where.v)) << 16 | static_cast<UInt16>(event.where.h), kAEQuitApplication);
    }
    EventRecord event{};
    EXPECT_FALSE(WaitNextEvent(keyDownMask, &event, 0xFFFFFFFF, nullptr));   // nothing will come any more
}

TEST(InterfaceEvents, AProgramThatTakesNoEventsKeepsOnlyTheLastThousand)
{
    std::string script;
    for (int tick = 1; tick <= 3000; ++tick)
        script += std::to_string(tick) + " key " + (tick <= 2000 ? "a" : "b") + "\n";
    useScript(script + "3500 up");
    while (TickCount() < 3100)
        continue;
    EventRecord event{};
    int count = 0;
    for (; EventAvail(keyDownMask, &event); ++count)
    {
        ASSERT_TRUE(standin::takeEvent(keyDownMask, event));
        ASSERT_EQ(event.message & charCodeMask, static_cast<unsigned>('b'));
    }
    EXPECT_EQ(count, 1000);
}

TEST(InterfaceSystem, GestaltKnowsQuickDrawAndSaysSoOfWhatItDoesNotKnow)
{
    SInt32 response = -77;
    EXPECT_EQ(Gestalt(fourCharCode("tick"), &response), gestaltUndefSelectorErr);
    EXPECT_EQ(response, -77);
    EXPECT_EQ(Gestalt(gestaltQuickdrawVersion, &response), noErr);
    EXPECT_EQ(response, 0x0230);
    EXPECT_EQ(Gestalt(gestaltQuickdrawVersion, nullptr), paramErr);
}

}   // namespace
