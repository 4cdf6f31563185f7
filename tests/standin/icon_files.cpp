#include "tests/standin/icon_files.h"

#include <cmath>

namespace support
{

namespace
{

struct Kind
{
    OSType type;
    int side, bitsPerPixel;
};

constexpr Kind kinds[] = {{code("ICN#"), 32, 1}, {code("icl4"), 32, 4}, {code("icl8"), 32, 8},
                          {code("ics#"), 16, 1}, {code("ics4"), 16, 4}, {code("ics8"), 16, 8}};

const Kind &kindOf(OSType type)
{
    const Kind *kind = kinds;
    while (kind->type != type)
        ++kind;
    return *kind;
}

// What is drawn where, before it is put into the values of a depth.
enum Ink
{
    outside,
    black,
    paper,
    fold,
    redLine,
    greenLine,
    blueLine
};

// Appends pixels of so many bits, `valueAt` being asked for each from the top row down.
template <typename ValueAt>
void appendImage(Bytes &bytes, int side, int bitsPerPixel, ValueAt valueAt)
{
    const int perByte = 8 / bitsPerPixel;
    for (int pixel = 0; pixel < side * side; pixel += perByte)
    {
        unsigned byte = 0;
        for (int next = pixel; next < pixel + perByte; ++next)
            byte = byte << bitsPerPixel | valueAt(next % side, next / side);
        bytes.push_back(static_cast<std::uint8_t>(byte));
    }
}

class Page
{
public:
    explicit Page(int side) : left_(side * 3 / 16), right_(side * 13 / 16), bottom_(side), corner_(side / 4) {}

    Ink at(int x, int y) const
    {
        if (!isInside(x, y))
            return outside;
        if (!isInside(x - 1, y) || !isInside(x + 1, y) || !isInside(x, y - 1) || !isInside(x, y + 1) || isCrease(x, y))
            return black;
        if (x >= right_ - corner_ && y < corner_)
            return fold;
        return isText(x, y) ? static_cast<Ink>(redLine + y / lineHeight() % 3) : paper;
    }

private:
    int lineHeight() const { return corner_ / 2; }
    bool isInside(int x, int y) const { return x >= left_ && x < right_ && y >= 0 && y < bottom_ && x - (right_ - corner_) <= y; }
    bool isCrease(int x, int y) const { return (x == right_ - corner_ && y <= corner_) || (y == corner_ && x >= right_ - corner_); }
    bool isText(int x, int y) const
    {
        const int start = left_ + lineHeight(), end = right_ - lineHeight() - y / lineHeight() % 2 * corner_;
        return y > corner_ && y < bottom_ - lineHeight() && y % lineHeight() == lineHeight() - 1 && x >= start && x < end;
    }

    int left_, right_, bottom_, corner_;
};

unsigned valueOf(Ink ink, int bitsPerPixel)
{
    constexpr unsigned inFourBits[] = {0, 15, 0, 12, 3, 8, 6}, inEightBits[] = {0, 255, 1, 0x2B, 216, 0xE3, 236};
    if (bitsPerPixel == 1)
        return ink == black || ink >= redLine;
    return bitsPerPixel == 4 ? inFourBits[ink] : inEightBits[ink];
}

// An arrow in the middle of 16 by 16, which points up at first.
unsigned arrowAt(int index, int x, int y)
{
    const double turn = index * std::acos(-1.0) / 4, fromLeft = x - 7.5, fromTop = y - 7.5;
    const double along = fromLeft * std::sin(turn) - fromTop * std::cos(turn);
    const double across = std::fabs(fromLeft * std::cos(turn) + fromTop * std::sin(turn));
    const bool isHead = along >= 0 && along < 7 && across < 7 - along;
    const bool isShaft = along < 0 && along > -7 && across < 2;
    return isHead || isShaft;
}

}   // namespace

const std::vector<OSType> &iconTypes()
{
    static const std::vector<OSType> types = {code("ICN#"), code("icl4"), code("icl8"), code("ics#"), code("ics4"), code("ics8")};
    return types;
}

TestResource plainMember(OSType type, SInt16 id, unsigned value)
{
    const Kind &kind = kindOf(type);
    TestResource member = {type, id, {}};
    appendImage(member.bytes, kind.side, kind.bitsPerPixel, [=](int, int) { return value; });
    if (kind.bitsPerPixel == 1)
        appendImage(member.bytes, kind.side, 1, [](int, int) { return 1u; });
    return member;
}

TestResource pageMember(OSType type, SInt16 id)
{
    const Kind &kind = kindOf(type);
    const Page page(kind.side);
    TestResource member = {type, id, {}};
    appendImage(member.bytes, kind.side, kind.bitsPerPixel, [&](int x, int y) { return valueOf(page.at(x, y), kind.bitsPerPixel); });
    if (kind.bitsPerPixel == 1)
        appendImage(member.bytes, kind.side, 1, [&](int x, int y) { return unsigned{page.at(x, y) != outside}; });
    return member;
}

std::vector<TestResource> pageFamily(SInt16 id, const std::string &name, const std::vector<OSType> &types)
{
    std::vector<TestResource> family;
    for (OSType type : types)
    {
        family.push_back(pageMember(type, id));
        if (kindOf(type).bitsPerPixel == 1)
            family.back().name = name;
    }
    return family;
}

TestResource arrowList(SInt16 id, int count)
{
    TestResource list = {code("SICN"), id, {}};
    for (int index = 0; index < count; ++index)
        appendImage(list.bytes, 16, 1, [=](int x, int y) { return arrowAt(index, x, y); });
    return list;
}

}   // namespace support
