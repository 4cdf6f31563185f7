// Every change, with each of its system calls failing in turn: what is on the disk afterwards is as before or as after, nothing is lost,
// nothing is left open, and nothing is left lying about.
#include "tests/standin/faults_calls.h"
#include "tests/standin/faults_errnos.h"
#include "tests/standin/faults_rounds.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace
{

using namespace support;

// A change may succeed although one of these calls failed, and has then taken place in full. Any other failure must be reported: above all
// that of every call that writes, but for the two at the end.
struct Ignored
{
    const char *call, *reason;
};

const Ignored ignoredFailures[] = {
    {"status", "what is not found under its name is looked for elsewhere; a sidecar that cannot be looked at stays when its file is "
               "deleted, and is shown"},
    {"openAt", "the same; and a folder that cannot be read cannot be locked against other processes, but may be changed"},
    {"openFolderBeneath", "the way down to a folder is gone level by level then"},
    {"tryLock", "there are disks without locks"},
    {"unlock", "the lock goes with its descriptor then"},
    {"listAttributes", "a lock that may not be read is none; the Finder information is not needed where a sidecar is there already"},
    {"getAttribute", "the same"},
    {"readDirectory", "a folder is not empty, and what is in it cannot be read: the second attempt to remove it says so"},
    {"readAt", "a sidecar that cannot be read stays when its file is deleted, and is shown; an orphan in the way is moved aside unread"},
    {"copyRange", "the bytes go another way then"},
    {"sendBytes", "the same"},
    {"copyBytes", "the bytes go through a buffer then"},
    {"setOwner", "a new sidecar that cannot be given to the file's owner belongs to who made it"},
    {"unlinkAt", "an old name of a sidecar is hidden and goes later; the sidecar of a deleted file stays, and is shown"},
};

// And with these error numbers, after which there is another way.
const struct
{
    const char *call;
    std::vector<int> errorNumbers;
    const char *reason;
} otherWays[] = {
    {"openTemporary", {EOPNOTSUPP}, "there are disks without nameless files: it gets a hidden name"},
    {"allocateRoom", {EOPNOTSUPP}, "there are disks that cannot set room aside: the file is just made longer"},
    {"linkAt", {EMLINK, EOPNOTSUPP, EPERM}, "there are disks without links: a sidecar is copied"},
};

bool mayBeIgnored(const std::string &call, int errorNumber)
{
    const auto isCall = [&](const auto &row) { return call == row.call; };
    const auto other = std::find_if(std::begin(otherWays), std::end(otherWays), isCall);
    return std::any_of(std::begin(ignoredFailures), std::end(ignoredFailures), isCall) ||
           (other != std::end(otherWays) && std::count(other->errorNumbers.begin(), other->errorNumbers.end(), errorNumber) > 0);
}

bool hasTemporaries(const std::string &directory)
{
    for (const auto &entry : std::filesystem::recursive_directory_iterator(directory))
        if (entry.path().filename().string().starts_with(".zerb-") && entry.path().filename() != ".zerb-1-1")
            return true;
    return false;
}

class Faults : public ChangeInRounds
{
protected:
    bool runWith(const Fault &fault);
    void runWithOthersOf(const std::string &call, int nth);

    int failures_ = 0;

private:
    void expectRight(const FolderState &now, OSErr result, const Fault &fault);
};

// All of them where the environment has ZERB_EVERY_ERROR_NUMBER. Else it is the turn of some of a call's, others with the next call and the next change.
std::size_t errorNumbersAtATime(DiskKind disk)
{
    static const bool all = std::getenv("ZERB_EVERY_ERROR_NUMBER") != nullptr;
    return all ? SIZE_MAX : disk == DiskKind::tmpfs ? 3 : 1;
}

void Faults::expectRight(const FolderState &now, OSErr result, const Fault &fault)
{
    const bool hasNoRoom = fault.errorNumber == ENOSPC || fault.errorNumber == EDQUOT || fault.errorNumber == E2BIG;
    const bool isMadeRoomFor = change().isExchange && FaultyCalls::failedCall() == "setAttribute" && hasNoRoom;
    if (result == change().expected)
    {
        EXPECT_TRUE(result != noErr || mayBeIgnored(FaultyCalls::failedCall(), fault.errorNumber) || isMadeRoomFor)
            << "succeeded although " << FaultyCalls::failedCall() << " failed";
        EXPECT_TRUE(isDone(now)) << "the result says that all is done, but:" << differences(now);
        return;
    }
    EXPECT_NE(result, noErr);
    EXPECT_TRUE(mayHaveStopped(now, fault.fromThenOn)) << differences(now);
}

// False if the change made fewer calls than that.
bool Faults::runWith(const Fault &fault)
{
    SCOPED_TRACE(testing::Message() << fault);
    std::string directory = makeScene();
    Scene scene = sceneIn(directory);
    long open = openDescriptors();
    OSErr result;
    {
        FaultyCalls faults(fault);
        result = change().run(scene);
    }
    EXPECT_LE(openDescriptors(), open) << "descriptors before and after, when those kept for earlier work may be gone";
    if (!FaultyCalls::reached())
    {
        EXPECT_EQ(result, change().expected);
        removeTree(directory);
        return false;
    }
    ++failures_;
    SCOPED_TRACE(testing::Message() << FaultyCalls::failedCall() << " failed, the result was " << result);
    EXPECT_TRUE(!hasTemporaries(directory) || FaultyCalls::failedCall() == "unlinkAt" || fault.fromThenOn) << "a temporary was left";
    expectRight(shown(directory), result, fault);
    removeTree(directory);
    return true;
}

void Faults::runWithOthersOf(const std::string &call, int nth)
{
    const std::vector<int> &numbers = errorNumbersOf(call);
    ASSERT_FALSE(numbers.empty()) << "nobody says with which error numbers " << call << " can fail";
    const std::size_t count = std::min(numbers.size(), errorNumbersAtATime(std::get<0>(GetParam())));
    for (std::size_t turn = 0; turn < count; ++turn)
    {
        const int number = numbers[(static_cast<std::size_t>(nth) * count + turn + Faults::number()) % numbers.size()];
        const bool isNotPermitted = number == EACCES || number == EPERM || number == EROFS;
        const bool hidesTheLock = isNotPermitted && change().expected == fLckdErr;   // a lock that may not be read is none
        if (number != EIO && !hidesTheLock)
            runWith({nth, number, false});
    }
}

TEST_P(Faults, LeaveAllAsBeforeOrAsAfter)
{
    bool reached = true;
    int nth = 0;
    while (reached && nth < 1000)
    {
        ++nth;
        reached = runWith({nth, EIO, false});
        if (!reached)
            break;
        runWithOthersOf(FaultyCalls::failedCall(), nth);
        runWith({nth, EIO, true});
    }
    EXPECT_GT(nth, 3);
    EXPECT_LT(nth, 1000);
    RecordProperty("failures", failures_);
}

EVERY_CHANGE_ON_TWO_DISKS(Faults);

}   // namespace
