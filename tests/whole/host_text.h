// What the tests of `zerb text` share.
#pragma once

#include "tests/whole/host_program.h"

namespace host_tests
{

// Runs `zerb text` with these words behind it.
inline Outcome zerbText(const Words &words)
{
    Words all = {"text"};
    all.insert(all.end(), words.begin(), words.end());
    return runHost(all);
}

}   // namespace host_tests
