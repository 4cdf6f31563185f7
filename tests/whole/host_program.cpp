#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <pty.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace host_tests
{

namespace
{

using testing::HasSubstr;

// A file without a name, for one stream of the program.
class Stream
{
public:
    Stream() : file_(std::tmpfile())
    {
        if (file_ == nullptr)
            throw std::runtime_error("no temporary file");
    }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    ~Stream() { std::fclose(file_); }

    int descriptor() const { return fileno(file_); }

    std::string text() const
    {
        std::rewind(file_);
        std::string text;
        char buffer[4096];
        while (std::size_t count = std::fread(buffer, 1, sizeof buffer, file_))
            text.append(buffer, count);
        return text;
    }

private:
    std::FILE *file_;
};

void sendTo(int descriptor, int stream)
{
    if (dup2(descriptor, stream) < 0)
        _exit(126);
}

void prepare(const Setting &setting, const Stream &output, const Stream &errors)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const std::string &entry : setting.environment)
        putenv(const_cast<char *>(entry.c_str()));
    if (!setting.directory.empty() && chdir(setting.directory.c_str()) != 0)
        _exit(126);
    sendTo(open("/dev/null", O_RDONLY), STDIN_FILENO);
    sendTo(setting.outputFile.empty() ? output.descriptor() : open(setting.outputFile.c_str(), O_WRONLY), STDOUT_FILENO);
    sendTo(errors.descriptor(), STDERR_FILENO);
    if (setting.user != 0 && (setgroups(0, nullptr) != 0 || setgid(setting.user) != 0 || setuid(setting.user) != 0))
        _exit(126);
}

[[noreturn]] void becomeProgram(const Words &words, const Setting &setting)
{
    std::vector<char *> arguments = {const_cast<char *>("zerb")};
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    execv(setting.program.c_str(), arguments.data());
    std::perror(setting.program.c_str());
    _exit(127);
}

int statusOf(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR)
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}   // namespace

Outcome runHost(const Words &words, const Setting &setting)
{
    Stream output;
    Stream errors;
    std::fflush(nullptr);
    pid_t process = fork();
    if (process == 0)
    {
        prepare(setting, output, errors);
        becomeProgram(words, setting);
    }
    Outcome outcome;
    outcome.status = statusOf(process);
    outcome.output = output.text();
    outcome.errors = errors.text();
    return outcome;
}

void HostTest::makeFolder(std::string_view name) const
{
    ASSERT_EQ(mkdir(path(name).c_str(), 0755), 0);
}

Outcome HostTest::zerb(const Words &words, const Words &environment) const
{
    Setting setting;
    setting.directory = folder_.path();
    setting.environment = environment;
    return runHost(words, setting);
}

std::string HostTest::zerbWell(const Words &words) const
{
    Outcome outcome = zerb(words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return outcome.output;
}

std::string HostTest::zerbOnTerminal(const Words &words, const std::string &typed) const
{
    Setting setting;
    setting.directory = folder_.path();
    int terminal = -1;
    pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (process == 0)
    {
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
        if (chdir(setting.directory.c_str()) != 0)
            _exit(126);
        becomeProgram(words, setting);
    }
    EXPECT_EQ(write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    std::string shown;
    char buffer[512];
    for (ssize_t count; (count = read(terminal, buffer, sizeof buffer)) > 0;)   // EIO when the program has ended
        shown.append(buffer, static_cast<std::size_t>(count));
    close(terminal);
    EXPECT_LT(statusOf(process), 126);
    return shown;
}

nlohmann::json HostTest::info(const std::string &name, const Words &options) const
{
    Words words = {"info", "--json"};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"--", name});
    nlohmann::json list = nlohmann::json::parse(zerbWell(words), nullptr, false);
    EXPECT_TRUE(list.is_array() && list.size() == 1) << list;
    return list.is_array() && list.size() == 1 ? list[0] : nlohmann::json::object();
}

void HostTest::expectFailure(const Outcome &outcome, const std::string &object, const std::string &code)
{
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr(": " + object + ": "));
    EXPECT_THAT(outcome.errors, HasSubstr(code));
}

}   // namespace host_tests
