// zerb text from-number, zerb text to-number.
#include "host/commands/text_number_checks.h"
#include "host/commands/text_parts.h"
#include "host/numbers.h"

#include <memory>

namespace host
{

namespace
{

constexpr UInt32 mostDecimals = 9;

enum class NumberKind
{
    whole,
    fraction,
    hexadecimal
};

struct FromNumberOptions
{
    std::vector<std::string> numbers;
    std::optional<short> decimals;
    TextOutput output = TextOutput::safe;
};

struct ToNumberOptions
{
    std::vector<std::string> texts;
    NumberKind kind = NumberKind::whole;
    TextOutput output = TextOutput::safe;
};

TextRow wholeNumberRow(const Plugin &plugin, const std::string &number)
{
    long value = wholeFromText(number);
    Str255 pascal;
    plugin.Str(pascal, value);
    std::string text = textOfPascal(plugin, pascal);
    return {text, {{"number", value}, {"text", text}}};
}

TextRow fractionRow(const Plugin &plugin, const std::string &number, short decimals)
{
    double value = fractionFromText(number);
    Str255 pascal;
    plugin.MyDoubleToString(pascal, value, decimals);
    std::string text = textOfPascal(plugin, pascal);
    return {text, {{"number", value}, {"text", text}}};
}

Action declareFromNumber(Arguments &arguments)
{
    auto options = std::make_shared<FromNumberOptions>();
    arguments.paths("NUMBER", options->numbers, "decimal numbers");
    arguments.number("--decimals", "N", options->decimals, mostDecimals, "digits after the point, 0 to 9; numbers may then have fractions");
    addJsonOption(arguments, options->output);
    return [options](Invocation &invocation) {
        auto work = [&](const std::string &number) {
            return options->decimals ? fractionRow(invocation.plugin, number, *options->decimals)
                                     : wholeNumberRow(invocation.plugin, number);
        };
        showTexts(invocation, options->numbers, options->output, work);
    };
}

// The library's number, and whether the text is one of those that have exactly one meaning.
struct ReadNumber
{
    Json value;
    bool isExact;
};

ReadNumber readNumber(const Plugin &plugin, const std::string &text, NumberKind kind)
{
    Str255 pascal;
    makePascal(plugin, text, pascal);
    long whole = 0;
    double fraction = 0;
    switch (kind)
    {
    case NumberKind::hexadecimal: plugin.StringHexToNum(pascal, &whole); return {whole, isExactHexadecimal(text)};
    case NumberKind::fraction: plugin.MyStringToDouble(pascal, &fraction); return {fraction, isExactFraction(text)};
    default: whole = plugin.Val(pascal); return {whole, isExactWhole(text)};
    }
}

// The library reads any text without a word. Who asks at a command line should hear of it.
void remarkOnGuess(Invocation &invocation, const std::string &text, NumberKind kind, const std::string &number)
{
    const char *expected = kind == NumberKind::hexadecimal ? "one to eight hexadecimal digits"
                           : kind == NumberKind::fraction  ? "a number with up to nine decimals"
                                                           : "a whole number of 32 bits";
    invocation.report.remark(text, std::string("is not ") + expected + "; the library reads it as " + number);
}

TextRow numberOfText(Invocation &invocation, const std::string &text, NumberKind kind)
{
    ReadNumber number = readNumber(invocation.plugin, text, kind);
    std::string shown = number.value.compact();
    if (!number.isExact)
        remarkOnGuess(invocation, text, kind, shown);
    return {shown, {{"text", text}, {"number", number.value}, {"exact", number.isExact}}};
}

Action declareToNumber(Arguments &arguments)
{
    auto options = std::make_shared<ToNumberOptions>();
    arguments.paths("TEXT", options->texts, "texts to read");
    auto choose = [&](const char *name, NumberKind kind, const char *description) {
        return arguments.flag(
            name, [options, kind] { options->kind = kind; }, description);
    };
    Arguments::Item fraction = choose("--fraction", NumberKind::fraction, "fractions, with '.' or ',' before the decimals");
    choose("--hex", NumberKind::hexadecimal, "hexadecimal numbers, with or without $ or 0x before them").excludes(fraction);
    addJsonOption(arguments, options->output);
    return [options](Invocation &invocation) {
        auto work = [&](const std::string &text) { return numberOfText(invocation, text, options->kind); };
        showTexts(invocation, options->texts, options->output, work);
    };
}

}   // namespace

const TextPart fromNumberPart = {
    "from-number",
    "Write numbers as text",
    "Whole numbers go from -2147483648 to 2147483647. With --decimals the digits are cut off, not rounded, and\n"
    "a fraction that comes out as 0 is left out, point and all: 2.0 is 2. The library adds 0.0000001 to each\n"
    "fraction, which shows from seven decimals on.\n",
    "  zerb text from-number 42 -7\n"
    "  zerb text from-number --decimals 2 3.14159 2.5 2\n",
    declareFromNumber,
};

const TextPart toNumberPart = {
    "to-number",
    "Read numbers from text",
    "The library has a number for every text. Where the text is not plainly one, a line on standard error says\n"
    "so, and \"exact\" is false in JSON; the exit status stays 0. With --fraction, what stands before and\n"
    "behind the number is passed over: '3.75 kg' is 3.75.\n",
    "  zerb text to-number 42 -7 +7\n"
    "  zerb text to-number --hex 1A '$FF' 0xffffffff\n"
    "  zerb text to-number --fraction 12.5 12,5 '3.75 kg'\n",
    declareToNumber,
};

}   // namespace host
