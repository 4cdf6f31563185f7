// Windows as the stand-in keeps them.
#pragma once

#include "standin/interface/screen.h"

#include <string>

struct OpaqueWindowPtr
{
    GrafPtr port = nullptr;   // its topLeft is the window's place on the screen
    standin::ScreenWindow screenWindow = 0;
    std::string title;   // in the system's encoding
    bool isShown = false;
    bool hasTitleBar = true;
    bool hasCloseBox = false;
    bool closeIsWanted = false;   // by a click on the window manager's own close box
    Rect toUpdate{};              // local; empty if nothing is
    DialogRef dialog = nullptr;
    long refCon = 0;
};

namespace standin
{

struct WindowSetting
{
    Rect bounds;   // of the content, global
    std::string title;
    bool hasTitleBar = true;
    bool hasCloseBox = false;
};

// Null if there is no memory for it or the bounds are none that a port could have.
WindowRef newWindow(const WindowSetting &setting);

bool isWindow(WindowRef window);                 // one that exists
WindowRef windowOfScreen(ScreenWindow window);   // null if it is none of ours
Rect localBounds(const OpaqueWindowPtr &window);
Point closeBoxPlace(const OpaqueWindowPtr &window);   // in the middle of the close box

void presentWindows(Screen &screen);   // what was drawn since the last time
void presentPort(Screen &screen, ScreenWindow window, OpaqueGrafPtr &port);
WindowRef windowToUpdate();   // the front one of those that want it; null if none does

// What the screen tells.
void showAgain(ScreenWindow window);
void noteMoved(ScreenWindow window, Point where);
void noteInFront(ScreenWindow window);

}   // namespace standin
