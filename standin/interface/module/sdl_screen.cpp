#include "standin/interface/module/sdl_screen.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace standin
{

namespace
{

constexpr Uint64 millisecondsBetweenPolls = 2;

SInt16 coordinate(int value)
{
    return static_cast<SInt16>(std::clamp<int>(value, std::numeric_limits<SInt16>::min(), std::numeric_limits<SInt16>::max()));
}

Point pointAt(int h, int v)
{
    return {coordinate(v), coordinate(h)};
}

EventModifiers modifiersNow()
{
    const SDL_Keymod keys = SDL_GetModState();
    const auto when = [&](int mask, EventModifiers modifier) { return (keys & mask) != 0 ? modifier : EventModifiers{0}; };
    return static_cast<EventModifiers>(when(KMOD_SHIFT, shiftKey) | when(KMOD_CTRL, controlKey) | when(KMOD_ALT, optionKey) |
                                       when(KMOD_GUI, cmdKey) | when(KMOD_CAPS, alphaLock));
}

// SDL's own waiting goes wrong when a window was closed meanwhile: it wakes itself up by a message to that window, which ends the program.
void awaitEvent(Uint64 milliseconds)
{
    constexpr Uint64 mostAtOnce = 5;
    for (const Uint64 end = SDL_GetTicks64() + milliseconds; SDL_GetTicks64() < end;)
    {
        SDL_PumpEvents();
        if (SDL_HasEvents(SDL_FIRSTEVENT, SDL_LASTEVENT))
            return;
        SDL_Delay(static_cast<Uint32>(std::min(mostAtOnce, milliseconds)));
    }
}

struct KeyCharacter
{
    SDL_Keycode key;
    UInt8 character;
};

// The keys that are no text.
constexpr KeyCharacter keyCharacters[] = {
    {SDLK_RETURN, 0x0D}, {SDLK_KP_ENTER, 0x03}, {SDLK_ESCAPE, 0x1B}, {SDLK_TAB, 0x09},      {SDLK_BACKSPACE, 0x08},
    {SDLK_DELETE, 0x7F}, {SDLK_LEFT, 0x1C},     {SDLK_RIGHT, 0x1D},  {SDLK_UP, 0x1E},       {SDLK_DOWN, 0x1F},
    {SDLK_HOME, 0x01},   {SDLK_END, 0x04},      {SDLK_PAGEUP, 0x0B}, {SDLK_PAGEDOWN, 0x0C},
};

}   // namespace

SdlScreen::SdlScreen()
{
    takeEvents();
}

Rect SdlScreen::bounds()
{
    SDL_Rect bounds{0, 0, 1024, 768};
    SDL_GetDisplayBounds(0, &bounds);   // leaves them where it fails
    const Point first = pointAt(bounds.x, bounds.y), last = pointAt(bounds.x + bounds.w, bounds.y + bounds.h);
    return {first.v, first.h, last.v, last.h};
}

SDL_Window *SdlScreen::find(ScreenWindow window) const
{
    auto found = windows_.find(window);
    return found != windows_.end() ? found->second : nullptr;
}

Point SdlScreen::placeOf(ScreenWindow window) const
{
    int h = 0, v = 0;
    if (SDL_Window *found = find(window))
        SDL_GetWindowPosition(found, &h, &v);
    return pointAt(h, v);
}

ScreenWindow SdlScreen::openWindow(const WindowLook &look)
{
    Uint32 flags = SDL_WINDOW_HIDDEN;
    if (!look.hasTitleBar)
        flags |= SDL_WINDOW_BORDERLESS;
    if (look.isPopUp)
        flags |= SDL_WINDOW_POPUP_MENU | SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_ALWAYS_ON_TOP;
    const Rect &content = look.content;
    SDL_Window *window =
        SDL_CreateWindow(look.title.c_str(), content.left, content.top, content.right - content.left, content.bottom - content.top, flags);
    if (window == nullptr)
        return 0;
    const auto number = static_cast<ScreenWindow>(SDL_GetWindowID(window));
    windows_[number] = window;
    if (look.isPopUp && popUps_.insert(number).second)
        belowPopUp_ = static_cast<ScreenWindow>(SDL_GetWindowID(SDL_GetKeyboardFocus()));
    return number;
}

void SdlScreen::closeWindow(ScreenWindow window)
{
    hideWindow(window);
    if (SDL_Window *found = find(window))
        SDL_DestroyWindow(found);
    windows_.erase(window);
    takeEvents();
    std::erase_if(inputs_, [&](const Input &input) { return input.window == window && input.kind != Input::Kind::release; });
}

void SdlScreen::showWindow(ScreenWindow window)
{
    if (SDL_Window *found = find(window))
        SDL_ShowWindow(found);
}

void SdlScreen::hideWindow(ScreenWindow window)
{
    if (SDL_Window *found = find(window))
        SDL_HideWindow(found);
    if (popUps_.erase(window) == 0)
        return;
    SDL_CaptureMouse(SDL_FALSE);
    if (SDL_Window *below = find(belowPopUp_))
        SDL_SetWindowInputFocus(below);
}

void SdlScreen::raiseWindow(ScreenWindow window)
{
    SDL_Window *found = find(window);
    if (found == nullptr)
        return;
    SDL_RaiseWindow(found);
    SDL_SetWindowInputFocus(found);   // where there is no window manager to do it
}

void SdlScreen::moveWindow(ScreenWindow window, Point where)
{
    if (SDL_Window *found = find(window))
        SDL_SetWindowPosition(found, where.h, where.v);
}

void SdlScreen::setTitle(ScreenWindow window, const std::string &title)
{
    if (SDL_Window *found = find(window))
        SDL_SetWindowTitle(found, title.c_str());
}

// A window manager may have made the window smaller than it was wanted.
void SdlScreen::present(ScreenWindow window, const Pixel *pixels, int width, const Rect &part)
{
    SDL_Window *found = find(window);
    SDL_Surface *surface = found != nullptr ? SDL_GetWindowSurface(found) : nullptr;
    if (surface == nullptr)
        return;
    SDL_Rect shown{part.left, part.top, std::min<int>(part.right, surface->w) - part.left,
                   std::min<int>(part.bottom, surface->h) - part.top};
    if (shown.w <= 0 || shown.h <= 0)
        return;
    auto *target = static_cast<Uint8 *>(surface->pixels) + shown.y * surface->pitch + shown.x * surface->format->BytesPerPixel;
    SDL_ConvertPixels(shown.w, shown.h, SDL_PIXELFORMAT_ARGB8888, pixels + shown.y * width + shown.x,
                      width * static_cast<int>(sizeof(Pixel)), surface->format->format, target, surface->pitch);
    SDL_UpdateWindowSurfaceRects(found, &shown, 1);
}

// A loop that polls comes back when something happened or the moment is over.
void SdlScreen::poll()
{
    if (SDL_GetTicks64() - lastPoll_ < millisecondsBetweenPolls)
        awaitEvent(millisecondsBetweenPolls);
    takeEvents();
    if (!popUps_.empty())
        captureMouse();
    noteMouse();
    lastPoll_ = SDL_GetTicks64();
}

// As long as a pop-up is open, presses and releases elsewhere belong to it too. Where there is no window manager, SDL gives it the keyboard and
// lets go of the mouse with that, some time after it was shown.
void SdlScreen::captureMouse()
{
    for (const auto &[number, window] : windows_)
        if ((SDL_GetWindowFlags(window) & SDL_WINDOW_MOUSE_CAPTURE) != 0)
            return;
    SDL_CaptureMouse(SDL_TRUE);
}

// After a lost release the next press is no event, and only looking finds it.
void SdlScreen::wait(UInt32 ticks)
{
    const UInt32 mostTicks = hasLostRelease_ ? 1 : 60 * 60;
    awaitEvent(std::min(ticks, mostTicks) * 1000 / 60 + 1);
}

void SdlScreen::takeEvents()
{
    for (SDL_Event event; SDL_PollEvent(&event) != 0;)
        take(event);
}

void SdlScreen::take(const SDL_Event &event)
{
    switch (event.type)
    {
    case SDL_WINDOWEVENT: return takeWindowEvent(event.window);
    case SDL_MOUSEMOTION: return takeMotion(static_cast<ScreenWindow>(event.motion.windowID), event.motion.x, event.motion.y);
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: return takeButton(event.button);
    case SDL_KEYDOWN: return takeKey(event.key);
    case SDL_TEXTINPUT: return takeText(event.text);
    case SDL_QUIT: add(Input::Kind::quitWanted, 0); return;
    default: return;
    }
}

void SdlScreen::takeWindowEvent(const SDL_WindowEvent &event)
{
    const auto window = static_cast<ScreenWindow>(event.windowID);
    switch (event.event)
    {
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_SIZE_CHANGED: add(Input::Kind::exposed, window); return;
    case SDL_WINDOWEVENT_MOVED: add(Input::Kind::moved, window).where = placeOf(window); return;
    case SDL_WINDOWEVENT_FOCUS_GAINED: add(Input::Kind::activated, window); return;
    case SDL_WINDOWEVENT_FOCUS_LOST: add(Input::Kind::deactivated, window); return;
    case SDL_WINDOWEVENT_CLOSE: add(Input::Kind::closeWanted, window); return;
    default: return;
    }
}

void SdlScreen::takeMotion(ScreenWindow window, int h, int v)
{
    const Point content = placeOf(window);
    if (find(window) != nullptr)
        mouse_.where = pointAt(content.h + h, content.v + v);
}

// There is one button; the others are none.
void SdlScreen::takeButton(const SDL_MouseButtonEvent &event)
{
    if (event.button != SDL_BUTTON_LEFT)
        return;
    const auto window = static_cast<ScreenWindow>(event.windowID);
    const bool isDown = event.type == SDL_MOUSEBUTTONDOWN;
    takeMotion(window, event.x, event.y);
    if (!isDown && hasLostRelease_)   // a click so quick that nobody looked while the button was down
        addButton(window, true);
    if (isDown != mouse_.isDown)
        addButton(window, isDown);
}

void SdlScreen::takeKey(const SDL_KeyboardEvent &event)
{
    for (const KeyCharacter &key : keyCharacters)
        if (key.key == event.keysym.sym)
            addKey(static_cast<ScreenWindow>(event.windowID), key.character, static_cast<UInt8>(event.keysym.scancode));
}

// What is not ASCII has no key here.
void SdlScreen::takeText(const SDL_TextInputEvent &event)
{
    for (const char *byte = event.text; *byte != '\0'; ++byte)
        if (static_cast<unsigned char>(*byte) < 0x80)
            addKey(static_cast<ScreenWindow>(event.windowID), static_cast<UInt8>(*byte), 0);
}

void SdlScreen::addKey(ScreenWindow window, UInt8 character, UInt8 keyCode)
{
    Input &input = add(Input::Kind::key, window);
    input.character = character;
    input.keyCode = keyCode;
}

Input &SdlScreen::add(Input::Kind kind, ScreenWindow window)
{
    Input input;
    input.kind = kind;
    input.window = window;
    input.where = mouse_.where;
    input.modifiers = modifiersNow();
    input.when = ticks();
    return inputs_.emplace_back(input);
}

// Where the mouse is also outside all windows, and whether the button is still held: a release that another program got is one too. SDL may tell what
// was some time ago, while the button is held, so this counts only where it changes, and motion that is an event counts as well.
void SdlScreen::noteMouse()
{
    int h = 0, v = 0;
    const bool isDown = (SDL_GetGlobalMouseState(&h, &v) & SDL_BUTTON_LMASK) != 0;
    const Point told = pointAt(h, v);
    if (told.h != lastTold_.h || told.v != lastTold_.v)
        mouse_.where = lastTold_ = told;
    mouse_.modifiers = modifiersNow();
    if (mouse_.isDown && isDown)
        wasToldDown_ = true;
    else if (mouse_.isDown && wasToldDown_)
        noteLostRelease();
    else if (!mouse_.isDown && isDown && hasLostRelease_ && SDL_GetMouseFocus() != nullptr)
        addButton(static_cast<ScreenWindow>(SDL_GetWindowID(SDL_GetMouseFocus())), true);
}

// SDL goes on to think that the button is held, and will not tell of the next press.
void SdlScreen::noteLostRelease()
{
    takeEvents();   // the release itself may just have come
    if (!mouse_.isDown)
        return;
    addButton(0, false);
    hasLostRelease_ = true;
}

void SdlScreen::addButton(ScreenWindow window, bool isDown)
{
    wasToldDown_ = hasLostRelease_ = false;
    mouse_.isDown = isDown;
    add(isDown ? Input::Kind::press : Input::Kind::release, window);
}

bool SdlScreen::takeInput(Input &input)
{
    if (inputs_.empty())
        return false;
    input = inputs_.front();
    inputs_.pop_front();
    return true;
}

// The machine's own clock, as where there is no screen.
UInt32 SdlScreen::ticks()
{
    using Ticks = std::chrono::duration<std::uint64_t, std::ratio<1, 60>>;
    return static_cast<UInt32>(std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch()).count());
}

}   // namespace standin

namespace
{

bool isSet(const char *variable)
{
    const char *value = SDL_getenv(variable);
    return value != nullptr && *value != '\0';
}

// A program that is interrupted ends as it would without a window. Windows are drawn by us, so no graphics card is needed; pop-ups have to be placed
// exactly, which Wayland allows only through its X server.
void setHints()
{
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    const char *drivers = isSet("DISPLAY") ? isSet("WAYLAND_DISPLAY") ? "x11,wayland" : "x11" : "wayland";
    if (!isSet("SDL_VIDEODRIVER"))   // others that SDL would try show nothing to anybody
        SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, drivers, SDL_HINT_OVERRIDE);
}

}   // namespace

extern "C" __attribute__((visibility("default"))) standin::Screen *zerbOpenScreen(const char **problem)
{
    setHints();
    SDL_SetMainReady();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) == 0)
        return new standin::SdlScreen;   // stays until the process ends
    *problem = SDL_GetError();
    return nullptr;
}
