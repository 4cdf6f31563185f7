// The forms in which a resource fork travels inside a file: told apart, and refused where they contradict themselves.
#include "standin/resources/resource_containers.h"
#include "tests/data/samples.h"
#include "tests/standin/resource_bytes.h"

namespace
{

using namespace support;
using standin::ResourceContainer;

const Bytes theFork = resourceFork({{code("TEXT"), 128, bytesOf("inside")}});

standin::ResourcePlace placeIn(const Bytes &file)
{
    return standin::findResourcePlace(std::span(file).first(std::min(file.size(), standin::containerHeadSize)), file.size());
}

Bytes forkIn(const Bytes &file, ResourceContainer container)
{
    const auto place = placeIn(file);
    EXPECT_EQ(place.container, container);
    EXPECT_FALSE(place.isDamaged);
    if (place.isDamaged || place.offset + place.length > file.size())
        return {};
    const auto start = file.begin() + static_cast<std::ptrdiff_t>(place.offset);
    return Bytes(start, start + static_cast<std::ptrdiff_t>(place.length));
}

TEST(ResourceContainers, AreToldApart)
{
    const Bytes data = bytesOf("data that come before the fork");
    EXPECT_EQ(forkIn(theFork, ResourceContainer::bare), theFork);
    EXPECT_EQ(forkIn(plainSidecar(theFork), ResourceContainer::appleDouble), theFork);
    EXPECT_EQ(forkIn(appleSingle(data, theFork), ResourceContainer::appleSingle), theFork);
    for (const int version : {1, 2, 3})
    {
        SCOPED_TRACE(version);
        EXPECT_EQ(forkIn(macBinary({}, theFork, version), ResourceContainer::macBinary), theFork);
        EXPECT_EQ(forkIn(macBinary(data, theFork, version), ResourceContainer::macBinary), theFork);
        EXPECT_EQ(forkIn(macBinary(Bytes(128, 7), theFork, version), ResourceContainer::macBinary), theFork);
        EXPECT_EQ(forkIn(macBinary(Bytes(129, 7), theFork, version), ResourceContainer::macBinary), theFork);
    }
}

TEST(ResourceContainers, SamplesAreWhatTheyAre)
{
    EXPECT_EQ(placeIn(readSample("strings.rsrc")).container, ResourceContainer::bare);
    EXPECT_EQ(placeIn(readSample("netatalk3-picture.adouble")).offset, 82u);
    EXPECT_EQ(placeIn(readSample("netatalk3-picture.adouble")).length, 44549u);
    EXPECT_EQ(placeIn(readSample("macos-attributes.adouble")).length, 0u);
    EXPECT_EQ(placeIn(readSample("textfile.macbin")).offset, 256u);
    EXPECT_EQ(placeIn(readSample("textfile.macbin")).length, 1454u);
}

TEST(ResourceContainers, MacBinaryMayHaveASecondHeader)
{
    EXPECT_EQ(forkIn(macBinary(bytesOf("data"), theFork, 2, 5), ResourceContainer::macBinary), theFork);
    EXPECT_EQ(forkIn(macBinary(bytesOf("data"), theFork, 3, 128), ResourceContainer::macBinary), theFork);
}

TEST(ResourceContainers, MacBinaryWithoutItsLastPaddingIsRead)
{
    Bytes file = macBinary(bytesOf("data"), theFork);
    file.resize(256 + theFork.size());
    EXPECT_EQ(forkIn(file, ResourceContainer::macBinary), theFork);
}

TEST(ResourceContainers, MacBinaryWithoutAForkHasNone)
{
    const auto place = placeIn(macBinary(bytesOf("data"), {}));
    EXPECT_EQ(place.container, ResourceContainer::macBinary);
    EXPECT_EQ(place.length, 0u);
    EXPECT_FALSE(place.isDamaged);
}

struct NotMacBinary
{
    const char *name;
    std::size_t at;
    std::uint8_t value;
};

// Of the first version, whose header has no checksum: any of these makes it something else.
TEST(ResourceContainers, WhatIsNotPlausibleIsNoMacBinary)
{
    const NotMacBinary rows[] = {{"FirstByte", 0, 1},       {"NoName", 1, 0},        {"LongName", 1, 64},    {"Zero", 74, 1},
                                 {"SecondZero", 82, 1},     {"HugeData", 83, 0x80},  {"HugeFork", 87, 0x80}, {"DataTooLong", 84, 1},
                                 {"ForkTooLong", 88, 0x10}, {"LaterFields", 101, 7}, {"NoChecksum", 124, 1}};
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.name);
        Bytes file = macBinary(bytesOf("data"), theFork, 1);
        ASSERT_EQ(placeIn(file).container, ResourceContainer::macBinary);
        file[row.at] = row.value;
        EXPECT_EQ(placeIn(file).container, ResourceContainer::bare);
    }
}

TEST(ResourceContainers, ThatAreCutOffAreDamaged)
{
    const std::pair<Bytes, ResourceContainer> rows[] = {{plainSidecar(theFork), ResourceContainer::appleDouble},
                                                        {appleSingle(bytesOf("data"), theFork), ResourceContainer::appleSingle},
                                                        {macBinary(bytesOf("data"), theFork), ResourceContainer::macBinary}};
    for (const auto &[whole, container] : rows)
    {
        Bytes file = whole;
        file.resize(file.size() - 128);
        EXPECT_EQ(placeIn(file).container, container);
        EXPECT_TRUE(placeIn(file).isDamaged);
    }
}

TEST(ResourceContainers, AnyBeginningIsSomething)
{
    const Bytes files[] = {plainSidecar(theFork), appleSingle(bytesOf("data"), theFork), macBinary(bytesOf("data"), theFork), theFork};
    for (const Bytes &file : files)
        for (std::size_t size = 0; size < 300; ++size)
        {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(std::min(size, file.size())));
            const auto place = placeIn(cut);
            EXPECT_TRUE(place.isDamaged || place.length == 0 || place.offset + place.length <= cut.size());
        }
}

}   // namespace
