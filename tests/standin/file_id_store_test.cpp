// The database of file IDs: many processes, and what can go wrong with it.
#include "tests/standin/file_id_calls.h"
#include "tests/standin/processes.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <map>
#include <random>
#include <sqlite3.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace support;

class FileIDStore : public testing::Test
{
protected:
    void SetUp() override { useState(state_ / "zerb"); }
    void TearDown() override { standin::useStateFolder(""); }

    void useState(const std::string &path)
    {
        statePath_ = path;
        standin::useStateFolder(path);
    }
    const std::string &statePath() const { return statePath_; }
    std::string database() const { return statePath_ + "/file-ids.sqlite"; }
    std::string fileNamed(const std::string &name)
    {
        writeFile(files_ / name, name);
        return files_ / name;
    }
    TemporaryFolder &files() { return files_; }
    TemporaryFolder &states() { return state_; }
    FSVolumeRefNum volume() { return infoOf(refAt(files_.path())).volume; }
    std::string pathOfID(UInt32 id) { return support::pathOfID(volume(), id); }
    RoleSetting sameState(uid_t user = 0) const { return {user, {"ZERB_STATE_FOLDER=" + statePath_}}; }

private:
    TemporaryFolder files_, state_;
    std::string statePath_;
};

// A second connection, as another program would have it.
class OtherConnection
{
public:
    explicit OtherConnection(const std::string &path) { EXPECT_EQ(sqlite3_open(path.c_str(), &database_), SQLITE_OK); }
    ~OtherConnection() { sqlite3_close(database_); }
    OtherConnection(const OtherConnection &) = delete;
    OtherConnection &operator=(const OtherConnection &) = delete;
    void run(const char *sql)
    {
        EXPECT_EQ(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database_);
    }

private:
    sqlite3 *database_ = nullptr;
};

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

// --- damage --------------------------------------------------------------------------------------------------------------------------------

TEST_F(FileIDStore, ADamagedOneIsAnErrorAndStaysAsItIs)
{
    FSRef ref = refAt(fileNamed("file"));
    const UInt32 id = makeID(ref).id;
    for (const std::string_view damage : {"no database at all", "SQLite format 3\0 but then nothing of the kind"})
    {
        useState(states() / ("damaged" + std::to_string(damage.size())));
        mkdir(statePath().c_str(), 0700);
        Bytes bytes = bytesOf(damage);
        bytes.resize(5000, 0x55);
        writeFile(database(), bytes);
        EXPECT_EQ(makeID(ref).result, ioErr);
        EXPECT_EQ(resolveID(volume(), id).result, ioErr);
        EXPECT_EQ(rename(ref, "renamed" + std::to_string(damage.size())), noErr) << "other work goes on";
        EXPECT_EQ(readFile(database()), bytes);
    }
}

TEST_F(FileIDStore, OneOfAnotherKindOrALaterVersionIsAnError)
{
    const FSRef ref = refAt(fileNamed("file"));
    for (const char *change : {"PRAGMA user_version = 2", "PRAGMA application_id = 5", "DROP TABLE files"})
    {
        useState(states() / ("changed" + std::to_string(std::string(change).size())));
        const UInt32 id = makeID(ref).id;
        const std::string intact = statePath();
        {
            OtherConnection other(database());
            other.run(change);
        }
        standin::useStateFolder(states() / "elsewhere");   // so that it is opened anew
        makeID(ref);
        standin::useStateFolder(intact);
        EXPECT_EQ(resolveID(volume(), id).result, ioErr) << change;
        EXPECT_EQ(makeID(ref).result, ioErr) << change;
    }
}

TEST_F(FileIDStore, AnEmptyOneHasNoIDsAndIsFilled)
{
    const FSRef ref = refAt(fileNamed("file"));
    mkdir(statePath().c_str(), 0700);
    writeFile(database());
    EXPECT_EQ(resolveID(volume(), 5).result, fidNotFound);
    EXPECT_EQ(makeID(ref).result, noErr);
}

// Whatever bytes are overwritten: an ID leads to its file or to an error, never to another file.
TEST_F(FileIDStore, OverwrittenBytesNeverLeadToAnotherFile)
{
    constexpr int count = 60, rounds = 30;
    std::vector<UInt32> ids;
    mkdir((files() / "in").c_str(), 0755);
    for (int i = 0; i < count; ++i)
        ids.push_back(makeID(refAt(fileNamed((i % 2 ? "in/" : "") + std::to_string(i)))).id);
    const std::string original = database();
    standin::useStateFolder(states() / "elsewhere");
    makeID(refAt(files() / "0"));   // the first one is closed, and whole
    const Bytes intact = readFile(original);
    std::mt19937 random(4711);
    int found = 0, refused = 0;
    for (int round = 0; round < rounds; ++round)
    {
        useState(states() / ("round" + std::to_string(round)));
        mkdir(statePath().c_str(), 0700);
        Bytes bytes = intact;
        for (int i = 0; i < 1 + round % 40; ++i)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        writeFile(database(), bytes);
        for (int i = 0; i < count; ++i)
        {
            const OSErr result = resolveID(volume(), ids[static_cast<std::size_t>(i)]).result;
            ASSERT_TRUE(result == noErr || result == ioErr || result == fidNotFound) << result;
            (result == noErr ? found : refused)++;
            if (result == noErr)
            {
                ASSERT_EQ(pathOfID(ids[static_cast<std::size_t>(i)]), files() / ((i % 2 ? "in/" : "") + std::to_string(i)));
            }
        }
        const OSErr made = makeID(refAt(files() / "0")).result;
        EXPECT_TRUE(made == fidExists || made == noErr || made == ioErr) << made;
    }
    EXPECT_GT(found, 0);
    EXPECT_GT(refused, 0);
}

// SQLite itself has nothing against these.
TEST_F(FileIDStore, ARowThatNobodyOfUsWroteIsAnError)
{
    int number = 0;
    mkdir((files() / "in").c_str(), 0755);
    fileNamed("in/other");
    fileNamed("file");
    const std::string path = fileNamed("in/file");
    for (const char *change : {"UPDATE files SET name = CAST('other' AS BLOB), inode = 1", "UPDATE files SET folder = 0, inode = 1",
                               "UPDATE files SET birth = 0, inode = 1", "UPDATE folders SET parent = number",
                               "UPDATE folders SET name = ''", "DELETE FROM folders"})
    {
        useState(states() / ("changed" + std::to_string(++number)));
        const UInt32 id = makeID(refAt(path)).id;
        OtherConnection(database()).run(change);
        EXPECT_EQ(resolveID(volume(), id).result, ioErr) << change;
    }
}

TEST_F(FileIDStore, ThatWasTakenAwayIsMadeAnewWithOtherIDs)
{
    const FSRef ref = refAt(fileNamed("file"));
    const UInt32 id = makeID(ref).id;
    runShell("rm -r '" + statePath() + "'");
    EXPECT_EQ(resolveID(volume(), id).result, fidNotFound);
    const NewFileID again = makeID(ref);
    EXPECT_EQ(again.result, noErr);
    EXPECT_NE(again.id, id) << "the first ID is drawn by lot";
    EXPECT_EQ(resolveID(volume(), id).result, fidNotFound);
}

// --- where it lies -------------------------------------------------------------------------------------------------------------------------

const Role makesOneID("makesOneID",
                      [](const RoleArguments &arguments) { EXPECT_EQ(makeID(refAt(arguments[0])).result, std::stoi(arguments[1])); });

TEST_F(FileIDStore, LiesWhereTheEnvironmentSays)
{
    const std::string path = fileNamed("file"), here = states().path();
    playRole("makesOneID", {path, "0"}, {0, {"ZERB_STATE_FOLDER=" + here + "/own"}});
    EXPECT_TRUE(exists(here + "/own/file-ids.sqlite"));
    playRole("makesOneID", {path, "0"}, {0, {"ZERB_STATE_FOLDER=", "XDG_STATE_HOME=" + here + "/states"}});
    EXPECT_TRUE(exists(here + "/states/zerb/file-ids.sqlite"));
    playRole("makesOneID", {path, "0"}, {0, {"ZERB_STATE_FOLDER=relative", "XDG_STATE_HOME=", "HOME=" + here + "/home"}});
    EXPECT_TRUE(exists(here + "/home/.local/state/zerb/file-ids.sqlite"));
    EXPECT_EQ(statxOf(here + "/home/.local/state/zerb").stx_mode & 07777u, 0700u) << "nobody else's business";
    writeFile(here + "/file");
    playRole("makesOneID", {path, std::to_string(errFSNotAFolder)}, {0, {"ZERB_STATE_FOLDER=" + here + "/file/in"}});
}

TEST_F(FileIDStore, OnAReadOnlyDiskItIsReadAndNotWritten)
{
    const std::string path = fileNamed("file"), other = fileNamed("other");
    const UInt32 id = makeID(refAt(path)).id;
    standin::useStateFolder(states() / "elsewhere");
    makeID(refAt(path));   // the first one is closed
    ReadOnlyView view(statePath());
    if (!view.problem().empty())
        GTEST_SKIP() << view.problem();
    useState(view.path());
    EXPECT_EQ(pathOfID(id), path);
    EXPECT_EQ(makeID(refAt(other)).result, wPrErr);
    FSRef ref = refAt(path);
    EXPECT_EQ(rename(ref, "renamed"), noErr);
    EXPECT_EQ(pathOfID(id), files() / "renamed") << "by what this process remembers";
    useState(view.path() + "/none");
    EXPECT_EQ(resolveID(volume(), id).result, fidNotFound);
    EXPECT_EQ(makeID(ref).result, wPrErr);
}

const Role seesOthersStore("seesStoreOfAnother", [](const RoleArguments &arguments) {
    const FSVolumeRefNum volume = infoOf(refAt(arguments[0])).volume;
    EXPECT_EQ(resolveID(volume, static_cast<UInt32>(std::stoul(arguments[1]))).result, std::stoi(arguments[2]));
    const OSErr made = makeID(refAt(arguments[0])).result;
    EXPECT_TRUE(made == afpAccessDenied || made == wPrErr) << made;
});

TEST_F(FileIDStore, OfAnotherUserIsReadIfItMayBeRead)
{
    if (!canBecomeOtherUsers())
        GTEST_SKIP() << "this user cannot become another one";
    const std::string path = fileNamed("file"), other = fileNamed("other");
    const std::string id = std::to_string(makeID(refAt(path)).id);
    playRole("seesStoreOfAnother", {other, id, std::to_string(afpAccessDenied)}, sameState(nobody));
    chmod(statePath().c_str(), 0755);
    playRole("seesStoreOfAnother", {other, id, "0"}, sameState(nobody));
    standin::useStateFolder(states() / "elsewhere");
    makeID(refAt(path));   // nobody has it open any more
    playRole("seesStoreOfAnother", {other, id, "0"}, sameState(nobody));
}

void fill(const std::string &path)
{
    const int ballast = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    ASSERT_GE(ballast, 0);
    const std::vector<char> piece(1 << 20, 'x');
    for (std::size_t size = piece.size(); size > 0;)
        if (write(ballast, piece.data(), size) <= 0)
            size /= 2;
    fsync(ballast);
    close(ballast);
}

TEST_F(FileIDStore, OnAFullDiskGivesNoMoreIDsAndLosesNone)
{
    for (DiskKind kind : {DiskKind::tmpfs, DiskKind::ext4})
    {
        if (!diskOf(kind).problem.empty())
            GTEST_SKIP() << diskOf(kind).problem;
        TemporaryFolder small(kind);
        useState(small / "zerb");
        std::map<UInt32, std::string> made;
        const auto make = [&](int number) {
            const std::string path = fileNamed("file" + std::to_string(number));
            const NewFileID id = makeID(refAt(path));
            if (id.result == noErr)
                made.emplace(id.id, path);
            return id.result;
        };
        ASSERT_EQ(make(0), noErr);
        fill(small / "ballast");
        OSErr result = noErr;
        for (int i = 1; i < 3000 && result == noErr; ++i)
            result = make(i);
        EXPECT_EQ(result, dskFulErr) << nameOfKind(kind);
        for (const auto &[id, path] : made)
            ASSERT_EQ(pathOfID(id), path);
        unlink((small / "ballast").c_str());
        EXPECT_EQ(make(3001), noErr);
        standin::useStateFolder(states() / "elsewhere");
        makeID(refAt(fileNamed("file")));
        useState(small / "zerb");
        for (const auto &[id, path] : made)
            ASSERT_EQ(pathOfID(id), path);
        standin::useStateFolder(states() / "elsewhere");
        makeID(refAt(fileNamed("file")));
    }
}

}   // namespace
