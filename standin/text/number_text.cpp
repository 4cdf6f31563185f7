// Numbers as decimal text, and back.
//
// Neither call reports an error, so each text has to have a number. Programs hand their input over unchecked and know which numbers come out of
// it, so what is no digit counts here as it always has on the Macintosh: with the low four bits of its code, which for '0' to '9' are the digit.
#include "platform/text.h"

#include <charconv>
#include <cstddef>
#include <cstdint>

namespace
{

constexpr unsigned lowFourBits = 0x0F;
constexpr std::size_t mostCharacters = 11;   // -2147483648

bool isSign(unsigned char character)
{
    return character == '-' || character == '+';
}

}   // namespace

// '-' before a negative number, no '+', no leading zeros, nothing between the digits.
// Bytes of `text` after the last digit are left alone.
void NumToString(SInt32 number, Str255 text)
{
    char *first = reinterpret_cast<char *>(text + 1);
    std::to_chars_result end = std::to_chars(first, first + mostCharacters, number);
    text[0] = static_cast<unsigned char>(end.ptr - first);
}

// One '-' or '+' may come first. Every character after it is a digit: its low four bits, so that 'A' counts 1, ',' counts 12 and a second '-'
// counts 13. A space counts 0; a sign behind it is no sign any more. The number wraps at 32 bits and the sign is applied last, so -2147483648
// is read as it is and 4294967297 is 1. The empty text and a lone sign are 0.
void StringToNum(ConstStr255Param text, SInt32 *number)
{
    const unsigned length = text[0];
    const bool hasSign = length > 0 && isSign(text[1]);
    std::uint32_t magnitude = 0;
    for (unsigned position = hasSign ? 2 : 1; position <= length; ++position)
        magnitude = magnitude * 10 + (text[position] & lowFourBits);
    const bool isNegative = hasSign && text[1] == '-';
    *number = static_cast<SInt32>(isNegative ? 0 - magnitude : magnitude);
}
