// What a catalog record says, where it takes more than reading a field.
#pragma once

#include "platform/file_constants.h"
#include "platform/file_records.h"

namespace host
{

enum class Kind
{
    file,
    folder,
    symbolicLink
};

const char *nameOfKind(Kind kind);   // "file", "folder", "symbolic link"

// The fields that kindOf wants.
constexpr FSCatalogInfoBitmap kindInfo = kFSCatInfoNodeFlags | kFSCatInfoPermissions | kFSCatInfoFinderInfo;
Kind kindOf(const FSCatalogInfo &catalog);

inline bool isFolder(const FSCatalogInfo &catalog)
{
    return (catalog.nodeFlags & kFSNodeIsDirectoryMask) != 0;
}

inline bool isLocked(const FSCatalogInfo &catalog)
{
    return (catalog.nodeFlags & kFSNodeLockedMask) != 0;
}

FSPermissionInfo permissionsOf(const FSCatalogInfo &catalog);
FinderInfo finderInfoOf(const FSCatalogInfo &catalog);

// Of a file or folder; node flags and Finder information are wanted.
UInt16 finderFlagsOf(const FSCatalogInfo &catalog);

// Data and resource fork together, of a file.
UInt64 totalSizeOf(const FSCatalogInfo &catalog);

}   // namespace host
