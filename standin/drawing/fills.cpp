// Rectangles that are filled, framed and inverted.
#include "standin/drawing/painting.h"

#include <algorithm>

namespace standin
{

namespace
{

// Does something to each visible row: `change(v, first pixel, pixel after the last)`.
template <class Change>
void changeRows(OpaqueGrafPtr &port, const Area &area, Change change)
{
    const Rect visible = visiblePart(port, area);
    const int width = visible.right - visible.left;
    for (int v = visible.top; v < visible.bottom; ++v)
    {
        Pixel *row = pixelAt(port, v, visible.left);
        change(v, row, row + width);
    }
    addChanged(port, visible);
}

// The pattern repeats every 8 pixels and lies the same way in the whole port, so that what is drawn side by side fits together.
void paintRow(const OpaqueGrafPtr &port, UInt8 pattern, int left, Pixel *pixel, const Pixel *end)
{
    const Pixel inks[] = {pixelOf(port.backColor), pixelOf(port.foreColor)};
    for (int h = left; pixel != end; ++pixel, ++h)
        *pixel = inks[pattern >> (7 - (h & 7)) & 1];
}

}   // namespace

Area areaOf(const Rect &rect)
{
    return {rect.top, rect.left, rect.bottom, rect.right};
}

int pixelUnder(int place, Span shown, int length)
{
    return static_cast<int>((2 * std::int64_t{place - shown.start} + 1) * length / (2 * shown.length()));
}

Rect visiblePart(const OpaqueGrafPtr &port, const Area &area)
{
    const Rect &clip = port.clip;
    const int top = std::max<int>(area.top, clip.top), left = std::max<int>(area.left, clip.left);
    const int bottom = std::min<int>(area.bottom, clip.bottom), right = std::min<int>(area.right, clip.right);
    if (bottom <= top || right <= left)
        return {0, 0, 0, 0};
    return {static_cast<SInt16>(top), static_cast<SInt16>(left), static_cast<SInt16>(bottom), static_cast<SInt16>(right)};
}

Pixel *pixelAt(OpaqueGrafPtr &port, int v, int h)
{
    const int width = port.bounds.right - port.bounds.left;
    return port.pixels.data() + static_cast<std::ptrdiff_t>(v - port.bounds.top) * width + (h - port.bounds.left);
}

void paintArea(OpaqueGrafPtr &port, const Area &area)
{
    const int left = visiblePart(port, area).left;
    changeRows(port, area, [&](int v, Pixel *row, Pixel *end) {
        const UInt8 pattern = port.pen.pnPat[v & 7];
        if (pattern == 0xFF)
            std::fill(row, end, pixelOf(port.foreColor));
        else
            paintRow(port, pattern, left, row, end);
    });
}

}   // namespace standin

using namespace standin;

void PaintRect(const Rect *rect)
{
    paintArea(currentPort(), areaOf(*rect));
}

void EraseRect(const Rect *rect)
{
    const Pixel background = pixelOf(currentPort().backColor);
    changeRows(currentPort(), areaOf(*rect), [=](int, Pixel *row, Pixel *end) { std::fill(row, end, background); });
}

void InvertRect(const Rect *rect)
{
    constexpr Pixel allColors = 0x00FFFFFF;
    changeRows(currentPort(), areaOf(*rect),
               [=](int, Pixel *row, Pixel *end) { std::transform(row, end, row, [](Pixel pixel) { return pixel ^ allColors; }); });
}

// The frame lies inside the rectangle, as thick as the pen is wide and high. A pen that is thicker than what is left paints all of it.
void FrameRect(const Rect *rect)
{
    OpaqueGrafPtr &port = currentPort();
    const int width = port.pen.pnSize.h, height = port.pen.pnSize.v;
    if (EmptyRect(rect) || width <= 0 || height <= 0)
        return;
    const Area all = areaOf(*rect);
    const int topEnd = std::min(all.top + height, all.bottom), bottomStart = std::max(all.bottom - height, topEnd);
    const int leftEnd = std::min(all.left + width, all.right), rightStart = std::max(all.right - width, leftEnd);
    paintArea(port, {all.top, all.left, topEnd, all.right});
    paintArea(port, {bottomStart, all.left, all.bottom, all.right});
    paintArea(port, {topEnd, all.left, bottomStart, leftEnd});
    paintArea(port, {topEnd, rightStart, bottomStart, all.right});
}
