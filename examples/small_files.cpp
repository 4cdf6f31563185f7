// A small file by its colon path, from its making to its deletion.
//
//     mkdir -p Disk/Work
//     ZERB_STARTUP_VOLUME=Disk small_files :Work:Hello
//
// Without ZERB_STARTUP_VOLUME the path begins at `/`: :tmp:Hello is /tmp/Hello.
#include "files/fstoolkit.h"
#include "folders/folderfiles.h"
#include "platform/platform.h"
#include "standin/standin.h"
#include "strings/pstrings.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace
{

constexpr OSType textFile = fourCharCode("TEXT"), editor = fourCharCode("ttxt");
constexpr char greeting[] = "Hello from a path with colons.\n";

// Whether a step went well; what did not is told.
bool went(const char *step, OSStatus result)
{
    const char *name = standin::resultCodeName(result);
    if (result != noErr)
        std::fprintf(stderr, "%s: %s (%d)\n", step, name ? name : "failed", static_cast<int>(result));
    return result == noErr;
}

OSErr writeGreeting(ConstStr255Param path)
{
    SInt16 fork;
    OSErr result = FSpOpenDF2(path, kCFStringEncodingUTF8, fsWrPerm, &fork);
    if (result != noErr)
        return result;
    result = FSWriteFork(fork, fsFromStart, 0, sizeof greeting - 1, greeting, nullptr);
    const OSErr closing = FSCloseFork(fork);
    return result != noErr ? result : closing;
}

OSErr readGreeting(ConstStr255Param path, std::string &text)
{
    SInt16 fork;
    char bytes[256];
    ByteCount count = 0;
    OSErr result = FSpOpenDF2(path, kCFStringEncodingUTF8, fsRdPerm, &fork);
    if (result != noErr)
        return result;
    result = FSReadFork(fork, fsFromStart, 0, sizeof bytes, bytes, &count);
    FSCloseFork(fork);
    text.assign(bytes, count);
    return result == eofErr ? static_cast<OSErr>(noErr) : result;
}

OSStatus letAllWrite(std::string path)
{
    FSSpec file;
    std::replace(path.begin(), path.end(), ':', '/');
    const OSStatus result = FSPathMakeFSSpec(reinterpret_cast<const UInt8 *>(path.c_str()), &file, nullptr);
    return result == noErr ? ZerbMakeWritableByAll(&file) : result;
}

bool workOn(const char *typed, ConstStr255Param path)
{
    std::string text;
    if (!went("writing", writeGreeting(path)) || !went("letting all write", letAllWrite(typed)))
        return false;
    if (!went("reading", readGreeting(path, text)))
        return false;
    std::fputs(text.c_str(), stdout);
    return text == greeting;
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    Str255 path;
    if (argumentCount != 2 || std::strlen(arguments[1]) > 255)
        return std::fputs("usage: small_files COLONPATH\n", stderr), 2;
    CopyCtoPstr(path, arguments[1]);
    if (!went("making", FSpCreate2(path, kCFStringEncodingUTF8, editor, textFile)))
        return 1;
    const bool worked = workOn(arguments[1], path);
    const bool deleted = went("deleting", FSpDelete2(path, kCFStringEncodingUTF8));   // also where something went wrong before
    return worked && deleted ? 0 : 1;
}
