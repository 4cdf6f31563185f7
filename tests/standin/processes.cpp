#include "tests/standin/processes.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <map>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace support
{

namespace
{

// Asked before the tests take mounts of their own: afterwards the path that Linux tells may lead nowhere.
const std::string ownProgram = std::filesystem::read_symlink("/proc/self/exe");

std::map<std::string, void (*)(const RoleArguments &)> &roles()
{
    static std::map<std::string, void (*)(const RoleArguments &)> all;
    return all;
}

std::vector<char *> pointers(const std::vector<std::string> &words)
{
    std::vector<char *> list;
    for (const std::string &word : words)
        list.push_back(const_cast<char *>(word.c_str()));
    list.push_back(nullptr);
    return list;
}

[[noreturn]] void becomeProgram(const std::string &file, const std::vector<std::string> &words, const std::vector<std::string> &environment,
                                int output)
{
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    for (const std::string &setting : environment)
        putenv(const_cast<char *>(setting.c_str()));
    // The supervisor's end must end whatever the tests started.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execvp(file.c_str(), pointers(words).data());
    std::perror(file.c_str());
    _exit(127);
}

Running startFile(const std::string &file, const std::vector<std::string> &words, const std::vector<std::string> &environment)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    pid_t process = fork();
    if (process == 0)
        becomeProgram(file, words, environment, ends[1]);
    close(ends[1]);
    return Running(process, ends[0]);
}

// What the stand-in loads when it needs it may lie where another user cannot get at it. What is loaded already is found by its path alone.
void loadParts()
{
    for (const char *part : {"zerbdatabase.so", "zerbtext.so"})
        dlopen((std::filesystem::path(ownProgram).parent_path() / part).c_str(), RTLD_NOW | RTLD_LOCAL);
}

// True if it worked. The process stays readable for itself in /proc (a change of user takes that away).
bool becomeUser(uid_t user)
{
    if (user == 0)
        return true;
    loadParts();
    bool done = setgroups(0, nullptr) == 0 && setresgid(user, user, user) == 0 && setresuid(user, user, user) == 0;
    prctl(PR_SET_DUMPABLE, 1);
    return done;
}

}   // namespace

Running::Running(Running &&other) noexcept : process_(std::exchange(other.process_, -1)), output_(std::exchange(other.output_, -1)) {}

Running::~Running()
{
    kill(SIGKILL);
    wait();
}

void Running::kill(int signal)
{
    if (process_ > 0)
        ::kill(process_, signal);
}

void Running::waitForOutput()
{
    pollfd output{output_, POLLIN, 0};
    while (poll(&output, 1, -1) < 0 && errno == EINTR)
        continue;
}

Ended Running::wait()
{
    Ended ended;
    if (process_ <= 0)
        return ended;
    char buffer[4096];
    for (ssize_t count; (count = read(output_, buffer, sizeof buffer)) > 0 || (count < 0 && errno == EINTR);)
        ended.output.append(buffer, static_cast<std::size_t>(count > 0 ? count : 0));
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR)
        continue;
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    close(output_);
    process_ = output_ = -1;
    return ended;
}

Running start(const std::vector<std::string> &words, const std::vector<std::string> &environment)
{
    return startFile(words.front(), words, environment);
}

Ended run(const std::vector<std::string> &words)
{
    return start(words).wait();
}

Ended runShell(const std::string &line)
{
    return run({"/bin/sh", "-c", line});
}

bool programExists(const std::string &name)
{
    return runShell("PATH=\"$PATH:/usr/sbin:/sbin\" command -v '" + name + "'").status == 0;
}

void moveByProgram(const std::string &from, const std::string &to)
{
    Ended ended = run({"mv", "-T", "--", from, to});
    EXPECT_EQ(ended.status, 0) << ended.output;
}

Role::Role(const char *name, void (*play)(const RoleArguments &))
{
    roles()[name] = play;
}

Running startRole(const std::string &name, const RoleArguments &arguments, const RoleSetting &setting)
{
    std::vector<std::string> words{"tests", "--role", name, std::to_string(setting.user)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return startFile(ownProgram, words, setting.environment);
}

std::string playRole(const std::string &name, const RoleArguments &arguments, const RoleSetting &setting)
{
    Ended ended = startRole(name, arguments, setting).wait();
    EXPECT_EQ(ended.status, 0) << "as " << name << ":\n" << ended.output;
    return ended.output;
}

bool canBecomeOtherUsers()
{
    std::ifstream map("/proc/self/uid_map");
    unsigned long first = 0, outside = 0, count = 0;
    map >> first >> outside >> count;
    return geteuid() == 0 && first == 0 && count > nobody;
}

bool roleWasAsked(int argumentCount, char **arguments, int &status)
{
    if (argumentCount < 4 || std::string(arguments[1]) != "--role")
        return false;
    auto role = roles().find(arguments[2]);
    if (role == roles().end() || !becomeUser(static_cast<uid_t>(std::stoul(arguments[3]))))
    {
        std::fprintf(stderr, "cannot play the role %s as user %s\n", arguments[2], arguments[3]);
        status = 125;
        return true;
    }
    role->second(RoleArguments(arguments + 4, arguments + argumentCount));
    status = testing::Test::HasFailure() ? 1 : 0;
    return true;
}

}   // namespace support
