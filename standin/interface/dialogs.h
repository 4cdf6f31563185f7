// Dialogs as the stand-in keeps them.
#pragma once

#include "standin/interface/item_list.h"
#include "standin/interface/windows.h"

#include <vector>

namespace standin
{

struct DialogItem
{
    DialogItemType type = 0;   // with kItemDisableBit
    Rect box{};
    Handle handle = nullptr;    // of a control or text: its text; of a user item: the procedure that draws it
    Handle ownText = nullptr;   // the handle that goes with the dialog, also after SetDialogItem has put another in its place
    SInt16 resourceID = 0;
};

enum class Sign
{
    none,
    stop,
    note,
    caution
};

}   // namespace standin

struct OpaqueDialogPtr
{
    WindowRef window = nullptr;
    std::vector<standin::DialogItem> items;
    DialogItemIndex defaultItem = kStdOkItemIndex;   // the answer by Return
    DialogItemIndex cancelItem = 0;                  // by Escape; 0 for none
    DialogItemIndex ringedItem = 0;                  // the button with a ring around it
    DialogItemIndex focus = 0;                       // the text that is typed into
    standin::Sign sign = standin::Sign::none;
};

namespace standin
{

struct DialogSetting
{
    WindowSetting window;
    SInt32 refCon = 0;
    Sign sign = Sign::none;
};

// Null if the items are damaged, the bounds none that a window could have, or memory is short. Not shown yet.
DialogRef newDialog(const DialogSetting &setting, const std::string &itemBytes);

bool isDialog(DialogRef dialog);                              // one that exists
DialogItem *itemOf(DialogRef dialog, DialogItemIndex item);   // null if there is none

bool isControl(const DialogItem &item);   // a button, a check box or a radio button
bool isText(const DialogItem &item);      // a static or an editable text
std::string textOfItem(const DialogItem &item);
void setText(Handle handle, const std::string &text);

// With the parameter texts in place of ^0 to ^3.
std::string withParameters(const std::string &text);

// In the dialog's port, whatever the current one is.
void drawItem(OpaqueDialogPtr &dialog, DialogItemIndex item, bool isPressed = false);

// Into the current port, at its place in an alert.
void drawSign(Sign sign);

}   // namespace standin
