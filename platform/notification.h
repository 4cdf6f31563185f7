// Telling others that a directory's contents have changed.

#pragma once

#include "platform/file_records.h"
#include "platform/types.h"

constexpr UInt32 kFNDirectoryModifiedMessage = 1;

#pragma GCC visibility push(default)
extern "C"
{

OSStatus FNNotify(const FSRef *ref, UInt32 message, OptionBits flags);
}
#pragma GCC visibility pop
