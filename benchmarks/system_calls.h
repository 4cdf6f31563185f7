// How many system calls something makes, seen from outside, whoever makes them.
#pragma once

#include <functional>
#include <optional>

enum class Counted
{
    everything,
    commandsOnly,   // what the programs make that are run on the way, each from its start on
};

// Does the work in a copy of this process, which is gone afterwards: what it changes on disks has come to stay, what it changes in memory has not. Where
// something can be repeated, `warmUp` does it once before. Nothing if processes may not be traced here.
std::optional<double> countSystemCalls(Counted counted, const std::function<void()> &warmUp, const std::function<void()> &work);
