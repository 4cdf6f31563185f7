// Types and creators: four Mac Roman characters in 32 bits, as people type and read them.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>

namespace host
{

// Reads exactly four characters (UTF-8, each with a place in Mac Roman), or 0x and up to eight hexadecimal digits.
// An empty text and "0" are the code 0, which means "none". Throws UsageError.
OSType codeFromText(std::string_view text);

// The four characters as UTF-8, if all of them can be printed.
std::optional<std::string> textOfCode(OSType code);

// For people: 'TEXT', or 0x00000000 where a character cannot be printed.
std::string describeCode(OSType code);

}   // namespace host
