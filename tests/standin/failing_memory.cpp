#include "tests/standin/failing_memory.h"

#include <cstdlib>
#include <new>

namespace
{

// Of this thread alone: others go on.
thread_local constinit long untilFailure = 0;   // 0: none fails
thread_local constinit bool failsFromThenOn = false, hasFailed = false;

bool isTurn()
{
    if (untilFailure == 0)
        return false;
    if (untilFailure > 1)
    {
        --untilFailure;
        return false;
    }
    hasFailed = true;
    if (!failsFromThenOn)
        untilFailure = 0;
    return true;
}

}   // namespace

namespace support
{

FailingMemory::FailingMemory(long nth, bool fromThenOn)
{
    hasFailed = false;
    failsFromThenOn = fromThenOn;
    untilFailure = nth;
}

FailingMemory::~FailingMemory()
{
    untilFailure = 0;
}

bool FailingMemory::reached()
{
    return hasFailed;
}

}   // namespace support

// The whole program's. A sanitizer has forms of its own for all that is not replaced, so those that one `delete` serves are replaced together.
void *operator new(std::size_t size)
{
    void *memory = isTurn() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return isTurn() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept
{
    std::free(memory);
}
