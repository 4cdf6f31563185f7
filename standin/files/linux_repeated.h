// What the two sources that call Linux share; nobody else includes it.
#pragma once

#include "standin/files/linux_calls.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <string>

namespace standin::linux_calls
{

inline std::atomic<std::uint64_t> callCount{0};
inline std::atomic<CallFilter> callFilter{nullptr};

inline std::atomic<std::size_t> mostBytesAtOnce{0};   // 0: as many as there are

// How many of those bytes one call is to move.
inline std::size_t bytesAtOnce(std::size_t wanted)
{
    const std::size_t most = mostBytesAtOnce.load(std::memory_order_relaxed);
    return most == 0 || wanted < most ? wanted : most;
}

// False on the thread that closes what nobody used: that belongs to no work whose calls are counted.
inline thread_local constinit bool countsCalls = true;

// Makes one system call, again if a signal interrupted it.
template <typename Call>
auto repeated(Call call, const char *name = __builtin_FUNCTION()) -> decltype(call())
{
    for (;;)
    {
        callCount.fetch_add(1, std::memory_order_relaxed);
        const auto filter = callFilter.load(std::memory_order_relaxed);
        const int wanted = filter ? filter(name) : 0;
        const auto result = wanted == 0 ? call() : static_cast<decltype(call())>(-1);
        if (result >= 0)
            return result;
        if (wanted != 0)
            errno = wanted;
        if (errno != EINTR)
            return static_cast<decltype(result)>(-errno);
    }
}

// A path that leads to what a descriptor names, O_PATH or not.
inline std::string throughDescriptor(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

inline std::string throughDescriptor(int folder, const char *name)
{
    return throughDescriptor(folder) + '/' + name;
}

}   // namespace standin::linux_calls
