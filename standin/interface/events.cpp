// The Event Manager: the mouse, the clock of ticks, and events.
//
// All of these show what was drawn and look what is new before they answer, so that a loop that only asks about the mouse shows what it draws.
#include "platform/events.h"

#include "standin/interface/event_queue.h"
#include "standin/interface/windows.h"

using namespace standin;

namespace
{

bool takeUpdate(EventMask mask, EventRecord &event)
{
    WindowRef window = (mask & updateMask) != 0 ? windowToUpdate() : nullptr;
    if (window == nullptr)
        return false;
    event = eventOf(updateEvt, mouseNow(), TickCount());
    event.message = reinterpret_cast<unsigned long>(window);
    return true;
}

bool takeWhatIsThere(EventMask mask, EventRecord &event)
{
    pump();
    return takeEvent(mask, event) || takeUpdate(mask, event);
}

Boolean withNothing(EventRecord &event)
{
    event = eventOf(nullEvent, mouseNow(), TickCount());
    return false;
}

}   // namespace

Boolean StillDown(void)
{
    pump();
    return isStillDown();
}

Boolean Button(void)
{
    pump();
    return mouseNow().isDown;
}

// Before there is a screen the mouse is at the corner.
void GetMouse(Point *where)
{
    pump();
    *where = mouseNow().where;
    GlobalToLocal(where);
}

UInt32 TickCount(void)
{
    pump();
    Screen *screen = chosenScreen();
    return screen != nullptr ? screen->ticks() : machineTicks();
}

// The region does not count: the mouse's movements are no events here.
Boolean WaitNextEvent(EventMask mask, EventRecord *event, UInt32 sleep, RgnHandle)
{
    if (event == nullptr)
        return false;
    Screen &screen = theScreen();
    if (takeWhatIsThere(mask, *event))
        return true;
    const UInt32 begin = screen.ticks();
    for (UInt32 passed = 0; passed < sleep; passed = screen.ticks() - begin)
    {
        presentWindows(screen);
        screen.wait(sleep - passed);
        if (takeWhatIsThere(mask, *event))
            return true;
        if (quitIsWaiting())   // not in the mask; nothing else may ever come
            break;
    }
    return withNothing(*event);
}

Boolean GetNextEvent(EventMask mask, EventRecord *event)
{
    return WaitNextEvent(mask, event, 0, nullptr);
}

Boolean EventAvail(EventMask mask, EventRecord *event)
{
    if (event == nullptr)
        return false;
    theScreen();
    pump();
    return peekEvent(mask, *event) || takeUpdate(mask, *event) || withNothing(*event);
}

// Events before the first one of a kind in `stop` go.
void FlushEvents(EventMask which, EventMask stop)
{
    pump();
    forgetEvents(which, stop);
}
