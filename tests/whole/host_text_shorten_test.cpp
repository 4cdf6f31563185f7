// `zerb text shorten`: names from arguments or standard input, cut to a width.

#include "tests/whole/host_text.h"

#include "platform/drawing.h"

#include <gmock/gmock.h>

#include <cstring>

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

// In Mac Roman.
int widthOf(const std::string &characters)
{
    Str255 text = {static_cast<unsigned char>(characters.size())};
    std::memcpy(text + 1, characters.data(), characters.size());
    return StringWidth(text);
}

const std::string ellipsis = "\xC9";

int space()
{
    return CharWidth(' ');
}

int smallestWidth()
{
    return space() + widthOf(ellipsis);
}

// What is left of an ASCII text, in UTF-8.
std::string shortened(const std::string &text, int width)
{
    if (widthOf(text) + space() <= width)
        return text;
    std::string kept = text;
    do
    {
        if (kept.size() < 2)
            return "";
        kept.resize(kept.size() - (kept.size() == text.size() ? 2 : 1));   // a character goes, and the last that stays becomes the ellipsis
    } while (widthOf(kept + ellipsis) + space() > width);
    return kept.empty() ? "" : kept + "\u2026";
}

std::string shortenedByHost(const std::string &text, int width)
{
    return zerbText({"shorten", "--width", std::to_string(width), text}).output;
}

TEST(HostTextShorten, KeepsWhatFitsAndReservesASpace)
{
    const int needed = widthOf("Hello") + space();
    EXPECT_EQ(shortenedByHost("Hello", needed), "Hello\n");
    EXPECT_EQ(shortenedByHost("Hello", needed - 1), shortened("Hello", needed - 1) + "\n");
    EXPECT_EQ(zerbText({"shorten", "-w", std::to_string(widthOf("H" + ellipsis) + space()), "Hello"}).output, "H\u2026\n");
    for (int width = smallestWidth(); width < needed; width += 5)
        EXPECT_EQ(shortenedByHost("Hello", width), shortened("Hello", width) + "\n") << width;
}

TEST(HostTextShorten, NeverShowsALoneEllipsis)
{
    EXPECT_EQ(shortenedByHost("Hello", widthOf("H" + ellipsis) + space() - 1), "\n");
    EXPECT_EQ(zerbText({"shorten", "-w", std::to_string(smallestWidth()), "Hello", "i", ""}).output,
              "\n" + shortened("i", smallestWidth()) + "\n\n");
}

TEST(HostTextShorten, RefusesAWidthThatNotEvenAnEllipsisFitsIn)
{
    const Outcome outcome = zerbText({"shorten", "-w", std::to_string(smallestWidth() - 1), "Hello"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("a space and an ellipsis take " + std::to_string(smallestWidth())));
}

TEST(HostTextShorten, TakesTheWidestAndTheLongest)
{
    const std::string longest(255, 'W');
    const int justTooNarrow = widthOf(longest) + space() - 1;
    EXPECT_EQ(zerbText({"shorten", "-w", "32767", longest}).output, longest + "\n");
    EXPECT_EQ(shortenedByHost(longest, justTooNarrow), shortened(longest, justTooNarrow) + "\n");
    EXPECT_EQ(zerbText({"shorten", "-w", "32767", longest + "W"}).status, 1);
}

TEST(HostTextShorten, TellsWidthsInJson)
{
    const int width = widthOf("R\x8Es" + ellipsis) + space();   // all but the last three characters, and an ellipsis
    ASSERT_LT(width, widthOf("R\x8Esum\x8E") + space());
    EXPECT_EQ(json::parse(zerbText({"shorten", "--json", "-w", std::to_string(width), "R\u00E9sum\u00E9", "A"}).output),
              json::array({{{"text", "R\u00E9sum\u00E9"},
                            {"width", widthOf("R\x8Esum\x8E")},
                            {"shortened", "R\u00E9s\u2026"},
                            {"shortened_width", width - space()}},
                           {{"text", "A"}, {"width", widthOf("A")}, {"shortened", "A"}, {"shortened_width", widthOf("A")}}}));
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
        return runHost({"-c", "exec '" + built("zerb") + "' text shorten --width " + std::to_string(width_) + " " + redirection}, setting);
    }

    const int width_ = widthOf("Hello") + space();
};

TEST_F(HostTextInput, IsTakenLineByLine)
{
    Outcome outcome = shortenFile("Hello\nGood morning\n\nlast without an end");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, "Hello\n" + shortened("Good morning", width_) + "\n\n" + shortened("last without an end", width_) + "\n");
}

TEST_F(HostTextInput, MayBeEmpty)
{
    EXPECT_EQ(shortenFile("").output, "");
    EXPECT_EQ(shortenFile("").status, 0);
    EXPECT_EQ(shortenFile("", "--json < names").output, "[]\n");
}

TEST_F(HostTextInput, IsNotReadWhereThereAreNames)
{
    EXPECT_EQ(shortenFile("Hello\n", "Me < names").output, "Me\n");
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
