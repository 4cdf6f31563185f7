// The lines of `zerb ls --long`.
#pragma once

#include "host/commands/trees.h"

#include <array>
#include <string>
#include <vector>

namespace host
{

// Lines in columns that are as wide as what stands in them.
class ListingTable
{
public:
    explicit ListingTable(const Style &style) : style_(style) {}

    void add(const ShownObject &object);
    std::string text() const;

private:
    // What it is, flags, data fork, resource fork, date; the name is the last in its line and has no width.
    using Cells = std::array<std::string, 5>;

    struct Line
    {
        Cells cells;
        std::string name;
    };

    Style style_;
    std::vector<Line> lines_;
    std::array<std::size_t, 5> widths_{};
};

}   // namespace host
