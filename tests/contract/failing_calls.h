// A function with every one of its platform calls failing in turn: that call alone, and all from there on.

#pragma once

#include "tests/contract/patterned.h"
#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

template <typename Results>
struct FailingCallsRow
{
    const char *name;
    std::function<OSErr(PlatformDouble &, Patterned<Results> &)> run;
    int callCount;
    bool writesBeforeLastCall = false;
};

template <typename Results>
void PrintTo(const FailingCallsRow<Results> &row, std::ostream *stream)
{
    *stream << row.name;
}

// Says whether the failure was reached; if not, the function has made its last call before.
template <typename Results>
bool failsAt(const FailingCallsRow<Results> &row, int nth, void (Recorder::*fail)(int, OSStatus))
{
    constexpr OSErr code = -12345;   // no code that anything here knows
    PlatformDouble platform;
    Patterned<Results> results;
    (platform.*fail)(nth, code);

    const OSErr result = row.run(platform, results);
    if (!platform.failureReached())
    {
        EXPECT_EQ(result, noErr);
        EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(row.callCount));
        return false;
    }
    SCOPED_TRACE(platform.failedCall());
    EXPECT_EQ(result, code);
    EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(nth)) << "no call follows a failed one";
    EXPECT_EQ(results.untouched(), !(row.writesBeforeLastCall && nth == row.callCount));
    return true;
}

template <typename Results>
void expectEachFailureToEnd(const FailingCallsRow<Results> &row)
{
    for (void (Recorder::*fail)(int, OSStatus) : {&Recorder::failCall, &Recorder::failFromCall})
        for (int nth = 1; failsAt(row, nth, fail); ++nth)
            ASSERT_LE(nth, row.callCount);
}
