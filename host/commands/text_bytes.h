// Pascal strings as people type and read their bytes. The strings here begin with the length byte.
#pragma once

#include <string>
#include <string_view>

namespace host
{

// 05 48 65 6C 6C 6F
std::string hexDump(std::string_view bytes);

// The same bytes as a string literal of C, quotes included: "\005Hello". Whatever is not plain ASCII has three octal digits, so that a
// digit behind it cannot be taken for one more.
std::string cLiteral(std::string_view bytes);

// Reads a string literal of C, if the dump begins with a quote, else pairs of hexadecimal digits with or without spaces between them.
// Bytes behind the length, as a dump of a whole buffer has them, are left out.
// Throws UsageError if the dump cannot be read, is empty, has over 256 bytes, or has fewer characters than its length byte says.
std::string pascalFromDump(std::string_view dump);

}   // namespace host
