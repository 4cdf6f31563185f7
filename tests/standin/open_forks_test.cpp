// Open forks as the platform numbers them, the clock, and notifications.
#include "tests/standin/test_volume.h"

#include <chrono>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace support;

class OpenForks : public DiskTest
{
protected:
    FSRef fileRef(const std::string &name, std::string_view text = "data")
    {
        writeFile(folder() / name, text);
        return refAt(folder() / name);
    }
};

TEST_P(OpenForks, ANumberLeadsBackToItsFileAndFork)
{
    FSRef ref = fileRef("file");
    SInt16 data = 0, resource = 0;
    ASSERT_EQ(openFork(ref, false, fsRdPerm, data), noErr);
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, resource), noErr);
    EXPECT_GT(data, 0);
    EXPECT_NE(data, resource);
    FSRef found{};
    HFSUniStr255 name{};
    SInt16 actual = 0;
    ASSERT_EQ(FSGetForkCBInfo(data, kFSInvalidVolumeRefNum, nullptr, &actual, nullptr, &found, &name), noErr);
    EXPECT_TRUE(sameObject(found, ref));
    EXPECT_EQ(name.length, 0);
    EXPECT_EQ(actual, data);
    ASSERT_EQ(FSGetForkCBInfo(resource, kFSInvalidVolumeRefNum, nullptr, nullptr, nullptr, &found, &name), noErr);
    EXPECT_TRUE(sameObject(found, ref));
    EXPECT_EQ(std::vector<UniChar>(name.unicode, name.unicode + name.length), resourceForkName());

    ASSERT_EQ(rename(ref, "renamed"), noErr);
    ASSERT_EQ(FSGetForkCBInfo(data, kFSInvalidVolumeRefNum, nullptr, nullptr, nullptr, &found, nullptr), noErr);
    EXPECT_EQ(nameOf(found), u"renamed");
    EXPECT_EQ(FSCloseFork(data), noErr);
    EXPECT_EQ(FSCloseFork(resource), noErr);
    EXPECT_EQ(FSGetForkCBInfo(data, kFSInvalidVolumeRefNum, nullptr, nullptr, nullptr, &found, nullptr), rfNumErr);
    EXPECT_EQ(FSCloseFork(data), rfNumErr);
}

TEST_P(OpenForks, ReadingStopsAtTheEnd)
{
    FSRef ref = fileRef("file", "0123456789");
    SInt16 fork = 0;
    ASSERT_EQ(openFork(ref, false, fsRdPerm, fork), noErr);
    char bytes[20] = {};
    ByteCount count = 0;
    EXPECT_EQ(FSReadFork(fork, fsFromStart, 4, 20, bytes, &count), eofErr);
    EXPECT_EQ(std::string(bytes, count), "456789");
    EXPECT_EQ(FSReadFork(fork, fsAtMark, 0, 1, bytes, &count), eofErr);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(FSReadFork(fork, fsFromLEOF, -3, 2, bytes, &count), noErr);
    EXPECT_EQ(std::string(bytes, count), "78");
    EXPECT_EQ(FSReadFork(fork, fsFromMark, -1, 2, bytes, &count), noErr);
    EXPECT_EQ(std::string(bytes, count), "89");
    EXPECT_EQ(FSReadFork(fork, fsFromStart, -1, 2, bytes, &count), posErr);
    EXPECT_NE(FSWriteFork(fork, fsFromStart, 0, 1, "x", &count), noErr) << "opened for reading";
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(readFile(folder() / "file"), bytesOf("0123456789"));
}

TEST_P(OpenForks, ForksGrowShrinkAndAreIndependent)
{
    FSRef ref = fileRef("file", "data");
    SInt16 fork = 0;
    SInt64 size = 0;
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    EXPECT_EQ(size, 0);
    ByteCount count = 0;
    EXPECT_EQ(FSSetForkSize(fork, fsFromStart, 100), noErr);
    EXPECT_EQ(FSWriteFork(fork, fsFromStart, 100, 5, "hello", &count), noErr);
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(FSGetForkSize(fork, &size), noErr);
    EXPECT_EQ(size, 105);
    EXPECT_EQ(FSSetForkSize(fork, fsFromLEOF, -103), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(ref), Bytes(2, 0));
    EXPECT_EQ(forkOf(ref, false), bytesOf("data"));
}

TEST_P(OpenForks, AForkFollowsItsFileWhenItMoves)
{
    mkdir((folder() / "inner").c_str(), 0755);
    FSRef ref = fileRef("file"), inner = refAt(folder() / "inner");
    ASSERT_EQ(writeFork(ref, true, {1, 2, 3}), noErr);
    SInt16 fork = 0;
    ByteCount count = 0;
    ASSERT_EQ(openFork(ref, true, fsRdWrPerm, fork), noErr);
    ASSERT_EQ(rename(ref, "renamed"), noErr);
    ASSERT_EQ(move(ref, inner), noErr);
    EXPECT_EQ(FSWriteFork(fork, fsFromStart, 0, 4, "wxyz", &count), noErr);
    EXPECT_EQ(FSCloseFork(fork), noErr);
    EXPECT_EQ(forkOf(ref), bytesOf("wxyz"));
}

TEST_P(OpenForks, AFoldersForksAreNone)
{
    FSRef ref = refAt(folder().path());
    SInt16 fork = 0;
    EXPECT_EQ(openFork(ref, false, fsRdPerm, fork), notAFileErr);
    FSRef file = fileRef("file");
    std::vector<UniChar> name = units("NO_SUCH_FORK");
    OSErr result = FSOpenFork(&file, static_cast<UniCharCount>(name.size()), name.data(), fsRdPerm, &fork);
    EXPECT_TRUE(result == errFSForkNotFound || result == errFSBadForkName) << result;
}

ON_EVERY_DISK(OpenForks);

TEST(Clock, TellsTheTimeAndGoesOn)
{
    UTCDateTime first{}, second{};
    auto before = std::chrono::system_clock::now().time_since_epoch();
    ASSERT_EQ(GetUTCDateTime(&first, kUTCDefaultOptions), noErr);
    auto after = std::chrono::system_clock::now().time_since_epoch();
    std::int64_t unix = static_cast<std::int64_t>(secondsOf(first)) - 2082844800;
    EXPECT_GE(unix, std::chrono::duration_cast<std::chrono::seconds>(before).count());
    EXPECT_LE(unix, std::chrono::duration_cast<std::chrono::seconds>(after).count());
    usleep(2000);   // more than a 65536th of a second
    ASSERT_EQ(GetUTCDateTime(&second, kUTCDefaultOptions), noErr);
    EXPECT_LT(secondsOf(first) << 16 | first.fraction, secondsOf(second) << 16 | second.fraction);
}

TEST(Notifications, ReachEveryObserverUntilItIsRemoved)
{
    TemporaryFolder folder;
    FSRef ref = refAt(folder.path());
    std::vector<UInt32> first, second;
    int firstNumber = standin::addNotificationObserver([&](const FSRef &object, UInt32 message, OptionBits) {
        EXPECT_TRUE(sameObject(object, ref));
        first.push_back(message);
    });
    int secondNumber = standin::addNotificationObserver([&](const FSRef &, UInt32 message, OptionBits) { second.push_back(message); });
    EXPECT_NE(firstNumber, secondNumber);
    EXPECT_EQ(FNNotify(&ref, kFNDirectoryModifiedMessage, 0), noErr);
    EXPECT_EQ(first, std::vector<UInt32>{kFNDirectoryModifiedMessage});
    EXPECT_EQ(second, std::vector<UInt32>{kFNDirectoryModifiedMessage});
    standin::removeNotificationObserver(firstNumber);
    EXPECT_EQ(FNNotify(&ref, kFNDirectoryModifiedMessage, 0), noErr);
    EXPECT_EQ(first.size(), 1u);
    EXPECT_EQ(second.size(), 2u);
    standin::removeNotificationObserver(secondNumber);
    standin::removeNotificationObserver(secondNumber);   // once more does no harm
}

TEST(Notifications, AnObserverMayRemoveItself)
{
    TemporaryFolder folder;
    FSRef ref = refAt(folder.path());
    int number = 0, calls = 0;
    number = standin::addNotificationObserver([&](const FSRef &, UInt32, OptionBits) {
        ++calls;
        standin::removeNotificationObserver(number);
    });
    EXPECT_EQ(FNNotify(&ref, kFNDirectoryModifiedMessage, 0), noErr);
    EXPECT_EQ(FNNotify(&ref, kFNDirectoryModifiedMessage, 0), noErr);
    EXPECT_EQ(calls, 1);
}

}   // namespace
