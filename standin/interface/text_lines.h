// Text in lines, in the font of the current port.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace standin
{

// Breaks a text at its line ends, and where it is wider than so many pixels between words; within a word only if that alone is too wide.
// No line has more than 255 bytes.
std::vector<std::string> linesOf(const std::string &text, int width);

// Draws them one below the other, from the top left corner of a rectangle.
void drawLines(const std::string &text, const Rect &box);

// Draws a line in the middle of a rectangle's height, beginning at `left`.
void drawLineAt(const std::string &text, const Rect &box, int left);

int widthOfText(const std::string &text);

}   // namespace standin
