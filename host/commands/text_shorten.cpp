// zerb text shorten: names cut to a width in pixels.
#include "host/commands/text_parts.h"

#include "host/numbers.h"
#include "host/text.h"

#include "platform/drawing.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace host
{

namespace
{

constexpr unsigned char ellipsis = 0xC9;
constexpr UInt32 largestWidth = 32767;   // the platform's widths have 16 bits

struct Options
{
    std::vector<std::string> names;
    int width = 0;
    TextOutput output = TextOutput::safe;
};

// The plug-in keeps one space in reserve and cuts until the rest holds. Where not even an ellipsis fits beside the space, it would never end.
int smallestWidth()
{
    const unsigned char ellipsisAlone[] = {1, ellipsis};
    return CharWidth(' ') + StringWidth(ellipsisAlone);
}

int widthFromText(const std::string &text)
{
    int width = static_cast<int>(numberFromText(text, largestWidth));
    if (width < smallestWidth())
        throw UsageError(text + " pixels are too narrow: a space and an ellipsis take " + std::to_string(smallestWidth()));
    return width;
}

TextRow shortened(const Plugin &plugin, const std::string &name, int width)
{
    Str255 pascal = {};
    makePascal(plugin, name, pascal);
    int widthBefore = StringWidth(pascal);
    plugin.AdjustStrWidth(pascal, width);
    std::string shown = utf8FromPascal(pascal);
    return {shown, {{"text", name}, {"width", widthBefore}, {"shortened", shown}, {"shortened_width", StringWidth(pascal)}}};
}

// A line and how it was allocated, as getline wants them.
struct LineBuffer
{
    char *line = nullptr;
    std::size_t capacity = 0;

    LineBuffer() = default;
    LineBuffer(const LineBuffer &) = delete;
    LineBuffer &operator=(const LineBuffer &) = delete;
    ~LineBuffer() { std::free(line); }
};

std::vector<std::string> linesOfInput(Invocation &invocation)
{
    std::vector<std::string> lines;
    LineBuffer buffer;
    for (ssize_t length; (length = getline(&buffer.line, &buffer.capacity, stdin)) >= 0;)
    {
        bool hasLineEnd = length > 0 && buffer.line[length - 1] == '\n';
        lines.emplace_back(buffer.line, static_cast<std::size_t>(hasLineEnd ? length - 1 : length));
    }
    if (!std::feof(stdin))
        invocation.report.problem("standard input", "cannot be read");
    return lines;
}

void shortenNames(Invocation &invocation, const Options &options)
{
    std::vector<std::string> names = options.names.empty() ? linesOfInput(invocation) : options.names;
    auto work = [&](const std::string &name) { return shortened(invocation.plugin, name, options.width); };
    showTexts(invocation, names, options.output, work);
}

Action declareShorten(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.optionalPaths("NAME", options->names, "names in UTF-8; none: the lines of standard input");
    auto readWidth = [options](const std::string &text) { options->width = widthFromText(text); };
    arguments.text("-w,--width", "PIXELS", readWidth, "how wide a name may be").require();
    addOutputOptions(arguments, options->output);
    return [options](Invocation &invocation) { shortenNames(invocation, *options); };
}

}   // namespace

const TextPart shortenPart = {
    "shorten",
    "Cut names to a width in pixels",
    "A name that is too wide loses characters at its end until it fits with an ellipsis behind it; one space's\n"
    "width is kept in reserve. If the ellipsis alone would be left, the result is empty. Characters are as\n"
    "wide as they are drawn: in DejaVu Sans at 12 pixels, or the family that ZERB_FONT names.\n",
    "  zerb text shorten --width 90 'Quarterly report for the board'\n"
    "  ls | zerb text shorten --width 90\n"
    "  zerb text shorten --width 90 --json *.txt\n",
    declareShorten,
};

}   // namespace host
