// The Resource Manager: typed, numbered and named blocks out of the open resource files.

#pragma once

#include "platform/file_records.h"
#include "platform/results.h"
#include "platform/types.h"

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
void DetachResource(Handle resource);
void ReleaseResource(Handle resource);
void SetResLoad(Boolean load);
void GetResInfo(Handle resource, SInt16 *resID, ResType *type, Str255 name);
}
#pragma GCC visibility pop
