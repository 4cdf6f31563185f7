// Walks: which objects the filter sees, in which order, what comes with them, and what ends a walk.

#include "tests/contract/containers_fixture.h"

#include <set>

namespace
{

// What a test's filter works with. Every visit becomes a line among those of the platform's calls.
struct FilterData
{
    std::string stopAt = "nothing";
    Boolean stoppingAnswer = 1;
    bool deletesFiles = false;
    std::vector<FSCatalogInfo> records = {};
};

std::string shown(const FSSpec *spec)
{
    return spec == nullptr ? "-" : decimal(spec->vRefNum) + ':' + decimal(spec->parID) + ':' + plainText(spec->name);
}

std::string shown(const HFSUniStr255 *name)
{
    return name == nullptr ? "-" : '"' + textOf(name->unicode, name->length) + '"';
}

Boolean filter(Boolean containerChanged, UInt32 currentLevel, const FSCatalogInfo *catalogInfo, const FSRef *ref, const FSSpec *spec,
               const HFSUniStr255 *name, void *yourDataPtr)
{
    PlatformDouble &platform = PlatformDouble::current();
    FilterData &data = *static_cast<FilterData *>(yourDataPtr);
    const std::string object = platform.files.describe(ref);
    platform.note("filter", {decimal(containerChanged), decimal(currentLevel), object, shown(spec), shown(name)});
    data.records.push_back(*catalogInfo);
    if (data.deletesFiles && !(catalogInfo->nodeFlags & kFSNodeIsDirectoryMask))
        FSDeleteObject(ref);
    return object == "ref:" + data.stopAt ? data.stoppingAnswer : Boolean{0};
}

std::string opening(const std::string &label)
{
    return "FSOpenIterator(ref:" + label + ", 0x0, iterator)";
}

std::string fetching(const std::string &label, const std::string &whichInfo = "0x2", const std::string &spec = "-",
                     const std::string &name = "-")
{
    return "FSGetCatalogInfoBulk(iterator:" + label + ", 1, actual, changed, " + whichInfo + ", info, refs, " + spec + ", " + name + ")";
}

std::string closing(const std::string &label)
{
    return "FSCloseIterator(iterator:" + label + ")";
}

std::string visit(int level, const std::string &label, int changed = 0)
{
    return "filter(" + std::to_string(changed) + ", " + std::to_string(level) + ", ref:" + label + ", -, -)";
}

class ContainersWalking : public ContainersTest
{
protected:
    OSErr walk(const std::string &label, UInt32 maxLevels = 0)
    {
        return FSIterateContainer(&platform.files.ref(label), maxLevels, kFSCatInfoNone, false, false, filter, &data);
    }

    Calls visits()
    {
        Calls lines;
        for (const std::string &line : platform.calls())
            if (line.starts_with("filter("))
                lines.push_back(line);
        return lines;
    }

    FilterData data;
};

const Calls wholeWalk = {
    opening("root"),    fetching("root"),   visit(1, "folder"), opening("folder"),  fetching("folder"), visit(2, "file"),
    fetching("folder"), visit(2, "nested"), opening("nested"),  fetching("nested"), visit(3, "inner"),  fetching("nested"),
    closing("nested"),  fetching("folder"), closing("folder"),  fetching("root"),   closing("root"),
};

TEST_F(ContainersWalking, AFolderComesBeforeItsItems)
{
    EXPECT_EQ(walk("root"), noErr);
    EXPECT_EQ(platform.calls(), wholeWalk);
    EXPECT_EQ(platform.iterators.mostEverOpen, 3u);
}

TEST_F(ContainersWalking, ALevelGoesOnAfterTheFoldersInIt)
{
    add("last", "root", false);
    add("later", "folder", false);
    EXPECT_EQ(walk("root"), noErr);
    EXPECT_EQ(visits(),
              (Calls{visit(1, "folder"), visit(2, "file"), visit(2, "nested"), visit(3, "inner"), visit(2, "later"), visit(1, "last")}));
}

TEST_F(ContainersWalking, AnEmptyContainerShowsNothing)
{
    add("empty", "root", true);
    EXPECT_EQ(walk("empty"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{opening("empty"), fetching("empty"), closing("empty")}));
}

TEST_F(ContainersWalking, WithoutAFilterThereIsNoWalk)
{
    EXPECT_EQ(FSIterateContainer(&platform.files.ref("root"), 0, 0, false, false, nullptr, &data), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(ContainersWalking, AFileIsForThePlatformToRefuse)
{
    EXPECT_EQ(walk("file"), errFSNotAFolder);
    EXPECT_EQ(platform.calls(), Calls{opening("file")});
}

TEST_F(ContainersWalking, SpecsAndNamesComeIfTheyAreWanted)
{
    struct Row
    {
        Boolean wantSpec, wantName;
        const char *spec, *name, *line;
    };
    for (const Row &row :
         {Row{0, 0, "-", "-", "filter(0, 1, ref:file, -, -)"}, Row{1, 0, "spec", "-", "filter(0, 1, ref:file, -100:17:file, -)"},
          Row{0, 1, "-", "name", "filter(0, 1, ref:file, -, \"file\")"},
          Row{0x80, 2, "spec", "name", "filter(0, 1, ref:file, -100:17:file, \"file\")"}})
    {
        SCOPED_TRACE(row.line);
        platform.forgetCalls();
        EXPECT_EQ(FSIterateContainer(&platform.files.ref("folder"), 1, 0, row.wantSpec, row.wantName, filter, &data), noErr);
        EXPECT_EQ(platform.calls()[1], fetching("folder", "0x2", row.spec, row.name));
        EXPECT_EQ(platform.calls()[2], row.line);
    }
}

TEST_F(ContainersWalking, TheFilterGetsTheFieldsAskedForAndAlwaysTheNodeFlags)
{
    for (const FSCatalogInfoBitmap whichInfo : {0x0u, 0x2u, 0x10u, 0x3FFFFu, 0x3FFFDu})
    {
        SCOPED_TRACE(hex(whichInfo));
        platform.forgetCalls();
        data.records.clear();
        EXPECT_EQ(FSIterateContainer(&platform.files.ref("nested"), 0, whichInfo, false, false, filter, &data), noErr);
        EXPECT_EQ(platform.calls()[1], fetching("nested", hex(whichInfo | 2)));
        FSCatalogInfo expected;
        std::memset(static_cast<void *>(&expected), 0xA5, sizeof expected);
        copyCatalogFields(whichInfo | 2, infoOf("inner"), expected);
        ASSERT_EQ(data.records.size(), 1u);
        EXPECT_EQ(std::memcmp(&data.records[0], &expected, sizeof expected), 0);
    }
}

TEST_F(ContainersWalking, LevelsBelowTheLimitAreNotOpened)
{
    struct Row
    {
        UInt32 maxLevels;
        std::set<std::string> opened;
        std::size_t visits;
    };
    for (const Row &row : {Row{1, {"root"}, 1}, Row{2, {"root", "folder"}, 3}, Row{3, {"root", "folder", "nested"}, 4},
                           Row{4, {"root", "folder", "nested"}, 4}, Row{0xFFFFFFFF, {"root", "folder", "nested"}, 4},
                           Row{0, {"root", "folder", "nested"}, 4}})
    {
        SCOPED_TRACE(row.maxLevels);
        platform.forgetCalls();
        EXPECT_EQ(walk("root", row.maxLevels), noErr);
        std::set<std::string> opened;
        for (const char *label : {"root", "folder", "nested"})
            if (std::count(platform.calls().begin(), platform.calls().end(), opening(label)) == 1)
                opened.insert(label);
        EXPECT_EQ(opened, row.opened);
        EXPECT_EQ(visits().size(), row.visits);
        EXPECT_EQ(openIterators(), 0u);
    }
}

TEST_F(ContainersWalking, LevelsAreCountedDownAgainOnTheWayOut)
{
    add("second", "root", true);
    add("inSecond", "second", true);
    add("deepInSecond", "inSecond", false);
    EXPECT_EQ(walk("root", 2), noErr);
    EXPECT_EQ(visits(), (Calls{visit(1, "folder"), visit(2, "file"), visit(2, "nested"), visit(1, "second"), visit(2, "inSecond")}));
}

TEST_F(ContainersWalking, TheFilterEndsTheWholeWalk)
{
    const std::pair<const char *, std::size_t> rows[] = {{"folder", 3}, {"file", 6}, {"nested", 8}, {"inner", 11}};
    for (const auto &[label, callsUntilThen] : rows)
        for (const Boolean answer : {Boolean{1}, Boolean{2}, Boolean{0x80}})
        {
            SCOPED_TRACE(label);
            platform.forgetCalls();
            data.stopAt = label;
            data.stoppingAnswer = answer;
            EXPECT_EQ(walk("root"), noErr);
            Calls expected(wholeWalk.begin(), wholeWalk.begin() + static_cast<std::ptrdiff_t>(callsUntilThen));
            for (const char *level : {"nested", "folder", "root"})
                if (std::count(expected.begin(), expected.end(), opening(level)) != 0)
                    expected.push_back(closing(level));
            EXPECT_EQ(platform.calls(), expected);
        }
}

TEST_F(ContainersWalking, TheFilterMayDeleteFilesAsTheyCome)
{
    data.deletesFiles = true;
    EXPECT_EQ(walk("root"), noErr);
    EXPECT_EQ(visits(), (Calls{visit(1, "folder"), visit(2, "file"), visit(2, "nested"), visit(3, "inner")}));
    EXPECT_FALSE(exists("file"));
    EXPECT_FALSE(exists("inner"));
}

TEST_F(ContainersWalking, TheChangedFlagIsThatOfTheLevelAndTheMoment)
{
    platform.iterators.nextBulkAnswers = {{noErr, 1, 1}, {noErr, 1, 0}, {noErr, 1, 1}, {noErr, 1, 0}};
    EXPECT_EQ(walk("root"), noErr);
    EXPECT_EQ(visits(), (Calls{visit(1, "folder", 1), visit(2, "file", 0), visit(2, "nested", 1), visit(3, "inner", 0)}));
}

TEST_F(ContainersWalking, AnObjectThatComesWithTheEndIsSeen)
{
    platform.iterators.lastItemComesWithTheEnd = true;
    EXPECT_EQ(walk("nested"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{opening("nested"), fetching("nested"), visit(1, "inner"), closing("nested")}));
}

// The level inside leaves noErr behind, so the level that has come to its end asks once more. It does no harm.
TEST_F(ContainersWalking, AFolderThatComesWithTheEndIsWalked)
{
    platform.iterators.lastItemComesWithTheEnd = true;
    EXPECT_EQ(walk("folder"), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{opening("folder"), fetching("folder"), visit(1, "file"), fetching("folder"), visit(1, "nested"), opening("nested"),
                     fetching("nested"), visit(2, "inner"), closing("nested"), fetching("folder"), closing("folder")}));
    platform.forgetCalls();
    EXPECT_EQ(walk("folder", 1), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{opening("folder"), fetching("folder"), visit(1, "file"), fetching("folder"), visit(1, "nested"), closing("folder")}))
        << "where the level inside is not entered, the end stands";
}

TEST_F(ContainersWalking, AFetchWithoutObjectsIsNoEnd)
{
    platform.iterators.nextBulkAnswers = {{noErr, 0}, {noErr, 1}, {noErr, 0}};
    EXPECT_EQ(walk("nested"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{opening("nested"), fetching("nested"), fetching("nested"), visit(1, "inner"), fetching("nested"),
                                       fetching("nested"), closing("nested")}));
}

TEST_F(ContainersWalking, AnObjectThatComesWithAFailureIsNotSeen)
{
    for (const OSErr code : {someCode, afpAccessDenied})
    {
        platform.forgetCalls();
        platform.iterators.nextBulkAnswers = {{code, 1}};
        EXPECT_EQ(walk("nested"), code == afpAccessDenied ? noErr : code);
        EXPECT_EQ(platform.calls(), (Calls{opening("nested"), fetching("nested"), closing("nested")}));
    }
}

TEST_F(ContainersWalking, AFolderThatMayNotBeReadCountsAsEmpty)
{
    add("later", "folder", false);
    platform.failLine(fetching("nested"), afpAccessDenied);
    EXPECT_EQ(walk("root"), noErr);
    EXPECT_EQ(visits(), (Calls{visit(1, "folder"), visit(2, "file"), visit(2, "nested"), visit(2, "later")}));

    platform.forgetCalls();
    EXPECT_EQ(walk("nested"), noErr) << "the container that the walk begins with, too";
    EXPECT_EQ(platform.calls(), (Calls{opening("nested"), fetching("nested"), closing("nested")}));
}

TEST_F(ContainersWalking, AFolderThatCannotBeReadForAnotherReasonEndsTheWalk)
{
    add("later", "folder", false);
    platform.failLine(fetching("nested"), someCode);
    EXPECT_EQ(walk("root"), someCode);
    EXPECT_EQ(visits(), (Calls{visit(1, "folder"), visit(2, "file"), visit(2, "nested")}));
    EXPECT_EQ(openIterators(), 0u);
}

TEST_F(ContainersWalking, AFolderThatMayNotBeOpenedEndsTheFolderAroundItButNotTheNextOne)
{
    add("later", "folder", false);
    add("last", "root", false);
    for (const OSErr code : {afpAccessDenied, errFSNoMoreItems})
    {
        SCOPED_TRACE(code);
        platform.forgetCalls();
        platform.failLine(opening("nested"), code);
        EXPECT_EQ(walk("root"), noErr);
        EXPECT_EQ(visits(), (Calls{visit(1, "folder"), visit(2, "file"), visit(2, "nested"), visit(1, "last")}));
        EXPECT_EQ(openIterators(), 0u);
    }
}

TEST_F(ContainersWalking, AFolderThatCannotBeOpenedForAnotherReasonEndsTheWalk)
{
    add("last", "root", false);
    platform.failLine(opening("nested"), someCode);
    EXPECT_EQ(walk("root"), someCode);
    EXPECT_EQ(platform.calls(),
              (Calls{opening("root"), fetching("root"), visit(1, "folder"), opening("folder"), fetching("folder"), visit(2, "file"),
                     fetching("folder"), visit(2, "nested"), opening("nested"), closing("folder"), closing("root")}));
}

TEST_F(ContainersWalking, NothingIsForgivenToOpeningTheFirstContainer)
{
    for (const OSErr code : {someCode, afpAccessDenied, errFSNoMoreItems, nsvErr})
    {
        platform.forgetCalls();
        platform.failEvery("FSOpenIterator", code);
        EXPECT_EQ(walk("root"), code);
        EXPECT_EQ(platform.calls(), Calls{opening("root")});
    }
}

TEST_F(ContainersWalking, EachCallFailingEndsTheWalkUnlessItOnlyClosesAnIterator)
{
    for (void (Recorder::*fail)(int, OSStatus) : {&Recorder::failCall, &Recorder::failFromCall})
        for (int nth = 1;; ++nth)
        {
            platform.forgetCalls();
            (platform.*fail)(nth, someCode);
            const OSErr result = walk("root");
            EXPECT_EQ(openIterators(), 0u);
            if (!platform.failureReached())
            {
                EXPECT_EQ(result, noErr);
                EXPECT_EQ(nth, 14);
                break;
            }
            SCOPED_TRACE(platform.failedCall());
            const bool isClosing = platform.failedCall().starts_with("FSCloseIterator");
            const bool isLast = platform.failedCall() == closing("root");
            const bool allFail = fail == &Recorder::failFromCall;
            EXPECT_EQ(result, isClosing && (isLast || !allFail) ? noErr : someCode);
        }
}

TEST_F(ContainersWalking, ALevelTakesLittleOfTheStack)
{
    addLevels(100);
    EXPECT_EQ(walk("nested"), noErr);
    EXPECT_EQ(platform.iterators.mostEverOpen, 101u);
    EXPECT_GT(stackOfALevel(), 0u);
    EXPECT_LT(stackOfALevel(), allowedStackOfALevel);
}

}   // namespace
