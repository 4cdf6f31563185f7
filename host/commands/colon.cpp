// zerb colon: paths with colons, and back.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/colon_paths.h"
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
    std::vector<std::string> paths;
    bool isFromColons = false;
    bool json = false;
};

// One path in both forms.
struct BothForms
{
    std::string colonPath;
    std::string path;
    bool leadsBack = true;
};

OSStatus catalogOf(const FSRef &ref, FSCatalogInfo &catalog, FSSpec *spec)
{
    constexpr FSCatalogInfoBitmap which = kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoNodeID | kFSCatInfoParentDirID;
    return FSGetCatalogInfo(&ref, which, &catalog, nullptr, spec, nullptr);
}

// Whether the path of a colon path is that of the same object: a short form of a name, and a '/' in one, do not lead back.
bool leadsTo(const std::string &colonPath, const FSCatalogInfo &catalog)
{
    FSRef ref;
    FSCatalogInfo found = {};
    return findObject(slashedPath(colonPath), Links::follow, ref) == noErr && catalogOf(ref, found, nullptr) == noErr &&
           found.volume == catalog.volume && found.nodeID == catalog.nodeID && found.parentDirID == catalog.parentDirID;
}

// A folder's own colon path ends with a colon; a file's is its folder's and the short name.
OSStatus colonsOf(const Plugin &plugin, const std::string &path, BothForms &forms)
{
    FSRef ref;
    FSSpec spec;
    FSCatalogInfo catalog = {};
    OSStatus result = findObject(path, Links::follow, ref);
    if (result == noErr)
        result = catalogOf(ref, catalog, &spec);
    if (result != noErr)
        return result;
    const bool isFolder = (catalog.nodeFlags & kFSNodeIsDirectoryMask) != 0;
    result =
        colonPathOfFolder(plugin, catalog.volume, static_cast<SInt32>(isFolder ? catalog.nodeID : catalog.parentDirID), forms.colonPath);
    if (result != noErr)
        return result;
    if (!isFolder)
        forms.colonPath += utf8FromPascal(spec.name);
    forms.leadsBack = leadsTo(forms.colonPath, catalog);
    return pathOfObject(ref, forms.path);
}

OSStatus slashesOf(const std::string &colonPath, BothForms &forms)
{
    FSRef ref;
    forms.colonPath = colonPath;
    const OSStatus result = findObject(slashedPath(colonPath), Links::follow, ref);
    return result == noErr ? pathOfObject(ref, forms.path) : result;
}

void reportFailure(Report &report, const std::string &path, OSStatus result)
{
    report.failure(path, result);
    if (result == diffVolErr)
        report.remark(path, "a path with colons leads to the startup volume alone");
    if (result == bdNamErr)
        report.remark(path, "a path with colons has room for 255 bytes");
}

void show(Invocation &invocation, const Options &options)
{
    Json list = Json::array();
    for (const std::string &path : options.paths)
    {
        BothForms forms;
        const OSStatus result = options.isFromColons ? slashesOf(path, forms) : colonsOf(invocation.plugin, path, forms);
        if (result != noErr)
        {
            reportFailure(invocation.report, path, result);
            list.push_back(errorJson(path, result));
            continue;
        }
        if (!forms.leadsBack)
            invocation.report.remark(path,
                                     "this path with colons does not lead back: a name on the way is a short form, or has a '/' in it");
        if (!options.json)
            std::printf("%s\n", printable(options.isFromColons ? forms.path : forms.colonPath).c_str());
        list.push_back({{"asked_for", path}, {"colon_path", forms.colonPath}, {"path", forms.path}, {"leads_back", forms.leadsBack}});
    }
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

Action declareColon(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->paths, "files or folders; with --from instead: paths with colons");
    arguments.flag("--from", options->isFromColons, "make paths with slashes of paths with colons");
    arguments.json(options->json);
    return [options](Invocation &invocation) { show(invocation, *options); };
}

}   // namespace

const Command colonCommand = {
    "colon",
    "Show paths with colons, as older applications write them, and back",
    "A path with colons begins with one and has no volume's name in it: it leads to the startup volume. That of a\n"
    "folder ends with a colon. Names are those of Macintosh software, of at most 31 bytes; where a longer name got a\n"
    "short form, or where a name has a '/' in it (which is a ':' on the disk), the path does not lead back, and a\n"
    "remark says so. Symbolic links are followed.\n",
    "  zerb colon Letter Work\n"
    "  zerb colon --from :Work:Reply\n"
    "  zerb colon --json Work\n",
    declareColon,
};

}   // namespace host
