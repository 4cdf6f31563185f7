// Dialogs and their items on a scripted screen, damaged ones among them.
#include "standin/interface/item_list.h"
#include "tests/standin/interface_scenes.h"

namespace
{

using support::Bytes;
using support::itemList;
using support::Pascal;
using support::TestDialog;
using support::TestHandle;
using support::useScript;

constexpr Rect okBox = {70, 120, 90, 180}, cancelBox = {70, 40, 90, 100}, userBox = {10, 10, 42, 42}, textBox = {10, 60, 30, 180};

// At 40, 30 on the screen.
const std::vector<support::TestItem> usualItems = {
    {kButtonDialogItem, okBox, "OK"},
    {kButtonDialogItem, cancelBox, "Cancel"},
    {kUserDialogItem, userBox, ""},
    {kStaticTextDialogItem | kItemDisableBit, textBox, "A text"},
};

DialogItemIndex modalAnswer(DialogRef dialog, const std::string &script)
{
    useScript(script);
    ShowWindow(GetDialogWindow(dialog));
    DialogItemIndex item = -9;
    ModalDialog(nullptr, &item);
    return item;
}

std::string stringOf(const Bytes &bytes)
{
    return {bytes.begin(), bytes.end()};
}

TEST(InterfaceItemLists, AreReadAsTheyStand)
{
    std::vector<standin::ItemDescription> items;
    ASSERT_TRUE(standin::readItemList(stringOf(itemList({{kStaticTextDialogItem | kItemDisableBit, {-1, 2, 300, 400}, "odd"},
                                                         {kIconDialogItem, {0, 0, 32, 32}, std::string("\xFF\x80", 2)}})),
                                      items));
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].type, 136);
    EXPECT_EQ(items[0].text, "odd");
    EXPECT_EQ(items[0].box.top, -1);
    EXPECT_EQ(items[0].box.right, 400);
    EXPECT_EQ(items[1].resourceID, -128);
}

TEST(InterfaceItemLists, CutOffAnywhereAreDamaged)
{
    const std::string whole = stringOf(itemList(usualItems));
    std::vector<standin::ItemDescription> items;
    for (std::size_t size = 0; size + 1 < whole.size(); ++size)
        EXPECT_FALSE(standin::readItemList(whole.substr(0, size), items)) << size;
    EXPECT_TRUE(standin::readItemList(whole, items));
    EXPECT_TRUE(standin::readItemList(whole + "more", items));   // what comes behind does not count
}

TEST(InterfaceItemLists, LieAboutNothing)
{
    std::vector<standin::ItemDescription> items;
    EXPECT_TRUE(standin::readItemList(std::string("\xFF\xFF", 2), items));   // none at all
    EXPECT_TRUE(items.empty());
    EXPECT_FALSE(standin::readItemList(std::string("\xFF\xFE", 2), items));   // fewer than none
    EXPECT_FALSE(standin::readItemList(std::string("\x7F\xFF", 2), items));
    EXPECT_FALSE(standin::readItemList(stringOf(itemList({{kPictureDialogItem, {0, 0, 1, 1}, "x"}})), items));   // half an ID
    Bytes spoilt = itemList(usualItems);
    for (std::size_t place = 0; place < spoilt.size(); ++place)
        for (std::uint8_t value : Bytes{0x00, 0x7F, 0x80, 0xFF})
        {
            std::uint8_t kept = std::exchange(spoilt[place], value);
            standin::readItemList(stringOf(spoilt), items);   // whatever comes, it comes back
            spoilt[place] = kept;
        }
}

TEST(InterfaceDialogs, TheirItemsAreToldAndSet)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    EXPECT_EQ(CountDITL(dialog), 4);
    DialogItemType type = -1;
    Handle handle = nullptr;
    Rect box{};
    GetDialogItem(dialog, 1, &type, &handle, &box);
    EXPECT_EQ(type, kButtonDialogItem);
    EXPECT_EQ(box.left, okBox.left);
    Str255 text;
    GetDialogItemText(handle, text);
    EXPECT_EQ(support::textOfPascal(text), "OK");
    SetDialogItemText(handle, Pascal("Other"));
    GetDialogItemText(handle, text);
    EXPECT_EQ(support::textOfPascal(text), "Other");
    const Rect moved = {1, 2, 3, 4};
    SetDialogItem(dialog, 3, kUserDialogItem, nullptr, &moved);
    GetDialogItem(dialog, 3, nullptr, nullptr, &box);
    EXPECT_EQ(box.bottom, 3);
}

TEST(InterfaceDialogs, AnItemThatIsNotThereLeavesTheOutputs)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    for (DialogItemIndex item : std::initializer_list<DialogItemIndex>{0, 5, -1, 32767})
    {
        DialogItemType type = -77;
        auto handle = reinterpret_cast<Handle>(0x1234);
        Rect box = {7, 7, 7, 7};
        GetDialogItem(dialog, item, &type, &handle, &box);
        EXPECT_EQ(type, -77);
        EXPECT_EQ(handle, reinterpret_cast<Handle>(0x1234));
        EXPECT_EQ(box.right, 7);
        EXPECT_EQ(SetDialogDefaultItem(dialog, item), paramErr);
    }
    EXPECT_EQ(CountDITL(nullptr), 0);
}

TEST(InterfaceDialogs, ItemsAreFoundAtPoints)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    EXPECT_EQ(FindDialogItem(dialog, {71, 121}), 0);
    EXPECT_EQ(FindDialogItem(dialog, {41, 41}), 2);
    EXPECT_EQ(FindDialogItem(dialog, {42, 42}), -1);
}

TEST(InterfaceDialogs, ReturnAndEscapeAnswerWithTheirItems)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    EXPECT_EQ(modalAnswer(dialog, "5 key return\n99 up"), 1);
    EXPECT_EQ(modalAnswer(dialog, "5 key escape\n6 key enter\n99 up"), 1);   // no cancel item yet
    EXPECT_EQ(SetDialogDefaultItem(dialog, 2), noErr);
    EXPECT_EQ(SetDialogCancelItem(dialog, 1), noErr);
    EXPECT_EQ(modalAnswer(dialog, "5 key return\n99 up"), 2);
    EXPECT_EQ(modalAnswer(dialog, "5 key escape\n99 up"), 1);
    EXPECT_EQ(SetDialogDefaultItem(dialog, 4), noErr);
    EXPECT_EQ(modalAnswer(dialog, "5 key return\n9 key escape\n99 up"), 1);   // a disabled item is no answer
}

TEST(InterfaceDialogs, TheCloseBoxAnswersWithTheCancelItem)
{
    useScript("5 close\n15 close\n99 up");
    TestDialog dialog(usualItems, 200, 100);
    ShowWindow(GetDialogWindow(dialog));
    DialogItemIndex item = -9;
    ModalDialog(nullptr, &item);
    EXPECT_EQ(item, 0);
    EXPECT_EQ(SetDialogCancelItem(dialog, 2), noErr);
    ModalDialog(nullptr, &item);
    EXPECT_EQ(item, 2);
}

TEST(InterfaceDialogs, AButtonIsHitWhenItIsReleasedOverIt)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 170 105\n5 down\n20 up\n99 up"), 1);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 170 105\n5 down\n9 mouse 10 10\n20 up\n30 key return\n99 up"), 1);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 90 105\n5 down\n9 mouse 10 10\n15 mouse 90 105\n20 up\n99 up"), 2);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 90 105\n5 down\n5 up\n99 up"), 2);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 90 105\n5 down\n9 mouse 10 10\n20 up"), 0);   // and nothing more
}

TEST(InterfaceDialogs, OtherItemsAreHitByThePress)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 55 45\n5 down\n20 up\n99 up"), 3);
    EXPECT_EQ(modalAnswer(dialog, "2 mouse 110 45\n5 down\n9 up\n20 key return\n99 up"), 1);   // the text is disabled
}

TEST(InterfaceDialogs, NobodyAnswersAfterTheScriptOrWithoutADialogInFront)
{
    useScript("");
    TestDialog dialog(usualItems, 200, 100);
    DialogItemIndex item = -9;
    ModalDialog(nullptr, &item);
    EXPECT_EQ(item, 0);
    EXPECT_EQ(modalAnswer(dialog, ""), 0);
}

std::vector<DialogItemIndex> drawnItems;

void noteDrawn(DialogRef dialog, DialogItemIndex item)
{
    GrafPtr port = nullptr;
    GetPort(&port);
    EXPECT_EQ(port, GetDialogPort(dialog));
    drawnItems.push_back(item);
}

TEST(InterfaceDialogs, UserItemsAreDrawnByTheirProcedures)
{
    TestDialog dialog(usualItems, 200, 100);
    SetDialogItem(dialog, 3, kUserDialogItem, reinterpret_cast<Handle>(&noteDrawn), &userBox);
    drawnItems.clear();
    EXPECT_EQ(modalAnswer(dialog, "9 key return\n99 up"), 1);   // because of the update event
    EXPECT_EQ(drawnItems, std::vector<DialogItemIndex>{3});
    DrawDialog(dialog);
    EXPECT_EQ(drawnItems.size(), 2u);
}

TEST(InterfaceDialogs, TypingGoesToTheTextThatIsTypedInto)
{
    useScript("");
    TestDialog dialog({{kButtonDialogItem, okBox, "OK"},
                       {kEditTextDialogItem | kItemDisableBit, {10, 10, 26, 90}, "ab"},
                       {kEditTextDialogItem | kItemDisableBit, {40, 10, 56, 90}, ""}},
                      200, 100);
    EXPECT_EQ(modalAnswer(dialog, "1 key c\n2 key delete\n3 key d\n4 mouse 60 80\n5 down\n6 up\n7 key x\n8 key return\n99 up"), 1);
    Handle first = nullptr, other = nullptr;
    GetDialogItem(dialog, 2, nullptr, &first, nullptr);
    GetDialogItem(dialog, 3, nullptr, &other, nullptr);
    EXPECT_EQ(support::contentOf(first), "abd");
    EXPECT_EQ(support::contentOf(other), "x");
}

TEST(InterfaceDialogs, LookAsTheyShould)
{
    useScript("");
    TestDialog dialog({{kButtonDialogItem, {100, 150, 120, 210}, "Default"},
                       {kButtonDialogItem, {100, 70, 120, 130}, "Cancel"},
                       {kCheckBoxDialogItem, {10, 10, 26, 100}, "Check box"},
                       {kRadioButtonDialogItem, {30, 10, 46, 100}, "Radio button"},
                       {kStaticTextDialogItem, {8, 110, 56, 220}, "A text that is broken between words: ^1"},
                       {kEditTextDialogItem, {66, 110, 82, 210}, "Typed"},
                       {kPictureDialogItem, {60, 10, 90, 50}, std::string("\0\x01", 2)}},
                      226, 130);
    ParamText(nullptr, Pascal("here"), nullptr, nullptr);
    SetDialogDefaultItem(dialog, 1);
    DrawDialog(dialog);
    EXPECT_TRUE(support::looksLike(GetDialogPort(dialog), "dialog_items"));
    ParamText(nullptr, Pascal(""), nullptr, nullptr);
}

class InterfaceResourceDialogs : public support::InterfaceTest
{
protected:
    static Bytes cut(Bytes bytes, std::size_t size)
    {
        bytes.resize(size);
        return bytes;
    }
    Bytes dialog_ = support::dialogBytes({100, 200, 200, 400}, 128, "Title");
};

TEST_F(InterfaceResourceDialogs, AreMadeOfTheirTemplate)
{
    useScript("");
    openResources({{fourCharCode("DLOG"), 128, dialog_}, {fourCharCode("DITL"), 128, itemList(usualItems)}});
    DialogRef dialog = GetNewDialog(128, nullptr, nullptr);
    ASSERT_NE(dialog, nullptr);
    WindowRef window = GetDialogWindow(dialog);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(GetDialogFromWindow(window), dialog);
    EXPECT_EQ(GetWRefCon(window), 0x12345678);
    Str255 title;
    GetWTitle(window, title);
    EXPECT_EQ(support::textOfPascal(title), "Title");
    Rect bounds{};
    GetWindowBounds(window, kWindowContentRgn, &bounds);
    EXPECT_EQ(bounds.top, 100);
    EXPECT_EQ(bounds.left, 200);
    EXPECT_EQ(bounds.right, 400);
    DisposeDialog(dialog);
    DisposeDialog(dialog);
    EXPECT_EQ(GetDialogPort(dialog), nullptr);
}

TEST_F(InterfaceResourceDialogs, TakeWhatWasChangedInTheLoadedTemplate)
{
    useScript("");
    openResources({{fourCharCode("DLOG"), 128, dialog_}, {fourCharCode("DITL"), 128, itemList(usualItems)}});
    auto from = reinterpret_cast<DialogTemplate **>(GetResource(fourCharCode("DLOG"), 128));
    OffsetRect(&(*from)->boundsRect, 10, -20);
    DialogRef dialog = GetNewDialog(128, nullptr, nullptr);
    Rect bounds{};
    GetWindowBounds(GetDialogWindow(dialog), kWindowContentRgn, &bounds);
    EXPECT_EQ(bounds.top, 80);
    EXPECT_EQ(bounds.left, 210);
    DisposeDialog(dialog);
}

TEST_F(InterfaceResourceDialogs, DamagedOnesAreNone)
{
    useScript("");
    const Bytes items = itemList(usualItems);
    std::vector<support::TestResource> resources = {{fourCharCode("DITL"), 128, items},
                                                    {fourCharCode("DITL"), 129, cut(items, items.size() - 2)}};
    SInt16 id = 200;
    for (std::size_t size = 0; size < dialog_.size(); ++size)
        resources.push_back({fourCharCode("DLOG"), id++, cut(dialog_, size)});
    resources.push_back({fourCharCode("DLOG"), id++, support::dialogBytes({0, 0, 10, 10}, 129, "")});     // damaged items
    resources.push_back({fourCharCode("DLOG"), id++, support::dialogBytes({0, 0, 10, 10}, 130, "")});     // no items
    resources.push_back({fourCharCode("DLOG"), id++, support::dialogBytes({0, 0, 0, 10}, 128, "")});      // no height
    resources.push_back({fourCharCode("DLOG"), id++, support::dialogBytes({0, 0, 10, 9999}, 128, "")});   // too wide
    openResources(resources);
    for (SInt16 damaged = 199; damaged <= id; ++damaged)
        EXPECT_EQ(GetNewDialog(damaged, nullptr, nullptr), nullptr) << damaged;
}

}   // namespace
