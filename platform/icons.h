// Icon Utilities: families of icons, drawn in the best member for the place.

#pragma once

#include "platform/geometry.h"
#include "platform/results.h"
#include "platform/types.h"

// Which members of a family are wanted
enum : IconSelectorValue
{
    svLarge1Bit = 0x00000001,
    svLarge4Bit = 0x00000002,
    svLarge8Bit = 0x00000004,
    svSmall1Bit = 0x00000100,
    svSmall4Bit = 0x00000200,
    svSmall8Bit = 0x00000400,
    svAllLargeData = 0x000000FF,
    svAllSmallData = 0x0000FF00,
    svAll1BitData = 0x00010101,
    svAll4BitData = 0x00020202,
    svAll8BitData = 0x00040404,
    svAllAvailableData = 0xFFFFFFFF
};

// Where an icon lies in a rectangle of another size: one of three places across the height, and one of three across the width
enum : IconAlignmentType
{
    kAlignNone = 0x0,
    kAlignVerticalCenter = 0x1,
    kAlignTop = 0x2,
    kAlignBottom = 0x3,
    kAlignHorizontalCenter = 0x4,
    kAlignAbsoluteCenter = 0x5,
    kAlignCenterTop = 0x6,
    kAlignCenterBottom = 0x7,
    kAlignLeft = 0x8,
    kAlignCenterLeft = 0x9,
    kAlignTopLeft = 0xA,
    kAlignBottomLeft = 0xB,
    kAlignRight = 0xC,
    kAlignCenterRight = 0xD,
    kAlignTopRight = 0xE,
    kAlignBottomRight = 0xF
};

// The looks of an icon: a state, with a label's colour and being selected added
enum : IconTransformType
{
    kTransformNone = 0,
    kTransformDisabled = 1,
    kTransformOffline = 2,
    kTransformOpen = 3,
    kTransformLabel1 = 0x0100,
    kTransformLabel2 = 0x0200,
    kTransformLabel3 = 0x0300,
    kTransformLabel4 = 0x0400,
    kTransformLabel5 = 0x0500,
    kTransformLabel6 = 0x0600,
    kTransformLabel7 = 0x0700,
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
