// References, names, node IDs, privileges and Finder information, read from the catalog.

#include "tests/contract/catalog_fixture.h"
#include "tests/contract/stack_pattern.h"
#include "tests/how_built.h"

namespace
{

using CatalogReading = CatalogTest;

TEST_F(CatalogReading, SpecificationIsFilledByOneCallThatAsksForNothingElse)
{
    platform.nameAddress(&outputs.spec, "caller's spec");
    EXPECT_EQ(FSRefMakeFSSpec(&file, &outputs.spec), noErr);
    EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:file, 0x0, -, -, caller's spec, -)"});
    EXPECT_EQ(outputs.spec.vRefNum, -100);
    EXPECT_EQ(valueOf(outputs.spec.parID), static_cast<SInt32>(infoOf("folder").nodeID));
    EXPECT_EQ(quoted(outputs.spec.name), "\"file\"");
}

TEST_F(CatalogReading, SpecificationWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(FSRefMakeFSSpec(&file, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(CatalogReading, ReferenceIsMadeFromVolumeDirectoryAndName)
{
    Str255 name;
    storePascalString("file", name);
    platform.nameAddress(name, "caller's name");
    platform.nameAddress(&outputs.ref, "caller's ref");
    EXPECT_EQ(FSMakeFSRef(-100, static_cast<SInt32>(infoOf("folder").nodeID), name, &outputs.ref), noErr);
    EXPECT_EQ(platform.calls(), Calls{"PBMakeFSRefSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=caller's name, newRef=caller's ref)"});
    EXPECT_EQ(outputs.ref, file);
}

TEST_F(CatalogReading, ReferenceToTheDirectoryItselfIsMadeWithoutAName)
{
    EXPECT_EQ(FSMakeFSRef(-100, fsRtDirID, nullptr, &outputs.ref), noErr);
    EXPECT_EQ(platform.calls(), Calls{"PBMakeFSRefSync(ioVRefNum=-100, ioDirID=2, ioNamePtr=-, newRef=ref)"});
    EXPECT_EQ(outputs.ref, root);
}

TEST_F(CatalogReading, ReferenceArgumentsKeepTheirFullWidthAndSign)
{
    EXPECT_EQ(FSMakeFSRef(-32768, -2147483647, nullptr, &outputs.ref), dirNFErr);
    EXPECT_EQ(FSMakeFSRef(32767, 2147483647, nullptr, &outputs.ref), dirNFErr);
    EXPECT_EQ(platform.calls(), (Calls{"PBMakeFSRefSync(ioVRefNum=-32768, ioDirID=-2147483647, ioNamePtr=-, newRef=ref)",
                                       "PBMakeFSRefSync(ioVRefNum=32767, ioDirID=2147483647, ioNamePtr=-, newRef=ref)"}));
    EXPECT_TRUE(outputs.untouched());
}

TEST_F(CatalogReading, ReferenceWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(FSMakeFSRef(-100, fsRtDirID, nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(CatalogReading, ReferenceBlockHasOnlyItsFourFieldsFilled)
{
    if (isSanitized())
        GTEST_SKIP() << "sanitizers place and clear local variables in their own way";
    ASSERT_EQ(onPatternedStack([&] { return FSMakeFSRef(-100, fsRtDirID, nullptr, &outputs.ref); }), noErr);

    FSRefParam untouchedBlock;
    std::memset(static_cast<void *>(&untouchedBlock), stackPattern, sizeof untouchedBlock);
    untouchedBlock.ioVRefNum = -100;
    untouchedBlock.ioDirID = fsRtDirID;
    untouchedBlock.ioNamePtr = nullptr;
    untouchedBlock.newRef = &outputs.ref;
    EXPECT_EQ(std::memcmp(platform.files.lastReferenceBlock.data(), &untouchedBlock, sizeof untouchedBlock), 0);
}

TEST_F(CatalogReading, ValidReferenceIsOneThatTheCatalogKnows)
{
    EXPECT_EQ(FSRefValid(&file), 1);
    EXPECT_EQ(FSRefValid(&noObject), 0);
    EXPECT_EQ(platform.calls(), (Calls{"FSGetCatalogInfo(ref:file, 0x0, -, -, -, -)", "FSGetCatalogInfo(ref:?, 0x0, -, -, -, -)"}));
}

TEST_F(CatalogReading, AnyErrorAtAllMakesAReferenceInvalid)
{
    for (const OSErr code : {OSErr{1}, OSErr{-1}, OSErr{256}, OSErr{-32768}, nsvErr, fnfErr, errFSNoMoreItems})
    {
        platform.failCall(1, code);
        EXPECT_EQ(FSRefValid(&file), 0) << code;
    }
}

TEST_F(CatalogReading, ParentOfAFileIsItsFolder)
{
    platform.nameAddress(&outputs.ref, "caller's ref");
    EXPECT_EQ(FSGetParentRef(&file, &outputs.ref), noErr);
    EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:file, 0x10, info, -, -, caller's ref)"});
    EXPECT_EQ(outputs.ref, folder);
}

TEST_F(CatalogReading, ParentOfAFolderInTheRootIsTheRoot)
{
    EXPECT_EQ(FSGetParentRef(&folder, &outputs.ref), noErr);
    EXPECT_EQ(outputs.ref, root);
}

TEST_F(CatalogReading, ParentOfTheRootIsAllZero)
{
    EXPECT_EQ(FSGetParentRef(&root, &outputs.ref), noErr);
    EXPECT_EQ(outputs.ref, FSRef{});
}

// The root is told by its whole node ID: neighbours and numbers that share its low bytes are ordinary objects.
TEST_F(CatalogReading, NodeIDsNearTheRootsAreNotTheRoot)
{
    for (const UInt32 nodeID : {0u, 1u, 3u, 0x00010002u, 0x02000000u, 0x80000002u})
    {
        infoOf("folder").nodeID = nodeID;
        EXPECT_EQ(FSGetParentRef(&folder, &outputs.ref), noErr);
        EXPECT_EQ(outputs.ref, root) << nodeID;
    }
}

TEST_F(CatalogReading, ParentWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(FSGetParentRef(&file, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(CatalogReading, NameIsFilledByOneCallThatAsksForNothingElse)
{
    platform.nameAddress(&outputs.name, "caller's name");
    EXPECT_EQ(FSGetFileDirName(&nested, &outputs.name), noErr);
    EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:nested, 0x0, -, caller's name, -, -)"});
    const HFSUniStr255 expected = unicodeName("nested");
    EXPECT_EQ(std::memcmp(&outputs.name, &expected, sizeof expected), 0);
}

TEST_F(CatalogReading, NameWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(FSGetFileDirName(&file, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(CatalogReading, NodeIDAndKindAreAskedForOnlyWhenWanted)
{
    struct Row
    {
        bool wantNodeID, wantKind;
        const char *call;
    };
    for (const Row &row : {Row{true, true, "FSGetCatalogInfo(ref:file, 0x12, info, -, -, -)"},
                           Row{true, false, "FSGetCatalogInfo(ref:file, 0x10, info, -, -, -)"},
                           Row{false, true, "FSGetCatalogInfo(ref:file, 0x2, info, -, -, -)"},
                           Row{false, false, "FSGetCatalogInfo(ref:file, 0x0, info, -, -, -)"}})
    {
        SCOPED_TRACE(row.call);
        SInt32 nodeID = -7;
        Boolean isDirectory = 0x5A;
        platform.forgetCalls();
        EXPECT_EQ(FSGetNodeID(&file, row.wantNodeID ? &nodeID : nullptr, row.wantKind ? &isDirectory : nullptr), noErr);
        EXPECT_EQ(platform.calls(), Calls{row.call});
        EXPECT_EQ(nodeID, row.wantNodeID ? static_cast<SInt32>(infoOf("file").nodeID) : -7);
        EXPECT_EQ(isDirectory, row.wantKind ? 0 : 0x5A);
    }
}

TEST_F(CatalogReading, NodeIDWithNoOutputsTellsWhetherTheReferenceIsGood)
{
    EXPECT_EQ(FSGetNodeID(&file, nullptr, nullptr), noErr);
    EXPECT_EQ(FSGetNodeID(&noObject, nullptr, nullptr), errFSBadFSRef);
}

TEST_F(CatalogReading, NodeIDKeepsAll32Bits)
{
    infoOf("file").nodeID = 0xFEDCBA98;
    EXPECT_EQ(FSGetNodeID(&file, &outputs.nodeID, nullptr), noErr);
    EXPECT_EQ(static_cast<UInt32>(outputs.nodeID), 0xFEDCBA98u);
}

// Every bit of the node flags but the folder's own is without meaning for the kind.
TEST_F(CatalogReading, KindIsExactlyOneOrZeroWhateverTheOtherNodeFlags)
{
    for (int bit = 0; bit < 16; ++bit)
    {
        const auto flags = static_cast<UInt16>(1 << bit);
        for (const UInt16 nodeFlags : {flags, static_cast<UInt16>(~flags)})
        {
            SCOPED_TRACE(nodeFlags);
            const Boolean expected = (nodeFlags & 0x0010) == 0x0010 ? 1 : 0;
            infoOf("file").nodeFlags = nodeFlags;
            EXPECT_EQ(FSGetNodeID(&file, nullptr, &outputs.isDirectory), noErr);
            EXPECT_EQ(outputs.isDirectory, expected);
            outputs.isDirectory = 0x5A;
            EXPECT_EQ(FSGetFinderInfo(&file, nullptr, nullptr, &outputs.isDirectory), noErr);
            EXPECT_EQ(outputs.isDirectory, expected);
        }
    }
}

TEST_F(CatalogReading, PrivilegesAndPermissionsAreAskedForOnlyWhenWanted)
{
    struct Row
    {
        bool wantPrivileges, wantPermissions;
        const char *call;
    };
    for (const Row &row : {Row{true, true, "FSGetCatalogInfo(ref:file, 0x20400, info, -, -, -)"},
                           Row{true, false, "FSGetCatalogInfo(ref:file, 0x20000, info, -, -, -)"},
                           Row{false, true, "FSGetCatalogInfo(ref:file, 0x400, info, -, -, -)"},
                           Row{false, false, "FSGetCatalogInfo(ref:file, 0x0, info, -, -, -)"}})
    {
        SCOPED_TRACE(row.call);
        const PatternedOutputs before;
        PatternedOutputs after;
        platform.forgetCalls();
        EXPECT_EQ(FSGetUserPrivilegesPermissions(&file, row.wantPrivileges ? &after.userPrivileges : nullptr,
                                                 row.wantPermissions ? after.permissions : nullptr),
                  noErr);
        EXPECT_EQ(platform.calls(), Calls{row.call});
        const FSCatalogInfo &info = infoOf("file");
        EXPECT_EQ(after.userPrivileges, row.wantPrivileges ? info.userPrivileges : before.userPrivileges);
        EXPECT_EQ(std::memcmp(after.permissions, row.wantPermissions ? info.permissions : before.permissions, 16), 0);
    }
}

TEST_F(CatalogReading, FinderInformationIsAskedForOnlyWhenWanted)
{
    struct Row
    {
        bool wantInfo, wantExtended, wantKind;
        const char *bitmap;
    };
    for (const Row &row : {Row{true, true, true, "0x1802"}, Row{true, true, false, "0x1800"}, Row{true, false, true, "0x802"},
                           Row{true, false, false, "0x800"}, Row{false, true, true, "0x1002"}, Row{false, true, false, "0x1000"},
                           Row{false, false, true, "0x2"}, Row{false, false, false, "0x0"}})
    {
        SCOPED_TRACE(row.bitmap);
        const PatternedOutputs before;
        PatternedOutputs after;
        platform.forgetCalls();
        EXPECT_EQ(FSGetFinderInfo(&nested, row.wantInfo ? &after.finderInfo : nullptr, row.wantExtended ? &after.extendedInfo : nullptr,
                                  row.wantKind ? &after.isDirectory : nullptr),
                  noErr);
        EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:nested, " + std::string(row.bitmap) + ", info, -, -, -)"});
        const FSCatalogInfo &info = infoOf("nested");
        const void *unchanged = &before.finderInfo;
        EXPECT_EQ(std::memcmp(&after.finderInfo, row.wantInfo ? info.finderInfo : unchanged, 16), 0);
        EXPECT_EQ(std::memcmp(&after.extendedInfo, row.wantExtended ? info.extFinderInfo : unchanged, 16), 0);
        EXPECT_EQ(after.isDirectory, row.wantKind ? 1 : before.isDirectory);
    }
}

TEST_F(CatalogReading, OpenForkLeadsToItsFile)
{
    platform.files.openForks[123] = &platform.files.object("file");
    platform.nameAddress(&outputs.ref, "caller's ref");
    EXPECT_EQ(FileRefNumGetFSRef(123, &outputs.ref), noErr);
    EXPECT_EQ(platform.calls(), Calls{"FSGetForkCBInfo(123, 0, -, -, -, caller's ref, -)"});
    EXPECT_EQ(outputs.ref, file);
}

TEST_F(CatalogReading, ForkThatIsNotOpenIsThePlatformsError)
{
    EXPECT_EQ(FileRefNumGetFSRef(-1, &outputs.ref), rfNumErr);
    EXPECT_EQ(platform.calls(), Calls{"FSGetForkCBInfo(-1, 0, -, -, -, ref, -)"});
    EXPECT_TRUE(outputs.untouched());
}

TEST_F(CatalogReading, OpenForkWithoutPlaceForTheReferenceIsLeftToThePlatform)
{
    platform.files.openForks[123] = &platform.files.object("file");
    EXPECT_EQ(FileRefNumGetFSRef(123, nullptr), noErr);
    EXPECT_EQ(platform.calls(), Calls{"FSGetForkCBInfo(123, 0, -, -, -, -, -)"});
}

}   // namespace
