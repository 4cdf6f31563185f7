// The mouse and the clock of ticks.

#pragma once

#include "platform/geometry.h"
#include "platform/types.h"

#pragma GCC visibility push(default)
extern "C"
{

Boolean StillDown(void);       // whether the button is still held since the last press
void GetMouse(Point *where);   // in the coordinates of the current port
UInt32 TickCount(void);        // sixtieths of a second since the system started
}
#pragma GCC visibility pop
