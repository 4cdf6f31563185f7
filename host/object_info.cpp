#include "host/object_info.h"

#include "host/objects.h"
#include "host/text.h"

#include <cstring>
#include <sys/stat.h>

namespace host
{

namespace
{

constexpr FSCatalogInfoBitmap everything =
    kFSCatInfoTextEncoding | kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoParentDirID | kFSCatInfoNodeID | kFSCatInfoCreateDate |
    kFSCatInfoContentMod | kFSCatInfoAttrMod | kFSCatInfoAccessDate | kFSCatInfoBackupDate | kFSCatInfoPermissions | kFSCatInfoFinderInfo |
    kFSCatInfoFinderXInfo | kFSCatInfoValence | kFSCatInfoDataSizes | kFSCatInfoRsrcSizes | kFSCatInfoSharingFlags | kFSCatInfoUserPrivs;

OSStatus gatherCatalog(const FSRef &ref, ObjectInfo &info)
{
    HFSUniStr255 name = {};
    FSSpec spec = {};
    info.catalog = {};
    OSErr result = FSGetCatalogInfo(&ref, everything, &info.catalog, &name, &spec, nullptr);
    if (result != noErr)
        return result;
    info.name = bytesFromName(name);
    info.shortName = utf8FromPascal(spec.name);
    info.permissions = permissionsOf(info.catalog);
    info.finder = finderInfoOf(info.catalog);
    std::memcpy(&info.extendedFinder, info.catalog.extFinderInfo, sizeof info.extendedFinder);
    info.kind = kindOf(info.catalog);
    return noErr;
}

std::string nameOfVolume(FSVolumeRefNum volume)
{
    HFSUniStr255 name = {};
    OSErr result = FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, &name, nullptr);
    return result == noErr ? bytesFromName(name) : "";
}

char letterOfFileType(UInt16 mode)
{
    switch (mode & S_IFMT)
    {
    case S_IFDIR: return 'd';
    case S_IFLNK: return 'l';
    case S_IFIFO: return 'p';
    case S_IFSOCK: return 's';
    case S_IFCHR: return 'c';
    case S_IFBLK: return 'b';
    default: return '-';
    }
}

}   // namespace

OSStatus gatherInfo(const Plugin &plugin, const FSRef &ref, ObjectInfo &info)
{
    OSStatus result = gatherCatalog(ref, info);
    if (result != noErr)
        return result;
    result = pathOfObject(ref, info.path);
    if (result != noErr)
        return result;
    info.volumeName = nameOfVolume(info.catalog.volume);
    info.lockCheck = plugin.FSCheckLock(&ref);
    return noErr;
}

std::string describeMode(UInt16 mode)
{
    std::string text(1, letterOfFileType(mode));
    for (int shift = 6; shift >= 0; shift -= 3)
        for (int bit = 0; bit < 3; ++bit)
            text += mode >> shift & (4 >> bit) ? "rwx"[bit] : '-';
    if (mode & S_ISUID)
        text[3] = mode & S_IXUSR ? 's' : 'S';
    if (mode & S_ISGID)
        text[6] = mode & S_IXGRP ? 's' : 'S';
    if (mode & S_ISVTX)
        text[9] = mode & S_IXOTH ? 't' : 'T';
    return text;
}

}   // namespace host
