// Core Foundation's strings, as far as colon paths need them.

#pragma once

#include "platform/platform.h"

#include <list>
#include <string>

struct CoreFoundationDouble
{
    // In UTF-16; a released string is gone. The address of a list's element stays the same.
    std::list<std::u16string> strings;

    std::u16string *find(CFStringRef string);
};
