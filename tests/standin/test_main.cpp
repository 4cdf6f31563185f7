// The main() of the test programs that work on real disks.
//
// The tests run in a child process with mounts of its own; this process only waits for it and then removes the folder that everything lay in.
// So nothing stays behind after a crash either.
#include "tests/standin/disks.h"
#include "tests/standin/processes.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

pid_t testProcess = -1;

void passOn(int signal)
{
    if (testProcess > 0)
        kill(testProcess, signal);
}

int waitForTests()
{
    std::signal(SIGINT, passOn);
    std::signal(SIGTERM, passOn);
    int status = 0;
    while (waitpid(testProcess, &status, 0) < 0 && errno == EINTR)
        continue;
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    std::fprintf(stderr, "the tests were ended by signal %d\n", WTERMSIG(status));
    return 128 + WTERMSIG(status);
}

int runTests(int argumentCount, char **arguments)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setenv("LC_ALL", "C", 1);   // short names are in the encoding that the locale decides
    unsetenv("ZERB_FONT");      // stored pictures show the font that is taken without it
    support::takeOwnMounts();
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}

}   // namespace

int main(int argumentCount, char **arguments)
{
    int status = 0;
    if (support::roleWasAsked(argumentCount, arguments, status))
        return status;
    std::string folder = support::makeWorkFolder();
    setenv("ZERB_STATE_FOLDER", (folder + "/state").c_str(), 1);   // not that of whoever runs the tests
    testProcess = fork();
    if (testProcess == 0)
        return runTests(argumentCount, arguments);
    status = waitForTests();
    support::removeTree(folder);
    return status;
}
