// zerb mv: moves objects into another folder of their volume.
#include "host/commands.h"

#include "host/commands/moving.h"
#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;   // the last one is the folder
    std::optional<std::string> newName;
    MovingWay way = MovingWay::automatic;
    bool verbose = false;
};

void moveAt(Invocation &invocation, const std::string &path, const FSRef &folder, const std::string &folderPath, const Options &options)
{
    FSRef object;
    OSStatus result = findItself(path, object);
    if (result != noErr)
        return invocation.report.failure(path, result);
    std::optional<HFSUniStr255> name;
    if (options.newName)
        name = nameFromText(*options.newName);
    Moved moved = moveObject(invocation.plugin, object, folder, name, options.way);
    if (moved.result != noErr)
        return invocation.report.failure(path, moved.result, "moving to " + printable(folderPath));
    std::string newPath = pathInFolder(folderPath, options.newName.value_or(lastNameOf(path)));
    if (options.verbose)
        std::printf("%s -> %s, %s\n", printable(path).c_str(), printable(newPath).c_str(), moved.way);
}

void moveAll(Invocation &invocation, const Options &options)
{
    const std::string &folderPath = options.paths.back();
    FSRef folder;
    FSCatalogInfo catalog = {};
    OSStatus result = findObject(folderPath, Links::follow, folder);
    if (result == noErr)
        result = FSGetCatalogInfo(&folder, kFSCatInfoNodeFlags, &catalog, nullptr, nullptr, nullptr);
    if (result == noErr && !isFolder(catalog))
        result = errFSNotAFolder;
    if (result != noErr)
        return invocation.report.failure(folderPath, result);
    for (std::size_t index = 0; index + 1 < options.paths.size(); ++index)
        moveAt(invocation, options.paths[index], folder, folderPath, options);
}

void checkOptions(const Options &options)
{
    if (options.paths.size() < 2)
        throw UsageError("the folder to move to is missing");
    if (options.newName && options.paths.size() > 2)
        throw UsageError("--name: only one object can get a name");
}

Action declareMv(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->paths, "files, folders or links, and behind them the folder to move them to");
    auto readName = [options](const std::string &text) {
        nameFromText(text);
        options->newName = text;
    };
    arguments.text("--name", "NAME", readName, "give the object this name there");
    addMovingWays(arguments, options->way);
    arguments.flag("-v,--verbose", options->verbose, "say what was moved, and how");
    arguments.finalCheck([options] { checkOptions(*options); });
    return [options](Invocation &invocation) { moveAll(invocation, *options); };
}

}   // namespace

const Command mvCommand = {
    "mv",
    "Move files and folders to another folder",
    "All that belongs to an object goes with it. Nothing is ever replaced: an object of that name in the folder is\n"
    "a failure (dupFNErr), as is a folder on another volume (diffVolErr). A symbolic link is moved itself.\n"
    "With --name, a file moves in one step where the volume can do that and the name has at most 31 characters, all\n"
    "of them in Mac Roman; otherwise it has a temporary name for a moment, and an error takes all steps back.\n",
    "  zerb mv Letter1 Letter2 Folder\n"
    "  zerb mv -v Draft --name 'Letter 3' Folder\n"
    "  zerb mv --compat Letter1 Folder\n",
    declareMv,
};

}   // namespace host
