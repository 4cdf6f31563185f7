#include "tests/how_built.h"

bool isSanitized()
{
#ifdef ZERB_SANITIZED
    return true;
#else
    return false;
#endif
}

bool hasLongRuns()
{
#ifdef ZERB_LONG_RUNS
    return true;
#else
    return false;
#endif
}
