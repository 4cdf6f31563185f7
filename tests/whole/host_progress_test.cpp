// How far a long work has come: the texts, and when they are shown.

#include "host/progress.h"

#include <gmock/gmock.h>

#include <limits>

namespace
{

using host::Progress;
using host::ProgressDuration;
using host::ProgressStyle;
using host::ProgressUnit;
using testing::HasSubstr;
using testing::Not;

struct SizeCase
{
    UInt64 bytes;
    const char *text;
};

TEST(HostProgress, SizesHaveTwoDigitsOrMore)
{
    const SizeCase cases[] = {
        {0, "0 bytes"},
        {1, "1 byte"},
        {999, "999 bytes"},
        {1000, "1.0 kB"},
        {1049, "1.0 kB"},
        {1050, "1.1 kB"},
        {9949, "9.9 kB"},
        {9950, "10 kB"},
        {12345, "12 kB"},
        {999499, "999 kB"},
        {999500, "1.0 MB"},
        {1000000, "1.0 MB"},
        {345678901, "346 MB"},
        {UINT64_C(7260000000000), "7.3 TB"},
        {std::numeric_limits<UInt64>::max(), "18 EB"},
    };
    for (const SizeCase &row : cases)
        EXPECT_EQ(host::sizeText(row.bytes), row.text) << row.bytes;
}

TEST(HostProgress, DurationsAreShortAndBounded)
{
    auto text = [](double seconds) { return host::durationText(ProgressDuration(seconds)); };
    EXPECT_EQ(text(-1), "0 s");
    EXPECT_EQ(text(59.4), "59 s");
    EXPECT_EQ(text(59.6), "1:00");
    EXPECT_EQ(text(3599), "59:59");
    EXPECT_EQ(text(7384), "2:03:04");
    EXPECT_EQ(text(1e30), "99 hours and more");
    EXPECT_EQ(text(std::numeric_limits<double>::infinity()), "99 hours and more");
    EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "99 hours and more");
}

TEST(HostProgress, TextsTellOnlyWhatIsKnown)
{
    host::ProgressState state{"deleting", ProgressUnit::objects, 0, {}, ProgressDuration(10)};
    EXPECT_EQ(host::progressText(state), "deleting: 0 objects");
    state.done = 1;
    EXPECT_EQ(host::progressText(state), "deleting: 1 object, 0 a second");
    state.total = 3400;
    state.done = 1000;
    EXPECT_EQ(host::progressText(state), "deleting: 1,000 of 3,400 objects, 100 a second, 24 s left");
    state.elapsed = ProgressDuration(0.4);
    EXPECT_EQ(host::progressText(state), "deleting: 1,000 of 3,400 objects") << "too early for a rate";
    host::ProgressState bytes{"copying", ProgressUnit::bytes, 2000000, UInt64(6000000), ProgressDuration(100)};
    EXPECT_EQ(host::progressText(bytes), "copying: 2.0 MB of 6.0 MB, 20 kB/s, 3:20 left");
    bytes.done = 7000000;
    EXPECT_EQ(host::progressText(bytes), "copying: 7.0 MB of 6.0 MB, 70 kB/s") << "more than was expected";
}

// A progress on a file, with a clock that the test sets.
class HostProgressShown : public testing::Test
{
protected:
    HostProgressShown() : stream_(std::tmpfile()) {}
    ~HostProgressShown() override { std::fclose(stream_); }

    std::unique_ptr<Progress> make(ProgressStyle style)
    {
        return std::make_unique<Progress>(style, "deleting", ProgressUnit::objects, UInt64(100), stream_, [this] { return now_; });
    }

    void wait(double seconds) { now_ += ProgressDuration(seconds); }

    std::string shown()
    {
        std::fflush(stream_);
        std::rewind(stream_);
        char buffer[4096];
        return std::string(buffer, std::fread(buffer, 1, sizeof buffer, stream_));
    }

private:
    std::FILE *stream_;
    ProgressDuration now_{0};
};

TEST_F(HostProgressShown, IsDrawnTenTimesASecondAtMostAndTakenAway)
{
    std::unique_ptr<Progress> progress = make(ProgressStyle::redrawn);
    for (int step = 0; step < 99; ++step)
    {
        wait(0.01);
        progress->advance(1);
    }
    progress.reset();
    std::string text = shown();
    std::size_t drawings = 0;
    for (std::size_t place = 0; (place = text.find("deleting", place)) != std::string::npos; ++place)
        ++drawings;
    EXPECT_GE(drawings, 7u);
    EXPECT_LE(drawings, 9u);
    EXPECT_TRUE(text.ends_with("\r\033[K"));
    EXPECT_THAT(text, Not(HasSubstr("\n")));
}

TEST_F(HostProgressShown, OfShortWorkIsNotSeen)
{
    std::unique_ptr<Progress> progress = make(ProgressStyle::redrawn);
    progress->advance(100);
    progress.reset();
    EXPECT_EQ(shown(), "");
}

TEST_F(HostProgressShown, AsLinesHasOneEachSecondAndALastOne)
{
    std::unique_ptr<Progress> progress = make(ProgressStyle::lines);
    for (int step = 0; step < 4; ++step)
    {
        wait(0.5);
        progress->advance(10);
    }
    wait(0.5);
    progress.reset();
    EXPECT_EQ(shown(), "deleting: 20 of 100 objects, 20 a second, 4 s left\n"
                       "deleting: 40 of 100 objects, 20 a second, 3 s left\n"
                       "deleting: 40 of 100 objects, 16 a second, 4 s left\n");
}

TEST_F(HostProgressShown, ThatIsNotWantedSaysNothing)
{
    std::unique_ptr<Progress> progress = make(ProgressStyle::none);
    wait(5);
    progress->advance(10);
    progress->clear();
    progress.reset();
    EXPECT_EQ(shown(), "");
}

TEST_F(HostProgressShown, MakesRoomForOtherLines)
{
    std::unique_ptr<Progress> progress = make(ProgressStyle::redrawn);
    wait(0.2);
    progress->advance(1);
    progress->clear();
    progress->clear();
    EXPECT_EQ(shown(), "\rdeleting: 1 of 100 objects\033[K\r\033[K");
}

}   // namespace
