// A screen of pixels alone that follows a script.
//
// Time goes on with each poll and each wait, by what the script says, so the same script always meets the same program at the same moments and
// nothing ever hangs: when the script is over, the button is up and the program is asked to end, over and over.
#pragma once

#include "standin/interface/screen.h"
#include "standin/interface/script.h"

#include <deque>
#include <vector>

namespace standin
{

class ScriptedScreen : public Screen
{
public:
    explicit ScriptedScreen(Script script);

    Rect bounds() override { return {0, 0, script_.height, script_.width}; }
    ScreenWindow openWindow(const WindowLook &look) override;
    void closeWindow(ScreenWindow window) override;
    void showWindow(ScreenWindow window) override;
    void hideWindow(ScreenWindow window) override;
    void raiseWindow(ScreenWindow window) override;
    void moveWindow(ScreenWindow window, Point where) override;
    void setTitle(ScreenWindow, const std::string &) override {}
    void present(ScreenWindow window, const Pixel *pixels, int width, const Rect &part) override;
    void poll() override;
    void wait(UInt32 ticks) override;
    bool takeInput(Input &input) override;
    MouseState mouse() override { return mouse_; }
    UInt32 ticks() override { return script_.firstTick + elapsed_; }

private:
    struct Window
    {
        ScreenWindow number;
        Rect content;
        bool isPopUp;
        bool isShown;
        std::vector<Pixel> pixels;
    };

    std::vector<Window>::iterator find(ScreenWindow window);
    ScreenWindow frontWindow() const;
    void noteFront(ScreenWindow before);
    void add(Input::Kind kind, ScreenWindow window = 0, UInt8 character = 0);
    void letPass(UInt32 ticks);
    void follow(const ScriptStep &step);
    void end();
    void savePicture(const std::string &file) const;

    Script script_;
    std::size_t nextStep_ = 0;
    UInt32 elapsed_ = 0;
    MouseState mouse_;
    std::deque<Input> inputs_;
    std::vector<Window> windows_;   // the front one last
    ScreenWindow lastWindow_ = 0;
};

}   // namespace standin
