// A process that copies files is killed at any moment: each copy is there with its fork and all, or not at all.
#include "tests/standin/copies.h"
#include "tests/standin/processes.h"

#include <csignal>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr int killCount = 13;   // on each of eight disks

const Bytes plainData = patternBytes(5000, 1), forkedData = patternBytes(30000, 2), forkData = patternBytes(60000, 3);

// arguments: folder, which copy comes next
const Role copiesForEver("copiesForEver", [](const RoleArguments &arguments) {
    FSRef sources[2] = {refAt(arguments[0] + "/forked"), refAt(arguments[0] + "/plain")}, target = refAt(arguments[0] + "/copies");
    ssize_t told = write(STDOUT_FILENO, "!", 1);   // from here on the clock of the kill runs
    for (int number = std::stoi(arguments[1]); told == 1 && !testing::Test::HasFailure(); ++number)
        EXPECT_EQ(copyFile(sources[number % 2], target, "copy" + std::to_string(number)), noErr);
});

class KilledCopies : public DiskTest
{
protected:
    void makeSources()
    {
        mkdir((folder() / "copies").c_str(), 0755);
        writeFile(folder() / "plain", plainData);
        writeFile(folder() / "forked", forkedData);
        FSRef ref = refAt(folder() / "forked");
        ASSERT_EQ(setType(ref, code("TEXT"), code("ttxt")), noErr);
        ASSERT_EQ(writeFork(ref, true, forkData), noErr);
    }

    // How many copies there are; the numbers go on from there.
    int expectWhole()
    {
        int count = 0;
        for (; exists(folder() / ("copies/copy" + std::to_string(count))); ++count)
        {
            SCOPED_TRACE(testing::Message() << "copy " << count);
            std::string path = folder() / ("copies/copy" + std::to_string(count));
            bool isForked = count % 2 == 0;
            FSRef ref = refAt(path);
            EXPECT_TRUE(readFile(path) == (isForked ? forkedData : plainData));
            EXPECT_TRUE(forkOf(ref) == (isForked ? forkData : Bytes()));
            EXPECT_EQ(typeOf(ref), isForked ? code("TEXT") : 0);
        }
        EXPECT_EQ(infoOf(refAt(folder() / "copies"), kFSCatInfoValence).valence, static_cast<UInt32>(count))
            << "nothing else is listed: " << runShell("ls -ali '" + (folder() / "copies") + "'").output;
        return count;
    }

    void deleteCopies(int count)
    {
        for (int number = 0; number < count; ++number)
        {
            FSRef ref = refAt(folder() / ("copies/copy" + std::to_string(number)));
            EXPECT_EQ(FSDeleteObject(&ref), noErr);
        }
        FSRef copies = refAt(folder() / "copies");
        EXPECT_EQ(FSDeleteObject(&copies), noErr) << testing::PrintToString(namesIn(folder() / "copies"));
        EXPECT_EQ(mkdir((folder() / "copies").c_str(), 0755), 0);
    }
};

TEST_P(KilledCopies, AreWholeOrNotThere)
{
    makeSources();
    int copies = 0;
    std::mt19937 random(1 + static_cast<unsigned>(GetParam()));
    for (int kill = 0; kill < killCount && !HasFailure(); ++kill)
    {
        SCOPED_TRACE(testing::Message() << "kill " << kill);
        Running process = startRole("copiesForEver", {folder().path(), "0"});
        process.waitForOutput();
        usleep(static_cast<useconds_t>(random() % 4000));
        process.kill(SIGKILL);
        Ended ended = process.wait();
        EXPECT_EQ(ended.status, 128 + SIGKILL) << ended.output;
        int made = expectWhole();
        copies += made;
        deleteCopies(made);
    }
    EXPECT_GT(copies, 0);
}

INSTANTIATE_TEST_SUITE_P(SomeDisks, KilledCopies, testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::btrfs), diskName);

}   // namespace
