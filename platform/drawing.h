// QuickDraw: ports, the pen, colours, text and the copying of pixels.

#pragma once

#include "platform/geometry.h"
#include "platform/results.h"
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

struct FontInfo
{
    SInt16 ascent, descent, widMax, leading;
};

struct GDevice
{
    Rect gdRect;
};

#pragma pack(pop)

using GDHandle = GDevice **;

using GWorldPtr = CGrafPtr;
using GWorldFlags = UInt32;

// The eight classic colours
constexpr SInt32 blackColor = 33;
constexpr SInt32 whiteColor = 30;
constexpr SInt32 redColor = 205;
constexpr SInt32 greenColor = 341;
constexpr SInt32 blueColor = 409;
constexpr SInt32 cyanColor = 273;
constexpr SInt32 magentaColor = 137;
constexpr SInt32 yellowColor = 69;

// How what is drawn meets what is there
constexpr SInt16 srcCopy = 0;
constexpr SInt16 patCopy = 8;

#pragma GCC visibility push(default)
extern "C"
{

void SetRect(Rect *rect, SInt16 left, SInt16 top, SInt16 right, SInt16 bottom);
void OffsetRect(Rect *rect, SInt16 dh, SInt16 dv);
void InsetRect(Rect *rect, SInt16 dh, SInt16 dv);
Boolean SectRect(const Rect *one, const Rect *other, Rect *common);
Boolean EmptyRect(const Rect *rect);
Boolean PtInRect(Point point, const Rect *rect);

// The pen and the colours of the current port
void GetPenState(PenState *state);
void SetPenState(const PenState *state);
void PenNormal(void);
void PenSize(SInt16 width, SInt16 height);
void GetForeColor(RGBColor *color);
void RGBForeColor(const RGBColor *color);
void ForeColor(SInt32 color);
void GetBackColor(RGBColor *color);
void RGBBackColor(const RGBColor *color);
void BackColor(SInt32 color);
void MoveTo(SInt16 h, SInt16 v);
void Move(SInt16 dh, SInt16 dv);

// Lines and rectangles; the pen hangs down and to the right of where it is
void LineTo(SInt16 h, SInt16 v);
void Line(SInt16 dh, SInt16 dv);
void FrameRect(const Rect *rect);
void PaintRect(const Rect *rect);
void EraseRect(const Rect *rect);
void InvertRect(const Rect *rect);

// Text; widths are in pixels
void DrawString(ConstStr255Param text);
void DrawChar(SInt16 character);
SInt16 StringWidth(ConstStr255Param text);
SInt16 CharWidth(SInt16 character);
void GetFontInfo(FontInfo *info);

void CopyBits(const BitMap *source, const BitMap *destination, const Rect *sourceRect, const Rect *destinationRect, SInt16 mode,
              RgnHandle maskRegion);

// Ports and screens
CGrafPtr CreateNewPort(void);
void DisposePort(CGrafPtr port);
OSErr NewGWorld(GWorldPtr *world, SInt16 depth, const Rect *bounds, CTabHandle colors, GDHandle device, GWorldFlags flags);
void DisposeGWorld(GWorldPtr world);
void GetPort(GrafPtr *port);
void SetPort(GrafPtr port);
Rect *GetPortBounds(CGrafPtr port, Rect *bounds);
void ClipRect(const Rect *rect);
void LocalToGlobal(Point *point);
void GlobalToLocal(Point *point);
const BitMap *GetPortBitMapForCopyBits(CGrafPtr port);
CGrafPtr GetWindowPort(WindowRef window);
CGrafPtr GetDialogPort(DialogRef dialog);
BitMap *GetQDGlobalsScreenBits(BitMap *screenBits);
GDHandle GetMainDevice(void);
}
#pragma GCC visibility pop
