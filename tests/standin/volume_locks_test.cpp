// The software lock of a directory volume: nothing can be changed there.
//
// What changes the volumes of a process is played in a process of its own.
#include "tests/standin/mounts.h"
#include "tests/standin/processes.h"

namespace
{

using namespace support;

UInt16 flagsOf(FSVolumeRefNum volume)
{
    FSVolumeInfo info{};
    EXPECT_EQ(FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoFlags, &info, nullptr, nullptr), noErr);
    return info.flags;
}

void expectEveryChange(const std::string &path, OSErr expected)
{
    FSRef root = refAt(path), ref = childOf(root, "file"), inner = childOf(root, "inner"), same = ref;
    EXPECT_EQ(setType(ref, code("TEXT"), 0), expected);
    EXPECT_EQ(setLock(ref, false), expected);
    EXPECT_EQ(makeFile(root, "new"), expected);
    EXPECT_EQ(makeFolder(root, "newer"), expected);
    EXPECT_EQ(writeFork(ref, false, bytesOf("changed")), expected);
    EXPECT_EQ(writeFork(ref, true, {1}), expected);
    EXPECT_EQ(rename(ref, "renamed"), expected);
    EXPECT_EQ(move(ref, inner), expected);
    EXPECT_EQ(FSDeleteObject(&same), expected);
}

// Older calls that move, and what changes a fork that is there.
void expectOlderChanges(OSErr expected)
{
    FSRef root = refAt("/"), inner = childOf(root, "inner"), file = childOf(root, "file");
    UInt8 name[] = "\4file";
    HParamBlockRec block{};
    block.copyParam.ioNamePtr = name;
    block.copyParam.ioVRefNum = volumeNumberOf(root);
    block.copyParam.ioDirID = fsRtDirID;
    block.copyParam.ioNewDirID = static_cast<SInt32>(nodeOf(inner));
    EXPECT_EQ(PBHMoveRenameSync(&block), expected);
    for (const bool resource : {false, true})
    {
        SInt16 fork = 0;
        EXPECT_EQ(openFork(file, resource, fsWrPerm, fork), expected);
        EXPECT_EQ(openFork(file, resource, fsCurPerm, fork), noErr) << "what is allowed is reading";
        EXPECT_NE(FSSetForkSize(fork, fsFromStart, 0), noErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
    }
}

const Role livesWithALock("livesWithALockedVolume", [](const RoleArguments &arguments) {
    standin::VolumeOptions options;
    options.locked = true;
    ASSERT_EQ(standin::useStartupVolume(arguments[0], options), noErr);
    FSVolumeRefNum volume = volumeNumberOf(refAt("/"));
    std::string before = pictureOf(arguments[0]);
    EXPECT_EQ(flagsOf(volume) & kFSVolFlagSoftwareLockedMask, kFSVolFlagSoftwareLockedMask);
    expectEveryChange("/", vLckdErr);
    expectOlderChanges(vLckdErr);
    EXPECT_EQ(pictureOf(arguments[0]), before);
    EXPECT_EQ(forkOf(refAt("/file"), false), bytesOf("data"));
    ASSERT_EQ(standin::setVolumeLock(volume, false), noErr);
    EXPECT_FALSE(flagsOf(volume) & kFSVolFlagSoftwareLockedMask);
    expectEveryChange("/", noErr);
    EXPECT_EQ(standin::setVolumeLock(12345, true), nsvErr);
});

TEST(Volumes, ASoftwareLockRefusesChangesUntilItIsTakenAway)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "inner");
    writeFile(folder / "file", "data");
    playRole("livesWithALockedVolume", {folder.path()});
}

}   // namespace
