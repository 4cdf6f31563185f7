// The plug-in zerb.so and those of its exports that this host calls.
//
// The declarations come from the plug-in's public headers; the functions themselves are taken from the loaded plug-in by name.
#pragma once

#include "dialogs/iconbuttons.h"
#include "files/fstoolkit.h"
#include "folders/folderfiles.h"
#include "strings/pstrings.h"

#include <stdexcept>

namespace host
{

struct Plugin
{
    decltype(&::FSGetParentRef) FSGetParentRef;
    decltype(&::FSGetNodeID) FSGetNodeID;
    decltype(&::FSCheckLock) FSCheckLock;
    decltype(&::FSBumpDate) FSBumpDate;
    decltype(&::FSGetFinderInfo) FSGetFinderInfo;
    decltype(&::FSSetFinderInfo) FSSetFinderInfo;
    decltype(&::FSChangeCreatorType) FSChangeCreatorType;
    decltype(&::FSChangeFinderFlags) FSChangeFinderFlags;
    decltype(&::FSSetInvisible) FSSetInvisible;
    decltype(&::FSClearInvisible) FSClearInvisible;
    decltype(&::FSSetNameLocked) FSSetNameLocked;
    decltype(&::FSClearNameLocked) FSClearNameLocked;
    decltype(&::FSSetIsStationery) FSSetIsStationery;
    decltype(&::FSClearIsStationery) FSClearIsStationery;
    decltype(&::FSSetHasCustomIcon) FSSetHasCustomIcon;
    decltype(&::FSClearHasCustomIcon) FSClearHasCustomIcon;
    decltype(&::FSClearHasBeenInited) FSClearHasBeenInited;
    decltype(&::FSCopyFileMgrAttributes) FSCopyFileMgrAttributes;
    decltype(&::UnicodeNameGetHFSName) UnicodeNameGetHFSName;
    decltype(&::HFSNameGetUnicodeName) HFSNameGetUnicodeName;
    decltype(&::FSPathMakeFSSpec) FSPathMakeFSSpec;
    decltype(&::FSMakePath) FSMakePath;
    decltype(&::FSGetForkSizes) FSGetForkSizes;
    decltype(&::FSGetTotalForkSizes) FSGetTotalForkSizes;
    decltype(&::GetTempBufferX) GetTempBufferX;
    decltype(&::FSCopyFork) FSCopyFork;
    decltype(&::FSCopyFile) FSCopyFile;
    decltype(&::FSIterateContainer) FSIterateContainer;
    decltype(&::FSGetDirectoryItems) FSGetDirectoryItems;
    decltype(&::FSDeleteContainerContents) FSDeleteContainerContents;
    decltype(&::FSDeleteContainer) FSDeleteContainer;
    decltype(&::FSMoveRename) FSMoveRename;
    decltype(&::FSMoveRenameObjectUnicode) FSMoveRenameObjectUnicode;
    decltype(&::FSExchangeObjectsCompat) FSExchangeObjectsCompat;
    decltype(&::FSGetVolParms) FSGetVolParms;
    decltype(&::FSGetVRefNum) FSGetVRefNum;
    decltype(&::FSGetVInfo) FSGetVInfo;
    decltype(&::FSGetVolFileSystemID) FSGetVolFileSystemID;
    decltype(&::FSGetMountedVolumes) FSGetMountedVolumes;
    decltype(&::FSGetVolMountInfoSize) FSGetVolMountInfoSize;
    decltype(&::FSGetVolMountInfo) FSGetVolMountInfo;
    decltype(&::FSVolumeMount) FSVolumeMount;
    decltype(&::FSGetDirAccess) FSGetDirAccess;
    decltype(&::FSSetDirAccess) FSSetDirAccess;
    decltype(&::FSMapID) FSMapID;
    decltype(&::FSMapName) FSMapName;
    decltype(&::FSCreateFileIDRef) FSCreateFileIDRef;
    decltype(&::FSResolveFileIDRef) FSResolveFileIDRef;
    decltype(&::FSSetDefault) FSSetDefault;
    decltype(&::FSRestoreDefault) FSRestoreDefault;

    decltype(&::CopyCtoPstr) CopyCtoPstr;
    decltype(&::CopyPtoCstr) CopyPtoCstr;
    decltype(&::Val) Val;
    decltype(&::Str) Str;
    decltype(&::AdjustStrWidth) AdjustStrWidth;
    decltype(&::StringHexToNum) StringHexToNum;
    decltype(&::MyDoubleToString) MyDoubleToString;
    decltype(&::MyStringToDouble) MyStringToDouble;

    decltype(&::ZerbSharedFolderName) ZerbSharedFolderName;
    decltype(&::ZerbFindPrefFolder) ZerbFindPrefFolder;
    decltype(&::ZerbFindUserPrefFolder) ZerbFindUserPrefFolder;
    decltype(&::ZerbFindSysFolder) ZerbFindSysFolder;
    decltype(&::ZerbPathNameFromDirID) ZerbPathNameFromDirID;
    decltype(&::ZerbFindSharedUserFolder) ZerbFindSharedUserFolder;
    decltype(&::FSpCreate2) FSpCreate2;
    decltype(&::FSpOpenDF2) FSpOpenDF2;
    decltype(&::FSpDelete2) FSpDelete2;
    decltype(&::ZerbMakeWritableByAll) ZerbMakeWritableByAll;

    decltype(&::DrawSICN) DrawSICN;
    decltype(&::MyDrawIconInSuite) MyDrawIconInSuite;
    decltype(&::MyDrawIconButton) MyDrawIconButton;
    decltype(&::ZerbCenterDialog) ZerbCenterDialog;
    decltype(&::ZerbErrorAlert) ZerbErrorAlert;
    decltype(&::MyTrackIconButton) MyTrackIconButton;
    decltype(&::TrackRectIconButton) TrackRectIconButton;
    decltype(&::TrackIconButtonWithPopUp) TrackIconButtonWithPopUp;
    decltype(&::MyTrackIconButtonWithPopUp) MyTrackIconButtonWithPopUp;
};

struct PluginError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// Loads the plug-in: the file that ZERB_PLUGIN names if that is set and not empty, else `zerb.so` beside this program, else
// `../lib/zerb/zerb.so` from there. It stays loaded until the process ends.
// Throws PluginError, which names every place that was tried and why it would not do, or the function that is missing.
Plugin loadPlugin();

}   // namespace host
