// Any bytes as the resources that dialogs, menus and icons are made of: what is read lies in them, and changing a part of a menu
// leaves all others.
#include "standin/drawing/icon_members.h"
#include "standin/interface/item_list.h"
#include "standin/interface/menu_bytes.h"
#include "tests/fuzz/require.h"

#include "platform/memory.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace
{

using namespace standin;

// An item takes 14 bytes at least, of which the last may be a filler that is missing.
void checkItemList(const std::string &bytes)
{
    std::vector<ItemDescription> items;
    if (!readItemList(bytes, items))
        return;
    const auto announced = static_cast<SInt16>(static_cast<UInt8>(bytes[0]) << 8 | static_cast<UInt8>(bytes[1]));
    require(static_cast<int>(items.size()) == announced + 1 && bytes.size() + 1 >= 2 + 14 * items.size());
    for (const ItemDescription &item : items)
        require(item.text.empty() || bytes.find(item.text) != std::string::npos);
}

// The menu's own bytes in a handle.
class Menu
{
public:
    explicit Menu(const std::string &bytes) : handle_(NewHandle(static_cast<Size>(bytes.size())))
    {
        std::memcpy(*handle_, bytes.data(), bytes.size());
    }
    ~Menu() { DisposeHandle(handle_); }
    Menu(const Menu &) = delete;
    Menu &operator=(const Menu &) = delete;

    operator MenuRef() const { return reinterpret_cast<MenuRef>(handle_); }
    std::string bytes() const { return {*handle_, static_cast<std::size_t>(GetHandleSize(handle_))}; }

private:
    Handle handle_;
};

int differingBits(const std::string &one, const std::string &other)
{
    int count = 0;
    for (std::size_t place = 0; place < one.size(); ++place)
        count += std::popcount(static_cast<unsigned char>(one[place] ^ other[place]));
    return count;
}

// A mark is one byte of the menu's, and a later one takes its place.
void checkMark(const Menu &menu, UInt16 item)
{
    const std::string before = menu.bytes();
    const auto mark = itemOf(menu, item)->mark, other = static_cast<UInt8>(mark ^ 1);
    setMark(menu, item, other);
    require(itemOf(menu, item)->mark == other && differingBits(before, menu.bytes()) == 1);
    setMark(menu, item, mark);
    require(menu.bytes() == before);
}

// A flag is one bit. Items have one up to the 31st; separators cannot be chosen whatever theirs says.
void checkFlag(const Menu &menu, UInt16 item)
{
    const std::string before = menu.bytes();
    const bool canBeEnabled = !itemOf(menu, item)->isSeparator && wholeMenuIsEnabled(menu);
    for (const bool enabled : {true, false})
    {
        setEnabled(menu, item, enabled);
        require(itemOf(menu, item)->isEnabled == (canBeEnabled && (enabled || item > 31)));
        require(differingBits(before, menu.bytes()) <= 1);
    }
}

void checkMenu(const std::string &bytes)
{
    const Menu menu(bytes);
    const UInt16 count = itemCount(menu);
    require(count * 6u <= bytes.size());
    require(!itemOf(menu, 0) && !itemOf(menu, static_cast<UInt16>(count + 1)) && !itemOf(menu, 0xFFFF));
    for (UInt16 item = 1; item <= std::min<UInt16>(count, 64); ++item)
    {
        require(itemOf(menu, item) && !itemOf(menu, item)->text.empty());
        checkMark(menu, item);
        checkFlag(menu, item);
    }
    require(itemCount(menu) == count && menu.bytes().size() == bytes.size());
}

// A pixel is opaque or outside the mask, and bytes beyond a whole member do not count.
void checkIcons(const std::string &bytes)
{
    for (const IconMemberKind &kind : iconMemberKinds)
    {
        const IconPixels icon = readIconMember(kind, bytes, bytes);
        require(icon.pixels.size() == static_cast<std::size_t>(kind.side * kind.side));
        for (const Pixel pixel : icon.pixels)
            require(pixel >> 24 == 0xFF || pixel == 0x00FFFFFF);
        const auto maskEnd = static_cast<std::size_t>(kind.side * kind.side / 4);
        require(readIconMember(kind, bytes.substr(0, wholeSizeOf(kind)), bytes.substr(0, maskEnd)).pixels == icon.pixels);
    }
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    checkItemList(bytes);
    checkMenu(bytes);
    checkIcons(bytes);
    return 0;
}
