// The kernel's list of mounts: its text ↔ records, and which of them are disks that a user would call volumes. No disk is touched here.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace standin
{

// How a disk is mounted, as far as it is worth remembering.
enum MountFlags : std::uint16_t
{
    mountedReadOnly = 1,
    mountedWithoutSetUser = 2,    // nosuid
    mountedWithoutDevices = 4,    // nodev
    mountedWithoutPrograms = 8,   // noexec
    everyMountFlag = 15,
};

struct Mount
{
    std::string place;    // absolute
    std::string kind;     // of file system: "ext4"
    std::string source;   // "/dev/sda1", "server:/home", "tmpfs"
    std::uint16_t flags = 0;
};

// What is mounted, in the order of the list. Where several are mounted at one place only the last counts: it covers the others. Lines that make no sense
// are passed over.
std::vector<Mount> parseMountList(std::string_view text);

// The word of a flag in an option list: "ro", "nosuid", "nodev", "noexec".
std::string mountOptions(std::uint16_t flags);

// Whether a mount is a disk and not a part of the system's plumbing: no kernel's own file system, nothing beneath /dev, /proc, /sys, /run (but for
// /run/media, where some desktops mount disks) and the folders of containers and packages, and no overlay, which shows again what lies on other disks.
bool isDisk(const Mount &mount);

// Whether a place is a folder or lies in it; `folder` has no '/' at its end, and is empty for the root.
bool isBeneath(std::string_view place, std::string_view folder);

// The mount that a place lies on, or null.
const Mount *mountOfPlace(const std::vector<Mount> &mounts, std::string_view place);

}   // namespace standin
