#include "standin/files/volume_opening.h"

#include "standin/files/attribute_format.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <linux/magic.h>

namespace standin
{

namespace
{

constexpr const char *nameOfSlash = "Linux";

// Inode numbers and births change on overlay with the first write, and are made up or missing on network and FUSE disks.
bool keepsInodes(std::int64_t kind)
{
    constexpr std::int64_t fuse = 0x65735546, smb2 = 0xFE534D42, cifs = 0xFF534D42, plan9 = 0x01021997, ceph = 0x00C36400, afs = 0x5346414F;
    static constexpr std::int64_t unstable[] = {
        OVERLAYFS_SUPER_MAGIC, NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, fuse, smb2, cifs, plan9, ceph, afs};
    return std::find(std::begin(unstable), std::end(unstable), kind) == std::end(unstable);
}

bool hasTrueListings(std::int64_t kind)
{
    constexpr std::int64_t f2fs = 0xF2F52010;   // in older headers it has no name
    static constexpr std::int64_t trusted[] = {EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, BTRFS_SUPER_MAGIC, TMPFS_MAGIC, f2fs};
    return std::find(std::begin(trusted), std::end(trusted), kind) != std::end(trusted);
}

std::string withoutSlashesAtEnd(std::string path)
{
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    return path;
}

// What kind of disk it is, found out while its root is open.
void findOutWhatItCanDo(Volume &volume, int root)
{
    const std::int64_t kind = linux_calls::diskKind(root);
    volume.trustsListings = hasTrueListings(kind);
    volume.hasStableInodes = keepsInodes(kind);
    volume.comparesBirths = volume.hasStableInodes && volume.rootStatus.hasBirth;
    volume.hasAttributes = linux_calls::getAttribute(root, ".", ownAttributeName, {}) != -EOPNOTSUPP;
}

bool takeOption(std::string_view word, VolumeOptions &options)
{
    if (word == "locked")
        options.locked = true;
    else if (word == "nocopyfile")
        options.copyFileOffered = false;
    else if (word == "nomoverename")
        options.moveRenameOffered = false;
    else if (word == "noexchange")
        options.exchangeOffered = false;
    else
        return false;
    return true;
}

// `DIR[,option…]`; a comma that no option follows belongs to the directory's name.
std::string directoryAndOptions(std::string text, VolumeOptions &options)
{
    for (std::size_t comma; (comma = text.rfind(',')) != std::string::npos; text.resize(comma))
        if (!takeOption(std::string_view(text).substr(comma + 1), options))
            break;
    return text;
}

std::string environmentText(const char *variable)
{
    const char *text = std::getenv(variable);
    return text ? text : "";
}

WantedVolume wantedFrom(const std::string &entry)
{
    WantedVolume wanted;
    const std::size_t equals = entry.find('=');
    wanted.entry = entry;
    wanted.name = equals == std::string::npos ? "" : entry.substr(0, equals);
    wanted.directory = equals == std::string::npos ? "" : directoryAndOptions(entry.substr(equals + 1), wanted.options);
    return wanted;
}

}   // namespace

OSErr openVolume(const std::string &directory, VolumeKind kind, const VolumeOptions &options, std::shared_ptr<Volume> &volume)
{
    ObjectStatus status;
    Descriptor root(linux_calls::openAbsoluteFolder(directory.c_str()));
    if (!root.isOpen())
        return root.number() == -ENOTDIR ? errFSNotAFolder : dirNFErr;
    if (linux_calls::statusOf(root.number(), status) < 0)
        return dirNFErr;
    if (kind == VolumeKind::mountedDisk && !status.isMountPoint)
        return dirNFErr;   // unmounted a moment ago: this is the folder beneath
    const int number = root.number();
    const auto path = withoutSlashesAtEnd(linux_calls::pathOf(number));
    RootHandle stillOpen;
    auto made = std::make_shared<Volume>(path, std::move(root), status, kind);
    if (OSErr result = made->root.open(Keeping::closed, stillOpen))
        return result == nsvErr ? static_cast<OSErr>(dirNFErr) : result;
    findOutWhatItCanDo(*made, stillOpen->number());
    made->isDirectoryVolume = kind == VolumeKind::directory;
    made->options = options;
    made->softwareLocked = options.locked;
    volume = std::move(made);
    return noErr;
}

std::string usualName(const Volume &volume)
{
    const std::string path = volume.root.path();
    return path.empty() ? nameOfSlash : path.substr(path.rfind('/') + 1);
}

bool isVolumeName(std::string_view name)
{
    return !name.empty() && name.size() <= longestVolumeName && name.find_first_of(std::string_view(":/\0", 3)) == std::string_view::npos;
}

WantedVolume wantedStartupVolume()
{
    WantedVolume wanted;
    wanted.entry = environmentText("ZERB_STARTUP_VOLUME");
    wanted.directory = wanted.entry.empty() ? "/" : directoryAndOptions(wanted.entry, wanted.options);
    return wanted;
}

std::vector<WantedVolume> wantedFurtherVolumes()
{
    std::vector<WantedVolume> all;
    const std::string entries = environmentText("ZERB_VOLUMES");
    for (std::size_t start = 0; start < entries.size();)
    {
        const std::size_t end = std::min(entries.find(';', start), entries.size());
        if (end > start)
            all.push_back(wantedFrom(entries.substr(start, end - start)));
        start = end + 1;
    }
    return all;
}

}   // namespace standin
