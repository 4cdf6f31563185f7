// What this system has and which versions of it.

#pragma once

#include "platform/results.h"
#include "platform/types.h"

constexpr OSType gestaltQuickdrawVersion = fourCharCode("qd  ");
constexpr OSType gestaltSystemVersion = fourCharCode("sysv");

#pragma GCC visibility push(default)
extern "C"
{

OSErr Gestalt(OSType selector, SInt32 *response);
}
#pragma GCC visibility pop
