// The block of attributes behind the Finder information: its offsets move with the entry, and nothing else of it changes.
#include "standin/files/attribute_block.h"

#include "tests/standin/test_volume.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace
{

using namespace support;
using standin::moveAttributeBlock;

constexpr std::size_t entryAt = 50, entrySize = 217;   // of entry 9 in the sample
constexpr std::size_t signatureAt = 34, totalSizeAt = 42, dataStartAt = 46, countAt = 68, firstAttributeAt = 70;

Bytes sampleSidecar()
{
    return readFile(std::string(ZERB_TEST_DATA) + "/macos-attributes.adouble");
}

Bytes sampleEntry()
{
    Bytes sidecar = sampleSidecar();
    return Bytes(sidecar.begin() + entryAt, sidecar.begin() + entryAt + entrySize);
}

// Name and value of every attribute, read from an entry that begins at `start` of its file.
std::map<std::string, std::string> attributesOf(const Bytes &entry, std::size_t start)
{
    std::map<std::string, std::string> attributes;
    const auto at = [&](std::size_t offset) { return entry.at(offset - start); };
    std::size_t offset = start + firstAttributeAt;
    for (std::size_t left = entry.at(countAt) * 256u + entry.at(countAt + 1); left > 0; --left)
    {
        std::uint32_t valueAt = big32(entry, offset - start), length = big32(entry, offset - start + 4);
        std::size_t nameLength = at(offset + 10);
        std::string name, value;
        for (std::size_t i = 0; i + 1 < nameLength; ++i)
            name.push_back(static_cast<char>(at(offset + 11 + i)));
        for (std::size_t i = 0; i < length; ++i)
            value.push_back(static_cast<char>(at(valueAt + i)));
        attributes[name] = value;
        offset = (offset + 11 + nameLength + 3) / 4 * 4;
    }
    return attributes;
}

const std::map<std::string, std::string> sampleAttributes = {
    {"com.opcoders.a_first", std::string("first")},
    {"com.opcoders.b_second", std::string("second")},
    {"com.opcoders.c_empty", std::string()},
    {"com.opcoders.d_last", std::string("last")},
};

TEST(AttributeBlock, TheSampleIsWhatItIsSaidToBe)
{
    ASSERT_EQ(sampleSidecar().size(), 267u);
    EXPECT_EQ(attributesOf(sampleEntry(), entryAt), sampleAttributes);
}

TEST(AttributeBlock, AttributesAreFoundWhereTheEntryMovedTo)
{
    for (int distance : {12, 24, 36, 120})
    {
        Bytes entry = sampleEntry();
        moveAttributeBlock(entry, distance);
        EXPECT_EQ(attributesOf(entry, entryAt + static_cast<std::size_t>(distance)), sampleAttributes) << distance;
        EXPECT_EQ(big32(entry, totalSizeAt), 267u + static_cast<unsigned>(distance));
        EXPECT_EQ(big32(entry, dataStartAt), 252u + static_cast<unsigned>(distance));
    }
}

TEST(AttributeBlock, AnAttributeWithoutAValueStaysAtZero)
{
    Bytes entry = sampleEntry();
    moveAttributeBlock(entry, 12);
    EXPECT_EQ(big32(entry, 188 - entryAt), 0u);
}

TEST(AttributeBlock, MovingThereAndBackChangesNothing)
{
    for (int distance : {12, 24, 120})
    {
        Bytes entry = sampleEntry();
        moveAttributeBlock(entry, distance);
        EXPECT_NE(entry, sampleEntry());
        moveAttributeBlock(entry, -distance);
        EXPECT_EQ(entry, sampleEntry()) << distance;
    }
}

TEST(AttributeBlock, TwoStepsAreOneLongStep)
{
    Bytes twice = sampleEntry(), once = sampleEntry();
    moveAttributeBlock(twice, 12);
    moveAttributeBlock(twice, 12);
    moveAttributeBlock(once, 24);
    EXPECT_EQ(twice, once);
}

TEST(AttributeBlock, NoDistanceChangesNothing)
{
    Bytes entry = sampleEntry();
    moveAttributeBlock(entry, 0);
    EXPECT_EQ(entry, sampleEntry());
}

// Only the offsets change: two fields of the header and one in each attribute that has a value.
TEST(AttributeBlock, NothingButOffsetsChanges)
{
    Bytes entry = sampleEntry();
    moveAttributeBlock(entry, 12);
    for (std::size_t at : {totalSizeAt, dataStartAt, 120 - entryAt, 152 - entryAt, 220 - entryAt})
        for (std::size_t i = at; i < at + 4; ++i)
            entry[i] = sampleEntry()[i];
    EXPECT_EQ(entry, sampleEntry());
}

TEST(AttributeBlock, AnEntryWithoutOneStaysAsItIs)
{
    Bytes other = sampleEntry();
    other[signatureAt] = 'a';
    for (const Bytes &entry : {Bytes(), Bytes(32, 0xFF), Bytes(34, 0xFF), Bytes(217, 0xFF), other})
    {
        Bytes moved = entry;
        moveAttributeBlock(moved, 12);
        EXPECT_EQ(moved, entry);
    }
}

// What follows the entry in memory must not be touched, whatever the entry says. The sanitizers see the rest.
void expectStaysInside(const Bytes &entry)
{
    Bytes room = entry;
    room.resize(entry.size() + 512, 0xEE);
    moveAttributeBlock(std::span(room.data(), entry.size()), 12);
    for (std::size_t i = entry.size(); i < room.size(); ++i)
        ASSERT_EQ(room[i], 0xEE) << "byte " << i - entry.size() << " behind an entry of " << entry.size();
    Bytes exact = entry;
    exact.shrink_to_fit();
    moveAttributeBlock(exact, 12);
    EXPECT_TRUE(std::equal(exact.begin(), exact.end(), room.begin()));
}

TEST(AttributeBlock, ACutOffOneIsNotOverrun)
{
    for (std::size_t size = 0; size < entrySize; ++size)
    {
        Bytes entry = sampleEntry();
        entry.resize(size);
        expectStaysInside(entry);
    }
}

TEST(AttributeBlock, HostileCountsAreNotFollowedOutside)
{
    for (unsigned count : {0u, 5u, 6u, 100u, 0x7FFFu, 0x8000u, 0xFFFFu})
    {
        Bytes entry = sampleEntry();
        entry[countAt] = static_cast<std::uint8_t>(count >> 8);
        entry[countAt + 1] = static_cast<std::uint8_t>(count);
        SCOPED_TRACE(count);
        expectStaysInside(entry);
    }
}

TEST(AttributeBlock, HostileNameLengthsAreNotFollowedOutside)
{
    for (std::size_t attribute : {120, 152, 188, 220})
        for (unsigned length = 0; length < 256; ++length)
        {
            Bytes entry = sampleEntry();
            entry[attribute - entryAt + 10] = static_cast<std::uint8_t>(length);
            entry[countAt] = 0xFF;
            SCOPED_TRACE(testing::Message() << "attribute at " << attribute << ", name length " << length);
            expectStaysInside(entry);
        }
}

TEST(AttributeBlock, RandomOnesAreNotFollowedOutside)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round)
    {
        Bytes entry = sampleEntry();
        entry.resize(70 + random() % 200);
        for (unsigned i = 0; i < random() % 20; ++i)
            entry[38 + random() % (entry.size() - 38)] = static_cast<std::uint8_t>(random());
        SCOPED_TRACE(round);
        expectStaysInside(entry);
        if (HasFailure())
            break;
    }
}

}   // namespace
