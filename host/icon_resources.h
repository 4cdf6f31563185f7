// The icons of the current resource file: families, and lists of small icons.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace host
{

// A kind of member of a family, in the order of size and depth.
struct IconMemberType
{
    ResType type;
    const char *name;             // as its type is written
    IconSelectorValue selector;   // asks for it alone
    SInt16 side;                  // its width and height in pixels
};

inline constexpr IconMemberType iconMemberTypes[] = {
    {0x49434E23, "ICN#", svLarge1Bit, 32}, {0x69636C34, "icl4", svLarge4Bit, 32}, {0x69636C38, "icl8", svLarge8Bit, 32},
    {0x69637323, "ics#", svSmall1Bit, 16}, {0x69637334, "ics4", svSmall4Bit, 16}, {0x69637338, "ics8", svSmall8Bit, 16},
};

constexpr ResType smallIconListType = 0x5349434E;   // SICN
constexpr long smallIconSize = 32;                  // bytes of one picture of such a list

struct IconMember
{
    const IconMemberType *type;
    long size;         // in the file
    bool isDrawable;   // false if its bytes are too few for an icon
};

struct IconFamily
{
    SInt16 id = 0;
    std::string name;   // of its first member that has one; in UTF-8
    std::vector<IconMember> members;
};

struct SmallIconList
{
    SInt16 id = 0;
    std::string name;   // in UTF-8
    long pictures = 0;
};

struct IconResources
{
    std::vector<IconFamily> families;   // both by their IDs
    std::vector<SmallIconList> lists;
};

// Of two resources of one type and ID the first counts, as it does when they are drawn.
IconResources iconsOfCurrentFile();

// "128, 129 and 130", a long list cut short; "none".
std::string idsOf(const std::vector<IconFamily> &families);
std::string idsOf(const std::vector<SmallIconList> &lists);

}   // namespace host
