// The double itself: its resources, icons, ports, menus and mouse.

#include "tests/contract/dialogs_fixture.h"

namespace
{

constexpr ResType textType = fourCharCode("TEXT");

class DoubleDialogs : public testing::Test
{
protected:
    DoubleDialogs()
    {
        for (const std::size_t file : {0u, 1u, 2u})
            platform.resources.files[file].push_back({textType, 1, "file " + decimal(static_cast<SInt64>(file)), "name"});
        platform.resources.files[2].push_back({textType, 2, "oldest", "other name"});
    }

    std::string bytesOf(Handle handle) { return handle == nullptr || *handle == nullptr ? "none" : std::string(*handle, 6); }

    PlatformDouble platform;
};

TEST_F(DoubleDialogs, ResourcesAreSearchedForFromTheCurrentFileOn)
{
    EXPECT_EQ(bytesOf(GetResource(textType, 1)), "file 1");
    EXPECT_EQ(bytesOf(GetResource(textType, 2)), "oldest");
    EXPECT_EQ(GetResource(textType, 3), nullptr);
    EXPECT_EQ(GetResource(fourCharCode("text"), 1), nullptr);
    EXPECT_EQ(Get1Resource(textType, 2), nullptr);
    platform.resources.current = 0;
    EXPECT_EQ(bytesOf(Get1Resource(textType, 1)), "file 0");
    platform.resources.current = 2;
    EXPECT_EQ(bytesOf(GetResource(textType, 1)), "file 2");
}

TEST_F(DoubleDialogs, ResourceHasOneHandleWhichMayBeEmpty)
{
    SetResLoad(false);
    const Handle handle = GetResource(textType, 1);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(*handle, nullptr);
    SetResLoad(true);
    EXPECT_EQ(*handle, nullptr);
    EXPECT_EQ(GetResource(textType, 1), handle);
    EXPECT_EQ(bytesOf(handle), "file 1");
    SetResLoad(false);
    EXPECT_EQ(GetResource(textType, 1), handle);
    EXPECT_EQ(bytesOf(handle), "file 1") << "what is loaded stays so";
}

TEST_F(DoubleDialogs, ReleasedOnceAndDetachedOnce)
{
    const Handle released = GetResource(textType, 1), detached = GetResource(textType, 2);
    ReleaseResource(released);
    EXPECT_EQ(platform.resources.lastError, noErr);
    ReleaseResource(released);
    EXPECT_EQ(platform.resources.lastError, resNotFound);
    DisposeHandle(released);
    EXPECT_EQ(platform.handles.lastError, memWZErr);
    DetachResource(detached);
    EXPECT_EQ(platform.resources.lastError, noErr);
    DetachResource(detached);
    EXPECT_EQ(platform.resources.lastError, resNotFound);
    ReleaseResource(detached);
    EXPECT_EQ(platform.resources.lastError, resNotFound);
    EXPECT_EQ(bytesOf(detached), "oldest") << "it is no resource any more";
    DisposeHandle(detached);
    EXPECT_EQ(platform.handles.lastError, noErr);
    EXPECT_TRUE(platform.handles.blocks.empty());
}

TEST_F(DoubleDialogs, InformationIsThatOfTheResource)
{
    SInt16 id = 0;
    ResType type = 0;
    Str255 name = {3, 'o', 'l', 'd'};
    GetResInfo(nullptr, &id, &type, name);
    EXPECT_EQ(plainText(name), "old");
    GetResInfo(GetResource(textType, 2), &id, &type, name);
    EXPECT_EQ(id, 2);
    EXPECT_EQ(type, textType);
    EXPECT_EQ(plainText(name), "other name");
}

TEST_F(DoubleDialogs, BytesOfResourcesAreTold)
{
    const Handle handle = GetResource(textType, 1);
    EXPECT_EQ(platform.resources.describeBytes(*handle), "'TEXT' 1 + 0");
    EXPECT_EQ(platform.resources.describeBytes(*handle + 5), "'TEXT' 1 + 5");
    EXPECT_EQ(platform.resources.describeBytes(*handle + 6), "bytes");
}

TEST_F(DoubleDialogs, BlocksAreLockedAndUnlocked)
{
    const Handle handle = GetResource(textType, 1);
    HLock(handle);
    EXPECT_TRUE(platform.handles.find(handle)->isLocked);
    HUnlock(handle);
    EXPECT_FALSE(platform.handles.find(handle)->isLocked);
}

TEST_F(DoubleDialogs, SuitesAreMadeOfMembersThatThereAre)
{
    platform.icons.families[5] = 0x0100;
    IconSuiteRef suite = nullptr;
    EXPECT_EQ(GetIconSuite(&suite, 5, 0xFF), resNotFound);
    EXPECT_EQ(suite, nullptr);
    EXPECT_EQ(GetIconSuite(&suite, 6, svAllAvailableData), resNotFound);
    EXPECT_EQ(GetIconSuite(&suite, 5, svAllSmallData), noErr);
    ASSERT_NE(suite, nullptr);
    const Rect rect = {1, 2, 3, 4};
    PlotIconSuite(&rect, -1, -1, suite);
    EXPECT_EQ(platform.calls().back(), "PlotIconSuite({1, 2, 3, 4}, -1, 0xFFFF, suite 5)");
    platform.failEvery("DisposeIconSuite", ioErr);
    EXPECT_EQ(DisposeIconSuite(suite, true), ioErr);
    EXPECT_TRUE(suite->isDisposed) << "all the same";
    PlotIconSuite(&rect, 0, 0, suite);
    EXPECT_EQ(platform.calls().back(), "PlotIconSuite({1, 2, 3, 4}, 0, 0x0, suite 5, disposed)");
}

TEST_F(DoubleDialogs, RectanglesContainTheirTopLeftEdgesAlone)
{
    const Rect rect = {10, 20, 12, 22};
    for (SInt16 v = 8; v < 14; ++v)
        for (SInt16 h = 18; h < 24; ++h)
            EXPECT_EQ(PtInRect({v, h}, &rect), v == 10 || v == 11 ? h == 20 || h == 21 : 0) << v << ' ' << h;
}

TEST_F(DoubleDialogs, EachPortHasItsOwnPenColourAndCorner)
{
    SetPort(GetDialogPort(&platform.dialogs.dialog));
    ForeColor(blackColor);
    MoveTo(5, 6);
    DrawString(reinterpret_cast<ConstStr255Param>("\3abc"));
    Point point = {1, 2};
    LocalToGlobal(&point);
    EXPECT_EQ(pointText(point), "{101, 202}");
    PenState pen;
    GetPenState(&pen);
    EXPECT_EQ(pointText(valueOf(pen.pnLoc)), "{6, 8}");
    EXPECT_EQ(platform.drawing.texts.back().port, "dialog");
    EXPECT_EQ(pointText(platform.drawing.texts.back().where), "{6, 5}");
    EXPECT_EQ(colorText(&platform.drawing.texts.back().color), "{0x0, 0x0, 0x0}");
    EXPECT_EQ(colorText(&platform.drawing.screen.foreColor), "{0x1234, 0xABCD, 0xFFFF}");
    EXPECT_EQ(pointText(platform.drawing.screen.pen.pnLoc), "{-3, 7}");
}

TEST_F(DoubleDialogs, NothingIsChosenInAMenuThatIsNotInserted)
{
    platform.menus.resources[9] = {9, 4, {2}};
    platform.menus.nextChoices = {0x00090001};
    const MenuRef menu = GetMenu(9);
    EXPECT_EQ(GetMenu(9), menu);
    EXPECT_EQ(PopUpMenuSelect(menu, 0, 0, 1), 0);
    InsertMenu(menu, hierMenu);
    EXPECT_EQ(PopUpMenuSelect(menu, 0, 0, 1), 0x00090001);
    EXPECT_EQ(PopUpMenuSelect(menu, 0, 0, 1), 0);
    DeleteMenu(9);
    EXPECT_FALSE(platform.menus.isInserted(9));
    EXPECT_EQ(platform.menus.shown.size(), 3u);
}

TEST_F(DoubleDialogs, MenuThatWasReleasedIsFetchedAsItsResourceHasIt)
{
    platform.menus.resources[9] = {9, 4, {2}};
    const MenuRef menu = GetMenu(9);
    CheckMenuItem(menu, 3, 1);
    CheckMenuItem(menu, 2, 0);
    EXPECT_EQ(menu->marked, std::set<MenuItemIndex>{3});
    ReleaseResource(reinterpret_cast<Handle>(menu));
    EXPECT_EQ(CountMenuItems(menu), 4);
    EXPECT_EQ(platform.calls().back(), "CountMenuItems(menu 9, released)");
    EXPECT_NE(GetMenu(9), menu);
    EXPECT_EQ(GetMenu(9)->marked, std::set<MenuItemIndex>{2});
    EXPECT_EQ(GetMenu(8), nullptr);
}

TEST_F(DoubleDialogs, MouseIsDownUntilItWasEverywhere)
{
    platform.events.way = {{10, 20}, {110, 220}};
    Point mouse = {};
    EXPECT_TRUE(StillDown());
    GetMouse(&mouse);
    EXPECT_EQ(pointText(mouse), "{10, 20}");
    EXPECT_TRUE(StillDown());
    SetPort(&platform.dialogs.dialog.port);
    GetMouse(&mouse);
    EXPECT_EQ(pointText(mouse), "{10, 20}");
    EXPECT_FALSE(StillDown());
    platform.events.nextTicks = {3, 2};
    EXPECT_EQ(TickCount(), 3u);
    EXPECT_EQ(TickCount(), 2u);
    EXPECT_EQ(TickCount(), platform.events.tick);
}

}   // namespace
