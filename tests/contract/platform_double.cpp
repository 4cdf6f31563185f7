#include "tests/contract/platform_double.h"

#include <cstdio>
#include <cstdlib>

namespace
{

PlatformDouble *currentDouble = nullptr;

void require(bool condition, const char *message)
{
    if (condition)
        return;
    std::fprintf(stderr, "platform double: %s\n", message);
    std::abort();
}

}   // namespace

PlatformDouble::PlatformDouble()
{
    require(currentDouble == nullptr, "there is one already");
    currentDouble = this;
}

PlatformDouble::~PlatformDouble()
{
    currentDouble = nullptr;
}

PlatformDouble &PlatformDouble::current()
{
    require(currentDouble != nullptr, "a call without any double");
    return *currentDouble;
}
