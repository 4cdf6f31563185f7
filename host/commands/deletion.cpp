#include "host/commands/deletion.h"

#include "host/commands/trees.h"

#include <vector>

namespace host
{

namespace
{

struct FoundFolder
{
    FSRef ref;
    UInt64 files = 0;
};

// The folder itself and all below it, each before those that lie in it, with the number of the files directly inside.
// A failure to look is left to the deletion, which meets it again.
std::vector<FoundFolder> foldersOf(const Plugin &plugin, const FSRef &folder)
{
    std::vector<FoundFolder> found = {{folder}};
    std::vector<std::size_t> open = {0};   // by level: the folder whose contents come now
    auto add = [&](UInt32 level, const FSCatalogInfo &catalog, const FSRef &ref, const HFSUniStr255 *) {
        open.resize(level);
        if (!isFolder(catalog))
        {
            ++found[open.back()].files;
            return false;
        }
        open.push_back(found.size());
        found.push_back({ref});
        return false;
    };
    walkFolder(plugin, folder, 0, kFSCatInfoNodeFlags, false, add);
    return found;
}

UInt64 objectsIn(const std::vector<FoundFolder> &folders)
{
    UInt64 objects = 0;
    for (const FoundFolder &folder : folders)
        objects += 1 + folder.files;
    return objects;
}

OSErr deleteAll(const Plugin &plugin, const FSRef &folder, DeletionScope scope)
{
    return scope == DeletionScope::contentsAlone ? plugin.FSDeleteContainerContents(&folder) : plugin.FSDeleteContainer(&folder);
}

}   // namespace

OSErr deleteTree(const Plugin &plugin, const FSRef &folder, DeletionScope scope, ProgressStyle style)
{
    if (style == ProgressStyle::none)
        return deleteAll(plugin, folder, scope);
    std::vector<FoundFolder> folders = foldersOf(plugin, folder);
    UInt64 kept = scope == DeletionScope::contentsAlone ? 1 : 0;
    Progress progress(style, "deleting", ProgressUnit::objects, objectsIn(folders) - kept);
    for (std::size_t index = folders.size() - 1; index > 0; --index)
    {
        if (OSErr result = plugin.FSDeleteContainer(&folders[index].ref))
            return result;
        progress.advance(1 + folders[index].files);
    }
    OSErr result = deleteAll(plugin, folder, scope);
    if (result == noErr)
        progress.advance(1 + folders[0].files - kept);
    return result;
}

TreeCount countTree(const Plugin &plugin, const FSRef &folder)
{
    TreeCount count;
    auto add = [&](UInt32, const FSCatalogInfo &catalog, const FSRef &, const HFSUniStr255 *) {
        ++(isFolder(catalog) ? count.folders : count.files);
        return false;
    };
    walkFolder(plugin, folder, 0, kFSCatInfoNodeFlags, false, add);
    return count;
}

}   // namespace host
