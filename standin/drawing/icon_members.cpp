#include "standin/drawing/icon_members.h"

#include "standin/drawing/icon_palettes.h"

namespace standin
{

namespace
{

constexpr Pixel outsideMask = 0x00FFFFFF;

std::size_t imageSize(int side, int bitsPerPixel)
{
    return static_cast<std::size_t>(side * side * bitsPerPixel / 8);
}

// The value of a pixel in an image of so many bits a pixel, the first pixel in the highest bits. Past the end of the bytes all is 0.
unsigned valueAt(std::string_view bytes, std::size_t pixel, int bitsPerPixel)
{
    const std::size_t bit = pixel * static_cast<std::size_t>(bitsPerPixel);
    if (bit / 8 >= bytes.size())
        return 0;
    const unsigned byte = static_cast<unsigned char>(bytes[bit / 8]);
    const unsigned below = 8 - static_cast<unsigned>(bitsPerPixel) - static_cast<unsigned>(bit % 8);
    return byte >> below & ((1u << bitsPerPixel) - 1);
}

Pixel colorOf(unsigned value, int bitsPerPixel)
{
    switch (bitsPerPixel)
    {
    case 4: return colorOfFourBits(value);
    case 8: return colorOfEightBits(value);
    default: return value != 0 ? blackPixel : whitePixel;
    }
}

IconPixels readImage(std::string_view bytes, int side, int bitsPerPixel)
{
    IconPixels icon = {side, bitsPerPixel, {}};
    icon.pixels.resize(static_cast<std::size_t>(side * side));
    for (std::size_t pixel = 0; pixel < icon.pixels.size(); ++pixel)
        icon.pixels[pixel] = colorOf(valueAt(bytes, pixel, bitsPerPixel), bitsPerPixel);
    return icon;
}

void applyMask(std::string_view mask, IconPixels &icon)
{
    for (std::size_t pixel = 0; pixel < icon.pixels.size(); ++pixel)
        if (valueAt(mask, pixel, 1) == 0)
            icon.pixels[pixel] = outsideMask;
}

}   // namespace

std::size_t wholeSizeOf(const IconMemberKind &kind)
{
    const std::size_t image = imageSize(kind.side, kind.bitsPerPixel);
    return kind.bitsPerPixel == 1 ? 2 * image : image;
}

bool canBeMember(const IconMemberKind &kind, std::size_t byteCount)
{
    return byteCount >= wholeSizeOf(kind) / 2;
}

IconPixels readIconMember(const IconMemberKind &kind, std::string_view bytes, std::string_view masking)
{
    IconPixels icon = readImage(bytes, kind.side, kind.bitsPerPixel);
    const std::size_t beforeMask = imageSize(kind.side, 1);
    if (masking.size() > beforeMask)
        applyMask(masking.substr(beforeMask), icon);
    return icon;
}

}   // namespace standin
