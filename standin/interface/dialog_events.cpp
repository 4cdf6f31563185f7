// What a person does in a dialog: presses, keys, and the loop that waits for an answer.
#include "platform/dialogs.h"

#include "standin/interface/dialogs.h"
#include "standin/interface/event_queue.h"

#include "platform/drawing.h"
#include "platform/windows.h"

using namespace standin;

namespace
{

constexpr UInt8 returnCharacter = 0x0D, enterCharacter = 0x03, escapeCharacter = 0x1B;
constexpr UInt8 backspaceCharacter = 0x08, firstPrintable = 0x20, forwardDelete = 0x7F;
constexpr std::size_t longestText = 255;   // that typing makes

WindowRef windowOf(const EventRecord &event)
{
    WindowRef window = nullptr;
    if (event.what == updateEvt || event.what == activateEvt)
        window = reinterpret_cast<WindowRef>(event.message);
    else if (event.what == mouseDown)
        FindWindow(event.where, &window);
    else if (event.what == keyDown || event.what == mouseUp)
        window = FrontWindow();
    return window;
}

bool isEnabled(const DialogItem &item)
{
    return (item.type & kItemDisableBit) == 0;
}

DialogItemIndex enabledItem(DialogRef dialog, DialogItemIndex number)
{
    const DialogItem *item = itemOf(dialog, number);
    return item != nullptr && isEnabled(*item) ? number : DialogItemIndex{0};
}

Point localPoint(const OpaqueDialogPtr &dialog, Point where)
{
    PortSetting here(dialog.window->port);
    GlobalToLocal(&where);
    return where;
}

// Follows the mouse until it is released. Result: whether that was over the control.
bool trackControl(OpaqueDialogPtr &dialog, DialogItemIndex number)
{
    const Rect box = dialog.items[static_cast<std::size_t>(number - 1)].box;
    const auto isInside = [&](Point where) { return PtInRect(localPoint(dialog, where), &box) != 0; };
    bool isPressed = true;
    drawItem(dialog, number, isPressed);
    const Point release = placeOfRelease([&](Point where) {
        if (isInside(where) != isPressed)
            drawItem(dialog, number, isPressed = isInside(where));
    });
    drawItem(dialog, number, false);
    return isInside(release);
}

DialogItemIndex itemPressed(DialogRef dialog, const EventRecord &event)
{
    WindowRef window = nullptr;
    if (FindWindow(event.where, &window) != inContent)
        return 0;
    const auto number = static_cast<DialogItemIndex>(FindDialogItem(dialog, localPoint(*dialog, event.where)) + 1);
    const DialogItem *item = itemOf(dialog, number);
    if (item == nullptr || (isControl(*item) && !trackControl(*dialog, number)))
        return 0;
    if (kindOf(item->type) == kEditTextDialogItem)
        dialog->focus = number;
    return enabledItem(dialog, number);
}

// At its end, and away from there: there is no insertion point.
DialogItemIndex itemTyped(DialogRef dialog, UInt8 character)
{
    const DialogItem *item = itemOf(dialog, dialog->focus);
    if (item == nullptr)
        return 0;
    std::string text = textOfItem(*item);
    if (character == backspaceCharacter && !text.empty())
        text.pop_back();
    else if (character >= firstPrintable && character != forwardDelete && text.size() < longestText)
        text += static_cast<char>(character);
    else
        return 0;
    setText(item->handle, text);
    drawItem(*dialog, dialog->focus);
    return enabledItem(dialog, dialog->focus);
}

DialogItemIndex itemByKey(DialogRef dialog, const EventRecord &event)
{
    const auto character = static_cast<UInt8>(event.message & charCodeMask);
    if (character == returnCharacter || character == enterCharacter)
        return enabledItem(dialog, dialog->defaultItem);
    if (character == escapeCharacter)
        return enabledItem(dialog, dialog->cancelItem);
    return itemTyped(dialog, character);
}

void update(DialogRef dialog)
{
    BeginUpdate(dialog->window);
    DrawDialog(dialog);
    EndUpdate(dialog->window);
}

// The number of the item that the event hit, or 0.
DialogItemIndex itemHitBy(DialogRef dialog, const EventRecord &event)
{
    switch (event.what)
    {
    case updateEvt: update(dialog); return 0;
    case mouseDown: return itemPressed(dialog, event);
    case keyDown: return itemByKey(dialog, event);
    default: return 0;
    }
}

bool closes(DialogRef dialog, const EventRecord &event)
{
    WindowRef window = nullptr;
    return event.what == mouseDown && FindWindow(event.where, &window) == inGoAway && window == dialog->window &&
           TrackGoAway(window, event.where);
}

}   // namespace

Boolean IsDialogEvent(const EventRecord *event)
{
    return event != nullptr && GetDialogFromWindow(windowOf(*event)) != nullptr;
}

Boolean DialogSelect(const EventRecord *event, DialogRef *dialog, DialogItemIndex *itemHit)
{
    DialogRef found = event != nullptr ? GetDialogFromWindow(windowOf(*event)) : nullptr;
    const DialogItemIndex item = found != nullptr ? itemHitBy(found, *event) : DialogItemIndex{0};
    if (item == 0)
        return false;
    if (dialog != nullptr)
        *dialog = found;
    if (itemHit != nullptr)
        *itemHit = item;
    return true;
}

// The filter is not called. A click on the close box answers with the cancel item, if there is one, and else with 0.
void ModalDialog(ModalFilterUPP, DialogItemIndex *itemHit)
{
    constexpr UInt32 sleep = 60;
    DialogItemIndex item = 0;
    DialogRef dialog = GetDialogFromWindow(FrontWindow());
    EventRecord event;
    while (item == 0 && isDialog(dialog))
    {
        const bool any = WaitNextEvent(static_cast<EventMask>(everyEvent & ~highLevelEventMask), &event, sleep, nullptr);
        if (any && closes(dialog, event))
        {
            item = dialog->cancelItem;
            break;
        }
        if (any && GetDialogFromWindow(windowOf(event)) == dialog)
            item = itemHitBy(dialog, event);
        if (item == 0 && !any && quitIsWaiting())
            break;
    }
    if (itemHit != nullptr)
        *itemHit = item;
}
