#include "benchmarks/ratio_table.h"

#include <algorithm>
#include <cstdio>
#include <deque>

namespace
{

struct NamedRow
{
    RatioRow row;
    std::string uniqueName;
};

std::deque<NamedRow> &rememberedRows()
{
    static std::deque<NamedRow> rows;
    return rows;
}

double median(std::vector<double> numbers)
{
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
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

int runRatioTable(int argumentCount, char **arguments)
{
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments))
        return 2;
    TablePrinter printer;
    benchmark::RunSpecifiedBenchmarks(&printer);
    return 0;
}
