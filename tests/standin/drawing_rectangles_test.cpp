// Rectangles: their edges, and coordinates that wrap around.
#include "tests/standin/rectangles.h"

#include <gtest/gtest.h>

namespace
{

TEST(DrawingRectangles, AreSetFromLeftTopRightBottom)
{
    Rect rect = {9, 9, 9, 9};
    SetRect(&rect, 1, 2, 3, 4);
    EXPECT_EQ(rect, (Rect{2, 1, 4, 3}));
    SetRect(&rect, 32767, -32768, -1, 0);
    EXPECT_EQ(rect, (Rect{-32768, 32767, 0, -1}));
}

struct Changed
{
    Rect before;
    SInt16 dh, dv;
    Rect after;
};

TEST(DrawingRectangles, AreMovedAndWrapAround)
{
    const Changed rows[] = {
        {{1, 2, 3, 4}, 10, 20, {21, 12, 23, 14}},
        {{1, 2, 3, 4}, -10, -20, {-19, -8, -17, -6}},
        {{0, 0, 10, 32767}, 1, 0, {0, 1, 10, -32768}},
        {{-32768, 0, 0, 10}, 0, -1, {32767, 0, -1, 10}},
        {{5, 5, 0, 0}, 1, 1, {6, 6, 1, 1}},   // an empty one is moved like any other
    };
    for (const Changed &row : rows)
    {
        Rect rect = row.before;
        OffsetRect(&rect, row.dh, row.dv);
        EXPECT_EQ(rect, row.after) << testing::PrintToString(row.before);
    }
}

TEST(DrawingRectangles, AreInsetAndBecomeZeroWithNothingLeft)
{
    const Changed rows[] = {
        {{0, 0, 10, 20}, 2, 1, {1, 2, 9, 18}},
        {{0, 0, 10, 20}, -2, -1, {-1, -2, 11, 22}},
        {{5, 5, 8, 25}, 0, 1, {6, 5, 7, 25}},
        {{5, 5, 7, 25}, 0, 1, {0, 0, 0, 0}},
        {{5, 5, 25, 6}, 1, 0, {0, 0, 0, 0}},
        {{0, 0, 10, 32767}, -1, 0, {0, 0, 0, 0}},   // the right edge wraps around
        {{-32768, -32768, 32767, 32767}, 32767, 32767, {-1, -1, 0, 0}},
    };
    for (const Changed &row : rows)
    {
        Rect rect = row.before;
        InsetRect(&rect, row.dh, row.dv);
        EXPECT_EQ(rect, row.after) << testing::PrintToString(row.before);
    }
}

struct Pair
{
    Rect one, other, common;
    bool meet;
};

TEST(DrawingRectangles, HaveInCommonWhatLiesInBoth)
{
    const Pair rows[] = {
        {{0, 0, 10, 10}, {5, 6, 20, 20}, {5, 6, 10, 10}, true},
        {{0, 0, 10, 10}, {2, 2, 3, 3}, {2, 2, 3, 3}, true},
        {{0, 0, 10, 10}, {0, 10, 10, 20}, {0, 0, 0, 0}, false},   // they only touch
        {{0, 0, 10, 10}, {10, 0, 20, 10}, {0, 0, 0, 0}, false},
        {{0, 0, 10, 10}, {30, 30, 40, 40}, {0, 0, 0, 0}, false},
        {{0, 0, 10, 10}, {5, 5, 5, 9}, {0, 0, 0, 0}, false},   // an empty one
        {{0, 0, 10, 10}, {8, 8, 2, 2}, {0, 0, 0, 0}, false},   // one that is turned inside out
        {{-32768, -32768, 32767, 32767}, {-1, -1, 1, 1}, {-1, -1, 1, 1}, true},
    };
    for (const Pair &row : rows)
    {
        Rect common = {77, 77, 77, 77};
        EXPECT_EQ(SectRect(&row.one, &row.other, &common) != 0, row.meet);
        EXPECT_EQ(common, row.common);
        EXPECT_EQ(SectRect(&row.other, &row.one, &common) != 0, row.meet);
        EXPECT_EQ(common, row.common);
    }
}

TEST(DrawingRectangles, TakeTheirCommonPartInTheirOwnPlace)
{
    Rect one = {0, 0, 10, 10};
    const Rect other = {5, 6, 20, 20};
    EXPECT_TRUE(SectRect(&one, &other, &one));
    EXPECT_EQ(one, (Rect{5, 6, 10, 10}));
}

TEST(DrawingRectangles, AreEmptyWithoutHeightOrWidth)
{
    const Rect filled[] = {{0, 0, 1, 1}, {-32768, -32768, 32767, 32767}};
    const Rect empty[] = {{0, 0, 0, 0}, {0, 0, 0, 5}, {0, 0, 5, 0}, {5, 0, 4, 9}, {0, 5, 9, 4}};
    for (const Rect &rect : filled)
        EXPECT_FALSE(EmptyRect(&rect)) << testing::PrintToString(rect);
    for (const Rect &rect : empty)
        EXPECT_TRUE(EmptyRect(&rect)) << testing::PrintToString(rect);
}

TEST(DrawingRectangles, HoldTheirTopAndLeftEdgeAndNotTheOthers)
{
    const Rect rect = {10, 20, 30, 40};
    const Point inside[] = {{10, 20}, {29, 39}, {29, 20}, {10, 39}};
    const Point outside[] = {{9, 20}, {10, 19}, {30, 39}, {29, 40}, {30, 40}, {-32768, 30}};
    for (const Point &point : inside)
        EXPECT_TRUE(PtInRect(point, &rect)) << point.v << ", " << point.h;
    for (const Point &point : outside)
        EXPECT_FALSE(PtInRect(point, &rect)) << point.v << ", " << point.h;
}

}   // namespace
