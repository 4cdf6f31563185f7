#include "standin/interface/item_list.h"

namespace standin
{

namespace
{

class Reader
{
public:
    explicit Reader(const std::string &bytes) : bytes_(bytes) {}

    bool hasFailed() const { return failed_; }

    UInt8 takeByte()
    {
        if (place_ == bytes_.size())
            failed_ = true;
        return failed_ ? UInt8{0} : static_cast<UInt8>(bytes_[place_++]);
    }

    SInt16 takeShort()
    {
        const int high = takeByte(), low = takeByte();
        return static_cast<SInt16>(high << 8 | low);
    }

    std::string takeBytes(std::size_t count)
    {
        if (bytes_.size() - place_ < count)
            failed_ = true;
        if (failed_)
            return {};
        place_ += count;
        return bytes_.substr(place_ - count, count);
    }

    void skipToEvenPlace()
    {
        if (place_ % 2 == 1 && place_ < bytes_.size())   // the last filler may be missing
            ++place_;
    }

private:
    const std::string &bytes_;
    std::size_t place_ = 0;
    bool failed_ = false;
};

constexpr std::size_t handleLength = 4;   // where a handle is once the item is in memory

bool namesResource(DialogItemType kind)
{
    return kind == kIconDialogItem || kind == kPictureDialogItem || kind == kResourceControlDialogItem;
}

bool takeItem(Reader &reader, ItemDescription &item)
{
    reader.takeBytes(handleLength);
    item.box.top = reader.takeShort();
    item.box.left = reader.takeShort();
    item.box.bottom = reader.takeShort();
    item.box.right = reader.takeShort();
    item.type = reader.takeByte();
    const std::string data = reader.takeBytes(reader.takeByte());
    reader.skipToEvenPlace();
    if (!namesResource(kindOf(item.type)))
        item.text = data;
    else if (data.size() >= 2)
        item.resourceID = static_cast<SInt16>(static_cast<UInt8>(data[0]) << 8 | static_cast<UInt8>(data[1]));
    return !reader.hasFailed() && (!namesResource(kindOf(item.type)) || data.size() >= 2);
}

}   // namespace

DialogItemType kindOf(DialogItemType type)
{
    return static_cast<DialogItemType>(type & ~kItemDisableBit);
}

bool readItemList(const std::string &bytes, std::vector<ItemDescription> &items)
{
    Reader reader(bytes);
    const int count = reader.takeShort() + 1;
    if (reader.hasFailed() || count < 0)
        return false;
    items.clear();
    for (int number = 0; number < count; ++number)
        if (!takeItem(reader, items.emplace_back()))
            return false;
    return true;
}

}   // namespace standin
