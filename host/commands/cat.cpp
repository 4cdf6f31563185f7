// zerb cat: writes data forks to standard output, by paths with colons.
#include "host/commands.h"

#include "host/commands/colon_paths.h"
#include "host/commands/fork_bytes.h"

#include "platform/files.h"

#include <cstdio>
#include <limits>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;
    PathEncoding encoding;
};

bool writeOut(std::span<const char> bytes)
{
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
}

void show(Invocation &invocation, const std::string &typed, const Options &options, const CopyBuffer &buffer)
{
    Str255 path;
    SInt16 fork = 0;
    if (!takeColonPath(invocation, typed, options.encoding, path))
        return;
    OSErr result = invocation.plugin.FSpOpenDF2(path, options.encoding.encoding, fsRdPerm, &fork);
    if (result != noErr)
        return invocation.report.failure(typed, result);
    result = readFork(fork, 0, std::numeric_limits<UInt64>::max(), buffer, writeOut);
    FSCloseFork(fork);   // of a fork that was only read
    if (result != noErr)
        invocation.report.failure(typed, result, "reading stopped");
}

Action declareCat(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("COLONPATH", options->paths, "files, such as :Work:Notes");
    addPathEncodingOption(arguments, options->encoding);
    return [options](Invocation &invocation) {
        const CopyBuffer buffer(invocation.plugin);
        for (const std::string &path : options->paths)
            show(invocation, path, *options, buffer);
    };
}

}   // namespace

const Command catCommand = {
    "cat",
    "Write the data forks of files to standard output, by paths with colons",
    "The bytes come as they are, one file after the other. `zerb forks dump` shows them in digits, and resource\n"
    "forks too.\n",
    "  zerb cat :Work:Reply\n"
    "  zerb cat --encoding roman :Work:Résumé\n",
    declareCat,
};

}   // namespace host
