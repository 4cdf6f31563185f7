// Changes of Finder information: whole, type and creator, flags.

#include "tests/contract/catalog_fixture.h"
#include "tests/contract/rows.h"

#include <ostream>

namespace
{

using CatalogFinder = CatalogTest;

// What every change does after it has read: it writes, then bumps the date of the parent, which tells its watchers.
const Calls changeOfFile = {
    "FSGetCatalogInfo(ref:file, 0x800, info, -, -, parent)",
    "FSSetCatalogInfo(ref:file, 0x800, info)",
    "FSGetCatalogInfo(ref:folder, 0x42, info, -, -, parent)",
    "GetUTCDateTime(date, 0)",
    "FSSetCatalogInfo(ref:folder, 0x40, info)",
    "FNNotify(ref:folder, 1, 0)",
};

const Calls changeOfFilesTypeAndCreator = {
    "FSGetCatalogInfo(ref:file, 0x802, info, -, -, parent)",
    "FSSetCatalogInfo(ref:file, 0x800, info)",
    "FSGetCatalogInfo(ref:folder, 0x42, info, -, -, parent)",
    "GetUTCDateTime(date, 0)",
    "FSSetCatalogInfo(ref:folder, 0x40, info)",
    "FNNotify(ref:folder, 1, 0)",
};

TEST_F(CatalogFinder, InformationIsSetOnlyWhereGiven)
{
    struct Row
    {
        bool giveInfo, giveExtended;
        const char *call;
    };
    for (const Row &row :
         {Row{true, true, "FSSetCatalogInfo(ref:file, 0x1800, info)"}, Row{true, false, "FSSetCatalogInfo(ref:file, 0x800, info)"},
          Row{false, true, "FSSetCatalogInfo(ref:file, 0x1000, info)"}, Row{false, false, "FSSetCatalogInfo(ref:file, 0x0, info)"}})
    {
        SCOPED_TRACE(row.call);
        FinderInfo info;
        ExtendedFinderInfo extendedInfo;
        std::memset(&info, 0x11, sizeof info);
        std::memset(&extendedInfo, 0x22, sizeof extendedInfo);
        FSCatalogInfo expected = infoOf("file");
        if (row.giveInfo)
            std::memset(expected.finderInfo, 0x11, sizeof expected.finderInfo);
        if (row.giveExtended)
            std::memset(expected.extFinderInfo, 0x22, sizeof expected.extFinderInfo);

        const FSCatalogInfo original = infoOf("file");
        platform.forgetCalls();
        EXPECT_EQ(FSSetFinderInfo(&file, row.giveInfo ? &info : nullptr, row.giveExtended ? &extendedInfo : nullptr), noErr);
        EXPECT_EQ(platform.calls(), Calls{row.call});
        EXPECT_TRUE(sameBytes(infoOf("file"), expected));
        infoOf("file") = original;
    }
}

TEST_F(CatalogFinder, InformationSetToNothingStillTellsThePlatformsResult)
{
    EXPECT_EQ(FSSetFinderInfo(&noObject, nullptr, nullptr), errFSBadFSRef);
    platform.failCall(1, wPrErr);
    EXPECT_EQ(FSSetFinderInfo(&file, nullptr, nullptr), wPrErr);
}

struct CodesCase
{
    const char *name;
    OSType creator, type;
    bool keepsCreator, keepsType;
};

void PrintTo(const CodesCase &row, std::ostream *stream)
{
    *stream << row.name;
}

const CodesCase codesCases[] = {
    {"Both", fourCharCode("ttxt"), fourCharCode("TEXT"), false, false},
    {"CreatorAlone", fourCharCode("ttxt"), 0, false, true},
    {"TypeAlone", 0, fourCharCode("TEXT"), true, false},
    {"ZeroKeepsBoth", 0, 0, true, true},
    {"AllBitsSetIsACodeLikeOthers", 0xFFFFFFFF, 0xFFFFFFFF, false, false},
    {"OneIsACodeLikeOthers", 1, 1, false, false},
    {"HighestBitAlone", 0x80000000, 0x80000000, false, false},
};

class CatalogCodes : public CatalogTest, public testing::WithParamInterface<CodesCase>
{
};

TEST_P(CatalogCodes, AreStoredUnlessZero)
{
    const CodesCase &row = GetParam();
    FSCatalogInfo expected = infoOf("file");
    FileInfo expectedInfo = fileInfoOf("file");
    if (!row.keepsType)
        expectedInfo.fileType = row.type;
    if (!row.keepsCreator)
        expectedInfo.fileCreator = row.creator;
    std::memcpy(expected.finderInfo, &expectedInfo, sizeof expectedInfo);

    EXPECT_EQ(FSChangeCreatorType(&file, row.creator, row.type), noErr);
    EXPECT_EQ(platform.calls(), changeOfFilesTypeAndCreator);
    EXPECT_TRUE(sameBytes(infoOf("file"), expected)) << "something else has changed too";
    EXPECT_EQ(infoOf("folder").contentModDate, platform.dates.now);
}

INSTANTIATE_TEST_SUITE_P(Rows, CatalogCodes, testing::ValuesIn(codesCases), rowName);

// In memory the type comes first and the creator second, each in the machine's own byte order.
TEST_F(CatalogFinder, TypeAndCreatorHaveTheirPlaces)
{
    EXPECT_EQ(FSChangeCreatorType(&file, 0x01020304, 0x05060708), noErr);
    UInt32 type, creator;
    std::memcpy(&type, infoOf("file").finderInfo, sizeof type);
    std::memcpy(&creator, infoOf("file").finderInfo + 4, sizeof creator);
    EXPECT_EQ(type, 0x05060708u);
    EXPECT_EQ(creator, 0x01020304u);
}

TEST_F(CatalogFinder, FolderHasNoTypeAndCreatorToChange)
{
    const FSCatalogInfo before = infoOf("nested");
    EXPECT_EQ(FSChangeCreatorType(&nested, fourCharCode("ttxt"), fourCharCode("TEXT")), notAFileErr);
    EXPECT_EQ(FSChangeCreatorType(&nested, 0, 0), notAFileErr);
    const std::string read = "FSGetCatalogInfo(ref:nested, 0x802, info, -, -, parent)";
    EXPECT_EQ(platform.calls(), (Calls{read, read}));
    EXPECT_TRUE(sameBytes(infoOf("nested"), before));
}

// Any file that differs from a folder in that one flag is a file.
TEST_F(CatalogFinder, OtherNodeFlagsDoNotMakeAFolder)
{
    infoOf("file").nodeFlags = static_cast<UInt16>(~0x0010);
    EXPECT_EQ(FSChangeCreatorType(&file, 0, fourCharCode("TEXT")), noErr);
    EXPECT_EQ(valueOf(fileInfoOf("file").fileType), fourCharCode("TEXT"));
}

TEST_F(CatalogFinder, FlagsAreSetByAnyTrueValueAndClearedByZero)
{
    for (int setBits = 0; setBits <= 255; ++setBits)
    {
        setFinderFlags("file", 0x5AA5);
        EXPECT_EQ(FSChangeFinderFlags(&file, static_cast<Boolean>(setBits), 0x0FF0), noErr);
        EXPECT_EQ(fileInfoOf("file").finderFlags, setBits == 0 ? 0x5005 : 0x5FF5) << setBits;
    }
}

TEST_F(CatalogFinder, NoFlagsToChangeStillWritesAndBumps)
{
    for (const Boolean setBits : {Boolean{0}, Boolean{1}})
    {
        const FSCatalogInfo before = infoOf("file");
        ++platform.dates.now.lowSeconds;
        platform.forgetCalls();
        EXPECT_EQ(FSChangeFinderFlags(&file, setBits, 0), noErr);
        EXPECT_EQ(platform.calls(), changeOfFile);
        EXPECT_TRUE(sameBytes(infoOf("file"), before));
        EXPECT_EQ(infoOf("folder").contentModDate, platform.dates.now);
    }
}

TEST_F(CatalogFinder, EachFlagByItselfIsSetAndCleared)
{
    for (int bit = 0; bit < 16; ++bit)
    {
        const auto flag = static_cast<UInt16>(1 << bit);
        setFinderFlags("file", 0);
        EXPECT_EQ(FSChangeFinderFlags(&file, 1, flag), noErr);
        EXPECT_EQ(fileInfoOf("file").finderFlags, flag);
        setFinderFlags("file", 0xFFFF);
        EXPECT_EQ(FSChangeFinderFlags(&file, 0, flag), noErr);
        EXPECT_EQ(fileInfoOf("file").finderFlags, 0xFFFF ^ flag);
    }
}

struct FlagCase
{
    const char *name;
    OSErr (*function)(const FSRef *);
    UInt16 flag;
    bool sets;
};

void PrintTo(const FlagCase &row, std::ostream *stream)
{
    *stream << row.name;
}

const FlagCase flagCases[] = {
    {"SetInvisible", FSSetInvisible, 0x4000, true},
    {"ClearInvisible", FSClearInvisible, 0x4000, false},
    {"SetNameLocked", FSSetNameLocked, 0x1000, true},
    {"ClearNameLocked", FSClearNameLocked, 0x1000, false},
    {"SetIsStationery", FSSetIsStationery, 0x0800, true},
    {"ClearIsStationery", FSClearIsStationery, 0x0800, false},
    {"SetHasCustomIcon", FSSetHasCustomIcon, 0x0400, true},
    {"ClearHasCustomIcon", FSClearHasCustomIcon, 0x0400, false},
    {"ClearHasBeenInited", FSClearHasBeenInited, 0x0100, false},
};

class CatalogFlag : public CatalogTest, public testing::WithParamInterface<FlagCase>
{
protected:
    void expectChangeOf(UInt16 before)
    {
        const FlagCase &row = GetParam();
        setFinderFlags("file", before);
        FSCatalogInfo expected = infoOf("file");
        const auto flags = static_cast<UInt16>(row.sets ? before | row.flag : before & ~row.flag);
        std::memcpy(expected.finderInfo + 8, &flags, sizeof flags);
        ASSERT_EQ(row.function(&file), noErr);
        ASSERT_TRUE(sameBytes(infoOf("file"), expected)) << "flags were " << hex(before) << ", are " << hex(fileInfoOf("file").finderFlags);
    }
};

TEST_P(CatalogFlag, ReadsWritesAndBumpsInThisOrder)
{
    EXPECT_EQ(GetParam().function(&file), noErr);
    EXPECT_EQ(platform.calls(), changeOfFile);
}

TEST_P(CatalogFlag, ChangesThatFlagAndNoOther)
{
    for (int before = 0; before <= 0xFFFF; before += 257)
        expectChangeOf(static_cast<UInt16>(before));
    for (int bit = 0; bit < 16; ++bit)
    {
        expectChangeOf(static_cast<UInt16>(1 << bit));
        expectChangeOf(static_cast<UInt16>(~(1 << bit)));
    }
}

TEST_P(CatalogFlag, AppliesToFoldersToo)
{
    const FlagCase &row = GetParam();
    setFinderFlags("nested", row.sets ? 0 : 0xFFFF);
    EXPECT_EQ(row.function(&nested), noErr);
    EXPECT_EQ(fileInfoOf("nested").finderFlags, row.sets ? row.flag : 0xFFFF ^ row.flag);
}

INSTANTIATE_TEST_SUITE_P(Rows, CatalogFlag, testing::ValuesIn(flagCases), rowName);

// The change has been made; its parent's date and the notice of it are only a courtesy.
TEST_F(CatalogFinder, ChangeStandsWhenItsParentsDateCannotBeBumped)
{
    for (int nth = 3; nth <= 6; ++nth)
    {
        SCOPED_TRACE(changeOfFile[static_cast<std::size_t>(nth - 1)]);
        setFinderFlags("file", 0);
        platform.forgetCalls();
        platform.failCall(nth, ioErr);
        EXPECT_EQ(FSSetInvisible(&file), noErr);
        EXPECT_TRUE(platform.failureReached());
        EXPECT_EQ(platform.calls().size(), static_cast<std::size_t>(nth)) << "no step follows a failed one";
        EXPECT_EQ(fileInfoOf("file").finderFlags, kIsInvisible);
    }
}

TEST_F(CatalogFinder, FailedChangeLeavesTheParentsDateAlone)
{
    const FSCatalogInfo folderBefore = infoOf("folder");
    platform.failEvery("FSSetCatalogInfo", fLckdErr);
    EXPECT_EQ(FSSetInvisible(&file), fLckdErr);
    EXPECT_EQ(FSChangeFinderFlags(&file, 1, 1), fLckdErr);
    EXPECT_EQ(platform.calls(), (Calls{changeOfFile[0], changeOfFile[1], changeOfFile[0], changeOfFile[1]}));
    EXPECT_TRUE(sameBytes(infoOf("folder"), folderBefore));
}

}   // namespace
