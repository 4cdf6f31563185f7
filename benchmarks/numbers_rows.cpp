#include "benchmarks/numbers_rows.h"

#include "benchmarks/ratio_table.h"
#include "strings/pstrings.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{

// Many inputs, one after the other, so that no branch can be learnt by heart.
constexpr std::size_t inputCount = 8192;

struct Number
{
    long integer;
    double value;
    std::array<unsigned char, 32> decimal, hexadecimal, fraction;   // length-prefixed, with a zero behind them
};

using Numbers = std::shared_ptr<std::vector<Number>>;

std::array<unsigned char, 32> bytesOf(const std::string &characters)
{
    std::array<unsigned char, 32> bytes = {static_cast<unsigned char>(characters.size())};
    characters.copy(reinterpret_cast<char *>(bytes.data() + 1), characters.size());
    return bytes;
}

std::string formatted(const char *format, auto value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// Integers of every length up to `bits` bits, and as many values with two decimals.
Numbers numbersUpTo(unsigned bits)
{
    std::mt19937 random(bits);
    auto numbers = std::make_shared<std::vector<Number>>();
    for (std::size_t index = 0; index < inputCount; ++index)
    {
        const auto magnitude = static_cast<std::uint32_t>(random()) >> (32 - bits) >> (random() % bits);
        const int integer = static_cast<int>(magnitude);
        const double value = integer / 100.0;
        numbers->push_back(
            {integer, value, bytesOf(std::to_string(integer)), bytesOf(formatted("%x", integer)), bytesOf(formatted("%.2f", value))});
    }
    return numbers;
}

const char *first(const std::array<unsigned char, 32> &text)
{
    return reinterpret_cast<const char *>(text.data() + 1);
}

const char *last(const std::array<unsigned char, 32> &text)
{
    return first(text) + text[0];
}

// Does the work with one number after the other.
template <typename Work>
auto inTurn(const Numbers &numbers, Work work)
{
    return [numbers, work, next = std::size_t{0}]() mutable { work((*numbers)[next++ % inputCount]); };
}

char output[256];
unsigned char *const pascalOutput = reinterpret_cast<unsigned char *>(output);

void addIntegerRows(const std::string &kind, unsigned bits)
{
    const Numbers numbers = numbersUpTo(bits);
    const auto str = inTurn(numbers, [](const Number &number) { Str(pascalOutput, number.integer); });
    const auto val = inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(Val(number.decimal.data())); });
    const auto hex = inTurn(numbers, [](Number &number) {
        long value;
        StringHexToNum(number.hexadecimal.data(), &value);
        benchmark::DoNotOptimize(value);
    });

    addRow({"Str, " + kind, "to_chars", "", TablePlace::floor, {1.1, 0, "Strings"}}, str, inTurn(numbers, [](const Number &number) {
               const char *end = std::to_chars(output + 1, output + 20, static_cast<int>(number.integer)).ptr;
               output[0] = static_cast<char>(end - output - 1);
           }));
    addRow({"Str, " + kind, "snprintf", "", TablePlace::peer}, str,
           inTurn(numbers, [](const Number &number) { std::snprintf(output, sizeof output, "%ld", number.integer); }));
    addRow({"Val, " + kind, "from_chars", "", TablePlace::floor, {1.1, 0, "Strings"}}, val, inTurn(numbers, [](const Number &number) {
               int value = 0;
               std::from_chars(first(number.decimal), last(number.decimal), value);
               benchmark::DoNotOptimize(value);
           }));
    addRow({"Val, " + kind, "strtol", "", TablePlace::peer}, val,
           inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(std::strtol(first(number.decimal), nullptr, 10)); }));
    addRow({"StringHexToNum, " + kind, "from_chars", "", TablePlace::floor, {1.1, 0, "Strings"}}, hex,
           inTurn(numbers, [](const Number &number) {
               unsigned value = 0;
               std::from_chars(first(number.hexadecimal), last(number.hexadecimal), value, 16);
               benchmark::DoNotOptimize(value);
           }));
    addRow({"StringHexToNum, " + kind, "strtoul", "", TablePlace::peer}, hex,
           inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(std::strtoul(first(number.hexadecimal), nullptr, 16)); }));
}

void addFractionRows()
{
    const Numbers numbers = numbersUpTo(30);
    const auto write = inTurn(numbers, [](const Number &number) { MyDoubleToString(pascalOutput, number.value, 2); });
    const auto read = inTurn(numbers, [](Number &number) {
        double value;
        MyStringToDouble(number.fraction.data(), &value);
        benchmark::DoNotOptimize(value);
    });

    addRow({"DoubleToLong", "lround", ""},
           inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(DoubleToLong(number.value)); }),
           inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(std::lround(number.value)); }));
    addRow(
        {"MyDoubleToString, 2 decimals", "to_chars(fixed)", "", TablePlace::floor, {1.1, 0, "Strings"}}, write,
        inTurn(numbers, [](const Number &number) { std::to_chars(output + 1, output + 200, number.value, std::chars_format::fixed, 2); }));
    addRow({"MyDoubleToString, 2 decimals", "snprintf", "", TablePlace::peer}, write,
           inTurn(numbers, [](const Number &number) { std::snprintf(output, sizeof output, "%.2f", number.value); }));
    addRow({"MyStringToDouble, 2 decimals", "from_chars", "", TablePlace::floor, {1.1, 0, "Strings"}}, read,
           inTurn(numbers, [](const Number &number) {
               double value = 0;
               std::from_chars(first(number.fraction), last(number.fraction), value);
               benchmark::DoNotOptimize(value);
           }));
    addRow({"MyStringToDouble, 2 decimals", "strtod", "", TablePlace::peer}, read,
           inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(std::strtod(first(number.fraction), nullptr)); }));
    addRow({"Valc", "isdigit", ""},
           inTurn(numbers, [](const Number &number) { benchmark::DoNotOptimize(Valc(static_cast<char>(number.hexadecimal[1]))); }),
           inTurn(numbers, [](const Number &number) {
               benchmark::DoNotOptimize(std::isdigit(number.hexadecimal[1]) ? number.hexadecimal[1] - '0' : 0);
           }));
}

}   // namespace

void addNumberRows()
{
    addIntegerRows("small", 20);
    addIntegerRows("any", 31);
    addFractionRows();
}
