// Paths to specifications, and volume, directory and name to paths.

#include "tests/contract/names_fixture.h"

namespace
{

class NamesPaths : public CatalogTest
{
protected:
    static const UInt8 *bytes(const char *path) { return reinterpret_cast<const UInt8 *>(path); }

    OSErr makePath(SInt32 dirID, ConstStr255Param ofObject, UInt32 size = sizeof(path))
    {
        return FSMakePath(-100, dirID, ofObject, path, size);
    }

    std::string pathText() const { return reinterpret_cast<const char *>(path); }

    static constexpr SInt32 folderID = 17;
    UInt8 path[64] = "nothing yet";
    Str255 name = {4, 'f', 'i', 'l', 'e'};
};

TEST_F(NamesPaths, SpecificationIsThatOfTheObjectAtThePath)
{
    platform.nameAddress(&outputs.spec, "caller's spec");
    platform.nameAddress(&outputs.isDirectory, "caller's flag");
    EXPECT_EQ(FSPathMakeFSSpec(bytes("/folder/file"), &outputs.spec, &outputs.isDirectory), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{"FSPathMakeRef(\"/folder/file\", ref, caller's flag)", "FSGetCatalogInfo(ref:file, 0x0, -, -, caller's spec, -)"}));
    EXPECT_EQ(outputs.spec.vRefNum, -100);
    EXPECT_EQ(valueOf(outputs.spec.parID), folderID);
    EXPECT_EQ(quoted(outputs.spec.name), "\"file\"");
    EXPECT_EQ(outputs.isDirectory, 0);
}

TEST_F(NamesPaths, FolderIsToldFromAFile)
{
    EXPECT_EQ(FSPathMakeFSSpec(bytes("/folder"), &outputs.spec, &outputs.isDirectory), noErr);
    EXPECT_EQ(quoted(outputs.spec.name), "\"folder\"");
    EXPECT_EQ(outputs.isDirectory, 1);
}

TEST_F(NamesPaths, WhetherItIsAFolderNeedNotBeAsked)
{
    EXPECT_EQ(FSPathMakeFSSpec(bytes("/"), &outputs.spec, nullptr), noErr);
    EXPECT_EQ(platform.calls().front(), "FSPathMakeRef(\"/\", ref, -)");
    EXPECT_EQ(quoted(outputs.spec.name), "\"root\"");
}

TEST_F(NamesPaths, SpecificationWithoutPlaceForItIsRefusedBeforeThePathIsLookedAt)
{
    EXPECT_EQ(FSPathMakeFSSpec(bytes("/folder"), nullptr, &outputs.isDirectory), paramErr);
    EXPECT_EQ(FSPathMakeFSSpec(nullptr, nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_TRUE(outputs.untouched());
}

TEST_F(NamesPaths, PathIsHandedOnAsItIs)
{
    EXPECT_EQ(FSPathMakeFSSpec(bytes("no path"), &outputs.spec, nullptr), fnfErr);
    EXPECT_EQ(FSPathMakeFSSpec(bytes(""), &outputs.spec, nullptr), fnfErr);
    EXPECT_EQ(FSPathMakeFSSpec(nullptr, &outputs.spec, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), (Calls{"FSPathMakeRef(\"no path\", ref, -)", "FSPathMakeRef(\"\", ref, -)", "FSPathMakeRef(-, ref, -)"}));
    EXPECT_TRUE(outputs.untouched());
}

TEST_F(NamesPaths, FailureToFindThePathEndsTheCallWithItsLowerSixteenBits)
{
    for (const OSStatus status : {OSStatus{ioErr}, OSStatus{0x12345678}, OSStatus{0x10000}})
    {
        platform.forgetCalls();
        platform.failCall(1, status);
        EXPECT_EQ(FSPathMakeFSSpec(bytes("/folder"), &outputs.spec, &outputs.isDirectory), static_cast<OSErr>(status));
        EXPECT_EQ(platform.calls().size(), 1u);
        EXPECT_TRUE(outputs.untouched());
    }
}

TEST_F(NamesPaths, FlagStandsAlthoughTheSpecificationCouldNotBeMade)
{
    platform.failCall(2, ioErr);
    EXPECT_EQ(FSPathMakeFSSpec(bytes("/folder"), &outputs.spec, &outputs.isDirectory), ioErr);
    EXPECT_EQ(outputs.isDirectory, 1);
    EXPECT_EQ(outputs.spec.vRefNum, 0x5A5A);
}

TEST_F(NamesPaths, PathIsThatOfTheNamedObject)
{
    platform.nameAddress(name, "caller's name");
    platform.nameAddress(path, "caller's path");
    EXPECT_EQ(makePath(folderID, name), noErr);
    EXPECT_EQ(platform.calls(), (Calls{"PBMakeFSRefSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=caller's name, newRef=ref)",
                                       "FSRefMakePath(ref:file, caller's path, 64)"}));
    EXPECT_EQ(pathText(), "/folder/file");
}

TEST_F(NamesPaths, PathWithoutANameIsThatOfTheDirectory)
{
    EXPECT_EQ(makePath(folderID, nullptr), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{"PBMakeFSRefSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=-, newRef=ref)", "FSRefMakePath(ref:folder, path, 64)"}));
    EXPECT_EQ(pathText(), "/folder");
    EXPECT_EQ(makePath(fsRtDirID, nullptr), noErr);
    EXPECT_EQ(pathText(), "/");
}

TEST_F(NamesPaths, PathWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(FSMakePath(-100, folderID, name, nullptr, 64), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(NamesPaths, LocationKeepsItsFullWidthAndSign)
{
    EXPECT_EQ(FSMakePath(-32768, -2147483647, nullptr, path, 64), dirNFErr);
    EXPECT_EQ(FSMakePath(32767, 2147483647, nullptr, path, 64), dirNFErr);
    EXPECT_EQ(platform.calls(), (Calls{"PBMakeFSRefSync(ioVRefNum=-32768, ioDirID=-2147483647, ioNamePtr=-, newRef=ref)",
                                       "PBMakeFSRefSync(ioVRefNum=32767, ioDirID=2147483647, ioNamePtr=-, newRef=ref)"}));
}

// Whether the buffer is large enough is for the platform alone to say.
TEST_F(NamesPaths, SizeIsHandedOnWithoutATest)
{
    const UInt32 exactSize = sizeof "/folder/file";
    for (const UInt32 size : {UInt32{0}, UInt32{1}, exactSize - 1})
    {
        platform.forgetCalls();
        EXPECT_EQ(makePath(folderID, name, size), errFSNameTooLong) << size;
        EXPECT_EQ(platform.calls().back(), "FSRefMakePath(ref:file, path, " + decimal(size) + ")");
        EXPECT_EQ(pathText(), "nothing yet");
    }
    for (const UInt32 size : {exactSize, UInt32{0x80000000}, UInt32{0xFFFFFFFF}})
    {
        EXPECT_EQ(makePath(folderID, name, size), noErr) << size;
        EXPECT_EQ(platform.calls().back(), "FSRefMakePath(ref:file, path, " + decimal(size) + ")");
        EXPECT_EQ(pathText(), "/folder/file");
    }
}

TEST_F(NamesPaths, ObjectThatIsNotThereHasNoPath)
{
    name[4] = 'x';
    EXPECT_EQ(makePath(folderID, name), fnfErr);
    EXPECT_EQ(platform.calls().size(), 1u);
    EXPECT_EQ(pathText(), "nothing yet");
}

TEST_F(NamesPaths, EitherFailureIsTheResult)
{
    platform.failCall(1, afpAccessDenied);
    EXPECT_EQ(makePath(folderID, name), afpAccessDenied);
    EXPECT_EQ(platform.calls().size(), 1u);
    platform.failCall(2, 0x12345678);
    EXPECT_EQ(makePath(folderID, name), 0x5678);
    EXPECT_EQ(pathText(), "nothing yet");
}

}   // namespace
