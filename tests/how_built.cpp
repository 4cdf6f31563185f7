#include "tests/how_built.h"

bool isSanitized()
{
    return ZERB_SANITIZED;
}

bool hasLongRuns()
{
    return ZERB_LONG_RUNS;
}
