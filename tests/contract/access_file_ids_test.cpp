// File IDs: giving a file one, and finding the file that has it.

#include "tests/contract/access_fixture.h"

namespace
{

const std::string creatingForFile = "PBCreateFileIDRefSync(ioVRefNum=-100, ioSrcDirID=17, ioNamePtr=\"file\")";

std::string resolving(SInt64 volume, UInt32 id)
{
    return "PBResolveFileIDRefSync(ioVRefNum=" + decimal(volume) + ", ioFileID=" + hex(id) + ", ioNamePtr=\"\")";
}

using AccessFileIDs = AccessTest;

TEST_F(AccessFileIDs, FileIsGivenOne)
{
    EXPECT_EQ(FSCreateFileIDRef(&file, &results.fileID), noErr);
    EXPECT_EQ(platform.calls(), (Calls{converting("file"), creatingForFile}));
    expected.fileID = 0x80000001;
    EXPECT_TRUE(results == expected);
}

TEST_F(AccessFileIDs, OneThatExistedIsToldTogetherWithItsCode)
{
    platform.access.fileIDs[0xFEDCBA98] = "file";
    for (const OSErr code : {fidExists, afpIDExists})
    {
        results = {};
        platform.forgetCalls();
        platform.access.resultForExistingID = code;
        EXPECT_EQ(FSCreateFileIDRef(&file, &results.fileID), code);
        EXPECT_EQ(platform.calls(), (Calls{converting("file"), creatingForFile}));
        expected.fileID = 0xFEDCBA98;
        EXPECT_TRUE(results == expected) << code;
    }
}

TEST_F(AccessFileIDs, OneThatComesWithAnyOtherCodeIsNotStored)
{
    for (const OSErr code :
         {fidNotFound, notAFileErr, dupFNErr, ioErr, OSErr{1}, OSErr{fidExists + 2}, OSErr{afpIDExists - 1}, OSErr{afpIDExists + 1}})
    {
        platform.access.fileIDs.clear();
        platform.access.resultForNewID = code;
        EXPECT_EQ(FSCreateFileIDRef(&file, &results.fileID), code);
        EXPECT_TRUE(results.untouched()) << code;
    }
}

// The catalog knows of no IDs: with a code from there comes none to store.
TEST_F(AccessFileIDs, CodeOfTheConversionIsNeverTakenForThatOfAnID)
{
    for (const OSErr code : {fidExists, afpIDExists})
    {
        platform.forgetCalls();
        platform.failCall(1, code);
        EXPECT_EQ(FSCreateFileIDRef(&file, &results.fileID), code);
        EXPECT_EQ(platform.calls(), Calls{converting("file")});
        EXPECT_TRUE(results.untouched());
    }
}

TEST_F(AccessFileIDs, PlaceForItIsRequired)
{
    EXPECT_EQ(FSCreateFileIDRef(&file, nullptr), paramErr);
    EXPECT_EQ(FSCreateFileIDRef(nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_TRUE(platform.access.fileIDs.empty());
}

TEST_F(AccessFileIDs, WhatIsNoFileIsForThePlatformToRefuse)
{
    EXPECT_EQ(FSCreateFileIDRef(&nested, &results.fileID), notAFileErr);
    EXPECT_EQ(FSCreateFileIDRef(&noObject, &results.fileID), errFSBadFSRef);
    EXPECT_EQ(FSCreateFileIDRef(nullptr, &results.fileID), errFSBadFSRef);
    EXPECT_TRUE(results.untouched());
}

TEST_F(AccessFileIDs, ReferenceIsMadeFromFolderAndNameOfTheFile)
{
    platform.access.fileIDs[0xFEDCBA98] = "file";
    EXPECT_EQ(FSResolveFileIDRef(-100, 0xFEDCBA98, &results.ref), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{resolving(-100, 0xFEDCBA98), "PBMakeFSRefSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=\"file\", newRef=caller's ref)"}));
    expected.ref = file;
    EXPECT_TRUE(results == expected);
}

TEST_F(AccessFileIDs, FileIsFoundAfterItWasMovedAndRenamed)
{
    EXPECT_EQ(FSCreateFileIDRef(&file, &results.fileID), noErr);
    FileObject &moved = platform.files.object("file");
    moved.name = std::string(31, 'n');
    moved.parent = &platform.files.object("nested");
    moved.info.parentDirID = infoOf("nested").nodeID;
    EXPECT_EQ(FSResolveFileIDRef(-100, results.fileID, &results.ref), noErr);
    EXPECT_EQ(platform.files.describe(&results.ref), "ref:file");
}

TEST_F(AccessFileIDs, PlaceForTheReferenceIsRequired)
{
    EXPECT_EQ(FSResolveFileIDRef(-100, 1, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(AccessFileIDs, UnknownOneIsTheResultAndNothingFollows)
{
    EXPECT_EQ(FSResolveFileIDRef(-100, 0xFFFFFFFF, &results.ref), fidNotFound);
    EXPECT_EQ(FSResolveFileIDRef(-32768, 0, &results.ref), nsvErr);
    EXPECT_EQ(platform.calls(), (Calls{resolving(-100, 0xFFFFFFFF), resolving(-32768, 0)}));
    EXPECT_TRUE(results.untouched());
}

}   // namespace
