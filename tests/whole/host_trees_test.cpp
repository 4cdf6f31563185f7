// The host's commands that list, walk and search folders: ls, tree and find.

#include "tests/standin/processes.h"
#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> linesOf(const std::string &text, char end = '\n')
{
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();)
    {
        std::size_t stop = text.find(end, begin);
        lines.push_back(text.substr(begin, stop - begin));
        begin = stop == std::string::npos ? text.size() : stop + 1;
    }
    return lines;
}

std::vector<std::string> sortedLinesOf(const std::string &text, char end = '\n')
{
    std::vector<std::string> lines = linesOf(text, end);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// A folder with a little of everything:
//   Disk/Apple 'APPL' 10 bytes; Disk/banana 'TEXT' 'ttxt' 300 bytes, locked; Disk/Cherry 'TEXT' 20 bytes, invisible; Disk/.point;
//   Disk/link -> Folder; Disk/Folder/inner, Disk/Folder/Deeper/bottom 'TEXT'
class HostTrees : public HostTest
{
protected:
    void SetUp() override
    {
        for (const char *folder : {"Disk", "Disk/Folder", "Disk/Folder/Deeper"})
            makeFolder(folder);
        makeFile("Disk/Apple", std::string(10, 'a'));
        makeFile("Disk/banana", std::string(300, 'b'));
        makeFile("Disk/Cherry", std::string(20, 'c'));
        for (const char *file : {"Disk/.point", "Disk/Folder/inner", "Disk/Folder/Deeper/bottom"})
            makeFile(file);
        ASSERT_EQ(symlink("Folder", path("Disk/link").c_str()), 0);
        zerbWell({"set", "--type", "TEXT", "Disk/Cherry", "Disk/Folder/Deeper/bottom"});
        zerbWell({"set", "--type", "APPL", "--creator", "appl", "--modified", "2001-02-03T04:05:06Z", "Disk/Apple"});
        zerbWell({"set", "--invisible", "--modified", "2003-02-03T04:05:06Z", "Disk/Cherry"});
        zerbWell({"set", "--type", "TEXT", "--creator", "ttxt", "--modified", "2002-02-03T04:05:06Z", "--lock", "Disk/banana"});
        zerbWell({"set", "--modified", "2000-02-03T04:05:06Z", "Disk/Folder"});
    }

    std::vector<std::string> found(const Words &options) const
    {
        Words words = {"find", "Disk"};
        words.insert(words.end(), options.begin(), options.end());
        return sortedLinesOf(zerbWell(words));
    }

    json parsed(const Words &words) const { return json::parse(zerbWell(words), nullptr, false); }
};

using HostLs = HostTrees;
using HostTree = HostTrees;
using HostFind = HostTrees;

// ---------------------------------------------------------------------------------------------------------------------
// ls

TEST_F(HostLs, ListsNamesInOrderWithoutHiddenOnes)
{
    EXPECT_EQ(zerbWell({"ls", "Disk"}), "Apple\nbanana\nFolder\nlink\n");
    EXPECT_EQ(zerbWell({"ls", "-a", "Disk"}), ".point\nApple\nbanana\nCherry\nFolder\nlink\n");
    EXPECT_EQ(zerbWell({"ls", "--reverse", "Disk"}), "link\nFolder\nbanana\nApple\n");
}

TEST_F(HostLs, SortsAsItIsTold)
{
    EXPECT_EQ(linesOf(zerbWell({"ls", "-a", "--sort", "size", "Disk"}))[0], "banana");
    EXPECT_EQ(linesOf(zerbWell({"ls", "-a", "--sort", "size", "Disk/Folder", "Disk"}))[5], "banana") << "after two names and headings";
    std::vector<std::string> byDate = linesOf(zerbWell({"ls", "--sort", "date", "--reverse", "Disk"}));
    EXPECT_THAT(byDate, ElementsAre("Folder", "Apple", "banana", "link"));
    EXPECT_THAT(linesOf(zerbWell({"ls", "-a", "--sort", "type", "Disk"})),
                ElementsAre("Folder", ".point", "Apple", "Cherry", "banana", "link"));
    EXPECT_THAT(sortedLinesOf(zerbWell({"ls", "--sort", "none", "Disk"})), ElementsAre("Apple", "Folder", "banana", "link"));
    Outcome outcome = zerb({"ls", "--sort", "colour", "Disk"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("--sort: \"colour\" is none of name, size, date, type, none"));
}

TEST_F(HostLs, LongLinesStandInColumns)
{
    Outcome outcome = zerb({"ls", "-la", "Disk"}, {"TZ=UTC"});
    std::vector<std::string> lines = linesOf(outcome.output);
    ASSERT_EQ(lines.size(), 6u) << outcome.output;
    EXPECT_EQ(lines[1], "APPL appl  -------   10  0  2001-02-03 04:05  Apple");
    EXPECT_EQ(lines[2], "TEXT ttxt  ------L  300  0  2002-02-03 04:05  banana");
    EXPECT_EQ(lines[3], "TEXT ----  ---i---   20  0  2003-02-03 04:05  Cherry");
    EXPECT_EQ(lines[4], "folder     -------    -  -  2000-02-03 04:05  Folder");
    EXPECT_THAT(lines[5], StartsWith("link       -------    6  0  "));
}

TEST_F(HostLs, TakesFilesAndSeveralPathsAndTheCurrentDirectory)
{
    EXPECT_EQ(zerbWell({"ls", "Disk/Apple", "Disk/Folder"}), "Disk/Apple\n\nDisk/Folder:\nDeeper\ninner\n");
    EXPECT_EQ(zerbWell({"ls"}), "Disk\n");
    EXPECT_EQ(zerbWell({"ls", "Disk/link"}), "Deeper\ninner\n");
    EXPECT_EQ(zerbWell({"ls", "-P", "Disk/link"}), "Disk/link\n");
}

TEST_F(HostLs, ColoursKindsOnATerminal)
{
    EXPECT_EQ(zerbOnTerminal({"ls", "-a", "Disk"}), "\033[2m.point\033[0m\r\nApple\r\nbanana\r\n\033[2mCherry\033[0m\r\n"
                                                    "\033[1;34mFolder\033[0m\r\n\033[36mlink\033[0m\r\n");
    EXPECT_THAT(zerbOnTerminal({"ls", "--json", "Disk"}), Not(HasSubstr("\033")));
}

TEST_F(HostLs, GoesOnAfterAnErrorAndTellsOfIt)
{
    Outcome outcome = zerb({"ls", "--json", "missing", "Disk/Folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("zerb: ls: missing: fnfErr (-43): "));
    json list = json::parse(outcome.output);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["error"]["symbol"], "fnfErr");
    EXPECT_EQ(list[1]["path"], "Disk/Folder");
    EXPECT_EQ(list[1]["items"][1]["path"], "Disk/Folder/inner");
}

TEST_F(HostLs, TellsProgramsEverythingThatPeopleSee)
{
    json items = parsed({"ls", "--json", "-a", "Disk"})[0]["items"];
    ASSERT_EQ(items.size(), 6u);
    EXPECT_EQ(items[2]["name"], "banana");
    EXPECT_EQ(items[2]["type"], "TEXT");
    EXPECT_EQ(items[2]["creator_code"], 0x74747874);
    EXPECT_EQ(items[2]["forks"]["data_size"], 300);
    EXPECT_EQ(items[2]["locked"], true);
    EXPECT_EQ(items[2]["modified"]["iso"], "2002-02-03T04:05:06Z");
    EXPECT_EQ(items[3]["flags"]["names"], json::array({"isInvisible"}));
    EXPECT_EQ(items[4]["kind"], "folder");
    EXPECT_FALSE(items[4].contains("type"));
    EXPECT_EQ(items[5]["kind"], "symbolic_link");
}

// ---------------------------------------------------------------------------------------------------------------------
// tree

TEST_F(HostTree, DrawsLevelsAndCountsThem)
{
    EXPECT_EQ(zerbWell({"tree", "Disk"}), "Disk\n"
                                          "├── Apple  APPL appl  10\n"
                                          "├── banana  TEXT ttxt  300\n"
                                          "├── Folder\n"
                                          "│   ├── Deeper\n"
                                          "│   │   └── bottom  TEXT ----  0\n"
                                          "│   └── inner  ---- ----  0\n"
                                          "└── link\n"
                                          "\n"
                                          "2 folders, 5 files; 316 bytes in data forks, 0 in resource forks\n");
    EXPECT_THAT(zerbWell({"tree", "--levels", "1", "Disk"}), Not(HasSubstr("inner")));
    EXPECT_THAT(zerbWell({"tree", "-a", "Disk"}), HasSubstr("── Cherry  TEXT ----  20\n"));
}

TEST_F(HostTree, PassesOverWhatIsInHiddenFolders)
{
    zerbWell({"set", "--invisible", "Disk/Folder"});
    EXPECT_EQ(zerbWell({"tree", "Disk"}), "Disk\n├── Apple  APPL appl  10\n├── banana  TEXT ttxt  300\n└── link\n\n"
                                          "0 folders, 3 files; 316 bytes in data forks, 0 in resource forks\n");
}

TEST_F(HostTree, TellsProgramsTheSame)
{
    json tree = parsed({"tree", "--json", "Disk"});
    EXPECT_EQ(tree["path"], "Disk");
    EXPECT_EQ(tree["totals"]["folders"], 2);
    EXPECT_EQ(tree["totals"]["files"], 5);
    EXPECT_EQ(tree["totals"]["data_size"], 316);
    EXPECT_EQ(tree["items"][2]["items"][0]["items"][0]["path"], "Disk/Folder/Deeper/bottom");
    EXPECT_FALSE(tree["items"][3].contains("items")) << "links are not followed";
}

TEST_F(HostTree, OfAFileOrOfNothingIsAnError)
{
    expectFailure(zerb({"tree", "missing"}), "missing", "fnfErr (-43)");
    Outcome outcome = zerb({"tree", "--json", "Disk/Apple"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Disk/Apple: errFSNotAFolder (-1407)"));
    EXPECT_EQ(json::parse(outcome.output)["error"]["symbol"], "errFSNotAFolder");
}

TEST_F(HostTree, KeepsItsLinesHoweverDeepItIs)
{
    constexpr int levels = 60;
    std::string deep = "Deep";
    makeFolder(deep);
    for (int level = 1; level < levels; ++level)
        makeFolder(deep += "/" + std::string(15, 'd'));
    std::vector<std::string> lines = linesOf(zerbWell({"tree", "Deep"}));
    ASSERT_EQ(lines.size(), levels + 2u);
    EXPECT_THAT(lines[levels - 1], StartsWith(std::string(4 * (levels - 2), ' ') + "└── "));
}

// ---------------------------------------------------------------------------------------------------------------------
// find

TEST_F(HostFind, WithoutCriteriaFindsAllAndFollowsNoLink)
{
    EXPECT_THAT(found({}), ElementsAre("Disk/.point", "Disk/Apple", "Disk/Cherry", "Disk/Folder", "Disk/Folder/Deeper",
                                       "Disk/Folder/Deeper/bottom", "Disk/Folder/inner", "Disk/banana", "Disk/link"));
}

struct FindCase
{
    const char *name;
    Words options;
    std::vector<std::string> found;
};

const FindCase findCases[] = {
    {"ByType", {"--type", "TEXT"}, {"Disk/Cherry", "Disk/Folder/Deeper/bottom", "Disk/banana"}},
    {"ByTypeAndCreator", {"--type", "TEXT", "--creator", "ttxt"}, {"Disk/banana"}},
    {"ByAbsentType", {"--type", "0", "--creator", "0"}, {"Disk/.point", "Disk/Folder/inner"}},
    {"Invisible", {"--invisible"}, {"Disk/Cherry"}},
    {"VisibleText", {"--visible", "--type", "TEXT"}, {"Disk/Folder/Deeper/bottom", "Disk/banana"}},
    {"ByFlags", {"--flags", "+isInvisible,-hasBundle"}, {"Disk/Cherry"}},
    {"Locked", {"--locked"}, {"Disk/banana"}},
    {"UnlockedByPattern", {"--unlocked", "--name", "*a*"}, {}},
    {"Folders", {"--kind", "folder"}, {"Disk/Folder", "Disk/Folder/Deeper"}},
    {"FilesOfTheFirstLevel", {"--kind", "file", "--levels", "1"}, {"Disk/.point", "Disk/Apple", "Disk/Cherry", "Disk/banana", "Disk/link"}},
    {"ByPattern", {"--name", "*an?na"}, {"Disk/banana"}},
    {"ByPatternInItsCase", {"--name", "APPLE"}, {}},
    {"ByPatternInAnyCase", {"--iname", "[a-b]*"}, {"Disk/Apple", "Disk/Folder/Deeper/bottom", "Disk/banana"}},
    {"Larger", {"--larger", "19"}, {"Disk/Cherry", "Disk/banana"}},
    {"LargerThanItself", {"--larger", "300"}, {}},
    {"Smaller", {"--smaller", "11", "--larger", "9"}, {"Disk/Apple"}},
    {"NewerAndOlder", {"--newer", "2002-02-03T04:05:06Z", "--older", "2004-01-01"}, {"Disk/Cherry"}},
    {"ByLabel", {"--label", "red"}, {}},
};

TEST_F(HostFind, SelectsWhatMeetsAllCriteria)
{
    for (const FindCase &row : findCases)
        EXPECT_THAT(found(row.options), testing::ElementsAreArray(row.found)) << row.name;
}

TEST_F(HostFind, TellsProgramsPathsAndKinds)
{
    json list = parsed({"find", "--json", "--iname", "deeper", "Disk"});
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["path"], "Disk/Folder/Deeper");
    EXPECT_EQ(list[0]["kind"], "folder");
    EXPECT_EQ(parsed({"find", "--json", "--type", "none", "Disk"}), json::array());
}

TEST_F(HostFind, GoesOnAfterAnErrorAndTellsOfIt)
{
    Outcome outcome = zerb({"find", "--kind", "folder", "--json", "missing", "Disk/Apple", "Disk"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: find: missing: fnfErr (-43)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: find: Disk/Apple: errFSNotAFolder (-1407)"));
    json list = json::parse(outcome.output);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list[1]["error"]["code"], -1407);
    EXPECT_EQ(list[2]["path"], "Disk/Folder");
}

TEST_F(HostFind, RefusesWhatNoObjectCanMeetAndWhatIsNoSize)
{
    EXPECT_EQ(zerb({"find", "--visible", "--flags", "+isInvisible"}).status, 2);
    EXPECT_EQ(zerb({"find", "--locked", "--unlocked"}).status, 2);
    for (const char *size : {"", "k", "12x", "12kk", "-1", "18446744073709551616", "18446744073709551615k"})
        EXPECT_EQ(zerb({"find", "--larger", size}).status, 2) << size;
}

TEST_F(HostFind, BeginsPathsAsTheyWereTyped)
{
    EXPECT_EQ(zerbWell({"find", "--name", "bottom"}), "./Disk/Folder/Deeper/bottom\n");
    EXPECT_EQ(zerbWell({"find", "--name", "bottom", "Disk//"}), "Disk//Folder/Deeper/bottom\n");
    EXPECT_EQ(zerbWell({"find", "--type", "TEXT", "Disk/Folder/"}), "Disk/Folder/Deeper/bottom\n");
}

// ---------------------------------------------------------------------------------------------------------------------
// Folders that may not be read

class HostTreesClosed : public HostTrees
{
protected:
    void SetUp() override
    {
        HostTrees::SetUp();
        if (!support::canBecomeOtherUsers())
            GTEST_SKIP() << "only root can become another user";
        if (asNobody({"--version"}).status != 0)
            GTEST_SKIP() << "another user may not run the program where it was built";
        ASSERT_EQ(chmod(folder().path().c_str(), 0755), 0);
        ASSERT_EQ(chmod(path("Disk/Folder/Deeper").c_str(), 0700), 0);
        makeFolder("Disk/Folder/Last");
        makeFile("Disk/Folder/Last/leaf");
    }

    Outcome asNobody(const Words &words) const
    {
        return host_tests::runHost(words, {.directory = folder().path(), .environment = {}, .outputFile = "", .user = support::nobody});
    }
};

TEST_F(HostTreesClosed, AreNamedByFindWhichGoesOn)
{
    const Outcome outcome = asNobody({"find", "Disk/Folder"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(sortedLinesOf(outcome.output),
                ElementsAre("Disk/Folder/Deeper", "Disk/Folder/Last", "Disk/Folder/Last/leaf", "Disk/Folder/inner"));
    EXPECT_THAT(outcome.errors, StartsWith("zerb: find: Disk/Folder/Deeper: afpAccessDenied (-5000)"));
    EXPECT_EQ(linesOf(outcome.errors).size(), 2u) << "once, with what may help\n" << outcome.errors;
}

TEST_F(HostTreesClosed, AreNamedByTreeWhichGoesOn)
{
    const Outcome outcome = asNobody({"tree", "Disk"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("leaf"));
    EXPECT_THAT(outcome.errors, StartsWith("zerb: tree: Disk/Folder/Deeper: afpAccessDenied (-5000)"));
    EXPECT_EQ(linesOf(outcome.errors).size(), 2u) << outcome.errors;
}

TEST_F(HostTreesClosed, AreNoConcernOfWhoDoesNotGoThere)
{
    for (const char *command : {"find", "tree"})
    {
        const Outcome outcome = asNobody({command, "--levels", "1", "Disk/Folder"});
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
    }
}

TEST_F(HostTreesClosed, AreAFailureWhereTheSearchBegins)
{
    for (const char *command : {"find", "tree"})
    {
        const Outcome outcome = asNobody({command, "Disk/Folder/Deeper"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.errors, HasSubstr("Disk/Folder/Deeper: afpAccessDenied (-5000)"));
        EXPECT_EQ(linesOf(outcome.errors).size(), 2u) << outcome.errors;
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Odd names

class HostTreesOddNames : public HostTest
{
protected:
    void SetUp() override
    {
        makeFolder("-Odd");
        for (const std::string &name : names)
            makeFile("-Odd/" + name);
    }

    const std::vector<std::string> names = {"-l", "[a,b]", "back\\slash", "bad\xFF", "colon:", "new\nline", "\u00C4pfel"};
};

TEST_F(HostTreesOddNames, AreShownOnOneLineEach)
{
    std::string expected = "-l\n[a,b]\nback\\\\slash\nbad\\xFF\ncolon:\nnew\\x0Aline\n\u00C4pfel\n";
    EXPECT_EQ(zerbWell({"ls", "--", "-Odd"}), expected);
    EXPECT_EQ(linesOf(zerbWell({"tree", "--", "-Odd"})).size(), names.size() + 3);
    EXPECT_EQ(sortedLinesOf(zerbWell({"find", "--", "-Odd"})).size(), names.size());
}

TEST_F(HostTreesOddNames, ComeOutAsTheyAreForPrograms)
{
    std::vector<std::string> paths;
    for (const std::string &name : names)
        paths.push_back("-Odd/" + name);
    std::sort(paths.begin(), paths.end());
    EXPECT_EQ(sortedLinesOf(zerbWell({"find", "-0", "--", "-Odd"}), '\0'), paths);
    EXPECT_EQ(sortedLinesOf(zerbWell({"find", "-0", "--type", "0", "--", "-Odd"}), '\0'), paths);
    EXPECT_EQ(zerbWell({"find", "-0", "--iname", "\u00E4?[f]*", "--", "-Odd"}), "-Odd/\u00C4pfel" + std::string(1, '\0'));
    std::string listing = zerbWell({"ls", "--json", "--", "-Odd"});
    EXPECT_THAT(listing, HasSubstr("\"name\": \"bad\\udcff\""));
    EXPECT_THAT(listing, HasSubstr("\"path\": \"-Odd/new\\nline\""));
    EXPECT_THAT(listing, HasSubstr("\"name\": \"colon/\"")) << "a ':' in paths is a '/' in names";
}

}   // namespace
