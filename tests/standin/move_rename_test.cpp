// Moving and renaming in one step, by parameter block.
#include "tests/standin/test_volume.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

struct PascalName
{
    explicit PascalName(const std::string &text)
    {
        bytes[0] = static_cast<UInt8>(text.size());
        std::copy(text.begin(), text.end(), bytes + 1);
    }
    Str255 bytes{};
};

class MoveRename : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        mkdir((folder() / "one").c_str(), 0755);
        mkdir((folder() / "two").c_str(), 0755);
        writeFile(folder() / "one/file", "data");
        file_ = refAt(folder() / "one/file");
        ASSERT_EQ(setType(file_, code("TEXT"), code("ttxt")), noErr);
        ASSERT_EQ(writeFork(file_, true, bytesOf("fork")), noErr);
    }

    // A block that moves `source` into a folder; names may be null.
    HParamBlockRec blockFor(const FSRef &source, const FSRef &target, PascalName *newName)
    {
        HParamBlockRec block{};
        spec_ = specOf(source);
        block.copyParam.ioVRefNum = spec_.vRefNum;
        block.copyParam.ioDirID = spec_.parID;
        block.copyParam.ioNamePtr = spec_.name;
        block.copyParam.ioNewDirID = static_cast<SInt32>(nodeOf(target));
        block.copyParam.ioCopyName = newName ? newName->bytes : nullptr;
        return block;
    }

    OSErr moveRename(const FSRef &source, const FSRef &target, PascalName *newName)
    {
        HParamBlockRec block = blockFor(source, target, newName);
        const OSErr result = PBHMoveRenameSync(&block);
        EXPECT_EQ(block.copyParam.ioResult, result);
        return result;
    }

    void expectFileAt(const std::string &name)
    {
        FSRef ref = refAt(folder() / name);
        EXPECT_EQ(typeOf(ref), code("TEXT"));
        EXPECT_EQ(forkOf(ref), bytesOf("fork"));
        EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
        EXPECT_EQ(pathOf(file_), folder() / name) << "the reference from before";
    }

    FSRef file_{};

private:
    FSSpec spec_{};
};

TEST_P(MoveRename, TakesForkTypeAndReferencesAlong)
{
    PascalName renamed("renamed");
    ASSERT_EQ(moveRename(file_, refAt(folder() / "two"), &renamed), noErr);
    expectFileAt("two/renamed");
    EXPECT_TRUE(namesIn(folder() / "one").empty());
}

TEST_P(MoveRename, WithoutANameOnlyMoves)
{
    ASSERT_EQ(moveRename(file_, refAt(folder() / "two"), nullptr), noErr);
    expectFileAt("two/file");
}

TEST_P(MoveRename, WithinTheFolderOnlyRenames)
{
    PascalName renamed("renamed");
    ASSERT_EQ(moveRename(file_, refAt(folder() / "one"), &renamed), noErr);
    expectFileAt("one/renamed");
}

// The folder may be given by its parent and its name, as the source is.
TEST_P(MoveRename, TakesTheFolderByItsName)
{
    PascalName renamed("renamed"), two("two"), nothing("nothing");
    HParamBlockRec block = blockFor(file_, refAt(folder().path()), &renamed);
    block.copyParam.ioNewName = nothing.bytes;
    EXPECT_EQ(PBHMoveRenameSync(&block), dirNFErr);
    block.copyParam.ioNewName = two.bytes;
    EXPECT_EQ(PBHMoveRenameSync(&block), noErr);
    expectFileAt("two/renamed");
}

TEST_P(MoveRename, MovesFoldersButNotIntoThemselves)
{
    FSRef one = refAt(folder() / "one"), two = refAt(folder() / "two");
    PascalName renamed("renamed");
    EXPECT_EQ(moveRename(one, one, &renamed), paramErr);
    ASSERT_EQ(moveRename(one, two, &renamed), noErr);
    expectFileAt("two/renamed/file");
    EXPECT_EQ(pathOf(one), folder() / "two/renamed");
}

TEST_P(MoveRename, RefusesWhatCannotBe)
{
    FSRef two = refAt(folder() / "two");
    PascalName taken("taken"), empty(""), colon("a:b"), nothing("nothing"), good("good");
    writeFile(folder() / "two/taken", "in the way");
    std::string before = pictureOf(folder().path());
    EXPECT_EQ(moveRename(file_, two, &taken), dupFNErr);
    EXPECT_EQ(moveRename(file_, two, &empty), bdNamErr);
    EXPECT_EQ(moveRename(file_, two, &colon), bdNamErr);
    EXPECT_EQ(moveRename(file_, refAt(folder() / "two/taken"), &good), dirNFErr) << "a file is no folder";
    HParamBlockRec block = blockFor(file_, two, &good);
    block.copyParam.ioNamePtr = nothing.bytes;
    EXPECT_EQ(PBHMoveRenameSync(&block), fnfErr);
    block.copyParam.ioVRefNum = -12345;
    EXPECT_EQ(PBHMoveRenameSync(&block), nsvErr);
    EXPECT_EQ(PBHMoveRenameSync(nullptr), paramErr);
    EXPECT_EQ(pictureOf(folder().path()), before);
}

TEST_P(MoveRename, RefusesWhatIsLocked)
{
    PascalName renamed("renamed");
    ASSERT_EQ(setLock(file_, true), noErr);
    EXPECT_EQ(moveRename(file_, refAt(folder() / "two"), &renamed), fLckdErr);
    ASSERT_EQ(setLock(file_, false), noErr);
    expectFileAt("one/file");
}

TEST_P(MoveRename, IsMissingWhereTheVolumeSaysSo)
{
    FSVolumeRefNum volume = 0;
    FSRef root{};
    PascalName renamed("renamed");
    ASSERT_EQ(standin::addDirectoryVolume("without", folder().path(), {.moveRenameOffered = false}, &volume), noErr);
    ASSERT_EQ(FSGetVolumeInfo(volume, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), noErr);
    FSRef file = childOf(childOf(root, "one"), "file");
    EXPECT_EQ(moveRename(file, childOf(root, "two"), &renamed), paramErr);
    EXPECT_EQ(standin::removeDirectoryVolume(volume), noErr);
    expectFileAt("one/file");
}

ON_EVERY_DISK(MoveRename);

}   // namespace
