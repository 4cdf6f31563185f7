// Whole jobs of many milliseconds, such as walking a tree, ours beside other ways to do the same: measured in rounds, in which every way has its turn, and
// the order changes from round to round. A ratio is the middle one of the rounds' ratios, of the time that passed and of the processor time alone, which
// says more on a machine that has other things to do.
#pragma once

#include "benchmarks/system_calls.h"

#include <functional>
#include <string>
#include <vector>

struct Way
{
    std::string name;
    std::function<long()> work;               // gives how many objects it met
    std::function<void()> before = nullptr;   // not measured
    Counted counted = Counted::everything;
};

struct Job
{
    std::string name;
    Way ours;
    std::vector<Way> others;
    int rounds = 9;
    bool mayRepeat = true;   // else each turn finds what it works on only once: there is no turn to warm up with
};

struct Turn
{
    double passed = 0, processor = 0;   // nanoseconds
    double calls = 0;                   // of the stand-in
    long objects = 0;
};

double median(std::vector<double> numbers);

// One list of turns for each way, ours first. Ways that met different numbers of objects end the program.
std::vector<std::vector<Turn>> measuredRounds(const Job &job);

double medianRatio(const std::vector<Turn> &ours, const std::vector<Turn> &theirs, double Turn::*time);

// Measures a job and prints a line for each other way.
void measureJob(const Job &job);

// Whether a job is wanted, by the program's argument: a part of its name.
bool isWanted(const Job &job, const std::string &filter);

// A command with its arguments, its output thrown away; its processor time counts as the way's. Ends the program if it fails.
void runCommand(const std::vector<std::string> &words);
