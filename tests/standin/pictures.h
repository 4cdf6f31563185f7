// What a port shows, compared with what is expected: as rows of text where that can be read, as stored pictures otherwise.
#pragma once

#include "standin/drawing/port.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace support
{

// One line for each row of pixels: '#' is black, '.' white, 'r', 'g' and 'b' pure colours, '?' anything else.
std::string rowsOf(GrafPtr port);

struct Picture
{
    int width = 0, height = 0;
    std::vector<standin::Pixel> pixels;
};

Picture pictureOf(GrafPtr port);
Picture readPicture(const std::string &path);   // a PNG file; without pixels if it cannot be read
bool writePicture(const Picture &picture, const std::string &path);

// Whether a port shows exactly what tests/data/pictures/NAME.png does. If not, NAME.drawn.png and NAME.differences.png (red where they differ)
// are written to the folder `pictures` beside that of the programs.
//
// With ZERB_NEW_PICTURES set, a picture that is not stored yet is stored, and the test is skipped: look at the picture before you keep it.
testing::AssertionResult looksLike(const Picture &drawn, const std::string &name);
testing::AssertionResult looksLike(GrafPtr port, const std::string &name);

}   // namespace support
