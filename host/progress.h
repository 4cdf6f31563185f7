// How far a long work has come: one line on standard error that is drawn again and again, or plain lines for logs.
#pragma once

#include "platform/types.h"

#include <chrono>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

namespace host
{

enum class ProgressUnit
{
    objects,
    bytes
};

enum class ProgressStyle
{
    none,
    redrawn,   // one line on a terminal, ten times a second at most, taken away at the end
    lines      // a line each second at most, and one at the end
};

// What a person asked for.
struct ProgressWish
{
    bool quiet = false;
    bool lines = false;
};

// Redrawn if standard error is a terminal that can do that and nothing else was asked for.
ProgressStyle progressStyle(const ProgressWish &wish);

using ProgressDuration = std::chrono::duration<double>;

// "0 bytes", "1 byte", "999 bytes", "1.0 kB", "12 kB", "345 MB", …: thousands, and two digits or more.
std::string sizeText(UInt64 bytes);

// "9 s", "1:05", "2:03:04"; at most "99 hours and more".
std::string durationText(ProgressDuration duration);

// How far it has come: "deleting: 12 of 3,400 objects, 450 a second, 0:08 left". What cannot be known yet is left out.
struct ProgressState
{
    std::string doing;
    ProgressUnit unit = ProgressUnit::objects;
    UInt64 done = 0;
    std::optional<UInt64> total;
    ProgressDuration elapsed{0};
};
std::string progressText(const ProgressState &state);

class Progress
{
public:
    using Clock = std::function<ProgressDuration()>;   // time since any moment

    // `doing` is what is being done, as "deleting". Without a total, no remaining time is told.
    Progress(ProgressStyle style, std::string doing, ProgressUnit unit, std::optional<UInt64> total = std::nullopt);

    // For tests: to a stream of their own, with a clock of their own.
    Progress(ProgressStyle style, std::string doing, ProgressUnit unit, std::optional<UInt64> total, std::FILE *stream, Clock clock);

    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress();   // the redrawn line goes; as plain lines, a last one says what was done

    void advance(UInt64 by);

    // Takes the redrawn line away, so that something else can be said. The next step brings it back.
    void clear();

private:
    bool isDue();
    void show();

    ProgressStyle style_;
    std::FILE *stream_;
    Clock clock_;
    ProgressState state_;
    ProgressDuration began_;
    ProgressDuration shown_;
    bool isOnScreen_ = false;
};

}   // namespace host
