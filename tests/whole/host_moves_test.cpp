// The host's commands that move, rename, exchange and delete: mv, rename, swap and rm.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class HostMoves : public HostTest
{
protected:
    bool exists(const std::string &name) const { return std::filesystem::exists(std::filesystem::symlink_status(path(name))); }

    std::string contents(const std::string &name) const
    {
        std::ifstream stream(path(name));
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    Outcome zerbOn(const std::string &volumeOptions, const Words &words) const
    {
        return zerb(words, {"ZERB_STARTUP_VOLUME=" + folder().path() + volumeOptions});
    }
};

using HostMv = HostMoves;
using HostRename = HostMoves;
using HostSwap = HostMoves;

// ---------------------------------------------------------------------------------------------------------------------
// mv

TEST_F(HostMv, MovesSeveralObjectsWithAllThatBelongsToThem)
{
    makeFile("Letter", "12345");
    makeFolder("Inner");
    makeFile("Inner/leaf");
    makeFolder("Folder");
    zerbWell({"set", "--type", "TEXT", "Letter"});
    EXPECT_EQ(zerbWell({"mv", "-v", "Letter", "Inner", "Folder"}),
              "Letter -> Folder/Letter, by moving\nInner -> Folder/Inner, by moving\n");
    EXPECT_FALSE(exists("Letter"));
    EXPECT_TRUE(exists("Folder/Inner/leaf"));
    EXPECT_EQ(info("Folder/Letter")["finder"]["type"], "TEXT");
}

TEST_F(HostMv, GivesANameInOneStepWhereTheVolumeCan)
{
    makeFile("Letter");
    makeFolder("Folder");
    EXPECT_EQ(zerbWell({"mv", "-v", "Letter", "--name", "Brief", "Folder"}), "Letter -> Folder/Brief, in one step\n");
    EXPECT_EQ(zerbWell({"mv", "-v", "--compat", "Folder/Brief", "--name", "Letter", "."}),
              "Folder/Brief -> ./Letter, by way of a temporary name\n");
    std::string longName = "a name with more than thirty-one characters";
    EXPECT_THAT(zerbWell({"mv", "-v", "Letter", "--name", longName, "Folder"}), HasSubstr("by way of a temporary name"));
    EXPECT_TRUE(exists("Folder/" + longName));
    EXPECT_THAT(zerbWell({"mv", "-v", "Folder/" + longName, "--name", "\u65E5\u672C", "."}), HasSubstr("by way of a temporary name"));
    EXPECT_TRUE(exists("\u65E5\u672C"));
    zerbWell({"rename", "--native", "\u65E5\u672C", "L\u00F6we"});
    zerbWell({"rename", "L\u00F6we", "\u65E5\u672C"});
    Outcome outcome = zerbOn(",nomoverename", {"mv", "-v", "\u65E5\u672C", "--name", "Letter", "Folder"});
    EXPECT_THAT(outcome.output, HasSubstr("by way of a temporary name")) << outcome.errors;
    EXPECT_TRUE(exists("Folder/Letter"));
}

TEST_F(HostMv, NativelyIsAFailureWhereTheVolumeCannot)
{
    makeFile("Letter");
    makeFolder("Folder");
    Outcome outcome = zerbOn(",nomoverename", {"mv", "--native", "Letter", "Folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: mv: Letter: moving to Folder: paramErr (-50)"));
    EXPECT_TRUE(exists("Letter"));
    EXPECT_EQ(zerbWell({"mv", "-v", "--native", "Letter", "Folder"}), "Letter -> Folder/Letter, in one step\n");
}

TEST_F(HostMv, NeverReplacesAndGoesOn)
{
    for (const char *folder : {"Folder", "Folder/One"})
        makeFolder(folder);
    makeFile("One");
    makeFile("Two");
    Outcome outcome = zerb({"mv", "One", "missing", "Two", "Folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: mv: One: moving to Folder: dupFNErr (-48)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: mv: missing: fnfErr (-43)"));
    EXPECT_TRUE(exists("One"));
    EXPECT_TRUE(exists("Folder/Two"));
}

TEST_F(HostMv, MovesALinkItselfAndOnlyIntoFolders)
{
    makeFolder("Folder");
    makeFolder("Other");
    makeFile("Letter");
    ASSERT_EQ(symlink("Folder", path("link").c_str()), 0);
    expectFailure(zerb({"mv", "link/", "Other"}), "link/", "errFSNotAFolder (-1407)");
    zerbWell({"mv", "link", "Other"});
    EXPECT_TRUE(exists("Folder"));
    EXPECT_TRUE(std::filesystem::is_symlink(path("Other/link")));
    expectFailure(zerb({"mv", "Folder", "Letter"}), "Letter", "errFSNotAFolder (-1407)");
}

TEST_F(HostMv, TakesOddNames)
{
    makeFolder("-Folder");
    for (const char *name : {"-v", "new\nline", "bad\xFF"})
        makeFile(name);
    EXPECT_THAT(zerbWell({"mv", "-v", "--", "-v", "new\nline", "bad\xFF", "-Folder"}), HasSubstr("new\\x0Aline -> -Folder/new\\x0Aline, "));
    for (const char *name : {"-Folder/-v", "-Folder/new\nline", "-Folder/bad\xFF"})
        EXPECT_TRUE(exists(name)) << name;
    zerbWell({"mv", "--name", "-\x80:\n", "--", "-Folder/bad\xFF", "."});
    EXPECT_TRUE(exists("-\x80:\n"));
}

TEST_F(HostMv, WithoutAFolderOrWithNamesForMoreThanOneIsRefused)
{
    EXPECT_EQ(zerb({"mv", "Letter"}).status, 2);
    EXPECT_EQ(zerb({"mv", "--name", "x", "One", "Two", "Folder"}).status, 2);
    EXPECT_EQ(zerb({"mv", "--name", "x/y", "One", "Folder"}).status, 2);
    EXPECT_EQ(zerb({"mv", "--name", "", "One", "Folder"}).status, 2);
    EXPECT_EQ(zerb({"mv", "--native", "--compat", "One", "Folder"}).status, 2);
}

// ---------------------------------------------------------------------------------------------------------------------
// rename

TEST_F(HostRename, GivesANewNameInEveryWay)
{
    makeFile("One", "1");
    EXPECT_EQ(zerbWell({"rename", "-v", "One", "Two"}), "One -> Two, by renaming\n");
    EXPECT_EQ(zerbWell({"rename", "-v", "--native", "Two", "Three"}), "Two -> Three, in one step\n");
    EXPECT_EQ(zerbWell({"rename", "-v", "--compat", "Three", "Four"}), "Three -> Four, by way of a temporary name\n");
    EXPECT_EQ(contents("Four"), "1");
    zerbWell({"rename", "--", "Four", "-a:b\n"});
    EXPECT_EQ(info("-a:b\n")["name"], "-a/b\n") << "a ':' in paths is a '/' in names";
}

TEST_F(HostRename, NeverReplaces)
{
    makeFile("One", "1");
    makeFile("Two", "2");
    expectFailure(zerb({"rename", "One", "Two"}), "One", "renaming to Two: dupFNErr (-48)");
    expectFailure(zerb({"rename", "--compat", "One", "Two"}), "One", "renaming to Two: dupFNErr (-48)");
    EXPECT_EQ(contents("One") + contents("Two"), "12");
    expectFailure(zerb({"rename", "missing", "Three"}), "missing", "fnfErr (-43)");
    EXPECT_EQ(zerb({"rename", "One", "a/b"}).status, 2);
    EXPECT_EQ(zerb({"rename", "One"}).status, 2);
}

TEST_F(HostRename, RenamesALinkItself)
{
    makeFile("Letter");
    ASSERT_EQ(symlink("Letter", path("link").c_str()), 0);
    zerbWell({"rename", "link", "other"});
    EXPECT_TRUE(std::filesystem::is_symlink(path("other")));
    EXPECT_TRUE(exists("Letter"));
}

// ---------------------------------------------------------------------------------------------------------------------
// swap

TEST_F(HostSwap, ExchangesContentsAndLeavesTypesWithTheNames)
{
    makeFolder("Folder");
    for (const char *options : {"", ",noexchange"})
    {
        makeFile("One", "first");
        makeFile("Folder/Two", "second");
        zerbWell({"set", "--type", "ONE!", "One"});
        Outcome outcome = zerbOn(options, {"swap", "-v", "One", "Folder/Two"});
        EXPECT_EQ(outcome.output,
                  *options == '\0' ? "One <-> Folder/Two, by the volume\n" : "One <-> Folder/Two, by renaming and moving\n");
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(contents("One"), "second");
        EXPECT_EQ(contents("Folder/Two"), "first");
        EXPECT_EQ(info("One")["finder"]["type"], "ONE!");
    }
}

TEST_F(HostSwap, RefusesFoldersAndNamesWhatIsMissing)
{
    makeFile("One");
    makeFolder("Folder");
    expectFailure(zerb({"swap", "One", "missing"}), "missing", "fnfErr (-43)");
    Outcome outcome = zerbOn(",noexchange", {"swap", "One", "Folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: swap: One: exchanging with Folder: notAFileErr (-1302)"));
    EXPECT_EQ(zerb({"swap", "One"}).status, 2);
}

// ---------------------------------------------------------------------------------------------------------------------
// rm

class HostRm : public HostMoves
{
protected:
    void makeTree() const
    {
        for (const char *name : {"Tree", "Tree/Inner", "Tree/Inner/Empty"})
            makeFolder(name);
        for (const char *name : {"Tree/one", "Tree/two", "Tree/Inner/three"})
            makeFile(name);
    }
};

TEST_F(HostRm, WithoutATerminalDeletesOnlyByForce)
{
    makeFile("Letter");
    Outcome outcome = zerb({"rm", "Letter"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("--force"));
    EXPECT_TRUE(exists("Letter"));
    EXPECT_EQ(zerbWell({"rm", "-v", "--force", "Letter"}), "deleted Letter\n");
    EXPECT_FALSE(exists("Letter"));
}

TEST_F(HostRm, AsksAtTheTerminal)
{
    makeTree();
    for (const char *no : {"n\n", "\n", "\x04", "yn\n"})
    {
        EXPECT_THAT(zerbOnTerminal({"rm", "-r", "Tree"}, no),
                    HasSubstr("Delete the folder \"Tree\" and all that is in it, locked objects too? [y/N] "));
        EXPECT_TRUE(exists("Tree/one"));
    }
    EXPECT_THAT(zerbOnTerminal({"rm", "Tree/one"}, "y\n"), HasSubstr("Delete \"Tree/one\"? [y/N] "));
    EXPECT_FALSE(exists("Tree/one"));
    zerbOnTerminal({"rm", "-r", "Tree"}, "yes\n");
    EXPECT_FALSE(exists("Tree"));
}

TEST_F(HostRm, DeletesFoldersOnlyWhenToldTo)
{
    makeTree();
    Outcome outcome = zerb({"rm", "-f", "Tree"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: rm: Tree: is a folder; with -r"));
    EXPECT_TRUE(exists("Tree/Inner/three"));
    zerbWell({"set", "--lock", "Tree/one", "Tree/Inner"});
    zerbWell({"rm", "-rf", "Tree"});
    EXPECT_FALSE(exists("Tree"));
}

TEST_F(HostRm, EmptiesFolders)
{
    makeTree();
    EXPECT_EQ(zerbWell({"rm", "-fv", "--contents", "Tree"}), "emptied Tree\n");
    EXPECT_TRUE(exists("Tree"));
    EXPECT_TRUE(std::filesystem::is_empty(path("Tree")));
    makeFile("Letter");
    EXPECT_EQ(zerb({"rm", "-f", "--contents", "Letter"}).status, 1);
    EXPECT_TRUE(exists("Letter"));
}

TEST_F(HostRm, TellsHowFarItIs)
{
    makeTree();
    Outcome outcome = zerb({"rm", "-rf", "--progress", "Tree"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "deleting: 6 of 6 objects\n");
    EXPECT_FALSE(exists("Tree"));
    makeTree();
    outcome = zerb({"rm", "-f", "--contents", "--progress", "Tree"});
    EXPECT_EQ(outcome.errors, "deleting: 5 of 5 objects\n");
    EXPECT_TRUE(std::filesystem::is_empty(path("Tree")));
}

TEST_F(HostRm, DeletesALinkAndNotWhatItLeadsTo)
{
    makeTree();
    ASSERT_EQ(symlink("Tree", path("link").c_str()), 0);
    ASSERT_EQ(symlink("../Tree", path("Tree/Inner/back").c_str()), 0);
    expectFailure(zerb({"rm", "-rf", "link/"}), "link/", "errFSNotAFolder (-1407)");
    EXPECT_TRUE(exists("Tree/one"));
    zerbWell({"rm", "-rf", "link", "Tree/Inner"});
    EXPECT_FALSE(exists("link"));
    EXPECT_TRUE(exists("Tree/one"));
}

TEST_F(HostRm, RefusesRootsAndTheFolderOneIsIn)
{
    makeTree();
    for (const char *name : {"Tree/.", "Tree/./", "Tree/Inner/..", "/Tree/Inner/../"})
        EXPECT_THAT(zerbOn("", {"rm", "-rf", name}).errors, HasSubstr("name it from outside")) << name;
    for (const Words &words : {Words{"rm", "-rf", "/"}, Words{"rm", "-f", "--contents", "/"}, Words{"rm", "-rf", "/Tree/.."}})
        EXPECT_THAT(zerbOn("", words).errors, HasSubstr("is the root of a volume"));
    EXPECT_TRUE(exists("Tree/one"));
}

TEST_F(HostRm, GoesOnAfterAnErrorAndTellsOfIt)
{
    makeTree();
    makeFile("locked");
    zerbWell({"set", "--lock", "locked"});
    Outcome outcome = zerb({"rm", "-f", "missing", "locked", "Tree/one"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: rm: missing: fnfErr (-43)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: rm: locked: fLckdErr (-45)"));
    EXPECT_FALSE(exists("Tree/one"));
    EXPECT_EQ(zerb({"rm", "-f", "--", "-dash"}).status, 1);
}

TEST_F(HostRm, SaysWhatIsLeftOfAFolder)
{
    makeTree();
    std::string held = path("Tree/Inner/three");
    Outcome outcome = zerbOn(",locked", {"rm", "-rf", "Tree"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: rm: Tree: deleting stopped: vLckdErr (-46)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: rm: Tree: 3 files and 2 folders are left in it"));
    EXPECT_TRUE(std::filesystem::exists(held));
}

}   // namespace
