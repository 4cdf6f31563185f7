// For fuzz programs with parts of the library: what those ask a screen for, where there is none.
#include "platform/drawing.h"

SInt16 StringWidth(ConstStr255Param)
{
    return 0;
}

SInt16 CharWidth(SInt16)
{
    return 0;
}
