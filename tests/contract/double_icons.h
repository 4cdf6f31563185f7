// The double's icon families, and the suites that were made of them.

#pragma once

#include "platform/platform.h"

#include <deque>
#include <map>
#include <optional>
#include <string>

struct OpaqueIconSuiteRef
{
    SInt16 resID;
    bool isDisposed = false;
};

struct IconsDouble
{
    static std::string describe(IconSuiteRef suite);

    std::map<SInt16, IconSelectorValue> families;   // which members there are, by resource ID
    std::deque<OpaqueIconSuiteRef> suites;          // every one that was made
    std::optional<OSErr> codeBesideASuite;          // what GetIconSuite answers where it does make a suite
    std::optional<OSErr> codeWithoutASuite;         // and where it makes none, because there is no icon
};
