// The three finders of folders, and the colon path of a directory.

#include "tests/contract/folders_fixture.h"
#include "tests/contract/rows.h"

namespace
{

struct FinderRow
{
    const char *name;
    OSErr (*find)(SInt16 *, SInt32 *);
    SInt16 domain;
    OSType type;
    const char *call;
};

const FinderRow finders[] = {
    {"PrefFolder", ZerbFindPrefFolder, -32765, 0x70726566, "FindFolder(-32765, 'pref', 0, volume, directory)"},
    {"UserPrefFolder", ZerbFindUserPrefFolder, -32763, 0x70726566, "FindFolder(-32763, 'pref', 0, volume, directory)"},
    {"SysFolder", ZerbFindSysFolder, -32766, 0x7364736B, "FindFolder(-32766, 'sdsk', 0, volume, directory)"},
};

void PrintTo(const FinderRow &row, std::ostream *stream)
{
    *stream << row.name;
}

class FoldersFinders : public testing::TestWithParam<FinderRow>
{
protected:
    PlatformDouble platform;
    SInt16 volume = 1234;
    SInt32 dirID = 123456;
};

TEST_P(FoldersFinders, AskForOneFolderThatIsNotCreated)
{
    platform.folders.special[{GetParam().domain, GetParam().type}] = "nested";
    EXPECT_EQ(GetParam().find(&volume, &dirID), noErr);
    EXPECT_EQ(platform.calls(), Calls{GetParam().call});
    EXPECT_EQ(volume, -100);
    EXPECT_EQ(dirID, static_cast<SInt32>(platform.files.object("nested").info.nodeID));
}

TEST_P(FoldersFinders, FailureIsHandedOnAndLeavesZeros)
{
    EXPECT_EQ(GetParam().find(&volume, &dirID), fnfErr);
    EXPECT_EQ(volume, 0);
    EXPECT_EQ(dirID, 0);
    platform.failCall(1, ioErr);
    EXPECT_EQ(GetParam().find(&volume, &dirID), ioErr);
}

TEST_P(FoldersFinders, WithoutPlaceForAnOutputAreRefusedBeforeAnyCall)
{
    EXPECT_EQ(GetParam().find(nullptr, &dirID), paramErr);
    EXPECT_EQ(GetParam().find(&volume, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_EQ(volume, 1234);
    EXPECT_EQ(dirID, 123456);
}

INSTANTIATE_TEST_SUITE_P(Rows, FoldersFinders, testing::ValuesIn(finders), rowName);

class FoldersPaths : public FoldersTest
{
protected:
    static std::string informationAbout(SInt32 dirID, FSVolumeRefNum ofVolume = volume)
    {
        return "PBGetCatInfoSync(ioNamePtr=name, ioVRefNum=" + decimal(ofVolume) + ", ioFDirIndex=-1, ioDrDirID=" + decimal(dirID) + ")";
    }

    // A folder under the last one, with a name of this length; all letters differ from its parent's.
    SInt32 descend(std::size_t length)
    {
        parent = &platform.files.add(std::string(length, static_cast<char>('A' + depth++)), parent, true);
        return static_cast<SInt32>(parent->info.nodeID);
    }

    OSErr makePath(SInt32 dirID) { return ZerbPathNameFromDirID(dirID, volume, path); }

    FileObject *parent = &platform.files.object("root");
    int depth = 0;
    Str255 path = {3, 'o', 'l', 'd'};
};

TEST_F(FoldersPaths, RootIsOneColonWithoutItsName)
{
    EXPECT_EQ(makePath(fsRtDirID), noErr);
    EXPECT_EQ(platform.calls(), Calls{informationAbout(fsRtDirID)});
    EXPECT_EQ(plainText(path), ":");
}

TEST_F(FoldersPaths, EveryDirectoryIsFollowedByAColon)
{
    const SInt32 nestedID = static_cast<SInt32>(infoOf("nested").nodeID);
    EXPECT_EQ(makePath(folderID), noErr);
    EXPECT_EQ(plainText(path), ":folder:");
    platform.forgetCalls();
    EXPECT_EQ(makePath(nestedID), noErr);
    EXPECT_EQ(plainText(path), ":folder:nested:");
    EXPECT_EQ(platform.calls(), (Calls{informationAbout(nestedID), informationAbout(folderID), informationAbout(fsRtDirID)}));
}

TEST_F(FoldersPaths, VolumeAndDirectoryKeepTheirFullWidthAndSign)
{
    EXPECT_EQ(ZerbPathNameFromDirID(-2147483647, -32768, path), dirNFErr);
    EXPECT_EQ(platform.calls(), Calls{informationAbout(-2147483647, -32768)});
    EXPECT_EQ(path[0], 0);
}

TEST_F(FoldersPaths, OfExactly255BytesFits)
{
    descend(100);
    descend(100);
    const SInt32 deepest = descend(51);   // and four colons
    EXPECT_EQ(makePath(deepest), noErr);
    EXPECT_EQ(path[0], 255);
    EXPECT_EQ(plainText(path), ":" + std::string(100, 'A') + ":" + std::string(100, 'B') + ":" + std::string(51, 'C') + ":");
}

TEST_F(FoldersPaths, Of256BytesKeepsTheDeepestThatFitAndStopsThere)
{
    descend(100);
    descend(100);
    const SInt32 deepest = descend(52);
    EXPECT_EQ(makePath(deepest), bdNamErr);
    EXPECT_EQ(plainText(path), std::string(100, 'A') + ":" + std::string(100, 'B') + ":" + std::string(52, 'C') + ":")
        << "what does not fit is the root's colon alone";
    EXPECT_EQ(platform.calls().size(), 4u);
}

TEST_F(FoldersPaths, WalkStopsAtTheFirstNameThatDoesNotFit)
{
    descend(3);
    descend(200);
    const SInt32 deepest = descend(60);
    EXPECT_EQ(makePath(deepest), bdNamErr);
    EXPECT_EQ(plainText(path), std::string(60, 'C') + ":");
    EXPECT_EQ(platform.calls().size(), 2u) << "the shorter name above would fit";
}

TEST_F(FoldersPaths, NameOf255BytesHasNoRoomForItsColon)
{
    EXPECT_EQ(makePath(descend(255)), bdNamErr);
    EXPECT_EQ(path[0], 0);
    EXPECT_EQ(makePath(static_cast<SInt32>(platform.files.add(std::string(253, 'x'), &platform.files.object("root"), true).info.nodeID)),
              noErr);
    EXPECT_EQ(path[0], 255);
}

TEST_F(FoldersPaths, FailureInTheMiddleLeavesThePartThatWasFound)
{
    const SInt32 nestedID = static_cast<SInt32>(infoOf("nested").nodeID);
    const char *found[] = {"", "nested:", "folder:nested:"};
    for (int nth = 1; nth <= 3; ++nth)
    {
        platform.forgetCalls();
        platform.failCall(nth, ioErr);
        EXPECT_EQ(makePath(nestedID), ioErr);
        EXPECT_EQ(plainText(path), found[nth - 1]);
        EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(nth));
    }
}

TEST_F(FoldersPaths, FailureAtTheRootItselfLeavesNothing)
{
    platform.failCall(1, nsvErr);
    EXPECT_EQ(makePath(fsRtDirID), nsvErr);
    EXPECT_EQ(path[0], 0);
}

TEST_F(FoldersPaths, WithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(ZerbPathNameFromDirID(folderID, volume, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

}   // namespace
