// zerb touch: bumps modification dates.
#include "host/commands.h"

#include "host/dates.h"
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
    Links links = Links::follow;
    bool verbose = false;
};

OSErr modificationDate(const FSRef &ref, UTCDateTime &date)
{
    FSCatalogInfo info = {};
    OSErr result = FSGetCatalogInfo(&ref, kFSCatInfoContentMod, &info, nullptr, nullptr, nullptr);
    if (result == noErr)
        date = info.contentModDate;
    return result;
}

// Bumping does not report a date that could not be written, so the lock is asked for the reason.
void reportUnchanged(Invocation &invocation, const std::string &path, const FSRef &ref)
{
    const char *step = "the modification date could not be changed";
    OSErr lock = invocation.plugin.FSCheckLock(&ref);
    if (lock != noErr)
        invocation.report.failure(path, lock, step);
    else
        invocation.report.problem(path, step);
}

OSStatus bump(Invocation &invocation, const FSRef &ref, UTCDateTime &before, UTCDateTime &after)
{
    OSStatus result = modificationDate(ref, before);
    if (result == noErr)
        result = invocation.plugin.FSBumpDate(&ref);
    if (result == noErr)
        result = modificationDate(ref, after);
    return result;
}

void touch(Invocation &invocation, const std::string &path, const Options &options)
{
    FSRef ref;
    UTCDateTime before = {};
    UTCDateTime after = {};
    OSStatus result = findObject(path, options.links, ref);
    if (result == noErr)
        result = bump(invocation, ref, before, after);
    if (result != noErr)
        invocation.report.failure(path, result);
    else if (sameDate(before, after))
        reportUnchanged(invocation, path, ref);
    else if (options.verbose)
        std::printf("%s: %s -> %s\n", printable(path).c_str(), isoLocal(before).c_str(), isoLocal(after).c_str());
}

Action declareTouch(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->paths, "files, folders or links; they must exist");
    arguments.links(options->links);
    arguments.flag("-v,--verbose", options->verbose, "show the date before and after");
    return [options](Invocation &invocation) {
        for (const std::string &path : options->paths)
            touch(invocation, path, *options);
    };
}

}   // namespace

const Command touchCommand = {
    "touch",
    "Set modification dates to now",
    "Two calls within one tick of the clock still give two different dates. Nothing is created.\n",
    "  zerb touch Letter.txt\n"
    "  zerb touch -v Folder Folder/*\n",
    declareTouch,
};

}   // namespace host
