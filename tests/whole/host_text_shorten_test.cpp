// `zerb text shorten`: names from arguments or standard input, cut to a width.

#include "tests/whole/host_text.h"

#include <gmock/gmock.h>

namespace
{

using namespace std::string_literals;
using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::runHost;
using host_tests::Setting;
using host_tests::zerbText;
using nlohmann::json;
using testing::HasSubstr;

TEST(HostTextShorten, KeepsWhatFitsAndReservesASpace)
{
    // Five characters are 30 pixels wide; with the space in reserve they need 36.
    EXPECT_EQ(zerbText({"shorten", "--width", "36", "Hello"}).output, "Hello\n");
    EXPECT_EQ(zerbText({"shorten", "--width", "35", "Hello"}).output, "Hel\u2026\n");
    EXPECT_EQ(zerbText({"shorten", "-w", "24", "Hello"}).output, "He\u2026\n");
    EXPECT_EQ(zerbText({"shorten", "-w", "18", "Hello"}).output, "H\u2026\n");
}

TEST(HostTextShorten, NeverShowsALoneEllipsis)
{
    EXPECT_EQ(zerbText({"shorten", "-w", "17", "Hello"}).output, "\n");
    EXPECT_EQ(zerbText({"shorten", "-w", "12", "Hello", "H", ""}).output, "\nH\n\n");
}

TEST(HostTextShorten, TakesTheWidestAndTheLongest)
{
    const std::string longest(255, 'W');
    EXPECT_EQ(zerbText({"shorten", "-w", "32767", longest}).output, longest + "\n");
    EXPECT_EQ(zerbText({"shorten", "-w", "1535", longest}).output, longest.substr(0, 253) + "\u2026\n");
    EXPECT_EQ(zerbText({"shorten", "-w", "32767", longest + "W"}).status, 1);
}

TEST(HostTextShorten, TellsWidthsInJson)
{
    EXPECT_EQ(json::parse(zerbText({"shorten", "--json", "-w", "30", "R\u00E9sum\u00E9", "A"}).output), json::parse(R"([
        {"text": "Résumé", "width": 36, "shortened": "Rés…", "shortened_width": 24},
        {"text": "A", "width": 6, "shortened": "A", "shortened_width": 6}])"));
}

// Standard input comes from a file, through a shell.
class HostTextInput : public HostTest
{
protected:
    Outcome shortenFile(std::string_view content, const std::string &redirection = "< names") const
    {
        makeFile("names", content);
        Setting setting;
        setting.directory = folder().path();
        setting.program = "/bin/sh";
        return runHost({"-c", "exec '" + built("zerb") + "' text shorten --width 36 " + redirection}, setting);
    }
};

TEST_F(HostTextInput, IsTakenLineByLine)
{
    Outcome outcome = shortenFile("Hello\nGood morning\n\nlast without an end");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, "Hello\nGood\u2026\n\nlast\u2026\n");
}

TEST_F(HostTextInput, MayBeEmpty)
{
    EXPECT_EQ(shortenFile("").output, "");
    EXPECT_EQ(shortenFile("").status, 0);
    EXPECT_EQ(shortenFile("", "--json < names").output, "[]\n");
}

TEST_F(HostTextInput, IsNotReadWhereThereAreNames)
{
    EXPECT_EQ(shortenFile("Hello\n", "Name < names").output, "Name\n");
}

TEST_F(HostTextInput, WithHostileBytesIsRefusedLineByLine)
{
    Outcome outcome = shortenFile("a\0b\n\xFF\xFE\nHello\n"s + std::string(100000, 'x') + "\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "Hello\n");
    EXPECT_THAT(outcome.errors, HasSubstr("a\\x00b: has a zero byte"));
    EXPECT_THAT(outcome.errors, HasSubstr("\\xFF\\xFE: has a character that is not in Mac Roman, or is no UTF-8"));
    EXPECT_THAT(outcome.errors, HasSubstr("has 100000 characters"));
}

TEST_F(HostTextInput, ThatCannotBeReadIsAFailure)
{
    Outcome outcome = shortenFile("", "< .");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("standard input: cannot be read"));
}

}   // namespace
