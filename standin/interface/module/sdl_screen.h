// The real screen, through SDL.
#pragma once

#include "standin/interface/screen.h"

#include <SDL.h>

#include <deque>
#include <map>
#include <set>

namespace standin
{

class SdlScreen : public Screen
{
public:
    SdlScreen();

    Rect bounds() override;
    ScreenWindow openWindow(const WindowLook &look) override;
    void closeWindow(ScreenWindow window) override;
    void showWindow(ScreenWindow window) override;
    void hideWindow(ScreenWindow window) override;
    void raiseWindow(ScreenWindow window) override;
    void moveWindow(ScreenWindow window, Point where) override;
    void setTitle(ScreenWindow window, const std::string &title) override;
    void present(ScreenWindow window, const Pixel *pixels, int width, const Rect &part) override;
    void poll() override;
    void wait(UInt32 ticks) override;
    bool takeInput(Input &input) override;
    MouseState mouse() override { return mouse_; }
    UInt32 ticks() override;

private:
    SDL_Window *find(ScreenWindow window) const;
    Point placeOf(ScreenWindow window) const;
    void takeEvents();
    void take(const SDL_Event &event);
    void takeWindowEvent(const SDL_WindowEvent &event);
    void takeMotion(ScreenWindow window, int h, int v);
    void takeButton(const SDL_MouseButtonEvent &event);
    void takeKey(const SDL_KeyboardEvent &event);
    void takeText(const SDL_TextInputEvent &event);
    void addKey(ScreenWindow window, UInt8 character, UInt8 keyCode);
    Input &add(Input::Kind kind, ScreenWindow window);
    void captureMouse();
    void noteMouse();
    void noteLostRelease();
    void addButton(ScreenWindow window, bool isDown);

    std::map<ScreenWindow, SDL_Window *> windows_;   // under SDL's own numbers
    std::set<ScreenWindow> popUps_;
    ScreenWindow belowPopUp_ = 0;   // which had the keyboard before
    std::deque<Input> inputs_;
    MouseState mouse_;
    Point lastTold_{};           // by SDL, of the mouse on the whole screen
    bool wasToldDown_ = false;   // since the last press
    bool hasLostRelease_ = false;
    Uint64 lastPoll_ = 0;
};

}   // namespace standin
