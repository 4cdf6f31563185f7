// Which screen is used.
#include "standin/screen.h"

#include "standin/interface/event_queue.h"
#include "standin/interface/quiet_screen.h"
#include "standin/interface/script.h"
#include "standin/interface/scripted_screen.h"
#include "standin/modules.h"

#include <chrono>
#include <cstdlib>
#include <memory>
#include <vector>

namespace standin
{

namespace
{

struct Choice
{
    Screen *screen = nullptr;
    bool isQuiet = false;
    std::string problem;   // why there is no display
};

Choice &choice()
{
    static Choice &chosen = *new Choice;   // never destroyed: windows may be closed while the process ends
    return chosen;
}

bool isSet(const char *variable)
{
    const char *value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool hasDisplay()
{
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("SDL_VIDEODRIVER");
}

// A screen stays until the process ends: there may be windows that were made on it.
Screen *kept(std::unique_ptr<Screen> screen)
{
    static auto &screens = *new std::vector<std::unique_ptr<Screen>>;
    return screens.emplace_back(std::move(screen)).get();
}

Screen *screenOfDisplay(std::string &problem)
{
    if (!hasDisplay())
    {
        problem = "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set";
        return nullptr;
    }
    auto *open = reinterpret_cast<ScreenOpener *>(moduleFunction(screenModule, screenOpener));
    if (open == nullptr)
    {
        problem = moduleProblem();
        return nullptr;
    }
    const char *reason = "";
    Screen *screen = open(&reason);
    problem = screen == nullptr ? std::string("the display cannot be opened (") + reason + ")" : "";
    return screen;
}

}   // namespace

bool QuietScreen::takeInput(Input &input)
{
    input = {};
    input.kind = Input::Kind::quitWanted;
    input.when = ticks();
    return !eventIsWaiting(highLevelEventMask);
}

Screen *chosenScreen()
{
    return choice().screen;
}

Screen &theScreen()
{
    Choice &chosen = choice();
    if (chosen.screen == nullptr)
        chosen.screen = screenOfDisplay(chosen.problem);
    if (chosen.screen == nullptr)
    {
        chosen.screen = kept(std::make_unique<QuietScreen>());
        chosen.isQuiet = true;
    }
    return *chosen.screen;
}

UInt32 machineTicks()
{
    using Ticks = std::chrono::duration<std::uint64_t, std::ratio<1, 60>>;
    return static_cast<UInt32>(std::chrono::duration_cast<Ticks>(std::chrono::steady_clock::now().time_since_epoch()).count());
}

std::string useScriptedScreen(const std::string &text)
{
    Script script;
    std::string problem = readScript(text, script);
    if (!problem.empty())
        return problem;
    forgetEvents();
    choice() = {kept(std::make_unique<ScriptedScreen>(std::move(script))), false, ""};
    return "";
}

std::string inputProblem()
{
    theScreen();
    return choice().isQuiet ? choice().problem : "";
}

}   // namespace standin
