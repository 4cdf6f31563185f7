// A process that changes files is killed at any moment: every file still has its own fork, and metadata that are the old or the new.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <csignal>
#include <random>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr int fileCount = 5;
constexpr int killCount = 20;   // on each disk

// A file is always at exactly one of four places.
std::vector<std::string> placesOf(const std::string &folder, int number)
{
    std::string name = "file" + std::to_string(number);
    return {folder + "/one/" + name, folder + "/one/" + name + "-other", folder + "/two/" + name, folder + "/two/" + name + "-other"};
}

std::string placeOf(const std::string &folder, int number)
{
    std::vector<std::string> found;
    for (const std::string &place : placesOf(folder, number))
        if (exists(place))
            found.push_back(place);
    EXPECT_EQ(found.size(), 1u) << "file " << number << " has as many names";
    return found.empty() ? "" : found.front();
}

Bytes forkBytes(int number)
{
    return Bytes(static_cast<std::size_t>(1000 + number), static_cast<std::uint8_t>(number));
}

const OSType types[] = {code("AAAA"), code("BBBB"), code("CCCC")};

OSErr changeOnce(FSRef &ref, const FSRef folders[2], unsigned choice, int number)
{
    std::string name = "file" + std::to_string(number);
    switch (choice % 6)
    {
    case 0: return setType(ref, types[choice % 3], types[choice % 3]);
    case 1: setLock(ref, true); return setLock(ref, false);
    case 2: return rename(ref, name);
    case 3: return rename(ref, name + "-other");
    case 4: return move(ref, folders[choice / 6 % 2]);
    default:
    {
        FSCatalogInfo info{};
        info.createDate = dateOfUnix(1000000000, static_cast<UInt16>(choice));
        return change(ref, kFSCatInfoCreateDate, info);
    }
    }
}

// A rename or a move to where the file already is may be refused; anything else may not.
bool mayFail(unsigned choice)
{
    return choice % 6 >= 2 && choice % 6 <= 4;
}

const Role changesForEver("changesForEver", [](const RoleArguments &arguments) {
    std::mt19937 random(static_cast<unsigned>(std::stoul(arguments[1])));
    FSRef folders[2] = {refAt(arguments[0] + "/one"), refAt(arguments[0] + "/two")}, refs[fileCount];
    for (int number = 0; number < fileCount; ++number)
    {
        refs[number] = refAt(placeOf(arguments[0], number));
        EXPECT_EQ(setLock(refs[number], false), noErr);
    }
    ssize_t told = write(STDOUT_FILENO, "!", 1);   // from here on the clock of the kill runs
    while (told == 1 && !testing::Test::HasFailure())
    {
        unsigned choice = static_cast<unsigned>(random() % 600);
        int number = static_cast<int>(random() % fileCount);
        OSErr result = changeOnce(refs[number], folders, choice, number);
        EXPECT_TRUE(result == noErr || (result == dupFNErr && mayFail(choice))) << "change " << choice % 6 << " gave " << result;
    }
});

class Kills : public DiskTest
{
protected:
    void makeFiles()
    {
        for (const char *name : {"one", "two"})
            mkdir((folder() / name).c_str(), 0755);
        for (int number = 0; number < fileCount; ++number)
        {
            std::string path = placesOf(folder().path(), number).front();
            writeFile(path, "data" + std::to_string(number));
            FSRef ref = refAt(path);
            ASSERT_EQ(setType(ref, types[0], types[0]), noErr);
            ASSERT_EQ(writeFork(ref, true, forkBytes(number)), noErr);
        }
    }

    void expectWhole()
    {
        for (int number = 0; number < fileCount; ++number)
        {
            SCOPED_TRACE(testing::Message() << "file " << number);
            std::string place = placeOf(folder().path(), number);
            ASSERT_FALSE(place.empty());
            FSRef ref = refAt(place);
            ASSERT_EQ(forkOf(ref), forkBytes(number));
            ASSERT_EQ(forkOf(ref, false), bytesOf("data" + std::to_string(number)));
            FileInfo file = fileInfo(infoOf(ref));
            ASSERT_EQ(+file.fileType, +file.fileCreator);
            ASSERT_TRUE(std::set<OSType>(std::begin(types), std::end(types)).count(file.fileType)) << file.fileType;
        }
    }

    // What a change that was cut off leaves is never listed.
    void expectNothingElseIsListed()
    {
        UInt32 listed = 0;
        for (std::string part : {"one", "two"})
            listed += infoOf(refAt(folder() / part), kFSCatInfoValence).valence;
        EXPECT_EQ(listed, static_cast<UInt32>(fileCount)) << runShell("ls -ali '" + folder().path() + "'/*").output;
    }

    void deleteEverything()
    {
        for (int number = 0; number < fileCount; ++number)
        {
            FSRef ref = refAt(placeOf(folder().path(), number));
            EXPECT_EQ(setLock(ref, false), noErr);
            EXPECT_EQ(FSDeleteObject(&ref), noErr);
        }
        for (std::string part : {"one", "two"})
        {
            FSRef ref = refAt(folder() / part);
            EXPECT_EQ(+infoOf(ref, kFSCatInfoValence).valence, 0u);
            EXPECT_EQ(FSDeleteObject(&ref), noErr) << testing::PrintToString(namesIn(folder() / part));
        }
    }
};

TEST_P(Kills, LeaveEveryFileWhole)
{
    makeFiles();
    std::mt19937 random(1 + static_cast<unsigned>(GetParam()));
    for (int kill = 0; kill < killCount && !HasFailure(); ++kill)
    {
        SCOPED_TRACE(testing::Message() << "kill " << kill);
        Running process = startRole("changesForEver", {folder().path(), std::to_string(random())});
        process.waitForOutput();
        usleep(static_cast<useconds_t>(random() % 15000));
        process.kill(SIGKILL);
        Ended ended = process.wait();
        EXPECT_EQ(ended.status, 128 + SIGKILL) << ended.output;
        expectWhole();
        expectNothingElseIsListed();
    }
    if (!HasFailure())
        deleteEverything();
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, Kills, testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::ext4Small), diskName);

}   // namespace
