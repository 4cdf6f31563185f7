// The access privileges of directories, and the names and IDs of users and groups.

#include "tests/contract/access_fixture.h"

#include <set>

namespace
{

const std::string readingNested = "PBHGetDirAccessSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=\"nested\")";

std::string writingNested(SInt64 ownerID, SInt64 groupID, UInt32 rights)
{
    return "PBHSetDirAccessSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=\"nested\", ioACOwnerID=" + decimal(ownerID) +
           ", ioACGroupID=" + decimal(groupID) + ", ioACAccess=" + hex(rights) + ")";
}

using AccessPrivileges = AccessTest;

TEST_F(AccessPrivileges, AreReadFromTheDirectoryThatTheReferenceNames)
{
    platform.access.directories["nested"] = {-2147483647, 2147483647, 0xFEDCBA98};
    EXPECT_EQ(FSGetDirAccess(&nested, &results.ownerID, &results.groupID, &results.rights), noErr);
    EXPECT_EQ(platform.calls(), (Calls{converting("nested"), readingNested}));
    expected.ownerID = -2147483647;
    expected.groupID = 2147483647;
    expected.rights = 0xFEDCBA98;   // all of them: only setting leaves some out
    EXPECT_TRUE(results == expected);
}

TEST_F(AccessPrivileges, EachOutputMayBeLeftOut)
{
    const DirectoryAccess access;
    for (int given = 0; given < 8; ++given)
    {
        SCOPED_TRACE(given);
        results = expected = {};
        platform.forgetCalls();
        EXPECT_EQ(FSGetDirAccess(&nested, given & 1 ? &results.ownerID : nullptr, given & 2 ? &results.groupID : nullptr,
                                 given & 4 ? &results.rights : nullptr),
                  noErr);
        EXPECT_EQ(platform.calls(), (Calls{converting("nested"), readingNested})) << "the same is asked";
        if (given & 1)
            expected.ownerID = access.ownerID;
        if (given & 2)
            expected.groupID = access.groupID;
        if (given & 4)
            expected.rights = access.rights;
        EXPECT_TRUE(results == expected);
    }
}

TEST_F(AccessPrivileges, RootFolderIsNamedByItsVolumeAndWithALongerName)
{
    platform.files.object("root").name = std::string(63, 'n');
    const FSRef root = platform.files.ref("root");
    EXPECT_EQ(FSGetDirAccess(&root, nullptr, nullptr, nullptr), noErr);
    EXPECT_EQ(FSSetDirAccess(&root, 1, 2, 3), noErr);
    const std::string block = "ioVRefNum=-100, ioDirID=1, ioNamePtr=\"" + std::string(63, 'n') + '"';
    EXPECT_EQ(platform.calls(), (Calls{converting("root"), "PBHGetDirAccessSync(" + block + ")", converting("root"),
                                       "PBHSetDirAccessSync(" + block + ", ioACOwnerID=1, ioACGroupID=2, ioACAccess=0x3)"}));
}

TEST_F(AccessPrivileges, WhatIsNoDirectoryIsForThePlatformToRefuse)
{
    EXPECT_EQ(FSGetDirAccess(&file, &results.ownerID, &results.groupID, &results.rights), dirNFErr);
    EXPECT_EQ(FSSetDirAccess(&file, 1, 2, 3), dirNFErr);
    EXPECT_EQ(FSGetDirAccess(&noObject, &results.ownerID, &results.groupID, &results.rights), errFSBadFSRef);
    EXPECT_EQ(FSGetDirAccess(nullptr, &results.ownerID, &results.groupID, &results.rights), errFSBadFSRef);
    EXPECT_EQ(FSSetDirAccess(nullptr, 1, 2, 3), errFSBadFSRef);
    EXPECT_TRUE(results.untouched());
}

TEST_F(AccessPrivileges, AreSetAllAtOnce)
{
    EXPECT_EQ(FSSetDirAccess(&nested, -2147483647, 2147483647, 0x10030701), noErr);
    EXPECT_EQ(platform.calls(), (Calls{converting("nested"), writingNested(-2147483647, 2147483647, 0x10030701)}));
    const DirectoryAccess &access = platform.access.directories["nested"];
    EXPECT_EQ(access.ownerID, -2147483647);
    EXPECT_EQ(access.groupID, 2147483647);
    EXPECT_EQ(access.rights, 0x10030701u);
}

TEST_F(AccessPrivileges, OfAllBitsOnlyThoseThatCanBeSetArePassedOn)
{
    EXPECT_EQ(FSSetDirAccess(&nested, 1, 2, 0xFFFFFFFF), noErr);
    EXPECT_EQ(platform.calls().back(), writingNested(1, 2, 0x10070707));
    const std::set<int> settableBits = {0, 1, 2, 8, 9, 10, 16, 17, 18, 28};
    for (int bit = 0; bit < 32; ++bit)
    {
        const UInt32 rights = UInt32{1} << bit;
        EXPECT_EQ(FSSetDirAccess(&nested, 1, 2, rights), noErr);
        EXPECT_EQ(platform.calls().back(), writingNested(1, 2, settableBits.contains(bit) ? rights : 0)) << bit;
    }
}

TEST_F(AccessPrivileges, WhatWasReadCanBeSetAgain)
{
    EXPECT_EQ(FSGetDirAccess(&nested, &results.ownerID, &results.groupID, &results.rights), noErr);
    EXPECT_EQ(FSSetDirAccess(&nested, results.ownerID, results.groupID, results.rights), noErr);
    EXPECT_EQ(platform.calls().back(), writingNested(501, -2, 0x00040705)) << "0x87040705 without what cannot be set";
}

using AccessNames = AccessTest;

TEST_F(AccessNames, NameIsFilledInByThePlatform)
{
    EXPECT_EQ(FSMapID(-100, 501, 2, results.name), noErr);
    EXPECT_EQ(platform.calls(), Calls{"PBHMapIDSync(ioNamePtr=-, ioVRefNum=-100, ioObjType=2, ioObjNamePtr=caller's name, ioObjID=501)"});
    std::memcpy(expected.name, "\7Editors", 8);
    EXPECT_TRUE(results == expected);
}

TEST_F(AccessNames, TypeTellsUsersFromGroups)
{
    EXPECT_EQ(FSMapID(-100, 501, 1, results.name), noErr);
    EXPECT_EQ(plainText(results.name), "Anna");
    EXPECT_EQ(FSMapID(-100, -2147483647, 1, results.name), noErr);
    EXPECT_EQ(plainText(results.name), "Nemo");
}

TEST_F(AccessNames, LongestNameFits)
{
    platform.access.names.push_back({1, 7, std::string(31, 'n')});
    EXPECT_EQ(FSMapID(-100, 7, 1, results.name), noErr);
    EXPECT_EQ(plainText(results.name), std::string(31, 'n'));
    EXPECT_EQ(results.name[32], results.pattern);
}

TEST_F(AccessNames, PlaceForTheNameIsRequired)
{
    EXPECT_EQ(FSMapID(-100, 501, 1, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(AccessNames, IDIsThatOfTheName)
{
    Str255 name;
    storePascalString("Nemo", name);
    platform.nameAddress(name, "caller's text");
    EXPECT_EQ(FSMapName(-100, name, 3, &results.mappedID), noErr);
    EXPECT_EQ(platform.calls(), Calls{"PBHMapNameSync(ioNamePtr=-, ioVRefNum=-100, ioObjType=3, ioObjNamePtr=caller's text)"})
        << "the very bytes, whatever their number";
    expected.mappedID = -2147483647;
    EXPECT_TRUE(results == expected);
}

TEST_F(AccessNames, NameIsHandedOnWithoutATest)
{
    Str255 name;
    storePascalString(std::string(255, 'n'), name);
    EXPECT_EQ(FSMapName(-100, name, 4, &results.mappedID), fnfErr);
    EXPECT_EQ(platform.calls().back(), "PBHMapNameSync(ioNamePtr=-, ioVRefNum=-100, ioObjType=4, ioObjNamePtr=" + quoted(name) + ")");
    EXPECT_EQ(FSMapName(-100, nullptr, 4, &results.mappedID), paramErr);
    EXPECT_EQ(platform.calls().back(), "PBHMapNameSync(ioNamePtr=-, ioVRefNum=-100, ioObjType=4, ioObjNamePtr=-)");
    EXPECT_TRUE(results.untouched());
}

TEST_F(AccessNames, PlaceForTheIDIsRequired)
{
    const Str255 name = {4, 'A', 'n', 'n', 'a'};
    EXPECT_EQ(FSMapName(-100, name, 3, nullptr), paramErr);
    EXPECT_EQ(FSMapName(-100, nullptr, 3, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(AccessNames, NumbersKeepTheirWidthAndSign)
{
    const Str255 name = {4, 'A', 'n', 'n', 'a'};
    EXPECT_EQ(FSMapID(-32768, 2147483647, -32768, results.name), nsvErr);
    EXPECT_EQ(FSMapID(-100, 2147483647, 32767, results.name), fnfErr);
    EXPECT_EQ(FSMapName(32767, name, -32768, &results.mappedID), nsvErr);
    EXPECT_EQ(platform.calls(),
              (Calls{"PBHMapIDSync(ioNamePtr=-, ioVRefNum=-32768, ioObjType=-32768, ioObjNamePtr=caller's name, ioObjID=2147483647)",
                     "PBHMapIDSync(ioNamePtr=-, ioVRefNum=-100, ioObjType=32767, ioObjNamePtr=caller's name, ioObjID=2147483647)",
                     "PBHMapNameSync(ioNamePtr=-, ioVRefNum=32767, ioObjType=-32768, ioObjNamePtr=\"Anna\")"}));
    EXPECT_TRUE(results.untouched());
}

}   // namespace
