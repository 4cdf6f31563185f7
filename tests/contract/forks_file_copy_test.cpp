// The copy of a whole file by its volume.

#include "tests/contract/names_fixture.h"

namespace
{

constexpr SInt32 copyFileService = 0x4000;

const std::string readSource = "FSGetCatalogInfo(ref:file, 0x0, -, -, spec, -)";
const std::string askVolume = "PBHGetVolParmsSync(ioNamePtr=-, ioVRefNum=-100, ioReqCount=32, ioBuffer=buffer)";
const std::string readFolder = "FSGetCatalogInfo(ref:nested, 0x14, info, -, -, -)";

// The source is `file` in `folder`, the destination is the folder `nested`.
class ForksFileCopy : public NamesTest
{
protected:
    ForksFileCopy() { platform.files.volumes.front().parameters.vMAttrib = copyFileService; }

    OSErr copyNamed(const std::string &name, FSRef *wantedRef = nullptr, TextEncoding hint = kTextEncodingMacRoman)
    {
        const std::vector<UniChar> units = unitsOf(name);
        platform.nameAddress(units.data(), "name");
        return FSCopyFile(&file, &nested, static_cast<UniCharCount>(units.size()), units.data(), hint, wantedRef);
    }

    OSErr copyUnnamed(FSRef *wantedRef = nullptr) { return FSCopyFile(&file, &nested, 0, nullptr, kTextEncodingMacRoman, wantedRef); }

    std::string copyCall(const std::string &copyName, SInt64 volume = -100, SInt64 directory = 19)
    {
        return "PBHCopyFileSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=\"file\", ioDstVRefNum=" + decimal(volume) +
               ", ioNewDirID=" + decimal(directory) + ", ioNewName=-, ioCopyName=" + copyName + ")";
    }

    std::string referenceCall(const std::string &name, SInt64 volume = -100, SInt64 directory = 19)
    {
        return "PBMakeFSRefSync(ioVRefNum=" + decimal(volume) + ", ioDirID=" + decimal(directory) + ", ioNamePtr=" + name +
               ", newRef=caller's ref)";
    }

    bool isCopied() { return platform.files.objects.size() > objectCount; }

    const std::size_t objectCount = platform.files.objects.size();
    FSRef newRef = {{0x5A}};
    const FSRef untouchedRef = newRef;
};

TEST_F(ForksFileCopy, IsMadeByTheVolumeUnderTheNewName)
{
    platform.nameAddress(&newRef, "caller's ref");
    EXPECT_EQ(copyNamed("duplicate", &newRef), noErr);
    ASSERT_EQ(platform.calls(), (Calls{readSource, askVolume, readFolder} + mappingCalls(0) + conversionToText(0, 18, 31) +
                                 Calls{copyCall("\"duplicate\""), referenceCall("\"duplicate\"")}));
    ASSERT_TRUE(isCopied());
    EXPECT_EQ(newRef, platform.files.ref("duplicate"));
    EXPECT_EQ(platform.files.object("duplicate").parent, &platform.files.object("nested"));
}

TEST_F(ForksFileCopy, WithoutAPlaceForItNoReferenceIsMade)
{
    EXPECT_EQ(copyNamed("duplicate"), noErr);
    EXPECT_EQ(platform.calls().back(), copyCall("\"duplicate\""));
    EXPECT_TRUE(isCopied());
}

TEST_F(ForksFileCopy, KeepsTheSourcesNameWhereNoneIsGiven)
{
    EXPECT_EQ(copyUnnamed(), noErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, askVolume, readFolder, copyCall("-")}));
    const Str31 name = {4, 'f', 'i', 'l', 'e'};
    EXPECT_NE(platform.files.findChild(platform.files.object("nested"), name), nullptr);
}

// A location without a name is the directory: so it is everywhere, and so it is here.
TEST_F(ForksFileCopy, ReferenceIsThatOfTheFolderWhereNoNameIsGiven)
{
    platform.nameAddress(&newRef, "caller's ref");
    EXPECT_EQ(copyUnnamed(&newRef), noErr);
    EXPECT_EQ(platform.calls().back(), referenceCall("-"));
    EXPECT_EQ(newRef, nested);
}

TEST_F(ForksFileCopy, LengthOfANameThatIsNotThereDoesNotCount)
{
    EXPECT_EQ(FSCopyFile(&file, &nested, 12, nullptr, 0xFFFF, nullptr), noErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, askVolume, readFolder, copyCall("-")}));
}

TEST_F(ForksFileCopy, EmptyNameIsANameAndIsForTheVolumeToRefuse)
{
    const UniChar unit = 'x';
    EXPECT_EQ(FSCopyFile(&file, &nested, 0, &unit, 0, &newRef), bdNamErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, askVolume, readFolder, copyCall("\"\"")}));
    EXPECT_EQ(newRef, untouchedRef);
}

TEST_F(ForksFileCopy, NameIsConvertedAsTheHintSays)
{
    platform.names.scriptAnswers = {{{3, 61}, {noErr, NamesDouble::shifted}}};
    EXPECT_EQ(copyNamed("name", nullptr, 0xFFFF), noErr);
    EXPECT_EQ(platform.calls().back(), copyCall("\"m`ld\""));
    EXPECT_EQ(copyNamed("other", nullptr, kTextEncodingMacRoman), noErr);
    EXPECT_EQ(platform.calls().back(), copyCall("\"other\""));
}

TEST_F(ForksFileCopy, LongestNameOfAFileFits)
{
    const std::string longest(31, 'n');
    EXPECT_EQ(copyNamed(longest), noErr);
    EXPECT_EQ(platform.calls().back(), copyCall('"' + longest + '"'));
}

TEST_F(ForksFileCopy, LongerNameIsRefusedBeforeTheVolumeIsAskedToCopy)
{
    EXPECT_EQ(copyNamed(std::string(32, 'n'), &newRef), static_cast<OSErr>(kTECOutputBufferFullStatus));
    EXPECT_EQ(platform.calls().back(), "DisposeUnicodeToTextInfo(converter 0x0)");
    EXPECT_FALSE(isCopied());
    EXPECT_EQ(newRef, untouchedRef);
}

TEST_F(ForksFileCopy, GoesToTheVolumeAndFolderOfTheDestination)
{
    platform.files.volumes.push_back({-32768, platform.files.volumes.front().info, &platform.files.object("nested")});
    infoOf("nested").volume = -32768;
    infoOf("nested").nodeID = 0x80001234;
    const SInt64 directory = static_cast<SInt32>(0x80001234);
    platform.nameAddress(&newRef, "caller's ref");
    EXPECT_EQ(copyUnnamed(&newRef), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{readSource, askVolume, readFolder, copyCall("-", -32768, directory), referenceCall("-", -32768, directory)}));
    EXPECT_EQ(newRef, nested);
}

// The source's volume makes the copy, so it is the source's volume that must be able to.
TEST_F(ForksFileCopy, OnlyTheSourcesVolumeNeedsTheService)
{
    VolumeObject other = platform.files.volumes.front();
    other.number = -101;
    other.parameters = {};
    platform.files.volumes.push_back(other);
    infoOf("nested").volume = -101;
    EXPECT_EQ(copyUnnamed(), noErr);
}

TEST_F(ForksFileCopy, VolumeWithoutTheServiceIsRefused)
{
    GetVolParmsInfoBuffer &parameters = platform.files.volumes.front().parameters;
    for (const SInt32 attributes : std::vector<SInt32>{0, ~copyFileService, 0x2000, 0x8000, 14})
    {
        std::memset(static_cast<void *>(&parameters), 0xFF, sizeof parameters);
        parameters.vMAttrib = attributes;
        platform.forgetCalls();
        EXPECT_EQ(copyNamed("duplicate", &newRef), paramErr) << attributes;
        EXPECT_EQ(platform.calls(), (Calls{readSource, askVolume}));
        EXPECT_FALSE(isCopied());
        EXPECT_EQ(newRef, untouchedRef);
    }
}

TEST_F(ForksFileCopy, OneAttributeIsEnough)
{
    for (const SInt32 attributes : {copyFileService, SInt32{-1}, static_cast<SInt32>(0x80004000)})
    {
        platform.files.volumes.front().parameters.vMAttrib = attributes;
        EXPECT_EQ(copyNamed("to " + decimal(attributes)), noErr);
    }
}

TEST_F(ForksFileCopy, VolumeThatDoesNotAnswerIsRefusedWithTheSameCode)
{
    for (const OSErr code : {ioErr, nsvErr, OSErr{1}})
    {
        platform.forgetCalls();
        platform.failCall(2, code);
        EXPECT_EQ(copyNamed("duplicate", &newRef), paramErr);
        EXPECT_EQ(platform.calls(), (Calls{readSource, askVolume}));
    }
    EXPECT_FALSE(isCopied());
    EXPECT_EQ(newRef, untouchedRef);
}

TEST_F(ForksFileCopy, AnswerThatComesWithAnErrorDoesNotCount)
{
    platform.files.volumes.front().parametersResult = paramErr;
    EXPECT_EQ(copyNamed("duplicate"), paramErr);
    EXPECT_FALSE(isCopied());
}

TEST_F(ForksFileCopy, EveryOtherFailureIsTheResultAndNothingFollows)
{
    const int ofSource = 1, ofFolder = 3, ofNewConverter = 4, ofConversion = 5, ofCopy = 7;
    for (const int nth : {ofSource, ofFolder, ofNewConverter, ofConversion, ofCopy})
    {
        SCOPED_TRACE(nth);
        platform.forgetCalls();
        platform.failCall(nth, -12345);
        EXPECT_EQ(copyNamed("duplicate", &newRef), -12345);
        EXPECT_EQ(platform.calls().back(), nth == ofConversion ? "DisposeUnicodeToTextInfo(converter 0x0)" : platform.failedCall());
        EXPECT_FALSE(isCopied());
        EXPECT_EQ(newRef, untouchedRef);
    }
}

TEST_F(ForksFileCopy, NameThatIsTakenIsTheVolumesError)
{
    EXPECT_EQ(copyNamed("inner", &newRef), dupFNErr);
    EXPECT_EQ(platform.calls().back(), copyCall("\"inner\""));
    EXPECT_EQ(newRef, untouchedRef);
}

TEST_F(ForksFileCopy, ReferenceThatCannotBeMadeIsNoError)
{
    platform.failEvery("PBMakeFSRefSync", fnfErr);
    EXPECT_EQ(copyNamed("duplicate", &newRef), noErr);
    EXPECT_TRUE(isCopied());
    EXPECT_EQ(newRef, untouchedRef);
    EXPECT_EQ(copyUnnamed(&newRef), noErr);
}

}   // namespace
