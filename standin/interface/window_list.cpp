// The order of windows: which one is in front, which one a point lies in, which ones have something to show.
#include "standin/interface/window_list.h"

#include "platform/drawing.h"
#include "platform/windows.h"
#include "standin/interface/event_queue.h"

#include <algorithm>
#include <ranges>
#include <utility>

using namespace standin;

namespace
{

constexpr SInt16 titleBarHeight = 20;   // where a window manager would have one, for points above a window
constexpr SInt16 closeBoxWidth = 20;

Rect globalBounds(const OpaqueWindowPtr &window)
{
    Rect bounds = localBounds(window);
    OffsetRect(&bounds, static_cast<SInt16>(window.port->topLeft.h - bounds.left),
               static_cast<SInt16>(window.port->topLeft.v - bounds.top));
    return bounds;
}

WindowPartCode partAt(const OpaqueWindowPtr &window, Point where)
{
    const Rect content = globalBounds(window);
    if (!window.isShown)
        return inDesk;
    if (PtInRect(where, &content))
        return inContent;
    Rect titleBar = content;
    titleBar.bottom = content.top;
    titleBar.top = static_cast<SInt16>(content.top - titleBarHeight);
    if (!window.hasTitleBar || !PtInRect(where, &titleBar))
        return inDesk;
    return window.hasCloseBox && where.h < content.left + closeBoxWidth ? inGoAway : inDrag;
}

bool isClosedAt(const OpaqueWindowPtr &window, Point where)
{
    const Point place = closeBoxPlace(window);
    return window.closeIsWanted && place.h == where.h && place.v == where.v;
}

Rect unionOf(const Rect &one, const Rect &other)
{
    if (EmptyRect(&one))
        return other;
    return {std::min(one.top, other.top), std::min(one.left, other.left), std::max(one.bottom, other.bottom),
            std::max(one.right, other.right)};
}

}   // namespace

namespace standin
{

std::vector<WindowRef> &windowList()
{
    static std::vector<WindowRef> windows;
    return windows;
}

void putInFront(WindowRef window)
{
    auto found = std::find(windowList().begin(), windowList().end(), window);
    if (found != windowList().end())
        std::rotate(found, found + 1, windowList().end());
}

bool isWindow(WindowRef window)
{
    return std::find(windowList().begin(), windowList().end(), window) != windowList().end();
}

WindowRef windowOfScreen(ScreenWindow window)
{
    auto found = std::find_if(windowList().begin(), windowList().end(), [&](WindowRef one) { return one->screenWindow == window; });
    return window != 0 && found != windowList().end() ? *found : nullptr;
}

Rect localBounds(const OpaqueWindowPtr &window)
{
    return window.port->bounds;
}

Point closeBoxPlace(const OpaqueWindowPtr &window)
{
    const Rect content = globalBounds(window);
    return {static_cast<SInt16>(content.top - titleBarHeight / 2), static_cast<SInt16>(content.left + closeBoxWidth / 2)};
}

void presentPort(Screen &screen, ScreenWindow window, OpaqueGrafPtr &port)
{
    Rect part = port.changed;
    port.changed = {};
    if (!SectRect(&part, &port.bounds, &part))
        return;
    OffsetRect(&part, static_cast<SInt16>(-port.bounds.left), static_cast<SInt16>(-port.bounds.top));
    screen.present(window, port.pixels.data(), port.bounds.right - port.bounds.left, part);
}

void presentWindows(Screen &screen)
{
    for (WindowRef window : windowList())
        if (window->isShown && !EmptyRect(&window->port->changed))
            presentPort(screen, window->screenWindow, *window->port);
}

WindowRef windowToUpdate()
{
    for (WindowRef window : windowList() | std::views::reverse)
        if (window->isShown && !EmptyRect(&window->toUpdate))
            return window;
    return nullptr;
}

void showAgain(ScreenWindow window)
{
    if (WindowRef found = windowOfScreen(window); found != nullptr)
        addChanged(*found->port, localBounds(*found));
}

void noteMoved(ScreenWindow window, Point where)
{
    if (WindowRef found = windowOfScreen(window); found != nullptr)
        found->port->topLeft = where;
}

void noteInFront(ScreenWindow window)
{
    putInFront(windowOfScreen(window));
}

}   // namespace standin

WindowRef FrontWindow(void)
{
    for (WindowRef window : windowList() | std::views::reverse)
        if (window->isShown)
            return window;
    return nullptr;
}

WindowRef GetWindowFromPort(CGrafPtr port)
{
    auto found = std::find_if(windowList().begin(), windowList().end(), [&](WindowRef one) { return one->port == port; });
    return found != windowList().end() ? *found : nullptr;
}

OSStatus InvalWindowRect(WindowRef window, const Rect *localRect)
{
    Rect part;
    if (!isWindow(window) || localRect == nullptr)
        return paramErr;
    if (SectRect(localRect, &window->port->bounds, &part))
        window->toUpdate = unionOf(window->toUpdate, part);
    return noErr;
}

// What is drawn until EndUpdate is not clipped to what is to be drawn anew.
void BeginUpdate(WindowRef window)
{
    if (isWindow(window))
        window->toUpdate = {};
}

void EndUpdate(WindowRef) {}

// A click that the window manager took for the close box counts there, whatever else lies over that point.
WindowPartCode FindWindow(Point where, WindowRef *window)
{
    WindowRef unused;
    WindowRef &found = window != nullptr ? *window : unused;
    for (WindowRef one : windowList())
        if (isClosedAt(*one, where))
            return found = one, inGoAway;
    for (WindowRef one : windowList() | std::views::reverse)
        if (WindowPartCode part = partAt(*one, where); part != inDesk)
            return found = one, part;
    found = nullptr;
    return inDesk;
}

// Follows the mouse until its release. What the window manager took for a click on the close box is one.
Boolean TrackGoAway(WindowRef window, Point)
{
    if (!isWindow(window))
        return false;
    if (std::exchange(window->closeIsWanted, false))
    {
        forgetEvents(mUpMask, mDownMask);
        return true;
    }
    return partAt(*window, placeOfRelease([](Point) {})) == inGoAway;
}
