// FSMoveRename: the volume's own service, and what is asked before and after it.

#include "tests/contract/moves_fixture.h"

namespace
{

const std::string readSource = "FSGetCatalogInfo(ref:file, 0x0, -, -, spec, -)";
const std::string readVolume = "PBHGetVolParmsSync(ioNamePtr=-, ioVRefNum=-100, ioReqCount=32, ioBuffer=buffer)";
const std::string readDirectory = "FSGetCatalogInfo(ref:nested, 0x14, info, -, -, -)";

std::string movingOnce(const std::string &newName)
{
    return "PBHMoveRenameSync(ioVRefNum=-100, ioDirID=17, ioNamePtr=\"file\", ioNewDirID=19, ioNewName=-, ioCopyName=" + newName + ")";
}

std::string lookingUp(const std::string &name)
{
    return "PBMakeFSRefSync(ioVRefNum=-100, ioDirID=19, ioNamePtr=" + name + ", newRef=new)";
}

class MovesInOneStep : public MovesTest
{
protected:
    MovesInOneStep() { parameters().vMAttrib = 1 << 13; }

    OSErr move(const UniChar *name, UniCharCount length, FSRef *output, TextEncoding hint = noHint)
    {
        return FSMoveRename(&file, &nested, length, name, hint, output);
    }

    // The calls that make a short name, and the name in quotes.
    Calls conversion(TextEncoding hint, std::string &newName)
    {
        Str31 shortName;
        platform.forgetCalls();
        EXPECT_EQ(UnicodeNameGetHFSName(6, letter, hint, false, shortName), noErr);
        newName = quoted(shortName);
        const Calls lines = platform.calls();
        platform.forgetCalls();
        return lines;
    }

    static constexpr UniChar letter[] = {'L', 'e', 't', 't', 'e', 'r'};
};

TEST_F(MovesInOneStep, TheNewNameIsConvertedAndTheNewFileLookedUp)
{
    for (const TextEncoding hint : {0xFFFFu, 0u, 7u})
    {
        SCOPED_TRACE(hint);
        platform.files = FilesDouble();
        parameters().vMAttrib = 1 << 13;
        std::string newName;
        Calls expected = conversion(hint, newName);
        expected.insert(expected.begin(), {readSource, readVolume, readDirectory});
        expected.insert(expected.end(), {movingOnce(newName), lookingUp(newName)});
        EXPECT_EQ(move(letter, 6, &newRef, hint), noErr);
        EXPECT_EQ(platform.calls(), expected);
        EXPECT_EQ('"' + platform.files.object("file").name + '"', newName);
        EXPECT_EQ(newRef, platform.files.ref("file"));
    }
}

TEST_F(MovesInOneStep, WithoutANameTheReferenceNamesTheDirectory)
{
    EXPECT_EQ(move(nullptr, 6, &newRef), noErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, readVolume, readDirectory, movingOnce("-"), lookingUp("-")}));
    EXPECT_EQ(placeOf("file"), "nested:file");
    EXPECT_EQ(newRef, nested);
}

TEST_F(MovesInOneStep, WithoutAnOutputNothingIsLookedUp)
{
    EXPECT_EQ(move(nullptr, 0, nullptr), noErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, readVolume, readDirectory, movingOnce("-")}));
}

TEST_F(MovesInOneStep, AnEmptyNameIsAName)
{
    EXPECT_EQ(move(letter, 0, &newRef), bdNamErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, readVolume, readDirectory, movingOnce("\"\"")}));
    EXPECT_EQ(placeOf("file"), "folder:file");
}

TEST_F(MovesInOneStep, TheVolumeHasToSayThatItCan)
{
    for (const auto &[attributes, expected] :
         {std::pair<UInt32, OSErr>{0x2000, noErr}, {0xFFFFFFFF, noErr}, {0, paramErr}, {0x4000, paramErr}, {0xFFFFDFFF, paramErr}})
    {
        SCOPED_TRACE(hex(attributes));
        platform.files = FilesDouble();
        platform.forgetCalls();
        parameters().vMAttrib = static_cast<SInt32>(attributes);
        EXPECT_EQ(move(nullptr, 0, nullptr), expected);
        EXPECT_EQ(platform.calls().size(), expected == noErr ? 4u : 2u);
    }
}

TEST_F(MovesInOneStep, WhatAVolumeSaysWhileItFailsDoesNotCount)
{
    platform.files.volumes.front().parametersResult = someCode;
    EXPECT_EQ(move(nullptr, 0, &newRef), paramErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, readVolume}));
}

TEST_F(MovesInOneStep, OtherVolumesAreRefused)
{
    infoOf("nested").volume = -101;
    EXPECT_EQ(move(letter, 6, &newRef), diffVolErr);
    EXPECT_EQ(platform.calls(), (Calls{readSource, readVolume, readDirectory}));
}

TEST_F(MovesInOneStep, TheNameOfTheVolumeAndTheIDsAreTheirOwn)
{
    for (const char *label : {"file", "folder", "nested"})
        infoOf(label).volume = -7;
    platform.files.volumes.front().number = -7;
    EXPECT_EQ(move(nullptr, 0, &newRef), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{readSource, "PBHGetVolParmsSync(ioNamePtr=-, ioVRefNum=-7, ioReqCount=32, ioBuffer=buffer)", readDirectory,
                     "PBHMoveRenameSync(ioVRefNum=-7, ioDirID=17, ioNamePtr=\"file\", ioNewDirID=19, ioNewName=-, ioCopyName=-)",
                     "PBMakeFSRefSync(ioVRefNum=-7, ioDirID=19, ioNamePtr=-, newRef=new)"}));
}

TEST_F(MovesInOneStep, EachCallFailingEndsItButTheLookUpThatFollows)
{
    for (void (Recorder::*fail)(int, OSStatus) : {&Recorder::failCall, &Recorder::failFromCall})
        for (int nth = 1;; ++nth)
        {
            platform.files = FilesDouble();
            parameters().vMAttrib = 1 << 13;
            platform.forgetCalls();
            const FSRef before = newRef;
            (platform.*fail)(nth, someCode);
            const OSErr result = move(letter, 6, &newRef, 0);
            if (!platform.failureReached())
            {
                EXPECT_EQ(result, noErr);
                EXPECT_GE(nth, 7);
                break;
            }
            const std::string &failed = platform.failedCall();
            SCOPED_TRACE(failed);
            if (failed.starts_with("Dispose"))
                continue;   // whether that counts is the conversion's own business
            EXPECT_EQ(result, failed == readVolume ? paramErr : failed == lookingUp("\"Letter\"") ? noErr : someCode);
            EXPECT_EQ(newRef, before);
            EXPECT_EQ(placeOf("file"), result == noErr ? "nested:Letter" : "folder:file");
        }
}

}   // namespace
