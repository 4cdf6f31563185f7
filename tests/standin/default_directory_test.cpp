// The default directory of a process.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

struct Default
{
    OSErr result = 1;
    std::string volumeName;
    SInt16 volume = 0;
    SInt32 directory = 0;
};

Default currentDefault()
{
    Default current;
    Str255 name{};
    current.result = HGetVol(name, &current.volume, &current.directory);
    current.volumeName.assign(reinterpret_cast<const char *>(name) + 1, name[0]);
    return current;
}

OSErr setDefault(const FSRef &folder)
{
    const FSCatalogInfo info = infoOf(folder, kFSCatInfoVolume | kFSCatInfoNodeID);
    return HSetVol(nullptr, info.volume, static_cast<SInt32>(info.nodeID));
}

Bytes pascal(const std::string &text)
{
    Bytes bytes{static_cast<std::uint8_t>(text.size())};
    bytes.insert(bytes.end(), text.begin(), text.end());
    return bytes;
}

// What a block finds with this volume, directory and name.
OSErr find(FSVolumeRefNum volume, SInt32 directory, const char *name, FSRef &found)
{
    Bytes text = pascal(name ? name : "");
    FSRefParam block{};
    block.ioVRefNum = volume;
    block.ioDirID = directory;
    block.ioNamePtr = name ? text.data() : nullptr;
    block.newRef = &found;
    return PBMakeFSRefSync(&block);
}

class DefaultDirectory : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        ASSERT_EQ(HSetVol(nullptr, startupNumber(), 0), noErr);
        mkdir((folder() / "inner").c_str(), 0755);
        writeFile(folder() / "inner/file");
    }
    void TearDown() override
    {
        EXPECT_EQ(HSetVol(nullptr, startupNumber(), 0), noErr);
        DiskTest::TearDown();
    }
    static FSVolumeRefNum startupNumber()
    {
        FSVolumeRefNum number = 0;
        EXPECT_EQ(FSGetVolumeInfo(0, 1, &number, kFSVolInfoNone, nullptr, nullptr, nullptr), noErr);
        return number;
    }
};

const Role asksForFirstDefault("asksForFirstDefault", [](const RoleArguments &) {
    FSVolumeRefNum startup = 0;
    EXPECT_EQ(FSGetVolumeInfo(0, 1, &startup, kFSVolInfoNone, nullptr, nullptr, nullptr), noErr);
    const Default current = currentDefault();
    EXPECT_EQ(current.result, noErr);
    EXPECT_EQ(current.volume, startup);
    EXPECT_EQ(current.directory, 2);
    EXPECT_EQ(HGetVol(nullptr, nullptr, nullptr), noErr) << "nothing has to be asked for";
});

TEST(DefaultOfNewProcess, IsTheRootOfTheStartupVolume)
{
    playRole("asksForFirstDefault", {"-"});
}

TEST_P(DefaultDirectory, IsWhatVolumeAndDirectoryZeroMean)
{
    const FSRef inner = refAt(folder() / "inner");
    FSRef found{};
    ASSERT_EQ(setDefault(inner), noErr);
    const Default current = currentDefault();
    EXPECT_EQ(current.volume, infoOf(inner).volume);
    EXPECT_EQ(static_cast<UInt32>(current.directory), nodeOf(inner));
    ASSERT_EQ(find(0, 0, "file", found), noErr);
    EXPECT_TRUE(sameObject(found, refAt(folder() / "inner/file")));
    ASSERT_EQ(find(0, 0, nullptr, found), noErr);
    EXPECT_TRUE(sameObject(found, inner));
}

TEST_P(DefaultDirectory, DoesNotMatterWhereAVolumeOrADirectoryIsNamed)
{
    FSRef found{};
    const FSRef outer = refAt(folder().path());
    ASSERT_EQ(setDefault(refAt(folder() / "inner")), noErr);
    ASSERT_EQ(find(infoOf(outer).volume, 0, nullptr, found), noErr);
    EXPECT_EQ(nodeOf(found), 2u) << "a volume's own root";
    ASSERT_EQ(find(0, static_cast<SInt32>(nodeOf(outer)), "inner", found), noErr);
    EXPECT_TRUE(sameObject(found, refAt(folder() / "inner"))) << "a directory of the default volume";
}

TEST_P(DefaultDirectory, IsWhereACopyGoesThatNamesNoFolder)
{
    writeFile(folder() / "letter", "Dear Sir");
    ASSERT_EQ(setDefault(refAt(folder() / "inner")), noErr);
    Bytes letter = pascal("letter");
    HParamBlockRec block{};
    block.copyParam.ioVRefNum = infoOf(refAt(folder() / "letter")).volume;
    block.copyParam.ioDirID = static_cast<SInt32>(nodeOf(refAt(folder().path())));
    block.copyParam.ioNamePtr = letter.data();
    ASSERT_EQ(PBHCopyFileSync(&block), noErr);
    EXPECT_EQ(readFile(folder() / "inner/letter"), bytesOf("Dear Sir"));
}

TEST_P(DefaultDirectory, FollowsAFolderThatIsRenamedAndMoved)
{
    FSRef inner = refAt(folder() / "inner"), found{};
    mkdir((folder() / "other").c_str(), 0755);
    ASSERT_EQ(setDefault(inner), noErr);
    ASSERT_EQ(rename(inner, "renamed"), noErr);
    ASSERT_EQ(find(0, 0, "file", found), noErr);
    ASSERT_EQ(move(inner, refAt(folder() / "other")), noErr);
    ASSERT_EQ(find(0, 0, "file", found), noErr);
    EXPECT_EQ(pathOf(found), folder() / "other/renamed/file");
    EXPECT_EQ(static_cast<UInt32>(currentDefault().directory), nodeOf(inner));
}

TEST_P(DefaultDirectory, ThatIsGoneIsNotFoundAndAnotherOneCanBeSet)
{
    FSRef found{};
    mkdir((folder() / "short-lived").c_str(), 0755);
    ASSERT_EQ(setDefault(refAt(folder() / "short-lived")), noErr);
    ASSERT_EQ(rmdir((folder() / "short-lived").c_str()), 0);
    EXPECT_EQ(currentDefault().result, dirNFErr);
    EXPECT_EQ(find(0, 0, "file", found), dirNFErr);
    ASSERT_EQ(setDefault(refAt(folder() / "inner")), noErr);
    EXPECT_EQ(find(0, 0, "file", found), noErr);
}

TEST_P(DefaultDirectory, StaysWhenASettingFails)
{
    const FSRef inner = refAt(folder() / "inner");
    FSRef found{};
    ASSERT_EQ(setDefault(inner), noErr);
    EXPECT_EQ(HSetVol(nullptr, 12345, 2), nsvErr);
    EXPECT_EQ(HSetVol(nullptr, infoOf(inner).volume, 0x7FFFFFF1), dirNFErr);
    EXPECT_EQ(HSetVol(pascal("no such volume:").data(), 0, 0), nsvErr);
    EXPECT_EQ(HSetVol(pascal(":").data(), 0, 0), bdNamErr);
    EXPECT_EQ(HSetVol(pascal("a:b:").data(), 0, 0), bdNamErr);
    EXPECT_EQ(find(0, 0, "file", found), noErr);
}

TEST_P(DefaultDirectory, IsSetByTheNameOfAVolume)
{
    FSVolumeRefNum volume = 0;
    FSRef found{};
    ASSERT_EQ(standin::addDirectoryVolume("Zip disk", folder().path(), {}, &volume), noErr);
    for (const char *name : {"Zip disk:", "Zip disk"})
    {
        ASSERT_EQ(HSetVol(nullptr, startupNumber(), 0), noErr);
        ASSERT_EQ(HSetVol(pascal(name).data(), startupNumber(), 0), noErr) << "a name goes before a number";
        const Default current = currentDefault();
        EXPECT_EQ(current.volumeName, "Zip disk");
        EXPECT_EQ(current.volume, volume);
        EXPECT_EQ(current.directory, 2);
        EXPECT_EQ(find(0, 2, "inner", found), noErr) << "volume 0 is the default one";
    }
    EXPECT_EQ(HSetVol(pascal("Zip disk:").data(), 0, static_cast<SInt32>(nodeOf(found))), noErr);
    EXPECT_EQ(find(0, 0, "file", found), noErr);
    ASSERT_EQ(standin::removeDirectoryVolume(volume), noErr);
    const Default after = currentDefault();
    EXPECT_EQ(after.volume, startupNumber()) << "a volume that is taken away takes the default with it";
    EXPECT_EQ(after.directory, 2);
}

ON_EVERY_DISK(DefaultDirectory);

}   // namespace
