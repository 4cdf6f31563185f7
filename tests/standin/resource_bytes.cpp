#include "tests/standin/resource_bytes.h"

#include <algorithm>
#include <cstring>

namespace support
{

namespace
{

constexpr std::size_t dataStart = 256;

std::vector<OSType> typesOf(const std::vector<TestResource> &resources)
{
    std::vector<OSType> types;
    for (const TestResource &resource : resources)
        if (std::find(types.begin(), types.end(), resource.type) == types.end())
            types.push_back(resource.type);
    return types;
}

void append(Bytes &bytes, const Bytes &more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void padTo(Bytes &bytes, std::size_t multiple)
{
    bytes.resize((bytes.size() + multiple - 1) / multiple * multiple);
}

std::uint16_t crc(const Bytes &bytes, std::size_t count)
{
    std::uint32_t sum = 0;
    for (std::size_t bit = 0; bit < count * 8 + 16; ++bit)   // long division, as the polynomial is defined
    {
        const std::uint32_t next = bit / 8 < count ? bytes[bit / 8] >> (7 - bit % 8) & 1 : 0;
        sum = sum << 1 | next;
        if (sum & 0x10000)
            sum ^= 0x11021;
    }
    return static_cast<std::uint16_t>(sum);
}

// A fork in the making.
struct ForkParts
{
    Bytes fork = Bytes(dataStart), types, references, names;
    ForkPlaces places{};   // those of references are counted from the first one until all is put together

    void add(const TestResource &resource);
    Bytes together();
};

void ForkParts::add(const TestResource &resource)
{
    places.references.try_emplace({resource.type, resource.id}, references.size());
    places.items.try_emplace({resource.type, resource.id}, fork.size());
    appendBig(references, static_cast<std::uint16_t>(resource.id), 2);
    appendBig(references, resource.name.empty() ? 0xFFFF : names.size(), 2);
    appendBig(references, std::uint64_t{resource.attributes} << 24 | (fork.size() - dataStart), 4);
    appendBig(references, 0, 4);
    if (!resource.name.empty())
        appendBig(names, resource.name.size(), 1);
    append(names, bytesOf(resource.name));
    appendBig(fork, resource.bytes.size(), 4);
    append(fork, resource.bytes);
}

Bytes ForkParts::together()
{
    places.map = fork.size();
    places.typeList = places.map + 28;
    places.nameList = places.typeList + types.size() + references.size();
    for (auto &[key, place] : places.references)
        place += places.typeList + types.size();
    setBig(fork, 0, dataStart, 4);
    setBig(fork, 4, places.map, 4);
    setBig(fork, 8, places.map - dataStart, 4);
    fork.resize(places.typeList);
    setBig(fork, places.map + 24, 28, 2);
    setBig(fork, places.map + 26, places.nameList - places.map, 2);
    for (const Bytes *part : {&types, &references, &names})
        append(fork, *part);
    setBig(fork, 12, fork.size() - places.map, 4);
    std::copy_n(fork.begin(), 16, fork.begin() + static_cast<std::ptrdiff_t>(places.map));
    return fork;
}

}   // namespace

void setBig(Bytes &bytes, std::size_t at, std::uint64_t value, int width)
{
    for (int index = 0; index < width; ++index)
        bytes.at(at + static_cast<std::size_t>(index)) = static_cast<std::uint8_t>(value >> (8 * (width - 1 - index)));
}

Bytes resourceFork(const std::vector<TestResource> &resources, ForkPlaces *places)
{
    ForkParts parts;
    const std::vector<OSType> order = typesOf(resources);
    appendBig(parts.types, order.size() - 1, 2);   // none is 0xFFFF
    for (const OSType type : order)
    {
        const auto count = std::count_if(resources.begin(), resources.end(), [&](const auto &one) { return one.type == type; });
        appendBig(parts.types, type, 4);
        appendBig(parts.types, static_cast<std::uint64_t>(count - 1), 2);
        appendBig(parts.types, 2 + 8 * order.size() + parts.references.size(), 2);
        for (const TestResource &resource : resources)
            if (resource.type == type)
                parts.add(resource);
    }
    const Bytes fork = parts.together();
    if (places)
        *places = parts.places;
    return fork;
}

Bytes appleSingle(const Bytes &data, const Bytes &fork)
{
    Bytes file = bytesOf(std::string_view("\x00\x05\x16\x00\x00\x02\x00\x00", 8));
    file.resize(24);
    appendBig(file, 2, 2);
    for (const auto &[id, offset, length] :
         {std::array{std::size_t{1}, std::size_t{50}, data.size()}, std::array{std::size_t{2}, 50 + data.size(), fork.size()}})
    {
        appendBig(file, id, 4);
        appendBig(file, offset, 4);
        appendBig(file, length, 4);
    }
    append(file, data);
    append(file, fork);
    return file;
}

Bytes macBinary(const Bytes &data, const Bytes &fork, int version, std::size_t secondHeader)
{
    Bytes file(128);
    file[1] = 4;
    std::memcpy(file.data() + 2, "Name", 4);
    std::memcpy(file.data() + 65, "rsrcRSED", 8);
    setBig(file, 83, data.size(), 4);
    setBig(file, 87, fork.size(), 4);
    setBig(file, 120, secondHeader, 2);
    if (version == 3)
        std::memcpy(file.data() + 102, "mBIN", 4);
    if (version >= 2)
    {
        file[122] = static_cast<std::uint8_t>(127 + version);
        file[123] = 129;
        setBig(file, 124, crc(file, 124), 2);
    }
    append(file, Bytes(secondHeader, 0xEE));
    padTo(file, 128);
    append(file, data);
    padTo(file, 128);
    append(file, fork);
    padTo(file, 128);
    return file;
}

FSRef fileWithFork(TemporaryFolder &folder, const std::string &name, const Bytes &fork)
{
    writeFile(folder / name, Bytes{});
    const FSRef ref = refAt(folder / name);
    EXPECT_EQ(writeFork(ref, true, fork), noErr);
    return ref;
}

FSRef fileWithData(TemporaryFolder &folder, const std::string &name, const Bytes &data)
{
    writeFile(folder / name, data);
    return refAt(folder / name);
}

std::string contentOf(Handle handle)
{
    if (!handle || !*handle)
        return handle ? "(empty handle)" : "(no handle)";
    return std::string(*handle, static_cast<std::size_t>(GetHandleSize(handle)));
}

}   // namespace support
