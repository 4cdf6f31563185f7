// Drawing icons and icon buttons, and what dialogs need beside them.

#include "dialogs/iconbuttons.h"

#include <cstring>

namespace
{

constexpr SInt16 smallIconSize = 16;
constexpr SInt16 largeIconSize = 32;

constexpr int smallPictureBytes = 32;
constexpr SInt16 smallPictureRowBytes = 2;

constexpr SInt16 labelBeside = 1;
constexpr SInt16 labelBelow = 2;

constexpr SInt32 lastVersionWithoutColour = 0xFF;
constexpr int menuBarHeight = 20;   // a fixed number: the system is not asked for it

// Coordinates have 16 bits and wrap around.
SInt16 coordinate(int value)
{
    return static_cast<SInt16>(value);
}

// What is drawn has its own size; of the rectangle only the corner counts.
Rect iconRect(const Rect &where, SInt16 size)
{
    Rect icon;
    SetRect(&icon, 0, 0, size, size);
    OffsetRect(&icon, where.left, where.top);
    return icon;
}

// Null where the family has no such icon. GetIconSuite's code says nothing beyond that.
IconSuiteRef iconSuite(SInt16 resID, IconSelectorValue selector)
{
    IconSuiteRef suite = nullptr;
    GetIconSuite(&suite, resID, selector);
    return suite;
}

// Takes the text out of a string resource, of which nothing is left afterwards. Once it is detached, ReleaseResource has no
// hold on it, and DisposeHandle is what frees it.
void takeString(Handle resource, StringPtr label)
{
    if (*resource)
        std::memcpy(label, *resource, 1u + static_cast<UInt8>(**resource));
    DetachResource(resource);
    ReleaseResource(resource);
    DisposeHandle(resource);
}

// The name of an icon list, for which its bytes need not be loaded.
void getIconName(SInt16 resID, StringPtr name)
{
    SInt16 foundID;
    ResType foundType;
    SetResLoad(false);
    const Handle icon = GetResource(fourCharCode("ICN#"), resID);
    if (icon)
        GetResInfo(icon, &foundID, &foundType, name);
    SetResLoad(true);
}

// The string counts in the current file alone, the icon list in every open one: the two look-ups differ on purpose.
void getLabel(SInt16 resID, StringPtr label)
{
    label[0] = 0;
    const Handle text = Get1Resource(fourCharCode("STR "), resID);
    if (text)
        takeString(text, label);
    else
        getIconName(resID, label);
}

// Exactly these four: together with anything else they leave the label in the current colour, on purpose.
bool hasGreyLabel(IconTransformType transform)
{
    return transform == kTransformDisabled || transform == kTransformOffline || transform == kTransformSelectedDisabled ||
           transform == kTransformSelectedOffline;
}

void placeLabel(ConstStr255Param label, SInt16 width, const Rect &icon, SInt16 placement)
{
    if (placement == labelBeside)
        MoveTo(coordinate(icon.right - 4), coordinate(icon.top + 13));
    else if (placement == labelBelow)
        MoveTo(coordinate(icon.left + (icon.right - icon.left) / 2 - width / 2), coordinate(icon.bottom + 13));
    else
        return;
    DrawString(label);
}

void drawLabel(SInt16 resID, const Rect &icon, IconTransformType transform, SInt16 placement)
{
    Str255 label;
    getLabel(resID, label);
    const SInt16 width = StringWidth(label);
    RGBColor savedColour;
    GetForeColor(&savedColour);
    if (hasGreyLabel(transform))
        RGBForeColor(&kDarkGrey);
    placeLabel(label, width, icon, placement);
    RGBForeColor(&savedColour);
}

Rect mainScreen()
{
    SInt32 version;
    if (Gestalt(gestaltQuickdrawVersion, &version) == noErr && version > lastVersionWithoutColour)
        return (*GetMainDevice())->gdRect;
    BitMap screen;
    GetQDGlobalsScreenBits(&screen);
    return screen.bounds;
}

}   // namespace

OSErr MyDrawIconInSuite(SInt16 resID, Rect where, IconAlignmentType alignment, IconTransformType transform)
{
    const IconSuiteRef suite = iconSuite(resID, svAllSmallData);
    if (!suite)
        return resNotFound;
    const Rect icon = iconRect(where, smallIconSize);
    const OSErr result = PlotIconSuite(&icon, alignment, transform, suite);
    DisposeIconSuite(suite, true);
    return result;
}

void DrawSICN(WindowRef window, SInt16 resID, SInt16 index, Point where)
{
    const Handle pictures = GetResource(fourCharCode("SICN"), resID);
    HLock(pictures);
    const Rect bounds = {where.v, where.h, coordinate(where.v + smallIconSize), coordinate(where.h + smallIconSize)};
    const BitMap picture = {*pictures + index * smallPictureBytes, smallPictureRowBytes, bounds};
    ForeColor(blackColor);
    CopyBits(&picture, GetPortBitMapForCopyBits(GetWindowPort(window)), &bounds, &bounds, srcCopy, nullptr);
    HUnlock(pictures);
}

void MyDrawIconButton(SInt16 resID, Rect where, IconAlignmentType alignment, IconTransformType transform, SInt16 labelPlacement)
{
    PenState savedPen;
    GetPenState(&savedPen);
    const IconSuiteRef suite = iconSuite(resID, svAllAvailableData);
    if (suite)
    {
        const Rect icon = iconRect(where, largeIconSize);
        PlotIconSuite(&icon, alignment, transform, suite);
        DisposeIconSuite(suite, true);
        drawLabel(resID, icon, transform, labelPlacement);
    }
    SetPenState(&savedPen);
}

void ZerbCenterDialog(DialogTemplate **dialog)
{
    const Rect screen = mainScreen();
    Rect bounds = (*dialog)->boundsRect;
    OffsetRect(&bounds, coordinate(-bounds.left), coordinate(-bounds.top));   // right and bottom are now width and height
    const SInt16 screenWidth = coordinate(screen.right - screen.left);
    const SInt16 screenHeight = coordinate(screen.bottom - screen.top);
    OffsetRect(&bounds, coordinate((screenWidth - bounds.right) / 2),
               coordinate((screenHeight - bounds.bottom - menuBarHeight) / 3 + menuBarHeight));
    (*dialog)->boundsRect = bounds;
}

void ZerbErrorAlert(SInt32 alertID, SInt32 number, void *)
{
    Str255 text;
    NumToString(number, text);
    ParamText(text, nullptr, nullptr, nullptr);
    StopAlert(static_cast<SInt16>(alertID), nullptr);
}
