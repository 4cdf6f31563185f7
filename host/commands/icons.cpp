// zerb icons: all icons of a resource file, as a sheet or as a list.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/icon_sheet.h"
#include "host/commands/rsrc_parts.h"
#include "host/drawing_ports.h"
#include "host/icon_words.h"
#include "host/json_text.h"

#include <cstdio>
#include <limits>
#include <memory>

namespace host
{

namespace
{

constexpr UInt32 mostColumns = 35;   // a port is at most 4095 pixels wide

struct Options
{
    std::string path;
    UInt32 columns = 8;
    RGBColor background = {0xFFFF, 0xFFFF, 0xFFFF};
    PictureFile picture;
    bool json = false;
};

Json familyJson(const IconFamily &family)
{
    Json members = Json::array();
    for (const IconMember &member : family.members)
        members.push_back({{"type", member.type->name}, {"size", member.size}, {"drawable", member.isDrawable}});
    return {{"id", family.id}, {"name", family.name}, {"members", std::move(members)}};
}

Json iconsJson(const std::string &path, const IconResources &icons)
{
    Json families = Json::array(), lists = Json::array();
    for (const IconFamily &family : icons.families)
        families.push_back(familyJson(family));
    for (const SmallIconList &list : icons.lists)
        lists.push_back({{"id", list.id}, {"name", list.name}, {"pictures", list.pictures}});
    return {{"path", path}, {"families", std::move(families)}, {"small_icon_lists", std::move(lists)}};
}

void drawSheet(Invocation &invocation, const Options &options, const IconResources &icons)
{
    if (icons.families.empty() && icons.lists.empty())
        return invocation.report.problem(options.path, "there is no icon among its resources");
    const IconSheet sheet(invocation.plugin, icons, static_cast<int>(options.columns));
    if (sheet.height() > std::numeric_limits<SInt16>::max())
        return invocation.report.problem(options.path, "a sheet of " + std::to_string(options.columns) +
                                                           " columns would be too high; --columns makes it wider, up to " +
                                                           std::to_string(mostColumns));
    const PicturePort port(static_cast<SInt16>(sheet.width()), static_cast<SInt16>(sheet.height()), options.background);
    if (port.result() != noErr)
        return invocation.report.failure(options.path, port.result(), "making the sheet");
    sheet.draw();
    savePicture(invocation, port.port(), options.picture);
}

void work(Invocation &invocation, const Options &options)
{
    OpenedResourceFile file;
    const OSStatus result = file.open(invocation, options.path);
    const IconResources icons = result == noErr ? iconsOfCurrentFile() : IconResources();   // while no bytes are loaded
    SetResLoad(true);
    if (options.json)
        std::fputs(jsonText(Json::array({result == noErr ? iconsJson(options.path, icons) : errorJson(options.path, result)})).c_str(),
                   stdout);
    else if (result == noErr)
        drawSheet(invocation, options, icons);
}

Action declareIcons(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("FILE", options->path, "a file with resources; what a symbolic link leads to");
    const Arguments::Item output = addPictureFile(arguments, options->picture);
    arguments.number("--columns", "N", options->columns, mostColumns, "icons in a row, at most; 8 if not given").needs(output);
    arguments
        .text(
            "--background", "COLOR", [options](const std::string &typed) { options->background = colorFromText(typed); },
            "what is behind the icons: six hexadecimal digits, or white, light-gray, gray, dark-gray, black")
        .needs(output);
    arguments.json(options->json, "instead of a picture, one array with one object for the file").excludes(output);
    arguments.finalCheck([options] {
        if (!options->json && options->picture.name.empty())
            throw UsageError("either -o says where the sheet goes, or --json asks for a list");
        if (options->columns == 0)
            throw UsageError("a sheet has at least one column");
    });
    return [options](Invocation &invocation) { work(invocation, *options); };
}

}   // namespace

const Command iconsCommand = {
    "icons",
    "Draw all icons of a resource file on one sheet, or list them",
    "Each cell of the sheet has one family: large above small, 1, 4 and 8 bits from left to right, then ID and name.\n"
    "Lists of small icons (SICN) come after the families. An empty gray frame is a member that is damaged.\n",
    "  zerb icons Tools.rsrc -o sheet.png\n"
    "  zerb icons Tools.rsrc -o sheet.png --columns 16 --scale 2 --background c0c0c0\n"
    "  zerb icons --json ._Picture | jq '.[].families[].id'\n",
    declareIcons,
};

}   // namespace host
