// Menus, dialogs and alerts of a resource description: lines → the bytes of 'MENU', 'DLOG', 'DITL' and 'ALRT'.
#pragma once

#include "host/description_lines.h"

#include <span>
#include <string>

namespace host
{

// `head` is the line that names the resource: what the resource lacks as a whole is said of that line. All throw DescriptionError.
std::string menuBytes(const DescriptionLine &head, SInt16 id, std::span<DescriptionLine> lines);
std::string dialogBytes(const DescriptionLine &head, std::span<DescriptionLine> lines);
std::string dialogItemBytes(const DescriptionLine &head, std::span<DescriptionLine> lines);
std::string alertBytes(const DescriptionLine &head, std::span<DescriptionLine> lines);

}   // namespace host
