// What an exchange of two files costs, in system calls, and what its shortest way must not lose.
#include "tests/standin/file_id_calls.h"
#include "tests/standin/test_volume.h"

#include "standin/files/linux_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace
{

using namespace support;

class ExchangeCosts : public DiskTest
{
protected:
    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        if (!offersExchange(refAt(folder().path())))
            GTEST_SKIP() << "files are not exchanged on this disk";
        standin::useStateFolder(folder() / "no file IDs");
    }
    void TearDown() override
    {
        standin::linux_calls::setCallFilter(nullptr);
        standin::useStateFolder("");
        DiskTest::TearDown();
    }

    // Whether it is there already or not.
    FSRef makeFile(const std::string &name)
    {
        const std::timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
        writeFile(folder() / name, name);
        EXPECT_EQ(utimensat(AT_FDCWD, (folder() / name).c_str(), times, 0), 0);
        return refAt(folder() / name);
    }

    // Two files that were made in one tick of the disk's clock, so that neither creation date has to be kept. False if there is no such pair. What is changed
    // after it was looked at makes that clock tick: so the folder gets another file before, and the files their bytes behind.
    bool makeTwins(FSRef &first, FSRef &second)
    {
        for (int attempt = 0; attempt < 1000; ++attempt)
        {
            for (const char *name : {"ticking", "first", "second"})
                EXPECT_EQ(mknod((folder() / name).c_str(), S_IFREG | 0644, 0), 0);
            EXPECT_EQ(unlink((folder() / "ticking").c_str()), 0);
            first = makeFile("first");
            second = makeFile("second");
            const struct statx one = statxOf(folder() / "first"), other = statxOf(folder() / "second");
            if (!(one.stx_mask & STATX_BTIME))
                return false;
            if (one.stx_btime.tv_sec == other.stx_btime.tv_sec && one.stx_btime.tv_nsec == other.stx_btime.tv_nsec)
                return true;
            for (const FSRef *ref : {&first, &second})
                EXPECT_EQ(FSDeleteObject(ref), noErr);
        }
        return false;
    }

    // The least of a few exchanges: the first in a folder opens it for the lock, and now and then one looks whether there are file IDs by now.
    std::uint64_t callsOf(const char *what, const FSRef &first, const FSRef &second)
    {
        std::uint64_t least = UINT64_MAX;
        for (int turn = 0; turn < 7; ++turn)
        {
            const std::uint64_t before = standin::systemCallCount();
            EXPECT_EQ(FSExchangeObjects(&first, &second), noErr);
            least = std::min(least, standin::systemCallCount() - before);
        }
        std::printf("[   cost   ] %-9s %-58s %6.2f\n", nameOfKind(GetParam()).c_str(), what, static_cast<double>(least));
        return least;
    }

    void expectExchanged()
    {
        EXPECT_EQ(readFile(folder() / "first"), bytesOf("second"));
        EXPECT_EQ(readFile(folder() / "second"), bytesOf("first"));
    }
};

// Lock and unlock, and the step. Of each file: is it the same, has it a sidecar, has it attributes.
TEST_P(ExchangeCosts, FilesThatLeaveNothingWithTheirPlacesTakeNineCalls)
{
    FSRef first{}, second{};
    if (!makeTwins(first, second))
        GTEST_SKIP() << "no two files have one creation date here";
    EXPECT_LE(callsOf("exchanging two files of one moment without metadata", first, second), 9u);
    expectExchanged();
    EXPECT_TRUE(attributeNames(folder() / "first").empty());
    EXPECT_TRUE(attributeNames(folder() / "second").empty());
}

// Each file is opened and closed, gets a journal, the other place's metadata, and loses the journal. A small disk's attributes may leave no room beside a
// journal, which is then made shorter.
TEST_P(ExchangeCosts, FilesWithMetadataTakeTwentySevenCalls)
{
    const FSRef first = makeFile("first"), second = makeFile("second");
    const std::timespec earlier[2] = {{900000000, 0}, {0, UTIME_OMIT}};
    ASSERT_EQ(setType(first, code("ONE "), code("ONE ")), noErr);
    ASSERT_EQ(setType(second, code("TWO "), code("TWO ")), noErr);
    ASSERT_EQ(utimensat(AT_FDCWD, (folder() / "first").c_str(), earlier, 0), 0);
    const bool hasSmallBlocks = GetParam() == DiskKind::ext4 || GetParam() == DiskKind::ext4Small;
    EXPECT_LE(callsOf("exchanging two files with types", first, second), hasSmallBlocks ? 37u : 27u);
    EXPECT_EQ(statxOf(folder() / "first").stx_atime.tv_sec, 900000000);
    expectExchanged();
    EXPECT_EQ(typeOf(first), code("ONE "));
    EXPECT_EQ(typeOf(second), code("TWO "));
}

// A file without metadata takes the place of one with some, and the other way round.
TEST_P(ExchangeCosts, OneFileWithMetadataIsEnoughForThemToStay)
{
    const FSRef first = makeFile("first"), second = makeFile("second");
    ASSERT_EQ(setType(first, code("ONE "), code("ONE ")), noErr);
    ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
    expectExchanged();
    EXPECT_EQ(typeOf(first), code("ONE "));
    EXPECT_EQ(typeOf(second), 0u);
    ASSERT_EQ(FSExchangeObjects(&second, &first), noErr);
    EXPECT_EQ(readFile(folder() / "first"), bytesOf("first"));
    EXPECT_EQ(typeOf(first), code("ONE "));
    EXPECT_EQ(typeOf(second), 0u);
}

// Mode, owner and date of the last access are no metadata of ours: they stay with the place where no journal is needed, too.
TEST_P(ExchangeCosts, ModeAndAccessDateStayWithoutAnyMetadata)
{
    FSRef first{}, second{};
    if (!makeTwins(first, second))
        GTEST_SKIP() << "no two files have one creation date here";
    const std::timespec earlier[2] = {{900000000, 0}, {0, UTIME_OMIT}};
    ASSERT_EQ(utimensat(AT_FDCWD, (folder() / "first").c_str(), earlier, 0), 0);
    ASSERT_EQ(chmod((folder() / "first").c_str(), 0640), 0);
    ASSERT_EQ(chmod((folder() / "second").c_str(), 0604), 0);
    for (int turn = 0; turn < 2; ++turn)   // the second one knows that there are no file IDs
        ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
    EXPECT_EQ(statxOf(folder() / "first").stx_mode & 07777u, 0640u);
    EXPECT_EQ(statxOf(folder() / "second").stx_mode & 07777u, 0604u);
    EXPECT_EQ(statxOf(folder() / "first").stx_atime.tv_sec, 900000000);
    EXPECT_EQ(statxOf(folder() / "second").stx_atime.tv_sec, 1000000000);
}

int journalsSeen = 0;

int countJournals(const char *call)
{
    journalsSeen += std::string_view(call) == "setAttribute";
    return 0;
}

class ExchangeCostsBesideIDs : public ExchangeCosts
{
protected:
    void SetUp() override
    {
        ExchangeCosts::SetUp();
        if (IsSkipped())
            return;
        standin::useStateFolder(state_.path());
        ASSERT_EQ(makeID(makeFile("with an ID")).result, noErr);
    }

    // What one exchange sets of attributes.
    int journalsOf(const FSRef &first, const FSRef &second)
    {
        journalsSeen = 0;
        standin::linux_calls::setCallFilter(countJournals);
        EXPECT_EQ(FSExchangeObjects(&first, &second), noErr);
        standin::linux_calls::setCallFilter(nullptr);
        return journalsSeen;
    }

private:
    TemporaryFolder state_;
};

// The database is looked for, and the disk asked for its number, before the step alone; what SQLite calls is not counted here.
TEST_P(ExchangeCostsBesideIDs, FilesWithoutIDsTakeElevenCallsAndNoJournal)
{
    FSRef first{}, second{};
    if (!makeTwins(first, second))
        GTEST_SKIP() << "no two files have one creation date here";
    EXPECT_LE(callsOf("exchanging two files without IDs while others have some", first, second), 11u);
    EXPECT_EQ(journalsOf(first, second), 0);
}

TEST_P(ExchangeCostsBesideIDs, OneFileWithAnIDIsEnoughForJournals)
{
    FSRef first{}, second{};
    if (!makeTwins(first, second))
        GTEST_SKIP() << "no two files have one creation date here";
    const NewFileID made = makeID(second);
    ASSERT_EQ(made.result, noErr);
    for (int turn = 0; turn < 2; ++turn)
    {
        EXPECT_GE(journalsOf(first, second), 2) << turn;
        EXPECT_EQ(pathOfID(specOf(first).vRefNum, made.id), folder() / "second") << turn;
    }
}

ON_EVERY_DISK(ExchangeCostsBesideIDs);

int refuseTheOneStep(const char *call)
{
    journalsSeen += std::string_view(call) == "setAttribute";
    return std::string_view(call) == "exchangeNames" ? EINVAL : 0;
}

// The steps that take its place need the journals that the one step can do without.
TEST_P(ExchangeCosts, ADiskWithoutTheOneStepGetsItsJournalsAllTheSame)
{
    FSRef first{}, second{};
    if (!makeTwins(first, second))
        GTEST_SKIP() << "no two files have one creation date here";
    ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
    ASSERT_EQ(FSExchangeObjects(&first, &second), noErr);
    journalsSeen = 0;
    standin::linux_calls::setCallFilter(refuseTheOneStep);
    EXPECT_EQ(FSExchangeObjects(&first, &second), noErr);
    standin::linux_calls::setCallFilter(nullptr);
    EXPECT_GE(journalsSeen, 2);
    expectExchanged();
    for (const char *name : {"first", "second"})
        EXPECT_TRUE(attributeNames(folder() / name).empty()) << name;
    EXPECT_EQ(namesIn(folder().path()), (std::vector<std::string>{"first", "second"}));
}

// A lock that another program has set in the attributes, without a sidecar, is found by the look that serves for the metadata, too.
TEST_P(ExchangeCosts, ALockedFileIsStillRefused)
{
    const FSRef first = makeFile("first"), second = makeFile("second");
    ASSERT_EQ(setLock(second, true), noErr);
    EXPECT_EQ(FSExchangeObjects(&first, &second), fLckdErr);
    ASSERT_EQ(unlink((folder() / "._second").c_str()), 0);
    EXPECT_EQ(FSExchangeObjects(&first, &second), fLckdErr);
    EXPECT_EQ(readFile(folder() / "first"), bytesOf("first"));
    EXPECT_EQ(setLock(second, false), noErr);
}

ON_EVERY_DISK(ExchangeCosts);

}   // namespace
