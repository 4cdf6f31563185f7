// The record from which a volume is mounted again.

#include "tests/contract/volumes_fixture.h"

namespace
{

std::string askingForSize(SInt64 volume)
{
    return "PBGetVolMountInfoSize(ioNamePtr=-, ioVRefNum=" + decimal(volume) + ", ioBuffer=caller's size)";
}

std::string askingForRecord(SInt64 volume)
{
    return "PBGetVolMountInfo(ioNamePtr=-, ioVRefNum=" + decimal(volume) + ", ioBuffer=caller's record)";
}

class VolumesMounting : public VolumesTest
{
protected:
    const std::string &record() { return platform.mounting.records.at(-100); }
};

TEST_F(VolumesMounting, SizeIsFilledInByThePlatform)
{
    EXPECT_EQ(FSGetVolMountInfoSize(-100, &results.recordSize), noErr);
    EXPECT_EQ(platform.calls(), Calls{askingForSize(-100)});
    expected.recordSize = 10;
    EXPECT_TRUE(results == expected);
}

TEST_F(VolumesMounting, RecordIsFilledInByThePlatform)
{
    EXPECT_EQ(FSGetVolMountInfo(-100, results.record), noErr);
    EXPECT_EQ(platform.calls(), Calls{askingForRecord(-100)});
    std::memcpy(expected.record, record().data(), record().size());
    EXPECT_TRUE(results == expected) << "and not a byte more";
}

TEST_F(VolumesMounting, RecordMountsTheVolumeAndItsNumberIsTold)
{
    EXPECT_EQ(FSVolumeMount(record().data(), &results.number), noErr);
    EXPECT_EQ(platform.calls(), Calls{"PBVolumeMount(ioBuffer=record)"});
    expected.number = -32768;
    EXPECT_TRUE(results == expected);
    ASSERT_EQ(platform.files.volumes.size(), 2u);
    EXPECT_EQ(platform.files.volumes.back().number, -32768);
}

TEST_F(VolumesMounting, RecordThatWasSavedMountsTheVolumeAgain)
{
    EXPECT_EQ(FSGetVolMountInfo(-100, results.record), noErr);
    EXPECT_EQ(FSVolumeMount(results.record, &results.number), noErr);
    EXPECT_EQ(platform.calls().back(), "PBVolumeMount(ioBuffer=caller's record)");
    EXPECT_NE(platform.files.findVolume(results.number), nullptr);
}

TEST_F(VolumesMounting, EachOutputIsRequired)
{
    EXPECT_EQ(FSGetVolMountInfoSize(-100, nullptr), paramErr);
    EXPECT_EQ(FSGetVolMountInfo(-100, nullptr), paramErr);
    EXPECT_EQ(FSVolumeMount(record().data(), nullptr), paramErr);
    EXPECT_EQ(FSVolumeMount(nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_EQ(platform.files.volumes.size(), 1u);
}

// Unlike an output, the record is for the platform to judge.
TEST_F(VolumesMounting, RecordThatIsNotThereIsHandedOn)
{
    EXPECT_EQ(FSVolumeMount(nullptr, &results.number), paramErr);
    EXPECT_EQ(platform.calls(), Calls{"PBVolumeMount(ioBuffer=-)"});
    platform.failEvery("PBVolumeMount", someCode);
    EXPECT_EQ(FSVolumeMount(nullptr, &results.number), someCode);
    EXPECT_TRUE(results.untouched());
}

TEST_F(VolumesMounting, VolumeThatIsNotThereIsTheResult)
{
    EXPECT_EQ(FSGetVolMountInfoSize(-32768, &results.recordSize), nsvErr);
    EXPECT_EQ(FSGetVolMountInfo(32767, results.record), nsvErr);
    EXPECT_EQ(FSVolumeMount("no record", &results.number), nsvErr);
    EXPECT_EQ(platform.calls(), (Calls{askingForSize(-32768), askingForRecord(32767), "PBVolumeMount(ioBuffer=record)"}));
    EXPECT_TRUE(results.untouched());
}

}   // namespace
