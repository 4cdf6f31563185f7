// The format of resource files, without a disk: what is read, what is refused, and what hostile counts cost.
#include "standin/resources/resource_format.h"
#include "tests/standin/resource_bytes.h"

#include <bit>
#include <functional>

namespace
{

using namespace support;
using standin::ResourceHeader;
using standin::ResourceMap;

struct Fork
{
    ResourceHeader header;
    ResourceMap map;
};

std::optional<Fork> parse(const Bytes &fork)
{
    const auto header = standin::parseResourceHeader(std::span(fork).first(std::min<std::size_t>(fork.size(), 16)), fork.size());
    if (!header)
        return std::nullopt;
    const auto start = fork.begin() + header->mapOffset;
    auto map = ResourceMap::parse(Bytes(start, start + static_cast<std::ptrdiff_t>(header->mapBytes())));
    return map ? std::optional(Fork{*header, std::move(*map)}) : std::nullopt;
}

std::string itemOf(const Bytes &fork, const Fork &parsed, OSType type, SInt16 id)
{
    const auto number = parsed.map.find(type, id);
    if (!number)
        return "(none)";
    const auto place = standin::itemPlace(parsed.header, parsed.map.entries()[*number], fork.size());
    if (!place)
        return "(outside)";
    const auto length = standin::itemLength(std::span(fork).subspan(*place).first<4>(), *place, fork.size());
    return length ? std::string(fork.begin() + static_cast<std::ptrdiff_t>(*place) + 4,
                                fork.begin() + static_cast<std::ptrdiff_t>(*place) + 4 + *length)
                  : "(too long)";
}

constexpr OSType text = code("TEXT"), string = code("STR ");

const std::vector<TestResource> someResources = {
    {text, 300, bytesOf("three hundred"), "Second"},
    {string, 7, bytesOf("seven")},
    {text, -5, bytesOf("minus five"), "f\x8Erst"},
    {text, 2, {}, "", 0x24},
    {code("PICT"), 1, bytesOf("p")},
};

TEST(ResourceFormat, FindsEverythingInUnsortedLists)
{
    const Bytes fork = resourceFork(someResources);
    const auto parsed = parse(fork);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(itemOf(fork, *parsed, text, 300), "three hundred");
    EXPECT_EQ(itemOf(fork, *parsed, text, -5), "minus five");
    EXPECT_EQ(itemOf(fork, *parsed, text, 2), "");
    EXPECT_EQ(itemOf(fork, *parsed, string, 7), "seven");
    EXPECT_EQ(itemOf(fork, *parsed, string, 300), "(none)");
    EXPECT_EQ(itemOf(fork, *parsed, code("pict"), 1), "(none)");
    ASSERT_EQ(parsed->map.types().size(), 3u);
    EXPECT_EQ(parsed->map.types()[0].entries.size(), 3u);
    EXPECT_EQ(parsed->map.entries()[2].attributes, 0x24);
}

TEST(ResourceFormat, FindsNamesInUpperAndLowerCase)
{
    const auto parsed = parse(resourceFork(someResources));
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->map.find(text, "sECOND"), parsed->map.find(text, SInt16{300}));
    EXPECT_EQ(parsed->map.find(text, "F\x83RST"), parsed->map.find(text, SInt16{-5}));   // é and É
    EXPECT_FALSE(parsed->map.find(text, "FERST"));
    EXPECT_FALSE(parsed->map.find(text, ""));
    EXPECT_FALSE(parsed->map.find(string, "Second"));
}

TEST(ResourceFormat, TheFirstOfTwoWins)
{
    const Bytes fork =
        resourceFork({{text, 1, bytesOf("first"), "Same"}, {text, 2, bytesOf("other"), "same"}, {text, 1, bytesOf("second")}});
    const auto parsed = parse(fork);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(itemOf(fork, *parsed, text, 1), "first");
    EXPECT_EQ(parsed->map.find(text, "SAME"), 0u);
    EXPECT_EQ(parsed->map.entries().size(), 3u);
}

TEST(ResourceFormat, ATypeListedTwiceIsOneType)
{
    ForkPlaces places;
    Bytes fork = resourceFork({{text, 1, bytesOf("a")}, {string, 1, bytesOf("b")}}, &places);
    setBig(fork, places.typeList + 2 + 8, text, 4);
    const auto parsed = parse(fork);
    ASSERT_TRUE(parsed);
    ASSERT_EQ(parsed->map.types().size(), 1u);
    EXPECT_EQ(parsed->map.types()[0].entries.size(), 2u);
    EXPECT_EQ(itemOf(fork, *parsed, text, 1), "a");
}

TEST(ResourceFormat, TwoResourcesMayShareAnItem)
{
    ForkPlaces places;
    Bytes fork = resourceFork({{text, 1, bytesOf("shared")}, {text, 2, bytesOf("other")}}, &places);
    setBig(fork, places.references[{text, 2}] + 5, 0, 3);
    const auto parsed = parse(fork);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(itemOf(fork, *parsed, text, 2), "shared");
}

TEST(ResourceFormat, AFileWithoutAnyResourceIsOne)
{
    const auto parsed = parse(resourceFork({}));
    ASSERT_TRUE(parsed);
    EXPECT_TRUE(parsed->map.types().empty());
}

// A row spoils one thing; whether the file is still read is the row's, and what is found then.
struct Damage
{
    const char *name;
    std::function<void(Bytes &, ForkPlaces &)> spoil;
    bool isRead;
    const char *first = "one", *second = "two";
};

void PrintTo(const Damage &damage, std::ostream *stream)
{
    *stream << damage.name;
}

using F = Bytes &;
using P = ForkPlaces &;
const Damage damages[] = {
    {"Nothing", [](F, P) {}, true},
    {"RubbishInReservedBytes", [](F f, P) { std::fill(f.begin() + 16, f.begin() + 256, 0xEE); }, true},
    {"RubbishCopyOfTheHeader", [](F f, P p) { std::fill_n(f.begin() + static_cast<std::ptrdiff_t>(p.map), 22, 0xEE); }, true},
    {"RubbishInAHandle",
     [](F f, P p) {
         setBig(f, p.references[{text, 1}] + 8, 0xEEEEEEEE, 4);
     },
     true},
    {"TooLittleData", [](F f, P) { setBig(f, 8, 1, 4); }, true},
    {"TooMuchData", [](F f, P) { setBig(f, 8, 0xFFFFFFFF, 4); }, true},
    {"BytesBehindTheMap", [](F f, P) { f.resize(f.size() + 100); }, true},
    {"CutOffInTheHeader", [](F f, P) { f.resize(15); }, false},
    {"CutOffBeforeTheMap", [](F f, P p) { f.resize(p.map); }, false},
    {"CutOffInTheMap", [](F f, P) { f.resize(f.size() - 1); }, false},
    {"MapTooLong", [](F f, P) { setBig(f, 12, 0xFFFFFFFF, 4); }, false},
    {"MapTooShort", [](F f, P) { setBig(f, 12, 29, 4); }, false},
    {"MapCutBeforeItsReferences",
     [](F f, P p) {
         setBig(f, 12, p.references[{text, 2}] - p.map, 4);
     },
     false},
    {"MapOutside", [](F f, P) { setBig(f, 4, f.size(), 4); }, false},
    {"MapFarOutside", [](F f, P) { setBig(f, 4, 0xFFFFFFFF, 4); }, false},
    {"MapInTheHeader", [](F f, P) { setBig(f, 4, 0, 4); }, false},
    {"AllZeros", [](F f, P) { std::fill(f.begin(), f.end(), 0); }, false},
    {"TypeListOutside", [](F f, P p) { setBig(f, p.map + 24, 0xFFFF, 2); }, false},
    {"TypeListInTheFields", [](F f, P p) { setBig(f, p.map + 24, 26, 2); }, false},
    {"TooManyTypes", [](F f, P p) { setBig(f, p.typeList, 0xFFFE, 2); }, false},
    {"NoTypes", [](F f, P p) { setBig(f, p.typeList, 0xFFFF, 2); }, true, "(none)", "(none)"},
    {"OneTypeTooMany", [](F f, P p) { setBig(f, p.typeList, 40, 2); }, false},
    {"TooManyReferences", [](F f, P p) { setBig(f, p.typeList + 6, 0xFFFF, 2); }, false},
    {"ReferencesOutside", [](F f, P p) { setBig(f, p.typeList + 8, 0xFFFF, 2); }, false},
    {"NamesOutside", [](F f, P p) { setBig(f, p.map + 26, 0xFFFF, 2); }, true},
    {"NameOutside",
     [](F f, P p) {
         setBig(f, p.references[{text, 1}] + 2, 0xFFFE, 2);
     },
     true},
    {"NameTooLong", [](F f, P p) { f[p.nameList] = 255; }, true},
    {"DataOutside", [](F f, P) { setBig(f, 0, 0xFFFFFF00, 4); }, true, "(outside)", "(outside)"},
    {"ItemOutside",
     [](F f, P p) {
         setBig(f, p.references[{text, 1}] + 5, 0xFFFFFF, 3);
     },
     true, "(outside)"},
    {"ItemTooLong",
     [](F f, P p) {
         setBig(f, p.items[{text, 1}], 0x7FFFFFFF, 4);
     },
     true, "(too long)"},
    {"ItemFarTooLong",
     [](F f, P p) {
         setBig(f, p.items[{text, 1}], 0xFFFFFFFF, 4);
     },
     true, "(too long)"},
    {"ItemLengthAtTheEnd",
     [](F f, P p) {
         setBig(f, p.references[{text, 1}] + 5, f.size() - 256 - 3, 3);
     },
     true, "(outside)"},
};

class ResourceDamage : public testing::TestWithParam<Damage>
{
};

TEST_P(ResourceDamage, IsRefusedWhereItIs)
{
    ForkPlaces places;
    Bytes fork = resourceFork({{text, 1, bytesOf("one"), "Name"}, {text, 2, bytesOf("two")}}, &places);
    GetParam().spoil(fork, places);
    const auto parsed = parse(fork);
    ASSERT_EQ(parsed.has_value(), GetParam().isRead);
    if (!parsed)
        return;
    EXPECT_EQ(itemOf(fork, *parsed, text, 1), GetParam().first);
    EXPECT_EQ(itemOf(fork, *parsed, text, 2), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Rows, ResourceDamage, testing::ValuesIn(damages), [](const auto &row) { return std::string(row.param.name); });

TEST(ResourceFormat, AnItemMayEndWithTheForkAndNotBehindIt)
{
    const std::uint8_t five[4] = {0, 0, 0, 5};
    EXPECT_EQ(standin::itemLength(five, 10, 19), 5u);
    EXPECT_FALSE(standin::itemLength(five, 10, 18));
    const ResourceHeader header{100, 0, 0, 0};
    const standin::ResourceEntry entry{text, 1, 0, standin::noResourceName, 20};
    EXPECT_EQ(standin::itemPlace(header, entry, 124), 120u);
    EXPECT_FALSE(standin::itemPlace(header, entry, 123));
}

TEST(ResourceFormat, ADamagedNameIsNone)
{
    for (const std::size_t length : {4u, 5u, 255u})
    {
        ForkPlaces places;
        Bytes fork = resourceFork({{text, 1, bytesOf("one"), "Name"}}, &places);
        fork[places.nameList] = static_cast<std::uint8_t>(length);
        const auto parsed = parse(fork);
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed->map.nameOf(parsed->map.entries()[0]), length == 4 ? "Name" : "");
    }
}

// 8000 types that all claim the same 5000 references would be 40 million entries.
TEST(ResourceFormat, ManyTypesOnOneListAreRefused)
{
    constexpr std::size_t types = 8000, references = 5000;
    Bytes map(28), list;
    appendBig(list, types - 1, 2);
    for (std::size_t type = 0; type < types; ++type)
    {
        appendBig(list, type, 4);
        appendBig(list, references - 1, 2);
        appendBig(list, 2, 2);
    }
    setBig(map, 24, 28, 2);
    map.insert(map.end(), list.begin(), list.end());
    EXPECT_FALSE(ResourceMap::parse(map));
}

TEST(ResourceFormat, AsManyResourcesAsThereCanBeAreFound)
{
    constexpr std::size_t count = 0x10000;
    Bytes map(28);
    setBig(map, 24, 28, 2);
    appendBig(map, 0, 2);
    appendBig(map, text, 4);
    appendBig(map, count - 1, 2);
    appendBig(map, 10, 2);
    for (std::size_t id = 0; id < count; ++id)
    {
        appendBig(map, id, 2);
        appendBig(map, 0xFFFF, 2);
        appendBig(map, id, 4);
        appendBig(map, 0, 4);
    }
    const auto parsed = ResourceMap::parse(map);
    ASSERT_TRUE(parsed);
    for (std::size_t id = 0; id < count; id += 257)
    {
        const auto found = parsed->find(text, static_cast<SInt16>(static_cast<UInt16>(id)));
        ASSERT_TRUE(found);
        EXPECT_EQ(parsed->entries()[*found].dataOffset, id);
    }
}

TEST(ResourceFormat, OnlyTheAttributeAndTheBeginningTogetherMeanCompressed)
{
    const Bytes packed = {0xA8, 0x9F, 0x65, 0x72, 0x00}, plain = {0xA8, 0x9F, 0x65, 0x73, 0x00}, brief = {0xA8, 0x9F, 0x65};
    EXPECT_TRUE(standin::isCompressedResource(0x01, packed));
    EXPECT_TRUE(standin::isCompressedResource(0x29, packed));
    EXPECT_FALSE(standin::isCompressedResource(0x28, packed));
    EXPECT_FALSE(standin::isCompressedResource(0x01, plain));
    EXPECT_FALSE(standin::isCompressedResource(0x01, brief));
}

TEST(ResourceFormat, TurnsTheRecordsThatApplicationsReachInto)
{
    if constexpr (std::endian::native == std::endian::big)
        GTEST_SKIP() << "nothing is turned on a big-endian machine";
    Bytes bytes(22);
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<std::uint8_t>(index);
    Bytes dialog = bytes, alert = bytes, list = bytes;
    standin::turnResource(code("DLOG"), dialog);
    standin::turnResource(code("ALRT"), alert);
    standin::turnResource(code("DITL"), list);
    EXPECT_EQ(dialog, (Bytes{1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 10, 11, 12, 13, 17, 16, 15, 14, 19, 18, 20, 21}));
    EXPECT_EQ(alert, (Bytes{1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21}));
    EXPECT_EQ(list, bytes);
}

TEST(ResourceFormat, TurnsOnlyFieldsThatAreThere)
{
    for (std::size_t size = 0; size < 20; ++size)
    {
        Bytes bytes(size, 1);
        if (size > 2)
            bytes[2] = 9;
        standin::turnResource(code("DLOG"), bytes);
        EXPECT_TRUE(size != 3 || bytes[2] == 9);
    }
}

}   // namespace
