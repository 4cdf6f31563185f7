// Icons and icon buttons in dialogs: drawing them, following the mouse on them, and two small functions around dialogs.
//
// An icon family is a set of resources with one ID, of which the platform draws the member that suits best; an icon button
// is such a family at 32 by 32 pixels, with a label if one is wanted. What holds for all functions:
//
// - They are called on the thread that draws and handles events. Nothing is kept between calls.
// - Rectangles and points are in pixels, in the local coordinates of the current port, and are 16 bits wide: what goes
//   beyond that wraps around. Alignments and transforms are handed on to PlotIconSuite as they are.
// - Drawing goes to the current port, as the caller has set it up, unless a function says otherwise.
// - Of a Boolean, 0 is false and everything else is true.

#pragma once

#include "platform/platform.h"

// The colour of the label of a disabled or offline icon button: a quarter of full intensity.
constexpr RGBColor kDarkGrey = {0x4000, 0x4000, 0x4000};

#pragma GCC visibility push(default)

// ---------------------------------------------------------------------------------------------------------------------
// Drawing
// ---------------------------------------------------------------------------------------------------------------------

// Draws the small icon of a family, 16 by 16 pixels, at the top left corner of a rectangle.
//
// The rectangle's bottom and right do not matter: a smaller one does not shrink the icon. Only the small members are loaded,
// and they are given back before the function returns.
//
// Result: resNotFound where the family has no small icon, and then nothing is drawn; otherwise PlotIconSuite's code.
OSErr MyDrawIconInSuite(SInt16 resID, Rect where, IconAlignmentType alignment, IconTransformType transform);

// Draws one picture out of a resource of type "SICN", 16 by 16 pixels, with its top left corner at a point of the window.
//
// The pictures are numbered from 0 and take 32 bytes each, with one bit for a pixel: a set one is drawn black, a clear one
// in the port's background colour. The window's port has to be the current one, because black is set in that and stays set.
// The resource is searched for in all open files and stays loaded for the next time.
//
// Nothing is checked: the resource has to exist, and the picture has to lie in it.
void DrawSICN(WindowRef window, SInt16 resID, SInt16 index, Point where);

// Draws an icon button, 32 by 32 pixels, at the top left corner of a rectangle, and its label.
//
// `labelPlacement` is 1 for a label beside the icon (its base line 13 pixels below the icon's top, its start 4 pixels inside
// the icon's right edge), 2 for one centred below the icon (its base line 13 pixels below the icon); any other value draws
// none. The rectangle's bottom and right do not matter, and nothing is erased before.
//
// The label is the text of the resource of type "STR " with the same ID in the current resource file. Where that file has
// none, it is the name of the resource of type "ICN#" with that ID in any open file, whose handle stays in the resource map;
// where there is none either, it is empty. It is looked up and measured even if it is not drawn. A "STR " resource has to hold
// as many bytes as its length says; one that is not in memory is an empty label.
//
// The label is drawn in the port's font, and in kDarkGrey if the transform is kTransformDisabled, kTransformOffline,
// kTransformSelectedDisabled or kTransformSelectedOffline and nothing besides; with every other transform, such as one of
// these together with kTransformOpen, it has the current colour. Pen and colour are afterwards what they were.
//
// Where the family has no icon, nothing at all is drawn.
void MyDrawIconButton(SInt16 resID, Rect where, IconAlignmentType alignment, IconTransformType transform, SInt16 labelPlacement);

// ---------------------------------------------------------------------------------------------------------------------
// Dialogs
// ---------------------------------------------------------------------------------------------------------------------

// Moves the bounds of a dialog's template to the middle of the main screen, before the dialog is made of it.
//
// Across, the dialog is centred; down, a third of the free height below a band of 20 pixels, where the menu bar is, goes
// above it and two thirds below. A dialog that is too large begins outside the screen. The place is counted from the origin
// and not from the screen's corner, on purpose: on a main screen the two are the same.
//
// The handle stays the caller's and nothing else in the template is touched. Without colour QuickDraw the screen is that of
// the QuickDraw globals.
void ZerbCenterDialog(DialogTemplate **dialog);

// Shows a stop alert with a number in place of its ^0, and waits until it is closed.
//
// Of `alertID` the low 16 bits count. The number is shown in decimal, with a minus sign if it is negative. `unused` may be
// anything. The alert with its text and buttons comes from the caller's resource file; which button closed it is not told.
void ZerbErrorAlert(SInt32 alertID, SInt32 number, void *unused);

// ---------------------------------------------------------------------------------------------------------------------
// Tracking
//
// These follow the mouse from its press on an icon button to its release. The button is drawn with kTransformSelected while
// the mouse is over it and with kTransformNone while it is not, and anew only when that changes; it is left drawn with
// kTransformNone. Where the mouse is already up, the press counts as one that was released over the button. An icon family
// that is missing draws nothing, and the mouse is followed all the same.
//
// Those with a dialog draw the item's rectangle with MyDrawIconButton, without its label, in the dialog's port, and put the
// port back that was current. Those with a rectangle draw with MyDrawIconInSuite in the current port. The mouse counts as
// over the button wherever it is in the whole of the item's or the caller's rectangle.
// ---------------------------------------------------------------------------------------------------------------------

// Follow the mouse on a button. Result: 1 if it was released over the button, otherwise 0.
SInt16 MyTrackIconButton(DialogRef dialog, SInt16 item, SInt16 resID, IconAlignmentType alignment);
SInt16 TrackRectIconButton(Rect where, SInt16 resID, IconAlignmentType alignment);

// Follow the mouse on a button that opens a menu when it is held down long enough.
//
// The menu opens beside the button's top right corner as soon as the mouse is over the button and more than the delay has
// passed since the press, wherever the mouse was meanwhile. The delay is in ticks of 1/60 s: 50, or `delay`, of which -1
// means 50 too and every other negative value never, on purpose. A `menuID` of 0 is no menu; any other has to be one that
// GetMenu finds.
//
// `checkedItem` is the item that opens at that corner and bears a check mark; with -1 it is the last item, and no mark is
// set. A menu that is not `menuInserted` is inserted for the time that it is open; then its mark is removed, and it is
// deleted and released. A menu that is inserted already is the caller's, and it keeps the mark.
//
// Choosing or dismissing releases the mouse, which ends the tracking wherever the mouse is then; if it is down again by that
// time, it is followed on, and the menu may open once more.
//
// With `clearMarks` the menu's items all lose their check marks in the end, whether it was opened or not. For that a menu that
// is not at hand any more is fetched once again, and released after it if it is not `menuInserted`.
//
// Result: 0 if the mouse was released away from the button. Otherwise 1 if no menu was shown; if one was, the number of the
// chosen item, or 0 if none was chosen. A plain click and a choice of item 1 are the same, on purpose.
SInt16 TrackIconButtonWithPopUp(SInt16 resID, IconAlignmentType alignment, SInt16 menuID, Boolean menuInserted, SInt16 checkedItem,
                                Rect where);
SInt16 MyTrackIconButtonWithPopUp(DialogRef dialog, SInt16 item, SInt16 resID, IconAlignmentType alignment, SInt16 menuID,
                                  Boolean menuInserted, SInt16 checkedItem, Boolean clearMarks, SInt16 delay);

#pragma GCC visibility pop
