// Text is measured on many threads at once, while one draws; the first of them opens the font.
#include "tests/standin/processes.h"
#include "tests/standin/test_port.h"

#include <thread>

namespace
{

constexpr int threadCount = 8, drawings = 2000;
using Widths = std::vector<int>;

// Of single bytes, and of more two-byte characters than are kept.
Widths measuredWidths()
{
    Widths widths;
    for (int code = 0; code < 256; ++code)
        widths.push_back(CharWidth(static_cast<SInt16>(code)));
    for (int trail = 0x80; trail < 0xF0; ++trail)
        for (int lead = 0x88; lead < 0x92; ++lead)
        {
            const unsigned char text[] = {3, static_cast<unsigned char>(lead), static_cast<unsigned char>(trail), 'x'};
            widths.push_back(StringWidth(text));
        }
    return widths;
}

void drawPairs()
{
    support::TestPort port(40, 20);
    for (int round = 0; round < drawings; ++round)
    {
        const unsigned char text[] = {2, static_cast<unsigned char>(0x88 + round % 10), static_cast<unsigned char>(0x9F + round % 80)};
        MoveTo(0, 15);
        DrawString(text);
    }
}

const support::Role measuresOnManyThreads("measuresOnManyThreads", [](const support::RoleArguments &) {
    std::vector<Widths> widths(threadCount);
    std::vector<std::thread> threads;
    for (Widths &measured : widths)
        threads.emplace_back([&measured] { measured = measuredWidths(); });
    drawPairs();
    for (std::thread &thread : threads)
        thread.join();
    for (const Widths &measured : widths)
        EXPECT_EQ(measured, measuredWidths());
});

TEST(ThreadsDrawing, TextIsMeasuredOnManyAtOnce)
{
    support::playRole("measuresOnManyThreads", {}, {0, {"LC_ALL=ja_JP.UTF-8"}});
}

}   // namespace
