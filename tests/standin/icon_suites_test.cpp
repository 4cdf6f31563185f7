// Icon suites: which members are fetched, which one is drawn, and what a suite is after its resources have gone.
#include "standin/drawing/icon_palettes.h"
#include "standin/drawing/port.h"
#include "tests/contract/rows.h"
#include "tests/standin/icon_files.h"

#include <gtest/gtest.h>

namespace
{

using namespace support;
using standin::Pixel;

constexpr SInt16 familyID = -16455;
constexpr Pixel black = 0xFF000000, white = 0xFFFFFFFF, untouched = 0xFF00FFFF;

// A port of 40 by 40 in a colour that no icon here has, current for the test.
class IconPort
{
public:
    IconPort() : port_(standin::newPort({0, 0, 40, 40}, {0, 0})), setting_(port_)
    {
        std::fill(port_->pixels.begin(), port_->pixels.end(), untouched);
    }
    ~IconPort() { DisposePort(port_); }
    Pixel at(int x, int y) const { return port_->pixels[static_cast<std::size_t>(40 * y + x)]; }

private:
    GrafPtr port_;
    standin::PortSetting setting_;
};

class IconSuites : public testing::Test
{
protected:
    // The file is open as the newest one until the test ends.
    void open(const std::vector<TestResource> &resources)
    {
        files_.push_back(
            std::make_unique<OpenResources>(fileWithData(folder_, "icons" + std::to_string(files_.size()), resourceFork(resources))));
        ASSERT_NE(files_.back()->number(), -1);
    }

    void closeAll()
    {
        while (!files_.empty())
            files_.pop_back();
    }

    ~IconSuites() override { closeAll(); }

    static IconSuiteRef suiteOf(IconSelectorValue selector = svAllAvailableData)
    {
        IconSuiteRef suite = nullptr;
        EXPECT_EQ(GetIconSuite(&suite, familyID, selector), noErr);
        return suite;
    }

    // The colour in the middle of what PlotIconSuite draws in a square of this side.
    static Pixel drawn(IconSuiteRef suite, int side)
    {
        const IconPort port;
        const Rect rect = {0, 0, static_cast<SInt16>(side), static_cast<SInt16>(side)};
        EXPECT_EQ(PlotIconSuite(&rect, kAlignNone, kTransformNone, suite), noErr);
        return port.at(side / 2, side / 2);
    }

private:
    TemporaryFolder folder_;
    std::vector<std::unique_ptr<OpenResources>> files_;
};

// ---------------------------------------------------------------------------------------------------------------------
// Which member is drawn. Each is of a colour of its own: 1 bit black (large) and white (small), 4 bits, 8 bits.

TestResource markedMember(OSType type)
{
    const unsigned values[] = {1, 3, 216, 0, 6, 226};
    const auto &types = iconTypes();
    return plainMember(type, familyID, values[std::find(types.begin(), types.end(), type) - types.begin()]);
}

const Pixel large1 = black, large4 = standin::colorOfFourBits(3), large8 = standin::colorOfEightBits(216), small1 = white,
            small4 = standin::colorOfFourBits(6), small8 = standin::colorOfEightBits(226);

struct MemberCase
{
    const char *name;
    std::vector<OSType> present;
    IconSelectorValue selector;
    int side;
    Pixel expected;   // 0: no suite
};

void PrintTo(const MemberCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class DrawnMembers : public IconSuites, public testing::WithParamInterface<MemberCase>
{
};

TEST_P(DrawnMembers, AreTheDeepestOfTheBestSize)
{
    const MemberCase &row = GetParam();
    std::vector<TestResource> resources = {markedMember(code("ICN#"))};
    resources[0].id = familyID + 1;   // another family does not count
    for (OSType type : row.present)
        resources.push_back(markedMember(type));
    open(resources);
    IconSuiteRef suite = nullptr;
    const OSErr result = GetIconSuite(&suite, familyID, row.selector);
    ASSERT_EQ(result, row.expected != 0 ? noErr : resNotFound);
    ASSERT_EQ(suite != nullptr, row.expected != 0);
    if (suite == nullptr)
        return;
    EXPECT_EQ(drawn(suite, row.side), row.expected) << std::hex << drawn(suite, row.side);
    EXPECT_EQ(DisposeIconSuite(suite, true), noErr);
}

constexpr OSType icnList = code("ICN#"), icl4 = code("icl4"), icl8 = code("icl8"), icsList = code("ics#"), ics4 = code("ics4"),
                 ics8 = code("ics8");
const std::vector<OSType> all = {icnList, icl4, icl8, icsList, ics4, ics8};

// clang-format off
const MemberCase memberCases[] = {
    {"LargeInItsOwnSize",          all,              svAllAvailableData, 32, large8},
    {"SmallInItsOwnSize",          all,              svAllAvailableData, 16, small8},
    {"LargeInMore",                all,              svAllAvailableData, 40, large8},
    {"SmallInOneLess",             all,              svAllAvailableData, 31, small8},
    {"SmallInLess",                all,              svAllAvailableData, 5,  small8},
    {"FourBitsAreDeepest",         {icnList, icl4},  svAllAvailableData, 32, large4},
    {"OneBitIsDeepest",            {icnList},        svAllAvailableData, 32, large1},
    {"SmallFourBits",              {icsList, ics4},  svAllAvailableData, 16, small4},
    {"SmallOneBit",                {icsList},        svAllAvailableData, 16, small1},
    {"LargeIsMissing",             {icsList, ics8},  svAllAvailableData, 32, small8},
    {"SmallIsMissing",             {icnList, icl4},  svAllAvailableData, 16, large4},
    {"SizeCountsMoreThanDepth",    {icl8, icsList},  svAllAvailableData, 16, small1},
    {"ColourAlone",                {icl8},           svAllAvailableData, 32, large8},
    {"SmallDataAlone",             all,              svAllSmallData,     32, small8},
    {"SmallDataOfALargeFamily",    {icnList, icl8},  svAllSmallData,     16, 0},
    {"LargeDataAlone",             all,              svAllLargeData,     16, large8},
    {"LargeDataOfASmallFamily",    {icsList, ics8},  svAllLargeData,     32, 0},
    {"OneBitDataInLarge",          all,              svAll1BitData,      32, large1},
    {"OneBitDataInSmall",          all,              svAll1BitData,      16, small1},
    {"FourBitDataInLarge",         all,              svAll4BitData,      32, large4},
    {"FourBitDataInSmall",         all,              svAll4BitData,      16, small4},
    {"EightBitDataOfFourBits",     {icnList, icl4},  svAll8BitData,      32, 0},
    {"OnlyLargeFourBits",          all,              svLarge4Bit,        16, large4},
    {"OnlySmallFourBits",          all,              svSmall4Bit,        32, small4},
    {"OnlySmallOneBit",            all,              svSmall1Bit,        32, small1},
    {"OneOfEachSize",              all,              svLarge1Bit | svSmall8Bit, 32, large1},
    {"MiniatureDataAreNotHere",    all,              0x00FF0000,         16, 0},
    {"NothingAskedFor",            all,              0,                  32, 0},
    {"NothingThere",               {},               svAllAvailableData, 32, 0},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(OfFamilies, DrawnMembers, testing::ValuesIn(memberCases), rowName);

// ---------------------------------------------------------------------------------------------------------------------

// The mask hides the right half.
TEST_F(IconSuites, TheMaskServesColoursThatAreAskedForAlone)
{
    TestResource list = plainMember(icsList, familyID, 1);
    for (std::size_t byte = 33; byte < 64; byte += 2)
        list.bytes[byte] = 0;
    open({list, plainMember(ics8, familyID, 216)});
    IconSuiteRef suite = suiteOf(svSmall8Bit);
    const IconPort port;
    const Rect rect = {0, 0, 16, 16};
    EXPECT_EQ(PlotIconSuite(&rect, kAlignNone, kTransformNone, suite), noErr);
    EXPECT_EQ(port.at(7, 3), standin::colorOfEightBits(216));
    EXPECT_EQ(port.at(8, 3), untouched);
    DisposeIconSuite(suite, true);
}

TEST_F(IconSuites, MembersThatAreFarTooShortAreNotThere)
{
    TestResource list = plainMember(icnList, familyID, 1), deep = plainMember(icl8, familyID, 216);
    list.bytes.resize(100);
    deep.bytes.resize(511);
    open({list, deep, plainMember(icl4, familyID, 3)});
    IconSuiteRef suite = suiteOf();
    EXPECT_EQ(drawn(suite, 32), large4);   // opaque: its mask is among what is not there
    DisposeIconSuite(suite, true);
    EXPECT_EQ(GetIconSuite(&suite, familyID, svLarge1Bit | svLarge8Bit), resNotFound);
    EXPECT_EQ(suite, nullptr);
}

TEST_F(IconSuites, MembersMayLieInSeveralFiles)
{
    open({plainMember(icl8, familyID, 216), plainMember(ics4, familyID, 3)});
    open({plainMember(icnList, familyID, 1), plainMember(ics4, familyID, 6)});
    IconSuiteRef suite = suiteOf();
    EXPECT_EQ(drawn(suite, 32), large8);
    EXPECT_EQ(drawn(suite, 16), small4) << "the newest file's comes first";
    DisposeIconSuite(suite, true);
}

TEST_F(IconSuites, OutliveTheirResourceFile)
{
    open({plainMember(icl8, familyID, 216)});
    IconSuiteRef suite = suiteOf(), other = suiteOf();
    closeAll();
    EXPECT_EQ(drawn(suite, 32), large8);
    EXPECT_EQ(DisposeIconSuite(other, true), noErr);
    EXPECT_EQ(drawn(suite, 32), large8) << "no two suites share anything";
    EXPECT_EQ(DisposeIconSuite(suite, false), noErr);
}

TEST_F(IconSuites, ShareNothingWithHandles)
{
    open({plainMember(icl8, familyID, 216)});
    Handle handle = GetResource(icl8, familyID);
    IconSuiteRef suite = suiteOf();
    **handle = 0;
    std::fill(*handle, *handle + 1024, '\0');
    EXPECT_EQ(drawn(suite, 32), large8);
    EXPECT_EQ(DisposeIconSuite(suite, true), noErr);
    EXPECT_EQ(GetHandleSize(handle), 1024);
    ReleaseResource(handle);
}

TEST_F(IconSuites, LeaveResErrorAlone)
{
    open({plainMember(icl8, familyID, 216)});
    EXPECT_EQ(GetResource(icl8, 1), nullptr);
    EXPECT_EQ(ResError(), resNotFound);
    IconSuiteRef suite = suiteOf();
    EXPECT_EQ(ResError(), resNotFound);
    DisposeIconSuite(suite, true);
    GetResource(icl8, familyID);
    EXPECT_EQ(GetIconSuite(&suite, 1, svAllAvailableData), resNotFound);
    EXPECT_EQ(ResError(), noErr);
}

TEST_F(IconSuites, WorkWhileResourcesAreNotLoaded)
{
    open({plainMember(icl8, familyID, 216)});
    SetResLoad(false);
    IconSuiteRef suite = suiteOf();
    SetResLoad(true);
    EXPECT_EQ(drawn(suite, 32), large8);
    DisposeIconSuite(suite, true);
}

TEST_F(IconSuites, WhatIsNoSuiteIsRefused)
{
    const Rect rect = {0, 0, 32, 32};
    EXPECT_EQ(GetIconSuite(nullptr, familyID, svAllAvailableData), paramErr);
    EXPECT_EQ(PlotIconSuite(&rect, kAlignNone, kTransformNone, nullptr), paramErr);
    EXPECT_EQ(DisposeIconSuite(nullptr, true), paramErr);
    open({plainMember(icl8, familyID, 216)});
    IconSuiteRef suite = suiteOf();
    EXPECT_EQ(PlotIconSuite(nullptr, kAlignNone, kTransformNone, suite), paramErr);
    EXPECT_EQ(DisposeIconSuite(suite, true), noErr);
    EXPECT_EQ(PlotIconSuite(&rect, kAlignNone, kTransformNone, suite), paramErr);
    EXPECT_EQ(DisposeIconSuite(suite, true), paramErr);
}

TEST_F(IconSuites, WithoutAnOpenFileThereIsNone)
{
    auto *suite = reinterpret_cast<IconSuiteRef>(this);
    EXPECT_EQ(GetIconSuite(&suite, familyID, svAllAvailableData), resNotFound);
    EXPECT_EQ(suite, nullptr);
}

}   // namespace
