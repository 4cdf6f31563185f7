// A readable text that describes resources → the resources. docs/resources.md has the language.
#pragma once

#include "host/description_lines.h"
#include "host/resource_writer.h"

#include <string_view>
#include <vector>

namespace host
{

// Throws DescriptionError with what is wrong in which line.
std::vector<WritableResource> resourcesFromDescription(std::string_view description);

}   // namespace host
