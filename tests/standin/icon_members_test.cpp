// Members of icon families as bytes: which lengths are taken, what each pixel becomes, and what the mask hides.
#include "standin/drawing/icon_members.h"
#include "standin/drawing/icon_palettes.h"
#include "tests/contract/rows.h"
#include "tests/data/samples.h"
#include "tests/standin/disks.h"
#include "tests/standin/processes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <set>
#include <string>

namespace
{

using namespace standin;

constexpr Pixel outside = 0x00FFFFFF;
constexpr const IconMemberKind &icnList = iconMemberKinds[0], &icl4 = iconMemberKinds[1], &icl8 = iconMemberKinds[2],
                               &icsList = iconMemberKinds[3], &ics4 = iconMemberKinds[4], &ics8 = iconMemberKinds[5];

std::string repeated(std::size_t count, unsigned char byte)
{
    return std::string(count, static_cast<char>(byte));
}

// One character a pixel: '#' black, '-' white, '.' outside the mask, '?' anything else.
std::string picture(const IconPixels &icon)
{
    std::string text;
    for (std::size_t pixel = 0; pixel < icon.pixels.size(); ++pixel)
    {
        const Pixel color = icon.pixels[pixel];
        text += color == blackPixel ? '#' : color == whitePixel ? '-' : color == outside ? '.' : '?';
        if ((pixel + 1) % static_cast<std::size_t>(icon.side) == 0)
            text += '\n';
    }
    return text;
}

std::string rowOf(const IconPixels &icon, int row)
{
    return picture(icon).substr(static_cast<std::size_t>(row * (icon.side + 1)), static_cast<std::size_t>(icon.side));
}

// ---------------------------------------------------------------------------------------------------------------------
// Palettes

struct ColorCase
{
    const char *name;
    unsigned index;
    Pixel color;
};

class EightBitPalette : public testing::TestWithParam<ColorCase>
{
};

TEST_P(EightBitPalette, HasTheColour)
{
    EXPECT_EQ(colorOfEightBits(GetParam().index), GetParam().color);
}

const ColorCase eightBitCases[] = {
    {"White", 0, 0xFFFFFFFF},        {"BlueIsFastest", 1, 0xFFFFFFCC},   {"Yellow", 5, 0xFFFFFF00},
    {"GreenIsNext", 6, 0xFFFFCCFF},  {"LastOfFullRed", 35, 0xFFFF0000},  {"RedIsSlowest", 36, 0xFFCCFFFF},
    {"InTheMiddle", 87, 0xFF999966}, {"LastOfTheCube", 214, 0xFF000033}, {"FirstRed", 215, 0xFFEE0000},
    {"LastRed", 224, 0xFF110000},    {"FirstGreen", 225, 0xFF00EE00},    {"SixthBlue", 240, 0xFF000077},
    {"LastBlue", 244, 0xFF000011},   {"FirstGray", 245, 0xFFEEEEEE},     {"LastGray", 254, 0xFF111111},
    {"Black", 255, 0xFF000000},
};

INSTANTIATE_TEST_SUITE_P(Colors, EightBitPalette, testing::ValuesIn(eightBitCases), rowName);

TEST(IconPalettes, EveryColourOfEightBitsIsThereOnceAndOpaque)
{
    std::set<Pixel> colors;
    for (unsigned index = 0; index < 256; ++index)
    {
        EXPECT_EQ(colorOfEightBits(index) >> 24, 0xFFu) << index;
        colors.insert(colorOfEightBits(index));
    }
    EXPECT_EQ(colors.size(), 256u);
}

TEST(IconPalettes, FourBitsAreTheSixteenColours)
{
    const Pixel expected[] = {0xFFFFFF, 0xFCF305, 0xFF6402, 0xDD0806, 0xF20884, 0x4600A5, 0x0000D4, 0x02ABEA,
                              0x1FB714, 0x006411, 0x562C05, 0x90713A, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
    for (unsigned index = 0; index < 16; ++index)
        EXPECT_EQ(colorOfFourBits(index), 0xFF000000 | expected[index]) << index;
}

// ---------------------------------------------------------------------------------------------------------------------
// Lengths

struct LengthCase
{
    const char *name;
    const IconMemberKind &kind;
    std::size_t bytes;
    bool taken;
};

class MemberLengths : public testing::TestWithParam<LengthCase>
{
};

TEST_P(MemberLengths, AreTakenOrRefused)
{
    EXPECT_EQ(canBeMember(GetParam().kind, GetParam().bytes), GetParam().taken);
}

const LengthCase lengthCases[] = {
    {"WholeIcnList", icnList, 256, true}, {"IcnListOf252", icnList, 252, true},
    {"IcnListOf296", icnList, 296, true}, {"IcnListWithoutMask", icnList, 128, true},
    {"HalfAnImage", icnList, 127, false}, {"NoByte", icnList, 0, false},
    {"WholeIcl4", icl4, 512, true},       {"HalfAnIcl4", icl4, 256, true},
    {"ShortIcl4", icl4, 255, false},      {"WholeIcl8", icl8, 1024, true},
    {"HalfAnIcl8", icl8, 512, true},      {"ShortIcl8", icl8, 511, false},
    {"WholeIcsList", icsList, 64, true},  {"IcsListWithoutMask", icsList, 32, true},
    {"ShortIcsList", icsList, 31, false}, {"WholeIcs4", ics4, 128, true},
    {"ShortIcs4", ics4, 63, false},       {"WholeIcs8", ics8, 256, true},
    {"ShortIcs8", ics8, 127, false},      {"VeryLong", ics8, 1000000, true},
};

INSTANTIATE_TEST_SUITE_P(Lengths, MemberLengths, testing::ValuesIn(lengthCases), rowName);

TEST(IconMembers, WholeSizesAreThoseOfTheFormats)
{
    const std::size_t sizes[] = {256, 512, 1024, 64, 128, 256};
    for (std::size_t index = 0; index < std::size(sizes); ++index)
        EXPECT_EQ(wholeSizeOf(iconMemberKinds[index]), sizes[index]) << index;
}

// ---------------------------------------------------------------------------------------------------------------------
// Pixels

TEST(IconMembers, TheHighestBitIsTheLeftmostPixelAndOneIsBlack)
{
    const std::string list = std::string("\x80\x01\x00\x00", 4) + repeated(28, 0x00) + repeated(32, 0xFF);
    const IconPixels icon = readIconMember(icsList, list, list);
    EXPECT_EQ(icon.side, 16);
    EXPECT_EQ(icon.bitsPerPixel, 1);
    ASSERT_EQ(icon.pixels.size(), 256u);
    EXPECT_EQ(rowOf(icon, 0), "#--------------#");
    EXPECT_EQ(rowOf(icon, 1), "----------------");
}

TEST(IconMembers, TheMaskHidesWhateverLiesOutside)
{
    const std::string list = repeated(32, 0xFF) + std::string("\x00\xFF", 2) + repeated(28, 0x00) + std::string("\xF0\x0F", 2);
    const IconPixels icon = readIconMember(icsList, list, list);
    EXPECT_EQ(rowOf(icon, 0), "........########");
    EXPECT_EQ(rowOf(icon, 1), "................");
    EXPECT_EQ(rowOf(icon, 15), "####........####");
}

TEST(IconMembers, TheHighNibbleIsTheLeftPixel)
{
    const IconPixels icon = readIconMember(ics4, std::string("\x0F\x3C", 2) + repeated(126, 0x00), {});
    EXPECT_EQ(icon.pixels[0], 0xFFFFFFFF);
    EXPECT_EQ(icon.pixels[1], 0xFF000000);
    EXPECT_EQ(icon.pixels[2], 0xFFDD0806);
    EXPECT_EQ(icon.pixels[3], 0xFFC0C0C0);
}

TEST(IconMembers, EightBitsGoThroughTheirPalette)
{
    const IconPixels icon = readIconMember(ics8, std::string("\xFF\x00\xD7\x80", 4) + repeated(252, 0x00), {});
    EXPECT_EQ(icon.pixels[0], 0xFF000000);
    EXPECT_EQ(icon.pixels[1], 0xFFFFFFFF);
    EXPECT_EQ(icon.pixels[2], 0xFFEE0000);
    EXPECT_EQ(icon.pixels[3], colorOfEightBits(0x80));
}

TEST(IconMembers, ColoursAreMaskedByTheirPartner)
{
    const std::string partner = repeated(32, 0x00) + std::string("\xC0\x00", 2) + repeated(30, 0x00);
    for (const IconMemberKind *kind : {&ics4, &ics8})
    {
        const IconPixels icon = readIconMember(*kind, repeated(wholeSizeOf(*kind), 0xFF), partner);
        EXPECT_EQ(rowOf(icon, 0), "##..............");
        EXPECT_EQ(rowOf(icon, 1), "................");
    }
}

TEST(IconMembers, ColoursWithoutPartnerAreOpaque)
{
    for (const IconMemberKind *kind : {&icl4, &icl8, &ics4, &ics8})
    {
        const IconPixels icon = readIconMember(*kind, repeated(wholeSizeOf(*kind), 0xFF), {});
        EXPECT_EQ(icon.pixels.size(), static_cast<std::size_t>(kind->side * kind->side));
        for (Pixel pixel : icon.pixels)
            ASSERT_EQ(pixel, blackPixel);
    }
}

TEST(IconMembers, WithoutMaskBytesAllIsOpaque)
{
    const std::string image = repeated(128, 0x55);
    const IconPixels icon = readIconMember(icnList, image, image);
    EXPECT_EQ(rowOf(icon, 0), "-#-#-#-#-#-#-#-#-#-#-#-#-#-#-#-#");
    EXPECT_EQ(rowOf(icon, 31), "-#-#-#-#-#-#-#-#-#-#-#-#-#-#-#-#");
}

TEST(IconMembers, MaskBytesThatAreMissingHide)
{
    const std::string list = repeated(252, 0xFF);
    const IconPixels icon = readIconMember(icnList, list, list);
    EXPECT_EQ(rowOf(icon, 30), "################################");
    EXPECT_EQ(rowOf(icon, 31), "................................");
}

TEST(IconMembers, BytesTooManyDoNotCount)
{
    const std::string whole = repeated(128, 0x0F) + repeated(128, 0xFF);
    const std::string longer = whole + repeated(40, 0xAA);
    EXPECT_EQ(readIconMember(icnList, longer, longer).pixels, readIconMember(icnList, whole, whole).pixels);
}

TEST(IconMembers, ImageBytesThatAreMissingAreWhite)
{
    const IconPixels icon = readIconMember(icl8, repeated(1023, 0xFF), {});
    EXPECT_EQ(rowOf(icon, 31), "###############################-");
    EXPECT_EQ(rowOf(readIconMember(icl4, repeated(511, 0xFF), {}), 31), "##############################--");
}

// Whatever the bytes are, the pixels are as many as they have to be and each is opaque or outside.
TEST(IconMembers, AnyBytesGiveAnIcon)
{
    std::mt19937 random(20260);
    for (int round = 0; round < 300; ++round)
    {
        std::string bytes(random() % 1500, '\0'), masking(random() % 400, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        for (char &byte : masking)
            byte = static_cast<char>(random());
        for (const IconMemberKind &kind : iconMemberKinds)
        {
            const IconPixels icon = readIconMember(kind, bytes, masking);
            ASSERT_EQ(icon.pixels.size(), static_cast<std::size_t>(kind.side * kind.side));
            for (Pixel pixel : icon.pixels)
                ASSERT_TRUE(pixel >> 24 == 0xFF || pixel == outside) << std::hex << pixel;
        }
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// A real icon

// The bytes of a resource of the sample, whose data begin 256 bytes into the fork, which begins at 82.
std::string sampleResource(std::size_t dataOffset, std::size_t size)
{
    const std::vector<std::uint8_t> file = readSample("netatalk3-picture.adouble");
    const std::size_t start = 82 + 256 + dataOffset + 4;
    if (file.size() < start + size)
        return {};
    return std::string(file.begin() + static_cast<std::ptrdiff_t>(start), file.begin() + static_cast<std::ptrdiff_t>(start + size));
}

struct RealCase
{
    const char *name;
    const IconMemberKind &kind;
    std::size_t dataOffset, maskOffset;
    const char *checksum;   // of its RGBA bytes
};

class RealIcon : public testing::TestWithParam<RealCase>
{
};

std::string checksumOf(const IconPixels &icon)
{
    std::string bytes;
    for (Pixel pixel : icon.pixels)
        for (int shift : {16, 8, 0, 24})
            bytes += static_cast<char>(pixel >> shift);
    const support::TemporaryFolder folder;
    support::writeFile(folder / "rgba", bytes);
    return support::run({"sha256sum", folder / "rgba"}).output.substr(0, 64);
}

TEST_P(RealIcon, HasItsPixelsInEveryDepth)
{
    const RealCase &row = GetParam();
    const std::string bytes = sampleResource(row.dataOffset, wholeSizeOf(row.kind));
    const std::string masking = sampleResource(row.maskOffset, row.kind.side == 32 ? 256 : 64);
    const IconPixels icon = readIconMember(row.kind, bytes, masking);
    EXPECT_EQ(std::count(icon.pixels.begin(), icon.pixels.end(), outside), row.kind.side * row.kind.side - 16) << picture(icon);
    EXPECT_EQ(checksumOf(icon), row.checksum) << picture(icon);
}

constexpr const char *largeChecksum = "6fb0fac2b4db46c0b352400ca5b8994bdc8ca8a7fe042c432b024a0e250012b6";
constexpr const char *smallChecksum = "2fd0d22e6ba58cc697ab637174046bd597030da7d811a95c1c128032b9572c37";

const RealCase realCases[] = {
    {"IcnList", icnList, 41595, 41595, largeChecksum}, {"Icl4", icl4, 41855, 41595, largeChecksum},
    {"Icl8", icl8, 42371, 41595, largeChecksum},       {"IcsList", icsList, 43399, 43399, smallChecksum},
    {"Ics4", ics4, 43467, 43399, smallChecksum},       {"Ics8", ics8, 43599, 43399, smallChecksum},
};

INSTANTIATE_TEST_SUITE_P(OfAFileServer, RealIcon, testing::ValuesIn(realCases), rowName);

}   // namespace
