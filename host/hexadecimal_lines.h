// Bytes for people to read.
#pragma once

#include "platform/types.h"

#include <span>
#include <string>

namespace host
{

constexpr std::size_t bytesOfHexadecimalLine = 16;

// 00000010  44 65 61 72 20 4D 72 2E  20 42 61 62 62 61 67 65  |Dear Mr. Babbage|
// The first sixteen bytes, or as many as there are, with a line end.
std::string hexadecimalLine(UInt64 offset, std::span<const char> bytes);

}   // namespace host
