// The Window Manager: windows come and go, are shown and named.
//
// Title bars are the window manager's business; what stands in a window lies in its port and is shown whenever events are asked for. So there is
// no drawing into a window that has to wait for an updateEvt, but every window asks for one when it is first shown.
#include "platform/windows.h"

#include "standin/interface/windows.h"
#include "standin/interface/event_queue.h"
#include "standin/interface/strings.h"
#include "standin/interface/window_list.h"

#include "platform/drawing.h"

#include <new>

using namespace standin;

namespace
{

Rect atOrigin(Rect rect)
{
    return {0, 0, static_cast<SInt16>(rect.bottom - rect.top), static_cast<SInt16>(rect.right - rect.left)};
}

// Keys go to the window that is in front now.
void raiseFront()
{
    if (WindowRef front = FrontWindow())
        theScreen().raiseWindow(front->screenWindow);
}

}   // namespace

namespace standin
{

WindowRef newWindow(const WindowSetting &setting)
{
    GrafPtr port = newPort(atOrigin(setting.bounds), {setting.bounds.top, setting.bounds.left});
    auto *window = port != nullptr ? new (std::nothrow) OpaqueWindowPtr : nullptr;
    if (window == nullptr)
        return DisposePort(port), nullptr;
    window->port = port;
    window->title = setting.title;
    window->hasTitleBar = setting.hasTitleBar;
    window->hasCloseBox = setting.hasCloseBox;
    window->screenWindow = theScreen().openWindow({setting.bounds, utf8Of(setting.title), setting.hasTitleBar, false});
    windowList().insert(windowList().begin(), window);   // behind all others
    return window;
}

}   // namespace standin

// Result: noErr; paramErr for bounds that no port could have or a null pointer; memFullErr.
OSStatus CreateNewWindow(WindowClass windowClass, WindowAttributes attributes, const Rect *contentBounds, WindowRef *window)
{
    if (contentBounds == nullptr || window == nullptr || EmptyRect(contentBounds))
        return paramErr;
    const bool isPlain = windowClass == kPlainWindowClass || windowClass == kAlertWindowClass || windowClass == kModalWindowClass;
    WindowRef made = newWindow({*contentBounds, "", !isPlain, (attributes & kWindowCloseBoxAttribute) != 0});
    if (made == nullptr)
        return memFullErr;
    *window = made;
    return noErr;
}

void DisposeWindow(WindowRef window)
{
    if (!isWindow(window))
        return;
    std::erase(windowList(), window);
    theScreen().closeWindow(window->screenWindow);
    forgetEventsOf(window);
    DisposePort(window->port);
    delete window;
    raiseFront();
}

// It comes to the front of those that are shown.
void ShowWindow(WindowRef window)
{
    if (!isWindow(window) || window->isShown)
        return;
    window->isShown = true;
    putInFront(window);
    window->toUpdate = localBounds(*window);
    addChanged(*window->port, localBounds(*window));
    theScreen().showWindow(window->screenWindow);
    presentWindows(theScreen());
}

void HideWindow(WindowRef window)
{
    if (!isWindow(window) || !window->isShown)
        return;
    window->isShown = false;
    theScreen().hideWindow(window->screenWindow);
    raiseFront();
}

Boolean IsWindowVisible(WindowRef window)
{
    return isWindow(window) && window->isShown;
}

void SelectWindow(WindowRef window)
{
    if (!isWindow(window))
        return;
    putInFront(window);
    theScreen().raiseWindow(window->screenWindow);
}

void MoveWindow(WindowRef window, SInt16 h, SInt16 v, Boolean front)
{
    if (!isWindow(window))
        return;
    window->port->topLeft = {v, h};
    theScreen().moveWindow(window->screenWindow, {v, h});
    if (front)
        SelectWindow(window);
}

void SetWTitle(WindowRef window, ConstStr255Param title)
{
    if (!isWindow(window))
        return;
    window->title = textOf(title);
    theScreen().setTitle(window->screenWindow, utf8Of(window->title));
}

void GetWTitle(WindowRef window, Str255 title)
{
    PascalText(isWindow(window) ? window->title : "").copyTo(title);
}

void SetWRefCon(WindowRef window, long value)
{
    if (isWindow(window))
        window->refCon = value;
}

long GetWRefCon(WindowRef window)
{
    return isWindow(window) ? window->refCon : 0;
}

// Only the content's bounds are known; the frame is the window manager's.
OSStatus GetWindowBounds(WindowRef window, WindowRegionCode region, Rect *globalBounds)
{
    if (!isWindow(window) || region != kWindowContentRgn || globalBounds == nullptr)
        return paramErr;
    *globalBounds = atOrigin(window->port->bounds);
    OffsetRect(globalBounds, window->port->topLeft.h, window->port->topLeft.v);
    return noErr;
}

CGrafPtr GetWindowPort(WindowRef window)
{
    return isWindow(window) ? window->port : nullptr;
}

void SetPortWindowPort(WindowRef window)
{
    if (isWindow(window))
        SetPort(window->port);
}
