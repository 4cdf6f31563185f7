// The double's menus: what there is of them, which are inserted, and what is chosen in them.

#pragma once

#include "platform/platform.h"

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

struct OpaqueMenuRef
{
    SInt16 id;
    UInt16 itemCount;
    std::set<MenuItemIndex> marked = {};
    bool isReleased = false;
};

// As it was when it popped up.
struct ShownMenu
{
    OpaqueMenuRef menu;
    bool isInserted;
    std::string port;   // the current one
};

struct MenusDouble
{
    static std::string describe(MenuRef menu);

    // The menu of this ID that is in memory, and the menu that lies there, released or not; or null.
    OpaqueMenuRef *find(SInt16 id);
    OpaqueMenuRef *find(Handle handle);

    bool isInserted(SInt16 id) const;

    std::map<SInt16, OpaqueMenuRef> resources;   // what GetMenu makes menus of, by resource ID
    std::deque<OpaqueMenuRef> menus;             // every one that was made; those that were released stay, to be told
    std::vector<SInt16> inserted;
    std::deque<UInt16> nextCounts;    // what the next calls of CountMenuItems answer, whatever the menu
    std::deque<SInt32> nextChoices;   // and those of PopUpMenuSelect; nothing is chosen after those, or in what is not inserted
    std::vector<ShownMenu> shown;
};
