// Moves and exchanges, killed at any moment: each content is there once with its own fork, each place's metadata are there once, and whoever uses the
// files next finishes what was cut off.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <csignal>
#include <random>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr int fileCount = 4;
constexpr int killCount = 100;   // on each of two disks

Bytes forkOfContent(int content)
{
    return content % 2 ? Bytes{} : bytesOf("the fork of content " + std::to_string(content) + std::string(2000, 'f'));
}

struct Found
{
    std::string name;
    FSRef ref{};
};

class ExchangeKills : public testing::TestWithParam<DiskKind>
{
protected:
    void SetUp() override
    {
        const Disk &disk = diskOf(GetParam());
        if (!disk.problem.empty())
            GTEST_SKIP() << disk.problem;
        folder_.emplace(disk);
        for (const char *name : {"one", "two"})
            mkdir((*folder_ / name).c_str(), 0755);
        one_ = refAt(*folder_ / "one");
        two_ = refAt(*folder_ / "two");
        for (int number = 0; number < fileCount; ++number)
            makeFileNumber(number);
    }

    void makeFileNumber(int number);
    std::vector<Found> filesThere();
    [[noreturn]] void changeForEver(unsigned seed);
    void changeUntilKilled(std::mt19937 &random);
    void expectContents(const std::vector<Found> &files);
    void finishAndExpectMetadata();
    void deleteEverything();

private:
    std::optional<TemporaryFolder> folder_;
    FSRef one_{}, two_{};
};

void ExchangeKills::makeFileNumber(int number)
{
    std::string path = *folder_ / ("one/file" + std::to_string(number));
    writeFile(path, std::to_string(number));
    FSRef ref = refAt(path);
    FSCatalogInfo info{};
    info.createDate = info.backupDate = dateOfUnix(1000000000 + number, static_cast<UInt16>(number));
    ASSERT_EQ(setType(ref, code("TYP0") + static_cast<OSType>(number), code("TYP0") + static_cast<OSType>(number)), noErr);
    ASSERT_EQ(change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate, info), noErr);
    if (!forkOfContent(number).empty())
    {
        ASSERT_EQ(writeFork(ref, true, forkOfContent(number)), noErr);
    }
}

std::vector<Found> ExchangeKills::filesThere()
{
    std::vector<Found> files;
    for (const FSRef &folder : {one_, two_})
    {
        FSIterator iterator = nullptr;
        ItemCount count = 0;
        FSRef refs[32];
        HFSUniStr255 names[32];
        EXPECT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
        EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 32, &count, nullptr, kFSCatInfoNone, nullptr, refs, nullptr, names), errFSNoMoreItems);
        EXPECT_EQ(FSCloseIterator(iterator), noErr);
        for (ItemCount i = 0; i < count; ++i)
            files.push_back({std::string(names[i].unicode, names[i].unicode + names[i].length), refs[i]});
    }
    return files;
}

// Ends with status 1 if a change fails that may not.
void ExchangeKills::changeForEver(unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<Found> files = filesThere();
    for (OSErr result = noErr; result == noErr || result == dupFNErr;)
    {
        FSRef &ref = files[random() % files.size()].ref;
        const FSRef &other = files[random() % files.size()].ref;
        switch (random() % 6)
        {
        case 0: result = move(ref, random() % 2 ? one_ : two_); break;
        case 1: result = rename(ref, "file" + std::to_string(random() % 8)); break;
        default: result = FSExchangeObjects(&ref, &other); break;
        }
    }
    _exit(1);
}

void ExchangeKills::changeUntilKilled(std::mt19937 &random)
{
    const unsigned seed = static_cast<unsigned>(random());
    const pid_t process = fork();
    if (process == 0)
        changeForEver(seed);
    usleep(500 + static_cast<useconds_t>(random() % 4000));
    kill(process, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status)) << "a change failed";
}

void ExchangeKills::expectContents(const std::vector<Found> &files)
{
    std::set<int> contents;
    EXPECT_EQ(files.size(), static_cast<std::size_t>(fileCount));
    for (const Found &file : files)
    {
        Bytes data = forkOf(file.ref, false);
        ASSERT_EQ(data.size(), 1u) << file.name;
        contents.insert(data[0] - '0');
        EXPECT_EQ(forkOf(file.ref), forkOfContent(data[0] - '0')) << "of content " << data[0] << " in " << file.name;
    }
    EXPECT_EQ(contents.size(), static_cast<std::size_t>(fileCount)) << "each content once";
}

void ExchangeKills::finishAndExpectMetadata()
{
    std::set<OSType> types;
    for (const Found &file : filesThere())
    {
        FSCatalogInfo info{};
        EXPECT_EQ(change(file.ref, kFSCatInfoTextEncoding, info), noErr) << file.name;
    }
    std::vector<Found> files = filesThere();
    expectContents(files);
    for (const Found &file : files)
    {
        EXPECT_EQ(file.name.find("exchanging"), std::string::npos)
            << "finished by the change" << runShell("ls -ali '" + folder_->path() + "'/*").output;
        EXPECT_EQ(attribute(pathOf(file.ref), "user.zerb.exchange"), std::nullopt) << file.name;
        FSCatalogInfo info = infoOf(file.ref);
        OSType type = fileInfo(info).fileType, number = type - code("TYP0");
        types.insert(type);
        EXPECT_EQ(+fileInfo(info).fileCreator, type);
        UTCDateTime date = dateOfUnix(1000000000 + number, static_cast<UInt16>(number));
        EXPECT_EQ(info.createDate, date) << "with type number " << number;
        EXPECT_EQ(info.backupDate, date);
    }
    EXPECT_EQ(types.size(), static_cast<std::size_t>(fileCount)) << "the metadata of each place once";
}

// A name too many that a kill left of a sidecar goes at the latest with its folder.
void ExchangeKills::deleteEverything()
{
    for (const Found &file : filesThere())
        EXPECT_EQ(FSDeleteObject(&file.ref), noErr) << file.name;
    for (const FSRef &folder : {one_, two_})
        EXPECT_EQ(FSDeleteObject(&folder), noErr) << runShell("ls -ali '" + folder_->path() + "'/*").output;
}

TEST_P(ExchangeKills, LoseNoFileForkOrMetadata)
{
    std::mt19937 random(2026 + static_cast<unsigned>(GetParam()));
    for (int kill = 0; kill < killCount && !HasFailure(); ++kill)
    {
        SCOPED_TRACE(testing::Message() << "kill " << kill);
        changeUntilKilled(random);
        expectContents(filesThere());
        finishAndExpectMetadata();
    }
    if (!HasFailure())
        deleteEverything();
}

INSTANTIATE_TEST_SUITE_P(TwoDisks, ExchangeKills, testing::Values(DiskKind::tmpfs, DiskKind::ext4), diskName);

}   // namespace
