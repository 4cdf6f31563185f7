// zerb writable: lets everybody write to files.
#include "host/commands.h"

#include "host/objects.h"

#include <memory>

namespace host
{

namespace
{

OSStatus makeWritable(const Plugin &plugin, const std::string &path)
{
    FSSpec spec;
    Boolean isFolder = false;
    const std::string absolute = absolutePath(path);
    if (absolute.empty())
        return fnfErr;
    const OSStatus result = plugin.FSPathMakeFSSpec(reinterpret_cast<const UInt8 *>(absolute.c_str()), &spec, &isFolder);
    return result == noErr ? plugin.ZerbMakeWritableByAll(&spec) : result;
}

Action declareWritable(Arguments &arguments)
{
    auto paths = std::make_shared<std::vector<std::string>>();
    arguments.paths("PATH", *paths, "files or folders; symbolic links are followed");
    return [paths](Invocation &invocation) {
        for (const std::string &path : *paths)
            if (const OSStatus result = makeWritable(invocation.plugin, path))
                invocation.report.failure(path, result);
    };
}

}   // namespace

const Command writableCommand = {
    "writable",
    "Let the owner, the group and everybody else write to files",
    "Adds the three rights to write to the mode of each file or folder, and changes nothing else of it: 0644 becomes\n"
    "0666, and 0600 becomes 0622. A locked file is refused.\n",
    "  zerb writable Letter Work/Reply\n",
    declareWritable,
};

}   // namespace host
