// Has the system calls of the file manager fail, one by one, in tests.
#pragma once

#include "standin/files/directories.h"
#include "standin/files/linux_calls.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <string>
#include <unistd.h>

namespace support
{

// Which calls fail, and how. An errorNumber of 0 ends the process instead.
struct Fault
{
    int nth;
    int errorNumber;
    bool fromThenOn = false;
};

inline std::ostream &operator<<(std::ostream &stream, const Fault &fault)
{
    return stream << "call " << fault.nth << (fault.fromThenOn ? " and all after it" : "") << ", errno " << fault.errorNumber;
}

constexpr int statusOfCutOff = 77;

// While it lives, calls fail.
class FaultyCalls
{
public:
    explicit FaultyCalls(const Fault &fault)
    {
        state() = {fault, 0, {}};
        standin::linux_calls::setCallFilter(decide);
    }
    ~FaultyCalls() { standin::linux_calls::setCallFilter(nullptr); }
    FaultyCalls(const FaultyCalls &) = delete;
    FaultyCalls &operator=(const FaultyCalls &) = delete;

    static bool reached() { return !state().failed.empty(); }
    static const std::string &failedCall() { return state().failed; }   // the first one

private:
    struct State
    {
        Fault fault;
        int calls;
        std::string failed;
    };

    static State &state()
    {
        static State only{};
        return only;
    }

    static int decide(const char *call)
    {
        State &now = state();
        ++now.calls;
        if (now.calls < now.fault.nth || (now.calls > now.fault.nth && !now.fault.fromThenOn))
            return 0;
        if (now.fault.errorNumber == 0)
            _exit(statusOfCutOff);
        if (now.failed.empty())
            now.failed = call;
        return now.fault.errorNumber;
    }
};

// While it lives, each call is interrupted twice before it is made.
class InterruptedCalls
{
public:
    InterruptedCalls()
    {
        standin::linux_calls::setCallFilter([](const char *) {
            static std::atomic<unsigned> asked{0};
            return ++asked % 3 == 0 ? 0 : EINTR;
        });
    }
    ~InterruptedCalls() { standin::linux_calls::setCallFilter(nullptr); }
    InterruptedCalls(const InterruptedCalls &) = delete;
    InterruptedCalls &operator=(const InterruptedCalls &) = delete;
};

// While it lives, no call reads, writes or copies more than so many bytes.
class BytesInPieces
{
public:
    explicit BytesInPieces(std::size_t most) { standin::linux_calls::setMostBytesAtOnce(most); }
    ~BytesInPieces() { standin::linux_calls::setMostBytesAtOnce(0); }
    BytesInPieces(const BytesInPieces &) = delete;
    BytesInPieces &operator=(const BytesInPieces &) = delete;
};

// How many descriptors are open when the cache of folders is empty.
inline long openDescriptors()
{
    standin::forgetAllDirectories();
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

}   // namespace support
