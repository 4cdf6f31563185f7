#include "host/commands/copying.h"

#include "host/catalog_reading.h"
#include "host/commands/fork_bytes.h"
#include "host/commands/temporary_objects.h"

#include "platform/files.h"
#include "platform/parameter_blocks.h"
#include "platform/text.h"

#include <algorithm>

namespace host
{

namespace
{

bool isSameName(const HFSUniStr255 &one, const HFSUniStr255 &other)
{
    return one.length == other.length && std::equal(one.unicode, one.unicode + one.length, other.unicode);
}

// A name of which the service makes the same one again. With letters beyond ASCII a short name does not say whether an accent is a character of its own.
bool isPlain(const Plugin &plugin, const HFSUniStr255 &name)
{
    Str31 shortName = {};
    HFSUniStr255 back = {};
    bool isAscii = std::all_of(name.unicode, name.unicode + name.length, [](UniChar unit) { return unit < 0x80; });
    return isAscii && plugin.UnicodeNameGetHFSName(name.length, name.unicode, kTextEncodingUnknown, false, shortName) == noErr &&
           plugin.HFSNameGetUnicodeName(shortName, kTextEncodingUnknown, &back) == noErr && isSameName(name, back);
}

OSErr serve(const Plugin &plugin, const FSRef &file, const FSRef &folder, const HFSUniStr255 &name)
{
    return plugin.FSCopyFile(&file, &folder, name.length, name.unicode, kTextEncodingUnknown, nullptr);
}

// Before much is copied in vain; the last step would refuse the name as well.
OSErr checkNameIsFree(const CopyTarget &target)
{
    FSRef taken;
    OSErr result = findInFolder(target.folder, *target.name, taken);
    return result == noErr ? OSErr(dupFNErr) : result == fnfErr ? OSErr(noErr) : result;
}

OSErr copyAndRename(const Plugin &plugin, const FSRef &file, const CopyTarget &target)
{
    TemporaryObject copy;
    OSErr result = checkNameIsFree(target);
    if (result == noErr)
        result = copy.make(target.folder, [&](const HFSUniStr255 &name) { return serve(plugin, file, target.folder, name); });
    return result == noErr ? copy.giveName(*target.name) : result;
}

Copied copyByService(const Plugin &plugin, const FSRef &file, const CopyTarget &target)
{
    if (!target.name)
        return {plugin.FSCopyFile(&file, &target.folder, 0, nullptr, kTextEncodingUnknown, nullptr), "by the volume"};
    if (isPlain(plugin, *target.name))
        return {serve(plugin, file, target.folder, *target.name), "by the volume"};
    return {copyAndRename(plugin, file, target), "by the volume, by way of a temporary name"};
}

OSErr fillCopy(const Plugin &plugin, const FSRef &file, const FSRef &copy, const std::function<void(UInt64)> &advance)
{
    ForkedFile from{file}, to{copy};
    CopyBuffer buffer(plugin);
    OSErr result = plugin.FSGetForkSizes(&file, &from.dataSize, &from.resourceSize);
    for (ForkKind kind : {ForkKind::resource, ForkKind::data})
    {
        if (result == noErr)
            result = copyFork(plugin, from, to, kind, buffer);
        if (result == noErr)
            advance(from.sizeOf(kind));
    }
    return result == noErr ? plugin.FSCopyFileMgrAttributes(&file, &copy, true) : result;
}

OSErr copyByForks(const Plugin &plugin, const FSRef &file, const CopyTarget &target, const std::function<void(UInt64)> &advance)
{
    TemporaryObject copy;
    OSErr result = checkNameIsFree(target);
    if (result == noErr)
        result = copy.makeFile(target.folder);
    if (result == noErr)
        result = fillCopy(plugin, file, copy.ref(), advance);
    return result == noErr ? copy.giveName(*target.name) : result;
}

OSErr nameOf(const FSRef &file, HFSUniStr255 &name)
{
    return FSGetCatalogInfo(&file, kFSCatInfoNone, nullptr, &name, nullptr, nullptr);
}

}   // namespace

Copied copyFile(const Plugin &plugin, const FSRef &file, const CopyTarget &target, CopyWay way, const std::function<void(UInt64)> &advance)
{
    HFSUniStr255 ownName = {};
    if (OSErr result = nameOf(file, ownName))
        return {result, ""};
    if (way == CopyWay::forks)
        return {copyByForks(plugin, file, {target.folder, target.name.value_or(ownName)}, advance), "fork by fork"};
    bool keepsName = !target.name || isSameName(*target.name, ownName);
    return copyByService(plugin, file, {target.folder, keepsName ? std::nullopt : target.name});
}

bool offersCopying(const FSRef &object)
{
    FSCatalogInfo catalog = {};
    GetVolParmsInfoBuffer parameters = {};
    HParamBlockRec block = {};
    if (FSGetCatalogInfo(&object, kFSCatInfoVolume, &catalog, nullptr, nullptr, nullptr) != noErr)
        return false;
    block.ioParam.ioVRefNum = catalog.volume;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&parameters);
    block.ioParam.ioReqCount = sizeof parameters;
    return PBHGetVolParmsSync(&block) == noErr && (parameters.vMAttrib >> bHasCopyFile & 1) != 0;
}

}   // namespace host
