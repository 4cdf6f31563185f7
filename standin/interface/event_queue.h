// Events that wait to be taken, and the moment in which what was drawn is shown and what a person did is looked at.
#pragma once

#include "standin/interface/screen.h"

#include <functional>

namespace standin
{

// Shows what was drawn and takes in what is new. Whatever asks about the mouse, the clock or events begins with this.
void pump();

bool eventIsWaiting(EventMask mask);                  // without a pump
bool takeEvent(EventMask mask, EventRecord &event);   // the oldest of these kinds
bool peekEvent(EventMask mask, EventRecord &event);   // the same, and leaves it there

void forgetEvents();                                 // all of them
void forgetEvents(EventMask mask, EventMask stop);   // of these kinds, before the first one of a kind in `stop`
void forgetEventsOf(WindowRef window);               // which does not exist any more
MouseState mouseNow();                               // as the last pump found it

// Follows the mouse, which was pressed, until its release, and takes that. Result: where it was, as far as that is known.
Point placeOfRelease(const std::function<void(Point)> &moved);
bool isStillDown();     // likewise: held, and no press or release waits to be taken
bool quitIsWaiting();   // the program is to end, so whoever waits for an answer gives up
EventRecord eventOf(EventKind kind, const MouseState &mouse, UInt32 when);   // with no message

}   // namespace standin
