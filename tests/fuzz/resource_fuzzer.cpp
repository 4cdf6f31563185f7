// Any bytes as a file with resources: what is accepted keeps the promises of the format and of the containers.
#include "standin/resources/resource_containers.h"
#include "standin/resources/resource_format.h"
#include "tests/fuzz/require.h"

#include <algorithm>

namespace
{

using namespace standin;
using Bytes = std::span<const std::uint8_t>;

// Each entry is reached in every way that it can be asked for; of several with one ID or one name it is the first.
void checkEntries(const ResourceMap &map)
{
    std::size_t count = 0;
    for (const ResourceTypeList &list : map.types())
    {
        require(!list.entries.empty() && map.findType(list.type) == &list);
        require(std::is_sorted(list.entries.begin(), list.entries.end()));
        count += list.entries.size();
        for (const std::uint32_t number : list.entries)
        {
            const ResourceEntry &entry = map.entries().at(number);
            const auto first = map.find(entry.type, entry.id);
            require(entry.type == list.type && first && *first <= number && map.entries()[*first].id == entry.id);
            require(entry.dataOffset <= 0xFFFFFF && map.nameOf(entry).size() <= 255);
        }
    }
    require(count == map.entries().size());
}

// Only some names: each is looked for among all of its type.
void checkNames(const ResourceMap &map)
{
    for (std::size_t number = 0; number < std::min<std::size_t>(map.entries().size(), 16); ++number)
    {
        const ResourceEntry &entry = map.entries()[number];
        const std::string_view name = map.nameOf(entry);
        const auto found = map.find(entry.type, name);
        require(found.has_value() == !name.empty());
        require(!found || (*found <= number && sameResourceName(map.nameOf(map.entries()[*found]), name)));
    }
}

void readItems(const ResourceMap &map, const ResourceHeader &header, Bytes fork)
{
    for (const ResourceEntry &entry : map.entries())
    {
        const auto place = itemPlace(header, entry, fork.size());
        if (!place)
            continue;
        const auto length = itemLength(fork.subspan(static_cast<std::size_t>(*place)).first<4>(), *place, fork.size());
        if (!length || *length > 4096)
            continue;
        const Bytes item = fork.subspan(static_cast<std::size_t>(*place) + 4, *length);
        std::vector<std::uint8_t> turned(item.begin(), item.end());
        require(!isCompressedResource(entry.attributes, item) || (entry.attributes & compressedAttribute));
        turnResource(entry.type, turned);
        turnResource(entry.type, turned);
        require(std::equal(turned.begin(), turned.end(), item.begin(), item.end()));
    }
}

void readFork(Bytes fork)
{
    const auto header = parseResourceHeader(fork.first(std::min(fork.size(), resourceHeaderSize)), fork.size());
    if (!header)
        return;
    require(header->mapOffset <= fork.size() && header->mapBytes() <= fork.size() - header->mapOffset);
    const Bytes bytes = fork.subspan(header->mapOffset, header->mapBytes());
    const auto map = ResourceMap::parse({bytes.begin(), bytes.end()});
    if (!map)
        return;
    require(map->entries().size() * 12 <= bytes.size());
    checkEntries(*map);
    checkNames(*map);
    readItems(*map, *header, fork);
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Bytes file(data, size);
    const ResourcePlace place = findResourcePlace(file.first(std::min(size, containerHeadSize)), size);
    readFork(file);
    if (place.isDamaged)
        return 0;
    require(place.length == 0 || (place.offset <= size && place.length <= size - place.offset));
    if (place.length > 0)
        readFork(file.subspan(static_cast<std::size_t>(place.offset), static_cast<std::size_t>(place.length)));
    return 0;
}
