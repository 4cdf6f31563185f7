// Pointers and handles: sizes, growth, refusals, and what MemError tells each thread.
#include "platform/memory.h"
#include "tests/how_built.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

constexpr Size unreasonableSizes[] = {-1, LONG_MIN, LONG_MAX, LONG_MAX - 64, Size{1} << 50};

std::string contentOf(Handle handle)
{
    return std::string(*handle, static_cast<std::size_t>(GetHandleSize(handle)));
}

TEST(Pointers, HaveTheSizeThatWasAskedFor)
{
    for (Size size : {Size{0}, Size{1}, Size{15}, Size{4096}, Size{1} << 22})
    {
        Ptr block = NewPtr(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(MemError(), noErr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
        std::memset(block, 0xA5, static_cast<std::size_t>(size));
        EXPECT_EQ(GetPtrSize(block), size);
        DisposePtr(block);
        EXPECT_EQ(MemError(), noErr);
    }
}

TEST(Pointers, UnreasonableSizesAreRefused)
{
    for (Size size : unreasonableSizes)
    {
        GetPtrSize(nullptr);
        EXPECT_EQ(MemError(), memWZErr);
        EXPECT_EQ(NewPtr(size), nullptr) << size;
        EXPECT_EQ(MemError(), memFullErr) << size;
    }
}

TEST(Pointers, NullHasNoSizeAndNeedsNoDisposal)
{
    EXPECT_EQ(GetPtrSize(nullptr), 0);
    EXPECT_EQ(MemError(), memWZErr);
    DisposePtr(nullptr);
    EXPECT_EQ(MemError(), noErr);
}

TEST(Handles, HaveTheSizeThatWasAskedFor)
{
    for (Size size : {Size{0}, Size{1}, Size{17}, Size{80}, Size{1} << 22})
    {
        Handle handle = NewHandle(size);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(MemError(), noErr);
        ASSERT_NE(*handle, nullptr);
        std::memset(*handle, 0xA5, static_cast<std::size_t>(size));
        EXPECT_EQ(GetHandleSize(handle), size);
        DisposeHandle(handle);
        EXPECT_EQ(MemError(), noErr);
    }
}

TEST(Handles, UnreasonableSizesAreRefused)
{
    for (Size size : unreasonableSizes)
    {
        DisposeHandle(nullptr);
        EXPECT_EQ(MemError(), noErr);
        EXPECT_EQ(NewHandle(size), nullptr) << size;
        EXPECT_EQ(MemError(), memFullErr) << size;
    }
}

TEST(Handles, NullIsRefusedButForDisposal)
{
    EXPECT_EQ(GetHandleSize(nullptr), 0);
    EXPECT_EQ(MemError(), nilHandleErr);
    DisposeHandle(nullptr);
    EXPECT_EQ(MemError(), noErr);
    HLock(nullptr);
    EXPECT_EQ(MemError(), nilHandleErr);
    DisposeHandle(nullptr);
    HUnlock(nullptr);
    EXPECT_EQ(MemError(), nilHandleErr);
}

TEST(PtrAndHand, AppendsBehindWhatIsThere)
{
    Handle handle = NewHandle(3);
    std::memcpy(*handle, "one", 3);
    EXPECT_EQ(PtrAndHand(" and two", handle, 8), noErr);
    EXPECT_EQ(MemError(), noErr);
    EXPECT_EQ(contentOf(handle), "one and two");
    EXPECT_EQ(PtrAndHand("x", handle, 0), noErr);
    EXPECT_EQ(PtrAndHand(nullptr, handle, 0), noErr);
    EXPECT_EQ(contentOf(handle), "one and two");
    DisposeHandle(handle);
}

TEST(PtrAndHand, RefusalsLeaveTheHandleUnchanged)
{
    EXPECT_EQ(PtrAndHand("text", nullptr, 4), nilHandleErr);
    EXPECT_EQ(MemError(), nilHandleErr);
    Handle handle = NewHandle(0);
    ASSERT_EQ(PtrAndHand("kept", handle, 4), noErr);
    const Ptr block = *handle;
    struct
    {
        const void *source;
        long size;
        OSErr result;
    } const rows[] = {{"x", -1, paramErr},
                      {"x", LONG_MIN, paramErr},
                      {nullptr, 1, paramErr},
                      {"x", LONG_MAX, memFullErr},
                      {"x", LONG_MAX - 4, memFullErr}};
    for (const auto &row : rows)
    {
        EXPECT_EQ(PtrAndHand(row.source, handle, row.size), row.result) << row.size;
        EXPECT_EQ(MemError(), row.result);
        EXPECT_EQ(*handle, block);
        EXPECT_EQ(contentOf(handle), "kept");
    }
    DisposeHandle(handle);
}

TEST(PtrAndHand, ALockedBlockNeverMoves)
{
    Handle handle = NewHandle(10);
    HLock(handle);
    EXPECT_EQ(MemError(), noErr);
    const Ptr block = *handle;
    std::memset(block, 'a', 10);
    OSErr result = noErr;
    Size size = 10;
    while (result == noErr && size < 100000)
    {
        result = PtrAndHand("b", handle, 1);
        EXPECT_EQ(*handle, block);
        size += result == noErr;
    }
    EXPECT_EQ(result, memFullErr);
    EXPECT_EQ(GetHandleSize(handle), size);
    HUnlock(handle);
    EXPECT_EQ(PtrAndHand("c", handle, 1), noErr);
    EXPECT_EQ(contentOf(handle), std::string(10, 'a') + std::string(static_cast<std::size_t>(size) - 10, 'b') + "c");
    DisposeHandle(handle);
}

// A list of a million references grows ten at a time: its block may move a few dozen times, not a hundred thousand.
TEST(PtrAndHand, GrowsAMillionReferencesInFewMoves)
{
    Handle handle = NewHandle(0);
    std::vector<char> tenReferences(800);
    int moves = 0;
    for (int batch = 0; batch < 100000; ++batch)
    {
        std::memcpy(tenReferences.data(), &batch, sizeof batch);
        const Ptr before = *handle;
        ASSERT_EQ(PtrAndHand(tenReferences.data(), handle, 800), noErr);
        moves += *handle != before;
    }
    EXPECT_EQ(GetHandleSize(handle), 80000000);
    EXPECT_LE(moves, 40);
    for (int batch = 0; batch < 100000; ++batch)
        ASSERT_EQ(std::memcmp(*handle + 800L * batch, &batch, sizeof batch), 0) << batch;
    DisposeHandle(handle);
}

TEST(BlockMoveData, CopiesOverlappingBlocksBothWays)
{
    char text[] = "0123456789";
    BlockMoveData(text, text + 2, 8);
    EXPECT_STREQ(text, "0101234567");
    BlockMoveData(text + 2, text, 8);
    EXPECT_STREQ(text, "0123456767");
    BlockMoveData("xyz", text, 0);
    BlockMoveData("xyz", text, -3);
    BlockMoveData(nullptr, nullptr, 0);
    EXPECT_STREQ(text, "0123456767");
}

TEST(MemError, IsUntouchedByBlockMoveDataAndTheFigures)
{
    char byte = 'x';
    EXPECT_EQ(GetHandleSize(nullptr), 0);
    BlockMoveData("y", &byte, 1);
    FreeMem();
    MaxBlock();
    EXPECT_EQ(MemError(), nilHandleErr);
    EXPECT_EQ(MemError(), nilHandleErr);
}

TEST(ThreadsInMemory, HaveTheirOwnMemError)
{
    EXPECT_EQ(NewPtr(-1), nullptr);
    OSErr atStart = paramErr, afterFailure = noErr;
    std::thread other([&] {
        atStart = MemError();
        GetHandleSize(nullptr);
        afterFailure = MemError();
    });
    other.join();
    EXPECT_EQ(atStart, noErr);
    EXPECT_EQ(afterFailure, nilHandleErr);
    EXPECT_EQ(MemError(), memFullErr);
}

TEST(ThreadsInMemory, AllocateSideBySide)
{
    std::vector<std::thread> threads;
    std::vector<int> failures(8);
    for (int &failed : failures)
        threads.emplace_back([&failed] {
            for (int round = 0; round < 2000; ++round)
            {
                Handle handle = NewHandle(round % 50);
                failed += PtrAndHand(&round, handle, sizeof round) != noErr || MemError() != noErr;
                failed += GetHandleSize(handle) != round % 50 + static_cast<Size>(sizeof round);
                DisposeHandle(handle);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(8));
}

TEST(FreeMem, IsMoreThanNothingAndFits32Bits)
{
    EXPECT_GT(FreeMem(), 0);
    EXPECT_LE(FreeMem(), 0x7FFFFFFF);
    EXPECT_GT(MaxBlock(), 0);
    EXPECT_LE(MaxBlock(), 0x7FFFFFFF);
}

// Runs `check` in a child whose address space is limited, and gives its answer.
int inSmallAddressSpace(rlim_t extraBytes, int (*check)())
{
    pid_t child = fork();
    if (child == 0)
    {
        malloc_trim(0);   // what earlier tests freed would otherwise serve beside the limit
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        std::size_t pages = 0;
        FILE *file = std::fopen("/proc/self/statm", "r");
        if (file == nullptr || std::fscanf(file, "%zu", &pages) != 1)
            _exit(100);
        limit.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + extraBytes;
        _exit(setrlimit(RLIMIT_AS, &limit) == 0 ? check() : 101);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// 0 if the figures tell of the limit, what they tell can be had, and more is refused without harm.
int checkExhaustion()
{
    constexpr Size limit = 64 << 20;
    if (FreeMem() > limit || MaxBlock() > limit || FreeMem() < limit / 2)
        return 1;
    if (NewPtr(limit + 1) != nullptr || MemError() != memFullErr)
        return 2;
    if (NewHandle(limit + 1) != nullptr || MemError() != memFullErr)
        return 3;
    Ptr rest = NewPtr((MaxBlock() - 32768) / 4096 * 4096);
    if (rest == nullptr)
        return 4;
    DisposePtr(rest);
    Handle list = NewHandle(0);
    static const char piece[1 << 20] = {1};
    Size size = 0;
    while (PtrAndHand(piece, list, sizeof piece) == noErr)
        size += static_cast<Size>(sizeof piece);
    if (MemError() != memFullErr || GetHandleSize(list) != size || (*list)[size - static_cast<Size>(sizeof piece)] != 1)
        return 5;
    return size >= limit / 4 ? 0 : 6;
}

TEST(FreeMem, TellsOfALimitAndExhaustionIsAnError)
{
    if (isSanitized())
        GTEST_SKIP() << "a sanitizer's own memory does not fit into a limited address space";
    EXPECT_EQ(inSmallAddressSpace(64 << 20, checkExhaustion), 0);
}

}   // namespace
