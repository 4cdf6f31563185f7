// What the tests of the host's parts share.
#pragma once

#include "host/usage_error.h"

#include <string>

namespace host_tests
{

// The message of the UsageError that `read` throws, or a text that says that there was none.
template <typename Read>
std::string complaintOf(Read read)
{
    try
    {
        read();
    }
    catch (const host::UsageError &error)
    {
        return error.what();
    }
    return "(no complaint)";
}

}   // namespace host_tests
