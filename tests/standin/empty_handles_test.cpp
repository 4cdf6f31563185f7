// What the Memory Manager offers its neighbours: handles without a block, and word of a disposal.
#include "standin/memory/handles.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

namespace
{

TEST(EmptyHandles, HaveNoBlockAndAreDisposedOfAsOthers)
{
    const Handle handle = standin::newEmptyHandle();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(*handle, nullptr);
    EXPECT_EQ(GetHandleSize(handle), 0);
    EXPECT_EQ(MemError(), nilHandleErr);
    EXPECT_EQ(PtrAndHand("x", handle, 1), nilHandleErr);
    EXPECT_EQ(*handle, nullptr);
    DisposeHandle(handle);
    EXPECT_EQ(MemError(), noErr);
}

TEST(EmptyHandles, AreFilledAndEmptiedAgain)
{
    const Handle handle = standin::newEmptyHandle();
    ASSERT_TRUE(standin::fillHandle(handle, 3));
    std::memcpy(*handle, "abc", 3);
    EXPECT_EQ(GetHandleSize(handle), 3);
    EXPECT_EQ(PtrAndHand("d", handle, 1), noErr);
    EXPECT_EQ(std::memcmp(*handle, "abcd", 4), 0);
    standin::emptyHandle(handle);
    EXPECT_EQ(*handle, nullptr);
    ASSERT_TRUE(standin::fillHandle(handle, 0));
    EXPECT_NE(*handle, nullptr);
    EXPECT_EQ(GetHandleSize(handle), 0);
    EXPECT_EQ(MemError(), noErr);
    DisposeHandle(handle);
}

TEST(EmptyHandles, StayAsTheyAreWhereThereIsNoMemory)
{
    const Handle handle = standin::newEmptyHandle();
    for (const Size size : {Size{-1}, LONG_MAX, Size{1} << 50})
        EXPECT_FALSE(standin::fillHandle(handle, size));
    EXPECT_EQ(*handle, nullptr);
    DisposeHandle(handle);
}

TEST(EmptyHandles, KeepTheirLock)
{
    const Handle handle = standin::newEmptyHandle();
    HLock(handle);
    ASSERT_TRUE(standin::fillHandle(handle, 16));
    const Ptr block = *handle;
    const std::vector<char> much(1 << 20);
    EXPECT_EQ(PtrAndHand(much.data(), handle, 1 << 20), memFullErr);
    EXPECT_EQ(*handle, block);
    HUnlock(handle);
    EXPECT_EQ(PtrAndHand(much.data(), handle, 1 << 20), noErr);
    DisposeHandle(handle);
}

}   // namespace
