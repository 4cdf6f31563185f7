// zerb rsrc: the resources of files. Dumping and making live in sources beside this one.
#include "host/commands.h"

#include "host/catalog_json.h"
#include "host/commands/rsrc_parts.h"
#include "host/four_character_codes.h"
#include "host/json_text.h"
#include "host/text.h"

#include "platform/resources.h"

#include <cstdio>
#include <memory>

namespace host
{

namespace
{

struct Options
{
    std::vector<std::string> paths;
    std::optional<ResType> type;
    bool json = false;
};

struct ResourceRow
{
    ResType type = 0;
    SInt16 id = 0;
    std::string name;   // UTF-8
    SInt16 attributes = 0;
    long size = 0;          // in the file
    OSErr result = noErr;   // of asking for the size
};

constexpr struct
{
    SInt16 attribute;
    const char *word;
} attributeWords[] = {{resSysHeap, "sysheap"}, {resPurgeable, "purgeable"}, {resLocked, "locked"},      {resProtected, "protected"},
                      {resPreload, "preload"}, {resChanged, "changed"},     {0x01, "marked-compressed"}};

std::vector<std::string> wordsOf(SInt16 attributes)
{
    std::vector<std::string> words;
    for (const auto &[attribute, word] : attributeWords)
        if (attributes & attribute)
            words.emplace_back(word);
    return words;
}

ResourceRow rowOf(Handle resource)
{
    ResourceRow row;
    Str255 name = {};
    GetResInfo(resource, &row.id, &row.type, name);
    row.name = utf8FromPascal(name);
    row.attributes = GetResAttrs(resource);
    row.size = GetResourceSizeOnDisk(resource);
    row.result = ResError();
    return row;
}

std::vector<ResourceRow> rowsOfCurrentFile(const Options &options)
{
    std::vector<ResourceRow> rows;
    const SInt16 typeCount = Count1Types();
    for (int typeIndex = 1; typeIndex <= typeCount; ++typeIndex)
    {
        ResType type = 0;
        Get1IndType(&type, static_cast<SInt16>(typeIndex));
        if (options.type && *options.type != type)
            continue;
        const SInt16 count = Count1Resources(type);
        for (int index = 1; index <= count; ++index)
            if (Handle resource = Get1IndResource(type, static_cast<SInt16>(index)))
                rows.push_back(rowOf(resource));
    }
    return rows;
}

void showRow(const ResourceRow &row)
{
    std::string line = printable(describeCode(row.type)), rest;
    line.append(columnsOf(line) < 10 ? 10 - columnsOf(line) : 0, ' ');
    if (!row.name.empty())
        rest = "  \"" + printable(row.name) + "\"";
    std::string words;
    for (const std::string &word : wordsOf(row.attributes))
        words += (words.empty() ? "  (" : ", ") + word;
    rest += words.empty() ? "" : words + ")";
    const std::string size = row.result == noErr ? grouped(static_cast<UInt64>(row.size)) + " bytes" : describeResult(row.result);
    std::printf("  %s %6d %18s%s\n", line.c_str(), row.id, size.c_str(), rest.c_str());
}

Json rowJson(const ResourceRow &row)
{
    const auto text = textOfCode(row.type);
    Json json = {{"type", text ? Json(*text) : Json(nullptr)}, {"type_code", row.type},           {"id", row.id}, {"name", row.name},
                 {"attributes", wordsOf(row.attributes)},      {"attribute_bits", row.attributes}};
    json["size"] = row.result == noErr ? Json(row.size) : Json(nullptr);
    if (row.result != noErr)
        json["error"] = describeResult(row.result);
    return json;
}

// An entry whose bytes do not lie in the file is a failure, and is listed as well.
void reportDamage(Invocation &invocation, const std::string &path, const std::vector<ResourceRow> &rows)
{
    for (const ResourceRow &row : rows)
        if (row.result != noErr)
            invocation.report.failure(path, row.result, describeCode(row.type) + " " + std::to_string(row.id));
}

void showRows(const std::string &path, const std::vector<ResourceRow> &rows)
{
    std::printf("%s\n", printable(path).c_str());
    for (const ResourceRow &row : rows)
        showRow(row);
    std::printf("  %zu %s\n", rows.size(), rows.size() == 1 ? "resource" : "resources");
}

Json fileJson(const std::string &path, const std::vector<ResourceRow> &rows)
{
    Json list = Json::array();
    for (const ResourceRow &row : rows)
        list.push_back(rowJson(row));
    return {{"path", path}, {"resources", std::move(list)}};
}

void listAll(Invocation &invocation, const Options &options)
{
    Json all = Json::array();
    for (const std::string &path : options.paths)
    {
        OpenedResourceFile file;
        const OSStatus result = file.open(invocation, path);
        const std::vector<ResourceRow> rows = result == noErr ? rowsOfCurrentFile(options) : std::vector<ResourceRow>();
        if (options.json)
            all.push_back(result == noErr ? fileJson(path, rows) : errorJson(path, result));
        else if (result == noErr)
            showRows(path, rows);
        reportDamage(invocation, path, rows);
    }
    if (options.json)
        std::fputs(jsonText(all).c_str(), stdout);
}

Action declareList(Arguments &arguments)
{
    auto options = std::make_shared<Options>();
    arguments.paths("FILE", options->paths, "files; what a symbolic link leads to");
    arguments.text(
        "--type", "TYPE", [options](const std::string &typed) { options->type = resourceTypeFromText(typed); },
        "only resources of this type; spaces at its end may be left out");
    arguments.json(options->json);
    return [options](Invocation &invocation) { listAll(invocation, *options); };
}

const Part listPart = {
    "list",
    "List the resources of files",
    "Type, ID, size in the file, name and attributes, in the order of the file. The resources are those of the resource\n"
    "fork; of a file without one they are those that the file itself holds, as a bare resource fork, AppleDouble,\n"
    "AppleSingle or MacBinary.\n",
    "  zerb rsrc list Letter\n"
    "  zerb rsrc list --type STR Letter.rsrc\n"
    "  zerb rsrc list --json ._Letter\n",
    declareList,
};

const Part *const partOrder[] = {&listPart, &rsrcDumpPart, &rsrcMakePart};

Action declareRsrc(Arguments &arguments)
{
    return declareParts(arguments, partOrder);
}

}   // namespace

const Command rsrcCommand = {
    "rsrc",
    "List and show resources of files, and make resource files",
    "Resources are numbered and named blocks of a type of four characters, in a file's resource fork.\n"
    "`zerb rsrc PART --help` explains each part.\n",
    "  zerb rsrc list Letter\n"
    "  zerb rsrc dump Letter STR 128\n"
    "  zerb rsrc make Dialog.txt Dialog.rsrc\n",
    declareRsrc,
};

}   // namespace host
