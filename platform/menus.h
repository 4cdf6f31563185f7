// The Menu Manager, as far as pop-up menus need it.

#pragma once

#include "platform/types.h"

// Given instead of the menu before which one is inserted: it is to pop up or to hang below another.
constexpr MenuID hierMenu = -1;

// Marks, in the system's encoding
constexpr UInt8 noMark = 0x00;
constexpr UInt8 checkMark = 0x12;

#pragma GCC visibility push(default)
extern "C"
{

MenuRef GetMenu(SInt16 resID);
void InsertMenu(MenuRef menu, MenuID beforeID);
void DeleteMenu(MenuID menuID);
UInt16 CountMenuItems(MenuRef menu);
void CheckMenuItem(MenuRef menu, MenuItemIndex item, Boolean checked);
MenuRef GetMenuHandle(MenuID menuID);   // of a menu that is inserted; otherwise null
MenuID GetMenuID(MenuRef menu);
void GetMenuItemText(MenuRef menu, MenuItemIndex item, Str255 text);
void SetItemMark(MenuRef menu, MenuItemIndex item, SInt16 mark);
void GetItemMark(MenuRef menu, MenuItemIndex item, SInt16 *mark);

// Item 0 is the menu as a whole.
void EnableMenuItem(MenuRef menu, MenuItemIndex item);
void DisableMenuItem(MenuRef menu, MenuItemIndex item);
Boolean IsMenuItemEnabled(MenuRef menu, MenuItemIndex item);

// The menu's ID in the high half of the result and the chosen item in the low half; 0 when nothing was chosen.
SInt32 PopUpMenuSelect(MenuRef menu, SInt16 top, SInt16 left, MenuItemIndex popUpItem);
}
#pragma GCC visibility pop
