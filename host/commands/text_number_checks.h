// Which texts are numbers that the plug-in's functions take and give exactly.
#pragma once

#include <string_view>

namespace host
{

// A decimal number from -2147483648 to 2147483647, with a sign or none. Throws UsageError.
long wholeFromText(std::string_view text);

// A decimal number with a fraction or none, smaller than 2147483648 without its sign. Throws UsageError.
double fractionFromText(std::string_view text);

// Whether the library reads exactly this text's number, which for these three is the case for:
//   a sign or none and digits, from -2147483648 to 2147483647;
//   one to eight hexadecimal digits, more zeros, $ or 0x before them;
//   digits up to 2147483647, and perhaps '.' or ',' with up to nine digits behind it. One digit at least has to be there. In front there may be
//   anything with one '-' or none, behind it anything without; but nothing in between, although the library would pass over it: 1e5 is 15.
bool isExactWhole(std::string_view text);
bool isExactHexadecimal(std::string_view text);
bool isExactFraction(std::string_view text);

}   // namespace host
