// JSON trees as text. The tree is nlohmann's; writing is ours, because strings of this host are bytes of file names, which need not be UTF-8,
// and the library's own writer refuses those.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace host
{

using Json = nlohmann::ordered_json;   // members stay in the order in which they were added

// Indented by two spaces, ASCII alone, with a line end after it. Strings as jsonString writes them.
std::string jsonText(const Json &tree);

}   // namespace host
