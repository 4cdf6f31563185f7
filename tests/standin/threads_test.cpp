// Several threads, and several processes, on the same files: nothing that one sets is lost by another.
#include "tests/standin/processes.h"
#include "tests/standin/test_volume.h"

#include <atomic>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace support;

constexpr int rounds = 60;

// One field after the other, each with a value that only its own writer gives it.
OSErr setField(const FSRef &ref, int field, int round)
{
    FSCatalogInfo info{};
    switch (field)
    {
    case 0: info.finderInfo[0] = static_cast<UInt8>(round + 1); return change(ref, kFSCatInfoFinderInfo, info);
    case 1: info.extFinderInfo[8] = static_cast<UInt8>(round + 1); return change(ref, kFSCatInfoFinderXInfo, info);
    case 2: info.backupDate = dateOfUnix(1000000000 + round); return change(ref, kFSCatInfoBackupDate, info);
    case 3: info.createDate = dateOfUnix(1100000000 + round); return change(ref, kFSCatInfoCreateDate, info);
    default: info.textEncodingHint = static_cast<TextEncoding>(round + 1); return change(ref, kFSCatInfoTextEncoding, info);
    }
}
constexpr int fieldCount = 5;

void expectLastValues(const FSRef &ref)
{
    FSCatalogInfo info = infoOf(ref);
    EXPECT_EQ(info.finderInfo[0], rounds);
    EXPECT_EQ(info.extFinderInfo[8], rounds);
    EXPECT_EQ(info.backupDate, dateOfUnix(1000000000 + rounds - 1));
    EXPECT_EQ(info.createDate, dateOfUnix(1100000000 + rounds - 1));
    EXPECT_EQ(+info.textEncodingHint, static_cast<TextEncoding>(rounds));
}

class Threads : public DiskTest
{
protected:
    FSRef fileRef(const std::string &name)
    {
        writeFile(folder() / name, "data");
        return refAt(folder() / name);
    }
};

void setOften(const FSRef &ref, int field, std::atomic<int> &failures)
{
    for (int round = 0; round < rounds; ++round)
        if (setField(ref, field, round) != noErr)
            ++failures;
}

TEST_P(Threads, EachFieldOfOneFileIsSetByAnother)
{
    FSRef ref = fileRef("file");
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int field = 0; field < fieldCount; ++field)
        threads.emplace_back([&, field] { setOften(ref, field, failures); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    expectLastValues(ref);
}

TEST_P(Threads, EachFileOfAFolderHasItsOwn)
{
    std::vector<FSRef> refs;
    for (int i = 0; i < 4; ++i)
        refs.push_back(fileRef("file" + std::to_string(i)));
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (const FSRef &ref : refs)
        threads.emplace_back([&] {
            for (int field = 0; field < fieldCount; ++field)
                setOften(ref, field, failures);
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    for (const FSRef &ref : refs)
        expectLastValues(ref);
}

TEST_P(Threads, ReadersNeverSeeHalf)
{
    FSRef ref = fileRef("file");
    ASSERT_EQ(setType(ref, code("AAAA"), code("AAAA")), noErr);
    std::atomic<bool> done = false;
    std::atomic<int> torn = 0, failed = 0;
    std::thread reader([&] {
        while (!done)
        {
            FSCatalogInfo info{};
            if (FSGetCatalogInfo(&ref, kFSCatInfoFinderInfo, &info, nullptr, nullptr, nullptr) != noErr)
                ++failed;
            else if (FileInfo file = fileInfo(info); file.fileType != file.fileCreator)
                ++torn;
        }
    });
    int refused = 0;
    for (int round = 0; round < 200; ++round)
    {
        OSType value = round % 2 ? code("AAAA") : code("BBBB");
        refused += setType(ref, value, value) != noErr;
    }
    done = true;
    reader.join();
    EXPECT_EQ(refused, 0);
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(failed, 0);
}

TEST_P(Threads, RenamesAndChangesMeet)
{
    FSRef ref = fileRef("file");
    std::vector<OSErr> renames(rounds), changes(rounds);
    std::thread renaming([&] {
        FSRef own = ref;
        for (int round = 0; round < rounds; ++round)
            renames[static_cast<std::size_t>(round)] = rename(own, "file" + std::to_string(round));
    });
    std::thread setting([&] {
        for (int round = 0; round < rounds; ++round)
            changes[static_cast<std::size_t>(round)] = setField(ref, 0, round);
    });
    renaming.join();
    setting.join();
    EXPECT_EQ(renames, std::vector<OSErr>(rounds, noErr));
    EXPECT_EQ(changes, std::vector<OSErr>(rounds, noErr));
    EXPECT_EQ(infoOf(ref).finderInfo[0], rounds);
    EXPECT_EQ(nameOf(ref), u"file" + std::u16string(u"59"));
}

TEST_P(Threads, FilesAreMadeAndDeletedSideBySide)
{
    FSRef parent = refAt(folder().path());
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&, number] {
            for (int round = 0; round < 20; ++round)
            {
                FSRef made{};
                failures += makeFile(parent, "made" + std::to_string(number), &made) != noErr;
                failures += setType(made, code("TEXT"), 0) != noErr;
                failures += writeFork(made, true, {1, 2, 3}) != noErr;
                failures += FSDeleteObject(&made) != noErr;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(namesIn(folder().path()).empty());
}

const Role setsOneField("setsOneFieldOften", [](const RoleArguments &arguments) {
    std::atomic<int> failures = 0;
    setOften(refAt(arguments[0]), std::stoi(arguments[1]), failures);
    EXPECT_EQ(failures, 0);
});

TEST_P(Threads, EachFieldIsSetByAnotherProcess)
{
    fileRef("file");
    std::vector<Running> processes;
    for (int field = 0; field < fieldCount; ++field)
        processes.push_back(startRole("setsOneFieldOften", {folder() / "file", std::to_string(field)}));
    for (Running &process : processes)
    {
        Ended ended = process.wait();
        EXPECT_EQ(ended.status, 0) << ended.output;
    }
    expectLastValues(refAt(folder() / "file"));
}

ON_EVERY_DISK(Threads);

}   // namespace
