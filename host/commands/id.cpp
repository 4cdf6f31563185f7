// zerb id: numbers by which files are found again.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/volume_argument.h"
#include "host/json_text.h"
#include "host/text.h"

#include "platform/results.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> words;
    bool find = false;
    std::string volumePath = "/";
    bool verbose = false, json = false;
};

bool deliversID(OSStatus result)
{
    return result == noErr || result == fidExists || result == afpIDExists;
}

// What a person can do about it, behind what the code means.
const char *adviceFor(OSStatus result)
{
    switch (result)
    {
    case fidNotFound: return "; IDs belong to a volume: `--on PATH` names another one than the startup volume";
    case notAFileErr: return "; only files have IDs";
    case ioErr: return "; if the database of IDs is damaged (file-ids.sqlite, see $ZERB_STATE_FOLDER), moving it away begins a new one";
    case fBsyErr: return "; another process is writing IDs: try again";
    default: return "";
    }
}

void reportFailure(Invocation &invocation, const std::string &object, OSStatus result, Json &list)
{
    invocation.report.problem(object, describeResult(result) + ": " + meaningOfResult(result) + adviceFor(result));
    list.push_back(errorJson(object, result));
}

void giveID(Invocation &invocation, const Options &options, const std::string &path, Json &list)
{
    FSRef ref;
    UInt32 id = 0;
    OSStatus result = findObject(path, Links::follow, ref);
    if (result == noErr)
        result = invocation.plugin.FSCreateFileIDRef(&ref, &id);
    if (!deliversID(result))
        return reportFailure(invocation, path, result, list);
    list.push_back({{"path", path}, {"id", id}, {"is_new", result == noErr}});
    if (!options.json)
        std::printf("%u  %s%s\n", unsigned{id}, printable(path).c_str(),
                    !options.verbose  ? ""
                    : result == noErr ? "  (new)"
                                      : "  (as before)");
}

void findID(Invocation &invocation, const Options &options, FSVolumeRefNum volume, const std::string &word, Json &list)
{
    FSRef ref;
    std::string path;
    const UInt32 id = numberFromText(word, 0xFFFFFFFF);
    OSStatus result = invocation.plugin.FSResolveFileIDRef(volume, id, &ref);
    if (result == noErr)
        result = pathOfObject(ref, path);
    if (result != noErr)
        return reportFailure(invocation, word, result, list);
    list.push_back({{"id", id}, {"path", path}});
    if (!options.json)
        std::printf("%s\n", printable(path).c_str());
}

void work(Invocation &invocation, const Options &options)
{
    FSVolumeRefNum volume = 0;
    Json list = Json::array();
    if (options.find)
        if (OSStatus result = volumeOfPath(options.volumePath, volume))
            return invocation.report.failure(options.volumePath, result);
    for (const std::string &word : options.words)
        options.find ? findID(invocation, options, volume, word, list) : giveID(invocation, options, word, list);
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

void checkWords(const Options &options)
{
    if (options.find)
        for (const std::string &word : options.words)
            numberFromText(word, 0xFFFFFFFF);   // throws what is wrong with it
}

Action declareID(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("FILE", options->words, "files to give IDs to; with --find instead: IDs");
    auto find = arguments.flag("--find", options->find, "show the paths of the files that have these IDs");
    arguments
        .text(
            "--on", "PATH", [options](const std::string &typed) { options->volumePath = typed; },
            "with --find: anything on the volume whose IDs they are; without it the startup volume")
        .needs(find);
    arguments.flag("-v,--verbose", options->verbose, "say whether a file had its ID before").excludes(find);
    arguments.json(options->json, "one array with one object per word; \"error\" in it tells of a failure");
    arguments.finalCheck([options] { checkWords(*options); });
    return [options](Invocation &invocation) { work(invocation, *options); };
}

}   // namespace

const Command idCommand = {
    "id",
    "Give files IDs by which they are found again, and find them",
    "A file's ID is a number that stays while the file is renamed and moved, and is the same for every program of this user.\n"
    "Asking again gives the same one. A file that was saved anew under its name has the ID of the one before. Nothing is\n"
    "written to the file: IDs are kept in a database in $ZERB_STATE_FOLDER, $XDG_STATE_HOME/zerb or ~/.local/state/zerb.\n"
    "Folders have no IDs.\n",
    "  zerb id Letter\n"
    "  zerb id --find 733146203\n"
    "  zerb id --find --on /mnt/stick --json 733146203\n",
    declareID,
};

}   // namespace host
