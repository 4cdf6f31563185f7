// One volume: its parameters, name and sizes, its file system, and the volume that an object lies on.

#include "tests/contract/rows.h"
#include "tests/contract/volumes_fixture.h"

#include <cstddef>
#include <ostream>

namespace
{

std::string askingForParameters(SInt64 volume, SInt64 size)
{
    return "PBHGetVolParmsSync(ioNamePtr=-, ioVRefNum=" + decimal(volume) + ", ioReqCount=" + decimal(size) +
           ", ioBuffer=caller's parameters)";
}

class VolumesParameters : public VolumesTest
{
protected:
    VolumesParameters()
    {
        UInt8 *bytes = reinterpret_cast<UInt8 *>(&volume().parameters);
        for (std::size_t index = 0; index < sizeof volume().parameters; ++index)
            bytes[index] = static_cast<UInt8>(index + 1);
    }

    OSErr ask(UInt32 size, FSVolumeRefNum number = -100)
    {
        return FSGetVolParms(number, size, &results.parameters, &results.parametersSize);
    }

    // The first so many bytes of the record, and as their number this one.
    void expectBytes(std::size_t count)
    {
        std::memcpy(static_cast<void *>(&expected.parameters), &volume().parameters, count);
        expected.parametersSize = static_cast<UInt32>(count);
        EXPECT_TRUE(results == expected) << count;
    }
};

TEST_F(VolumesParameters, FillTheCallersRecord)
{
    EXPECT_EQ(ask(32), noErr);
    EXPECT_EQ(platform.calls(), Calls{askingForParameters(-100, 32)});
    expectBytes(32);
}

TEST_F(VolumesParameters, SmallerBufferGetsThatManyBytesAndTheSmallerSize)
{
    for (const UInt32 size : {0u, 1u, 6u, 14u, 20u, 31u})
    {
        results = expected = {};
        platform.forgetCalls();
        EXPECT_EQ(ask(size), noErr);
        EXPECT_EQ(platform.calls(), Calls{askingForParameters(-100, size)});
        expectBytes(size);
    }
}

TEST_F(VolumesParameters, LargerBufferGetsNoMoreThanThereIs)
{
    EXPECT_EQ(ask(0x7FFFFFFF), noErr);
    expectBytes(32);
    EXPECT_EQ(ask(0xFFFFFFFF), noErr);
    expectBytes(32);
    EXPECT_EQ(platform.calls(), (Calls{askingForParameters(-100, 0x7FFFFFFF), askingForParameters(-100, -1)})) << "handed on as it is";
}

TEST_F(VolumesParameters, BothOutputsAreRequired)
{
    EXPECT_EQ(FSGetVolParms(-100, 32, nullptr, &results.parametersSize), paramErr);
    EXPECT_EQ(FSGetVolParms(-100, 32, &results.parameters, nullptr), paramErr);
    EXPECT_EQ(FSGetVolParms(-100, 32, nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_TRUE(results.untouched());
}

TEST_F(VolumesParameters, VolumeThatIsNotThereHasNone)
{
    EXPECT_EQ(ask(32, -32768), nsvErr);
    EXPECT_EQ(ask(32, 32767), nsvErr);
    EXPECT_EQ(platform.calls(), (Calls{askingForParameters(-32768, 32), askingForParameters(32767, 32)}));
    EXPECT_TRUE(results.untouched());
}

TEST_F(VolumesParameters, SizeIsToldOnlyWithSuccess)
{
    volume().parametersResult = someCode;
    EXPECT_EQ(ask(32), someCode);
    EXPECT_EQ(valueOf(results.parametersSize), valueOf(expected.parametersSize));
}

class VolumesOfObjects : public VolumesTest
{
protected:
    const FSRef file = platform.files.ref("file");
};

TEST_F(VolumesOfObjects, VolumeIsThatOfTheObjectAndNothingElseIsAsked)
{
    for (const FSVolumeRefNum number : {FSVolumeRefNum{-100}, FSVolumeRefNum{-32768}, FSVolumeRefNum{32767}, FSVolumeRefNum{0}})
    {
        platform.forgetCalls();
        platform.files.object("file").info.volume = number;
        EXPECT_EQ(FSGetVRefNum(&file, &results.number), noErr);
        EXPECT_EQ(platform.calls(), Calls{"FSGetCatalogInfo(ref:file, 0x4, info, -, -, -)"});
        expected.number = number;
        EXPECT_TRUE(results == expected) << number;
    }
}

TEST_F(VolumesOfObjects, PlaceForTheVolumeIsRequired)
{
    EXPECT_EQ(FSGetVRefNum(&file, nullptr), paramErr);
    EXPECT_EQ(FSGetVRefNum(nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(VolumesOfObjects, ObjectIsForThePlatformToJudge)
{
    const FSRef noObject = {{1}};
    EXPECT_EQ(FSGetVRefNum(&noObject, &results.number), errFSBadFSRef);
    EXPECT_EQ(FSGetVRefNum(nullptr, &results.number), errFSBadFSRef);
    EXPECT_EQ(platform.calls(), (Calls{"FSGetCatalogInfo(ref:?, 0x4, info, -, -, -)", "FSGetCatalogInfo(-, 0x4, info, -, -, -)"}));
    EXPECT_TRUE(results.untouched());
}

// Which outputs a caller gives, and what is asked for then.
struct VolumeAskingRow
{
    const char *name;
    bool withName, withFirst, withSecond;
    const char *line;
};

void PrintTo(const VolumeAskingRow &row, std::ostream *stream)
{
    *stream << row.name;
}

class VolumesAsking : public VolumesTest, public testing::WithParamInterface<VolumeAskingRow>
{
protected:
    OSErr ask(FSVolumeRefNum number = -100)
    {
        return FSGetVInfo(number, GetParam().withName ? &results.name : nullptr, GetParam().withFirst ? &results.freeBytes : nullptr,
                          GetParam().withSecond ? &results.totalBytes : nullptr);
    }
};

TEST_P(VolumesAsking, FillsWhatIsGivenAndAsksForNoMore)
{
    volume().info.freeBytes = 0xFEDCBA9876543210;
    volume().info.totalBytes = 0xFFFFFFFFFFFFFFFE;
    EXPECT_EQ(ask(), noErr);
    EXPECT_EQ(platform.calls(), Calls{GetParam().line});
    if (GetParam().withName)
        expected.name = unicodeName("root");
    if (GetParam().withFirst)
        expected.freeBytes = 0xFEDCBA9876543210;
    if (GetParam().withSecond)
        expected.totalBytes = 0xFFFFFFFFFFFFFFFE;
    EXPECT_TRUE(results == expected);
}

TEST_P(VolumesAsking, VolumeThatIsNotThereIsTheResultAndNothingIsWritten)
{
    for (const FSVolumeRefNum number : {FSVolumeRefNum{-101}, FSVolumeRefNum{0}, FSVolumeRefNum{-32768}, FSVolumeRefNum{1}})
        EXPECT_EQ(ask(number), nsvErr);
    EXPECT_TRUE(results.untouched());
}

const VolumeAskingRow volumeAskingRows[] = {
    {"Nothing", false, false, false, "FSGetVolumeInfo(-100, 0, -, 0x0, info, -, -)"},
    {"Name", true, false, false, "FSGetVolumeInfo(-100, 0, -, 0x0, info, caller's name, -)"},
    {"FreeBytes", false, true, false, "FSGetVolumeInfo(-100, 0, -, 0x40, info, -, -)"},
    {"TotalBytes", false, false, true, "FSGetVolumeInfo(-100, 0, -, 0x40, info, -, -)"},
    {"BothCounts", false, true, true, "FSGetVolumeInfo(-100, 0, -, 0x40, info, -, -)"},
    {"NameAndFreeBytes", true, true, false, "FSGetVolumeInfo(-100, 0, -, 0x40, info, caller's name, -)"},
    {"NameAndTotalBytes", true, false, true, "FSGetVolumeInfo(-100, 0, -, 0x40, info, caller's name, -)"},
    {"Everything", true, true, true, "FSGetVolumeInfo(-100, 0, -, 0x40, info, caller's name, -)"},
};

INSTANTIATE_TEST_SUITE_P(Rows, VolumesAsking, testing::ValuesIn(volumeAskingRows), rowName);

class VolumesFileSystems : public VolumesTest
{
protected:
    const std::string asking = "FSGetVolumeInfo(-100, 0, -, 0x4000, info, -, -)";
};

TEST_F(VolumesFileSystems, SameQuestionIsAskedWhateverIsWanted)
{
    volume().info.filesystemID = 0xFEDC;
    volume().info.signature = 0x482B;
    EXPECT_EQ(FSGetVolFileSystemID(-100, nullptr, nullptr), noErr);
    EXPECT_TRUE(results.untouched());
    EXPECT_EQ(FSGetVolFileSystemID(-100, nullptr, &results.signature), noErr);
    expected.signature = 0x482B;
    EXPECT_TRUE(results == expected);
    EXPECT_EQ(FSGetVolFileSystemID(-100, &results.fileSystemID, nullptr), noErr);
    expected.fileSystemID = 0xFEDC;
    EXPECT_TRUE(results == expected);
    EXPECT_EQ(platform.calls(), (Calls{asking, asking, asking}));
}

TEST_F(VolumesFileSystems, BothAreGivenAtOnce)
{
    EXPECT_EQ(FSGetVolFileSystemID(-100, &results.fileSystemID, &results.signature), noErr);
    expected.fileSystemID = volume().info.filesystemID;
    expected.signature = volume().info.signature;
    EXPECT_NE(valueOf(expected.fileSystemID), valueOf(expected.signature));
    EXPECT_TRUE(results == expected);
    EXPECT_EQ(platform.calls(), Calls{asking});
}

TEST_F(VolumesFileSystems, VolumeThatIsNotThereIsTheResult)
{
    EXPECT_EQ(FSGetVolFileSystemID(-101, &results.fileSystemID, &results.signature), nsvErr);
    EXPECT_EQ(FSGetVolFileSystemID(-101, nullptr, nullptr), nsvErr);
    EXPECT_TRUE(results.untouched());
}

}   // namespace
