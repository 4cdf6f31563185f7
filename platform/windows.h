// Windows, which only a host makes.

#pragma once

#include "platform/geometry.h"
#include "platform/types.h"

#pragma GCC visibility push(default)
extern "C"
{

OSStatus CreateNewWindow(UInt32 windowClass, UInt32 attributes, const Rect *contentBounds, WindowRef *window);
void DisposeWindow(WindowRef window);
}
#pragma GCC visibility pop
