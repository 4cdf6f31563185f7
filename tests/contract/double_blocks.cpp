#include "tests/contract/double_blocks.h"

#include "tests/contract/platform_double.h"

#include <algorithm>

Ptr NewPtr(Size byteCount)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("NewPtr", {decimal(byteCount)});
    const UInt32 size = static_cast<UInt32>(byteCount);
    if (failure != noErr || size > platform.blocks.largestGiven)
        return nullptr;
    platform.blocks.given.push_back({size, std::string(std::min(size, UInt32{1} << 20), '\xA5')});
    return platform.blocks.given.back().bytes.data();
}

long FreeMem(void)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("FreeMem", {});
    return platform.blocks.freeMemory;
}

long MaxBlock(void)
{
    PlatformDouble &platform = PlatformDouble::current();
    platform.note("MaxBlock", {});
    return platform.blocks.largestBlock;
}
