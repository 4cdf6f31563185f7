// The Finder's flags under their published names, labels, and what else the Finder information and the catalog say in single bits.
#pragma once

#include "platform/types.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host
{

struct NamedBit
{
    UInt32 bit;
    const char *name;
};

std::span<const NamedBit> finderFlags();   // all but the label, which is a number in three bits
std::span<const NamedBit> extendedFinderFlags();
std::span<const NamedBit> openForkFlags();         // of a file's node flags
std::span<const NamedBit> userPrivilegeLimits();   // what the user may not do, or is not

// The names of the bits that are set, in the table's order. Bits without a name are left out.
std::vector<std::string> namesOfBits(std::span<const NamedBit> table, UInt32 bits);

constexpr UInt16 labelMask = 0x000E;

int labelOfFlags(UInt16 flags);       // 0 (none) to 7
const char *nameOfLabel(int label);   // "none", "gray", …

// Reads a label's name or number. Throws UsageError.
int labelFromText(std::string_view text);

struct FlagChange
{
    UInt16 bitsToSet = 0;
    UInt16 bitsToClear = 0;
};

// Reads +name and -name, several with commas between; case does not matter. Adds to `change`. Throws UsageError.
void readFlagChange(std::string_view text, FlagChange &change);

}   // namespace host
