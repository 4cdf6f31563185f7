#include "standin/files/linux_mounts.h"

#include "standin/files/linux_repeated.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

namespace standin::linux_calls
{

namespace
{

constexpr int unknownEnd = 256;   // no exit status is as large

// Standard input, output and error output lead nowhere, and no signal is held off or passed over.
class PlainStart
{
public:
    PlainStart()
    {
        ::posix_spawn_file_actions_init(&files_);
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::posix_spawn_file_actions_addopen(&files_, descriptor, "/dev/null", O_RDWR, 0);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~PlainStart()
    {
        ::posix_spawnattr_destroy(&attributes_);
        ::posix_spawn_file_actions_destroy(&files_);
    }
    PlainStart(const PlainStart &) = delete;
    PlainStart &operator=(const PlainStart &) = delete;

    int spawn(pid_t &process, const std::vector<std::string> &words)
    {
        static char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin", language[] = "LC_ALL=C";
        char *environment[] = {path, language, nullptr};
        std::vector<char *> arguments;
        for (const std::string &word : words)
            arguments.push_back(const_cast<char *>(word.c_str()));
        arguments.push_back(nullptr);
        return ::posix_spawn(&process, words[0].c_str(), &files_, &attributes_, arguments.data(), environment);
    }

private:
    posix_spawn_file_actions_t files_;
    posix_spawnattr_t attributes_;
};

}   // namespace

int readMountList(std::string &text)
{
    char buffer[16384];
    text.clear();
    const Descriptor list(repeated([] { return ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC); }));
    if (!list.isOpen())
        return list.number();
    for (;;)
    {
        const ssize_t got = repeated([&] { return ::read(list.number(), buffer, bytesAtOnce(sizeof buffer)); });
        if (got <= 0)
            return static_cast<int>(got);
        text.append(buffer, static_cast<std::size_t>(got));
    }
}

int runProgram(const std::vector<std::string> &words)
{
    PlainStart start;
    pid_t process = 0;
    const int failure = repeated([&] {
        errno = start.spawn(process, words);
        return errno == 0 ? 0 : -1;
    });
    if (failure < 0)
        return failure;
    int status = 0;
    if (repeated([&] { return ::waitpid(process, &status, 0); }) < 0)
        return unknownEnd;   // a host that waits for all its children at once, or for none, took it
    return WIFEXITED(status) ? WEXITSTATUS(status) : unknownEnd;
}

ssize_t readOwnMemory(const void *address, std::span<std::uint8_t> bytes)
{
    const iovec here{bytes.data(), bytes.size()}, there{const_cast<void *>(address), bytes.size()};
    return repeated([&] { return ::process_vm_readv(::getpid(), &here, 1, &there, 1, 0); });
}

}   // namespace standin::linux_calls
