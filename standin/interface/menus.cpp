// The Menu Manager, as far as pop-up menus need it.
#include "platform/menus.h"

#include "standin/interface/menu_bytes.h"
#include "standin/interface/strings.h"

#include "platform/resources.h"

#include <algorithm>
#include <vector>

using namespace standin;

namespace
{

struct Inserted
{
    MenuID id;   // as it was then: the menu itself may have been released since
    MenuRef menu;
};

std::vector<Inserted> &insertedMenus()
{
    static std::vector<Inserted> menus;
    return menus;
}

}   // namespace

// The loaded resource itself: the same menu again, with its marks, as long as it is loaded. Null if there is none.
MenuRef GetMenu(SInt16 resID)
{
    return reinterpret_cast<MenuRef>(GetResource(fourCharCode("MENU"), resID));
}

// There is no menu bar, so all menus are those that pop up. One whose ID is inserted already is not inserted.
void InsertMenu(MenuRef menu, MenuID)
{
    const MenuID id = menuID(menu);
    if (id != 0 && GetMenuHandle(id) == nullptr)
        insertedMenus().push_back({id, menu});
}

void DeleteMenu(MenuID id)
{
    std::erase_if(insertedMenus(), [&](const Inserted &one) { return one.id == id; });
}

MenuRef GetMenuHandle(MenuID id)
{
    auto found = std::find_if(insertedMenus().begin(), insertedMenus().end(), [&](const Inserted &one) { return one.id == id; });
    return found != insertedMenus().end() ? found->menu : nullptr;
}

MenuID GetMenuID(MenuRef menu)
{
    return menuID(menu);
}

UInt16 CountMenuItems(MenuRef menu)
{
    return itemCount(menu);
}

void CheckMenuItem(MenuRef menu, MenuItemIndex item, Boolean checked)
{
    setMark(menu, item, checked ? checkMark : noMark);
}

// Empty if there is no such item.
void GetMenuItemText(MenuRef menu, MenuItemIndex item, Str255 text)
{
    PascalText(itemOf(menu, item).value_or(MenuItem{}).text).copyTo(text);
}

void SetItemMark(MenuRef menu, MenuItemIndex item, SInt16 mark)
{
    setMark(menu, item, static_cast<UInt8>(mark));
}

void GetItemMark(MenuRef menu, MenuItemIndex item, SInt16 *mark)
{
    if (mark != nullptr)
        *mark = itemOf(menu, item).value_or(MenuItem{}).mark;
}

void EnableMenuItem(MenuRef menu, MenuItemIndex item)
{
    setEnabled(menu, item, true);
}

void DisableMenuItem(MenuRef menu, MenuItemIndex item)
{
    setEnabled(menu, item, false);
}

// A separator is never.
Boolean IsMenuItemEnabled(MenuRef menu, MenuItemIndex item)
{
    return item == 0 ? wholeMenuIsEnabled(menu) : itemOf(menu, item).value_or(MenuItem{{}, 0, false, false}).isEnabled;
}
