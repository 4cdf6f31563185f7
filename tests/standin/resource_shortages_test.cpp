// Resources where memory runs out at each place in turn: null and memFullErr, or the truth; nothing is left behind, and the next call finds everything.
#include "standin/resources/resources.h"
#include "tests/standin/failing_memory.h"
#include "tests/standin/faults_calls.h"
#include "tests/standin/resource_bytes.h"

#include <functional>
#include <new>
#include <string>
#include <vector>

namespace
{

using namespace support;

constexpr OSType text = code("TEXT");
constexpr long mostPieces = 2000;   // no call takes as many

class ResourceShortages : public testing::Test
{
protected:
    // Has `call` run out of memory at its first piece, its second, ..., until it takes no more. It says whether it did what it is for.
    static void runOut(const std::function<bool()> &call)
    {
        long nth = 0;
        bool wasReached = true;
        while (wasReached && ++nth < mostPieces)
        {
            SCOPED_TRACE(testing::Message() << "piece of memory " << nth);
            bool isDone;
            {
                const FailingMemory failing(nth, false);
                isDone = call();
            }
            wasReached = FailingMemory::reached();
            EXPECT_EQ(ResError(), isDone ? noErr : memFullErr);
            EXPECT_TRUE(isDone || wasReached);
            expectNoTrace();
        }
        EXPECT_GT(nth, 1) << "it takes no memory";
        EXPECT_LT(nth, mostPieces);
    }

    // A new handle, which likely lies where the one lay that nobody got, is no resource.
    static void expectNoTrace()
    {
        const Handle fresh = NewHandle(0);
        EXPECT_EQ(GetResourceSizeOnDisk(fresh), -1);
        EXPECT_EQ(ResError(), resNotFound);
        DisposeHandle(fresh);
    }

    TemporaryFolder folder;
    FSRef file = fileWithFork(folder, "file", resourceFork({{text, 1, bytesOf("one"), "Name"}, {text, 2, bytesOf("two")}}));
};

TEST_F(ResourceShortages, AFileIsOpenOrIsNot)
{
    const long open = openDescriptors();
    runOut([&] {
        const SInt16 number = FSOpenResFile(&file, fsRdPerm);
        const OSErr result = ResError();
        EXPECT_EQ(number == -1, result != noErr);
        EXPECT_EQ(CurResFile(), number);
        if (number == -1)
            return false;
        CloseResFile(number);
        return true;
    });
    EXPECT_EQ(openDescriptors(), open);
}

// Of so many, some are the first that a list grows for.
TEST_F(ResourceShortages, EachOfManyFilesIsOpenOrIsNot)
{
    constexpr int many = 40;
    std::vector<SInt16> numbers;
    for (int each = 0; each < many; ++each)
    {
        const FSRef next = fileWithFork(folder, "file" + std::to_string(each), resourceFork({{text, 1, bytesOf("one")}}));
        const long open = openDescriptors();
        SInt16 number = -1;
        runOut([&] {
            number = FSOpenResFile(&next, fsRdPerm);
            return number != -1;
        });
        EXPECT_EQ(openDescriptors(), open + 2) << "the file and its sidecar";
        numbers.push_back(number);
    }
    for (const SInt16 number : numbers)
        CloseResFile(number);
}

struct Fetching
{
    const char *name;
    Handle (*fetch)();
};

void PrintTo(const Fetching &row, std::ostream *stream)
{
    *stream << row.name;
}

const Fetching fetchings[] = {
    {"GetResource", [] { return GetResource(text, 1); }},
    {"Get1Resource", [] { return Get1Resource(text, 1); }},
    {"GetNamedResource", [] { return GetNamedResource(text, reinterpret_cast<ConstStr255Param>("\4name")); }},
    {"Get1NamedResource", [] { return Get1NamedResource(text, reinterpret_cast<ConstStr255Param>("\4name")); }},
    {"Get1IndResource", [] { return Get1IndResource(text, 1); }},
};

class FetchingWithoutMemory : public ResourceShortages, public testing::WithParamInterface<Fetching>
{
};

TEST_P(FetchingWithoutMemory, GivesTheResourceOrNone)
{
    const OpenResources open(file);
    runOut([&] {
        const Handle handle = GetParam().fetch();
        if (handle == nullptr)
            return false;
        EXPECT_EQ(**handle, 'o');
        EXPECT_EQ(HomeResFile(handle), open.number());
        ReleaseResource(handle);
        return true;
    });
    EXPECT_EQ(contentOf(GetParam().fetch()), "one");
    EXPECT_EQ(contentOf(GetResource(text, 2)), "two");
}

INSTANTIATE_TEST_SUITE_P(Calls, FetchingWithoutMemory, testing::ValuesIn(fetchings), [](const auto &row) { return row.param.name; });

// What the neighbours ask for may throw: they have more to give back.
TEST_F(ResourceShortages, ACopyIsWholeOrUntouched)
{
    const OpenResources open(fileWithFork(folder, "long", resourceFork({{text, 3, Bytes(100, 'x')}})));
    long nth = 0;
    bool isReached = true;
    while (isReached && ++nth < mostPieces)
    {
        std::string bytes = "untouched";
        bool isCopied = false;
        try
        {
            const FailingMemory failing(nth, false);
            isCopied = standin::copyResource(text, 3, bytes);
        }
        catch (const std::bad_alloc &)
        {
        }
        isReached = FailingMemory::reached();
        EXPECT_EQ(isCopied, !isReached) << "piece of memory " << nth;
        EXPECT_EQ(bytes, isCopied ? std::string(100, 'x') : "untouched");
    }
    EXPECT_GT(nth, 1);
    EXPECT_LT(nth, mostPieces);
}

}   // namespace
