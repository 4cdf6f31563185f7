#include "standin/interface/menu_bytes.h"

#include "platform/memory.h"

namespace standin
{

namespace
{

// ID, width, height, kind and a filler of 2 bytes each come first, then the flags and the title.
constexpr std::size_t enableFlagsPlace = 10;
constexpr std::size_t titlePlace = 14;

// After an item's text: icon, key, mark, style.
constexpr std::size_t markPlace = 2;
constexpr std::size_t itemTailLength = 4;

constexpr UInt16 lastItemWithFlag = 31;
constexpr UInt16 mostItems = 0x7FFF;

struct Bytes
{
    UInt8 *data = nullptr;
    std::size_t size = 0;
};

Bytes bytesOf(MenuRef menu)
{
    auto handle = reinterpret_cast<Handle>(menu);
    if (handle == nullptr || *handle == nullptr)
        return {};
    return {reinterpret_cast<UInt8 *>(*handle), static_cast<std::size_t>(GetHandleSize(handle))};
}

struct Walk
{
    std::size_t place;   // of the length byte of the next item's text
    UInt16 count;        // of the items passed
};

bool hasItemAt(const Bytes &bytes, std::size_t place)
{
    return place < bytes.size && bytes.data[place] != 0 && bytes.size - place >= 1u + bytes.data[place] + itemTailLength;
}

// Passes items until `item` is the next one, or there is none left.
Walk walkTo(const Bytes &bytes, UInt16 item)
{
    if (bytes.size <= titlePlace)
        return {bytes.size, 0};
    Walk walk{titlePlace + 1 + bytes.data[titlePlace], 0};
    for (; hasItemAt(bytes, walk.place) && walk.count + 1 < item; ++walk.count)
        walk.place += 1 + bytes.data[walk.place] + itemTailLength;
    return walk;
}

// Null if there is no such item.
UInt8 *itemAt(const Bytes &bytes, UInt16 item)
{
    if (item == 0 || item > mostItems)
        return nullptr;
    const std::size_t place = walkTo(bytes, item).place;
    return hasItemAt(bytes, place) ? bytes.data + place : nullptr;
}

UInt32 enableFlags(const Bytes &bytes)
{
    UInt32 flags = 0;
    for (std::size_t index = 0; index < 4; ++index)
        flags = flags << 8 | bytes.data[enableFlagsPlace + index];
    return flags;
}

void storeEnableFlags(const Bytes &bytes, UInt32 flags)
{
    for (std::size_t index = 4; index-- > 0; flags >>= 8)
        bytes.data[enableFlagsPlace + index] = static_cast<UInt8>(flags);
}

bool isEnabled(const Bytes &bytes, UInt16 item)
{
    const UInt32 flags = enableFlags(bytes);
    return (flags & 1) != 0 && (item > lastItemWithFlag || (flags >> item & 1) != 0);
}

}   // namespace

MenuID menuID(MenuRef menu)
{
    const Bytes bytes = bytesOf(menu);
    return bytes.size >= 2 ? static_cast<MenuID>(bytes.data[0] << 8 | bytes.data[1]) : MenuID{0};
}

UInt16 itemCount(MenuRef menu)
{
    return walkTo(bytesOf(menu), mostItems).count;
}

bool wholeMenuIsEnabled(MenuRef menu)
{
    const Bytes bytes = bytesOf(menu);
    return bytes.size > titlePlace && isEnabled(bytes, lastItemWithFlag + 1);
}

std::optional<MenuItem> itemOf(MenuRef menu, UInt16 item)
{
    const Bytes bytes = bytesOf(menu);
    const UInt8 *start = itemAt(bytes, item);
    if (start == nullptr)
        return std::nullopt;
    MenuItem found;
    found.text.assign(reinterpret_cast<const char *>(start + 1), start[0]);
    found.mark = start[1 + start[0] + markPlace];
    found.isSeparator = found.text[0] == '-';
    found.isEnabled = !found.isSeparator && isEnabled(bytes, item);
    return found;
}

void setMark(MenuRef menu, UInt16 item, UInt8 mark)
{
    if (UInt8 *start = itemAt(bytesOf(menu), item))
        start[1 + start[0] + markPlace] = mark;
}

void setEnabled(MenuRef menu, UInt16 item, bool enabled)
{
    const Bytes bytes = bytesOf(menu);
    if (bytes.size <= titlePlace || item > lastItemWithFlag)
        return;
    const UInt32 flag = UInt32{1} << item;
    storeEnableFlags(bytes, enabled ? enableFlags(bytes) | flag : enableFlags(bytes) & ~flag);
}

}   // namespace standin
