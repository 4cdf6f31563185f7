// The double's memory for fixed blocks.

#pragma once

#include "platform/platform.h"

#include <list>
#include <string>

struct BlocksDouble
{
    // What FreeMem and MaxBlock answer, and the largest block that NewPtr gives, read as unsigned 32 bits.
    long freeMemory = 0x01000000;
    long largestBlock = 0x00800000;
    UInt32 largestGiven = 0x00800000;

    // The blocks that were given out, each with what was asked for. They live as long as the double. Beyond a mebibyte a
    // block has not all the bytes that it says, since no test fills one.
    struct Block
    {
        UInt32 size;
        std::string bytes;
    };
    std::list<Block> given;
};
