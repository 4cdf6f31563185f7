#include "host/default_directory.h"

#include "host/objects.h"
#include "host/report.h"
#include "host/text.h"

#include "platform/results.h"

#include <cstdlib>
#include <stdexcept>

namespace host
{

OSStatus setDefaultDirectory(const Plugin &plugin, const std::string &path, FSRef &previous, std::string &ownPath)
{
    FSRef folder;
    OSStatus result = findObject(path, Links::follow, folder);
    if (result == noErr)
        result = plugin.FSSetDefault(&folder, &previous);
    return result == noErr ? pathOfObject(folder, ownPath) : result;
}

void takeDefaultDirectoryFromEnvironment(const Plugin &plugin)
{
    FSRef previous;
    std::string ownPath;
    const char *named = std::getenv(defaultDirectoryVariable);
    if (named == nullptr || *named == '\0')
        return;
    if (OSStatus result = setDefaultDirectory(plugin, named, previous, ownPath))
        throw std::runtime_error(std::string(defaultDirectoryVariable) + ": " + printable(named) + ": " + describeResult(result) + ": " +
                                 meaningOfResult(result) + " (unset it, or name a folder)");
}

}   // namespace host
