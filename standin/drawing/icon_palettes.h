// The system's palettes, which give the pixels of colour icons their colours.
#pragma once

#include "standin/drawing/port.h"

namespace standin
{

Pixel colorOfFourBits(unsigned index);    // 0..15
Pixel colorOfEightBits(unsigned index);   // 0..255

}   // namespace standin
