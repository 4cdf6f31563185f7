#include "host/numbers.h"

#include "host/usage_error.h"

#include <charconv>
#include <cstdio>
#include <optional>

namespace host
{

namespace
{

bool startsAsHexadecimal(std::string_view text)
{
    return text.starts_with("0x") || text.starts_with("0X");
}

// All of the text as one number without a sign, or nothing.
std::optional<UInt32> wholeNumber(std::string_view digits, int base)
{
    UInt32 number = 0;
    const char *end = digits.data() + digits.size();
    auto [stop, error] = std::from_chars(digits.data(), end, number, base);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

std::string quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

}   // namespace

std::string hexadecimal(UInt32 number, int digits)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "0x%0*X", digits, static_cast<unsigned>(number));
    return buffer;
}

std::string grouped(UInt64 number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3; place -= 3)
        text.insert(place - 3, 1, ',');
    return text;
}

UInt32 hexadecimalFromText(std::string_view text, std::size_t mostDigits)
{
    std::optional<UInt32> number;
    if (startsAsHexadecimal(text) && text.size() <= 2 + mostDigits)
        number = wholeNumber(text.substr(2), 16);
    if (!number)
        throw UsageError(quoted(text) + " is not 0x and one to " + std::to_string(mostDigits) + " hexadecimal digits");
    return *number;
}

UInt32 numberFromText(std::string_view text, UInt32 largest)
{
    std::optional<UInt32> number = startsAsHexadecimal(text) ? wholeNumber(text.substr(2), 16) : wholeNumber(text, 10);
    if (!number || *number > largest)
        throw UsageError(quoted(text) + " is not a number from 0 to " + std::to_string(largest));
    return *number;
}

}   // namespace host
