// Whether an object can be changed, and what one object takes over from another.

#include "tests/contract/catalog_fixture.h"

namespace
{

using CatalogLocks = CatalogTest;

const std::string readNode = "FSGetCatalogInfo(ref:file, 0x6, info, -, -, -)";
const std::string readVolume = "FSGetVolumeInfo(-100, 0, -, 0x2000, info, -, -)";

TEST_F(CatalogLocks, FirstLockFoundIsTheAnswer)
{
    struct Row
    {
        UInt16 nodeFlags, volumeFlags;
        OSErr expected;
    };
    for (const Row &row : {
             Row{0x0000, 0x0000, noErr},
             Row{0x0000, 0x8000, vLckdErr},
             Row{0x0000, 0x0080, wPrErr},
             Row{0x0000, 0x8080, wPrErr},
             Row{0x0001, 0x0000, fLckdErr},
             Row{0x0001, 0x8000, fLckdErr},
             Row{0x0001, 0x0080, fLckdErr},
             Row{0x0001, 0x8080, fLckdErr},
             Row{0xFFFE, 0x7F7F, noErr},
             Row{0xFFFE, 0xFF7F, vLckdErr},
             Row{0xFFFE, 0xFFFF, wPrErr},
             Row{0xFFFF, 0xFFFF, fLckdErr},
         })
    {
        SCOPED_TRACE(hex(row.nodeFlags) + " on " + hex(row.volumeFlags));
        infoOf("file").nodeFlags = row.nodeFlags;
        platform.files.volumes.front().info.flags = row.volumeFlags;
        platform.forgetCalls();
        EXPECT_EQ(FSCheckLock(&file), row.expected);
        EXPECT_EQ(platform.calls(), row.expected == fLckdErr ? Calls{readNode} : (Calls{readNode, readVolume}));
    }
}

TEST_F(CatalogLocks, VolumeIsTheObjectsOwn)
{
    infoOf("file").volume = -101;
    FSVolumeInfo lockedVolume = platform.files.volumes.front().info;
    lockedVolume.flags = kFSVolFlagSoftwareLockedMask;
    platform.files.volumes.push_back({-101, lockedVolume, &platform.files.object("root")});
    EXPECT_EQ(FSCheckLock(&file), vLckdErr);
    EXPECT_EQ(FSCheckLock(&folder), noErr);
}

TEST_F(CatalogLocks, VolumeThatIsGoneIsThePlatformsError)
{
    infoOf("file").volume = 77;
    EXPECT_EQ(FSCheckLock(&file), nsvErr);
}

const Calls copyOfAttributes = {
    "FSGetCatalogInfo(ref:file, 0x1FE3, info, -, -, -)",
    "FSSetCatalogInfo(ref:inner, 0x1FE3, info)",
};

class CatalogAttributes : public CatalogTest
{
protected:
    // The destination as it has to be afterwards, but for the two bits that are treated specially.
    FSCatalogInfo mixture()
    {
        FSCatalogInfo expected = infoOf("inner");
        copyCatalogFields(0x1FE3, infoOf("file"), expected);
        return expected;
    }

    const FSRef inner = platform.files.ref("inner");
};

TEST_F(CatalogAttributes, AllThatCanBeSetIsCopiedAndNothingElse)
{
    setFinderFlags("file", 0xFEFF);
    infoOf("file").nodeFlags = 0xFFEE;
    const FSCatalogInfo expected = mixture(), source = infoOf("file");
    EXPECT_EQ(FSCopyFileMgrAttributes(&file, &inner, 1), noErr);
    EXPECT_EQ(platform.calls(), copyOfAttributes);
    EXPECT_TRUE(sameBytes(infoOf("inner"), expected));
    EXPECT_TRUE(sameBytes(infoOf("file"), source)) << "the source has changed";
}

TEST_F(CatalogAttributes, CopyIsAlwaysNewToTheFinder)
{
    for (const UInt16 flags : {UInt16{0xFFFF}, UInt16{0x0100}, UInt16{0x0000}, UInt16{0xFEFF}})
        for (const Boolean copyLockBit : {Boolean{0}, Boolean{1}})
        {
            setFinderFlags("file", flags);
            setFinderFlags("inner", 0x0100);
            EXPECT_EQ(FSCopyFileMgrAttributes(&file, &inner, copyLockBit), noErr);
            EXPECT_EQ(fileInfoOf("inner").finderFlags, flags & 0xFEFF);
        }
}

// The lock goes along only when asked for, by any true value; the other node flags always do.
TEST_F(CatalogAttributes, LockIsCarriedOverOrLeftOpen)
{
    for (const UInt16 sourceFlags : {UInt16{0x0001}, UInt16{0x0000}, UInt16{0xFFFF}, UInt16{0xFFFE}})
        for (const UInt16 destinationFlags : {UInt16{0x0001}, UInt16{0x0000}})
            for (const int copyLockBit : {0, 1, 2, 0x80, 0xFF})
            {
                SCOPED_TRACE(hex(sourceFlags) + " over " + hex(destinationFlags) + " with " + decimal(copyLockBit));
                infoOf("file").nodeFlags = sourceFlags;
                infoOf("inner").nodeFlags = destinationFlags;
                EXPECT_EQ(FSCopyFileMgrAttributes(&file, &inner, static_cast<Boolean>(copyLockBit)), noErr);
                EXPECT_EQ(infoOf("inner").nodeFlags, copyLockBit == 0 ? sourceFlags & 0xFFFE : sourceFlags);
            }
}

TEST_F(CatalogAttributes, WriteThatFailsIsTheResult)
{
    platform.failCall(2, afpAccessDenied);
    EXPECT_EQ(FSCopyFileMgrAttributes(&file, &inner, 0), afpAccessDenied);
    EXPECT_EQ(platform.calls(), copyOfAttributes);
}

}   // namespace
