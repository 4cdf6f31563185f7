// Sizes, marks, sharing and permissions of open forks, and foreign sidecars under them.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr SInt64 farthest = std::numeric_limits<SInt64>::max();

Bytes pattern(std::size_t size, unsigned seed = 7)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * seed + i / 4096);
    return bytes;
}

SInt16 opened(const FSRef &ref, bool resource, SInt8 permission)
{
    SInt16 fork = 0;
    EXPECT_EQ(openFork(ref, resource, permission, fork), noErr);
    return fork;
}

class ForksBytes : public DiskTest
{
protected:
    FSRef fileRef(const std::string &name = "file", std::string_view text = "data")
    {
        writeFile(folder() / name, text);
        return refAt(folder() / name);
    }
};

TEST_P(ForksBytes, EverySizeComesBack)
{
    for (std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{285}, std::size_t{286}, std::size_t{70000}, std::size_t{1} << 20})
        for (bool resource : {false, true})
        {
            FSRef ref = fileRef("file" + std::to_string(size) + (resource ? "r" : "d"));
            ASSERT_EQ(writeFork(ref, resource, pattern(size)), noErr);
            EXPECT_EQ(forkOf(ref, resource), pattern(size)) << size;
            ASSERT_EQ(writeFork(ref, resource, pattern(size / 2, 3)), noErr);
            EXPECT_EQ(forkOf(ref, resource), pattern(size / 2, 3)) << size;
        }
}

TEST_P(ForksBytes, GrowingShowsZerosNeverWhatWasCutOff)
{
    for (bool resource : {false, true})
    {
        FSRef ref = fileRef(resource ? "r" : "d");
        ASSERT_EQ(writeFork(ref, resource, Bytes(9000, 0xEE)), noErr);
        SInt16 fork = opened(ref, resource, fsRdWrPerm);
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 10), noErr);
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 5000), noErr);
        EXPECT_EQ(writeAt(fork, 8000, {1}), noErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
        Bytes wanted(8001, 0);
        std::fill_n(wanted.begin(), 10, std::uint8_t{0xEE});
        wanted.back() = 1;
        EXPECT_EQ(forkOf(ref, resource), wanted);
    }
}

// Some writers leave room behind the fork, and what is in it is not always zeros.
TEST_P(ForksBytes, WhatLiesBehindAForkDoesNotBecomePartOfIt)
{
    for (bool bySizing : {false, true})
    {
        FSRef ref = fileRef(bySizing ? "sized" : "written");
        Bytes sidecar = plainSidecar(Bytes(10, 1));
        sidecar.resize(4096, 0xEE);
        writeFile(folder() / (bySizing ? "._sized" : "._written"), sidecar);
        SInt16 fork = opened(ref, true, fsRdWrPerm);
        EXPECT_EQ(bySizing ? FSSetForkSize(fork, fsFromStart, 101) : writeAt(fork, 100, {0}), noErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
        Bytes wanted(101, 0);
        std::fill_n(wanted.begin(), 10, std::uint8_t{1});
        EXPECT_EQ(forkOf(ref), wanted);
    }
}

TEST_P(ForksBytes, AnEntryWithoutBytesBehindTheForkIsKept)
{
    FSRef ref = fileRef();
    writeFile(folder() / "._file", sidecarOf({{9, 62, Bytes(32, 5)}, {2, 94, Bytes(1000, 1)}, {4, 1094, {}}}));
    SInt16 fork = opened(ref, true, fsRdWrPerm);
    ASSERT_EQ(sizeOf(fork), 1000);
    EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 10), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(ref), Bytes(10, 1));
    const Bytes sidecar = readFile(folder() / "._file");
    bool isThere = false;
    for (std::size_t i = 0; i < (big32(sidecar, 22) & 0xFFFF); ++i)
        isThere |= big32(sidecar, 26 + 12 * i) == 4;
    EXPECT_TRUE(isThere);
}

TEST_P(ForksBytes, PositionsBeforeTheStartAndBehindTheEnd)
{
    for (bool resource : {false, true})
    {
        FSRef ref = fileRef(resource ? "r" : "d");
        ASSERT_EQ(writeFork(ref, resource, pattern(100)), noErr);
        SInt16 fork = opened(ref, resource, fsRdWrPerm);
        std::uint8_t byte = 0;
        ByteCount got = 9;
        EXPECT_EQ(FSSetForkPosition(fork, fsFromStart, -1), posErr);
        EXPECT_EQ(FSSetForkPosition(fork, fsFromStart, 101), eofErr);
        EXPECT_EQ(FSSetForkPosition(fork, fsFromLEOF, 1), eofErr);
        EXPECT_EQ(FSSetForkPosition(fork, fsFromLEOF, -101), posErr);
        EXPECT_EQ(FSSetForkPosition(fork, fsFromLEOF, -1), noErr);
        EXPECT_EQ(FSReadFork(fork, fsAtMark, 55, 1, &byte, &got), noErr) << "at the mark the offset does not count";
        EXPECT_EQ(byte, pattern(100)[99]);
        EXPECT_EQ(FSReadFork(fork, fsFromStart, 5000, 1, &byte, &got), eofErr);
        EXPECT_EQ(got, 0u);
        EXPECT_EQ(FSReadFork(fork, fsFromMark, -2, 1, &byte, &got), noErr) << "the mark stayed at the end";
        EXPECT_EQ(byte, pattern(100)[98]);
        EXPECT_EQ(FSReadFork(fork, fsFromStart, farthest, 1, &byte, &got), eofErr);
        EXPECT_EQ(FSReadFork(fork, fsFromMark, farthest, 1, &byte, &got), posErr) << "no overflow";
        EXPECT_EQ(FSReadFork(fork, 4, 0, 1, &byte, &got), errFSBadPosMode);
        EXPECT_EQ(FSReadFork(fork, fsAtMark, 0, 1, nullptr, &got), errFSBadBuffer);
        EXPECT_EQ(FSWriteFork(fork, fsFromStart, farthest, 1, &byte, &got), dskFulErr);
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, -1), posErr);
        if (resource || disk().kind != DiskKind::ramfs)   // which sets no room aside
        {
            EXPECT_EQ(FSSetForkSize(fork, fsFromStart, farthest), dskFulErr);
        }
        EXPECT_EQ(sizeOf(fork), 100);
        EXPECT_EQ(FSSetForkPosition(fork, fsFromStart, 90), noErr);
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 50), noErr);
        EXPECT_EQ(FSReadFork(fork, fsFromMark, -1, 1, &byte, &got), noErr) << "a mark goes no further than the end";
        EXPECT_EQ(byte, pattern(100)[49]);
        EXPECT_EQ(FSCloseFork(fork), noErr);
        EXPECT_EQ(forkOf(ref, resource), pattern(50)) << resource;
    }
}

TEST_P(ForksBytes, OneWriterAndAnyNumberOfReaders)
{
    FSRef ref = fileRef();
    for (bool resource : {false, true})
    {
        SInt16 writer = opened(ref, resource, fsRdWrPerm), reader = opened(ref, resource, fsRdPerm), other = 0;
        EXPECT_EQ(openFork(ref, resource, fsRdWrPerm, other), opWrErr);
        EXPECT_EQ(openFork(ref, resource, fsWrPerm, other), opWrErr);
        ASSERT_EQ(openFork(ref, resource, fsCurPerm, other), noErr) << "what is allowed: reading";
        EXPECT_EQ(FSWriteFork(other, fsFromStart, 0, 1, "x", nullptr), permErr);
        EXPECT_EQ(FSSetForkSize(other, fsFromStart, 0), permErr);
        ASSERT_EQ(writeAt(writer, 0, bytesOf("both readers see this")), noErr);
        for (SInt16 fork : {reader, other})
        {
            char bytes[21] = {};
            EXPECT_EQ(FSReadFork(fork, fsFromStart, 0, 21, bytes, nullptr), noErr);
            EXPECT_EQ(std::string(bytes, 21), "both readers see this");
        }
        EXPECT_EQ(FSCloseFork(writer), noErr);
        ASSERT_EQ(openFork(ref, resource, fsWrPerm, writer), noErr);
        char byte = 0;
        EXPECT_EQ(FSReadFork(writer, fsFromStart, 0, 1, &byte, nullptr), permErr) << "opened for writing alone";
        for (SInt16 fork : {writer, reader, other})
            EXPECT_EQ(FSCloseFork(fork), noErr);
    }
}

TEST_P(ForksBytes, AReaderSeesEachChangeOfTheWriterAtOnce)
{
    FSRef ref = fileRef();
    SInt16 writer = opened(ref, true, fsRdWrPerm), reader = opened(ref, true, fsRdPerm);
    for (int round = 1; round <= 50; ++round)
    {
        EXPECT_EQ(sizeOf(reader), round - 1);
        std::uint8_t byte = 0;
        EXPECT_EQ(FSReadFork(reader, fsFromStart, round - 1, 1, &byte, nullptr), eofErr);
        ASSERT_EQ(writeAt(writer, round - 1, {static_cast<std::uint8_t>(round)}), noErr);
        EXPECT_EQ(FSReadFork(reader, fsFromStart, round - 1, 1, &byte, nullptr), noErr);
        EXPECT_EQ(byte, round);
        ASSERT_EQ(writeAt(writer, 0, {99}), noErr);
        EXPECT_EQ(FSReadFork(reader, fsFromStart, 0, 1, &byte, nullptr), noErr);
        EXPECT_EQ(byte, 99);
        if (round % 10 == 0)
        {   // the sidecar may be written anew for this
            FSCatalogInfo info{};
            info.backupDate = dateOfUnix(1000000000 + round);
            ASSERT_EQ(change(ref, kFSCatInfoBackupDate, info), noErr);
        }
    }
    EXPECT_EQ(FSCloseFork(writer), noErr);
    EXPECT_EQ(FSCloseFork(reader), noErr);
}

TEST_P(ForksBytes, LockedFilesAndReadOnlyDisks)
{
    FSRef ref = fileRef();
    ASSERT_EQ(writeFork(ref, true, pattern(100)), noErr);
    ASSERT_EQ(setLock(ref, true), noErr);
    for (bool resource : {false, true})
    {
        SInt16 fork = 0;
        EXPECT_EQ(openFork(ref, resource, fsRdWrPerm, fork), fLckdErr);
        EXPECT_EQ(openFork(ref, resource, fsWrPerm, fork), fLckdErr);
        ASSERT_EQ(openFork(ref, resource, fsCurPerm, fork), noErr);
        EXPECT_EQ(writeAt(fork, 0, {1}), permErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
    }
    ASSERT_EQ(setLock(ref, false), noErr);
    ReadOnlyView view(folder().path());
    if (!view.problem().empty())
        GTEST_SKIP() << view.problem();
    FSRef seen = refAt(view.path() + "/file");
    for (bool resource : {false, true})
    {
        SInt16 fork = 0;
        EXPECT_EQ(openFork(seen, resource, fsRdWrPerm, fork), wPrErr);
        ASSERT_EQ(openFork(seen, resource, fsCurPerm, fork), noErr);
        EXPECT_EQ(sizeOf(fork), resource ? 100 : 4);
        EXPECT_EQ(writeAt(fork, 0, {1}), permErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
    }
}

TEST_P(ForksBytes, AForeignSidecarKeepsWhatOnlyItsWriterKnows)
{
    Bytes sidecar = readFile(std::string(ZERB_TEST_DATA) + "/netatalk3-picture.adouble");
    FSRef ref = fileRef();
    writeFile(folder() / "._file", sidecar);
    SInt16 fork = opened(ref, true, fsRdWrPerm);
    ASSERT_EQ(sizeOf(fork), 44549);
    for (SInt64 position : {0, 1, 20000, 44548})
        ASSERT_EQ(writeAt(fork, position, {0x77}), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    for (std::size_t position : {0u, 1u, 20000u, 44548u})
        sidecar[82 + position] = 0x77;
    EXPECT_EQ(readFile(folder() / "._file"), sidecar);
}

ON_EVERY_DISK(ForksBytes);

const Role playsWithModes("opensForksOfFilesWithModes", [](const RoleArguments &arguments) {
    FSRef file = refAt(arguments[0]);
    for (bool resource : {false, true})
    {
        SInt16 fork = 0;
        EXPECT_EQ(openFork(file, resource, fsRdWrPerm, fork), afpAccessDenied);
        EXPECT_EQ(openFork(file, resource, fsCurPerm, fork), noErr);
        char bytes[4] = {};
        EXPECT_EQ(FSReadFork(fork, fsFromStart, 0, 4, bytes, nullptr), noErr);
        EXPECT_EQ(std::string(bytes, 4), resource ? "fork" : "data");
        EXPECT_EQ(FSWriteFork(fork, fsFromStart, 0, 1, "x", nullptr), permErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
    }
    FSRef hidden = refAt(arguments[1]);
    SInt16 fork = 0;
    EXPECT_EQ(openFork(hidden, false, fsRdPerm, fork), afpAccessDenied);
    EXPECT_EQ(openFork(hidden, false, fsCurPerm, fork), afpAccessDenied);
});

TEST(ForksOfOthers, ModesAreObeyed)
{
    if (!canBecomeOtherUsers())
        GTEST_SKIP() << "roles cannot be played as other users here";
    TemporaryFolder folder(DiskKind::tmpfs);
    if (!folder.disk().problem.empty())
        GTEST_SKIP() << folder.disk().problem;
    chmod(folder.path().c_str(), 0755);
    writeFile(folder / "file", "data");
    writeFile(folder / "hidden", "data");
    ASSERT_EQ(writeFork(refAt(folder / "file"), true, bytesOf("fork")), noErr);
    for (const char *name : {"file", "._file"})
        ASSERT_EQ(chmod((folder / name).c_str(), 0444), 0);
    ASSERT_EQ(chmod((folder / "hidden").c_str(), 0), 0);
    RoleSetting other;
    other.user = ordinaryUser;
    playRole("opensForksOfFilesWithModes", {folder / "file", folder / "hidden"}, other);
}

}   // namespace
