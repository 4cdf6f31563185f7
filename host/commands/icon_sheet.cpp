#include "host/commands/icon_sheet.h"

#include "host/text.h"

#include <algorithm>
#include <cstring>

namespace host
{

namespace
{

constexpr int margin = 6, gap = 4, largeSide = 32, smallSide = 16, depths = 3;
constexpr int contentWidth = depths * largeSide + (depths - 1) * gap;
constexpr int cellWidth = contentWidth + 2 * margin;
constexpr int familyHeight = largeSide + gap + smallSide;
constexpr int smallStep = smallSide + 2;
constexpr long smallIconsInARow = contentWidth / smallStep;
constexpr RGBColor frameColor = {0xC0C0, 0xC0C0, 0xC0C0}, textColor = {0, 0, 0};

Rect squareAt(int left, int top, int side)
{
    return {static_cast<SInt16>(top), static_cast<SInt16>(left), static_cast<SInt16>(top + side), static_cast<SInt16>(left + side)};
}

void drawMember(SInt16 id, const IconMember &member, const Rect &place)
{
    IconSuiteRef suite = nullptr;
    GetIconSuite(&suite, id, member.type->selector);
    if (suite != nullptr)
    {
        PlotIconSuite(&place, kAlignNone, kTransformNone, suite);
        DisposeIconSuite(suite, true);
        return;
    }
    RGBForeColor(&frameColor);
    FrameRect(&place);
    RGBForeColor(&textColor);
}

void drawFamily(const IconFamily &family, int left, int top)
{
    for (const IconMember &member : family.members)
    {
        const int column = static_cast<int>(member.type - iconMemberTypes) % depths;
        const int x = left + column * (largeSide + gap);
        if (member.type->side == largeSide)
            drawMember(family.id, member, squareAt(x, top, largeSide));
        else
            drawMember(family.id, member, squareAt(x + (largeSide - smallSide) / 2, top + largeSide + gap, smallSide));
    }
}

// From the list's bytes as they lie in memory, the way the plug-in does it for one picture.
void drawList(const SmallIconList &list, int left, int top)
{
    Handle pictures = GetResource(smallIconListType, list.id);
    if (pictures == nullptr)
        return;
    HLock(pictures);
    GrafPtr port = nullptr;
    GetPort(&port);
    const long count = std::min(list.pictures, static_cast<long>(GetHandleSize(pictures)) / smallIconSize);
    for (long index = 0; index < count; ++index)
    {
        const Rect place = squareAt(left + static_cast<int>(index % smallIconsInARow) * smallStep,
                                    top + static_cast<int>(index / smallIconsInARow) * smallStep, smallSide);
        const BitMap bits = {*pictures + index * smallIconSize, 2, place};
        CopyBits(&bits, GetPortBitMapForCopyBits(port), &place, &place, srcCopy, nullptr);
    }
    HUnlock(pictures);
    ReleaseResource(pictures);
}

int listHeight(const SmallIconList &list)
{
    constexpr long mostRows = 0x7FFF;   // more than any sheet can hold
    return static_cast<int>(std::min((list.pictures + smallIconsInARow - 1) / smallIconsInARow, mostRows)) * smallStep;
}

}   // namespace

IconSheet::IconSheet(const Plugin &plugin, const IconResources &icons, int columns)
    : plugin_(plugin), icons_(icons),
      columns_(std::min(static_cast<std::size_t>(columns), std::max<std::size_t>(icons.families.size() + icons.lists.size(), 1)))
{
    FontInfo font = {};
    GetFontInfo(&font);
    ascent_ = font.ascent;
    lineHeight_ = font.ascent + font.descent;
}

int IconSheet::width() const
{
    return static_cast<int>(columns_) * cellWidth;
}

int IconSheet::height() const
{
    int height = 0;
    for (std::size_t cell = 0; cell < cellCount(); cell += columns_)
        height = std::min(height + rowHeight(cell / columns_), 0x10000);
    return height;
}

int IconSheet::contentHeight(std::size_t cell) const
{
    return cell < icons_.families.size() ? familyHeight : listHeight(icons_.lists[cell - icons_.families.size()]);
}

int IconSheet::rowHeight(std::size_t row) const
{
    int content = 0;
    for (std::size_t cell = row * columns_; cell < std::min((row + 1) * columns_, cellCount()); ++cell)
        content = std::max(content, contentHeight(cell));
    return margin + content + gap + 2 * lineHeight_ + margin;
}

void IconSheet::draw() const
{
    int top = 0;
    for (std::size_t row = 0; row * columns_ < cellCount(); ++row)
    {
        const int height = rowHeight(row), textTop = top + height - margin - 2 * lineHeight_;
        for (std::size_t cell = row * columns_; cell < std::min((row + 1) * columns_, cellCount()); ++cell)
            drawCell(cell, static_cast<int>(cell % columns_) * cellWidth + margin, top + margin, textTop);
        top += height;
    }
}

void IconSheet::drawCell(std::size_t cell, int left, int top, int textTop) const
{
    const bool isFamily = cell < icons_.families.size();
    const IconFamily *family = isFamily ? &icons_.families[cell] : nullptr;
    const SmallIconList *list = isFamily ? nullptr : &icons_.lists[cell - icons_.families.size()];
    if (isFamily)
        drawFamily(*family, left, top);
    else
        drawList(*list, left, top);
    const std::string title = isFamily ? std::to_string(family->id) : "SICN " + std::to_string(list->id);
    drawText(title, left, textTop + ascent_);
    drawText(isFamily ? family->name : list->name, left, textTop + lineHeight_ + ascent_);
}

// A text that is too wide for its cell is cut.
void IconSheet::drawText(const std::string &text, int left, int baseLine) const
{
    const std::string bytes = macRomanFromUtf8(text).value_or("");
    Str255 fitting = {};
    fitting[0] = static_cast<UInt8>(std::min<std::size_t>(bytes.size(), 255));
    std::memcpy(fitting + 1, bytes.data(), fitting[0]);
    plugin_.AdjustStrWidth(fitting, contentWidth);
    MoveTo(static_cast<SInt16>(left), static_cast<SInt16>(baseLine));
    DrawString(fitting);
}

}   // namespace host
