#include "host/described_icons.h"

#include "host/resource_writer.h"

#include <algorithm>

namespace host
{

namespace
{

using Color = std::array<UInt8, 3>;

constexpr Color smallPalette[16] = {
    {0xFF, 0xFF, 0xFF}, {0xFC, 0xF3, 0x05}, {0xFF, 0x64, 0x02}, {0xDD, 0x08, 0x06}, {0xF2, 0x08, 0x84}, {0x46, 0x00, 0xA5},
    {0x00, 0x00, 0xD4}, {0x02, 0xAB, 0xEA}, {0x1F, 0xB7, 0x14}, {0x00, 0x64, 0x11}, {0x56, 0x2C, 0x05}, {0x90, 0x71, 0x3A},
    {0xC0, 0xC0, 0xC0}, {0x80, 0x80, 0x80}, {0x40, 0x40, 0x40}, {0x00, 0x00, 0x00},
};

constexpr struct
{
    const char *name;
    Color color;
} colorNames[] = {
    {"white", smallPalette[0]},       {"yellow", smallPalette[1]},     {"orange", smallPalette[2]},     {"red", smallPalette[3]},
    {"magenta", smallPalette[4]},     {"purple", smallPalette[5]},     {"blue", smallPalette[6]},       {"cyan", smallPalette[7]},
    {"green", smallPalette[8]},       {"dark-green", smallPalette[9]}, {"brown", smallPalette[10]},     {"tan", smallPalette[11]},
    {"light-gray", smallPalette[12]}, {"gray", smallPalette[13]},      {"dark-gray", smallPalette[14]}, {"black", smallPalette[15]},
};

// A cube over six steps, red slowest, without its black; ten steps between them of red, green, blue and gray; black.
std::array<Color, 256> makeLargePalette()
{
    constexpr UInt8 cubeSteps[] = {0xFF, 0xCC, 0x99, 0x66, 0x33, 0x00};
    constexpr UInt8 rampSteps[] = {0xEE, 0xDD, 0xBB, 0xAA, 0x88, 0x77, 0x55, 0x44, 0x22, 0x11};
    std::array<Color, 256> palette{};
    for (std::size_t index = 0; index < 215; ++index)
        palette[index] = {cubeSteps[index / 36], cubeSteps[index / 6 % 6], cubeSteps[index % 6]};
    for (std::size_t index = 0; index < 10; ++index)
    {
        const UInt8 step = rampSteps[index];
        palette[215 + index] = {step, 0, 0};
        palette[225 + index] = {0, step, 0};
        palette[235 + index] = {0, 0, step};
        palette[245 + index] = {step, step, step};
    }
    return palette;
}

UInt32 distance(const Color &a, const DescribedColor &b)
{
    const int red = a[0] - b.red, green = a[1] - b.green, blue = a[2] - b.blue;
    return static_cast<UInt32>(red * red + green * green + blue * blue);
}

UInt32 nearest(std::span<const Color> palette, const std::optional<DescribedColor> &color)
{
    if (!color)
        return 0;   // white
    const auto isNearer = [&](const Color &a, const Color &b) { return distance(a, *color) < distance(b, *color); };
    return static_cast<UInt32>(std::min_element(palette.begin(), palette.end(), isNearer) - palette.begin());
}

DescribedColor colorFrom(const Color &color)
{
    const int brightness = 299 * color[0] + 587 * color[1] + 114 * color[2];
    return {color[0], color[1], color[2], brightness < 128 * 1000};
}

DescribedColor colorNamed(const DescriptionLine &line, const std::string &word)
{
    for (const auto &[name, color] : colorNames)
        if (word == name)
            return colorFrom(color);
    if (word.size() != 6 || word.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
    {
        std::string names;
        for (const auto &known : colorNames)
            names += std::string(names.empty() ? "" : ", ") + known.name;
        line.fail(word + " is no color; one is six hexadecimal digits or " + names);
    }
    const auto value = static_cast<UInt32>(std::stoul(word, nullptr, 16));
    return colorFrom({static_cast<UInt8>(value >> 16), static_cast<UInt8>(value >> 8 & 0xFF), static_cast<UInt8>(value & 0xFF)});
}

}   // namespace

std::span<const std::array<UInt8, 3>> fourBitColors()
{
    return smallPalette;
}

std::span<const std::array<UInt8, 3>> eightBitColors()
{
    static const std::array<Color, 256> palette = makeLargePalette();
    return palette;
}

DescribedPalette plainPalette()
{
    const DescribedColor black = colorFrom({0, 0, 0}), white = colorFrom({0xFF, 0xFF, 0xFF});
    return {{'#', black}, {'o', white}, {' ', white}};
}

void takeColor(DescriptionLine &line, DescribedPalette &palette)
{
    const std::string character = line.takeWord("a character");
    if (character.size() != 1 || character == ".")
        line.fail("one character that is not the point stands for a color, not: " + character);
    DescribedColor color = colorNamed(line, line.takeWord("a color"));
    if (line.takeIf("black"))
        color.isBlack = true;
    else if (line.takeIf("white"))
        color.isBlack = false;
    line.expectEnd();
    palette[character[0]] = color;
}

DescribedPicture::DescribedPicture(std::span<DescriptionLine> &lines, std::size_t side, const DescribedPalette &palette)
{
    for (std::size_t row = 0; row < side; ++row)
    {
        const std::string count = std::to_string(side);
        if (row > 0 && (lines.empty() || !lines.front().startsWith(DescriptionToken::Kind::row)))
            (lines.data() - 1)->fail("the picture ends after " + std::to_string(row) + " of " + count + " rows");
        DescriptionLine &line = lines.front();
        const std::string pixels = line.takeRow();
        line.expectEnd();
        if (pixels.size() != side)
            line.fail("the row has " + std::to_string(pixels.size()) + " characters instead of " + count);
        for (const char pixel : pixels)
        {
            const auto found = palette.find(pixel);
            if (pixel != '.' && found == palette.end())
                line.fail(std::string("no line `color` says what '") + pixel + "' is");
            pixels_.push_back(pixel == '.' ? std::nullopt : std::optional(found->second));
        }
        lines = lines.subspan(1);
    }
}

std::string DescribedPicture::bits(bool isMask) const
{
    std::string bytes;
    for (std::size_t start = 0; start < pixels_.size(); start += 8)
    {
        UInt32 byte = 0;
        for (std::size_t index = start; index < start + 8; ++index)
            byte = byte << 1 | (pixels_[index] && (isMask || pixels_[index]->isBlack) ? 1 : 0);
        append8(bytes, byte);
    }
    return bytes;
}

std::string DescribedPicture::oneBit() const
{
    return bits(false);
}

std::string DescribedPicture::mask() const
{
    return bits(true);
}

std::string DescribedPicture::fourBits() const
{
    std::string bytes;
    for (std::size_t index = 0; index < pixels_.size(); index += 2)
        append8(bytes, nearest(fourBitColors(), pixels_[index]) << 4 | nearest(fourBitColors(), pixels_[index + 1]));
    return bytes;
}

std::string DescribedPicture::eightBits() const
{
    std::string bytes;
    for (const auto &pixel : pixels_)
        append8(bytes, nearest(eightBitColors(), pixel));
    return bytes;
}

}   // namespace host
