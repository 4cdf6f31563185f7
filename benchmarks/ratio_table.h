// Ours beside theirs: measured in turns, a few microseconds each, so that whatever else the machine does falls on both.
// The middle one of all the turns' ratios makes one row of a table.

#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

struct RatioRow
{
    std::string name;     // what is done
    std::string theirs;   // what does the same without us
    std::string note;     // what a reader has to know about this row, such as why it cannot be faster
};

// Nanoseconds for one call, turn by turn.
struct TurnTimes
{
    std::vector<double> ours, theirs;

    // Leaves the medians where the table looks for them.
    void report(benchmark::State &state) const;
};

// How long one of so many calls takes.
template <typename Work>
double nanosecondsFor(Work &work, std::size_t calls)
{
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t call = 0; call < calls; ++call)
    {
        work();
        benchmark::ClobberMemory();
    }
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    return passed.count() / static_cast<double>(calls);
}

// As many calls as take some ten microseconds.
template <typename Work>
std::size_t callsForATurn(Work &work)
{
    std::size_t calls = 16;
    while (calls < 1'000'000 && nanosecondsFor(work, calls) * static_cast<double>(calls) < 10'000)
        calls *= 2;
    return calls;
}

// Makes the row known to the table, and gives the name it has there.
const std::string &rememberRow(const RatioRow &row);

// Theirs stands in a function of its own, as ours does: a program that has such strings would write one.
template <typename Work>
[[gnu::noinline]] void callAsFunction(Work &work)
{
    work();
}

// Registers a row. Both functions do the work once each time they are called.
template <typename Ours, typename Theirs>
void addRow(const RatioRow &row, Ours ours, Theirs theirs)
{
    constexpr int turns = 1000;
    const auto measure = [ours, theirs](benchmark::State &state) mutable {
        const auto theirFunction = [&theirs] { callAsFunction(theirs); };
        const std::size_t ourCalls = callsForATurn(ours), theirCalls = callsForATurn(theirFunction);
        TurnTimes times;
        for (auto turn : state)
        {
            (void)turn;
            times.ours.push_back(nanosecondsFor(ours, ourCalls));
            times.theirs.push_back(nanosecondsFor(theirFunction, theirCalls));
        }
        times.report(state);
    };
    benchmark::RegisterBenchmark(rememberRow(row).c_str(), measure)->Iterations(turns);
}

// Measures every row and prints the table. Takes the options of Google Benchmark, such as --benchmark_filter=Posn.
int runRatioTable(int argumentCount, char **arguments);
