#include "standin/drawing/icon_suites.h"

#include "standin/resources/resources.h"

#include <algorithm>
#include <memory>
#include <new>
#include <unordered_set>

namespace standin
{

namespace
{

using Member = OpaqueIconSuiteRef::Member;

std::unordered_set<IconSuiteRef> &liveSuites()
{
    static auto &suites = *new std::unordered_set<IconSuiteRef>;
    return suites;
}

std::size_t indexOf(const IconMemberKind &kind)
{
    return static_cast<std::size_t>(&kind - iconMemberKinds);
}

// What there is to mask members of this side: bytes of the member of 1 bit.
const std::string &maskingFor(const OpaqueIconSuiteRef &suite, int side)
{
    const auto isPartner = [=](const IconMemberKind &kind) { return kind.side == side && kind.bitsPerPixel == 1; };
    return suite.members[indexOf(*std::find_if(std::begin(iconMemberKinds), std::end(iconMemberKinds), isPartner))].bytes;
}

bool isAsked(const IconMemberKind &kind, IconSelectorValue selector)
{
    return (kind.selector & selector) != 0;
}

// The mask of a colour that is asked for comes along, whether it is asked for or not.
bool isNeeded(const IconMemberKind &kind, IconSelectorValue selector)
{
    const IconSelectorValue sameSide = kind.side == 32 ? svAllLargeData : svAllSmallData;
    return isAsked(kind, selector) || (kind.bitsPerPixel == 1 && (selector & sameSide) != 0);
}

void fetchMember(const IconMemberKind &kind, SInt16 resID, IconSelectorValue selector, Member &member)
{
    std::string bytes;
    if (!isNeeded(kind, selector) || !copyResource(kind.type, resID, bytes) || !canBeMember(kind, bytes.size()))
        return;
    if (bytes.size() > wholeSizeOf(kind))
        bytes.resize(wholeSizeOf(kind));
    member.bytes = std::move(bytes);
    member.isWanted = isAsked(kind, selector);
}

bool hasAnyIcon(const OpaqueIconSuiteRef &suite)
{
    return std::any_of(suite.members.begin(), suite.members.end(), [](const Member &member) { return member.isWanted; });
}

// Null if there is no member of this side. Kinds stand in the order of their depth.
const IconMemberKind *deepestKind(const OpaqueIconSuiteRef &suite, int side)
{
    const IconMemberKind *deepest = nullptr;
    for (const IconMemberKind &kind : iconMemberKinds)
        if (kind.side == side && suite.members[indexOf(kind)].isWanted)
            deepest = &kind;
    return deepest;
}

}   // namespace

bool isIconSuite(IconSuiteRef suite)
{
    return liveSuites().count(suite) != 0;
}

IconPixels readIcon(const OpaqueIconSuiteRef &suite, int side)
{
    const IconMemberKind *kind = deepestKind(suite, side);
    if (kind == nullptr)
        kind = deepestKind(suite, side == 32 ? 16 : 32);
    return readIconMember(*kind, suite.members[indexOf(*kind)].bytes, maskingFor(suite, kind->side));
}

}   // namespace standin

using namespace standin;

// Each member is what GetResource would find, so that of a family whose members lie in several open files all are found.
// Result: noErr; paramErr for a null pointer; resNotFound if none of the members that are asked for is there; memFullErr. After a failure the
// suite is null. ResError is left alone.
OSErr GetIconSuite(IconSuiteRef *suite, SInt16 resID, IconSelectorValue selector)
{
    if (suite == nullptr)
        return paramErr;
    *suite = nullptr;
    try
    {
        auto fetched = std::make_unique<OpaqueIconSuiteRef>();
        for (const IconMemberKind &kind : iconMemberKinds)
            fetchMember(kind, resID, selector, fetched->members[indexOf(kind)]);
        if (!hasAnyIcon(*fetched))
            return resNotFound;
        liveSuites().insert(fetched.get());
        *suite = fetched.release();
        return noErr;
    }
    catch (const std::bad_alloc &)
    {
        return memFullErr;
    }
}

// The members are the suite's own, so they go with it whatever `disposeData` says.
// Result: noErr; paramErr for what is no suite, or none any more.
OSErr DisposeIconSuite(IconSuiteRef suite, Boolean)
{
    if (liveSuites().erase(suite) == 0)
        return paramErr;
    delete suite;
    return noErr;
}
