// Text: measuring it, and drawing it along the pen's base line.
#include "standin/drawing/painting.h"
#include "standin/drawing/text_font.h"

namespace standin
{

namespace
{

std::string_view charactersOf(ConstStr255Param text)
{
    return {reinterpret_cast<const char *>(text + 1), text[0]};
}

Pixel mixed(Pixel ink, Pixel paper, unsigned coverage)
{
    Pixel mixture = blackPixel;
    for (int shift = 0; shift < 24; shift += 8)
    {
        const unsigned sum = (ink >> shift & 0xFF) * coverage + (paper >> shift & 0xFF) * (0xFF - coverage);
        mixture |= (sum + 127) / 0xFF << shift;
    }
    return mixture;
}

void drawGlyph(OpaqueGrafPtr &port, const Glyph &glyph)
{
    const Pixel ink = pixelOf(port.foreColor);
    const int left = port.pen.pnLoc.h + glyph.left, top = port.pen.pnLoc.v - glyph.top;
    const Rect visible = visiblePart(port, {top, left, top + glyph.height, left + glyph.width});
    for (int v = visible.top; v < visible.bottom; ++v)
    {
        const std::uint8_t *coverage = glyph.coverage.data() + static_cast<std::ptrdiff_t>(v - top) * glyph.width + (visible.left - left);
        Pixel *pixel = pixelAt(port, v, visible.left);
        for (int h = visible.left; h < visible.right; ++h, ++pixel, ++coverage)
            *pixel = mixed(ink, *pixel, *coverage);
    }
    addChanged(port, visible);
}

// The pen moves by exactly the character's width, whatever the clip hides.
void drawCharacter(OpaqueGrafPtr &port, const Glyph &glyph)
{
    drawGlyph(port, glyph);
    port.pen.pnLoc.h = static_cast<SInt16>(port.pen.pnLoc.h + glyph.advance);
}

const Glyph &glyphOf(SInt16 character)
{
    return TextFont::shared().glyphOfByte(static_cast<std::uint8_t>(character));
}

}   // namespace

}   // namespace standin

using namespace standin;

void DrawString(ConstStr255Param text)
{
    std::string_view rest = charactersOf(text);
    while (!rest.empty())
    {
        const TextFont::Character character = TextFont::shared().firstCharacter(rest);
        drawCharacter(currentPort(), *character.glyph);
        rest.remove_prefix(character.length);
    }
}

void DrawChar(SInt16 character)
{
    drawCharacter(currentPort(), glyphOf(character));
}

// Only the low byte of `character` is its code, so that a character that came as a negative `char` has its width too.
SInt16 CharWidth(SInt16 character)
{
    return static_cast<SInt16>(glyphOf(character).advance);
}

// Bytes behind the length are not part of the text.
SInt16 StringWidth(ConstStr255Param text)
{
    return static_cast<SInt16>(TextFont::shared().widthOf(charactersOf(text)));
}

void GetFontInfo(FontInfo *info)
{
    *info = TextFont::shared().info();
}
