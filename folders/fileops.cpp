// Small files by colon path, and one change of permissions.

#include "files/catalog.h"
#include "folders/folderfiles.h"
#include "folders/posix_paths.h"

#include <cstring>

namespace
{

constexpr UInt16 writeForAll = 0222;

void setTypeAndCreator(FSCatalogInfo &info, OSType fileType, OSType creator)
{
    FileInfo fileInfo{};
    fileInfo.fileType = fileType;
    fileInfo.fileCreator = creator;
    std::memcpy(info.finderInfo, &fileInfo, sizeof fileInfo);
}

void letAllWrite(FSCatalogInfo &info)
{
    FSPermissionInfo permissions;
    std::memcpy(&permissions, info.permissions, sizeof permissions);
    permissions.mode |= writeForAll;
    std::memcpy(info.permissions, &permissions, sizeof permissions);
}

}   // namespace

OSErr FSpCreate2(unsigned char const *path, CFStringEncoding encoding, OSType creator, OSType fileType)
{
    FSRef parent;
    UnicodeName name;
    const OSStatus result = findParentAndName(path, encoding, &parent, &name);
    if (result != noErr)
        return static_cast<OSErr>(result);
    FSCatalogInfo info{};
    setTypeAndCreator(info, fileType, creator);
    return FSCreateFileUnicode(&parent, name.length, name.characters, kFSCatInfoFinderInfo, &info, nullptr, nullptr);
}

OSErr FSpOpenDF2(unsigned char const *path, CFStringEncoding encoding, SInt8 permission, SInt16 *refNum)
{
    if (!refNum)
        return paramErr;
    FSRef file;
    const OSStatus result = findByColonPath(path, encoding, &file);
    if (result != noErr)
        return static_cast<OSErr>(result);
    return FSOpenFork(&file, 0, nullptr, permission, refNum);
}

OSErr FSpDelete2(unsigned char const *path, CFStringEncoding encoding)
{
    FSRef file;
    const OSStatus result = findByColonPath(path, encoding, &file);
    if (result != noErr)
        return static_cast<OSErr>(result);
    return FSDeleteObject(&file);
}

OSErr ZerbMakeWritableByAll(FSSpec *file)
{
    FSRef ref;
    FSCatalogInfo info;
    OSErr result = FSMakeFSRef(file->vRefNum, file->parID, file->name, &ref);
    if (result == noErr)
        result = FSGetCatalogInfo(&ref, kFSCatInfoPermissions, &info, nullptr, nullptr, nullptr);
    if (result != noErr)
        return result;
    letAllWrite(info);
    return FSSetCatalogInfo(&ref, kFSCatInfoPermissions, &info);
}
