// A display of its own for a test, with a real mouse, and what it shows.
#pragma once

#include "tests/standin/disks.h"
#include "tests/standin/pictures.h"
#include "tests/standin/processes.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host_tests
{

// Looks again and again until it is so. Result: false if it is not after so many seconds.
bool comesTrue(const std::function<bool()> &condition, int seconds = 10);

// An X server without a screen, which keeps its pixels in a file. It ends with the object.
class RealDisplay
{
public:
    // Why there can be none here, for GTEST_SKIP(); empty if there can.
    static std::string problem();

    RealDisplay();

    bool isThere() const { return !name_.empty(); }
    // What a program needs in its environment to come up here and nowhere else. Without a bus's address it would start one for the display,
    // and that would outlive the test.
    std::vector<std::string> environment() const;

    // Runs xdotool with these words: "mousemove", "10", "20".
    void act(const std::vector<std::string> &words) const;

    // 0xRRGGBB.
    std::uint32_t pixelAt(int h, int v) const;
    support::Picture picture() const;   // without pixels if the server does not tell

private:
    support::TemporaryFolder folder_;
    std::optional<support::Running> server_;
    std::string name_;   // as DISPLAY has it
};

}   // namespace host_tests
