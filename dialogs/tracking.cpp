// Following the mouse on icon buttons, and the menus that they open.

#include "dialogs/iconbuttons.h"

namespace
{

constexpr SInt16 usualDelay = 50;
constexpr SInt16 delayIsUsual = -1;
constexpr SInt16 nothingChecked = -1;
constexpr SInt16 noLabel = 0;

struct TrackedButton
{
    bool isSmall;
    Rect where;
    SInt16 resID;
    IconAlignmentType alignment;
    bool isPressed = false;   // how it is drawn
};

struct PopUp
{
    SInt16 menuID;   // 0 for none
    bool isInserted;
    SInt16 checkedItem;
    SInt16 delay;
    UInt32 start = 0;         // the tick of the press
    MenuRef menu = nullptr;   // once it was shown, if it still is there
};

void draw(TrackedButton &button, bool pressed)
{
    const IconTransformType transform = pressed ? kTransformSelected : kTransformNone;
    if (button.isSmall)
        MyDrawIconInSuite(button.resID, button.where, button.alignment, transform);
    else
        MyDrawIconButton(button.resID, button.where, button.alignment, transform, noLabel);
    button.isPressed = pressed;
}

// Draws the button anew if the mouse has come or gone, and says whether the mouse is over it.
bool followMouse(TrackedButton &button)
{
    Point mouse;
    GetMouse(&mouse);
    const bool isInside = PtInRect(mouse, &button.where) != 0;
    if (isInside != button.isPressed)
        draw(button, isInside);
    return isInside;
}

// A negative delay is a huge number of ticks, on purpose: the menu then never opens.
bool isDue(const PopUp &popUp)
{
    const UInt32 elapsed = TickCount() - popUp.start;
    return elapsed > static_cast<UInt32>(popUp.delay) && popUp.menuID != 0;
}

// The item that opens at the button, with its mark.
MenuItemIndex markItem(const PopUp &popUp)
{
    if (popUp.checkedItem == nothingChecked)
        return CountMenuItems(popUp.menu);
    const MenuItemIndex item = static_cast<MenuItemIndex>(popUp.checkedItem);
    CheckMenuItem(popUp.menu, item, true);
    return item;
}

// Undoes what was done for the time that the menu was open.
void putAway(PopUp &popUp)
{
    if (popUp.isInserted)
        return;
    if (popUp.checkedItem != nothingChecked)
        CheckMenuItem(popUp.menu, static_cast<MenuItemIndex>(popUp.checkedItem), false);
    DeleteMenu(popUp.menuID);
    ReleaseResource(reinterpret_cast<Handle>(popUp.menu));
    popUp.menu = nullptr;
}

// Gives the number of the chosen item, or 0.
SInt16 choose(PopUp &popUp, const Rect &where)
{
    popUp.menu = GetMenu(popUp.menuID);
    if (!popUp.isInserted)
        InsertMenu(popUp.menu, hierMenu);
    const MenuItemIndex itemAtAnchor = markItem(popUp);
    Point anchor = {where.top, where.right};
    LocalToGlobal(&anchor);
    const UInt32 choice = static_cast<UInt32>(PopUpMenuSelect(popUp.menu, anchor.v, anchor.h, itemAtAnchor));
    putAway(popUp);
    return choice >> 16 == 0 ? SInt16{0} : static_cast<SInt16>(choice & 0xFFFF);
}

// After a menu the mouse is asked for once more, as ever: it was released there, and so this ends, with the button drawn
// as pressed wherever the mouse is.
SInt16 track(TrackedButton &button, PopUp *popUp)
{
    SInt16 result = 1;
    draw(button, true);
    if (popUp)
        popUp->start = TickCount();
    while (StillDown())
    {
        if (followMouse(button) && popUp && isDue(*popUp))
            result = choose(*popUp, button.where);
    }
    if (!button.isPressed)
        return 0;
    draw(button, false);
    return result;
}

SInt16 trackItem(DialogRef dialog, SInt16 item, TrackedButton &button, PopUp *popUp)
{
    GrafPtr savedPort;
    GetPort(&savedPort);
    SetPort(GetDialogPort(dialog));
    DialogItemType type;
    Handle handle;
    GetDialogItem(dialog, item, &type, &handle, &button.where);
    const SInt16 result = track(button, popUp);
    SetPort(savedPort);
    return result;
}

void removeMarks(MenuRef menu)
{
    for (int item = 1; item <= CountMenuItems(menu); ++item)
        CheckMenuItem(menu, static_cast<MenuItemIndex>(item), false);
}

// A menu that was not shown, or was released after it, is fetched for this; it is the caller's only if it is inserted.
void clearMarksOf(const PopUp &popUp)
{
    const MenuRef menu = popUp.menu ? popUp.menu : GetMenu(popUp.menuID);
    if (!menu)
        return;
    removeMarks(menu);
    if (!popUp.isInserted)
        ReleaseResource(reinterpret_cast<Handle>(menu));
}

}   // namespace

SInt16 MyTrackIconButton(DialogRef dialog, SInt16 item, SInt16 resID, IconAlignmentType alignment)
{
    TrackedButton button = {false, {}, resID, alignment};
    return trackItem(dialog, item, button, nullptr);
}

SInt16 TrackRectIconButton(Rect where, SInt16 resID, IconAlignmentType alignment)
{
    TrackedButton button = {true, where, resID, alignment};
    return track(button, nullptr);
}

SInt16 TrackIconButtonWithPopUp(SInt16 resID, IconAlignmentType alignment, SInt16 menuID, Boolean menuInserted, SInt16 checkedItem,
                                Rect where)
{
    TrackedButton button = {true, where, resID, alignment};
    PopUp popUp = {menuID, menuInserted != 0, checkedItem, usualDelay};
    return track(button, &popUp);
}

SInt16 MyTrackIconButtonWithPopUp(DialogRef dialog, SInt16 item, SInt16 resID, IconAlignmentType alignment, SInt16 menuID,
                                  Boolean menuInserted, SInt16 checkedItem, Boolean clearMarks, SInt16 delay)
{
    TrackedButton button = {false, {}, resID, alignment};
    PopUp popUp = {menuID, menuInserted != 0, checkedItem, delay == delayIsUsual ? usualDelay : delay};
    const SInt16 result = trackItem(dialog, item, button, &popUp);
    if (menuID != 0 && clearMarks)
        clearMarksOf(popUp);
    return result;
}
