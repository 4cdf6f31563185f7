#include "host/commands/temporary_objects.h"

#include "host/catalog_reading.h"
#include "host/text.h"

#include "platform/files.h"
#include "platform/parameter_blocks.h"
#include "platform/text.h"

#include <cstring>
#include <string>
#include <unistd.h>

namespace host
{

namespace
{

constexpr int mostAttempts = 1000;
constexpr UInt16 forItsOwner = 0600, permissionBits = 07777;

HFSUniStr255 temporaryName(int attempt)
{
    return *nameFromPathComponent("zerb-" + std::to_string(getpid()) + "-" + std::to_string(attempt));
}

bool isLockedObject(const FSRef &ref)
{
    FSCatalogInfo catalog = {};
    return FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags, &catalog, nullptr, nullptr, nullptr) == noErr && isLocked(catalog);
}

OSErr setLock(const FSRef &ref, bool locked)
{
    FSCatalogInfo catalog = {};
    OSErr result = FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags, &catalog, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    catalog.nodeFlags = static_cast<UInt16>(locked ? catalog.nodeFlags | kFSNodeLockedMask : catalog.nodeFlags & ~kFSNodeLockedMask);
    return FSSetCatalogInfo(&ref, kFSCatInfoNodeFlags, &catalog);
}

OSErr makePrivate(const FSRef &ref)
{
    FSCatalogInfo catalog = {};
    OSErr result = FSGetCatalogInfo(&ref, kFSCatInfoPermissions, &catalog, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    FSPermissionInfo permissions = permissionsOf(catalog);
    permissions.mode = static_cast<UInt16>((permissions.mode & ~permissionBits) | forItsOwner);
    std::memcpy(catalog.permissions, &permissions, sizeof permissions);
    return FSSetCatalogInfo(&ref, kFSCatInfoPermissions, &catalog);
}

}   // namespace

OSErr findInFolder(const FSRef &folder, const HFSUniStr255 &name, FSRef &ref)
{
    FSRefParam block = {};
    block.ref = &folder;
    block.nameLength = name.length;
    block.name = name.unicode;
    block.textEncodingHint = kTextEncodingUnknown;
    block.newRef = &ref;
    return PBMakeFSRefUnicodeSync(&block);
}

TemporaryObject::~TemporaryObject()
{
    if (!isThere_)
        return;
    if (isLockedObject(ref_))
        setLock(ref_, false);
    FSDeleteObject(&ref_);
}

OSErr TemporaryObject::make(const FSRef &folder, const std::function<OSErr(const HFSUniStr255 &name)> &make)
{
    OSErr result = dupFNErr;
    for (int attempt = 1; result == dupFNErr && attempt <= mostAttempts; ++attempt)
    {
        HFSUniStr255 name = temporaryName(attempt);
        result = make(name);
        if (result == noErr)
            result = findInFolder(folder, name, ref_);
    }
    isThere_ = result == noErr;
    return result;
}

OSErr TemporaryObject::makeFile(const FSRef &folder)
{
    OSErr result = make(folder, [&folder](const HFSUniStr255 &name) {
        return FSCreateFileUnicode(&folder, name.length, name.unicode, kFSCatInfoNone, nullptr, nullptr, nullptr);
    });
    return result == noErr ? makePrivate(ref_) : result;
}

OSErr TemporaryObject::giveName(const HFSUniStr255 &name)
{
    bool wasLocked = isLockedObject(ref_);
    OSErr result = wasLocked ? setLock(ref_, false) : OSErr(noErr);
    FSRef named = {};
    if (result == noErr)
        result = FSRenameUnicode(&ref_, name.length, name.unicode, kTextEncodingUnknown, &named);
    if (result != noErr)
        return result;
    ref_ = named;
    result = wasLocked ? setLock(ref_, true) : OSErr(noErr);
    isThere_ = result != noErr;   // without its lock it goes
    return result;
}

}   // namespace host
