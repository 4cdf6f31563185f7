// `zerb dialog`: by a script without a display, and on a real display with a real mouse.

#include "tests/whole/host_program.h"
#include "tests/whole/real_display.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{

using host_tests::comesTrue;
using host_tests::HostTest;
using host_tests::Outcome;
using host_tests::RealDisplay;
using host_tests::Words;
using nlohmann::json;
using testing::HasSubstr;

const Words noDisplay = {"DISPLAY=", "WAYLAND_DISPLAY=", "SDL_VIDEODRIVER="};

class HostDialog : public HostTest
{
protected:
    Outcome scripted(const std::string &script, Words words = {}) const
    {
        makeFile("script", script);
        words.insert(words.begin(), {"dialog", "--script", "script"});
        return zerb(words, noDisplay);
    }

    std::string made(const std::string &description) const
    {
        makeFile("description", description);
        zerbWell({"rsrc", "make", "--replace", "description", "made.rsrc"});
        return "made.rsrc";
    }
};

// The sample's dialog lies at 332, 202; its buttons' icons at 360, 460 and 560 across, and 246 down.
TEST_F(HostDialog, TellsEveryKindOfClick)
{
    const Outcome outcome = scripted("1 mouse 376 262\n5 down\n10 mouse 700 600\n15 mouse 376 262\n20 up\n"
                                     "30 mouse 376 262\n35 down\n40 mouse 700 600\n50 up\n"
                                     "60 mouse 476 262\n70 down\n80 up\n"
                                     "100 mouse 476 262\n110 down\n200 mouse 560 213\n210 up\n"
                                     "220 mouse 368 344\n225 down\n320 mouse 420 368\n330 up\n"
                                     "340 mouse 640 344\n345 down\n350 up\n"
                                     "360 mouse 645 380\n365 down\n370 up\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, "item 2: icon button 128: clicked\n"
                              "item 2: icon button 128: released outside\n"
                              "item 3: icon button 129: clicked, or chosen: item 1 (By Name)\n"
                              "item 3: icon button 129: chosen: item 2 (By Date)\n"
                              "item 4: small icon 128: chosen: item 3 (By Size)\n"
                              "item 8: small icon 129: clicked\n"
                              "item 1: Done\n");
}

TEST_F(HostDialog, TellsInJsonLineByLine)
{
    const Outcome outcome = scripted("100 mouse 476 262\n110 down\n200 mouse 560 213\n210 up\n220 close\n", {"--json"});
    EXPECT_EQ(outcome.status, 0);
    std::istringstream lines(outcome.output);
    std::string first, second, third;
    std::getline(lines, first);
    std::getline(lines, second);
    EXPECT_FALSE(std::getline(lines, third));
    EXPECT_EQ(json::parse(first),
              json::parse(R"({"item": 3, "kind": "icon button", "icon": 129, "result": 2, "menu": 128, "text": "By Date"})"));
    EXPECT_EQ(json::parse(second), json::parse(R"({"ended": "closed"})"));
}

TEST_F(HostDialog, ShowsAnAlertAndGoesOn)
{
    const Outcome outcome = scripted("1 mouse 576 262\n5 down\n10 up\n40 picture alert.png\n50 key return\n60 key escape\n");
    EXPECT_EQ(outcome.output, "item 7: icon button 130: clicked\nitem 1: Done\n");
    const support::Picture picture = support::readPicture(path("alert.png"));
    ASSERT_EQ(picture.width, 1024);
    EXPECT_EQ(picture.pixels[105 * 1024 + 103] & 0xFFFFFF, 0xCC1111u);   // the sign to stop
}

TEST_F(HostDialog, EndsWhenTheScriptDoesAndSavesWhatItShows)
{
    const Outcome outcome = scripted("5 mouse 1 1", {"--screenshot", "dialog.png"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "ended\n");
    const support::Picture picture = support::readPicture(path("dialog.png"));
    EXPECT_EQ(picture.width, 360);
    EXPECT_EQ(picture.height, 200);
    const Outcome refused = scripted("5 mouse 1 1", {"--screenshot", "no/such/folder.png"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors, HasSubstr("no/such/folder.png"));
}

TEST_F(HostDialog, SaysWhatIsMissing)
{
    EXPECT_THAT(zerb({"dialog"}, noDisplay).errors, HasSubstr("there is no display"));
    EXPECT_EQ(zerb({"dialog"}, noDisplay).status, 1);
    EXPECT_THAT(zerb({"dialog"}, {"DISPLAY=:54321", "WAYLAND_DISPLAY=", "SDL_VIDEODRIVER="}).errors, HasSubstr("nobody could answer"));
    EXPECT_THAT(scripted("nonsense").errors, HasSubstr("line 1 of the script"));
    EXPECT_THAT(scripted("1 up", {"--dialog", "999"}).errors, HasSubstr("no dialog 999"));
    EXPECT_THAT(scripted("1 up", {"nothing.rsrc"}).errors, HasSubstr("fnfErr"));
    EXPECT_THAT(zerb({"dialog"}, {"ZERB_STARTUP_VOLUME=" + folder().path()}).errors, HasSubstr("do without ZERB_STARTUP_VOLUME"));
    EXPECT_THAT(zerb({"dialog", "--script", "nowhere"}, noDisplay).errors, HasSubstr("nowhere"));
    makeFile("text", "no resources");
    EXPECT_EQ(scripted("1 up", {"text"}).status, 1);
}

TEST_F(HostDialog, RefusesRowsThatItDoesNotUnderstand)
{
    const std::string dialog = "'DLOG' 128\n    bounds 60 60 160 260\n    items 128\n"
                               "'DITL' 128\n    button 70 120 90 180 \"Done\"\n    user 10 10 42 42\n";
    for (const char *row :
         {"2 knob 128", "2 button", "2 button 99999", "button 128", "2 button 128 menu", "2 button 128 color 3", "", "2x button 1"})
    {
        const Outcome outcome = scripted("1 up", {made(dialog + "'STR#' 128\n    \"" + row + "\"\n")});
        EXPECT_EQ(outcome.status, 1) << row;
        EXPECT_THAT(outcome.errors, HasSubstr("'STR#' 128")) << row;
    }
    const Outcome damaged = scripted("1 up", {made(dialog + "'STR#' 128\n    bytes 00 02 05 41\n")});
    EXPECT_THAT(damaged.errors, HasSubstr("damaged"));
    EXPECT_EQ(scripted("5 key return", {made(dialog)}).output, "item 1: Done\n");   // without any rows
}

// On a real display. Each state's picture is kept in `display` beside the folder of the programs.
class HostDialogOnDisplay : public HostTest
{
protected:
    void SetUp() override
    {
        if (!RealDisplay::problem().empty())
            GTEST_SKIP() << RealDisplay::problem();
        display_ = std::make_unique<RealDisplay>();
        ASSERT_TRUE(display_->isThere());
        std::filesystem::create_directories(pictures_);
        const std::string line = "exec " + built("zerb") + " dialog >" + path("told") + " 2>&1";
        host_.emplace(support::start({"sh", "-c", line}, display_->environment()));
        ASSERT_TRUE(shows(folderPixel, folderColor)) << told();
    }

    void TearDown() override
    {
        if (HasFailure())
            ADD_FAILURE() << "the host told: " << told();
    }

    std::string told() const
    {
        std::ifstream file(path("told"));
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

    struct Place
    {
        int h, v;
    };

    // Of the sample's dialog, which lies in the middle of the screen
    static constexpr Place folderPixel = {380, 261}, documentPixel = {639, 345}, menuFrame = {524, 210}, byDate = {606, 212};
    static constexpr Place alertSign = {103, 105};
    static constexpr std::uint32_t folderColor = 0xFFCC66, white = 0xFFFFFF, black = 0x000000, highlight = 0x3355AA, red = 0xCC1111;

    bool shows(Place place, std::uint32_t color) const
    {
        return comesTrue([&] { return display_->pixelAt(place.h, place.v) == color; });
    }
    bool showsOtherThan(Place place, std::uint32_t color) const
    {
        return comesTrue([&] { return display_->pixelAt(place.h, place.v) != color; });
    }
    bool tells(const std::string &line, int times = 1) const
    {
        return comesTrue([&] {
            int found = 0;
            const std::string all = told();
            for (std::size_t at = 0; (at = all.find(line + "\n", at)) != std::string::npos; at += line.size())
                ++found;
            return found >= times;
        });
    }

    void moveTo(int h, int v) const { display_->act({"mousemove", std::to_string(h), std::to_string(v)}); }
    void press() const { display_->act({"mousedown", "1"}); }
    void release() const { display_->act({"mouseup", "1"}); }
    void key(const std::string &name) const { display_->act({"key", name}); }
    void keepPicture(const std::string &name) const
    {
        EXPECT_TRUE(support::writePicture(display_->picture(), pictures_ / (name + ".png")));
    }
    void expectEnd() { EXPECT_EQ(host_->wait().status, 0); }

    const std::filesystem::path pictures_ = std::filesystem::path(built("zerb")).parent_path().parent_path() / "display";
    std::unique_ptr<RealDisplay> display_;
    std::optional<support::Running> host_;
};

TEST_F(HostDialogOnDisplay, FollowsTheMouseOnAnIconButton)
{
    keepPicture("dialog");
    moveTo(376, 262);
    press();
    EXPECT_TRUE(showsOtherThan(folderPixel, folderColor));
    keepPicture("button_pressed");
    moveTo(900, 700);   // outside the window
    EXPECT_TRUE(shows(folderPixel, folderColor));
    keepPicture("button_left");
    moveTo(376, 262);
    EXPECT_TRUE(showsOtherThan(folderPixel, folderColor));
    release();
    EXPECT_TRUE(tells("item 2: icon button 128: clicked"));
    EXPECT_TRUE(shows(folderPixel, folderColor));
    press();
    EXPECT_TRUE(showsOtherThan(folderPixel, folderColor));
    moveTo(900, 700);
    EXPECT_TRUE(shows(folderPixel, folderColor));
    release();
    EXPECT_TRUE(tells("item 2: icon button 128: released outside"));
    key("Return");
    EXPECT_TRUE(tells("item 1: Done"));
    expectEnd();
}

TEST_F(HostDialogOnDisplay, FollowsTheMouseOnASmallIcon)
{
    moveTo(640, 344);
    ASSERT_TRUE(shows(documentPixel, white));
    press();
    EXPECT_TRUE(showsOtherThan(documentPixel, white));
    keepPicture("small_icon_pressed");
    moveTo(660, 344);
    EXPECT_TRUE(shows(documentPixel, white));
    moveTo(640, 344);
    EXPECT_TRUE(showsOtherThan(documentPixel, white));
    release();
    EXPECT_TRUE(tells("item 8: small icon 129: clicked"));
    EXPECT_TRUE(shows(documentPixel, white));
    moveTo(645, 380);
    display_->act({"click", "1"});
    EXPECT_TRUE(tells("item 1: Done"));
    expectEnd();
}

TEST_F(HostDialogOnDisplay, OpensAMenuWhenAButtonIsHeld)
{
    moveTo(476, 262);
    press();
    EXPECT_TRUE(shows(menuFrame, black));
    keepPicture("menu_open");
    moveTo(560, 213);
    EXPECT_TRUE(shows(byDate, highlight));
    keepPicture("menu_over_item");
    release();
    EXPECT_TRUE(tells("item 3: icon button 129: chosen: item 2 (By Date)"));
    EXPECT_TRUE(shows(menuFrame, white));
    moveTo(368, 344);   // a small icon, which opens the same menu
    press();
    const Place itsMenu = {376, 350};
    EXPECT_TRUE(shows(itsMenu, black));
    keepPicture("menu_of_small_icon");
    key("Escape");
    EXPECT_TRUE(shows(itsMenu, white));
    release();
    EXPECT_TRUE(tells("item 4: small icon 128: released outside, or nothing chosen"));
    press();
    EXPECT_TRUE(shows(itsMenu, black));
    moveTo(900, 700);
    release();
    EXPECT_TRUE(shows(itsMenu, white));
    EXPECT_TRUE(tells("item 4: small icon 128: released outside, or nothing chosen", 2));
    key("Escape");
    expectEnd();
}

// Where the menu was dismissed outside the window, as hands do, the next press counts like any other.
TEST_F(HostDialogOnDisplay, FollowsTheMouseAgainAfterAMenuIsDismissed)
{
    const Place itsMenu = {376, 350};
    for (const char *manner : {"held", "quick"})
    {
        moveTo(368, 344);
        press();
        EXPECT_TRUE(shows(itsMenu, black)) << manner;
        moveTo(900, 700);
        release();
        EXPECT_TRUE(shows(itsMenu, white)) << manner;
        moveTo(376, 262);
        if (manner == std::string("quick"))
            display_->act({"click", "1"});
        else
        {
            press();
            EXPECT_TRUE(showsOtherThan(folderPixel, folderColor));
            release();
        }
        EXPECT_TRUE(tells("item 2: icon button 128: clicked", manner == std::string("quick") ? 2 : 1)) << manner;
    }
    key("Return");
    expectEnd();
}

TEST_F(HostDialogOnDisplay, ShowsAnAlertUntilItIsClosed)
{
    moveTo(576, 262);
    display_->act({"click", "1"});
    EXPECT_TRUE(shows(alertSign, red));
    keepPicture("alert");
    key("Return");
    EXPECT_TRUE(showsOtherThan(alertSign, red));
    keepPicture("alert_closed");
    display_->act({"click", "1"});
    EXPECT_TRUE(shows(alertSign, red));
    moveTo(376, 168);   // its button
    display_->act({"click", "1"});
    EXPECT_TRUE(showsOtherThan(alertSign, red));
    key("Return");
    EXPECT_TRUE(tells("item 1: Done"));
    expectEnd();
}

}   // namespace
