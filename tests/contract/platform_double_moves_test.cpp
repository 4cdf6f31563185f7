// The double's iterators, handles, and what it renames, moves and deletes.

#include "tests/contract/platform_double.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

class DoubleMoves : public testing::Test
{
protected:
    OSErr rename(const FSRef &ref, const std::string &name, FSRef *output = nullptr)
    {
        const HFSUniStr255 unicode = unicodeName(name);
        return FSRenameUnicode(&ref, unicode.length, unicode.unicode, 7, output);
    }

    PlatformDouble platform;
    const FSRef root = platform.files.ref("root"), folder = platform.files.ref("folder");
    const FSRef file = platform.files.ref("file"), nested = platform.files.ref("nested");
    const FSRef inner = platform.files.ref("inner"), noObject = {{1}};
    FSRef newRef = {};
};

TEST_F(DoubleMoves, RenamingMakesANewReferenceAndTheOldOneGoesOn)
{
    EXPECT_EQ(rename(file, "Letter", &newRef), noErr);
    EXPECT_EQ(platform.files.describe(&file), "ref:file");
    EXPECT_EQ(platform.files.describe(&newRef), "ref:file#1");
    EXPECT_EQ(rename(file, "Note"), noErr) << "without an output";
    EXPECT_EQ(platform.files.object("file").name, "Note");
    EXPECT_EQ(valueOf(platform.files.object("file").info.textEncodingHint), 7u);
    EXPECT_EQ(platform.files.describe(&platform.files.ref("file")), "ref:file#2");
}

TEST_F(DoubleMoves, MovingKeepsTheNameAndChangesTheParent)
{
    EXPECT_EQ(FSMoveObject(&file, &nested, &newRef), noErr);
    EXPECT_EQ(platform.files.object("file").parent, &platform.files.object("nested"));
    EXPECT_EQ(valueOf(platform.files.object("file").info.parentDirID), valueOf(platform.files.object("nested").info.nodeID));
    EXPECT_EQ(platform.files.describe(&newRef), "ref:file#1");
}

TEST_F(DoubleMoves, WhatCannotBeRenamedOrMovedStays)
{
    EXPECT_EQ(rename(file, "nested"), dupFNErr);
    EXPECT_EQ(rename(file, ""), bdNamErr);
    EXPECT_EQ(rename(root, "disk"), errFSBadFSRef);
    EXPECT_EQ(rename(noObject, "nothing"), errFSBadFSRef);
    EXPECT_EQ(FSMoveObject(&file, &inner, nullptr), errFSNotAFolder);
    EXPECT_EQ(FSMoveObject(&noObject, &nested, nullptr), errFSBadFSRef);
    EXPECT_EQ(FSMoveObject(&file, &noObject, nullptr), errFSBadFSRef);
    platform.files.object("inner").name = "file";
    EXPECT_EQ(FSMoveObject(&file, &nested, nullptr), dupFNErr);
    platform.files.object("file").info.nodeFlags = kFSNodeLockedMask;
    EXPECT_EQ(rename(file, "Letter"), fLckdErr);
    EXPECT_EQ(platform.files.describe(&platform.files.ref("file")), "ref:file") << "no new reference was made";
}

TEST_F(DoubleMoves, NamesAreLookedUpInFolders)
{
    const HFSUniStr255 name = unicodeName("file");
    FSRefParam block = {};
    block.ref = &folder;
    block.nameLength = name.length;
    block.name = name.unicode;
    block.newRef = &newRef;
    EXPECT_EQ(PBMakeFSRefUnicodeSync(&block), noErr);
    EXPECT_EQ(platform.files.describe(&newRef), "ref:file");
    block.ref = &nested;
    EXPECT_EQ(PBMakeFSRefUnicodeSync(&block), fnfErr);
    block.ref = &noObject;
    EXPECT_EQ(PBMakeFSRefUnicodeSync(&block), errFSBadFSRef);
}

TEST_F(DoubleMoves, OnlyUnlockedAndEmptyObjectsAreDeleted)
{
    EXPECT_EQ(FSDeleteObject(&folder), fBsyErr);
    EXPECT_EQ(FSDeleteObject(&noObject), errFSBadFSRef);
    platform.files.object("file").info.nodeFlags = kFSNodeLockedMask;
    EXPECT_EQ(FSDeleteObject(&file), fLckdErr);
    EXPECT_EQ(FSDeleteObject(&inner), noErr);
    EXPECT_EQ(platform.files.find(&inner), nullptr);
    EXPECT_EQ(FSDeleteObject(&inner), errFSBadFSRef);
}

TEST_F(DoubleMoves, ExchangingByItselfChangesTheContents)
{
    const UInt64 fileSize = platform.files.object("file").info.dataLogicalSize,
                 innerSize = platform.files.object("inner").info.dataLogicalSize;
    EXPECT_EQ(FSExchangeObjects(&file, &inner), noErr);
    EXPECT_EQ(valueOf(platform.files.object("file").info.dataLogicalSize), innerSize);
    EXPECT_EQ(valueOf(platform.files.object("inner").info.dataLogicalSize), fileSize);
}

TEST_F(DoubleMoves, IteratorsGiveTheItemsOfTheirFolderAndThenTheEnd)
{
    FSIterator iterator = nullptr;
    ASSERT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
    EXPECT_EQ(platform.iterators.describe(iterator), "iterator:folder");
    ItemCount actual = 9;
    Boolean changed = 1;
    FSRef refs[3] = {};
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, &actual, &changed, 0, nullptr, refs, nullptr, nullptr), noErr);
    EXPECT_EQ(actual, 1u);
    EXPECT_EQ(changed, 0);
    EXPECT_EQ(platform.files.describe(&refs[0]), "ref:file");
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 3, &actual, &changed, 0, nullptr, refs, nullptr, nullptr), errFSNoMoreItems);
    EXPECT_EQ(actual, 1u);
    EXPECT_EQ(platform.files.describe(&refs[0]), "ref:nested");
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 3, &actual, &changed, 0, nullptr, refs, nullptr, nullptr), errFSNoMoreItems);
    EXPECT_EQ(actual, 0u);
    EXPECT_EQ(FSCloseIterator(iterator), noErr);
    EXPECT_EQ(FSCloseIterator(iterator), errFSIteratorNotFound);
}

TEST_F(DoubleMoves, APreparedFetchAnswersOnlyOnce)
{
    platform.iterators.nextBulkAnswers = {{ioErr, 1, 3}};
    FSIterator iterator = nullptr;
    ASSERT_EQ(FSOpenIterator(&folder, kFSIterateDelete, &iterator), noErr);
    ItemCount actual = 9;
    Boolean changed = 0;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 5, &actual, &changed, 0, nullptr, nullptr, nullptr, nullptr), ioErr);
    EXPECT_EQ(actual, 1u);
    EXPECT_EQ(changed, 3);
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 1, &actual, &changed, 0, nullptr, nullptr, nullptr, nullptr), noErr);
    EXPECT_EQ(changed, 0);
}

TEST_F(DoubleMoves, AFailingCloseHasClosedAllTheSame)
{
    FSIterator iterator = nullptr;
    ASSERT_EQ(FSOpenIterator(&folder, kFSIterateFlat, &iterator), noErr);
    platform.failCall(1, ioErr);
    EXPECT_EQ(FSCloseIterator(iterator), ioErr);
    EXPECT_TRUE(platform.iterators.openIterators.empty());
}

TEST_F(DoubleMoves, WhatIsNoFolderCannotBeIterated)
{
    FSIterator iterator = nullptr;
    EXPECT_EQ(FSOpenIterator(&file, kFSIterateFlat, &iterator), errFSNotAFolder);
    EXPECT_EQ(FSOpenIterator(&noObject, kFSIterateFlat, &iterator), errFSBadFSRef);
    EXPECT_EQ(FSOpenIterator(&folder, 1, &iterator), errFSBadIteratorFlags);
    EXPECT_EQ(iterator, nullptr);
}

TEST_F(DoubleMoves, HandlesGrowByExactlyWhatIsAppended)
{
    Handle handle = NewHandle(0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(PtrAndHand("abc", handle, 3), noErr);
    EXPECT_EQ(PtrAndHand("de", handle, 2), noErr);
    EXPECT_EQ(platform.handles.find(handle)->size, 5);
    EXPECT_EQ(std::memcmp(*handle, "abcde", 5), 0);
    DisposeHandle(handle);
    EXPECT_EQ(platform.handles.find(handle), nullptr);
    DisposeHandle(handle);
    EXPECT_EQ(MemError(), memWZErr) << "a second time";
}

TEST_F(DoubleMoves, MemErrorTellsOfTheLastCall)
{
    platform.failCall(1, ioErr);
    EXPECT_EQ(NewHandle(0), nullptr);
    EXPECT_EQ(MemError(), ioErr);
    Handle handle = NewHandle(0);
    EXPECT_EQ(MemError(), noErr);
    platform.failCall(1, memFullErr);
    EXPECT_EQ(PtrAndHand("a", handle, 1), memFullErr);
    EXPECT_EQ(MemError(), memFullErr);
    EXPECT_EQ(PtrAndHand("a", handle, 1), noErr);
    EXPECT_EQ(MemError(), noErr);
    DisposeHandle(handle);
}

TEST_F(DoubleMoves, ACallCanBeMadeToFailByItsLine)
{
    const std::string line = "FSDeleteObject(ref:inner)";
    platform.failLine(line, ioErr);
    EXPECT_EQ(FSDeleteObject(&file), noErr);
    EXPECT_EQ(FSDeleteObject(&inner), ioErr);
    platform.failLine(line, noErr);
    EXPECT_EQ(FSDeleteObject(&inner), noErr);
}

}   // namespace
