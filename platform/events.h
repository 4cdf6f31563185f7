// Events, the mouse and the clock of ticks.

#pragma once

#include "platform/geometry.h"
#include "platform/types.h"

using EventKind = UInt16;
using EventMask = UInt16;
using EventModifiers = UInt16;

#pragma pack(push, 2)

struct EventRecord
{
    EventKind what;
    unsigned long message;   // a character and a key, or a window, which is why it is as wide as a pointer
    UInt32 when;             // in ticks
    Point where;             // the mouse, in global coordinates
    EventModifiers modifiers;
};

#pragma pack(pop)

// What happened
enum : EventKind
{
    nullEvent = 0,
    mouseDown = 1,
    mouseUp = 2,
    keyDown = 3,
    keyUp = 4,
    autoKey = 5,
    updateEvt = 6,         // `message` is the window
    activateEvt = 8,       // likewise; activeFlag tells whether it came to the front
    kHighLevelEvent = 23   // `message` is the class of the event, `where` its ID: 'aevt' and 'quit' when the program is to end
};

// Which events are wanted: a bit for each kind
constexpr EventMask mDownMask = 0x0002;
constexpr EventMask mUpMask = 0x0004;
constexpr EventMask keyDownMask = 0x0008;
constexpr EventMask updateMask = 0x0040;
constexpr EventMask activMask = 0x0100;
constexpr EventMask highLevelEventMask = 0x0400;
constexpr EventMask everyEvent = 0xFFFF;

// Modifiers
constexpr EventModifiers activeFlag = 0x0001;
constexpr EventModifiers btnState = 0x0080;   // the mouse button is up
constexpr EventModifiers cmdKey = 0x0100;
constexpr EventModifiers shiftKey = 0x0200;
constexpr EventModifiers alphaLock = 0x0400;
constexpr EventModifiers optionKey = 0x0800;
constexpr EventModifiers controlKey = 0x1000;

// The parts of a key's message
constexpr UInt32 charCodeMask = 0x000000FF;
constexpr UInt32 keyCodeMask = 0x0000FF00;

constexpr OSType kCoreEventClass = fourCharCode("aevt");
constexpr OSType kAEQuitApplication = fourCharCode("quit");

#pragma GCC visibility push(default)
extern "C"
{

Boolean StillDown(void);       // whether the button is still held since the last press
Boolean Button(void);          // whether it is held now
void GetMouse(Point *where);   // in the coordinates of the current port
UInt32 TickCount(void);        // sixtieths of a second since the system started

// Take the oldest event of the kinds in the mask, or wait for one, at most for `sleep` ticks; false when it is a nullEvent. EventAvail leaves it.
Boolean WaitNextEvent(EventMask mask, EventRecord *event, UInt32 sleep, RgnHandle mouseRegion);
Boolean GetNextEvent(EventMask mask, EventRecord *event);
Boolean EventAvail(EventMask mask, EventRecord *event);
void FlushEvents(EventMask which, EventMask stop);
}
#pragma GCC visibility pop
