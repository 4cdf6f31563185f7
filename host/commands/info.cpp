// zerb info: shows everything that is known about objects.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/object_info.h"

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
    bool json = false;
};

OSStatus gatherAt(Invocation &invocation, const std::string &path, Links links, ObjectInfo &info)
{
    FSRef ref;
    OSStatus result = findObject(path, links, ref);
    if (result == noErr)
        result = gatherInfo(invocation.plugin, ref, info);
    if (result != noErr)
        invocation.report.failure(path, result);
    return result;
}

void showJson(Invocation &invocation, const Options &options)
{
    Json list = Json::array();
    for (const std::string &path : options.paths)
    {
        ObjectInfo info;
        OSStatus result = gatherAt(invocation, path, options.links, info);
        list.push_back(result == noErr ? infoJson(info) : errorJson(path, result));
    }
    std::fputs(jsonText(list).c_str(), stdout);
}

void showText(Invocation &invocation, const Options &options)
{
    Style style = Style::forStandardOutput();
    const char *separator = "";
    for (const std::string &path : options.paths)
    {
        ObjectInfo info;
        if (gatherAt(invocation, path, options.links, info) != noErr)
            continue;
        std::printf("%s%s", separator, infoText(info, style).c_str());
        separator = "\n";
    }
}

Action declareInfo(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("PATH", options->paths, "files, folders or links");
    arguments.links(options->links);
    arguments.json(options->json);
    return [options](Invocation &invocation) { options->json ? showJson(invocation, *options) : showText(invocation, *options); };
}

}   // namespace

const Command infoCommand = {
    "info",
    "Show everything that is known about files and folders",
    "Dates are shown in local time; --json has them in UTC.\n"
    "Sizes are in bytes. \"may change\" is the verdict on the object's own lock and on its volume's locks;\n"
    "access rights are another matter.\n",
    "  zerb info Letter.txt\n"
    "  zerb info --no-follow link\n"
    "  zerb info --json *.txt | jq '.[].finder.type'\n",
    declareInfo,
};

}   // namespace host
