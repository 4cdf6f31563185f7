// Unicode names to short names and back.

#include "tests/contract/names_fixture.h"

namespace
{

using NamesConverting = NamesTest;

const std::string ofLength31(31, 'a');
const std::string ofLength27(27, 'v');

TEST_F(NamesConverting, ShortNameIsMadeByOneConverterThatIsDisposedOf)
{
    EXPECT_EQ(toShortName("Letter"), noErr);
    EXPECT_EQ(quoted(shortName), "\"Letter\"");
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToText(0, 12, 31));
}

TEST_F(NamesConverting, ConverterReadsTheCallersNameAndWritesBehindTheLengthByte)
{
    const std::vector<UniChar> units = unitsOf("ab");
    platform.nameAddress(units.data(), "caller's name");
    platform.nameAddress(shortName + 1, "caller's text");
    EXPECT_EQ(UnicodeNameGetHFSName(2, units.data(), 0, 0, shortName), noErr);
    EXPECT_EQ(platform.calls().at(3),
              "ConvertFromUnicodeToText(converter 0x0, 4, caller's name, 0x20, 0, -, -, -, 31, read, written, caller's text)");
    EXPECT_EQ(shortName[3], 0x5A) << "written behind the name";
}

TEST_F(NamesConverting, ShortNameWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    const std::vector<UniChar> units = unitsOf("a");
    EXPECT_EQ(UnicodeNameGetHFSName(1, units.data(), 0xFFFF, 0, nullptr), paramErr);
    EXPECT_EQ(UnicodeNameGetHFSName(0, nullptr, 0xFFFF, 0, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(NamesConverting, EmptyNameGivesAnEmptyShortNameWithoutAnyCall)
{
    for (const TextEncoding hint : {TextEncoding{0}, TextEncoding{0xFFFF}, TextEncoding{99}})
    {
        shortName[0] = 7;
        EXPECT_EQ(UnicodeNameGetHFSName(0, nullptr, hint, 0, shortName), noErr);
        EXPECT_EQ(shortName[0], 0);
    }
    EXPECT_EQ(shortName[1], 0x5A);
    EXPECT_EQ(platform.calls(), Calls{});
}

// The length in bytes has 32 bits, whatever else the machine has.
TEST_F(NamesConverting, LengthInBytesWrapsAround)
{
    shortName[0] = 7;
    EXPECT_EQ(UnicodeNameGetHFSName(0x80000000, nullptr, 0xFFFF, 0, shortName), noErr);
    EXPECT_EQ(shortName[0], 0);
    EXPECT_EQ(platform.calls(), Calls{});

    const std::vector<UniChar> units = unitsOf("abc");
    EXPECT_EQ(UnicodeNameGetHFSName(0x80000003, units.data(), 0, 0, shortName), noErr);
    EXPECT_EQ(quoted(shortName), "\"abc\"");
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToText(0, 6, 31));
}

TEST_F(NamesConverting, LengthInBytesKeepsItsHighestBit)
{
    const std::vector<UniChar> units(40, 'x');
    EXPECT_EQ(UnicodeNameGetHFSName(0x7FFFFFFF, units.data(), 0, 0, shortName), static_cast<OSErr>(kTECOutputBufferFullStatus));
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToText(0, 0xFFFFFFFE, 31));
}

TEST_F(NamesConverting, FileNameHasRoomForThirtyOneBytes)
{
    EXPECT_EQ(toShortName(ofLength31), noErr);
    EXPECT_EQ(quoted(shortName), '"' + ofLength31 + '"');
    EXPECT_EQ(shortName[32], 0x5A) << "written behind the name";
}

TEST_F(NamesConverting, LongerFileNameFailsAndIsNotShortened)
{
    EXPECT_EQ(toShortName(ofLength31 + 'b'), static_cast<OSErr>(kTECOutputBufferFullStatus));
    EXPECT_EQ(shortName[0], 0);
    EXPECT_EQ(shortName[32], 0x5A) << "written behind the name";
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToText(0, 64, 31)) << "the converter is disposed of all the same";
}

TEST_F(NamesConverting, VolumeNameHasRoomForTwentySevenBytes)
{
    for (const int isVolumeName : {1, 2, 0x80, 0xFF})
    {
        platform.forgetCalls();
        EXPECT_EQ(toShortName(ofLength27, 0, static_cast<Boolean>(isVolumeName)), noErr);
        EXPECT_EQ(quoted(shortName), '"' + ofLength27 + '"');
        EXPECT_EQ(shortName[28], 0x5A) << "written behind the name";
        EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToText(0, 54, 27));
    }
}

TEST_F(NamesConverting, LongerVolumeNameFailsAndIsNotShortened)
{
    EXPECT_EQ(toShortName(ofLength27 + 'w', 0, true), static_cast<OSErr>(kTECOutputBufferFullStatus));
    EXPECT_EQ(shortName[0], 0);
    EXPECT_EQ(toShortName(ofLength27 + 'w', 0, false), noErr) << "as a file's name it fits";
}

TEST_F(NamesConverting, CharacterThatTheEncodingLacksIsTheConvertersError)
{
    const UniChar units[] = {'a', 0x3042, 'b'};
    EXPECT_EQ(UnicodeNameGetHFSName(3, units, 0, 0, shortName), static_cast<OSErr>(kTECUnmappableElementErr));
    EXPECT_EQ(shortName[0], 0);
    EXPECT_EQ(shortName[1], 'a') << "what the converter left there";
}

TEST_F(NamesConverting, EveryByteHasItsUnitAndComesBack)
{
    for (unsigned byte = 0; byte < 256; ++byte)
    {
        const UniChar unit = static_cast<UniChar>(byte);
        ASSERT_EQ(UnicodeNameGetHFSName(1, &unit, 0, 0, shortName), noErr);
        ASSERT_EQ(shortName[0], 1);
        ASSERT_EQ(shortName[1], byte);
        ASSERT_EQ(HFSNameGetUnicodeName(shortName, 0, &outputs.name), noErr);
        ASSERT_EQ(outputs.name.length, 1);
        ASSERT_EQ(outputs.name.unicode[0], unit);
    }
}

TEST_F(NamesConverting, UnicodeNameIsMadeByOneConverterThatIsDisposedOf)
{
    EXPECT_EQ(toUnicodeName("Letter"), noErr);
    EXPECT_EQ(textOf(outputs.name), "Letter");
    EXPECT_EQ(outputs.name.unicode[6], 0x5A5A) << "written behind the name";
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToUnicode(0, 6));
}

TEST_F(NamesConverting, ConverterReadsBehindTheLengthByteAndWritesTheCallersUnits)
{
    const unsigned char text[] = {2, 'a', 'b'};
    platform.nameAddress(text + 1, "caller's text");
    platform.nameAddress(outputs.name.unicode, "caller's units");
    EXPECT_EQ(HFSNameGetUnicodeName(text, 0, &outputs.name), noErr);
    EXPECT_EQ(platform.calls().at(3),
              "ConvertFromTextToUnicode(converter 0x0, 2, caller's text, 0x0, 0, -, -, -, 510, read, written, caller's units)");
}

TEST_F(NamesConverting, UnicodeNameWithoutPlaceForItIsRefusedBeforeAnyCall)
{
    EXPECT_EQ(HFSNameGetUnicodeName(nullptr, 0xFFFF, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(NamesConverting, EmptyShortNameGivesAnEmptyNameWithoutAnyCall)
{
    for (const TextEncoding hint : {TextEncoding{0}, TextEncoding{0xFFFF}, TextEncoding{99}})
    {
        outputs.name.length = 7;
        EXPECT_EQ(toUnicodeName("", hint), noErr);
        EXPECT_EQ(outputs.name.length, 0);
    }
    EXPECT_EQ(outputs.name.unicode[0], 0x5A5A);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(NamesConverting, LongestTextFillsTheWholeUnicodeName)
{
    const std::string longest(255, 'z');
    EXPECT_EQ(toUnicodeName(longest), noErr);
    EXPECT_EQ(outputs.name.length, 255);
    EXPECT_EQ(textOf(outputs.name), longest);
    EXPECT_EQ(platform.calls(), mappingCalls(0) + conversionToUnicode(0, 255));
}

}   // namespace
