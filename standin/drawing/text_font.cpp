#include "standin/drawing/text_font.h"

#include "standin/drawing/loaded_module.h"
#include "standin/screen.h"
#include "standin/text/encodings.h"
#include "standin/text/system_encoding.h"

#include <algorithm>
#include <cstdlib>

namespace standin
{

namespace
{

constexpr int fontPixels = 12;
constexpr std::size_t mostPairs = 256;   // glyphs of two-byte characters that are kept

// Where there is no font
constexpr int boxAdvance = 6, boxWidth = 5, boxHeight = 9;
const FontInfo boxInfo = {10, 2, boxAdvance, 1};

std::string wantedFamily()
{
    const char *family = std::getenv("ZERB_FONT");
    return family != nullptr && *family != '\0' ? family : "DejaVu Sans";
}

bool isControl(char16_t character)
{
    return character < 0x20 || character == 0x7F;
}

bool isSpace(char16_t character)
{
    return character == 0x20 || character == 0xA0 || character == 0x3000;
}

Glyph box(char16_t character)
{
    if (isSpace(character))
        return {boxAdvance, 0, 0, 0, 0, {}};
    Glyph glyph{boxAdvance, 0, boxHeight, boxWidth, boxHeight, std::vector<std::uint8_t>(boxWidth * boxHeight, 0xFF)};
    for (int row = 1; row < boxHeight - 1; ++row)
        std::fill_n(glyph.coverage.begin() + row * boxWidth + 1, boxWidth - 2, std::uint8_t{0});
    return glyph;
}

}   // namespace

TextFont &TextFont::shared()
{
    static TextFont &font = *new TextFont;   // threads may measure until the process ends
    return font;
}

TextFont::TextFont() : table_(*codeTableOf(systemEncoding()))
{
    open();
    fillBytes();
}

void TextFont::open()
{
    info_ = boxInfo;
    const DrawingModule *module = loadedModule();
    if (module == nullptr)
    {
        problem_ = loadedModuleProblem();
        return;
    }
    font_ = module->openFont(wantedFamily(), fontPixels, problem_);
    if (font_ == nullptr)
        return;
    const FontMeasures measures = font_->measures();
    info_ = {static_cast<SInt16>(measures.ascent), static_cast<SInt16>(measures.descent), 0, static_cast<SInt16>(measures.leading)};
}

// A byte that is no character by itself, being half of one or none at all, looks as one that nobody knows.
void TextFont::fillBytes()
{
    for (unsigned byte = 0; byte < bytes_.size(); ++byte)
    {
        const char16_t character = table_.isLead(static_cast<std::uint8_t>(byte)) ? noCharacter : table_.characterOf(byte);
        bytes_[byte] = std::make_shared<const Glyph>(glyphOf(character));
        advances_[byte] = bytes_[byte]->advance;
        info_.widMax = static_cast<SInt16>(std::max<int>(info_.widMax, advances_[byte]));
    }
}

// Control characters are neither seen nor wide.
Glyph TextFont::glyphOf(char16_t character)
{
    if (isControl(character))
        return {};
    return font_ != nullptr ? font_->glyph(character) : box(character);
}

std::shared_ptr<const Glyph> TextFont::glyphOfPair(char16_t character)
{
    const std::lock_guard lock(pairsMutex_);
    const auto found = pairs_.find(character);
    if (found != pairs_.end())
        return found->second;
    if (pairs_.size() == mostPairs)
        pairs_.clear();
    return pairs_[character] = std::make_shared<const Glyph>(glyphOf(character));
}

// A first byte without a second one that could follow it stands alone.
TextFont::Character TextFont::firstCharacter(std::string_view text)
{
    const TakenCode taken = takeCode(table_, text);
    if (taken.length == 2)
        return {2, glyphOfPair(taken.character)};
    return {1, bytes_[static_cast<std::uint8_t>(text[0])]};
}

int TextFont::widthOf(std::string_view text)
{
    int width = 0;
    for (std::size_t place = 0; place < text.size();)
    {
        const auto byte = static_cast<std::uint8_t>(text[place]);
        const Character character = table_.isLead(byte) ? firstCharacter(text.substr(place)) : Character{1, nullptr};
        width += character.glyph != nullptr ? character.glyph->advance : advances_[byte];
        place += character.length;
    }
    return width;
}

const char *screenProblem()
{
    const std::string &problem = TextFont::shared().problem();
    return problem.empty() ? nullptr : problem.c_str();
}

}   // namespace standin
