// A port: pixels, and what drawing into them needs to know.
//
// Local coordinates are those of `bounds`, whose top left corner is the first pixel. Everything that draws goes through the port's clip,
// adds what it touched to `changed`, and is done on the thread of the interface.
#pragma once

#include "platform/platform.h"

#include <cstdint>
#include <vector>

namespace standin
{

using Pixel = std::uint32_t;   // 0xAARRGGBB; drawing sets AA to 0xFF, an erased port is opaque white

constexpr Pixel whitePixel = 0xFFFFFFFF;
constexpr Pixel blackPixel = 0xFF000000;

}   // namespace standin

struct OpaqueGrafPtr
{
    Rect bounds;     // of the pixels, in local coordinates
    Point topLeft;   // where the first pixel lies on the screen, in global coordinates
    Rect clip;       // nothing outside is drawn; lies within bounds

    std::vector<standin::Pixel> pixels;   // rows from the top, as wide as bounds
    BitMap bitMap;                        // tells CopyBits of these pixels

    PenState pen;
    RGBColor foreColor, backColor;

    Rect changed;   // what was drawn since it was last shown; empty if nothing was
};

namespace standin
{

// A port for pixels of these bounds, all white, with a pen and colours as they are at first. Null if there is no memory for it or it would
// be empty or wider than a bit map can tell (4095 pixels). DisposePort disposes of it.
GrafPtr newPort(const Rect &bounds, Point topLeft);

// The port that drawing goes to; never null: before the first SetPort it is a port of one pixel.
OpaqueGrafPtr &currentPort();

// The port whose bit map this is, or null.
GrafPtr portOfBitMap(const BitMap *bitMap);

// Makes a port current as long as it lives; what was current before comes back, unless it has been disposed of meanwhile.
class PortSetting
{
public:
    explicit PortSetting(GrafPtr port);
    ~PortSetting();
    PortSetting(const PortSetting &) = delete;
    PortSetting &operator=(const PortSetting &) = delete;

private:
    GrafPtr earlier_;
};

Pixel pixelOf(const RGBColor &color);   // the high byte of each component, opaque

// Says that the pixels of `rect` (local) were changed.
void addChanged(OpaqueGrafPtr &port, const Rect &rect);

}   // namespace standin
