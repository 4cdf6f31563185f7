// Listings: the references that come back, how the handle grows, and what is left after a failure.

#include "tests/contract/catalog_fixture.h"
#include "tests/contract/containers_fixture.h"

namespace
{

const std::string newHandle = "NewHandle(0)";
const std::string disposing = "DisposeHandle(handle)";
const std::string askingForError = "MemError()";
const std::string openingMany = "FSOpenIterator(ref:many, 0x0, iterator)";
const std::string fetchingTen = "FSGetCatalogInfoBulk(iterator:many, 10, actual, changed, 0x0, -, refs, -, -)";
const std::string closingMany = "FSCloseIterator(iterator:many)";

std::string appending(int bytes)
{
    return "PtrAndHand(bytes, handle, " + std::to_string(bytes) + ")";
}

class ContainersListing : public ContainersTest
{
protected:
    void addItems(int itemCount)
    {
        add("many", "root", true);
        for (int number = 1; number <= itemCount; ++number)
            add("item " + std::to_string(number), "many", number % 3 == 0);
    }

    OSErr list() { return FSGetDirectoryItems(&platform.files.ref("many"), &handle, &count, &changed); }

    void expectItems(UInt32 expectedCount)
    {
        EXPECT_EQ(count, expectedCount);
        ASSERT_EQ(platform.handles.blocks.size(), 1u);
        const RelocatableBlock &block = platform.handles.blocks.front();
        EXPECT_EQ(platform.handles.find(handle), &block);
        ASSERT_EQ(block.size, static_cast<Size>(expectedCount * sizeof(FSRef)));
        for (UInt32 index = 0; index < expectedCount; ++index)
        {
            FSRef ref;
            std::memcpy(&ref, *handle + index * sizeof ref, sizeof ref);
            EXPECT_EQ(ref, platform.files.ref("item " + std::to_string(index + 1)));
        }
        DisposeHandle(handle);
    }

    void expectNothing()
    {
        EXPECT_EQ(handle, nullptr);
        EXPECT_EQ(count, 0u);
        EXPECT_TRUE(platform.handles.blocks.empty()) << "a block was lost";
        EXPECT_EQ(openIterators(), 0u);
    }

    // Neither value can be left as it is by a call.
    Ptr noBlock = nullptr;
    Handle handle = &noBlock;
    UInt32 count = 77;
    Boolean changed = 0x5A;
};

TEST_F(ContainersListing, TwentyFiveItemsComeInTensAndTheHandleGrowsByWhatCame)
{
    addItems(25);
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, openingMany, fetchingTen, appending(800), askingForError, fetchingTen, appending(800),
                                       askingForError, fetchingTen, appending(400), askingForError, closingMany}));
    EXPECT_EQ(changed, 0);
    expectItems(25);
}

TEST_F(ContainersListing, FullTensEndWithAFetchOfNothing)
{
    addItems(20);
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, openingMany, fetchingTen, appending(800), askingForError, fetchingTen, appending(800),
                                       askingForError, fetchingTen, closingMany}));
    expectItems(20);
}

TEST_F(ContainersListing, AnEmptyContainerGivesAnEmptyHandle)
{
    addItems(0);
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, openingMany, fetchingTen, closingMany}));
    EXPECT_EQ(changed, 0);
    expectItems(0);
}

TEST_F(ContainersListing, OnlyItsOwnItemsAreListed)
{
    const FSRef root = platform.files.ref("root"), folder = platform.files.ref("folder");
    EXPECT_EQ(FSGetDirectoryItems(&root, &handle, &count, &changed), noErr);
    ASSERT_EQ(count, 1u);
    EXPECT_EQ(std::memcmp(*handle, &folder, sizeof folder), 0);
}

TEST_F(ContainersListing, EveryOutputIsRequired)
{
    addItems(1);
    const FSRef many = platform.files.ref("many");
    EXPECT_EQ(FSGetDirectoryItems(&many, nullptr, &count, &changed), paramErr);
    EXPECT_EQ(FSGetDirectoryItems(&many, &handle, nullptr, &changed), paramErr);
    EXPECT_EQ(FSGetDirectoryItems(&many, &handle, &count, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_EQ(handle, &noBlock);
    EXPECT_EQ(count, 77u);
    EXPECT_EQ(changed, 0x5A);
}

TEST_F(ContainersListing, TheContainerIsForThePlatformToJudge)
{
    EXPECT_EQ(FSGetDirectoryItems(nullptr, &handle, &count, &changed), errFSBadFSRef);
    expectNothing();
    EXPECT_EQ(FSGetDirectoryItems(&platform.files.ref("file"), &handle, &count, &changed), errFSNotAFolder);
    expectNothing();
    EXPECT_EQ(platform.calls(), (Calls{newHandle, "FSOpenIterator(-, 0x0, iterator)", disposing, newHandle,
                                       "FSOpenIterator(ref:file, 0x0, iterator)", disposing}));
}

TEST_F(ContainersListing, WithoutMemoryForAHandleNothingIsOpened)
{
    addItems(3);
    platform.failEvery("NewHandle", someCode);
    EXPECT_EQ(list(), memFullErr) << "whatever the reason";
    EXPECT_EQ(platform.calls(), Calls{newHandle});
    EXPECT_EQ(changed, 0);
    expectNothing();
}

TEST_F(ContainersListing, AChangeOnceSeenStays)
{
    addItems(25);
    platform.iterators.nextBulkAnswers = {{noErr, 10, 0}, {noErr, 10, 0x40}, {errFSNoMoreItems, 10, 0}};
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(changed, 1);
    expectItems(25);
}

TEST_F(ContainersListing, AChangeThatCameWithAFailureIsTold)
{
    addItems(25);
    platform.iterators.nextBulkAnswers = {{noErr, 10, 0}, {someCode, 10, 1}};
    EXPECT_EQ(list(), someCode);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(platform.calls(),
              (Calls{newHandle, openingMany, fetchingTen, appending(800), askingForError, fetchingTen, closingMany, disposing}));
    expectNothing();
}

TEST_F(ContainersListing, FetchesMayBringAnyNumber)
{
    addItems(12);
    platform.iterators.nextBulkAnswers = {{noErr, 0}, {noErr, 1}, {noErr, 0}, {noErr, 9}};
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(),
              (Calls{newHandle, openingMany, fetchingTen, fetchingTen, appending(80), askingForError, fetchingTen, fetchingTen,
                     appending(720), askingForError, fetchingTen, appending(160), askingForError, closingMany}));
    expectItems(12);
}

TEST_F(ContainersListing, OnlyTheFetchesMayEndWithNoMoreItems)
{
    addItems(3);
    for (const OSErr code : {errFSNoMoreItems, nsvErr, afpAccessDenied})
        for (const std::string &line : {openingMany, askingForError})
        {
            SCOPED_TRACE(line);
            platform.failLine(line, code);
            EXPECT_EQ(list(), code);
            expectNothing();
            platform.failLine(line, noErr);
        }
    platform.failLine(fetchingTen, afpAccessDenied);
    EXPECT_EQ(list(), afpAccessDenied) << "unlike a walk, a listing must be whole";
    expectNothing();
}

TEST_F(ContainersListing, MemErrorAloneSaysWhetherTheHandleHasGrown)
{
    addItems(25);
    platform.failLine(askingForError, memFullErr);
    EXPECT_EQ(list(), memFullErr);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, openingMany, fetchingTen, appending(800), askingForError, closingMany, disposing}));
    expectNothing();
}

TEST_F(ContainersListing, EachCallFailingLeavesNothing)
{
    addItems(25);
    for (void (Recorder::*fail)(int, OSStatus) : {&Recorder::failCall, &Recorder::failFromCall})
        for (int nth = 1;; ++nth)
        {
            platform.forgetCalls();
            (platform.*fail)(nth, someCode);
            const OSErr result = list();
            if (!platform.failureReached())
            {
                EXPECT_EQ(nth, 13);
                expectItems(25);
                break;
            }
            SCOPED_TRACE(platform.failedCall());
            if (platform.failedCall() == closingMany)
            {
                EXPECT_EQ(result, noErr);
                expectItems(25);
                continue;
            }
            EXPECT_EQ(result, platform.failedCall() == newHandle ? memFullErr : someCode);
            expectNothing();
        }
}

}   // namespace
