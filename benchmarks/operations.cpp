#include "benchmarks/operations.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <unistd.h>

namespace
{

constexpr char option[] = "--operations";
std::string wantedPart;

bool isInstalled(const std::string &command)
{
    if (command.find('/') != std::string::npos)
        return ::access(command.c_str(), X_OK) == 0;
    const char *path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (::access((folder + '/' + command).c_str(), X_OK) == 0)
            return true;
    return false;
}

// The job with the ways that are there; why others are not is added to the remark.
Job availableWays(const Operation &operation, std::string &remark)
{
    Job job = operation.job;
    std::erase_if(job.others, [&remark](const Way &way) {
        if (!way.work)
            remark += (remark.empty() ? "" : "; ") + way.name + " is not installed";
        return !way.work;
    });
    return job;
}

// Made after the turns: each way goes on where it stopped, and nothing comes after it.
std::optional<double> callsOf(const Job &job, const Way &way)
{
    const auto prepare = [&way] {
        if (way.before)
            way.before();
    };
    const auto warmUp = [&] {
        if (!job.mayRepeat)
            return;
        way.work();
        prepare();
    };
    prepare();
    return countSystemCalls(way.counted, warmUp, [&way] { way.work(); });
}

struct Ratios
{
    double oursBesideFloor;
    std::optional<std::size_t> peer;   // the best one, by its place among the other ways
    double peerBesideFloor = 0, oursBesidePeer = 0;
};

Ratios ratiosOf(const std::vector<std::vector<Turn>> &turns)
{
    Ratios ratios{medianRatio(turns[0], turns[1], &Turn::passed), std::nullopt};
    for (std::size_t way = 2; way < turns.size(); ++way)
    {
        const double besideFloor = medianRatio(turns[way], turns[1], &Turn::passed);
        if (ratios.peer && besideFloor >= ratios.peerBesideFloor)
            continue;
        ratios.peer = way - 1;
        ratios.peerBesideFloor = besideFloor;
        ratios.oursBesidePeer = medianRatio(turns[0], turns[way], &Turn::passed);
    }
    return ratios;
}

double nanosecondsForOne(const std::vector<Turn> &turns)
{
    std::vector<double> times;
    for (const Turn &turn : turns)
        times.push_back(turn.passed / static_cast<double>(turn.objects));
    return median(times);
}

// Empty where there is nothing to say: tools/bench-table.awk makes a dash of it.
std::string number(std::optional<double> value)
{
    char text[32] = "";
    if (value)
        std::snprintf(text, sizeof text, "%.4f", *value);
    return text;
}

std::string aimed(double limit)
{
    return number(limit > 0 ? std::optional(limit) : std::nullopt);
}

void printRow(const std::vector<std::string> &fields)
{
    std::string line = fields[0];   // which is never empty
    for (std::size_t field = 1; field < fields.size(); ++field)
        line += '\t' + fields[field];
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

}   // namespace

bool areOperationsWanted(int argumentCount, char **arguments)
{
    const std::string first = argumentCount > 1 ? arguments[1] : "";
    if (first != option && first.rfind(std::string(option) + '=', 0) != 0)
        return false;
    wantedPart = first == option ? "" : first.substr(sizeof option);
    return true;
}

bool isOperationWanted(const std::string &name)
{
    return name.find(wantedPart) != std::string::npos;
}

void measureOperation(const Operation &operation)
{
    std::string remark = operation.remark;
    const Job job = availableWays(operation, remark);
    std::fprintf(stderr, "  %s ... ", job.name.c_str());
    const auto start = std::chrono::steady_clock::now();
    const auto turns = measuredRounds(job);
    const Ratios ratios = ratiosOf(turns);
    const auto objects = static_cast<double>(turns[0][0].objects);
    const auto perObject = [objects](std::optional<double> calls) { return calls ? std::optional(*calls / objects) : calls; };
    const auto ourCalls = perObject(callsOf(job, job.ours)), floorCalls = perObject(callsOf(job, job.others[0]));
    const bool hasPeer = ratios.peer.has_value();
    printRow({job.name, number(ratios.oursBesideFloor), job.others[0].name, hasPeer ? job.others[*ratios.peer].name : "",
              hasPeer ? number(ratios.peerBesideFloor) : "", hasPeer ? number(ratios.oursBesidePeer) : "", number(ourCalls),
              number(floorCalls), aimed(operation.aim.besideFloor), aimed(operation.aim.besidePeer), number(nanosecondsForOne(turns[0])),
              number(nanosecondsForOne(turns[1])), operation.aim.reason, remark});
    std::fprintf(stderr, "%.1f s\n", std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

void leaveOut(const std::string &name, const std::string &why)
{
    std::vector<std::string> fields(14);
    fields.front() = name;
    fields.back() = why;
    if (isOperationWanted(name))
        printRow(fields);
}

Way commandWay(const std::string &name, const std::vector<std::string> &words, long objects)
{
    Way way{name, nullptr, nullptr, Counted::commandsOnly};
    if (isInstalled(words[0]))
        way.work = [words, objects] {
            runCommand(words);
            return objects;
        };
    return way;
}
