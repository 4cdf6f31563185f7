// Windows, which only a host makes.

#pragma once

#include "platform/geometry.h"
#include "platform/types.h"

using WindowClass = UInt32;
using WindowAttributes = UInt32;
using WindowPartCode = SInt16;
using WindowRegionCode = UInt16;

enum : WindowClass
{
    kAlertWindowClass = 1,
    kMovableAlertWindowClass = 2,
    kModalWindowClass = 3,
    kMovableModalWindowClass = 4,
    kDocumentWindowClass = 6,
    kPlainWindowClass = 13
};

enum : WindowAttributes
{
    kWindowNoAttributes = 0,
    kWindowCloseBoxAttribute = 1
};

enum : WindowRegionCode
{
    kWindowContentRgn = 33
};

// Where in which window a point lies
enum : WindowPartCode
{
    inDesk = 0,
    inContent = 3,
    inDrag = 4,
    inGoAway = 6
};

#pragma GCC visibility push(default)
extern "C"
{

// A new window is not shown before ShowWindow.
OSStatus CreateNewWindow(WindowClass windowClass, WindowAttributes attributes, const Rect *contentBounds, WindowRef *window);
void DisposeWindow(WindowRef window);

void ShowWindow(WindowRef window);
void HideWindow(WindowRef window);
Boolean IsWindowVisible(WindowRef window);
void SelectWindow(WindowRef window);
WindowRef FrontWindow(void);   // null if none is shown
void MoveWindow(WindowRef window, SInt16 h, SInt16 v, Boolean front);
void SetWTitle(WindowRef window, ConstStr255Param title);
void GetWTitle(WindowRef window, Str255 title);
void SetWRefCon(WindowRef window, long value);
long GetWRefCon(WindowRef window);
OSStatus GetWindowBounds(WindowRef window, WindowRegionCode region, Rect *globalBounds);

void SetPortWindowPort(WindowRef window);
WindowRef GetWindowFromPort(CGrafPtr port);   // null if it is no window's

// What is to be drawn anew comes as an updateEvt, until these two have enclosed the drawing.
OSStatus InvalWindowRect(WindowRef window, const Rect *localRect);
void BeginUpdate(WindowRef window);
void EndUpdate(WindowRef window);

// `where` is global.
WindowPartCode FindWindow(Point where, WindowRef *window);
Boolean TrackGoAway(WindowRef window, Point where);
}
#pragma GCC visibility pop
