// The two colours of the current port.
#include "standin/drawing/port.h"

#include <algorithm>
#include <iterator>

namespace standin
{

namespace
{

struct ClassicColor
{
    SInt32 number;
    RGBColor color;
};

// As the printers' inks and the first colour screens had them, not pure ones.
const ClassicColor classicColors[] = {{blackColor, {0x0000, 0x0000, 0x0000}},   {whiteColor, {0xFFFF, 0xFFFF, 0xFFFF}},
                                      {redColor, {0xDD6B, 0x08C2, 0x06A2}},     {greenColor, {0x0000, 0x8000, 0x11B0}},
                                      {blueColor, {0x0000, 0x0000, 0xD400}},    {cyanColor, {0x0241, 0xAB54, 0xEAFF}},
                                      {magentaColor, {0xF2D7, 0x0856, 0x84EC}}, {yellowColor, {0xFC00, 0xF37D, 0x052F}}};

// A number that is none of the eight changes nothing.
void setClassicColor(RGBColor &color, SInt32 number)
{
    const auto *found = std::find_if(std::begin(classicColors), std::end(classicColors),
                                     [=](const ClassicColor &classic) { return classic.number == number; });
    if (found != std::end(classicColors))
        color = found->color;
}

}   // namespace

Pixel pixelOf(const RGBColor &color)
{
    const auto highByte = [](UInt16 component) { return static_cast<Pixel>(component >> 8); };
    return blackPixel | highByte(color.red) << 16 | highByte(color.green) << 8 | highByte(color.blue);
}

}   // namespace standin

using namespace standin;

void GetForeColor(RGBColor *color)
{
    *color = currentPort().foreColor;
}

void RGBForeColor(const RGBColor *color)
{
    currentPort().foreColor = *color;
}

void ForeColor(SInt32 color)
{
    setClassicColor(currentPort().foreColor, color);
}

void GetBackColor(RGBColor *color)
{
    *color = currentPort().backColor;
}

void RGBBackColor(const RGBColor *color)
{
    currentPort().backColor = *color;
}

void BackColor(SInt32 color)
{
    setClassicColor(currentPort().backColor, color);
}
