#include "host/plugin.h"

#include "host/exported_symbol.h"

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <string>
#include <vector>

namespace host
{

namespace
{

std::vector<std::string> placesToTry()
{
    const char *named = std::getenv("ZERB_PLUGIN");
    if (named != nullptr && *named != '\0')
        return {named};
    std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return {folder / "zerb.so", (folder / "../lib/zerb/zerb.so").lexically_normal()};
}

// All symbols at once: a plug-in that misses something of the platform is refused here, not in the middle of a change.
void *openPlugin(const std::string &place)
{
    // Without a '/' the loader would search the system's library folders instead of the current one.
    std::string file = place.find('/') == std::string::npos ? "./" + place : place;
    return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

// What the loader said, which as a rule begins with the file's name.
std::string reasonOf(const std::string &place)
{
    const char *message = dlerror();
    std::string reason = message != nullptr ? message : "unknown reason";
    return reason.starts_with(place) ? reason : place + ": " + reason;
}

void *addressOf(void *library, const std::string &symbol, const char *name)
{
    void *address = dlsym(library, symbol.c_str());
    if (address == nullptr)
        throw PluginError("the plug-in does not have the function " + std::string(name) + "; is it of another version than this program?");
    return address;
}

// A function of C linkage: its symbol is its name.
template <typename Function>
void take(void *library, const char *name, Function *&function)
{
    function = reinterpret_cast<Function *>(addressOf(library, name, name));
}

// A function of C++ linkage: its symbol has the parameter types too.
template <typename Function>
void takeTyped(void *library, const char *name, Function *&function)
{
    function = reinterpret_cast<Function *>(addressOf(library, exportedSymbol(name, function), name));
}

void takeNameAndForkFunctions(void *library, Plugin &plugin)
{
    take(library, "UnicodeNameGetHFSName", plugin.UnicodeNameGetHFSName);
    take(library, "HFSNameGetUnicodeName", plugin.HFSNameGetUnicodeName);
    take(library, "FSPathMakeFSSpec", plugin.FSPathMakeFSSpec);
    take(library, "FSMakePath", plugin.FSMakePath);
    take(library, "FSGetForkSizes", plugin.FSGetForkSizes);
    take(library, "FSGetTotalForkSizes", plugin.FSGetTotalForkSizes);
    take(library, "GetTempBufferX", plugin.GetTempBufferX);
    take(library, "FSCopyFork", plugin.FSCopyFork);
    take(library, "FSCopyFile", plugin.FSCopyFile);
}

void takeTreeFunctions(void *library, Plugin &plugin)
{
    take(library, "FSIterateContainer", plugin.FSIterateContainer);
    take(library, "FSGetDirectoryItems", plugin.FSGetDirectoryItems);
    take(library, "FSDeleteContainerContents", plugin.FSDeleteContainerContents);
    take(library, "FSDeleteContainer", plugin.FSDeleteContainer);
    take(library, "FSMoveRename", plugin.FSMoveRename);
    take(library, "FSMoveRenameObjectUnicode", plugin.FSMoveRenameObjectUnicode);
    take(library, "FSExchangeObjectsCompat", plugin.FSExchangeObjectsCompat);
}

void takeVolumeFunctions(void *library, Plugin &plugin)
{
    take(library, "FSGetVolParms", plugin.FSGetVolParms);
    take(library, "FSGetVRefNum", plugin.FSGetVRefNum);
    take(library, "FSGetVInfo", plugin.FSGetVInfo);
    take(library, "FSGetVolFileSystemID", plugin.FSGetVolFileSystemID);
    take(library, "FSGetMountedVolumes", plugin.FSGetMountedVolumes);
    take(library, "FSGetVolMountInfoSize", plugin.FSGetVolMountInfoSize);
    take(library, "FSGetVolMountInfo", plugin.FSGetVolMountInfo);
    take(library, "FSVolumeMount", plugin.FSVolumeMount);
}

void takeAccessFunctions(void *library, Plugin &plugin)
{
    take(library, "FSGetDirAccess", plugin.FSGetDirAccess);
    take(library, "FSSetDirAccess", plugin.FSSetDirAccess);
    take(library, "FSMapID", plugin.FSMapID);
    take(library, "FSMapName", plugin.FSMapName);
    take(library, "FSCreateFileIDRef", plugin.FSCreateFileIDRef);
    take(library, "FSResolveFileIDRef", plugin.FSResolveFileIDRef);
    take(library, "FSSetDefault", plugin.FSSetDefault);
    take(library, "FSRestoreDefault", plugin.FSRestoreDefault);
}

void takeStringFunctions(void *library, Plugin &plugin)
{
    takeTyped(library, "CopyCtoPstr", plugin.CopyCtoPstr);
    takeTyped(library, "CopyPtoCstr", plugin.CopyPtoCstr);
    takeTyped(library, "Val", plugin.Val);
    takeTyped(library, "Str", plugin.Str);
    takeTyped(library, "AdjustStrWidth", plugin.AdjustStrWidth);
    takeTyped(library, "StringHexToNum", plugin.StringHexToNum);
    takeTyped(library, "MyDoubleToString", plugin.MyDoubleToString);
    takeTyped(library, "MyStringToDouble", plugin.MyStringToDouble);
}

// A variable's symbol is its name, whatever its linkage.
void takeFolderFunctions(void *library, Plugin &plugin)
{
    take(library, "ZerbSharedFolderName", plugin.ZerbSharedFolderName);
    takeTyped(library, "ZerbFindPrefFolder", plugin.ZerbFindPrefFolder);
    takeTyped(library, "ZerbFindUserPrefFolder", plugin.ZerbFindUserPrefFolder);
    takeTyped(library, "ZerbFindSysFolder", plugin.ZerbFindSysFolder);
    takeTyped(library, "ZerbPathNameFromDirID", plugin.ZerbPathNameFromDirID);
    takeTyped(library, "ZerbFindSharedUserFolder", plugin.ZerbFindSharedUserFolder);
    takeTyped(library, "FSpCreate2", plugin.FSpCreate2);
    takeTyped(library, "FSpOpenDF2", plugin.FSpOpenDF2);
    takeTyped(library, "FSpDelete2", plugin.FSpDelete2);
    takeTyped(library, "ZerbMakeWritableByAll", plugin.ZerbMakeWritableByAll);
}

void takeDialogFunctions(void *library, Plugin &plugin)
{
    takeTyped(library, "DrawSICN", plugin.DrawSICN);
    takeTyped(library, "MyDrawIconInSuite", plugin.MyDrawIconInSuite);
    takeTyped(library, "MyDrawIconButton", plugin.MyDrawIconButton);
    takeTyped(library, "ZerbCenterDialog", plugin.ZerbCenterDialog);
    takeTyped(library, "ZerbErrorAlert", plugin.ZerbErrorAlert);
    takeTyped(library, "MyTrackIconButton", plugin.MyTrackIconButton);
    takeTyped(library, "TrackRectIconButton", plugin.TrackRectIconButton);
    takeTyped(library, "TrackIconButtonWithPopUp", plugin.TrackIconButtonWithPopUp);
    takeTyped(library, "MyTrackIconButtonWithPopUp", plugin.MyTrackIconButtonWithPopUp);
}

Plugin takeFunctions(void *library)
{
    Plugin plugin = {};
    take(library, "FSGetParentRef", plugin.FSGetParentRef);
    take(library, "FSGetNodeID", plugin.FSGetNodeID);
    take(library, "FSCheckLock", plugin.FSCheckLock);
    take(library, "FSBumpDate", plugin.FSBumpDate);
    take(library, "FSGetFinderInfo", plugin.FSGetFinderInfo);
    take(library, "FSSetFinderInfo", plugin.FSSetFinderInfo);
    take(library, "FSChangeCreatorType", plugin.FSChangeCreatorType);
    take(library, "FSChangeFinderFlags", plugin.FSChangeFinderFlags);
    take(library, "FSSetInvisible", plugin.FSSetInvisible);
    take(library, "FSClearInvisible", plugin.FSClearInvisible);
    take(library, "FSSetNameLocked", plugin.FSSetNameLocked);
    take(library, "FSClearNameLocked", plugin.FSClearNameLocked);
    take(library, "FSSetIsStationery", plugin.FSSetIsStationery);
    take(library, "FSClearIsStationery", plugin.FSClearIsStationery);
    take(library, "FSSetHasCustomIcon", plugin.FSSetHasCustomIcon);
    take(library, "FSClearHasCustomIcon", plugin.FSClearHasCustomIcon);
    take(library, "FSClearHasBeenInited", plugin.FSClearHasBeenInited);
    take(library, "FSCopyFileMgrAttributes", plugin.FSCopyFileMgrAttributes);
    takeNameAndForkFunctions(library, plugin);
    takeTreeFunctions(library, plugin);
    takeVolumeFunctions(library, plugin);
    takeAccessFunctions(library, plugin);
    takeStringFunctions(library, plugin);
    takeFolderFunctions(library, plugin);
    takeDialogFunctions(library, plugin);
    return plugin;
}

}   // namespace

Plugin loadPlugin()
{
    std::string tried;
    for (const std::string &place : placesToTry())
    {
        if (void *library = openPlugin(place))
            return takeFunctions(library);
        tried += "\n  " + reasonOf(place);
    }
    throw PluginError("the plug-in cannot be loaded; tried:" + tried + "\nThe environment variable ZERB_PLUGIN can name the file zerb.so.");
}

}   // namespace host
