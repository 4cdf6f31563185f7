// The bytes of a "MENU" resource, big-endian as in the file, where the menu's own handle holds them.
//
// A menu is its resource: marks and whether items can be chosen are changed in these bytes, so that ReleaseResource works on a menu as on any
// other resource. They are foreign input; every walk over them ends where they do, and what does not lie in them whole is not there.
#pragma once

#include "platform/platform.h"

#include <optional>
#include <string>

namespace standin
{

struct MenuItem
{
    std::string text;   // in the system's encoding
    UInt8 mark = 0;
    bool isEnabled = true;
    bool isSeparator = false;   // "-": a line, which cannot be chosen
};

// Of the menu as a whole.
MenuID menuID(MenuRef menu);   // 0 if it has none
UInt16 itemCount(MenuRef menu);
bool wholeMenuIsEnabled(MenuRef menu);

// Items count from 1. Empty if there is no such item.
std::optional<MenuItem> itemOf(MenuRef menu, UInt16 item);

void setMark(MenuRef menu, UInt16 item, UInt8 mark);

// Item 0 is the whole menu; items after the 31st can always be chosen, unless the whole menu cannot.
void setEnabled(MenuRef menu, UInt16 item, bool isEnabled);

}   // namespace standin
