// The volume's record.
#include "platform/platform.h"
#include "standin/files/dates.h"
#include "standin/files/errors.h"
#include "standin/files/names.h"
#include "standin/files/references.h"

#include <algorithm>
#include <new>
#include <sys/statvfs.h>

using namespace standin;

namespace
{

constexpr FSVolumeInfoBitmap everyVolumeBit = 0xFFFF;
constexpr UInt16 extendedSignature = 0x482B;   // 'H+': a disk with long names and two forks

UInt32 clamped(std::uint64_t value)
{
    return static_cast<UInt32>(std::min<std::uint64_t>(value, 0xFFFFFFFF));
}

// What the disk says of its room.
void fillRoom(const struct statvfs &disk, FSVolumeInfoBitmap which, FSVolumeInfo &info)
{
    if (which & kFSVolInfoSizes)
    {
        info.totalBytes = static_cast<UInt64>(disk.f_blocks) * disk.f_frsize;
        info.freeBytes = static_cast<UInt64>(disk.f_bavail) * disk.f_frsize;
    }
    if (which & kFSVolInfoBlocks)
    {
        info.blockSize = clamped(disk.f_frsize);
        info.totalBlocks = clamped(disk.f_blocks);
        info.freeBlocks = clamped(disk.f_bavail);
    }
    if (which & kFSVolInfoFileCount)
        info.fileCount = clamped(disk.f_files - disk.f_ffree);   // folders among them: Linux counts them together
    if (which & kFSVolInfoRsrcClump)
        info.rsrcClumpSize = clamped(disk.f_frsize);
    if (which & kFSVolInfoDataClump)
        info.dataClumpSize = clamped(disk.f_frsize);
}

UInt16 flagsOf(const Volume &volume, const struct statvfs &disk)
{
    const unsigned hardware = disk.f_flag & ST_RDONLY ? kFSVolFlagHardwareLockedMask : 0;
    const unsigned software = volume.softwareLocked ? kFSVolFlagSoftwareLockedMask : 0;
    return static_cast<UInt16>(hardware | software);
}

// Dates, flags and what tells one kind of disk from another.
void fillNature(const Volume &volume, const struct statvfs &disk, const ObjectStatus &root, FSVolumeInfoBitmap which, FSVolumeInfo &info)
{
    if (which & kFSVolInfoCreateDate)
        info.createDate = root.hasBirth ? dateFromLinux(root.birth) : UTCDateTime{};
    if (which & kFSVolInfoModDate)
        info.modifyDate = dateFromLinux(root.modification);
    if (which & kFSVolInfoFlags)
        info.flags = flagsOf(volume, disk);
    if (which & kFSVolInfoFSInfo)
    {
        info.filesystemID = 0;   // the platform's own kind of disk
        info.signature = extendedSignature;
    }
}

// A record cannot say "unknown": what Linux does not count reads 0, and dates that it does not keep read as never.
void clearUnknown(FSVolumeInfoBitmap which, FSVolumeInfo &info)
{
    if (which & kFSVolInfoBackupDate)
        info.backupDate = {};
    if (which & kFSVolInfoCheckedDate)
        info.checkedDate = {};
    if (which & kFSVolInfoDirCount)
        info.folderCount = 0;
    if (which & kFSVolInfoNextAlloc)
        info.nextAllocation = 0;
    if (which & kFSVolInfoNextID)
        info.nextCatalogID = 0;
    if (which & kFSVolInfoFinderInfo)
        std::fill(std::begin(info.finderInfo), std::end(info.finderInfo), UInt8{0});
    if (which & kFSVolInfoDriveInfo)
    {
        info.driveNumber = 0;
        info.driverRefNum = 0;
    }
}

OSErr getInfo(const Volume &volume, const Descriptor &opened, FSVolumeInfoBitmap which, FSVolumeInfo &info)
{
    struct statvfs disk;
    ObjectStatus root;
    if (const int failure = linux_calls::diskStatistics(opened.number(), disk))
        return resultFromErrno(-failure);
    if (const int failure = linux_calls::statusOf(opened.number(), root))
        return resultFromErrno(-failure);
    fillRoom(disk, which, info);
    fillNature(volume, disk, root, which, info);
    clearUnknown(which, info);
    return noErr;
}

OSErr volumeOfNumber(FSVolumeRefNum number, VolumeHandle &volume, RootHandle &root)
{
    volume = findVolume(number);
    return volume ? volume->root.open(Keeping::open, root) : static_cast<OSErr>(nsvErr);
}

}   // namespace

OSErr FSGetVolumeInfo(FSVolumeRefNum number, ItemCount index, FSVolumeRefNum *actual, FSVolumeInfoBitmap which, FSVolumeInfo *info,
                      HFSUniStr255 *name, FSRef *rootReference)
try
{
    VolumeHandle volume;
    RootHandle opened;   // so that the disk stays there until all is told
    Object root;
    if (which & ~everyVolumeBit)
        return errFSBadInfoBitmap;
    if (which != kFSVolInfoNone && !info)
        return errFSMissingCatInfo;
    if (OSErr result = index == 0 ? volumeOfNumber(number, volume, opened) : volumeAtIndex(index, volume, opened))
        return result;
    if (OSErr result = which != kFSVolInfoNone ? getInfo(*volume, *opened, which, *info) : static_cast<OSErr>(noErr))
        return result;
    if (rootReference)
    {
        if (OSErr result = findRoot(volume, root))
            return result;
        *rootReference = makeReference(root);
    }
    if (name)
        unicodeFromDiskName(volume->name, *name);
    if (actual)
        *actual = volume->number;
    return noErr;
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}
