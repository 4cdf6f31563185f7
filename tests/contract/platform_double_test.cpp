// The double itself: a test is worth no more than what it is held against.

#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

class Double : public testing::Test
{
protected:
    PlatformDouble platform;
    FSCatalogInfo info = {};
    const FSRef file = platform.files.ref("file");
};

TEST_F(Double, RecordsNullPointersKnownReferencesAndNamedAddresses)
{
    const FSRef unknown = {{7}}, zero = {};
    FSRef parent = {};
    platform.nameAddress(&parent, "mine");
    FSGetCatalogInfo(&file, 0x42, &info, nullptr, nullptr, &parent);
    FSGetCatalogInfo(&unknown, 0, nullptr, nullptr, nullptr, nullptr);
    FSGetCatalogInfo(&zero, 0, nullptr, nullptr, nullptr, nullptr);
    FSGetCatalogInfo(nullptr, 0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(platform.calls(), (Calls{"FSGetCatalogInfo(ref:file, 0x42, info, -, -, mine)", "FSGetCatalogInfo(ref:?, 0x0, -, -, -, -)",
                                       "FSGetCatalogInfo(ref:zero, 0x0, -, -, -, -)", "FSGetCatalogInfo(-, 0x0, -, -, -, -)"}));
}

TEST_F(Double, FillsOnlyTheFieldsAskedForAndSpoilsTheOthers)
{
    for (int bit = 0; bit < 18; ++bit)
    {
        FSCatalogInfo expected;
        std::memset(static_cast<void *>(&expected), 0xA5, sizeof expected);
        copyCatalogFields(1u << bit, platform.files.object("file").info, expected);
        EXPECT_EQ(FSGetCatalogInfo(&file, 1u << bit, &info, nullptr, nullptr, nullptr), noErr);
        EXPECT_EQ(std::memcmp(&info, &expected, sizeof info), 0) << bit;
    }
}

// Two bytes of the record belong to no bit; all others are reached by exactly one.
TEST_F(Double, CatalogBitsTogetherCoverTheRecord)
{
    FSCatalogInfo from, to = {};
    std::memset(static_cast<void *>(&from), 0x01, sizeof from);
    copyCatalogFields(0x3FFFF, from, to);
    from.reserved1 = from.reserved2 = 0;
    EXPECT_EQ(std::memcmp(&from, &to, sizeof from), 0);
}

TEST_F(Double, VolumeBitsTogetherCoverTheRecord)
{
    FSVolumeInfo from, to = {};
    std::memset(static_cast<void *>(&from), 0x01, sizeof from);
    copyVolumeFields(0xFFFF, from, to);
    from.driverRefNum = 0;   // no bit of its own on this disk
    EXPECT_EQ(to.driveNumber, 0x0101);
    to.driverRefNum = 0;
    EXPECT_EQ(std::memcmp(&from, &to, sizeof from), 0);
}

TEST_F(Double, SetsOnlyWhatCanBeSet)
{
    EXPECT_EQ(FSSetCatalogInfo(&file, kFSCatInfoNodeID, &info), errFSBadInfoBitmap);
    EXPECT_EQ(FSSetCatalogInfo(&file, kFSCatInfoPermissions, &info), noErr);
    EXPECT_EQ(valueOf(platform.files.object("file").info.permissions[0]), 0u);
}

TEST_F(Double, FailsTheCallAskedForAndOnlyThat)
{
    platform.failCall(2, ioErr);
    EXPECT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, nullptr, nullptr), noErr);
    EXPECT_FALSE(platform.failureReached());
    EXPECT_EQ(FSGetCatalogInfo(&file, 2, &info, nullptr, nullptr, nullptr), ioErr);
    EXPECT_TRUE(platform.failureReached());
    EXPECT_EQ(platform.failedCall(), "FSGetCatalogInfo(ref:file, 0x2, info, -, -, -)");
    EXPECT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, nullptr, nullptr), noErr);
}

TEST_F(Double, FailsEveryCallFromOneOn)
{
    platform.failFromCall(2, ioErr);
    EXPECT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, nullptr, nullptr), noErr);
    EXPECT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, nullptr, nullptr), ioErr);
    EXPECT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, nullptr, nullptr), ioErr);
}

TEST_F(Double, FailsEveryCallOfOneName)
{
    platform.failEvery("FSSetCatalogInfo", wPrErr);
    EXPECT_EQ(FSGetCatalogInfo(&file, 0, nullptr, nullptr, nullptr, nullptr), noErr);
    EXPECT_EQ(FSSetCatalogInfo(&file, 0, nullptr), wPrErr);
    EXPECT_EQ(FSSetCatalogInfo(&file, 0, nullptr), wPrErr);
    EXPECT_FALSE(platform.failureReached()) << "that is for failures by number";
}

TEST_F(Double, FailingCallWritesNothing)
{
    FSRef parent = {};
    platform.failCall(1, ioErr);
    EXPECT_EQ(FSGetCatalogInfo(&file, 0x1FE3, &info, nullptr, nullptr, &parent), ioErr);
    const FSCatalogInfo untouched = {};
    EXPECT_EQ(std::memcmp(&info, &untouched, sizeof info), 0);
    EXPECT_EQ(platform.files.describe(&parent), "ref:zero");
}

TEST_F(Double, NumbersHaveTheirDecimalText)
{
    for (const auto &[number, digits] : {std::pair<SInt32, const char *>{0, "0"}, {42, "42"}, {-7, "-7"}, {-2147483647 - 1, "-2147483648"}})
    {
        Str255 text = {};
        NumToString(number, text);
        EXPECT_EQ(quoted(text), '"' + std::string(digits) + '"');
        SInt32 read = 1;
        StringToNum(text, &read);
        EXPECT_EQ(read, number);
    }
}

TEST_F(Double, EveryTextIsANumber)
{
    const auto numberOf = [](const std::string &characters) {
        Str255 text = {static_cast<unsigned char>(characters.size())};
        characters.copy(reinterpret_cast<char *>(text + 1), characters.size());
        SInt32 number = 1;
        StringToNum(text, &number);
        return number;
    };
    EXPECT_EQ(numberOf(""), 0);
    EXPECT_EQ(numberOf("-"), 0);
    EXPECT_EQ(numberOf("1-2"), 232) << "a '-' inside counts 13";
    EXPECT_EQ(numberOf("1,2"), 222) << "a ',' counts 12";
    EXPECT_EQ(numberOf("4294967297"), 1) << "wraps at 32 bits";
}

TEST_F(Double, WidthsAreThoseOfTheCharactersUntilOthersArePrepared)
{
    const Str255 text = {3, 'a', ' ', 0xC9};
    EXPECT_EQ(StringWidth(text), 8 + 5 + 11);
    EXPECT_EQ(CharWidth('a'), 8);
    platform.text.characterWidths['a'] = 20;
    platform.text.nextStringWidths = {1000};
    EXPECT_EQ(StringWidth(text), 1000);
    EXPECT_EQ(StringWidth(text), 20 + 5 + 11);
}

TEST_F(Double, NotesVoidCallsWithoutCountingThem)
{
    platform.failCall(1, ioErr);
    platform.note("HLock", {"handle"});
    EXPECT_FALSE(platform.failureReached());
    EXPECT_EQ(platform.calls(), Calls{"HLock(handle)"});
}

}   // namespace
