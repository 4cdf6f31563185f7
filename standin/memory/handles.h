// What the Memory Manager offers its neighbours beyond the platform's calls: handles without a block, and word of a disposal.
//
// None of these leaves a result for MemError.
#pragma once

#include "platform/platform.h"

namespace standin
{

// A handle whose master pointer is null. Null if there is no memory for it. DisposeHandle takes it as any other.
Handle newEmptyHandle();

// What lies behind the bytes of a block that fillHandle made: zeros. Applications take a string out of a resource by its own length, and a damaged
// one says more than there is.
constexpr Size clearedBytesBehind = 255;

// Gives a handle a block of that size in place of the one it has, if it has one; the bytes of an empty handle are not cleared.
// False if there is no memory; the handle is then as it was.
bool fillHandle(Handle handle, Size byteCount);

// Takes the block away again.
void emptyHandle(Handle handle);

// DisposeHandle tells the observer of a watched handle before it goes. One observer, for the whole process.
using DisposalObserver = void (*)(Handle);
void setDisposalObserver(DisposalObserver observer);
void watchHandle(Handle handle, bool isWatched);

}   // namespace standin
