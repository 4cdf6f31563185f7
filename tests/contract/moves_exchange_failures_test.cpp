// FSExchangeObjectsCompat as it fails: what each step's failure undoes, in which order, and who is named afterwards.

#include "tests/contract/exchange_fixture.h"

namespace
{

// What follows when the call of this number fails: if all of it succeeds, and if all of it fails too.
struct RollBack
{
    int failing;
    Calls whenItSucceeds, whenItFails;
    bool restoresSource, restoresDestination;
};

class MovesExchangeFailures : public ExchangeTest
{
protected:
    void startAfresh()
    {
        platform.files = FilesDouble();
        platform.files.spoilsRecords = false;
        addOther();
        platform.forgetCalls();
        newSource = newDestination = {};
    }

    std::vector<RollBack> rollBacksBetweenFolders() const
    {
        const TextEncoding ofFile = hintOfFile, ofInner = hintOfInner;
        const std::string s = "newSource", d = "newDestination";
        return {
            {1, {}, {}, false, false},
            {3, {}, {}, false, false},
            {4, {}, {}, false, false},
            {5, {}, {}, false, false},
            {6, {}, {}, false, false},
            {7, {}, {}, false, false},
            {8, {}, {}, false, false},
            {9, {}, {}, false, false},
            {10, {renaming("file#1", "file", ofFile, s)}, {renaming("file#1", "file", ofFile, s)}, false, false},
            {11,
             {renaming("inner#1", "inner", ofInner, d), renaming("file#1", "file", ofFile, s)},
             {renaming("inner#1", "inner", ofInner, d), renaming("file#1", "file", ofFile, s)},
             false,
             false},
            {12,
             {moving("file#2", "folder", s), renaming("inner#1", "inner", ofInner, d), renaming("file#3", "file", ofFile, s)},
             {moving("file#2", "folder", s), renaming("inner#1", "inner", ofInner, d), renaming("file#2", "file", ofFile, s)},
             false,
             false},
            {13,
             {moving("inner#2", "nested", d), moving("file#2", "folder", s), renaming("inner#3", "inner", ofInner, d),
              renaming("file#3", "file", ofFile, s)},
             {moving("inner#2", "nested", d), moving("file#2", "folder", s), renaming("inner#2", "inner", ofInner, d),
              renaming("file#2", "file", ofFile, s)},
             false,
             false},
            {14,
             {restoring("file#2"), moving("inner#2", "nested", d), moving("file#2", "folder", s), renaming("inner#3", "inner", ofInner, d),
              renaming("file#3", "file", ofFile, s)},
             {restoring("file#2"), moving("inner#2", "nested", d), moving("file#2", "folder", s), renaming("inner#2", "inner", ofInner, d),
              renaming("file#2", "file", ofFile, s)},
             true,
             false},
            {15,
             {restoring("inner#2"), restoring("file#2"), moving("inner#2", "nested", d), moving("file#2", "folder", s),
              renaming("inner#3", "inner", ofInner, d), renaming("file#3", "file", ofFile, s)},
             {restoring("inner#2"), restoring("file#2"), moving("inner#2", "nested", d), moving("file#2", "folder", s),
              renaming("inner#2", "inner", ofInner, d), renaming("file#2", "file", ofFile, s)},
             true,
             true},
            {16,
             {renaming("file#3", "3D1F5A27", noHint, s), restoring("inner#2"), restoring("file#4"), moving("inner#2", "nested", d),
              moving("file#4", "folder", s), renaming("inner#3", "inner", ofInner, d), renaming("file#5", "file", ofFile, s)},
             {renaming("file#3", "3D1F5A27", noHint, s), restoring("inner#2"), restoring("file#3"), moving("inner#2", "nested", d),
              moving("file#3", "folder", s), renaming("inner#2", "inner", ofInner, d), renaming("file#3", "file", ofFile, s)},
             true,
             true},
        };
    }

    std::vector<RollBack> rollBacksWithinAFolder() const
    {
        const TextEncoding ofFile = hintOfFile, ofOther = hintOfOther;
        const std::string s = "newSource", d = "newDestination";
        const Calls names = {renaming("other#1", "other", ofOther, d), renaming("file#1", "file", ofFile, s)};
        return {
            {9, {}, {}, false, false},
            {10, {renaming("file#1", "file", ofFile, s)}, {renaming("file#1", "file", ofFile, s)}, false, false},
            {11, names, names, false, false},
            {12, {restoring("file#1"), names[0], names[1]}, {restoring("file#1"), names[0], names[1]}, true, false},
            {13,
             {restoring("other#1"), restoring("file#1"), names[0], names[1]},
             {restoring("other#1"), restoring("file#1"), names[0], names[1]},
             true,
             true},
            {14,
             {renaming("file#2", "3D1F5A27", noHint, s), restoring("other#1"), restoring("file#3"), names[0],
              renaming("file#3", "file", ofFile, s)},
             {renaming("file#2", "3D1F5A27", noHint, s), restoring("other#1"), restoring("file#2"), names[0],
              renaming("file#2", "file", ofFile, s)},
             true,
             true},
        };
    }

    // The record that was there at first; where it was written back, with no modification dates.
    static FSCatalogInfo recordAfter(FSCatalogInfo before, bool restored)
    {
        if (restored)
            before.contentModDate = before.attributeModDate = UTCDateTime{};
        return before;
    }
};

TEST_F(MovesExchangeFailures, EachFailingStepIsUndoneFromThereBack)
{
    const FSCatalogInfo fileBefore = infoOf("file"), innerBefore = infoOf("inner");
    for (const RollBack &row : rollBacksBetweenFolders())
    {
        SCOPED_TRACE(row.failing);
        startAfresh();
        platform.failCall(row.failing, someCode);
        EXPECT_EQ(exchange(), someCode);
        EXPECT_EQ(stepsAfter(row.failing), row.whenItSucceeds);
        EXPECT_EQ(placeOf("file"), "folder:file");
        EXPECT_EQ(placeOf("inner"), "nested:inner");
        EXPECT_EQ(newSource, platform.files.ref("file"));
        EXPECT_EQ(newDestination, platform.files.ref("inner"));
        EXPECT_TRUE(sameBytes(infoOf("file"), recordAfter(fileBefore, row.restoresSource)));
        EXPECT_TRUE(sameBytes(infoOf("inner"), recordAfter(innerBefore, row.restoresDestination)));
    }
}

TEST_F(MovesExchangeFailures, WithinAFolderNothingIsMovedBack)
{
    const FSCatalogInfo fileBefore = infoOf("file"), otherBefore = infoOf("other");
    for (const RollBack &row : rollBacksWithinAFolder())
    {
        SCOPED_TRACE(row.failing);
        startAfresh();
        platform.failCall(row.failing, someCode);
        EXPECT_EQ(exchangeInOneFolder(), someCode);
        EXPECT_EQ(stepsAfter(row.failing), row.whenItSucceeds);
        EXPECT_EQ(placeOf("file"), "folder:file");
        EXPECT_EQ(placeOf("other"), "folder:other");
        EXPECT_EQ(newSource, platform.files.ref("file"));
        EXPECT_EQ(newDestination, platform.files.ref("other"));
        EXPECT_TRUE(sameBytes(infoOf("file"), recordAfter(fileBefore, row.restoresSource)));
        EXPECT_TRUE(sameBytes(infoOf("other"), recordAfter(otherBefore, row.restoresDestination)));
    }
}

TEST_F(MovesExchangeFailures, WhereEverythingFailsEveryStepBackIsStillTried)
{
    for (const RollBack &row : rollBacksBetweenFolders())
    {
        SCOPED_TRACE(row.failing);
        startAfresh();
        platform.failFromCall(row.failing, someCode);
        EXPECT_EQ(exchange(), someCode);
        EXPECT_EQ(stepsAfter(row.failing), row.whenItFails);
        EXPECT_EQ(newSource, platform.files.ref("file"));
        EXPECT_EQ(newDestination, platform.files.ref("inner"));
    }
    for (const RollBack &row : rollBacksWithinAFolder())
    {
        SCOPED_TRACE(row.failing);
        startAfresh();
        platform.failFromCall(row.failing, someCode);
        EXPECT_EQ(exchangeInOneFolder(), someCode);
        EXPECT_EQ(stepsAfter(row.failing), row.whenItFails);
        EXPECT_EQ(newSource, platform.files.ref("file"));
        EXPECT_EQ(newDestination, platform.files.ref("other"));
    }
}

std::string withoutGeneration(std::string line)
{
    const std::size_t position = line.find('#');
    return position == std::string::npos ? line : line.erase(position, 2);
}

// A reference moves on only with what succeeds, so that the later steps back and the outputs find both files.
TEST_F(MovesExchangeFailures, OneStepBackThatFailsStopsNoOther)
{
    for (const RollBack &row : rollBacksBetweenFolders())
        for (const std::string &alsoFailing : row.whenItSucceeds)
        {
            SCOPED_TRACE(std::to_string(row.failing) + ", " + alsoFailing);
            startAfresh();
            platform.failCall(row.failing, someCode);
            platform.failLine(alsoFailing, ioErr);
            EXPECT_EQ(exchange(), someCode) << "not the code of the step back";
            Calls made = stepsAfter(row.failing), expected = row.whenItSucceeds;
            std::transform(made.begin(), made.end(), made.begin(), withoutGeneration);
            std::transform(expected.begin(), expected.end(), expected.begin(), withoutGeneration);
            EXPECT_EQ(made, expected);
            EXPECT_EQ(newSource, platform.files.ref("file"));
            EXPECT_EQ(newDestination, platform.files.ref("inner"));
            platform.failLine(alsoFailing, noErr);
        }
}

TEST_F(MovesExchangeFailures, StepsBackTakeTheReferenceThatTheLastSuccessMade)
{
    platform.failCall(16, someCode);
    platform.failLine(moving("inner#2", "nested", "newDestination"), ioErr);
    EXPECT_EQ(exchange(), someCode);
    EXPECT_EQ(stepsAfter(20), (Calls{moving("file#4", "folder", "newSource"), renaming("inner#2", "inner", hintOfInner, "newDestination"),
                                     renaming("file#5", "file", hintOfFile, "newSource")}));
    EXPECT_EQ(placeOf("inner"), "folder:inner");
    EXPECT_EQ(placeOf("file"), "folder:file");
}

TEST_F(MovesExchangeFailures, AVolumeThatDoesNotAnswerIsNoFailure)
{
    platform.failCall(2, someCode);
    EXPECT_EQ(exchange(), noErr);
    EXPECT_EQ(steps(), exchangeBetweenFolders());
}

TEST_F(MovesExchangeFailures, ALookUpMayFailForOneReasonOnly)
{
    for (int nth = 5; nth <= 8; ++nth)
    {
        startAfresh();
        platform.failCall(nth, fnfErr);
        EXPECT_EQ(exchange(), noErr);
    }
}

}   // namespace
