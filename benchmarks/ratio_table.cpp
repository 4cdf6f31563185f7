#include "benchmarks/ratio_table.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <deque>

namespace
{

struct NamedRow
{
    RatioRow row;
    std::string uniqueName;
    RepeatedWork ours = nullptr, theirs = nullptr;   // of rows of short functions
};

std::deque<NamedRow> &rememberedRows()
{
    static std::deque<NamedRow> rows;
    return rows;
}

class TablePrinter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override
    {
        std::printf("%-32s %-20s %9s %9s %6s\n", "", "beside", "ours, ns", "theirs", "ratio");
        return true;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
        {
            for (const NamedRow &named : rememberedRows())
            {
                if (run.run_name.function_name == named.uniqueName)
                    print(named.row, run);
            }
        }
        std::fflush(stdout);
    }

private:
    static void print(const RatioRow &row, const Run &run)
    {
        const auto counted = [&run](const char *name) { return run.counters.at(name).value; };
        std::printf("%-32s %-20s %9.1f %9.1f %6.2f  %s\n", row.name.c_str(), row.theirs.c_str(), counted("ours"), counted("theirs"),
                    counted("ratio"), row.note.c_str());
    }
};

// How long one of so many calls takes.
double nanosecondsFor(const RepeatedWork &work, std::size_t calls)
{
    const auto start = std::chrono::steady_clock::now();
    work(calls);
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    return passed.count() / static_cast<double>(calls);
}

// As many calls as take some ten microseconds.
std::size_t callsForATurn(const RepeatedWork &work)
{
    std::size_t calls = 16;
    while (calls < 1'000'000 && nanosecondsFor(work, calls) * static_cast<double>(calls) < 10'000)
        calls *= 2;
    return calls;
}

void measureInTurns(benchmark::State &state, const RepeatedWork &ours, const RepeatedWork &theirs)
{
    const std::size_t ourCalls = callsForATurn(ours), theirCalls = callsForATurn(theirs);
    TurnTimes times;
    for (auto turn : state)
    {
        (void)turn;
        times.ours.push_back(nanosecondsFor(ours, ourCalls));
        times.theirs.push_back(nanosecondsFor(theirs, theirCalls));
    }
    times.report(state);
}

// --- the rows as operations of the one table ------------------------------------------------------------------------------------------------

// The same number of calls every way, so that each turn is of as many objects.
Way repeatedWay(const std::string &name, const RepeatedWork &work, std::size_t calls)
{
    return {name, [work, calls] {
                work(calls);
                return static_cast<long>(calls);
            }};
}

Operation operationOf(const NamedRow &floor)
{
    const std::size_t calls = callsForATurn(floor.ours);
    Operation operation{{floor.row.name, repeatedWay("", floor.ours, calls), {repeatedWay(floor.row.theirs, floor.theirs, calls)}, 501},
                        floor.row.aim,
                        floor.row.note};
    for (const NamedRow &peer : rememberedRows())
        if (peer.row.place == TablePlace::peer && peer.row.name == floor.row.name)
            operation.job.others.push_back(repeatedWay(peer.row.theirs, peer.theirs, calls));
    return operation;
}

void measureRowsAsOperations()
{
    for (const NamedRow &named : rememberedRows())
        if (named.row.place == TablePlace::floor && isOperationWanted(named.row.name))
            measureOperation(operationOf(named));
}

}   // namespace

void TurnTimes::report(benchmark::State &state) const
{
    std::vector<double> ratios;
    for (std::size_t turn = 0; turn < ours.size(); ++turn)
        ratios.push_back(ours[turn] / theirs[turn]);
    state.counters["ours"] = median(ours);
    state.counters["theirs"] = median(theirs);
    state.counters["ratio"] = median(ratios);
}

const std::string &rememberRow(const RatioRow &row)
{
    return rememberedRows().emplace_back(NamedRow{row, row.name + " beside " + row.theirs}).uniqueName;
}

void addRepeatedRow(const RatioRow &row, const RepeatedWork &ours, const RepeatedWork &theirs)
{
    constexpr int turns = 1000;
    const std::string &name = rememberRow(row);
    rememberedRows().back().ours = ours;
    rememberedRows().back().theirs = theirs;
    benchmark::RegisterBenchmark(name.c_str(), [ours, theirs](benchmark::State &state) {
        measureInTurns(state, ours, theirs);
    })->Iterations(turns);
}

int runRatioTable(int argumentCount, char **arguments)
{
    if (areOperationsWanted(argumentCount, arguments))
    {
        measureRowsAsOperations();
        return 0;
    }
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments))
        return 2;
    TablePrinter printer;
    benchmark::RunSpecifiedBenchmarks(&printer);
    return 0;
}
