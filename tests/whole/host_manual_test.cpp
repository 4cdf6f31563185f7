// Manual pages and what shells complete, as far as they are made of a list: what stands in it comes out as those who read it take it.

#include "host/completions.h"
#include "host/manual_page.h"

#include "tests/whole/host_program.h"

#include <gmock/gmock.h>

namespace
{

using host::Argument;
using host::ArgumentList;
using host_tests::HostTest;
using testing::HasSubstr;
using testing::StartsWith;

ArgumentList sampleCommand()
{
    ArgumentList command{"zerb sample",
                         {"Samples of a kind", "It's a \\sample.\n.br is no command.\n  a  table\n\nAnd more.\n", "  zerb sample -a\n"},
                         {},
                         {}};
    command.arguments.push_back({{"-a", "--all"}, "", "all [of] it: everything's", false, false});
    command.arguments.push_back({{"--kind"}, "file|folder", "of which kind", false, false});
    command.arguments.push_back({{"--flag"}, "+NAME|-NAME", "no choice", false, false});
    command.arguments.push_back({{}, "PATH", "paths", true, true});
    return command;
}

TEST(HostManual, PageSaysWhatTheListSays)
{
    const std::string page = host::commandPage(sampleCommand(), "1.2.3");
    EXPECT_THAT(page, HasSubstr(".TH \"ZERB\\-SAMPLE\" 1 \"\" \"zerb 1.2.3\" \"User Commands\"\n"));
    EXPECT_THAT(page, HasSubstr(".SH NAME\nzerb\\-sample \\- Samples of a kind\n"));
    EXPECT_THAT(page, HasSubstr("\\fBzerb sample\\fR [\\fIOPTION\\fR]... \\fIPATH\\fR...\n"));
    EXPECT_THAT(page, HasSubstr(".TP\n\\fB\\-a\\fR, \\fB\\-\\-all\\fR\nall [of] it: everything\\(aqs\n"));
    EXPECT_THAT(page, HasSubstr(".TP\n\\fB\\-\\-kind\\fR \\fIfile|folder\\fR\n"));
}

TEST(HostManual, TextIsNoCommandOfThePage)
{
    const std::string page = host::commandPage(sampleCommand(), "1.2.3");
    EXPECT_THAT(page, HasSubstr("It\\(aqs a \\esample.\n\\&.br is no command.\n"));
    EXPECT_THAT(page, HasSubstr(".PP\n.nf\n  a  table\n.fi\n.PP\nAnd more.\n"));
}

TEST(HostManual, OnlyWordsAreAChoice)
{
    const ArgumentList command = sampleCommand();
    EXPECT_EQ(host::choicesOf(command.arguments[0]), std::vector<std::string>{});
    EXPECT_EQ(host::choicesOf(command.arguments[1]), (std::vector<std::string>{"file", "folder"}));
    EXPECT_EQ(host::choicesOf(command.arguments[2]), std::vector<std::string>{});
    EXPECT_TRUE(host::takesPath(command.arguments[3]));
    EXPECT_FALSE(host::takesPath(command.arguments[1]));
}

TEST(HostManual, ShellsAreToldTheSame)
{
    const std::vector<ArgumentList> commands = {sampleCommand()};
    EXPECT_THAT(host::bashCompletions(commands),
                HasSubstr("'sample --kind') COMPREPLY=($(compgen -W 'file folder' -- \"$current\")) && return ;;"));
    EXPECT_THAT(host::fishCompletions(commands),
                HasSubstr("complete -c zerb -n '__zerb_at sample' -s a -l all -d 'all [of] it: everything\\'s'\n"));
    EXPECT_THAT(host::zshCompletions(commands), HasSubstr("'(-a --all)'{-a,--all}'[all \\[of\\] it\\: everything'\\''s]'"));
    EXPECT_THAT(host::zshCompletions(commands), HasSubstr("'--kind=[of which kind]:file|folder:(file folder)'"));
}

class HostManualPages : public HostTest
{
};

TEST_F(HostManualPages, AreWrittenWithoutAPlugIn)
{
    EXPECT_THAT(zerb({"man", "copy"}, {"ZERB_PLUGIN=nowhere"}).output, HasSubstr(".TH \"ZERB\\-COPY\" 1"));
    EXPECT_THAT(zerb({"completions", "zsh"}, {"ZERB_PLUGIN=nowhere"}).output, StartsWith("#compdef zerb\n"));
}

TEST_F(HostManualPages, AreSavedAllOrOneByOne)
{
    makeFolder("all");
    makeFolder("one");
    zerbWell({"man", "--save", "all"});
    zerbWell({"man", "--save", "one", "copy"});
    EXPECT_TRUE(std::filesystem::exists(path("all/zerb.1")));
    EXPECT_TRUE(std::filesystem::exists(path("all/zerb-completions.1")));
    EXPECT_TRUE(std::filesystem::exists(path("one/zerb-copy.1")));
    EXPECT_FALSE(std::filesystem::exists(path("one/zerb.1")));
}

TEST_F(HostManualPages, ThatCannotBeSavedAreAFailure)
{
    const host_tests::Outcome outcome = zerb({"man", "--save", "nowhere", "copy"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("nowhere/zerb-copy.1"));
}

}   // namespace
