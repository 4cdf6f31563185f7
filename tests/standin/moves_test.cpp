// Moving and renaming: what comes along, what stays, and what it costs.
#include "tests/standin/test_volume.h"

#include <cstdio>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace support;

class Moves : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        mkdir((folder() / "one").c_str(), 0755);
        mkdir((folder() / "two").c_str(), 0755);
    }

    FSRef dressedFile(const std::string &name)
    {
        writeFile(folder() / name, "data");
        FSRef ref = refAt(folder() / name);
        EXPECT_EQ(setType(ref, code("TEXT"), code("ttxt"), 0x0400), noErr);
        EXPECT_EQ(writeFork(ref, true, bytesOf("fork")), noErr);
        return ref;
    }

    void expectDressedFile(const std::string &name)
    {
        FSRef ref = refAt(folder() / name);
        EXPECT_EQ(+fileInfo(infoOf(ref)).fileType, code("TEXT"));
        EXPECT_EQ(+fileInfo(infoOf(ref)).finderFlags, 0x0400);
        EXPECT_EQ(forkOf(ref), bytesOf("fork"));
        EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
    }
};

TEST_P(Moves, TakeForkTypeAndReferencesAlong)
{
    FSRef ref = dressedFile("one/file"), first = ref;
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    expectDressedFile("one/renamed");
    ASSERT_EQ(move(ref, refAt(folder() / "two")), noErr);
    expectDressedFile("two/renamed");
    for (const FSRef &each : {first, ref})
        EXPECT_EQ(pathOf(each), folder() / "two/renamed");
    EXPECT_TRUE(namesIn(folder() / "one").empty());
}

TEST_P(Moves, ATakenNameIsRefusedAndNeitherForkIsTouched)
{
    FSRef ref = dressedFile("one/file"), plain = refAt(folder() / "one");
    writeFile(folder() / "one/plain", "plain");
    writeFile(folder() / "two/file", "in the way");
    plain = refAt(folder() / "one/plain");
    std::string before = pictureOf(folder().path());
    EXPECT_EQ(rename(ref, "plain"), dupFNErr);
    EXPECT_EQ(rename(plain, "file"), dupFNErr);
    EXPECT_EQ(move(ref, refAt(folder() / "two")), dupFNErr);
    EXPECT_EQ(pictureOf(folder().path()), before);
    EXPECT_EQ(+infoOf(plain).rsrcLogicalSize, 0u);
}

// "é" as one character and as two is one name.
TEST_P(Moves, AnotherFormOfTheSameNameIsTaken)
{
    const std::string composed = "caf\xC3\xA9", decomposed = "cafe\xCC\x81";
    writeFile(folder() / decomposed, "there");
    writeFile(folder() / "file", "data");
    FSRef ref = refAt(folder() / "file");
    EXPECT_EQ(rename(ref, composed), dupFNErr);
    EXPECT_EQ(rename(ref, decomposed), dupFNErr);
    FSRef there = refAt(folder() / decomposed);
    EXPECT_EQ(rename(there, composed), noErr) << "of its own name any form is free";
}

TEST_P(Moves, AFolderCannotComeIntoItself)
{
    mkdir((folder() / "one/inner").c_str(), 0755);
    FSRef one = refAt(folder() / "one"), inner = refAt(folder() / "one/inner");
    EXPECT_EQ(move(one, inner), paramErr);
    EXPECT_EQ(move(one, one), paramErr);
    EXPECT_TRUE(exists(folder() / "one/inner"));
}

TEST_P(Moves, ToWhereItIsAlreadyIsNothing)
{
    FSRef ref = dressedFile("one/file");
    EXPECT_EQ(move(ref, refAt(folder() / "one")), noErr);
    EXPECT_EQ(rename(ref, "file"), noErr);
    expectDressedFile("one/file");
}

// An orphan that has the new sidecar's name is never adopted.
TEST_P(Moves, AnOrphanInTheWayIsMovedAside)
{
    writeFile(folder() / "one/file", "data");
    writeFile(folder() / "one/._new", plainSidecar(bytesOf("an orphan's fork")));
    FSRef ref = refAt(folder() / "one/file");
    ASSERT_EQ(rename(ref, "new"), noErr);
    EXPECT_EQ(+infoOf(ref).rsrcLogicalSize, 0u);
    EXPECT_TRUE(exists(folder() / "one/new.orphan.rsrc"));
}

// --- processes -------------------------------------------------------------------------------------------------------------------------------

constexpr int sharedFiles = 6, rounds = 60;

// Gives the files in turn one of two names each. The other process is doing the same: a name may be gone or taken.
[[noreturn]] void renameInTurns(const FSRef &parent, int offset)
{
    for (int round = 0; round < rounds; ++round)
        for (int i = 0; i < sharedFiles; ++i)
        {
            std::string name = "file" + std::to_string((i + offset) % sharedFiles);
            bool isOther = (round + offset) % 2 != 0;
            FSRef ref{};
            if (findChild(parent, units(name + (isOther ? "-other" : "")), ref) != noErr)
                continue;
            OSErr result = rename(ref, name + (isOther ? "" : "-other"));
            if (result != noErr && result != fnfErr && result != dupFNErr)
                _exit(static_cast<unsigned char>(-result));
        }
    _exit(0);
}

TEST_P(Moves, TwoProcessesInOneFolderLoseNoFork)
{
    for (int i = 0; i < sharedFiles; ++i)
        dressedFile("one/file" + std::to_string(i));
    FSRef parent = refAt(folder() / "one");
    pid_t processes[2];
    for (int which = 0; which < 2; ++which)
        if ((processes[which] = fork()) == 0)
            renameInTurns(parent, which);
    for (pid_t process : processes)
    {
        int status = 0;
        ASSERT_EQ(waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0) << "result " << -WEXITSTATUS(status);
    }
    EXPECT_EQ(infoOf(parent, kFSCatInfoValence).valence, static_cast<UInt32>(sharedFiles))
        << testing::PrintToString(namesIn(folder() / "one"));
    for (int i = 0; i < sharedFiles; ++i)
    {
        std::string name = "one/file" + std::to_string(i);
        expectDressedFile(exists(folder() / name) ? name : name + "-other");
    }
}

// --- costs -----------------------------------------------------------------------------------------------------------------------------------

class MoveCosts : public Moves
{
protected:
    static constexpr int fileCount = 100;

    template <typename Step>
    double callsFor(const char *what, Step step)
    {
        const std::uint64_t before = standin::systemCallCount();
        for (int i = 0; i < fileCount; ++i)
            EXPECT_EQ(step(i), noErr);
        const double each = static_cast<double>(standin::systemCallCount() - before) / fileCount;
        std::printf("[   cost   ] %-9s %-58s %6.2f\n", nameOfKind(GetParam()).c_str(), what, each);
        return each;
    }

    std::vector<FSRef> makeFiles()
    {
        std::vector<FSRef> refs;
        for (int i = 0; i < fileCount; ++i)
        {
            writeFile(folder() / ("one/file" + std::to_string(i)), "data");
            refs.push_back(refAt(folder() / ("one/file" + std::to_string(i))));
        }
        return refs;
    }
};

// Lock and unlock each folder, is it the same, has it a sidecar, has it a lock, has the new name a sidecar, and the step itself. Where there are no
// attributes nobody asks for them. The first change in a folder opens it once more.
TEST_P(MoveCosts, OfAFileWithoutMetadata)
{
    std::vector<FSRef> refs = makeFiles();
    FSRef two = refAt(folder() / "two");
    const double attributes = disk().hasAttributes ? 1 : 0, first = 0.1;
    const double identity =
        disk().hasBirthTimes && GetParam() != DiskKind::overlay ? 0 : 1;   // of the folder: its inode number alone does not tell
    EXPECT_LE(callsFor("renaming a file without metadata",
                       [&](int i) { return rename(refs[static_cast<std::size_t>(i)], "renamed" + std::to_string(i)); }),
              6 + attributes + first);
    EXPECT_LE(callsFor("moving a file without metadata", [&](int i) { return move(refs[static_cast<std::size_t>(i)], two); }),
              8 + attributes + identity + first);
}

ON_EVERY_DISK(Moves);
ON_EVERY_DISK(MoveCosts);

}   // namespace
