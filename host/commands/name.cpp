// zerb name: Unicode names and short names, as the plug-in converts them.
#include "host/commands.h"

#include "host/commands/text_bytes.h"
#include "host/commands/text_parts.h"
#include "host/text.h"
#include "host/text_encodings.h"

#include "platform/results.h"
#include "platform/text.h"

#include <cstdio>
#include <cstring>
#include <memory>

namespace host
{

namespace
{

constexpr std::size_t longestShortName = 31, longestVolumeName = 27;
constexpr std::size_t longestText = 0x10000;   // in UTF-16 units; far beyond any name

struct Options
{
    std::vector<std::string> texts;
    TextEncoding encoding = kTextEncodingUnknown;
    bool isVolumeName = false;
    TextOutput output = TextOutput::safe;
};

std::string shownEncoding(TextEncoding encoding)
{
    if (encoding == kTextEncodingUnknown)
        return "the system's encoding";
    std::string name = nameOfEncoding(encoding);
    return name.empty() ? "the encoding " + std::to_string(encoding) : name;
}

Json encodingJson(TextEncoding encoding)
{
    std::string name = encoding == kTextEncodingUnknown ? "system" : nameOfEncoding(encoding);
    return {{"number", encoding}, {"name", name.empty() ? Json(nullptr) : Json(name)}};
}

// What a person can do about it, or nothing.
std::string adviceFor(OSErr result, const Options &options)
{
    std::string encoding = shownEncoding(options.encoding);
    std::size_t most = options.isVolumeName ? longestVolumeName : longestShortName;
    switch (result)
    {
    case kTECOutputBufferFullStatus:
        return "; a short name has at most " + std::to_string(most) + " bytes in " + encoding + ", so a shorter one is wanted";
    case kTECUnmappableElementErr: return "; " + encoding + " lacks it, another --encoding may have it";
    case kTextUnsupportedEncodingErr: return "; `zerb name --help` lists encodings that are";
    default: return "";
    }
}

[[noreturn]] void fail(OSErr result, const Options &options)
{
    throw UsageError(describeResult(result) + ": " + meaningOfResult(result) + adviceFor(result, options));
}

std::vector<UniChar> unitsOfText(const std::string &text)
{
    std::u16string units = unitsFromBytes(text);
    if (units.size() > longestText)
        throw UsageError("is longer than any name can be");
    return {units.begin(), units.end()};
}

HFSUniStr255 unicodeOf(const Plugin &plugin, ConstStr255Param shortName, const Options &options)
{
    HFSUniStr255 name = {};
    OSErr result = plugin.HFSNameGetUnicodeName(shortName, options.encoding, &name);
    if (result != noErr)
        fail(result, options);
    return name;
}

TextRow shortened(const Plugin &plugin, const std::string &text, const Options &options)
{
    std::vector<UniChar> units = unitsOfText(text);
    Str31 shortName = {};
    auto count = static_cast<UniCharCount>(units.size());
    OSErr result = plugin.UnicodeNameGetHFSName(count, units.data(), options.encoding, options.isVolumeName, shortName);
    if (result != noErr)
        fail(result, options);
    std::string bytes = bytesOfPascal(shortName);
    std::string back = bytesFromName(unicodeOf(plugin, shortName, options));
    Json members = {{"text", text},           {"encoding", encodingJson(options.encoding)},
                    {"length", shortName[0]}, {"hex", hexDump(bytes)},
                    {"unicode", back},        {"same_again", back == text}};
    return {hexDump(bytes) + "  " + back, std::move(members)};
}

std::string unitsText(const HFSUniStr255 &name)
{
    std::string text;
    char digits[8];
    for (UniChar unit : std::vector<UniChar>(name.unicode, name.unicode + name.length))
    {
        std::snprintf(digits, sizeof digits, text.empty() ? "%04X" : " %04X", unsigned{unit});
        text += digits;
    }
    return text;
}

TextRow lengthened(const Plugin &plugin, const std::string &dump, const Options &options)
{
    std::string bytes = pascalFromDump(dump);
    if (bytes.size() - 1 > longestShortName)
        throw UsageError("has " + std::to_string(bytes.size() - 1) + " bytes behind its length; a short name has at most 31");
    Str31 shortName = {};
    std::memcpy(shortName, bytes.data(), bytes.size());
    HFSUniStr255 name = unicodeOf(plugin, shortName, options);
    std::string text = bytesFromName(name);
    Json units = Json::array();
    for (unsigned index = 0; index < name.length; ++index)
        units.push_back(static_cast<UniChar>(name.unicode[index]));
    Json members = {{"text", dump},    {"encoding", encodingJson(options.encoding)}, {"hex", hexDump(bytes)},
                    {"unicode", text}, {"length", static_cast<UInt16>(name.length)}, {"units", std::move(units)}};
    return {unitsText(name) + "  " + text, std::move(members)};
}

void addEncodingOption(Arguments &arguments, TextEncoding &encoding)
{
    arguments.text(
        "--encoding", "WORD|NUMBER", [&encoding](const std::string &typed) { encoding = encodingFromText(typed); },
        "of the short name; without it, system: as the system's language has it");
}

Action declareShort(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("NAME", options->texts, "names in UTF-8, as Macintosh software has them: a '/' is a character like others");
    addEncodingOption(arguments, options->encoding);
    arguments.flag("--volume", options->isVolumeName, "names of volumes, which have at most 27 bytes");
    addJsonOption(arguments, options->output);
    return [options](Invocation &invocation) {
        auto work = [&](const std::string &text) { return shortened(invocation.plugin, text, *options); };
        showTexts(invocation, options->texts, options->output, work);
    };
}

Action declareUnicode(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("BYTES", options->texts, "one name an argument, its length byte first");
    addEncodingOption(arguments, options->encoding);
    addJsonOption(arguments, options->output);
    return [options](Invocation &invocation) {
        auto work = [&](const std::string &dump) { return lengthened(invocation.plugin, dump, *options); };
        showTexts(invocation, options->texts, options->output, work);
    };
}

const Part shortPart = {
    "short",
    "Show the short names of Unicode names, byte by byte",
    "A line has the bytes, the length first, and the name that they give when they are read again: a character that\n"
    "the encoding lacks may have become a similar one. A name of more than 31 bytes is not shortened but refused.\n",
    "  zerb name short Letter Résumé\n"
    "  zerb name short --encoding japanese 書類\n"
    "  zerb name short --volume --json 'My Disk'\n",
    declareShort,
};

const Part unicodePart = {
    "unicode",
    "Show the Unicode names of short names",
    "BYTES are pairs of hexadecimal digits, with or without spaces between them, or a string literal of C with its\n"
    "quotes. A line has the UTF-16 units and the name.\n",
    "  zerb name unicode '06 4C 65 74 74 65 72' 066C6574746572\n"
    "  zerb name unicode --encoding cyrillic '\"\\003\\204\\340\\355\"'\n",
    declareUnicode,
};

const Part *const partOrder[] = {&shortPart, &unicodePart};

Action declareName(Arguments &arguments)
{
    return declareParts(arguments, partOrder);
}

const std::string description =
    "Short names have at most 31 bytes, in an encoding of Mac OS as a rule. Encodings are words or numbers; the words are\n" +
    encodingWords() + ".\n`zerb name PART --help` explains each part.\n";

}   // namespace

const Command nameCommand = {
    "name",
    "Unicode names as short names, and back",
    description.c_str(),
    "  zerb name short Letter Résumé\n"
    "  zerb name short --encoding greek Αθήνα\n"
    "  zerb name unicode --encoding japanese '04 8F 91 97 DE'\n",
    declareName,
};

}   // namespace host
