// Paths of the double's disk: the root folder is "/", everything else is reached by names.

#include "tests/contract/platform_double.h"

#include <cstring>

namespace
{

std::string pathOf(const FileObject &object)
{
    if (object.parent == nullptr)
        return "/";
    const std::string above = pathOf(*object.parent);
    return above == "/" ? above + object.name : above + '/' + object.name;
}

}   // namespace

OSStatus FSPathMakeRef(const UInt8 *path, FSRef *ref, Boolean *isDirectory)
{
    PlatformDouble &platform = PlatformDouble::current();
    const std::string text = path == nullptr ? "" : reinterpret_cast<const char *>(path);
    const OSStatus failure = platform.recordStatus("FSPathMakeRef", {platform.pointer(path, '"' + text + '"'), platform.pointer(ref, "ref"),
                                                                     platform.pointer(isDirectory, "isDirectory")});
    if (failure != noErr)
        return failure;
    if (path == nullptr)
        return paramErr;

    for (const FileObject &each : platform.files.objects)
    {
        if (pathOf(each) != text)
            continue;
        *ref = each.ref;
        if (isDirectory != nullptr)
            *isDirectory = each.isFolder();
        return noErr;
    }
    return fnfErr;
}

OSStatus FSRefMakePath(const FSRef *ref, UInt8 *path, UInt32 maxPathSize)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSStatus failure =
        platform.recordStatus("FSRefMakePath", {platform.files.describe(ref), platform.pointer(path, "path"), decimal(maxPathSize)});
    if (failure != noErr)
        return failure;

    const FileObject *object = platform.files.find(ref);
    if (object == nullptr)
        return errFSBadFSRef;
    const std::string text = pathOf(*object);
    if (text.size() >= maxPathSize)
        return errFSNameTooLong;
    std::memcpy(path, text.c_str(), text.size() + 1);
    return noErr;
}
