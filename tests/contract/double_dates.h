// The double's clock, and the notifications, which are only recorded.

#pragma once

#include "platform/platform.h"

struct DatesDouble
{
    // What GetUTCDateTime answers. It moves only when a test moves it.
    UTCDateTime now = {0x0000, 0xC0000000, 0x1234};
};
