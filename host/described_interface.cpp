#include "host/described_interface.h"

#include "host/resource_writer.h"

#include <algorithm>
#include <optional>

namespace host
{

namespace
{

// Top, left, bottom, right.
std::string takeRectangle(DescriptionLine &line)
{
    const SInt16 top = line.takeShort("the top of a rectangle"), left = line.takeShort("the left of a rectangle");
    const SInt16 bottom = line.takeShort("the bottom of a rectangle"), right = line.takeShort("the right of a rectangle");
    if (bottom < top || right < left)
        line.fail("a rectangle is top, left, bottom and right, in this order, and not turned inside out");
    std::string bytes;
    for (const SInt16 edge : {top, left, bottom, right})
        append16(bytes, static_cast<UInt16>(edge));
    return bytes;
}

template <typename Value>
const Value &needed(const DescriptionLine &head, const std::optional<Value> &value, const char *what)
{
    if (!value)
        head.fail(std::string("the resource needs a line `") + what + "`");
    return *value;
}

// ---------------------------------------------------------------------------------------------------------------------
// menus

constexpr struct
{
    const char *word;
    UInt32 bit;
} styleWords[] = {{"bold", 1}, {"italic", 2}, {"underline", 4}, {"outline", 8}, {"shadow", 16}};

struct MenuItem
{
    std::string text;
    UInt32 icon = 0, key = 0, mark = 0, style = 0;
    bool isEnabled = true;
};

UInt32 takeCharacter(DescriptionLine &line, const char *what)
{
    const std::string text = line.takeText(what);
    if (text.size() != 1)
        line.fail(std::string(what) + " is wanted here, not several characters or none");
    return static_cast<unsigned char>(text[0]);
}

bool takeStyle(DescriptionLine &line, UInt32 &style)
{
    for (const auto &[word, bit] : styleWords)
        if (line.takeIf(word))
        {
            style |= bit;
            return true;
        }
    return false;
}

MenuItem takeItem(DescriptionLine &line)
{
    MenuItem item;
    item.text = line.takeText("an item's text");
    if (item.text.empty())
        line.fail("an item's text cannot be empty: that would end the menu");
    while (!line.isAtEnd())
    {
        if (line.takeIf("key"))
            item.key = takeCharacter(line, "one character after `key`");
        else if (line.takeIf("check"))
            item.mark = 18;   // the check mark of the system's font
        else if (line.takeIf("mark"))
            item.mark = takeCharacter(line, "one character after `mark`");
        else if (line.takeIf("icon"))
            item.icon = static_cast<UInt32>(line.takeNumber("an icon's number", 0, 255));
        else if (line.takeIf("disabled"))
            item.isEnabled = false;
        else if (!takeStyle(line, item.style))
            line.fail("after an item's text come key, mark, check, icon, disabled and styles, not: " + line.takeWord("one of them"));
    }
    return item;
}

void appendItem(std::string &bytes, const MenuItem &item)
{
    appendPascal(bytes, item.text);
    for (const UInt32 value : {item.icon, item.key, item.mark, item.style})
        append8(bytes, value);
}

// Bit 0 is the menu's own, bit n that of item n. Items after the 31st are always enabled.
UInt32 enableFlags(bool isMenuEnabled, const std::vector<MenuItem> &items)
{
    UInt32 flags = isMenuEnabled ? 0xFFFFFFFF : 0xFFFFFFFE;
    for (std::size_t index = 0; index < std::min<std::size_t>(items.size(), 31); ++index)
        if (!items[index].isEnabled)
            flags &= ~(UInt32{1} << (index + 1));
    return flags;
}

// ---------------------------------------------------------------------------------------------------------------------
// items of dialogs

constexpr UInt32 disabledItem = 128, pictureItem = 64, iconItem = 32, controlItem = 7, userItem = 0;

constexpr struct
{
    const char *word;
    UInt32 type;
} itemWords[] = {{"button", 4},      {"checkbox", 5},          {"radio", 6},      {"control", controlItem}, {"text", 8}, {"edit", 16},
                 {"icon", iconItem}, {"picture", pictureItem}, {"user", userItem}};

UInt32 takeItemType(DescriptionLine &line)
{
    const std::string word = line.takeWord("a kind of item");
    const auto found = std::find_if(std::begin(itemWords), std::end(itemWords), [&](const auto &known) { return word == known.word; });
    if (found == std::end(itemWords))
        line.fail("an item is button, checkbox, radio, control, text, edit, icon, picture or user, not: " + word);
    return found->type;
}

// Text, the ID of a resource, or nothing for an item that the application draws.
std::string takeItemData(DescriptionLine &line, UInt32 type)
{
    std::string bytes;
    if (type == iconItem || type == pictureItem || type == controlItem)
        append16(bytes, static_cast<UInt16>(line.takeShort("a resource's ID")));
    else if (type != userItem)
        bytes = line.takeText("an item's text");
    return bytes;
}

void appendDialogItem(std::string &bytes, DescriptionLine &line)
{
    const UInt32 type = takeItemType(line);
    append32(bytes, 0);
    bytes += takeRectangle(line);
    const std::string data = takeItemData(line, type);
    append8(bytes, type | (line.takeIf("disabled") ? disabledItem : 0));
    line.expectEnd();
    appendPascal(bytes, data);
    if (data.size() % 2 != 0)
        append8(bytes, 0);
}

}   // namespace

std::string menuBytes(const DescriptionLine &head, SInt16 id, std::span<DescriptionLine> lines)
{
    std::optional<std::string> title;
    bool isEnabled = true;
    std::vector<MenuItem> items;
    for (DescriptionLine &line : lines)
    {
        if (line.takeIf("title"))
            title = line.takeText("a menu's title");
        else if (line.takeIf("disabled"))
            isEnabled = false;
        else if (line.takeIf("item"))
            items.push_back(takeItem(line));
        else if (line.takeIf("separator"))
            items.push_back({.text = "-", .isEnabled = false});
        else
            line.fail("a menu has lines `title`, `item`, `separator` and `disabled`");
        line.expectEnd();
    }
    std::string bytes;
    append16(bytes, static_cast<UInt16>(id));
    append32(bytes, 0);   // width and height, which are measured
    append16(bytes, 0);   // the definition that draws it: the standard one
    append16(bytes, 0);
    append32(bytes, enableFlags(isEnabled, items));
    appendPascal(bytes, needed(head, title, "title"));
    for (const MenuItem &item : items)
        appendItem(bytes, item);
    append8(bytes, 0);
    return bytes;
}

std::string dialogBytes(const DescriptionLine &head, std::span<DescriptionLine> lines)
{
    std::optional<std::string> bounds;
    std::optional<SInt16> items;
    std::string title;
    SInt64 kind = 1, refCon = 0;
    bool isVisible = true, goesAway = false;
    for (DescriptionLine &line : lines)
    {
        if (line.takeIf("bounds"))
            bounds = takeRectangle(line);
        else if (line.takeIf("items"))
            items = line.takeShort("the ID of a 'DITL'");
        else if (line.takeIf("title"))
            title = line.takeText("a title");
        else if (line.takeIf("kind"))
            kind = line.takeShort("a window's kind");
        else if (line.takeIf("refcon"))
            refCon = line.takeNumber("a number", -0x80000000LL, 0xFFFFFFFFLL);
        else if (line.takeIf("hidden"))
            isVisible = false;
        else if (line.takeIf("goaway"))
            goesAway = true;
        else
            line.fail("a dialog has lines `bounds`, `items`, `title`, `kind`, `refcon`, `hidden` and `goaway`");
        line.expectEnd();
    }
    std::string bytes = needed(head, bounds, "bounds");
    append16(bytes, static_cast<UInt32>(kind));
    append16(bytes, isVisible ? 0x0100 : 0);
    append16(bytes, goesAway ? 0x0100 : 0);
    append32(bytes, static_cast<UInt32>(refCon));
    append16(bytes, static_cast<UInt16>(needed(head, items, "items")));
    appendPascal(bytes, title);
    return bytes;
}

std::string dialogItemBytes(const DescriptionLine &head, std::span<DescriptionLine> lines)
{
    if (lines.empty())
        head.fail("a list of dialog items needs one item at least");
    std::string bytes;
    append16(bytes, static_cast<UInt32>(lines.size() - 1));
    for (DescriptionLine &line : lines)
        appendDialogItem(bytes, line);
    return bytes;
}

std::string alertBytes(const DescriptionLine &head, std::span<DescriptionLine> lines)
{
    std::optional<std::string> bounds;
    std::optional<SInt16> items;
    SInt64 stages = 0x5555;   // four times: shown, with one beep, the first button being the usual one
    for (DescriptionLine &line : lines)
    {
        if (line.takeIf("bounds"))
            bounds = takeRectangle(line);
        else if (line.takeIf("items"))
            items = line.takeShort("the ID of a 'DITL'");
        else if (line.takeIf("stages"))
            stages = line.takeNumber("the stages", 0, 0xFFFF);
        else
            line.fail("an alert has lines `bounds`, `items` and `stages`");
        line.expectEnd();
    }
    std::string bytes = needed(head, bounds, "bounds");
    append16(bytes, static_cast<UInt16>(needed(head, items, "items")));
    append16(bytes, static_cast<UInt32>(stages));
    return bytes;
}

}   // namespace host
