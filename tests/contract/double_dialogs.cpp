#include "tests/contract/platform_double.h"

CGrafPtr GetDialogPort(DialogRef dialog)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetDialogPort", {dialog == nullptr ? "-" : dialog->port.name});
    return &dialog->port;
}

// Of an item that the dialog lacks nothing is written.
void GetDialogItem(DialogRef dialog, DialogItemIndex itemNumber, DialogItemType *itemType, Handle *item, Rect *box)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("GetDialogItem", {dialog == nullptr ? "-" : dialog->port.name, decimal(itemNumber), platform.pointer(itemType, "type"),
                                    platform.pointer(item, "item"), platform.pointer(box, "box")});
    const auto found = dialog->items.find(itemNumber);
    if (found == dialog->items.end())
        return;
    *itemType = 0x5A5A;
    *item = nullptr;
    *box = found->second;
}

// A text that is not given stays what it was.
void ParamText(ConstStr255Param text0, ConstStr255Param text1, ConstStr255Param text2, ConstStr255Param text3)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("ParamText", {quoted(text0), quoted(text1), quoted(text2), quoted(text3)});
    std::size_t index = 0;
    for (const ConstStr255Param text : {text0, text1, text2, text3})
    {
        if (text != nullptr)
            platform.dialogs.texts[index] = plainText(text);
        ++index;
    }
}

DialogItemIndex StopAlert(SInt16 alertID, ModalFilterUPP filter)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("StopAlert", {decimal(alertID), platform.pointer(filter, "filter")});
    platform.dialogs.alerts.push_back({alertID, platform.dialogs.texts});
    return platform.dialogs.closingItem;
}
