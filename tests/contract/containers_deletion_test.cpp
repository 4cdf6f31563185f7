// Deletions: from the inside out, locks undone on the way, and the first failure ends them.

#include "tests/contract/containers_fixture.h"

namespace
{

std::string opening(const std::string &label)
{
    return "FSOpenIterator(ref:" + label + ", 0x2, iterator)";
}

std::string fetching(const std::string &label)
{
    return "FSGetCatalogInfoBulk(iterator:" + label + ", 1, actual, -, 0x2, info, refs, -, -)";
}

std::string closing(const std::string &label)
{
    return "FSCloseIterator(iterator:" + label + ")";
}

std::string unlocking(const std::string &label)
{
    return "FSSetCatalogInfo(ref:" + label + ", 0x2, info)";
}

std::string deleting(const std::string &label)
{
    return "FSDeleteObject(ref:" + label + ")";
}

std::string reading(const std::string &label)
{
    return "FSGetCatalogInfo(ref:" + label + ", 0x2, info, -, -, -)";
}

const Calls contentsOfFolder = {
    opening("folder"), fetching("folder"), deleting("file"),  fetching("folder"), opening("nested"),  fetching("nested"),
    deleting("inner"), fetching("nested"), closing("nested"), deleting("nested"), fetching("folder"), closing("folder"),
};

class ContainersDeletion : public ContainersTest
{
protected:
    OSErr deleteContents(const std::string &label)
    {
        const FSRef ref = platform.files.ref(label);
        return FSDeleteContainerContents(&ref);
    }

    OSErr deleteWhole(const std::string &label)
    {
        const FSRef ref = platform.files.ref(label);
        return FSDeleteContainer(&ref);
    }

    void lock(const std::string &label, UInt16 otherFlags = 0)
    {
        infoOf(label).nodeFlags = static_cast<UInt16>(infoOf(label).nodeFlags | kFSNodeLockedMask | otherFlags);
    }

    bool called(const std::string &line)
    {
        return std::find(platform.calls().begin(), platform.calls().end(), line) != platform.calls().end();
    }
};

TEST_F(ContainersDeletion, ContentsGoFromTheInsideOut)
{
    EXPECT_EQ(deleteContents("folder"), noErr);
    EXPECT_EQ(platform.calls(), contentsOfFolder);
    EXPECT_TRUE(exists("folder"));
    for (const char *label : {"file", "nested", "inner"})
        EXPECT_FALSE(exists(label)) << label;
    EXPECT_EQ(platform.iterators.mostEverOpen, 2u);
}

TEST_F(ContainersDeletion, TheContainerFollowsItsContents)
{
    EXPECT_EQ(deleteWhole("folder"), noErr);
    Calls expected = contentsOfFolder;
    expected.insert(expected.begin(), reading("folder"));
    expected.push_back(deleting("folder"));
    EXPECT_EQ(platform.calls(), expected);
    EXPECT_FALSE(exists("folder"));
    EXPECT_TRUE(exists("root"));
}

TEST_F(ContainersDeletion, AnEmptyContainerIsDeleted)
{
    add("empty", "root", true);
    EXPECT_EQ(deleteContents("empty"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{opening("empty"), fetching("empty"), closing("empty")}));
    EXPECT_TRUE(exists("empty"));
    EXPECT_EQ(deleteWhole("empty"), noErr);
    EXPECT_FALSE(exists("empty"));
}

TEST_F(ContainersDeletion, AFileIsNoContainer)
{
    EXPECT_EQ(deleteWhole("file"), dirNFErr);
    EXPECT_EQ(platform.calls(), Calls{reading("file")});
    platform.forgetCalls();
    EXPECT_EQ(deleteContents("file"), errFSNotAFolder) << "that one leaves it to the platform";
    EXPECT_EQ(platform.calls(), Calls{opening("file")});
    EXPECT_TRUE(exists("file"));
}

TEST_F(ContainersDeletion, OnlyTheFolderFlagMakesAContainer)
{
    infoOf("file").nodeFlags = static_cast<UInt16>(~kFSNodeIsDirectoryMask);
    EXPECT_EQ(deleteWhole("file"), dirNFErr);
    infoOf("nested").nodeFlags = 0xFFFE;
    EXPECT_EQ(deleteWhole("nested"), noErr);
}

TEST_F(ContainersDeletion, LocksAreUndoneJustBeforeTheDeletion)
{
    for (const char *label : {"file", "nested", "inner", "folder"})
        lock(label);
    EXPECT_EQ(deleteWhole("folder"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{reading("folder"), opening("folder"), fetching("folder"), unlocking("file"), deleting("file"),
                                       fetching("folder"), opening("nested"), fetching("nested"), unlocking("inner"), deleting("inner"),
                                       fetching("nested"), closing("nested"), unlocking("nested"), deleting("nested"), fetching("folder"),
                                       closing("folder"), unlocking("folder"), deleting("folder")}));
}

// The record that the levels share holds the flags of what came last: those of the folder have to be kept aside.
TEST_F(ContainersDeletion, OtherFlagsStayWhenALockIsUndone)
{
    lock("nested", 0x8120);
    lock("inner", 0x0400);
    lock("folder", 0x4002);
    for (const char *label : {"inner", "nested", "folder"})
    {
        SCOPED_TRACE(label);
        const UInt16 flags = infoOf(label).nodeFlags;
        platform.failLine(deleting(label), someCode);
        EXPECT_EQ(deleteWhole("folder"), someCode);
        EXPECT_EQ(valueOf(infoOf(label).nodeFlags), flags & ~kFSNodeLockedMask);
        platform.failLine(deleting(label), noErr);
    }
}

TEST_F(ContainersDeletion, WhetherALockCouldBeUndoneIsForTheDeletionToTell)
{
    for (const char *label : {"file", "folder"})
    {
        lock(label);
        platform.failLine(unlocking(label), someCode);
        EXPECT_EQ(deleteWhole("folder"), fLckdErr);
        EXPECT_TRUE(called(deleting(label)));
        infoOf(label).nodeFlags = static_cast<UInt16>(infoOf(label).nodeFlags & ~kFSNodeLockedMask);
        platform.forgetCalls();
    }
}

TEST_F(ContainersDeletion, ALockedContainerStaysLockedUntilItIsEmpty)
{
    lock("folder");
    platform.failLine(deleting("inner"), someCode);
    EXPECT_EQ(deleteWhole("folder"), someCode);
    EXPECT_TRUE(infoOf("folder").nodeFlags & kFSNodeLockedMask);
    EXPECT_FALSE(called(unlocking("folder")));

    platform.failLine(deleting("inner"), noErr);
    EXPECT_EQ(deleteContents("folder"), noErr) << "the lock of the container itself is nobody's business here";
    EXPECT_TRUE(infoOf("folder").nodeFlags & kFSNodeLockedMask);
}

TEST_F(ContainersDeletion, TheFirstFailureEndsIt)
{
    struct Row
    {
        std::string failing;
        bool fileIsGone, innerIsGone;
    };
    for (const Row &row : {Row{deleting("file"), false, false}, Row{opening("nested"), true, false}, Row{fetching("nested"), true, false},
                           Row{deleting("inner"), true, false}, Row{deleting("nested"), true, true}})
        for (const OSErr code : {someCode, afpAccessDenied, fnfErr})
        {
            SCOPED_TRACE(row.failing);
            platform.files = FilesDouble();
            platform.forgetCalls();
            platform.failLine(row.failing, code);
            EXPECT_EQ(deleteWhole("folder"), code);
            EXPECT_EQ(exists("file"), !row.fileIsGone);
            EXPECT_EQ(exists("inner"), !row.innerIsGone);
            EXPECT_TRUE(exists("nested"));
            EXPECT_TRUE(exists("folder"));
            EXPECT_FALSE(called(deleting("folder")));
            EXPECT_EQ(openIterators(), 0u);
            platform.failLine(row.failing, noErr);
        }
}

TEST_F(ContainersDeletion, NoMoreItemsIsTheNormalEndOfALevelWhereverItComesFrom)
{
    add("later", "folder", false);
    for (const std::string &failing : {deleting("file"), opening("nested")})
    {
        SCOPED_TRACE(failing);
        platform.forgetCalls();
        platform.failLine(failing, errFSNoMoreItems);
        EXPECT_EQ(deleteContents("root"), fBsyErr) << "the folder that was left is not empty";
        const Calls &calls = platform.calls();
        const auto failed = std::find(calls.begin(), calls.end(), failing);
        ASSERT_NE(failed, calls.end());
        EXPECT_EQ(Calls(failed + 1, calls.end()), (Calls{closing("folder"), deleting("folder"), closing("root")}));
        platform.failLine(failing, noErr);
    }
    EXPECT_TRUE(exists("later"));
}

TEST_F(ContainersDeletion, OpeningTheFirstContainerHasNoExcuse)
{
    for (const OSErr code : {errFSNoMoreItems, afpAccessDenied, someCode})
    {
        platform.forgetCalls();
        platform.failEvery("FSOpenIterator", code);
        EXPECT_EQ(deleteContents("folder"), code);
        EXPECT_EQ(deleteWhole("folder"), code);
        EXPECT_EQ(platform.calls(), (Calls{opening("folder"), reading("folder"), opening("folder")}));
    }
}

TEST_F(ContainersDeletion, AnObjectThatComesWithTheEndIsLeft)
{
    platform.iterators.lastItemComesWithTheEnd = true;
    EXPECT_EQ(deleteContents("nested"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{opening("nested"), fetching("nested"), closing("nested")}));
    EXPECT_TRUE(exists("inner"));
}

TEST_F(ContainersDeletion, AFetchWithoutObjectsIsNoEnd)
{
    platform.iterators.nextBulkAnswers = {{noErr, 0}, {noErr, 0}};
    EXPECT_EQ(deleteContents("nested"), noErr);
    EXPECT_EQ(platform.calls(), (Calls{opening("nested"), fetching("nested"), fetching("nested"), fetching("nested"), deleting("inner"),
                                       fetching("nested"), closing("nested")}));
}

TEST_F(ContainersDeletion, EachCallFailingEndsItUnlessItUnlocksOrCloses)
{
    for (void (Recorder::*fail)(int, OSStatus) : {&Recorder::failCall, &Recorder::failFromCall})
        for (int nth = 1;; ++nth)
        {
            platform.files = FilesDouble();
            platform.forgetCalls();
            lock("file");
            (platform.*fail)(nth, someCode);
            const OSErr result = deleteWhole("folder");
            EXPECT_EQ(openIterators(), 0u);
            if (!platform.failureReached())
            {
                EXPECT_EQ(result, noErr);
                EXPECT_EQ(nth, 16);
                break;
            }
            SCOPED_TRACE(platform.failedCall());
            EXPECT_NE(result == noErr, exists("folder"));
            if (fail == &Recorder::failFromCall)
                EXPECT_EQ(result, someCode) << "what follows fails as well";
            else if (platform.failedCall() == unlocking("file"))
                EXPECT_EQ(result, fLckdErr);
            else
                EXPECT_EQ(result, platform.failedCall().starts_with("FSCloseIterator") ? noErr : someCode);
        }
}

TEST_F(ContainersDeletion, ALevelTakesLittleOfTheStack)
{
    addLevels(100);
    EXPECT_EQ(deleteContents("nested"), noErr);
    EXPECT_EQ(platform.iterators.mostEverOpen, 101u);
    EXPECT_GT(stackOfALevel(), 0u);
    EXPECT_LT(stackOfALevel(), allowedStackOfALevel);
}

}   // namespace
