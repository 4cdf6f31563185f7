// A screen: what shows windows and has a mouse and a keyboard.
//
// There are three: a real one through SDL, in a module of its own; one of pixels alone that follows a script; and a quiet one, where windows exist
// and no input ever comes. All of it happens on the thread of the interface. Places are global: pixels from the main screen's corner.
#pragma once

#include "standin/drawing/port.h"

#include <string>

namespace standin
{

using ScreenWindow = int;   // a screen's own number of a window; 0 is none

struct WindowLook
{
    Rect content;
    std::string title;         // UTF-8
    bool hasTitleBar = true;   // drawn by the window manager
    bool isPopUp = false;      // above all others and without a window manager's help
};

struct MouseState
{
    Point where{};
    bool isDown = false;
    EventModifiers modifiers = 0;
};

// Something that a person did, or that the system wants.
struct Input
{
    enum class Kind
    {
        press,
        release,
        key,
        exposed,       // the window's pixels are wanted once more
        moved,         // the window's content now begins at `where`
        activated,     // the window came to the front
        deactivated,   // it is not in front any more
        closeWanted,   // the close box of the window's title bar was clicked
        quitWanted     // the program is to end; likewise where no input will ever come any more
    };

    Kind kind = Kind::press;
    ScreenWindow window = 0;
    Point where{};
    EventModifiers modifiers = 0;
    UInt8 character = 0;   // of a key, in the system's encoding
    UInt8 keyCode = 0;
    UInt32 when = 0;
};

class Screen
{
public:
    virtual ~Screen() = default;

    virtual Rect bounds() = 0;

    // 0 if the window cannot be. It is not shown yet.
    virtual ScreenWindow openWindow(const WindowLook &look) = 0;
    virtual void closeWindow(ScreenWindow window) = 0;
    virtual void showWindow(ScreenWindow window) = 0;
    virtual void hideWindow(ScreenWindow window) = 0;
    virtual void raiseWindow(ScreenWindow window) = 0;
    virtual void moveWindow(ScreenWindow window, Point where) = 0;
    virtual void setTitle(ScreenWindow window, const std::string &title) = 0;

    // Shows a part of a window. `pixels` are all of the window's, in rows of `width`; `part` counts from the first of them.
    virtual void present(ScreenWindow window, const Pixel *pixels, int width, const Rect &part) = 0;

    // Looks what is new. Each poll takes a moment, so that a loop that polls does not keep a processor busy, and that scripted time goes on.
    virtual void poll() = 0;

    // Waits for something new, for so many ticks at most.
    virtual void wait(UInt32 ticks) = 0;

    // Takes the oldest of what polls found; false if there is nothing.
    virtual bool takeInput(Input &input) = 0;

    virtual MouseState mouse() = 0;   // as the last poll found it
    virtual UInt32 ticks() = 0;       // now; wraps around after 32 bits
};

// What a screen's module exports under the name in `screenOpener`. Null if there is no display; `problem` then says why, in one sentence without
// a full stop, and stays as it is.
using ScreenOpener = Screen *(const char **problem);
constexpr const char *screenModule = "zerbscreen.so";
constexpr const char *screenOpener = "zerbOpenScreen";

// The screen that is used: the script's, if there is one; that of the display; otherwise the quiet one. Chosen when it is first asked for.
Screen &theScreen();

// The same without choosing: null as long as no window was made and no screen asked about.
Screen *chosenScreen();

// Ticks of the machine's own clock.
UInt32 machineTicks();

}   // namespace standin
