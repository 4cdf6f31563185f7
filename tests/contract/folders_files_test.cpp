// Small files by colon path, and write permission for all.

#include "tests/contract/folders_fixture.h"

namespace
{

constexpr OSType creator = 0x41424344, fileType = 0x54455854;
constexpr CFStringEncoding utf8 = kCFStringEncodingUTF8, latin1 = 0x0201;

class FoldersFiles : public FoldersTest
{
protected:
    OSErr create(const std::string &path, CFStringEncoding encoding = utf8)
    {
        return FSpCreate2(ColonPath(path), encoding, creator, fileType);
    }

    OSErr open(const std::string &path, CFStringEncoding encoding = utf8)
    {
        return FSpOpenDF2(ColonPath(path), encoding, fsRdWrPerm, &refNum);
    }

    OSErr remove(const std::string &path, CFStringEncoding encoding = utf8) { return FSpDelete2(ColonPath(path), encoding); }

    static Calls creation(const std::string &name, const std::string &folder = "folder")
    {
        return {"FSCreateFileUnicode(ref:" + folder + ", \"" + name + "\", 0x800, info, -, -)"};
    }

    SInt16 refNum = 0x5A5A;
};

TEST_F(FoldersFiles, NewFileHasItsCreatorAndTypeAndNothingElse)
{
    EXPECT_EQ(create(":folder:data"), noErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder") + nameConversion("data") + creation("data"));
    FSCatalogInfo expected = {};
    const FileInfo finderInfo = {fileType, creator, 0, {0, 0}, 0};
    std::memcpy(expected.finderInfo, &finderInfo, sizeof finderInfo);
    EXPECT_TRUE(sameBytes(platform.folders.creationInfo, expected));
}

TEST_F(FoldersFiles, NewFileWithoutItsFolderIsNotMade)
{
    for (const OSStatus status : {OSStatus{fnfErr}, OSStatus{0x12345678}, OSStatus{0x10000}})
    {
        platform.forgetCalls();
        platform.failCall(1, status);
        EXPECT_EQ(create(":folder:data"), static_cast<OSErr>(status));
        EXPECT_EQ(platform.calls(), lookUp("/folder"));
    }
    EXPECT_EQ(create(":no such:data"), fnfErr);
}

TEST_F(FoldersFiles, FailureToCreateIsHandedOn)
{
    EXPECT_EQ(create(":folder:file"), dupFNErr);
    platform.failEvery("FSCreateFileUnicode", dskFulErr);
    EXPECT_EQ(create(":folder:data"), dskFulErr);
}

TEST_F(FoldersFiles, NewFileInTheRootOrWithoutAnyColonHasAnEmptyFolderPath)
{
    EXPECT_EQ(create(":data"), fnfErr);
    EXPECT_EQ(create("data"), fnfErr);
    EXPECT_EQ(platform.calls(), lookUp("") + lookUp(""));
}

TEST_F(FoldersFiles, PathThatEndsWithAColonHasAnEmptyName)
{
    EXPECT_EQ(create(":folder:"), bdNamErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder") + nameConversion("") + creation(""));
}

TEST_F(FoldersFiles, PathInUTF8IsTakenByteForByte)
{
    EXPECT_EQ(create(":folder:caf\xC3\xA9"), noErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder") + nameConversion("caf\xC3\xA9") + creation("caf\\u00E9"));
    platform.forgetCalls();
    EXPECT_EQ(open(":f\xE2\x82\xACx\xFF"), fnfErr);
    EXPECT_EQ(platform.calls(), lookUp("/f\xE2\x82\xACx\xFF")) << "also where it is none";
}

TEST_F(FoldersFiles, PathInAnotherEncodingIsConvertedFirst)
{
    EXPECT_EQ(create(":folder:caf\x8E", kCFStringEncodingMacRoman), noErr);
    EXPECT_EQ(platform.calls(),
              pathConversion(":folder:caf\x8E") + lookUp("/folder") + nameConversion("caf\xC3\xA9") + creation("caf\\u00E9"));
    platform.forgetCalls();
    EXPECT_EQ(remove(":caf\xE9", latin1), fnfErr);
    EXPECT_EQ(platform.calls(), pathConversion(":caf\xE9", latin1) + lookUp("/caf\xC3\xA9"));
}

TEST_F(FoldersFiles, SlashOfANameDividesThePathToo)
{
    EXPECT_EQ(create(":folder:nested/data"), noErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder/nested") + nameConversion("data") + creation("data", "nested"));
}

TEST_F(FoldersFiles, PathEndsAtAZeroByte)
{
    EXPECT_EQ(remove(std::string(":folder\0:file", 13)), fBsyErr) << "a folder that is not empty";
    EXPECT_EQ(platform.calls(), lookUp("/folder") + Calls{"FSDeleteObject(ref:folder)"});
}

TEST_F(FoldersFiles, PathThatIsTooLongInUTF8IsEmpty)
{
    EXPECT_EQ(open(":" + std::string(254, '\xDB'), kCFStringEncodingMacRoman), fnfErr);
    EXPECT_EQ(platform.calls().back(), "FSPathMakeRef(\"\", ref, -)") << "254 times three bytes";
}

TEST_F(FoldersFiles, LongestPathInUTF8FitsAsItIs)
{
    const std::string name(254, 'x');
    platform.files.add(name, &platform.files.object("root"), false);
    EXPECT_EQ(open(":" + name), noErr);
    EXPECT_EQ(platform.calls().front(), lookUp("/" + name).front());
}

TEST_F(FoldersFiles, NameAsLongAsThePathAllowsFits)
{
    EXPECT_EQ(create(":folder:" + std::string(247, 'x')), noErr);
    EXPECT_EQ(platform.calls().back(), creation(std::string(247, 'x')).front());
}

TEST_F(FoldersFiles, NameThatCannotBeConvertedIsEmpty)
{
    platform.failLine("CFStringGetCString(string, buffer, 510, 0x100)", ioErr);
    EXPECT_EQ(create(":folder:data"), bdNamErr);
    EXPECT_EQ(platform.calls().back(), creation("").front());
}

TEST_F(FoldersFiles, WithoutAStringPathAndNameAreEmptyAndNoCallIsMadeOnOne)
{
    platform.failEvery("CFStringCreateMutable", memFullErr);
    EXPECT_EQ(create(":folder:data"), bdNamErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder") + Calls{"CFStringCreateMutable(-, 0)"} + creation(""));
    platform.forgetCalls();
    EXPECT_EQ(remove(":folder", kCFStringEncodingMacRoman), fnfErr);
    EXPECT_EQ(platform.calls(), Calls{"CFStringCreateMutable(-, 0)"} + lookUp(""));
}

TEST_F(FoldersFiles, OpenedIsTheDataForkWithThePermissionThatWasGiven)
{
    EXPECT_EQ(open(":folder:file"), noErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder/file") + Calls{"FSOpenFork(ref:file, 0, -, 3, refNum)"});
    EXPECT_EQ(refNum, static_cast<SInt16>(infoOf("file").nodeID));
    platform.forgetCalls();
    EXPECT_EQ(FSpOpenDF2(ColonPath(":folder:file"), kCFStringEncodingMacRoman, -128, &refNum), noErr);
    EXPECT_EQ(platform.calls(),
              pathConversion(":folder:file") + lookUp("/folder/file") + Calls{"FSOpenFork(ref:file, 0, -, -128, refNum)"});
}

TEST_F(FoldersFiles, OpeningFailsWithTheFirstCallThatDoes)
{
    EXPECT_EQ(open(":folder"), notAFileErr);
    for (const OSStatus status : {OSStatus{ioErr}, OSStatus{0x12345678}, OSStatus{0x10000}})
    {
        platform.forgetCalls();
        platform.failCall(1, status);
        EXPECT_EQ(open(":folder:file"), static_cast<OSErr>(status));
        EXPECT_EQ(platform.calls().size(), 1u);
    }
    platform.failCall(2, opWrErr);
    EXPECT_EQ(open(":folder:file"), opWrErr);
    EXPECT_EQ(refNum, 0x5A5A);
}

TEST_F(FoldersFiles, OpeningWithoutPlaceForTheForkIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(FSpOpenDF2(ColonPath(":folder:file"), kCFStringEncodingMacRoman, fsRdPerm, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(FoldersFiles, DeletionIsOfWhatLiesAtThePath)
{
    EXPECT_EQ(remove(":folder:file"), noErr);
    EXPECT_EQ(platform.calls(), lookUp("/folder/file") + Calls{"FSDeleteObject(ref:file)"});
    EXPECT_EQ(remove(":folder:file"), fnfErr);
}

TEST_F(FoldersFiles, DeletionFailsWithTheFirstCallThatDoes)
{
    for (const OSStatus status : {OSStatus{ioErr}, OSStatus{0x12345678}, OSStatus{0x10000}})
    {
        platform.forgetCalls();
        platform.failCall(1, status);
        EXPECT_EQ(remove(":folder:file"), static_cast<OSErr>(status));
        EXPECT_EQ(platform.calls().size(), 1u);
    }
    platform.failCall(2, fLckdErr);
    EXPECT_EQ(remove(":folder:file"), fLckdErr);
}

class FoldersWritable : public FoldersTest
{
protected:
    FoldersWritable() { spec = specificationOf(platform.files.object("file")); }

    UInt16 &modeOfFile() { return reinterpret_cast<FSPermissionInfo *>(infoOf("file").permissions)->mode; }

    FSSpec spec;
};

TEST_F(FoldersWritable, ChangesPermissionsAlone)
{
    const FSCatalogInfo before = infoOf("file");
    EXPECT_EQ(ZerbMakeWritableByAll(&spec), noErr);
    EXPECT_EQ(platform.calls(), (Calls{"PBMakeFSRefSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=\"file\", newRef=ref)",
                                       "FSGetCatalogInfo(ref:file, 0x400, info, -, -, -)", "FSSetCatalogInfo(ref:file, 0x400, info)"}));
    FSCatalogInfo expected = before;
    reinterpret_cast<FSPermissionInfo *>(expected.permissions)->mode |= 0222;
    EXPECT_TRUE(sameBytes(infoOf("file"), expected)) << "owner, group and the other bits of the mode stay";
}

TEST_F(FoldersWritable, AddsThreeBitsToEveryMode)
{
    for (UInt32 mode = 0; mode <= 0xFFFF; mode += mode < 01000 ? 1 : 0xFFF)
    {
        modeOfFile() = static_cast<UInt16>(mode);
        ASSERT_EQ(ZerbMakeWritableByAll(&spec), noErr);
        ASSERT_EQ(modeOfFile(), static_cast<UInt16>(mode | 0222));
    }
    modeOfFile() = 0644;
    EXPECT_EQ(ZerbMakeWritableByAll(&spec), noErr);
    EXPECT_EQ(modeOfFile(), 0666);
    modeOfFile() = 0600;
    EXPECT_EQ(ZerbMakeWritableByAll(&spec), noErr);
    EXPECT_EQ(modeOfFile(), 0622);
}

TEST_F(FoldersWritable, EachCallFailingEndsIt)
{
    const FSCatalogInfo before = infoOf("file");
    for (int nth = 1; nth <= 3; ++nth)
    {
        platform.forgetCalls();
        platform.failCall(nth, ioErr);
        EXPECT_EQ(ZerbMakeWritableByAll(&spec), ioErr);
        EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(nth));
        EXPECT_TRUE(sameBytes(infoOf("file"), before));
    }
}

}   // namespace
