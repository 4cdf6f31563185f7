// File IDs: found again after renames and moves, by other processes, and never in place of another file.
#include "tests/standin/file_id_calls.h"
#include "tests/standin/processes.h"

#include "standin/files/exchange_journal.h"
#include "standin/files/linux_calls.h"

#include <cstdio>
#include <fcntl.h>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class FileIDs : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        standin::useStateFolder(stateFolder());
        writeFile(folder() / "Letter", "Dear Sir");
    }
    void TearDown() override
    {
        standin::useStateFolder("");
        DiskTest::TearDown();
    }
    std::string stateFolder() const { return state_ / "deep/zerb"; }
    RoleSetting sameState() const { return {0, {"ZERB_STATE_FOLDER=" + stateFolder()}}; }
    std::string letter() { return folder() / "Letter"; }
    FSVolumeRefNum volume() { return infoOf(refAt(folder().path())).volume; }
    std::string pathOfID(UInt32 id) { return support::pathOfID(volume(), id); }

private:
    TemporaryFolder state_;
};

TEST_P(FileIDs, AreMadeOncePerFile)
{
    const NewFileID first = makeID(refAt(letter())), second = makeID(refAt(letter()));
    EXPECT_EQ(first.result, noErr);
    EXPECT_NE(first.id, 0u);
    EXPECT_EQ(second.result, fidExists);
    EXPECT_EQ(second.id, first.id);
    writeFile(folder() / "Another");
    const NewFileID other = makeID(refAt(folder() / "Another"));
    EXPECT_EQ(other.result, noErr);
    EXPECT_NE(other.id, first.id);
    EXPECT_EQ(pathOfID(first.id), letter());
    EXPECT_EQ(pathOfID(other.id), folder() / "Another");
}

TEST_P(FileIDs, GiveTheFolderAndTheName)
{
    mkdir((folder() / "In").c_str(), 0755);
    writeFile(folder() / "In/a name that is too long for a parameter block.text");
    const FSRef file = refAt(folder() / "In/a name that is too long for a parameter block.text");
    const FoundFileID found = resolveID(volume(), makeID(file).id);
    EXPECT_EQ(found.result, noErr);
    EXPECT_EQ(static_cast<UInt32>(found.directory), nodeOf(refAt(folder() / "In")));
    const FSSpec spec = specOf(file);
    EXPECT_EQ(found.name, std::string(reinterpret_cast<const char *>(spec.name) + 1, spec.name[0]));
    HParamBlockRec block{};
    block.fidParam.ioVRefNum = volume();
    block.fidParam.ioFileID = static_cast<SInt32>(makeID(file).id);
    EXPECT_EQ(PBResolveFileIDRefSync(&block), noErr) << "the name need not be asked for";
}

TEST_P(FileIDs, BelongToFiles)
{
    mkdir((folder() / "Folder").c_str(), 0755);
    EXPECT_EQ(makeID(refAt(folder() / "Folder")).result, notAFileErr);
    EXPECT_EQ(resolveID(volume(), 4711).result, fidNotFound) << "nothing is there yet";
    EXPECT_FALSE(exists(stateFolder())) << "and nothing is made by asking";
    const UInt32 id = makeID(refAt(letter())).id;
    EXPECT_EQ(resolveID(volume(), id + 1).result, fidNotFound);
    EXPECT_EQ(resolveID(volume(), 0).result, fidNotFound);
    EXPECT_EQ(resolveID(12345, id).result, nsvErr);
    EXPECT_EQ(PBCreateFileIDRefSync(nullptr), paramErr);
    EXPECT_EQ(PBResolveFileIDRefSync(nullptr), paramErr);
}

TEST_P(FileIDs, SurviveRenamesAndMovesMadeHere)
{
    FSRef ref = refAt(letter());
    const UInt32 id = makeID(ref).id;
    mkdir((folder() / "Archive").c_str(), 0755);
    ASSERT_EQ(rename(ref, "Letter 2"), noErr);
    EXPECT_EQ(pathOfID(id), folder() / "Letter 2");
    ASSERT_EQ(move(ref, refAt(folder() / "Archive")), noErr);
    EXPECT_EQ(pathOfID(id), folder() / "Archive/Letter 2");
    FSRef archive = refAt(folder() / "Archive");
    ASSERT_EQ(rename(archive, "Attic"), noErr);
    EXPECT_EQ(pathOfID(id), folder() / "Attic/Letter 2");
    EXPECT_EQ(makeID(refAt(folder() / "Attic/Letter 2")).id, id);
}

const Role findsByID("findsFileByID", [](const RoleArguments &arguments) {
    const FSVolumeRefNum volume = infoOf(refAt(arguments[0])).volume;
    EXPECT_EQ(pathOfID(volume, static_cast<UInt32>(std::stoul(arguments[1]))), arguments[2]);
});

const Role movesAround("movesFileWithID", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    EXPECT_EQ(rename(ref, "renamed by another"), noErr);
    EXPECT_EQ(move(ref, refAt(arguments[1])), noErr);
    FSRef folder = refAt(arguments[1]);
    EXPECT_EQ(rename(folder, "moved"), noErr);
});

TEST_P(FileIDs, AreGoodInEveryProcess)
{
    FSRef ref = refAt(letter());
    const std::string id = std::to_string(makeID(ref).id);
    playRole("findsFileByID", {folder().path(), id, letter()}, sameState());
    ASSERT_EQ(rename(ref, "Letter 2"), noErr);
    mkdir((folder() / "Archive").c_str(), 0755);
    ASSERT_EQ(move(ref, refAt(folder() / "Archive")), noErr);
    FSRef archive = refAt(folder() / "Archive");
    ASSERT_EQ(rename(archive, "Attic"), noErr);
    playRole("findsFileByID", {folder().path(), id, folder() / "Attic/Letter 2"}, sameState());
}

TEST_P(FileIDs, AreGoodAfterMovesOfAnotherProcess)
{
    mkdir((folder() / "Archive").c_str(), 0755);
    const UInt32 id = makeID(refAt(letter())).id;
    playRole("movesFileWithID", {letter(), folder() / "Archive"}, sameState());
    EXPECT_EQ(pathOfID(id), folder() / "moved/renamed by another");
}

TEST_P(FileIDs, SurviveARenameByOtherPrograms)
{
    const UInt32 id = makeID(refAt(letter())).id;
    moveByProgram(letter(), folder() / "Renamed");
    if (!findsWhatOthersRename(folder().path()))
        EXPECT_EQ(resolveID(volume(), id).result, fnfErr) << "not without births";
    else
    {
        EXPECT_EQ(pathOfID(id), folder() / "Renamed");
        playRole("findsFileByID", {folder().path(), std::to_string(id), folder() / "Renamed"}, sameState());
    }
}

TEST_P(FileIDs, RememberWhereTheFileWasFoundLast)
{
    if (!findsWhatOthersRename(folder().path()))
        GTEST_SKIP() << "a file that others rename is not found here";
    const UInt32 id = makeID(refAt(letter())).id;
    moveByProgram(letter(), folder() / "Renamed");
    ASSERT_EQ(pathOfID(id), folder() / "Renamed");
    writeFile(folder() / "new", "Dear Madam");
    moveByProgram(folder() / "new", folder() / "Renamed");
    EXPECT_EQ(pathOfID(id), folder() / "Renamed") << "by its new name, for the file is another one";
}

TEST_P(FileIDs, FollowTheNameWhenAnEditorSavesANewFile)
{
    const UInt32 id = makeID(refAt(letter())).id;
    for (int i = 0; i < 2; ++i)
    {
        writeFile(folder() / "Letter.new", "Dear Madam");
        moveByProgram(folder() / "Letter.new", letter());
        EXPECT_EQ(pathOfID(id), letter());
    }
    playRole("findsFileByID", {folder().path(), std::to_string(id), letter()}, sameState());
    const NewFileID again = makeID(refAt(letter()));
    EXPECT_EQ(again.result, fidExists);
    EXPECT_EQ(again.id, id);
    if (findsWhatOthersRename(folder().path()))
    {
        moveByProgram(letter(), folder() / "Renamed");
        EXPECT_EQ(pathOfID(id), folder() / "Renamed") << "the ID was asked for: from then on it goes by the new file";
    }
}

TEST_P(FileIDs, FollowTheNameWhenAnEditorKeepsTheOldFileBesideIt)
{
    const UInt32 id = makeID(refAt(letter())).id;
    moveByProgram(letter(), folder() / "Letter~");
    writeFile(letter(), "Dear Madam");
    EXPECT_EQ(pathOfID(id), letter());
}

TEST_P(FileIDs, NeverNameAFileOfAnotherName)
{
    const UInt32 id = makeID(refAt(letter())).id;
    ASSERT_EQ(unlink(letter().c_str()), 0);
    for (int i = 0; i < 20; ++i)
        writeFile(folder() / ("Other " + std::to_string(i)), "may get the inode number");
    EXPECT_EQ(resolveID(volume(), id).result, fnfErr);
    std::set<UInt32> ids{id};
    for (int i = 0; i < 20; ++i)
    {
        const NewFileID made = makeID(refAt(folder() / ("Other " + std::to_string(i))));
        EXPECT_EQ(made.result, noErr);
        EXPECT_TRUE(ids.insert(made.id).second) << "an ID is given once";
    }
    EXPECT_EQ(resolveID(volume(), id).result, fnfErr);
    mkdir(letter().c_str(), 0755);
    EXPECT_EQ(resolveID(volume(), id).result, fnfErr) << "a folder is no file";
}

TEST_P(FileIDs, OfTwoFilesThatSwapNamesStayWithTheFiles)
{
    if (!findsWhatOthersRename(folder().path()))
        GTEST_SKIP() << "files are known by their names alone here";
    writeFile(folder() / "Other");
    const UInt32 first = makeID(refAt(letter())).id, second = makeID(refAt(folder() / "Other")).id;
    moveByProgram(letter(), folder() / "aside");
    moveByProgram(folder() / "Other", letter());
    moveByProgram(folder() / "aside", folder() / "Other");
    EXPECT_EQ(pathOfID(first), folder() / "Other");
    EXPECT_EQ(pathOfID(second), letter());
}

TEST_P(FileIDs, StayWithThePlaceWhenFilesAreExchanged)
{
    if (!offersExchange(refAt(letter())))
        GTEST_SKIP() << "the volume exchanges no files";
    writeFile(folder() / "Other");
    const FSRef letterRef = refAt(letter()), otherRef = refAt(folder() / "Other");
    const UInt32 id = makeID(letterRef).id;
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_EQ(FSExchangeObjects(&letterRef, &otherRef), noErr);
        EXPECT_EQ(pathOfID(id), letter());
        playRole("findsFileByID", {folder().path(), std::to_string(id), letter()}, sameState());
    }
    EXPECT_EQ(makeID(letterRef).id, id);
    EXPECT_EQ(makeID(otherRef).result, noErr);
}

// As a process leaves a file that is killed in the middle of FSExchangeObjects: it has arrived, and its journal is still there.
void leaveJournal(const std::string &folder, const std::string &from, const std::string &to)
{
    standin::ExchangeJournal journal;
    journal.file = statxOf(folder + "/" + to).stx_ino;
    journal.partner = statxOf(folder + "/" + from).stx_ino;
    journal.from = {statxOf(folder).stx_ino, 0, from};
    journal.to = {statxOf(folder).stx_ino, 0, to};
    setAttribute(folder + "/" + to, standin::journalAttributeName, standin::buildJournal(journal));
}

TEST_P(FileIDs, StayWithThePlaceWhenAnExchangeWasCutOff)
{
    if (!disk().hasAttributes || !offersExchange(refAt(letter())))
        GTEST_SKIP() << "the volume exchanges no files by itself";
    writeFile(folder() / "Other");
    const UInt32 first = makeID(refAt(letter())).id, second = makeID(refAt(folder() / "Other")).id;
    for (const bool isFinishedBefore : {false, true})
    {
        moveByProgram(letter(), folder() / "aside");
        moveByProgram(folder() / "Other", letter());
        moveByProgram(folder() / "aside", folder() / "Other");
        leaveJournal(folder().path(), "Letter", "Other");
        leaveJournal(folder().path(), "Other", "Letter");
        if (isFinishedBefore)
        {
            ASSERT_EQ(setType(refAt(folder() / "Other"), code("TEXT"), code("ttxt")), noErr);
        }
        EXPECT_EQ(pathOfID(second), folder() / "Other");
        EXPECT_EQ(pathOfID(first), letter());
        playRole("findsFileByID", {folder().path(), std::to_string(first), letter()}, sameState());
        EXPECT_EQ(makeID(refAt(folder() / "Other")).id, second);
        EXPECT_EQ(makeID(refAt(letter())).id, first);
    }
}

TEST_P(FileIDs, OfTheSameFileBelongToItsVolume)
{
    FSVolumeRefNum directory = 0;
    const UInt32 id = makeID(refAt(letter())).id;
    ASSERT_EQ(standin::addDirectoryVolume("IDs", folder().path(), {}, &directory), noErr);
    EXPECT_EQ(resolveID(directory, id).result, fidNotFound);
    FSRef root{};
    ASSERT_EQ(FSGetVolumeInfo(directory, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), noErr);
    const NewFileID own = makeID(childOf(root, "Letter"));
    EXPECT_EQ(own.result, noErr);
    EXPECT_EQ(resolveID(directory, own.id).directory, 2);
    ASSERT_EQ(standin::removeDirectoryVolume(directory), noErr);
    ASSERT_EQ(standin::addDirectoryVolume("Renamed", folder().path(), {}, &directory), noErr);
    EXPECT_EQ(resolveID(directory, own.id).name, "Letter") << "a volume is known by its root, not by its name or number";
    ASSERT_EQ(standin::removeDirectoryVolume(directory), noErr);
}

TEST_P(FileIDs, NeedNoRightToChangeTheVolume)
{
    FSVolumeRefNum directory = 0;
    ASSERT_EQ(standin::addDirectoryVolume("locked", folder().path(), {true, true, true, true}, &directory), noErr);
    FSRef root{};
    ASSERT_EQ(FSGetVolumeInfo(directory, 0, nullptr, kFSVolInfoNone, nullptr, nullptr, &root), noErr);
    const std::string before = pictureOf(folder().path());
    const NewFileID made = makeID(childOf(root, "Letter"));
    EXPECT_EQ(made.result, noErr);
    EXPECT_EQ(resolveID(directory, made.id).name, "Letter");
    EXPECT_EQ(pictureOf(folder().path()), before) << "nothing is written to the file";
    ASSERT_EQ(standin::removeDirectoryVolume(directory), noErr);
}

int lockedFolder = -1;
std::string locksSeen;   // while a call that only giving an ID makes went on

int tryTheLock(const char *call)
{
    if (std::string_view(call) != "diskStatistics")
        return 0;
    const bool isFree = ::flock(lockedFolder, LOCK_EX | LOCK_NB) == 0;
    locksSeen += isFree ? "free " : "held ";
    if (isFree)
        ::flock(lockedFolder, LOCK_UN);
    return 0;
}

// An exchange looks for IDs with the folder locked, and keeps no journal for their sake where there are none: none may come in between.
TEST_P(FileIDs, AreGivenWithTheFolderLocked)
{
    const FSRef letterRef = refAt(letter());
    lockedFolder = ::open(folder().path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(lockedFolder, 0);
    locksSeen.clear();
    standin::linux_calls::setCallFilter(tryTheLock);
    const NewFileID made = makeID(letterRef);
    standin::linux_calls::setCallFilter(nullptr);
    ::close(lockedFolder);
    EXPECT_EQ(made.result, noErr);
    EXPECT_EQ(locksSeen, "held ");
}

ON_EVERY_DISK(FileIDs);

}   // namespace
