// The pen of the current port.
#include "standin/drawing/port.h"

#include <algorithm>
#include <iterator>

using namespace standin;

void GetPenState(PenState *state)
{
    *state = currentPort().pen;
}

void SetPenState(const PenState *state)
{
    currentPort().pen = *state;
}

// Everything but where it is.
void PenNormal()
{
    PenState &pen = currentPort().pen;
    pen.pnSize = {1, 1};
    pen.pnMode = patCopy;
    std::fill(std::begin(pen.pnPat), std::end(pen.pnPat), UInt8{0xFF});
}

void PenSize(SInt16 width, SInt16 height)
{
    currentPort().pen.pnSize = {height, width};
}

void MoveTo(SInt16 h, SInt16 v)
{
    currentPort().pen.pnLoc = {v, h};
}

void Move(SInt16 dh, SInt16 dv)
{
    Point &place = currentPort().pen.pnLoc;
    place = {static_cast<SInt16>(place.v + dv), static_cast<SInt16>(place.h + dh)};
}
