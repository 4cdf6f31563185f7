// zerb new: makes empty files by paths with colons.
#include "host/commands.h"

#include "host/commands/colon_paths.h"
#include "host/four_character_codes.h"

#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;
    PathEncoding encoding;
    OSType type = 0, creator = 0;
};

void make(Invocation &invocation, const std::string &typed, const Options &options)
{
    Str255 path;
    if (!takeColonPath(invocation, typed, options.encoding, path))
        return;
    const OSErr result = invocation.plugin.FSpCreate2(path, options.encoding.encoding, options.creator, options.type);
    if (result == noErr)
        return;
    invocation.report.failure(typed, result);
    if (result == fnfErr && typed.rfind(':') == 0)
        invocation.report.remark(typed, "a file in the root is made with two colons, as :" + typed);
    else if (result == fnfErr || result == dirNFErr)
        invocation.report.remark(typed, "the folder that it is to lie in has to be there, as :Work: is for :Work:Notes");
}

Action declareNew(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("COLONPATH", options->paths, "files to be made, such as :Work:Notes");
    arguments.text(
        "--type", "TYPE", [options](const std::string &typed) { options->type = codeFromText(typed); }, "the files' type, such as TEXT");
    arguments.text(
        "--creator", "CREATOR", [options](const std::string &typed) { options->creator = codeFromText(typed); },
        "the files' creator, such as ttxt");
    addPathEncodingOption(arguments, options->encoding);
    return [options](Invocation &invocation) {
        for (const std::string &path : options->paths)
            make(invocation, path, *options);
    };
}

}   // namespace

const Command newCommand = {
    "new",
    "Make empty files by paths with colons",
    "Makes each file with its type and creator; the rest of its Finder information is zero. The folder that it is to\n"
    "lie in has to be there; a file in the root is written with two colons, as ::Notes. Nothing is\n"
    "replaced: a name that is taken is dupFNErr.\n",
    "  zerb new --type TEXT --creator ttxt :Work:Notes\n"
    "  zerb new --encoding roman :Work:Résumé\n",
    declareNew,
};

}   // namespace host
