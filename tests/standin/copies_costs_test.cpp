// How many system calls a copy costs.
#include "tests/standin/copies.h"

#include <cstdio>
#include <sys/stat.h>

namespace
{

using namespace support;

class CopyCosts : public DiskTest
{
protected:
    static constexpr int fileCount = 50;

    void SetUp() override
    {
        DiskTest::SetUp();
        if (IsSkipped())
            return;
        mkdir((folder() / "copies").c_str(), 0755);
        for (int i = 0; i < fileCount; ++i)
            writeFile(folder() / nameOf(i), Bytes(4096, 'x'));
    }
    static std::string nameOf(int i) { return "file" + std::to_string(i); }

    double callsFor(const char *what, void (*work)(CopyCosts &, const FSRef &source, const FSRef &to))
    {
        FSRef to = refAt(folder() / "copies");
        std::uint64_t sum = 0;
        for (int i = 0; i < fileCount; ++i)
        {
            FSRef source = refAt(folder() / nameOf(i));
            std::uint64_t before = standin::systemCallCount();
            work(*this, source, to);
            sum += standin::systemCallCount() - before;
        }
        double each = static_cast<double>(sum) / fileCount;
        std::printf("[   cost   ] %-9s %-58s %6.2f\n", nameOfKind(GetParam()).c_str(), what, each);
        return each;
    }

public:
    FSSpec spec{};
    FSCatalogInfo target{};
};

void lookUp(CopyCosts &test, const FSRef &source, const FSRef &to)
{
    EXPECT_EQ(FSGetCatalogInfo(&source, kFSCatInfoNone, nullptr, nullptr, &test.spec, nullptr), noErr);
    EXPECT_EQ(FSGetCatalogInfo(&to, kFSCatInfoVolume | kFSCatInfoNodeID, &test.target, nullptr, nullptr, nullptr), noErr);
}

void copyLookedUp(CopyCosts &test)
{
    HParamBlockRec block{};
    block.copyParam.ioVRefNum = test.spec.vRefNum;
    block.copyParam.ioDirID = test.spec.parID;
    block.copyParam.ioNamePtr = test.spec.name;
    block.copyParam.ioDstVRefNum = test.target.volume;
    block.copyParam.ioNewDirID = static_cast<SInt32>(test.target.nodeID);
    EXPECT_EQ(PBHCopyFileSync(&block), noErr);
}

// The looks for source and folder. Then the source: opened, its attributes listed, its sidecar looked for, and compared with the look before. The copy: made
// without a name, filled, given mode and date. Its place: locked, looked at for an orphan, named, unlocked. Both closed.
TEST_P(CopyCosts, AFileWithoutMetadataTakesFourteenCallsAndTwoForTheLooksBefore)
{
    double calls = callsFor("copying 4 KiB, with source and folder looked up", [](CopyCosts &test, const FSRef &source, const FSRef &to) {
        lookUp(test, source, to);
        copyLookedUp(test);
    });
    EXPECT_GT(calls, 6);
    EXPECT_LE(calls, 16 + 20.0 / fileCount) << "a few open folders: for the first time, or again after a pause of the whole process";
}

ON_EVERY_DISK(CopyCosts);

}   // namespace
