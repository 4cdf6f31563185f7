// Special folders, and the colon paths that lead to folders.

#include "folders/folderfiles.h"
#include "folders/posix_paths.h"
#include "strings/pstrings.h"

#ifndef ZERB_SHARED_FOLDER_NAME
#define ZERB_SHARED_FOLDER_NAME "Zerb"
#endif

Str63 ZerbSharedFolderName;

namespace
{

static_assert(sizeof ZERB_SHARED_FOLDER_NAME - 1 < sizeof ZerbSharedFolderName, "the shared folder's name is at most 63 bytes long");

[[maybe_unused]] const bool sharedFolderIsNamed = (CopyCtoPstr(ZerbSharedFolderName, ZERB_SHARED_FOLDER_NAME), true);

constexpr int longestPath = 255;
constexpr unsigned char colon[] = {1, ':'};

OSErr findFolder(SInt16 domain, OSType folderType, SInt16 *volume, SInt32 *dirID)
{
    if (!volume || !dirID)
        return paramErr;
    *volume = 0;
    *dirID = 0;
    return FindFolder(domain, folderType, kDontCreateFolder, volume, dirID);
}

// Puts a directory's name and a colon before the path of what it holds; the path stays as it was where that is too long.
OSErr prependDirectory(unsigned char *name, unsigned char *path)
{
    if (name[0] + 1 + path[0] > longestPath)
        return bdNamErr;
    Concat(name, colon);
    Concat(name, path);
    Copy(path, name);
    return noErr;
}

OSErr makeFolder(ConstStr255Param path)
{
    FSRef parent;
    UnicodeName name;
    const OSStatus result = findParentAndName(path, kCFStringEncodingMacRoman, &parent, &name);
    if (result != noErr)
        return static_cast<OSErr>(result);
    return FSCreateDirectoryUnicode(&parent, name.length, name.characters, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
}

OSErr findOrMakeFolder(ConstStr255Param path)
{
    FSRef folder;
    if (findByColonPath(path, kCFStringEncodingMacRoman, &folder) == noErr)
        return noErr;
    return makeFolder(path);
}

}   // namespace

OSErr ZerbFindPrefFolder(SInt16 *volume, SInt32 *dirID)
{
    return findFolder(kLocalDomain, kPreferencesFolderType, volume, dirID);
}

OSErr ZerbFindUserPrefFolder(SInt16 *volume, SInt32 *dirID)
{
    return findFolder(kUserDomain, kPreferencesFolderType, volume, dirID);
}

OSErr ZerbFindSysFolder(SInt16 *volume, SInt32 *dirID)
{
    return findFolder(kSystemDomain, kSystemDesktopFolderType, volume, dirID);
}

OSErr ZerbPathNameFromDirID(SInt32 dirID, SInt16 volume, unsigned char *path)
{
    if (!path)
        return paramErr;
    Str255 built, name;
    CInfoPBRec block;
    OSErr result;
    built[0] = 0;
    name[0] = 0;
    block.dirInfo.ioDrParID = dirID;
    do
    {
        block.dirInfo.ioNamePtr = name;
        block.dirInfo.ioVRefNum = volume;
        block.dirInfo.ioFDirIndex = -1;   // the directory itself
        block.dirInfo.ioDrDirID = block.dirInfo.ioDrParID;
        result = PBGetCatInfoSync(&block);
        if (block.dirInfo.ioDrDirID == fsRtDirID)
            name[0] = 0;   // a volume's name is no part of the path
        if (result == noErr)
            result = prependDirectory(name, built);
    } while (result == noErr && block.dirInfo.ioDrDirID != fsRtDirID);
    Copy(path, built);
    return result;
}

OSErr ZerbFindSharedUserFolder(unsigned char *path)
{
    if (!path)
        return paramErr;
    SInt16 volume;
    SInt32 dirID;
    OSErr result = FindFolder(kLocalDomain, kSharedUserDataFolderType, kCreateFolder, &volume, &dirID);
    if (result == noErr)
        result = ZerbPathNameFromDirID(dirID, volume, path);
    if (result != noErr)
        return result;
    if (path[0] + ZerbSharedFolderName[0] + 1 > longestPath)
        return bdNamErr;
    Concat(path, ZerbSharedFolderName);
    result = findOrMakeFolder(path);
    Concat(path, colon);   // after a failure too
    return result;
}
