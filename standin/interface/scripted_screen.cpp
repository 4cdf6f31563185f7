#include "standin/interface/scripted_screen.h"

#include "standin/interface/event_queue.h"
#include "standin/screen.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr Pixel desktopPixel = 0xFF5B7FA6;

int widthOf(const Rect &rect)
{
    return rect.right - rect.left;
}

int heightOf(const Rect &rect)
{
    return rect.bottom - rect.top;
}

}   // namespace

ScriptedScreen::ScriptedScreen(Script script) : script_(std::move(script)) {}

std::vector<ScriptedScreen::Window>::iterator ScriptedScreen::find(ScreenWindow window)
{
    return std::find_if(windows_.begin(), windows_.end(), [&](const Window &one) { return one.number == window; });
}

ScreenWindow ScriptedScreen::frontWindow() const
{
    auto front = std::find_if(windows_.rbegin(), windows_.rend(), [](const Window &one) { return one.isShown && !one.isPopUp; });
    return front != windows_.rend() ? front->number : 0;
}

void ScriptedScreen::noteFront(ScreenWindow before)
{
    const ScreenWindow now = frontWindow();
    if (now == before)
        return;
    if (before != 0 && find(before) != windows_.end())
        add(Input::Kind::deactivated, before);
    if (now != 0)
        add(Input::Kind::activated, now);
}

ScreenWindow ScriptedScreen::openWindow(const WindowLook &look)
{
    const std::size_t size = static_cast<std::size_t>(widthOf(look.content)) * static_cast<std::size_t>(heightOf(look.content));
    windows_.push_back({++lastWindow_, look.content, look.isPopUp, false, std::vector<Pixel>(size, whitePixel)});
    return lastWindow_;
}

void ScriptedScreen::closeWindow(ScreenWindow window)
{
    const ScreenWindow front = frontWindow();
    if (auto found = find(window); found != windows_.end())
        windows_.erase(found);
    noteFront(front);
}

void ScriptedScreen::showWindow(ScreenWindow window)
{
    const ScreenWindow front = frontWindow();
    if (auto found = find(window); found != windows_.end())
        found->isShown = true;
    noteFront(front);
}

void ScriptedScreen::hideWindow(ScreenWindow window)
{
    const ScreenWindow front = frontWindow();
    if (auto found = find(window); found != windows_.end())
        found->isShown = false;
    noteFront(front);
}

void ScriptedScreen::raiseWindow(ScreenWindow window)
{
    const ScreenWindow front = frontWindow();
    if (auto found = find(window); found != windows_.end())
        std::rotate(found, found + 1, windows_.end());
    noteFront(front);
}

void ScriptedScreen::moveWindow(ScreenWindow window, Point where)
{
    auto found = find(window);
    if (found != windows_.end())
        OffsetRect(&found->content, static_cast<SInt16>(where.h - found->content.left), static_cast<SInt16>(where.v - found->content.top));
}

void ScriptedScreen::present(ScreenWindow window, const Pixel *pixels, int width, const Rect &part)
{
    auto found = find(window);
    if (found == windows_.end())
        return;
    for (int row = part.top; row < part.bottom; ++row)
        std::copy(pixels + row * width + part.left, pixels + row * width + part.right, found->pixels.begin() + row * width + part.left);
}

void ScriptedScreen::add(Input::Kind kind, ScreenWindow window, UInt8 character)
{
    Input input;
    input.kind = kind;
    input.window = window;
    input.where = mouse_.where;
    input.character = character;
    input.when = ticks();
    inputs_.push_back(input);
}

void ScriptedScreen::poll()
{
    letPass(script_.ticksPerPoll);
}

// Up to the next step, so that none is passed over.
void ScriptedScreen::wait(UInt32 ticks)
{
    if (nextStep_ < script_.steps.size())
        ticks = std::min(ticks, script_.steps[nextStep_].tick - std::min(script_.steps[nextStep_].tick, elapsed_));
    letPass(std::max<UInt32>(ticks, 1));
}

// The end comes one poll after the last step: what that did is seen first.
void ScriptedScreen::letPass(UInt32 ticks)
{
    if (nextStep_ == script_.steps.size())
        end();
    elapsed_ += ticks;
    while (nextStep_ < script_.steps.size() && script_.steps[nextStep_].tick <= elapsed_)
        follow(script_.steps[nextStep_++]);
}

void ScriptedScreen::follow(const ScriptStep &step)
{
    switch (step.kind)
    {
    case ScriptStep::Kind::mouse: mouse_.where = step.where; break;
    case ScriptStep::Kind::press:
        mouse_.isDown = true;
        add(Input::Kind::press);
        break;
    case ScriptStep::Kind::release:
        mouse_.isDown = false;
        add(Input::Kind::release);
        break;
    case ScriptStep::Kind::key: add(Input::Kind::key, frontWindow(), step.character); break;
    case ScriptStep::Kind::close: add(Input::Kind::closeWanted, frontWindow()); break;
    case ScriptStep::Kind::picture: savePicture(step.file); break;
    }
}

void ScriptedScreen::end()
{
    if (mouse_.isDown)
    {
        mouse_.isDown = false;
        add(Input::Kind::release);
    }
    if (inputs_.empty() && !eventIsWaiting(highLevelEventMask))
        add(Input::Kind::quitWanted);
}

bool ScriptedScreen::takeInput(Input &input)
{
    if (inputs_.empty())
        return false;
    input = inputs_.front();
    inputs_.pop_front();
    return true;
}

// The whole screen: every window that is shown, with a line around it.
void ScriptedScreen::savePicture(const std::string &file) const
{
    GrafPtr picture = newPort({0, 0, script_.height, script_.width}, {});
    if (picture == nullptr)
        return;
    auto put = [&](int row, int column, Pixel pixel) {
        if (row >= 0 && row < script_.height && column >= 0 && column < script_.width)
            picture->pixels[static_cast<std::size_t>(row * script_.width + column)] = pixel;
    };
    std::fill(picture->pixels.begin(), picture->pixels.end(), desktopPixel);
    for (const Window &window : windows_)
    {
        const Rect &content = window.content;
        for (int row = content.top - 1; window.isShown && row <= content.bottom; ++row)
            for (int column = content.left - 1; column <= content.right; ++column)
            {
                const bool isInside = row >= content.top && row < content.bottom && column >= content.left && column < content.right;
                const int place = (row - content.top) * widthOf(content) + column - content.left;
                put(row, column, isInside ? window.pixels[static_cast<std::size_t>(place)] : blackPixel);
            }
    }
    standin::savePicture(picture, file);   // its failure shows in the missing picture
    DisposePort(picture);
}

}   // namespace standin
