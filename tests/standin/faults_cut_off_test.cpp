// Every change, with the process ending before each of its system calls in turn: what is on the disk afterwards is as before or as after,
// the next change works, and what was left lying about is seen by nobody.
#include "tests/standin/faults_calls.h"
#include "tests/standin/faults_rounds.h"

#include <algorithm>
#include <sys/wait.h>

namespace
{

using namespace support;

class CutOffByFault : public ChangeInRounds
{
protected:
    bool runUpTo(int nth);

private:
    bool endsBefore(const std::string &directory, int nth);
};

// Makes the change in a process of its own that ends before the nth call. False if it came to its own end.
bool CutOffByFault::endsBefore(const std::string &directory, int nth)
{
    Scene scene = sceneIn(directory);
    pid_t process = fork();
    if (process == 0)
    {
        FaultyCalls faults({nth, 0});
        _exit(change().run(scene) == change().expected ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_TRUE(WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == statusOfCutOff) << "the change itself failed";
    return WEXITSTATUS(status) == statusOfCutOff;
}

std::size_t visibleNames(const FolderState &state)
{
    return static_cast<std::size_t>(
        std::count_if(state.begin(), state.end(), [](const auto &item) { return item.first.ends_with(" finder"); }));
}

// The next changes of what is there: each works, and brings nothing to light.
void changeEverything(const FSRef &folder)
{
    for (const ListedObject &object : objectsIn(folder))
    {
        SCOPED_TRACE(object.name);
        FSRef ref = object.ref;
        EXPECT_EQ(setLock(ref, false), noErr);
        EXPECT_EQ(setRecord(ref, finderBits | bothDates, 4), noErr);
        EXPECT_EQ(setLock(ref, true), noErr);
        EXPECT_EQ(setLock(ref, false), noErr);
        if (infoOf(ref, kFSCatInfoNodeFlags).nodeFlags & kFSNodeIsDirectoryMask)
            changeEverything(ref);
        else
            EXPECT_EQ(appendToFork(ref, bytesOf("later")), noErr);
    }
}

void deleteEverything(const FSRef &folder)
{
    for (const ListedObject &object : objectsIn(folder))
    {
        SCOPED_TRACE(object.name);
        if (infoOf(object.ref, kFSCatInfoNodeFlags).nodeFlags & kFSNodeIsDirectoryMask)
            deleteEverything(object.ref);
        else
            EXPECT_EQ(FSDeleteObject(&object.ref), noErr);
    }
    EXPECT_EQ(FSDeleteObject(&folder), noErr);
}

bool CutOffByFault::runUpTo(int nth)
{
    SCOPED_TRACE(testing::Message() << "before call " << nth);
    std::string directory = makeScene();
    bool wasCutOff = endsBefore(directory, nth);
    FolderState now = shown(directory);
    EXPECT_TRUE(mayHaveStopped(now, true)) << differences(now);
    FSRef root = refAt(directory);
    changeEverything(root);
    FolderState later = shown(directory);
    EXPECT_EQ(visibleNames(later), visibleNames(now)) << difference(now, later);
    deleteEverything(root);
    EXPECT_FALSE(exists(directory)) << testing::PrintToString(namesIn(directory));
    removeTree(directory);
    return wasCutOff;
}

TEST_P(CutOffByFault, LeavesAllAsBeforeOrAsAfter)
{
    int nth = 1;
    while (runUpTo(nth) && nth < 1000)
        ++nth;
    EXPECT_GT(nth, 3);
    EXPECT_LT(nth, 1000);
    RecordProperty("kills", nth - 1);
}

EVERY_CHANGE_ON_TWO_DISKS(CutOffByFault);

}   // namespace
