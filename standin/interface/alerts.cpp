// Alerts: small dialogs out of a resource, shown until they are answered.
#include "standin/interface/dialogs.h"

#include "platform/drawing.h"
#include "platform/memory.h"
#include "platform/resources.h"
#include "standin/resources/resources.h"

#include <cstring>

using namespace standin;

namespace
{

constexpr DialogItemIndex noAnswer = -1;

// Already in the machine's byte order.
bool readAlert(SInt16 alertID, AlertTemplate &found)
{
    Handle handle = GetResource(fourCharCode("ALRT"), alertID);
    if (handle == nullptr || *handle == nullptr || GetHandleSize(handle) < static_cast<Size>(sizeof found))
        return false;
    std::memcpy(&found, *handle, sizeof found);
    return true;
}

DialogRef newAlert(SInt16 alertID, Sign sign)
{
    AlertTemplate from;
    std::string items;
    if (!readAlert(alertID, from) || !copyResource(fourCharCode("DITL"), from.itemsID, items))
        return nullptr;
    return newDialog({{from.boundsRect, "", false, false}, 0, sign}, items);
}

bool isButton(DialogRef dialog, DialogItemIndex item)
{
    const DialogItem *found = itemOf(dialog, item);
    return found != nullptr && kindOf(found->type) == kButtonDialogItem;
}

// Return answers with the first item, Escape with the second, or the first if there is no second button.
void setAnswers(DialogRef alert)
{
    alert->defaultItem = kStdOkItemIndex;
    alert->ringedItem = isButton(alert, kStdOkItemIndex) ? kStdOkItemIndex : DialogItemIndex{0};
    alert->cancelItem = isButton(alert, kStdCancelItemIndex) ? kStdCancelItemIndex : kStdOkItemIndex;
}

DialogItemIndex answerOf(DialogRef alert)
{
    ShowWindow(alert->window);
    DialogItemIndex item = 0;
    ModalDialog(nullptr, &item);
    return item != 0 ? item : noAnswer;
}

// The port that is current stays so.
DialogItemIndex show(SInt16 alertID, Sign sign)
{
    DialogRef alert = newAlert(alertID, sign);
    if (alert == nullptr)
        return noAnswer;
    setAnswers(alert);
    const DialogItemIndex answer = answerOf(alert);
    DisposeDialog(alert);
    return answer;
}

}   // namespace

// Filters are not called. All stages of an alert look alike.
DialogItemIndex Alert(SInt16 alertID, ModalFilterUPP)
{
    return show(alertID, Sign::none);
}

DialogItemIndex NoteAlert(SInt16 alertID, ModalFilterUPP)
{
    return show(alertID, Sign::note);
}

DialogItemIndex CautionAlert(SInt16 alertID, ModalFilterUPP)
{
    return show(alertID, Sign::caution);
}

DialogItemIndex StopAlert(SInt16 alertID, ModalFilterUPP)
{
    return show(alertID, Sign::stop);
}
