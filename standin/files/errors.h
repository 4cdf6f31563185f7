// Linux's error numbers → the platform's result codes. The names and meanings of all result codes (standin.h) come from here too.
#pragma once

#include "platform/platform.h"

namespace standin
{

// The result code for a positive errno; noErr for 0. An error that has no row of its own is ioErr.
//
// This is the meaning that holds for most calls. Whoever knows more says more: a caller that resolves a parent folder makes dirNFErr
// of its fnfErr, one that looks for an attribute takes ENODATA as "none" before it comes here.
OSErr resultFromErrno(int errnoValue);

}   // namespace standin
