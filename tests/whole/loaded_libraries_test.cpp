// What the program loads when: work on files has no need of fonts, pictures and windows, and seldom of a database and of all Unicode. It does not
// wait for them.

#include "tests/standin/processes.h"
#include "tests/whole/host_program.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Setting;
using testing::HasSubstr;
using testing::Not;

const char *const lateLibraries[] = {"libfreetype", "libfontconfig", "libpng",      "libSDL",   "libX11",      "libwayland",
                                     "libicu",      "libsqlite3",    "zerbdrawing", "zerbtext", "zerbdatabase"};

// The loader tells on the standard error output what it looks for and loads.
const char *const telling = "LD_DEBUG=files";

// What the program needs to start, and nothing of what it loads later.
const std::string firstProducts[] = {"zerb", "zerb.so", standInFile()};

class LoadedLibraries : public HostTest
{
protected:
    // A program that has none of its parts beside it.
    Outcome zerbWithoutParts(const host_tests::Words &words, const host_tests::Words &environment = {}) const
    {
        std::filesystem::create_directory(path("program"));
        for (const std::string &product : firstProducts)
            std::filesystem::copy_file(built(product), path("program/" + product), std::filesystem::copy_options::skip_existing);
        Setting setting;
        setting.directory = folder().path();
        setting.environment = {"ZERB_STATE_FOLDER=" + path("state")};
        setting.environment.insert(setting.environment.end(), environment.begin(), environment.end());
        setting.program = path("program/zerb");
        return runHost(words, setting);
    }
};

TEST_F(LoadedLibraries, WorkOnFilesLoadsNothingThatIsNotNeededForIt)
{
    makeFile("file", "text");
    for (const host_tests::Words &words : {host_tests::Words{"info", "file"},
                                           {"set", "--type", "TEXT", "file"},
                                           {"ls", "."},
                                           {"copy", "file", "other"},
                                           {"rename", "other", "another"},
                                           {"find", ".", "--name", "*other"},
                                           {"--help"}})
    {
        const Outcome outcome = zerb(words, {telling, "ZERB_STATE_FOLDER=" + path("state")});
        EXPECT_EQ(outcome.status, 0) << words[0];
        EXPECT_THAT(outcome.errors, HasSubstr("libzerbstandin.so"));
        for (const char *library : lateLibraries)
            EXPECT_THAT(outcome.errors, Not(HasSubstr(library))) << words[0];
    }
}

TEST_F(LoadedLibraries, MeasuringTextLoadsTheFontEngine)
{
    const Outcome outcome = zerb({"text", "shorten", "-w", "90", "name"}, {telling});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("zerbdrawing.so"));
    EXPECT_THAT(outcome.errors, HasSubstr("libfreetype"));
}

TEST_F(LoadedLibraries, ANameBeyondAsciiLoadsThePartThatKnowsItsCharacters)
{
    makeFile("Résumé");
    const Outcome outcome = zerb({"info", "Résumé"}, {telling});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Résumé"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerbtext.so"));
    EXPECT_THAT(outcome.errors, HasSubstr("libicuuc"));
    EXPECT_THAT(outcome.errors, Not(HasSubstr("zerbdatabase")));
}

TEST_F(LoadedLibraries, FileIDsLoadTheDatabaseOnceThereIsOne)
{
    makeFile("file");
    const std::string state = "ZERB_STATE_FOLDER=" + path("state");
    EXPECT_THAT(zerb({"id", "--find", "12345678"}, {telling, state}).errors, Not(HasSubstr("zerbdatabase.so")));
    const Outcome outcome = zerb({"id", "file"}, {telling, state});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("zerbdatabase.so"));
    EXPECT_THAT(outcome.errors, HasSubstr("libsqlite3"));
    EXPECT_THAT(outcome.errors, Not(HasSubstr("libicu")));
    EXPECT_THAT(zerb({"rename", "file", "other"}, {telling, state}).errors, HasSubstr("zerbdatabase.so"));
}

TEST_F(LoadedLibraries, OnlyThePartsNameWhatTheyAreMadeWith)
{
    for (const char *product : {"zerb", "zerb.so", "libzerbstandin.so"})
    {
        const support::Ended listed = support::run({"ldd", built(product)});
        ASSERT_EQ(listed.status, 0) << listed.output;
        EXPECT_THAT(listed.output, HasSubstr("libstdc++")) << product;
        for (const char *library : lateLibraries)
            EXPECT_THAT(listed.output, Not(HasSubstr(library))) << product;
    }
    EXPECT_THAT(support::run({"ldd", built("zerbdrawing.so")}).output, HasSubstr("libfreetype"));
    EXPECT_THAT(support::run({"ldd", built("zerbtext.so")}).output, HasSubstr("libicuuc"));
    EXPECT_THAT(support::run({"ldd", built("zerbdatabase.so")}).output, HasSubstr("libsqlite3"));
}

TEST_F(LoadedLibraries, WithoutThePartThatDrawsAllCharactersAreSixPixelsWide)
{
    const Outcome outcome = zerbWithoutParts({"text", "shorten", "--json", "-w", "36", "Hello", "Letter"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(nlohmann::json::parse(outcome.output),
              nlohmann::json::parse(R"([{"text": "Hello", "width": 30, "shortened": "Hello", "shortened_width": 30},
                                        {"text": "Letter", "width": 36, "shortened": "Lett\u2026", "shortened_width": 30}])"));
}

TEST_F(LoadedLibraries, WithoutAnyPartWorkOnFilesWithPlainNamesGoesOn)
{
    makeFile("file", "text");
    for (const host_tests::Words &words : {host_tests::Words{"info", "file"}, {"copy", "file", "other"}, {"rename", "other", "another"}})
    {
        const Outcome outcome = zerbWithoutParts(words);
        EXPECT_EQ(outcome.status, 0) << words[0];
        EXPECT_EQ(outcome.errors, "") << words[0];
    }
}

TEST_F(LoadedLibraries, WithoutThePartThatKnowsCharactersANameThatNeedsItIsRefusedAndTheReasonTold)
{
    makeFile("file");
    const Outcome outcome = zerbWithoutParts({"rename", "file", "Re\u0301sume\u0301"});   // which is stored with its letters whole
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("paramErr (-50)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: the part that knows characters beyond ASCII cannot be loaded: "));
    EXPECT_THAT(outcome.errors, HasSubstr(path("program/zerbtext.so")));
    EXPECT_TRUE(std::filesystem::exists(path("file")));
}

// A program may change its current directory before it needs a part, and somebody else's file may lie there.
TEST_F(LoadedLibraries, PartsAreLookedForByAWholePathWhateverPathTheStandInWasFoundBy)
{
    makeFile("file");
    const Outcome outcome = zerbWithoutParts({"rename", "file", "Re\u0301sume\u0301"}, {"LD_LIBRARY_PATH=program"});
    EXPECT_THAT(outcome.errors, HasSubstr("cannot be loaded: " + path("program/zerbtext.so")));
}

TEST_F(LoadedLibraries, WithoutThePartThatKnowsCharactersAListingShowsThemAsEscapes)
{
    std::filesystem::create_directory(path("inside"));
    makeFile("inside/\u00FCber");
    const Outcome outcome = zerbWithoutParts({"find", "inside"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("inside/\\u{00FC}ber"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerbtext.so"));
}

TEST_F(LoadedLibraries, WithoutThePartThatKeepsFileIDsNoneAreGivenAndTheReasonTold)
{
    makeFile("file");
    const Outcome outcome = zerbWithoutParts({"id", "file"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("paramErr (-50)"));
    EXPECT_THAT(outcome.errors, HasSubstr("zerb: the part that keeps file IDs cannot be loaded: "));
    EXPECT_THAT(outcome.errors, HasSubstr(path("program/zerbdatabase.so")));
    EXPECT_FALSE(std::filesystem::exists(path("state")));
}

}   // namespace
