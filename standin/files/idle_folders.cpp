#include "standin/files/idle_folders.h"

#include "standin/files/change_lock.h"
#include "standin/files/directories.h"
#include "standin/files/linux_calls.h"
#include "standin/files/open_levels.h"
#include "standin/files/volumes.h"

#include <atomic>
#include <csignal>
#include <exception>
#include <mutex>
#include <new>
#include <pthread.h>
#include <thread>
#include <type_traits>
#include <unistd.h>

namespace standin
{

namespace
{

constexpr int pauseMilliseconds = 250;

struct Keeper
{
    std::mutex mutex;
    bool isRunning = false;
    std::atomic<bool> wasNoted{false};   // since the last look
    pid_t process = 0;                   // in which it runs: a child made by fork() has no such thread
    std::mutex looking;                  // held while it looks, and so while it holds locks of the tables
};

// Never destroyed: the thread may still look when the process ends.
constinit Keeper keeper;
static_assert(std::is_trivially_destructible_v<Keeper>);

// A child must not get a table that this thread, which the child lacks, has locked for ever.
void waitWithForkUntilItRests()
{
    keeper.looking.lock();
    keeper.mutex.lock();
}

void goOnInParent()
{
    keeper.mutex.unlock();
    keeper.looking.unlock();
}

void goOnInChild()
{
    keeper.wasNoted = false;
    goOnInParent();
}

void watchForks()
{
    static const int registered = ::pthread_atfork(waitWithForkUntilItRests, goOnInParent, goOnInChild);
    (void)registered;
}

bool mayEnd(std::size_t left)
{
    const std::lock_guard lock(keeper.mutex);
    keeper.isRunning = left != 0 || keeper.wasNoted;
    return !keeper.isRunning;
}

// Nobody is told that there was no memory for the look: the next one will do.
std::size_t closeWhatCanBe()
try
{
    return closeIdleFolders();
}
catch (const std::bad_alloc &)
{
    return 1;
}

void lookAgainAndAgain()
{
    std::size_t left = 0;
    linux_calls::doNotCountOnThisThread();
    do
    {
        linux_calls::sleepMilliseconds(pauseMilliseconds);
        {
            const std::lock_guard lock(keeper.mutex);
            keeper.wasNoted = false;
        }
        left = closeWhatCanBe();
    } while (!mayEnd(left));
}

// The host's signals are for the host's own threads.
bool startThread()
{
    sigset_t all, former;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former);
    bool isStarted = true;
    try
    {
        std::thread(lookAgainAndAgain).detach();
    }
    catch (const std::exception &)   // no more threads, or no memory for one
    {
        isStarted = false;   // the next folder that is kept tries again
    }
    ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return isStarted;
}

}   // namespace

std::size_t closeIdleFolders()
{
    watchForks();
    const std::lock_guard lock(keeper.looking);
    const std::int64_t usedBefore = linux_calls::coarseMilliseconds() - longestIdleMilliseconds;
    std::size_t left = closeIdleRoots(usedBefore);
    left += closeIdleDirectories(usedBefore);
    left += closeIdleLevels(usedBefore);
    return left + forgetIdleLockDescriptors();
}

// A walk says it for each folder, and mostly it was said already: then the thread will look once more anyway.
void noteKeptFolder()
{
    if (keeper.wasNoted)
        return;
    watchForks();
    const std::lock_guard lock(keeper.mutex);
    const pid_t process = ::getpid();
    keeper.wasNoted = true;
    if (keeper.isRunning && keeper.process == process)
        return;
    keeper.process = process;
    keeper.isRunning = startThread();
}

}   // namespace standin
