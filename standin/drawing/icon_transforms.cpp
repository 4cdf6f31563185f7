#include "standin/drawing/icon_transforms.h"

namespace standin
{

namespace
{

constexpr IconTransformType stateBits = 0x00FF;
constexpr int labelShift = 8, labelBits = 7;

constexpr Pixel opaque = 0xFF000000;
constexpr Pixel gray = 0xFF808080, lightGray = 0xFFC0C0C0;
constexpr Pixel labelColors[] = {0, 0xFFA0A0A0, 0xFF40C040, 0xFFC070E0, 0xFF4090F0, 0xFFF8E020, 0xFFF04030, 0xFFFF9020};

// What becomes of a pixel, of which there are few kinds in an icon: its colour, and where it lies in the patterns.
class Look
{
public:
    Look(IconTransformType transform, Pixel background, bool isOneBit)
        : state_(static_cast<IconTransformType>(transform & stateBits)), label_(transform >> labelShift & labelBits),
          selected_((transform & kTransformSelected) != 0), oneBit_(isOneBit), background_(background)
    {
    }

    bool changesNothing() const { return (state_ == kTransformNone || state_ > kTransformOpen) && label_ == 0 && !selected_; }

    Pixel of(Pixel pixel, int x, int y) const
    {
        if (state_ == kTransformOpen)
            pixel = opened(x, y);
        if (selected_)
            pixel = selected(pixel);
        if (state_ == kTransformOffline && isInCheckerboard(x, y))
            pixel = patternOfOffline();
        if (label_ != 0)
            pixel = labelled(pixel);
        return state_ == kTransformDisabled ? disabled(pixel, x, y) : pixel;
    }

private:
    static bool isInCheckerboard(int x, int y) { return (x + y) % 2 == 0; }
    static bool isDot(int x, int y) { return x % 2 == 0 && y % 2 == 0; }

    Pixel opened(int x, int y) const
    {
        if (oneBit_)
            return isDot(x, y) ? blackPixel : whitePixel;
        return isDot(x, y) ? gray : lightGray;
    }

    // In 1 bit it is not exchanged: selected icons that are offline and those that are disabled would look the same.
    Pixel patternOfOffline() const
    {
        if (oneBit_)
            return blackPixel;
        return selected_ ? selected(gray) : gray;
    }

    Pixel selected(Pixel pixel) const { return oneBit_ ? pixel ^ 0x00FFFFFF : opaque | (pixel >> 1 & 0x007F7F7F); }

    Pixel labelled(Pixel pixel) const
    {
        const Pixel label = colorOfLabel(label_);
        if (oneBit_)
            return pixel == blackPixel ? label : pixel;
        Pixel tinted = opaque;
        for (int shift = 0; shift < 24; shift += 8)
            tinted |= (pixel >> shift & 0xFF) * (label >> shift & 0xFF) / 0xFF << shift;
        return tinted;
    }

    Pixel disabled(Pixel pixel, int x, int y) const
    {
        if (oneBit_)
            return isInCheckerboard(x, y) ? background_ : pixel;
        return opaque | ((pixel >> 1 & 0x007F7F7F) + (background_ >> 1 & 0x007F7F7F) + (pixel & background_ & 0x00010101));
    }

    IconTransformType state_;
    int label_;
    bool selected_, oneBit_;
    Pixel background_;
};

}   // namespace

Pixel colorOfLabel(int label)
{
    return labelColors[label & labelBits];
}

void transformIcon(IconTransformType transform, Pixel background, IconPixels &icon)
{
    const Look look(transform, background, icon.bitsPerPixel == 1);
    if (look.changesNothing())
        return;
    auto pixel = icon.pixels.begin();
    for (int y = 0; y < icon.side; ++y)
    {
        for (int x = 0; x < icon.side; ++x, ++pixel)
        {
            if (*pixel & opaque)
                *pixel = look.of(*pixel, x, y);
        }
    }
}

}   // namespace standin
