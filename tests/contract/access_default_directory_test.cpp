// The default directory: setting it, what it was before, and going back.

#include "tests/contract/access_fixture.h"

namespace
{

const std::string askingForDefault = "HGetVol(-, volume, directory)";

std::string looking(const std::string &label)
{
    return "FSGetCatalogInfo(ref:" + label + ", 0x16, info, -, -, -)";
}

std::string makingOldReference(SInt64 directory)
{
    return "PBMakeFSRefSync(ioVRefNum=-100, ioDirID=" + decimal(directory) + ", ioNamePtr=-, newRef=caller's ref)";
}

std::string setting(SInt64 directory, SInt64 volume = -100)
{
    return "HSetVol(-, " + decimal(volume) + ", " + decimal(directory) + ")";
}

class AccessDefaultDirectory : public AccessTest
{
protected:
    std::string defaultDirectory()
    {
        return platform.files.findDirectory(platform.access.defaultVolume, platform.access.defaultDirectory)->label;
    }

    const FSRef root = platform.files.ref("root");
};

TEST_F(AccessDefaultDirectory, IsSetAndTheOneBeforeIsHandedBack)
{
    EXPECT_EQ(FSSetDefault(&nested, &results.ref), noErr);
    EXPECT_EQ(platform.calls(), (Calls{looking("nested"), askingForDefault, makingOldReference(2), setting(19)}));
    expected.ref = root;
    EXPECT_TRUE(results == expected);
    EXPECT_EQ(defaultDirectory(), "nested");
}

TEST_F(AccessDefaultDirectory, IsRestored)
{
    platform.access.defaultDirectory = 19;
    EXPECT_EQ(FSRestoreDefault(&folder), noErr);
    EXPECT_EQ(platform.calls(), (Calls{looking("folder"), setting(17)}));
    EXPECT_EQ(defaultDirectory(), "folder");
}

TEST_F(AccessDefaultDirectory, EachRestoringGoesBackToWhatItsOwnSettingFound)
{
    FSRef first, second;
    EXPECT_EQ(FSSetDefault(&folder, &first), noErr);
    EXPECT_EQ(FSSetDefault(&nested, &second), noErr);
    EXPECT_EQ(FSRestoreDefault(&second), noErr);
    EXPECT_EQ(defaultDirectory(), "folder");
    EXPECT_EQ(FSRestoreDefault(&first), noErr);
    EXPECT_EQ(defaultDirectory(), "root");
}

TEST_F(AccessDefaultDirectory, VolumeAndDirectoryKeepTheirFullWidthAndSign)
{
    infoOf("nested").volume = -32768;
    infoOf("nested").nodeID = 0x80001234;
    const SInt64 directory = static_cast<SInt32>(0x80001234);
    EXPECT_EQ(FSSetDefault(&nested, &results.ref), noErr);
    EXPECT_EQ(platform.calls().back(), setting(directory, -32768));
    EXPECT_EQ(FSRestoreDefault(&nested), noErr);
    EXPECT_EQ(platform.calls().back(), setting(directory, -32768));
    results = {};
    platform.forgetCalls();
    EXPECT_EQ(FSSetDefault(&folder, &results.ref), noErr);
    EXPECT_EQ(
        platform.calls(),
        (Calls{looking("folder"), askingForDefault,
               "PBMakeFSRefSync(ioVRefNum=-32768, ioDirID=" + decimal(directory) + ", ioNamePtr=-, newRef=caller's ref)", setting(17)}));
}

TEST_F(AccessDefaultDirectory, OneVariableMayHoldTheNewOneAndThenTheOld)
{
    results.ref = nested;
    EXPECT_EQ(FSSetDefault(&results.ref, &results.ref), noErr);
    EXPECT_EQ(defaultDirectory(), "nested");
    EXPECT_EQ(platform.files.describe(&results.ref), "ref:root");
}

TEST_F(AccessDefaultDirectory, AllReferencesAreRequired)
{
    EXPECT_EQ(FSSetDefault(nullptr, &results.ref), paramErr);
    EXPECT_EQ(FSSetDefault(&nested, nullptr), paramErr);
    EXPECT_EQ(FSSetDefault(nullptr, nullptr), paramErr);
    EXPECT_EQ(FSRestoreDefault(nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_TRUE(results.untouched());
    EXPECT_EQ(defaultDirectory(), "root");
}

TEST_F(AccessDefaultDirectory, FileIsRefusedAndNothingHasChanged)
{
    infoOf("file").nodeFlags = 0xFFEF;   // every flag but that of a directory
    EXPECT_EQ(FSSetDefault(&file, &results.ref), dirNFErr);
    EXPECT_EQ(FSRestoreDefault(&file), dirNFErr);
    EXPECT_EQ(platform.calls(), (Calls{looking("file"), looking("file")}));
    EXPECT_TRUE(results.untouched());
    EXPECT_EQ(defaultDirectory(), "root");
}

TEST_F(AccessDefaultDirectory, DirectoryIsOneWhateverElseItIs)
{
    infoOf("nested").nodeFlags = 0xFFFF;
    EXPECT_EQ(FSSetDefault(&nested, &results.ref), noErr);
    EXPECT_EQ(FSRestoreDefault(&nested), noErr);
}

TEST_F(AccessDefaultDirectory, UnknownObjectIsTheResult)
{
    EXPECT_EQ(FSSetDefault(&noObject, &results.ref), errFSBadFSRef);
    EXPECT_EQ(FSRestoreDefault(&noObject), errFSBadFSRef);
    EXPECT_EQ(platform.calls(), (Calls{looking("?"), looking("?")}));
    EXPECT_TRUE(results.untouched());
}

TEST_F(AccessDefaultDirectory, StaysWhereTheOldOneCannotBeNamed)
{
    platform.access.defaultDirectory = 4711;   // it was deleted meanwhile
    EXPECT_EQ(FSSetDefault(&nested, &results.ref), dirNFErr);
    EXPECT_EQ(platform.calls(), (Calls{looking("nested"), askingForDefault, makingOldReference(4711)}));
    EXPECT_EQ(platform.access.defaultDirectory, 4711);
    EXPECT_TRUE(results.untouched());
}

TEST_F(AccessDefaultDirectory, OldOneIsHandedBackAlthoughTheNewOneCouldNotBeSet)
{
    platform.failEvery("HSetVol", someCode);
    EXPECT_EQ(FSSetDefault(&nested, &results.ref), someCode);
    EXPECT_EQ(platform.calls(), (Calls{looking("nested"), askingForDefault, makingOldReference(2), setting(19)}));
    expected.ref = root;
    EXPECT_TRUE(results == expected);
    EXPECT_EQ(defaultDirectory(), "root");
}

}   // namespace
