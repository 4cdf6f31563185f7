// How a pop-up menu looks.
#include "standin/interface/pop_up_menu.h"

#include "standin/interface/strings.h"

#include "platform/drawing.h"

#include <algorithm>
#include <limits>

namespace standin
{

namespace
{

constexpr int leftMargin = 18;   // where marks are
constexpr int rightMargin = 14;
constexpr int smallestRow = 16;
constexpr int separatorRow = 8;
constexpr int mostItemsShown = 2000;

constexpr RGBColor black = {0, 0, 0};
constexpr RGBColor white = {0xFFFF, 0xFFFF, 0xFFFF};
constexpr RGBColor grey = {0x9999, 0x9999, 0x9999};
constexpr RGBColor highlight = {0x3333, 0x5555, 0xAAAA};

SInt16 narrow(int value)
{
    return static_cast<SInt16>(std::clamp<int>(value, std::numeric_limits<SInt16>::min(), std::numeric_limits<SInt16>::max()));
}

// A check mark, since no font has one under its code.
void drawCheck(int left, int baseLine)
{
    PenSize(2, 1);
    MoveTo(narrow(left), narrow(baseLine - 4));
    Line(2, 3);
    Line(5, -7);
    PenSize(1, 1);
}

void drawMark(UInt8 mark, int left, int baseLine)
{
    if (mark == checkMark)
        return drawCheck(left + 5, baseLine);
    MoveTo(narrow(left + 5), narrow(baseLine));
    if (mark != noMark)
        DrawChar(mark);
}

void drawSeparator(const Rect &row)
{
    RGBForeColor(&grey);
    const SInt16 v = narrow((row.top + row.bottom) / 2);
    MoveTo(row.left, v);
    LineTo(narrow(row.right - 1), v);
}

void drawItem(const MenuItem &item, const Rect &row, int baseLine, bool isHighlighted)
{
    if (item.isSeparator)
        return drawSeparator(row);
    if (isHighlighted)
    {
        RGBForeColor(&highlight);
        PaintRect(&row);
    }
    RGBForeColor(isHighlighted ? &white : item.isEnabled ? &black : &grey);
    drawMark(item.mark, row.left, row.top + baseLine);
    MoveTo(narrow(row.left + leftMargin), narrow(row.top + baseLine));
    DrawString(PascalText(item.text).bytes());
}

}   // namespace

MenuLayout::MenuLayout(MenuRef menu)
{
    FontInfo font;
    GetFontInfo(&font);
    const int row = std::max(smallestRow, font.ascent + font.descent + font.leading + 2);
    baseLine_ = (row - font.ascent - font.descent) / 2 + font.ascent;
    tops_.push_back(1);
    for (UInt16 number = 1; number <= mostItemsShown; ++number)
    {
        std::optional<MenuItem> item = itemOf(menu, number);
        if (!item)
            break;
        width_ = std::max<int>(width_, StringWidth(PascalText(item->text).bytes()));
        tops_.push_back(tops_.back() + (item->isSeparator ? separatorRow : row));
        items_.push_back(std::move(*item));
    }
    width_ += leftMargin + rightMargin;
}

UInt16 MenuLayout::itemAt(int v) const
{
    auto after = std::upper_bound(tops_.begin(), tops_.end(), v);
    const auto number = static_cast<UInt16>(after - tops_.begin());
    return after != tops_.end() ? number : UInt16{0};
}

Rect placeOnScreen(const MenuLayout &layout, Point where, UInt16 item, const Rect &screen, int &scrolled)
{
    const int width = std::min<int>(layout.width(), screen.right - screen.left);
    const int height = std::min<int>(layout.height(), screen.bottom - screen.top);
    const int wantedTop = where.v - layout.topOf(item);
    const int top = std::clamp(wantedTop, int{screen.top}, screen.bottom - height);
    const int left = std::clamp<int>(where.h, screen.left, screen.right - width);
    scrolled = std::clamp(top - wantedTop, 0, layout.height() - height);
    return {narrow(top), narrow(left), narrow(top + height), narrow(left + width)};
}

void drawMenu(const MenuLayout &layout, int scrolled, UInt16 highlighted)
{
    Rect frame;
    GetPortBounds(&currentPort(), &frame);
    PenNormal();
    EraseRect(&frame);
    for (UInt16 number = 1; number <= layout.count(); ++number)
    {
        const int top = layout.topOf(number) - scrolled, bottom = layout.topOf(static_cast<UInt16>(number + 1)) - scrolled;
        const Rect row = {narrow(top), 1, narrow(bottom), narrow(frame.right - 1)};
        if (bottom > frame.top && top < frame.bottom)
            drawItem(layout.item(number), row, layout.baseLine(), number == highlighted);
    }
    RGBForeColor(&black);
    FrameRect(&frame);
}

}   // namespace standin
