// The double itself: its encodings, paths, forks, fixed blocks and copying volume.

#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

class DoubleNames : public testing::Test
{
protected:
    UnicodeToTextInfo newConverter(TextEncoding encoding)
    {
        const UnicodeMapping mapping = {CreateTextEncoding(0x0103, 2, 0), encoding, 4};
        UnicodeToTextInfo converter = nullptr;
        EXPECT_EQ(CreateUnicodeToTextInfo(&mapping, &converter), noErr);
        return converter;
    }

    PlatformDouble platform;
};

TEST_F(DoubleNames, ConvertersAreMadeForOneUnicodeAndTwoEncodings)
{
    const TextEncoding unicode = CreateTextEncoding(0x0103, 2, 0);
    EXPECT_EQ(unicode, 0x00020103u);
    UnicodeToTextInfo converter;
    for (const UnicodeMapping &mapping : {UnicodeMapping{unicode, 1, 4}, UnicodeMapping{unicode, 0, 3}, UnicodeMapping{0x0103, 0, 4}})
        EXPECT_EQ(CreateUnicodeToTextInfo(&mapping, &converter), kTextUnsupportedEncodingErr);
    EXPECT_TRUE(platform.names.openConverters.empty());
    for (const TextEncoding encoding : {TextEncoding{0}, NamesDouble::shifted})
    {
        converter = newConverter(encoding);
        EXPECT_EQ(platform.names.describe(converter, true), "converter " + hex(encoding));
        EXPECT_EQ(DisposeUnicodeToTextInfo(&converter), noErr);
    }
}

TEST_F(DoubleNames, ConverterServesOneDirectionUntilItIsDisposedOf)
{
    UnicodeToTextInfo converter = newConverter(0);
    TextToUnicodeInfo wrongWay = reinterpret_cast<TextToUnicodeInfo>(converter);
    EXPECT_EQ(DisposeTextToUnicodeInfo(&wrongWay), paramErr);
    EXPECT_EQ(DisposeUnicodeToTextInfo(&converter), noErr);
    EXPECT_EQ(DisposeUnicodeToTextInfo(&converter), paramErr);
    EXPECT_EQ(platform.calls().back(), "DisposeUnicodeToTextInfo(converter ?)");
}

TEST_F(DoubleNames, DisposalThatFailsStillDisposes)
{
    UnicodeToTextInfo converter = newConverter(0);
    platform.failCall(1, ioErr);
    EXPECT_EQ(DisposeUnicodeToTextInfo(&converter), ioErr);
    EXPECT_TRUE(platform.names.openConverters.empty());
}

TEST_F(DoubleNames, ConversionStopsWhereTheOutputIsFull)
{
    const UnicodeToTextInfo converter = newConverter(NamesDouble::shifted);
    const UniChar units[] = {'b', 'c', 'd'};
    UInt8 text[4] = {};
    ByteCount read = 0, written = 0;
    EXPECT_EQ(ConvertFromUnicodeToText(converter, 6, units, 0, 0, nullptr, nullptr, nullptr, 2, &read, &written, text),
              kTECOutputBufferFullStatus);
    EXPECT_EQ(read, 4u);
    EXPECT_EQ(written, 2u);
    EXPECT_EQ(std::memcmp(text, "ab\0", 4), 0);
}

TEST_F(DoubleNames, EveryObjectHasAPathThatLeadsToIt)
{
    for (const FileObject &each : platform.files.objects)
    {
        UInt8 path[64];
        FSRef ref = {};
        Boolean isFolder = 7;
        ASSERT_EQ(FSRefMakePath(&each.ref, path, sizeof path), noErr);
        ASSERT_EQ(FSPathMakeRef(path, &ref, &isFolder), noErr);
        EXPECT_EQ(platform.files.find(&ref), &each);
        EXPECT_EQ(isFolder, each.isFolder());
    }
}

using DoubleForks = DoubleNames;

TEST_F(DoubleForks, ReadsGoOnAtTheMarkAndTellTheEnd)
{
    platform.forks.open[3] = {"abcde", 1, {}};
    char buffer[8] = {};
    ByteCount count = 0;
    EXPECT_EQ(FSReadFork(3, fsAtMark, 0, 2, buffer, &count), noErr);
    EXPECT_EQ(std::string(buffer, count), "bc");
    EXPECT_EQ(FSReadFork(3, fsAtMark, 0, 2, buffer, &count), noErr);
    EXPECT_EQ(std::string(buffer, count), "de");
    EXPECT_EQ(FSReadFork(3, fsAtMark, 0, 2, buffer, &count), eofErr);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(FSReadFork(3, fsFromStart, 0, 2, buffer, &count), errFSBadPosMode);
}

TEST_F(DoubleForks, WritesGoOnAtTheMarkAndLengthenTheFork)
{
    platform.forks.open[3] = {"abcde", 4, {}};
    ByteCount count = 0;
    EXPECT_EQ(FSWriteFork(3, fsAtMark, 0, 2, "XY", &count), noErr);
    EXPECT_EQ(FSWriteFork(3, fsAtMark, 0, 0, "", nullptr), noErr);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(platform.forks.open[3].bytes, "abcdXY");
    EXPECT_EQ(FSWriteFork(4, fsAtMark, 0, 2, "XY", &count), rfNumErr);
}

TEST_F(DoubleForks, IteratorThatWasNeverStartedIsRefused)
{
    CatPositionRec iterator = {};
    iterator.initialize = 7;
    EXPECT_EQ(FSIterateForks(&platform.files.ref("file"), &iterator, nullptr, nullptr, nullptr), paramErr);
    iterator.initialize = 0;
    EXPECT_EQ(FSIterateForks(&platform.files.ref("file"), &iterator, nullptr, nullptr, nullptr), errFSNoMoreItems);
}

TEST_F(DoubleForks, BlocksAreGivenUpToTheLargest)
{
    platform.blocks.largestGiven = 4096;
    EXPECT_EQ(NewPtr(4097), nullptr);
    const Ptr block = NewPtr(4096);
    ASSERT_NE(block, nullptr);
    std::memset(block, 1, 4096);
    EXPECT_EQ(platform.blocks.given.size(), 1u);
}

TEST_F(DoubleForks, VolumeWritesNoMoreThanItWasAskedFor)
{
    platform.files.volumes.front().parameters.vMAttrib = -1;
    GetVolParmsInfoBuffer buffer;
    std::memset(static_cast<void *>(&buffer), 0x5A, sizeof buffer);
    HParamBlockRec block = {};
    block.ioParam.ioVRefNum = -100;
    block.ioParam.ioBuffer = reinterpret_cast<Ptr>(&buffer);
    block.ioParam.ioReqCount = 6;
    EXPECT_EQ(PBHGetVolParmsSync(&block), noErr);
    EXPECT_EQ(valueOf(block.ioParam.ioActCount), 6);
    EXPECT_EQ(valueOf(buffer.vMAttrib), -1);
    EXPECT_EQ(valueOf(buffer.vMServerAdr), 0x5A5A5A5A);
    block.ioParam.ioVRefNum = 0;
    EXPECT_EQ(PBHGetVolParmsSync(&block), nsvErr);
}

}   // namespace
