// The double's mouse, which goes a way that was laid out before, and its clock of ticks.

#pragma once

#include "platform/platform.h"

#include <deque>

struct EventsDouble
{
    // The mouse is down until it has been everywhere on its way. In coordinates of the screen.
    std::deque<Point> way;
    Boolean down = 1;   // how StillDown says so

    // What the next calls of TickCount answer, and what it answers after those.
    std::deque<UInt32> nextTicks;
    UInt32 tick = 1000;
};
