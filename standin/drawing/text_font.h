// The one font that every port draws and measures text in.
//
// It is DejaVu Sans at 12 pixels, or the family that ZERB_FONT names. It is opened when it is first needed and never changes, so widths may be
// asked for on any thread.
#pragma once

#include "standin/drawing/module/drawing_module.h"

#include "platform/drawing.h"

#include <array>
#include <mutex>
#include <string_view>
#include <unordered_map>

namespace standin
{

class CodeTable;

class TextFont
{
public:
    // What stands at the front of a text, how many bytes of it that takes, and how it looks.
    struct Character
    {
        std::size_t length;
        std::shared_ptr<const Glyph> glyph;
    };

    TextFont(const TextFont &) = delete;
    TextFont &operator=(const TextFont &) = delete;
    static TextFont &shared();

    Character firstCharacter(std::string_view text);   // of a text that is not empty
    const Glyph &glyphOfByte(std::uint8_t byte) const { return *bytes_[byte]; }
    int widthOf(std::string_view text);
    const FontInfo &info() const { return info_; }
    const std::string &problem() const { return problem_; }   // one sentence without a full stop, or empty

private:
    TextFont();
    void open();
    void fillBytes();
    Glyph glyphOf(char16_t character);
    std::shared_ptr<const Glyph> glyphOfPair(char16_t character);

    const CodeTable &table_;
    std::unique_ptr<Font> font_;   // null: boxes
    std::string problem_;
    FontInfo info_{};
    std::array<std::shared_ptr<const Glyph>, 256> bytes_;
    std::array<int, 256> advances_{};   // of the same

    std::mutex pairsMutex_;   // guards the font too, once `bytes_` is full
    std::unordered_map<char16_t, std::shared_ptr<const Glyph>> pairs_;
};

}   // namespace standin
