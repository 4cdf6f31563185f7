#include "host/commands/text_number_checks.h"

#include "host/usage_error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace host
{

namespace
{

constexpr double firstOutOfRange = 2147483648.0;
constexpr std::size_t mostDecimals = 9;
constexpr std::size_t mostHexadecimalDigits = 8;
constexpr std::string_view decimalDigits = "0123456789";
constexpr std::string_view digitsAndSeparators = "0123456789.,";

template <typename Number>
std::optional<Number> wholeText(std::string_view text)
{
    Number number = 0;
    std::from_chars_result end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || end.ec != std::errc() || end.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}

// std::from_chars knows '-' alone.
std::string_view withoutPlus(std::string_view text)
{
    bool hasPlus = text.starts_with('+') && !text.starts_with("+-");
    return hasPlus ? text.substr(1) : text;
}

std::string_view withoutLeadingZeros(std::string_view digits)
{
    std::size_t first = digits.find_first_not_of('0');
    return first == std::string_view::npos ? std::string_view() : digits.substr(first);
}

bool hasOnly(std::string_view text, std::string_view characters)
{
    return text.find_first_not_of(characters) == std::string_view::npos;
}

// Digits that fit 32 bits, and perhaps a separator with further ones. One digit at least.
bool isPlainFraction(std::string_view number)
{
    std::size_t separator = number.find_first_of(".,");
    std::string_view before = number.substr(0, separator);
    std::string_view behind = separator == std::string_view::npos ? std::string_view() : number.substr(separator + 1);
    bool beforeFits = before.empty() || wholeText<std::int32_t>(before).has_value();
    bool behindFits = hasOnly(behind, decimalDigits) && behind.size() <= mostDecimals;
    return before.size() + behind.size() > 0 && beforeFits && behindFits;
}

}   // namespace

long wholeFromText(std::string_view text)
{
    std::optional<std::int32_t> number = wholeText<std::int32_t>(withoutPlus(text));
    if (!number)
        throw UsageError("is not a whole number from -2147483648 to 2147483647; --decimals N takes fractions");
    return *number;
}

double fractionFromText(std::string_view text)
{
    std::optional<double> number = wholeText<double>(withoutPlus(text));
    if (!number || !(std::fabs(*number) < firstOutOfRange))
        throw UsageError("is not a number smaller than 2147483648, with '.' before its decimals");
    return *number;
}

bool isExactWhole(std::string_view text)
{
    return wholeText<std::int32_t>(withoutPlus(text)).has_value();
}

bool isExactHexadecimal(std::string_view text)
{
    std::string_view digits = text.substr(text.starts_with('$') ? 1 : text.starts_with("0x") || text.starts_with("0X") ? 2 : 0);
    return !digits.empty() && hasOnly(digits, "0123456789ABCDEFabcdef") && withoutLeadingZeros(digits).size() <= mostHexadecimalDigits;
}

bool isExactFraction(std::string_view text)
{
    std::size_t first = text.find_first_of(digitsAndSeparators);
    std::size_t last = text.find_last_of(digitsAndSeparators);
    if (first == std::string_view::npos)
        return false;
    std::string_view inFront = text.substr(0, first);
    bool signIsPlain = std::count(inFront.begin(), inFront.end(), '-') <= 1 && text.find('-', last) == std::string_view::npos;
    return signIsPlain && isPlainFraction(text.substr(first, last - first + 1));
}

}   // namespace host
