// What the tests of icons, buttons and tracking share: a family of icons, a dialog, and calls that come up in many of them.

#pragma once

#include "dialogs/iconbuttons.h"
#include "tests/contract/platform_double.h"
#include "tests/contract/rows.h"
#include "tests/contract/stack_pattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ostream>

// Records that are compared have no padding.
template <typename Record>
bool sameBytes(const Record &a, const Record &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline bool operator==(const Rect &a, const Rect &b)
{
    return sameBytes(a, b);
}

inline void PrintTo(const Rect &rect, std::ostream *stream)
{
    *stream << rectText(&rect);
}

// The rectangle of this size at the corner of another one; coordinates wrap around.
inline std::string iconRectText(const Rect &where, int size)
{
    const Rect icon = {where.top, where.left, static_cast<SInt16>(where.top + size), static_cast<SInt16>(where.left + size)};
    return rectText(&icon);
}

inline Calls smallIconCalls(const Rect &where, SInt16 resID, SInt16 alignment, IconTransformType transform)
{
    const std::string id = decimal(resID);
    return {"GetIconSuite(suite, " + id + ", 0xFF00)", "SetRect(rect, 0, 0, 16, 16)",
            "OffsetRect(rect, " + decimal(where.left) + ", " + decimal(where.top) + ")",
            "PlotIconSuite(" + iconRectText(where, 16) + ", " + decimal(alignment) + ", " + hex(static_cast<UInt16>(transform)) +
                ", suite " + id + ")",
            "DisposeIconSuite(suite " + id + ", 1)"};
}

inline Calls largeIconCalls(const Rect &where, SInt16 resID, SInt16 alignment, IconTransformType transform)
{
    const std::string id = decimal(resID);
    return {"GetPenState(pen)",
            "GetIconSuite(suite, " + id + ", 0xFFFFFFFF)",
            "SetRect(rect, 0, 0, 32, 32)",
            "OffsetRect(rect, " + decimal(where.left) + ", " + decimal(where.top) + ")",
            "PlotIconSuite(" + iconRectText(where, 32) + ", " + decimal(alignment) + ", " + hex(static_cast<UInt16>(transform)) +
                ", suite " + id + ")",
            "DisposeIconSuite(suite " + id + ", 1)"};
}

class DialogsTest : public testing::Test
{
protected:
    DialogsTest() { platform.icons.families[family] = svAllAvailableData; }

    // Whatever a function did, nothing of this is left behind.
    void TearDown() override
    {
        const auto isDisposed = [](const OpaqueIconSuiteRef &suite) { return suite.isDisposed; };
        EXPECT_TRUE(std::all_of(platform.icons.suites.begin(), platform.icons.suites.end(), isDisposed)) << "a suite is left";
        EXPECT_EQ(platform.drawing.current, &platform.drawing.screen) << "another port is current";
        EXPECT_TRUE(platform.resources.loads || !loadsAfterwards) << "resources are no longer loaded";
        for (const RelocatableBlock &block : platform.handles.blocks)
            EXPECT_FALSE(block.isLocked) << "a block is still locked";
    }

    static constexpr SInt16 family = 128, noFamily = 129;
    static constexpr Rect where = {10, 20, 11, 200};

    PlatformDouble platform;
    bool loadsAfterwards = true;
};
