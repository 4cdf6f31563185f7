// Menus as they lie in memory, damaged ones among them, and pop-up menus on a scripted screen.
#include "standin/interface/menu_bytes.h"
#include "tests/standin/interface_scenes.h"

namespace
{

using support::Bytes;
using support::menuBytes;
using support::TestHandle;
using support::useScript;

MenuRef menuOf(Handle handle)
{
    return reinterpret_cast<MenuRef>(handle);
}

std::string itemText(MenuRef menu, MenuItemIndex item)
{
    Str255 text;
    GetMenuItemText(menu, item, text);
    return support::textOfPascal(text);
}

SInt16 markOf(MenuRef menu, MenuItemIndex item)
{
    SInt16 mark = -1;
    GetItemMark(menu, item, &mark);
    return mark;
}

TEST(InterfaceMenus, ItemsAreCountedFromOne)
{
    const TestHandle bytes(menuBytes(200, {{"One"}, {"Two", 0x12}, {"-"}, {"Four"}}));
    MenuRef menu = menuOf(bytes);
    EXPECT_EQ(GetMenuID(menu), 200);
    EXPECT_EQ(CountMenuItems(menu), 4);
    EXPECT_EQ(itemText(menu, 1), "One");
    EXPECT_EQ(itemText(menu, 4), "Four");
    EXPECT_EQ(itemText(menu, 0), "");
    EXPECT_EQ(itemText(menu, 5), "");
    EXPECT_EQ(itemText(menu, 0xFFFF), "");
    EXPECT_EQ(markOf(menu, 2), checkMark);
    EXPECT_EQ(markOf(menu, 9), noMark);
}

TEST(InterfaceMenus, MarksAreSetInTheirBytesAndNothingElseChanges)
{
    const Bytes before = menuBytes(200, {{"One"}, {"Two"}, {"Three"}});
    const TestHandle handle(before);
    MenuRef menu = menuOf(handle);
    CheckMenuItem(menu, 2, true);
    EXPECT_EQ(support::contentOf(handle), support::contentOf(TestHandle(menuBytes(200, {{"One"}, {"Two", 0x12}, {"Three"}}))));
    CheckMenuItem(menu, 2, false);
    CheckMenuItem(menu, 0, true);
    CheckMenuItem(menu, 4, true);
    CheckMenuItem(nullptr, 1, true);
    EXPECT_EQ(support::contentOf(handle), support::contentOf(TestHandle(before)));
    SetItemMark(menu, 3, 'x');
    EXPECT_EQ(markOf(menu, 3), 'x');
}

TEST(InterfaceMenus, FlagsSayWhatCanBeChosen)
{
    std::vector<support::TestMenuItem> items(34, {"Item"});
    const TestHandle handle(menuBytes(200, items, 0x7FFFFFFB));   // neither the second nor the 31st
    MenuRef menu = menuOf(handle);
    EXPECT_TRUE(IsMenuItemEnabled(menu, 1));
    EXPECT_FALSE(IsMenuItemEnabled(menu, 2));
    EXPECT_FALSE(IsMenuItemEnabled(menu, 31));
    EXPECT_TRUE(IsMenuItemEnabled(menu, 32));   // there is no flag for it
    EnableMenuItem(menu, 2);
    EXPECT_TRUE(IsMenuItemEnabled(menu, 2));
    DisableMenuItem(menu, 33);
    EXPECT_TRUE(IsMenuItemEnabled(menu, 33));
    DisableMenuItem(menu, 0);
    EXPECT_FALSE(IsMenuItemEnabled(menu, 0));
    EXPECT_FALSE(IsMenuItemEnabled(menu, 1));
    EXPECT_FALSE(IsMenuItemEnabled(menu, 33));
    EXPECT_FALSE(IsMenuItemEnabled(menu, 35));   // there is none
}

TEST(InterfaceMenus, ASeparatorCannotBeChosen)
{
    const TestHandle handle(menuBytes(200, {{"-"}, {"-5"}, {"5"}}));
    EXPECT_FALSE(IsMenuItemEnabled(menuOf(handle), 1));
    EXPECT_FALSE(IsMenuItemEnabled(menuOf(handle), 2));
    EXPECT_TRUE(IsMenuItemEnabled(menuOf(handle), 3));
}

// Cut off after every byte, in a block of just that size, so that a look behind its end is seen by a sanitizer.
TEST(InterfaceMenus, CutOffBytesHaveTheItemsThatAreWhole)
{
    const Bytes whole = menuBytes(200, {{"One"}, {"Second item"}, {"-"}});
    UInt16 most = 0;
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        const TestHandle handle(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        MenuRef menu = menuOf(handle);
        const UInt16 count = CountMenuItems(menu);
        EXPECT_GE(count, most);
        most = count;
        EXPECT_EQ(GetMenuID(menu), size >= 2 ? 200 : 0);
        for (MenuItemIndex item : std::initializer_list<MenuItemIndex>{0, 1, 2, 3, 4, 255, 0x7FFF, 0x8000, 0xFFFF})
        {
            CheckMenuItem(menu, item, true);
            EnableMenuItem(menu, item);
            DisableMenuItem(menu, item);
            markOf(menu, item);
            EXPECT_EQ(itemText(menu, item).empty(), item == 0 || item > count) << size << ", " << item;
        }
    }
    EXPECT_EQ(most, 3);
}

TEST(InterfaceMenus, LengthsThatLeadOutOfTheBytesEndTheMenu)
{
    const Bytes good = menuBytes(200, {{"One"}, {"Two"}});
    for (std::size_t place = 14; place < good.size(); ++place)
    {
        Bytes bad = good;
        bad[place] = 0xFF;
        const TestHandle handle(bad);
        EXPECT_LE(CountMenuItems(menuOf(handle)), 2) << place;
        for (MenuItemIndex item = 1; item <= 3; ++item)
            CheckMenuItem(menuOf(handle), item, true);
    }
    EXPECT_EQ(CountMenuItems(nullptr), 0);
}

class InterfaceLoadedMenus : public support::InterfaceTest
{
protected:
    void SetUp() override
    {
        openResources(
            {{fourCharCode("MENU"), 300, menuBytes(200, {{"One"}, {"Two"}})}, {fourCharCode("MENU"), 301, menuBytes(201, {{"Other"}})}});
    }
};

TEST_F(InterfaceLoadedMenus, AMenuIsTheSameWithItsMarksAsLongAsItIsLoaded)
{
    MenuRef menu = GetMenu(300);
    ASSERT_NE(menu, nullptr);
    CheckMenuItem(menu, 1, true);
    EXPECT_EQ(GetMenu(300), menu);
    EXPECT_EQ(markOf(GetMenu(300), 1), checkMark);
    ReleaseResource(reinterpret_cast<Handle>(menu));
    EXPECT_EQ(markOf(GetMenu(300), 1), noMark);
    EXPECT_EQ(GetMenu(302), nullptr);
}

TEST_F(InterfaceLoadedMenus, AreFoundUnderTheirOwnIDWhileTheyAreInserted)
{
    MenuRef menu = GetMenu(300);
    EXPECT_EQ(GetMenuHandle(200), nullptr);
    InsertMenu(menu, hierMenu);
    InsertMenu(GetMenu(301), hierMenu);
    InsertMenu(nullptr, hierMenu);
    EXPECT_EQ(GetMenuHandle(200), menu);
    DeleteMenu(200);
    DeleteMenu(200);
    EXPECT_EQ(GetMenuHandle(200), nullptr);
    EXPECT_NE(GetMenuHandle(201), nullptr);
    DeleteMenu(201);
}

// Rows of 17 pixels begin at 1; the separator has 8. With item 1 at 50, 40 the menu's frame begins at 50, 39.
class InterfacePopUps : public support::InterfaceTest
{
protected:
    InterfacePopUps() : bytes_(menuBytes(200, {{"First"}, {"Second", 0x12}, {"-"}, {"Greyed"}, {"Last \xC9"}}, 0xFFFFFFEF)) {}

    SInt32 choose(const std::string &script, MenuItemIndex item = 1, SInt16 top = 40, SInt16 left = 50)
    {
        useScript("screen 200 160\n" + script);
        return PopUpMenuSelect(menuOf(bytes_), top, left, item);
    }

    const TestHandle bytes_;
};

constexpr SInt32 second = 200 << 16 | 2, last = 200 << 16 | 5;

TEST_F(InterfacePopUps, AreChosenFromByTheRelease)
{
    EXPECT_EQ(choose("1 mouse 60 45\n1 down\n10 mouse 70 65\n20 up\n99 up"), second);
    EXPECT_EQ(choose("1 mouse 60 45\n1 down\n10 mouse 70 110\n20 up\n99 up"), last);
}

TEST_F(InterfacePopUps, GiveNothingElsewhereAndOnWhatCannotBeChosen)
{
    EXPECT_EQ(choose("1 mouse 60 45\n1 down\n10 mouse 190 65\n20 up\n99 up"), 0);   // beside
    EXPECT_EQ(choose("1 mouse 60 45\n1 down\n10 mouse 70 77\n20 up\n99 up"), 0);    // the separator
    EXPECT_EQ(choose("1 mouse 60 45\n1 down\n10 mouse 70 90\n20 up\n99 up"), 0);    // a grey one
    EXPECT_EQ(choose("1 mouse 60 45\n1 down\n10 mouse 70 10\n20 up\n99 up"), 0);    // above
}

TEST_F(InterfacePopUps, WithTheButtonUpWaitForAPressAndARelease)
{
    EXPECT_EQ(choose("10 mouse 70 65\n20 down\n40 up\n99 up"), second);
    EXPECT_EQ(choose("10 mouse 5 5\n20 down\n30 mouse 70 65\n40 up\n99 up"), second);
    EXPECT_EQ(choose("10 mouse 5 5\n20 down\n40 up\n50 mouse 70 65\n60 down\n70 up\n99 up"), 0);
}

TEST_F(InterfacePopUps, EscapeAndTheEndDismiss)
{
    EXPECT_EQ(choose("1 mouse 70 65\n1 down\n10 key escape\n20 up\n99 up"), 0);
    EXPECT_FALSE(Button());   // the release was waited for, or the same press would open the menu again
    EXPECT_EQ(choose("1 mouse 70 65\n1 down\n10 key a\n20 up\n99 up"), second);   // other keys do nothing
    EXPECT_EQ(choose(""), 0);
    EXPECT_EQ(choose("1 down"), 0);
}

TEST_F(InterfacePopUps, PutTheGivenItemAtThePointAsFarAsTheScreenAllows)
{
    EXPECT_EQ(choose("1 mouse 60 82\n1 down\n20 up\n99 up", 2, 80), second);
    EXPECT_EQ(choose("1 mouse 60 82\n1 down\n20 up\n99 up", 5, 80), last);
    EXPECT_EQ(choose("1 mouse 60 82\n1 down\n20 up\n99 up", 999, 80), last);
    EXPECT_EQ(choose("1 mouse 60 2\n1 down\n20 up\n99 up", 5, 2), 200 << 16 | 1);           // it would begin above the screen
    EXPECT_EQ(choose("1 mouse 60 155\n1 down\n20 up\n99 up", 1, 155), last);                // or end below it
    EXPECT_EQ(choose("1 mouse 190 42\n1 down\n20 up\n99 up", 1, 40, 190), 200 << 16 | 1);   // or at its right
}

TEST_F(InterfacePopUps, LongerThanTheScreenScroll)
{
    std::vector<support::TestMenuItem> items;
    for (int number = 1; number <= 60; ++number)
        items.push_back({"Item " + std::to_string(number)});
    const TestHandle handle(menuBytes(200, items));
    useScript("screen 200 160\n1 mouse 60 5\n1 down\n2 mouse 60 155\n400 up\n999 up");
    EXPECT_EQ(PopUpMenuSelect(menuOf(handle), 0, 50, 1) & 0xFFFF, 60);
    useScript("screen 200 160\n1 mouse 60 155\n1 down\n2 mouse 60 5\n400 up\n999 up");
    EXPECT_EQ(PopUpMenuSelect(menuOf(handle), 0, 50, 60) & 0xFFFF, 1);
}

TEST_F(InterfacePopUps, WithoutItemsOrAnIDDoNotOpen)
{
    useScript("1 up");
    const TestHandle empty(menuBytes(200, {})), nameless(menuBytes(0, {{"One"}}));
    EXPECT_EQ(PopUpMenuSelect(menuOf(empty), 0, 0, 1), 0);
    EXPECT_EQ(PopUpMenuSelect(menuOf(nameless), 0, 0, 1), 0);
    EXPECT_EQ(PopUpMenuSelect(nullptr, 0, 0, 1), 0);
    const TestHandle negative(menuBytes(-5, {{"One"}}));
    useScript("1 mouse 10 10\n1 down\n9 up\n99 up");
    EXPECT_EQ(PopUpMenuSelect(menuOf(negative), 5, 5, 1), static_cast<SInt32>(0xFFFB0001));
}

TEST_F(InterfacePopUps, LookLikeMenus)
{
    const std::string open = path("open.png"), over = path("over.png"), closed = path("closed.png");
    EXPECT_EQ(choose("1 mouse 10 10\n1 down\n10 picture " + open + "\n11 mouse 70 65\n15 picture " + over + "\n20 up\n99 up"), second);
    EXPECT_TRUE(support::screenLooksLike(open, "pop_up_open"));
    EXPECT_TRUE(support::screenLooksLike(over, "pop_up_over_second"));
    useScript("screen 20 10\n1 picture " + closed + "\n9 up");
    TickCount();
    EXPECT_EQ(support::readPicture(closed).pixels.size(), 200u);
}

}   // namespace
