#pragma once

namespace host
{

extern const char *const version;   // such as "1.2.3"

}   // namespace host
