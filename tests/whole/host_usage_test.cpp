// What the host `zerb` does before any command works: usage, help, the plug-in, and where paths begin.

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <unistd.h>

namespace
{

using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Setting;
using host_tests::Words;
using testing::HasSubstr;
using testing::StartsWith;

struct UsageCase
{
    const char *name;
    Words words;
    const char *complaint;
};

void PrintTo(const UsageCase &row, std::ostream *stream)
{
    *stream << row.name;
}

class HostUsage : public testing::TestWithParam<UsageCase>
{
};

TEST_P(HostUsage, IsRefusedWithStatus2)
{
    Outcome outcome = runHost(GetParam().words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("zerb: "));
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().complaint));
    EXPECT_THAT(outcome.errors, HasSubstr("--help` shows how"));
}

const UsageCase usageCases[] = {
    {"NoCommand", {}, "a command is missing"},
    {"NoSuchCommand", {"inf"}, "there is no command \"inf\""},
    {"NoPageOfThat", {"man", "inf"}, "there is no command \"inf\""},
    {"NoSuchShell", {"completions", "tcsh"}, "none of bash, fish, zsh"},
    {"EscapesInAName", {"\x1B[31m"}, "\"\\x1B[31m\""},
    {"NoPath", {"info"}, "PATH is required"},
    {"NoSuchOption", {"info", "--jason", "x"}, "--jason"},
    {"NothingToChange", {"set", "x"}, "nothing to change"},
    {"ShortCode", {"set", "--type", "TEX", "x"}, "--type: \"TEX\" has 3 characters"},
    {"BadDate", {"set", "--created", "soon", "x"}, "--created: \"soon\" is no date"},
    {"BadFlag", {"set", "--flags", "-isVisible", "x"}, "the flags are isOnDesk"},
    {"BadEncoding", {"set", "--encoding", "4294967296", "x"}, "not a number from 0 to 4294967295"},
    {"OptionTwice", {"set", "--type", "TEXT", "--type", "PICT", "x"}, "--type"},
    {"Contradiction", {"set", "--lock", "--unlock", "x"}, "contradicts"},
    {"FlagSetAndCleared", {"set", "--set-flags", "0x4000", "--visible", "x"}, "0x4000 are both"},
    {"NoDestination", {"attrs", "x"}, "DEST is required"},
    {"NoFolderToMoveTo", {"mv", "x"}, "the folder to move to is missing"},
    {"OneNameForTwo", {"mv", "--name", "n", "x", "y", "z"}, "only one object can get a name"},
    {"SlashInAName", {"rename", "x", "a/b"}, "NAME: \"a/b\" is no name"},
    {"UnknownOrder", {"ls", "--sort", "colour"}, "--sort: \"colour\" is none of name, size, date, type, none"},
    {"BothWays", {"rename", "--native", "--compat", "x", "y"}, "excludes --"},
    {"NoSize", {"find", "--larger", "much"}, "--larger: \"much\" is no size"},
    {"FlagSetAndClear", {"find", "--visible", "--flags", "+isInvisible"}, "both set and clear"},
    {"NoDestinationToCopyTo", {"copy", "x"}, "the destination is missing"},
    {"NoSuchTextEncoding",
     {"name", "short", "--encoding", "klingon", "x"},
     "--encoding: \"klingon\" is neither a number nor one of roman, "},
    {"HalfATriple", {"path", "--from", "Linux"}, "wants VOLUME DIRID"},
    {"FolderIDIsNoNumber", {"path", "--from", "Linux", "x"}, "\"x\" is not a number"},
    {"NoFileToImport", {"forks", "import", "x"}, "--from is required"},
    {"QuietProgress", {"rm", "--quiet", "--progress", "x"}, "excludes"},
};

INSTANTIATE_TEST_SUITE_P(Words, HostUsage, testing::ValuesIn(usageCases), [](const auto &row) { return row.param.name; });

TEST(HostHelp, ExplainsEveryCommandWithExamples)
{
    Outcome general = runHost({"--help"});
    EXPECT_EQ(general.status, 0);
    for (const char *command : {"info", "set", "touch", "attrs", "text", "ls",   "tree",   "find", "mv", "rename",
                                "swap", "rm",  "copy",  "forks", "path", "name", "access", "who",  "id", "cd"})
    {
        EXPECT_THAT(general.output, HasSubstr("\n  " + std::string(command) + " "));
        Outcome help = runHost({command, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_THAT(help.output, HasSubstr("\nExamples:\n  zerb " + std::string(command) + " "));
        EXPECT_EQ(runHost({"help", command}).output, help.output);
    }
}

TEST(HostHelp, NamesTheVersion)
{
    Outcome outcome = runHost({"--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("zerb "));
}

using HostPlugin = HostTest;

TEST_F(HostPlugin, IsLookedForWhereTheEnvironmentSays)
{
    makeFile("Letter");
    Outcome outcome = zerb({"info", "Letter"}, {"ZERB_PLUGIN=/no/such/zerb.so"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("tried:\n  /no/such/zerb.so: "));
    EXPECT_EQ(zerb({"info", "Letter"}, {"ZERB_PLUGIN=" + built("zerb.so")}).status, 0);
}

TEST_F(HostPlugin, ThatIsSomethingElseIsRefused)
{
    makeFile("Letter");
    makeFile("text.so", "this is no library");
    EXPECT_THAT(zerb({"info", "Letter"}, {"ZERB_PLUGIN=text.so"}).errors, HasSubstr("text.so"));
    Outcome outcome = zerb({"info", "Letter"}, {"ZERB_PLUGIN=" + built("libzerbstandin.so")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("does not have the function FS"));
}

TEST_F(HostPlugin, IsLookedForBesideTheProgramAndInTheLibraryFolder)
{
    makeFolder("bin");
    std::filesystem::copy_file(built("zerb"), path("bin/zerb"));
    Setting setting;
    setting.program = path("bin/zerb");
    setting.environment = {"LD_LIBRARY_PATH=" + built("")};
    Outcome outcome = runHost({"info", "/"}, setting);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("\n  " + path("bin/zerb.so") + ": "));
    EXPECT_THAT(outcome.errors, HasSubstr("\n  " + path("lib/zerb/zerb.so") + ": "));
    makeFolder("lib");
    makeFolder("lib/zerb");
    std::filesystem::copy_file(built("zerb.so"), path("lib/zerb/zerb.so"));
    EXPECT_EQ(runHost({"info", "/"}, setting).status, 0);
}

// A folder that serves as the startup volume, with a folder and a file in it, and a file outside.
class HostStartupVolume : public HostTest
{
protected:
    void SetUp() override
    {
        makeFolder("Disk");
        makeFolder("Disk/Inner");
        makeFile("Disk/Inner/Letter", "12345");
        makeFile("outside");
    }

    Outcome zerbIn(const std::string &directory, const Words &words, const std::string &options = "") const
    {
        Setting setting;
        setting.directory = directory;
        setting.environment = {"ZERB_STARTUP_VOLUME=" + path("Disk") + options};
        return runHost(words, setting);
    }
};

TEST_F(HostStartupVolume, IsWherePathsBegin)
{
    Outcome outcome = zerbIn("/", {"info", "--json", "/Inner/Letter"});
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    nlohmann::json letter = nlohmann::json::parse(outcome.output)[0];
    EXPECT_EQ(letter["path"], "/Inner/Letter");
    EXPECT_EQ(letter["volume"]["name"], "Disk");
    EXPECT_EQ(zerbIn("/", {"info", path("outside")}).status, 1);
}

TEST_F(HostStartupVolume, GivesRelativePathsTheCurrentDirectoryOnIt)
{
    for (const std::string &options : {std::string(), std::string(",nocopyfile")})
    {
        EXPECT_EQ(zerbIn(path("Disk/Inner"), {"info", "Letter"}, options).status, 0);
        EXPECT_EQ(zerbIn(path("Disk"), {"info", "Inner/Letter"}, options).status, 0);
        EXPECT_EQ(zerbIn(folder().path(), {"info", "Inner/Letter"}, options).status, 0) << "outside, they begin at its root";
        EXPECT_EQ(zerbIn(path("Disk/Inner"), {"info", "../../outside"}, options).status, 1);
    }
}

TEST_F(HostStartupVolume, ThatIsLockedRefusesChanges)
{
    Outcome outcome = zerbIn("/", {"set", "--type", "TEXT", "/Inner/Letter"}, ",locked");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("vLckdErr (-46)"));
    EXPECT_THAT(zerbIn("/", {"info", "/Inner/Letter"}, ",locked").output, HasSubstr("may change      no, vLckdErr (-46)"));
    EXPECT_THAT(zerbIn("/", {"touch", "/Inner/Letter"}, ",locked").errors, HasSubstr("vLckdErr (-46)"));
}

TEST_F(HostStartupVolume, ThatIsMissingIsNamed)
{
    Outcome outcome = zerbIn("/", {"info", "/"}, "x");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("ZERB_STARTUP_VOLUME"));
    EXPECT_THAT(outcome.errors, HasSubstr(path("Diskx")));
}

}   // namespace
