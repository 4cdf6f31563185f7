// The double's numbers as text and its measuring of text.

#pragma once

#include "platform/platform.h"

#include <array>
#include <deque>

struct TextDouble
{
    TextDouble();

    // In pixels, by character code. At the start 5 for a space, 11 for the ellipsis (0xC9) and 8 for everything else.
    // A string is as wide as its characters together.
    std::array<SInt16, 256> characterWidths;

    // What the next calls of StringWidth answer, whatever they measure. Where this is used up, widths are measured.
    std::deque<SInt16> nextStringWidths;
};
