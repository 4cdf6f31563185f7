// Windows on a scripted screen: their order, where a point lies, what is shown when.
#include "tests/standin/interface_scenes.h"

namespace
{

using support::Pascal;
using support::useScript;

class TestWindow
{
public:
    TestWindow(const Rect &bounds, WindowClass windowClass = kDocumentWindowClass, WindowAttributes attributes = kWindowCloseBoxAttribute)
    {
        EXPECT_EQ(CreateNewWindow(windowClass, attributes, &bounds, &window_), noErr);
        ShowWindow(window_);
    }
    ~TestWindow() { DisposeWindow(window_); }
    TestWindow(const TestWindow &) = delete;
    TestWindow &operator=(const TestWindow &) = delete;
    operator WindowRef() const { return window_; }

private:
    WindowRef window_ = nullptr;
};

EventRecord nextEvent(EventMask mask)
{
    EventRecord event{};
    WaitNextEvent(mask, &event, 1000, nullptr);
    return event;
}

WindowPartCode partAt(SInt16 h, SInt16 v, WindowRef &window)
{
    return FindWindow({v, h}, &window);
}

TEST(InterfaceWindows, HaveNoBoundsThatNoPortCouldHave)
{
    useScript("");
    WindowRef window = nullptr;
    const Rect empty = {10, 10, 10, 20}, wide = {0, 0, 10, 5000}, good = {0, 0, 10, 10};
    EXPECT_EQ(CreateNewWindow(kDocumentWindowClass, 0, &empty, &window), paramErr);
    EXPECT_EQ(CreateNewWindow(kDocumentWindowClass, 0, nullptr, &window), paramErr);
    EXPECT_EQ(CreateNewWindow(kDocumentWindowClass, 0, &good, nullptr), paramErr);
    EXPECT_EQ(CreateNewWindow(kDocumentWindowClass, 0, &wide, &window), memFullErr);
    EXPECT_EQ(window, nullptr);
}

TEST(InterfaceWindows, TheFrontOneIsFoundAtAPoint)
{
    useScript("");
    TestWindow one({100, 100, 200, 200}), other({150, 150, 250, 250});
    WindowRef found = nullptr;
    EXPECT_EQ(FrontWindow(), other);
    EXPECT_EQ(partAt(160, 160, found), inContent);
    EXPECT_EQ(found, other);
    SelectWindow(one);
    EXPECT_EQ(partAt(160, 160, found), inContent);
    EXPECT_EQ(found, one);
    HideWindow(one);
    EXPECT_EQ(FrontWindow(), other);
    EXPECT_EQ(partAt(110, 110, found), inDesk);
    EXPECT_EQ(found, nullptr);
}

TEST(InterfaceWindows, HaveABarAboveThemUnlessTheyArePlain)
{
    useScript("");
    TestWindow window({100, 100, 200, 200}), plain({100, 300, 200, 400}, kPlainWindowClass);
    WindowRef found = nullptr;
    EXPECT_EQ(partAt(105, 90, found), inGoAway);
    EXPECT_EQ(partAt(150, 90, found), inDrag);
    EXPECT_EQ(found, window);
    EXPECT_EQ(partAt(350, 90, found), inDesk);
}

TEST(InterfaceWindows, TheirPortsAreWhereTheyAre)
{
    useScript("");
    TestWindow window({100, 200, 150, 260});
    SetPortWindowPort(window);
    Point point = {3, 4};
    LocalToGlobal(&point);
    EXPECT_EQ(point.v, 103);
    EXPECT_EQ(point.h, 204);
    MoveWindow(window, 300, 20, false);
    GlobalToLocal(&point);
    EXPECT_EQ(point.v, 83);
    EXPECT_EQ(point.h, -96);
    Rect bounds{};
    EXPECT_EQ(GetWindowBounds(window, kWindowContentRgn, &bounds), noErr);
    EXPECT_EQ(bounds.top, 20);
    EXPECT_EQ(bounds.left, 300);
    EXPECT_EQ(bounds.right, 360);
    EXPECT_EQ(GetWindowFromPort(GetWindowPort(window)), window);
}

TEST(InterfaceWindows, HaveTitlesAndANumberOfTheHosts)
{
    useScript("");
    TestWindow window({0, 0, 10, 10});
    Str255 title = "?";
    GetWTitle(window, title);
    EXPECT_EQ(support::textOfPascal(title), "");
    SetWTitle(window, Pascal("A \x8E title"));
    GetWTitle(window, title);
    EXPECT_EQ(support::textOfPascal(title), "A \x8E title");
    SetWRefCon(window, 123456);
    EXPECT_EQ(GetWRefCon(window), 123456);
}

TEST(InterfaceWindows, AreToBeDrawnOnceTheyAreShownAndWhenSaidSo)
{
    useScript("1000 up");
    TestWindow window({0, 0, 50, 50});
    EventRecord event = nextEvent(updateMask);
    EXPECT_EQ(event.what, updateEvt);
    EXPECT_EQ(event.message, reinterpret_cast<unsigned long>(static_cast<WindowRef>(window)));
    EXPECT_EQ(nextEvent(updateMask).what, updateEvt);   // until it was drawn
    BeginUpdate(window);
    EndUpdate(window);
    EXPECT_FALSE(GetNextEvent(updateMask, &event));
    const Rect outside = {60, 60, 70, 70}, inside = {40, 40, 70, 70};
    EXPECT_EQ(InvalWindowRect(window, &outside), noErr);
    EXPECT_FALSE(GetNextEvent(updateMask, &event));
    EXPECT_EQ(InvalWindowRect(window, &inside), noErr);
    EXPECT_TRUE(GetNextEvent(updateMask, &event));
}

TEST(InterfaceWindows, ComingToTheFrontIsAnEvent)
{
    useScript("1000 up");
    TestWindow one({0, 0, 50, 50});
    EXPECT_EQ(nextEvent(activMask).modifiers & activeFlag, activeFlag);
    TestWindow other({0, 100, 50, 150});
    EventRecord event = nextEvent(activMask);
    EXPECT_EQ(event.message, reinterpret_cast<unsigned long>(static_cast<WindowRef>(one)));
    EXPECT_EQ(event.modifiers & activeFlag, 0);
    event = nextEvent(activMask);
    EXPECT_EQ(event.message, reinterpret_cast<unsigned long>(static_cast<WindowRef>(other)));
    EXPECT_EQ(event.modifiers & activeFlag, activeFlag);
}

// Whoever draws and then asks about the mouse, the clock or events has shown it.
TEST(InterfaceWindows, WhatIsDrawnIsShownWithTheNextLook)
{
    support::TemporaryFolder folder;
    useScript("screen 60 40\n2 picture " + folder / "before.png" + "\n4 picture " + folder / "after.png" + "\n9 up");
    TestWindow window({10, 10, 30, 50});
    SetPortWindowPort(window);
    while (TickCount() < 3)
        continue;
    const Rect rect = {2, 2, 5, 9};
    PaintRect(&rect);
    EXPECT_TRUE(GetWindowPort(window)->changed.right != 0);
    StillDown();
    const support::Picture before = support::readPicture(folder / "before.png"), after = support::readPicture(folder / "after.png");
    ASSERT_EQ(before.pixels.size(), 60u * 40u);
    ASSERT_EQ(after.pixels.size(), 60u * 40u);
    for (int v = 0; v < 40; ++v)
        for (int h = 0; h < 60; ++h)
        {
            const bool isInRect = h >= 12 && h < 19 && v >= 12 && v < 15;
            const auto place = static_cast<std::size_t>(v * 60 + h);
            ASSERT_EQ(after.pixels[place] == standin::blackPixel && before.pixels[place] == standin::whitePixel, isInRect)
                << h << ", " << v;
        }
}

TEST(InterfaceWindows, TheCloseBoxIsAClickThere)
{
    useScript("5 close\n20 mouse 105 90\n25 down\n30 up\n40 down\n45 mouse 150 150\n50 up\n");
    TestWindow window({100, 100, 200, 200});
    for (bool wasReleasedThere : {true, true, false})
    {
        const EventRecord event = nextEvent(mDownMask);
        WindowRef found = nullptr;
        ASSERT_EQ(event.what, mouseDown);
        EXPECT_EQ(FindWindow(event.where, &found), inGoAway);
        EXPECT_EQ(found, window);
        EXPECT_EQ(TrackGoAway(found, event.where) != 0, wasReleasedThere);
    }
}

TEST(InterfaceWindows, WithoutACloseBoxClosingIsEscape)
{
    useScript("5 close");
    TestWindow window({100, 100, 200, 200}, kDocumentWindowClass, kWindowNoAttributes);
    const EventRecord event = nextEvent(static_cast<EventMask>(keyDownMask | mDownMask));
    EXPECT_EQ(event.what, keyDown);
    EXPECT_EQ(event.message & charCodeMask, 0x1Bu);
}

TEST(InterfaceWindows, OneThatIsGoneIsNoWindow)
{
    useScript("");
    const Rect bounds = {0, 0, 10, 10};
    WindowRef window = nullptr;
    ASSERT_EQ(CreateNewWindow(kDocumentWindowClass, 0, &bounds, &window), noErr);
    DisposeWindow(window);
    DisposeWindow(window);
    DisposeWindow(nullptr);
    ShowWindow(window);
    EXPECT_FALSE(IsWindowVisible(window));
    EXPECT_EQ(GetWindowPort(window), nullptr);
    EXPECT_EQ(GetDialogFromWindow(window), nullptr);
    EXPECT_EQ(FrontWindow(), nullptr);
}

}   // namespace
