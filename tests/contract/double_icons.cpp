#include "tests/contract/platform_double.h"

std::string IconsDouble::describe(IconSuiteRef suite)
{
    if (suite == nullptr)
        return "-";
    return "suite " + decimal(suite->resID) + (suite->isDisposed ? ", disposed" : "");
}

OSErr GetIconSuite(IconSuiteRef *suite, SInt16 resID, IconSelectorValue selector)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("GetIconSuite", {platform.pointer(suite, "suite"), decimal(resID), hex(selector)});
    if (failure != noErr)
        return failure;
    IconsDouble &icons = platform.icons;
    const auto family = icons.families.find(resID);
    if (family == icons.families.end() || (family->second & selector) == 0)
    {
        *suite = nullptr;
        return icons.codeWithoutASuite.value_or(resNotFound);
    }
    *suite = &icons.suites.emplace_back(OpaqueIconSuiteRef{resID});
    return icons.codeBesideASuite.value_or(noErr);
}

OSErr PlotIconSuite(const Rect *rect, IconAlignmentType alignment, IconTransformType transform, IconSuiteRef suite)
{
    PlatformDouble &platform = PlatformDouble::current();
    return platform.record("PlotIconSuite",
                           {rectText(rect), decimal(alignment), hex(static_cast<UInt16>(transform)), IconsDouble::describe(suite)});
}

// Where this fails, the suite is gone all the same.
OSErr DisposeIconSuite(IconSuiteRef suite, Boolean disposeData)
{
    PlatformDouble &platform = PlatformDouble::current();
    const OSErr failure = platform.record("DisposeIconSuite", {IconsDouble::describe(suite), decimal(disposeData)});
    suite->isDisposed = true;
    return failure;
}
