// Saving how a volume was mounted, and mounting it again.
//
// A directory volume becomes one again by itself. A disk is mounted by the system's own mount program, which knows who may do that: first as the system's
// table of disks says, and if that does not list the place, as it was mounted when the record was made.
#include "platform/platform.h"
#include "standin/files/errors.h"
#include "standin/files/linux_mounts.h"
#include "standin/files/mount_records.h"
#include "standin/files/mounted_disks.h"
#include "standin/files/volume_opening.h"
#include "standin/files/volume_table.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <new>

using namespace standin;

namespace
{

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::string>;

// --- saving --------------------------------------------------------------------------------------------------------------------------------

OSErr describeDisk(MountRecord &record)
{
    std::vector<Mount> mounts;
    if (OSErr result = readMounts(mounts))
        return result;
    const Mount *mount = mountOfPlace(mounts, record.place);
    if (!mount || mount->place != record.place)
        return nsvErr;
    record.kind = VolumeKind::mountedDisk;
    record.diskKind = mount->kind;
    record.source = mount->source;
    record.mountFlags = mount->flags;
    return noErr;
}

OSErr describe(const VolumeHandle &volume, MountRecord &record)
{
    if (volume == startupVolume())
        return paramErr;   // it is there as long as the process runs
    record.place = volume->root.path();
    if (volume->isMountedDisk)
        return describeDisk(record);
    record.name = volume->name;
    record.place = record.place.empty() ? "/" : record.place;
    record.options = volume->options;
    record.options.locked = volume->softwareLocked;
    return noErr;
}

OSErr makeRecord(FSVolumeRefNum number, Bytes &bytes)
{
    MountRecord record;
    const VolumeHandle volume = findVolume(number);
    if (!volume)
        return nsvErr;
    if (OSErr result = describe(volume, record))
        return result;
    return writeMountRecord(record, bytes);
}

OSErr getSize(const IOParam &block)
{
    Bytes bytes;
    if (!block.ioBuffer)
        return paramErr;
    if (OSErr result = makeRecord(block.ioVRefNum, bytes))
        return result;
    const auto size = static_cast<SInt16>(bytes.size());
    std::memcpy(block.ioBuffer, &size, sizeof size);
    return noErr;
}

OSErr getRecord(const IOParam &block)
{
    Bytes bytes;
    if (!block.ioBuffer)
        return paramErr;
    if (OSErr result = makeRecord(block.ioVRefNum, bytes))
        return result;
    std::memcpy(block.ioBuffer, bytes.data(), bytes.size());
    return noErr;
}

// --- reading a record ----------------------------------------------------------------------------------------------------------------------

// The caller says where a record lies and not how long it is. What it says of its own length need not be true, so the kernel is asked to fetch it: that
// never falls over the end of the memory. Where a process may not ask that, it is fetched as it is.
bool fetch(const char *from, std::span<std::uint8_t> bytes)
{
    const ssize_t got = linux_calls::readOwnMemory(from, bytes);
    if (got == -ENOSYS || got == -EPERM)
        std::memcpy(bytes.data(), from, bytes.size());
    return got == static_cast<ssize_t>(bytes.size()) || got == -ENOSYS || got == -EPERM;
}

OSErr fetchRecord(const char *from, MountRecord &record)
{
    std::array<std::uint8_t, 2> start;
    if (!from || !fetch(from, start))
        return paramErr;
    Bytes bytes(lengthOfMountRecord(start));
    if (bytes.empty() || !fetch(from, bytes))
        return paramErr;
    return readMountRecord(bytes, record);
}

// --- mounting ------------------------------------------------------------------------------------------------------------------------------

// The directory volume that a record means, if it is there: of its name, and at its place.
VolumeHandle directoryVolumeThere(const MountRecord &record)
{
    for (const VolumeHandle &volume : allVolumes())
        if (!volume->isMountedDisk && volume->name == record.name && volume->root.path() == (record.place == "/" ? "" : record.place))
            return volume;
    return nullptr;
}

OSErr mountDirectory(const MountRecord &record, FSVolumeRefNum &number)
{
    std::shared_ptr<Volume> opened;
    VolumeHandle volume = directoryVolumeThere(record);
    if (!volume)
    {
        if (OSErr result = openVolume(record.place, VolumeKind::directory, record.options, opened))
            return result;
        if (OSErr result = addNamedVolume(opened, record.name))
            return result;
        volume = opened;
    }
    number = volume->number;
    return noErr;
}

OSErr checkPlace(const std::string &place)
{
    const Descriptor folder(linux_calls::openAbsoluteFolder(place.c_str()));
    if (folder.isOpen())
        return noErr;
    if (folder.number() == -ENOTDIR)
        return errFSNotAFolder;
    return folder.number() == -ENOENT ? static_cast<OSErr>(dirNFErr) : resultFromErrno(-folder.number());
}

// Runs the mount program. Whether it did what it should is seen by what is mounted afterwards; its exit status says little about why not.
OSErr runMount(Words words)
{
    for (const char *program : {"/usr/bin/mount", "/bin/mount"})
    {
        words.insert(words.begin(), program);
        const int status = linux_calls::runProgram(words);
        if (status != -ENOENT)
            return status < 0 ? resultFromErrno(-status) : static_cast<OSErr>(noErr);
        words.erase(words.begin());
    }
    return paramErr;   // this system cannot mount anything for its users
}

Words wordsFor(const MountRecord &record)
{
    Words words{"-t", record.diskKind};
    if (const std::string options = mountOptions(record.mountFlags); !options.empty())
        words.insert(words.end(), {"-o", options});
    words.insert(words.end(), {"--source", record.source, "--target", record.place});
    return words;
}

// Why the mount program did not mount it: its exit status is the same whether it was not allowed to or could not.
OSErr likelyReason(const MountRecord &record)
{
    ObjectStatus device;
    if (record.source[0] == '/' && linux_calls::statusAt(AT_FDCWD, record.source.c_str(), device) == -ENOENT)
        return nsvErr;
    return linux_calls::effectiveUser() != 0 ? permErr : ioErr;
}

OSErr mountThere(const MountRecord &record, VolumeHandle &volume)
{
    for (const Words &words : {Words{"--", record.place}, wordsFor(record)})
    {
        if (OSErr result = runMount(words))
            return result;
        if (OSErr result = volumeMountedAt(record.place, volume))
            return result;
        if (volume)
            return noErr;
    }
    return likelyReason(record);
}

// Whether what is mounted at the place already is what the record means.
OSErr checkIsMeant(const MountRecord &record)
{
    std::vector<Mount> mounts;
    if (OSErr result = readMounts(mounts))
        return result;
    const Mount *mount = mountOfPlace(mounts, record.place);
    return mount && mount->kind == record.diskKind && mount->source == record.source ? noErr : fBsyErr;
}

OSErr mountDisk(const MountRecord &record, FSVolumeRefNum &number)
{
    VolumeHandle volume;
    if (!isReachable(record.place))
        return paramErr;
    if (OSErr result = volumeMountedAt(record.place, volume))
        return result;
    if (volume)
    {
        number = volume->number;
        return checkIsMeant(record);
    }
    if (OSErr result = checkPlace(record.place))
        return result;
    if (OSErr result = mountThere(record, volume))
        return result;
    number = volume->number;
    return noErr;
}

// One at a time, so that two threads with the same record get the same volume.
OSErr mountVolume(IOParam &block)
{
    static std::mutex &oneAtATime = *new std::mutex;
    const std::lock_guard lock(oneAtATime);
    MountRecord record;
    FSVolumeRefNum number = 0;
    if (OSErr result = fetchRecord(block.ioBuffer, record))
        return result;
    const bool isDisk = record.kind == VolumeKind::mountedDisk;
    if (OSErr result = isDisk ? mountDisk(record, number) : mountDirectory(record, number))
        return result;
    block.ioVRefNum = number;
    return noErr;
}

}   // namespace

OSErr PBGetVolMountInfoSize(ParmBlkPtr block)
try
{
    return block ? block->ioParam.ioResult = getSize(block->ioParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->ioParam.ioResult = memFullErr;
}

OSErr PBGetVolMountInfo(ParmBlkPtr block)
try
{
    return block ? block->ioParam.ioResult = getRecord(block->ioParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->ioParam.ioResult = memFullErr;
}

OSErr PBVolumeMount(ParmBlkPtr block)
try
{
    return block ? block->ioParam.ioResult = mountVolume(block->ioParam) : static_cast<OSErr>(paramErr);
}
catch (const std::bad_alloc &)
{
    return block->ioParam.ioResult = memFullErr;
}
