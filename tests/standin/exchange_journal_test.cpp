// The journal of an exchange, bytes ↔ record: there and back, the published bytes, and hostile ones.
#include "standin/files/exchange_journal.h"
#include "tests/standin/test_volume.h"

#include <random>

namespace
{

using namespace support;
using namespace standin;

ExchangeJournal example()
{
    ExchangeJournal journal;
    FinderBytes info{};
    std::copy_n("TEXTttxt", 8, info.begin());
    journal.file = 0x12;
    journal.partner = 0x13;
    journal.from = {0x11, 0, "a"};
    journal.to = {0x11, 0x0102030405060708, "b"};
    journal.metadata.own.emplace().creationDate = dateOfUnix(1000000000, 0x8000);
    journal.metadata.shared = emptySharedAttribute();
    setSharedFinderInfo(*journal.metadata.shared, info);
    return journal;
}

void expectSame(const ExchangeJournal &a, const ExchangeJournal &b)
{
    EXPECT_EQ(a.file, b.file);
    EXPECT_EQ(a.partner, b.partner);
    EXPECT_EQ(a.from.folder, b.from.folder);
    EXPECT_EQ(a.to.folder, b.to.folder);
    EXPECT_EQ(a.to.birth, b.to.birth);
    EXPECT_EQ(a.from.name, b.from.name);
    EXPECT_EQ(a.to.name, b.to.name);
    EXPECT_EQ(a.metadata.shared, b.metadata.shared);
    ASSERT_EQ(a.metadata.own.has_value(), b.metadata.own.has_value());
    if (a.metadata.own)
    {
        EXPECT_EQ(buildOwnRecord(*a.metadata.own), buildOwnRecord(*b.metadata.own));
    }
}

TEST(ExchangeJournals, HaveThePublishedBytes)
{
    Bytes expected = bytesOf("ZEXC");
    appendBig(expected, 0x01030101, 4);
    for (std::uint64_t inode : std::initializer_list<std::uint64_t>{0x12, 0x13, 0x11, 0x11, 0x0102030405060708})
        appendBig(expected, inode, 8);
    const auto own = buildOwnRecord(*example().metadata.own);
    expected.insert(expected.end(), own.begin(), own.end());
    appendBig(expected, 0x000B0000, 4);
    appendBig(expected, 0x007A08, 3);
    const Bytes rest = bytesOf("TEXTttxtab");
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(buildJournal(example()), expected);
}

TEST(ExchangeJournals, ComeBackWithAnyRoomBehindThem)
{
    ExchangeJournal longest = example(), nothing = example();
    longest.from.name = std::string(255, 'f');
    longest.to.name = std::string(254, 't');
    for (std::size_t at = 122; at < 402; at += 2)   // as different from an empty one as can be
        if (at < 354 || at >= 374)
            (*longest.metadata.shared)[at] = static_cast<std::uint8_t>(at);
    nothing.metadata = {};
    for (const ExchangeJournal &journal : {example(), longest, nothing})
        for (std::size_t room : {0, 1, 500})
        {
            Bytes bytes = buildJournal(journal);
            ASSERT_LE(bytes.size(), largestJournal);
            bytes.resize(bytes.size() + room);
            const auto parsed = parseJournal(bytes);
            ASSERT_TRUE(parsed);
            expectSame(*parsed, journal);
        }
}

TEST(ExchangeJournals, CutShortAreNone)
{
    const Bytes whole = buildJournal(example());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(parseJournal({whole.data(), size})) << size;
}

TEST(ExchangeJournals, OfOtherVersionsOrWithImpossibleNamesAreNone)
{
    const std::pair<std::size_t, char> changes[] = {{0, 'z'},   {4, '\2'}, {4, '\0'}, {6, '\0'}, {7, '\0'},
                                                    {80, '\2'}, {91, '/'}, {92, '.'}, {92, '\0'}};
    for (const auto &[at, value] : changes)
    {
        Bytes bytes = buildJournal(example());
        bytes[at] = static_cast<std::uint8_t>(value);
        EXPECT_FALSE(parseJournal(bytes)) << at;
    }
}

// Nobody locks a file by writing a journal to it.
TEST(ExchangeJournals, LockNothing)
{
    ExchangeJournal journal = example();
    journal.metadata.own->locked = true;
    setSharedLock(*journal.metadata.shared, true);
    const auto parsed = parseJournal(buildJournal(journal));
    ASSERT_TRUE(parsed);
    EXPECT_FALSE(parsed->metadata.own->locked);
    EXPECT_FALSE(sharedLock(*parsed->metadata.shared));
}

TEST(ExchangeJournals, AnyChangedBytesAreSurvived)
{
    std::mt19937 random(20261121);
    const Bytes whole = buildJournal(example());
    int accepted = 0;
    for (int round = 0; round < 20000; ++round)
    {
        Bytes bytes = whole;
        for (int change = 0; change < 3; ++change)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        if (const auto parsed = parseJournal(bytes))
        {
            ++accepted;
            EXPECT_FALSE(parsed->from.name.empty());
            EXPECT_FALSE(parsed->to.name.empty());
        }
    }
    EXPECT_GT(accepted, 0);
}

}   // namespace
