// Ports, the pen, colours, rectangles, text and the copying of pixels. Widths of text are in double_text.cpp.

#include "tests/contract/platform_double.h"

namespace
{

SInt16 wrapped(int value)
{
    return static_cast<SInt16>(value);
}

}   // namespace

std::string pointText(Point point)
{
    return '{' + decimal(point.v) + ", " + decimal(point.h) + '}';
}

std::string rectText(const Rect *rect)
{
    if (rect == nullptr)
        return "-";
    return '{' + decimal(rect->top) + ", " + decimal(rect->left) + ", " + decimal(rect->bottom) + ", " + decimal(rect->right) + '}';
}

std::string colorText(const RGBColor *color)
{
    if (color == nullptr)
        return "-";
    return '{' + hex(color->red) + ", " + hex(color->green) + ", " + hex(color->blue) + '}';
}

std::string DrawingDouble::describe(GrafPtr port)
{
    return port == nullptr ? "-" : "port:" + port->name;
}

std::string DrawingDouble::describe(const BitMap *bits) const
{
    if (bits == nullptr)
        return "-";
    if (bits == &window.port.bits)
        return "bits:" + window.port.name;
    return bits == &current->bits ? "bits:" + current->name : "bits:?";
}

void SetRect(Rect *rect, SInt16 left, SInt16 top, SInt16 right, SInt16 bottom)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("SetRect", {platform.pointer(rect, "rect"), decimal(left), decimal(top), decimal(right), decimal(bottom)});
    *rect = {top, left, bottom, right};
}

void OffsetRect(Rect *rect, SInt16 dh, SInt16 dv)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("OffsetRect", {platform.pointer(rect, "rect"), decimal(dh), decimal(dv)});
    *rect = {wrapped(rect->top + dv), wrapped(rect->left + dh), wrapped(rect->bottom + dv), wrapped(rect->right + dh)};
}

Boolean PtInRect(Point point, const Rect *rect)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("PtInRect", {pointText(point), rectText(rect)});
    const bool isInside = point.v >= rect->top && point.v < rect->bottom && point.h >= rect->left && point.h < rect->right;
    return isInside ? platform.drawing.inside : Boolean{0};
}

void GetPenState(PenState *state)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetPenState", {platform.pointer(state, "pen")});
    *state = platform.drawing.current->pen;
}

void SetPenState(const PenState *state)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("SetPenState", {"pen at " + pointText(valueOf(state->pnLoc))});
    platform.drawing.current->pen = *state;
}

void GetForeColor(RGBColor *color)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetForeColor", {platform.pointer(color, "color")});
    *color = platform.drawing.current->foreColor;
}

void RGBForeColor(const RGBColor *color)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("RGBForeColor", {colorText(color)});
    platform.drawing.current->foreColor = *color;
}

// Black is the one colour that is asked for.
void ForeColor(SInt32 color)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("ForeColor", {decimal(color)});
    if (color == blackColor)
        platform.drawing.current->foreColor = {0, 0, 0};
}

void MoveTo(SInt16 h, SInt16 v)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("MoveTo", {decimal(h), decimal(v)});
    platform.drawing.current->pen.pnLoc = {v, h};
}

// The pen goes on by one pixel for each character.
void DrawString(ConstStr255Param text)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("DrawString", {quoted(text)});
    OpaqueGrafPtr &port = *platform.drawing.current;
    platform.drawing.texts.push_back({plainText(text), port.name, port.pen.pnLoc, port.foreColor});
    port.pen.pnLoc.h = wrapped(port.pen.pnLoc.h + text[0]);
}

void CopyBits(const BitMap *source, const BitMap *destination, const Rect *sourceRect, const Rect *destinationRect, SInt16 mode,
              RgnHandle maskRegion)
{
    PlatformDouble &platform = PlatformDouble::current();
    const Rect bounds = source->bounds;
    platform.note("CopyBits",
                  {platform.resources.describeBytes(source->baseAddr) + " by " + decimal(source->rowBytes) + " in " + rectText(&bounds),
                   platform.drawing.describe(destination), rectText(sourceRect), rectText(destinationRect), decimal(mode),
                   platform.pointer(maskRegion, "region")});
    const UInt8 *bytes = reinterpret_cast<const UInt8 *>(source->baseAddr);
    const int byteCount = source->rowBytes * wrapped(bounds.bottom - bounds.top);
    platform.drawing.pictures.push_back(
        {platform.drawing.describe(destination), {bytes, bytes + byteCount}, platform.drawing.current->foreColor});
}

void GetPort(GrafPtr *port)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetPort", {platform.pointer(port, "port")});
    *port = platform.drawing.current;
}

void SetPort(GrafPtr port)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("SetPort", {DrawingDouble::describe(port)});
    platform.drawing.current = port;
}

void LocalToGlobal(Point *point)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("LocalToGlobal", {pointText(*point)});
    const Point corner = platform.drawing.current->corner;
    *point = {wrapped(point->v + corner.v), wrapped(point->h + corner.h)};
}

const BitMap *GetPortBitMapForCopyBits(CGrafPtr port)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetPortBitMapForCopyBits", {DrawingDouble::describe(port)});
    return &port->bits;
}

CGrafPtr GetWindowPort(WindowRef window)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetWindowPort", {window == nullptr ? "-" : window->port.name});
    return &window->port;
}
