#include "standin/files/exchanged_objects.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace standin
{

namespace
{

constexpr std::size_t mostPhases = 65536;   // no more than a count can tell apart: of older ones references follow the inode

// A file as it was between two exchanges of its own.
struct Phase
{
    std::uint64_t device, inode;
    UInt16 exchanges;
    bool operator==(const Phase &) const = default;
};

struct PhaseHash
{
    std::size_t operator()(const Phase &phase) const
    {
        return (phase.inode * 0x9E3779B97F4A7C15u) ^ (phase.device << 16) ^ phase.exchanges;
    }
};

struct Successor
{
    Birth birth;    // of the file itself: a later one may take over its inode number
    Identity now;   // what stands in its place
    UInt16 exchanges;
};

struct ExchangeTable
{
    std::mutex mutex;
    std::unordered_map<Phase, Successor, PhaseHash> successors;
    std::unordered_map<Phase, UInt16, PhaseHash>
        counts;                // by file, with 0 for its exchanges: what a file that takes over its inode number goes on with
    std::deque<Phase> order;   // the oldest first
};

ExchangeTable &table()
{
    static ExchangeTable exchanges;
    return exchanges;
}

// Most processes never exchange anything: they ask nothing but this.
std::atomic<bool> anyExchanges{false};

UInt16 countOf(const Identity &identity)
{
    const auto found = table().counts.find({identity.device, identity.inode, 0});
    return found == table().counts.end() ? UInt16{0} : found->second;
}

UInt16 next(UInt16 count)
{
    return static_cast<UInt16>((count + 1) % mostPhases);
}

void forgetOldest()
{
    const Phase oldest = table().order.front();
    table().order.pop_front();
    table().successors.erase(oldest);
    const auto count = table().counts.find({oldest.device, oldest.inode, 0});
    if (count != table().counts.end() && count->second == next(oldest.exchanges))
        table().counts.erase(count);   // nothing more is known of it
}

void note(const Identity &from, UInt16 fromCount, const Identity &to, UInt16 toCount)
{
    const Phase phase{from.device, from.inode, fromCount};
    table().successors.insert_or_assign(phase, Successor{from.birth, to, toCount});
    table().order.push_back(phase);
    if (table().order.size() > mostPhases)
        forgetOldest();
}

bool isOfAnotherBirth(const ReferenceFields &fields, const Successor &successor)
{
    return fields.timeIsBirth && successor.birth != 0 && fields.time != successor.birth;
}

}   // namespace

void noteExchanged(const Identity &first, const Identity &second)
{
    const std::lock_guard lock(table().mutex);
    UInt16 &firstCount = table().counts[{first.device, first.inode, 0}], &secondCount = table().counts[{second.device, second.inode, 0}];
    const UInt16 firstBefore = std::exchange(firstCount, next(firstCount)), secondBefore = std::exchange(secondCount, next(secondCount));
    note(first, firstBefore, second, next(secondBefore));
    note(second, secondBefore, first, next(firstBefore));
    anyExchanges = true;
}

UInt16 exchangesOf(const Identity &identity)
{
    if (!anyExchanges.load(std::memory_order_acquire))
        return 0;
    const std::lock_guard lock(table().mutex);
    return countOf(identity);
}

bool followExchanges(ReferenceFields &fields)
{
    if (!anyExchanges.load(std::memory_order_acquire))
        return false;
    const std::lock_guard lock(table().mutex);
    const auto successorOf = [&] { return table().successors.find({fields.device, fields.inode, fields.exchanges}); };
    const auto start = successorOf(), none = table().successors.end();
    const Birth startBirth = fields.timeIsBirth ? fields.time : 0;
    bool changed = false;
    auto found = start;
    for (std::size_t steps = 0; steps < mostPhases && found != none && !isOfAnotherBirth(fields, found->second); ++steps)
    {
        fields.inode = found->second.now.inode;
        fields.device = found->second.now.device;
        fields.time = found->second.now.birth;
        fields.timeIsBirth = found->second.now.birth != 0;
        fields.exchanges = found->second.exchanges;
        changed = true;
        found = successorOf();
    }
    if (changed)   // the next time it is one step
        start->second = {startBirth, {fields.device, fields.inode, fields.time}, fields.exchanges};
    return changed;
}

}   // namespace standin
