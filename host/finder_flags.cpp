#include "host/finder_flags.h"

#include "host/usage_error.h"

#include "platform/file_constants.h"

#include <algorithm>
#include <cctype>

namespace host
{

namespace
{

constexpr NamedBit finderFlagTable[] = {
    {0x0001, "isOnDesk"},
    {0x0040, "isShared"},
    {0x0080, "hasNoINITs"},
    {kHasBeenInited, "hasBeenInited"},
    {kHasCustomIcon, "hasCustomIcon"},
    {kIsStationery, "isStationery"},
    {kNameLocked, "nameLocked"},
    {0x2000, "hasBundle"},
    {kIsInvisible, "isInvisible"},
    {0x8000, "isAlias"},
};

constexpr NamedBit extendedFlagTable[] = {
    {0x0004, "hasRoutingInfo"},
    {0x0080, "objectIsBusy"},
    {0x0100, "hasCustomBadge"},
    {0x8000, "flagsAreInvalid"},
};

constexpr NamedBit openForkTable[] = {
    {kFSNodeDataOpenMask, "data"},
    {kFSNodeResOpenMask, "resource"},
};

constexpr NamedBit privilegeTable[] = {
    {0x01, "seesNoFolders"},
    {0x02, "seesNoFiles"},
    {0x04, "makesNoChanges"},
    {0x80, "isNotOwner"},
};

constexpr const char *labelNames[] = {"none", "gray", "green", "purple", "blue", "yellow", "red", "orange"};

bool sameIgnoringCase(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

std::string allNames(std::span<const NamedBit> table)
{
    std::string names;
    for (const NamedBit &row : table)
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    return names;
}

UInt16 finderFlagFromText(std::string_view name)
{
    for (const NamedBit &flag : finderFlagTable)
        if (sameIgnoringCase(flag.name, name))
            return static_cast<UInt16>(flag.bit);
    throw UsageError("there is no Finder flag \"" + std::string(name) + "\"; the flags are " + allNames(finderFlagTable));
}

void readOneFlag(std::string_view text, FlagChange &change)
{
    if (!text.starts_with('+') && !text.starts_with('-'))
        throw UsageError("\"" + std::string(text) + "\" does not begin with + (set) or - (clear)");
    UInt16 flag = finderFlagFromText(text.substr(1));
    UInt16 &bits = text[0] == '+' ? change.bitsToSet : change.bitsToClear;
    bits = static_cast<UInt16>(bits | flag);
}

}   // namespace

std::span<const NamedBit> finderFlags()
{
    return finderFlagTable;
}

std::span<const NamedBit> extendedFinderFlags()
{
    return extendedFlagTable;
}

std::span<const NamedBit> openForkFlags()
{
    return openForkTable;
}

std::span<const NamedBit> userPrivilegeLimits()
{
    return privilegeTable;
}

std::vector<std::string> namesOfBits(std::span<const NamedBit> table, UInt32 bits)
{
    std::vector<std::string> names;
    for (const NamedBit &row : table)
        if (bits & row.bit)
            names.push_back(row.name);
    return names;
}

int labelOfFlags(UInt16 flags)
{
    return (flags & labelMask) >> 1;
}

const char *nameOfLabel(int label)
{
    return labelNames[label & 7];
}

int labelFromText(std::string_view text)
{
    for (int label = 0; label < 8; ++label)
        if (sameIgnoringCase(text, labelNames[label]) || text == std::to_string(label))
            return label;
    throw UsageError("there is no label \"" + std::string(text) +
                     "\"; the labels are none, gray, green, purple, blue, yellow, red, orange, or 0 to 7");
}

void readFlagChange(std::string_view text, FlagChange &change)
{
    while (true)
    {
        std::size_t comma = text.find(',');
        readOneFlag(text.substr(0, comma), change);
        if (comma == std::string_view::npos)
            return;
        text.remove_prefix(comma + 1);
    }
}

}   // namespace host
