// zerb copy: copies files with all that belongs to them.
#include "host/commands.h"

#include "host/commands/copying.h"
#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"
#include "standin/standin.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;   // the last one is the destination
    Links links = Links::follow;
    CopyWay way = CopyWay::service;
    bool sync = false;
    bool verbose = false;
    ProgressWish progress;
};

struct Source
{
    std::string path;
    FSRef ref;
    UInt64 size = 0;
};

struct Destination
{
    FSRef folder;
    std::string folderPath;
    std::optional<std::string> name;   // where the destination is no folder that is there
};

// Tells of one file after the other what the volume tells of each, which counts a little differently.
class CopyMeter
{
public:
    CopyMeter(ProgressStyle style, UInt64 total) : progress_(style, "copying", ProgressUnit::bytes, total)
    {
        standin::setCopyProgress([this](std::uint64_t done, std::uint64_t) { reach(done); });
    }
    CopyMeter(const CopyMeter &) = delete;
    CopyMeter &operator=(const CopyMeter &) = delete;
    ~CopyMeter() { standin::setCopyProgress({}); }

    void beginFile(UInt64 size)
    {
        size_ = size;
        done_ = 0;
    }

    void advance(UInt64 by) { reach(done_ + by); }
    void endFile() { reach(size_); }
    void clear() { progress_.clear(); }

private:
    void reach(UInt64 done)
    {
        done = std::min(done, size_);
        if (done <= done_)
            return;
        progress_.advance(done - done_);
        done_ = done;
    }

    Progress progress_;
    UInt64 size_ = 0, done_ = 0;
};

// ---------------------------------------------------------------------------------------------------------------------
// Where to

OSStatus findFolder(const std::string &path, FSRef &folder)
{
    FSCatalogInfo catalog = {};
    OSStatus result = findObject(path, Links::follow, folder);
    if (result == noErr)
        result = FSGetCatalogInfo(&folder, kFSCatInfoNodeFlags, &catalog, nullptr, nullptr, nullptr);
    return result == noErr && !isFolder(catalog) ? OSStatus(errFSNotAFolder) : result;
}

std::string folderPathOf(const std::string &path)
{
    std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// A folder that is there, or for one file a new name in one. A result that is not noErr is reported.
OSStatus findDestination(Invocation &invocation, const Options &options, Destination &destination)
{
    const std::string &path = options.paths.back();
    bool mayBeName = options.paths.size() == 2 && !path.empty() && !path.ends_with('/');
    OSStatus result = findFolder(path, destination.folder);
    destination.folderPath = path;
    if (mayBeName && (result == fnfErr || result == errFSNotAFolder))
    {
        destination.name = lastNameOf(path);
        destination.folderPath = folderPathOf(path);
        result = findFolder(destination.folderPath, destination.folder);
    }
    if (result != noErr)
        invocation.report.failure(destination.folderPath, result, "copying to it");
    return result;
}

// ---------------------------------------------------------------------------------------------------------------------
// What

bool findSource(Invocation &invocation, const std::string &path, Links links, Source &source)
{
    FSCatalogInfo catalog = {};
    OSStatus result = findObject(path, links, source.ref);
    if (result == noErr)
        result = FSGetCatalogInfo(&source.ref, kindInfo | kFSCatInfoDataSizes | kFSCatInfoRsrcSizes, &catalog, nullptr, nullptr, nullptr);
    if (result != noErr)
        invocation.report.failure(path, result);
    else if (isFolder(catalog))
        invocation.report.problem(path, "is a folder; only files are copied here");
    source.path = path;
    source.size = kindOf(catalog) == Kind::file ? totalSizeOf(catalog) : 0;
    return result == noErr && !isFolder(catalog);
}

std::vector<Source> findSources(Invocation &invocation, const Options &options)
{
    std::vector<Source> sources;
    for (std::size_t index = 0; index + 1 < options.paths.size(); ++index)
    {
        Source source;
        if (findSource(invocation, options.paths[index], options.links, source))
            sources.push_back(std::move(source));
    }
    return sources;
}

// ---------------------------------------------------------------------------------------------------------------------
// Copying

void reportFailure(Invocation &invocation, const Source &source, const std::string &newPath, OSErr result, CopyWay way)
{
    std::string step = "copying to " + printable(newPath);
    if (result == notAFileErr)
        return invocation.report.problem(source.path, step + ": " + describeResult(result) + ": only plain files can be copied" +
                                                          (way == CopyWay::service ? ", and symbolic links themselves" : " by forks"));
    invocation.report.failure(source.path, result, step);
    if (result == paramErr && way == CopyWay::service && !offersCopying(source.ref))
        invocation.report.remark(source.path, "its volume has no service that copies files; --by-forks does without");
}

void copyTo(Invocation &invocation, const Source &source, const Destination &destination, const Options &options, CopyMeter &meter)
{
    // A link that is followed gives its own name, not that of what it leads to.
    std::string name = destination.name.value_or(lastNameOf(source.path));
    std::string newPath = pathInFolder(destination.folderPath, name);
    meter.beginFile(source.size);
    CopyTarget target{destination.folder, nameFromPathComponent(name)};
    if (!target.name)
        return reportFailure(invocation, source, newPath, errFSNameTooLong, options.way);
    Copied copied = copyFile(invocation.plugin, source.ref, target, options.way, [&](UInt64 by) { meter.advance(by); });
    if (copied.result == noErr)
        meter.endFile();
    if (copied.result != noErr || options.verbose)
        meter.clear();
    if (copied.result != noErr)
        return reportFailure(invocation, source, newPath, copied.result, options.way);
    if (options.verbose)
        std::printf("%s -> %s, %s\n", printable(source.path).c_str(), printable(newPath).c_str(), copied.way);
}

void copyAll(Invocation &invocation, const Options &options)
{
    Destination destination;
    if (findDestination(invocation, options, destination) != noErr)
        return;
    std::vector<Source> sources = findSources(invocation, options);
    UInt64 total = 0;
    for (const Source &source : sources)
        total += source.size;
    standin::setSyncsCopies(options.sync);
    CopyMeter meter(sources.empty() ? ProgressStyle::none : progressStyle(options.progress), total);
    for (const Source &source : sources)
        copyTo(invocation, source, destination, options, meter);
}

void checkOptions(const Options &options)
{
    if (options.paths.size() < 2)
        throw UsageError("the destination is missing");
}

Action declareCopy(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->paths, "files, and behind them the folder to copy them to; or one file and its copy's path");
    arguments.links(options->links);
    Arguments::Item forks = arguments.flag(
        "--by-forks", [options] { options->way = CopyWay::forks; }, "through this program, for volumes that do not copy files");
    arguments.flag("--sync", options->sync, "each copy is on the disk itself before the next one begins").excludes(forks);
    arguments.flag("-v,--verbose", options->verbose, "say what was copied, and how");
    arguments.progress(options->progress);
    arguments.finalCheck([options] { checkOptions(*options); });
    return [options](Invocation &invocation) { copyAll(invocation, *options); };
}

}   // namespace

const Command copyCommand = {
    "copy",
    "Copy files with both forks and all metadata",
    "The volume copies: data, resource fork, type, flags, dates and attributes. Nothing is ever replaced: a file of that\n"
    "name is a failure (dupFNErr). Folders are not copied. A copy is there as a whole or not at all.\n"
    "A new name that has more than 31 bytes in the system's text encoding, or characters outside ASCII, is given in a\n"
    "second step: until then the copy is called zerb-NUMBER, also on the disk where --sync is given.\n"
    "With --by-forks both forks and the catalog's information are copied, and other attributes of Linux are not.\n",
    "  zerb copy Letter1 Letter2 Folder\n"
    "  zerb copy -v Letter 'Letter to Ada'\n"
    "  zerb copy --sync --progress Film.mov /Volumes/Archive\n"
    "  zerb copy --by-forks Letter Copy\n",
    declareCopy,
};

}   // namespace host
