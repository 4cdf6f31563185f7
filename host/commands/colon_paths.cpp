#include "host/commands/colon_paths.h"

#include "host/text.h"
#include "host/text_encodings.h"

#include <algorithm>

namespace host
{

namespace
{

constexpr std::size_t longestColonPath = 255;
constexpr const char *utf8Word = "utf-8";

// False if a character has no code, or the codes take too much room.
bool convert(const std::string &typed, CFStringEncoding encoding, char (&bytes)[longestColonPath + 1])
{
    CFMutableStringRef string = CFStringCreateMutable(nullptr, 0);
    CFStringAppendCString(string, typed.c_str(), kCFStringEncodingUTF8);
    const bool isWhole = typed.empty() || CFStringGetLength(string) > 0;
    const bool isConverted = isWhole && CFStringGetCString(string, bytes, sizeof bytes, encoding);
    CFRelease(string);
    return isConverted;
}

bool isStartupVolume(FSVolumeRefNum volume)
{
    FSVolumeRefNum startup = kFSInvalidVolumeRefNum;
    return FSGetVolumeInfo(kFSInvalidVolumeRefNum, 1, &startup, kFSVolInfoNone, nullptr, nullptr, nullptr) == noErr && startup == volume;
}

}   // namespace

Arguments::Item addPathEncodingOption(Arguments &arguments, PathEncoding &encoding)
{
    auto read = [&encoding](const std::string &typed) {
        const TextEncoding named = typed == utf8Word ? kCFStringEncodingUTF8 : encodingFromText(typed);
        if (named == kTextEncodingUnknown || named == kCFStringEncodingUnicode)
            throw UsageError("\"" + typed + "\" is no encoding that a path can be in");
        encoding.encoding = named;
    };
    return arguments.text("--encoding", "ENCODING", read,
                          "the encoding in which the plug-in is given the path: utf-8, which it is without this option, or a\nword or "
                          "number that `zerb name` knows");
}

bool takeColonPath(Invocation &invocation, const std::string &typed, const PathEncoding &encoding, Str255 path)
{
    char bytes[longestColonPath + 1] = "";
    const bool isUTF8 = encoding.encoding == kCFStringEncodingUTF8;
    if (isUTF8 ? typed.size() > longestColonPath : !convert(typed, encoding.encoding, bytes))
    {
        invocation.report.problem(typed, "cannot be said in this encoding in at most 255 bytes");
        return false;
    }
    invocation.plugin.CopyCtoPstr(path, isUTF8 ? typed.c_str() : bytes);
    return true;
}

bool deleteColonPath(Invocation &invocation, const std::string &typed, const PathEncoding &encoding)
{
    Str255 path;
    if (!takeColonPath(invocation, typed, encoding, path))
        return false;
    const OSErr result = invocation.plugin.FSpDelete2(path, encoding.encoding);
    if (result != noErr)
        invocation.report.failure(typed, result);
    return result == noErr;
}

std::string slashedPath(std::string colonPath)
{
    std::replace(colonPath.begin(), colonPath.end(), ':', '/');
    return colonPath;
}

OSErr colonPathOfFolder(const Plugin &plugin, FSVolumeRefNum volume, SInt32 folderID, std::string &colonPath)
{
    Str255 path;
    if (!isStartupVolume(volume))
        return diffVolErr;
    const OSErr result = plugin.ZerbPathNameFromDirID(folderID, volume, path);
    if (result == noErr)
        colonPath = utf8FromPascal(path);
    return result;
}

}   // namespace host
