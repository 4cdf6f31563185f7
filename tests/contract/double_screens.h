// The screens of the double's machine, and which version of QuickDraw it has.

#pragma once

#include "platform/platform.h"

struct ScreensDouble
{
    Rect oldScreen = {0, 0, 342, 512};   // of the QuickDraw globals
    GDevice mainDevice = {{0, 0, 768, 1024}};
    GDevice *mainDeviceMaster = &mainDevice;
    SInt32 quickdrawVersion = 0x230;
    OSErr codeBesideTheVersion = noErr;   // what Gestalt answers although it gives the version
};
