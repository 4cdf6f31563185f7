// What an iterator makes of changes while it is open: made by others, or by its own user.
#include "tests/standin/listings.h"

#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace support;

using ListingsOfChangedFolders = ListingsTest;

// A date long ago, so that a change of the folder shows on disks that know whole seconds alone.
void makeFolderOld(const std::string &path)
{
    timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

bool saysChanged(FSIterator iterator)
{
    Boolean changed = 99;
    ItemCount count = 0;
    OSErr result = FSGetCatalogInfoBulk(iterator, 1, &count, &changed, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(result == noErr || result == errFSNoMoreItems);
    EXPECT_TRUE(changed == 0 || changed == 1) << +changed;
    return changed != 0;
}

// The disk is not asked with each object, but it is with the last one.
TEST_P(ListingsOfChangedFolders, AChangeOfTheFolderIsToldWithTheLastObjectAtTheLatest)
{
    makeFiles(5);
    makeFolderOld(folder().path());
    OpenIterator iterator(folderRef());
    EXPECT_FALSE(saysChanged(iterator));
    writeFile(folder() / "file0", "other bytes of a file are no change of its folder");
    EXPECT_FALSE(saysChanged(iterator));
    unlink((folder() / "file1").c_str());
    saysChanged(iterator);
    saysChanged(iterator);
    EXPECT_TRUE(saysChanged(iterator));
    EXPECT_TRUE(saysChanged(iterator)) << "and stays told";
    EXPECT_FALSE(saysChanged(OpenIterator(folderRef()))) << "a new iterator knows the folder as it is now";
}

TEST_P(ListingsOfChangedFolders, AnUnchangedFolderIsNeverSaidToHaveChanged)
{
    makeFiles(9);
    OpenIterator iterator(folderRef());
    for (int step = 0; step < 11; ++step)
        EXPECT_FALSE(saysChanged(iterator)) << step;
}

TEST_P(ListingsOfChangedFolders, AChangeIsToldBeforeTheEndIfSomeTimeHasPassed)
{
    makeFiles(20);
    makeFolderOld(folder().path());
    OpenIterator iterator(folderRef());
    unlink((folder() / "file1").c_str());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    bool told = false;
    for (int step = 0; step < 8; ++step)
        told |= saysChanged(iterator);
    EXPECT_TRUE(told);
}

// Unless the listing itself has all that is asked for: then nobody looks whether an object is still there.
TEST_P(ListingsOfChangedFolders, WhatIsMadeLaterIsNotSeenAndWhatIsGoneIsPassedOver)
{
    makeFiles(4);
    OpenIterator iterator(folderRef());
    writeFile(folder() / "later");
    unlink((folder() / "file2").c_str());
    FSCatalogInfo infos[6]{};
    HFSUniStr255 names[6]{};
    ItemCount count = 0;
    EXPECT_EQ(FSGetCatalogInfoBulk(iterator, 6, &count, nullptr, kFSCatInfoContentMod, infos, nullptr, nullptr, names), errFSNoMoreItems);
    Names list;
    for (ItemCount i = 0; i < count; ++i)
        list.push_back(plain(names[i]));
    std::sort(list.begin(), list.end());
    EXPECT_EQ(list, (Names{"file0", "file1", "file3"}));
}

TEST_P(ListingsOfChangedFolders, ItemsCanBeDeletedAsTheyCome)
{
    makeFiles(50);
    mkdir((folder() / "folder").c_str(), 0755);
    OpenIterator iterator(folderRef(), kFSIterateDelete);
    int deleted = 0;
    for (OSErr result = noErr; result == noErr;)
    {
        FSRef refs[7];
        ItemCount count = 0;
        result = FSGetCatalogInfoBulk(iterator, 7, &count, nullptr, kFSCatInfoNone, nullptr, refs, nullptr, nullptr);
        for (ItemCount i = 0; i < count; ++i, ++deleted)
            EXPECT_EQ(FSDeleteObject(&refs[i]), noErr);
    }
    EXPECT_EQ(deleted, 51);
    EXPECT_EQ(namesIn(folder().path()), Names{});
}

TEST_P(ListingsOfChangedFolders, TwoIteratorsOfOneFolderDoNotDisturbEachOther)
{
    makeFiles(6);
    OpenIterator first(folderRef());
    EXPECT_FALSE(saysChanged(first));   // takes one
    OpenIterator second(folderRef());
    EXPECT_EQ(namesFrom(second, 4).size(), 6u);
    EXPECT_EQ(namesFrom(first, 4).size(), 5u);
}

ON_EVERY_DISK(ListingsOfChangedFolders);

}   // namespace
