#include "standin/files/special_folders.h"

#include "standin/files/linux_calls.h"
#include "standin/files/linux_users.h"
#include "standin/files/state_folder.h"
#include "standin/files/volumes.h"
#include "standin/standin.h"

#include <algorithm>
#include <array>
#include <mutex>

namespace standin
{

namespace
{

constexpr std::uint32_t forOwnerAlone = 0700, forAllButNotEachOthers = 01777;

std::string ownUsersFolder()
{
    const std::uint32_t user = linux_calls::effectiveUser();
    std::string name;
    if (linux_calls::userName(user, name) != 0)
        name = std::to_string(user);
    return "/Users/" + name;
}

// On a disk of the host's own everything lies where it lies on a Macintosh.
std::string localPreferencesOnOwnDisk()
{
    return "/Library/Preferences";
}

std::string userPreferencesOnOwnDisk()
{
    return ownUsersFolder() + "/Library/Preferences";
}

std::string desktopOnOwnDisk()
{
    return "/Desktop";
}

std::string sharedDataOnOwnDisk()
{
    return "/Users/Shared";
}

// On the whole of Linux, where the XDG base directories and the file hierarchy standard put such things. Of several site-wide folders the
// first one is the most important.
std::string localPreferencesOnLinux()
{
    const std::string folders = absolutePathFrom("XDG_CONFIG_DIRS");
    return folders.empty() ? "/etc/xdg" : folders.substr(0, folders.find(':'));
}

std::string userPreferencesOnLinux()
{
    const std::string named = absolutePathFrom("XDG_CONFIG_HOME");
    const std::string home = named.empty() ? homeOfUser() : std::string();
    return home.empty() ? named : home + "/.config";
}

std::string desktopOnLinux()
{
    return "/usr/share/applications";   // what a desktop shows of the system's own
}

std::string sharedDataOnLinux()
{
    return "/var/local";
}

struct Row
{
    SInt16 domain;
    OSType folderType;
    const char *variable;
    std::string (*onOwnDisk)();
    std::string (*onLinux)();
    std::uint32_t modeWhenMade;
    bool isOnStartupVolume;
};

constexpr Row rows[] = {
    {kLocalDomain, kPreferencesFolderType, "ZERB_LOCAL_PREFERENCES_FOLDER", localPreferencesOnOwnDisk, localPreferencesOnLinux, 0, false},
    {kUserDomain, kPreferencesFolderType, "ZERB_USER_PREFERENCES_FOLDER", userPreferencesOnOwnDisk, userPreferencesOnLinux, forOwnerAlone,
     false},
    {kSystemDomain, kSystemDesktopFolderType, "ZERB_SYSTEM_DESKTOP_FOLDER", desktopOnOwnDisk, desktopOnLinux, 0, false},
    {kLocalDomain, kSharedUserDataFolderType, "ZERB_SHARED_DATA_FOLDER", sharedDataOnOwnDisk, sharedDataOnLinux, forAllButNotEachOthers,
     true},
};
using Paths = std::array<std::string, std::size(rows)>;

const Row *rowOf(SInt16 domain, OSType folderType)
{
    const auto found = std::find_if(std::begin(rows), std::end(rows),
                                    [&](const Row &row) { return row.domain == domain && row.folderType == folderType; });
    return found == std::end(rows) ? nullptr : found;
}

Paths pathsFrom(std::string (*pathOf)(const Row &))
{
    Paths paths;
    std::transform(std::begin(rows), std::end(rows), paths.begin(), pathOf);
    return paths;
}

// The environment is read once, when the first folder is asked for: other threads may change it later.
struct Environment
{
    Paths named = pathsFrom([](const Row &row) { return absolutePathFrom(row.variable); });
    Paths onOwnDisk = pathsFrom([](const Row &row) { return row.onOwnDisk(); });
    Paths onLinux = pathsFrom([](const Row &row) { return row.onLinux(); });
};

struct ChosenFolders
{
    std::mutex mutex;
    Paths paths;
};

ChosenFolders &chosen()
{
    static ChosenFolders folders;
    return folders;
}

std::string chosenPath(std::size_t index)
{
    const std::lock_guard lock(chosen().mutex);
    return chosen().paths[index];
}

std::string pathOfRow(std::size_t index)
{
    static const Environment environment;
    if (std::string path = chosenPath(index); !path.empty())
        return path;
    if (!environment.named[index].empty())
        return environment.named[index];
    return (startupIsDirectory() ? environment.onOwnDisk : environment.onLinux)[index];
}

}   // namespace

bool findSpecialFolder(SInt16 domain, OSType folderType, SpecialFolder &folder)
{
    const Row *row = rowOf(domain, folderType);
    if (row)
        folder = {pathOfRow(static_cast<std::size_t>(row - rows)), row->modeWhenMade, row->isOnStartupVolume};
    return row != nullptr;
}

OSErr useSpecialFolder(SInt16 domain, OSType folderType, const std::string &path)
{
    const Row *row = rowOf(domain, folderType);
    if (!row)
        return fnfErr;
    if (!path.empty() && path[0] != '/')
        return paramErr;
    const std::lock_guard lock(chosen().mutex);
    chosen().paths[static_cast<std::size_t>(row - rows)] = path;
    return noErr;
}

}   // namespace standin
