#include "folders/posix_paths.h"

#include "strings/pstrings.h"

#include <algorithm>
#include <cstring>

namespace
{

void convertToUTF8(ConstStr255Param path, CFStringEncoding encoding, PosixPath posixPath)
{
    posixPath[0] = '\0';
    CFMutableStringRef string = CFStringCreateMutable(nullptr, 0);
    if (!string)
        return;
    CFStringAppendPascalString(string, path, encoding);
    CFStringGetCString(string, posixPath, posixPathSize, kCFStringEncodingUTF8);
    CFRelease(string);
}

void convertToUnicode(const char *name, UnicodeName *unicodeName)
{
    unicodeName->length = 0;
    unicodeName->characters[0] = 0;
    CFMutableStringRef string = CFStringCreateMutable(nullptr, 0);
    if (!string)
        return;
    CFStringAppendCString(string, name, kCFStringEncodingUTF8);
    if (CFStringGetCString(string, reinterpret_cast<char *>(unicodeName->characters), sizeof unicodeName->characters,
                           kCFStringEncodingUnicode))
        unicodeName->length = static_cast<UniCharCount>(CFStringGetLength(string));
    CFRelease(string);
}

// Ends the path before its last '/', and gives what follows that.
const char *cutAtLastSlash(PosixPath posixPath, const char *&parent)
{
    char *slash = std::strrchr(posixPath, '/');
    parent = slash ? posixPath : "";
    if (!slash)
        return posixPath;
    *slash = '\0';
    return slash + 1;
}

OSStatus findByPosixPath(const char *posixPath, FSRef *ref)
{
    return FSPathMakeRef(reinterpret_cast<const UInt8 *>(posixPath), ref, nullptr);
}

}   // namespace

void makePosixPath(ConstStr255Param path, CFStringEncoding encoding, PosixPath posixPath)
{
    if (encoding == kCFStringEncodingUTF8)
        CopyPtoCstr(posixPath, path);
    else
        convertToUTF8(path, encoding, posixPath);
    std::replace(posixPath, posixPath + std::strlen(posixPath), ':', '/');
}

OSStatus findByColonPath(ConstStr255Param path, CFStringEncoding encoding, FSRef *ref)
{
    PosixPath posixPath;
    makePosixPath(path, encoding, posixPath);
    return findByPosixPath(posixPath, ref);
}

OSStatus findParentAndName(ConstStr255Param path, CFStringEncoding encoding, FSRef *parent, UnicodeName *name)
{
    PosixPath posixPath;
    const char *parentPath;
    makePosixPath(path, encoding, posixPath);
    const char *ownName = cutAtLastSlash(posixPath, parentPath);
    const OSStatus result = findByPosixPath(parentPath, parent);
    if (result == noErr)
        convertToUnicode(ownName, name);
    return result;
}
