// Icon suites: the members of a family that were asked for and are there, as bytes of their own.
#pragma once

#include "standin/drawing/icon_members.h"

#include <array>
#include <iterator>
#include <string>

// Copies of the resources' bytes: a suite shares nothing with any handle, and outlives its resource file.
struct OpaqueIconSuiteRef
{
    struct Member
    {
        std::string bytes;       // none if there is no such member
        bool isWanted = false;   // a member of 1 bit that nobody asked for is there for its mask alone
    };

    std::array<Member, std::size(standin::iconMemberKinds)> members;   // in the order of the kinds
};

namespace standin
{

// Whether this is a suite that GetIconSuite gave and nobody disposed of.
bool isIconSuite(IconSuiteRef suite);

// The deepest member of this side, in pixels; where there is none, that of the other side.
IconPixels readIcon(const OpaqueIconSuiteRef &suite, int side);

}   // namespace standin
