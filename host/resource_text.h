// Resources that hold text, as lines for people.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>

namespace host
{

// The lines, in UTF-8 and each safe to print: of 'STR ', 'STR#', 'vers' and 'TEXT'. Nothing for another type, and for bytes that are no such resource.
// What follows a 'STR ' or 'vers' in its bytes is not shown.
std::optional<std::string> textOfResource(ResType type, std::string_view bytes);

}   // namespace host
