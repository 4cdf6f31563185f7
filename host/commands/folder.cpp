// zerb folder: the system's special folders.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/colon_paths.h"
#include "host/objects.h"
#include "host/text.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Kind
{
    const char *word;
    const char *meaning;
    decltype(&::ZerbFindPrefFolder) Plugin::*find;   // null: the library's own folder, which is made where it is missing
};

constexpr Kind kinds[] = {
    {"preferences", "preferences for all users", &Plugin::ZerbFindPrefFolder},
    {"user-preferences", "this user's preferences", &Plugin::ZerbFindUserPrefFolder},
    {"system-desktop", "the system's desktop folder", &Plugin::ZerbFindSysFolder},
    {"shared", "the library's own folder in what all users share", nullptr},
};

struct Options
{
    std::vector<std::string> words;
    bool json = false;
};

struct FoundFolder
{
    std::string path;
    std::string colonPath;   // empty where the folder is not on the startup volume
    std::string name;
};

std::string lastName(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

OSErr pathOfFolder(const Plugin &plugin, FSVolumeRefNum volume, SInt32 folderID, std::string &path)
{
    const auto write = [&](UInt8 *buffer, UInt32 size) { return plugin.FSMakePath(volume, folderID, nullptr, buffer, size); };
    return static_cast<OSErr>(writtenPath(write, path));
}

OSErr findShared(const Plugin &plugin, FoundFolder &folder)
{
    Str255 path;
    const OSErr result = plugin.ZerbFindSharedUserFolder(path);
    if (result != noErr)
        return result;
    folder.colonPath = utf8FromPascal(path);
    folder.path = slashedPath(folder.colonPath);
    folder.path.pop_back();
    folder.name = utf8FromPascal(*plugin.ZerbSharedFolderName);
    return noErr;
}

OSErr findFolderOf(const Plugin &plugin, const Kind &kind, FoundFolder &folder)
{
    SInt16 volume = 0;
    SInt32 folderID = 0;
    if (kind.find == nullptr)
        return findShared(plugin, folder);
    OSErr result = (plugin.*kind.find)(&volume, &folderID);
    if (result == noErr)
        result = pathOfFolder(plugin, volume, folderID, folder.path);
    if (result != noErr)
        return result;
    folder.name = lastName(folder.path);
    result = colonPathOfFolder(plugin, volume, folderID, folder.colonPath);
    return result == diffVolErr ? static_cast<OSErr>(noErr) : result;
}

const Kind &kindNamed(const std::string &word)
{
    const auto found = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind &kind) { return word == kind.word; });
    if (found == std::end(kinds))
        throw UsageError("\"" + word + "\" is none of preferences, user-preferences, system-desktop and shared");
    return *found;
}

std::vector<const Kind *> wantedKinds(const Options &options)
{
    std::vector<const Kind *> wanted;
    for (const std::string &word : options.words)
        wanted.push_back(&kindNamed(word));
    if (wanted.empty())
        for (const Kind &kind : kinds)
            if (kind.find != nullptr)
                wanted.push_back(&kind);
    return wanted;
}

Json folderJson(const Kind &kind, const FoundFolder &folder)
{
    Json json = {{"kind", kind.word}, {"meaning", kind.meaning}, {"name", folder.name}, {"path", folder.path}};
    json["colon_path"] = folder.colonPath.empty() ? Json(nullptr) : Json(folder.colonPath);
    return json;
}

void showFolder(const Kind &kind, const FoundFolder &folder)
{
    std::printf("%s\n  name        %s\n  path        %s\n", kind.word, printable(folder.name).c_str(), printable(folder.path).c_str());
    const std::string colonPath = folder.colonPath.empty() ? "none: it is not on the startup volume" : printable(folder.colonPath);
    std::printf("  colon path  %s\n", colonPath.c_str());
}

void show(Invocation &invocation, const Options &options)
{
    Json list = Json::array();
    for (const Kind *kind : wantedKinds(options))
    {
        FoundFolder folder;
        const OSErr result = findFolderOf(invocation.plugin, *kind, folder);
        if (result != noErr)
        {
            invocation.report.failure(kind->word, result);
            list.push_back({{"kind", kind->word}, {"meaning", kind->meaning}, {"error", resultJson(result)}});
            continue;
        }
        options.json ? list.push_back(folderJson(*kind, folder)) : showFolder(*kind, folder);
    }
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

Action declareFolder(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPaths("KIND", options->words,
                            "preferences, user-preferences, system-desktop or shared; without any: all but the last");
    arguments.json(options->json, "one array with one object per folder; \"error\" in it tells of a failure");
    arguments.finalCheck([options] { wantedKinds(*options); });
    return [options](Invocation &invocation) { show(invocation, *options); };
}

}   // namespace

const Command folderCommand = {
    "folder",
    "Find the system's special folders",
    "Shows the name of each folder, its path, and its path with colons. A folder that is missing is fnfErr, except\n"
    "for \"shared\": that is this library's own folder in the shared user data folder, and it is made. Where the folders\n"
    "lie, and which environment variables put them elsewhere, is told in docs/folders.md.\n",
    "  zerb folder\n"
    "  zerb folder --json user-preferences\n"
    "  zerb folder shared\n",
    declareFolder,
};

}   // namespace host
