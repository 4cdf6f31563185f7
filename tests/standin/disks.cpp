#include "tests/standin/disks.h"

#include "tests/standin/processes.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <ftw.h>
#include <map>
#include <sched.h>
#include <sys/mount.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace support
{

namespace
{

std::string workFolder;
std::string mountProblem = "takeOwnMounts was not called";

std::string lastError()
{
    return std::strerror(errno);
}

void writeMap(const char *path, const std::string &line)
{
    std::ofstream(path) << line;
}

bool enterUserNamespace()
{
    uid_t user = getuid();
    gid_t group = getgid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    writeMap("/proc/self/setgroups", "deny");
    writeMap("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    writeMap("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    return true;
}

void mountAt(Disk &disk, const char *source, const char *type, const std::string &options)
{
    if (mount(source, disk.root.c_str(), type, 0, options.c_str()) != 0)
        disk.problem = std::string("cannot mount ") + type + ": " + lastError();
}

// The image's name goes as soon as it is mounted; its blocks go with the mount.
void mountImage(Disk &disk, const char *type, int megabytes, const std::string &formatLine)
{
    std::string image = disk.root + ".image";
    std::string program = formatLine.substr(0, formatLine.find(' '));
    if (!programExists(program))
    {
        disk.problem = "no program " + program;
        return;
    }
    writeFile(image);
    if (truncate(image.c_str(), megabytes * 1024L * 1024L) != 0)
        disk.problem = "no room for an image: " + lastError();
    Ended formatted = runShell("PATH=\"$PATH:/usr/sbin:/sbin\"; " + formatLine + " '" + image + "'");
    Ended mounted = formatted.status == 0 ? run({"mount", "-t", type, "-o", "loop", image, disk.root}) : formatted;
    if (mounted.status != 0)
        disk.problem = std::string("cannot make an image with ") + type + ": " + mounted.output;
    unlink(image.c_str());
}

void mountOverlay(Disk &disk)
{
    const Disk &below = diskOf(DiskKind::tmpfs);
    if (!below.problem.empty())
    {
        disk.problem = below.problem;
        return;
    }
    std::string base = below.root + "/layers";
    for (const std::string &part : {base, base + "/lower", base + "/upper", base + "/work"})
        mkdir(part.c_str(), 0755);
    disk.lower = base + "/lower";
    for (std::string name : {"first", "second", "third", "fourth"})   // before the mount: a lower layer in use must not change
        writeFile(disk.lower + "/" + name, "lower " + name);
    // An ordinary user's namespace may not write the trusted attributes that overlay uses otherwise.
    std::string user = canBecomeOtherUsers() ? "" : ",userxattr";
    mountAt(disk, "overlay", "overlay", "lowerdir=" + disk.lower + ",upperdir=" + base + "/upper,workdir=" + base + "/work" + user);
}

void mountDisk(Disk &disk)
{
    switch (disk.kind)
    {
    case DiskKind::plain: return;
    case DiskKind::tmpfs: return mountAt(disk, "tmpfs", "tmpfs", "mode=755,size=64m");
    case DiskKind::ramfs: return mountAt(disk, "ramfs", "ramfs", "mode=755");
    case DiskKind::ext4: return mountImage(disk, "ext4", 128, "mkfs.ext4 -q -F -I 256 -N 120000");   // room for large trees
    case DiskKind::ext4Small: return mountImage(disk, "ext4", 96, "mkfs.ext4 -q -F -I 128");
    case DiskKind::xfs: return mountImage(disk, "xfs", 320, "mkfs.xfs -q");
    case DiskKind::btrfs: return mountImage(disk, "btrfs", 160, "mkfs.btrfs -q");
    case DiskKind::overlay: return mountOverlay(disk);
    }
}

void findOutWhatItCanDo(Disk &disk)
{
    std::string probe = disk.root + "/probe";
    writeFile(probe);
    disk.hasAttributes = setxattr(probe.c_str(), "user.probe", "x", 1, 0) == 0;
    timespec times[2] = {{1000000000, 123456789}, {1000000000, 123456789}};
    utimensat(AT_FDCWD, probe.c_str(), times, 0);
    struct statx record = statxOf(probe);
    disk.hasFineDates = record.stx_mtime.tv_nsec != 0;
    disk.hasBirthTimes = (record.stx_mask & STATX_BTIME) != 0;
    unlink(probe.c_str());
}

Disk makeDisk(DiskKind kind)
{
    Disk disk;
    disk.kind = kind;
    disk.root = workFolder + "/" + nameOfKind(kind);
    mkdir(disk.root.c_str(), 0755);
    if (kind != DiskKind::plain && !mountProblem.empty())
        disk.problem = mountProblem;
    else
        mountDisk(disk);
    if (disk.problem.empty())
        findOutWhatItCanDo(disk);
    return disk;
}

int removeEntry(const char *path, const struct stat *, int, struct FTW *)
{
    return remove(path);
}

bool isOrphan(const std::string &name, const std::vector<std::string> &siblings)
{
    bool sidecar = name.starts_with("._") && name.size() > 2 && name != "._.";
    return sidecar && !std::binary_search(siblings.begin(), siblings.end(), name.substr(2));
}

}   // namespace

const std::vector<DiskKind> &everyKind()
{
    static const std::vector<DiskKind> kinds{DiskKind::plain,     DiskKind::tmpfs, DiskKind::ramfs, DiskKind::ext4,
                                             DiskKind::ext4Small, DiskKind::xfs,   DiskKind::btrfs, DiskKind::overlay};
    return kinds;
}

std::string nameOfKind(DiskKind kind)
{
    static const char *const names[] = {"plain", "tmpfs", "ramfs", "ext4", "ext4Small", "xfs", "btrfs", "overlay"};
    return names[static_cast<int>(kind)];
}

void PrintTo(DiskKind kind, std::ostream *stream)
{
    *stream << nameOfKind(kind);
}

std::string diskName(const testing::TestParamInfo<DiskKind> &row)
{
    return nameOfKind(row.param);
}

const Disk &diskOf(DiskKind kind)
{
    static std::map<DiskKind, Disk> disks;
    auto found = disks.find(kind);
    return found != disks.end() ? found->second : disks.emplace(kind, makeDisk(kind)).first->second;
}

std::string makeWorkFolder()
{
    std::string pattern = std::filesystem::canonical(std::filesystem::temp_directory_path()).string() + "/zerb-tests.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder: " + lastError());
    chmod(pattern.c_str(), 0755);   // other users take part in some tests
    umask(022);
    return workFolder = pattern;
}

// In a changed root "/" need not be a mount point. Then the work folder becomes one, and what is mounted inside it stays here.
bool makeMountsPrivate()
{
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        return true;
    return errno == EINVAL && mount(workFolder.c_str(), workFolder.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
           mount(nullptr, workFolder.c_str(), nullptr, MS_PRIVATE, nullptr) == 0;
}

void takeOwnMounts()
{
    bool own = geteuid() == 0 ? unshare(CLONE_NEWNS) == 0 : enterUserNamespace();
    if (!own)
        mountProblem = "cannot have mounts of its own: " + lastError();
    else if (!makeMountsPrivate())
        mountProblem = "cannot make the mounts private: " + lastError();
    else
        mountProblem.clear();
}

void removeTree(const std::string &path)
{
    nftw(path.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
}

TemporaryFolder::TemporaryFolder(const Disk &disk) : disk_(disk)
{
    static int number = 0;
    path_ = disk.root + "/folder" + std::to_string(++number);
    if (!disk.problem.empty() || mkdir(path_.c_str(), 0755) != 0)
        throw std::runtime_error("no folder on " + nameOfKind(disk.kind) + ": " + (disk.problem.empty() ? lastError() : disk.problem));
}

TemporaryFolder::~TemporaryFolder()
{
    checkLeftovers();
    removeTree(path_);
    EXPECT_FALSE(exists(path_)) << "cannot remove " << path_;
}

void TemporaryFolder::checkLeftovers() const
{
    std::vector<std::string> directories{path_};
    while (!directories.empty())
    {
        std::string directory = directories.back();
        directories.pop_back();
        std::vector<std::string> names = namesIn(directory);
        for (const std::string &name : names)
        {
            EXPECT_FALSE(name.starts_with(".zerb-")) << "a hidden temporary was left: " << directory << "/" << name;
            EXPECT_FALSE(isOrphan(name, names) && allowed_.count(name) == 0) << "a sidecar has lost its file: " << directory << "/" << name;
            struct stat record;
            if (lstat((directory + "/" + name).c_str(), &record) == 0 && S_ISDIR(record.st_mode))
                directories.push_back(directory + "/" + name);
        }
    }
}

ReadOnlyView::ReadOnlyView(const std::string &directory) : path_(directory + ".readonly")
{
    mkdir(path_.c_str(), 0755);
    if (!mountProblem.empty())
        problem_ = mountProblem;
    else if (mount(directory.c_str(), path_.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
             mount(nullptr, path_.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) != 0)
        problem_ = "cannot mount a directory read-only: " + lastError();
}

ReadOnlyView::~ReadOnlyView()
{
    umount2(path_.c_str(), MNT_DETACH);
    rmdir(path_.c_str());
}

}   // namespace support
