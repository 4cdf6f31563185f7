// Glyphs from FreeType: antialiased, hinted to the rows of pixels, with whole advances and without kerning.
#include "standin/drawing/module/drawing_module.h"
#include "standin/drawing/module/font_files.h"

#include <algorithm>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace standin
{

namespace
{

constexpr FT_Pos unitsOfPixel = 64;

int roundedToPixels(FT_Pos units)
{
    return static_cast<int>((units + unitsOfPixel / 2) >> 6);
}

struct Release
{
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};

using Library = std::unique_ptr<FT_LibraryRec_, Release>;
using Face = std::unique_ptr<FT_FaceRec_, Release>;

void takeCoverage(const FT_Bitmap &bitmap, Glyph &glyph)
{
    if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY || bitmap.buffer == nullptr)
        return;
    glyph.width = static_cast<int>(bitmap.width);
    glyph.height = static_cast<int>(bitmap.rows);
    for (int row = 0; row < glyph.height; ++row)
    {
        const unsigned char *pixels = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
        glyph.coverage.insert(glyph.coverage.end(), pixels, pixels + glyph.width);
    }
}

class OutlineFont : public Font
{
public:
    OutlineFont(Library library, Face face) : library_(std::move(library)), face_(std::move(face)) {}

    FontMeasures measures() const override
    {
        const FT_Size_Metrics &metrics = face_->size->metrics;
        const int ascent = roundedToPixels(metrics.ascender), descent = roundedToPixels(-metrics.descender);
        return {ascent, descent, std::max(roundedToPixels(metrics.height) - ascent - descent, 0)};
    }

    Glyph glyph(char16_t character) override
    {
        Glyph glyph;
        const FT_UInt index = FT_Get_Char_Index(face_.get(), character);
        if (FT_Load_Glyph(face_.get(), index, FT_LOAD_RENDER | FT_LOAD_NO_BITMAP) != 0)
            return glyph;
        const FT_GlyphSlot slot = face_->glyph;
        glyph.advance = std::clamp(roundedToPixels(slot->advance.x), 0, widestAdvance);
        glyph.left = slot->bitmap_left;
        glyph.top = slot->bitmap_top;
        takeCoverage(slot->bitmap, glyph);
        return glyph;
    }

private:
    Library library_;   // goes last
    Face face_;
};

std::unique_ptr<Font> openFile(const FontFile &file, int pixels)
{
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        return nullptr;
    Library owned(library);
    FT_Face face = nullptr;
    if (FT_New_Face(library, file.path.c_str(), file.index, &face) != 0)
        return nullptr;
    Face ownedFace(face);
    if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(pixels)) != 0)
        return nullptr;
    return std::make_unique<OutlineFont>(std::move(owned), std::move(ownedFace));
}

}   // namespace

std::unique_ptr<Font> openFont(const std::string &family, int pixels, std::string &problem)
{
    const FontFile file = fontFileOf(family);
    if (file.path.empty())
    {
        problem = "there is no font on this machine, and boxes stand for characters";
        return nullptr;
    }
    std::unique_ptr<Font> font = openFile(file, pixels);
    if (font == nullptr)
        problem = "the font " + file.path + " cannot be used, and boxes stand for characters";
    else if (file.family != family)
        problem = "there is no font " + family + " on this machine, and " + file.family + " is taken instead";
    return font;
}

}   // namespace standin
