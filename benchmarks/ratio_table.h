// Ours beside theirs: measured in turns, a few microseconds each, so that whatever else the machine does falls on both.
// The middle one of all the turns' ratios makes one row of a table. Rows of the one table of `./bench` have a place in it, too.

#pragma once

#include "benchmarks/operations.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

// What a row's other side is in the one table: a row of it has all rows here of the same name together.
enum class TablePlace
{
    none,
    floor,   // such a row has the aim
    peer,
};

struct RatioRow
{
    std::string name;        // what is done
    std::string theirs;      // what does the same without us
    std::string note = "";   // what a reader has to know about this row, such as why it cannot be faster
    TablePlace place = TablePlace::none;
    Aim aim = {};
};

// Nanoseconds for one call, turn by turn.
struct TurnTimes
{
    std::vector<double> ours, theirs;

    // Leaves the medians where the table looks for them.
    void report(benchmark::State &state) const;
};

// Makes the row known to the table, and gives the name it has there.
const std::string &rememberRow(const RatioRow &row);

// Does something so many times.
using RepeatedWork = std::function<void(std::size_t times)>;

template <typename Work>
RepeatedWork repeated(Work work)
{
    return [work](std::size_t times) mutable {
        for (std::size_t call = 0; call < times; ++call)
        {
            work();
            benchmark::ClobberMemory();
        }
    };
}

// Theirs stands in a function of its own, as ours does: a program that has such strings would write one.
template <typename Work>
[[gnu::noinline]] void callAsFunction(Work &work)
{
    work();
}

void addRepeatedRow(const RatioRow &row, const RepeatedWork &ours, const RepeatedWork &theirs);

// Registers a row. Both functions do the work once each time they are called.
template <typename Ours, typename Theirs>
void addRow(const RatioRow &row, Ours ours, Theirs theirs)
{
    addRepeatedRow(row, repeated(ours), repeated([theirs]() mutable { callAsFunction(theirs); }));
}

// Measures every row and prints the table. Takes the options of Google Benchmark, such as --benchmark_filter=Posn; or --operations, see operations.h.
int runRatioTable(int argumentCount, char **arguments);
