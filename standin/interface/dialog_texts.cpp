// The texts of dialogs: what stands for ^0 to ^3, what is in an item, which items Return and Escape answer with.
#include "platform/dialogs.h"

#include "standin/interface/dialogs.h"
#include "standin/interface/strings.h"
#include "standin/interface/window_list.h"

#include "platform/memory.h"

#include <array>

using namespace standin;

namespace
{

std::array<std::string, 4> &parameterTexts()
{
    static std::array<std::string, 4> texts;
    return texts;
}

// Draws the items anew that have this handle.
void drawItemsWith(Handle handle)
{
    for (WindowRef window : windowList())
        for (std::size_t index = 0; window->dialog != nullptr && index < window->dialog->items.size(); ++index)
            if (window->isShown && window->dialog->items[index].handle == handle)
                drawItem(*window->dialog, static_cast<DialogItemIndex>(index + 1));
}

bool setItemOf(DialogRef dialog, DialogItemIndex item, DialogItemIndex OpaqueDialogPtr::*which)
{
    if (itemOf(dialog, item) == nullptr)
        return false;
    dialog->*which = item;
    return true;
}

}   // namespace

namespace standin
{

std::string withParameters(const std::string &text)
{
    std::string whole;
    for (std::size_t place = 0; place < text.size(); ++place)
    {
        const bool isPlaceholder = text[place] == '^' && place + 1 < text.size() && text[place + 1] >= '0' && text[place + 1] <= '3';
        if (isPlaceholder)
            whole += parameterTexts()[static_cast<std::size_t>(text[++place] - '0')];
        else
            whole += text[place];
    }
    return whole;
}

}   // namespace standin

// A null text leaves that one as it was.
void ParamText(ConstStr255Param text0, ConstStr255Param text1, ConstStr255Param text2, ConstStr255Param text3)
{
    const ConstStr255Param texts[] = {text0, text1, text2, text3};
    for (std::size_t index = 0; index < 4; ++index)
        if (texts[index] != nullptr)
            parameterTexts()[index] = textOf(texts[index]);
}

// The first 255 bytes.
void GetDialogItemText(Handle item, Str255 text)
{
    PascalText(item != nullptr ? std::string(*item, static_cast<std::size_t>(GetHandleSize(item))) : "").copyTo(text);
}

void SetDialogItemText(Handle item, ConstStr255Param text)
{
    if (item == nullptr)
        return;
    setText(item, textOf(text));
    drawItemsWith(item);
}

// The button gets a ring. Result: noErr; paramErr if there is no such item.
OSErr SetDialogDefaultItem(DialogRef dialog, DialogItemIndex item)
{
    const bool done = setItemOf(dialog, item, &OpaqueDialogPtr::defaultItem) && setItemOf(dialog, item, &OpaqueDialogPtr::ringedItem);
    return done ? noErr : paramErr;
}

OSErr SetDialogCancelItem(DialogRef dialog, DialogItemIndex item)
{
    return setItemOf(dialog, item, &OpaqueDialogPtr::cancelItem) ? noErr : paramErr;
}
