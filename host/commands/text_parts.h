// What the sub-commands of `zerb text` share.
#pragma once

#include "host/command.h"
#include "host/commands/parts.h"
#include "host/json_text.h"

#include <functional>
#include <string>
#include <vector>

namespace host
{

using TextPart = Part;

extern const TextPart fromNumberPart;
extern const TextPart toNumberPart;
extern const TextPart encodePart;
extern const TextPart decodePart;
extern const TextPart shortenPart;

// What came of one text.
struct TextRow
{
    std::string line;   // for people
    Json members;       // for programs, an object
};

enum class TextOutput
{
    safe,   // lines that cannot disturb a terminal
    raw,    // lines as they are
    json
};

// --json
Arguments::Item addJsonOption(Arguments &arguments, TextOutput &output);

// --json or --raw, where lines can hold any text
void addOutputOptions(Arguments &arguments, TextOutput &output);

// Shows what comes of each text, in their order. A UsageError that `work` throws is reported with its text, and the next one follows; in
// JSON its place is taken by an object with "text" and "error".
void showTexts(Invocation &invocation, const std::vector<std::string> &texts, TextOutput output,
               const std::function<TextRow(const std::string &)> &work);

// The UTF-8 text in Mac Roman, as a Pascal string that the plug-in made.
// Throws UsageError if it is no UTF-8, has a character that Mac Roman lacks or a zero byte, or would be longer than 255 characters.
void makePascal(const Plugin &plugin, const std::string &text, Str255 pascal);

// A Pascal string as bytes, the length byte first.
std::string bytesOfPascal(ConstStr255Param pascal);

// The ASCII text of a number, as the plug-in makes C strings.
std::string textOfPascal(const Plugin &plugin, ConstStr255Param pascal);

}   // namespace host
