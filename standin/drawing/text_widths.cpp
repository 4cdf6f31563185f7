// The drawing of text: how wide it is.
//
// This folder is for QuickDraw: ports, the pen, colours, text, the copying of pixels and icons. So far it has no port and no font. Text is
// measured as if the current port had a font of fixed width, every character of the 256 as wide as the next. Fonts will come in behind the
// same two calls, and with them widths that differ.
#include "platform/drawing.h"

namespace
{

constexpr SInt16 fixedWidth = 6;   // pixels; the longest string, 255 characters, is 1530 wide

}

// Only the low byte of `character` is its code, so that a character that came as a negative `char` has its width too. Here all have the same.
SInt16 CharWidth([[maybe_unused]] SInt16 character)
{
    return fixedWidth;
}

// Control characters take their place like all others; bytes behind the length are not part of the text.
SInt16 StringWidth(ConstStr255Param text)
{
    return static_cast<SInt16>(text[0] * fixedWidth);
}
