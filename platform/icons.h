// Icon Utilities: families of icons, drawn in the best member for the place.

#pragma once

#include "platform/geometry.h"
#include "platform/results.h"
#include "platform/types.h"

// Which members of a family are wanted
enum : IconSelectorValue
{
    svAllSmallData = 0x0000FF00,
    svAllAvailableData = 0xFFFFFFFF
};

enum : IconTransformType
{
    kTransformNone = 0,
    kTransformDisabled = 1,
    kTransformOffline = 2,
    kTransformOpen = 3,
    kTransformSelected = 0x4000,
    kTransformSelectedDisabled = 0x4001,
    kTransformSelectedOffline = 0x4002,
    kTransformSelectedOpen = 0x4003
};

#pragma GCC visibility push(default)
extern "C"
{

OSErr GetIconSuite(IconSuiteRef *suite, SInt16 resID, IconSelectorValue selector);
OSErr PlotIconSuite(const Rect *rect, IconAlignmentType alignment, IconTransformType transform, IconSuiteRef suite);
OSErr DisposeIconSuite(IconSuiteRef suite, Boolean disposeData);
}
#pragma GCC visibility pop
