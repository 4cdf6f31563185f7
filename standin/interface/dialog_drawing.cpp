// How dialogs and their items look.
#include "platform/dialogs.h"

#include "standin/interface/dialogs.h"
#include "standin/interface/text_lines.h"

#include "platform/drawing.h"
#include "platform/icons.h"

using namespace standin;

namespace
{

constexpr RGBColor black = {0, 0, 0};
constexpr RGBColor white = {0xFFFF, 0xFFFF, 0xFFFF};
constexpr SInt16 markSize = 12;   // of check boxes and radio buttons

Rect inset(Rect rect, SInt16 by)
{
    InsetRect(&rect, by, by);
    return rect;
}

// A frame whose corners are cut off.
void frameRounded(const Rect &rect, SInt16 corner, SInt16 pen)
{
    const auto last = [&](SInt16 edge) { return static_cast<SInt16>(edge - pen); };
    const auto in = [&](SInt16 edge, int direction) { return static_cast<SInt16>(edge + direction * corner); };
    PenSize(pen, pen);
    MoveTo(in(rect.left, 1), rect.top);
    LineTo(in(last(rect.right), -1), rect.top);
    LineTo(last(rect.right), in(rect.top, 1));
    LineTo(last(rect.right), in(last(rect.bottom), -1));
    LineTo(in(last(rect.right), -1), last(rect.bottom));
    LineTo(in(rect.left, 1), last(rect.bottom));
    LineTo(rect.left, in(last(rect.bottom), -1));
    LineTo(rect.left, in(rect.top, 1));
    LineTo(in(rect.left, 1), rect.top);
    PenSize(1, 1);
}

void drawButton(const DialogItem &item, bool isPressed, bool hasRing)
{
    const std::string text = withParameters(textOfItem(item));
    const Rect &box = item.box;
    EraseRect(&box);
    frameRounded(box, 3, 1);
    if (hasRing)
        frameRounded(inset(box, -4), 5, 3);
    drawLineAt(text, box, (box.left + box.right - widthOfText(text)) / 2);
    const Rect inner = inset(box, 2);
    if (isPressed)
        InvertRect(&inner);
}

Rect markOf(const Rect &box)
{
    const auto top = static_cast<SInt16>((box.top + box.bottom - markSize) / 2);
    return {top, box.left, static_cast<SInt16>(top + markSize), static_cast<SInt16>(box.left + markSize)};
}

// The values of check boxes and radio buttons are the host's: both are shown as off, and with a thick line while they are pressed.
void drawChoice(const DialogItem &item, bool isPressed)
{
    const Rect mark = markOf(item.box);
    EraseRect(&item.box);
    PenSize(isPressed ? 2 : 1, isPressed ? 2 : 1);
    if (kindOf(item.type) == kCheckBoxDialogItem)
        FrameRect(&mark);
    else
        frameRounded(mark, 4, isPressed ? 2 : 1);
    PenSize(1, 1);
    drawLineAt(withParameters(textOfItem(item)), item.box, mark.right + 6);
}

void drawEditText(const DialogItem &item)
{
    const Rect frame = inset(item.box, -3);
    EraseRect(&frame);
    FrameRect(&frame);
    drawLines(textOfItem(item), item.box);
}

void drawIcon(const DialogItem &item)
{
    IconSuiteRef suite = nullptr;
    GetIconSuite(&suite, item.resourceID, svAllAvailableData);
    if (suite == nullptr)
        return;
    PlotIconSuite(&item.box, 0, kTransformNone, suite);
    DisposeIconSuite(suite, true);
}

void callUserItem(OpaqueDialogPtr &dialog, const DialogItem &item, DialogItemIndex number)
{
    if (item.handle != nullptr)
        reinterpret_cast<UserItemProcPtr>(item.handle)(&dialog, number);
}

void drawStaticText(const DialogItem &item)
{
    EraseRect(&item.box);
    drawLines(withParameters(textOfItem(item)), item.box);
}

// What is drawn with a pen of its own goes back to the pen and the colours of the host's.
class UsualPen
{
public:
    UsualPen()
    {
        GetPenState(&pen_);
        GetForeColor(&foreColor_);
        GetBackColor(&backColor_);
        PenNormal();
        RGBForeColor(&black);
        RGBBackColor(&white);
    }
    ~UsualPen()
    {
        SetPenState(&pen_);
        RGBForeColor(&foreColor_);
        RGBBackColor(&backColor_);
    }
    UsualPen(const UsualPen &) = delete;
    UsualPen &operator=(const UsualPen &) = delete;

private:
    PenState pen_;
    RGBColor foreColor_, backColor_;
};

void drawStandardItem(OpaqueDialogPtr &dialog, const DialogItem &item, DialogItemIndex number, bool isPressed)
{
    const UsualPen usual;
    switch (kindOf(item.type))
    {
    case kButtonDialogItem: return drawButton(item, isPressed, dialog.ringedItem == number);
    case kCheckBoxDialogItem:
    case kRadioButtonDialogItem: return drawChoice(item, isPressed);
    case kStaticTextDialogItem: return drawStaticText(item);
    case kEditTextDialogItem: return drawEditText(item);
    case kIconDialogItem: return drawIcon(item);
    case kPictureDialogItem:
    case kResourceControlDialogItem: return FrameRect(&item.box);
    default: return;
    }
}

void drawBackground(OpaqueDialogPtr &dialog)
{
    const UsualPen usual;
    const Rect bounds = localBounds(*dialog.window);
    EraseRect(&bounds);
    if (!dialog.window->hasTitleBar)
    {
        FrameRect(&bounds);
        PenSize(2, 2);
        const Rect inner = inset(bounds, 3);
        FrameRect(&inner);
        PenSize(1, 1);
    }
    drawSign(dialog.sign);
}

}   // namespace

namespace standin
{

void drawItem(OpaqueDialogPtr &dialog, DialogItemIndex number, bool isPressed)
{
    PortSetting here(dialog.window->port);
    const DialogItem &item = dialog.items[static_cast<std::size_t>(number - 1)];
    if (kindOf(item.type) == kUserDialogItem)
        callUserItem(dialog, item, number);
    else
        drawStandardItem(dialog, item, number, isPressed);
}

}   // namespace standin

void DrawDialog(DialogRef dialog)
{
    if (!isDialog(dialog))
        return;
    PortSetting here(dialog->window->port);
    drawBackground(*dialog);
    for (DialogItemIndex item = 1; item <= CountDITL(dialog); ++item)
        drawItem(*dialog, item);
}
