// The Memory Manager: fixed blocks and relocatable ones, which are reached through handles.

#pragma once

#include "platform/results.h"
#include "platform/types.h"

#pragma GCC visibility push(default)
extern "C"
{

Ptr NewPtr(Size byteCount);
void DisposePtr(Ptr pointer);
Size GetPtrSize(Ptr pointer);

Handle NewHandle(Size byteCount);
void DisposeHandle(Handle handle);
Size GetHandleSize(Handle handle);
void SetHandleSize(Handle handle, Size newSize);   // MemError tells whether it could be
void HLock(Handle handle);
void HUnlock(Handle handle);
OSErr PtrAndHand(const void *source, Handle handle, long size);   // appends to the handle's block

void BlockMoveData(const void *source, void *destination, Size byteCount);   // the blocks may overlap
OSErr MemError(void);
long FreeMem(void);
long MaxBlock(void);
}
#pragma GCC visibility pop
