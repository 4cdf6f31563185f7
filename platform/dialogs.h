// The Dialog Manager: dialogs out of resources, their items, and alerts.

#pragma once

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

#pragma GCC visibility push(default)
extern "C"
{

DialogRef GetNewDialog(SInt16 dialogID, void *storage, WindowRef behind);
void DisposeDialog(DialogRef dialog);
void GetDialogItem(DialogRef dialog, DialogItemIndex itemNumber, DialogItemType *itemType, Handle *item, Rect *box);

// The texts that stand for ^0 to ^3 in alerts
void ParamText(ConstStr255Param text0, ConstStr255Param text1, ConstStr255Param text2, ConstStr255Param text3);
DialogItemIndex StopAlert(SInt16 alertID, ModalFilterUPP filter);
}
#pragma GCC visibility pop
