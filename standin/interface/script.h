// What a scripted screen follows. docs/interface.md tells the form of its text.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace standin
{

struct ScriptStep
{
    enum class Kind
    {
        mouse,
        press,
        release,
        key,
        close,
        picture
    };

    UInt32 tick = 0;   // counted from the beginning
    Kind kind = Kind::mouse;
    Point where{};         // of the mouse
    UInt8 character = 0;   // of a key
    std::string file;      // of a picture
};

struct Script
{
    SInt16 width = 1024, height = 768;
    UInt32 firstTick = 0;
    UInt32 ticksPerPoll = 1;
    std::vector<ScriptStep> steps;   // their ticks never go back
};

// Result: empty, or what is wrong and in which line, in one sentence without a full stop.
std::string readScript(const std::string &text, Script &script);

}   // namespace standin
