// Copies that something goes wrong with, or that happen while others work on the same files.
#include "tests/standin/copies.h"

#include "standin/files/linux_calls.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

constexpr std::size_t mebibyte = 1 << 20;

struct stat statOf(const std::string &path)
{
    struct stat status
    {
    };
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

std::string refusedCall, pathToChange;

int refuse(const char *call)
{
    bool isRefused =
        refusedCall == call || (refusedCall == "all" && (std::string_view(call) == "openTemporary" ||
                                                         std::string_view(call) == "copyRange" || std::string_view(call) == "sendBytes"));
    return isRefused ? EOPNOTSUPP : 0;
}

class DisturbedCopies : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!diskOf(DiskKind::tmpfs).problem.empty())
            GTEST_SKIP() << diskOf(DiskKind::tmpfs).problem;
        folder_.emplace(DiskKind::tmpfs);
        mkdir((*folder_ / "copies").c_str(), 0755);
        writeFile(*folder_ / "file", patternBytes(3 * mebibyte, 1));
        source_ = refAt(*folder_ / "file");
        ASSERT_EQ(writeFork(source_, true, patternBytes(70000, 2)), noErr);
        pathToChange = *folder_ / "file";
    }
    void TearDown() override { standin::linux_calls::setCallFilter(nullptr); }
    OSErr copyWith(standin::linux_calls::CallFilter filter)
    {
        FSRef target = refAt(*folder_ / "copies");
        standin::linux_calls::setCallFilter(filter);
        OSErr result = copyFile(source_, target);
        standin::linux_calls::setCallFilter(nullptr);
        return result;
    }
    // The caller asks for the source's FSSpec, then something happens, then the copy is made from what the FSSpec says.
    template <typename Happening>
    OSErr copySpecifiedBefore(Happening happening)
    {
        FSSpec spec{};
        FSCatalogInfo target{};
        HParamBlockRec block{};
        const FSRef copies = refAt(*folder_ / "copies");
        EXPECT_EQ(FSGetCatalogInfo(&source_, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), noErr);
        EXPECT_EQ(FSGetCatalogInfo(&copies, kFSCatInfoVolume | kFSCatInfoNodeID, &target, nullptr, nullptr, nullptr), noErr);
        happening();
        block.copyParam.ioVRefNum = spec.vRefNum;
        block.copyParam.ioDirID = spec.parID;
        block.copyParam.ioNamePtr = spec.name;
        block.copyParam.ioDstVRefNum = target.volume;
        block.copyParam.ioNewDirID = static_cast<SInt32>(target.nodeID);
        return PBHCopyFileSync(&block);
    }
    std::optional<TemporaryFolder> folder_;
    FSRef source_{};
};

TEST_F(DisturbedCopies, EveryWayToCopyGivesTheSame)
{
    for (const char *call : {"openTemporary", "copyRange", "sendBytes", "all"})
    {
        SCOPED_TRACE(call);
        refusedCall = call;
        ASSERT_EQ(copyWith(refuse), noErr);
        FSRef copy = refAt(*folder_ / "copies/file");
        EXPECT_TRUE(forkOf(copy, false) == patternBytes(3 * mebibyte, 1));
        EXPECT_TRUE(forkOf(copy) == patternBytes(70000, 2));
        EXPECT_EQ(namesIn(*folder_ / "copies"), (std::vector<std::string>{"._file", "file"}));
        EXPECT_EQ(FSDeleteObject(&copy), noErr);
    }
}

TEST_F(DisturbedCopies, ASourceThatIsCutMeanwhileIsCopiedToWhereItEnds)
{
    EXPECT_EQ(copyWith([](const char *call) {
                  return std::string_view(call) == "copyRange" && truncate(pathToChange.c_str(), 1000) == 0 ? 0 : 0;
              }),
              noErr);
    Bytes expected = patternBytes(3 * mebibyte, 1);
    expected.resize(1000);
    EXPECT_EQ(readFile(*folder_ / "copies/file"), expected);
}

TEST_F(DisturbedCopies, ASourceThatIsRenamedMeanwhileIsNotCopiedWithoutItsFork)
{
    OSErr result = copyWith([](const char *call) {
        std::string folder = pathToChange.substr(0, pathToChange.rfind('/'));
        if (std::string_view(call) == "listAttributesOf")
        {
            rename(pathToChange.c_str(), (folder + "/renamed").c_str());
            rename((folder + "/._file").c_str(), (folder + "/._renamed").c_str());
        }
        return 0;
    });
    EXPECT_EQ(result, fnfErr);
    EXPECT_EQ(namesIn(*folder_ / "copies"), std::vector<std::string>{});
}

// --- what happens between the look for the FSSpec and the copy ------------------------------------------------------------------------------

TEST_F(DisturbedCopies, ASpecifiedSourceThatGotOtherBytesIsCopiedWithThose)
{
    const struct stat before = statOf(pathToChange);
    ASSERT_EQ(copySpecifiedBefore([&] {
                  writeFile(pathToChange, "other bytes");
                  const std::timespec times[2] = {before.st_atim, before.st_mtim};
                  EXPECT_EQ(utimensat(AT_FDCWD, pathToChange.c_str(), times, 0), 0);
              }),
              noErr);
    EXPECT_EQ(readFile(*folder_ / "copies/file"), bytesOf("other bytes"));
}

TEST_F(DisturbedCopies, AnotherFileThatTookTheSpecifiedNameIsTheOneThatIsCopied)
{
    ASSERT_EQ(copySpecifiedBefore([&] {
                  ASSERT_EQ(rename(pathToChange.c_str(), (pathToChange + " before").c_str()), 0);
                  ASSERT_EQ(rename((*folder_ / "._file").c_str(), (*folder_ / "._file before").c_str()), 0);
                  writeFile(pathToChange, "another file");
              }),
              noErr);
    EXPECT_EQ(readFile(*folder_ / "copies/file"), bytesOf("another file"));
    EXPECT_EQ(namesIn(*folder_ / "copies"), std::vector<std::string>{"file"}) << "the fork was the other one's";
}

TEST_F(DisturbedCopies, ASpecifiedSourceThatIsNoFileAnyMoreIsRefused)
{
    EXPECT_EQ(copySpecifiedBefore([&] { EXPECT_EQ(unlink(pathToChange.c_str()), 0); }), fnfErr);
    writeFile(pathToChange, "again");
    source_ = refAt(pathToChange);
    EXPECT_EQ(copySpecifiedBefore([&] {
                  EXPECT_EQ(unlink(pathToChange.c_str()), 0);
                  EXPECT_EQ(mkdir(pathToChange.c_str(), 0755), 0);
              }),
              notAFileErr);
    EXPECT_EQ(namesIn(*folder_ / "copies"), std::vector<std::string>{});
}

// --- where the kernel gives no name to a bare descriptor ------------------------------------------------------------------------------------

int timesNamed = 0;

TEST_F(DisturbedCopies, ANamelessFileGetsItsNameByTheOtherWayToo)
{
    timesNamed = 0;
    EXPECT_EQ(copyWith([](const char *call) { return std::string_view(call) == "giveName" && ++timesNamed == 1 ? ENOENT : 0; }), noErr);
    EXPECT_GE(timesNamed, 2);
    EXPECT_TRUE(readFile(*folder_ / "copies/file") == patternBytes(3 * mebibyte, 1));
    EXPECT_TRUE(forkOf(refAt(*folder_ / "copies/file")) == patternBytes(70000, 2));
}

}   // namespace
