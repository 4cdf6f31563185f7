// The Dialog Manager: dialogs out of resources, their items, and alerts.

#pragma once

#include "platform/events.h"
#include "platform/geometry.h"
#include "platform/types.h"

#pragma pack(push, 2)

// A "DLOG" resource as it lies in memory.
struct DialogTemplate
{
    Rect boundsRect;
    SInt16 procID;
    Boolean visible, filler1, goAwayFlag, filler2;
    SInt32 refCon;
    SInt16 itemsID;
    Str255 title;
};

// An "ALRT" resource as it lies in memory. Four bits for each of four stages.
struct AlertTemplate
{
    Rect boundsRect;
    SInt16 itemsID;
    UInt16 stages;
};

#pragma pack(pop)

// Kinds of items. kItemDisableBit is added where a click on the item is no answer.
constexpr DialogItemType kUserDialogItem = 0;
constexpr DialogItemType kHelpDialogItem = 1;
constexpr DialogItemType kButtonDialogItem = 4;
constexpr DialogItemType kCheckBoxDialogItem = 5;
constexpr DialogItemType kRadioButtonDialogItem = 6;
constexpr DialogItemType kResourceControlDialogItem = 7;
constexpr DialogItemType kStaticTextDialogItem = 8;
constexpr DialogItemType kEditTextDialogItem = 16;
constexpr DialogItemType kIconDialogItem = 32;
constexpr DialogItemType kPictureDialogItem = 64;
constexpr DialogItemType kItemDisableBit = 128;

// Of an alert: the answers by Return and by Escape
constexpr DialogItemIndex kStdOkItemIndex = 1;
constexpr DialogItemIndex kStdCancelItemIndex = 2;

// Draws a user item; the dialog's port is current. It passes as the item's handle.
using UserItemProcPtr = void (*)(DialogRef dialog, DialogItemIndex item);

#pragma GCC visibility push(default)
extern "C"
{

// `storage` does not count. Null if there is no such resource, or its bytes or those of its items are damaged.
DialogRef GetNewDialog(SInt16 dialogID, void *storage, WindowRef behind);

// The bytes of `items` are those of a "DITL" resource; the handle stays the caller's.
DialogRef NewDialog(void *storage, const Rect *bounds, ConstStr255Param title, Boolean visible, SInt16 procID, WindowRef behind,
                    Boolean goAway, SInt32 refCon, Handle items);
void DisposeDialog(DialogRef dialog);
WindowRef GetDialogWindow(DialogRef dialog);
DialogRef GetDialogFromWindow(WindowRef window);   // null if it is no dialog's

// Items count from 1.
void GetDialogItem(DialogRef dialog, DialogItemIndex itemNumber, DialogItemType *itemType, Handle *item, Rect *box);
void SetDialogItem(DialogRef dialog, DialogItemIndex itemNumber, DialogItemType itemType, Handle item, const Rect *box);
DialogItemIndex CountDITL(DialogRef dialog);
DialogItemIndex FindDialogItem(DialogRef dialog, Point where);   // the item's number less 1, so -1 if there is none; `where` is local
void GetDialogItemText(Handle item, Str255 text);
void SetDialogItemText(Handle item, ConstStr255Param text);
OSErr SetDialogDefaultItem(DialogRef dialog, DialogItemIndex item);
OSErr SetDialogCancelItem(DialogRef dialog, DialogItemIndex item);
void DrawDialog(DialogRef dialog);

// Takes events until an item is hit that may be; 0 if the program is to end or there is nobody to answer.
void ModalDialog(ModalFilterUPP filter, DialogItemIndex *itemHit);
Boolean IsDialogEvent(const EventRecord *event);
Boolean DialogSelect(const EventRecord *event, DialogRef *dialog, DialogItemIndex *itemHit);   // whether an item was hit that may be

// The texts that stand for ^0 to ^3 in alerts
void ParamText(ConstStr255Param text0, ConstStr255Param text1, ConstStr255Param text2, ConstStr255Param text3);

// Show an alert until it is answered. Result: the item; -1 if there is no such resource or nobody to answer.
DialogItemIndex Alert(SInt16 alertID, ModalFilterUPP filter);
DialogItemIndex NoteAlert(SInt16 alertID, ModalFilterUPP filter);
DialogItemIndex CautionAlert(SInt16 alertID, ModalFilterUPP filter);
DialogItemIndex StopAlert(SInt16 alertID, ModalFilterUPP filter);
}
#pragma GCC visibility pop
