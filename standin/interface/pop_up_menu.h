// A pop-up menu while it is open: where its items lie, and how they look.
#pragma once

#include "standin/drawing/port.h"
#include "standin/interface/menu_bytes.h"

#include <vector>

namespace standin
{

// Where the items of a menu lie, one below the other, in pixels from the menu's top left corner.
class MenuLayout
{
public:
    // In the font of the current port.
    explicit MenuLayout(MenuRef menu);

    UInt16 count() const { return static_cast<UInt16>(items_.size()); }
    const MenuItem &item(UInt16 number) const { return items_[number - 1u]; }
    int topOf(UInt16 number) const { return tops_[number - 1u]; }   // of the one after the last too
    int baseLine() const { return baseLine_; }                      // from an item's top
    int width() const { return width_; }
    int height() const { return tops_.back() + 1; }
    UInt16 itemAt(int v) const;   // 0 if there is none

private:
    std::vector<MenuItem> items_;
    std::vector<int> tops_;
    int baseLine_ = 0;
    int width_ = 0;
};

// The part of the screen for the menu: with the top left corner of an item at a point, as far as that is on the screen.
// `scrolled` is set to how many pixels of the menu lie above that part.
Rect placeOnScreen(const MenuLayout &layout, Point where, UInt16 item, const Rect &screen, int &scrolled);

// Draws the menu into the current port.
void drawMenu(const MenuLayout &layout, int scrolled, UInt16 highlighted);

}   // namespace standin
