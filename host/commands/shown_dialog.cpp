#include "host/commands/shown_dialog.h"

#include "host/json_text.h"
#include "host/text.h"

#include "standin/screen.h"

#include <algorithm>
#include <cstdio>

namespace host
{

namespace
{

constexpr DialogItemIndex doneItem = 1;
constexpr IconAlignmentType noAlignment = 0;

class ShownDialog
{
public:
    ShownDialog(const Plugin &plugin, DialogRef dialog, std::vector<IconControl> controls, bool json)
        : plugin_(plugin), dialog_(dialog), controls_(std::move(controls)), json_(json)
    {
    }

    void prepare();
    void run();

private:
    static void drawUserItem(DialogRef dialog, DialogItemIndex item);

    const IconControl *controlOf(DialogItemIndex item) const;
    Rect boxOf(DialogItemIndex item) const;
    void draw(const IconControl &control) const;
    bool handle(const EventRecord &event);
    bool handlePress(const EventRecord &event);
    bool handleOther(const EventRecord &event);
    DialogItemIndex itemAt(Point where) const;
    SInt16 track(const IconControl &control) const;
    void click(const IconControl &control);
    void tellClick(const IconControl &control, SInt16 result) const;
    void tellItem(DialogItemIndex item) const;
    void tell(const std::string &line, const Json &object) const;

    const Plugin &plugin_;
    DialogRef dialog_;
    std::vector<IconControl> controls_;
    bool json_;
};

// The text of a menu's item, empty if there is none.
std::string menuText(SInt16 menu, SInt16 item)
{
    Str255 text = "";
    MenuRef found = GetMenu(menu);
    if (found != nullptr && item > 0)
        GetMenuItemText(found, static_cast<MenuItemIndex>(item), text);
    return utf8FromPascal(text);
}

const IconControl *ShownDialog::controlOf(DialogItemIndex item) const
{
    auto found = std::find_if(controls_.begin(), controls_.end(), [&](const IconControl &control) { return control.item == item; });
    return found != controls_.end() ? &*found : nullptr;
}

Rect ShownDialog::boxOf(DialogItemIndex item) const
{
    Rect box{};
    DialogItemType type;
    Handle handle;
    GetDialogItem(dialog_, item, &type, &handle, &box);
    return box;
}

// The dialog is found by the window that the item is in.
void ShownDialog::drawUserItem(DialogRef dialog, DialogItemIndex item)
{
    const auto *shown = reinterpret_cast<const ShownDialog *>(GetWRefCon(GetDialogWindow(dialog)));
    if (const IconControl *control = shown->controlOf(item))
        shown->draw(*control);
}

void ShownDialog::draw(const IconControl &control) const
{
    if (control.isSmall)
        plugin_.MyDrawIconInSuite(control.icon, boxOf(control.item), noAlignment, kTransformNone);
    else
        plugin_.MyDrawIconButton(control.icon, boxOf(control.item), noAlignment, kTransformNone, control.label);
}

void ShownDialog::prepare()
{
    SetWRefCon(GetDialogWindow(dialog_), reinterpret_cast<long>(this));
    for (const IconControl &control : controls_)
    {
        const Rect box = boxOf(control.item);
        SetDialogItem(dialog_, control.item, kUserDialogItem, reinterpret_cast<Handle>(&ShownDialog::drawUserItem), &box);
    }
    SetDialogDefaultItem(dialog_, doneItem);
    SetDialogCancelItem(dialog_, doneItem);
}

void ShownDialog::run()
{
    constexpr UInt32 sleep = 60;
    SetPort(GetDialogPort(dialog_));
    ShowWindow(GetDialogWindow(dialog_));
    DrawDialog(dialog_);
    for (EventRecord event; true;)
        if (WaitNextEvent(everyEvent, &event, sleep, nullptr) && !handle(event))
            return;
}

// Whether the dialog goes on.
bool ShownDialog::handle(const EventRecord &event)
{
    if (event.what == kHighLevelEvent)
        return tell("ended", {{"ended", "asked to"}}), false;
    return event.what == mouseDown ? handlePress(event) : handleOther(event);
}

bool ShownDialog::handlePress(const EventRecord &event)
{
    WindowRef window = nullptr;
    const WindowPartCode part = FindWindow(event.where, &window);
    if (part == inGoAway && TrackGoAway(window, event.where))
        return tell("closed", {{"ended", "closed"}}), false;
    const IconControl *control = part == inContent && window == GetDialogWindow(dialog_) ? controlOf(itemAt(event.where)) : nullptr;
    if (control == nullptr)
        return handleOther(event);
    click(*control);
    return true;
}

bool ShownDialog::handleOther(const EventRecord &event)
{
    DialogRef dialog = nullptr;
    DialogItemIndex item = 0;
    if (!IsDialogEvent(&event) || !DialogSelect(&event, &dialog, &item))
        return true;
    tellItem(item);
    return item != doneItem;
}

DialogItemIndex ShownDialog::itemAt(Point where) const
{
    GlobalToLocal(&where);
    return static_cast<DialogItemIndex>(FindDialogItem(dialog_, where) + 1);
}

SInt16 ShownDialog::track(const IconControl &control) const
{
    const Rect box = boxOf(control.item);
    if (control.isSmall && control.menu == 0)
        return plugin_.TrackRectIconButton(box, control.icon, noAlignment);
    if (control.isSmall)
        return plugin_.TrackIconButtonWithPopUp(control.icon, noAlignment, control.menu, false, control.checkedItem, box);
    if (control.menu == 0)
        return plugin_.MyTrackIconButton(dialog_, control.item, control.icon, noAlignment);
    return plugin_.MyTrackIconButtonWithPopUp(dialog_, control.item, control.icon, noAlignment, control.menu, false, control.checkedItem,
                                              control.clearsMarks, control.delay);
}

void ShownDialog::click(const IconControl &control)
{
    const SInt16 result = track(control);
    tellClick(control, result);
    if (result != 0 && control.alert != 0)
        plugin_.ZerbErrorAlert(control.alert, control.number, nullptr);
}

// A plain click and the choice of item 1 have the same result.
void ShownDialog::tellClick(const IconControl &control, SInt16 result) const
{
    const char *kind = control.isSmall ? "small icon" : "icon button";
    std::string line = "item " + std::to_string(control.item) + ": " + kind + " " + std::to_string(control.icon) + ": ";
    Json object = {{"item", control.item}, {"kind", kind}, {"icon", control.icon}, {"result", result}};
    if (result == 0)
        line += control.menu != 0 ? "released outside, or nothing chosen" : "released outside";
    else if (control.menu == 0)
        line += "clicked";
    else
    {
        const std::string text = menuText(control.menu, result);
        line += result == 1 ? "clicked, or chosen: item 1 (" : "chosen: item " + std::to_string(result) + " (";
        line += printable(text) + ")";
        object["menu"] = Json(control.menu);
        object["text"] = Json(text);
    }
    tell(line, object);
}

void ShownDialog::tellItem(DialogItemIndex item) const
{
    Str255 text = "";
    DialogItemType type = 0;
    Handle handle = nullptr;
    GetDialogItem(dialog_, item, &type, &handle, nullptr);
    if ((type & ~kItemDisableBit) != kUserDialogItem)
        GetDialogItemText(handle, text);
    tell("item " + std::to_string(item) + ": " + printable(utf8FromPascal(text)), {{"item", item}, {"text", utf8FromPascal(text)}});
}

// At once: whoever waits for the line can go on.
void ShownDialog::tell(const std::string &line, const Json &object) const
{
    std::printf("%s\n", json_ ? object.compact().c_str() : line.c_str());
    std::fflush(stdout);
}

std::vector<IconControl> controlsOf(SInt16 id)
{
    std::vector<IconControl> controls;
    Handle list = GetResource(fourCharCode("STR#"), id);
    if (list == nullptr || *list == nullptr)
        return controls;
    for (const std::string &row : rowsOf({*list, static_cast<std::size_t>(GetHandleSize(list))}))
        controls.push_back(controlFromRow(row));
    return controls;
}

// In the middle of the screen. Null if there is none or it is damaged.
DialogRef openDialog(const Plugin &plugin, SInt16 id)
{
    Handle handle = GetResource(fourCharCode("DLOG"), id);
    if (handle == nullptr || *handle == nullptr || GetHandleSize(handle) < static_cast<Size>(sizeof(Rect)))
        return nullptr;
    plugin.ZerbCenterDialog(reinterpret_cast<DialogTemplate **>(handle));
    return GetNewDialog(id, nullptr, nullptr);
}

}   // namespace

void runDialog(Invocation &invocation, const std::string &file, const DialogRequest &request)
{
    try
    {
        std::vector<IconControl> controls = controlsOf(request.id);
        DialogRef dialog = openDialog(invocation.plugin, request.id);
        if (dialog == nullptr)
            return invocation.report.problem(file, "has no dialog " + std::to_string(request.id) + ", or a damaged one");
        ShownDialog shown(invocation.plugin, dialog, std::move(controls), request.json);
        shown.prepare();
        shown.run();
        const OSErr saved = request.picture.empty() ? noErr : standin::savePicture(GetDialogPort(dialog), request.picture);
        if (saved != noErr)
            invocation.report.failure(request.picture, saved, "saving the picture");
        DisposeDialog(dialog);
    }
    catch (const ControlError &error)
    {
        invocation.report.problem(file, "'STR#' " + std::to_string(request.id) + ": " + printable(error.what()));
    }
}

}   // namespace host
