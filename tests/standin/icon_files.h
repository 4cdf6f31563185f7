// Icons for tests, as the bytes of resources.
#pragma once

#include "tests/standin/resource_bytes.h"

namespace support
{

// The six types of members: ICN# icl4 icl8 ics# ics4 ics8.
const std::vector<OSType> &iconTypes();

// A member that is of one value all over: 0 or 1 for those of 1 bit, which have a full mask. 4 and 8 bits go through their palettes.
TestResource plainMember(OSType type, SInt16 id, unsigned value);

// A member of a picture to look at: a page with a folded corner and lines of text, which are coloured where there are colours.
TestResource pageMember(OSType type, SInt16 id);

// All of them, or some; the name is that of the member of 1 bit.
std::vector<TestResource> pageFamily(SInt16 id, const std::string &name = {}, const std::vector<OSType> &types = iconTypes());

// A list of small icons: arrows that go round, one for each eighth of a turn.
TestResource arrowList(SInt16 id, int count);

}   // namespace support
