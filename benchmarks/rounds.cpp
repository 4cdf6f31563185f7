#include "benchmarks/rounds.h"

#include "standin/standin.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

double nanosecondsOf(const timeval &time)
{
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_usec) * 1e3;
}

double processorTimeOf(int whose)
{
    rusage used;
    getrusage(whose, &used);
    return nanosecondsOf(used.ru_utime) + nanosecondsOf(used.ru_stime);
}

// Of this process and of the commands that it ran.
double processorTime()
{
    return processorTimeOf(RUSAGE_SELF) + processorTimeOf(RUSAGE_CHILDREN);
}

Turn measuredTurn(const Way &way)
{
    Turn turn;
    if (way.before)
        way.before();
    const std::uint64_t callsBefore = standin::systemCallCount();
    const double processorBefore = processorTime();
    const auto start = std::chrono::steady_clock::now();
    turn.objects = way.work();
    turn.passed = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
    turn.processor = processorTime() - processorBefore;
    turn.calls = static_cast<double>(standin::systemCallCount() - callsBefore);
    return turn;
}

template <typename Number>
double medianOf(const std::vector<Turn> &turns, Number number)
{
    std::vector<double> numbers;
    for (const Turn &turn : turns)
        numbers.push_back(number(turn));
    return median(numbers);
}

void requireSameCounts(const Job &job, const std::vector<std::vector<Turn>> &turns)
{
    for (const auto &ofWay : turns)
        for (const Turn &turn : ofWay)
            if (turn.objects != turns[0][0].objects)
            {
                std::fprintf(stderr, "%s: %ld objects were met and %ld\n", job.name.c_str(), turns[0][0].objects, turn.objects);
                std::exit(1);
            }
}

void printHeadOnce()
{
    static bool isPrinted = false;
    if (!isPrinted)
        std::printf("%-44s %-24s %9s %9s %7s %9s %12s\n", "", "beside", "ours, ns", "theirs", "ratio", "processor", "calls/object");
    isPrinted = true;
}

}   // namespace

double median(std::vector<double> numbers)
{
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
}

double medianRatio(const std::vector<Turn> &ours, const std::vector<Turn> &theirs, double Turn::*time)
{
    std::vector<double> ratios;
    for (std::size_t round = 0; round < ours.size(); ++round)
        ratios.push_back(ours[round].*time / (theirs[round].*time));
    return median(ratios);
}

// In each round another way begins, and every second one goes backwards.
std::vector<std::vector<Turn>> measuredRounds(const Job &job)
{
    std::vector<const Way *> ways{&job.ours};
    for (const Way &other : job.others)
        ways.push_back(&other);
    std::vector<std::vector<Turn>> turns(ways.size());
    for (int round = 0; round < job.rounds; ++round)
    {
        for (std::size_t place = 0; place < ways.size(); ++place)
        {
            const std::size_t turned = (place + static_cast<std::size_t>(round)) % ways.size();
            const std::size_t chosen = round % 2 == 0 ? turned : ways.size() - 1 - turned;
            if (job.mayRepeat)
                measuredTurn(*ways[chosen]);   // what ran before must not tell
            turns[chosen].push_back(measuredTurn(*ways[chosen]));
        }
    }
    requireSameCounts(job, turns);
    return turns;
}

void measureJob(const Job &job)
{
    const auto turns = measuredRounds(job);
    printHeadOnce();
    const auto objects = static_cast<double>(turns[0][0].objects);
    const auto passed = [objects](const Turn &turn) { return turn.passed / objects; };
    const double calls = medianOf(turns[0], [objects](const Turn &turn) { return turn.calls / objects; });
    for (std::size_t other = 0; other < job.others.size(); ++other)
        std::printf("%-44s %-24s %9.1f %9.1f %7.2f %9.2f %12.3f\n", job.name.c_str(), job.others[other].name.c_str(),
                    medianOf(turns[0], passed), medianOf(turns[other + 1], passed), medianRatio(turns[0], turns[other + 1], &Turn::passed),
                    medianRatio(turns[0], turns[other + 1], &Turn::processor), calls);
    std::fflush(stdout);
}

bool isWanted(const Job &job, const std::string &filter)
{
    return job.name.find(filter) != std::string::npos;
}

void runCommand(const std::vector<std::string> &words)
{
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child;
    int status = -1;
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0)
        waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&actions);
    if (status == 0)
        return;
    std::fprintf(stderr, "%s failed\n", arguments[0]);
    std::exit(1);
}
