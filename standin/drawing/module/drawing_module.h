// What the part `zerbdrawing.so` does for drawing: glyphs through FreeType and fontconfig, pictures through libpng. The stand-in's library links
// none of these and loads the part when it is first needed (standin/modules.h); both are built together and share these types.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace standin
{

// How dark a character is at each pixel around the pen.
struct Glyph
{
    int advance = 0;                      // how far the pen moves, in whole pixels: 0 to widestAdvance
    int left = 0, top = 0;                // the first pixel of the coverage: right of the pen, and above the base line
    int width = 0, height = 0;            // of the coverage
    std::vector<std::uint8_t> coverage;   // rows from the top, 0 to 255
};

constexpr int widestAdvance = 128;   // 255 of them still fit in a width of 16 bits

struct FontMeasures
{
    int ascent = 0, descent = 0, leading = 0;   // pixels
};

// One font at one size. One call at a time.
class Font
{
public:
    virtual ~Font() = default;
    virtual FontMeasures measures() const = 0;

    // A character that the font lacks has the font's glyph for that.
    virtual Glyph glyph(char16_t character) = 0;
};

struct DrawingModule
{
    // Opens the font of a family, or the one that comes next to it. Null if there is none at all. `problem` is a sentence without a full stop
    // about either, or empty.
    std::unique_ptr<Font> (*openFont)(const std::string &family, int pixels, std::string &problem);

    // The bytes of a PNG file, from rows of red, green and blue bytes. Empty if it cannot be made.
    std::vector<std::uint8_t> (*encodePicture)(std::span<const std::uint8_t> rows, std::uint32_t width, std::uint32_t height);
};

constexpr const char *drawingModuleFile = "zerbdrawing.so";
constexpr const char *drawingModuleFunction = "zerbDrawingModule";   // gives a const DrawingModule *
using DrawingModuleFunction = const DrawingModule *();

std::unique_ptr<Font> openFont(const std::string &family, int pixels, std::string &problem);
std::vector<std::uint8_t> encodePicture(std::span<const std::uint8_t> rows, std::uint32_t width, std::uint32_t height);

}   // namespace standin
