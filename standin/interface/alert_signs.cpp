// The signs of alerts, in the 32 by 32 pixels at their top left: an octagon with a hand's bar to stop, a bubble to note, a triangle for caution.
#include "standin/interface/dialogs.h"

#include "platform/drawing.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr SInt16 signTop = 10, signLeft = 20, signSize = 32;

constexpr RGBColor red = {0xCCCC, 0x1111, 0x1111};
constexpr RGBColor blue = {0x2222, 0x5555, 0xBBBB};
constexpr RGBColor yellow = {0xFFFF, 0xCCCC, 0x1111};
constexpr RGBColor white = {0xFFFF, 0xFFFF, 0xFFFF};
constexpr RGBColor black = {0, 0, 0};

// From the sign's corner.
void paint(const RGBColor &color, int top, int left, int bottom, int right)
{
    const Rect rect = {static_cast<SInt16>(signTop + top), static_cast<SInt16>(signLeft + left), static_cast<SInt16>(signTop + bottom),
                       static_cast<SInt16>(signLeft + right)};
    RGBForeColor(&color);
    PaintRect(&rect);
}

void paintOctagon(const RGBColor &color, int corner)
{
    for (int row = 0; row < signSize; ++row)
    {
        const int in = std::max({corner - row, corner - (signSize - 1 - row), 0});
        paint(color, row, in, row + 1, signSize - in);
    }
}

void paintTriangle(const RGBColor &color)
{
    for (int row = 0; row < signSize; ++row)
        paint(color, row, signSize / 2 - 1 - row / 2, row + 1, signSize / 2 + 1 + row / 2);
}

void paintBar(const RGBColor &color, int top, int middle)
{
    paint(color, top, 14, middle, 18);
    paint(color, middle + 3, 14, middle + 7, 18);
}

}   // namespace

void drawSign(Sign sign)
{
    switch (sign)
    {
    case Sign::none: return;
    case Sign::stop:
        paintOctagon(red, 9);
        paint(white, 13, 6, 19, 26);
        break;
    case Sign::note:
        paintOctagon(blue, 5);
        paintBar(white, 6, 18);
        break;
    case Sign::caution:
        paintTriangle(yellow);
        paintBar(black, 10, 20);
        break;
    }
    RGBForeColor(&black);
}

}   // namespace standin
