// The copying of pixels.
//
// From maps of 1 bit (rowBytes without its high bit: set bits come in the current port's foreground colour, clear ones in its background
// colour) and of 32 bits (as they are, whatever the colours) to ports and to 32-bit maps in memory. Nothing is copied to a 1-bit map, nor
// through a mask: there are no regions here. Every mode copies as srcCopy does.
#include "standin/drawing/painting.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace standin
{

namespace
{

constexpr unsigned deepPixels = 0x8000, rowBytesMask = 0x3FFF;

// A map, read with care: whatever its bounds say, a row never reaches beyond its bytes.
class Map
{
public:
    explicit Map(const BitMap &map)
        : start_(map.baseAddr), rowBytes_(static_cast<UInt16>(map.rowBytes) & rowBytesMask),
          isDeep_((static_cast<UInt16>(map.rowBytes) & deepPixels) != 0), bounds_(areaOf(map.bounds))
    {
        const int columns = static_cast<int>(isDeep_ ? rowBytes_ / sizeof(Pixel) : rowBytes_ * 8);
        bounds_.right = start_ != nullptr ? std::min(bounds_.right, bounds_.left + columns) : bounds_.left;
    }

    bool isDeep() const { return isDeep_; }
    const Area &bounds() const { return bounds_; }

    Pixel deepPixel(int v, int h) const
    {
        Pixel pixel;
        std::memcpy(&pixel, placeOf(v, h), sizeof pixel);
        return pixel | blackPixel;
    }

    bool bit(int v, int h) const
    {
        const int column = h - bounds_.left;
        return (static_cast<UInt8>(rowOf(v)[column / 8]) >> (7 - column % 8) & 1) != 0;
    }

    void write(int v, int h, const Pixel *pixels, std::size_t count) const { std::memcpy(placeOf(v, h), pixels, count * sizeof(Pixel)); }

private:
    Ptr rowOf(int v) const { return start_ + static_cast<std::ptrdiff_t>(v - bounds_.top) * static_cast<std::ptrdiff_t>(rowBytes_); }
    Ptr placeOf(int v, int h) const { return rowOf(v) + static_cast<std::ptrdiff_t>(h - bounds_.left) * std::ptrdiff_t{sizeof(Pixel)}; }

    Ptr start_;
    unsigned rowBytes_;
    bool isDeep_;
    Area bounds_;
};

// Which coordinates of the source the visible ones of the destination are taken from, in one direction.
struct Taken
{
    int first = 0;              // the first of the destination
    std::vector<int> sources;   // for it and those that follow
};

// Those whose source lies outside of `readable` are left out. They can only be at the ends: sources never go backwards.
Taken takenCoordinates(Span source, Span destination, Span readable, Span visible)
{
    Taken taken;
    const int end = std::min(destination.end, visible.end);
    for (int to = std::max(destination.start, visible.start); to < end; ++to)
    {
        const int from = source.start + pixelUnder(to, destination, source.length());
        if (from < readable.start || from >= readable.end)
            continue;
        if (taken.sources.empty())
            taken.first = to;
        taken.sources.push_back(from);
    }
    return taken;
}

// All is read before anything is written, so that both may overlap.
std::vector<Pixel> pixelsTaken(const Map &source, const Taken &rows, const Taken &columns)
{
    const Pixel set = pixelOf(currentPort().foreColor), clear = pixelOf(currentPort().backColor);
    std::vector<Pixel> pixels;
    pixels.reserve(rows.sources.size() * columns.sources.size());
    for (int v : rows.sources)
        for (int h : columns.sources)
            pixels.push_back(source.isDeep() ? source.deepPixel(v, h) : source.bit(v, h) ? set : clear);
    return pixels;
}

// Gives what was written.
Rect copyPixels(const Map &source, const Area &from, const Map &destination, const Area &to, const Area &visible)
{
    const Taken rows = takenCoordinates({from.top, from.bottom}, {to.top, to.bottom}, {source.bounds().top, source.bounds().bottom},
                                        {visible.top, visible.bottom});
    const Taken columns = takenCoordinates({from.left, from.right}, {to.left, to.right}, {source.bounds().left, source.bounds().right},
                                           {visible.left, visible.right});
    if (rows.sources.empty() || columns.sources.empty())
        return {0, 0, 0, 0};
    const std::vector<Pixel> pixels = pixelsTaken(source, rows, columns);
    const int height = static_cast<int>(rows.sources.size()), width = static_cast<int>(columns.sources.size());
    for (int row = 0; row < height; ++row)
        destination.write(rows.first + row, columns.first, pixels.data() + static_cast<std::ptrdiff_t>(row) * width,
                          columns.sources.size());
    return {static_cast<SInt16>(rows.first), static_cast<SInt16>(columns.first), static_cast<SInt16>(rows.first + height),
            static_cast<SInt16>(columns.first + width)};
}

}   // namespace

}   // namespace standin

using namespace standin;

void CopyBits(const BitMap *source, const BitMap *destination, const Rect *sourceRect, const Rect *destinationRect, SInt16,
              RgnHandle maskRegion)
{
    const Map from(*source), to(*destination);
    if (maskRegion != nullptr || !to.isDeep() || EmptyRect(sourceRect) || EmptyRect(destinationRect))
        return;
    const GrafPtr port = portOfBitMap(destination);
    try
    {
        const Area visible = port != nullptr ? areaOf(port->clip) : to.bounds();
        const Rect written = copyPixels(from, areaOf(*sourceRect), to, areaOf(*destinationRect), visible);
        if (port != nullptr)
            addChanged(*port, written);
    }
    catch (const std::bad_alloc &)   // too little memory for the pixels between the two: nothing was copied
    {
    }
}
