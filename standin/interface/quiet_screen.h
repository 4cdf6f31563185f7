// The screen where there is no display and no script: windows exist, and no input ever comes.
#pragma once

#include "standin/interface/screen.h"

namespace standin
{

constexpr Rect usualScreenBounds = {0, 0, 768, 1024};

class QuietScreen : public Screen
{
public:
    Rect bounds() override { return usualScreenBounds; }
    ScreenWindow openWindow(const WindowLook &) override { return ++lastWindow_; }
    void closeWindow(ScreenWindow) override {}
    void showWindow(ScreenWindow) override {}
    void hideWindow(ScreenWindow) override {}
    void raiseWindow(ScreenWindow) override {}
    void moveWindow(ScreenWindow, Point) override {}
    void setTitle(ScreenWindow, const std::string &) override {}
    void present(ScreenWindow, const Pixel *, int, const Rect &) override {}
    void poll() override {}
    void wait(UInt32) override {}   // nothing to wait for
    bool takeInput(Input &input) override;
    MouseState mouse() override { return {}; }
    UInt32 ticks() override { return machineTicks(); }

private:
    ScreenWindow lastWindow_ = 0;
};

}   // namespace standin
