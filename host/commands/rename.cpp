// zerb rename: gives an object another name in its folder.
#include "host/commands.h"

#include "host/commands/moving.h"
#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"
#include "platform/text.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::string path;
    std::string newName;
    MovingWay way = MovingWay::automatic;
    bool verbose = false;
};

// A name alone needs neither of the plug-in's ways, which are for moving too; but one may ask for them.
Moved renameObject(const Plugin &plugin, const FSRef &object, const HFSUniStr255 &name, MovingWay way)
{
    if (way == MovingWay::automatic)
    {
        FSRef renamed;
        return {FSRenameUnicode(&object, name.length, name.unicode, kTextEncodingUnknown, &renamed), "by renaming"};
    }
    FSRef folder;
    OSErr result = plugin.FSGetParentRef(&object, &folder);
    return result == noErr ? moveObject(plugin, object, folder, name, way) : Moved{result, ""};
}

void rename(Invocation &invocation, const Options &options)
{
    FSRef object;
    OSStatus result = findItself(options.path, object);
    if (result != noErr)
        return invocation.report.failure(options.path, result);
    Moved renamed = renameObject(invocation.plugin, object, nameFromText(options.newName), options.way);
    std::string shownName = printable(options.newName);
    if (renamed.result != noErr)
        return invocation.report.failure(options.path, renamed.result, "renaming to " + shownName);
    if (options.verbose)
        std::printf("%s -> %s, %s\n", printable(options.path).c_str(), shownName.c_str(), renamed.way);
}

Action declareRename(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("PATH", options->path, "a file, a folder or a link");
    arguments
        .text(
            "NAME", "",
            [options](const std::string &text) {
                nameFromText(text);
                options->newName = text;
            },
            "its new name")
        .require();
    addMovingWays(arguments, options->way);
    arguments.flag("-v,--verbose", options->verbose, "say what was renamed, and how");
    return [options](Invocation &invocation) { rename(invocation, *options); };
}

}   // namespace

const Command renameCommand = {
    "rename",
    "Give a file or folder another name",
    "Nothing is ever replaced: an object that has the name already is a failure (dupFNErr). A ':' in NAME, as in\n"
    "paths, is a '/' to Macintosh software. A symbolic link is renamed itself.\n",
    "  zerb rename Draft 'Letter 3'\n"
    "  zerb rename -v --native Draft Letter\n"
    "  zerb rename -- Draft -odd-name\n",
    declareRename,
};

}   // namespace host
