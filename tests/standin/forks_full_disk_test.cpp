// Forks on a disk that has no room for them.
#include "tests/standin/test_volume.h"

#include <sys/statvfs.h>

namespace
{

using namespace support;

std::uint64_t freeBytes(const std::string &path)
{
    struct statvfs room
    {
    };
    EXPECT_EQ(statvfs(path.c_str(), &room), 0);
    return static_cast<std::uint64_t>(room.f_bfree) * room.f_frsize;
}

class ForksOnFullDisks : public DiskTest
{
protected:
    SInt16 openForkOf(const std::string &name, bool resource)
    {
        SInt16 fork = 0;
        writeFile(folder() / name);
        FSRef ref = refAt(folder() / name);
        EXPECT_EQ(writeFork(ref, resource, Bytes(3000, 7)), noErr);
        EXPECT_EQ(openFork(ref, resource, fsRdWrPerm, fork), noErr);
        return fork;
    }
    // More than there is, but not more than a resource fork may have.
    SInt64 tooMuch() { return static_cast<SInt64>(freeBytes(folder().path()) + (1 << 20)); }
};

TEST_P(ForksOnFullDisks, SizingIsRefusedAtOnceAndTheOldSizeStays)
{
    for (bool resource : {false, true})
    {
        std::string name = resource ? "resource" : "data";
        SInt16 fork = openForkOf(name, resource);
        if (tooMuch() > 0xFFFEFFFF)
            GTEST_SKIP() << "the disk is too large";
        std::uint64_t room = freeBytes(folder().path());
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, tooMuch()), dskFulErr);
        SInt64 size = 0;
        EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
        EXPECT_EQ(size, 3000);
        EXPECT_GE(freeBytes(folder().path()) + (1 << 20), room) << "nothing of the room stays taken";
        EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 4000), noErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
        Bytes wanted(4000, 0);
        std::fill_n(wanted.begin(), 3000, std::uint8_t{7});
        EXPECT_EQ(forkOf(refAt(folder() / name), resource), wanted);
    }
}

// What was sized is there to be written: the room was set aside.
TEST_P(ForksOnFullDisks, WhatWasSizedCanBeWrittenThoughTheDiskFillsUp)
{
    for (bool resource : {false, true})
    {
        std::string name = resource ? "resource" : "data";
        SInt16 fork = openForkOf(name, resource), ballast = openForkOf("ballast", false);
        const Bytes bytes(2 << 20, 9);
        ASSERT_EQ(FSSetForkSize(fork, fsFromStart, 2 << 20), noErr);
        for (SInt64 piece = 8 << 20; piece >= 4096;)
            if (FSSetForkSize(ballast, fsFromLEOF, piece) != noErr)
                piece /= 2;
        EXPECT_EQ(FSWriteFork(fork, fsFromStart, 0, 2 << 20, bytes.data(), nullptr), noErr);
        EXPECT_EQ(FSWriteFork(fork, fsFromLEOF, 0, 2 << 20, bytes.data(), nullptr), dskFulErr);
        EXPECT_EQ(FSSetForkSize(ballast, fsFromStart, 0), noErr);
        EXPECT_EQ(FSCloseFork(ballast), noErr);
        EXPECT_EQ(FSCloseFork(fork), noErr);
        Bytes held = forkOf(refAt(folder() / name), resource);
        ASSERT_GE(held.size(), bytes.size());
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), held.begin()));
        ASSERT_EQ(writeFork(refAt(folder() / name), resource, {}), noErr);
    }
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, ForksOnFullDisks, testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::xfs), diskName);

}   // namespace
