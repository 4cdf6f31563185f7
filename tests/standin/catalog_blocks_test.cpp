// PBGetCatInfoSync: the catalog by volume, directory ID and index.
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <set>
#include <sys/stat.h>

namespace
{

using namespace support;

struct Answer
{
    OSErr result = 1;
    std::string name;
    DirInfo block{};
};

// Asks with a name of this text; what the buffer holds afterwards is in the answer.
Answer ask(SInt16 volume, SInt32 directory, SInt16 index, const std::string &name = "")
{
    Answer answer;
    CInfoPBRec record{};
    Str255 buffer{};
    buffer[0] = static_cast<unsigned char>(name.size());
    std::copy(name.begin(), name.end(), buffer + 1);
    record.dirInfo.ioNamePtr = buffer;
    record.dirInfo.ioVRefNum = volume;
    record.dirInfo.ioFDirIndex = index;
    record.dirInfo.ioDrDirID = directory;
    answer.result = PBGetCatInfoSync(&record);
    EXPECT_EQ(record.dirInfo.ioResult, answer.result);
    answer.block = record.dirInfo;
    answer.name.assign(reinterpret_cast<const char *>(buffer) + 1, buffer[0]);
    return answer;
}

SInt32 idOf(const FSRef &ref)
{
    return static_cast<SInt32>(nodeOf(ref));
}

class CatalogBlocks : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        mkdir((folder() / "inner").c_str(), 0755);
        writeFile(folder() / "inner/file", "some text");
        mkdir((folder() / "inner/below").c_str(), 0755);
        inner_ = refAt(folder() / "inner");
        volume_ = infoOf(inner_).volume;
    }
    FSRef inner_{};
    SInt16 volume_ = 0;
};

TEST_P(CatalogBlocks, ADirectoryTellsOfItself)
{
    const Answer answer = ask(volume_, idOf(inner_), -1, "name that is passed over");
    ASSERT_EQ(answer.result, noErr);
    EXPECT_EQ(answer.name, "inner");
    EXPECT_EQ(answer.block.ioDrDirID, idOf(inner_));
    EXPECT_EQ(answer.block.ioDrParID, idOf(parentOf(inner_)));
    EXPECT_EQ(answer.block.ioFlAttrib, 0x10);
    EXPECT_EQ(answer.block.ioDrNmFls, 2);
}

TEST_P(CatalogBlocks, TheWayUpEndsAtTheRoot)
{
    SInt32 directory = idOf(inner_);
    int steps = 0;
    for (; directory != fsRtDirID && steps < 100; ++steps)
    {
        const Answer answer = ask(volume_, directory, -1);
        ASSERT_EQ(answer.result, noErr);
        directory = answer.block.ioDrParID;
    }
    EXPECT_GT(steps, 0);
    const Answer root = ask(volume_, fsRtDirID, -1);
    ASSERT_EQ(root.result, noErr);
    EXPECT_EQ(root.block.ioDrDirID, fsRtDirID);
    EXPECT_EQ(root.block.ioDrParID, fsRtParID);
    EXPECT_FALSE(root.name.empty());
}

TEST_P(CatalogBlocks, ANameInADirectoryIsFound)
{
    const Answer file = ask(volume_, idOf(inner_), 0, "file");
    ASSERT_EQ(file.result, noErr);
    EXPECT_EQ(file.block.ioDrDirID, idOf(refAt(folder() / "inner/file")));
    EXPECT_EQ(file.block.ioDrParID, idOf(inner_));
    EXPECT_EQ(file.block.ioFlAttrib, 0);
    const Answer below = ask(volume_, idOf(inner_), 0, "below");
    EXPECT_EQ(below.block.ioFlAttrib, 0x10);
    EXPECT_EQ(ask(volume_, idOf(inner_), 0).block.ioDrDirID, idOf(inner_)) << "without a name the directory is meant";
}

TEST_P(CatalogBlocks, IndexesShowEveryObjectOnce)
{
    std::set<std::string> names;
    for (SInt16 index = 1; index <= 2; ++index)
        names.insert(ask(volume_, idOf(inner_), index).name);
    EXPECT_EQ(names, (std::set<std::string>{"below", "file"}));
    EXPECT_EQ(ask(volume_, idOf(inner_), 3).result, fnfErr);
    EXPECT_EQ(ask(volume_, idOf(inner_), 32767).result, fnfErr);
}

TEST_P(CatalogBlocks, FinderInformationLockAndDatesAreThere)
{
    FSRef file = refAt(folder() / "inner/file");
    ASSERT_EQ(setType(file, code("TEXT"), code("ttxt"), 0x0400), noErr);
    FSCatalogInfo dates{};
    dates.contentModDate = dateOfUnix(981173106);
    ASSERT_EQ(change(file, kFSCatInfoContentMod, dates), noErr);
    ASSERT_EQ(setLock(file, true), noErr);
    const Answer answer = ask(volume_, idOf(inner_), 0, "file");
    FileInfo info;
    std::memcpy(&info, &answer.block.ioDrUsrWds, sizeof info);
    EXPECT_EQ(info.fileType, code("TEXT"));
    EXPECT_EQ(info.fileCreator, code("ttxt"));
    EXPECT_EQ(info.finderFlags, 0x0400);
    EXPECT_EQ(answer.block.ioFlAttrib, 0x01);
    const std::time_t seconds = 981173106;
    std::tm local{};
    localtime_r(&seconds, &local);
    EXPECT_EQ(answer.block.ioDrMdDat, static_cast<UInt32>(seconds + 2082844800 + local.tm_gmtoff));
    EXPECT_EQ(answer.block.ioDrBkDat, 0u);
    ASSERT_EQ(setLock(file, false), noErr);
}

TEST_P(CatalogBlocks, DatesBeyondTheRecordAreItsLast)
{
    FSCatalogInfo dates{};
    dates.contentModDate = dateOfUnix(2400000000);   // in 2046; disks with seconds of 32 bits keep less
    if (change(inner_, kFSCatInfoContentMod, dates) != noErr || secondsOf(infoOf(inner_).contentModDate) <= 0xFFFFFFFFu)
        GTEST_SKIP() << "this disk has no dates after 2040";
    EXPECT_EQ(ask(volume_, idOf(inner_), -1).block.ioDrMdDat, 0xFFFFFFFFu);
}

TEST_P(CatalogBlocks, NamesAreThoseOfAnFSSpec)
{
    const std::string longName = "a name with more than thirty-one bytes";
    mkdir((folder() / longName).c_str(), 0755);
    mkdir((folder() / "R\u00E9sum\u00E9:1").c_str(), 0755);
    for (const std::string &name : {longName, std::string("R\u00E9sum\u00E9:1")})
    {
        const FSRef ref = refAt(folder() / name);
        const FSSpec spec = specOf(ref);
        EXPECT_EQ(ask(volume_, idOf(ref), -1).name, std::string(reinterpret_cast<const char *>(spec.name) + 1, spec.name[0]));
    }
    EXPECT_EQ(ask(volume_, idOf(refAt(folder() / "R\u00E9sum\u00E9:1")), -1).name, "R\x8Esum\x8E/1") << "':' on the disk is '/' in a name";
}

TEST_P(CatalogBlocks, WhatIsNotThereHasTheCodeThatSaysSo)
{
    EXPECT_EQ(ask(12345, 2, -1).result, nsvErr);
    EXPECT_EQ(ask(volume_, 987654321, -1).result, dirNFErr);
    EXPECT_EQ(ask(volume_, fsRtParID, -1).result, dirNFErr);
    EXPECT_EQ(ask(volume_, idOf(inner_), 0, "missing").result, fnfErr);
    const SInt32 gone = idOf(inner_);
    removeTree(folder() / "inner");
    EXPECT_EQ(ask(volume_, gone, -1).result, dirNFErr);
    EXPECT_EQ(PBGetCatInfoSync(nullptr), paramErr);
}

TEST_P(CatalogBlocks, VolumeAndDirectoryZeroAreTheDefaultDirectory)
{
    ASSERT_EQ(HSetVol(nullptr, volume_, idOf(inner_)), noErr);
    const Answer answer = ask(0, 0, -1);
    FSVolumeRefNum startup = 0;
    EXPECT_EQ(FSGetVolumeInfo(0, 1, &startup, kFSVolInfoNone, nullptr, nullptr, nullptr), noErr);
    EXPECT_EQ(HSetVol(nullptr, startup, 0), noErr);
    EXPECT_EQ(answer.result, noErr);
    EXPECT_EQ(answer.block.ioDrDirID, idOf(inner_));
}

TEST_P(CatalogBlocks, ANameNeedNotBeAskedFor)
{
    CInfoPBRec record{};
    record.dirInfo.ioVRefNum = volume_;
    record.dirInfo.ioFDirIndex = -1;
    record.dirInfo.ioDrDirID = idOf(inner_);
    EXPECT_EQ(PBGetCatInfoSync(&record), noErr);
    EXPECT_EQ(record.dirInfo.ioDrParID, idOf(parentOf(inner_)));
}

ON_EVERY_DISK(CatalogBlocks);

}   // namespace
