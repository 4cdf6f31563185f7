// References as bytes: what is put in comes out again, and no other bytes are taken for one.
#include "standin/files/reference_format.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace
{

using namespace standin;

// Devices must be known before a reference may name one.
const std::uint64_t device = 0x0000000800000011;

ReferenceFields sampleFields()
{
    numberOfDevice(device);
    ReferenceFields fields;
    fields.volume = -3;
    fields.parentID = 0xFFFFFFFE;
    fields.device = device;
    fields.inode = 0xFEDCBA9876543210;
    fields.time = 0x7FFFFFFFFFFFFFFF;
    fields.timeIsBirth = true;
    return fields;
}

void expectSame(const ReferenceFields &a, const ReferenceFields &b)
{
    EXPECT_EQ(a.volume, b.volume);
    EXPECT_EQ(a.parentID, b.parentID);
    EXPECT_EQ(a.device, b.device);
    EXPECT_EQ(a.inode, b.inode);
    EXPECT_EQ(a.time, b.time);
    EXPECT_EQ(a.timeIsBirth, b.timeIsBirth);
}

TEST(ReferenceFormat, EveryFieldComesBack)
{
    for (std::size_t length = 1; length <= longestNameInReference; ++length)
    {
        const std::string name(length, static_cast<char>(length + 150));
        ReferenceFields fields = sampleFields(), read;
        fields.timeIsBirth = length % 2 == 0;
        fields.inode -= length;
        ASSERT_TRUE(readReference(writeReference(fields, name), read)) << length;
        expectSame(read, fields);
        EXPECT_FALSE(read.nameIsHashed);
        EXPECT_EQ(read.name, name);
    }
}

TEST(ReferenceFormat, TheSmallestValuesComeBack)
{
    ReferenceFields fields, read;
    fields.device = device;
    numberOfDevice(device);
    ASSERT_TRUE(readReference(writeReference(fields, "x"), read));
    expectSame(read, fields);
}

TEST(ReferenceFormat, ANameMayHoldAnyBytes)
{
    std::string name;
    for (int byte = 255; name.size() < longestNameInReference; byte -= 5)
        name.push_back(static_cast<char>(byte));
    ReferenceFields read;
    ASSERT_TRUE(readReference(writeReference(sampleFields(), name), read));
    EXPECT_EQ(read.name, name);
}

TEST(ReferenceFormat, ALongNameIsHashed)
{
    for (std::size_t length = longestNameInReference + 1; length <= 255; ++length)
    {
        const std::string name(length, 'n');
        ReferenceFields read;
        EXPECT_TRUE(isLongName(name));
        ASSERT_TRUE(readReference(writeReference(sampleFields(), name), read)) << length;
        expectSame(read, sampleFields());
        EXPECT_TRUE(read.nameIsHashed);
        EXPECT_EQ(read.nameHash, longNameHash(name));
        EXPECT_TRUE(read.name.empty());
    }
    EXPECT_FALSE(isLongName(std::string(longestNameInReference, 'n')));
}

TEST(ReferenceFormat, LongNamesThatDifferInOneByteHaveDifferentHashes)
{
    const std::string name(200, 'n');
    for (std::size_t at = 0; at < name.size(); ++at)
    {
        std::string other = name;
        other[at] = 'm';
        EXPECT_NE(longNameHash(other), longNameHash(name)) << at;
    }
}

TEST(ReferenceFormat, TheSameFieldsMakeTheSameBytes)
{
    const FSRef a = writeReference(sampleFields(), "name"), b = writeReference(sampleFields(), "name");
    EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
}

// Refused, and the fields left as they were.
void expectRefused(const FSRef &reference)
{
    ReferenceFields fields;
    fields.name = "untouched";
    fields.inode = 77;
    EXPECT_FALSE(readReference(reference, fields));
    EXPECT_EQ(fields.name, "untouched");
    EXPECT_EQ(fields.inode, 77u);
}

TEST(ReferenceFormat, EveryChangedByteIsNoticed)
{
    for (const std::string &name : {std::string("name"), std::string(longestNameInReference, 'n'), std::string(100, 'n')})
        for (std::size_t at = 0; at < sizeof(FSRef); ++at)
            for (int change = 1; change < 256; ++change)
            {
                FSRef reference = writeReference(sampleFields(), name);
                reinterpret_cast<unsigned char *>(&reference)[at] ^= static_cast<unsigned char>(change);
                ReferenceFields fields;
                ASSERT_FALSE(readReference(reference, fields)) << "byte " << at << " changed by " << change;
            }
}

TEST(ReferenceFormat, ConstantBytesAreRefused)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        FSRef reference;
        std::memset(&reference, byte, sizeof reference);
        SCOPED_TRACE(byte);
        expectRefused(reference);
    }
}

TEST(ReferenceFormat, RandomBytesAreRefused)
{
    std::mt19937_64 random(20010324);
    for (int round = 0; round < 100000; ++round)
    {
        std::uint64_t words[sizeof(FSRef) / 8];
        for (std::uint64_t &word : words)
            word = random();
        FSRef reference;
        std::memcpy(&reference, words, sizeof reference);
        ReferenceFields fields;
        ASSERT_FALSE(readReference(reference, fields)) << "round " << round;
    }
}

TEST(ReferenceFormat, HalvesOfTwoReferencesMakeNone)
{
    ReferenceFields other = sampleFields();
    other.inode = 5;
    FSRef mixed = writeReference(sampleFields(), "the name of the first object");
    const FSRef second = writeReference(other, "the name of the other object");
    std::memcpy(&mixed, &second, sizeof mixed / 2);
    expectRefused(mixed);
}

TEST(Births, EarlierOnesPackSmaller)
{
    const std::timespec times[] = {{0, 0},          {0, 1},          {0, 999999999},          {1, 0},
                                   {1, 1},          {1000000000, 0}, {2147483647, 999999999}, {2147483648, 0},
                                   {4294967295, 5}, {4294967296, 0}, {8589934591, 999999999}};
    for (std::size_t i = 1; i < std::size(times); ++i)
        EXPECT_LT(packBirth(times[i - 1]), packBirth(times[i])) << i;
}

// 0 means that there is none, so a birth that is known must never pack to it but at the very second that no disk has.
TEST(Births, OnesBefore1970AreKnown)
{
    EXPECT_NE(packBirth({-1, 0}), 0u);
    EXPECT_NE(packBirth({-1, 999999999}), 0u);
    EXPECT_NE(packBirth({0, 1}), 0u);
    EXPECT_LT(packBirth({-5000000000, 0}), packBirth({1, 0}));
}

TEST(Births, DifferInEveryNanosecond)
{
    for (long nanoseconds = 0; nanoseconds < 1000; ++nanoseconds)
        EXPECT_EQ(packBirth({1700000000, nanoseconds}) + 1, packBirth({1700000000, nanoseconds + 1}));
}

}   // namespace
