// zerb swap: exchanges two files.
#include "host/commands.h"

#include "host/commands/trees.h"
#include "host/text.h"

#include "platform/files.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::string first, second;
    bool verbose = false;
};

bool isSameReference(const FSRef &one, const FSRef &other)
{
    return std::memcmp(&one, &other, sizeof one) == 0;
}

void exchange(Invocation &invocation, const Options &options)
{
    FSRef first, second, newFirst, newSecond;
    for (auto [path, ref] : {std::pair(&options.first, &first), std::pair(&options.second, &second)})
        if (OSStatus result = findItself(*path, *ref))
            return invocation.report.failure(*path, result);
    OSErr result = invocation.plugin.FSExchangeObjectsCompat(&first, &second, &newFirst, &newSecond);
    if (result != noErr)
        return invocation.report.failure(options.first, result, "exchanging with " + printable(options.second));
    // Where the volume exchanges, the references stay as they were; otherwise each comes to name what stands in its place now.
    bool isNative = isSameReference(first, newFirst) && isSameReference(second, newSecond);
    if (options.verbose)
        std::printf("%s <-> %s, %s\n", printable(options.first).c_str(), printable(options.second).c_str(),
                    isNative ? "by the volume" : "by renaming and moving");
}

Action declareSwap(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("FILE", options->first, "a file");
    arguments.path("OTHER", options->second, "the file to exchange it with, on the same volume");
    arguments.flag("-v,--verbose", options->verbose, "say what was exchanged, and how");
    return [options](Invocation &invocation) { exchange(invocation, *options); };
}

}   // namespace

const Command swapCommand = {
    "swap",
    "Exchange two files",
    "Each name then has the other's contents, both forks of them, and the modification date that goes with these; type,\n"
    "flags and the other dates stay with the name. The volume does it if it can; otherwise the files are renamed, moved\n"
    "and their attributes put back. An error takes all steps back. Folders cannot be exchanged.\n",
    "  zerb swap Letter 'Letter, edited'\n"
    "  zerb swap -v Letter Folder/Letter\n",
    declareSwap,
};

}   // namespace host
