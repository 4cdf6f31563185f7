// How a fuzz program says that a promise was broken.
#pragma once

#include <cstdlib>

inline void require(bool condition)
{
    if (!condition)
        std::abort();
}
