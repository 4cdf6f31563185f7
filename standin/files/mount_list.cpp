#include "standin/files/mount_list.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace standin
{

namespace
{

struct FlagWord
{
    const char *word;
    std::uint16_t flag;
};

constexpr FlagWord flagWords[] = {
    {"ro", mountedReadOnly},
    {"nosuid", mountedWithoutSetUser},
    {"nodev", mountedWithoutDevices},
    {"noexec", mountedWithoutPrograms},
};

// The kernel's own, what other programs show in their stead, and overlay.
constexpr std::string_view kindsThatAreNoDisks[] = {
    "autofs",     "binder",  "binfmt_misc", "bpf",        "cgroup",          "cgroup2",    "configfs",    "debugfs",
    "devfs",      "devpts",  "devtmpfs",    "efivarfs",   "fuse.gvfsd-fuse", "fuse.lxcfs", "fuse.portal", "fusectl",
    "hugetlbfs",  "mqueue",  "nfsd",        "nsfs",       "overlay",         "pipefs",     "proc",        "pstore",
    "ramfs-root", "resctrl", "rootfs",      "rpc_pipefs", "securityfs",      "selinuxfs",  "smackfs",     "sockfs",
    "sysfs",      "tracefs",
};

constexpr std::string_view foldersOfPlumbing[] = {
    "/dev", "/proc", "/sys", "/run", "/snap", "/var/lib/containers", "/var/lib/docker", "/var/lib/snapd"};
constexpr std::string_view folderOfDisks = "/run/media";

std::string_view takeWord(std::string_view &line, char separator = ' ')
{
    const std::size_t end = std::min(line.find(separator), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

bool isOctal(char digit, char largest)
{
    return digit >= '0' && digit <= largest;
}

// Spaces, tabs, line ends, '#' and backslashes of names stand as a backslash and three octal digits.
std::string unescaped(std::string_view word)
{
    std::string text;
    for (std::size_t i = 0; i < word.size(); ++i)
    {
        const bool isEscape =
            word[i] == '\\' && i + 3 < word.size() && isOctal(word[i + 1], '3') && isOctal(word[i + 2], '7') && isOctal(word[i + 3], '7');
        if (!isEscape)
        {
            text += word[i];
            continue;
        }
        text += static_cast<char>((word[i + 1] - '0') * 64 + (word[i + 2] - '0') * 8 + (word[i + 3] - '0'));
        i += 3;
    }
    return text;
}

std::uint16_t flagsFrom(std::string_view options)
{
    unsigned flags = 0;
    while (!options.empty())
    {
        const std::string_view option = takeWord(options, ',');
        for (const FlagWord &row : flagWords)
            flags |= option == row.word ? row.flag : 0u;
    }
    return static_cast<std::uint16_t>(flags);
}

// 36 35 98:0 /root/in/fs /place rw,noatime master:1 - ext3 /dev/root rw,errors=continue
bool parseLine(std::string_view line, Mount &mount)
{
    for (int word = 0; word < 4; ++word)
        takeWord(line);
    mount.place = unescaped(takeWord(line));
    mount.flags = flagsFrom(takeWord(line));
    while (!line.empty() && takeWord(line) != "-")
        continue;   // how it is shared with others
    mount.kind = unescaped(takeWord(line));
    mount.source = unescaped(takeWord(line));
    mount.flags = static_cast<std::uint16_t>(mount.flags | (flagsFrom(takeWord(line)) & mountedReadOnly));
    return mount.place.starts_with('/') && !mount.kind.empty();
}

}   // namespace

std::vector<Mount> parseMountList(std::string_view text)
{
    std::vector<Mount> mounts;
    std::unordered_map<std::string, std::size_t> byPlace;
    while (!text.empty())
    {
        Mount mount;
        if (!parseLine(takeWord(text, '\n'), mount))
            continue;
        const auto [known, isNew] = byPlace.emplace(mount.place, mounts.size());
        if (isNew)
            mounts.push_back(std::move(mount));
        else
            mounts[known->second] = std::move(mount);
    }
    return mounts;
}

std::string mountOptions(std::uint16_t flags)
{
    std::string options;
    for (const FlagWord &row : flagWords)
        if (flags & row.flag)
            options += (options.empty() ? "" : ",") + std::string(row.word);
    return options;
}

bool isDisk(const Mount &mount)
{
    if (std::find(std::begin(kindsThatAreNoDisks), std::end(kindsThatAreNoDisks), mount.kind) != std::end(kindsThatAreNoDisks))
        return false;
    const bool isPlumbing = std::any_of(std::begin(foldersOfPlumbing), std::end(foldersOfPlumbing),
                                        [&](std::string_view folder) { return isBeneath(mount.place, folder); });
    return !isPlumbing || (isBeneath(mount.place, folderOfDisks) && mount.place != folderOfDisks);
}

bool isBeneath(std::string_view place, std::string_view folder)
{
    return place.starts_with(folder) && (place.size() == folder.size() || place[folder.size()] == '/');
}

const Mount *mountOfPlace(const std::vector<Mount> &mounts, std::string_view place)
{
    const Mount *nearest = nullptr;
    for (const Mount &mount : mounts)
    {
        const std::string_view folder = mount.place == "/" ? std::string_view() : std::string_view(mount.place);
        if (isBeneath(place, folder) && (!nearest || nearest->place.size() <= mount.place.size()))
            nearest = &mount;
    }
    return nearest;
}

}   // namespace standin
