#include "host/object_info.h"

#include "host/objects.h"
#include "host/text.h"

#include <algorithm>
#include <cstring>
#include <sys/stat.h>

namespace host
{

namespace
{

constexpr OSType symbolicLinkType = fourCharCode("slnk");
constexpr OSType symbolicLinkCreator = fourCharCode("rhap");

constexpr FSCatalogInfoBitmap everything =
    kFSCatInfoTextEncoding | kFSCatInfoNodeFlags | kFSCatInfoVolume | kFSCatInfoParentDirID | kFSCatInfoNodeID | kFSCatInfoCreateDate |
    kFSCatInfoContentMod | kFSCatInfoAttrMod | kFSCatInfoAccessDate | kFSCatInfoBackupDate | kFSCatInfoPermissions | kFSCatInfoFinderInfo |
    kFSCatInfoFinderXInfo | kFSCatInfoValence | kFSCatInfoDataSizes | kFSCatInfoRsrcSizes | kFSCatInfoSharingFlags | kFSCatInfoUserPrivs;

// The mode tells a link from a file to which somebody gave a link's type. Volumes that keep no modes leave its upper bits zero.
Kind kindOf(const ObjectInfo &info)
{
    if (info.catalog.nodeFlags & kFSNodeIsDirectoryMask)
        return Kind::folder;
    if ((info.permissions.mode & S_IFMT) != 0)
        return S_ISLNK(info.permissions.mode) ? Kind::symbolicLink : Kind::file;
    bool typedAsLink = info.finder.file.fileType == symbolicLinkType && info.finder.file.fileCreator == symbolicLinkCreator;
    return typedAsLink ? Kind::symbolicLink : Kind::file;
}

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
    std::memcpy(&info.permissions, info.catalog.permissions, sizeof info.permissions);
    std::memcpy(&info.finder, info.catalog.finderInfo, sizeof info.finder);
    std::memcpy(&info.extendedFinder, info.catalog.extFinderInfo, sizeof info.extendedFinder);
    info.kind = kindOf(info);
    return noErr;
}

std::string nameOfVolume(FSVolumeRefNum volume)
{
    HFSUniStr255 name = {};
    OSErr result = FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, &name, nullptr);
    return result == noErr ? bytesFromName(name) : "";
}

struct NamedEncoding
{
    TextEncoding encoding;
    const char *name;
};

constexpr NamedEncoding encodings[] = {
    {0, "Mac Roman"},
    {1, "Mac Japanese"},
    {2, "Mac Chinese, traditional"},
    {3, "Mac Korean"},
    {4, "Mac Arabic"},
    {5, "Mac Hebrew"},
    {6, "Mac Greek"},
    {7, "Mac Cyrillic"},
    {9, "Mac Devanagari"},
    {10, "Mac Gurmukhi"},
    {11, "Mac Gujarati"},
    {21, "Mac Thai"},
    {25, "Mac Chinese, simplified"},
    {26, "Mac Tibetan"},
    {29, "Mac Central European"},
    {33, "Mac Symbol"},
    {34, "Mac Dingbats"},
    {35, "Mac Turkish"},
    {36, "Mac Croatian"},
    {37, "Mac Icelandic"},
    {38, "Mac Romanian"},
    {0x7E, "Mac Unicode"},
    {0x0100, "Unicode"},
    {kTextEncodingUnknown, "unknown"},
};

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

const char *nameOfKind(Kind kind)
{
    switch (kind)
    {
    case Kind::folder: return "folder";
    case Kind::symbolicLink: return "symbolic link";
    default: return "file";
    }
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

std::string nameOfEncoding(TextEncoding encoding)
{
    auto row = std::find_if(std::begin(encodings), std::end(encodings), [&](const NamedEncoding &one) { return one.encoding == encoding; });
    return row != std::end(encodings) ? row->name : "";
}

}   // namespace host
