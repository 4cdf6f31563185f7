// Points and rectangles, in whole units of 16 bits. The vertical coordinate always comes first.

#pragma once

#include "platform/types.h"

#pragma pack(push, 2)

struct Point
{
    SInt16 v, h;
};

struct Rect
{
    SInt16 top, left, bottom, right;
};

#pragma pack(pop)
