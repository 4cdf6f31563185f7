// QuickDraw: ports, the pen, colours, text and the copying of pixels.

#pragma once

#include "platform/geometry.h"
#include "platform/types.h"

#pragma pack(push, 2)

struct RGBColor
{
    UInt16 red, green, blue;
};

struct BitMap
{
    Ptr baseAddr;
    SInt16 rowBytes;
    Rect bounds;
};

struct PenState
{
    Point pnLoc, pnSize;
    SInt16 pnMode;
    UInt8 pnPat[8];
};

struct GDevice
{
    Rect gdRect;
};

#pragma pack(pop)

using GDHandle = GDevice **;

constexpr SInt32 blackColor = 33;
constexpr SInt16 srcCopy = 0;

#pragma GCC visibility push(default)
extern "C"
{

void SetRect(Rect *rect, SInt16 left, SInt16 top, SInt16 right, SInt16 bottom);
void OffsetRect(Rect *rect, SInt16 dh, SInt16 dv);
Boolean PtInRect(Point point, const Rect *rect);

// The pen and the colours of the current port
void GetPenState(PenState *state);
void SetPenState(const PenState *state);
void GetForeColor(RGBColor *color);
void RGBForeColor(const RGBColor *color);
void ForeColor(SInt32 color);
void MoveTo(SInt16 h, SInt16 v);

// Text; widths are in pixels
void DrawString(ConstStr255Param text);
SInt16 StringWidth(ConstStr255Param text);
SInt16 CharWidth(SInt16 character);

void CopyBits(const BitMap *source, const BitMap *destination, const Rect *sourceRect, const Rect *destinationRect, SInt16 mode,
              RgnHandle maskRegion);

// Ports and screens
CGrafPtr CreateNewPort(void);
void DisposePort(CGrafPtr port);
void GetPort(GrafPtr *port);
void SetPort(GrafPtr port);
void LocalToGlobal(Point *point);
const BitMap *GetPortBitMapForCopyBits(CGrafPtr port);
CGrafPtr GetWindowPort(WindowRef window);
CGrafPtr GetDialogPort(DialogRef dialog);
BitMap *GetQDGlobalsScreenBits(BitMap *screenBits);
GDHandle GetMainDevice(void);
}
#pragma GCC visibility pop
