// The rows of the one table of `./bench`: something that the library does, beside its floor, which is the least that the machine takes for it, and beside the
// best of what else does the same.
//
// A program that is started with --operations, or --operations=PART for rows with such a part in their names, measures its rows and writes a line for each,
// of fields separated by tabs: tools/bench-table.awk knows them, too, and makes the table.
#pragma once

#include "benchmarks/rounds.h"

#include <string>

// The ratios that we aim at, at most; 0 where there is no aim.
struct Aim
{
    double besideFloor = 0, besidePeer = 0;
    std::string reason = "";   // the heading in docs/performance.md that tells why it is out of reach
};

struct Operation
{
    Job job;   // the first of its other ways is the floor, the others are peers; a peer without work is one that is missing
    Aim aim = {};
    std::string remark = "";   // why there is no peer
};

// Whether the program was started for the table's rows, as its first argument says.
bool areOperationsWanted(int argumentCount, char **arguments);
bool isOperationWanted(const std::string &name);

void measureOperation(const Operation &operation);

void leaveOut(const std::string &name, const std::string &why);   // a row of dashes

// A way by a command that may be missing.
Way commandWay(const std::string &name, const std::vector<std::string> &words, long objects);
