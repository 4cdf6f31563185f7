// A fork stays open while its file or its sidecar is renamed, replaced, written anew or deleted, here or by others: nothing that was
// written is lost, and no byte goes to a wrong file.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <csignal>
#include <cstdio>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

void moveByHand(const std::string &from, const std::string &to)
{
    EXPECT_EQ(::rename(from.c_str(), to.c_str()), 0);
}

// Longer than what is known of a sidecar is trusted.
void waitUntilItIsLookedAtAgain()
{
    usleep(40000);
}

const auto someDisks = testing::Values(DiskKind::tmpfs, DiskKind::ramfs, DiskKind::ext4);

class ForksBesideOthers : public DiskTest
{
protected:
    SInt16 openForkOf(const std::string &name, std::size_t size, bool resource = true)
    {
        SInt16 fork = 0;
        writeFile(folder() / name, "data");
        ref_ = refAt(folder() / name);
        EXPECT_EQ(openFork(ref_, resource, fsRdWrPerm, fork), noErr);
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, static_cast<SInt64>(size)), noErr);
        return fork;
    }

    // Has the sidecar written anew by hand, with bytes written by the fork between the copying and the renaming. True if that write was the
    // one call that does not look where the sidecar is.
    bool writeWhileItIsWrittenAnew(SInt16 fork, SInt64 position, const Bytes &bytes)
    {
        EXPECT_EQ(writeAt(fork, 0, {9}), noErr);
        EXPECT_EQ(writeAt(fork, 0, {9}), noErr);   // by now it is trusted
        writeFile(folder() / "anew", readFile(folder() / "._file"));
        std::uint64_t before = standin::systemCallCount();
        EXPECT_EQ(writeAt(fork, position, bytes), noErr);
        bool wasOneCall = standin::systemCallCount() - before == 1;
        moveByHand(folder() / "anew", folder() / "._file");
        return wasOneCall;
    }

    void expectBytes(SInt64 position, const Bytes &bytes)
    {
        Bytes fork = forkOf(ref_);
        ASSERT_GE(fork.size(), static_cast<std::size_t>(position) + bytes.size());
        EXPECT_EQ(Bytes(fork.begin() + position, fork.begin() + position + static_cast<std::ptrdiff_t>(bytes.size())), bytes);
    }

    FSRef ref_{};
};

TEST_P(ForksBesideOthers, WhatWasWrittenBesideARewriteIsCarriedOverWhenTheForkIsClosed)
{
    SInt16 fork = openForkOf("file", 1000);
    bool reached = false;
    for (int attempt = 0; attempt < 50 && !reached; ++attempt)
        reached = writeWhileItIsWrittenAnew(fork, 500, bytesOf("in doubt"));
    EXPECT_TRUE(reached);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    expectBytes(500, bytesOf("in doubt"));
}

TEST_P(ForksBesideOthers, AndWhenItIsWrittenOn)
{
    SInt16 fork = openForkOf("file", 1000);
    bool reached = false;
    for (int attempt = 0; attempt < 50 && !reached; ++attempt)
        reached = writeWhileItIsWrittenAnew(fork, 500, bytesOf("in doubt"));
    EXPECT_TRUE(reached);
    waitUntilItIsLookedAtAgain();
    EXPECT_EQ(writeAt(fork, 700, bytesOf("later")), noErr);
    expectBytes(500, bytesOf("in doubt"));
    expectBytes(700, bytesOf("later"));
    EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST_P(ForksBesideOthers, AndWhenItsSizeIsAskedFor)
{
    SInt16 fork = openForkOf("file", 1000);
    bool reached = false;
    for (int attempt = 0; attempt < 50 && !reached; ++attempt)
        reached = writeWhileItIsWrittenAnew(fork, 500, bytesOf("in doubt"));
    EXPECT_TRUE(reached);
    SInt64 size = 0;
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    EXPECT_EQ(size, 1000);
    expectBytes(500, bytesOf("in doubt"));
    EXPECT_EQ(FSCloseFork(fork), noErr);
}

const Role changesDates("changesTheDatesOfAFile", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    std::printf("begun\n");
    std::fflush(stdout);
    for (int round = 0; round < 60; ++round)
    {
        FSCatalogInfo info{};
        info.backupDate = dateOfUnix(1000000000 + round);
        EXPECT_EQ(change(ref, kFSCatInfoBackupDate, info), noErr);
        EXPECT_EQ(setLock(ref, true), noErr);
        EXPECT_EQ(setLock(ref, false), noErr);
        if (round % 2)
            EXPECT_EQ(::unlink((arguments[0] + "-link").c_str()), 0);
        else   // the sidecar is then copied before it is written
            EXPECT_EQ(::link(arguments[1].c_str(), (arguments[0] + "-link").c_str()), 0);
    }
});

class ForksBesideAProcess : public ForksBesideOthers
{
};

// The other process has the sidecar written anew all the time.
TEST_P(ForksBesideAProcess, NoWriteIsLostWhileAnotherProcessChangesMetadata)
{
    constexpr std::size_t size = 5000;
    SInt16 fork = openForkOf("file", size);
    Running other = startRole("changesTheDatesOfAFile", {folder() / "file", folder() / "._file"});
    other.waitForOutput();
    Bytes wanted(size);
    std::mt19937 random(5);
    for (int round = 0; round < 3000; ++round)
    {
        Bytes piece(1 + random() % 200, static_cast<std::uint8_t>(random()));
        std::size_t position = random() % (size - piece.size());
        OSErr result = writeAt(fork, static_cast<SInt64>(position), piece);
        ASSERT_TRUE(result == noErr || result == fBsyErr) << result;
        if (result == noErr)
            std::copy(piece.begin(), piece.end(), wanted.begin() + static_cast<std::ptrdiff_t>(position));
    }
    Ended ended = other.wait();
    EXPECT_EQ(ended.status, 0) << ended.output;
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(ref_), wanted);
    EXPECT_EQ(infoOf(ref_).backupDate, dateOfUnix(1000000059));
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, ForksBesideAProcess, someDisks, diskName);

TEST_P(ForksBesideOthers, ADeletedFilesForkTakesNoMore)
{
    SInt16 resource = openForkOf("file", 100), data = 0;
    ASSERT_EQ(openFork(ref_, false, fsRdWrPerm, data), noErr);
    ASSERT_EQ(writeAt(resource, 0, {1}), noErr);
    ASSERT_EQ(writeAt(resource, 0, {1}), noErr);
    ASSERT_EQ(FSDeleteObject(&ref_), noErr);
    writeFile(folder() / "file", "another");
    EXPECT_EQ(writeAt(resource, 0, {2}), fnfErr);
    EXPECT_EQ(FSSetForkSize(resource, fsFromStart, 5000), fnfErr);
    std::uint8_t byte = 0;
    EXPECT_EQ(FSReadFork(resource, fsFromStart, 0, 1, &byte, nullptr), fnfErr);
    EXPECT_EQ(writeAt(data, 0, bytesOf("gone")), noErr) << "to the file that has no name any more";
    EXPECT_EQ(FSCloseFork(resource), noErr);
    EXPECT_EQ(FSCloseFork(data), noErr);
    EXPECT_EQ(readFile(folder() / "file"), bytesOf("another"));
    EXPECT_FALSE(exists(folder() / "._file"));
}

// What most editors do when they save: a new file gets the name, and the sidecar is the new one's from then on.
TEST_P(ForksBesideOthers, AFileThatWasReplacedIsNotWrittenTo)
{
    SInt16 resource = openForkOf("file", 100), data = 0;
    ASSERT_EQ(openFork(ref_, false, fsRdWrPerm, data), noErr);
    ASSERT_EQ(writeAt(resource, 0, {1}), noErr);
    writeFile(folder() / "saved", "saved anew");
    moveByProgram(folder() / "saved", folder() / "file");
    waitUntilItIsLookedAtAgain();
    const Bytes sidecar = readFile(folder() / "._file");
    EXPECT_EQ(writeAt(resource, 0, {2}), fnfErr);
    EXPECT_EQ(writeAt(data, 0, bytesOf("to the old one")), noErr);
    EXPECT_EQ(FSCloseFork(resource), noErr);
    EXPECT_EQ(FSCloseFork(data), noErr);
    EXPECT_EQ(readFile(folder() / "file"), bytesOf("saved anew"));
    EXPECT_EQ(readFile(folder() / "._file"), sidecar);
}

// A new file that comes between makes no difference: the open fork keeps the old one's inode from being given away.
TEST_P(ForksBesideOthers, AFileThatWasMadeAnewIsAnother)
{
    SInt16 resource = openForkOf("file", 100);
    unlink((folder() / "file").c_str());
    writeFile(folder() / "file", "another");
    waitUntilItIsLookedAtAgain();
    EXPECT_EQ(writeAt(resource, 0, {2}), fnfErr);
    EXPECT_EQ(FSCloseFork(resource), noErr);
    EXPECT_EQ(forkOf(refAt(folder() / "file")), Bytes(100, 0));
}

TEST_P(ForksBesideOthers, AFileThatOthersRenamedIsFoundOrRefused)
{
    SInt16 resource = openForkOf("file", 100);
    moveByHand(folder() / "._file", folder() / "._renamed");
    moveByHand(folder() / "file", folder() / "renamed");
    writeFile(folder() / "file", "another");
    waitUntilItIsLookedAtAgain();
    OSErr result = writeAt(resource, 0, bytesOf("found"));
    EXPECT_EQ(FSCloseFork(resource), noErr);
    EXPECT_TRUE(result == noErr || (result == fnfErr && !disk().hasBirthTimes) || disk().kind == DiskKind::overlay) << result;
    FSRef renamed = refAt(folder() / "renamed");
    Bytes wanted(100, 0);
    if (result == noErr)
        std::copy_n("found", 5, wanted.begin());
    EXPECT_EQ(forkOf(renamed), wanted);
    EXPECT_FALSE(exists(folder() / "._file"));
}

TEST_P(ForksBesideOthers, WritingGoesOnWhereTheFileIsMovedTo)
{
    mkdir((folder() / "inner").c_str(), 0755);
    SInt16 fork = openForkOf("file", 300);
    FSRef inner = refAt(folder() / "inner"), root = refAt(folder().path());
    for (int round = 0; round < 30; ++round)
    {
        ASSERT_EQ(writeAt(fork, 10 * round, Bytes(10, static_cast<std::uint8_t>(round))), noErr);
        ASSERT_EQ(writeAt(fork, 10 * round, Bytes(10, static_cast<std::uint8_t>(round + 1))), noErr);
        ASSERT_EQ(round % 3 ? move(ref_, round % 2 ? inner : root) : rename(ref_, "name" + std::to_string(round)), noErr);
    }
    EXPECT_EQ(FSCloseFork(fork), noErr);
    Bytes bytes = forkOf(ref_);
    ASSERT_EQ(bytes.size(), 300u);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(bytes[i], i / 10 + 1) << i;
}

TEST_P(ForksBesideOthers, ASidecarThatIsTakenAwayIsNotBroughtBackByReading)
{
    SInt16 fork = openForkOf("file", 100);
    ASSERT_EQ(writeAt(fork, 0, {1}), noErr);
    ASSERT_EQ(writeAt(fork, 0, {1}), noErr);
    unlink((folder() / "._file").c_str());
    SInt64 size = -1;
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_FALSE(exists(folder() / "._file"));
}

ON_EVERY_DISK(ForksBesideOthers);

// --- two processes -----------------------------------------------------------------------------------------------------------------------

const Role appends("appendsToAForkOften", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    SInt16 fork = 0;
    EXPECT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    for (int round = 0; round < 100; ++round)
        EXPECT_EQ(FSWriteFork(fork, fsFromLEOF, 0, 10, "0123456789", nullptr), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
});

TEST(ForksOfTwoProcesses, TheEndIsNeverToldFromMemory)
{
    TemporaryFolder folder(DiskKind::tmpfs);
    if (!folder.disk().problem.empty())
        GTEST_SKIP() << folder.disk().problem;
    writeFile(folder / "file", "data");
    FSRef ref = refAt(folder / "file");
    ASSERT_EQ(writeFork(ref, true, {1}), noErr);
    SInt16 reader = 0;
    ASSERT_EQ(openFork(ref, true, fsRdPerm, reader), noErr);
    SInt64 size = 0;
    ASSERT_EQ(FSGetForkSize(reader, &size), noErr);
    playRole("appendsToAForkOften", {folder / "file"});
    char bytes[10] = {};
    EXPECT_EQ(FSReadFork(reader, fsFromStart, 991, 10, bytes, nullptr), noErr);
    EXPECT_EQ(std::string(bytes, 10), "0123456789");
    EXPECT_EQ(FSGetForkSize(reader, &size), noErr);
    EXPECT_EQ(size, 1001);
    EXPECT_EQ(FSCloseFork(reader), noErr);
}

// --- kills -------------------------------------------------------------------------------------------------------------------------------

constexpr int fileCount = 3;
constexpr int killCount = 10;

// Sizes forks and fills them, each with its own byte, until it is killed.
const Role writesForEver("writesForksForEver", [](const RoleArguments &arguments) {
    std::mt19937 random(static_cast<unsigned>(std::stoul(arguments[1])));
    std::printf("begun\n");
    std::fflush(stdout);
    for (;;)
    {
        const auto number = static_cast<unsigned>(random() % fileCount);
        const bool resource = random() % 2;
        SInt16 fork = 0;
        if (openFork(refAt(arguments[0] + "/file" + std::to_string(number)), resource, fsRdWrPerm, fork) != noErr)
            _exit(1);
        for (int step = 0; step < 4; ++step)
        {
            const auto size = static_cast<SInt64>(random() % 20000);
            OSErr sized = FSSetForkSize(fork, fsFromStart, size);
            OSErr written =
                writeAt(fork, static_cast<SInt64>(random() % 3000), Bytes(random() % 9000, static_cast<std::uint8_t>(number + 1)));
            if (sized != noErr || written != noErr)
                _exit(1);
        }
        if (FSCloseFork(fork) != noErr)
            _exit(1);
    }
});

class ForksAndKills : public DiskTest
{
protected:
    // Its own byte and zeros, nothing else; and its type.
    void expectWhole(int number)
    {
        FSRef ref = refAt(folder() / ("file" + std::to_string(number)));
        for (bool resource : {false, true})
            for (std::uint8_t byte : forkOf(ref, resource))
                ASSERT_TRUE(byte == 0 || byte == number + 1) << +byte << " in a fork of file " << number;
        EXPECT_EQ(typeOf(ref), code("KEEP"));
    }
};

TEST_P(ForksAndKills, LeaveEveryFileWhole)
{
    for (int number = 0; number < fileCount; ++number)
    {
        writeFile(folder() / ("file" + std::to_string(number)));
        ASSERT_EQ(setType(refAt(folder() / ("file" + std::to_string(number))), code("KEEP"), code("KEEP")), noErr);
    }
    std::mt19937 random(3);
    for (int kill = 0; kill < killCount && !HasFailure(); ++kill)
    {
        SCOPED_TRACE(testing::Message() << "kill " << kill);
        Running process = startRole("writesForksForEver", {folder().path(), std::to_string(random())});
        process.waitForOutput();
        usleep(static_cast<useconds_t>(random() % 15000));
        process.kill(SIGKILL);
        Ended ended = process.wait();
        EXPECT_EQ(ended.status, 128 + SIGKILL) << ended.output;
        for (int number = 0; number < fileCount; ++number)
            expectWhole(number);
        EXPECT_EQ(+infoOf(refAt(folder().path()), kFSCatInfoValence).valence, static_cast<UInt32>(fileCount));
    }
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, ForksAndKills, someDisks, diskName);

}   // namespace
