#include "tests/models/number_models.h"

#include <algorithm>
#include <cstdlib>

namespace
{

std::int32_t lowest32Bits(std::int64_t number)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

std::int32_t powerOfTen(int exponent)
{
    return exponent <= 0 ? 1 : lowest32Bits(std::int64_t{10} * powerOfTen(exponent - 1));
}

ExactNumber whole(std::int32_t number)
{
    return ExactNumber(static_cast<double>(number));
}

ExactNumber sumOf(const ExactNumber &a, const ExactNumber &b)
{
    return (a + b).rounded(doublePrecision);
}

ExactNumber productOf(const ExactNumber &a, const ExactNumber &b)
{
    return (a * b).rounded(doublePrecision);
}

bool isBelowZero(const ExactNumber &number)
{
    return number.isNegative() && !(number == ExactNumber(-0.0));
}

// How many decimals in a row are zero, of those that a power of ten asks for; at least the first one is looked at.
int leadingZeros(ExactNumber fraction, std::int32_t power)
{
    const int places = std::max<int>(1, power <= 1 ? 1 : static_cast<int>(std::to_string(power).size()) - 1);
    for (int zeros = 0; zeros < places; ++zeros)
    {
        fraction = productOf(fraction, ExactNumber(10.0));
        if (fraction.cutToInteger() != 0)
            return zeros;
    }
    return places;
}

}   // namespace

// From 0 up the nearest integer, halves up. Below, the magnitude's distance to the (negative) integer part decides.
std::int32_t modelOfDoubleToLong(double value)
{
    const ExactNumber single = ExactNumber(value).rounded(singlePrecision);
    const ExactNumber magnitude = single.isNegative() ? single.negated() : single;
    const std::int32_t cut = single.cutToInteger();
    const ExactNumber distance = (magnitude - whole(cut).rounded(singlePrecision)).rounded(singlePrecision);
    const bool atLeastHalf = !isBelowZero(distance - ExactNumber(0.5));
    return lowest32Bits(std::int64_t{cut} + (atLeastHalf ? (isBelowZero(single) ? -1 : 1) : 0));
}

// Groups of eight characters, the last one first and every other one after it, read as numbers and laid over each other.
std::int32_t modelOfHexToNumber(const std::string &text)
{
    const std::string padded = std::string(16 - text.size() % 16, '0') + text;
    unsigned long bits = 0;
    for (std::size_t group = 8; group < padded.size(); group += 16)
    {
        std::string digits = padded.substr(group, 8);
        for (char &digit : digits)
        {
            if (std::string("0123456789abcdefABCDEF").find(digit) == std::string::npos)
                digit = '0';
        }
        bits |= std::strtoul(digits.c_str(), nullptr, 16);
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
}

// From the last digit to the first, each with its own power.
std::int32_t modelOfNumberFromText(const std::string &text)
{
    const bool isNegative = !text.empty() && text.front() == '-';
    std::int64_t value = 0;
    std::int32_t power = 1;
    for (std::size_t left = text.size(); left > (isNegative ? 1 : 0); --left)
    {
        value = lowest32Bits(value + std::int64_t{power} * (static_cast<unsigned char>(text[left - 1]) % 16));
        power = lowest32Bits(std::int64_t{power} * 10);
    }
    return lowest32Bits(isNegative ? -value : value);
}

std::string modelOfDoubleToString(double value, int decimals)
{
    const ExactNumber exact(value);
    const bool negative = isBelowZero(exact);
    const ExactNumber magnitude = exact.isNegative() ? exact.negated() : exact;
    const std::int32_t integer = magnitude.rounded(singlePrecision).cutToInteger();
    const ExactNumber fraction = sumOf((magnitude - whole(integer)).rounded(doublePrecision), ExactNumber(0.0000001));
    const std::int32_t power = powerOfTen(decimals);
    const std::int32_t digits = productOf(fraction, whole(power)).cutToInteger();

    std::string text = (negative ? "-" : "") + std::to_string(integer);
    if (digits != 0)
        text += '.' + std::string(static_cast<std::size_t>(leadingZeros(fraction, power)), '0') + std::to_string(digits);
    return text;
}

ExactNumber modelOfStringToDouble(const std::string &text)
{
    std::string kept;
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [](char c) { return std::string("0123456789-.,").find(c) != std::string::npos; });
    const std::size_t separator = kept.find(kept.find('.') != std::string::npos ? '.' : ',');
    if (separator == std::string::npos)
        return whole(modelOfNumberFromText(kept));

    const std::string behind = kept.substr(separator + 1);
    const std::int32_t integer = modelOfNumberFromText(kept.substr(0, separator));
    const ExactNumber fraction =
        ExactNumber::quotient(modelOfNumberFromText(behind), powerOfTen(static_cast<int>(behind.size())), doublePrecision);
    // The smallest integer has no positive counterpart in 32 bits and stays as it is.
    const ExactNumber value = sumOf(whole(integer < 0 ? lowest32Bits(-std::int64_t{integer}) : integer), fraction);
    return kept.find('-') == std::string::npos ? value : value.negated();
}
