// zerb text encode, zerb text decode: Pascal strings in Mac Roman, byte by byte.
#include "host/commands/text_parts.h"

#include "host/commands/text_bytes.h"
#include "host/text.h"

#include <memory>

namespace host
{

namespace
{

struct EncodeOptions
{
    std::vector<std::string> texts;
    bool asLiteral = false;
    TextOutput output = TextOutput::raw;   // dumps are plain ASCII
};

struct DecodeOptions
{
    std::vector<std::string> dumps;
    TextOutput output = TextOutput::safe;
};

TextRow encoded(const Plugin &plugin, const std::string &text, bool asLiteral)
{
    Str255 pascal;
    makePascal(plugin, text, pascal);
    std::string bytes = bytesOfPascal(pascal);
    Json members = {{"text", text}, {"length", pascal[0]}, {"hex", hexDump(bytes)}, {"c", cLiteral(bytes)}};
    return {asLiteral ? cLiteral(bytes) : hexDump(bytes), std::move(members)};
}

Action declareEncode(Arguments &arguments)
{
    auto options = std::make_shared<EncodeOptions>();
    arguments.paths("TEXT", options->texts, "texts in UTF-8");
    arguments.flag("--c-string", options->asLiteral, "as string literals of C");
    addJsonOption(arguments, options->output);
    return [options](Invocation &invocation) {
        auto work = [&](const std::string &text) { return encoded(invocation.plugin, text, options->asLiteral); };
        showTexts(invocation, options->texts, options->output, work);
    };
}

TextRow decoded(const std::string &dump)
{
    std::string bytes = pascalFromDump(dump);
    std::string text = utf8FromPascal(reinterpret_cast<ConstStr255Param>(bytes.data()));
    return {text, {{"text", text}, {"length", bytes.size() - 1}, {"hex", hexDump(bytes)}, {"c", cLiteral(bytes)}}};
}

Action declareDecode(Arguments &arguments)
{
    auto options = std::make_shared<DecodeOptions>();
    arguments.paths("BYTES", options->dumps, "one string an argument, its length byte first");
    addOutputOptions(arguments, options->output);
    return [options](Invocation &invocation) { showTexts(invocation, options->dumps, options->output, decoded); };
}

}   // namespace

const TextPart encodePart = {
    "encode",
    "Show the bytes of texts as Pascal strings",
    "The first byte is the length. A text with a character that Mac Roman does not have is refused; letters\n"
    "with separate accents are composed first.\n",
    "  zerb text encode Hello Résumé\n"
    "  zerb text encode --c-string 'Name…'\n",
    declareEncode,
};

const TextPart decodePart = {
    "decode",
    "Show Pascal strings as texts",
    "BYTES are pairs of hexadecimal digits, with or without spaces between them, or a string literal of C with\n"
    "its quotes. Bytes behind the length, as in a dump of a whole buffer, are passed over.\n",
    "  zerb text decode '05 48 65 6C 6C 6F' 0548656c6c6f\n"
    "  zerb text decode '\"\\005Hello\"'\n",
    declareDecode,
};

}   // namespace host
