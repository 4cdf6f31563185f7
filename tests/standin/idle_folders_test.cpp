// The thread that gives up idle folders holds the locks of their tables while it looks. A child made by fork() lacks that thread: a table that was locked at
// the wrong moment would stay locked in it for ever.
#include "standin/files/idle_folders.h"
#include "tests/standin/test_volume.h"

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace support;

// As the thread does, but without its pauses.
class LookingWithoutPause
{
public:
    LookingWithoutPause()
    {
        standin::closeIdleFolders();   // from here on forks are watched
        looker_ = std::thread([this] {
            while (!isOver_)
                standin::closeIdleFolders();
        });
    }

    ~LookingWithoutPause()
    {
        isOver_ = true;
        looker_.join();
    }

private:
    std::atomic<bool> isOver_{false};
    std::thread looker_;
};

constexpr unsigned secondsAllowed = 20;

// In the child; a lock that never opens ends it by the alarm's signal.
[[noreturn]] void lookUpInTime(const FSRef &ref)
{
    alarm(secondsAllowed);
    _exit(checkRef(ref) == noErr ? 0 : 1);
}

TEST(IdleFolders, AChildOfForkFindsNoTableLocked)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "data");
    const FSRef file = refAt(folder / "file");
    const LookingWithoutPause looking;
    for (int child = 0; child < 200; ++child)
    {
        const pid_t process = fork();
        ASSERT_GE(process, 0);
        if (process == 0)
            lookUpInTime(file);
        int status = -1;
        ASSERT_EQ(waitpid(process, &status, 0), process);
        ASSERT_EQ(status, 0) << "child " << child << (WIFSIGNALED(status) ? " waited for a lock" : " found nothing");
    }
}

}   // namespace
