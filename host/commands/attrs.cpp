// zerb attrs: copies the attributes of one object to others.
#include "host/commands.h"

#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::string source;
    std::vector<std::string> destinations;
    Links links = Links::follow;
    bool withLock = false;
};

OSStatus findWithKind(Invocation &invocation, const std::string &path, Links links, FSRef &ref, Boolean &isFolder)
{
    OSStatus result = findObject(path, links, ref);
    return result == noErr ? invocation.plugin.FSGetNodeID(&ref, nullptr, &isFolder) : result;
}

// The copy itself takes any two objects. But a file's type and creator are a folder's window, so only like goes to like here.
void copyTo(Invocation &invocation, const FSRef &source, bool sourceIsFolder, const std::string &path, const Options &options)
{
    FSRef destination;
    Boolean isFolder = false;
    OSStatus result = findWithKind(invocation, path, options.links, destination, isFolder);
    if (result == noErr && (isFolder != 0) != sourceIsFolder)
        return invocation.report.problem(path, sourceIsFolder ? "is a file, but the source is a folder"
                                                              : "is a folder, but the source is a file");
    if (result == noErr)
        result = invocation.plugin.FSCopyFileMgrAttributes(&source, &destination, options.withLock);
    if (result != noErr)
        invocation.report.failure(path, result);
}

void copyAttributes(Invocation &invocation, const Options &options)
{
    FSRef source;
    Boolean isFolder = false;
    OSStatus result = findWithKind(invocation, options.source, options.links, source, isFolder);
    if (result != noErr)
        return invocation.report.failure(options.source, result);
    for (const std::string &path : options.destinations)
        copyTo(invocation, source, isFolder != 0, path, options);
}

Action declareAttrs(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("SOURCE", options->source, "the object to copy from");
    arguments.paths("DEST", options->destinations, "the objects to copy to");
    arguments.links(options->links);
    arguments.flag("--with-lock", options->withLock, "copy the lock too; otherwise the destination ends unlocked");
    return [options](Invocation &invocation) { copyAttributes(invocation, *options); };
}

}   // namespace

const Command attrsCommand = {
    "attrs",
    "Copy attributes from one object to others",
    "Copied are type and creator, Finder flags and positions, the five dates, access rights and the encoding\n"
    "hint; contents and names are not. The mark that the Finder has seen an object (hasBeenInited) is always\n"
    "cleared in the copy.\n",
    "  zerb attrs Original Copy\n"
    "  zerb attrs --with-lock Original Copy1 Copy2\n",
    declareAttrs,
};

}   // namespace host
