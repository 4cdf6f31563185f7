// Rectangles. Coordinates have 16 bits and wrap around; the top and left edge belong to a rectangle, the bottom and right edge do not.
#include "platform/drawing.h"

#include <algorithm>

void SetRect(Rect *rect, SInt16 left, SInt16 top, SInt16 right, SInt16 bottom)
{
    *rect = {top, left, bottom, right};
}

void OffsetRect(Rect *rect, SInt16 dh, SInt16 dv)
{
    *rect = {static_cast<SInt16>(rect->top + dv), static_cast<SInt16>(rect->left + dh), static_cast<SInt16>(rect->bottom + dv),
             static_cast<SInt16>(rect->right + dh)};
}

// What has nothing left inside becomes 0, 0, 0, 0.
void InsetRect(Rect *rect, SInt16 dh, SInt16 dv)
{
    *rect = {static_cast<SInt16>(rect->top + dv), static_cast<SInt16>(rect->left + dh), static_cast<SInt16>(rect->bottom - dv),
             static_cast<SInt16>(rect->right - dh)};
    if (EmptyRect(rect))
        *rect = {0, 0, 0, 0};
}

// `common` may be one of the two; with nothing in common it becomes 0, 0, 0, 0. Rectangles that only touch have nothing in common.
Boolean SectRect(const Rect *one, const Rect *other, Rect *common)
{
    const bool bothFilled = !EmptyRect(one) && !EmptyRect(other);
    *common = {std::max(one->top, other->top), std::max(one->left, other->left), std::min(one->bottom, other->bottom),
               std::min(one->right, other->right)};
    if (bothFilled && !EmptyRect(common))
        return true;
    *common = {0, 0, 0, 0};
    return false;
}

Boolean EmptyRect(const Rect *rect)
{
    return rect->bottom <= rect->top || rect->right <= rect->left;
}

Boolean PtInRect(Point point, const Rect *rect)
{
    return point.v >= rect->top && point.v < rect->bottom && point.h >= rect->left && point.h < rect->right;
}
