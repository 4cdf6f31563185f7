// FSExchangeObjectsCompat as it succeeds: by the volume itself, and by hand.

#include "tests/contract/exchange_fixture.h"

namespace
{

using MovesExchange = ExchangeTest;

TEST_F(MovesExchange, FilesOfTwoFoldersChangePlacesNamesAndInformation)
{
    EXPECT_EQ(exchange(), noErr);
    EXPECT_EQ(steps(), exchangeBetweenFolders());
    EXPECT_EQ(placeOf("file"), "nested:inner");
    EXPECT_EQ(placeOf("inner"), "folder:file");
    EXPECT_EQ(newSource, platform.files.ref("inner")) << "named is what stands at the source's place";
    EXPECT_EQ(newDestination, platform.files.ref("file"));
}

TEST_F(MovesExchange, FilesOfOneFolderAreNotMoved)
{
    EXPECT_EQ(exchangeInOneFolder(), noErr);
    EXPECT_EQ(steps(), exchangeWithinAFolder());
    EXPECT_EQ(placeOf("file"), "folder:other");
    EXPECT_EQ(placeOf("other"), "folder:file");
    EXPECT_EQ(newSource, platform.files.ref("other"));
    EXPECT_EQ(newDestination, platform.files.ref("file"));
}

TEST_F(MovesExchange, EachKeepsItsModificationDatesAndTakesOverTheRest)
{
    for (const bool inOneFolder : {false, true})
    {
        platform.files = FilesDouble();
        addOther();
        const char *otherLabel = inOneFolder ? "other" : "inner";
        const FSCatalogInfo fileBefore = infoOf("file"), otherBefore = infoOf(otherLabel);
        EXPECT_EQ(inOneFolder ? exchangeInOneFolder() : exchange(), noErr);

        FSCatalogInfo fileExpected = fileBefore, otherExpected = otherBefore;
        copyCatalogFields(0x1F23 | kFSCatInfoParentDirID, otherBefore, fileExpected);
        copyCatalogFields(0x1F23 | kFSCatInfoParentDirID, fileBefore, otherExpected);
        EXPECT_TRUE(sameBytes(infoOf("file"), fileExpected));
        EXPECT_TRUE(sameBytes(infoOf(otherLabel), otherExpected));
        EXPECT_EQ(valueOf(infoOf("file").contentModDate), valueOf(fileBefore.contentModDate));
        EXPECT_EQ(valueOf(infoOf("file").createDate), valueOf(otherBefore.createDate));
    }
}

TEST_F(MovesExchange, AVolumeThatSaysSoDoesItItself)
{
    struct Row
    {
        SInt16 version;
        UInt32 attributes;
        bool byItself;
    };
    for (const Row &row : {Row{3, 0x8, true}, Row{3, 0xFFFFFFFF, true}, Row{4, 0x8, true}, Row{0x7FFF, 0x8, true}, Row{2, 0x8, false},
                           Row{1, 0xFFFFFFFF, false}, Row{0, 0x8, false}, Row{-1, 0x8, false}, Row{-0x8000, 0x8, false}, Row{3, 0, false},
                           Row{3, 0xFFFFFFF7, false}, Row{3, 0x4, false}, Row{3, 0x10, false}})
    {
        SCOPED_TRACE(std::to_string(row.version) + ' ' + hex(row.attributes));
        platform.files = FilesDouble();
        platform.forgetCalls();
        parameters().vMVersion = row.version;
        parameters().vMExtendedAttributes = static_cast<SInt32>(row.attributes);
        parameters().vMAttrib = row.byItself ? 0 : -1;
        EXPECT_EQ(exchange(), noErr);
        if (row.byItself)
        {
            EXPECT_EQ(steps(), (Calls{readVolumeOfSource, readVolume, "FSExchangeObjects(ref:file, ref:inner)"}));
            EXPECT_EQ(newSource, file);
            EXPECT_EQ(newDestination, inner);
        }
        else
            EXPECT_EQ(steps(), exchangeBetweenFolders());
    }
}

TEST_F(MovesExchange, TheVolumesOwnFailureIsReportedAndNothingElseTried)
{
    parameters().vMVersion = 3;
    parameters().vMExtendedAttributes = 0x8;
    for (int nth : {1, 3})
    {
        platform.forgetCalls();
        platform.failCall(nth, someCode);
        EXPECT_EQ(exchange(), someCode);
        EXPECT_EQ(steps().size(), static_cast<std::size_t>(nth));
        EXPECT_EQ(newSource, file);
        EXPECT_EQ(newDestination, inner);
    }
    platform.forgetCalls();
    platform.failCall(2, someCode);
    EXPECT_EQ(exchange(), noErr) << "a volume that does not answer is one that can't";
    EXPECT_EQ(steps(), exchangeBetweenFolders());
}

TEST_F(MovesExchange, WhatAVolumeSaysWhileItFailsDoesNotCount)
{
    parameters().vMVersion = 3;
    parameters().vMExtendedAttributes = 0x8;
    platform.files.volumes.front().parametersResult = someCode;
    EXPECT_EQ(exchange(), noErr);
    EXPECT_EQ(steps(), exchangeBetweenFolders());
}

TEST_F(MovesExchange, BothOutputsAreRequired)
{
    EXPECT_EQ(FSExchangeObjectsCompat(&file, &inner, nullptr, &newDestination), paramErr);
    EXPECT_EQ(FSExchangeObjectsCompat(&file, &inner, &newSource, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(MovesExchange, OtherVolumesAreRefused)
{
    infoOf("inner").volume = -101;
    infoOf("inner").nodeFlags = kFSNodeIsDirectoryMask;
    EXPECT_EQ(exchange(), diffVolErr) << "even where one is a folder";
    expectRefusal();
}

TEST_F(MovesExchange, FoldersAreRefused)
{
    for (const char *label : {"file", "inner"})
    {
        platform.forgetCalls();
        infoOf(label).nodeFlags = 0xFFFE;
        EXPECT_EQ(exchange(), notAFileErr);
        expectRefusal();
        infoOf(label).nodeFlags = static_cast<UInt16>(~kFSNodeIsDirectoryMask & ~kFSNodeLockedMask);
    }
    platform.forgetCalls();
    EXPECT_EQ(exchange(), noErr) << "by no other flag";
}

TEST_F(MovesExchange, TheSecondTemporaryNameGoesOnFromTheFirst)
{
    add("a", "3D1F5A27", "nested");
    add("b", "3D1F5A29", "folder");
    add("c", "3D1F5A2A", "nested");
    EXPECT_EQ(exchange(), noErr);
    EXPECT_EQ(firstOf(stepsAfter(4), 11),
              (Calls{lookup("folder", "3D1F5A27"), lookup("nested", "3D1F5A27"), lookup("folder", "3D1F5A28"), lookup("nested", "3D1F5A28"),
                     lookup("folder", "3D1F5A29"), lookup("folder", "3D1F5A2A"), lookup("nested", "3D1F5A2A"), lookup("folder", "3D1F5A2B"),
                     lookup("nested", "3D1F5A2B"), renaming("file", "3D1F5A28", noHint, "newSource"),
                     renaming("inner", "3D1F5A2B", noHint, "newDestination")}));
}

TEST_F(MovesExchange, ReferencesAreCopiedWholeByThePlatform)
{
    EXPECT_EQ(exchange(), noErr);
    const Calls &lines = platform.calls();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(firstOf(lines, 4), (Calls{"BlockMoveData(ref:file, newSource, 80)", "BlockMoveData(ref:file, ref, 80)",
                                        "BlockMoveData(ref:inner, newDestination, 80)", "BlockMoveData(ref:inner, ref, 80)"}));
    EXPECT_EQ(Calls(lines.end() - 2, lines.end()),
              (Calls{"BlockMoveData(ref:inner#3, newSource, 80)", "BlockMoveData(ref:file#3, newDestination, 80)"}));
}

}   // namespace
