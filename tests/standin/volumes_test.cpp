// Volumes: the startup volume, directories as volumes, locks, and the numbers of the disks beneath.
//
// What changes the volumes of a process is played in a process of its own.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr FSVolumeInfoBitmap allVolumeBits = 0xFFFF;

FSVolumeInfo volumeInfo(FSVolumeRefNum volume, HFSUniStr255 *name = nullptr, FSRef *root = nullptr)
{
    FSVolumeInfo info{};
    EXPECT_EQ(FSGetVolumeInfo(volume, 0, nullptr, allVolumeBits, &info, name, root), noErr);
    return info;
}

FSVolumeRefNum volumeOf(const FSRef &ref)
{
    return infoOf(ref, kFSCatInfoVolume).volume;
}

GetVolParmsInfoBuffer parametersOf(FSVolumeRefNum volume)
{
    GetVolParmsInfoBuffer parameters{};
    HParamBlockRec block{};
    block.ioParam.ioVRefNum = volume;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&parameters);
    block.ioParam.ioReqCount = sizeof parameters;
    EXPECT_EQ(PBHGetVolParmsSync(&block), noErr);
    EXPECT_EQ(block.ioParam.ioActCount, static_cast<SInt32>(sizeof parameters));
    return parameters;
}

// Copying, moving with a new name, exchanging.
std::string servicesOf(FSVolumeRefNum volume)
{
    GetVolParmsInfoBuffer parameters = parametersOf(volume);
    std::string services = parameters.vMAttrib & 1 << bHasCopyFile ? "copy " : "";
    services += parameters.vMAttrib & 1 << bHasMoveRename ? "move " : "";
    return services + (parameters.vMExtendedAttributes & 1 << bSupportsFSExchangeObjects ? "exchange " : "");
}

std::string lastPart(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

std::u16string wideName(const std::string &ascii)
{
    return std::u16string(ascii.begin(), ascii.end());
}

TEST(Volumes, TheStartupVolumeIsTheWholeDisk)
{
    FSRef root = refAt("/");
    FSCatalogInfo info = infoOf(root);
    EXPECT_EQ(+info.nodeID, static_cast<UInt32>(fsRtDirID));
    EXPECT_EQ(+info.parentDirID, static_cast<UInt32>(fsRtParID));
    EXPECT_TRUE(info.nodeFlags & kFSNodeIsDirectoryMask);
    EXPECT_EQ(pathOf(root), "/");
    HFSUniStr255 name{};
    FSRef found{};
    volumeInfo(info.volume, &name, &found);
    EXPECT_TRUE(sameObject(root, found));
    EXPECT_EQ(wide(name), nameOf(root));
    EXPECT_FALSE(wide(name).empty());
}

TEST(Volumes, TheyAreCountedFromOne)
{
    std::set<int> numbers;
    ItemCount index = 1;
    OSErr result = noErr;
    for (; result == noErr && index < 1000; ++index)
    {
        FSVolumeRefNum actual = 0;
        FSRef root{};
        result = FSGetVolumeInfo(kFSInvalidVolumeRefNum, index, &actual, kFSVolInfoNone, nullptr, nullptr, &root);
        if (result == noErr)
        {
            EXPECT_TRUE(numbers.insert(actual).second) << "volume " << actual << " twice";
            EXPECT_EQ(nodeOf(root), static_cast<UInt32>(fsRtDirID));
        }
    }
    EXPECT_EQ(result, nsvErr);
    EXPECT_EQ(numbers.count(volumeOf(refAt("/"))), 1u);
    EXPECT_EQ(FSGetVolumeInfo(12345, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, nullptr), nsvErr);
}

TEST(Volumes, ParametersAreFilledAsFarAsTheyAreAskedFor)
{
    GetVolParmsInfoBuffer whole = parametersOf(volumeOf(refAt("/")));
    EXPECT_EQ(+whole.vMVersion, 3);
    EXPECT_EQ(+whole.vMMaxNameLength, 255u);
    for (SInt32 asked : {0, 1, 2, 6, 14, 20, 24, 31, 32, 33, 1000000})
    {
        SCOPED_TRACE(asked);
        SInt32 filled = std::min<SInt32>(asked, sizeof whole);
        Bytes buffer(64, 0xEE), expected = buffer;
        std::memcpy(expected.data(), &whole, static_cast<std::size_t>(filled));
        HParamBlockRec block{};
        block.ioParam.ioBuffer = reinterpret_cast<Ptr>(buffer.data());
        block.ioParam.ioReqCount = asked;
        EXPECT_EQ(PBHGetVolParmsSync(&block), noErr);
        EXPECT_EQ(+block.ioParam.ioActCount, filled);
        EXPECT_EQ(buffer, expected);
    }
}

TEST(Volumes, ParametersOfNoVolumeOrIntoNoBufferAreRefused)
{
    HParamBlockRec block{};
    GetVolParmsInfoBuffer parameters{};
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&parameters);
    block.ioParam.ioReqCount = sizeof parameters;
    block.ioParam.ioVRefNum = 12345;
    EXPECT_EQ(PBHGetVolParmsSync(&block), nsvErr);
    EXPECT_EQ(+block.ioParam.ioResult, nsvErr);
    block.ioParam.ioVRefNum = 0;
    block.ioParam.ioReqCount = -1;
    EXPECT_EQ(PBHGetVolParmsSync(&block), paramErr);
    block.ioParam.ioReqCount = sizeof parameters;
    block.ioParam.ioBuffer = nullptr;
    EXPECT_EQ(PBHGetVolParmsSync(&block), paramErr);
    EXPECT_EQ(PBHGetVolParmsSync(nullptr), paramErr);
    EXPECT_EQ(+parameters.vMVersion, 0);
}

const Role offersServices("offersServices", [](const RoleArguments &arguments) {
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    EXPECT_EQ(servicesOf(volumeOf(refAt("/"))), arguments[1]);
});

class DiskVolumes : public DiskTest
{
};

TEST_P(DiskVolumes, FilesAreExchangedWhereTheyCanBeMarkedAndKeepTheirInode)
{
    bool exchanges = disk().hasAttributes && GetParam() != DiskKind::overlay;
    if (GetParam() != DiskKind::plain)   // of which nobody knows what it is
        playRole("offersServices", {folder().path(), exchanges ? "copy move exchange " : "copy move "});
}

TEST_P(DiskVolumes, SizesAreTheDisksOwn)
{
    FSVolumeInfo info = volumeInfo(volumeOf(refAt(folder().path())));
    struct statvfs disk;
    ASSERT_EQ(statvfs(folder().path().c_str(), &disk), 0);
    EXPECT_EQ(+info.totalBytes, static_cast<UInt64>(disk.f_blocks) * disk.f_frsize);
    // Others write to this machine's own disk at the same time, and some disks give back what was deleted a moment later.
    double tolerance = GetParam() == DiskKind::plain ? 0.02 * static_cast<double>(info.totalBytes) : 1 << 20;
    EXPECT_NEAR(static_cast<double>(info.freeBytes), static_cast<double>(disk.f_bavail * disk.f_frsize), tolerance);
    if (info.totalBytes > 0)
    {
        EXPECT_GT(+info.blockSize, 0u);
        EXPECT_NEAR(static_cast<double>(info.totalBlocks) * info.blockSize, static_cast<double>(info.totalBytes),
                    static_cast<double>(info.blockSize));
    }
    EXPECT_EQ(info.flags & (kFSVolFlagHardwareLockedMask | kFSVolFlagSoftwareLockedMask), 0);
}

TEST_P(DiskVolumes, AMountPointCannotBeDeleted)
{
    mkdir((folder() / "mounted").c_str(), 0755);
    if (mount("tmpfs", (folder() / "mounted").c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    writeFile(folder() / "mounted/precious", "data");
    FSRef ref = childOf(refAt(folder().path()), "mounted"), parent = refAt(folder().path());
    EXPECT_EQ(FSDeleteObject(&ref), fBsyErr);
    EXPECT_EQ(FSDeleteObject(&parent), fBsyErr);
    EXPECT_EQ(readFile(folder() / "mounted/precious"), bytesOf("data"));
    ASSERT_EQ(umount2((folder() / "mounted").c_str(), MNT_DETACH), 0);
}

TEST_P(DiskVolumes, AListingShowsAMountPointAsAFolder)
{
    mkdir((folder() / "mounted").c_str(), 0755);
    if (mount("tmpfs", (folder() / "mounted").c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    FSRef parent = refAt(folder().path()), ref{};
    FSIterator iterator = nullptr;
    ItemCount count = 0;
    ASSERT_EQ(FSOpenIterator(&parent, kFSIterateFlat, &iterator), noErr);
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, &count, nullptr, kFSCatInfoNone, nullptr, &ref, nullptr, nullptr), noErr);
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    ASSERT_EQ(count, 1u);
    FSCatalogInfo info{};
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags, &info, nullptr, nullptr, nullptr), noErr);
    EXPECT_TRUE(info.nodeFlags & kFSNodeIsDirectoryMask);
    ASSERT_EQ(umount2((folder() / "mounted").c_str(), MNT_DETACH), 0);
}

TEST_P(DiskVolumes, AReadOnlyMountRefusesChanges)
{
    writeFile(folder() / "file", "data");
    mkdir((folder() / "inner").c_str(), 0755);
    ReadOnlyView view(folder().path());
    if (!view.problem().empty())
        GTEST_SKIP() << view.problem();
    FSRef ref = refAt(view.path() + "/file"), inner = refAt(view.path() + "/inner"), root = refAt(view.path());
    EXPECT_EQ(volumeInfo(volumeOf(ref)).flags & kFSVolFlagHardwareLockedMask, kFSVolFlagHardwareLockedMask);
    EXPECT_EQ(setType(ref, code("TEXT"), 0), wPrErr);
    EXPECT_EQ(setLock(ref, true), wPrErr);
    EXPECT_EQ(FSDeleteObject(&ref), wPrErr);
    EXPECT_EQ(rename(ref, "renamed"), wPrErr);
    EXPECT_EQ(move(ref, inner), wPrErr);
    EXPECT_EQ(makeFile(root, "new"), wPrErr);
    EXPECT_EQ(makeFolder(root, "new"), wPrErr);
    EXPECT_EQ(writeFork(ref, false, {1}), wPrErr);
    EXPECT_EQ(writeFork(ref, true, {1}), wPrErr);
    EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
}

ON_EVERY_DISK(DiskVolumes);

// The folder that the roles below take as their startup volume:
//   file  inner/file  up -> ../../../../../../etc  absolute -> /inner  outside -> HOST PATH
std::string startupFolder(const TemporaryFolder &folder)
{
    std::string root = folder / "Startup";
    mkdir(root.c_str(), 0755);
    mkdir((root + "/inner").c_str(), 0755);
    writeFile(root + "/file", "data");
    writeFile(root + "/inner/file", "inner");
    writeFile(folder / "outside", "outside");
    EXPECT_EQ(symlink("../../../../../../etc", (root + "/up").c_str()), 0);
    EXPECT_EQ(symlink("/inner", (root + "/absolute").c_str()), 0);
    EXPECT_EQ(symlink((folder / "outside").c_str(), (root + "/outside").c_str()), 0);
    return root;
}

void lookAroundStartupVolume(const std::string &host)
{
    FSRef root = refAt("/"), ref{};
    EXPECT_EQ(nodeOf(root), static_cast<UInt32>(fsRtDirID));
    EXPECT_EQ(nameOf(root), wideName(lastPart(host)));
    EXPECT_EQ(pathOf(refAt("/inner/file")), "/inner/file");
    EXPECT_EQ(pathOf(refAt("/absolute/file")), "/inner/file") << "an absolute link leads to a place of the volume";
    EXPECT_EQ(pathOf(refAt("/../../../file")), "/file") << "above the root is the root";
    EXPECT_EQ(pathOf(refAt("/inner/../../../inner")), "/inner");
    for (std::string path : {"/up", "/up/passwd", "/outside", "/etc/passwd", "/inner/../../outside"})
        EXPECT_NE(findRef(path, ref), noErr) << path;
    EXPECT_NE(findRef(host + "/file", ref), noErr) << "the host's own paths are not there";
    EXPECT_EQ(typeOf(childOf(root, "up")), code("slnk"));
    EXPECT_NE(findChild(root, units(".."), ref), noErr);
    ASSERT_EQ(makeFile(root, "new"), noErr);
    EXPECT_TRUE(exists(host + "/new"));
}

const Role startsByCall("startsByCall", [](const RoleArguments &arguments) {
    EXPECT_EQ(standin::useStartupVolume(arguments[0] + "/nowhere"), dirNFErr);
    EXPECT_EQ(standin::useStartupVolume(arguments[0] + "/file"), errFSNotAFolder);
    FSRef before = refAt(arguments[0]);
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    EXPECT_NE(checkRef(before), noErr) << "references of another disk";
    lookAroundStartupVolume(arguments[0]);
});

TEST(Volumes, ADirectoryIsTheStartupVolumeByCall)
{
    TemporaryFolder folder;
    playRole("startsByCall", {startupFolder(folder)});
}

const Role startsByEnvironment("startsByEnvironment", [](const RoleArguments &arguments) { lookAroundStartupVolume(arguments[0]); });

TEST(Volumes, ADirectoryIsTheStartupVolumeByTheEnvironment)
{
    TemporaryFolder folder;
    std::string root = startupFolder(folder);
    playRole("startsByEnvironment", {root}, {0, {"ZERB_STARTUP_VOLUME=" + root}});
}

const Role findsVolumes("findsVolumesOfEnvironment", [](const RoleArguments &) {
    FSVolumeRefNum second = volumeOf(refAt("/Volumes/Second")), third = volumeOf(refAt("/Volumes/Third One/file"));
    EXPECT_NE(second, third);
    HFSUniStr255 name{};
    volumeInfo(third, &name);
    EXPECT_EQ(wide(name), u"Third One");
    EXPECT_EQ(pathOf(refAt("/Volumes/Third One/file")), "/Volumes/Third One/file");
    EXPECT_EQ(nodeOf(refAt("/Volumes/Second")), static_cast<UInt32>(fsRtDirID));
    EXPECT_TRUE(volumeInfo(second).flags & kFSVolFlagSoftwareLockedMask);
    EXPECT_FALSE(volumeInfo(third).flags & kFSVolFlagSoftwareLockedMask);
    EXPECT_EQ(servicesOf(volumeOf(refAt("/"))), "copy move exchange ");
    EXPECT_EQ(servicesOf(second), "move ");
    EXPECT_EQ(servicesOf(third), "copy exchange ");
});

TEST(Volumes, TheEnvironmentNamesFurtherOnesAndTheirOptions)
{
    if (!diskOf(DiskKind::tmpfs).problem.empty() || !diskOf(DiskKind::tmpfs).hasAttributes)
        GTEST_SKIP() << "no tmpfs with attributes: " << diskOf(DiskKind::tmpfs).problem;
    TemporaryFolder folder(DiskKind::tmpfs);
    for (std::string name : {"Startup", "two", "three"})
        mkdir((folder / name).c_str(), 0755);
    writeFile(folder / "three/file");
    playRole(
        "findsVolumesOfEnvironment", {},
        {0,
         {"ZERB_STARTUP_VOLUME=" + folder / "Startup",
          "ZERB_VOLUMES=Second=" + (folder / "two") + ",locked,nocopyfile,noexchange;Third One=" + (folder / "three") + ",nomoverename"}});
}

const Role addsAndRemoves("addsAndRemovesVolumes", [](const RoleArguments &arguments) {
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    FSVolumeRefNum volume = 0;
    ASSERT_EQ(standin::addDirectoryVolume("Extra", arguments[1], {}, &volume), noErr);
    EXPECT_EQ(standin::addDirectoryVolume("Extra", arguments[1], {}, nullptr), dupFNErr);
    EXPECT_EQ(standin::addDirectoryVolume("a:b", arguments[1], {}, nullptr), bdNamErr);
    EXPECT_EQ(standin::addDirectoryVolume("Other", arguments[1] + "/nowhere", {}, nullptr), dirNFErr);
    EXPECT_EQ(standin::addDirectoryVolume("Other", arguments[1] + "/file", {}, nullptr), errFSNotAFolder);
    FSRef ref = refAt("/Volumes/Extra/file");
    EXPECT_EQ(volumeOf(ref), volume);

    SInt16 fork = 0;
    ASSERT_EQ(openFork(ref, false, fsRdPerm, fork), noErr);
    EXPECT_EQ(standin::removeDirectoryVolume(volume), fBsyErr);
    EXPECT_EQ(checkRef(ref), noErr);
    ASSERT_EQ(FSCloseFork(fork), noErr);
    ASSERT_EQ(standin::removeDirectoryVolume(volume), noErr);
    EXPECT_EQ(checkRef(ref), nsvErr);
    EXPECT_EQ(standin::removeDirectoryVolume(volume), nsvErr);
    EXPECT_NE(findRef("/Volumes/Extra/file", ref), noErr);
});

TEST(Volumes, DirectoriesComeAndGo)
{
    TemporaryFolder folder;
    std::string root = startupFolder(folder);
    mkdir((folder / "more").c_str(), 0755);
    writeFile(folder / "more/file", "more");
    playRole("addsAndRemovesVolumes", {root, folder / "more"});
}

const Role movesBetween("movesBetweenVolumes", [](const RoleArguments &arguments) {
    ASSERT_EQ(standin::useStartupVolume(arguments[0]), noErr);
    ASSERT_EQ(standin::addDirectoryVolume("Extra", arguments[1], {}, nullptr), noErr);
    FSRef file = refAt("/file"), other = refAt("/Volumes/Extra");
    EXPECT_EQ(move(file, other), diffVolErr);
    EXPECT_EQ(forkOf(refAt("/file"), false), bytesOf("data"));
});

TEST(Volumes, NothingMovesFromOneToAnother)
{
    TemporaryFolder folder;
    std::string root = startupFolder(folder);
    mkdir((folder / "more").c_str(), 0755);
    playRole("movesBetweenVolumes", {root, folder / "more"});
}

}   // namespace
