// Alerts on a scripted screen.
#include "tests/standin/interface_scenes.h"

namespace
{

using support::Bytes;
using support::itemList;
using support::Pascal;
using support::useScript;

constexpr DialogItemType staticText = kStaticTextDialogItem | kItemDisableBit;

class InterfaceAlerts : public support::InterfaceTest
{
protected:
    void SetUp() override
    {
        const Bytes one = itemList({{kButtonDialogItem, {70, 180, 90, 240}, "OK"}, {staticText, {10, 64, 60, 250}, "Error ^0: ^1^4^"}});
        const Bytes two = itemList({{kButtonDialogItem, {70, 180, 90, 240}, "OK"}, {kButtonDialogItem, {70, 100, 90, 160}, "Cancel"}});
        const Bytes alert = support::alertBytes({20, 30, 120, 290}, 128);
        openResources({{fourCharCode("ALRT"), 128, alert},
                       {fourCharCode("ALRT"), 129, support::alertBytes({20, 30, 120, 290}, 129)},
                       {fourCharCode("ALRT"), 130, Bytes(alert.begin(), alert.end() - 1)},
                       {fourCharCode("ALRT"), 131, support::alertBytes({20, 30, 120, 290}, 131)},
                       {fourCharCode("ALRT"), 132, support::alertBytes({20, 30, 20, 290}, 128)},
                       {fourCharCode("DITL"), 128, one},
                       {fourCharCode("DITL"), 129, two},
                       {fourCharCode("DITL"), 131, Bytes(two.begin(), two.end() - 9)}});
    }
};

TEST_F(InterfaceAlerts, ReturnAnswersWithTheFirstItemAndEscapeWithTheSecond)
{
    useScript("5 key return\n99 up");
    EXPECT_EQ(StopAlert(129, nullptr), 1);
    useScript("5 key escape\n99 up");
    EXPECT_EQ(NoteAlert(129, nullptr), 2);
    useScript("5 key escape\n99 up");
    EXPECT_EQ(CautionAlert(128, nullptr), 1);   // there is no second button
    useScript("5 mouse 150 100\n9 down\n12 up\n99 up");
    EXPECT_EQ(Alert(129, nullptr), 2);
}

TEST_F(InterfaceAlerts, MissingDamagedAndUnansweredOnesGiveMinusOne)
{
    for (SInt16 id = 130; id <= 133; ++id)
    {
        useScript("5 key return\n99 up");
        EXPECT_EQ(StopAlert(id, nullptr), -1) << id;
    }
    useScript("");
    EXPECT_EQ(StopAlert(128, nullptr), -1);
    EXPECT_EQ(FrontWindow(), nullptr);   // nothing is left open
}

TEST_F(InterfaceAlerts, LeaveTheCurrentPort)
{
    GrafPtr port = CreateNewPort(), after = nullptr;
    SetPort(port);
    useScript("5 key return\n99 up");
    EXPECT_EQ(StopAlert(128, nullptr), 1);
    GetPort(&after);
    EXPECT_EQ(after, port);
    DisposePort(port);
}

TEST_F(InterfaceAlerts, LookLikeAlerts)
{
    const char *const names[] = {"stop", "note", "caution"};
    DialogItemIndex (*const calls[])(SInt16, ModalFilterUPP) = {StopAlert, NoteAlert, CautionAlert};
    ParamText(Pascal("-43"), Pascal("a longer text, which is broken between words"), nullptr, nullptr);
    for (int index = 0; index < 3; ++index)
    {
        const std::string picture = path(std::string(names[index]) + ".png");
        useScript("screen 320 140\n5 picture " + picture + "\n9 key return\n99 up");
        EXPECT_EQ(calls[index](128, nullptr), 1);
        EXPECT_TRUE(support::screenLooksLike(picture, std::string("alert_") + names[index]));
    }
    ParamText(Pascal(""), Pascal(""), nullptr, nullptr);
}

}   // namespace
