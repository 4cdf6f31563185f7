// Resources from several threads at once.
#include "standin/resources/resources.h"
#include "tests/standin/resource_bytes.h"

#include <atomic>
#include <thread>

namespace
{

using namespace support;

constexpr OSType text = code("TEXT");
constexpr int rounds = 200;

// Gets, keeps or gives back its own resource again and again, in each way that there is.
bool workOn(SInt16 id)
{
    const std::string expected = "text " + std::to_string(id);
    for (int round = 0; round < rounds; ++round)
    {
        const Handle handle = GetResource(text, id);
        std::string copy;
        if (ResError() != noErr || contentOf(handle) != expected || !standin::copyResource(text, id, copy) || copy != expected)
            return false;
        if (round % 3 == 0)
            DetachResource(handle);
        if (round % 3 == 1)
            ReleaseResource(handle);
        else
            DisposeHandle(handle);
        GetResource(text, 99);
        if (ResError() != resNotFound)
            return false;
    }
    return true;
}

TEST(ThreadsResources, EachGetsItsOwn)
{
    TemporaryFolder folder;
    std::vector<TestResource> resources;
    for (SInt16 id = 0; id < 4; ++id)
        resources.push_back({text, id, bytesOf("text " + std::to_string(id))});
    OpenResources open(fileWithFork(folder, "file", resourceFork(resources)));
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    for (SInt16 id = 0; id < 4; ++id)
        threads.emplace_back([id, &good] { good += workOn(id); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(good, 4);
}

}   // namespace
