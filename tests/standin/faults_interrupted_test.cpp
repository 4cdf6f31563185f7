// Every change, with each of its system calls interrupted, and with bytes that go in pieces only: it takes place as if nothing had happened.
#include "tests/standin/faults_calls.h"
#include "tests/standin/faults_rounds.h"

namespace
{

using namespace support;

class Interruptions : public ChangeInRounds
{
protected:
    template <typename Disturbance, typename... Arguments>
    void runWith(Arguments... arguments)
    {
        const std::string directory = makeScene();
        Scene scene = sceneIn(directory);
        OSErr result;
        std::uint64_t calls = standin::linux_calls::count();
        {
            const Disturbance disturbance(arguments...);
            result = change().run(scene);
        }
        calls_ = standin::linux_calls::count() - calls;
        EXPECT_EQ(result, change().expected);
        const FolderState now = shown(directory);
        EXPECT_TRUE(isDone(now)) << differences(now);
        removeTree(directory);
    }

    std::uint64_t calls_ = 0;
};

TEST_P(Interruptions, AreNotNoticed)
{
    runWith<InterruptedCalls>();
    EXPECT_GT(calls_, 6u) << "each call is counted three times";
}

TEST_P(Interruptions, NorAreBytesThatGoInPieces)
{
    runWith<BytesInPieces>(std::size_t{1});
    runWith<BytesInPieces>(std::size_t{7});
}

EVERY_CHANGE_ON_TWO_DISKS(Interruptions);

}   // namespace
