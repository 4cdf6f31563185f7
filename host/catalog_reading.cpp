#include "host/catalog_reading.h"

#include <cstring>
#include <sys/stat.h>

namespace host
{

namespace
{

constexpr OSType symbolicLinkType = fourCharCode("slnk");
constexpr OSType symbolicLinkCreator = fourCharCode("rhap");

}   // namespace

const char *nameOfKind(Kind kind)
{
    switch (kind)
    {
    case Kind::folder: return "folder";
    case Kind::symbolicLink: return "symbolic link";
    default: return "file";
    }
}

// The mode tells a link from a file to which somebody gave a link's type. Volumes that keep no modes leave its upper bits zero.
Kind kindOf(const FSCatalogInfo &catalog)
{
    if (isFolder(catalog))
        return Kind::folder;
    UInt16 mode = permissionsOf(catalog).mode;
    if ((mode & S_IFMT) != 0)
        return S_ISLNK(mode) ? Kind::symbolicLink : Kind::file;
    FinderInfo finder = finderInfoOf(catalog);
    bool typedAsLink = finder.file.fileType == symbolicLinkType && finder.file.fileCreator == symbolicLinkCreator;
    return typedAsLink ? Kind::symbolicLink : Kind::file;
}

FSPermissionInfo permissionsOf(const FSCatalogInfo &catalog)
{
    FSPermissionInfo permissions;
    std::memcpy(&permissions, catalog.permissions, sizeof permissions);
    return permissions;
}

FinderInfo finderInfoOf(const FSCatalogInfo &catalog)
{
    FinderInfo finder;
    std::memcpy(&finder, catalog.finderInfo, sizeof finder);
    return finder;
}

UInt16 finderFlagsOf(const FSCatalogInfo &catalog)
{
    FinderInfo finder = finderInfoOf(catalog);
    return isFolder(catalog) ? finder.folder.finderFlags : finder.file.finderFlags;
}

UInt64 totalSizeOf(const FSCatalogInfo &catalog)
{
    return catalog.dataLogicalSize + catalog.rsrcLogicalSize;
}

}   // namespace host
