// Something typed on the command line that cannot be meant. The message may quote it as it was typed; it is made printable where it is shown.
#pragma once

#include <stdexcept>

namespace host
{

struct UsageError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

}   // namespace host
