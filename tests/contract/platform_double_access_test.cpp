// The double's access privileges, users and groups, file IDs, default directory and mounting.

#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

namespace
{

class DoubleAccess : public testing::Test
{
protected:
    // The fields that all blocks have at their beginning
    template <typename Block>
    static void fillHeader(Block &block, StringPtr objectName)
    {
        block.ioVRefNum = -100;
        block.ioNamePtr = objectName;
    }

    PlatformDouble platform;
    HParamBlockRec block = {};
    ParamBlockRec mountBlock = {};
    Str31 nestedName = {6, 'n', 'e', 's', 't', 'e', 'd'}, fileName = {4, 'f', 'i', 'l', 'e'}, buffer = {};
};

TEST_F(DoubleAccess, RemembersWhatWasSetForADirectory)
{
    fillHeader(block.accessParam, nestedName);
    block.accessParam.ioDirID = 17;
    EXPECT_EQ(PBHGetDirAccessSync(&block), noErr);
    EXPECT_EQ(valueOf(block.accessParam.ioACOwnerID), 501);
    block.accessParam.ioACOwnerID = 7;
    block.accessParam.ioACAccess = 3;
    EXPECT_EQ(PBHSetDirAccessSync(&block), noErr);
    block.accessParam.ioACOwnerID = block.accessParam.ioACAccess = 0;
    EXPECT_EQ(PBHGetDirAccessSync(&block), noErr);
    EXPECT_EQ(valueOf(block.accessParam.ioACOwnerID), 7);
    EXPECT_EQ(valueOf(block.accessParam.ioACGroupID), -2);
    EXPECT_EQ(valueOf(block.accessParam.ioACAccess), 3);
}

TEST_F(DoubleAccess, FailingCallChangesNothing)
{
    fillHeader(block.accessParam, nestedName);
    block.accessParam.ioDirID = 17;
    platform.failEvery("PBHSetDirAccessSync", ioErr);
    EXPECT_EQ(PBHSetDirAccessSync(&block), ioErr);
    EXPECT_TRUE(platform.access.directories.empty());
    platform.failEvery("HSetVol", ioErr);
    EXPECT_EQ(HSetVol(nullptr, -100, 17), ioErr);
    EXPECT_EQ(platform.access.defaultDirectory, 2);
}

TEST_F(DoubleAccess, FilesHaveNoPrivileges)
{
    fillHeader(block.accessParam, fileName);
    block.accessParam.ioDirID = 17;
    EXPECT_EQ(PBHGetDirAccessSync(&block), dirNFErr);
    EXPECT_EQ(PBHSetDirAccessSync(&block), dirNFErr);
    block.accessParam.ioDirID = 18;
    EXPECT_EQ(PBHGetDirAccessSync(&block), dirNFErr);
    block.accessParam.ioDirID = 19;
    EXPECT_EQ(PBHGetDirAccessSync(&block), fnfErr);
}

TEST_F(DoubleAccess, FileKeepsTheIDThatItWasGiven)
{
    fillHeader(block.fidParam, fileName);
    block.fidParam.ioSrcDirID = 17;
    EXPECT_EQ(PBCreateFileIDRefSync(&block), noErr);
    const SInt32 id = block.fidParam.ioFileID;
    EXPECT_EQ(PBCreateFileIDRefSync(&block), fidExists);
    EXPECT_EQ(valueOf(block.fidParam.ioFileID), id);
    block.fidParam.ioNamePtr = buffer;
    block.fidParam.ioSrcDirID = 0;
    EXPECT_EQ(PBResolveFileIDRefSync(&block), noErr);
    EXPECT_EQ(plainText(buffer), "file");
    EXPECT_EQ(valueOf(block.fidParam.ioSrcDirID), 17);
    block.fidParam.ioFileID = id + 1;
    EXPECT_EQ(PBResolveFileIDRefSync(&block), fidNotFound);
}

TEST_F(DoubleAccess, DefaultDirectoryIsOneThatThereIs)
{
    SInt16 volume = 0;
    SInt32 directory = 0;
    EXPECT_EQ(HSetVol(nullptr, -100, 19), noErr);
    EXPECT_EQ(HSetVol(nullptr, -100, 18), dirNFErr) << "that is a file";
    EXPECT_EQ(HGetVol(nullptr, &volume, &directory), noErr);
    EXPECT_EQ(volume, -100);
    EXPECT_EQ(directory, 19);
}

TEST_F(DoubleAccess, VolumesWithoutARecordCannotBeMountedAgain)
{
    SInt16 size = 0;
    mountBlock.ioParam.ioVRefNum = -100;
    mountBlock.ioParam.ioBuffer = reinterpret_cast<Ptr>(&size);
    EXPECT_EQ(PBGetVolMountInfoSize(&mountBlock), noErr);
    EXPECT_EQ(size, 10);
    platform.mounting.records.clear();
    EXPECT_EQ(PBGetVolMountInfoSize(&mountBlock), paramErr);
    EXPECT_EQ(PBGetVolMountInfo(&mountBlock), paramErr);
    mountBlock.ioParam.ioVRefNum = -101;
    EXPECT_EQ(PBGetVolMountInfo(&mountBlock), nsvErr);
}

// By index a volume is found whatever its number, and one past the last is the end.
TEST_F(DoubleAccess, VolumesAreCountedFromOne)
{
    platform.files.volumes.push_back({-200, platform.files.volumes.front().info, &platform.files.object("nested")});
    FSRef root = {};
    EXPECT_EQ(FSGetVolumeInfo(0, 1, nullptr, 0, nullptr, nullptr, &root), noErr);
    EXPECT_EQ(platform.files.describe(&root), "ref:root");
    EXPECT_EQ(FSGetVolumeInfo(0, 2, nullptr, 0, nullptr, nullptr, &root), noErr);
    EXPECT_EQ(platform.files.describe(&root), "ref:nested");
    EXPECT_EQ(FSGetVolumeInfo(0, 3, nullptr, 0, nullptr, nullptr, &root), nsvErr);
}

}   // namespace
