// FSMoveRenameObjectUnicode: the way over a temporary name, and the way back from each of its steps.

#include "tests/contract/moves_fixture.h"

namespace
{

const std::string readDirectory = "FSGetCatalogInfo(ref:nested, 0x4, info, -, -, -)";
const std::string readObject = "FSGetCatalogInfo(ref:file, 0x5, info, name, -, parent)";
const std::string first = "3D1F5A27";

class MovesInSteps : public MovesTest
{
protected:
    OSErr move() { return FSMoveRenameObjectUnicode(&file, &nested, 6, letter, 0x12345, &newRef); }

    static constexpr UniChar letter[] = {'L', 'e', 0x2026, 't', 'e', 'r'};
};

TEST_F(MovesInSteps, RenamesMovesAndRenames)
{
    EXPECT_EQ(move(), noErr);
    EXPECT_EQ(steps(),
              (Calls{readDirectory, readObject, lookup("folder", first), lookup("nested", first), renaming("file", first, noHint, "new"),
                     moving("file#1", "nested", "new"), renaming("file", "Le\\u2026ter", 0x12345, "new")}))
        << "the last step takes the reference that the caller passed";
    EXPECT_EQ(placeOf("file"), "nested:Le\\u2026ter");
    EXPECT_EQ(newRef, platform.files.ref("file"));
    EXPECT_EQ(platform.files.describe(&newRef), "ref:file#3");
}

TEST_F(MovesInSteps, AFolderIsMovedLikeAFile)
{
    const FSRef root = platform.files.ref("root");
    EXPECT_EQ(FSMoveRenameObjectUnicode(&nested, &root, 6, letter, 0, &newRef), noErr);
    EXPECT_EQ(placeOf("nested"), "root:Le\\u2026ter");
    EXPECT_EQ(newRef, platform.files.ref("nested"));
}

TEST_F(MovesInSteps, WithinItsFolderItIsLookedUpTwice)
{
    EXPECT_EQ(FSMoveRenameObjectUnicode(&file, &folder, 6, letter, 0, &newRef), noErr);
    EXPECT_EQ(stepsAfter(2), (Calls{lookup("folder", first), lookup("folder", first), renaming("file", first, noHint, "new"),
                                    moving("file#1", "folder", "new"), renaming("file", "Le\\u2026ter", 0, "new")}));
}

TEST_F(MovesInSteps, WithoutANameItIsOnlyMoved)
{
    EXPECT_EQ(FSMoveRenameObjectUnicode(&file, &nested, 6, nullptr, 0, &newRef), noErr);
    EXPECT_EQ(platform.calls(), (Calls{"BlockMoveData(ref:file, new, 80)", readDirectory, readObject, moving("file", "nested", "new")}));
    EXPECT_EQ(placeOf("file"), "nested:file");
    EXPECT_EQ(newRef, platform.files.ref("file"));
}

TEST_F(MovesInSteps, AnEmptyNameIsAName)
{
    EXPECT_EQ(FSMoveRenameObjectUnicode(&file, &nested, 0, letter, 0, &newRef), bdNamErr);
    EXPECT_EQ(placeOf("file"), "folder:file") << "the way back was gone";
    EXPECT_EQ(newRef, platform.files.ref("file"));
    EXPECT_EQ(platform.files.describe(&newRef), "ref:file#4");
}

TEST_F(MovesInSteps, TheOutputIsRequired)
{
    EXPECT_EQ(FSMoveRenameObjectUnicode(&file, &nested, 6, letter, 0, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
}

TEST_F(MovesInSteps, OtherVolumesAreRefused)
{
    infoOf("nested").volume = -101;
    EXPECT_EQ(move(), diffVolErr);
    EXPECT_EQ(steps(), (Calls{readDirectory, readObject}));
    EXPECT_EQ(newRef, file);
}

TEST_F(MovesInSteps, TheTemporaryNameIsFreeInBothFolders)
{
    add("a", "3D1F5A27", "folder");
    add("b", "3D1F5A28", "nested");
    add("c", "3D1F5A29", "folder");
    add("d", "3D1F5A29", "nested");
    add("e", "3D1F5A2B", "nested");
    EXPECT_EQ(move(), noErr);
    EXPECT_EQ(stepsAfter(2),
              (Calls{lookup("folder", "3D1F5A27"), lookup("folder", "3D1F5A28"), lookup("nested", "3D1F5A28"), lookup("folder", "3D1F5A29"),
                     lookup("folder", "3D1F5A2A"), lookup("nested", "3D1F5A2A"), renaming("file", "3D1F5A2A", noHint, "new"),
                     moving("file#1", "nested", "new"), renaming("file", "Le\\u2026ter", 0x12345, "new")}));
}

TEST_F(MovesInSteps, TheTemporaryNamesGoOnInHexadecimal)
{
    for (UInt32 number = 0x3D1F5A27; number < 0x3D1F5B02; ++number)
        add("taken " + std::to_string(number), hex(number).substr(2), number % 2 == 0 ? "folder" : "nested");
    EXPECT_EQ(move(), noErr);
    const Calls lines = steps();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](const std::string &line) { return line.starts_with("PBMake"); }),
              109 + 2 * 110 + 2);
    EXPECT_NE(std::find(lines.begin(), lines.end(), renaming("file", "3D1F5B02", noHint, "new")), lines.end());
}

TEST_F(MovesInSteps, EveryCallStartsFromTheSameTemporaryName)
{
    EXPECT_EQ(move(), noErr);
    platform.forgetCalls();
    EXPECT_EQ(FSMoveRenameObjectUnicode(&inner, &folder, 6, letter, 0, &newRef), noErr);
    EXPECT_EQ(steps()[2], lookup("nested", first));
}

TEST_F(MovesInSteps, ALookUpThatFailsEndsItWhereverItIsMade)
{
    add("a", "3D1F5A27", "nested");
    for (const auto &[failing, lookups] : {std::pair{lookup("folder", "3D1F5A27"), 1},
                                           {lookup("nested", "3D1F5A27"), 2},
                                           {lookup("folder", "3D1F5A28"), 3},
                                           {lookup("nested", "3D1F5A28"), 4}})
        for (const OSErr code : {someCode, dirNFErr, errFSNoMoreItems})
        {
            SCOPED_TRACE(failing);
            platform.forgetCalls();
            platform.failLine(failing, code);
            EXPECT_EQ(move(), code);
            EXPECT_EQ(steps().size(), static_cast<std::size_t>(2 + lookups));
            EXPECT_EQ(newRef, file);
            platform.failLine(failing, noErr);
        }
}

// What follows each failing call, whether or not the way back is open.
struct WayBack
{
    int failing;
    Calls whenItSucceeds, whenItFails;
    const char *place, *placeWhenItFails;
};

TEST_F(MovesInSteps, EachFailingStepIsUndoneAsFarAsPossible)
{
    const TextEncoding hint = hintOfFile;
    const WayBack rows[] = {
        {1, {}, {}, "folder:file", "folder:file"},
        {2, {}, {}, "folder:file", "folder:file"},
        {3, {}, {}, "folder:file", "folder:file"},
        {4, {}, {}, "folder:file", "folder:file"},
        {5, {}, {}, "folder:file", "folder:file"},
        {6, {renaming("file#1", "file", hint, "new")}, {renaming("file#1", "file", hint, "new")}, "folder:file", "folder:3D1F5A27"},
        {7,
         {moving("file#2", "folder", "new"), renaming("file#3", "file", hint, "new")},
         {moving("file#2", "folder", "new"), renaming("file#2", "file", hint, "new")},
         "folder:file",
         "nested:3D1F5A27"},
    };
    for (const WayBack &row : rows)
        for (const bool wayBackFails : {false, true})
        {
            SCOPED_TRACE(row.failing);
            platform.files = FilesDouble();
            platform.forgetCalls();
            if (wayBackFails)
                platform.failFromCall(row.failing, someCode);
            else
                platform.failCall(row.failing, someCode);
            EXPECT_EQ(move(), someCode);
            EXPECT_EQ(stepsAfter(row.failing), wayBackFails ? row.whenItFails : row.whenItSucceeds);
            EXPECT_EQ(placeOf("file"), wayBackFails ? row.placeWhenItFails : row.place);
            EXPECT_EQ(newRef, platform.files.ref("file")) << "the output names the file where it stands";
        }
}

TEST_F(MovesInSteps, TheWayBackGoesOnAfterAFailureOnIt)
{
    platform.failCall(7, someCode);
    platform.failLine(moving("file#2", "folder", "new"), ioErr);
    EXPECT_EQ(move(), someCode) << "not the code of the way back";
    EXPECT_EQ(placeOf("file"), "nested:file");
    EXPECT_EQ(newRef, platform.files.ref("file"));
}

TEST_F(MovesInSteps, TheEncodingIsBackWithTheName)
{
    platform.failCall(7, someCode);
    EXPECT_EQ(move(), someCode);
    EXPECT_EQ(valueOf(infoOf("file").textEncodingHint), hintOfFile);
}

TEST_F(MovesInSteps, AMoveWithoutANameThatFailsLeavesTheCopy)
{
    for (int nth = 1; nth <= 3; ++nth)
    {
        newRef = {};
        platform.failCall(nth, someCode);
        EXPECT_EQ(FSMoveRenameObjectUnicode(&file, &nested, 0, nullptr, 0, &newRef), someCode);
        EXPECT_EQ(newRef, file);
    }
}

}   // namespace
