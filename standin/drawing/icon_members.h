// The members of an icon family, from the bytes of their resources to pixels. Nothing here knows a resource file or a port.
#pragma once

#include "standin/drawing/port.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace standin
{

// A kind of member: its resource type, and what such a resource holds.
struct IconMemberKind
{
    ResType type;
    IconSelectorValue selector;   // the bit that asks for it
    int side;                     // width and height in pixels
    int bitsPerPixel;             // 1, 4 or 8; the members of 1 bit have a mask too, which serves all members of that side
};

inline constexpr IconMemberKind iconMemberKinds[] = {
    {0x49434E23 /* ICN# */, svLarge1Bit, 32, 1}, {0x69636C34 /* icl4 */, svLarge4Bit, 32, 4}, {0x69636C38 /* icl8 */, svLarge8Bit, 32, 8},
    {0x69637323 /* ics# */, svSmall1Bit, 16, 1}, {0x69637334 /* ics4 */, svSmall4Bit, 16, 4}, {0x69637338 /* ics8 */, svSmall8Bit, 16, 8},
};

// The bytes of a whole member: its image, and its mask if it has one.
std::size_t wholeSizeOf(const IconMemberKind &kind);

// Whether so many bytes can be taken for a member: at least half of a whole one. Icons of a few bytes less or more than theirs are found in
// files of old, and were shown; half is also what a member of 1 bit without its mask has.
bool canBeMember(const IconMemberKind &kind, std::size_t byteCount);

struct IconPixels
{
    int side = 0;
    int bitsPerPixel = 0;
    std::vector<Pixel> pixels;   // rows from the top; outside the mask transparent white (0x00FFFFFF), inside opaque
};

// The pixels of a member. `masking` are the bytes of the member of 1 bit and the same side, its own if it is that; none leaves all opaque, and
// so do bytes that end before the mask. Bytes that are missing count as 0, and those too many do not count.
IconPixels readIconMember(const IconMemberKind &kind, std::string_view bytes, std::string_view masking);

}   // namespace standin
