// Handles of resources: loaded, empty, detached, released, disposed of; damaged and compressed entries; records in the machine's byte order.
#include "standin/resources/resources.h"
#include "tests/standin/resource_bytes.h"

#include <cstring>

namespace
{

using namespace support;

constexpr OSType text = code("TEXT");
const Bytes packed = {0xA8, 0x9F, 0x65, 0x72, 0, 1, 2, 3};

class ResourceHandles : public testing::Test
{
protected:
    ResourceHandles() { open.emplace(fileWithFork(folder, "file", fork)); }
    ~ResourceHandles() override { SetResLoad(true); }

    static std::string copied(OSType type, SInt16 id)
    {
        std::string bytes = "untouched";
        return standin::copyResource(type, id, bytes) ? bytes : bytes == "untouched" ? "(none)" : "(touched)";
    }

    TemporaryFolder folder;
    Bytes fork = resourceFork({{text, 1, bytesOf("one"), "Name", 0x20},
                               {text, 2, bytesOf("two")},
                               {text, 3, {}},
                               {text, 2, bytesOf("two again")},
                               {code("PACK"), 1, packed, "", 0x01},
                               {code("PACK"), 2, packed},
                               {code("PACK"), 3, bytesOf("plain with the bit"), "", 0x01}});
    std::optional<OpenResources> open;
};

TEST_F(ResourceHandles, AResourceHasOneHandle)
{
    const Handle handle = GetResource(text, 1);
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(contentOf(handle), "one");
    EXPECT_EQ(Get1Resource(text, 1), handle);
    EXPECT_EQ(GetNamedResource(text, reinterpret_cast<ConstStr255Param>("\4name")), handle);
    EXPECT_EQ(Get1IndResource(text, 1), handle);
    EXPECT_NE(GetResource(text, 2), handle);
}

// Applications take strings out by the length byte, whatever size the resource has.
TEST_F(ResourceHandles, AStringThatSaysMoreThanThereIsGoesOnWithZeros)
{
    open.emplace(fileWithFork(folder, "damaged", resourceFork({{code("STR "), 1, {0xFF, 'a', 'b'}}, {code("STR "), 2, {}}})));
    const Handle longer = GetResource(code("STR "), 1), empty = GetResource(code("STR "), 2);
    ASSERT_NE(longer, nullptr);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(std::string(*longer + 1, 255), "ab" + std::string(253, '\0'));
    EXPECT_EQ(**empty, 0);
}

TEST_F(ResourceHandles, WhatIsChangedInMemoryStays)
{
    **GetResource(text, 1) = 'O';
    EXPECT_EQ(contentOf(GetResource(text, 1)), "One");
    EXPECT_EQ(copied(text, 1), "One");
    ReleaseResource(GetResource(text, 1));
    EXPECT_EQ(contentOf(GetResource(text, 1)), "one");
}

TEST_F(ResourceHandles, OfNoBytesAreNotEmptyHandles)
{
    const Handle handle = GetResource(text, 3);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(*handle, nullptr);
    EXPECT_EQ(GetHandleSize(handle), 0);
    EXPECT_EQ(MemError(), noErr);
}

TEST_F(ResourceHandles, ThatAreNotLoadedAreEmptyAndFilledLater)
{
    SetResLoad(false);
    const Handle handle = GetResource(text, 1);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(*handle, nullptr);
    EXPECT_EQ(GetHandleSize(handle), 0);
    EXPECT_EQ(MemError(), nilHandleErr);
    EXPECT_EQ(PtrAndHand("more", handle, 4), nilHandleErr);
    HLock(handle);
    HUnlock(handle);
    EXPECT_EQ(GetResource(text, 1), handle);
    EXPECT_EQ(*handle, nullptr);
    SetResLoad(true);
    EXPECT_EQ(GetResource(text, 1), handle);
    EXPECT_EQ(contentOf(handle), "one");
}

TEST_F(ResourceHandles, ThatAreLoadedStaySoWhereLoadingIsOff)
{
    const Handle handle = GetResource(text, 1);
    SetResLoad(false);
    EXPECT_EQ(GetResource(text, 1), handle);
    EXPECT_EQ(contentOf(handle), "one");
}

TEST_F(ResourceHandles, LoadResourceFillsWhateverIsSet)
{
    SetResLoad(false);
    const Handle handle = GetResource(text, 2);
    LoadResource(handle);
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(contentOf(handle), "two");
    LoadResource(nullptr);
    EXPECT_EQ(ResError(), resNotFound);
}

TEST_F(ResourceHandles, TellWhatTheyAre)
{
    SInt16 id = 0;
    ResType type = 0;
    Str255 name;
    SetResLoad(false);   // as a label's name is asked for
    GetResInfo(GetResource(text, 1), &id, &type, name);
    EXPECT_EQ(id, 1);
    EXPECT_EQ(type, text);
    EXPECT_EQ(std::string_view(reinterpret_cast<char *>(name), 5), "\4Name");
    EXPECT_EQ(GetResAttrs(GetResource(text, 1)), resPurgeable);
    GetResInfo(GetResource(text, 2), nullptr, nullptr, name);
    EXPECT_EQ(name[0], 0);
    GetResInfo(GetResource(text, 2), &id, nullptr, nullptr);
    EXPECT_EQ(id, 2);
}

TEST_F(ResourceHandles, InformationOfNoResourceLeavesTheOutputsAlone)
{
    SInt16 id = 77;
    ResType type = 78;
    Str255 name = {3, 'x'};
    const Handle ordinary = NewHandle(4);
    for (const Handle handle : {Handle{nullptr}, ordinary})
    {
        GetResInfo(handle, &id, &type, name);
        EXPECT_EQ(ResError(), resNotFound);
        EXPECT_EQ(GetResAttrs(handle), 0);
        EXPECT_EQ(ResError(), resNotFound);
        EXPECT_EQ(GetResourceSizeOnDisk(handle), -1);
        EXPECT_EQ(ResError(), resNotFound);
    }
    EXPECT_EQ(id, 77);
    EXPECT_EQ(type, 78u);
    EXPECT_EQ(name[0], 3);
    DisposeHandle(ordinary);
}

TEST_F(ResourceHandles, DetachingReleasingAndDisposingInThisOrderIsSafe)
{
    const Handle handle = GetResource(text, 1);
    DetachResource(handle);
    EXPECT_EQ(ResError(), noErr);
    ReleaseResource(handle);
    EXPECT_EQ(ResError(), resNotFound);
    EXPECT_EQ(contentOf(handle), "one");   // still there
    DisposeHandle(handle);
    EXPECT_EQ(contentOf(GetResource(text, 1)), "one");
}

TEST_F(ResourceHandles, ADetachedHandleOutlivesItsFileAndHasASuccessor)
{
    const Handle handle = GetResource(text, 1);
    DetachResource(handle);
    const Handle other = GetResource(text, 1);
    EXPECT_NE(other, handle);
    EXPECT_EQ(PtrAndHand(" and more", handle, 9), noErr);
    open.reset();
    EXPECT_EQ(contentOf(handle), "one and more");
    DetachResource(handle);
    EXPECT_EQ(ResError(), resNotFound);
    DisposeHandle(handle);
}

TEST_F(ResourceHandles, ReleasingAnOrdinaryHandleDoesNothing)
{
    const Handle ordinary = NewHandle(0);
    ASSERT_EQ(PtrAndHand("mine", ordinary, 4), noErr);
    ReleaseResource(ordinary);
    EXPECT_EQ(ResError(), resNotFound);
    EXPECT_EQ(contentOf(ordinary), "mine");
    ReleaseResource(nullptr);
    EXPECT_EQ(ResError(), resNotFound);
    DisposeHandle(ordinary);
}

TEST_F(ResourceHandles, DisposingOfALoadedResourceForgetsIt)
{
    DisposeHandle(GetResource(text, 1));
    SetResLoad(false);
    const Handle empty = GetResource(text, 1);
    EXPECT_EQ(*empty, nullptr);
    DisposeHandle(empty);
    SetResLoad(true);
    EXPECT_EQ(contentOf(GetResource(text, 1)), "one");
    open.reset();   // releases it once and nothing else
}

TEST_F(ResourceHandles, OfTwoWithOneIDEachHasItsOwn)
{
    EXPECT_EQ(contentOf(GetResource(text, 2)), "two");
    EXPECT_EQ(Count1Resources(text), 4);
    EXPECT_EQ(contentOf(Get1IndResource(text, 2)), "two");
    EXPECT_EQ(contentOf(Get1IndResource(text, 4)), "two again");
    EXPECT_EQ(contentOf(GetResource(text, 2)), "two");
}

TEST_F(ResourceHandles, IndicesOutsideAreRefused)
{
    for (const SInt16 index : {SInt16{-1}, SInt16{0}, SInt16{5}})
    {
        ResType type = 1;
        EXPECT_EQ(Get1IndResource(text, index), nullptr);
        EXPECT_EQ(ResError(), resNotFound);
        Get1IndType(&type, index);
        EXPECT_EQ(type, 0u);
        EXPECT_EQ(ResError(), resNotFound);
    }
    EXPECT_EQ(Get1IndResource(code("none"), 1), nullptr);
}

TEST_F(ResourceHandles, PartsAreReadFromTheFile)
{
    char part[9] = "........";
    const Handle handle = GetResource(text, 2);
    **handle = 'T';
    ReadPartialResource(handle, 1, part, 2);
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(std::string_view(part, 4), "wo..");
    ReadPartialResource(handle, 0, part, 1);
    EXPECT_EQ(part[0], 't');
    ReadPartialResource(handle, 3, part, 0);
    EXPECT_EQ(ResError(), noErr);
    EXPECT_EQ(GetResourceSizeOnDisk(handle), 3);
}

TEST_F(ResourceHandles, PartsOutsideAreRefusedWhole)
{
    char part[9] = "........";
    const Handle handle = GetResource(text, 2);
    const std::pair<long, long> rows[] = {{0, 4}, {3, 1}, {4, 0}, {-1, 2}, {0, -1}, {1, 0x7FFFFFFFFFFFFFFF}, {0x7FFFFFFFFFFFFFFF, 1}};
    for (const auto &[offset, count] : rows)
    {
        ReadPartialResource(handle, offset, part, count);
        EXPECT_EQ(ResError(), inputOutOfBounds);
    }
    EXPECT_EQ(part[0], '.');
    ReadPartialResource(nullptr, 0, part, 1);
    EXPECT_EQ(ResError(), resNotFound);
}

TEST_F(ResourceHandles, CompressedDataAreRefusedAndTheirBytesCanBeRead)
{
    EXPECT_EQ(GetResource(code("PACK"), 1), nullptr);
    EXPECT_EQ(ResError(), badExtResource);
    EXPECT_EQ(copied(code("PACK"), 1), "(none)");
    EXPECT_EQ(GetHandleSize(GetResource(code("PACK"), 2)), static_cast<Size>(packed.size()));
    EXPECT_EQ(contentOf(GetResource(code("PACK"), 3)), "plain with the bit");
    SetResLoad(false);
    const Handle handle = GetResource(code("PACK"), 1);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(GetResourceSizeOnDisk(handle), static_cast<long>(packed.size()));
    Bytes bytes(packed.size());
    ReadPartialResource(handle, 0, bytes.data(), static_cast<long>(bytes.size()));
    EXPECT_EQ(bytes, packed);
    SetResLoad(true);
    EXPECT_EQ(GetResource(code("PACK"), 1), nullptr);
    EXPECT_EQ(*handle, nullptr);
}

TEST_F(ResourceHandles, ADamagedEntryDoesNoHarmToItsNeighbours)
{
    ForkPlaces places;
    Bytes damaged = resourceFork({{text, 1, bytesOf("one")}, {text, 5, bytesOf("five")}}, &places);
    setBig(damaged, places.items[{text, 1}], 0x10000, 4);
    OpenResources newer(fileWithFork(folder, "damaged", damaged));
    EXPECT_EQ(GetResource(text, 1), nullptr);   // the search does not go on to an older file
    EXPECT_EQ(ResError(), badExtResource);
    EXPECT_EQ(copied(text, 1), "(none)");
    EXPECT_EQ(contentOf(GetResource(text, 5)), "five");
    SetResLoad(false);
    EXPECT_EQ(GetResourceSizeOnDisk(GetResource(text, 1)), -1);
    EXPECT_EQ(ResError(), badExtResource);
}

TEST_F(ResourceHandles, AFileCutOffWhileItIsOpenIsNoticed)
{
    const Bytes data = resourceFork({{text, 9, bytesOf("nine")}});
    const FSRef file = fileWithData(folder, "shrinking", data);
    OpenResources newer(file);
    writeFile(folder / "shrinking", Bytes(data.begin(), data.begin() + 258));
    EXPECT_EQ(GetResource(text, 9), nullptr);
    EXPECT_EQ(ResError(), badExtResource);
}

TEST_F(ResourceHandles, CopiesLeaveNoTrace)
{
    EXPECT_EQ(GetResource(text, 99), nullptr);
    EXPECT_EQ(copied(text, 1), "one");
    EXPECT_EQ(copied(text, 3), "");
    EXPECT_EQ(copied(text, 98), "(none)");
    EXPECT_EQ(ResError(), resNotFound);   // of the call before
    SetResLoad(false);
    EXPECT_EQ(*GetResource(text, 1), nullptr);
    EXPECT_EQ(copied(text, 1), "one");
    EXPECT_EQ(*GetResource(text, 1), nullptr);
}

TEST_F(ResourceHandles, TemplatesHaveTheMachinesByteOrder)
{
    Bytes dialog, alert;
    for (const unsigned edge : {40u, 60u, 240u, 0xFFF0u, 4u, 0x0100u, 0x0100u})
        appendBig(dialog, edge, 2);
    appendBig(dialog, 0x12345678, 4);
    appendBig(dialog, 129, 2);
    dialog.insert(dialog.end(), {2, 'H', 'i'});
    for (const unsigned field : {1u, 2u, 3u, 4u, 129u, 0x4321u})
        appendBig(alert, field, 2);
    OpenResources newer(fileWithFork(folder, "templates", resourceFork({{code("DLOG"), 1, dialog}, {code("ALRT"), 1, alert}})));
    const Handle dialogHandle = GetResource(code("DLOG"), 1);
    ASSERT_EQ(GetHandleSize(dialogHandle), static_cast<Size>(dialog.size()));
    DialogTemplate record{};
    std::memcpy(&record, *dialogHandle, dialog.size());
    EXPECT_EQ(record.boundsRect.top, 40);
    EXPECT_EQ(record.boundsRect.right, -16);
    EXPECT_EQ(record.procID, 4);
    EXPECT_EQ(record.visible, 1);
    EXPECT_EQ(record.goAwayFlag, 1);
    EXPECT_EQ(SInt32{record.refCon}, 0x12345678);   // not aligned in the record
    EXPECT_EQ(record.itemsID, 129);
    EXPECT_EQ(record.title[1], 'H');
    AlertTemplate alertRecord{};
    std::memcpy(&alertRecord, *GetResource(code("ALRT"), 1), sizeof alertRecord);
    EXPECT_EQ(alertRecord.boundsRect.left, 2);
    EXPECT_EQ(alertRecord.itemsID, 129);
    EXPECT_EQ(alertRecord.stages, 0x4321);
    EXPECT_EQ(copied(code("DLOG"), 1), contentOf(dialogHandle));
    ReleaseResource(dialogHandle);
    EXPECT_EQ(copied(code("DLOG"), 1), contentOf(GetResource(code("DLOG"), 1)));
    Bytes onDisk(dialog.size());
    ReadPartialResource(GetResource(code("DLOG"), 1), 0, onDisk.data(), static_cast<long>(onDisk.size()));
    EXPECT_EQ(onDisk, dialog);
}

class ResourceDisks : public DiskTest
{
};

TEST_P(ResourceDisks, ReadForksOnEveryDisk)
{
    const FSRef file = fileWithFork(folder(), "file", resourceFork({{text, 1, bytesOf("one")}}));
    OpenResources open(file);
    EXPECT_EQ(contentOf(GetResource(text, 1)), "one");
    EXPECT_EQ(contentOf(GetResource(text, 1)), "one");
}

ON_EVERY_DISK(ResourceDisks);

}   // namespace
