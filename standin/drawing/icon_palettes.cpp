#include "standin/drawing/icon_palettes.h"

#include <array>

namespace standin
{

namespace
{

constexpr Pixel opaque = 0xFF000000;

constexpr std::array<Pixel, 16> fourBitPalette = {
    0xFFFFFFFF, 0xFFFCF305, 0xFFFF6402, 0xFFDD0806, 0xFFF20884, 0xFF4600A5, 0xFF0000D4, 0xFF02ABEA,
    0xFF1FB714, 0xFF006411, 0xFF562C05, 0xFF90713A, 0xFFC0C0C0, 0xFF808080, 0xFF404040, 0xFF000000,
};

// Six steps of each component, all combinations from white on. The last one, black, is not there but at the palette's end.
constexpr Pixel levels = 6;
constexpr Pixel cubeColors = levels * levels * levels - 1;

constexpr Pixel cubeColor(Pixel index)
{
    const Pixel red = 0xFF - 0x33 * (index / (levels * levels));
    const Pixel green = 0xFF - 0x33 * (index / levels % levels);
    const Pixel blue = 0xFF - 0x33 * (index % levels);
    return opaque | red << 16 | green << 8 | blue;
}

// After the cube: ten shades each of red, green, blue and gray, between those that the cube has.
constexpr Pixel shades[] = {0xEE, 0xDD, 0xBB, 0xAA, 0x88, 0x77, 0x55, 0x44, 0x22, 0x11};
constexpr Pixel shadedColors[] = {0x010000, 0x000100, 0x000001, 0x010101};

constexpr std::array<Pixel, 256> makeEightBitPalette()
{
    std::array<Pixel, 256> palette = {};
    std::size_t next = 0;
    for (Pixel index = 0; index < cubeColors; ++index)
        palette[next++] = cubeColor(index);
    for (Pixel color : shadedColors)
        for (Pixel shade : shades)
            palette[next++] = opaque | color * shade;
    palette[next] = blackPixel;
    return palette;
}

constexpr std::array<Pixel, 256> eightBitPalette = makeEightBitPalette();

}   // namespace

Pixel colorOfFourBits(unsigned index)
{
    return fourBitPalette[index & 0xF];
}

Pixel colorOfEightBits(unsigned index)
{
    return eightBitPalette[index & 0xFF];
}

}   // namespace standin
