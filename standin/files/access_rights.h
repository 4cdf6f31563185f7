// Access rights of folders: the platform's bits ↔ Linux's mode.
#pragma once

#include "platform/platform.h"

#include <cstdint>

namespace standin
{

// Bits 0 to 2 are the owner's rights to search, read and write, bits 8 to 10 the group's, bits 16 to 18 everyone's. Other bits are not looked at.
UInt32 accessRightsOfMode(std::uint32_t mode);
std::uint32_t modeOfAccessRights(UInt32 rights);

}   // namespace standin
