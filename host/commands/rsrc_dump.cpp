// zerb rsrc dump: one resource, for people or as it is.
#include "host/commands/rsrc_parts.h"

#include "host/commands/output_file.h"
#include "host/four_character_codes.h"
#include "host/hexadecimal_lines.h"
#include "host/resource_text.h"
#include "host/text.h"

#include "platform/resources.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::string path, type, id;
    std::optional<std::string> name;     // in Mac Roman
    std::optional<std::string> output;   // a file of Linux
    bool isRaw = false, isHexadecimal = false;
};

void checkOptions(const Options &options)
{
    resourceTypeFromText(options.type);
    if (options.name.has_value() == !options.id.empty())
        throw UsageError("either an ID or --name says which resource is meant");
    if (!options.id.empty())
        resourceIDFromText(options.id);
}

std::string nameFromText(const std::string &typed)
{
    const auto name = macRomanFromUtf8(typed);
    if (!name || name->empty() || name->size() > 255)
        throw UsageError("a name has 1 to 255 characters, each with a place in Mac Roman");
    return *name;
}

Handle findResource(const Options &options, ResType type)
{
    if (!options.name)
        return Get1Resource(type, resourceIDFromText(options.id));
    const std::string name = static_cast<char>(static_cast<unsigned char>(options.name->size())) + *options.name;
    return Get1NamedResource(type, reinterpret_cast<ConstStr255Param>(name.c_str()));
}

std::string described(const Options &options, ResType type)
{
    return describeCode(type) + " " + (options.name ? "\"" + utf8FromMacRoman(*options.name) + "\"" : options.id);
}

void showHexadecimal(std::string_view bytes)
{
    for (std::size_t offset = 0; offset < bytes.size(); offset += bytesOfHexadecimalLine)
        std::fputs(hexadecimalLine(offset, bytes.substr(offset)).c_str(), stdout);
}

void show(const Options &options, ResType type, const std::string &bytes)
{
    const auto text = options.isHexadecimal ? std::nullopt : textOfResource(type, bytes);
    if (options.isRaw)
        std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    else if (text)
        std::fputs(text->c_str(), stdout);
    else
        showHexadecimal(bytes);
}

void save(Invocation &invocation, const std::string &name, const std::string &bytes)
{
    OutputFile output;
    if (!output.open(name))
        return invocation.report.problem(name, whyNoOutput(errno));
    if (!output.write(bytes) || !output.finish())
        invocation.report.problem(name, std::strerror(errno));
}

void dump(Invocation &invocation, const Options &options)
{
    OpenedResourceFile file;
    const ResType type = resourceTypeFromText(options.type);
    if (file.open(invocation, options.path) != noErr)
        return;
    std::string bytes;
    const Handle resource = findResource(options, type);
    const OSErr result = resource ? readResourceBytes(resource, bytes) : ResError();
    if (result != noErr)
    {
        invocation.report.failure(options.path, result, "reading " + described(options, type));
        if (result == resNotFound)
            invocation.report.remark(options.path, "`zerb rsrc list` shows the resources that there are");
    }
    else if (options.output)
        save(invocation, *options.output, bytes);
    else
        show(options, type, bytes);
}

Action declareDump(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.path("FILE", options->path, "a file; what a symbolic link leads to");
    arguments.path("TYPE", options->type, "the resource's type; spaces at its end may be left out");
    arguments.optionalPath("ID", options->id, "the resource's ID");
    arguments.text(
        "--name", "NAME", [options](const std::string &typed) { options->name = nameFromText(typed); },
        "the resource of this name, in upper or lower case, instead of an ID");
    Arguments::Item raw = arguments.flag("--raw", options->isRaw, "the bytes as they are");
    Arguments::Item hexadecimal =
        arguments.flag("--hex", options->isHexadecimal, "the bytes in hexadecimal, also of types that are shown as text");
    arguments
        .text(
            "-o,--output", "LINUXFILE", [options](const std::string &typed) { options->output = typed; },
            "save the bytes as a file of Linux that is not there yet")
        .excludes(raw)
        .excludes(hexadecimal);
    hexadecimal.excludes(raw);
    arguments.finalCheck([options] { checkOptions(*options); });
    return [options](Invocation &invocation) { dump(invocation, *options); };
}

}   // namespace

const Part rsrcDumpPart = {
    "dump",
    "Show one resource",
    "Of 'STR ', 'STR#', 'vers' and 'TEXT' the text is shown; of all others the bytes as they are in the file, sixteen in\n"
    "a line with the same as text beside them. Compressed resources are not taken apart.\n",
    "  zerb rsrc dump Letter STR 128\n"
    "  zerb rsrc dump Letter vers --hex 1\n"
    "  zerb rsrc dump Letter icl8 -3999 -o folder.icl8\n"
    "  zerb rsrc dump --name Folder --raw Letter 'ICN#' | sha256sum\n",
    declareDump,
};

}   // namespace host
