// zerb icon: draws one icon, as applications do.
#include "host/commands.h"

#include "host/commands/rsrc_parts.h"
#include "host/drawing_ports.h"
#include "host/icon_resources.h"
#include "host/icon_words.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace host
{

namespace
{

enum LabelPlacement : SInt16
{
    noLabel = 0,
    beside = 1,
    below = 2
};

constexpr SInt16 largeSide = 32, smallSide = 16;
constexpr ResType stringType = 0x53545220, largeListType = 0x49434E23;   // STR and ICN#

struct Options
{
    std::string path, id;
    bool isSmall = false;
    LabelPlacement placement = noLabel;
    IconTransformType transform = kTransformNone;
    IconAlignmentType alignment = kAlignNone;
    std::optional<UInt16> smallIcon;   // the number of a picture in a list of small icons
    RGBColor background = {0xFFFF, 0xFFFF, 0xFFFF};
    PictureFile picture;

    SInt16 number() const { return resourceIDFromText(id); }
};

// The label that a button has, as MyDrawIconButton finds it; how much room it takes has to be known before it is drawn.
void findLabel(SInt16 id, Str255 label)
{
    label[0] = 0;
    Handle resource = Get1Resource(stringType, id);
    if (resource != nullptr && GetHandleSize(resource) > 0)
    {
        const auto size = static_cast<std::size_t>(GetHandleSize(resource));
        const auto length = std::min<std::size_t>(static_cast<UInt8>(**resource), size - 1);
        std::memcpy(label + 1, *resource + 1, length);
        label[0] = static_cast<UInt8>(length);
    }
    else if (Handle list = GetResource(largeListType, id))
        GetResInfo(list, nullptr, nullptr, label);
}

// The smallest picture that holds an icon button, and where the icon lies in it.
struct Room
{
    int width, height, left, top;
};

Room roomOf(LabelPlacement placement, ConstStr255Param label)
{
    constexpr int textStart = largeSide - 4, baseLine = 13;
    const int width = label[0] != 0 ? StringWidth(label) + 1 : 0;   // letters may lean over their widths by a part of a pixel
    FontInfo font = {};
    GetFontInfo(&font);
    if (width == 0 || placement == noLabel)
        return {largeSide, largeSide, 0, 0};
    if (placement == beside)
    {
        const int top = std::max(0, font.ascent - baseLine);
        return {textStart + width, std::max<int>(top + largeSide, top + baseLine + font.descent), 0, top};
    }
    const int half = width / 2, left = std::max(0, half - largeSide / 2);
    return {left + std::max<int>(largeSide, largeSide / 2 - half + width + 1), largeSide + baseLine + font.descent, left, 0};
}

Rect placeAt(int left, int top)
{
    return {static_cast<SInt16>(top), static_cast<SInt16>(left), static_cast<SInt16>(top + largeSide),
            static_cast<SInt16>(left + largeSide)};
}

bool isUsable(Invocation &invocation, const Options &options, OSErr portResult, const Room &room)
{
    if (portResult != noErr)
        invocation.report.failure(options.path, portResult,
                                  "a picture of " + std::to_string(room.width) + " by " + std::to_string(room.height) + " pixels");
    return portResult == noErr;
}

void drawButton(Invocation &invocation, const Options &options)
{
    Str255 label;
    findLabel(options.number(), label);
    const Room room = roomOf(options.placement, label);
    const PicturePort port(static_cast<SInt16>(room.width), static_cast<SInt16>(room.height), options.background);
    if (!isUsable(invocation, options, port.result(), room))
        return;
    invocation.plugin.MyDrawIconButton(options.number(), placeAt(room.left, room.top), options.alignment, options.transform,
                                       options.placement);
    savePicture(invocation, port.port(), options.picture);
}

void drawSmall(Invocation &invocation, const Options &options)
{
    const PicturePort port(smallSide, smallSide, options.background);
    if (!isUsable(invocation, options, port.result(), {smallSide, smallSide, 0, 0}))
        return;
    const OSErr result = invocation.plugin.MyDrawIconInSuite(options.number(), placeAt(0, 0), options.alignment, options.transform);
    if (result != noErr)
        return invocation.report.failure(options.path, result, "drawing icon " + options.id);
    savePicture(invocation, port.port(), options.picture);
}

void drawFromList(Invocation &invocation, const Options &options)
{
    const PictureWindow window(smallSide, smallSide, options.background);
    if (!isUsable(invocation, options, window.result(), {smallSide, smallSide, 0, 0}))
        return;
    invocation.plugin.DrawSICN(window.window(), options.number(), static_cast<SInt16>(*options.smallIcon), {0, 0});
    savePicture(invocation, GetWindowPort(window.window()), options.picture);
}

// The plug-in looks neither at the number of a picture nor whether the list is there and can be read.
void drawSmallIcon(Invocation &invocation, const Options &options, const IconResources &icons)
{
    const auto list =
        std::find_if(icons.lists.begin(), icons.lists.end(), [&](const SmallIconList &one) { return one.id == options.number(); });
    if (list == icons.lists.end())
    {
        invocation.report.failure(options.path, resNotFound, "list of small icons " + options.id);
        invocation.report.remark(options.path, "its lists of small icons: " + idsOf(icons.lists));
    }
    else if (*options.smallIcon >= list->pictures)
        invocation.report.problem(options.path,
                                  "list " + options.id + " has " + std::to_string(list->pictures) + " pictures, which are numbered from 0");
    else if (GetResource(smallIconListType, list->id) == nullptr)
        invocation.report.failure(options.path, ResError(), "reading list " + options.id);
    else
        drawFromList(invocation, options);
}

void drawFamily(Invocation &invocation, const Options &options, const IconResources &icons)
{
    IconSuiteRef suite = nullptr;
    const OSErr result = GetIconSuite(&suite, options.number(), options.isSmall ? svAllSmallData : svAllAvailableData);
    if (result != noErr)
    {
        invocation.report.failure(options.path, result, std::string(options.isSmall ? "small icon " : "icon ") + options.id);
        return invocation.report.remark(options.path, "its icons: " + idsOf(icons.families));
    }
    DisposeIconSuite(suite, true);
    options.isSmall ? drawSmall(invocation, options) : drawButton(invocation, options);
}

void draw(Invocation &invocation, const Options &options)
{
    OpenedResourceFile file;
    if (file.open(invocation, options.path) != noErr)
        return;
    const IconResources icons = iconsOfCurrentFile();   // while no bytes are loaded
    SetResLoad(true);
    options.smallIcon ? drawSmallIcon(invocation, options, icons) : drawFamily(invocation, options, icons);
}

void declareLooks(Arguments &arguments, Options &options)
{
    const Arguments::Item size = arguments.choice("--size", options.isSmall, {{"large", false}, {"small", true}},
                                                  "32 by 32 pixels, as a button, or 16 by 16; large if not given");
    const Arguments::Item label = arguments.choice("--label", options.placement, {{"none", noLabel}, {"beside", beside}, {"below", below}},
                                                   "where the button's label stands: its text of type STR, or the icon's name");
    const Arguments::Item transform = arguments.text(
        "--transform", "LOOK[,LOOK...]", [&options](const std::string &typed) { options.transform = transformFromText(typed); },
        "disabled, offline or open; selected; a label's color: gray, green, purple, blue, yellow, red, orange");
    const Arguments::Item alignment = arguments.text(
        "--align", "WHERE", [&options](const std::string &typed) { options.alignment = alignmentFromText(typed); },
        "place an icon of another size instead of stretching it: center, top, bottom, left, right, top-left, ...");
    const Arguments::Item small =
        arguments.number("--sicn", "N", options.smallIcon, 0x7FFF, "picture N, from 0, of the list of small icons ID");
    for (const Arguments::Item &item : {size, label, transform, alignment})
        small.excludes(item);
}

Action declareIcon(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("FILE", options->path, "a file with resources; what a symbolic link leads to");
    arguments.path("ID", options->id, "the icon's ID");
    addPictureFile(arguments, options->picture).require();
    declareLooks(arguments, *options);
    arguments.text(
        "--background", "COLOR", [options](const std::string &typed) { options->background = colorFromText(typed); },
        "what is behind the icon: six hexadecimal digits, or white, light-gray, gray, dark-gray, black");
    arguments.finalCheck([options] {
        options->number();
        if (options->isSmall && options->placement != noLabel)
            throw UsageError("a small icon has no label");
    });
    return [options](Invocation &invocation) { draw(invocation, *options); };
}

}   // namespace

const Command iconCommand = {
    "icon",
    "Draw an icon of a resource file, with its looks and its label",
    "Saves a picture just large enough for the icon, drawn by the plug-in in the deepest member of its family.\n"
    "The resources are those that `zerb rsrc list` lists.\n",
    "  zerb icon Tools.rsrc 128 -o tool.png\n"
    "  zerb icon --label below --transform selected,disabled Tools.rsrc 128 -o tool.png --scale 4\n"
    "  zerb icon --size small --background c0c0c0 -o custom.png ._Picture -16455\n"
    "  zerb icon --sicn 2 Tools.rsrc 200 -o arrow.png\n",
    declareIcon,
};

}   // namespace host
