// A pop-up menu: opened in a window of its own, followed until an item is chosen or the menu is dismissed.
#include "standin/interface/pop_up_menu.h"

#include "platform/menus.h"
#include "standin/interface/event_queue.h"
#include "standin/interface/windows.h"

#include "platform/drawing.h"

#include <algorithm>

namespace standin
{

namespace
{

constexpr UInt8 escapeCharacter = 0x1B;
constexpr int scrollZone = 12;   // so near to an end that is not the menu's own, the mouse scrolls
constexpr int scrolledPixelsPerTick = 4;

class PopUp
{
public:
    PopUp(const MenuLayout &layout, Point where, UInt16 item);
    ~PopUp();
    PopUp(const PopUp &) = delete;
    PopUp &operator=(const PopUp &) = delete;

    UInt16 choice();   // 0 if nothing was chosen

private:
    void draw();
    void look();
    UInt16 itemAt(Point where) const;
    void follow(Point where);
    void scroll(int v, UInt32 ticks);
    bool wasDismissed() const;
    void awaitRelease();

    const MenuLayout &layout_;
    Screen &screen_;
    int scrolled_ = 0;
    Rect place_;
    GrafPtr port_;
    ScreenWindow window_ = 0;
    UInt16 highlighted_ = 0;
    UInt32 lastTicks_ = 0;
};

PopUp::PopUp(const MenuLayout &layout, Point where, UInt16 item)
    : layout_(layout), screen_(theScreen()), place_(placeOnScreen(layout, where, item, screen_.bounds(), scrolled_)),
      port_(newPort({0, 0, static_cast<SInt16>(place_.bottom - place_.top), static_cast<SInt16>(place_.right - place_.left)},
                    {place_.top, place_.left}))
{
    if (port_ == nullptr)
        return;
    window_ = screen_.openWindow({place_, "", false, true});
    draw();
    screen_.showWindow(window_);
    lastTicks_ = screen_.ticks();
}

PopUp::~PopUp()
{
    if (window_ != 0)
        screen_.closeWindow(window_);
    if (port_ != nullptr)
        DisposePort(port_);
}

void PopUp::draw()
{
    PortSetting here(port_);
    drawMenu(layout_, scrolled_, highlighted_);
}

void PopUp::look()
{
    presentPort(screen_, window_, *port_);
    pump();
}

UInt16 PopUp::itemAt(Point where) const
{
    if (!PtInRect(where, &place_))
        return 0;
    const UInt16 item = layout_.itemAt(where.v - place_.top + scrolled_);
    return item != 0 && layout_.item(item).isEnabled ? item : UInt16{0};
}

// Where more of the menu lies beyond the edge that the mouse is near.
void PopUp::scroll(int v, UInt32 ticks)
{
    const int hidden = layout_.height() - (place_.bottom - place_.top);
    const int step = static_cast<int>(std::min<UInt32>(ticks, 60)) * scrolledPixelsPerTick;
    if (v < place_.top + scrollZone)
        scrolled_ = std::max(0, scrolled_ - step);
    else if (v >= place_.bottom - scrollZone)
        scrolled_ = std::min(hidden, scrolled_ + step);
}

void PopUp::follow(Point where)
{
    const int scrolledBefore = scrolled_;
    const UInt32 now = screen_.ticks();
    if (PtInRect(where, &place_))
        scroll(where.v, now - lastTicks_);
    lastTicks_ = now;
    const UInt16 item = itemAt(where);
    if (item == highlighted_ && scrolled_ == scrolledBefore)
        return;
    highlighted_ = item;
    draw();
}

bool PopUp::wasDismissed() const
{
    bool escaped = false;
    for (EventRecord key; takeEvent(keyDownMask, key);)
        escaped = escaped || (key.message & charCodeMask) == escapeCharacter;
    return escaped || quitIsWaiting();
}

// A menu that was dismissed does not open again with the same press.
void PopUp::awaitRelease()
{
    screen_.hideWindow(window_);
    while (mouseNow().isDown && !quitIsWaiting())
        pump();
    forgetEvents(mUpMask, 0);
}

// Whoever still holds the button chooses with its release; otherwise with that of the next press.
UInt16 PopUp::choice()
{
    if (window_ == 0)
        return 0;
    forgetEvents(mDownMask | mUpMask, 0);
    for (bool isPressed = mouseNow().isDown;;)
    {
        look();
        if (wasDismissed())
            return awaitRelease(), UInt16{0};
        follow(mouseNow().where);
        for (EventRecord event; takeEvent(mDownMask | mUpMask, event);)
        {
            if (event.what == mouseUp && isPressed)
                return itemAt(event.where);
            isPressed = event.what == mouseDown;
        }
    }
}

// In the font of a port as new as the menu's own.
MenuLayout layoutOf(MenuRef menu)
{
    GrafPtr port = newPort({0, 0, 1, 1}, {});
    PortSetting here(port);
    MenuLayout layout(menu);
    DisposePort(port);
    return layout;
}

}   // namespace

}   // namespace standin

using namespace standin;

// Result: the menu's ID in the high half and the item in the low one; 0 if nothing was chosen or there is nothing to choose from.
SInt32 PopUpMenuSelect(MenuRef menu, SInt16 top, SInt16 left, MenuItemIndex popUpItem)
{
    const MenuLayout layout = layoutOf(menu);
    if (layout.count() == 0 || menuID(menu) == 0)
        return 0;
    pump();
    const UInt16 item = std::clamp<UInt16>(popUpItem, 1, layout.count());
    const UInt16 chosen = PopUp(layout, {top, left}, item).choice();
    return chosen != 0 ? static_cast<SInt32>(static_cast<UInt32>(static_cast<UInt16>(menuID(menu))) << 16 | chosen) : 0;
}
