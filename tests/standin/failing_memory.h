// Has memory run out in tests.
#pragma once

namespace support
{

// While it lives, the nth piece of memory that this thread takes with `new` cannot be had, or none from the nth on.
class FailingMemory
{
public:
    FailingMemory(long nth, bool fromThenOn);
    ~FailingMemory();
    FailingMemory(const FailingMemory &) = delete;
    FailingMemory &operator=(const FailingMemory &) = delete;

    static bool reached();   // by the last one
};

}   // namespace support
