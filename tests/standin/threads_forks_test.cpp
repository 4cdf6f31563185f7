// Several threads with forks of the same files.
#include "tests/standin/test_volume.h"

#include <atomic>
#include <sys/stat.h>
#include <thread>

namespace
{

using namespace support;

constexpr int rounds = 300;
constexpr std::size_t forkSize = 4000;

class ThreadsOnForks : public DiskTest
{
protected:
    FSRef fileRef(const std::string &name)
    {
        writeFile(folder() / name, "data");
        return refAt(folder() / name);
    }
};

// Every round all of it has another byte.
void writeOften(SInt16 fork, std::atomic<int> &failures)
{
    for (int round = 1; round <= rounds; ++round)
        if (writeAt(fork, 0, Bytes(forkSize, static_cast<std::uint8_t>(round))) != noErr)
            ++failures;
}

TEST_P(ThreadsOnForks, OneWritesWhileAnotherChangesTheMetadata)
{
    FSRef ref = fileRef("file");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    ASSERT_EQ(FSSetForkSize(fork, fsFromStart, forkSize), noErr);
    std::atomic<int> failures = 0;
    std::thread writer([&] { writeOften(fork, failures); });
    for (int round = 0; round < 40; ++round)
    {
        FSCatalogInfo info{};
        info.backupDate = dateOfUnix(1000000000 + round);
        EXPECT_EQ(change(ref, kFSCatInfoBackupDate, info), noErr);
        EXPECT_EQ(rename(ref, "file" + std::to_string(round)), noErr);
    }
    writer.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(ref), Bytes(forkSize, static_cast<std::uint8_t>(rounds)));
}

TEST_P(ThreadsOnForks, BothForksOfAFileAndThoseOfItsNeighbour)
{
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    std::vector<SInt16> forks;
    for (const char *name : {"one", "two"})
        for (bool resource : {false, true})
        {
            SInt16 fork = 0;
            ASSERT_EQ(openFork(fileRef(std::string(name) + (resource ? "r" : "d")), resource, fsRdWrPerm, fork), noErr);
            forks.push_back(fork);
        }
    for (SInt16 fork : forks)
        threads.emplace_back([fork, &failures] { writeOften(fork, failures); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    for (SInt16 fork : forks)
        EXPECT_EQ(FSCloseFork(fork), noErr);
    for (const char *name : {"oned", "twod"})
        EXPECT_EQ(forkOf(refAt(folder() / name), false), Bytes(forkSize, static_cast<std::uint8_t>(rounds)));
    for (const char *name : {"oner", "twor"})
        EXPECT_EQ(forkOf(refAt(folder() / name)), Bytes(forkSize, static_cast<std::uint8_t>(rounds)));
}

TEST_P(ThreadsOnForks, TwoUseTheSameNumber)
{
    FSRef ref = fileRef("file");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 2; ++thread)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round)
                if (FSWriteFork(fork, fsAtMark, 0, 4, "four", nullptr) != noErr)
                    ++failures;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    Bytes bytes = forkOf(ref);
    ASSERT_EQ(bytes.size(), 8u * rounds) << "each began where another ended";
    for (std::size_t at = 0; at < bytes.size(); at += 4)
        ASSERT_EQ(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.begin() + static_cast<std::ptrdiff_t>(at) + 4),
                  bytesOf("four"));
}

ON_EVERY_DISK(ThreadsOnForks);

}   // namespace
