#include "tests/contract/platform_double.h"

Boolean StillDown()
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("StillDown", {});
    return platform.events.way.empty() ? Boolean{0} : platform.events.down;
}

void GetMouse(Point *where)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetMouse", {platform.pointer(where, "mouse")});
    std::deque<Point> &way = platform.events.way;
    const Point corner = platform.drawing.current->corner;
    const Point next = way.empty() ? Point{} : way.front();
    if (!way.empty())
        way.pop_front();
    *where = {static_cast<SInt16>(next.v - corner.v), static_cast<SInt16>(next.h - corner.h)};
}

UInt32 TickCount()
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("TickCount", {});
    std::deque<UInt32> &prepared = platform.events.nextTicks;
    if (prepared.empty())
        return platform.events.tick;
    const UInt32 tick = prepared.front();
    prepared.pop_front();
    return tick;
}
