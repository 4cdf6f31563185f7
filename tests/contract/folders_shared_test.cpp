// The library's own folder in the shared user data folder.

#include "tests/contract/folders_fixture.h"

namespace
{

class FoldersShared : public FoldersTest
{
protected:
    FoldersShared() { share("folder"); }

    void share(const std::string &label) { platform.folders.special[{kLocalDomain, kSharedUserDataFolderType}] = label; }

    // The deepest of a chain of folders that makes its colon path so long.
    void shareDeepFolder(std::size_t pathLength)
    {
        FileObject *above = &platform.files.add(std::string(100, 'A'), &platform.files.object("root"), true);
        above = &platform.files.add(std::string(100, 'B'), above, true);
        share(platform.files.add(std::string(pathLength - 204, 'C'), above, true).label);
    }

    static Calls findingFolder()
    {
        return {"FindFolder(-32765, 'sdat', 1, volume, directory)",
                "PBGetCatInfoSync(ioNamePtr=name, ioVRefNum=-100, ioFDirIndex=-1, ioDrDirID=17)",
                "PBGetCatInfoSync(ioNamePtr=name, ioVRefNum=-100, ioFDirIndex=-1, ioDrDirID=2)"};
    }

    static Calls lookingForIt() { return pathConversion(":folder:Zerb") + lookUp("/folder/Zerb"); }

    static Calls makingIt()
    {
        return pathConversion(":folder:Zerb") + lookUp("/folder") + nameConversion("Zerb") +
               Calls{"FSCreateDirectoryUnicode(ref:folder, \"Zerb\", 0x0, -, -, -, -)"};
    }

    OSErr find() { return ZerbFindSharedUserFolder(path); }

    Str255 path = {3, 'o', 'l', 'd'};
};

TEST_F(FoldersShared, HasTheNameThatWasSetWhenTheLibraryWasBuilt)
{
    EXPECT_EQ(plainText(ZerbSharedFolderName), "Zerb");
}

TEST_F(FoldersShared, IsFoundWhereItExistsAndNothingIsCreated)
{
    platform.files.add("Zerb", &platform.files.object("folder"), true);
    EXPECT_EQ(find(), noErr);
    EXPECT_EQ(platform.calls(), findingFolder() + lookingForIt());
    EXPECT_EQ(plainText(path), ":folder:Zerb:");
}

TEST_F(FoldersShared, IsCreatedWhereItIsMissingAndFoundTheSecondTime)
{
    EXPECT_EQ(find(), noErr);
    EXPECT_EQ(platform.calls(), findingFolder() + lookingForIt() + makingIt());
    EXPECT_EQ(plainText(path), ":folder:Zerb:");
    platform.forgetCalls();
    EXPECT_EQ(find(), noErr);
    EXPECT_EQ(platform.calls(), findingFolder() + lookingForIt());
    EXPECT_EQ(plainText(path), ":folder:Zerb:");
}

TEST_F(FoldersShared, InTheRootHasAnEmptyParentPathWhichIsHandedOn)
{
    share("root");
    EXPECT_EQ(find(), fnfErr);
    EXPECT_EQ(platform.calls().back(), "FSPathMakeRef(\"\", ref, -)");
    EXPECT_EQ(plainText(path), ":Zerb:");
}

TEST_F(FoldersShared, FailureToFindTheSharedFolderLeavesThePathAlone)
{
    platform.failCall(1, ioErr);
    EXPECT_EQ(find(), ioErr);
    EXPECT_EQ(platform.calls().size(), 1u);
    EXPECT_EQ(plainText(path), "old");
}

TEST_F(FoldersShared, FailureToFindItsPathLeavesThePartThatWasFound)
{
    platform.failCall(3, ioErr);
    EXPECT_EQ(find(), ioErr);
    EXPECT_EQ(platform.calls().size(), 3u);
    EXPECT_EQ(plainText(path), "folder:");
}

TEST_F(FoldersShared, AnyFailureToFindTheFolderItselfHasItCreated)
{
    for (const OSStatus status : {OSStatus{ioErr}, OSStatus{afpAccessDenied}, OSStatus{0x10000}})
    {
        platform.forgetCalls();
        platform.failLine("FSPathMakeRef(\"/folder/Zerb\", ref, -)", status);
        find();
        EXPECT_EQ(platform.calls(), findingFolder() + lookingForIt() + makingIt());
    }
}

TEST_F(FoldersShared, FailureToFindTheParentIsTheResultAndThePathIsWhole)
{
    for (const OSStatus status : {OSStatus{ioErr}, OSStatus{0x12345678}, OSStatus{0x10000}})
    {
        platform.forgetCalls();
        platform.failLine("FSPathMakeRef(\"/folder\", ref, -)", status);
        EXPECT_EQ(find(), static_cast<OSErr>(status));
        EXPECT_EQ(platform.calls(), findingFolder() + lookingForIt() + pathConversion(":folder:Zerb") + lookUp("/folder"));
        EXPECT_EQ(plainText(path), ":folder:Zerb:");
    }
}

TEST_F(FoldersShared, FailureToCreateItIsTheResultAndThePathIsWhole)
{
    platform.failEvery("FSCreateDirectoryUnicode", wPrErr);
    EXPECT_EQ(find(), wPrErr);
    EXPECT_EQ(plainText(path), ":folder:Zerb:");
}

TEST_F(FoldersShared, ConversionThatFailsLeavesAnEmptyPath)
{
    platform.failEvery("CFStringGetCString", ioErr);
    EXPECT_EQ(find(), fnfErr);
    EXPECT_EQ(platform.calls(),
              findingFolder() + pathConversion(":folder:Zerb") + lookUp("") + pathConversion(":folder:Zerb") + lookUp(""));
    EXPECT_EQ(plainText(path), ":folder:Zerb:");
}

TEST_F(FoldersShared, NameThatCannotBeConvertedIsEmpty)
{
    platform.failLine("CFStringGetCString(string, buffer, 510, 0x100)", ioErr);
    EXPECT_EQ(find(), bdNamErr);
    Calls nameCalls = nameConversion("Zerb");
    nameCalls.erase(nameCalls.begin() + 3);   // its length is not asked for
    EXPECT_EQ(platform.calls(), findingFolder() + lookingForIt() + pathConversion(":folder:Zerb") + lookUp("/folder") + nameCalls +
                                    Calls{"FSCreateDirectoryUnicode(ref:folder, \"\", 0x0, -, -, -, -)"});
}

TEST_F(FoldersShared, WithoutAStringNoCallIsMadeOnOne)
{
    platform.failEvery("CFStringCreateMutable", memFullErr);
    EXPECT_EQ(find(), fnfErr);
    const Calls attempt = Calls{"CFStringCreateMutable(-, 0)"} + lookUp("");
    EXPECT_EQ(platform.calls(), findingFolder() + attempt + attempt);
}

TEST_F(FoldersShared, PathOf255BytesWithItsColonFits)
{
    shareDeepFolder(250);
    EXPECT_EQ(find(), noErr);
    EXPECT_EQ(path[0], 255);
    EXPECT_EQ(platform.calls().back().substr(0, 24), "FSCreateDirectoryUnicode");
}

TEST_F(FoldersShared, PathThatWouldBeLongerStaysAsItWasAndNothingIsCreated)
{
    shareDeepFolder(251);
    EXPECT_EQ(find(), bdNamErr);
    EXPECT_EQ(path[0], 251);
    EXPECT_EQ(platform.calls().size(), 5u) << "nothing after the path's four directories";
}

TEST_F(FoldersShared, WithoutPlaceForThePathIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(ZerbFindSharedUserFolder(nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

}   // namespace
