// Several threads that walk and delete, each its own tree or all the same.
#include "tests/standin/trees.h"

#include <atomic>
#include <thread>

namespace
{

using namespace support;

class ThreadsWalking : public DiskTest
{
};

void inThreads(int count, const std::function<void(int)> &work)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back(work, number);
    for (std::thread &thread : threads)
        thread.join();
}

TEST_P(ThreadsWalking, SeeTheWholeTreeEach)
{
    makeTree(folder() / "tree", {40, 5});
    const FSRef top = refAt(folder() / "tree");
    std::atomic<long> seen = 0;
    inThreads(8, [&](int) {
        long count = 0;
        EXPECT_EQ(walk(top, count), noErr);
        seen += count;
    });
    EXPECT_EQ(seen, 8 * 40 * 6);
}

TEST_P(ThreadsWalking, DeleteTreesOfTheirOwn)
{
    for (int number = 0; number < 8; ++number)
        makeTree(folder() / std::to_string(number), {20, 5});
    inThreads(8, [&](int number) {
        const FSRef top = refAt(folder() / std::to_string(number));
        EXPECT_EQ(deleteContents(top), noErr);
        EXPECT_EQ(FSDeleteObject(&top), noErr);
    });
    EXPECT_EQ(namesIn(folder().path()), std::vector<std::string>{});
}

// Each stops where another one was faster. Together they leave what somebody can delete.
TEST_P(ThreadsWalking, DeleteAndWalkOneTree)
{
    makeTree(folder() / "tree", {40, 5});
    const FSRef top = refAt(folder() / "tree");
    inThreads(4, [&](int number) {
        long count = 0;
        if (number % 2)
            walk(top, count);
        else
            deleteContents(top);
    });
    EXPECT_EQ(deleteContents(top), noErr);
    EXPECT_EQ(namesIn(folder() / "tree"), std::vector<std::string>{});
}

ON_EVERY_DISK(ThreadsWalking);

}   // namespace
