#include "host/resource_writer.h"

#include <algorithm>

namespace host
{

namespace
{

constexpr std::size_t dataStart = 256;      // 16 bytes of header, 112 of the system and 128 of the application
constexpr std::size_t mapFieldsSize = 28;   // before the list of types
constexpr std::size_t largestOffset = 0xFFFF, largestDataOffset = 0xFFFFFF;

// The lists of a map, and the data that they speak of.
struct Lists
{
    std::string types, references, names, data;
};

std::vector<ResType> typesOf(const std::vector<WritableResource> &resources)
{
    std::vector<ResType> types;
    for (const WritableResource &resource : resources)
        if (std::find(types.begin(), types.end(), resource.type) == types.end())
            types.push_back(resource.type);
    return types;
}

void require(bool fits, const char *what)
{
    if (!fits)
        throw ResourceFileError(what);
}

void appendName(Lists &lists, const WritableResource &resource)
{
    append16(lists.references, resource.name.empty() ? 0xFFFF : static_cast<UInt32>(lists.names.size()));
    if (resource.name.empty())
        return;
    require(lists.names.size() < largestOffset, "the names are longer than a resource file can hold, 64 KiB in all");
    appendPascal(lists.names, resource.name);
}

void appendResource(Lists &lists, const WritableResource &resource)
{
    require(lists.data.size() <= largestDataOffset, "the data are longer than a resource file can hold, 16 MiB in all");
    append16(lists.references, static_cast<UInt16>(resource.id));
    appendName(lists, resource);
    append32(lists.references, UInt32{resource.attributes} << 24 | static_cast<UInt32>(lists.data.size()));
    append32(lists.references, 0);
    append32(lists.data, static_cast<UInt32>(resource.bytes.size()));
    lists.data += resource.bytes;
}

Lists listsOf(const std::vector<WritableResource> &resources)
{
    const std::vector<ResType> types = typesOf(resources);
    const std::size_t referenceStart = 2 + 8 * types.size();
    Lists lists;
    append16(lists.types, static_cast<UInt32>(types.size() - 1));   // none is 0xFFFF
    for (const ResType type : types)
    {
        const auto isOfType = [type](const WritableResource &resource) { return resource.type == type; };
        append32(lists.types, type);
        append16(lists.types, static_cast<UInt32>(std::count_if(resources.begin(), resources.end(), isOfType) - 1));
        require(referenceStart + lists.references.size() <= largestOffset, "there are more resources than a resource file can hold");
        append16(lists.types, static_cast<UInt32>(referenceStart + lists.references.size()));
        for (const WritableResource &resource : resources)
            if (isOfType(resource))
                appendResource(lists, resource);
    }
    return lists;
}

}   // namespace

std::string resourceFileBytes(const std::vector<WritableResource> &resources)
{
    const Lists lists = listsOf(resources);
    const std::size_t nameList = mapFieldsSize + lists.types.size() + lists.references.size();
    require(nameList <= largestOffset, "there are more resources than a resource file can hold");
    std::string header;
    append32(header, static_cast<UInt32>(dataStart));
    append32(header, static_cast<UInt32>(dataStart + lists.data.size()));
    append32(header, static_cast<UInt32>(lists.data.size()));
    append32(header, static_cast<UInt32>(nameList + lists.names.size()));
    std::string map = header;
    map.append(8, '\0');   // handle, file number, attributes
    append16(map, mapFieldsSize);
    append16(map, static_cast<UInt32>(nameList));
    std::string file = header;
    file.resize(dataStart);
    return file + lists.data + map + lists.types + lists.references + lists.names;
}

void append8(std::string &bytes, UInt32 value)
{
    bytes += static_cast<char>(static_cast<unsigned char>(value & 0xFF));
}

void append16(std::string &bytes, UInt32 value)
{
    append8(bytes, value >> 8);
    append8(bytes, value);
}

void append32(std::string &bytes, UInt32 value)
{
    append16(bytes, value >> 16);
    append16(bytes, value);
}

void appendPascal(std::string &bytes, const std::string &text)
{
    append8(bytes, static_cast<UInt32>(text.size()));
    bytes += text;
}

}   // namespace host
