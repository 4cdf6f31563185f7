// Hostile bytes as paths with colons, in every encoding: what the file manager is asked for is the same path in UTF-8 with slashes, cut at its last
// slash into a folder and a name that together are all of it.
#include "folders/posix_paths.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <string>

namespace
{

std::string askedFor;   // the last path that a reference was wanted for

constexpr CFStringEncoding encodings[] = {
    kCFStringEncodingUTF8, kCFStringEncodingMacRoman, kCFStringEncodingUnicode, 1 /* Japanese */, 5 /* Hebrew */, 0x7FFF /* none */};

std::string withSlashes(std::string text)
{
    std::replace(text.begin(), text.end(), ':', '/');
    return text;
}

// Through the same strings of Core Foundation, but the other way.
std::string converted(const char *text, CFStringEncoding from, CFStringEncoding to, bool &isWhole)
{
    char bytes[2048] = "";
    CFMutableStringRef string = CFStringCreateMutable(nullptr, 0);
    CFStringAppendCString(string, text, from);
    isWhole = CFStringGetCString(string, bytes, sizeof bytes, to) && (CFStringGetLength(string) > 0 || *text == '\0');
    CFRelease(string);
    return bytes;
}

void checkPath(ConstStr255Param path, CFStringEncoding encoding, const std::string &posixPath)
{
    const std::string typed(path + 1, path + 1 + path[0]);
    bool isWhole = false;
    require(posixPath.size() < static_cast<std::size_t>(posixPathSize) && posixPath.find(':') == std::string::npos);
    if (encoding == kCFStringEncodingUTF8)
        return require(posixPath == withSlashes(typed.c_str()));
    converted(posixPath.c_str(), kCFStringEncodingUTF8, kCFStringEncodingUTF8, isWhole);
    require(isWhole);
    if (encoding != kCFStringEncodingMacRoman || typed.find('\0') != std::string::npos)
        return;
    if (converted(typed.c_str(), kCFStringEncodingMacRoman, kCFStringEncodingUTF8, isWhole).size() >=
        static_cast<std::size_t>(posixPathSize))
        return require(posixPath.empty());   // which is no path to the file manager
    require(withSlashes(converted(posixPath.c_str(), kCFStringEncodingUTF8, kCFStringEncodingMacRoman, isWhole)) == withSlashes(typed));
    require(isWhole);
}

std::string utf8Of(const UnicodeName &name)
{
    UniChar units[256] = {};
    std::copy_n(name.characters, name.length, units);
    bool isWhole = false;
    return converted(reinterpret_cast<const char *>(units), kCFStringEncodingUnicode, kCFStringEncodingUTF8, isWhole);
}

void checkParentAndName(const std::string &posixPath, const UnicodeName &name)
{
    const std::size_t slash = posixPath.rfind('/');
    const std::string ownName = slash == std::string::npos ? posixPath : posixPath.substr(slash + 1);
    require(askedFor == (slash == std::string::npos ? "" : posixPath.substr(0, slash)));
    require(name.length <= 255 && std::find(name.characters, name.characters + name.length, u'/') == name.characters + name.length);
    bool isText = false;
    converted(ownName.c_str(), kCFStringEncodingUTF8, kCFStringEncodingUnicode, isText);
    if (isText && name.length > 0)
        require(utf8Of(name) == ownName);
    else
        require(name.length == 0);   // which the file manager takes for no name
}

}   // namespace

OSStatus FSPathMakeRef(const UInt8 *path, FSRef *, Boolean *)
{
    askedFor = reinterpret_cast<const char *>(path);
    return noErr;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const CFStringEncoding encoding = encodings[data[0] % std::size(encodings)];
    Str255 path = {};
    path[0] = static_cast<unsigned char>(std::min<std::size_t>(size - 1, 255));
    std::copy_n(data + 1, path[0], path + 1);

    PosixPath posixPath;
    makePosixPath(path, encoding, posixPath);
    checkPath(path, encoding, posixPath);

    FSRef ref;
    require(findByColonPath(path, encoding, &ref) == noErr && askedFor == posixPath);
    UnicodeName name;
    require(findParentAndName(path, encoding, &ref, &name) == noErr);
    checkParentAndName(posixPath, name);
    return 0;
}
