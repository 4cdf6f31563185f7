// Pictures of a resource description: rows of characters → 1, 4 and 8 bits a pixel.
//
// A point stands for what is outside the mask. In 1 bit, '#' is black, and 'o' and a space are white; in colour, each character is what a line
// `color` made it.
#pragma once

#include "host/description_lines.h"

#include <array>
#include <map>
#include <optional>
#include <span>

namespace host
{

struct DescribedColor
{
    UInt8 red = 0, green = 0, blue = 0;
    bool isBlack = false;   // where a pixel has 1 bit
};

using DescribedPalette = std::map<char, DescribedColor>;

// '#' is black, 'o' and a space are white.
DescribedPalette plainPalette();

// The rest of a line `color CHARACTER NAME-OR-RRGGBB [black|white]`, where the last word says what it is in 1 bit; else that is the nearer one.
void takeColor(DescriptionLine &line, DescribedPalette &palette);

// A square of rows.
class DescribedPicture
{
public:
    // Takes `side` lines with a row each from the front. Throws DescriptionError if there are fewer, or a row is not `side` characters of the palette long.
    DescribedPicture(std::span<DescriptionLine> &lines, std::size_t side, const DescribedPalette &palette);

    std::string oneBit() const;     // black where the colour is
    std::string mask() const;       // all that is not a point
    std::string fourBits() const;   // the nearest of the system's colours; white outside the mask
    std::string eightBits() const;

private:
    std::string bits(bool isMask) const;

    std::vector<std::optional<DescribedColor>> pixels_;   // rows from the top; nothing outside the mask
};

// The system's palettes.
std::span<const std::array<UInt8, 3>> fourBitColors();
std::span<const std::array<UInt8, 3>> eightBitColors();

}   // namespace host
