// What the sources that draw share: areas that may reach out of 16 bits, and rows of pixels within a port's clip.
#pragma once

#include "standin/drawing/port.h"

namespace standin
{

// A rectangle in local coordinates, before it is clipped: a line that hangs from the last coordinate reaches beyond 16 bits.
struct Area
{
    int top, left, bottom, right;
};

Area areaOf(const Rect &rect);

// One direction of an area.
struct Span
{
    int start, end;
    int length() const { return end - start; }
};

// Where so many pixels are stretched or shrunk to `shown`: the number, from 0, of the one that lies under the middle of a place there.
int pixelUnder(int place, Span shown, int length);

// The part that lies within the port's clip; 0, 0, 0, 0 if none does.
Rect visiblePart(const OpaqueGrafPtr &port, const Area &area);

// The pixel at a place that lies within the port's bounds.
Pixel *pixelAt(OpaqueGrafPtr &port, int v, int h);

// Draws what of `area` is visible with the pen's pattern in the port's colours, and notes it as changed.
void paintArea(OpaqueGrafPtr &port, const Area &area);

}   // namespace standin
