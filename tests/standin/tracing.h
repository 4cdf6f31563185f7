// Ends a process before one of its system calls that change a disk, whoever makes it: the file manager, the C library or a library of others.
#pragma once

#include <cstdint>
#include <csignal>
#include <fcntl.h>
#include <set>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

// Not named by every C library yet.
#ifndef PTRACE_GET_SYSCALL_INFO
#define PTRACE_GET_SYSCALL_INFO 0x420e
#endif

namespace support
{

// The part of the kernel's record that is used here.
struct SystemCall
{
    std::uint8_t kind, padding[3];
    std::uint32_t architecture;
    std::uint64_t instruction, stack, number, arguments[6];
};

inline bool changesTheDisk(const SystemCall &call)
{
    static const std::set<std::uint64_t> changing{
        SYS_write,
        SYS_pwrite64,
        SYS_pwritev,
        SYS_ftruncate,
        SYS_fallocate,
        SYS_linkat,
        SYS_renameat,
        SYS_renameat2,
        SYS_unlinkat,
        SYS_mkdirat,
        SYS_setxattr,
        SYS_lsetxattr,
        SYS_fsetxattr,
        SYS_fchmodat,
        SYS_removexattr,
        SYS_fchownat,
        SYS_copy_file_range,
        SYS_lremovexattr,
        SYS_utimensat,
        SYS_fchmod,
        SYS_fchown,
        SYS_symlinkat,
        SYS_ioctl,
        SYS_fremovexattr,
        SYS_sendfile,
        463 /* setxattrat */,
        466 /* removexattrat */,
#ifdef SYS_unlink   // which libraries of others still use, where there are such calls
        SYS_unlink,
        SYS_rmdir,
        SYS_mkdir,
        SYS_rename,
        SYS_link,
        SYS_chmod,
        SYS_chown,
#endif
    };
    const bool opensNew = call.number == SYS_openat && (call.arguments[2] & (O_CREAT | (O_TMPFILE & ~O_DIRECTORY)));
    return opensNew || changing.count(call.number) > 0;
}

// Lets the process go on to its next stop. False once it has ended.
inline bool nextStop(pid_t process, int &status)
{
    ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
    return waitpid(process, &status, __WALL) == process && WIFSTOPPED(status);
}

enum class End
{
    cutOff,
    done,
    failed,
};

// Runs to the nth changing call and ends the process there, before the call is made.
inline End runUpTo(pid_t process, int nth)
{
    int status = 0;
    if (waitpid(process, &status, __WALL) != process || !WIFSTOPPED(status))
        return End::failed;
    ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (nextStop(process, status))
    {
        SystemCall call{};
        if (WSTOPSIG(status) == SIGSTOP || WSTOPSIG(status) == SIGUSR1)
            return WSTOPSIG(status) == SIGSTOP ? End::done : End::failed;
        bool entering = WSTOPSIG(status) == (SIGTRAP | 0x80) &&
                        ptrace(static_cast<__ptrace_request>(PTRACE_GET_SYSCALL_INFO), process, sizeof call, &call) > 0 && call.kind == 1;
        if (entering && changesTheDisk(call) && --nth == 0)
            return End::cutOff;
    }
    return End::failed;
}

}   // namespace support
