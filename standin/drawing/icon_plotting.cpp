// Icons drawn into the current port: which member, at which place, in which size.
#include "standin/drawing/icon_suites.h"
#include "standin/drawing/icon_transforms.h"
#include "standin/drawing/painting.h"

#include <algorithm>
#include <new>

namespace standin
{

namespace
{

constexpr int largeSide = 32, smallSide = 16;

// The parts of an alignment, the same two bits for each direction.
enum Placing
{
    unplaced = 0,
    inTheMiddle = 1,
    atTheStart = 2,
    atTheEnd = 3
};

constexpr int placingBits = 3, horizontalShift = 2;

int wantedSide(const Rect &rect)
{
    return rect.right - rect.left >= largeSide || rect.bottom - rect.top >= largeSide ? largeSide : smallSide;
}

Span placed(Span room, int placing, int side)
{
    const int length = std::min(side, room.length()), spare = room.length() - length;
    const int start = room.start + (placing == inTheMiddle ? spare / 2 : placing == atTheEnd ? spare : 0);
    return {start, start + length};
}

// Without an alignment the icon fills the rectangle. With one it has its own size there, or is as much smaller as the rectangle; in a direction
// that the alignment leaves open it lies at the start.
Area placeOf(const Rect &rect, IconAlignmentType alignment, int side)
{
    const int vertical = alignment & placingBits, horizontal = alignment >> horizontalShift & placingBits;
    if (vertical == unplaced && horizontal == unplaced)
        return areaOf(rect);
    const Span rows = placed({rect.top, rect.bottom}, vertical, side), columns = placed({rect.left, rect.right}, horizontal, side);
    return {rows.start, columns.start, rows.end, columns.end};
}

void drawIcon(const IconPixels &icon, const Area &place, OpaqueGrafPtr &port)
{
    const Rect visible = visiblePart(port, place);
    for (int v = visible.top; v < visible.bottom; ++v)
    {
        const int row = pixelUnder(v, {place.top, place.bottom}, icon.side);
        Pixel *target = pixelAt(port, v, visible.left);
        for (int h = visible.left; h < visible.right; ++h, ++target)
        {
            const int column = pixelUnder(h, {place.left, place.right}, icon.side);
            const Pixel pixel = icon.pixels[static_cast<std::size_t>(row * icon.side + column)];
            if (pixel & blackPixel)
                *target = pixel;
        }
    }
    addChanged(port, visible);
}

}   // namespace

}   // namespace standin

using namespace standin;

// Draws the large icon where the rectangle is 32 pixels wide or high, or more, else the small one; the deepest member of that size, or of the other
// size where there is none. What an alignment means is told at placeOf; other bits of it mean nothing. The looks are those of icon_transforms.h.
// Colours of the port matter to disabled icons alone, which fade to its background colour.
//
// Result: noErr, also where nothing is visible; paramErr for a null rectangle, or what is no suite; memFullErr.
OSErr PlotIconSuite(const Rect *rect, IconAlignmentType alignment, IconTransformType transform, IconSuiteRef suite)
{
    if (rect == nullptr || !isIconSuite(suite))
        return paramErr;
    if (EmptyRect(rect))
        return noErr;
    try
    {
        OpaqueGrafPtr &port = currentPort();
        IconPixels icon = readIcon(*suite, wantedSide(*rect));
        transformIcon(transform, pixelOf(port.backColor), icon);
        drawIcon(icon, placeOf(*rect, alignment, icon.side), port);
        return noErr;
    }
    catch (const std::bad_alloc &)
    {
        return memFullErr;
    }
}
