#pragma once

namespace host
{

constexpr const char *version = "0.1";

}   // namespace host
