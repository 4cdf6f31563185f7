// Dialogs come and go, and their items are asked about.
#include "standin/interface/dialogs.h"

#include "platform/dialogs.h"
#include "standin/interface/strings.h"
#include "standin/interface/window_list.h"
#include "standin/resources/resources.h"

#include "platform/drawing.h"
#include "platform/memory.h"
#include "platform/resources.h"
#include "platform/windows.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace standin;

namespace
{

// Kinds of windows without a title bar: 1 to 3 of old, and plain, shadowed, modal ones and alerts under their newer numbers.
bool hasTitleBar(SInt16 procID)
{
    constexpr SInt16 without[] = {1, 2, 3, 1040, 1041, 1042, 1044};
    return std::find(std::begin(without), std::end(without), procID) == std::end(without);
}

Handle newText(const std::string &text)
{
    Handle handle = NewHandle(0);
    if (handle != nullptr)
        setText(handle, text);
    return handle;
}

bool makeItems(OpaqueDialogPtr &dialog, const std::vector<ItemDescription> &descriptions)
{
    for (const ItemDescription &description : descriptions)
    {
        DialogItem item{description.type, description.box, nullptr, nullptr, description.resourceID};
        if (isControl(item) || isText(item))
            item.handle = item.ownText = newText(description.text);
        dialog.items.push_back(item);
        if ((isControl(item) || isText(item)) && item.handle == nullptr)
            return false;
        if (dialog.focus == 0 && kindOf(item.type) == kEditTextDialogItem)
            dialog.focus = static_cast<DialogItemIndex>(dialog.items.size());
    }
    return true;
}

void disposeOf(OpaqueDialogPtr *dialog)
{
    for (const DialogItem &item : dialog->items)
        DisposeHandle(item.ownText);
    delete dialog;
}

// A record out of a resource, in the machine's byte order; what the resource does not have stays 0. False if it has not even `needed` bytes.
template <typename Record>
bool readRecord(ResType type, SInt16 id, std::size_t needed, Record &record)
{
    Handle handle = GetResource(type, id);
    const Size size = handle != nullptr && *handle != nullptr ? GetHandleSize(handle) : 0;
    if (size < static_cast<Size>(needed))
        return false;
    record = {};
    std::memcpy(&record, *handle, std::min(static_cast<std::size_t>(size), sizeof record));
    return true;
}

bool readTemplate(SInt16 id, DialogTemplate &found)
{
    constexpr std::size_t titlePlace = offsetof(DialogTemplate, title);
    return readRecord(fourCharCode("DLOG"), id, titlePlace + 1, found) &&
           readRecord(fourCharCode("DLOG"), id, titlePlace + 1u + found.title[0], found);
}

DialogRef shown(DialogRef dialog, bool isVisible)
{
    if (dialog != nullptr && isVisible)
        ShowWindow(dialog->window);
    return dialog;
}

}   // namespace

namespace standin
{

DialogRef newDialog(const DialogSetting &setting, const std::string &itemBytes)
{
    std::vector<ItemDescription> descriptions;
    if (!readItemList(itemBytes, descriptions))
        return nullptr;
    auto *dialog = new (std::nothrow) OpaqueDialogPtr;
    if (dialog == nullptr)
        return nullptr;
    dialog->sign = setting.sign;
    if (makeItems(*dialog, descriptions))
        dialog->window = newWindow(setting.window);
    if (dialog->window == nullptr)
        return disposeOf(dialog), nullptr;
    dialog->window->dialog = dialog;
    dialog->window->refCon = setting.refCon;
    return dialog;
}

bool isDialog(DialogRef dialog)
{
    const std::vector<WindowRef> &windows = windowList();
    return dialog != nullptr && std::any_of(windows.begin(), windows.end(), [&](WindowRef window) { return window->dialog == dialog; });
}

DialogItem *itemOf(DialogRef dialog, DialogItemIndex item)
{
    if (!isDialog(dialog) || item < 1 || static_cast<std::size_t>(item) > dialog->items.size())
        return nullptr;
    return &dialog->items[static_cast<std::size_t>(item - 1)];
}

bool isControl(const DialogItem &item)
{
    const DialogItemType kind = kindOf(item.type);
    return kind == kButtonDialogItem || kind == kCheckBoxDialogItem || kind == kRadioButtonDialogItem;
}

bool isText(const DialogItem &item)
{
    const DialogItemType kind = kindOf(item.type);
    return kind == kStaticTextDialogItem || kind == kEditTextDialogItem;
}

std::string textOfItem(const DialogItem &item)
{
    if (item.handle == nullptr || !(isControl(item) || isText(item)))
        return {};
    return {*item.handle, static_cast<std::size_t>(GetHandleSize(item.handle))};
}

void setText(Handle handle, const std::string &text)
{
    SetHandleSize(handle, static_cast<Size>(text.size()));
    if (MemError() == noErr)
        BlockMoveData(text.data(), *handle, static_cast<Size>(text.size()));
}

}   // namespace standin

// `behind` does not count either: a dialog that is shown comes to the front. The template is left as it is, loaded, with what was changed in it.
DialogRef GetNewDialog(SInt16 dialogID, void *, WindowRef)
{
    DialogTemplate from;
    std::string items;
    if (!readTemplate(dialogID, from) || !copyResource(fourCharCode("DITL"), from.itemsID, items))
        return nullptr;
    const WindowSetting window{from.boundsRect, textOf(from.title), hasTitleBar(from.procID), from.goAwayFlag != 0};
    return shown(newDialog({window, from.refCon}, items), from.visible != 0);
}

DialogRef NewDialog(void *, const Rect *bounds, ConstStr255Param title, Boolean visible, SInt16 procID, WindowRef, Boolean goAway,
                    SInt32 refCon, Handle items)
{
    if (bounds == nullptr || items == nullptr)
        return nullptr;
    const std::string bytes(*items, static_cast<std::size_t>(GetHandleSize(items)));
    return shown(newDialog({{*bounds, textOf(title), hasTitleBar(procID), goAway != 0}, refCon}, bytes), visible != 0);
}

void DisposeDialog(DialogRef dialog)
{
    if (!isDialog(dialog))
        return;
    DisposeWindow(dialog->window);
    disposeOf(dialog);
}

WindowRef GetDialogWindow(DialogRef dialog)
{
    return isDialog(dialog) ? dialog->window : nullptr;
}

DialogRef GetDialogFromWindow(WindowRef window)
{
    return isWindow(window) ? window->dialog : nullptr;
}

CGrafPtr GetDialogPort(DialogRef dialog)
{
    return isDialog(dialog) ? dialog->window->port : nullptr;
}

DialogItemIndex CountDITL(DialogRef dialog)
{
    return isDialog(dialog) ? static_cast<DialogItemIndex>(dialog->items.size()) : DialogItemIndex{0};
}

// Where there is no such item, the outputs are left as they were. Any of them may be null.
void GetDialogItem(DialogRef dialog, DialogItemIndex itemNumber, DialogItemType *itemType, Handle *item, Rect *box)
{
    const DialogItem *found = itemOf(dialog, itemNumber);
    if (found == nullptr)
        return;
    if (itemType != nullptr)
        *itemType = found->type;
    if (item != nullptr)
        *item = found->handle;
    if (box != nullptr)
        *box = found->box;
}

// A handle that is given stays the caller's.
void SetDialogItem(DialogRef dialog, DialogItemIndex itemNumber, DialogItemType itemType, Handle item, const Rect *box)
{
    DialogItem *found = itemOf(dialog, itemNumber);
    if (found == nullptr)
        return;
    found->type = itemType;
    found->handle = item;
    if (box != nullptr)
        found->box = *box;
}

DialogItemIndex FindDialogItem(DialogRef dialog, Point where)
{
    for (DialogItemIndex item = 0; item < CountDITL(dialog); ++item)
        if (PtInRect(where, &dialog->items[static_cast<std::size_t>(item)].box))
            return item;
    return -1;
}
