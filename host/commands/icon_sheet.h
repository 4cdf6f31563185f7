// A sheet with all icons of the current resource file.
//
// Each cell has one family or one list of small icons. A family stands with its large members above its small ones, 1, 4 and 8 bits from left to
// right; a member whose bytes are too few for an icon is an empty gray frame. Beneath are ID and name.
#pragma once

#include "host/icon_resources.h"
#include "host/plugin.h"

namespace host
{

class IconSheet
{
public:
    // Measures text, in the font of the current port.
    IconSheet(const Plugin &plugin, const IconResources &icons, int columns);

    int width() const;
    int height() const;
    void draw() const;   // into the current port, from its top left corner on

private:
    int rowHeight(std::size_t row) const;
    int contentHeight(std::size_t cell) const;
    std::size_t cellCount() const { return icons_.families.size() + icons_.lists.size(); }
    void drawCell(std::size_t cell, int left, int top, int textTop) const;
    void drawText(const std::string &text, int left, int baseLine) const;

    const Plugin &plugin_;
    const IconResources &icons_;
    std::size_t columns_;
    int ascent_, lineHeight_;
};

}   // namespace host
