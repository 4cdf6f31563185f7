// Two processes that change one file, each a field of its own, very often: neither ever loses what it has set.
#include "tests/how_built.h"
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

namespace
{

using namespace support;

const int changeCount = hasLongRuns() ? 10000 : 1000;

OSErr setNumber(const FSRef &ref, bool isType, UInt32 number)
{
    if (isType)
        return setType(ref, number, number);
    FSCatalogInfo info{};
    info.backupDate = dateOfUnix(1000000000 + number, static_cast<UInt16>(number));
    return change(ref, kFSCatInfoBackupDate, info);
}

bool hasNumber(const FSRef &ref, bool isType, UInt32 number)
{
    if (isType)
        return typeOf(ref) == number;
    return infoOf(ref, kFSCatInfoBackupDate).backupDate == dateOfUnix(1000000000 + number, static_cast<UInt16>(number));
}

// arguments: path, "type" or "date", how often
const Role setsNumbers("setsNumbersOften", [](const RoleArguments &arguments) {
    const FSRef ref = refAt(arguments[0]);
    const bool isType = arguments[1] == "type";
    const auto count = static_cast<UInt32>(std::stoul(arguments[2]));
    for (UInt32 number = 1; number <= count && !testing::Test::HasFailure(); ++number)
    {
        EXPECT_EQ(setNumber(ref, isType, number), noErr) << "change " << number;
        EXPECT_TRUE(hasNumber(ref, isType, number)) << "what change " << number << " had set is lost";
    }
});

class TwoProcesses : public DiskTest
{
};

TEST_P(TwoProcesses, SetDifferentFieldsOfOneFileAndLoseNothing)
{
    const std::string path = folder() / "file", count = std::to_string(changeCount);
    writeFile(path, "data");
    ASSERT_EQ(writeFork(refAt(path), true, bytesOf("a fork")), noErr);
    Running types = startRole("setsNumbersOften", {path, "type", count}), dates = startRole("setsNumbersOften", {path, "date", count});
    for (Running *process : {&types, &dates})
    {
        const Ended ended = process->wait();
        EXPECT_EQ(ended.status, 0) << ended.output;
    }
    const FSRef ref = refAt(path);
    EXPECT_TRUE(hasNumber(ref, true, static_cast<UInt32>(changeCount)));
    EXPECT_TRUE(hasNumber(ref, false, static_cast<UInt32>(changeCount)));
    EXPECT_EQ(forkOf(ref), bytesOf("a fork"));
}

INSTANTIATE_TEST_SUITE_P(OneDisk, TwoProcesses, testing::Values(DiskKind::tmpfs), diskName);

}   // namespace
