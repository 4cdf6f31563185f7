// Conversions between numbers and text.
//
// All arithmetic is that of the rules: 32-bit integers that wrap around, IEEE single and double precision, one rounding
// for each operation. No product is added to anything, so that there is nothing a compiler could fuse.

#include "strings/pstrings.h"

#include <array>
#include <limits>

namespace
{

static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

constexpr SInt32 smallest = std::numeric_limits<SInt32>::min();
constexpr SInt32 largest = std::numeric_limits<SInt32>::max();

// 32-bit arithmetic that wraps around.
SInt32 wrappedSum(SInt32 a, SInt32 b)
{
    return static_cast<SInt32>(static_cast<UInt32>(a) + static_cast<UInt32>(b));
}

SInt32 wrappedNegative(SInt32 number)
{
    return static_cast<SInt32>(UInt32{0} - static_cast<UInt32>(number));
}

SInt32 wrappedPowerOfTen(int exponent)
{
    UInt32 power = 1;
    for (int factor = 0; factor < exponent; ++factor)
        power *= 10;
    return static_cast<SInt32>(power);
}

// Cuts towards zero, within 32 bits. What is not a number compares with nothing and becomes the smallest.
SInt32 truncated(double value)
{
    if (value >= 2147483648.0)
        return largest;
    if (value > -2147483649.0)
        return static_cast<SInt32>(value);
    return smallest;
}

// What each character counts as a hexadecimal digit; 0 for all that is none.
constexpr std::array<unsigned char, 256> hexDigitValues = [] {
    std::array<unsigned char, 256> values = {};
    for (unsigned char digit = 1; digit <= 9; ++digit)
        values['0' + digit] = digit;
    for (unsigned char digit = 10; digit <= 15; ++digit)
        values['A' + digit - 10] = values['a' + digit - 10] = digit;
    return values;
}();

void append(unsigned char *text, unsigned char character)
{
    text[++text[0]] = character;
}

// The zeros that a fraction begins with: `fraction` is looked at digit by digit, at most as many as `power` has zeros.
void writeLeadingZeros(unsigned char *zeros, double fraction, SInt32 power)
{
    zeros[0] = 0;
    do
    {
        fraction *= 10.0;
        if (truncated(fraction) != 0)
            return;
        append(zeros, '0');
        power /= 10;
    } while (power > 1);
}

// Digits, signs and separators of a text in their order, as a length-prefixed string; and where the first ones stand.
struct FilteredNumber
{
    explicit FilteredNumber(const unsigned char *source)
    {
        const int length = source[0];
        text[0] = 0;
        for (int position = 1; position <= length; ++position)
            take(source[position]);
    }

    void take(unsigned char character)
    {
        if (character >= '0' && character <= '9')
            append(text, character);
        else if (character == '-')
            notePosition(sign, character);
        else if (character == '.')
            notePosition(point, character);
        else if (character == ',')
            notePosition(comma, character);
    }

    void notePosition(unsigned char &position, unsigned char character)
    {
        append(text, character);
        if (position == 0)
            position = text[0];
    }

    Str255 text;
    unsigned char sign = 0, point = 0, comma = 0;   // the first one's position, or 0
};

SInt32 numberOf(const unsigned char *text)
{
    SInt32 number = 0;
    StringToNum(text, &number);
    return number;
}

}   // namespace

long DoubleToLong(double value)
{
    const float single = static_cast<float>(value);
    const SInt32 whole = truncated(single);
    // Below zero the whole part, itself negative, is subtracted from the magnitude: from -1 down that is always half or
    // more. It is meant.
    const float rest = (single >= 0.0f ? single : -single) - static_cast<float>(whole);
    if (!(rest >= 0.5f))
        return whole;
    return wrappedSum(whole, single >= 0.0f ? 1 : -1);
}

void StringHexToNum(unsigned char *text, long *value)
{
    const unsigned length = text[0];
    UInt32 bits = 0;
    for (unsigned position = 1; position <= length; ++position)
    {
        // A shift of 32 bits whose count is taken modulo 64: eight places count, the next eight don't, and so on.
        const unsigned shift = (length - position) * 4 % 64;
        if (shift < 32)
            bits |= UInt32{hexDigitValues[text[position]]} << shift;
    }
    *value = static_cast<SInt32>(bits);
}

void MyDoubleToString(unsigned char *destination, double value, short decimals)
{
    const SInt32 power = wrappedPowerOfTen(decimals);
    const double scale = power;

    // The whole part passes through single precision, the fraction is measured against the value itself.
    const bool isNegative = !(value >= 0.0);   // what is not a number counts as negative
    const float single = static_cast<float>(value);
    const SInt32 whole = truncated(isNegative ? -single : single);
    const double fraction = ((isNegative ? -value : value) - whole) + 0.0000001;
    const SInt32 fractionDigits = truncated(fraction * scale);

    Str255 zeros, number, result;
    writeLeadingZeros(zeros, fraction, power);
    result[0] = 0;
    if (isNegative)
        append(result, '-');
    NumToString(whole, number);
    Concat(result, number);
    NumToString(fractionDigits, number);
    if (fractionDigits != 0)
    {
        append(result, '.');
        Concat(result, zeros);
        Concat(result, number);
    }
    Copy(destination, result);
}

void MyStringToDouble(unsigned char *text, double *value)
{
    FilteredNumber filtered(text);
    const int separator = filtered.point != 0 ? filtered.point : filtered.comma;
    if (separator == 0)
    {
        // An empty text comes here too. Any '-' is StringToNum's own affair.
        *value = numberOf(filtered.text);
        return;
    }

    // Each part gets a length byte in front: the text's own, and one in the separator's place.
    const int fractionLength = filtered.text[0] - separator;
    filtered.text[0] = static_cast<unsigned char>(separator - 1);
    filtered.text[separator] = static_cast<unsigned char>(fractionLength);

    SInt32 whole = numberOf(filtered.text);
    if (whole < 0)
        whole = wrappedNegative(whole);
    // The fraction keeps a sign of its own. It is meant.
    const double fraction = static_cast<double>(numberOf(filtered.text + separator)) / wrappedPowerOfTen(fractionLength);
    *value = (whole + fraction) * (filtered.sign != 0 ? -1.0 : 1.0);
}
