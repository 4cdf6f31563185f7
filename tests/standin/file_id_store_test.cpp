// The database of file IDs: many processes, and somebody else who is writing.
#include "tests/standin/file_id_store.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <map>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace support;

// --- several processes and threads ---------------------------------------------------------------------------------------------------------

constexpr int filesOfTwo = 200;

const Role makesIDs("makesIDsForAll", [](const RoleArguments &arguments) {
    for (int i = 0; i < filesOfTwo; ++i)
    {
        const NewFileID made = makeID(refAt(arguments[0] + "/" + std::to_string(i)));
        std::printf("%d %d %u\n", i, made.result, made.id);
    }
});

TEST_F(FileIDStore, TwoProcessesGiveEachFileOneID)
{
    std::map<int, std::vector<std::pair<int, UInt32>>> byFile;
    std::map<UInt32, int> files;
    for (int i = 0; i < filesOfTwo; ++i)
        fileNamed(std::to_string(i));
    std::vector<Running> processes;
    for (int i = 0; i < 3; ++i)
        processes.push_back(startRole("makesIDsForAll", {this->files().path()}, sameState()));
    for (Running &process : processes)
    {
        const Ended ended = process.wait();
        EXPECT_EQ(ended.status, 0) << ended.output;
        std::istringstream lines(ended.output);
        for (int file = 0, result = 0; lines >> file >> result;)
            lines >> byFile[file].emplace_back(result, 0).second;
    }
    ASSERT_EQ(byFile.size(), std::size_t{filesOfTwo});
    for (auto &[file, made] : byFile)
    {
        std::sort(made.begin(), made.end());
        ASSERT_EQ(made.size(), 3u);
        EXPECT_EQ(made[0].first, fidExists);
        EXPECT_EQ(made[1].first, fidExists);
        EXPECT_EQ(made[2].first, noErr);
        EXPECT_TRUE(made[0].second == made[1].second && made[1].second == made[2].second);
        EXPECT_TRUE(files.emplace(made[0].second, file).second) << "an ID for two files";
        EXPECT_EQ(pathOfID(made[0].second), this->files() / std::to_string(file));
    }
}

TEST_F(FileIDStore, ThreadsGiveEachFileOneID)
{
    constexpr int count = 40;
    std::vector<std::vector<UInt32>> ids(4, std::vector<UInt32>(count));
    for (int i = 0; i < count; ++i)
        fileNamed(std::to_string(i));
    std::vector<std::thread> threads;
    for (auto &own : ids)
        threads.emplace_back([&] {
            for (int i = 0; i < count; ++i)
                own[static_cast<std::size_t>(i)] = makeID(refAt(files() / std::to_string(i))).id;
        });
    for (std::thread &thread : threads)
        thread.join();
    for (const auto &own : ids)
        EXPECT_EQ(own, ids[0]);
    EXPECT_EQ(std::count(ids[0].begin(), ids[0].end(), 0u), 0);
}

TEST_F(FileIDStore, AForkedProcessGoesOnByItself)
{
    const std::string path = fileNamed("file");
    const UInt32 id = makeID(refAt(path)).id;
    const FSVolumeRefNum number = volume();
    const pid_t child = fork();
    if (child == 0)
        _exit(resolveID(number, id).result == noErr && makeID(refAt(path)).id == id ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(makeID(refAt(fileNamed("second"))).result, noErr);
    EXPECT_EQ(pathOfID(id), path);
}

const Role makesIDsForEver("makesIDsForEver", [](const RoleArguments &arguments) {
    for (int i = 0;; ++i)
    {
        const std::string path = arguments[0] + "/" + std::to_string(i);
        writeFile(path);
        std::printf("%s %u\n", path.c_str(), makeID(refAt(path)).id);
        std::fflush(stdout);
    }
});

TEST_F(FileIDStore, AKillLosesNoID)
{
    for (int round = 0; round < 3; ++round)
    {
        Running process = startRole("makesIDsForEver", {files().path()}, sameState());
        process.waitForOutput();
        usleep(30000);
        process.kill(SIGKILL);
        std::istringstream lines(process.wait().output);
        int found = 0;
        std::string path, last;
        for (UInt32 id = 0; lines >> path >> id; ++found)
        {
            if (lines.peek() != '\n')
                break;   // the last line may be cut off
            ASSERT_EQ(pathOfID(id), path);
        }
        EXPECT_GT(found, 0);
    }
}

// --- somebody else is writing --------------------------------------------------------------------------------------------------------------

TEST_F(FileIDStore, WhileItIsBusyFilesAreFoundAndMovedButGetNoIDs)
{
    FSRef ref = refAt(fileNamed("file"));
    const UInt32 id = makeID(ref).id;
    {
        OtherConnection other(database());
        other.run("BEGIN IMMEDIATE");
        EXPECT_EQ(pathOfID(id), files() / "file");
        EXPECT_EQ(rename(ref, "renamed"), noErr);
        EXPECT_EQ(pathOfID(id), files() / "renamed");
        EXPECT_EQ(makeID(refAt(fileNamed("second"))).result, fBsyErr);
        other.run("COMMIT");
    }
    EXPECT_EQ(makeID(refAt(files() / "second")).result, noErr);
    EXPECT_EQ(makeID(ref).id, id);
}

const Role findsInStore("findsFileInStore", [](const RoleArguments &arguments) {
    const FSVolumeRefNum volume = infoOf(refAt(arguments[0])).volume;
    EXPECT_EQ(pathOfID(volume, static_cast<UInt32>(std::stoul(arguments[1]))), arguments[2]);
});

TEST_F(FileIDStore, AMoveThatCouldNotBeWrittenIsWrittenLater)
{
    mkdir((files() / "in").c_str(), 0755);
    FSRef ref = refAt(fileNamed("file"));
    const UInt32 id = makeID(ref).id;
    {
        OtherConnection other(database());
        other.run("BEGIN IMMEDIATE");
        ASSERT_EQ(rename(ref, "renamed"), noErr);
        ASSERT_EQ(move(ref, refAt(files() / "in")), noErr);
        other.run("ROLLBACK");
    }
    EXPECT_EQ(pathOfID(id), files() / "in/renamed");
    playRole("findsFileInStore", {files().path(), std::to_string(id), files() / "in/renamed"}, sameState());
}

// What the database itself says, whatever the disk would tell.
std::string storedNameOf(const std::string &database, UInt32 id)
{
    std::string name;
    sqlite3 *opened = nullptr;
    const std::string sql = "SELECT name FROM files WHERE id = " + std::to_string(id);
    const auto take = [](void *text, int, char **columns, char **) { return *static_cast<std::string *>(text) = columns[0], 0; };
    EXPECT_EQ(sqlite3_open(database.c_str(), &opened), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(opened, sql.c_str(), take, &name, nullptr), SQLITE_OK);
    sqlite3_close(opened);
    return name;
}

const Role renamesAndEnds("renamesFileWithIDAndEnds", [](const RoleArguments &arguments) {
    FSRef ref = refAt(arguments[0]);
    EXPECT_EQ(rename(ref, "renamed"), noErr);
    std::puts("renamed");
    std::fflush(stdout);
    if (arguments[1] == "killed")
        raise(SIGKILL);
});

TEST_F(FileIDStore, WhatWaitsIsWrittenWhenTheProcessEnds)
{
    const std::string path = fileNamed("file");
    const UInt32 id = makeID(refAt(path)).id;
    OtherConnection other(database());
    other.run("BEGIN IMMEDIATE");
    Running process = startRole("renamesFileWithIDAndEnds", {path, "ends"}, sameState());
    process.waitForOutput();
    EXPECT_EQ(storedNameOf(database(), id), "file") << "it waits";
    other.run("COMMIT");
    const Ended ended = process.wait();
    EXPECT_EQ(ended.status, 0) << ended.output;
    EXPECT_EQ(storedNameOf(database(), id), "renamed");
    EXPECT_EQ(pathOfID(id), files() / "renamed");
}

TEST_F(FileIDStore, WhatWaitedInAKilledProcessIsFoundOnTheDisk)
{
    if (!findsWhatOthersRename(files().path()))
        GTEST_SKIP() << "a file that others rename is not found here";
    const std::string path = fileNamed("file");
    const UInt32 id = makeID(refAt(path)).id;
    OtherConnection other(database());
    other.run("BEGIN IMMEDIATE");
    Running process = startRole("renamesFileWithIDAndEnds", {path, "killed"}, sameState());
    EXPECT_EQ(process.wait().status, 128 + SIGKILL);
    other.run("COMMIT");
    EXPECT_EQ(storedNameOf(database(), id), "file") << "nobody wrote it";
    EXPECT_EQ(pathOfID(id), files() / "renamed");
    EXPECT_EQ(storedNameOf(database(), id), "renamed") << "found once, it is noted";
}

}   // namespace
