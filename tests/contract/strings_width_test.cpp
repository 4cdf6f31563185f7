// Fitting a text to a width: what is measured, how often, and what is left of the text.
//
// On the double a space is 5 pixels wide, an ellipsis 11 and every other character 8.

#include "tests/contract/strings_fixture.h"

#include <limits>

namespace
{

class StringsWidth : public testing::Test
{
protected:
    // The width to pass for texts of this width to fit: one space is held in reserve.
    static int widthFor(int limit) { return limit + 5; }

    static std::string ellipses(std::size_t count) { return std::string(count, static_cast<char>(0xC9)); }

    static std::string measured(const std::string &characters) { return "StringWidth(\"" + characters + "\")"; }

    PlatformDouble platform;
};

const std::string spaceMeasured = "CharWidth(32)";

TEST_F(StringsWidth, TextThatFitsIsLeftAsItIs)
{
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), widthFor(40));
    EXPECT_TRUE(text.isUntouched());
    EXPECT_EQ(platform.calls(), (Calls{spaceMeasured, measured("Hello")}));
}

TEST_F(StringsWidth, OnePixelTooFewTakesTwoCharactersForTheEllipsis)
{
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), widthFor(39));
    EXPECT_TRUE(text.holds("\x04Hel\xC9o")) << "the byte behind the new end stays";
    EXPECT_EQ(platform.calls(), (Calls{spaceMeasured, measured("Hello"), measured("Hel\xC9")}));
}

TEST_F(StringsWidth, CutTextMayBeExactlyAsWideAsTheLimit)
{
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), widthFor(35));
    EXPECT_TRUE(text.holds("\x04Hel\xC9o"));
}

TEST_F(StringsWidth, MeasuresAfterEveryCharacter)
{
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), widthFor(34));
    EXPECT_TRUE(text.holds("\x03He\xC9\xC9o"));
    EXPECT_EQ(platform.calls(), (Calls{spaceMeasured, measured("Hello"), measured("Hel\xC9"), measured("He\xC9")}));
}

TEST_F(StringsWidth, OneCharacterAndAnEllipsisAreTheLeastThatIsShown)
{
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), widthFor(19));
    EXPECT_TRUE(text.holds("\x02H\xC9\xC9\xC9o"));
}

TEST_F(StringsWidth, LoneEllipsisIsNotShown)
{
    for (const int limit : {18, 11})
    {
        platform.forgetCalls();
        Buffer text(pascal("Hello"));
        AdjustStrWidth(text.text(), widthFor(limit));
        EXPECT_TRUE(text.holds(std::string(1, '\0') + ellipses(4) + "o"));
        EXPECT_EQ(platform.calls(),
                  (Calls{spaceMeasured, measured("Hello"), measured("Hel\xC9"), measured("He\xC9"), measured("H\xC9"), measured("\xC9")}));
    }
}

TEST_F(StringsWidth, EllipsisThatFitsAtOnceIsAnyCharacter)
{
    Buffer text(pascal("\xC9"));
    AdjustStrWidth(text.text(), widthFor(11));
    EXPECT_TRUE(text.isUntouched());
}

TEST_F(StringsWidth, OneCharacterThatFitsStays)
{
    Buffer text(pascal("W"));
    AdjustStrWidth(text.text(), widthFor(8));
    EXPECT_TRUE(text.isUntouched());
    EXPECT_EQ(platform.calls(), (Calls{spaceMeasured, measured("W")}));
}

// The ellipsis goes over the length byte, which makes the text 201 bytes long, and from there it comes down again.
TEST_F(StringsWidth, OneCharacterThatDoesNotFitEndsEmptyAfterGoingRoundOverTheBuffer)
{
    platform.text.characterWidths['W'] = 30;
    Buffer text(pascal("W"));
    AdjustStrWidth(text.text(), widthFor(11));
    EXPECT_TRUE(text.holds(std::string(1, '\0') + ellipses(200)));

    const Calls &calls = platform.calls();
    ASSERT_EQ(calls.size(), 2u + 201u);
    EXPECT_EQ(calls[1], measured("W"));
    EXPECT_EQ(calls[2].size(), measured("").size() + 201) << "the text of 201 bytes is measured too";
    EXPECT_EQ(calls[3].size(), measured("").size() + 200);
    EXPECT_EQ(calls.back(), measured("\xC9"));
}

// What lies in the buffer may be narrow: then the text ends wherever it happens to fit.
TEST_F(StringsWidth, GoingRoundStopsWhereTheBufferHappensToFit)
{
    platform.text.nextStringWidths = {100, 11};
    Buffer text(pascal("W"));
    AdjustStrWidth(text.text(), widthFor(11));
    EXPECT_TRUE(text.holds("\xC9"));

    platform.text.nextStringWidths = {100, 12, 12, 11};
    Buffer other(pascal("W"));
    const std::string first198(reinterpret_cast<const char *>(other.text() + 1), 198);
    AdjustStrWidth(other.text(), widthFor(11));
    EXPECT_TRUE(other.holds('\xC7' + first198 + ellipses(2)));
}

// Where not even the ellipsis fits it goes round and round. The answers end that in the third round.
TEST_F(StringsWidth, LimitNarrowerThanAnEllipsisGoesOnAndOn)
{
    platform.text.nextStringWidths.assign(3 + 2 * 201, 12);
    Buffer text(pascal("Hi"));
    AdjustStrWidth(text.text(), widthFor(11));
    EXPECT_TRUE(text.holds(std::string(1, '\0') + ellipses(200)));
    EXPECT_EQ(platform.calls().size(), 1u + 2u + 3 * 201u);
}

TEST_F(StringsWidth, EmptyStringIsNeverChanged)
{
    for (const int width : {100, 5, 4, 0, -100})
    {
        platform.forgetCalls();
        Buffer text(pascal(""));
        AdjustStrWidth(text.text(), width);
        EXPECT_TRUE(text.isUntouched()) << width;
        EXPECT_EQ(platform.calls(), (Calls{spaceMeasured, measured("")}));
    }
}

TEST_F(StringsWidth, LongestTextIsCutLikeAnyOther)
{
    Buffer text(pascal(std::string(255, 'm')));
    AdjustStrWidth(text.text(), widthFor(8 * 100 + 11));
    EXPECT_TRUE(text.holds('\x65' + std::string(100, 'm') + ellipses(154) + 'm'));
    EXPECT_EQ(platform.calls().size(), 2u + 154u);
}

TEST_F(StringsWidth, ReserveIsTheWidthOfTheSpace)
{
    platform.text.characterWidths[' '] = 0;
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), 40);
    EXPECT_TRUE(text.isUntouched());
    platform.text.characterWidths[' '] = 1;
    AdjustStrWidth(text.text(), 40);
    EXPECT_EQ(charactersOf(text.text()), "Hel\xC9");
}

TEST_F(StringsWidth, NegativeAnswersAreNumbersLikeOthers)
{
    platform.text.nextStringWidths = {-1};
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), widthFor(-1));
    EXPECT_TRUE(text.isUntouched());
}

// 32-bit arithmetic wraps around: five less than the smallest width is a very large one.
TEST_F(StringsWidth, LimitWrapsAround)
{
    Buffer text(pascal("Hello"));
    AdjustStrWidth(text.text(), std::numeric_limits<int>::min());
    EXPECT_TRUE(text.isUntouched());
    AdjustStrWidth(text.text(), std::numeric_limits<int>::max());
    EXPECT_TRUE(text.isUntouched());
}

}   // namespace
