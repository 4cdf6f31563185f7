// Numbers as people type and read them.
#pragma once

#include "platform/types.h"

#include <string>
#include <string_view>

namespace host
{

// 0x and the number in at least so many upper-case digits.
std::string hexadecimal(UInt32 number, int digits);

// Digits in groups of three: 12,345.
std::string grouped(UInt64 number);

// Reads 0x and one to `mostDigits` (at most eight) hexadecimal digits. Throws UsageError.
UInt32 hexadecimalFromText(std::string_view text, std::size_t mostDigits);

// Reads a decimal number from 0 to `largest`, or a hexadecimal one after 0x. Throws UsageError.
UInt32 numberFromText(std::string_view text, UInt32 largest);

}   // namespace host
