// Every change, with no memory to be had at each place in turn where it takes some, and with none, one, two, ... descriptors left: the result says so, what
// is on the disk is as after a kill at worst, nothing is left open, no lock is left held, and the next change works.
#include "tests/standin/failing_memory.h"
#include "tests/standin/faults_calls.h"
#include "tests/standin/faults_rounds.h"

#include <cstdlib>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace support;

class Shortages : public ChangeInRounds
{
protected:
    bool runWithoutMemory(long nth, bool fromThenOn);
    bool runWithDescriptors(rlim_t left);

    int failures_ = 0;

private:
    void expectRight(const std::string &directory, OSErr result, OSErr shortage);
};

void Shortages::expectRight(const std::string &directory, OSErr result, OSErr shortage)
{
    const FolderState now = shown(directory);
    EXPECT_TRUE(result == change().expected || result == shortage) << result;
    if (result == change().expected)
    {
        EXPECT_TRUE(isDone(now)) << "the result says that all is done, but:" << differences(now);
    }
    else
    {
        EXPECT_TRUE(mayHaveStopped(now, true)) << differences(now);
    }
    const FSRef other = refAt(directory + "/other");
    EXPECT_EQ(setRecord(other, finderBits, 3), noErr) << "the next change";
}

// While it lives, this process can open only so many files more.
class FewDescriptors
{
public:
    explicit FewDescriptors(rlim_t left)
    {
        const int next = dup(STDIN_FILENO);
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit wanted{static_cast<rlim_t>(next) + left, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &wanted), 0);
        close(next);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

private:
    rlimit before_{};
};

// True if the change took place.
bool Shortages::runWithDescriptors(rlim_t left)
{
    SCOPED_TRACE(testing::Message() << left << " descriptors left");
    const std::string directory = makeScene();
    Scene scene = sceneIn(directory);
    const long open = openDescriptors();
    OSErr result;
    {
        const FewDescriptors few(left);
        result = change().run(scene);
    }
    EXPECT_LE(openDescriptors(), open);
    expectRight(directory, result, result == fBsyErr ? fBsyErr : tmfoErr);   // what is in a folder cannot be read: it is not empty
    removeTree(directory);
    return result == change().expected;
}

// The change as a program makes it, which may run out of memory itself.
OSErr runOrRunOut(const Change &change, Scene &scene)
try
{
    return change.run(scene);
}
catch (const std::bad_alloc &)
{
    return memFullErr;
}

// False if the change took less often memory than that.
bool Shortages::runWithoutMemory(long nth, bool fromThenOn)
{
    SCOPED_TRACE(testing::Message() << "piece of memory " << nth << (fromThenOn ? " and all after it" : ""));
    const std::string directory = makeScene();
    Scene scene = sceneIn(directory);
    const long open = openDescriptors();
    OSErr result;
    {
        const FailingMemory failing(nth, fromThenOn);
        result = runOrRunOut(change(), scene);
    }
    const bool wasReached = FailingMemory::reached();
    EXPECT_LE(openDescriptors(), open);
    expectRight(directory, result, wasReached ? memFullErr : change().expected);
    removeTree(directory);
    failures_ += wasReached;
    return wasReached;
}

// With all of them every place is reached. Else every fifth is, beginning elsewhere for each change.
TEST_P(Shortages, OfMemoryLoseNothing)
{
    static const long step = std::getenv("ZERB_EVERY_PIECE_OF_MEMORY") ? 1 : 5;
    const long first = 1 + static_cast<long>(number()) % step;
    long nth = first;
    while (nth < 5000 && runWithoutMemory(nth, false))
        nth += step;
    EXPECT_LT(nth, 5000);
    for (nth = first; nth < 5000 && runWithoutMemory(nth, true);)
        nth += 4 * step;
    RecordProperty("failures", failures_);
}

TEST_P(Shortages, OfDescriptorsLoseNothing)
{
    rlim_t left = 0;
    while (left < 30 && !runWithDescriptors(left))
        ++left;
    EXPECT_LT(left, 30u);
}

EVERY_CHANGE_ON_TWO_DISKS(Shortages);

}   // namespace
