// A lock for what is held for moments and hardly ever waited for: a walk takes several for each object. It costs half of what a mutex does, because
// nobody has to be woken up when it is released: who waits asks again and again, and sleeps in between.
#pragma once

#include "standin/files/linux_calls.h"

#include <atomic>
#include <thread>

namespace standin
{

class StepLock
{
public:
    constexpr StepLock() = default;
    StepLock(const StepLock &) = delete;
    StepLock &operator=(const StepLock &) = delete;

    void lock()
    {
        while (isHeld_.exchange(true, std::memory_order_acquire))
            waitUntilFree();
    }
    void unlock() { isHeld_.store(false, std::memory_order_release); }

private:
    void waitUntilFree() const
    {
        constexpr int patience = 100;
        for (int attempt = 0; isHeld_.load(std::memory_order_relaxed); ++attempt)
            if (attempt < patience)
                std::this_thread::yield();
            else
                linux_calls::sleepMilliseconds(1);   // a disk may be slow
    }

    std::atomic<bool> isHeld_{false};
};

}   // namespace standin
