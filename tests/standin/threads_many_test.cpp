// Two and eight threads that make, change, rename, move, copy, exchange, read and delete files, in trees of their own and in one tree: every file keeps
// its own fork and type, and none is lost.
#include "tests/how_built.h"
#include "tests/standin/copies.h"

#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <sys/stat.h>
#include <thread>

namespace
{

using namespace support;

using Row = std::tuple<DiskKind, int>;

class ThreadsMany : public DiskRowTest<Row>
{
protected:
    int threadCount() const { return std::get<1>(GetParam()); }
    std::string makeFolderAt(const std::string &name)
    {
        mkdir((folder() / name).c_str(), 0755);
        return folder() / name;
    }

    void inThreads(const std::function<void(int)> &work)
    {
        std::vector<std::thread> threads;
        for (int number = 0; number < threadCount(); ++number)
            threads.emplace_back(work, number);
        for (std::thread &thread : threads)
            thread.join();
    }
};

// The first failure that any thread met, with what it was doing.
class Findings
{
public:
    void expect(bool holds, const std::string &what)
    {
        if (holds)
            return;
        const std::lock_guard lock(mutex_);
        if (first_.empty())
            first_ = what;
    }
    void expectResult(OSErr result, std::initializer_list<OSErr> allowed, const std::string &what)
    {
        expect(std::find(allowed.begin(), allowed.end(), result) != allowed.end(), what + " gives " + std::to_string(result));
    }
    const std::string &first() const { return first_; }

private:
    std::mutex mutex_;
    std::string first_;
};

Bytes forkOfNumber(int number)
{
    return Bytes(static_cast<std::size_t>(500 + number), static_cast<std::uint8_t>(number));
}

OSErr makeNumbered(const FSRef &parent, int number, FSRef &made)
{
    OSErr result = makeFile(parent, "file" + std::to_string(number), &made);
    if (result == noErr)
        result = writeFork(made, false, bytesOf(std::to_string(number)));
    if (result == noErr)
        result = writeFork(made, true, forkOfNumber(number));
    return result == noErr ? setType(made, static_cast<OSType>(number), static_cast<OSType>(number)) : result;
}

// What happens to a file within a tree of one's own.
void useOwnTree(const std::string &top, Findings &findings)
{
    const FSRef parent = refAt(top);
    FSRef inner{}, first{}, second{};
    findings.expectResult(makeFolder(parent, "inner", &inner), {noErr}, "making a folder");
    for (int round = 0; round < 12; ++round)
    {
        findings.expectResult(makeNumbered(parent, 1, first), {noErr}, "making the first file");
        findings.expectResult(makeNumbered(parent, 2, second), {noErr}, "making the second file");
        for (int times = offersExchange(parent) ? 2 : 0; times > 0; --times)   // there and back
            findings.expectResult(FSExchangeObjects(&first, &second), {noErr}, "exchanging");
        findings.expectResult(rename(first, "renamed"), {noErr}, "renaming");
        findings.expectResult(move(first, inner), {noErr}, "moving");
        findings.expectResult(copyFile(first, parent, "copy"), {noErr}, "copying");
        findings.expectResult(setLock(second, true), {noErr}, "locking");
        findings.expectResult(setLock(second, false), {noErr}, "unlocking");
        findings.expect(forkOf(first) == forkOfNumber(1) && typeOf(first) == 1, "the first file is not itself");
        FSRef copy = childOf(parent, "copy");
        findings.expect(forkOf(copy) == forkOfNumber(1) && typeOf(copy) == 1, "the copy is not what was copied");
        for (const FSRef *ref : {&first, &second, &copy})
            findings.expectResult(FSDeleteObject(ref), {noErr}, "deleting");
    }
}

TEST_P(ThreadsMany, WorkInTreesOfTheirOwn)
{
    Findings findings;
    std::vector<std::string> tops;
    for (int number = 0; number < threadCount(); ++number)
        tops.push_back(makeFolderAt("tree" + std::to_string(number)));
    inThreads([&](int number) { useOwnTree(tops[static_cast<std::size_t>(number)], findings); });
    EXPECT_EQ(findings.first(), "");
    for (const std::string &top : tops)
        EXPECT_EQ(namesIn(top), std::vector<std::string>{"inner"});
}

constexpr int sharedFiles = 6;

// One change of any of the files that all threads use; another thread may have been faster.
void changeShared(const std::vector<FSRef> &files, const std::vector<FSRef> &folders, std::mt19937 &random, int thread, Findings &findings)
{
    FSRef ref = files[random() % files.size()], other = files[random() % files.size()];
    const FSRef &target = folders[random() % folders.size()];
    const std::string copyName = "copy by " + std::to_string(thread);
    switch (random() % 6)
    {
    case 0: findings.expectResult(rename(ref, "file" + std::to_string(random() % 20)), {noErr, dupFNErr}, "renaming"); break;
    case 1: findings.expectResult(move(ref, target), {noErr, dupFNErr}, "moving"); break;
    case 2:
    {
        FSCatalogInfo info{};
        info.backupDate = dateOfUnix(1000000000 + thread);
        findings.expectResult(change(ref, kFSCatInfoBackupDate, info), {noErr}, "setting a date");
        break;
    }
    case 3:
    {
        const OSErr copied = copyFile(ref, target, copyName);
        FSRef copy{};
        findings.expectResult(copied, {noErr, dupFNErr, fnfErr}, "copying");
        if (copied == noErr && findChild(target, units(copyName), copy) == noErr)
            findings.expectResult(FSDeleteObject(&copy), {noErr}, "deleting the copy");
        break;
    }
    case 4:
        if (offersExchange(ref))
            findings.expectResult(FSExchangeObjects(&ref, &other), {noErr}, "exchanging");
        break;
    default:
    {
        FSCatalogInfo info{};
        findings.expectResult(FSGetCatalogInfo(&ref, everything, &info, nullptr, nullptr, nullptr), {noErr}, "reading");
    }
    }
}

// Data and fork go together through every exchange, and types stay with the places: each of both is there once.
void expectEachOnce(const std::vector<FSRef> &files)
{
    std::set<int> contents;
    std::set<OSType> types;
    for (const FSRef &ref : files)
    {
        const Bytes data = forkOf(ref, false);
        ASSERT_EQ(data.size(), 1u);
        EXPECT_EQ(forkOf(ref), forkOfNumber(data[0] - '0'));
        contents.insert(data[0]);
        types.insert(typeOf(ref));
    }
    EXPECT_EQ(contents.size(), files.size());
    EXPECT_EQ(types.size(), files.size());
}

TEST_P(ThreadsMany, WorkInOneTree)
{
    Findings findings;
    const std::vector<FSRef> folders{refAt(makeFolderAt("one")), refAt(makeFolderAt("two"))};
    std::vector<FSRef> files(sharedFiles);
    for (int number = 0; number < sharedFiles; ++number)
        ASSERT_EQ(makeNumbered(folders[0], number + 1, files[static_cast<std::size_t>(number)]), noErr);
    const int rounds = isSanitized() ? 100 : 200;
    inThreads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int round = 0; round < rounds; ++round)
            changeShared(files, folders, random, thread, findings);
    });
    EXPECT_EQ(findings.first(), "");
    UInt32 listed = 0;
    for (const FSRef &folder : folders)
        listed += infoOf(folder, kFSCatInfoValence).valence;
    EXPECT_EQ(listed, static_cast<UInt32>(sharedFiles));
    expectEachOnce(files);
}

INSTANTIATE_TEST_SUITE_P(TwoAndEight, ThreadsMany,
                         testing::Combine(testing::Values(DiskKind::tmpfs, DiskKind::ramfs, DiskKind::ext4), testing::Values(2, 8)),
                         [](const testing::TestParamInfo<Row> &row) {
                             return nameOfKind(std::get<0>(row.param)) + "With" + std::to_string(std::get<1>(row.param)) + "Threads";
                         });

}   // namespace
