// Hostile text as numbers, and any numbers as text: what the platform and the library make of them is what the models say, which calculate exactly and in
// other words.
#include "strings/pstrings.h"
#include "tests/models/number_models.h"
#include "tests/fuzz/require.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

namespace
{

struct PascalText
{
    explicit PascalText(const std::string &text)
    {
        bytes[0] = static_cast<unsigned char>(text.size());
        std::copy(text.begin(), text.end(), bytes + 1);
    }
    std::string text() const { return std::string(bytes + 1, bytes + 1 + bytes[0]); }

    Str255 bytes = {};
};

// The models know of a '-' in front. A '+' there is none to them, and what follows it has no sign any more.
std::int32_t expectedNumber(std::string text)
{
    if (!text.empty() && text[0] == '+')
        text[0] = '0';
    return modelOfNumberFromText(text);
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

void checkWholeNumbers(const std::string &text)
{
    PascalText pascal(text);
    SInt32 number = 1;
    long hex = 1;
    StringToNum(pascal.bytes, &number);
    StringHexToNum(pascal.bytes, &hex);
    require(number == expectedNumber(text) && hex == modelOfHexToNumber(text));
    require(Val(pascal.bytes) == (text.empty() ? 0 : number));
    require(AllisNum(pascal.bytes) == (!text.empty() && std::all_of(text.begin(), text.end(), isDigit)));
    require(pascal.text() == text);
}

// Beyond 31 characters behind the separator there is no model: whatever comes, it comes without harm.
void checkFraction(const std::string &text)
{
    PascalText pascal(text);
    double value = 1;
    MyStringToDouble(pascal.bytes, &value);
    const std::size_t point = text.find('.'), separator = point == std::string::npos ? text.find(',') : point;
    if (separator == std::string::npos || text.size() - separator <= 32)
        require(std::isfinite(value) && ExactNumber(value) == modelOfStringToDouble(text));
    require(pascal.text() == text);
}

void checkNumber(std::int32_t number)
{
    Str255 text = {};
    SInt32 again = 0;
    NumToString(number, text);
    require(std::string(text + 1, text + 1 + text[0]) == std::to_string(number));
    StringToNum(text, &again);
    require(again == number);
    Str(text, number);
    require(std::string(text + 1, text + 1 + text[0]) == std::to_string(number));
}

void checkDouble(double value, short decimals)
{
    Str255 text = {};
    MyDoubleToString(text, value, decimals);
    const long whole = DoubleToLong(value);
    if (!std::isfinite(value))
        return;
    require(whole == modelOfDoubleToLong(value));
    if (decimals >= 0 && decimals <= 9)
        require(std::string(text + 1, text + 1 + text[0]) == modelOfDoubleToString(value, decimals));
}

template <typename Number>
Number numberAt(const unsigned char *data, std::size_t size, std::size_t at)
{
    Number number{};
    if (at < size)
        std::memcpy(&number, data + at, std::min(size - at, sizeof number));
    return number;
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), std::min<std::size_t>(size, 255));
    checkWholeNumbers(text);
    checkFraction(text);
    checkNumber(numberAt<std::int32_t>(data, size, 0));
    checkDouble(numberAt<double>(data, size, 0), static_cast<short>(numberAt<signed char>(data, size, 8)));
    return 0;
}
