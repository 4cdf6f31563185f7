// The shared attribute and our own record as bytes.
#include "standin/files/attribute_format.h"
#include "standin/files/dates.h"

#include <gtest/gtest.h>
#include <numeric>

namespace
{

using namespace standin;
using Bytes = std::vector<std::uint8_t>;

struct Descriptor
{
    std::uint32_t id, offset, length;
};

// The table as the file servers publish it, with the lengths that Samba writes.
constexpr Descriptor published[] = {
    {4, 154, 0},          {8, 354, 16},         {9, 122, 32},         {14, 370, 4},
    {0x80444556, 374, 0}, {0x80494E4F, 382, 0}, {0x8053594E, 390, 0}, {0x8053567E, 398, 0},
};

void putBig32(Bytes &bytes, std::size_t at, std::uint32_t value)
{
    for (std::size_t index = 0; index < 4; ++index)
        bytes[at + index] = static_cast<std::uint8_t>(value >> (24 - 8 * index));
}

// Made without the code under test: header, table, dates unknown, nothing else.
Bytes publishedBlob()
{
    Bytes bytes(402);
    putBig32(bytes, 0, 0x00051607);
    putBig32(bytes, 4, 0x00020000);
    bytes[25] = 8;
    std::size_t at = 26;
    for (const Descriptor &descriptor : published)
    {
        putBig32(bytes, at, descriptor.id);
        putBig32(bytes, at + 4, descriptor.offset);
        putBig32(bytes, at + 8, descriptor.length);
        at += 12;
    }
    for (const std::size_t date : {354, 358, 362, 366})
        bytes[date] = 0x80;
    return bytes;
}

// The same with the lengths that netatalk writes for its four private entries, and something in each.
Bytes netatalkBlob()
{
    Bytes bytes = publishedBlob();
    const std::uint32_t lengths[] = {8, 8, 8, 4};
    for (std::size_t index = 0; index < 4; ++index)
        putBig32(bytes, 26 + (4 + index) * 12 + 8, lengths[index]);
    std::iota(bytes.begin() + 374, bytes.end(), std::uint8_t{0xC0});
    return bytes;
}

Bytes bytesOf(const SharedAttribute &attribute)
{
    return Bytes(attribute.begin(), attribute.end());
}

bool isAccepted(const Bytes &bytes)
{
    SharedAttribute attribute;
    attribute.fill(0x5A);
    const SharedAttribute before = attribute;
    const bool accepted = acceptSharedAttribute(bytes, attribute);
    EXPECT_EQ(bytesOf(attribute), accepted ? bytes : bytesOf(before));
    return accepted;
}

TEST(SharedAttribute, EmptyOneByteByByte)
{
    EXPECT_EQ(bytesOf(emptySharedAttribute()), publishedBlob());
}

TEST(SharedAttribute, BothWritersFormsAreAccepted)
{
    EXPECT_TRUE(isAccepted(publishedBlob()));
    EXPECT_TRUE(isAccepted(netatalkBlob()));
}

TEST(SharedAttribute, FillerAndCommentAreTheirWriters)
{
    Bytes bytes = netatalkBlob();
    std::iota(bytes.begin() + 8, bytes.begin() + 24, std::uint8_t{1});
    for (const std::uint32_t commentLength : {0u, 1u, 200u})
    {
        putBig32(bytes, 26 + 8, commentLength);
        EXPECT_TRUE(isAccepted(bytes)) << commentLength;
    }
    putBig32(bytes, 26 + 8, 201);
    EXPECT_FALSE(isAccepted(bytes));
}

TEST(SharedAttribute, EveryOtherByteOfHeaderAndTableCounts)
{
    // A bit changed anywhere else than in the filler makes another layout.
    const Bytes good = publishedBlob();
    for (std::size_t at = 0; at < 122; ++at)
    {
        const bool isFiller = at >= 8 && at < 24;
        const bool isLastOfCommentLength = at == 37;   // comments of 1 and of 128 bytes are legal
        for (const unsigned bit : {0x01u, 0x80u})
        {
            Bytes changed = good;
            changed[at] = static_cast<std::uint8_t>(changed[at] ^ bit);
            EXPECT_EQ(isAccepted(changed), isFiller || isLastOfCommentLength) << "byte " << at;
        }
    }
}

TEST(SharedAttribute, PrivateEntriesAreWholeOrEmpty)
{
    for (std::size_t index = 4; index < 8; ++index)
    {
        const std::uint32_t whole = index == 7 ? 4 : 8;
        for (std::uint32_t length = 0; length <= 10; ++length)
        {
            Bytes bytes = publishedBlob();
            putBig32(bytes, 26 + index * 12 + 8, length);
            EXPECT_EQ(isAccepted(bytes), length == 0 || length == whole) << index << ' ' << length;
        }
    }
}

TEST(SharedAttribute, OtherOrderIsRefused)
{
    Bytes bytes = publishedBlob();
    std::swap_ranges(bytes.begin() + 26, bytes.begin() + 38, bytes.begin() + 38);
    EXPECT_FALSE(isAccepted(bytes));
}

TEST(SharedAttribute, OtherSizesAreRefused)
{
    for (std::size_t size = 0; size < 500; ++size)
    {
        Bytes bytes = publishedBlob();
        bytes.resize(size);
        EXPECT_EQ(isAccepted(bytes), size == 402) << size;
    }
}

// What a setter may touch: all other bytes stay as they were.
void expectOnlyChanged(const SharedAttribute &before, const SharedAttribute &after, std::size_t begin, std::size_t end)
{
    for (std::size_t at = 0; at < before.size(); ++at)
    {
        const bool mayChange = at >= begin && at < end;
        EXPECT_TRUE(mayChange || after[at] == before[at]) << "byte " << at;
    }
}

SharedAttribute netatalkAttribute()
{
    SharedAttribute attribute;
    EXPECT_TRUE(acceptSharedAttribute(netatalkBlob(), attribute));
    return attribute;
}

TEST(SharedAttribute, FinderInfoStandsAt122)
{
    const SharedAttribute before = netatalkAttribute();
    EXPECT_EQ(sharedFinderInfo(before), FinderBytes{});
    FinderBytes info;
    std::iota(info.begin(), info.end(), std::uint8_t{0x41});
    SharedAttribute after = before;
    setSharedFinderInfo(after, info);
    EXPECT_EQ(sharedFinderInfo(after), info);
    EXPECT_EQ(after[122], 0x41);
    EXPECT_EQ(after[153], 0x60);
    expectOnlyChanged(before, after, 122, 154);
}

TEST(SharedAttribute, DatesStandAt354)
{
    const SharedAttribute before = netatalkAttribute();
    const SidecarDates unknown = sharedDates(before);
    for (const std::int32_t date : {unknown.creation, unknown.modification, unknown.backup, unknown.access})
        EXPECT_EQ(date, unknownSidecarDate);

    SharedAttribute after = before;
    setSharedDates(after, {0x01020304, -1, INT32_MIN, INT32_MAX});
    const Bytes expected = {1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0, 0, 0, 0x7F, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(Bytes(after.begin() + 354, after.begin() + 370), expected);
    const SidecarDates dates = sharedDates(after);
    EXPECT_EQ(dates.creation, 0x01020304);
    EXPECT_EQ(dates.modification, -1);
    EXPECT_EQ(dates.backup, INT32_MIN);
    EXPECT_EQ(dates.access, INT32_MAX);
    expectOnlyChanged(before, after, 354, 370);
}

TEST(SharedAttribute, LockIsAllThreeBitsTogether)
{
    for (unsigned value = 0; value <= 0xFFFF; ++value)
    {
        SharedAttribute attribute = emptySharedAttribute();
        attribute[372] = static_cast<std::uint8_t>(value >> 8);
        attribute[373] = static_cast<std::uint8_t>(value);
        ASSERT_EQ(sharedLock(attribute), (value & 0x20) && (value & 0x80) && (value & 0x100)) << value;

        setSharedLock(attribute, true);
        ASSERT_EQ(attribute[372] << 8 | attribute[373], static_cast<int>(value | 0x1A0)) << value;
        setSharedLock(attribute, false);
        ASSERT_EQ(attribute[372] << 8 | attribute[373], static_cast<int>(value & 0xFE5F)) << value;
    }
}

TEST(SharedAttribute, LockTouchesTwoBytes)
{
    const SharedAttribute before = netatalkAttribute();
    SharedAttribute after = before;
    setSharedLock(after, true);
    EXPECT_EQ(after[372], 0x01);
    EXPECT_EQ(after[373], 0xA0);
    expectOnlyChanged(before, after, 372, 374);
}

TEST(SidecarLock, Entry10IsTheLowestBitOfTheLastByte)
{
    for (unsigned value = 0; value <= 0xFF; ++value)
    {
        std::array<std::uint8_t, 4> entry = {0xFF, 0xFF, 0xFF, static_cast<std::uint8_t>(value)};
        EXPECT_EQ(readMacintoshLock(entry), value % 2 == 1) << value;
        writeMacintoshLock(entry, true);
        EXPECT_EQ(entry[3], value | 1) << value;
        writeMacintoshLock(entry, false);
        EXPECT_EQ(entry, (std::array<std::uint8_t, 4>{0xFF, 0xFF, 0xFF, static_cast<std::uint8_t>(value & 0xFE)})) << value;
    }
}

const UTCDateTime creation = {1, 0x02030405, 0x0607};
const UTCDateTime backup = {2, 0x12131415, 0x0809};
const Bytes fullRecord = {
    0x5A, 0x45, 0x52, 0x42, 1,    0x3F, 0, 0,   // tag, version, all six flags, reserved
    0x00, 0x00, 0x00, 0x1D,                     // hint
    0,    1,    0x02, 0x03, 0x04, 0x05, 6, 7,   // creation date: high, low, fraction
    0,    2,    0x12, 0x13, 0x14, 0x15, 8, 9,   // backup date
};

Bytes built(const OwnRecord &record)
{
    const auto bytes = buildOwnRecord(record);
    return Bytes(bytes.begin(), bytes.end());
}

TEST(OwnRecord, ByteByByte)
{
    const OwnRecord record = {true, 0x1D, creation, backup, true, true};
    EXPECT_EQ(built(record), fullRecord);
    Bytes empty(28);
    std::copy_n(fullRecord.begin(), 5, empty.begin());
    EXPECT_EQ(built({}), empty);
}

TEST(OwnRecord, EachValueIsThereOrNotByItself)
{
    for (unsigned flags = 0; flags < 64; ++flags)
    {
        SCOPED_TRACE(flags);
        Bytes bytes = fullRecord;
        bytes[5] = static_cast<std::uint8_t>(flags);
        const auto record = parseOwnRecord(bytes);
        ASSERT_TRUE(record);
        EXPECT_EQ(record->isDefault(), flags == 0);
        EXPECT_EQ(record->locked, (flags & 0x01) != 0);
        EXPECT_EQ(record->finderInfoWasShared, (flags & 0x10) != 0);
        EXPECT_EQ(record->blankAccess, (flags & 0x20) != 0);
        ASSERT_EQ(record->hint.has_value(), (flags & 0x02) != 0);
        ASSERT_EQ(record->creationDate.has_value(), (flags & 0x04) != 0);
        ASSERT_EQ(record->backupDate.has_value(), (flags & 0x08) != 0);
        EXPECT_EQ(record->hint.value_or(0x1D), 0x1Du);
        EXPECT_TRUE(sameDate(record->creationDate.value_or(creation), creation));
        EXPECT_TRUE(sameDate(record->backupDate.value_or(backup), backup));

        // What is not set is written as zeros.
        if (!record->hint)
            std::fill_n(bytes.begin() + 8, 4, std::uint8_t{0});
        if (!record->creationDate)
            std::fill_n(bytes.begin() + 12, 8, std::uint8_t{0});
        if (!record->backupDate)
            std::fill_n(bytes.begin() + 20, 8, std::uint8_t{0});
        EXPECT_EQ(built(*record), bytes);
    }
}

TEST(OwnRecord, AValueOfZeroIsStillAValue)
{
    const OwnRecord record = {false, 0, UTCDateTime{0, 0, 0}, std::nullopt, false};
    EXPECT_FALSE(record.isDefault());
    const auto read = parseOwnRecord(buildOwnRecord(record));
    ASSERT_TRUE(read && read->hint && read->creationDate);
    EXPECT_EQ(*read->hint, 0u);
    EXPECT_FALSE(read->backupDate);
}

TEST(OwnRecord, CutOffAtEveryLengthAndLonger)
{
    for (std::size_t size = 0; size < 100; ++size)
    {
        Bytes bytes = fullRecord;
        bytes.resize(size, 0xEE);
        EXPECT_EQ(parseOwnRecord(bytes).has_value(), size >= 28) << size;
    }
}

TEST(OwnRecord, OtherTagsAndVersions)
{
    for (std::size_t at = 0; at < 4; ++at)
    {
        Bytes bytes = fullRecord;
        bytes[at] ^= 0x20;
        EXPECT_FALSE(parseOwnRecord(bytes)) << at;
    }
    for (const unsigned version : {0u, 1u, 2u, 255u})
    {
        Bytes bytes = fullRecord;
        bytes[4] = static_cast<std::uint8_t>(version);
        EXPECT_EQ(parseOwnRecord(bytes).has_value(), version >= 1) << version;
    }
}

TEST(OwnRecord, ReservedBytesAndUnknownFlagsAreIgnored)
{
    Bytes bytes = fullRecord;
    bytes[5] = 0xFF;
    bytes[6] = bytes[7] = 0xEE;
    const auto record = parseOwnRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(built(*record), fullRecord);
}

}   // namespace
