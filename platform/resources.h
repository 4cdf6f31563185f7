// The Resource Manager: typed, numbered and named blocks out of the open resource files.

#pragma once

#include "platform/file_records.h"
#include "platform/results.h"
#include "platform/types.h"

// Attributes of a resource. The lowest bit has no published name: it marks compressed data.
constexpr SInt16 resChanged = 0x02;
constexpr SInt16 resPreload = 0x04;
constexpr SInt16 resProtected = 0x08;
constexpr SInt16 resLocked = 0x10;
constexpr SInt16 resPurgeable = 0x20;
constexpr SInt16 resSysHeap = 0x40;

#pragma GCC visibility push(default)
extern "C"
{

// Resource files; the newest one opened is searched first
SInt16 FSOpenResFile(const FSRef *ref, SInt8 permission);
void CloseResFile(SInt16 refNum);
void UseResFile(SInt16 refNum);
SInt16 CurResFile(void);
OSErr ResError(void);

Handle GetResource(ResType type, SInt16 resID);
Handle Get1Resource(ResType type, SInt16 resID);   // from the current file alone
Handle GetNamedResource(ResType type, ConstStr255Param name);
Handle Get1NamedResource(ResType type, ConstStr255Param name);
void LoadResource(Handle resource);
void DetachResource(Handle resource);
void ReleaseResource(Handle resource);
void SetResLoad(Boolean load);
void GetResInfo(Handle resource, SInt16 *resID, ResType *type, Str255 name);
SInt16 GetResAttrs(Handle resource);
SInt16 HomeResFile(Handle resource);

// What there is in the current file; indices begin at 1
SInt16 Count1Types(void);
void Get1IndType(ResType *type, SInt16 index);
SInt16 Count1Resources(ResType type);
Handle Get1IndResource(ResType type, SInt16 index);

// The bytes in the file, whether they are loaded or not
long GetResourceSizeOnDisk(Handle resource);
void ReadPartialResource(Handle resource, long offset, void *buffer, long count);
}
#pragma GCC visibility pop
