// zerb text: the plug-in's string functions on real text. Each sub-command lives in one of the sources beside this one.
#include "host/commands.h"

#include "host/commands/text_parts.h"
#include "host/text.h"

#include <cstdio>
#include <utility>

namespace host
{

namespace
{

constexpr std::size_t longestPascal = 255;

const TextPart *const partOrder[] = {&fromNumberPart, &toNumberPart, &encodePart, &decodePart, &shortenPart};

Action declareText(Arguments &arguments)
{
    return declareParts(arguments, partOrder);
}

void showLine(const std::string &line, TextOutput output)
{
    std::string shown = output == TextOutput::raw ? line : printable(line);
    std::fwrite(shown.data(), 1, shown.size(), stdout);
    std::putchar('\n');
}

}   // namespace

Arguments::Item addJsonOption(Arguments &arguments, TextOutput &output)
{
    return arguments.flag(
        "--json", [&output] { output = TextOutput::json; }, "one array with one object per text; \"error\" in it tells of a failure");
}

void addOutputOptions(Arguments &arguments, TextOutput &output)
{
    Arguments::Item json = addJsonOption(arguments, output);
    arguments
        .flag(
            "--raw", [&output] { output = TextOutput::raw; }, "control characters and backslashes as they are, not as escapes")
        .excludes(json);
}

void showTexts(Invocation &invocation, const std::vector<std::string> &texts, TextOutput output,
               const std::function<TextRow(const std::string &)> &work)
{
    Json list = Json::array();
    for (const std::string &text : texts)
    {
        try
        {
            TextRow row = work(text);
            if (output == TextOutput::json)
                list.push_back(std::move(row.members));
            else
                showLine(row.line, output);
        }
        catch (const UsageError &error)
        {
            invocation.report.problem(text, error.what());
            list.push_back({{"text", text}, {"error", error.what()}});
        }
    }
    if (output == TextOutput::json)
        std::fputs(jsonText(list).c_str(), stdout);
}

void makePascal(const Plugin &plugin, const std::string &text, Str255 pascal)
{
    std::optional<std::string> characters = macRomanFromUtf8(text);
    if (!characters)
        throw UsageError("has a character that is not in Mac Roman, or is no UTF-8");
    if (characters->find('\0') != std::string::npos)
        throw UsageError("has a zero byte");
    // The plug-in would keep the length's low eight bits and cut the text to those.
    if (characters->size() > longestPascal)
        throw UsageError("has " + std::to_string(characters->size()) + " characters; a Pascal string has room for 255");
    plugin.CopyCtoPstr(pascal, characters->c_str());
}

std::string bytesOfPascal(ConstStr255Param pascal)
{
    return std::string(reinterpret_cast<const char *>(pascal), 1u + pascal[0]);
}

std::string textOfPascal(const Plugin &plugin, ConstStr255Param pascal)
{
    char text[256];
    plugin.CopyPtoCstr(text, pascal);
    return text;
}

const Command textCommand = {
    "text",
    "Numbers as text, Mac Roman strings, names cut to a width",
    "Texts are UTF-8 here and Mac Roman in the library, where a string is at most 255 characters.\n"
    "A text that begins with '-' goes behind --, unless a digit follows. `zerb text PART --help` explains\n"
    "each part.\n",
    "  zerb text to-number 42 -7\n"
    "  zerb text from-number --decimals 2 3.14159\n"
    "  zerb text encode --c-string Résumé\n"
    "  zerb text decode '06 52 8E 73 75 6D 8E'\n"
    "  ls | zerb text shorten --width 90\n",
    declareText,
};

}   // namespace host
