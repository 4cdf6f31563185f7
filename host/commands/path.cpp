// zerb path: the forms in which an object's location can be told.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/text_bytes.h"
#include "host/commands/text_parts.h"
#include "host/commands/volume_argument.h"
#include "host/objects.h"
#include "host/text.h"

#include "platform/files.h"
#include "platform/text.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> words;   // paths, or volume, folder ID and name
    bool isTriple = false;
    bool json = false;
};

// Volume, folder and short name, and the path that they lead to.
struct Location
{
    FSSpec spec = {};
    bool hasName = true;
    bool isFolder = false;   // known where it was made from a path
    std::string path;
};

OSErr makePath(const Plugin &plugin, Location &location)
{
    ConstStr255Param name = location.hasName ? location.spec.name : nullptr;
    const auto write = [&](UInt8 *buffer, UInt32 size) {
        return plugin.FSMakePath(location.spec.vRefNum, location.spec.parID, name, buffer, size);
    };
    return static_cast<OSErr>(writtenPath(write, location.path));
}

std::string nameOfVolume(FSVolumeRefNum volume)
{
    HFSUniStr255 name = {};
    OSErr result = FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, &name, nullptr);
    return result == noErr ? bytesFromName(name) : "";
}

// As far as its bytes are text of the system's encoding.
std::string textOfShortName(const Plugin &plugin, ConstStr255Param shortName)
{
    HFSUniStr255 name = {};
    OSErr result = plugin.HFSNameGetUnicodeName(shortName, kTextEncodingUnknown, &name);
    return result == noErr ? bytesFromName(name) : utf8FromPascal(shortName);
}

void showLocation(const Plugin &plugin, const std::string &title, const Location &location)
{
    const FSSpec &spec = location.spec;
    std::printf("%s\n", printable(title).c_str());
    std::printf("  volume      %d  %s\n", int{spec.vRefNum}, printable(nameOfVolume(spec.vRefNum)).c_str());
    std::printf("  %s   %ld\n", location.hasName ? "parent ID" : "folder ID", static_cast<long>(spec.parID));
    if (location.hasName)
        std::printf("  short name  %s  (%s)\n", printable(textOfShortName(plugin, spec.name)).c_str(),
                    hexDump(bytesOfPascal(spec.name)).c_str());
    std::printf("  path        %s\n", printable(location.path).c_str());
}

Json locationJson(const Plugin &plugin, const Location &location)
{
    const FSSpec &spec = location.spec;
    Json json = {{"volume", {{"number", static_cast<SInt16>(spec.vRefNum)}, {"name", nameOfVolume(spec.vRefNum)}}},
                 {location.hasName ? "parent_id" : "folder_id", static_cast<UInt32>(spec.parID)}};
    if (location.hasName)
    {
        json["short_name"] = textOfShortName(plugin, spec.name);
        json["short_name_hex"] = hexDump(bytesOfPascal(spec.name));
    }
    json["path"] = location.path;
    return json;
}

// ---------------------------------------------------------------------------------------------------------------------
// From a path

OSErr locatePath(const Plugin &plugin, const std::string &path, Location &location)
{
    Boolean isFolder = false;
    std::string absolute = absolutePath(path);
    if (absolute.empty())
        return fnfErr;
    OSErr result = plugin.FSPathMakeFSSpec(reinterpret_cast<const UInt8 *>(absolute.c_str()), &location.spec, &isFolder);
    if (result != noErr)
        return result;
    location.isFolder = isFolder != 0;
    return makePath(plugin, location);
}

void showPaths(Invocation &invocation, const Options &options)
{
    Json list = Json::array();
    for (const std::string &path : options.words)
    {
        Location location;
        OSErr result = locatePath(invocation.plugin, path, location);
        if (result != noErr)
        {
            invocation.report.failure(path, result);
            list.push_back(errorJson(path, result));
            continue;
        }
        Json json = {{"asked_for", path}, {"is_folder", location.isFolder}, {"location", locationJson(invocation.plugin, location)}};
        options.json ? list.push_back(std::move(json)) : showLocation(invocation.plugin, path, location);
    }
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

// ---------------------------------------------------------------------------------------------------------------------
// From volume, folder ID and name

// As Macintosh software would have it: an ID beyond the middle of its range is a negative number.
SInt32 folderIDFromText(const std::string &text)
{
    return static_cast<SInt32>(numberFromText(text, 0xFFFFFFFF));
}

OSErr shortNameOf(const Plugin &plugin, const std::string &component, Str63 shortName)
{
    std::optional<HFSUniStr255> name = nameFromPathComponent(component);
    if (!name)
        return errFSNameTooLong;
    return plugin.UnicodeNameGetHFSName(name->length, name->unicode, kTextEncodingUnknown, false, shortName);
}

OSStatus locateTriple(const Plugin &plugin, const Options &options, Location &location)
{
    FSVolumeRefNum volume = kFSInvalidVolumeRefNum;
    OSStatus result = findVolume(options.words[0], volume);
    if (result != noErr)
        return result;
    location.spec.vRefNum = volume;
    location.spec.parID = folderIDFromText(options.words[1]);
    location.hasName = options.words.size() > 2;
    if (location.hasName)
        result = shortNameOf(plugin, options.words[2], location.spec.name);
    return result == noErr ? OSStatus{makePath(plugin, location)} : result;
}

std::string joinedWords(const std::vector<std::string> &words)
{
    std::string all;
    for (const std::string &word : words)
        all += (all.empty() ? "" : " ") + word;
    return all;
}

void showTriple(Invocation &invocation, const Options &options)
{
    std::string words = joinedWords(options.words);
    Location location;
    Json list = Json::array();
    OSStatus result = locateTriple(invocation.plugin, options, location);
    if (result == noErr && !options.json)
        std::printf("%s\n", printable(location.path).c_str());
    if (result == noErr)
        list.push_back({{"asked_for", words}, {"location", locationJson(invocation.plugin, location)}});
    else
    {
        invocation.report.failure(words, result);
        if (result == dirNFErr)
            invocation.report.remark(words,
                                     "a folder's number is known once a path has led to it: give a path of anything in it as VOLUME");
        list.push_back(errorJson(words, result));
    }
    if (options.json)
        std::fputs(jsonText(list).c_str(), stdout);
}

void checkOptions(const Options &options)
{
    if (!options.isTriple)
        return;
    if (options.words.size() < 2 || options.words.size() > 3)
        throw UsageError("--from: wants VOLUME DIRID and perhaps NAME");
    folderIDFromText(options.words[1]);
}

Action declarePath(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->words, "files or folders; with --from instead: VOLUME DIRID [NAME]");
    arguments.flag("--from", options->isTriple, "make a path of a volume, a folder's ID and the name of something in it");
    arguments.json(options->json);
    arguments.finalCheck([options] { checkOptions(*options); });
    return [options](Invocation &invocation) { options->isTriple ? showTriple(invocation, *options) : showPaths(invocation, *options); };
}

}   // namespace

const Command pathCommand = {
    "path",
    "Show a path as volume, folder ID and short name, and back",
    "Shows what an older application keeps of a file: its volume's number, its folder's ID and a short name of at\n"
    "most 31 bytes; and the path that is made of these three again. Symbolic links are followed.\n"
    "With --from the three are given. VOLUME is a number, a name, or a path of anything on it (with a '/' in it).\n"
    "Numbers of volumes, and IDs of folders that no path has led to before, need not mean the same in the next run;\n"
    "a path as VOLUME makes its own folders known. Folder 2 is a volume's root. Without NAME the folder is meant.\n",
    "  zerb path Letter /tmp\n"
    "  zerb path --json Letter\n"
    "  zerb path --from Linux 2 tmp\n"
    "  zerb path --from -100 2\n",
    declarePath,
};

}   // namespace host
