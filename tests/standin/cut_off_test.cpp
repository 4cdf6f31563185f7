// Every change, cut off before each system call that changes the disk in turn: afterwards all is as before or as after, and what was
// left over is seen by nobody and goes with the next changes.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"
#include "tests/standin/tracing.h"

#include <csignal>
#include <set>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace support;

// A folder with "one/first" and "one/second", each with data, fork and metadata of its own, and an empty folder "two".
struct Scene
{
    FSRef first, second, one, two;
};

Scene sceneIn(const std::string &folder)
{
    return {refAt(folder + "/one/first"), refAt(folder + "/one/second"), refAt(folder + "/one"), refAt(folder + "/two")};
}

OSErr setDates(const FSRef &ref, UInt16 fraction)
{
    FSCatalogInfo info{};
    info.createDate = dateOfUnix(1000000000, fraction);
    info.backupDate = dateOfUnix(1000000000, fraction);
    return change(ref, kFSCatInfoCreateDate | kFSCatInfoBackupDate, info);
}

struct Action
{
    const char *name;
    OSErr (*act)(Scene &scene);
};

const Action actions[] = {
    {"SetType", [](Scene &scene) { return setType(scene.first, code("NEW1"), code("NEW1")); }},
    {"SetDates", [](Scene &scene) { return setDates(scene.first, 2); }},
    {"Lock", [](Scene &scene) { return setLock(scene.first, true); }},
    {"Rename", [](Scene &scene) { return rename(scene.first, "renamed"); }},
    {"Move", [](Scene &scene) { return move(scene.first, scene.two); }},
    {"Exchange", [](Scene &scene) { return FSExchangeObjects(&scene.first, &scene.second); }},
    {"Delete", [](Scene &scene) { return FSDeleteObject(&scene.first); }},
    {"Create", [](Scene &scene) { return makeFile(scene.two, "created"); }},
    {"CreateFolder", [](Scene &scene) { return makeFolder(scene.two, "created"); }},
};

const Action &actionNamed(const std::string &name)
{
    for (const Action &action : actions)
        if (name == action.name)
            return action;
    throw std::runtime_error("no action " + name);
}

// Stops itself before and after the action, for the tracer.
const Role actsOnce("actsOnceUnderATracer", [](const RoleArguments &arguments) {
    Scene scene = sceneIn(arguments[0]);
    const Action &action = actionNamed(arguments[1]);
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    OSErr result = action.act(scene);
    raise(result == noErr ? SIGSTOP : SIGUSR1);
    _exit(0);
});

using Row = std::tuple<DiskKind, const char *>;

class CutOff : public DiskRowTest<Row>
{
protected:
    void SetUp() override
    {
        DiskRowTest::SetUp();
        if (!IsSkipped() && action() == "Exchange" && !offersExchange(refAt(folder().path())))
            GTEST_SKIP() << "files are not exchanged on this disk";
    }
    std::string action() const { return std::get<1>(GetParam()); }
    std::string place(int round, const std::string &name) { return folder() / (std::to_string(round) + name); }

    void makeScene(int round);
    void expectBeforeOrAfter(int round);
    void expectExchangedOrOnTheWay(int round);
    void clearAway(int round);
    UInt32 listed(int round);
};

Bytes forkOfFile(const std::string &name)
{
    return bytesOf("the fork of " + name + std::string(5000, 'f'));
}

void CutOff::makeScene(int round)
{
    for (std::string part : {"", "/one", "/two"})
        mkdir(place(round, part).c_str(), 0755);
    for (std::string name : {"first", "second"})
    {
        writeFile(place(round, "/one/" + name), name);
        FSRef ref = refAt(place(round, "/one/" + name));
        ASSERT_EQ(writeFork(ref, true, forkOfFile(name)), noErr);
        OSType type = name == "first" ? code("OLD1") : code("OLD2");
        ASSERT_EQ(setType(ref, type, type), noErr);
        ASSERT_EQ(setDates(ref, 1), noErr);
    }
    // Somebody's only copy of a fork, in the way of what is created.
    writeFile(place(round, "/two/._created"), plainSidecar(bytesOf("an orphan's fork")));
}

UInt32 CutOff::listed(int round)
{
    return infoOf(refAt(place(round, "/one")), kFSCatInfoValence).valence + infoOf(refAt(place(round, "/two")), kFSCatInfoValence).valence;
}

// The file and its fork belong together; its metadata are one of the two states, each as a whole.
void expectWhole(const std::string &path, OSType oldType)
{
    SCOPED_TRACE(path);
    FSRef ref = refAt(path);
    Bytes data = forkOf(ref, false), fork = forkOf(ref);
    EXPECT_EQ(fork, forkOfFile(std::string(data.begin(), data.end())));
    FSCatalogInfo info = infoOf(ref);
    EXPECT_EQ(+fileInfo(info).fileType, +fileInfo(info).fileCreator);
    EXPECT_TRUE(fileInfo(info).fileType == oldType || fileInfo(info).fileType == code("NEW1"));
    EXPECT_EQ(info.createDate, info.backupDate);
    EXPECT_TRUE(info.createDate.fraction == 1 || info.createDate.fraction == 2);
}

// Two of three places have a file, and each content is in one of them. The metadata stay with the places.
void CutOff::expectExchangedOrOnTheWay(int round)
{
    std::set<Bytes> contents;
    int files = 0;
    for (std::string name : {"/one/first", "/one/second", "/one/first.exchanging"})
        if (exists(place(round, name)))
        {
            ++files;
            expectWhole(place(round, name), name == "/one/second" ? code("OLD2") : code("OLD1"));
            contents.insert(readFile(place(round, name)));
        }
    EXPECT_EQ(files, 2);
    EXPECT_EQ(contents.size(), 2u) << "each content once";
    EXPECT_EQ(listed(round), 3u) << runShell("ls -ali '" + place(round, "") + "'/*").output;
}

void CutOff::expectBeforeOrAfter(int round)
{
    if (action() == "Exchange")
        return expectExchangedOrOnTheWay(round);
    int firsts = 0;
    std::set<Bytes> contents;
    for (std::string name : {"/one/first", "/one/renamed", "/two/first"})
        if (exists(place(round, name)))
        {
            ++firsts;
            expectWhole(place(round, name), code("OLD1"));
            contents.insert(readFile(place(round, name)));
        }
    EXPECT_TRUE(firsts == 1 || (firsts == 0 && action() == "Delete")) << firsts;
    expectWhole(place(round, "/one/second"), code("OLD2"));
    contents.insert(readFile(place(round, "/one/second")));
    EXPECT_EQ(static_cast<int>(contents.size()), firsts + 1) << "each content once";
    // The orphan is there under its old name or under its new one, never twice and never as the fork of what was created.
    UInt32 created = exists(place(round, "/two/created"));
    UInt32 expected = static_cast<UInt32>(firsts) + 1 + created + 1;
    if (firsts == 0)   // a deletion removes the file first: its sidecar may still be there, a file of its own now
        expected += exists(place(round, "/one/._first"));
    EXPECT_EQ(listed(round), expected) << runShell("ls -ali '" + place(round, "") + "'/*").output;
    if (created)
    {
        EXPECT_EQ(+infoOf(refAt(place(round, "/two/created"))).rsrcLogicalSize, 0u);
    }
}

// The changes that come next: they find nothing in their way, and the leftovers do not come to light.
void CutOff::clearAway(int round)
{
    for (std::string name : {"/one/first.exchanging", "/one/first", "/one/renamed", "/two/first", "/one/second", "/two/created"})
        if (exists(place(round, name)))
        {
            FSRef ref = refAt(place(round, name));
            UInt32 before = listed(round);
            EXPECT_EQ(setLock(ref, false), noErr);
            EXPECT_EQ(setType(ref, code("NEXT"), code("NEXT")), noErr);
            EXPECT_EQ(listed(round), before) << "after a change of " << name << runShell("ls -ali '" + place(round, "") + "'/*").output;
            EXPECT_EQ(FSDeleteObject(&ref), noErr);
        }
    for (const std::string &name : namesIn(place(round, "/two")))
        if (name.find("created") != std::string::npos && name.find(".zerb-") == std::string::npos)
            unlink(place(round, "/two/" + name).c_str());
    if (action() == "Delete")
        unlink(place(round, "/one/._first").c_str());
    for (std::string part : {"/one", "/two"})
    {
        FSRef ref = refAt(place(round, part));
        EXPECT_EQ(FSDeleteObject(&ref), noErr) << part << testing::PrintToString(namesIn(place(round, part)));
    }
}

TEST_P(CutOff, LeavesAllAsBeforeOrAsAfter)
{
    End end = End::cutOff;
    int nth = 0;
    while (end == End::cutOff && !HasFailure())
    {
        SCOPED_TRACE(testing::Message() << "cut off before change " << ++nth);
        makeScene(nth);
        Running process = startRole("actsOnceUnderATracer", {place(nth, ""), action()});
        end = runUpTo(process.process(), nth);
        process.kill(SIGKILL);
        EXPECT_NE(end, End::failed) << process.wait().output;
        process.wait();
        expectBeforeOrAfter(nth);
        clearAway(nth);
    }
    EXPECT_GT(nth, 1) << "the action changes nothing";
}

std::vector<const char *> actionNames()
{
    std::vector<const char *> names;
    for (const Action &action : actions)
        names.push_back(action.name);
    return names;
}

std::string rowName(const testing::TestParamInfo<Row> &row)
{
    return std::string(std::get<1>(row.param)) + "On" + nameOfKind(std::get<0>(row.param));
}

// Disks that differ in the steps taken: with and without attributes, and with another disk underneath.
const auto disksOfOwnWays = testing::Values(DiskKind::tmpfs, DiskKind::ext4, DiskKind::ext4Small, DiskKind::overlay);

INSTANTIATE_TEST_SUITE_P(SomeDisks, CutOff, testing::Combine(disksOfOwnWays, testing::ValuesIn(actionNames())), rowName);

}   // namespace
