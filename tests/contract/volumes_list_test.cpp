// The list of the mounted volumes: its order, how the handle grows, and what is left after a failure.

#include "tests/contract/volumes_fixture.h"

namespace
{

const std::string newHandle = "NewHandle(0)";
const std::string appending = "PtrAndHand(bytes, handle, 80)";
const std::string askingForError = "MemError()";
const std::string disposing = "DisposeHandle(handle)";

std::string askingFor(int index)
{
    return "FSGetVolumeInfo(0, " + std::to_string(index) + ", -, 0x0, -, -, root)";
}

class VolumesList : public VolumesTest
{
protected:
    // The first one is the volume that every test has: with its root folder "root".
    void mount(int volumeCount)
    {
        for (int number = 2; number <= volumeCount; ++number)
        {
            FileObject &root = platform.files.add(rootOf(number), nullptr, true);
            platform.files.volumes.push_back({static_cast<FSVolumeRefNum>(-100 - number * 3), volume().info, &root});
        }
    }

    static std::string rootOf(int number) { return number == 1 ? "root" : "root " + std::to_string(number); }

    OSErr list() { return FSGetMountedVolumes(&handle, &count); }

    // The calls for so many volumes, each with its root folder appended before the next one is asked for.
    static Calls callsFor(int volumeCount)
    {
        Calls lines = {newHandle};
        for (int index = 1; index <= volumeCount; ++index)
            lines.insert(lines.end(), {askingFor(index), appending, askingForError});
        lines.push_back(askingFor(volumeCount + 1));
        return lines;
    }

    void expectVolumes(int expectedCount)
    {
        EXPECT_EQ(count, static_cast<UInt32>(expectedCount));
        ASSERT_EQ(platform.handles.blocks.size(), 1u);
        const RelocatableBlock &block = platform.handles.blocks.front();
        ASSERT_EQ(platform.handles.find(handle), &block);
        ASSERT_EQ(block.size, static_cast<Size>(expectedCount) * 80);
        for (int number = 1; number <= expectedCount; ++number)
        {
            const FSRef &root = platform.files.ref(rootOf(number));
            EXPECT_EQ(std::memcmp(*handle + (number - 1) * 80, &root, sizeof root), 0) << number;
        }
        DisposeHandle(handle);
    }

    void expectNothing()
    {
        EXPECT_EQ(handle, nullptr);
        EXPECT_EQ(count, 0u);
        EXPECT_TRUE(platform.handles.blocks.empty()) << "a block was lost";
    }

    // Neither value can be left as it is by a call.
    Ptr noBlock = nullptr;
    Handle handle = &noBlock;
    UInt32 count = 77;
};

TEST_F(VolumesList, OneVolumeIsEightyBytes)
{
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, "FSGetVolumeInfo(0, 1, -, 0x0, -, -, root)", appending, askingForError,
                                       "FSGetVolumeInfo(0, 2, -, 0x0, -, -, root)"}));
    expectVolumes(1);
}

TEST_F(VolumesList, VolumesComeInTheOrderOfTheirIndexAndTheHandleGrowsByOneEach)
{
    for (const int volumeCount : {2, 25})
    {
        platform.files.volumes.resize(1, volume());
        platform.files.objects.remove_if([](const FileObject &each) { return each.label.starts_with("root "); });
        platform.forgetCalls();
        mount(volumeCount);
        EXPECT_EQ(list(), noErr);
        EXPECT_EQ(platform.calls(), callsFor(volumeCount));
        expectVolumes(volumeCount);
    }
}

TEST_F(VolumesList, WithoutAnyVolumeTheHandleIsEmptyAndThere)
{
    platform.files.volumes.clear();
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, askingFor(1)}));
    expectVolumes(0);
}

TEST_F(VolumesList, BothOutputsAreRequired)
{
    EXPECT_EQ(FSGetMountedVolumes(nullptr, &count), paramErr);
    EXPECT_EQ(FSGetMountedVolumes(&handle, nullptr), paramErr);
    EXPECT_EQ(FSGetMountedVolumes(nullptr, nullptr), paramErr);
    EXPECT_EQ(platform.calls(), Calls{});
    EXPECT_EQ(handle, &noBlock);
    EXPECT_EQ(count, 77u);
}

TEST_F(VolumesList, WithoutMemoryForAHandleNothingIsAsked)
{
    platform.failEvery("NewHandle", someCode);
    EXPECT_EQ(list(), memFullErr) << "whatever the reason";
    EXPECT_EQ(platform.calls(), Calls{newHandle});
    expectNothing();
}

TEST_F(VolumesList, NoSuchVolumeIsTheEndWhereverItComes)
{
    mount(25);
    platform.failLine(askingFor(8), nsvErr);
    EXPECT_EQ(list(), noErr);
    EXPECT_EQ(platform.calls(), callsFor(7));
    expectVolumes(7);
}

TEST_F(VolumesList, AnyOtherCodeInTheMiddleLeavesNothing)
{
    mount(25);
    for (const OSErr code : {ioErr, errFSNoMoreItems, OSErr{1}})
    {
        platform.forgetCalls();
        platform.failLine(askingFor(8), code);
        EXPECT_EQ(list(), code);
        Calls lines = callsFor(7);
        lines.push_back(disposing);
        EXPECT_EQ(platform.calls(), lines);
        expectNothing();
    }
}

TEST_F(VolumesList, HandleThatCannotGrowLeavesNothing)
{
    mount(25);
    for (const OSErr code : {memFullErr, nsvErr})
    {
        platform.forgetCalls();
        const int appendingThird = 9;
        platform.failCall(appendingThird, code);
        EXPECT_EQ(list(), code) << "no end of the list, but an error";
        EXPECT_EQ(platform.failedCall(), appending);
        Calls lines = callsFor(3);
        lines.back() = disposing;
        EXPECT_EQ(platform.calls(), lines);
        expectNothing();
    }
}

TEST_F(VolumesList, MemErrorAloneSaysWhetherTheHandleHasGrown)
{
    mount(2);
    platform.failLine(askingForError, someCode);
    EXPECT_EQ(list(), someCode);
    EXPECT_EQ(platform.calls(), (Calls{newHandle, askingFor(1), appending, askingForError, disposing}));
    expectNothing();
}

TEST_F(VolumesList, EachCallFailingLeavesNothing)
{
    mount(3);
    for (void (Recorder::*fail)(int, OSStatus) : {&Recorder::failCall, &Recorder::failFromCall})
        for (int nth = 1;; ++nth)
        {
            handle = &noBlock;
            count = 77;
            (platform.*fail)(nth, someCode);
            const OSErr result = list();
            if (!platform.failureReached())
            {
                EXPECT_EQ(nth, 12);
                EXPECT_EQ(result, noErr);
                expectVolumes(3);
                break;
            }
            SCOPED_TRACE(platform.failedCall());
            EXPECT_EQ(result, platform.failedCall() == newHandle ? memFullErr : someCode);
            expectNothing();
        }
}

}   // namespace
