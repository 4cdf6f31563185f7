// Lines. The pen is a rectangle that hangs down and to the right of where it is; a line is all that it covers on its way.
//
// Each row of pixels is painted once, however large the pen is: the way never turns back, so what it covers of a row lies together.
#include "standin/drawing/painting.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace standin
{

namespace
{

struct Place
{
    int v, h;
};

struct Columns
{
    int first, last;
};

std::int64_t roundedUp(std::int64_t dividend, std::int64_t divisor)
{
    return dividend >= 0 ? (dividend + divisor - 1) / divisor : -(-dividend / divisor);
}

// The way of the pen's corner, from the upper end to the lower, so that there and back are the same pixels.
class Way
{
public:
    Way(Place start, Place end) : upper_(start), lower_(end)
    {
        if (upper_.v > lower_.v)
            std::swap(upper_, lower_);
        across_ = std::abs(lower_.h - upper_.h);
        down_ = lower_.v - upper_.v;
    }

    int top() const { return upper_.v; }
    int bottom() const { return lower_.v; }
    int left() const { return std::min(upper_.h, lower_.h); }
    int right() const { return std::max(upper_.h, lower_.h); }

    // The columns that it touches in the rows `first` to `last`, which it crosses.
    Columns columns(int first, int last) const
    {
        const int near = firstStep(first - upper_.v), far = lastStep(last - upper_.v);
        return lower_.h >= upper_.h ? Columns{upper_.h + near, upper_.h + far} : Columns{upper_.h - far, upper_.h - near};
    }

private:
    // How many columns away from the upper end the first and the last place in a row are.
    int firstStep(std::int64_t row) const
    {
        if (down_ == 0)
            return 0;
        if (across_ <= down_)
            return steepStep(row);
        return static_cast<int>(std::max<std::int64_t>(roundedUp((2 * row - 1) * across_, 2 * down_), 0));
    }

    int lastStep(std::int64_t row) const
    {
        if (down_ == 0)
            return static_cast<int>(across_);
        if (across_ <= down_)
            return steepStep(row);
        return static_cast<int>(std::min(roundedUp((2 * row + 1) * across_, 2 * down_) - 1, across_));
    }

    int steepStep(std::int64_t row) const { return static_cast<int>((2 * row * across_ + down_) / (2 * down_)); }

    Place upper_, lower_;
    std::int64_t across_, down_;
};

void drawWay(OpaqueGrafPtr &port, const Way &way)
{
    const int width = port.pen.pnSize.h, height = port.pen.pnSize.v;
    if (width <= 0 || height <= 0)
        return;
    const Rect visible = visiblePart(port, {way.top(), way.left(), way.bottom() + height, way.right() + width});
    for (int row = visible.top; row < visible.bottom; ++row)
    {
        const Columns columns = way.columns(std::max(row - height + 1, way.top()), std::min(row, way.bottom()));
        paintArea(port, {row, columns.first, row + 1, columns.last + width});
    }
}

}   // namespace

}   // namespace standin

using namespace standin;

void LineTo(SInt16 h, SInt16 v)
{
    OpaqueGrafPtr &port = currentPort();
    const Point from = port.pen.pnLoc;
    drawWay(port, Way({from.v, from.h}, {v, h}));
    port.pen.pnLoc = {v, h};
}

void Line(SInt16 dh, SInt16 dv)
{
    const Point from = currentPort().pen.pnLoc;
    LineTo(static_cast<SInt16>(from.h + dh), static_cast<SInt16>(from.v + dv));
}
