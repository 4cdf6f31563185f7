// zerb forks: what files contain, fork by fork. Dumping, exporting and importing live in sources beside this one.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/fork_bytes.h"
#include "host/json_text.h"
#include "host/text.h"

#include "platform/files.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

// ---------------------------------------------------------------------------------------------------------------------
// list

struct ListOptions
{
    std::vector<std::string> paths;
    bool json = false;
};

struct ForkRow
{
    std::string name;
    UInt64 logicalSize, physicalSize;
};

struct ForkList
{
    std::vector<ForkRow> rows;
    UInt64 logicalTotal = 0, physicalTotal = 0;
    UInt32 count = 0;
};

OSErr listForks(const Plugin &plugin, const FSRef &file, ForkList &list)
{
    CatPositionRec position = {};
    OSErr result = noErr;
    while (result == noErr)
    {
        HFSUniStr255 name = {};
        SInt64 logicalSize = 0;
        UInt64 physicalSize = 0;
        result = FSIterateForks(&file, &position, &name, &logicalSize, &physicalSize);
        if (result == noErr)
            list.rows.push_back({bytesFromName(name), static_cast<UInt64>(logicalSize), physicalSize});
    }
    if (result != errFSNoMoreItems)
        return result;
    return plugin.FSGetTotalForkSizes(&file, &list.logicalTotal, &list.physicalTotal, &list.count);
}

void showSizes(const std::string &name, UInt64 logicalSize, UInt64 physicalSize)
{
    std::printf("  %-14s %15s bytes %15s on disk\n", printable(name).c_str(), grouped(logicalSize).c_str(), grouped(physicalSize).c_str());
}

// The data fork's name is empty.
void showForks(const std::string &path, const ForkList &list)
{
    std::printf("%s\n", printable(path).c_str());
    for (const ForkRow &row : list.rows)
        showSizes(row.name.empty() ? "data fork" : row.name, row.logicalSize, row.physicalSize);
    showSizes(std::to_string(list.count) + (list.count == 1 ? " fork" : " forks"), list.logicalTotal, list.physicalTotal);
}

Json forksJson(const std::string &path, const ForkedFile &file, const ForkList &list)
{
    Json rows = Json::array();
    for (const ForkRow &row : list.rows)
        rows.push_back({{"name", row.name}, {"logical_size", row.logicalSize}, {"physical_size", row.physicalSize}});
    return {{"path", path},
            {"forks", std::move(rows)},
            {"data_size", file.dataSize},
            {"resource_size", file.resourceSize},
            {"total", {{"forks", list.count}, {"logical_size", list.logicalTotal}, {"physical_size", list.physicalTotal}}}};
}

// A result that is not noErr is reported.
OSStatus listAt(Invocation &invocation, const std::string &path, ForkedFile &file, ForkList &list)
{
    if (OSStatus result = findForkedFile(invocation, path, file))
        return result;
    OSErr result = listForks(invocation.plugin, file.ref, list);
    if (result != noErr)
        invocation.report.failure(path, result);
    return result;
}

void listAll(Invocation &invocation, const ListOptions &options)
{
    Json all = Json::array();
    for (const std::string &path : options.paths)
    {
        ForkedFile file;
        ForkList list;
        OSStatus result = listAt(invocation, path, file, list);
        if (options.json)
            all.push_back(result == noErr ? forksJson(path, file, list) : errorJson(path, result));
        else if (result == noErr)
            showForks(path, list);
    }
    if (options.json)
        std::fputs(jsonText(all).c_str(), stdout);
}

Action declareList(Arguments &arguments)
{
    auto options = std::make_shared<ListOptions>();
    arguments.paths("FILE", options->paths, "files; what a symbolic link leads to");
    arguments.json(options->json);
    return [options](Invocation &invocation) { listAll(invocation, *options); };
}

const Part listPart = {
    "list",
    "Show which forks files have, and their sizes",
    "The bytes of each fork, what they take on the disk, and both for all forks together. A resource fork without\n"
    "bytes is not listed.\n",
    "  zerb forks list Letter\n"
    "  zerb forks list --json *.rsrc\n",
    declareList,
};

// ---------------------------------------------------------------------------------------------------------------------
// copy

struct CopyOptions
{
    std::string from, to;
    std::optional<ForkKind> only;
    bool verbose = false;
};

bool isSameObject(const FSRef &one, const FSRef &other)
{
    FSCatalogInfo a = {}, b = {};
    constexpr FSCatalogInfoBitmap identity = kFSCatInfoVolume | kFSCatInfoParentDirID | kFSCatInfoNodeID;
    if (FSGetCatalogInfo(&one, identity, &a, nullptr, nullptr, nullptr) != noErr ||
        FSGetCatalogInfo(&other, identity, &b, nullptr, nullptr, nullptr) != noErr)
        return false;
    return a.volume == b.volume && a.parentDirID == b.parentDirID && a.nodeID == b.nodeID;
}

// The resource fork first: it is the one that a disk may not be able to keep.
void copyForks(Invocation &invocation, const CopyOptions &options)
{
    ForkedFile from, to;
    if (findForkedFile(invocation, options.from, from) != noErr || findForkedFile(invocation, options.to, to) != noErr)
        return;
    if (isSameObject(from.ref, to.ref))
        return invocation.report.problem(options.to, "is the file itself that is to be copied");
    CopyBuffer buffer(invocation.plugin);
    for (ForkKind kind : {ForkKind::resource, ForkKind::data})
    {
        if (options.only && options.only != kind)
            continue;
        OSErr result = copyFork(invocation.plugin, from, to, kind, buffer);
        if (result != noErr)
            return invocation.report.failure(options.to, result,
                                             "copying the " + std::string(nameOfFork(kind)) + " of " + printable(options.from));
        if (options.verbose)
            std::printf("%s -> %s, %s, %s\n", printable(options.from).c_str(), printable(options.to).c_str(), nameOfFork(kind),
                        sizeText(from.sizeOf(kind)).c_str());
    }
}

Action declareCopy(Arguments &arguments)
{
    auto options = std::make_shared<CopyOptions>();
    arguments.path("FROM", options->from, "the file to read");
    arguments.path("TO", options->to, "a file that is there; its forks get the bytes");
    Arguments::Item data = arguments.flag(
        "--data", [options] { options->only = ForkKind::data; }, "only the data fork");
    arguments
        .flag(
            "--resource", [options] { options->only = ForkKind::resource; }, "only the resource fork")
        .excludes(data);
    arguments.flag("-v,--verbose", options->verbose, "say what was copied");
    return [options](Invocation &invocation) { copyForks(invocation, *options); };
}

const Part copyPart = {
    "copy",
    "Copy forks of one file over those of another",
    "Both forks unless one is named. The forks of TO are written in place: a failure on the way leaves them partly\n"
    "written. Type, creator, dates and flags are not copied; `zerb attrs` does that, and `zerb copy` makes new files.\n",
    "  zerb forks copy Original Damaged\n"
    "  zerb forks copy --resource Template Letter\n",
    declareCopy,
};

const Part *const partOrder[] = {&listPart, &forksDumpPart, &forksExportPart, &forksImportPart, &copyPart};

Action declareForks(Arguments &arguments)
{
    return declareParts(arguments, partOrder);
}

}   // namespace

const Command forksCommand = {
    "forks",
    "List, show, save, replace and copy forks of files",
    "A file has a data fork, which is what Linux sees of it, and may have a resource fork.\n"
    "`zerb forks PART --help` explains each part.\n",
    "  zerb forks list Letter\n"
    "  zerb forks dump --resource Letter\n"
    "  zerb forks export --resource Letter --to Letter.rsrc\n"
    "  zerb forks import --resource Letter --from Letter.rsrc\n"
    "  zerb forks copy --resource Template Letter\n",
    declareForks,
};

}   // namespace host
