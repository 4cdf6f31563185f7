// Text in lines, in the font of the current port.
#pragma once

#include "platform/platform.h"

#include <string>

namespace standin
{

// Draws a text in lines, one below the other, from the top left corner of a rectangle. They are broken at line ends, and where they would be wider than
// the rectangle between words; within a word only if that alone is too wide. No line has more than 255 bytes.
void drawLines(const std::string &text, const Rect &box);

// Draws a line in the middle of a rectangle's height, beginning at `left`.
void drawLineAt(const std::string &text, const Rect &box, int left);

int widthOfText(const std::string &text);

}   // namespace standin
