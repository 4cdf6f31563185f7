#include "standin/interface/text_lines.h"

#include "standin/interface/strings.h"

#include "platform/drawing.h"

#include <vector>

namespace standin
{

namespace
{

constexpr std::size_t longestLine = 255;

bool isLineEnd(char character)
{
    return character == '\r' || character == '\n';
}

int widthOfCharacter(char character)
{
    return CharWidth(static_cast<UInt8>(character));
}

// How many bytes from `begin` make one line. The spaces at which it is broken belong to it.
std::size_t lineLength(const std::string &text, std::size_t begin, int width)
{
    std::size_t afterWord = 0;
    int reached = 0;
    for (std::size_t length = 0; begin + length < text.size(); ++length)
    {
        const char character = text[begin + length];
        if (isLineEnd(character))
            return length;
        reached += widthOfCharacter(character);
        if (character == ' ')
            afterWord = length + 1;
        else if ((reached > width || length == longestLine) && length > 0)
            return afterWord > 0 ? afterWord : length;
        if (length == longestLine)
            return length;
    }
    return text.size() - begin;
}

// Broken at line ends, and where the text is wider than so many pixels between words; within a word only if that alone is too wide.
std::vector<std::string> linesOf(const std::string &text, int width)
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t length = lineLength(text, begin, width);
        lines.push_back(text.substr(begin, length));
        begin += length;
        if (begin < text.size() && isLineEnd(text[begin]))
            ++begin;
    }
    return lines;
}

}   // namespace

void drawLines(const std::string &text, const Rect &box)
{
    FontInfo font;
    GetFontInfo(&font);
    const int height = font.ascent + font.descent + font.leading;
    int baseLine = box.top + font.ascent;
    for (const std::string &line : linesOf(text, box.right - box.left))
    {
        if (baseLine > box.bottom + font.ascent)   // nothing of it would be in the rectangle
            break;
        MoveTo(box.left, static_cast<SInt16>(baseLine));
        DrawString(PascalText(line).bytes());
        baseLine += height;
    }
}

void drawLineAt(const std::string &text, const Rect &box, int left)
{
    FontInfo font;
    GetFontInfo(&font);
    const int baseLine = (box.top + box.bottom + font.ascent - font.descent) / 2;
    MoveTo(static_cast<SInt16>(left), static_cast<SInt16>(baseLine));
    DrawString(PascalText(text).bytes());
}

int widthOfText(const std::string &text)
{
    return StringWidth(PascalText(text).bytes());
}

}   // namespace standin
