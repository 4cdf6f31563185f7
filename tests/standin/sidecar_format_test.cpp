// Sidecars as bytes: which tables are taken, which are refused and why, and the exact bytes of what we write.
#include "standin/files/sidecar_format.h"
#include "tests/data/samples.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string_view>

namespace
{

using namespace standin;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t magic = 0x00051607;

void append(Bytes &bytes, std::uint64_t value, int width)
{
    for (int shift = (width - 1) * 8; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

// Header and table alone, the filler counting up from 0xA0.
Bytes makeTable(std::uint32_t magicNumber, std::uint32_t version, const std::vector<SidecarEntry> &entries)
{
    Bytes bytes;
    append(bytes, magicNumber, 4);
    append(bytes, version, 4);
    for (int index = 0; index < 16; ++index)
        append(bytes, static_cast<std::uint64_t>(0xA0 + index), 1);
    append(bytes, entries.size(), 2);
    for (const SidecarEntry &entry : entries)
    {
        append(bytes, entry.id, 4);
        append(bytes, entry.offset, 4);
        append(bytes, entry.length, 4);
    }
    return bytes;
}

SidecarLayout marked()
{
    SidecarLayout layout;
    layout.version = 0x5A5A5A5A;
    layout.entries = {{77, 78, 79}};
    return layout;
}

bool isMarked(const SidecarLayout &layout)
{
    return layout.version == 0x5A5A5A5A && layout.entries.size() == 1 && layout.entries[0].id == 77;
}

bool sameEntries(const std::vector<SidecarEntry> &a, const std::vector<SidecarEntry> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const SidecarEntry &x, const SidecarEntry &y) {
        return x.id == y.id && x.offset == y.offset && x.length == y.length;
    });
}

struct TableCase
{
    const char *name;
    std::vector<SidecarEntry> entries;
    std::uint64_t fileSize;
    SidecarProblem expected;
    std::uint32_t version = 0x00020000;
    std::uint32_t magicNumber = magic;
};

void PrintTo(const TableCase &row, std::ostream *out)
{
    *out << row.name;
}

// So many entries of one byte each, directly behind their table.
TableCase manyEntries(const char *name, std::uint32_t count, SidecarProblem expected)
{
    const std::uint32_t tableEnd = 26 + 12 * count;
    TableCase row = {name, {}, tableEnd + count, expected};
    for (std::uint32_t index = 0; index < count; ++index)
        row.entries.push_back({100 + index, tableEnd + index, 1});
    return row;
}

const TableCase tableCases[] = {
    {"NoEntries", {}, 26, SidecarProblem::none},
    {"NoEntriesAndAHole", {}, 1000, SidecarProblem::none},
    {"FinderInfoThenFork", {{9, 50, 32}, {2, 82, 100}}, 182, SidecarProblem::none},
    {"ForkDescribedFirst", {{2, 82, 100}, {9, 50, 32}}, 182, SidecarProblem::none},
    {"ForkMissing", {{9, 38, 32}}, 70, SidecarProblem::none},
    {"ForkAlone", {{2, 38, 5}}, 43, SidecarProblem::none},
    {"ForkBeforeFinderInfo", {{2, 50, 100}, {9, 150, 32}}, 182, SidecarProblem::none},
    {"LongEntry9", {{9, 50, 3760}, {2, 3810, 286}}, 4096, SidecarProblem::none},
    {"ShortEntry9", {{9, 50, 7}, {2, 82, 1}}, 83, SidecarProblem::none},
    {"Version1", {{7, 50, 16}, {2, 589, 11}}, 600, SidecarProblem::none, 0x00010000},
    {"Holes", {{9, 60, 32}, {2, 500, 100}}, 4096, SidecarProblem::none},
    {"UnknownEntries", {{4711, 62, 3}, {0x80000000, 65, 4}, {0xFFFFFFFF, 69, 5}}, 74, SidecarProblem::none},
    {"EmptyEntryAtTheEnd", {{9, 50, 32}, {2, 82, 0}}, 82, SidecarProblem::none},
    {"EmptyEntryAtTheBeginning", {{9, 50, 32}, {2, 0, 0}}, 82, SidecarProblem::none},
    {"EmptyEntryInsideAnother", {{9, 50, 32}, {2, 60, 0}}, 82, SidecarProblem::none},
    {"EmptyEntriesTogether", {{3, 62, 0}, {4, 62, 0}, {2, 62, 5}}, 67, SidecarProblem::none},
    {"EndsWithTheFile", {{2, 99, 1}}, 100, SidecarProblem::none},
    {"ForkOf4GiB", {{9, 50, 32}, {2, 82, 0xFFFFFFFF}}, 82 + 0xFFFFFFFFull, SidecarProblem::none},
    {"EndsBeyond4GiB", {{2, 0xFFFFFFFF, 0xFFFFFFFF}}, 0x1FFFFFFFEull, SidecarProblem::none},
    manyEntries("SixtyFourEntries", 64, SidecarProblem::none),

    {"AppleSingleMagic", {{9, 50, 32}, {2, 82, 0}}, 82, SidecarProblem::notASidecar, 0x00020000, 0x00051600},
    {"MagicOneOff", {{9, 50, 32}, {2, 82, 0}}, 82, SidecarProblem::notASidecar, 0x00020000, 0x00051608},
    {"MagicTurnedRound", {{9, 50, 32}, {2, 82, 0}}, 82, SidecarProblem::notASidecar, 0x00020000, 0x07160500},
    {"Version0", {}, 26, SidecarProblem::notASidecar, 0},
    {"Version3", {}, 26, SidecarProblem::notASidecar, 0x00030000},
    {"Version2OneOff", {}, 26, SidecarProblem::notASidecar, 0x00020001},

    {"OneBytePastTheEnd", {{9, 50, 32}, {2, 82, 19}}, 100, SidecarProblem::truncated},
    {"EmptyEntryPastTheEnd", {{9, 50, 32}, {2, 83, 0}}, 82, SidecarProblem::truncated},
    {"BeginsPastTheEnd", {{2, 5000, 1}}, 100, SidecarProblem::truncated},
    {"LengthOf4GiB", {{2, 50, 0xFFFFFFFF}}, 100, SidecarProblem::truncated},
    {"SumWrapsIn32Bits", {{2, 80, 0xFFFFFFB1}}, 100, SidecarProblem::truncated},
    {"OffsetOf4GiB", {{2, 0xFFFFFFFF, 1}}, 100, SidecarProblem::truncated},
    {"OneByteShortOf8GiB", {{2, 0xFFFFFFFF, 0xFFFFFFFF}}, 0x1FFFFFFFDull, SidecarProblem::truncated},
    {"TablePastTheEnd", {{3, 0, 0}, {4, 0, 0}}, 49, SidecarProblem::truncated},

    {"EntryZero", {{0, 50, 10}, {2, 60, 0}}, 100, SidecarProblem::badTable},
    {"EmptyEntryZero", {{9, 50, 32}, {0, 0, 0}}, 100, SidecarProblem::badTable},
    {"EntryTwice", {{2, 50, 1}, {2, 51, 1}}, 100, SidecarProblem::badTable},
    {"EmptyEntryTwice", {{2, 50, 0}, {2, 50, 0}}, 100, SidecarProblem::badTable},
    {"EntryTwiceApart", {{9, 62, 1}, {2, 63, 1}, {9, 64, 1}}, 100, SidecarProblem::badTable},
    {"OverlapByOne", {{9, 50, 33}, {2, 82, 10}}, 100, SidecarProblem::badTable},
    {"SameBytes", {{9, 50, 32}, {2, 50, 32}}, 100, SidecarProblem::badTable},
    {"OneInsideAnother", {{2, 50, 50}, {9, 60, 32}}, 100, SidecarProblem::badTable},
    {"LongOneOverTheThird", {{2, 74, 3}, {3, 70, 1}, {4, 62, 13}}, 100, SidecarProblem::badTable},
    {"LastByteOfTheTable", {{9, 49, 32}, {2, 82, 1}}, 100, SidecarProblem::badTable},
    {"FromTheBeginning", {{2, 0, 100}}, 100, SidecarProblem::badTable},
    manyEntries("SixtyFiveEntries", 65, SidecarProblem::badTable),
    manyEntries("MostThatCanBeSaid", 65535, SidecarProblem::badTable),

    {"EntryZeroPastTheEnd", {{0, 500, 10}}, 100, SidecarProblem::badTable},
    {"TwiceAndPastTheEnd", {{2, 50, 1}, {2, 51, 100}}, 100, SidecarProblem::truncated},
};

class SidecarTable : public testing::TestWithParam<TableCase>
{
};

TEST_P(SidecarTable, IsJudged)
{
    const TableCase &row = GetParam();
    const Bytes table = makeTable(row.magicNumber, row.version, row.entries);
    SidecarLayout layout = marked();
    EXPECT_EQ(parseSidecar(table, row.fileSize, layout), row.expected);
    if (row.expected != SidecarProblem::none)
    {
        EXPECT_TRUE(isMarked(layout));
        return;
    }
    EXPECT_EQ(layout.version, row.version);
    EXPECT_EQ(layout.filler[0], 0xA0);
    EXPECT_EQ(layout.filler[15], 0xAF);
    EXPECT_TRUE(sameEntries(layout.entries, row.entries));
}

INSTANTIATE_TEST_SUITE_P(Rows, SidecarTable, testing::ValuesIn(tableCases), [](const auto &row) { return row.param.name; });

TEST(SidecarFormat, FileCutOffAtEveryLength)
{
    Bytes whole = makeTable(magic, 0x00020000, {{9, 50, 32}, {2, 82, 10}});
    whole.resize(92, 0xEE);
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        SCOPED_TRACE(size);
        SidecarProblem expected = SidecarProblem::none;
        if (size < 26)
            expected = SidecarProblem::notASidecar;
        else if (size < 92)
            expected = SidecarProblem::truncated;
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        SidecarLayout layout = marked();
        EXPECT_EQ(parseSidecar(cut, size, layout), expected);
        EXPECT_EQ(isMarked(layout), expected != SidecarProblem::none);
    }
}

TEST(SidecarFormat, HeadMayEndWithTheTableButNotBefore)
{
    const Bytes table = makeTable(magic, 0x00020000, {{9, 50, 32}, {2, 82, 10}});
    ASSERT_EQ(table.size(), 50u);
    SidecarLayout layout;
    EXPECT_EQ(parseSidecar(table, 92, layout), SidecarProblem::none);
    EXPECT_EQ(parseSidecar(std::span(table).first(49), 92, layout), SidecarProblem::truncated);
}

TEST(SidecarFormat, BytesReadBeyondTheFileSizeDoNotCount)
{
    // The file was cut between the moment it was read and the moment it was measured.
    Bytes whole = makeTable(magic, 0x00020000, {{9, 50, 32}, {2, 82, 10}});
    whole.resize(92);
    SidecarLayout layout;
    EXPECT_EQ(parseSidecar(whole, 91, layout), SidecarProblem::truncated);
    EXPECT_EQ(parseSidecar(whole, 49, layout), SidecarProblem::truncated);
    EXPECT_EQ(parseSidecar(whole, 25, layout), SidecarProblem::notASidecar);
    EXPECT_EQ(parseSidecar(whole, 0, layout), SidecarProblem::notASidecar);
}

// The rule said another way: paint every byte of every entry, and no byte may be painted twice or lie outside.
bool paintsCleanly(const std::vector<SidecarEntry> &entries, std::size_t fileSize)
{
    std::vector<bool> painted(fileSize, false);
    std::fill_n(painted.begin(), 26 + 12 * entries.size(), true);
    for (std::size_t index = 0; index < entries.size(); ++index)
    {
        const SidecarEntry &entry = entries[index];
        for (std::size_t other = 0; other < index; ++other)
            if (entries[other].id == entry.id)
                return false;
        if (entry.id == 0 || entry.offset > fileSize)
            return false;
        for (auto at = static_cast<std::size_t>(entry.offset); at < entry.offset + entry.length; ++at)
        {
            if (at >= fileSize || painted[at])
                return false;
            painted[at] = true;
        }
    }
    return true;
}

TEST(SidecarFormat, AgreesWithPaintingEveryByte)
{
    std::mt19937 random(20240229);   // always the same tables
    const auto upTo = [&](std::uint32_t most) { return static_cast<std::uint32_t>(random() % (most + 1)); };
    int taken = 0;
    constexpr int tables = 50000;
    for (int round = 0; round < tables; ++round)
    {
        std::vector<SidecarEntry> entries(upTo(4));
        const std::uint32_t tableEnd = static_cast<std::uint32_t>(26 + 12 * entries.size());
        const std::uint32_t fileSize = tableEnd + upTo(24);
        for (SidecarEntry &entry : entries)
            entry = {upTo(12), tableEnd - 2 + upTo(26), upTo(6)};
        SidecarLayout layout;
        const bool accepted = parseSidecar(makeTable(magic, 0x00020000, entries), fileSize, layout) == SidecarProblem::none;
        ASSERT_EQ(accepted, paintsCleanly(entries, fileSize)) << "round " << round;
        taken += accepted;
    }
    EXPECT_GT(taken, tables / 10);   // both answers are really tried
    EXPECT_LT(taken, tables * 9 / 10);
}

TEST(SidecarFormat, FindLooksForTheID)
{
    SidecarLayout layout;
    layout.entries = {{9, 50, 32}, {2, 82, 7}};
    ASSERT_NE(layout.find(kResourceForkEntry), nullptr);
    EXPECT_EQ(layout.find(kResourceForkEntry)->length, 7u);
    EXPECT_EQ(layout.find(kFinderInfoEntry)->offset, 50u);
    EXPECT_EQ(layout.find(kFileDatesEntry), nullptr);
    EXPECT_EQ(SidecarLayout{}.find(kFinderInfoEntry), nullptr);
}

struct BlankCase
{
    const char *name;
    std::size_t forkSize, sentenceAt;
    std::string_view sentence;
    std::uint32_t dataLength;
    bool blank;
};

const BlankCase blankCases[] = {
    {"AsWritten", 286, 16, "This resource fork intentionally left blank   ", 0, true},
    {"LaterInTheReservedBytes", 286, 85, "This resource fork intentionally left blank", 0, true},
    {"PartlyOutsideTheReservedBytes", 286, 86, "This resource fork intentionally left blank", 0, false},
    {"OneByteShort", 285, 16, "This resource fork intentionally left blank", 0, false},
    {"OneByteLong", 287, 16, "This resource fork intentionally left blank", 0, false},
    {"OneLetterOff", 286, 16, "This resource fork intentionally left blanc", 0, false},
    {"WithData", 286, 16, "This resource fork intentionally left blank", 1, false},
    {"NoSentence", 286, 16, "", 0, false},
};

TEST(SidecarFormat, ForksLeftBlank)
{
    for (const BlankCase &row : blankCases)
    {
        SCOPED_TRACE(row.name);
        Bytes fork;
        for (const std::uint32_t value : {256u, 256u, row.dataLength, 30u})
            append(fork, value, 4);
        fork.resize(row.forkSize);
        std::copy(row.sentence.begin(), row.sentence.end(), fork.begin() + static_cast<std::ptrdiff_t>(row.sentenceAt));
        EXPECT_EQ(isIntentionallyBlankFork(fork), row.blank);
    }
    EXPECT_FALSE(isIntentionallyBlankFork({}));
}

TEST(SidecarFormat, ReadsAServersSidecar)
{
    const Bytes sidecar = readSample("netatalk3-picture.adouble");
    ASSERT_EQ(sidecar.size(), 44631u);
    SidecarLayout layout;
    ASSERT_EQ(parseSidecar(std::span(sidecar).first(50), sidecar.size(), layout), SidecarProblem::none);
    EXPECT_EQ(layout.version, 0x00020000u);
    EXPECT_EQ(std::string(layout.filler.begin(), layout.filler.end()), "Netatalk        ");
    EXPECT_TRUE(sameEntries(layout.entries, {{9, 50, 32}, {2, 82, 44549}}));
    EXPECT_FALSE(isIntentionallyBlankFork(std::span(sidecar).subspan(82)));

    FinderBytes disk;
    std::copy_n(sidecar.begin() + 50, disk.size(), disk.begin());
    UInt8 basic[16], extended[16];
    finderBytesFromDisk(disk, false, basic, extended);
    FileInfo info;
    std::memcpy(&info, basic, sizeof info);
    const OSType type = info.fileType, creator = info.fileCreator;
    EXPECT_EQ(type, 0u);
    EXPECT_EQ(creator, 0u);
    EXPECT_EQ(info.finderFlags, 0x0500);
    EXPECT_EQ(info.location.v, 64);
    EXPECT_EQ(info.location.h, 1);
}

TEST(SidecarFormat, ReadsASidecarOfMacOS)
{
    const Bytes sidecar = readSample("macos-attributes.adouble");
    ASSERT_EQ(sidecar.size(), 267u);
    SidecarLayout layout;
    ASSERT_EQ(parseSidecar(sidecar, sidecar.size(), layout), SidecarProblem::none);
    EXPECT_EQ(std::string(layout.filler.begin(), layout.filler.end()), "Mac OS X        ");
    EXPECT_TRUE(sameEntries(layout.entries, {{9, 50, 217}, {2, 267, 0}}));
}

TEST(SidecarFormat, OtherFormatsAreNoSidecars)
{
    for (const char *name : {"strings.rsrc", "textfile.macbin"})
    {
        SCOPED_TRACE(name);
        const Bytes bytes = readSample(name);
        ASSERT_FALSE(bytes.empty());
        SidecarLayout layout;
        EXPECT_EQ(parseSidecar(bytes, bytes.size(), layout), SidecarProblem::notASidecar);
    }
}

}   // namespace
