// The host's command for resources: listing, showing, and making resource files.

#include "tests/data/samples.h"
#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::Words;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class HostResources : public HostTest
{
protected:
    // Paths of the host begin at the root of a disk: samples are brought into the folder.
    void SetUp() override
    {
        for (const char *name : {"strings.rsrc", "netatalk3-picture.adouble", "macos-attributes.adouble", "textfile.macbin"})
            support::writeFile(path(name), readSample(name));
    }

    json list(const std::string &name, const Words &options = {}) const
    {
        Words words = {"rsrc", "list", "--json"};
        words.insert(words.end(), options.begin(), options.end());
        words.push_back(name);
        return json::parse(zerbWell(words)).at(0).at("resources");
    }

    std::string contents(const std::string &name) const
    {
        std::ifstream stream(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::string raw(const std::string &name, const std::string &type, const std::string &id) const
    {
        return zerbWell({"rsrc", "dump", "--raw", name, type, id});
    }
};

json row(const char *type, int id, const char *name, int bits, int size)
{
    return {{"type", type}, {"id", id}, {"name", name}, {"attribute_bits", bits}, {"size", size}};
}

// The members that rows have.
json shortened(json rows)
{
    for (json &resource : rows)
    {
        resource.erase("type_code");
        resource.erase("attributes");
    }
    return rows;
}

TEST_F(HostResources, OfSamplesAreListedAsTheirReadMeHasThem)
{
    EXPECT_EQ(shortened(list("strings.rsrc")),
              (json{row("STR ", 128, "", 0x00, 39), row("STR ", 129, "The Name", 0x00, 40), row("STR ", 130, "", 0x0C, 45),
                    row("STR ", 131, "The Name with Attributes", 0x40, 42)}));
    EXPECT_EQ(shortened(list("netatalk3-picture.adouble")),
              (json{row("ICN#", -16455, "", 0, 256), row("PICT", 29876, "", 0, 142), row("STR ", -16396, "", 0, 17),
                    row("icl4", -16455, "", 0, 512), row("icl8", -16455, "", 0, 1024), row("icns", -16455, "", 0, 41531),
                    row("ics#", -16455, "", 0, 64), row("ics4", -16455, "", 0, 128), row("ics8", -16455, "", 0, 256),
                    row("pnot", 0, "", 0, 34), row("vers", 2, "", 0, 35)}));
    EXPECT_EQ(shortened(list("textfile.macbin")), (json{row("MPSR", 1005, "", 0, 72), row("BBST", 128, "", 0, 1048)}));
}

TEST_F(HostResources, AreListedForPeople)
{
    const std::string text = zerbWell({"rsrc", "list", "strings.rsrc"});
    EXPECT_THAT(text, HasSubstr("  'STR '        129           40 bytes  \"The Name\"\n"));
    EXPECT_THAT(text, HasSubstr("  'STR '        130           45 bytes  (protected, preload)\n"));
    EXPECT_THAT(text, HasSubstr("  4 resources\n"));
    EXPECT_THAT(list("strings.rsrc").at(2).at("attributes"), ElementsAre("protected", "preload"));
}

TEST_F(HostResources, OfOneTypeAreListedAlone)
{
    EXPECT_EQ(shortened(list("netatalk3-picture.adouble", {"--type", "STR"})), (json{row("STR ", -16396, "", 0, 17)}));
    EXPECT_EQ(list("netatalk3-picture.adouble", {"--type", "none"}), json::array());
}

TEST_F(HostResources, OfAForkAreListed)
{
    makeFile("Letter", "Dear Ada");
    zerbWell({"forks", "import", "--resource", "Letter", "--from", path("strings.rsrc")});
    EXPECT_EQ(list("Letter"), list("strings.rsrc"));
}

TEST_F(HostResources, AreShownAsTextWhereTheyAreText)
{
    EXPECT_EQ(zerbWell({"rsrc", "dump", "strings.rsrc", "STR", "128"}), "The String, without name or attributes\n");
    EXPECT_EQ(zerbWell({"rsrc", "dump", "strings.rsrc", "STR ", "--name", "tHE nAME"}), "The String, with name and no attributes\n");
    EXPECT_EQ(zerbWell({"rsrc", "dump", "netatalk3-picture.adouble", "vers", "2"}),
              "5.9.5 final 0, region 0\n5.9.5\n(for GraphicConverter)\n");
    EXPECT_THAT(zerbWell({"rsrc", "dump", "--hex", "strings.rsrc", "STR", "128"}),
                HasSubstr("00000000  26 54 68 65 20 53 74 72  69 6E 67 2C 20 77 69 74  |&The String, wit|\n"));
}

TEST_F(HostResources, AreShownAndSavedAsTheyAre)
{
    const auto sidecar = readSample("netatalk3-picture.adouble");
    const std::string fork(sidecar.begin() + 82, sidecar.end());
    const std::string icon = fork.substr(256 + 43399 + 4, 64);
    EXPECT_EQ(raw("netatalk3-picture.adouble", "ics#", "-16455"), icon);
    zerbWell({"rsrc", "dump", "netatalk3-picture.adouble", "ics#", "-16455", "-o", "icon"});
    EXPECT_EQ(contents("icon"), icon);
    EXPECT_THAT(zerbWell({"rsrc", "dump", "netatalk3-picture.adouble", "ics#", "-16455"}), HasSubstr("00000010  02 C0 03 C0 00 00 00 00"));
}

TEST_F(HostResources, SavingReplacesNothing)
{
    makeFile("there", "before");
    const Outcome outcome = zerb({"rsrc", "dump", "strings.rsrc", "STR", "128", "-o", "there"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("nothing is replaced"));
    EXPECT_EQ(contents("there"), "before");
}

TEST_F(HostResources, FailuresNameCodeObjectAndWhatToDo)
{
    makeFile("text", "This is a text and no resource file.");
    makeFile("empty");
    expectFailure(zerb({"rsrc", "list", "text"}), "text", "mapReadErr (-199)");
    expectFailure(zerb({"rsrc", "list", "empty"}), "empty", "eofErr (-39)");
    expectFailure(zerb({"rsrc", "list", "macos-attributes.adouble"}), "macos-attributes.adouble", "eofErr (-39)");
    expectFailure(zerb({"rsrc", "list", "missing"}), "missing", "fnfErr (-43)");
    expectFailure(zerb({"rsrc", "dump", "strings.rsrc", "STR", "999"}), "strings.rsrc", "resNotFound (-192)");
    EXPECT_THAT(zerb({"rsrc", "dump", "strings.rsrc", "STR", "999"}).errors, HasSubstr("reading 'STR ' 999"));
    EXPECT_THAT(zerb({"rsrc", "dump", "strings.rsrc", "STR", "999"}).errors, HasSubstr("`zerb rsrc list` shows"));
    EXPECT_THAT(zerb({"rsrc", "list", "text"}).errors, HasSubstr("`zerb forks dump`"));
    const Outcome both = zerb({"rsrc", "list", "text", "strings.rsrc"});
    EXPECT_EQ(both.status, 1);
    EXPECT_THAT(both.output, HasSubstr("4 resources"));
}

TEST_F(HostResources, ADamagedEntryIsListedAndReported)
{
    auto bytes = readSample("strings.rsrc");
    bytes[256 + 43] = 0x7F;   // the length of 129
    support::writeFile(path("damaged"), bytes);
    const Outcome outcome = zerb({"rsrc", "list", "damaged"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("'STR '        129 badExtResource (-185)  \"The Name\"\n"));
    EXPECT_THAT(outcome.output, HasSubstr("'STR '        128           39 bytes\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("damaged: 'STR ' 129: badExtResource (-185)"));
    EXPECT_EQ(zerbWell({"rsrc", "dump", "damaged", "STR", "131"}), "The String, with both name and attributes\n");
    expectFailure(zerb({"rsrc", "dump", "damaged", "STR", "129"}), "damaged", "badExtResource (-185)");
}

TEST_F(HostResources, WrongUsageIsRefused)
{
    const Words rows[] = {{"rsrc", "dump", "strings.rsrc", "STR"},
                          {"rsrc", "dump", "strings.rsrc", "STR", "128", "--name", "x"},
                          {"rsrc", "dump", "strings.rsrc", "STR", "32768"},
                          {"rsrc", "dump", "strings.rsrc", "STR", "one"},
                          {"rsrc", "dump", "strings.rsrc", "STRING", "1"},
                          {"rsrc", "dump", "strings.rsrc", "", "1"},
                          {"rsrc", "dump", "strings.rsrc", "STR", "1", "--raw", "--hex"},
                          {"rsrc", "list", "--type", "", "strings.rsrc"},
                          {"rsrc", "make", "text"},
                          {"rsrc"}};
    for (const Words &words : rows)
        EXPECT_EQ(zerb(words).status, 2) << words.back();
}

// ---------------------------------------------------------------------------------------------------------------------
// make

constexpr const char *description = "'STR ' 128 \"Caf\u00E9\" purgeable\n"
                                    "    \"na\u00EFve\"\n"
                                    "'DLOG' -1\n"
                                    "    bounds 1 2 3 4\n"
                                    "    items 5\n"
                                    "'STR ' 127\n"
                                    "    \"second\"\n";

TEST_F(HostResources, AreMadeAndListedAgain)
{
    makeFile("description", description);
    EXPECT_EQ(zerbWell({"rsrc", "make", "description", "made"}), "");
    EXPECT_EQ(shortened(list("made")),
              (json{row("STR ", 128, "Caf\u00E9", 0x20, 6), row("STR ", 127, "", 0, 7), row("DLOG", -1, "", 0, 21)}));
    EXPECT_EQ(zerbWell({"rsrc", "dump", "made", "STR", "--name", "CAF\u00C9"}), "na\u00EFve\n");
    EXPECT_EQ(raw("made", "DLOG", "-1"), std::string("\0\1\0\2\0\3\0\4\0\1\1\0\0\0\0\0\0\0\0\5\0", 21));   // big-endian, as in the file
    EXPECT_EQ(zerbWell({"rsrc", "make", "description", "-"}), contents("made"));
}

TEST_F(HostResources, AreMadeIntoAFork)
{
    makeFile("description", description);
    makeFile("Letter", "Dear Ada");
    zerbWell({"rsrc", "make", "--fork", "description", "Letter"});
    zerbWell({"rsrc", "make", "description", "made"});
    EXPECT_EQ(contents("Letter"), "Dear Ada");
    EXPECT_EQ(zerbWell({"forks", "export", "--resource", "Letter", "--to", "-"}), contents("made"));
    makeFile("shorter", "'STR ' 1\n \"x\"\n");
    zerbWell({"rsrc", "make", "--fork", "shorter", "Letter"});
    EXPECT_EQ(shortened(list("Letter")), (json{row("STR ", 1, "", 0, 2)}));
    expectFailure(zerb({"rsrc", "make", "--fork", "shorter", "missing"}), "missing", "fnfErr (-43)");
}

TEST_F(HostResources, MakingReplacesOnlyWhereThatIsAskedFor)
{
    makeFile("description", description);
    makeFile("made", "before");
    const Outcome outcome = zerb({"rsrc", "make", "description", "made"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("--replace"));
    EXPECT_EQ(contents("made"), "before");
    zerbWell({"rsrc", "make", "--replace", "description", "made"});
    EXPECT_EQ(list("made").size(), 3u);
    for (const std::string &name : support::namesIn(folder().path()))
        EXPECT_THAT(name, Not(HasSubstr(".new-")));
}

TEST_F(HostResources, ABadDescriptionNamesItsLineAndMakesNothing)
{
    makeFile("description", "'STR ' 1\n    \"text\n");
    const Outcome outcome = zerb({"rsrc", "make", "description", "made"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "zerb: rsrc: description: line 2: there is no \" at the end of the text\n");
    EXPECT_FALSE(support::exists(path("made")));
    EXPECT_EQ(zerb({"rsrc", "make", "missing", "made"}).status, 1);
    EXPECT_EQ(zerb({"rsrc", "make", ".", "made"}).errors, "zerb: rsrc: .: Is a directory\n");
    EXPECT_FALSE(support::exists(path("made")));
}

TEST_F(HostResources, AnEmptyDescriptionMakesAnEmptyFile)
{
    makeFile("description");
    zerbWell({"rsrc", "make", "description", "made"});
    EXPECT_EQ(list("made"), json::array());
}

TEST_F(HostResources, TheSampleDialogHasWhatItNeeds)
{
    support::writeFile(path("sample"), readWholeFile(built("sample_dialog.rsrc")));
    std::set<std::pair<std::string, int>> there;
    for (const json &resource : list("sample"))
        there.emplace(resource.at("type"), resource.at("id"));
    for (const int id : {128, 129, 130})
        for (const char *type : {"ICN#", "icl4", "icl8", "ics#", "ics4", "ics8"})
            EXPECT_TRUE(there.contains({type, id})) << type << ' ' << id;
    for (const char *type : {"SICN", "STR ", "MENU", "DLOG", "DITL"})
        EXPECT_TRUE(there.contains({type, 128})) << type;
    EXPECT_TRUE(there.contains({"ALRT", 129}));
    EXPECT_TRUE(there.contains({"DITL", 129}));
}

}   // namespace
