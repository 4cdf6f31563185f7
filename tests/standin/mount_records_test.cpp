// The kernel's list of mounts and the records from which volumes are mounted again, as bytes alone.
#include "standin/files/mount_list.h"
#include "standin/files/mount_records.h"
#include "tests/standin/disks.h"

#include <random>

namespace
{

using namespace standin;
using support::Bytes;

// --- the list of mounts --------------------------------------------------------------------------------------------------------------------

std::string lineOf(const std::string &place, const std::string &rest = "rw,relatime - ext4 /dev/sda1 rw")
{
    return "36 25 8:1 / " + place + " " + rest + "\n";
}

TEST(MountList, LinesBecomeMounts)
{
    const std::vector<Mount> mounts =
        parseMountList(lineOf("/") + "41 36 0:44 /sub /mnt/two ro,nosuid,nodev,noexec,noatime shared:1 master:2 - fuse.x x,y rw\n" +
                       lineOf("/mnt/three", "rw - xfs server:/home ro,seclabel"));
    ASSERT_EQ(mounts.size(), 3u);
    EXPECT_EQ(mounts[0].place, "/");
    EXPECT_EQ(mounts[0].kind, "ext4");
    EXPECT_EQ(mounts[0].source, "/dev/sda1");
    EXPECT_EQ(mounts[0].flags, 0);
    EXPECT_EQ(mounts[1].kind, "fuse.x");
    EXPECT_EQ(mounts[1].source, "x,y");
    EXPECT_EQ(mounts[1].flags, mountedReadOnly | mountedWithoutSetUser | mountedWithoutDevices | mountedWithoutPrograms);
    EXPECT_EQ(mountOptions(mounts[1].flags), "ro,nosuid,nodev,noexec");
    EXPECT_EQ(mounts[2].source, "server:/home");
    EXPECT_EQ(mounts[2].flags, mountedReadOnly) << "the whole disk is read-only";
    EXPECT_EQ(mountOptions(0), "");
}

TEST(MountList, EscapedNamesAreReadable)
{
    EXPECT_EQ(parseMountList(lineOf("/a\\040b\\011c\\012d\\134e\\043"))[0].place, "/a b\tc\nd\\e#");
    EXPECT_EQ(parseMountList(lineOf("/\\04x\\9\\\\0"))[0].place, "/\\04x\\9\\\\0") << "what is no escape stays";
}

TEST(MountList, TheLastAtAPlaceCoversTheOthers)
{
    const std::vector<Mount> mounts = parseMountList(lineOf("/") + lineOf("/a") + lineOf("/b") + lineOf("/a", "rw - tmpfs none rw"));
    ASSERT_EQ(mounts.size(), 3u);
    EXPECT_EQ(mounts[1].kind, "tmpfs");
}

TEST(MountList, WhatMakesNoSenseIsPassedOver)
{
    for (const char *text :
         {"", "\n\n", "x", "36 25 8:1 / /a rw", "36 25 8:1 / /a rw -", "36 25 8:1 / a rw - ext4 x rw", " - - - - - - - -", "\\"})
        EXPECT_TRUE(parseMountList(text).empty()) << text;
}

TEST(MountList, APlaceLiesOnTheNearestMount)
{
    const std::vector<Mount> mounts = parseMountList(lineOf("/") + lineOf("/a/b", "rw - xfs x rw") + lineOf("/a", "rw - tmpfs y rw"));
    EXPECT_EQ(mountOfPlace(mounts, "/")->kind, "ext4");
    EXPECT_EQ(mountOfPlace(mounts, "/ab")->kind, "ext4");
    EXPECT_EQ(mountOfPlace(mounts, "/a")->kind, "tmpfs");
    EXPECT_EQ(mountOfPlace(mounts, "/a/bc")->kind, "tmpfs");
    EXPECT_EQ(mountOfPlace(mounts, "/a/b/c")->kind, "xfs");
    EXPECT_EQ(mountOfPlace({}, "/"), nullptr);
}

TEST(MountList, PlumbingIsNoDisk)
{
    for (const char *place :
         {"/", "/home", "/mnt", "/tmp", "/media/ada/Stick", "/run/media/ada/Stick", "/boot/efi", "/devices", "/running", "/srv/snap"})
        EXPECT_TRUE(isDisk({place, "ext4", "/dev/sda1"})) << place;
    for (const char *place : {"/dev", "/dev/shm", "/proc", "/sys/fs/cgroup", "/run", "/run/user/1000", "/run/media", "/snap/core/1",
                              "/var/lib/docker/overlay2/x"})
        EXPECT_FALSE(isDisk({place, "tmpfs", "tmpfs"})) << place;
    for (const char *kind :
         {"ext4", "btrfs", "xfs", "vfat", "tmpfs", "ramfs", "nfs4", "cifs", "fuse.sshfs", "fuseblk", "iso9660", "squashfs"})
        EXPECT_TRUE(isDisk({"/mnt", kind, "x"})) << kind;
    for (const char *kind : {"proc", "sysfs", "cgroup2", "devpts", "devtmpfs", "autofs", "overlay", "bpf", "fuse.gvfsd-fuse", "nsfs"})
        EXPECT_FALSE(isDisk({"/mnt", kind, "x"})) << kind;
}

// --- records -------------------------------------------------------------------------------------------------------------------------------

MountRecord directoryRecord()
{
    MountRecord record;
    record.kind = VolumeKind::directory;
    record.name = "Archive";
    record.place = "/home/ada/archive";
    record.options.locked = true;
    record.options.exchangeOffered = false;
    return record;
}

MountRecord diskRecord()
{
    MountRecord record;
    record.kind = VolumeKind::mountedDisk;
    record.place = "/media/ada/Stick";
    record.diskKind = "ext4";
    record.source = "/dev/sdb1";
    record.mountFlags = mountedReadOnly | mountedWithoutDevices;
    return record;
}

Bytes bytesOf(const MountRecord &record)
{
    Bytes bytes;
    EXPECT_EQ(writeMountRecord(record, bytes), noErr);
    return bytes;
}

// Computed once more, byte by byte, from what the format says.
void mendCheckSum(Bytes &bytes)
{
    std::uint32_t sum = 2166136261u;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        if (at < 8 || at > 11)
            sum = (sum ^ bytes[at]) * 16777619u;
    for (std::size_t i = 0; i < 4; ++i)
        bytes[8 + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
}

bool isRefused(const Bytes &bytes)
{
    MountRecord record = directoryRecord();
    const bool refused = readMountRecord(bytes, record) == paramErr;
    EXPECT_EQ(refused, record.name == "Archive") << "untouched if refused";
    return refused;
}

TEST(MountRecords, ComeBackAsTheyWereWritten)
{
    MountRecord read;
    ASSERT_EQ(readMountRecord(bytesOf(directoryRecord()), read), noErr);
    EXPECT_EQ(read.kind, VolumeKind::directory);
    EXPECT_EQ(read.name, "Archive");
    EXPECT_EQ(read.place, "/home/ada/archive");
    EXPECT_TRUE(read.options.locked && read.options.copyFileOffered && read.options.moveRenameOffered && !read.options.exchangeOffered);
    ASSERT_EQ(readMountRecord(bytesOf(diskRecord()), read), noErr);
    EXPECT_EQ(read.kind, VolumeKind::mountedDisk);
    EXPECT_EQ(read.diskKind, "ext4");
    EXPECT_EQ(read.source, "/dev/sdb1");
    EXPECT_EQ(read.mountFlags, mountedReadOnly | mountedWithoutDevices);
}

TEST(MountRecords, HaveTheDocumentedForm)
{
    const Bytes bytes = bytesOf(directoryRecord());
    const std::string texts = std::string("\0\7Archive\0\0\0\0\0\21/home/ada/archive", 9 + 4 + 19);
    ASSERT_EQ(bytes.size(), 16 + texts.size());
    const Bytes start{0, static_cast<std::uint8_t>(bytes.size()), 'z', 'V', 'o', 'l', 0, 1};
    EXPECT_TRUE(std::equal(start.begin(), start.end(), bytes.begin()));
    EXPECT_EQ(Bytes(bytes.begin() + 12, bytes.begin() + 16), (Bytes{0, 1, 0, 9})) << "a directory; locked and without exchanging";
    EXPECT_EQ(std::string(bytes.begin() + 16, bytes.end()), texts);
    EXPECT_NE(bytes.back(), 0);
    Bytes mended = bytes;
    mendCheckSum(mended);
    EXPECT_EQ(mended, bytes);
}

TEST(MountRecords, CutShortAnywhereAreRefused)
{
    for (const MountRecord &record : {directoryRecord(), diskRecord()})
    {
        const Bytes bytes = bytesOf(record);
        for (std::size_t length = 0; length < bytes.size(); ++length)
        {
            Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_TRUE(isRefused(cut)) << length;
            if (length < shortestMountRecord)
                continue;
            cut[1] = static_cast<std::uint8_t>(length);
            mendCheckSum(cut);
            EXPECT_TRUE(isRefused(cut)) << length << ", and says so";
        }
    }
}

TEST(MountRecords, WithAnyByteChangedAreRefused)
{
    for (const MountRecord &record : {directoryRecord(), diskRecord()})
        for (std::size_t at = 0; at < bytesOf(record).size(); ++at)
            for (unsigned difference = 1; difference < 256; ++difference)
            {
                Bytes bytes = bytesOf(record);
                bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ difference);
                EXPECT_TRUE(isRefused(bytes)) << at << " " << difference;
            }
}

// What passes is a record, too: it is written as it was read.
TEST(MountRecords, ThatAreForgedAreRefusedOrMakeSense)
{
    std::mt19937 random(20261);
    int accepted = 0;
    for (int round = 0; round < 30000; ++round)
    {
        Bytes bytes = bytesOf(round % 2 ? directoryRecord() : diskRecord());
        for (int changes = 0; changes <= round % 3; ++changes)
            bytes[12 + random() % (bytes.size() - 12)] = static_cast<std::uint8_t>(random() % 4 ? random() % 16 : random());
        mendCheckSum(bytes);
        MountRecord record;
        if (readMountRecord(bytes, record) != noErr)
            continue;
        ++accepted;
        ASSERT_EQ(bytesOf(record), bytes);
    }
    EXPECT_GT(accepted, 100);
}

struct Nonsense
{
    const char *name;
    void (*spoil)(MountRecord &record);
};

void PrintTo(const Nonsense &row, std::ostream *stream)
{
    *stream << row.name;
}

class MountRecordsOfNonsense : public testing::TestWithParam<Nonsense>
{
};

TEST_P(MountRecordsOfNonsense, AreNotWritten)
{
    Bytes bytes;
    MountRecord record = std::string(GetParam().name).starts_with("Directory") ? directoryRecord() : diskRecord();
    GetParam().spoil(record);
    EXPECT_EQ(writeMountRecord(record, bytes), paramErr);
}

const Nonsense nonsense[] = {
    {"DirectoryWithoutAName", [](MountRecord &record) { record.name = ""; }},
    {"DirectoryWithALongName", [](MountRecord &record) { record.name = std::string(28, 'x'); }},
    {"DirectoryWithASlashInItsName", [](MountRecord &record) { record.name = "a/b"; }},
    {"DirectoryAtARelativePlace", [](MountRecord &record) { record.place = "home"; }},
    {"DirectoryNowhere", [](MountRecord &record) { record.place = ""; }},
    {"DirectoryWithAZeroInItsPlace", [](MountRecord &record) { record.place = std::string("/a\0b", 4); }},
    {"DirectoryWithASource", [](MountRecord &record) { record.source = "/dev/sdb1"; }},
    {"DiskWithoutAKind", [](MountRecord &record) { record.diskKind = ""; }},
    {"DiskWhoseKindIsAnOption", [](MountRecord &record) { record.diskKind = "-o"; }},
    {"DiskWithASpaceInItsKind", [](MountRecord &record) { record.diskKind = "ext4 x"; }},
    {"DiskWithoutASource", [](MountRecord &record) { record.source = ""; }},
    {"DiskWhoseSourceIsAnOption", [](MountRecord &record) { record.source = "--bind"; }},
    {"DiskWithAZeroInItsSource", [](MountRecord &record) { record.source = std::string("a\0b", 3); }},
    {"DiskWithUnknownFlags", [](MountRecord &record) { record.mountFlags = 16; }},
    {"DiskWithAName", [](MountRecord &record) { record.name = "Stick"; }},
    {"StartupVolume", [](MountRecord &record) { record.kind = VolumeKind::startup; }},
};

INSTANTIATE_TEST_SUITE_P(Rows, MountRecordsOfNonsense, testing::ValuesIn(nonsense),
                         [](const testing::TestParamInfo<Nonsense> &row) { return std::string(row.param.name); });

TEST(MountRecords, AreNoLongerThanTheirLengthCanSay)
{
    Bytes bytes;
    MountRecord record = directoryRecord();
    record.place = "/" + std::string(longestMountRecord - 16 - 8 - record.name.size() - 1, 'x');
    ASSERT_EQ(writeMountRecord(record, bytes), noErr);
    EXPECT_EQ(bytes.size(), longestMountRecord);
    record.place += 'x';
    EXPECT_EQ(writeMountRecord(record, bytes), errFSNameTooLong);
}

}   // namespace
