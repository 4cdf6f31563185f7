// Rectangles in expectations: compared by their edges, and shown when a test fails.
#pragma once

#include "platform/drawing.h"

#include <ostream>

inline void PrintTo(const Rect &rect, std::ostream *stream)
{
    *stream << "{top " << rect.top << ", left " << rect.left << ", bottom " << rect.bottom << ", right " << rect.right << "}";
}

inline bool operator==(const Rect &one, const Rect &other)
{
    return one.top == other.top && one.left == other.left && one.bottom == other.bottom && one.right == other.right;
}
