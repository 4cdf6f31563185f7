// Open folders: how many descriptors are kept, and how a folder is found again when its own was closed.
#include "standin/files/directories.h"
#include "tests/standin/test_volume.h"

#include <filesystem>
#include <sys/stat.h>

namespace
{

using namespace support;

constexpr std::ptrdiff_t mostKept = 40;

std::ptrdiff_t openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

class OpenFolders : public DiskTest
{
};

TEST_P(OpenFolders, FewAreKeptHoweverManyAreUsed)
{
    std::vector<FSRef> files;
    for (int number = 0; number < 200; ++number)
    {
        const std::string name = folder() / std::to_string(number);
        mkdir(name.c_str(), 0755);
        writeFile(name + "/file", "data");
        files.push_back(refAt(name + "/file"));
    }
    standin::forgetAllDirectories();
    const std::ptrdiff_t before = openDescriptors();
    for (int round = 0; round < 2; ++round)
        for (const FSRef &file : files)
            EXPECT_EQ(checkRef(file), noErr);
    EXPECT_LE(openDescriptors() - before, mostKept);
}

TEST_P(OpenFolders, AFolderFarDownIsFoundAgainFromTheRoot)
{
    constexpr int levels = 500;   // a path longer than the kernel takes at once
    FSRef ref = refAt(folder().path());
    std::vector<FSRef> chain;
    for (int level = 0; level < levels; ++level)
    {
        FSRef inner{};
        ASSERT_EQ(makeFolder(ref, level % 2 ? "another level" : "one level", &inner), noErr) << level;
        chain.push_back(ref = inner);
    }
    standin::forgetAllDirectories();
    EXPECT_EQ(nameOf(ref), u"another level");
    EXPECT_TRUE(sameObject(parentOf(ref), chain[levels - 2]));
    for (auto inner = chain.rbegin(); inner != chain.rend(); ++inner)
        ASSERT_EQ(FSDeleteObject(&*inner), noErr) << chain.rend() - inner;
}

TEST_P(OpenFolders, AFolderRenamedByOthersIsFoundAgain)
{
    for (const char *name : {"outer", "outer/inner"})
        mkdir((folder() / name).c_str(), 0755);
    writeFile(folder() / "outer/inner/file", "data");
    const FSRef file = refAt(folder() / "outer/inner/file");
    std::filesystem::rename(folder() / "outer", folder() / "other");
    standin::forgetAllDirectories();
    EXPECT_EQ(checkRef(file), noErr);
    EXPECT_EQ(pathOf(file), folder() / "other/inner/file");
}

ON_EVERY_DISK(OpenFolders);

}   // namespace
