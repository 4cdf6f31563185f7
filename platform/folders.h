// The Folder Manager: where the system's special folders are.

#pragma once

#include "platform/results.h"
#include "platform/types.h"

constexpr SInt16 kSystemDomain = -32766;
constexpr SInt16 kLocalDomain = -32765;
constexpr SInt16 kUserDomain = -32763;

constexpr Boolean kDontCreateFolder = 0;
constexpr Boolean kCreateFolder = 1;

constexpr OSType kPreferencesFolderType = fourCharCode("pref");
constexpr OSType kSystemDesktopFolderType = fourCharCode("sdsk");
constexpr OSType kSharedUserDataFolderType = fourCharCode("sdat");

#pragma GCC visibility push(default)
extern "C"
{

OSErr FindFolder(SInt16 domain, OSType folderType, Boolean createFolder, SInt16 *foundVRefNum, SInt32 *foundDirID);
}
#pragma GCC visibility pop
