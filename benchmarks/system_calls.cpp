#include "benchmarks/system_calls.h"

#include <cerrno>
#include <csignal>
#include <set>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr long followed =
    PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;

// This thread, and no other that the library may have started.
void stop()
{
    const pid_t self = getpid();
    syscall(SYS_tgkill, self, self, SIGSTOP);
}

[[noreturn]] void runTraced(const std::function<void()> &warmUp, const std::function<void()> &work)
{
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        _exit(1);
    stop();   // the other side sets its options
    warmUp();
    stop();   // and counts from here to the next stop
    work();
    stop();
    _exit(0);
}

bool waitsForStop(pid_t process)
{
    int status = 0;
    return waitpid(process, &status, __WALL) == process && WIFSTOPPED(status) && WSTOPSIG(status) == SIGSTOP;
}

// Follows the process and those that it starts.
class Tracing
{
public:
    Tracing(pid_t process, Counted counted) : process_(process), commandsOnly_(counted == Counted::commandsOnly) {}

    // From call to call until the process stops itself again, and gives the number of calls; nothing if it ends instead.
    std::optional<double> callsUntilStop()
    {
        calls_ = 0;
        resume(process_, 0);
        int status = 0;
        for (pid_t stopped; (stopped = waitpid(-1, &status, __WALL)) > 0;)
        {
            if (stopped == process_ && WIFSTOPPED(status) && status >> 16 == 0 && WSTOPSIG(status) == SIGSTOP)
                return calls_ - (commandsOnly_ ? 0 : 2);   // those of stopping
            if (WIFSTOPPED(status))
                goOn(stopped, status);
            else if (stopped == process_)
                return std::nullopt;
        }
        return std::nullopt;
    }

private:
    static void resume(pid_t process, int signal) { ptrace(PTRACE_SYSCALL, process, nullptr, signal); }

    void goOn(pid_t stopped, int status)
    {
        const int signal = WSTOPSIG(status), event = status >> 16;
        const bool isNew = met_.insert(stopped).second && stopped != process_;
        if (signal == (SIGTRAP | 0x80))
            countEntry(stopped);
        if (event == PTRACE_EVENT_EXEC)
            startCommand(stopped);
        if (event == PTRACE_EVENT_FORK || event == PTRACE_EVENT_VFORK || event == PTRACE_EVENT_CLONE)
            inherit(stopped);
        const bool isOurs = signal == (SIGTRAP | 0x80) || event != 0 || (isNew && signal == SIGSTOP);
        resume(stopped, isOurs ? 0 : signal);
    }

    void countEntry(pid_t process)
    {
        __ptrace_syscall_info info{};
        ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info);
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY && (!commandsOnly_ || commands_.count(process) > 0))
            ++calls_;
    }

    // The call that starts it is its own; its entry was seen before.
    void startCommand(pid_t process)
    {
        if (commands_.insert(process).second && commandsOnly_)
            ++calls_;
    }

    // A command's threads and processes are the command's.
    void inherit(pid_t parent)
    {
        unsigned long child = 0;
        ptrace(PTRACE_GETEVENTMSG, parent, nullptr, &child);
        if (commands_.count(parent) > 0)
            commands_.insert(static_cast<pid_t>(child));
    }

    pid_t process_;
    bool commandsOnly_;
    double calls_ = 0;
    std::set<pid_t> met_, commands_;
};

}   // namespace

std::optional<double> countSystemCalls(Counted counted, const std::function<void()> &warmUp, const std::function<void()> &work)
{
    const pid_t process = fork();
    if (process < 0)
        return std::nullopt;
    if (process == 0)
        runTraced(warmUp, work);
    std::optional<double> calls;
    Tracing tracing(process, counted);
    if (waitsForStop(process) && ptrace(PTRACE_SETOPTIONS, process, nullptr, followed) == 0 && tracing.callsUntilStop())
        calls = tracing.callsUntilStop();
    kill(process, SIGKILL);
    for (pid_t gone = 0; gone != process && (gone >= 0 || errno == EINTR);)   // its threads first
        gone = waitpid(-1, nullptr, __WALL);
    return calls;
}
