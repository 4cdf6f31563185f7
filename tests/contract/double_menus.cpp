#include "tests/contract/platform_double.h"

#include <algorithm>

std::string MenusDouble::describe(MenuRef menu)
{
    if (menu == nullptr)
        return "-";
    return "menu " + decimal(menu->id) + (menu->isReleased ? ", released" : "");
}

OpaqueMenuRef *MenusDouble::find(SInt16 id)
{
    for (OpaqueMenuRef &each : menus)
        if (each.id == id && !each.isReleased)
            return &each;
    return nullptr;
}

OpaqueMenuRef *MenusDouble::find(Handle handle)
{
    for (OpaqueMenuRef &each : menus)
        if (reinterpret_cast<Handle>(&each) == handle)
            return &each;
    return nullptr;
}

bool MenusDouble::isInserted(SInt16 id) const
{
    return std::find(inserted.begin(), inserted.end(), id) != inserted.end();
}

// Gives the menu that is in memory, and otherwise makes one as its resource has it.
MenuRef GetMenu(SInt16 resID)
{
    PlatformDouble &platform = PlatformDouble::current();
    MenusDouble &menus = platform.menus;
    if (platform.record("GetMenu", {decimal(resID)}) != noErr)
        return nullptr;
    if (OpaqueMenuRef *loaded = menus.find(resID))
        return loaded;
    const auto resource = menus.resources.find(resID);
    return resource == menus.resources.end() ? nullptr : &menus.menus.emplace_back(resource->second);
}

void InsertMenu(MenuRef menu, MenuID beforeID)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("InsertMenu", {MenusDouble::describe(menu), decimal(beforeID)});
    if (menu != nullptr && !menu->isReleased && !platform.menus.isInserted(menu->id))
        platform.menus.inserted.push_back(menu->id);
}

void DeleteMenu(MenuID menuID)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("DeleteMenu", {decimal(menuID)});
    std::erase(platform.menus.inserted, menuID);
}

UInt16 CountMenuItems(MenuRef menu)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CountMenuItems", {MenusDouble::describe(menu)});
    std::deque<UInt16> &prepared = platform.menus.nextCounts;
    if (prepared.empty())
        return menu == nullptr ? UInt16{0} : menu->itemCount;
    const UInt16 count = prepared.front();
    prepared.pop_front();
    return count;
}

void CheckMenuItem(MenuRef menu, MenuItemIndex item, Boolean checked)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("CheckMenuItem", {MenusDouble::describe(menu), decimal(item), decimal(checked)});
    if (menu == nullptr)
        return;
    if (checked)
        menu->marked.insert(item);
    else
        menu->marked.erase(item);
}

SInt32 PopUpMenuSelect(MenuRef menu, SInt16 top, SInt16 left, MenuItemIndex popUpItem)
{
    PlatformDouble &platform = PlatformDouble::current();
    MenusDouble &menus = platform.menus;
    platform.note("PopUpMenuSelect", {MenusDouble::describe(menu), decimal(top), decimal(left), decimal(popUpItem)});
    if (menu == nullptr)
        return 0;
    const bool isInserted = menus.isInserted(menu->id);
    menus.shown.push_back({*menu, isInserted, platform.drawing.current->name});
    if (!isInserted || menus.nextChoices.empty())
        return 0;
    const SInt32 choice = menus.nextChoices.front();
    menus.nextChoices.pop_front();
    return choice;
}
